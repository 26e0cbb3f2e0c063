// Images of all keys of a table and their order, for the fast rebuild.
//
// Records are told apart by few bits of their keys: those that are not the same in all of them.
// Leaving out the others changes no order. As many of the leading ones as fit stand beside the slot
// in one word, so that a sort on words does nearly all of the work; what is still equal then is
// compared as the engine compares. Of a text its letters take part (its first level), and nothing
// behind it: its accents would come first.

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "isam/herbouw_snel.h"

void* ruim_geheugen(size_t bytes) {
  constexpr size_t GROOT = 2 << 20;
  const size_t eenheid = bytes < GROOT ? 64 : GROOT;
  // Some bytes over, for reads by the word.
  const size_t heel = (bytes + 63 + eenheid) / eenheid * eenheid;
  void* p = aligned_alloc(eenheid, heel);
  // Ranks and images are met at random: with small pages each misses the address cache as well.
  if (p != nullptr && eenheid == GROOT) madvise(p, heel, MADV_HUGEPAGE);
  return p;
}

namespace {

uint64_t omgekeerd(const uint8_t* p) {
  uint64_t v;
  memcpy(&v, p, sizeof v);
  return __builtin_bswap64(v);
}

void zet_stap(const BeeldStap& st, const uint8_t* rec, uint32_t slot, uint8_t* uit) {
  switch (st.soort) {
    case '1':
      *uit = rec[st.van];
      break;
    case '2': {
      uint16_t v;
      memcpy(&v, rec + st.van, sizeof v);
      v = __builtin_bswap16(v);
      memcpy(uit, &v, sizeof v);
      break;
    }
    case '4': {
      uint32_t v;
      memcpy(&v, rec + st.van, sizeof v);
      v = __builtin_bswap32(v);
      memcpy(uit, &v, sizeof v);
      break;
    }
    case 'C':
      memccpy(uit, rec + st.van, 0, st.n);
      break;
    case 'N': {
      const uint32_t v = __builtin_bswap32(slot);
      memcpy(uit, &v, sizeof v);
      break;
    }
    default:
      break;
  }
}

/// Collects the bits that differ, from the highest of the key on.
struct Keuze {
  SleutelBouw& b;
  int over;  // bits there is room for

  /// Bits of `n` bytes from byte `plaats` on of the words with differences `verschil`.
  bool bytes(const uint64_t* verschil, int woord0, int plaats, int n) {
    for (int bit = plaats * 8; bit < (plaats + n) * 8; ++bit) {
      const int woord = bit / 64, stand = 63 - bit % 64;
      if ((verschil[woord] >> stand & 1) == 0) continue;
      if (over-- == 0) return false;
      const auto nr = static_cast<uint8_t>(woord0 + woord);
      if (!b.reeksen.empty()) {
        Bitreeks& r = b.reeksen.back();
        if (r.woord == nr && r.schuif == stand + 1) {
          --r.schuif;
          ++r.breed;
          continue;
        }
      }
      b.reeksen.push_back({nr, static_cast<uint8_t>(stand), 1});
    }
    return true;
  }
};

/// The first letters of the text, blank-filled with zeros.
void letters(const SleutelBouw& b, const uint8_t* beeld, uint64_t* woorden) {
  uint8_t tekst[2 * IX_SLEUTELBYTES + 16] = {};
  ix_letters(beeld + b.tekstveld, b.tekstbreed, tekst);
  woorden[0] = omgekeerd(tekst);
  woorden[1] = omgekeerd(tekst + 8);
}

/// Where the letters of the text differ among the records.
void verschil_letters(SleutelBouw& b, size_t aantal, uint64_t nummers, uint64_t* verschil) {
  uint64_t een[2], w[2];
  letters(b, b.beeld(static_cast<uint32_t>(b.volgorde.p[0] & nummers)), een);
  verschil[0] = verschil[1] = 0;
  for (size_t i = 0; i < aantal; ++i) {
    letters(b, b.beeld(static_cast<uint32_t>(b.volgorde.p[i] & nummers)), w);
    verschil[0] |= w[0] ^ een[0];
    verschil[1] |= w[1] ^ een[1];
  }
}

bool constant(const SleutelBouw& b, int plaats, int n) {
  for (int i = plaats; i < plaats + n; ++i)
    if ((b.verschil[i / 8] >> (56 - i % 8 * 8) & 0xFF) != 0) return false;
  return true;
}

void kies_bits(SleutelBouw& b, size_t aantal, int nummerbits) {
  Keuze keuze{b, 64 - nummerbits};
  b.volledig = true;
  b.tekstveld = -1;
  for (const BeeldStap& st : b.stappen) {
    if (st.soort != 'C') {
      if (keuze.bytes(b.verschil, 0, st.naar, st.n)) continue;
      b.volledig = false;
      return;
    }
    if (constant(b, st.naar, st.n)) continue;
    b.volledig = false;
    b.tekstveld = st.naar;
    b.tekstbreed = st.n;
    uint64_t verschil[2];
    verschil_letters(b, aantal, (uint64_t{1} << nummerbits) - 1, verschil);
    keuze.bytes(verschil, LETTERS, 0, 16);
    return;
  }
}

uint64_t samen(const SleutelBouw& b, const uint8_t* beeld) {
  uint64_t tekst[2] = {};
  if (b.tekstveld >= 0) letters(b, beeld, tekst);
  uint64_t v = 0;
  for (const Bitreeks& r : b.reeksen) {
    const uint64_t w =
        r.woord >= LETTERS ? tekst[r.woord - LETTERS] : omgekeerd(beeld + 8 * r.woord);
    v = v << r.breed | (w >> r.schuif & ((uint64_t{1} << r.breed) - 1));
  }
  return v;
}

/// Puts the records that the bits leave equal into order; false when their keys are equal.
bool orden_gelijken(SleutelBouw& b, size_t aantal, int nummerbits) {
  const uint64_t nummers = (uint64_t{1} << nummerbits) - 1;
  const auto vergelijk = [&](uint64_t x, uint64_t y) {
    return ix_vergelijk(*b.s, b.beeld(static_cast<uint32_t>(x & nummers)),
                        b.beeld(static_cast<uint32_t>(y & nummers)), b.s->key_length);
  };
  uint64_t* p = b.volgorde.p;
  for (size_t i = 0, j; i < aantal; i = j) {
    for (j = i + 1; j < aantal && (p[j] ^ p[i]) <= nummers; ++j) {
    }
    if (j == i + 1) continue;
    if (b.volledig) return false;
    std::sort(p + i, p + j, [&](uint64_t x, uint64_t y) { return vergelijk(x, y) < 0; });
    for (size_t m = i + 1; m < j; ++m)
      if (vergelijk(p[m - 1], p[m]) == 0) return false;
  }
  return true;
}

}  // namespace

void bouw_begin(SleutelBouw& b, const ICB* icb, int k) {
  b.s = &icb->keys[k - 1];
  int naar = 0;
  for (int i = 0; i < IX_VELDEN && b.s->field_type[i] != 0; ++i) {
    const int van = b.s->field_start[i] - 1, n = b.s->field_end[i] - van;
    char soort = 'C';
    if (b.s->field_type[i] != 'C')
      soort = n == 1 || n == 2 || n == 4 ? static_cast<char>('0' + n) : '0';
    b.stappen.push_back(
        {soort, static_cast<uint8_t>(van), static_cast<uint8_t>(naar), static_cast<uint8_t>(n)});
    naar += n;
  }
  if (b.s->dup == 'J') b.stappen.push_back({'N', 0, static_cast<uint8_t>(naar), 4});
  memset(b.eerste, 0, sizeof b.eerste);
  memset(b.verschil, 0, sizeof b.verschil);
}

void bouw_beeld(SleutelBouw& b, const uint8_t* rec, uint32_t slot, bool eerste) {
  alignas(8) uint8_t beeld[WOORDEN * 8] = {};
  for (const BeeldStap& st : b.stappen) zet_stap(st, rec, slot, beeld + st.naar);
  memcpy(b.beelden.p + size_t{slot} * b.s->key_length, beeld, b.s->key_length);
  const int woorden = (b.s->key_length + 7) / 8;
  for (int w = 0; w < woorden; ++w) {
    const uint64_t v = omgekeerd(beeld + 8 * w);
    if (eerste) b.eerste[w] = v;
    b.verschil[w] |= v ^ b.eerste[w];
  }
}

void radix(uint64_t* p, uint64_t* hulp, size_t aantal, int laag, int bits) {
  constexpr int CIJFER = 11;
  const int keren = (bits + CIJFER - 1) / CIJFER;
  uint64_t* van = p;
  uint64_t* naar = hulp;
  for (int keer = 0; keer < keren; ++keer) {
    const int schuif = laag + keer * bits / keren;
    const int breed = laag + (keer + 1) * bits / keren - schuif;
    const uint64_t masker = (uint64_t{1} << breed) - 1;
    size_t plaats[1 << CIJFER] = {};
    for (size_t i = 0; i < aantal; ++i) ++plaats[van[i] >> schuif & masker];
    size_t som = 0;
    for (size_t c = 0; c <= masker; ++c) som += std::exchange(plaats[c], som);
    for (size_t i = 0; i < aantal; ++i) naar[plaats[van[i] >> schuif & masker]++] = van[i];
    std::swap(van, naar);
  }
  if (van != p) memcpy(p, van, aantal * sizeof *p);
}

bool bouw_sorteer(SleutelBouw& b, size_t aantal, int nummerbits, uint64_t* hulp) {
  if (aantal < 2) return true;
  kies_bits(b, aantal, nummerbits);
  int bits = 0;
  for (const Bitreeks& r : b.reeksen) bits += r.breed;
  uint64_t* p = b.volgorde.p;
  for (size_t i = 0; i < aantal; ++i)
    p[i] |= samen(b, b.beeld(static_cast<uint32_t>(p[i]))) << nummerbits;
  radix(p, hulp, aantal, nummerbits, bits);
  return orden_gelijken(b, aantal, nummerbits);
}
