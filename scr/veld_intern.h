// The input field in hand, shared by the rooms of the field engine (scr/veld_*).
//
// What a field is (place, length, letter, options) stands in scr_ctx->veld; what happens to it
// while it is edited stands here. Both are fixed areas: a field allocates nothing, and a screen
// that comes up in the middle of one sets them aside whole with IngBewaar.
#pragma once

#include <string>
#include <string_view>

#include "scr/scr_intern.h"
#include "scr/teksten.h"
#include "scr/veld_formaat.h"

struct VeldWerk {
  char tekst[VELD_MAX + 1];      // the content; dates of length 8 and 10 with their separators
  double waarde;                 // and its number
  char oud_tekst[VELD_MAX + 1];  // both as the field was entered
  double oud_waarde;
  VeldFormaat formaat;
  IngArg variabele;
  int cursor;          // position in the content, from 0
  int schuif;          // first position shown in a scrolling field
  bool enter_gepland;  // an automatic Enter comes instead of the next key
  bool bezig;          // between the drawing of a field and its end
};
extern VeldWerk veld_werk;

// Variable and text (scr/veld_waarde) -------------------------------------------------------------

/// Fills text and value from the variable, and allows the signs that its value brings along.
VeldFout veld_lees();
/// Writes the variable at its own width.
void veld_schrijf();
/// "%-<length>.<precision>f" of a number: digits from the first place, blanks behind.
std::string veld_getal(double waarde);
/// A date in the form of the field, without its separators; empty for 0.
std::string veld_datum(double nummer);
/// The separators of a date of length 8 or 10 put in, and taken out again.
std::string datum_met_streep(std::string_view kaal);
std::string datum_zonder_streep(std::string_view tekst);
/// Replaces the content, cut at the work area; the rest of the area becomes NUL.
void veld_zet_tekst(std::string_view tekst);
std::string_view veld_inhoud();

// Checks (scr/veld_controle) ----------------------------------------------------------------------

/// Checks the content after an accepted key. True: text and value are final. False: the refusal
/// stands on the message line and ING_FOUT is set.
bool veld_controle();

/// What a typed number is: its value, and the digits behind the point.
struct GetalTekst {
  double waarde;
  int decimalen;
};
GetalTekst getal_uit_tekst(std::string_view tekst);
/// Blanks and holes in the day and month of a date become zeros: " 1" and "1 " are "01".
std::string datum_gerepareerd(std::string kaal);

// Drawing (scr/veld_teken) ------------------------------------------------------------------------

void veld_teken();          // while it is edited: with underscores
void veld_teken_klaar();    // as it stays on the screen
void veld_plaats_cursor();  // also keeps the cursor of a scrolling field in sight

// Editing keys (scr/veld_toetsen) -----------------------------------------------------------------

/// Handles one key that neither ends the field nor asks for help.
void veld_toets(int toets);
void veld_herstel();  // the old text and value

// Help and compose (scr/veld_hulp) ----------------------------------------------------------------

void veld_hulpscherm();
/// The composed character: its code, 0 when there is none.
int veld_samenstel();
int compose_code(std::string_view tekst);

/// Empties the input record: no keys, no range, nothing validates.
void ing_leeg();
/// Reads the next key in the current window.
inline int veld_lees_toets() { return key_read(win_nu()); }
