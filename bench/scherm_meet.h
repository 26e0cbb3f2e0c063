// What an operator waits for: the programs on a pseudo-terminal, timed from a key to what it shows,
// and how much of the series a selection of one brand reads.
#pragma once

#include <cstdint>
#include <vector>

#include "bench/tabel.h"

/// Logs the operator of the demo chain in the current directory in and gives the rows of start, key
/// and the replay of a macro. The launcher, `opdsaldo` and `winkel` are those of this build.
std::vector<Rij> scherm_meet(int rondes);

/// Makes a chain of `series` series in the current directory and selects one of its brands.
Rij merk_meet(uint32_t series);
