// Rows into an SQLite database as fast as one core goes: one transaction, prepared inserts, no
// journal. The file is nothing until sqlite_sluit has said that it is whole.
#pragma once

#include <sqlite3.h>

#include <array>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "tools/velden.h"

struct SqliteDb {
  sqlite3* db = nullptr;
  std::string fout;  // the first one; what comes behind it does nothing
  int64_t rijen = 0;

  bool goed() const { return fout.empty(); }
};

void sqlite_open(SqliteDb*, const std::string& pad);
void sqlite_doe(SqliteDb*, const std::string& sql);
/// Commits, closes and brings the file to the disk; false with `fout`.
bool sqlite_sluit(SqliteDb*, const std::string& pad);

/// A prepared insert. Values go in from left to right; `rij` writes them.
struct SqliteRij {
  /// Makes the table; `vorm` is what stands behind its name, with `aantal` columns.
  SqliteRij(SqliteDb*, const std::string& tabel, const std::string& vorm, int aantal);
  ~SqliteRij() { sqlite3_finalize(st); }
  SqliteRij(const SqliteRij&) = delete;
  SqliteRij& operator=(const SqliteRij&) = delete;

  void getal(int64_t v) { sqlite3_bind_int64(st, ++plaats, v); }
  void niets() { sqlite3_bind_null(st, ++plaats); }
  /// Null when it is not there.
  void misschien(bool er, int64_t v) { er ? getal(v) : niets(); }
  void datum(uint16_t nummer);  // "2026-03-15"; null for none
  /// The bytes must stay until the row is written.
  void tekst(std::string_view utf8) {
    sqlite3_bind_text(st, ++plaats, utf8.data(), static_cast<int>(utf8.size()), SQLITE_STATIC);
  }
  void veld(std::string_view cp850);  // bytes of a field, up to the first zero
  void eigen(std::string utf8);       // kept here until the row is written
  void rij();

  SqliteDb* doel;
  sqlite3_stmt* st = nullptr;
  int plaats = 0;
  size_t bewaard = 0;
  std::array<std::string, 64> bewaar;  // texts that had to be made; a row has no more columns
};

/// A table of records by their fields: a column each, and for a row of values a table of its own,
/// NAME_field (record, nr, waarde), of the values that are there.
struct SqliteTabel {
  SqliteTabel(SqliteDb*, const std::string& naam, Velden, const std::string& sleutel);
  /// `nummer` is the value of the key column: the slot in the file, or what numbers the records.
  void zet(int64_t nummer, std::span<const uint8_t> rec);

  std::vector<Veld> los, reeks;
  SqliteRij hoofd;
  std::vector<std::unique_ptr<SqliteRij>> kinderen;
};
