// Names and passwords as the system files hide them: written backwards behind a moving shift, the
// key as last character. Work is done in place, so nothing can run out of memory half-way.
#include <algorithm>
#include <cstring>
#include <ctime>

#include "isam/base.h"

namespace {

constexpr int BEREIK = 222;     // of a key above 127: bytes 32 to 253 survive the round trip
constexpr int OUD_BEREIK = 94;  // of the older texts, whose key is 127 or below

int verschuiving(int sleutel, size_t i) {
  const int stap = static_cast<int>(i + 1) * (sleutel / 10 + 1);
  return (i % 2 == 0 ? -stap : stap) + sleutel % 10 + 5;
}

char gedraaid(int waarde, int bereik) {
  int v = waarde % bereik;
  if (v < 0) v += bereik;
  return static_cast<char>(v + 32);
}

}  // namespace

void scramble_op(char* tekst, int64_t nu) {
  const size_t n = std::strlen(tekst);
  const int sleutel = 128 + 32 + static_cast<int>(((nu % 94) + 94) % 94);
  for (size_t i = 0; i < n; ++i)
    tekst[i] = gedraaid(static_cast<uint8_t>(tekst[i]) - 32 + verschuiving(sleutel, i), BEREIK);
  std::reverse(tekst, tekst + n);
  tekst[n] = static_cast<char>(sleutel);
  tekst[n + 1] = 0;
}

void SCRAMBLE(char* tekst) { scramble_op(tekst, static_cast<int64_t>(std::time(nullptr))); }

void UNSCRAMBLE(char* tekst) {
  const size_t lengte = std::strlen(tekst);
  if (lengte == 0) return;
  const size_t n = lengte - 1;
  const int sleutel = static_cast<uint8_t>(tekst[n]);
  const int bereik = sleutel > 127 ? BEREIK : OUD_BEREIK;
  tekst[n] = 0;
  std::reverse(tekst, tekst + n);
  for (size_t i = 0; i < n; ++i)
    tekst[i] = gedraaid(static_cast<uint8_t>(tekst[i]) - 32 - verschuiving(sleutel, i), bereik);
}

std::string unscramble_veld(const char* veld, size_t n) {
  std::string tekst = veld_tekst(veld, n);
  UNSCRAMBLE(tekst.data());
  tekst.resize(std::strlen(tekst.c_str()));
  return tekst;
}
