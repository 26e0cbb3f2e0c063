// A walk over the pages of a finished report: lines up to a newline, pages up to a form feed. No
// screen; the whole file is never held, so a report of any length can be looked at.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

struct PrtBladen {
  FILE* bestand = nullptr;
  long start = 0, eind = 0;  // offsets of the text: behind the start string, before the stop string
  int breedte = 80;          // a longer line is read to its end and cut
  int blad = 1, bladen = 1;
  long blad_plek = 0;  // offset of the first line of the page
};

/// False when the file cannot be read. Stands on page 1.
bool bladen_open(PrtBladen& b, const char* pad, long start, long eind, int breedte, int bladen);
void bladen_sluit(PrtBladen& b);
/// The next line of the page, control characters shown as "."; false at the end of the page.
bool bladen_regel(PrtBladen& b, std::string& regel);
/// The page goes on behind the line just read.
bool bladen_meer(PrtBladen& b);
/// Nothing but the last form feed stands behind the line just read.
bool bladen_op(PrtBladen& b);
/// One page on or back; false, and no move, when there is none.
bool bladen_verder(PrtBladen& b);
bool bladen_terug(PrtBladen& b);
/// To a page, as near as there is one.
void bladen_naar(PrtBladen& b, int blad);
