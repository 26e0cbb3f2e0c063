// What a field refuses, and the last word on what it accepts. A refusal changes nothing but the
// message line (and brings back the old text of a date); only a good text becomes text and value.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "isam/base.h"
#include "scr/veld_intern.h"

namespace {

/// The text as the messages show it: a hidden one stays hidden.
std::string getoond() {
  if (scr_ctx->veld.verborgen) return {};
  return std::string(veld_inhoud());
}

bool weiger(const char* melding) {
  scr_error("<%s> %s", getoond(), melding);
  scr_ctx->ing_result |= ING_FOUT;
  return false;
}

bool weiger(const Tekst& melding) { return weiger(txt(melding)); }

std::string zonder_blanks(std::string_view t) {
  while (!t.empty() && t.front() == ' ') t.remove_prefix(1);
  while (!t.empty() && t.back() == ' ') t.remove_suffix(1);
  return std::string(t);
}

/// Numbers: the range in words, "Alleen 1 t/m 250 mogelijk".
bool weiger_bereik() {
  const int p = veld_werk.formaat.precisie;
  const IngRec& ing = *scr_ctx->ing;
  return weiger(str_format("%s %*.*f %s %*.*f %s", txt(T_ALLEEN), p + 1, p, ing.min, txt(T_TM),
                           p + 1, p, ing.max, txt(T_MOGELIJK))
                    .c_str());
}

bool controleer_getal(std::string& tekst, double& waarde) {
  const VeldFormaat& f = veld_werk.formaat;
  const GetalTekst getal = getal_uit_tekst(tekst);
  if (getal.decimalen > f.precisie) return weiger(T_TEVEEL_DECIMALEN);
  if (getal.waarde == 0.0 && !f.optie('Z')) return weiger(T_ONGELIJK_NUL);
  if (getal.waarde < scr_ctx->ing->min || getal.waarde > scr_ctx->ing->max) return weiger_bereik();
  waarde = getal.waarde;
  tekst = zonder_blanks(veld_getal(waarde));
  return true;
}

/// Refuses a date under a message that holds the text itself, and puts the old date back.
bool weiger_datum(const std::string& melding) {
  scr_error_tekst(melding.c_str());
  scr_ctx->ing_result |= ING_FOUT;
  veld_zet_tekst(veld_werk.oud_tekst);
  return false;
}

std::string lange_datum(double nummer) {
  return date_show_long(static_cast<uint16_t>(std::clamp(nummer, 0.0, 65535.0)));
}

bool weiger_datum_bereik(const std::string& gezien, double laag, double hoog) {
  return weiger_datum(
      str_format(txt(T_ALLEEN_DATUM), gezien, lange_datum(laag), lange_datum(hoog)));
}

bool controleer_vaste_datum(std::string& tekst, double& waarde) {
  const int lengte = veld_werk.formaat.lengte;
  const IngRec& ing = *scr_ctx->ing;
  const std::string gezien(veld_inhoud());
  tekst = datum_gerepareerd(tekst);
  if (!date_valid(tekst.c_str())) {
    const Tekst& melding = lengte == 10 ? T_DATUM_10 : lengte == 8 ? T_DATUM_8 : T_DATUM_6;
    return weiger_datum(str_format(txt(melding), gezien));
  }
  bool goed = true;
  if (lengte == 10) {
    const int jaar = atoi(tekst.c_str() + 4);  // valid: at least six digits
    goed = jaar >= 1900 && jaar <= 2078;
  }
  waarde = goed ? date_number(tekst.c_str()) : 0.0;
  if (goed && (ing.min != 0.0 || ing.max != 0.0)) goed = waarde >= ing.min && waarde <= ing.max;
  if (!goed) return weiger_datum_bereik(gezien, ing.min, ing.max);
  return true;
}

/// "+7" or "-7": days from the date that stood there.
bool controleer_relatieve_datum(std::string& tekst, double& waarde) {
  const long n = std::clamp(strtol(tekst.c_str() + 1, nullptr, 10), -99999999L, 99999999L);
  waarde = std::round(veld_werk.oud_waarde + static_cast<double>(tekst[0] == '+' ? n : -n));
  if (waarde == 0.0 && veld_werk.formaat.optie('E')) {
    weiger(T_FOUTIEVE_INGAVE);
    veld_zet_tekst(veld_werk.oud_tekst);
    return false;
  }
  // Any date may be typed under a range of 0 to 0, but counting still ends at the calendar's ends.
  const IngRec& ing = *scr_ctx->ing;
  const double laag = ing.min == 0.0 ? date_number("010180") : ing.min;
  const double hoog = ing.min == 0.0 && ing.max == 0.0 ? DATUM_LAATSTE : ing.max;
  if (waarde < laag || waarde > hoog) return weiger_datum_bereik(tekst, laag, hoog);
  tekst = veld_datum(waarde);
  return true;
}

bool controleer_datum(std::string& tekst, double& waarde) {
  if (veld_werk.formaat.sjabloon()) tekst = datum_zonder_streep(tekst);
  waarde = 0.0;
  if (tekst.empty()) return true;
  const bool relatief = tekst[0] == '+' || tekst[0] == '-';
  return relatief ? controleer_relatieve_datum(tekst, waarde)
                  : controleer_vaste_datum(tekst, waarde);
}

/// What holds for all letters: filled to the end, and not empty.
bool controleer_vulling(const std::string& tekst) {
  const VeldFormaat& f = veld_werk.formaat;
  const size_t nodig = f.letter == 'D' ? 6 : static_cast<size_t>(f.lengte);
  if (f.optie('F') && tekst.size() < nodig) return weiger(T_VOLLEDIG_VULLEN);
  if (f.optie('E') && tekst.empty()) return weiger(T_INGAVE_VERPLICHT);
  return true;
}

bool is_anders(const std::string& tekst, double waarde) {
  const VeldFormaat& f = veld_werk.formaat;
  if (f.numeriek()) {
    return std::fabs(waarde - veld_werk.oud_waarde) > 0.1 * std::pow(10.0, -f.precisie);
  }
  std::string oud = veld_werk.oud_tekst;
  if (f.sjabloon()) oud = datum_zonder_streep(oud);
  return strncmp(tekst.c_str(), oud.c_str(), static_cast<size_t>(f.lengte)) != 0;
}

}  // namespace

GetalTekst getal_uit_tekst(std::string_view ingave) {
  std::string t = zonder_blanks(ingave);
  bool negatief = true;
  if (!t.empty() && t.front() == '-') {
    t.erase(0, 1);
  } else if (!t.empty() && t.back() == '-') {
    t.pop_back();
  } else {
    negatief = false;
  }
  if (const size_t komma = t.find(','); komma != std::string::npos) t[komma] = '.';
  const size_t punt = t.find('.');
  const int decimalen = punt == std::string::npos ? 0 : static_cast<int>(t.size() - punt - 1);
  double waarde = strtod(t.c_str(), nullptr);
  if (!std::isfinite(waarde)) waarde = 0.0;
  // Never -0, which would be shown as "-0".
  return {negatief && waarde != 0.0 ? -waarde : waarde, decimalen};
}

std::string datum_gerepareerd(std::string kaal) {
  const auto leeg = [](char c) { return c == ' ' || c == '_'; };
  for (const size_t i : {size_t{0}, size_t{2}}) {
    if (i + 1 >= kaal.size() || leeg(kaal[i]) == leeg(kaal[i + 1])) continue;
    if (leeg(kaal[i + 1])) kaal[i + 1] = kaal[i];
    kaal[i] = '0';
  }
  return kaal;
}

bool veld_controle() {
  const VeldFormaat& f = veld_werk.formaat;
  std::string tekst(veld_inhoud());
  double waarde = f.letter == 'D' ? 0.0 : veld_werk.waarde;
  // Leaving on cancel with a number half typed: nothing to check, the old one stays.
  const bool oud_blijft = f.numeriek() && !tekst.empty() && weg_toets();
  if (f.letter == 'D') {
    if (!controleer_datum(tekst, waarde)) return false;
  } else if (f.numeriek() && tekst.empty()) {
    waarde = 0.0;
  } else if (f.numeriek() && !oud_blijft && !controleer_getal(tekst, waarde)) {
    return false;
  }
  if (!controleer_vulling(tekst)) return false;
  if (oud_blijft) {
    tekst = veld_werk.oud_tekst;
    waarde = veld_werk.oud_waarde;
  }
  if (f.letter == 'b') waarde = !tekst.empty() && tekst[0] == txt(T_JA)[0] ? 1.0 : 0.0;
  if (is_anders(tekst, waarde)) scr_ctx->ing_result |= ING_ANDERS;
  veld_zet_tekst(tekst);
  veld_werk.waarde = waarde;
  return true;
}
