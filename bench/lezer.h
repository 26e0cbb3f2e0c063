// The two ways in which the engine reads: from a shared mapping, as programs do, and plainly.
#pragma once

#include "isam/io.h"

/// How files are read from here on.
inline void lezer_kies(bool kaart) { io_kaarten(kaart); }

/// The same for a program that is started: its environment variable.
inline constexpr const char *LEZER_VAR = "OPDSALDO_KAART", *LEZER_GEWOON = "nee";
