// The order of character fields: case and accents fold away first, and only where two fields are
// then the same do accents and control characters decide. A letter that expands ("ae", "ss") counts
// as its two letters at the first level and not at all at the second.

#include <algorithm>
#include <array>
#include <cstring>

#include "isam/ix_intern.h"

namespace {

enum class Klasse : uint8_t { zelf, ander, genegeerd, dubbel };

struct Teken {
  uint8_t eerste, tweede;  // the pair of letters of a Klasse::dubbel
  Klasse klasse;
};

struct Letter {
  char eerste, tweede;
  std::array<uint8_t, 3> tekens;  // 0 ends
};

constexpr Letter LETTERS[] = {
    {'A', '"', {0x84, 0x8E}},
    {'A', '\'', {0x85, 0xB7}},
    {'A', '*', {0x86, 0x8F}},
    {'A', '^', {0x83, 0xB6}},
    {'A', '`', {0x90, 0xA0, 0xB5}},
    {'A', '~', {0xC6, 0xC7}},
    {'C', '5', {0x80, 0x87}},
    {'E', '"', {0x89, 0xD3}},
    {'E', '\'', {0x8A, 0xD4}},
    {'E', '^', {0x88, 0xD2}},
    {'E', '`', {0x82}},
    {'I', '"', {0x8B, 0xD8}},
    {'I', '\'', {0x8D, 0xDE}},
    {'I', '^', {0x8C, 0xD7}},
    {'I', '`', {0xA1, 0xD6}},
    {'N', '~', {0xA4, 0xA5}},
    {'O', '"', {0x94, 0x99}},
    {'O', '\'', {0x95, 0xE3}},
    {'O', '/', {0x9B, 0x9D}},
    {'O', '^', {0x93, 0xD0, 0xE2}},
    {'O', '`', {0xA2, 0xE0}},
    {'O', '~', {0xE4, 0xE5}},
    {'U', '"', {0x81, 0x9A}},
    {'U', '\'', {0x97, 0xEB}},
    {'U', '^', {0x96, 0xEA}},
    {'U', '`', {0xA3, 0xE9}},
    {'Y', '"', {0x98}},
    {'Y', '`', {0xEC, 0xED}},
};

constexpr std::array<Teken, 256> tabel_maak() {
  std::array<Teken, 256> t{};
  for (size_t i = 0; i < 256; ++i) {
    uint8_t eerste = static_cast<uint8_t>(i), tweede = 1;
    if (i == 0 || i == 255) tweede = eerste;
    if ((i >= 1 && i <= 31) || i == 127) {
      tweede = eerste;
      eerste = 0;
    }
    if (i >= 'a' && i <= 'z') eerste = static_cast<uint8_t>(i - 'a' + 'A');
    t[i] = {eerste, tweede, Klasse::zelf};
  }
  for (const Letter& l : LETTERS)
    for (uint8_t teken : l.tekens)
      if (teken != 0)
        t[teken] = {static_cast<uint8_t>(l.eerste), static_cast<uint8_t>(l.tweede), Klasse::ander};
  for (size_t i = 0; i < 256; ++i)
    if (t[i].eerste != i) t[i].klasse = t[i].eerste != 0 ? Klasse::ander : Klasse::genegeerd;
  t[0x91] = t[0x92] = {'A', 'E', Klasse::dubbel};
  t[0xE1] = {'S', 'S', Klasse::dubbel};
  return t;
}

constexpr std::array<Teken, 256> TABEL = tabel_maak();
static_assert(TABEL['a'].eerste == 'A' && TABEL[9].klasse == Klasse::genegeerd &&
              TABEL[255].klasse == Klasse::zelf && TABEL[0x82].tweede == '`');

constexpr int BREEDST = 255;  // bytes of the widest field that a definition can name

int niveau_een(const uint8_t* veld, int n, uint8_t* uit) {
  int lengte = 0;
  for (int i = 0; i < n; ++i) {
    const Teken& t = TABEL[veld[i]];
    if (t.klasse == Klasse::genegeerd) continue;
    uit[lengte++] = t.eerste;
    if (t.klasse == Klasse::dubbel) uit[lengte++] = t.tweede;
  }
  return lengte;
}

void niveau_twee(const uint8_t* veld, int n, uint8_t* uit) {
  int lengte = 0;
  for (int i = 0; i < n; ++i) {
    const Teken& t = TABEL[veld[i]];
    if (t.klasse != Klasse::dubbel) uit[lengte++] = t.tweede;
  }
}

int geheel(const uint8_t* a, const uint8_t* b, int n) {
  uint8_t links[2 * BREEDST + 1] = {}, rechts[2 * BREEDST + 1] = {};
  const int langst = std::max(niveau_een(a, n, links), niveau_een(b, n, rechts));
  const int uit = memcmp(links, rechts, static_cast<size_t>(langst));
  if (uit != 0) return uit;
  uint8_t twee_a[BREEDST] = {}, twee_b[BREEDST] = {};
  niveau_twee(a, n, twee_a);
  niveau_twee(b, n, twee_b);
  return memcmp(twee_a, twee_b, static_cast<size_t>(n));
}

}  // namespace

int ix_letters(const uint8_t* veld, int n, uint8_t* uit) { return niveau_een(veld, n, uit); }

int ix_collatie(const uint8_t* a, const uint8_t* b, int n) {
  n = std::min(n, BREEDST);
  int tweede = 0;  // first difference at level two
  // As long as both sides give one letter a byte, they are at the same place of both strings, and
  // the first difference is the answer; anything else takes the strings.
  for (int i = 0; i < n; ++i) {
    if (a[i] == b[i]) continue;
    const Teken &x = TABEL[a[i]], &y = TABEL[b[i]];
    if (x.klasse > Klasse::ander || y.klasse > Klasse::ander) return geheel(a, b, n);
    if (x.eerste != y.eerste) return x.eerste - y.eerste;
    if (tweede == 0) tweede = x.tweede - y.tweede;
  }
  return tweede;
}
