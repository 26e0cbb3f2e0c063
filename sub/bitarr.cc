// Tests over whole bit maps. A null map is a caller's mistake and ends the program.
#include "sub/bitarr.h"

#include <algorithm>
#include <span>

#include "main/controle.h"
#include "sub/records.h"

namespace {

constexpr int FOUT_VOL = 1000, FOUT_LEEG = 2000;  // plus the length asked

std::span<const uint8_t> kaart(const uint8_t* map, int lengte, int fout) {
  if (map == nullptr) ctl_fault("bitarr", lengte + fout);
  return {map, static_cast<size_t>(std::max(lengte, 0))};
}

bool alle_bits(const uint8_t* map, bool gezet, int fout) {
  const int aantal = std::min(filialen(), FILIALEN_MAX);
  if (map == nullptr) ctl_fault("bitarr", aantal + fout);
  for (int n = 0; n < aantal; ++n) {
    if (bit_test(map, n) != gezet) return false;
  }
  return true;
}

}  // namespace

bool bit_vol(const uint8_t* map, int lengte) {
  return std::ranges::all_of(kaart(map, lengte, FOUT_VOL), [](uint8_t b) { return b == 255; });
}

bool bit_leeg(const uint8_t* map, int lengte) {
  return std::ranges::all_of(kaart(map, lengte, FOUT_LEEG), [](uint8_t b) { return b == 0; });
}

bool bit_alle_filialen(const uint8_t* map) { return alle_bits(map, true, FOUT_VOL); }

bool bit_geen_filialen(const uint8_t* map) { return alle_bits(map, false, FOUT_LEEG); }
