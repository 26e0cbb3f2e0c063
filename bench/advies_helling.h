// The advice as its commands work it out: each series of the large chain that has provisional lines
// loaded from the tables and calculated. It must cost by the labels that it reads.
#pragma once

#include <vector>

#include "bench/tabel.h"

/// Makes the chain in the current directory (`snel`: the small one) and gives the rows of it.
std::vector<Rij> advies_helling(bool snel);
