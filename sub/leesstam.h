// Reads of the master files into a buffer of the caller, skipping the read when the buffer already
// holds the key (never for DTSER). A failed read leaves the buffer zero but clears the key.
#pragma once

#include <string_view>

#include "isam/ix.h"
#include "sub/records.h"

bool lees_artikel(ICB*, DtArt* buffer, uint32_t nummer);
bool lees_merk(ICB*, DtMerk* buffer, uint16_t nummer);
bool lees_lev(ICB*, DtLev* buffer, uint16_t nummer);
bool lees_klant(ICB*, DtKlt* buffer, uint32_t nummer);
/// The series of that number, always read; through a table or a private index with the key "AKV".
bool lees_serie(ICB*, DtSer* buffer, const Serienr& nr);
/// Code of up to 13 characters; 13 digits with a leading 0 are also tried as the twelve behind it.
/// After a failed read the buffer holds only the code that was asked for.
bool lees_ean(ICB*, DtEan* buffer, std::string_view code);
/// The size code (type 'M') of a series and size index.
bool lees_ean_maat(ICB*, DtEan* buffer, const Serienr& nr, uint8_t maat);
bool lees_kleur(Kleur* buffer, uint16_t nummer);

/// The same with the file opened and closed around the read.
bool lees_artikel(DtArt* buffer, uint32_t nummer);
bool lees_merk(DtMerk* buffer, uint16_t nummer);
bool lees_lev(DtLev* buffer, uint16_t nummer);
bool lees_klant(DtKlt* buffer, uint32_t nummer);
bool lees_ean(DtEan* buffer, std::string_view code);
