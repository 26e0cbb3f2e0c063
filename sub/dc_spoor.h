// The trail of a run through pieces by size. A line says how many pieces went, not which: without a
// trail a run that died half-way would, when it is run again, move other pieces for the same line.
// Each move is noted before it is made; what an earlier run noted counts as done, and the one move
// that it may have been in the middle of is made again on the same piece.
#pragma once

#include <cstdint>

#include "sub/dc_intern.h"

/// The road of a piece: sent, received although nobody sent it, received from its way, and the same
/// of a piece that was sold there.
enum class DcWeg : uint8_t { zenden, los, onderweg, verkocht };
inline constexpr int DC_WEGEN = 4;
void dc_ga(DcWeg, DcEtiket&, const DcTrans&);

/// Reads what an earlier run left; the end of the run closes the trail.
void dc_spoor_begin();
void dc_spoor_einde();
/// Pieces of this transaction that are done.
uint32_t dc_spoor_gedaan(const DcTrans&);
/// Notes a move of a label that is as `voor`.
void dc_spoor_noteer(DcWeg, const DcTrans&, int32_t etiket, const Etiket& voor);
/// Makes the move again that an earlier run was at, when it is of the series locked in ser_rec.
void dc_spoor_hervat();
/// Removes DTDCIF.TXT and the trail in one step. False when DTDCIF.TXT cannot be removed.
bool dc_bestand_weg();
