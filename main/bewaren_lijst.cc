// Removing order lines: provisional ones by selection and branches, definitive ones by order.
#include <algorithm>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "main/batchvw.h"
#include "main/bewaren.h"
#include "main/controle.h"
#include "main/saldo.h"
#include "main/teksten.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/opdr_kies.h"
#include "sub/pghdl.h"
#include "sub/sel_krit.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/voortgang.h"

namespace {

constexpr int FUNCTIE = 10;  // work function of order lines
constexpr int SLOT = 3;      // the criteria set of this command
constexpr int KEY_SERIE = 2, SERIEVELDEN = 3;
constexpr int RIJ = 3, KOL = 21;

/// A branch list where nothing entered means all. False when the operator left.
bool vraag_filialen(int rij, const Tekst& label, uint8_t* map) {
  scr_print(A_LABEL, rij, 1, "%-18.18s:", txt(label));
  scr_clreol(scr_ctx->lines - 1, 1);
  scr_print(A_LABEL, scr_ctx->lines - 1, 1, "%s", txt(T_WIS_HINT_FILIALEN));
  key_allow(K_CANCEL);
  key_allow(K_F5);
  pg_field(rij, KOL, str_format("%ds,I", scr_ctx->cols - KOL).c_str(), map);
  scr_clreol(scr_ctx->lines - 1, 1);
  if (weg_toets()) return false;
  if ((scr_ctx->ing_result & ING_LEEG) != 0) pg_fill(map);
  scr_clreol(rij, KOL);
  const std::string tekst =
      pg_is_all(map) ? txt(T_WIS_ALLE) : pg_show('F', map, scr_ctx->cols - KOL);
  scr_print(A_WAARDE, rij, KOL, "%s", tekst);
  return true;
}

bool vraag_voorlopig() {
  pg_clear(adv_rec.vanuit_filialen);
  pg_clear(adv_rec.aanvul_filialen);
  memset(&ser_rec, 0, sizeof ser_rec);
  sel_scherm();  // however it is left, the last selection is used
  hdr_line('C', "%s", txt(T_WIS_VOORL));
  return vraag_filialen(RIJ, T_WIS_VANFIL, adv_rec.vanuit_filialen) &&
         vraag_filialen(RIJ + 1, T_WIS_NAARFIL, adv_rec.aanvul_filialen) &&
         scr_confirm(RIJ + 3, 1, "");
}

/// One series' lines; the first stands in pick_rec.
void wis_groep(const SerieVoortgang& voortgang) {
  ser_rec.nr = pick_rec.nr;
  if (!IXREAD(dtser_opzoek, &ser_rec)) {
    pick_rec.vanfil = pick_rec.naarfil = UINT8_MAX;  // past the lines of this series
    pick_rec.opdrachtnr = UINT32_MAX;
    return;
  }
  voortgang.toon(pick_rec.nr);
  do {
    // Only the sending branch is skipped: behind a receiver that is off others may be wanted.
    if (!pg_test(adv_rec.vanuit_filialen, pick_rec.vanfil)) {
      pick_rec.naarfil = voorbij_zender(pick_rec.naarfil);
    } else if (pick_rec.opdrachtnr == 0 && pg_test(adv_rec.aanvul_filialen, pick_rec.naarfil)) {
      verwijder(dtpick, pick_rec);
    }
    if (scr_interrupted()) return;
  } while (IXNEXT(dtpick, &pick_rec, SERIEVELDEN));
}

void wis_regels() {
  const SerieVoortgang voortgang;
  const OpSleutel sleutel(dtpick, KEY_SERIE);
  memset(&pick_rec, 0, sizeof pick_rec);
  while (!scr_interrupted() && IXNEXT(dtpick, &pick_rec)) wis_groep(voortgang);
}

// Orders ------------------------------------------------------------------------------------------

constexpr int RIJ_FILIAAL = 3, RIJ_VANAF = 4, RIJ_TM = 5;

struct Grenzen {
  uint8_t vanfil;  // B all
  uint16_t van, tm;
};

bool vraag_filiaal(Grenzen* g) {
  scr_print(A_LABEL, RIJ_FILIAAL, 1, "%-18.18s:", txt(T_WIS_VANFIL));
  scr_print(A_LABEL, RIJ_FILIAAL, KOL + 6, "%s", txt(T_WIS_ENTER_ALLE));
  if (!fil_of_alle(RIJ_FILIAAL, KOL, &g->vanfil)) return false;
  scr_clreol(RIJ_FILIAAL, KOL);
  scr_print(A_WAARDE, RIJ_FILIAAL, KOL, "%s",
            g->vanfil >= filialen() ? std::string(txt(T_WIS_ALLE)) : str_format("%d", g->vanfil));
  return true;
}

bool vraag_datum(int rij, const Tekst& label, const Tekst& open, uint16_t leeg, uint16_t* datum) {
  scr_print(A_LABEL, rij, 1, "%-18.18s:", txt(label));
  uint16_t d = *datum == leeg ? uint16_t{0} : *datum;
  key_allow(K_CANCEL);
  INGAVE(rij, KOL, "D, ", &d);
  if (weg_toets()) return false;
  *datum = (scr_ctx->ing_result & ING_LEEG) != 0 ? leeg : d;
  scr_clreol(rij, KOL);
  scr_print(A_WAARDE, rij, KOL, "%s", *datum == leeg ? txt(open) : date_plain(*datum));
  return true;
}

bool vraag_grenzen(Grenzen* g) {
  return vraag_filiaal(g) && vraag_datum(RIJ_VANAF, T_WIS_PRINT_VANAF, T_WIS_EERSTE, 0, &g->van) &&
         vraag_datum(RIJ_TM, T_WIS_PRINT_TM, T_WIS_LAATSTE, DATUM_LAATSTE, &g->tm);
}

/// All lines of one order, wherever they stand in the file.
void wis_opdracht(uint32_t nummer) {
  scr_clreol(scr_ctx->lines, 1);
  scr_print(A_LABEL, scr_ctx->lines, 1, txt(T_WIS_ORDER), nummer);
  while (IXSEQ(dtpick, &pick_rec)) {
    if (pick_rec.opdrachtnr != nummer) continue;
    // The scan goes by the handle's record number, which a failed read for update loses.
    const int32_t plaats = dtpick->record_no;
    verwijder(dtpick, pick_rec);
    dtpick->record_no = plaats;
  }
}

}  // namespace

void voorl_wissen() {
  hdr_line('C', "%s", txt(T_WIS_VOORL));
  if (!vw_claim_excl(FUNCTIE)) return;
  const Werkclaim_excl claim(FUNCTIE);
  adv_rec = adv_sets[SLOT];
  const bool akkoord = vraag_voorlopig();
  adv_sets[SLOT] = adv_rec;
  if (!akkoord) return;
  overlay_maak();
  wis_regels();
}

void verzamel_wissen() {
  if (!vw_claim_excl(FUNCTIE)) return;
  const Werkclaim_excl claim(FUNCTIE);
  Grenzen g{static_cast<uint8_t>(filialen()), 0, date_today()};
  for (;;) {
    hdr_line('C', "%s", txt(T_WIS_VERZAMEL));
    if (!vraag_grenzen(&g)) return;
    OpdrGrens grens;
    grens.vanfil = g.vanfil >= filialen() ? -1 : g.vanfil;
    grens.van = g.van;
    grens.tm = g.tm;
    for (const OpdrKeuze& o : opdr_kies_meer(grens)) wis_opdracht(o.nummer);
  }
}
