// Numbers by picture, amounts of money, percentages in permille, check digits.
#include <cmath>
#include <cstdio>

#include "isam/base.h"

int geld_decimalen = 2;

namespace {

// Each blank or point of the picture's integer part takes its own place, and the digits before it
// move one to the left. From right to left, so that no later push moves one already set.
void scheidingstekens(std::string& cijfers, std::string_view deel) {
  for (size_t p = deel.size(); p-- > 0;) {
    if ((deel[p] != ' ' && deel[p] != '.') || p >= cijfers.size()) continue;
    cijfers.erase(0, 1);
    cijfers.insert(p, 1, deel[p]);
  }
}

void onderdruk(std::string& cijfers, std::string_view plaatje) {
  const char vul = plaatje[0] == 'Z' ? ' ' : '*';
  const size_t eind = std::min(plaatje.find('9'), cijfers.size());
  for (size_t i = 0; i < eind; ++i) {
    if (cijfers[i] != '0' && cijfers[i] != ' ' && cijfers[i] != '.') return;
    cijfers[i] = vul;
  }
}

int32_t knip(int64_t v) {
  return static_cast<int32_t>(v < INT32_MIN ? INT32_MIN : v > INT32_MAX ? INT32_MAX : v);
}

}  // namespace

std::string num_picture(std::string_view plaatje, double waarde) {
  const char teken = waarde < 0 ? '-' : ' ';
  waarde = std::fabs(waarde);
  std::string uit;
  if (plaatje.empty() || (waarde == 0 && plaatje.find('9') == std::string_view::npos)) {
    uit.assign(plaatje.size(), ' ');
  } else {
    const size_t komma = plaatje.find(',');
    const int decimalen =
        komma == std::string_view::npos ? 0 : static_cast<int>(plaatje.size() - komma - 1);
    uit = str_format("%0*.*f", plaatje.size(), decimalen, waarde);
    for (char& c : uit)
      if (c == '.') c = ',';
    scheidingstekens(uit, plaatje.substr(0, komma));
    if (plaatje[0] == 'Z' || plaatje[0] == '*') onderdruk(uit, plaatje);
  }
  uit.push_back(teken);
  return uit;
}

std::string money_show(int32_t waarde, int breedte) {
  if (geld_decimalen == 0) return str_format("%*ld", breedte, waarde);
  const int voor = breedte > 3 ? breedte - 3 : 0;
  const int64_t centen = std::llabs(waarde) % 100;
  if (waarde < 0 && waarde > -100) return str_format("%*s.%02ld", voor, "-0", centen);
  return str_format("%*ld.%02ld", voor, waarde / 100, centen);
}

int32_t money_whole(int32_t waarde) {
  if (geld_decimalen == 0) return waarde;
  return knip((int64_t{waarde} + (waarde < 0 ? -50 : 50)) / 100);
}

int32_t percent_add(int32_t waarde, int32_t promille) {
  const int64_t product = int64_t{waarde} * promille;
  return knip(waarde + (product + (product < 0 ? -500 : 500)) / 1000);
}

int32_t percent_strip(int32_t waarde, int32_t promille) {
  if (promille <= -1000) return waarde;
  if (waarde >= 0 && waarde <= 2139999)
    return knip((int64_t{waarde} * 1000 + 500 + promille / 2) / (promille + 1000));
  return knip(std::llround(static_cast<double>(waarde) * 1000.0 / (promille + 1000.0)));
}

bool ean_goed(std::string_view cijfers) noexcept {
  int som = 0, gewicht = 1;
  for (size_t i = cijfers.size(); i-- > 0;) {
    if (cijfers[i] < '0' || cijfers[i] > '9') return false;
    som += (cijfers[i] - '0') * gewicht;
    gewicht = 4 - gewicht;
  }
  return !cijfers.empty() && som % 10 == 0;
}
