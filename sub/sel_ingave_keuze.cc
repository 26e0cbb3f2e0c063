// Fields that are chosen from lists: brands, branches, model, characteristic and the option lists.
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "main/iotab.h"
#include "scr/scr.h"
#include "sub/bitarr.h"
#include "sub/pghdl.h"
#include "sub/sel_intern.h"
#include "sub/sel_merken.h"
#include "sub/tabellen.h"
#include "sub/zoek.h"

namespace {

constexpr int K_KENMERK_WAARDE = 34;
constexpr uint8_t PRICAT = 4;

/// A box of options beside the field. Item 0 of a menu means none, so the ids stand one higher
/// there.
struct Optielijst {
  Optielijst(int rij, const char* titel) : menu(tr_menu_new(TR_BOX, rij, SEL_K_EEN, 0, titel)) {}
  ~Optielijst() { tr_menu_free(menu); }
  Optielijst(const Optielijst&) = delete;
  Optielijst& operator=(const Optielijst&) = delete;
  void voeg(const char* tekst, int id) { tr_menu_add(menu, -1, tekst, id + 1, TR_AAN, 0, nullptr); }
  /// The id chosen; below 0 when the operator left.
  int kies(int eerste) { return tr_menu_run(menu, eerste + 1) - 1; }
  TrMenu* menu;
};

/// The row above which a box of so many lines still fits on the screen.
int doosrij(int rij, int regels) {
  const int laatste = scr_ctx->lines - regels - 3;
  return rij < laatste ? rij : laatste;
}

bool kenmerk_naam(int nummer, char naam[20]) {
  memset(naam, 0, 20);
  int32_t n = nummer;
  return sys_sub20('R', &n, naam);
}

/// A number 0 to 9; -1 when the operator left.
int kies_kenmerk(int rij) {
  Optielijst lijst(doosrij(rij, 10), str_format(" %s ", txt(T_SEL_KENMERK)).c_str());
  lijst.voeg(txt(T_SEL_KENMERK_ALLE), 0);
  for (int i = 1; i <= 9; ++i) {
    char naam[20];
    if (kenmerk_naam(i, naam)) lijst.voeg(str_format("&%-2d %-.20s", i, naam).c_str(), i);
  }
  return lijst.kies(sel_gezet('T') ? sel_rec.kenmerk_nr : 0);
}

}  // namespace

bool ingave_merk(char letter, int rij) {
  ICB* lijst = merklijst_open(IX_EXCLUSIEF);
  uint16_t nummer = sel_rec.merk;
  key_allow(K_CANCEL);
  const int aantal = ing_merk(rij, SEL_K_EEN, "", &nummer, lijst);
  const bool weg = weg_toets();
  IXCLOSE(lijst);
  if (aantal > 1) scr_print(A_WAARDE, rij, SEL_K_EEN + 4, ", ...");
  if (weg) return false;
  merk_aantal = aantal;
  merk_een = aantal == 1;
  if (aantal <= 0) {
    merklijst_leeg();
    sel_rec.merk = 0;
    sel_op_default(letter);
    return true;
  }
  const auto nummers = merklijst_nummers();
  sel_rec.merk = nummers.empty() ? nummer : nummers.front();
  sel_stand(letter) = SEL_LIJST;
  return true;
}

bool ingave_filialen(char letter, int rij) {
  uint8_t map[32] = {};
  if (sel_gezet(letter)) memcpy(map, sel_rec.filialen, sizeof map);
  key_allow(K_CANCEL);
  key_allow(K_F5);
  pg_field(rij, SEL_K_EEN, "50s", map);
  if (weg_toets()) return false;
  const bool alles = bit_leeg(map, 32) || bit_vol(map, 32);
  if (alles) memset(map, 0xFF, sizeof map);
  memcpy(sel_rec.filialen, map, sizeof map);
  sel_zet(letter, !alles);
  return true;
}

bool ingave_model(char letter, int rij) {
  char model[15] = {};
  if (sel_gezet(letter)) memcpy(model, sel_rec.model, sizeof model);
  for (;;) {
    INGAVE(rij, SEL_K_EEN, "15c,U", &K_CANCEL, &K_F5, &model[0]);
    if (weg_toets()) return false;
    if (scr_ctx->last_key != K_F5) break;
    if (!merk_een) {
      msg_waarschuw(txt(T_SEL_MODEL_EEN_MERK));
      continue;
    }
    char gekozen[15] = {};
    if (!model_pick(sel_rec.merk, gekozen)) continue;
    memcpy(model, gekozen, sizeof model);
    break;
  }
  memcpy(sel_rec.model, model, sizeof model);
  sel_zet(letter, model[0] != 0);
  return true;
}

bool ingave_kenmerk(char letter, int rij) {
  const int nummer = kies_kenmerk(rij);
  if (nummer < 0) return false;
  if (nummer != sel_rec.kenmerk_nr || !sel_gezet(letter)) {
    memset(sel_rec.kenmerk_waarde, 0, sizeof sel_rec.kenmerk_waarde);
  }
  sel_rec.kenmerk_nr = static_cast<uint8_t>(nummer);
  sel_zet(letter, nummer != 0);
  sel_toon(letter);
  if (nummer == 0) return true;
  char waarde[2];
  memcpy(waarde, sel_rec.kenmerk_waarde, sizeof waarde);
  INGAVE(rij, K_KENMERK_WAARDE, "2c,", &K_CANCEL, &waarde[0]);
  if (weg_toets()) return false;
  memcpy(sel_rec.kenmerk_waarde, waarde, sizeof waarde);
  return true;
}

bool ingave_edi(char letter, int rij) {
  Optielijst lijst(doosrij(rij, 2), nullptr);
  lijst.voeg(txt(T_SEL_EDI_ALLE), 1);
  lijst.voeg(txt(T_SEL_EDI_PRICAT), 2);
  const int keuze = lijst.kies(sel_gezet(letter) && sel_rec.edi == 1 ? 2 : 1);
  if (keuze < 0) return false;
  sel_rec.edi = keuze == 2 ? 1 : 0;
  sel_zet(letter, keuze == 2);
  return true;
}

bool ingave_verwijderen(char letter, int rij) {
  Optielijst lijst(doosrij(rij, 3), nullptr);
  lijst.voeg(txt(T_SEL_WEG_NEE), 1);
  lijst.voeg(txt(T_SEL_WEG_ALLE), 2);
  if ((sys_rec1.opties2 & PRICAT) != 0) lijst.voeg(txt(T_SEL_WEG_PRICAT), 3);
  const int keuze = lijst.kies(sel_rec.verwijderen != 0 ? sel_rec.verwijder_soort : 1);
  if (keuze < 0) return false;
  if (keuze == 1) {
    sel_rec.verwijderen = sel_rec.verwijder_soort = 0;
    sel_op_default(letter);
    return true;
  }
  sel_rec.verwijderen = 1;
  sel_rec.verwijder_soort = static_cast<uint8_t>(keuze);
  sel_zet(letter, true);
  return true;
}
