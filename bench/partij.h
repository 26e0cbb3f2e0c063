// A store that is measured: ours and its peers do the same work through the same few operations.
// Every insert and update is visible to other processes when the call returns; none waits for the
// disk. The current directory is the store's own.
#pragma once

#include <cstdint>
#include <span>

#include "bench/tabel.h"
#include "sub/records.h"

struct Partij {
  Kolom kolom;
  /// Opens the store of series, empty and anew when `nieuw`. A fault ends the run.
  void (*open)(bool nieuw);
  void (*sluit)();
  void (*vul)(std::span<const DtSer>);
  bool (*lees)(const Serienr&, DtSer*);
  /// Every record in the order of key 1, and by way of key 2: loop_tel over all of them. Null where
  /// there is no order.
  uint64_t (*loop)();
  uint64_t (*loop_tweede)();
  bool (*voeg)(const DtSer&);
  /// Adds one to the stock of a series, so that no other process's addition is lost.
  bool (*wijzig)(const Serienr&);
  /// The three keys over a million records that stand: made ready untimed, then built. Null: none.
  void (*bouw_klaar)(uint32_t n);
  void (*bouw)();
};

extern const Partij PARTIJ_ONS, PARTIJ_ONS_GEWOON, PARTIJ_SQLITE_WAL, PARTIJ_SQLITE_ROL,
    PARTIJ_LMDB, PARTIJ_BDB_CDB, PARTIJ_BDB_TDS, PARTIJ_TDB;

inline const char* partij_naam(const Partij& p) { return KOLOM_NAAM[p.kolom]; }

/// A sum that tells another order too.
inline void loop_tel(uint64_t* som, const DtSer& r) { *som = *som * 31 + r.voorraad; }

[[noreturn]] void meet_fout(const char* wie, const char* wat);
