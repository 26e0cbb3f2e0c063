// The commands on what tills and hand terminals report, and the run that two of them share: from
// the file through two work tables to the labels, with the signal list on the way.
#include "isam/base.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/dc_intern.h"
#include "sub/dc_spoor.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

DcRun dc;

namespace {

constexpr int FUNCTIE = 2;  // work functions
constexpr int F_ZENDEN = 11, F_ANNULEREN = 12, F_ONTVANGEN = 13;

constexpr TabelDef TABEL_ETIKETTEN{
    "tmpe_if",
    "tmpe_if",
    sizeof(DcTrans),
    {"key1,NODUPS,I,25,28,I,29,32", "key2,NODUPS,I,1,4,I,5,6,I,7,8,I,25,28,I,9,10,I,29,32"}};
constexpr TabelDef TABEL_MATEN{"tmpm_if",
                               "tmpm_if",
                               sizeof(DcTrans),
                               {"key1,NODUPS,C,35,47,I,34,34,I,17,20,I,9,10,I,11,11,I,12,12",
                                "key2,I,1,4,I,5,6,I,7,8,I,33,33,I,9,10,I,21,24"}};

/// A work table of this terminal, there as long as the run is.
struct Werktabel {
  Werktabel(const TabelDef& def, char letter)
      : naam(str_format("TP%02ld%c", session_terminal, letter)) {
    if (!tabel_maak(def, naam.c_str())) ctl_noopen(DC_MODULE, naam.c_str());
    icb = IXOPEN_LENGTE(naam.c_str(), IX_EXCLUSIEF, sizeof(DcTrans));
  }
  ~Werktabel() {
    IXCLOSE(icb);
    IXREMOVE(naam.c_str());
  }
  Werktabel(const Werktabel&) = delete;
  Werktabel& operator=(const Werktabel&) = delete;
  std::string naam;
  ICB* icb;
};

/// DTGO by label and DTFIN by label, as all steps of a run want them.
struct Sleutels {
  Sleutels() : go(dtgo->block.key_number), fin(dtfin->block.key_number) {
    IXSWITCH(dtgo, 1);
    IXSWITCH(dtfin, 2);
  }
  ~Sleutels() {
    IXSWITCH(dtgo, go);
    IXSWITCH(dtfin, fin);
  }
  Sleutels(const Sleutels&) = delete;
  Sleutels& operator=(const Sleutels&) = delete;
  int go, fin;
};

void fasen() {
  const Sleutels sleutels;
  const Werktabel etiketten(TABEL_ETIKETTEN, 'E'), maten(TABEL_MATEN, 'M');
  dc.etiketten = etiketten.icb;
  dc.maten = maten.icb;
  dc_lees();
  if (!scr_interrupted() && dc.etiketten->record_count > 0) dc_etiketten();
  dc_spoor_begin();
  if (!scr_interrupted() && dc.maten->record_count > 0) dc_maten();
  dc_spoor_einde();
  dc.etiketten = dc.maten = nullptr;
}

void verwijder() {
  if (!dc_bestand_weg()) ctl_noopen(DC_MODULE, DC_BESTAND);
}

/// The report around a run.
void rapport(bool schrijven) {
  if (!dc_aanwezig()) return msg_info(txt(T_DC_GEEN));
  const PrtRec bewaard = prt_rec;
  if (XPRT_OPEN(PRT_SCHERM, PRT_132, nullptr)) {
    dc_loop(schrijven);
    if (!dc_lijst_gedrukt() && !scr_interrupted()) msg_info(txt(T_DC_GEEN_OPMERKINGEN));
    print_close("");
  }
  prt_rec = bewaard;
}

}  // namespace

bool dc_aanwezig() { return file_size(DC_BESTAND) > 0; }

void dc_loop(bool schrijven) {
  dc = DcRun{};
  dc.schrijven = schrijven;
  dc_lijst_begin();
  if (!dc_aanwezig()) return;
  fasen();
  dc_lijst_einde();
  if (schrijven && !scr_interrupted()) verwijder();
}

void dc_signaal() {
  hdr_line('C', "%s", txt(T_DC_SIGNAALLIJST));
  if (!vw_claim(FUNCTIE, true)) return;
  const Werkclaim claim(FUNCTIE);
  rapport(false);
}

void dc_verwerken() {
  hdr_line('C', "%s", txt(T_DC_VERWERKEN));
  if (!scr_confirm(10, 1, "%s", txt(T_DC_VRAAG_VERWERKEN))) return;
  if (!vw_claim_excl(FUNCTIE)) return;
  const Werkclaim_excl claim(FUNCTIE);
  if (!vw_claim(F_ZENDEN, true)) return;
  const Werkclaim zenden(F_ZENDEN);
  if (!vw_claim(F_ANNULEREN, true)) return;
  const Werkclaim annuleren(F_ANNULEREN);
  if (!vw_claim(F_ONTVANGEN, true)) return;
  const Werkclaim ontvangen(F_ONTVANGEN);
  rapport(true);
}

void dc_wissen() {
  constexpr char BEHEER = 'S';
  if (terminal_rec.rechten != BEHEER) return;
  hdr_line('C', "%s", txt(T_DC_VERWIJDEREN));
  if (!vw_claim_excl(FUNCTIE)) return;
  const Werkclaim_excl claim(FUNCTIE);
  if (scr_confirm(10, 1, "%s", txt(T_DC_VRAAG_VERWIJDEREN))) verwijder();
}
