// The screen of the advice criteria: three blocks, and a fourth on stock and sales where mutations
// are entered by hand.
#include <algorithm>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/bitarr.h"
#include "sub/pghdl.h"
#include "sub/tabellen.h"
#include "sub/teksten_sel.h"

namespace {

constexpr int K_NUMMER = 2, K_KOP = 4, K_WAARDE = 47;
constexpr int RIJ_OPDRACHT = 3, RIJ_BEREKENEN = 6, RIJ_ADVIEZEN = 10, RIJ_VOORRAAD = 17;
constexpr int K_FILIALEN = 30, K_SOORT = 30, K_VANAF = 33, K_VAN = 39, K_TM_WOORD = 46, K_TM = 54;
constexpr int32_t MAXIMUM = 99999, VRK_DEFAULT = 32767, PCT_ALLE = 100;
constexpr int16_t DAGEN_MAX = 250;

struct Antwoord {
  const Tekst* tekst;
  uint8_t AdvRec::*veld;
};
constexpr Antwoord ANTWOORDEN[] = {{&T_ADV_S_AANVUL, &AdvRec::adv_aanvul},
                                   {&T_ADV_S_SWITCH, &AdvRec::adv_switch},
                                   {&T_ADV_S_RESTANT, &AdvRec::adv_restant},
                                   {&T_ADV_S_DISTRIBUTIE, &AdvRec::adv_distributie},
                                   {&T_ADV_S_OVERIG, &AdvRec::adv_overig}};

struct Filialenlijst {
  const Tekst* label;
  uint8_t (AdvRec::*map)[32];
  int rij, kolom;
};
constexpr Filialenlijst VANUIT{&T_ADV_VANUIT, &AdvRec::vanuit_filialen, RIJ_BEREKENEN + 1,
                               K_WAARDE};
constexpr Filialenlijst AANVUL{&T_ADV_AANVULLEN, &AdvRec::aanvul_filialen, RIJ_BEREKENEN + 2,
                               K_WAARDE};
constexpr Filialenlijst GETEST{&T_ADV_FILIALEN, &AdvRec::filialen, RIJ_VOORRAAD + 1, K_FILIALEN};

int promptrij() { return scr_ctx->lines - 1; }
int restbreedte(int kolom) { return scr_ctx->cols - kolom; }

/// The text of an option without its mark and number.
const char* zonder_nummer(const Tekst& t) {
  const char* p = strchr(txt(t), ' ');
  return p == nullptr ? txt(t) : p + 1;
}

bool kopregel(int rij, int nummer, const Tekst& tekst) {
  scr_print(A_WAARDE, rij, K_NUMMER, "%d", nummer);
  return scr_print(A_WAARDE, rij, K_KOP, "%s", txt(tekst)) > 0;
}

// Showing -----------------------------------------------------------------------------------------

/// The option is a mask: 1 without an order, 2 with one.
int optie_opdracht() { return (adv_rec.zonder_opdracht ? 1 : 0) | (adv_rec.met_opdracht ? 2 : 0); }

void toon_opdracht() {
  static constexpr const Tekst* OPTIES[] = {&T_ADV_O_ZONDER, &T_ADV_O_MET, &T_ADV_O_ALLE};
  const int optie = optie_opdracht();
  scr_clreol(RIJ_OPDRACHT + 1, 1);
  if (optie > 0) {
    scr_print(A_WAARDE, RIJ_OPDRACHT + 1, K_KOP, "%s", zonder_nummer(*OPTIES[optie - 1]));
  }
}

void toon_filialen(const Filialenlijst& f) {
  scr_clreol(f.rij, 1);
  scr_print(A_LABEL, f.rij, K_KOP, "%s", txt(*f.label));
  const uint8_t* map = adv_rec.*f.map;
  const std::string tekst = bit_vol(map, 32) || bit_alle_filialen(map)
                                ? std::string(txt(T_ADV_ALLE))
                                : pg_show('F', map, restbreedte(f.kolom));
  scr_print(A_WAARDE, f.rij, f.kolom, "%s", tekst);
}

void toon_antwoord(int i) {
  const int rij = RIJ_ADVIEZEN + 1 + i;
  const Antwoord& a = ANTWOORDEN[i];
  scr_clreol(rij, 1);
  scr_print(A_LABEL, rij, K_KOP, "%-41s: ", txt(*a.tekst));
  scr_print(A_WAARDE, rij, K_WAARDE, "%s", txt(adv_rec.*a.veld != 0 ? T_ADV_JA : T_ADV_NEE));
}

/// The default of a sales range means no limit too.
bool vrk_open() { return adv_rec.vrk_tm >= MAXIMUM || adv_rec.vrk_tm == VRK_DEFAULT; }

std::string hoogste(int32_t waarde, bool open) {
  return open ? std::string(txt(T_ADV_MAXIMUM)) : str_format("%-5ld", waarde);
}

void toon_bereik(int rij, int32_t van, int32_t tm, bool open) {
  scr_print(A_LABEL, rij, K_VANAF, "%s", txt(T_ADV_VANAF));
  scr_print(A_WAARDE, rij, K_VAN, "%-5ld", van);
  scr_print(A_LABEL, rij, K_TM_WOORD, "%s", txt(T_ADV_TM));
  scr_print(A_WAARDE, rij, K_TM, "%-8s", hoogste(tm, open));
}

void toon_aantallen() {
  toon_bereik(RIJ_VOORRAAD + 2, adv_rec.vrd_van, adv_rec.vrd_tm, adv_rec.vrd_tm >= MAXIMUM);
}

/// Sales kinds 'A' and 'P' between the record and the operator's own letters; '?' when unknown.
char soort_letter(char letter, bool naar_scherm) {
  const char* eigen = "AP";
  const char* ander = txt(T_ADV_LETTERS);
  const char* van = naar_scherm ? eigen : ander;
  const char* naar = naar_scherm ? ander : eigen;
  for (int i = 0; i < 2 && van[i] != 0 && naar[i] != 0; ++i) {
    if (van[i] == letter) return naar[i];
  }
  return '?';
}

void toon_verkoop() {
  const int rij = RIJ_VOORRAAD + 4;
  scr_clreol(rij, 1);
  scr_print(A_LABEL, rij, K_KOP, "%s", txt(T_ADV_SOORT));
  scr_print(A_WAARDE, rij, K_SOORT, "%c", soort_letter(adv_rec.vrk_soort, true));
  toon_bereik(rij, adv_rec.vrk_van, adv_rec.vrk_tm, vrk_open());
}

void toon_voorraad() {
  kopregel(RIJ_VOORRAAD, 4, T_ADV_VOORRAAD);
  toon_filialen(GETEST);
  scr_clreol(RIJ_VOORRAAD + 2, 1);
  scr_print(A_LABEL, RIJ_VOORRAAD + 2, K_KOP, "%s", txt(T_ADV_AANTALLEN));
  toon_aantallen();
  scr_clreol(RIJ_VOORRAAD + 3, 1);
  scr_print(A_LABEL, RIJ_VOORRAAD + 3, K_KOP, "%s", txt(T_ADV_DAGEN));
  scr_print(A_WAARDE, RIJ_VOORRAAD + 3, K_FILIALEN, "%3u", adv_rec.vrk_dagen);
  toon_verkoop();
}

void toon(int slot) {
  scr_clrbot(2, 1);
  kopregel(RIJ_OPDRACHT, 1, T_ADV_OPDRACHT);
  toon_opdracht();
  kopregel(RIJ_BEREKENEN, 2, T_ADV_BEREKENEN);
  toon_filialen(VANUIT);
  toon_filialen(AANVUL);
  kopregel(RIJ_ADVIEZEN, 3, T_ADV_ADVIEZEN);
  for (int i = 0; i < static_cast<int>(std::size(ANTWOORDEN)); ++i) toon_antwoord(i);
  if (slot == ADV_MUTATIES) toon_voorraad();
}

// Entry: false when the operator left -------------------------------------------------------------

void voer_opdracht_in() {
  TrMenu* menu = tr_menu_new(TR_BOX, RIJ_OPDRACHT + 1, K_KOP, 0, nullptr);
  tr_menu_add(menu, -1, txt(T_ADV_O_ZONDER), 1, TR_AAN, 0, nullptr);
  tr_menu_add(menu, -1, txt(T_ADV_O_MET), 2, TR_AAN, 0, nullptr);
  tr_menu_add(menu, -1, txt(T_ADV_O_ALLE), 3, TR_AAN, 0, nullptr);
  const int keuze = tr_menu_run(menu, std::max(1, optie_opdracht()));
  tr_menu_free(menu);
  if (keuze >= 1) {
    adv_rec.zonder_opdracht = (keuze & 1) != 0;
    adv_rec.met_opdracht = (keuze & 2) != 0;
  }
  toon_opdracht();
}

bool voer_filialen_in(const Filialenlijst& f) {
  uint8_t map[32];
  memcpy(map, adv_rec.*f.map, sizeof map);
  if (bit_vol(map, 32) || bit_alle_filialen(map)) memset(map, 0, sizeof map);
  scr_clreol(promptrij(), 1);
  scr_print(A_LABEL, promptrij(), 1, "%s", txt(T_ADV_HINT_FILIALEN));
  scr_clreol(f.rij, f.kolom);
  key_allow(K_CANCEL);
  key_allow(K_F5);
  pg_field(f.rij, f.kolom, str_format("%ds", restbreedte(f.kolom)).c_str(), map);
  const bool weg = weg_toets();
  scr_clreol(promptrij(), 1);
  if (!weg) {
    if (bit_leeg(map, 32)) memset(map, 0xFF, sizeof map);
    memcpy(adv_rec.*f.map, map, sizeof map);
  }
  toon_filialen(f);
  return !weg;
}

void voer_berekenen_in() {
  adv_rec.bron_soort = 3;
  if (voer_filialen_in(VANUIT)) voer_filialen_in(AANVUL);
}

void voer_antwoorden_in() {
  for (int i = 0; i < static_cast<int>(std::size(ANTWOORDEN)); ++i) {
    uint8_t& antwoord = adv_rec.*ANTWOORDEN[i].veld;
    scr_clreol(RIJ_ADVIEZEN + 1 + i, K_WAARDE);
    INGAVE(RIJ_ADVIEZEN + 1 + i, K_WAARDE, "b,E", &K_CANCEL, &antwoord);
    toon_antwoord(i);
    if (weg_toets()) return;
  }
}

bool voer_aantallen_in() {
  const int rij = RIJ_VOORRAAD + 2;
  int32_t van = std::clamp(adv_rec.vrd_van, 0, MAXIMUM);
  int32_t tm = std::clamp(adv_rec.vrd_tm, 0, MAXIMUM);
  INGAVE(rij, K_VAN, "5l,EZP", &K_CANCEL, &van);
  if (!weg_toets()) {
    scr_ctx->ing->min = van;
    scr_ctx->ing->max = MAXIMUM;
    scr_clreol(rij, K_TM);
    INGAVE(rij, K_TM, tm == MAXIMUM ? "5l,IZP" : "5l,ZP", &K_CANCEL, &tm);
    if (!weg_toets()) {
      adv_rec.vrd_van = van;
      adv_rec.vrd_tm = (scr_ctx->ing_result & ING_LEEG) != 0 ? MAXIMUM : tm;
    }
  }
  const bool weg = weg_toets();
  toon_aantallen();
  return !weg;
}

bool voer_dagen_in() {
  int16_t dagen = static_cast<int16_t>(std::min<uint16_t>(adv_rec.vrk_dagen, DAGEN_MAX));
  scr_ctx->ing->max = DAGEN_MAX;
  INGAVE(RIJ_VOORRAAD + 3, K_FILIALEN, "3d,EP", &K_CANCEL, &dagen);
  if (weg_toets()) return false;
  adv_rec.vrk_dagen = static_cast<uint16_t>(dagen);
  return true;
}

/// Another kind of sales figure begins with a range of its own.
bool voer_soort_in() {
  const int rij = RIJ_VOORRAAD + 4;
  const char* letters = txt(T_ADV_LETTERS);
  char c = soort_letter(adv_rec.vrk_soort, true);
  INGAVE(rij, K_SOORT, str_format("c[%.2s],EU", letters).c_str(), &K_CANCEL, &c);
  if (weg_toets()) return false;
  const char soort = soort_letter(c, false);
  if (soort != adv_rec.vrk_soort) {
    adv_rec.vrk_soort = soort;
    adv_rec.vrk_van = 0;
    adv_rec.vrk_tm = soort == 'P' ? PCT_ALLE : MAXIMUM;
    if (soort == 'P') scr_print(A_WAARDE, rij, K_TM, "    ");
    toon_verkoop();
  }
  return true;
}

/// Both ends of the sales range; the fields hold 16 bits, so they are entered beside the record.
bool voer_verkoop_in() {
  const int rij = RIJ_VOORRAAD + 4;
  const bool pct = adv_rec.vrk_soort == 'P';
  const char* formaat = pct ? "3d,EZP" : "4d,EZP";
  const int32_t grens = pct ? PCT_ALLE : 9999;
  const bool open = !pct && vrk_open();
  auto van = static_cast<int16_t>(std::clamp(adv_rec.vrk_van, 0, grens));
  auto tm = static_cast<int16_t>(open ? 0 : std::clamp(adv_rec.vrk_tm, 0, grens));
  scr_ctx->ing->max = grens;
  INGAVE(rij, K_VAN, formaat, &K_CANCEL, &van);
  if (weg_toets()) return false;
  scr_clreol(rij, K_TM);
  scr_ctx->ing->min = van;
  scr_ctx->ing->max = grens;
  // No entry means no limit, so the end of a quantity may stay empty.
  INGAVE(rij, K_TM, pct ? formaat : open ? "4d,IZP" : "4d,ZP", &K_CANCEL, &tm);
  if (weg_toets()) return false;
  adv_rec.vrk_van = van;
  adv_rec.vrk_tm = !pct && (scr_ctx->ing_result & ING_LEEG) != 0 ? MAXIMUM : tm;
  return true;
}

void voer_voorraad_in() {
  const bool alles = voer_filialen_in(GETEST) && voer_aantallen_in() && voer_dagen_in() &&
                     voer_soort_in() && voer_verkoop_in();
  static_cast<void>(alles);  // leaving any of them ends the block
  toon_voorraad();
}

}  // namespace

void adv_scherm(int slot) {
  if (scr_ctx == nullptr) return;
  toon(slot);
  const char* formaat = slot == ADV_MUTATIES ? "1c[1234],IEA" : "1c[123],IEA";
  for (;;) {
    char keuze = 0;
    const int rij = promptrij();
    scr_clreol(rij, 1);
    scr_print(A_LABEL, rij, 1, "%s", txt(T_ADV_UW_KEUZE));
    INGAVE(rij, 10, formaat, &K_CANCEL, &keuze);
    if (weg_toets()) break;
    switch (keuze) {
      case '1':
        voer_opdracht_in();
        break;
      case '2':
        voer_berekenen_in();
        break;
      case '3':
        voer_antwoorden_in();
        break;
      case '4':
        voer_voorraad_in();
        break;
      default:
        break;
    }
  }
  scr_clreol(promptrij(), 1);
}
