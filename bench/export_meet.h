// A whole chain into a database of SQLite, on one processor.
#pragma once

#include "bench/tabel.h"

/// The chain in the current directory: records a second.
Rij export_meet();
