// Replenishment information: how long it is kept, and removing what is older; and whether orders
// are checked. Both settings stand in one system record, which others change too: it is read again
// under its lock before a byte of it is written.
#include "main/bewaren.h"

#include <cstring>

#include "isam/base.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "main/iotab.h"
#include "main/teksten.h"
#include "scr/scr.h"
#include "sub/ioeti.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/teksten_sel.h"

namespace {

constexpr int FUNCTIE = 9;  // work function of advice
constexpr int RIJ = 6;      // of the windows

void bewaar_instelling(uint8_t SysRec20::*veld) {
  const uint8_t waarde = sys_rec20.*veld;
  int32_t nummer = 20;
  iotab('X', &nummer, &sys_rec20, SYS_RECORDS);  // zeros are a valid record
  sys_rec20.*veld = waarde;
  iotab('W', &nummer, &sys_rec20, SYS_RECORDS);
}

/// The date asked for; false when the operator left.
bool vraag_datum(uint16_t* grens) {
  const int kol = scr_print(A_LABEL, 2, 2, "%s", txt(T_WIS_AANVUL_TM)) + 3;
  for (;;) {
    scr_print(A_WAARDE, 2, kol, "%s", date_plain(*grens));
    if (scr_confirm(4, 2, "")) return true;
    if (weg_toets()) return false;
    key_allow(K_CANCEL);
    uint16_t d = *grens;
    INGAVE(2, kol, "D", &d);
    if (weg_toets()) return false;
    *grens = (scr_ctx->ing_result & ING_LEEG) != 0 || d == 0 ? date_today() : d;
  }
}

/// Unknown, or sold no later than the day.
bool verouderd(const DtAanv& rec, uint16_t grens) {
  Etiket etiket{};
  auto nummer = static_cast<int32_t>(rec.etiket);
  return !ioeti('R', &nummer, &etiket) || etiket.vrkdat <= grens;
}

void wis_tot(uint16_t grens) {
  const int32_t geheel = dtaanv->record_count;
  ix_hooks.voortgang(txt(T_WIS_AANVUL), 0, geheel);
  while (IXSEQ(dtaanv, &aanv_rec)) {
    const int32_t plaats = dtaanv->record_no;  // the scan goes by it
    ix_hooks.voortgang(txt(T_WIS_AANVUL), plaats, geheel);
    if (verouderd(aanv_rec, grens)) verwijder(dtaanv, aanv_rec);
    dtaanv->record_no = plaats;
  }
  ix_hooks.voortgang(nullptr, 0, 0);
}

}  // namespace

void aanvulinfo_wissen() {
  hdr_line('C', "%s", txt(T_WIS_AANVUL));
  if (!vw_claim_excl(FUNCTIE)) return;
  const Werkclaim_excl claim(FUNCTIE);
  auto grens = static_cast<uint16_t>(date_today() - sys_rec20.dagen_bewaard);
  const Venster venster(RIJ, 1, 6, 80);
  win_title(nullptr);
  if (vraag_datum(&grens)) wis_tot(grens);
}

void aanvulinfo_bewaren() {
  hdr_line('C', "%s", txt(T_BEWAREN_AANVUL));
  const uint8_t oud = sys_rec20.dagen_bewaard;
  const Venster venster(RIJ, 1, 7, 80);
  win_title(nullptr);
  const int kol = scr_print(A_LABEL, 2, 2, "%s", txt(T_BEWAREN_VERKOPEN)) + 3;
  scr_print(A_LABEL, 2, kol + 3, "%s", txt(T_BEWAREN_DAGEN));
  for (;;) {
    scr_print(A_WAARDE, 2, kol, "%2hu", sys_rec20.dagen_bewaard);
    key_allow(K_CANCEL);
    INGAVE(2, kol, "2U,EPZ", &sys_rec20.dagen_bewaard);
    if (weg_toets()) break;
    if (scr_confirm(4, 2, "")) return bewaar_instelling(&SysRec20::dagen_bewaard);
    if (weg_toets()) break;
  }
  sys_rec20.dagen_bewaard = oud;
  scr_print(A_WAARDE, 2, kol, "%2hu", oud);
  scr_flush(1);
}

void controle_instellen() {
  hdr_line('C', "%s", txt(T_INSTELLEN_CONTROLE));
  const uint8_t oud = sys_rec20.controle_keuze;
  const Venster venster(RIJ, 1, 5, 80);
  win_title(nullptr);
  const int kol = scr_print(A_LABEL, 2, 2, "%s", txt(T_KEUZE_CONTROLE)) + 3;
  key_allow(K_CANCEL);
  INGAVE(2, kol, "b", &sys_rec20.controle_keuze);
  if (!weg_toets()) return bewaar_instelling(&SysRec20::controle_keuze);
  sys_rec20.controle_keuze = oud;
  scr_print(A_WAARDE, 2, kol, "%s", txt(oud != 0 ? T_SEL_JA : T_SEL_NEE));
  scr_flush(1);
}
