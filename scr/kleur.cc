// Whether the current terminal has colours: some marks are reverse there and underlined elsewhere.
#include "scr/scr.h"
#include "scr/scr_curses.h"

bool scr_kleuren() { return scr_ctx != nullptr && has_colors(); }
