// Two calls on SQLite that end the run on a fault.
#pragma once

#include <sqlite3.h>

#include "bench/partij.h"

inline void sq_doe(sqlite3* db, const char* sql) {
  if (sqlite3_exec(db, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
    meet_fout(sql, sqlite3_errmsg(db));
}
inline sqlite3_stmt* sq_maak(sqlite3* db, const char* sql) {
  sqlite3_stmt* s = nullptr;
  if (sqlite3_prepare_v3(db, sql, -1, SQLITE_PREPARE_PERSISTENT, &s, nullptr) != SQLITE_OK)
    meet_fout(sql, sqlite3_errmsg(db));
  return s;
}
