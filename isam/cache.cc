// The write-back cache of a rebuild: blocks of one handle at a time stay in memory until the flush.
// Guarantees the same file bytes as writing each block at once would give. A rebuild touches the
// same upper blocks for every record and leaves at random, so that the cache holds as much as fits;
// a block finds its place by its number, and the roots never leave.

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "isam/io.h"
#include "isam/ix_intern.h"

size_t ix_cache_plaatsen = 262144;  // 128 MB, taken from the system as it is touched

namespace {

constexpr size_t PLAATSEN_MINST = 50;
constexpr size_t STUK = 64;        // blocks a write of the flush
constexpr size_t GROOT = 2 << 20;  // a large page of memory

struct Plaats {
  int32_t blok;
  bool vuil, kort;  // changed; used since the hand last passed
};

struct Voorraad {
  ICB* eigenaar = nullptr;
  uint8_t* geheugen = nullptr;
  size_t hoogst = 0;             // places there is memory for
  size_t wijzer = 0;             // hand of the clock that looks for a place to free
  std::vector<Plaats> plaatsen;  // those in use
  std::vector<int32_t> waar;     // by block number: place + 1, 0 not here
};
Voorraad v;

uint8_t* inhoud(size_t plaats) { return v.geheugen + plaats * IX_BLOK; }

uint8_t begin(ICB* icb, size_t hoogst) {
  if (v.eigenaar != nullptr) return icb->cached;
  for (size_t n = hoogst; n >= PLAATSEN_MINST && v.geheugen == nullptr; n /= 2) {
    const size_t bytes = (n * IX_BLOK + GROOT - 1) / GROOT * GROOT;
    v.geheugen = static_cast<uint8_t*>(aligned_alloc(GROOT, bytes));
    // Leaves are met at random: with small pages each of them misses the address cache as well.
    if (v.geheugen != nullptr) madvise(v.geheugen, bytes, MADV_HUGEPAGE);
    v.hoogst = n;
  }
  if (v.geheugen == nullptr) return icb->cached;
  v.eigenaar = icb;
  v.wijzer = 0;
  for (int32_t& t : icb->trail) t = -1;
  icb->cached = 1;
  return 1;
}

/// Frees the place that was not used for longest, as well as one hand going round can tell.
size_t maak_plaats(const ICB* icb) {
  for (;;) {
    const size_t p = v.wijzer++ % v.plaatsen.size();
    Plaats& plaats = v.plaatsen[p];
    if (plaats.blok <= icb->key_count) continue;
    if (plaats.kort) {
      plaats.kort = false;
      continue;
    }
    if (plaats.vuil) io_schrijf(icb->index_fd, inhoud(p), IX_BLOK, ix_blokplaats(plaats.blok));
    v.waar[static_cast<size_t>(plaats.blok)] = 0;
    return p;
  }
}

size_t nieuwe_plaats(const ICB* icb, int32_t blok) {
  const size_t nr = static_cast<size_t>(blok);
  if (nr >= v.waar.size()) v.waar.resize(std::max(nr + 1, v.waar.size() * 2));
  size_t p = v.plaatsen.size();
  if (p < v.hoogst)
    v.plaatsen.push_back({});
  else
    p = maak_plaats(icb);
  v.plaatsen[p] = {blok, false, true};
  v.waar[nr] = static_cast<int32_t>(p) + 1;
  return p;
}

/// Place of a block, SIZE_MAX when it is not in memory.
size_t zoek(int32_t blok) {
  const size_t nr = static_cast<size_t>(blok);
  if (nr >= v.waar.size() || v.waar[nr] == 0) return SIZE_MAX;
  const size_t p = static_cast<size_t>(v.waar[nr]) - 1;
  v.plaatsen[p].kort = true;
  return p;
}

/// Blocks of one run go out in one write, of at most 32 KB.
void schrijf_alles(const ICB* icb) {
  alignas(64) static uint8_t stuk[STUK * IX_BLOK];
  size_t eerste = 0, aantal = 0;
  const auto uit = [&] {
    if (aantal > 0)
      io_schrijf(icb->index_fd, stuk, aantal * IX_BLOK,
                 ix_blokplaats(static_cast<int64_t>(eerste)));
    aantal = 0;
  };
  for (size_t blok = 1; blok < v.waar.size(); ++blok) {
    const size_t p = static_cast<size_t>(v.waar[blok]) - 1;
    if (v.waar[blok] == 0 || !v.plaatsen[p].vuil) continue;
    if (aantal == STUK || (aantal > 0 && blok != eerste + aantal)) uit();
    if (aantal == 0) eerste = blok;
    memcpy(stuk + aantal++ * IX_BLOK, inhoud(p), IX_BLOK);
  }
  uit();
}

void einde(ICB* icb) {
  schrijf_alles(icb);
  ix_weg_wis(icb->index_fd);
  icb->cached = 0;
  free(v.geheugen);
  v = Voorraad{};
}

}  // namespace

uint8_t IOCACHE(char actie, ICB* icb, int32_t blok) {
  ix_test(icb, "IOCACHE");
  if (actie == 'I')
    return begin(
        icb, blok > 0 ? std::min(static_cast<size_t>(blok), ix_cache_plaatsen) : ix_cache_plaatsen);
  if (v.eigenaar != icb) return 0;
  if (actie == 'F') {
    einde(icb);
    return 1;
  }
  if (blok < 1 || blok >= icb->next_block) ix_kapot(icb);
  size_t p = zoek(blok);
  if (actie == 'W') {
    if (p == SIZE_MAX) p = nieuwe_plaats(icb, blok);
    ix_kopieer(inhoud(p), &icb->block);
    v.plaatsen[p].vuil = true;
    return 1;
  }
  icb->block_no = blok;
  if (p != SIZE_MAX) {
    ix_kopieer(&icb->block, inhoud(p));
    return 1;
  }
  // Read before a place is made for it: a wild number must not grow the list.
  if (io_lees(icb->index_fd, &icb->block, IX_BLOK, ix_blokplaats(blok)) != IX_BLOK) ix_kapot(icb);
  memcpy(inhoud(nieuwe_plaats(icb, blok)), &icb->block, IX_BLOK);
  return 1;
}
