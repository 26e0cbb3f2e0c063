// What a field tells about itself (F1), and the small window that composes a character (F11).
#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "scr/veld_intern.h"

namespace {

// Compose -----------------------------------------------------------------------------------------

struct Samenstelling {
  char tekst[4];
  uint8_t code;
};
constexpr Samenstelling SAMENSTELLINGEN[] = {
    {"C,", 128},  {"u\"", 129}, {"e'", 130},  {"a^", 131},  {"a\"", 132}, {"a`", 133},
    {"ao", 134},  {"c,", 135},  {"e^", 136},  {"e\"", 137}, {"e`", 138},  {"i\"", 139},
    {"i^", 140},  {"i`", 141},  {"A\"", 142}, {"Ao", 143},  {"E'", 144},  {"ae", 145},
    {"AE", 146},  {"o^", 147},  {"o\"", 148}, {"o`", 149},  {"u^", 150},  {"u`", 151},
    {"y\"", 152}, {"O\"", 153}, {"U\"", 154}, {"o/", 155},  {"O/", 157},  {"\\/", 158},
    {"a'", 160},  {"i'", 161},  {"o'", 162},  {"u'", 163},  {"n~", 164},  {"N~", 165},
    {"a_", 166},  {"o_", 167},  {"ro", 169},  {"1/2", 171}, {"1/4", 172}, {"<<", 174},
    {">>", 175},  {"A'", 181},  {"A^", 182},  {"A`", 183},  {"co", 184},  {"c/", 189},
    {"Y=", 190},  {"a~", 198},  {"A~", 199},  {"D-", 209},  {"E^", 210},  {"E\"", 211},
    {"E`", 212},  {"I'", 214},  {"I^", 215},  {"I\"", 216}, {"I`", 222},  {"O'", 224},
    {"ss", 225},  {"O^", 226},  {"O`", 227},  {"o~", 228},  {"O~", 229},  {"u,", 230},
    {"U'", 233},  {"U^", 234},  {"U`", 235},  {"y'", 236},  {"Y'", 237},  {"+-", 241},
    {"3/4", 243}, {"SS", 245},  {":-", 246},  {"gr", 248},
};
static_assert(std::size(SAMENSTELLINGEN) == 76);

constexpr size_t SAMENSTEL_MAX = 4;

/// A line of at most four characters in the current window; empty when it is given up.
std::string lees_regeltje() {
  std::string regel;
  for (;;) {
    scr_print_tekst(A_WAARDE, 1, 1, str_format("%-4s", regel).c_str());
    scr_move(1, std::min(static_cast<int>(regel.size()) + 1, static_cast<int>(SAMENSTEL_MAX)));
    const int toets = veld_lees_toets();
    if (toets == TOETS_ENTER) return regel;
    if (toets == TOETS_ESC || toets == TOETS_CANCEL) return {};
    if ((toets == TOETS_BACK || toets == 8) && !regel.empty()) {
      regel.pop_back();
    } else if (toets >= 32 && toets <= 255 && regel.size() < SAMENSTEL_MAX) {
      regel += static_cast<char>(toets);
    } else {
      scr_beep();
    }
  }
}

// Help --------------------------------------------------------------------------------------------

bool is_tekst(char letter) {
  return std::string_view("cCsS").find(letter) != std::string_view::npos;
}

const char* soort_ingave() {
  const char letter = veld_werk.formaat.letter;
  if (is_tekst(letter)) return txt(T_HULP_TEKST);
  switch (letter) {
    case 'D':
      return txt(T_HULP_DATUM);
    case 'B':
      return txt(T_HULP_BEDRAG);
    case 'b':
      return txt(T_HULP_JA_NEE);
    case 'x':
    case 'X':
      return txt(T_HULP_HEXA);
    default:
      return txt(T_HULP_GETAL);
  }
}

void regel_soort() {
  std::string voor = txt(T_HULP_ER_WORDT);
  if (veld_werk.formaat.letter != 'b') voor = voor + " " + txt(T_HULP_VAN_EEN);
  int kolom = 2;
  kolom += scr_print(A_LABEL, 2, kolom, "%s", voor);
  kolom += scr_print(A_WAARDE, 2, kolom, " %s ", soort_ingave());
  scr_print(A_LABEL, 2, kolom, "%s", txt(T_HULP_VERWACHT));
}

void regel_lengte() {
  const VeldFormaat& f = veld_werk.formaat;
  std::string regel = str_format("%s %d %s", txt(f.optie('E') ? T_HULP_U_MOET : T_HULP_U_MAG),
                                 f.lengte, txt(T_HULP_POSITIES));
  if (f.numeriek() && f.precisie > 0) {
    regel += str_format(", %s ", txt(T_HULP_WAARVAN));
    regel += str_format("%d %s", f.precisie, txt(T_HULP_CIJFERS_KOMMA));
  }
  if (f.letter == 'D') regel += txt(T_HULP_DATUMVORM);
  scr_print_tekst(A_LABEL, 3, 2, regel.c_str());
}

std::string toegestane_tekens() {
  const VeldFormaat& f = veld_werk.formaat;
  if (!f.reeks) {
    if (is_tekst(f.letter)) return txt(T_HULP_ALLE_TEKENS);
    if (f.letter == 'x' || f.letter == 'X') return txt(T_HULP_HEXA_TEKENS);
    return txt(f.letter == 'b' ? T_HULP_JA_OF_NEE_LETTERS : T_HULP_ALLE_CIJFERS);
  }
  std::string uit;
  for (const char c : f.tekens) {
    if (!uit.empty()) uit += ' ';
    uit += c;
  }
  if (f.reeks_niet) uit = uit + " " + txt(T_HULP_NIET);
  return uit;
}

void voeg_bij(std::string& lijst, std::string_view naam) {
  if (!lijst.empty()) lijst += ", ";
  lijst += naam;
}

std::string bijzondere_toetsen() {
  const struct {
    int toets;
    const Tekst& naam;
  } rijen[] = {
      {K_UP, T_TOETS_OMHOOG}, {K_DOWN, T_TOETS_OMLAAG},   {K_PGUP, T_TOETS_PGUP},
      {K_PGDN, T_TOETS_PGDN}, {K_TAB, T_TOETS_TAB},       {K_BTAB, T_TOETS_BTAB},
      {K_HELP, T_TOETS_HELP}, {K_CANCEL, T_TOETS_CANCEL},
  };
  std::string lijst;
  for (const auto& rij : rijen) {
    if (key_allowed(rij.toets)) voeg_bij(lijst, txt(rij.naam));
  }
  return lijst;
}

std::string functietoetsen() {
  std::string lijst;
  for (int n = 1; n <= 12; ++n) {
    if (key_allowed(TOETS_F1 + n - 1)) voeg_bij(lijst, str_format("F%d", n));
  }
  return lijst;
}

void regels_toetsen() {
  const std::string bijzonder = bijzondere_toetsen();
  const std::string functies = functietoetsen();
  if (bijzonder.empty() && functies.empty()) return;
  scr_print_tekst(A_LABEL, 7, 2, txt(T_HULP_FUNCTIETOETSEN));
  scr_print_tekst(A_LABEL, 8, 2, bijzonder.c_str());
  scr_print_tekst(A_LABEL, 9, 2, functies.c_str());
}

void regel_bereik() {
  const VeldFormaat& f = veld_werk.formaat;
  if (!f.numeriek()) return;
  const IngRec& ing = *scr_ctx->ing;
  scr_print(A_LABEL, 10, 2, "%s %.*f %s %.*f", txt(T_HULP_BEREIK), f.precisie, ing.min, txt(T_TM),
            f.precisie, ing.max);
}

void wacht_op_enter() {
  const int breedte = scr_print(A_LABEL, 12, 2, "%s _", txt(T_ENTER_VERVOLG));
  for (;;) {
    scr_move(12, 1 + breedte);
    const int toets = veld_lees_toets();
    scr_error("");
    if (toets == TOETS_ENTER) return;
    scr_error("%s", txt(T_ONGELDIGE_INGAVE));
  }
}

}  // namespace

int compose_code(std::string_view tekst) {
  if (tekst.empty()) return 0;
  if (std::all_of(tekst.begin(), tekst.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    return atoi(std::string(tekst).c_str());
  }
  for (const Samenstelling& s : SAMENSTELLINGEN) {
    if (tekst == s.tekst) return s.code;
  }
  return 0;
}

int veld_samenstel() {
  int rij = 1;
  int kolom = 1;
  win_hoek(&rij, &kolom);
  rij = std::clamp(rij + scr_ctx->veld.row - 1, 1, std::max(scr_ctx->lines - 2, 1));
  kolom = std::clamp(kolom + scr_ctx->veld.col - 1, 1, std::max(scr_ctx->cols - 5, 1));
  const Venster venster(rij, kolom, 3, 6, 2);
  win_title(nullptr);
  return compose_code(lees_regeltje());
}

void veld_hulpscherm() {
  const Venster venster(9, 5, 14, 70, 4);
  win_title(" %s ", txt(T_HULP_TITEL));
  regel_soort();
  regel_lengte();
  scr_print(A_LABEL, 5, 2, "%s %s", toegestane_tekens(), txt(T_HULP_TOEGESTAAN));
  regels_toetsen();
  regel_bereik();
  wacht_op_enter();
}
