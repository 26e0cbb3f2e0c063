// A store that is measured: ours and its peers do the same work through the same few operations.
// Every insert and update is visible to other processes when the call returns; none waits for the
// disk. The current directory is the store's own.
#pragma once

#include <cstdint>
#include <span>

#include "sub/records.h"

struct Partij {
  const char* naam;
  /// Opens the store of series, empty and anew when `nieuw`. A fault ends the run.
  void (*open)(bool nieuw);
  void (*sluit)();
  void (*vul)(std::span<const DtSer>);
  bool (*lees)(const Serienr&, DtSer*);
  /// Every record in the order of key 1: the sum of their stock; null where there is no order.
  uint64_t (*loop)();
  bool (*voeg)(const DtSer&);
  /// Adds one to the stock of a series, so that no other process's addition is lost.
  bool (*wijzig)(const Serienr&);
  /// The three keys over a million records that stand: made ready untimed, then built. Null: none.
  void (*bouw_klaar)(uint32_t n);
  void (*bouw)();
};

extern const Partij PARTIJ_ONS, PARTIJ_SQLITE_WAL, PARTIJ_SQLITE_ROL, PARTIJ_LMDB, PARTIJ_BDB_CDB,
    PARTIJ_BDB_TDS, PARTIJ_TDB;

[[noreturn]] void meet_fout(const char* wie, const char* wat);
