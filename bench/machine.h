// What the machine can do at best: the bare system calls that each measurement cannot do without.
#pragma once

#include <cstdint>

/// Opens scratch files in the current directory, the size of the table of series and its index.
void machine_open();
void machine_sluit();
/// A block of the index and a record, somewhere.
void machine_lees(uint64_t toeval);
/// A header lock and its release, the header read and written twice, and one block written for
/// each of `blokken` keys that change, one record.
void machine_schrijf(uint64_t toeval, int blokken);
/// Reads `gelezen` bytes in a row and writes `geschreven` in pieces of 32 KB.
void machine_stroom(int64_t gelezen, int64_t geschreven);
/// The balance's transfers: n records of 404 bytes read, n of 432 written and read back by place.
void machine_pas(uint32_t n);

/// Microseconds of one step, the files in memory: a block read and written at random places, a lock
/// taken and given up, asked for, and a block copied out of a mapping.
struct MachineKosten {
  double lees, schrijf, slot, vraag, kopie;
};
MachineKosten machine_kosten();
