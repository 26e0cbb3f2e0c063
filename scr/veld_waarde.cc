// Between the variable of a field and its text, by type. Numbers are rounded half away from zero
// and held inside the variable's own width; characters are written to the last byte of it.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "isam/base.h"
#include "scr/veld_intern.h"

namespace {

/// What the variable of a letter looks like: bytes, and whether the number has a sign.
struct Breedte {
  char letter;
  uint8_t bytes;
  char soort;
  double laag, hoog;
};
constexpr Breedte GETALLEN[] = {
    {'l', 4, 'i', -2147483648.0, 2147483647.0},
    {'B', 4, 'i', -2147483648.0, 2147483647.0},
    {'d', 2, 'i', -32768.0, 32767.0},
    {'u', 2, 'i', 0.0, 65535.0},
    {'D', 2, 'i', 0.0, 65535.0},
    {'n', 1, 'i', -128.0, 127.0},
    {'U', 1, 'i', 0.0, 255.0},
    {'b', 1, 'i', 0.0, 1.0},
    {'f', 8, 'f', 0.0, 0.0},
};

const Breedte* breedte_van(char letter) {
  const auto* rij = std::find_if(std::begin(GETALLEN), std::end(GETALLEN),
                                 [letter](const Breedte& b) { return b.letter == letter; });
  return rij == std::end(GETALLEN) ? nullptr : rij;
}

/// A variable of another width than its letter says would be overrun.
bool variabele_past() {
  const IngArg& v = veld_werk.variabele;
  const Breedte* b = breedte_van(veld_werk.formaat.letter);
  if (b == nullptr) return v.breedte == 1;
  return v.breedte == b->bytes && (b->soort == 'f') == (v.soort == 'f');
}

template <class T>
double haal(const void* adres) {
  T waarde;
  memcpy(&waarde, adres, sizeof waarde);
  return static_cast<double>(waarde);
}

template <class T>
void leg(void* adres, double waarde) {
  const auto v = static_cast<T>(waarde);
  memcpy(adres, &v, sizeof v);
}

/// Hundredths in the variable, units in the field.
double schaal() {
  return veld_werk.formaat.letter == 'B' && scr_ctx->money_decimals == 2 ? 100.0 : 1.0;
}

double lees_getal() {
  const void* adres = veld_werk.variabele.adres;
  switch (veld_werk.formaat.letter) {
    case 'l':
    case 'B':
      return haal<int32_t>(adres) / schaal();
    case 'd':
      return haal<int16_t>(adres);
    case 'u':
    case 'D':
      return haal<uint16_t>(adres);
    case 'n':
      return haal<int8_t>(adres);
    case 'U':
    case 'b':
      return haal<uint8_t>(adres);
    case 'f':
      return haal<double>(adres);
    default:
      return 0.0;
  }
}

void schrijf_getal(const Breedte& b) {
  void* adres = veld_werk.variabele.adres;
  if (b.soort == 'f') {
    leg<double>(adres, veld_werk.waarde);
    return;
  }
  const double v = std::clamp(std::round(veld_werk.waarde * schaal()), b.laag, b.hoog);
  switch (b.letter) {
    case 'l':
    case 'B':
      leg<int32_t>(adres, v);
      break;
    case 'd':
      leg<int16_t>(adres, v);
      break;
    case 'u':
    case 'D':
      leg<uint16_t>(adres, v);
      break;
    case 'n':
      leg<int8_t>(adres, v);
      break;
    default:
      leg<uint8_t>(adres, v);
  }
}

VeldFout lees_tekst() {
  const VeldFormaat& f = veld_werk.formaat;
  const auto lengte = static_cast<size_t>(f.lengte);
  const bool met_eind = f.letter == 's' || f.letter == 'S';
  if (f.optie('I')) return VeldFout::geen;
  const auto* tekst = static_cast<const char*>(veld_werk.variabele.adres);
  const size_t n = strnlen(tekst, met_eind ? lengte + 1 : lengte);
  if (n > lengte) return VeldFout::tekst;
  veld_zet_tekst(std::string_view(tekst, n));
  return VeldFout::geen;
}

void lees_datum() {
  const bool sjabloon = veld_werk.formaat.sjabloon();
  if (veld_werk.waarde != 0.0) key_allow('+');
  if (veld_werk.waarde != 0.0 || sjabloon) key_allow('-');
  const std::string kaal = veld_datum(veld_werk.waarde);
  veld_zet_tekst(sjabloon ? datum_met_streep(kaal) : kaal);
}

}  // namespace

std::string_view veld_inhoud() { return veld_werk.tekst; }

void veld_zet_tekst(std::string_view tekst) {
  const size_t n = std::min(tekst.size(), static_cast<size_t>(VELD_MAX));
  char nieuw[VELD_MAX + 1] = {};  // the text may lie in the work area itself
  if (n > 0) memcpy(nieuw, tekst.data(), n);
  memcpy(veld_werk.tekst, nieuw, sizeof nieuw);
}

std::string veld_getal(double waarde) {
  return str_format("%-*.*f", veld_werk.formaat.lengte, veld_werk.formaat.precisie, waarde);
}

std::string veld_datum(double nummer) {
  if (nummer < 1.0 || nummer > 65535.0) return {};
  char tekst[16];
  date_text(tekst, static_cast<uint16_t>(nummer), veld_werk.formaat.lengte == 10);
  return tekst;
}

std::string datum_met_streep(std::string_view kaal) {
  std::string uit;
  for (size_t i = 0; i < kaal.size(); ++i) {
    if (i == 2 || i == 4) uit += '-';
    uit += kaal[i];
  }
  return uit;
}

std::string datum_zonder_streep(std::string_view tekst) {
  std::string uit(tekst);
  for (const size_t plaats : {size_t{5}, size_t{2}}) {
    if (plaats < uit.size() && uit[plaats] == '-') uit.erase(plaats, 1);
  }
  return uit;
}

VeldFout veld_lees() {
  if (!variabele_past()) return VeldFout::vartype;
  const VeldFormaat& f = veld_werk.formaat;
  if (breedte_van(f.letter) == nullptr) return lees_tekst();
  veld_werk.waarde = lees_getal();
  if (f.letter == 'D') {
    lees_datum();
  } else if (f.letter == 'b') {
    if (!f.optie('I')) veld_zet_tekst({txt(veld_werk.waarde != 0.0 ? T_JA : T_NEE), 1});
  } else if (veld_werk.waarde != 0.0 || (f.optie('Z') && f.optie('E'))) {
    veld_zet_tekst(veld_getal(veld_werk.waarde));
  }
  if (f.optie('I')) {
    veld_zet_tekst({});
    veld_werk.waarde = 0.0;
  }
  return VeldFout::geen;
}

void veld_schrijf() {
  const VeldFormaat& f = veld_werk.formaat;
  if (const Breedte* b = breedte_van(f.letter)) {
    schrijf_getal(*b);
    return;
  }
  auto* uit = static_cast<char*>(veld_werk.variabele.adres);
  const auto lengte = static_cast<size_t>(f.lengte);
  memcpy(uit, veld_werk.tekst, lengte);
  if (f.letter == 's' || f.letter == 'S') uit[lengte] = '\0';
}
