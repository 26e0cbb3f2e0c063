// What tills report over a few days, processed: against the writes that the moves cannot do
// without.
#pragma once

#include "bench/tabel.h"

/// 100,000 transactions over 20,000 labels of 3,000 series, in the current directory; a share of
/// that with `deler`. The row's machine column holds the same writes alone.
Rij dc_meet(uint32_t deler);
