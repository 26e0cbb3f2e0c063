// The terminal descriptions that SCRINIT asks for. A terminal "xterm-256color" is used through
// three entries of its own, "Xterm-256color" (25x80), "Xterm-256color-w" (25x132) and
// "Xterm-256color-l" (43x80), that no system brings along: they are made once from the user's own
// entry.
#pragma once

#include <string>

/// The name of the entry for $TERM (null: unset) and a terminal name "", "-w" or "-l".
std::string terminfo_naam(const char* term, const char* terminal);
/// True when all three entries of this TERM can be found.
bool terminfo_aanwezig(const char* term);
/// Makes the three entries in `map` (null: ~/.terminfo), which is made when absent. A TERM that is
/// not known takes after xterm-256color. False when the entries could not be written.
bool terminfo_maak(const char* term, const char* map);
