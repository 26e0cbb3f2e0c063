// The steps of the fast rebuild, between its own rooms: images and their order (herbouw_rang.cc),
// the shape of the trees (herbouw_vorm.cc), reading and writing (herbouw_snel.cc).
#pragma once

#include <cstdlib>
#include <vector>

#include "isam/ix_intern.h"

/// Null when there is none; freed with free. Reads a little past the end are sound.
void* ruim_geheugen(size_t bytes);

/// Memory that is taken in large pieces and may be refused.
template <class T>
struct Ruimte {
  T* p = nullptr;
  Ruimte() = default;
  ~Ruimte() { free(p); }
  Ruimte(const Ruimte&) = delete;
  Ruimte& operator=(const Ruimte&) = delete;
  bool neem(size_t aantal) {
    p = static_cast<T*>(ruim_geheugen(aantal * sizeof(T)));
    return p != nullptr;
  }
};

// Images and their order --------------------------------------------------------------------------

/// One field of an image.
struct BeeldStap {
  char soort;  // '1', '2', '4' an integer to turn round, 'C' text, 'N' the record number, '0' zeros
  uint8_t van, naar, n;
};

/// A row of neighbouring bits that tell records apart.
struct Bitreeks {
  uint8_t woord;  // eight bytes of the image; from LETTERS on, of the letters of a text
  uint8_t schuif, breed;
};

inline constexpr int WOORDEN = 8, LETTERS = 8;

/// A key while its index is being built. `volgorde` holds a record a place: its slot in the low
/// `nummerbits`, above them the leading bits that tell its key from others.
struct SleutelBouw {
  const IxSleutel* s;
  std::vector<BeeldStap> stappen;
  Ruimte<uint8_t> beelden;  // by slot, key_length bytes each
  Ruimte<uint64_t> volgorde;
  uint64_t eerste[WOORDEN], verschil[WOORDEN];  // the first image, and where others differ from it
  std::vector<Bitreeks> reeksen;
  bool volledig;  // the bits of `volgorde` make up the whole image
  int tekstveld;  // place of the text whose letters take part, -1 none
  int tekstbreed;

  const uint8_t* beeld(uint32_t slot) const { return beelden.p + size_t{slot} * s->key_length; }
};

/// Zeroed, with its steps worked out.
void bouw_begin(SleutelBouw& b, const ICB* icb, int k);
/// Stores the image of a record and notes where it differs from the first one.
void bouw_beeld(SleutelBouw& b, const uint8_t* rec, uint32_t slot, bool eerste);
/// Sorts the slots in `b.volgorde` by key, through `hulp` of the same size. False when two keys are
/// equal.
bool bouw_sorteer(SleutelBouw& b, size_t aantal, int nummerbits, uint64_t* hulp);
/// Orders `aantal` numbers by `bits` bits from bit `laag` on, keeping the order of equals.
void radix(uint64_t* p, uint64_t* hulp, size_t aantal, int laag, int bits);

// Shape of the trees ------------------------------------------------------------------------------

/// A leaf as it is in the end: it holds the ranks up to `einde`.
struct Blad {
  uint32_t einde;  // first rank behind it
  uint32_t slot;   // record whose entry cut it off the leaf above it; of the last leaf none
  int32_t blok;
};

inline constexpr int TAK_MAX = 101;                // entries of five bytes in a block
inline constexpr uint32_t EINDWACHT = UINT32_MAX;  // rank of the entry that ends each level

/// A block above the leaves.
struct Tak {
  int32_t blok;
  int8_t niveau;
  int8_t aantal;
  uint32_t hoogste[TAK_MAX];  // rank of the highest key below each entry
  int32_t kind[TAK_MAX];      // block of a leaf, or place of the branch
};

struct BoomBouw {
  std::vector<Blad> bladen;
  std::vector<Tak> takken;  // the first is the root, once there is one
};

/// The leaves that entering `rang` (ranks in slot order, spoilt) gives in blocks of `vol` entries.
/// `volgorde` and `nummerbits` tell the slot of a rank. Not yet numbered.
void vorm_bladen(BoomBouw& boom, uint32_t* rang, uint32_t* hulp, size_t aantal, int vol,
                 const uint64_t* volgorde, int nummerbits);
/// Builds the branches and numbers all blocks as they are taken when the keys are entered in turn
/// for each `per` slots.
void vorm_takken(ICB* icb, BoomBouw* bomen, int32_t per);
