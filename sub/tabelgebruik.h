// Small guards for whoever works on an open table: a key for a while, a handle of one's own, and a
// record taken away under its lock.
#pragma once

#include "isam/ix.h"
#include "sub/tabeldef.h"

/// Puts a table on a key and back on its own at the end of the scope.
struct OpSleutel {
  OpSleutel(ICB* tabel, int nieuw) : icb(tabel), oud(tabel->block.key_number) {
    if (oud != nieuw) IXSWITCH(icb, nieuw);
  }
  ~OpSleutel() {
    if (icb->block.key_number != oud && oud > 0) IXSWITCH(icb, oud);
  }
  OpSleutel(const OpSleutel&) = delete;
  OpSleutel& operator=(const OpSleutel&) = delete;
  ICB* icb;
  int oud;
};

/// A handle for reading on a key, for as long as it lives: the run's own stays where its user left
/// it.
struct EigenTabel {
  EigenTabel(const char* naam, int sleutel) : icb(tabel_open(naam, IX_LEES)) {
    IXSWITCH(icb, sleutel);
  }
  ~EigenTabel() { IXCLOSE(icb); }
  EigenTabel(const EigenTabel&) = delete;
  EigenTabel& operator=(const EigenTabel&) = delete;
  ICB* icb;
};

/// Deletes a record by its key, under its lock; false when it went meanwhile. The caller's copy
/// stays, so that a walk goes on from it.
template <class Rec>
bool verwijder(ICB* tabel, const Rec& rec) {
  Rec vast = rec;
  if (IXREADL(tabel, &vast)) {
    IXDELETE(tabel, &vast);
    return true;
  }
  vast = rec;
  IXRELEASE(tabel, &vast);  // what is not there stands in the queue of keys
  return false;
}
