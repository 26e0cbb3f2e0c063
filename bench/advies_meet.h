// The pure calculation of the advice: sums, sets and all steps of one series after another.
#pragma once

#include "bench/tabel.h"

/// Series a second of processor time, of 100 branches and 20 sizes, with the matrices filled.
Rij advies_rij();
/// Seconds of processor time for `n` different series, one filled and calculated after another; the
/// filling does not count.
double advies_series(uint32_t n);
