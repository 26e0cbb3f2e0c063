// The pure calculation of the advice: sums, sets and all steps of one series after another.
#pragma once

#include "bench/tabel.h"

/// Series a second of processor time, of 100 branches and 20 sizes, with the matrices filled.
double advies_meet();
/// The same as a row of the table.
Rij advies_rij();
