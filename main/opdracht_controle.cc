// The command that checks an order: which order, how it is shown, the list, and dropping the order
// when all is well.
#include "main/opdracht_controle.h"

#include "isam/base.h"
#include "isam/ix.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "main/opdracht_controle_in.h"
#include "main/teksten.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/opdr_kies.h"
#include "sub/pghdl.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"

namespace {

constexpr int OPDRACHTEN = 10, ONDERWEG = 11;  // work functions
constexpr int KOL = 20;
enum Rij : uint8_t { VERZENDFILIAAL = 3, NUMMER, NIVEAU = 6, TELLING, VOLGORDE, GEEN = 10, VRAAG };

void label(int rij, const Tekst& tekst) { scr_print(A_LABEL, rij, 1, "%s", txt(tekst)); }

/// The order and its branches; false when the operator left or there is none.
bool vraag_opdracht(OpdrKeuze* opdracht) {
  label(VERZENDFILIAAL, T_CTR_VERZENDFILIAAL);
  label(NUMMER, T_OPDRACHTNUMMER);
  OpdrGrens grens;
  uint8_t filiaal = 0;
  scr_print(A_LABEL, VERZENDFILIAAL, KOL + 6, "%s", txt(T_MAG_ENTER_ALLE));
  key_allow(K_CANCEL);
  fil_field(VERZENDFILIAAL, KOL, "IZP", &filiaal);
  if (weg_toets()) return false;
  scr_clreol(VERZENDFILIAAL, KOL);
  if ((scr_ctx->ing_result & ING_LEEG) == 0) {
    grens.vanfil = filiaal;
    scr_print(A_WAARDE, VERZENDFILIAAL, KOL, "%d", filiaal);
  }
  key_allow(K_CANCEL);
  if (!opdr_kies(NUMMER, KOL, grens, opdracht) || opdracht->nummer == 0) return false;
  scr_clreol(VERZENDFILIAAL, KOL);
  const std::string naar = controle_enkel(*opdracht) ? str_format("%d", opdracht->naarfil)
                                                     : std::string(txt(T_CTR_ALLE));
  scr_print(A_WAARDE, VERZENDFILIAAL, KOL, "%d -> %s", opdracht->vanfil, naar);
  return true;
}

/// One of two; 0 when the operator left.
int vraag_twee(int rij, const Tekst& vraag, const Tekst& een, const Tekst& twee) {
  label(rij, vraag);
  TrMenu* menu = tr_menu_new(TR_BOX, rij, KOL, 0, nullptr);
  if (menu == nullptr) return 0;
  tr_menu_add(menu, -1, txt(een), 1, TR_AAN, 0, nullptr);
  tr_menu_add(menu, -1, txt(twee), 2, TR_AAN, 0, nullptr);
  const int keuze = tr_menu_run(menu, 1);
  tr_menu_free(menu);
  if (keuze < 1) return 0;
  const std::string tekst = txt(keuze == 1 ? een : twee);
  scr_print(A_WAARDE, rij, KOL, "%s", tekst.substr(tekst.find(' ') + 1));
  return keuze;
}

bool vraag_alles(ControleVraag* v) {
  if (!vraag_opdracht(&v->opdracht)) return false;
  const int niveau = vraag_twee(NIVEAU, T_CTR_NIVEAU, T_CTR_COMPACT, T_CTR_UITGEBREID);
  if (niveau == 0) return false;
  const int telling = vraag_twee(TELLING, T_CTR_TELLING, T_CTR_ALLE_SERIES, T_CTR_VERSCHILLEN);
  if (telling == 0) return false;
  v->uitgebreid = niveau == 2;
  v->verschillen = telling == 2;
  return volgorde_kies(VOLGORDE, 1, v->volgorde);
}

/// True when the operator has had the list.
bool druk(const ControleVraag& v) {
  if (!XPRT_OPEN(PRT_SCHERM, PRT_132, nullptr)) return false;
  if (!controle_lijst(v) && v.verschillen && !scr_interrupted()) {
    scr_print(A_WAARDE, GEEN, 1, "%s", txt(T_CTR_GEEN));
    scr_enter(GEEN + 1, 1);
    scr_clrbot(GEEN, 1);
  }
  print_close("");
  return true;
}

/// All lines of the order, wherever they stand in the file.
void wis_opdracht(uint32_t nummer) {
  DtPick r{};
  while (IXSEQ(dtpick, &r)) {
    if (r.opdrachtnr != nummer) continue;
    // The scan goes by the handle's record number, which a failed read for update loses.
    const int32_t plaats = dtpick->record_no;
    verwijder(dtpick, r);
    dtpick->record_no = plaats;
  }
}

void goedgekeurd(uint32_t nummer) {
  if (!scr_confirm(VRAAG, 1, "%s", txt(T_CTR_GOEDGEKEURD))) return;
  if (!vw_claim_excl(OPDRACHTEN)) return;
  const Werkclaim_excl claim(OPDRACHTEN);
  wis_opdracht(nummer);
}

}  // namespace

void opdracht_controle() {
  hdr_line('C', "%s", txt(T_MENU_CONTROLE));
  if (!vw_claim(OPDRACHTEN, true)) return;
  const Werkclaim opdrachten(OPDRACHTEN);
  if (!vw_claim(ONDERWEG, true)) return;
  const Werkclaim onderweg(ONDERWEG);
  ControleVraag v{};
  if (!vraag_alles(&v)) return;
  const bool gezien = controle_vul(&v) && druk(v);
  IXREMOVE(controle_bestand().c_str());
  if (gezien) goedgekeurd(v.opdracht.nummer);
}
