// ncurses for the few files of the toolkit that draw and read. Its macros with everyday names
// (move, clear, timeout, lines) stay out.
#pragma once

#define NCURSES_NOMACROS 1
#define NCURSES_WIDECHAR 1
#include <ncurses.h>

#include "scr/scr_intern.h"

/// The current window; never null while the screen is open.
inline WINDOW* venster_nu() { return static_cast<WINDOW*>(win_nu()); }
inline WINDOW* venster_op(int index) { return static_cast<WINDOW*>(scr_ctx->windows[index].win); }

/// Sends a string of the terminal's description, at once.
void term_stuur(const char* capability);
/// Takes lines and cols, ours and those of ncurses, from the terminal in hand.
void term_maten();
/// Clears the terminal in hand and gives its reset, before another one takes over.
void term_verlaat();
/// Makes an open terminal the one in hand: its strings, its size, all of it to be drawn anew.
void term_neem(int index);
/// Puts a window on the stack, current, with its colours, and clears it.
void win_stapel(WINDOW* win, int colour_set);
