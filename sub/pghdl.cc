// Sets of branches as text and back, the field that edits them, the field for one branch.
//
// A set whose bytes are all 255 means all branches, those of the future too. A set read from text
// holds branches that exist only; when it holds them all it becomes that full set.
#include "sub/pghdl.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "isam/base.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/bitarr.h"
#include "sub/pghdl_intern.h"
#include "sub/records.h"
#include "sub/teksten.h"

namespace {

constexpr const char* TEKENS = "[0123456789-.,]";
constexpr size_t VELD = 255;  // characters that the field holds
constexpr std::string_view SCHEIDING = ".,";

std::string tekst_van(const uint8_t* set, int lengte) {
  const int grens = pg_grens(lengte);
  std::string uit;
  for (int n = 0; n < grens; ++n) {
    if (!bit_test(set, n)) continue;
    const int eerste = n;
    while (n + 1 < grens && bit_test(set, n + 1)) ++n;
    if (!uit.empty()) uit += ',';
    uit += str_format("%d", eerste);
    if (n > eerste) uit += str_format("-%d", n);
  }
  return uit;
}

/// A text being read. A refusal leaves its message.
struct Ontleding {
  std::string_view rest;
  int grens;
  std::string fout;

  bool weiger(std::string_view wat, const Tekst& waarom) {
    fout = str_format("<%s> %s", wat, txt(waarom));
    return false;
  }
  bool weiger(int nummer, const Tekst& waarom) { return weiger(std::to_string(nummer), waarom); }
  std::string_view teken() const { return rest.substr(0, 1); }
  bool cijfer() const { return !rest.empty() && rest.front() >= '0' && rest.front() <= '9'; }

  /// A number is refused as soon as it reaches the limit.
  bool getal(int* nummer) {
    if (!cijfer()) return weiger(teken(), T_PG_CIJFER);
    *nummer = 0;
    do {
      *nummer = *nummer * 10 + (rest.front() - '0');
      if (*nummer >= grens) return weiger(*nummer, T_PG_FILIAAL);
      rest.remove_prefix(1);
    } while (cijfer());
    return true;
  }

  bool stuk(uint8_t* set) {
    int eerste = 0;
    if (!getal(&eerste)) return false;
    int laatste = eerste;
    if (teken() == "-") {
      rest.remove_prefix(1);
      if (!getal(&laatste)) return false;
      if (laatste < eerste) return weiger(str_format("%d-%d", eerste, laatste), T_PG_REEKS);
    }
    for (int n = eerste; n <= laatste; ++n) {
      if (bit_test(set, n)) return weiger(n, T_PG_REEDS);
      bit_zet(set, n);
    }
    if (rest.empty()) return true;
    if (SCHEIDING.find(rest.front()) == std::string_view::npos) {
      return weiger(teken(), T_PG_INGAVE);
    }
    rest.remove_prefix(1);
    return true;
  }
};

bool van_tekst(const char* tekst, uint8_t* set, int lengte) {
  const std::string fout = pg_ontleed(tekst, set, lengte);
  if (!fout.empty()) scr_error("%s", fout);
  return fout.empty();
}

/// "60s,I" becomes "255.60C[0123456789-.,],I": a field of 60 columns over 255 characters.
std::string veld_formaat(std::string_view formaat) {
  const size_t letter = formaat.find('s');
  if (letter == std::string_view::npos) return std::string(formaat);
  std::string uit = "255." + std::string(formaat.substr(0, letter)) + "C";
  const std::string_view rest = formaat.substr(letter + 1);
  if (!rest.starts_with('[')) uit += TEKENS;
  return uit + std::string(rest);
}

/// The text as the field shows it. Very long ones are cut behind a whole item.
std::string veld_begin(const uint8_t* set, int lengte) {
  std::string tekst = tekst_van(set, lengte);
  if (tekst.size() > VELD) tekst.resize(tekst.rfind(',', VELD));
  return tekst;
}

bool alle_bestaande(const uint8_t* set, int lengte) {
  const int grens = pg_grens(lengte);
  for (int n = 0; n < grens; ++n) {
    if (!bit_test(set, n)) return false;
  }
  return grens > 0;
}

/// The field itself, until what stands in it is a set or the operator leaves.
void lees_set(int row, int col, const char* formaat, uint8_t* set, int lengte) {
  const std::unique_ptr<IngRec, decltype(&ing_free)> toetsen(ing_new(), ing_free);
  const std::string veld = veld_formaat(formaat);
  const std::string begin = veld_begin(set, lengte);
  char tekst[VELD + 1] = "";
  veld_zet(tekst, VELD, begin);
  for (;;) {
    ing_restore(toetsen.get());
    INGAVE(row, col, veld.c_str(), tekst);
    if (weg_toets()) return;
    if (scr_ctx->last_key == K_F5) {
      uint8_t gekozen[32];
      if (!pg_list(gekozen)) continue;
      std::copy_n(gekozen, lengte, set);
      veld_zet(tekst, VELD, veld_begin(set, lengte));
      pg_toon_veld(row, col, formaat, tekst);
      scr_ctx->last_key = 0;
      scr_ctx->ing_result = 0;
      return;
    }
    // An untouched field keeps the set: its text may have been too long to show whole.
    const std::string getypt = veld_tekst(tekst, VELD);
    if (!begin.empty() && getypt == begin) return;
    if (van_tekst(getypt.c_str(), set, lengte)) return;
  }
}

bool veld(int row, int col, const char* formaat, uint8_t* set, int lengte) {
  uint8_t oud[32];
  std::copy_n(set, lengte, oud);
  lees_set(row, col, formaat, set, lengte);
  if (std::all_of(set, set + lengte, [](uint8_t b) { return b == 0; })) {
    scr_ctx->ing_result |= ING_LEEG;
  }
  if (alle_bestaande(set, lengte)) std::fill_n(set, lengte, uint8_t{255});
  return !std::equal(oud, oud + lengte, set);
}

/// A field is empty on 0, which would mean all: branch 0 stands there until a key begins the field,
/// and Enter keeps it.
bool nul_blijft(int row, int col) {
  scr_print(A_WAARDE, row, col, "0");
  scr_move(row, col);
  scr_busy_off();
  const int toets = key_read(nullptr);
  scr_busy_on();
  scr_ctx->last_key = toets;
  if (toets == TOETS_ENTER) return true;
  key_push(toets);
  return false;
}

}  // namespace

int pg_grens(int lengte) { return std::min({filialen(), FILIALEN_MAX, lengte * 8}); }

std::string pg_ontleed(const char* tekst, uint8_t* set, int lengte) {
  Ontleding o{tekst, pg_grens(lengte), {}};
  while (!o.rest.empty() && o.rest.back() == ' ') o.rest.remove_suffix(1);
  uint8_t nieuw[32] = {};
  while (!o.rest.empty()) {
    if (!o.stuk(nieuw)) return o.fout;
  }
  std::copy_n(nieuw, lengte, set);
  return {};
}

void pg_toon_veld(int row, int col, const char* formaat, const char* tekst) {
  const int breedte = std::max(std::atoi(formaat), 1);
  scr_print(A_WAARDE, row, col, "%-*.*s", breedte, breedte, tekst);
}

void pg_to_text(const uint8_t* set, char* tekst) {
  const std::string uit = tekst_van(set, 32);
  std::memcpy(tekst, uit.c_str(), uit.size() + 1);
}
bool pg_from_text(const char* tekst, uint8_t* set) { return van_tekst(tekst, set, 32); }
bool pg_field(int row, int col, const char* formaat, uint8_t* set) {
  return veld(row, col, formaat, set, 32);
}

void pg_to_text13(const uint8_t* set, char* tekst) {
  const std::string uit = tekst_van(set, 13);
  std::memcpy(tekst, uit.c_str(), uit.size() + 1);
}
bool pg_from_text13(const char* tekst, uint8_t* set) { return van_tekst(tekst, set, 13); }
bool pg_field13(int row, int col, const char* formaat, uint8_t* set) {
  return veld(row, col, formaat, set, 13);
}

std::string pg_show(char code, const uint8_t* set, int breedte) {
  static std::string rest;
  if (code == 'F') rest = tekst_van(set, 32);
  const auto ruimte = static_cast<size_t>(std::max(breedte, 1));
  if (rest.size() <= ruimte) return std::exchange(rest, {});
  // The mark takes the place of the separator that the text is cut at, or the last one.
  const size_t scheiding = rest.find_last_of(SCHEIDING, ruimte - 1);
  const bool heel = scheiding != std::string::npos;
  const size_t eind = heel ? scheiding : ruimte - 1;
  std::string stuk = rest.substr(0, eind) + ">";
  rest.erase(0, heel ? eind + 1 : std::max<size_t>(eind, 1));
  return stuk;
}

bool pg_is_all(const uint8_t* set) { return bit_vol(set, 32); }
void pg_clear(uint8_t* set) { std::fill_n(set, 32, uint8_t{0}); }
void pg_fill(uint8_t* set) { std::fill_n(set, 32, uint8_t{255}); }
bool pg_test(const uint8_t* set, int n) { return n >= 0 && n < 256 && bit_test(set, n); }
void pg_add(uint8_t* set, int n) {
  if (n >= 0 && n < 256) bit_zet(set, n);
}
void pg_remove(uint8_t* set, int n) {
  if (n >= 0 && n < 256) bit_wis(set, n);
}

bool fil_field(int row, int col, const char* formaat, uint8_t* filiaal) {
  const bool heel = *formaat >= '0' && *formaat <= '9';
  const std::string veld =
      heel ? formaat : str_format("%dU,%s", fil_digits(false), std::string_view(formaat));
  if (scr_ctx->ing->min > scr_ctx->ing->max) {
    scr_ctx->ing->min = 0;
    scr_ctx->ing->max = std::max(filialen() - 1, 0);
  }
  return INGAVE(row, col, veld.c_str(), filiaal);
}

bool fil_of_alle(int row, int col, uint8_t* filiaal) {
  const bool alle = *filiaal >= filialen();
  if (!alle && *filiaal == 0 && nul_blijft(row, col)) return true;
  uint8_t nummer = alle ? uint8_t{0} : *filiaal;
  key_allow(K_CANCEL);
  fil_field(row, col, alle ? "IZP" : "ZP", &nummer);
  if (weg_toets()) return false;
  const bool leeg = (scr_ctx->ing_result & ING_LEEG) != 0;
  *filiaal = leeg ? static_cast<uint8_t>(filialen()) : nummer;
  return true;
}

int fil_digits(bool lijst) {
  const int grens = filialen();
  if (grens < 11 && sys_rec1.nummering != 2) return 1;
  return grens > 100 && !lijst ? 3 : 2;
}

int fil_column_attr(int n) {
  const int grens = filialen();
  if (grens < 2 || n % 5 != 4 || n >= grens - 2) return A_LABEL;
  return scr_kleuren() ? A_BALK : A_STREEP;
}
