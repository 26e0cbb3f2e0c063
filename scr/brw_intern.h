// The page of a browse: what stands on the screen and where the cursor is. Inside the browser only.
#pragma once

#include <vector>

#include "scr/scr.h"

struct BrwBlad {
  std::vector<uint32_t> ids;  // records on the page, from the top
  int cursor = 0;             // index of the record in hand
  int eerste = 1;             // window row of the first line
  int regels = 1;             // lines of a full page
};

/// Opens the window of a browse at the places that it asks for or that suit it, and draws the
/// headings. The record in `current` has been read.
void brw_venster(BrwRec* b, BrwBlad& blad);

/// Draws the page from record `van` on, steps before it with `terug` below 0, and puts the cursor
/// back inside it. False when no record can be found there; the page is empty then.
bool brw_blad_teken(BrwRec* b, BrwBlad& blad, uint32_t van, int terug);

/// The same page again; when its first record has gone, from the first one that is still there.
bool brw_blad_opnieuw(BrwRec* b, BrwBlad& blad);

/// Reads and draws one line of the page, in reverse when the cursor is on it.
void brw_regel_teken(BrwRec* b, const BrwBlad& blad, int index);

/// Moves the cursor on the page: the two lines involved are read, the new one last.
void brw_cursor_naar(BrwRec* b, BrwBlad& blad, int index);

/// Column headings, on a clean row.
void brw_kop_teken(BrwRec* b);
