// Parser and limits of the field formats; see the header for the language.
#include "scr/veld_formaat.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdlib>

#include "isam/base.h"

namespace {

constexpr std::string_view LETTERS = "ldunUfBDbcCsSxX";
constexpr std::string_view MET_PRECISIE = "fCSX";

bool cijfer(char c) { return c >= '0' && c <= '9'; }

/// Digits at the front, held at 9999 so that no format can overflow it.
int neem_getal(std::string_view& rest) {
  int waarde = 0;
  while (!rest.empty() && cijfer(rest.front())) {
    waarde = std::min(waarde * 10 + (rest.front() - '0'), 9999);
    rest.remove_prefix(1);
  }
  return waarde;
}

void voeg_optie(VeldFormaat& f, char o) {
  const size_t n = std::string_view(f.opties).size();
  if (n < VELD_OPTIES) f.opties[n] = o;
}

/// Lengths and options that follow from the letter.
void vul_aan(VeldFormaat& f, int geld) {
  if (f.letter == 'B') f.precisie = geld;
  if (f.letter == 'b') f.lengte = 1;
  if (f.letter == 'D' && f.lengte != 8 && f.lengte != 10) f.lengte = 6;
  const auto erbij = [&f](char o) {
    if (!f.optie(o)) voeg_optie(f, o);
  };
  if (f.numeriek() && !f.optie('N') && !f.optie('Z') && !f.optie('P')) {
    for (const char o : {'N', 'Z', 'P'}) erbij(o);
  }
  if (f.letter == 'x' || f.letter == 'X') erbij('U');
  if (f.letter == 'b') {
    erbij('U');
    erbij('E');
  }
}

VeldFout neem_reeks(std::string_view& rest, VeldFormaat& f) {
  if (rest.empty() || rest.front() != '[') return VeldFout::geen;
  const size_t eind = rest.find(']');
  if (eind == std::string_view::npos) return VeldFout::haak;
  f.tekens = rest.substr(1, eind - 1);
  f.reeks = true;
  if (!f.tekens.empty() && f.tekens.front() == '^') {
    f.reeks_niet = true;
    f.tekens.remove_prefix(1);
  }
  rest.remove_prefix(eind + 1);
  return VeldFout::geen;
}

/// A text of `vul` as long as the field with the point in its place, ended by `laatste`.
void voorbeeld(char (&uit)[VELD_MAX + 1], const VeldFormaat& f, char vul, char laatste) {
  std::fill_n(uit, f.lengte, vul);
  uit[f.lengte - 1] = laatste;
  uit[f.lengte] = '\0';
  const int punt = f.lengte - f.precisie - 1;
  if (f.precisie > 0 && punt >= 0) uit[punt] = '.';
}

VeldGrenzen grenzen_van_letter(char letter, int geld) {
  switch (letter) {
    case 'l':
      return {-2147483647.0, 2147483647.0};
    case 'd':
      return {-32768.0, 32767.0};
    case 'u':
      return {0.0, 65535.0};
    case 'n':
      return {-128.0, 127.0};
    case 'U':
      return {0.0, 255.0};
    case 'B': {
      const double deel = geld == 2 ? 100.0 : 1.0;
      return {-2147483647.0 / deel, 2147483647.0 / deel};
    }
    default:
      return {-DBL_MAX, DBL_MAX};
  }
}

void zet(VeldTekens bits, int code, bool aan) {
  uint8_t& byte = bits[static_cast<size_t>(code) / 8];
  const auto bit = static_cast<uint8_t>(1u << (code % 8));
  byte = static_cast<uint8_t>(aan ? byte | bit : byte & ~bit);
}

void zet_alle(VeldTekens bits, std::string_view tekens, bool aan) {
  for (const char c : tekens) zet(bits, static_cast<unsigned char>(c), aan);
}

}  // namespace

VeldFout veld_ontleed(std::string_view rest, int geld, VeldFormaat& uit) {
  uit = VeldFormaat{};
  while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
  while (!rest.empty() && rest.back() == ' ') rest.remove_suffix(1);
  uit.lengte = std::max(neem_getal(rest), 1);
  if (uit.lengte > VELD_MAX) return VeldFout::lengte;
  bool precisie = false;
  if (!rest.empty() && rest.front() == '.') {
    precisie = true;
    rest.remove_prefix(1);
    uit.precisie = std::min(neem_getal(rest), VELD_MAX);
  }
  if (rest.empty() || LETTERS.find(rest.front()) == std::string_view::npos)
    return VeldFout::vartype;
  uit.letter = rest.front();
  rest.remove_prefix(1);
  if (precisie && MET_PRECISIE.find(uit.letter) == std::string_view::npos)
    return VeldFout::precisie;
  if (const VeldFout fout = neem_reeks(rest, uit); fout != VeldFout::geen) return fout;
  if (!rest.empty() && rest.front() == ',') rest.remove_prefix(1);
  // Only letters with a meaning are kept, so that an unknown one never crowds out a known one.
  for (const char o : rest) {
    if (std::string_view("EFIAUJSNZP").find(o) != std::string_view::npos && !uit.optie(o))
      voeg_optie(uit, o);
  }
  vul_aan(uit, geld);
  return VeldFout::geen;
}

VeldGrenzen veld_grenzen(const VeldFormaat& f, int geld) {
  if (f.letter == 'D') {
    const bool lang = f.lengte == 10;
    return {static_cast<double>(date_number(lang ? "01011900" : "010180")),
            static_cast<double>(date_number(lang ? "31122078" : "311250"))};
  }
  VeldGrenzen g = grenzen_van_letter(f.letter, geld);
  char tekst[VELD_MAX + 1];
  voorbeeld(tekst, f, '9', '9');
  g.max = std::min(g.max, strtod(tekst, nullptr));
  tekst[0] = '-';
  g.min = std::max(g.min, f.lengte >= 2 ? strtod(tekst, nullptr) : 0.0);
  if (!f.optie('N')) g.min = 0.0;
  if (!f.optie('P')) g.max = 0.0;
  if (!f.optie('Z')) {
    voorbeeld(tekst, f, '0', '1');
    const double stap = strtod(tekst, nullptr);
    if (!f.optie('N')) g.min = stap;
    if (!f.optie('P')) g.max = -stap;
  }
  return g;
}

bool veld_bereik(const VeldFormaat& f, const VeldGrenzen& grenzen, double& min, double& max) {
  if (f.letter == 'D' && min == 0.0 && max == 0.0) return true;
  if (min <= max) {
    min = std::max(min, grenzen.min);
    max = std::min(max, grenzen.max);
    return min <= max;
  }
  if (min == 0.0) min = grenzen.min;
  max = grenzen.max;
  return true;
}

void veld_tekens(const VeldFormaat& f, char ja, char nee, VeldTekens toegestaan) {
  switch (f.letter) {
    case 'b':
      for (const char c : {ja, nee, '+', '-'}) zet(toegestaan, static_cast<unsigned char>(c), true);
      break;
    case 'c':
    case 'C':
    case 's':
    case 'S':
      for (int code = 32; code <= 254; ++code) zet(toegestaan, code, true);
      break;
    case 'x':
    case 'X':
      zet_alle(toegestaan, "0123456789ABCDEF", true);
      break;
    default:
      zet_alle(toegestaan, "0123456789", true);
      if ((f.letter == 'f' || f.letter == 'B') && f.precisie > 0) zet_alle(toegestaan, ".,", true);
  }
  if (!f.reeks) return;
  if (!f.reeks_niet) {
    for (int code = 32; code <= 254; ++code) zet(toegestaan, code, false);
  }
  zet_alle(toegestaan, f.tekens, !f.reeks_niet);
}
