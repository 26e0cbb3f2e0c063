// The dialog "BEREKENEN AANVULADVIES": where pieces may come from and which branches may get them.
#include <cstring>
#include <string>

#include "isam/base.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_reeks.h"
#include "sub/bitarr.h"
#include "sub/pghdl.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/teksten_sel.h"

namespace {

constexpr int RIJ = 3, K_LABEL = 2, K_WAARDE = 23;
constexpr int RIJ_BRON = RIJ + 3, RIJ_VANUIT = RIJ + 4, RIJ_AANVUL = RIJ + 5;
constexpr uint8_t MAGAZIJN = 1, BEIDE = 3;
constexpr const Tekst* BRONNEN[] = {&T_ADVO_MAGAZIJN, &T_ADVO_FILIALEN, &T_ADVO_BEIDE};

int promptrij() { return scr_ctx->lines - 1; }
int breedte() { return scr_ctx->cols - K_WAARDE; }

void toon_regel(int rij, const char* label, const std::string& waarde) {
  scr_clreol(rij, 1);
  scr_print(A_LABEL, rij, K_LABEL, "%-20s", label);
  scr_print(A_WAARDE, rij, K_WAARDE, "%s", waarde);
}

std::string lijst(const uint8_t* map) {
  if (bit_vol(map, 32) || bit_alle_filialen(map)) return txt(T_ADV_ALLE);
  return pg_show('F', map, breedte());
}

const char* vanuit_label() {
  return txt(adv_rec.bron_soort == MAGAZIJN ? T_ADVO_UIT_MAGAZIJNEN : T_ADVO_UIT_FILIALEN);
}

void toon() {
  scr_clrbot(2, 1);
  scr_print(A_WAARDE, RIJ, K_LABEL, "%s", txt(T_ADVO_BEREKENEN));
  scr_print(A_LABEL, RIJ + 2, K_LABEL, "%s", txt(T_ADVO_AANVULLEN));
  toon_regel(RIJ_BRON, txt(T_ADVO_BRON), txt(*BRONNEN[adv_rec.bron_soort - 1]));
  toon_regel(RIJ_VANUIT, vanuit_label(), lijst(adv_rec.vanuit_filialen));
  toon_regel(RIJ_AANVUL, txt(T_ADVO_AANVULLEN), lijst(adv_rec.aanvul_filialen));
}

/// False when the operator left; the criteria are then as they were.
bool kies_bron() {
  TrMenu* menu = tr_menu_new(TR_BOX, RIJ_BRON, K_WAARDE, 0, nullptr);
  for (int i = 0; i < BEIDE; ++i) {
    tr_menu_add(menu, -1, txt(*BRONNEN[i]), i + 1, TR_AAN, 0, nullptr);
  }
  const int keuze = tr_menu_run(menu, adv_rec.bron_soort);
  tr_menu_free(menu);
  if (keuze < MAGAZIJN || keuze > BEIDE) return false;
  adv_rec.bron_soort = static_cast<uint8_t>(keuze);
  return true;
}

bool voer_lijst_in(int rij, const Tekst& hint, uint8_t* filialen) {
  uint8_t map[32];
  memcpy(map, filialen, sizeof map);
  if (bit_vol(map, 32) || bit_alle_filialen(map)) memset(map, 0, sizeof map);
  scr_clreol(promptrij(), 1);
  scr_print(A_LABEL, promptrij(), 1, "%s", txt(hint));
  scr_clreol(rij, K_WAARDE);
  key_allow(K_CANCEL);
  key_allow(K_F5);
  pg_field(rij, K_WAARDE, str_format("%ds", breedte()).c_str(), map);
  if (weg_toets()) return false;
  if (bit_leeg(map, 32)) memset(map, 0xFF, sizeof map);
  memcpy(filialen, map, sizeof map);
  return true;
}

void wijzig() {
  if (!kies_bron()) return;
  toon();
  const Tekst& hint = adv_rec.bron_soort == MAGAZIJN ? T_ADVO_HINT_MAGAZIJNEN : T_ADV_HINT_FILIALEN;
  if (!voer_lijst_in(RIJ_VANUIT, hint, adv_rec.vanuit_filialen)) return;
  toon();
  voer_lijst_in(RIJ_AANVUL, T_ADV_HINT_FILIALEN, adv_rec.aanvul_filialen);
}

}  // namespace

bool adv_dialoog() {
  if (scr_ctx == nullptr) return false;
  if (adv_rec.bron_soort < MAGAZIJN || adv_rec.bron_soort > BEIDE) adv_rec.bron_soort = BEIDE;
  for (;;) {
    toon();
    const bool akkoord = scr_confirm(promptrij(), 1, "[+]");
    if (weg_toets()) return false;
    scr_clreol(promptrij(), 1);
    if (akkoord) return true;
    wijzig();
  }
}

bool adv_dialoog_slot() {
  adv_rec = adv_sets[ADV_AUTOMATISCH];
  if (!adv_dialoog()) return false;
  adv_sets[ADV_AUTOMATISCH] = adv_rec;
  return true;
}
