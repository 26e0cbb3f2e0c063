// What loading an advice and writing its order lines share.
#pragma once

#include "isam/ix.h"
#include "sub/records.h"

inline constexpr int KEY_PICK_SERIE = 2;  // DTPICK by series, sending and receiving branch
inline constexpr int KEY_GO_SERIE = 3;    // DTGO by series
inline constexpr int SERIEVELDEN = 3;     // their fields that are the series
inline constexpr const char* ADV_MODULE = "vrdbsub1";

/// A line of tpck: pieces of one size that a provisional order moves.
struct TpckRec {
  uint8_t vanfil, naarfil, maat, leeg3;
  int32_t aantal;
};
static_assert(sizeof(TpckRec) == 8);

/// Empties a work table of ours; one that was not written since costs nothing.
inline void adv_maak_leeg(ICB* tabel) {
  if (tabel->record_count > 0) IXINIT(tabel);
}
