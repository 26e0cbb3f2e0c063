// What a check and a backup cost those who work meanwhile: six processes that change one table of a
// chain at random and two that read it, with and without.
#pragma once

#include <vector>

#include "bench/tabel.h"

/// In the chain of the current directory; `paren` windows of each kind.
std::vector<Rij> last_meet(int paren);
