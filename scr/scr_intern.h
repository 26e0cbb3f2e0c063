// Inside the toolkit: what its rooms ask of each other. Programs include scr/scr.h only.
#pragma once

#include <string_view>

#include "scr/scr.h"

// Fields (scr/veld_staat) ------------------------------------------------------------------------

/// Makes the first input record (100 bytes of text, no range, no keys) and the field work areas.
void veld_begin();
/// Frees them; scr_ctx is still there. Safe when veld_begin never ran.
void veld_eind();

// Screen (scr/venster, scr/uit) -------------------------------------------------------------------

/// True when nothing may be drawn: no screen, or output_off.
bool scr_stil();
/// Brings every window of the terminal in hand to the screen, the upper over the lower, with the
/// cursor in the current one. Called before every wait for a key.
void scr_toon();
/// The refresh rule, after each output call.
void scr_ververs();
/// The WINDOW* of the current window; null when there is none.
void* win_nu();
/// Screen row and column (1-based) of cell (1,1) of the current window, inside its border.
void win_hoek(int* row, int* col);
/// Where the cursor of the current window stands, as scr_move counts.
void scr_waar(int* row, int* col);
/// Adds bytes of code page 850 to a WINDOW* at its cursor, one cell a byte.
void scr_out(void* window, std::string_view bytes);
/// Works on the base window for the length of a scope; the windows above stay on top.
struct OpBasis {
  OpBasis();
  ~OpBasis();
  OpBasis(const OpBasis&) = delete;
  OpBasis& operator=(const OpBasis&) = delete;
  int bewaard;
};

// Keys (scr/toets) --------------------------------------------------------------------------------

/// One decoded key read on a WINDOW*; waits when `ms` is negative, else that long at most (-1:
/// none). A terminal that is gone ends the program.
int toets_lees(void* window, int ms);
/// First byte of the terminal's own string for key 355 (kcan), 361 (kext) or 363 (khlp); 0 when the
/// terminal has none.
int toets_eerste_byte(int key);
/// Teaches the current terminal both forms of the cursor keys, Home, End and F1 to F4.
void toets_leer();
/// Forgets pushed-back keys.
void toets_begin();
/// True while pushed-back keys stand to be read.
bool toets_in_stapel();

// Messages ----------------------------------------------------------------------------------------

/// Back to the state of a fresh screen: nothing busy, no message, refresh once a second.
void uit_begin();
void melding_begin();
void afbreken_begin();
/// SIGINT and SIGQUIT become keys; the old actions come back with signalen_terug.
void signalen_vang();
void signalen_terug();
/// The bottom line of ix_hooks: over whatever stands there for some seconds, or as a message.
void scr_regel(const char* tekst, int seconden);
/// The progress bar of ix_hooks.
void scr_voortgang(const char* titel, int64_t deel, int64_t geheel);
