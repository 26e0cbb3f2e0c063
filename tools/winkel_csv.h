// Records as lines of text for people and spreadsheets, and back: UTF-8, fields between semicolons,
// or one JSON object a line. Nothing here opens a file.
//
// A value has one form: numbers in digits, dates DD-MM-JJJJ, prices with a point and two digits,
// sets as numbers and ranges ("0-11,14"), text as it reads. A row of values is a column each,
// "streef.0" to "streef.249" (a list in JSON). Zeros of a row of quantities, dates that are none
// and counts that were not made are empty.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velden.h"

/// One value of a record: a column.
struct CsvKolom {
  const Veld* veld;
  int index;  // in a row of values, else 0
  std::string naam;

  size_t plaats() const;   // first byte in the record
  size_t breedte() const;  // bytes
};
std::vector<CsvKolom> csv_kolommen(Velden);
/// The value as text.
std::string csv_waarde(const CsvKolom&, std::span<const uint8_t> rec);
/// Puts a text in the record; the objection, empty for none. Hidden text goes in plain.
std::string csv_zet(const CsvKolom&, std::string_view tekst, std::span<uint8_t> rec);

/// The heading and a record as a line without its end.
std::string csv_kop(std::span<const CsvKolom>);
std::string csv_regel(std::span<const CsvKolom>, std::span<const uint8_t> rec);
std::string csv_json(std::span<const CsvKolom>, std::span<const uint8_t> rec);

/// What a text says: values by column name, line by line. `fout` is empty or says what stops the
/// reading, with its line in `regel`.
struct CsvRij {
  int regel;
  std::vector<std::pair<std::string, std::string>> waarden;
};
struct CsvTekst {
  std::vector<CsvRij> rijen;
  std::string fout;
  int regel = 0;
};
/// Semicolons, commas or tabs, whichever the heading has; a text that begins with '[' or '{' is
/// JSON.
CsvTekst csv_lees(std::string_view tekst);
