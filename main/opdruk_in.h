// The steps of the order document, between main/opdruk.cc and main/opdruk_serie.cc.
#pragma once

#include <cstdint>

#include "main/opdruk.h"
#include "main/verzamel.h"

/// What the head names: taken from the first record of the group in hand.
struct OpdrukGroep {
  uint8_t vanfil, naarfil;
  uint32_t opdrachtnr;
  uint16_t orderdatum;
};
extern OpdrukGroep opdruk_groep;

/// The document's lines alone, into an open report.
void opdruk_druk(OpdrachtSoort);
/// A new page with the head of the group in hand.
void opdruk_kop(OpdrachtSoort);
/// Reads what a document says of a series; what cannot be read is taken from the record, or blank.
void opdruk_lees(const Verzamel&);
/// Prints the series that was read, with the quantities in werk8.
void opdruk_serie(OpdrachtSoort);
/// Gives up what opdruk_lees keeps between series.
void opdruk_einde();
