// What the rooms of the toolkit tell one another; nobody outside scr/ includes this.
#pragma once

// Fields (scr/veld_staat.cc) ------------------------------------------------------------------------

/// Makes the first input record (a text buffer of 100 bytes); SCRINIT calls it once scr_ctx stands.
void veld_begin();
/// Frees it; scr_close calls it before scr_ctx goes.
void veld_eind();

// The terminal, for the fields (the room that owns ncurses) ------------------------------------------

/// First byte of the terminal's own string for key 355 (kcan), 361 (kext) or 363 (khlp); 0 when the
/// terminal has none.
int toets_eerste_byte(int key);
/// Screen row and column (1-based) of cell (1,1) of the current window, inside its border.
void win_hoek(int* row, int* col);
