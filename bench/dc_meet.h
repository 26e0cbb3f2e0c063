// What tills report over a few days, processed: against the writes that the moves cannot do
// without.
#pragma once

#include "bench/tabel.h"

/// 100,000 transactions over 20,000 labels of 3,000 series, in the current directory; a share of
/// that with `deler`. The row's machine column holds the same writes alone.
Rij dc_meet(uint32_t deler);
/// Ours alone: seconds of a run with each reader, over a share of the lines.
Paar dc_groei(uint32_t deler);
inline constexpr uint32_t DC_REGELS = 100000;
