// From criteria to series: the test of one series, the walk that jumps with the key, private
// indexes over DTSER, sort orders.
#pragma once

#include "isam/ix.h"

/// Letters of sort orders and of the keys of private indexes.
inline constexpr const char* SORT_LETTERS = "AKVRMDJSENZIBLCFTU";

/// Makes a private index over DTSER (or a plain temporary table) whose key-1 is built from the
/// letters; the letters are its description. Null with 11 letters or more. Opened exclusively,
/// empty.
ICB* sort_maak(const char* naam, const char* letters);
/// Asks for an order of the allowed letters; absent A K V are added ('~' in `allowed`: not).
bool sort_kies(int row, int col, const char* allowed, char* order);
/// Letters of an order between this code (0: from it) and the catalogue's own (1: back), in place.
void sort_vertaal(char* tekst, int richting);
/// What the rows of the command in hand are: their letter L is a location unless this is clear, and
/// only the label list can be sorted on numbers.
extern bool sort_locatie, sort_etiketten;

/// The walk over DTSER by sel_rec (after sel_aanvullen): true while a series that passes stands in
/// ser_rec. Shows its progress on `serie_rij`. Method 0 all, 1 by article group, 2 by brand.
/// The caller makes the key of the method current in dtser; the walk opens the brand list.
extern int serie_rij;
int serie_methode();
bool serie_eerste();
bool serie_volgende();
bool serie_test();
/// Closes the brand list of a walk or of tests; the last call of a run through series.
void serie_einde();
/// A command's own test behind the ten; accepts when null.
extern bool (*serie_haak)();

/// Fills the private index `naam` (made anew with `letters`) with the series that pass; the screen
/// counts. Runs sel_aanvullen. The file is closed when it returns. False when the operator broke
/// off (the file is then remade empty) or when there is no such order.
bool serie_selecteer(const char* naam, const char* letters);
/// The same into a file as it stands, in bulk when it is empty.
bool serie_vul(const char* naam, const char* letters, bool bulk);
