// What the rooms of the file engine share among themselves: the state of a handle, blocks and keys.
#pragma once

#include <climits>
#include <cstring>
#include <string>

#include "isam/ix.h"

/// What is allocated behind every handle: its block, and what only the rooms of the engine need.
struct IxHandvat {
  ICB icb;
  // The last record that was read through an entry which no longer is its key (a private index over
  // a table at work): going on from the record would find the same entry again, for ever.
  int32_t scheef_no;  // record number + 1, 0 none
  int32_t scheef_key;
  uint8_t beeld[IX_SLEUTELBYTES];   // key of the record as it was read
  uint8_t ingang[IX_SLEUTELBYTES];  // key of the entry
  // The definitions of the header that was last found sound.
  bool gekeurd;
  int8_t aantal;
  int16_t lengte;
  IxSleutel sleutels[IX_SLEUTELS];
};

/// Files of a table or private index by its name.
struct IxPaden {
  std::string index, data;
  bool privaat;
};
IxPaden ix_paden(const char* name);

// A null handle is a programmer's fault: "NAME : ICB == NULL".
[[noreturn]] void ix_leeg(const char* naam);
inline void ix_test(const ICB* icb, const char* naam) {
  if (icb == nullptr) ix_leeg(naam);
}
/// Ends the run: "name: description --> Niet consistent".
[[noreturn]] void ix_kapot(const ICB* icb);
/// "%-11.11s: %-19.19s --> %s" of a handle; with a point behind it when `punt`.
std::string ix_melding(const ICB* icb, const char* tekst, bool punt = false);
/// "TQISAM(%d): %s ", the run ends.
[[noreturn]] void ix_open_fout(int fout, const std::string& pad);

// Keys --------------------------------------------------------------------------------------------

/// The current key's number: 1 where the handle holds no block yet.
inline int ix_huidig(const ICB* icb) {
  const int k = icb->block.key_number;
  return k >= 1 && k <= icb->key_count && k <= IX_SLEUTELS ? k : 1;
}
inline const IxSleutel& ix_sleutel(const ICB* icb) { return icb->keys[ix_huidig(icb) - 1]; }
/// Bytes of an entry of the key.
inline int ix_ingang(const IxSleutel& s) { return s.key_length + 4; }

/// Key image of a record: `lengte` bytes, then zeros up to the key's length (60 bytes at most).
void ix_beeld(const ICB* icb, const IxSleutel& s, const void* rec, int lengte, int32_t recno,
              uint8_t* uit);
/// Three-way comparison of two images of a key over `lengte` bytes.
int ix_vergelijk_velden(const IxSleutel& s, const uint8_t* a, const uint8_t* b, int lengte);

/// Bytes in order, as the machine's words: a key is a few of them, too few for a call of memcmp.
inline int ix_woorden(const uint8_t* a, const uint8_t* b, int n) {
  uint64_t x, y;
  for (; n >= 8; n -= 8, a += 8, b += 8) {
    memcpy(&x, a, sizeof x);
    memcpy(&y, b, sizeof y);
    if (x != y) return __builtin_bswap64(x) < __builtin_bswap64(y) ? -1 : 1;
  }
  for (; n > 0; --n, ++a, ++b)
    if (*a != *b) return *a - *b;
  return 0;
}

/// Has the key nothing but integer fields? Their types, at most ten, are looked at together: 'I'
/// and zero have no bit that is in the mask, 'C' has one.
inline bool ix_getallen(const IxSleutel& s) {
  static_assert(IX_VELDEN == 10 && (('I' & 0xB6) == 0) && (('C' & 0xB6) != 0));
  uint64_t acht;
  uint16_t twee;
  memcpy(&acht, s.field_type, sizeof acht);
  memcpy(&twee, s.field_type + 8, sizeof twee);
  return s.field_type[0] == 'I' && (acht & 0xB6B6B6B6B6B6B6B6U) == 0 && (twee & 0xB6B6U) == 0;
}

inline int ix_vergelijk(const IxSleutel& s, const uint8_t* a, const uint8_t* b, int lengte) {
  if (ix_getallen(s)) return ix_woorden(a, b, lengte < IX_SLEUTELBYTES ? lengte : IX_SLEUTELBYTES);
  return ix_vergelijk_velden(s, a, b, lengte);
}
/// Bytes of the first `velden` fields; 0 or less: the whole key.
int ix_lengte(const IxSleutel& s, int velden);
/// Two 'C' fields of n bytes under the collation.
int ix_collatie(const uint8_t* a, const uint8_t* b, int n);
/// The letters that a 'C' field of n bytes compares by first; how many, 2 * n at most.
int ix_letters(const uint8_t* veld, int n, uint8_t* uit);
/// True when definitions and counters can be worked with: no index or length out of bounds.
bool ix_kop_geldig(const ICB* icb);

// Header ------------------------------------------------------------------------------------------

/// Reads block 0 under the header lock; a header that cannot be worked with ends the run.
void ix_kop_lees(ICB* icb);
void ix_kop_schrijf(const ICB* icb);
/// The header protocol around each change in shared mode: lock, read, mark busy; write, unlock.
void ix_kop_open(ICB* icb);
void ix_kop_dicht(ICB* icb);
/// Cuts the index down to its header, marked as being updated: whoever dies now leaves definitions
/// to rebuild from.
void ix_kap_index(ICB* icb);
/// Nobody else can change the index now.
inline bool ix_alleen(const ICB* icb) {
  return icb->file_locked != 0 || icb->mode == IX_EXCLUSIEF || icb->kop_slot != 0;
}

// Tree --------------------------------------------------------------------------------------------

void IXRDIX(ICB*, int32_t blok);
/// The same for one try; false when the file does not hold the block, with the buffer empty.
bool ix_lees_blok(ICB*, int32_t blok);
/// Reads the buffered block again; false, with the buffer as it was, when it changed.
bool ix_zelfde_blok(ICB*);
void IXWRIX(ICB*, int32_t blok);
/// Sets `entry` to the first entry at or above key_buf; `gelijk` tells whether it equals it.
int IXLOCKEY(ICB*, int lengte, bool* gelijk = nullptr);
int32_t IXFINDBLK(ICB*, char op, int lengte);
/// The record beside the one that the handle stands on, whose key is in key_buf, if it is in the
/// same leaf and the leaf as read again is the same; else -1, and only a search can tell.
int32_t ix_stap(ICB*, char op, int lengte);
void IXINSKEY(ICB*);
/// Removes the entry of key_buf that leads to `wijzer`; false when the key is not there.
bool IXDELKEY(ICB*, int32_t wijzer);
/// The key lies between the first and last entry of the buffered block.
bool ix_in_blok(const ICB* icb, char op, int lengte);
/// Puts key_buf with record_no into the current key's tree; takes it out, false when it is not
/// there.
void ix_zet_sleutel(ICB* icb);
bool ix_neem_sleutel(ICB* icb);
/// Image `voor` of key k, 60 bytes, gives way to `na`.
void ix_wissel_sleutel(ICB* icb, int k, const uint8_t* voor, const uint8_t* na);
/// The same as a rebuild does it: from the leaf in the buffer, or else from the root.
void ix_schuif_in(ICB* icb, const void* rec, int32_t recno);
void ix_voeg_sleutels(ICB* icb, const void* rec);
bool ix_wis_sleutels(ICB* icb, const void* rec);

/// What the process remembers of index blocks; see isam/wegwijs.cc. `onthoud` takes the buffer as
/// block `blok`; `blok` gives one back, which is only what the file holds while the handle has the
/// whole file; `spring` reads the leaf that should hold key_buf, false when it does not: then the
/// buffer may hold anything. `wis` forgets all of a file.
void ix_weg_onthoud(const ICB*, int32_t blok);
bool ix_weg_blok(ICB*, int32_t blok);
bool ix_weg_spring(ICB*, char op, int lengte);
void ix_weg_wis(int fd) noexcept;
/// A search that changes nothing afterwards, where the header lock is held: the way need not be
/// sound, only the leaf.
int32_t ix_zoek_blad(ICB*, char op, int lengte);

/// A block in pieces of a cache line: one copy of this size is compiled to a slow string move.
inline void ix_kopieer(void* naar, const void* van) {
  for (int i = 0; i < IX_BLOK; i += 64)
    memcpy(static_cast<uint8_t*>(naar) + i, static_cast<const uint8_t*>(van) + i, 64);
}

inline uint8_t* ix_plaats(ICB* icb, int nr, int breed) { return icb->block.entries + nr * breed; }
inline const uint8_t* ix_plaats(const ICB* icb, int nr, int breed) {
  return icb->block.entries + nr * breed;
}
/// The entry that the last search stopped at; null when there is none.
const uint8_t* ix_gevonden(const ICB* icb);

int32_t ix_i32(const uint8_t* p);
void ix_zet_i32(uint8_t* p, int32_t v);

/// The write-back cache of a rebuild: 'I' begins (true when on; `blok` above 0: with at most so
/// many blocks), 'R' and 'W' a block, 'F' writes all.
uint8_t IOCACHE(char actie, ICB*, int32_t blok);
/// Blocks that the cache holds at most, 50 or more; a test makes it small.
extern size_t ix_cache_plaatsen;

/// The fast rebuild of an index that was cut to its header: reads the data once, chains the deleted
/// slots, writes all blocks but the header; `per` slots at a time count as entered key by key.
/// False when it is not for this table (equal keys, or more memory than is fit): nothing of the
/// index was written then.
bool ix_bouw_snel(ICB* icb, int32_t per);
/// Cleared by a test that wants the plain road.
extern bool ix_snel_bouwen;

// Records -----------------------------------------------------------------------------------------

/// Does a piece of a file lie across pages, so that a write of it comes in parts?
inline bool ix_over_pagina(int64_t plaats, size_t n) {
  return plaats / 4096 != (plaats + static_cast<int64_t>(n) - 1) / 4096;
}
bool ix_levend(const uint8_t* rec, int lengte);
/// Offset of record_no in the data file; a negative one ends the run.
int64_t IXSEEKDAT(const ICB* icb);
/// Reads slot record_no, 0xFF where the file is short; true for a live record.
bool IXRDDAT(const ICB* icb, void* rec);
/// The same under this process's own lock on the record: nobody else is writing it.
bool ix_lees_eigen(const ICB* icb, void* rec);
void IXWRDAT(const ICB* icb, const void* rec);
/// Between begin and end IXWRDAT keeps what it adds at the end of the file and writes it in pieces,
/// for one handle at a time; see isam/aanhang.cc. `uit` writes what was kept, `aanhang` keeps the
/// record if it can.
void ix_aanhang_begin(const ICB* icb);
void ix_aanhang_einde(const ICB* icb);
void ix_aanhang_uit(const ICB* icb);
bool ix_aanhang(const ICB* icb, const void* rec);
/// The start of a key that a limited read must not leave; length 0: no limit.
struct IxGrens {
  uint8_t sleutel[IX_SLEUTELBYTES];
  int lengte;
};
/// Reads slot record_no, to which a walk in the direction of `op` has come, if it was read ahead
/// and the file still holds the same; see isam/vooruit.cc. False: it is to be read.
bool ix_vooruit(const ICB* icb, void* rec, char op, const IxGrens& grens);
/// Ends the scan in slot order if it is this handle's.
void ix_seq_los(const ICB* icb) noexcept;
/// Two work buffers of a record's size, for one operation at a time.
uint8_t* ix_werk(int nr);

// Handles -----------------------------------------------------------------------------------------

ICB* ix_nieuw();
void ix_vrij(ICB* icb);
/// IXCREATE; with `houd` the old index keeps its contents, under the lock that the mode asks for.
ICB* ix_maak(const char* name, int mode, bool houd);
/// The process-wide commit setting, copied to each handle at open.
int ix_commit();
/// True for version 350, which cannot be used; any other but the present one is made the present
/// one.
bool ix_versie_350(ICB* icb);
/// Takes a lock that is held for milliseconds: tries for a while before anybody is told.
void ix_slot_wacht(ICB* icb, int64_t offset);

inline int64_t ix_blokplaats(int64_t blok) { return blok * IX_BLOK; }
