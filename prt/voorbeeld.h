// The preview of a report: what stands on its screen.
#pragma once

#include "prt/bladen.h"

struct Voorbeeld {
  PrtBladen bladen;
  int breedte = 80;      // of the report
  int kolom = 0;         // columns scrolled off on the left
  bool eerste = true;    // the first screen of its page
  long scherm_plek = 0;  // offset of the first line under the head lines, on later screens
  long na_plek = 0;      // offset behind the last line shown
  bool meer = false;     // the page goes on below the screen
};

/// Draws the screen: head lines, text, and the last row. Follows with na_plek and meer.
void voorbeeld_teken(Voorbeeld& v, int kopregels);
/// To the next screen of the page, or to the next page at its end.
void voorbeeld_verder(Voorbeeld& v);
/// Columns that stand on the right of the screen.
int voorbeeld_over(const Voorbeeld& v);
/// A window with a number of so many digits, 1 or more. 0 on cancel.
int voorbeeld_vraag(const char* titel, const char* label, int cijfers, int waarde);
