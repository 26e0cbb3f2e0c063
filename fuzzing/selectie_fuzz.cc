// The byte stream of a saved selection.
#include <cstring>

#include "fuzzing/fuzz.h"
#include "sub/sel_stroom.h"

namespace {
constexpr const char* LETTERS = "abcSTdefhijgGlFDHMmoqsuvwxyzABCJKOQUWYk";
}

std::vector<std::string> fuzz_zaden() {
  SelRec rec{};
  uint8_t status[256];
  memset(status, SEL_INGEVOERD, sizeof status);
  const uint16_t merken[] = {1, 22, 999};
  const auto vol = stroom_pak(rec, LETTERS, status, merken);
  memset(status, 0, sizeof status);
  const auto leeg = stroom_pak(rec, "abcSTdefhijgG", status, {});
  return {std::string(vol.begin(), vol.end()), std::string(leeg.begin(), leeg.end()),
          std::string(30, 'x')};
}

void fuzz_een(const uint8_t* data, size_t n) {
  SelRec rec{};
  uint8_t status[256] = {};
  const StroomUit uit = stroom_lees(std::span<const uint8_t>(data, n), &rec, status);
  stroom_pak(rec, LETTERS, status, uit.merken);
}
