// What each measurement costs as the work grows: the same a unit at a sixteenth, a quarter and all
// of the data, ours with both readers.
#pragma once

#include <functional>

#include "bench/tabel.h"

/// `doen` leaves rows out by number; `snel`: all of it is a tenth.
Tekstrijen groei_meet(bool snel, const std::function<bool(int)>& doen);
