// The indexed file engine: keyed tables of fixed-length records, shared by processes without a
// server.
//
// A table NAME is a pair of files: NAME.TXT, an array of records, and NAME.INX, 512-byte blocks
// with a header, one B+-tree a key and a small queue of locked keys. A name whose last path
// component has a point, NAME.SUF, is a private index: the path itself is the index file, over the
// records of NAME.TXT. Everything is done with POSIX record locks (fcntl F_SETLK, F_GETLK).
//
// Conventions of all calls: the handle comes first; the key is always taken from the record buffer,
// which is record_length bytes long; the result is truth (not found is an answer, not an error);
// a real fault ends the run through ix_hooks.fataal. Files are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "isam/formaat.h"

inline constexpr int IX_BLOK = 512;         // bytes of a block of NAME.INX
inline constexpr int IX_KOP = 260;          // bytes of the header that are read
inline constexpr int IX_SLEUTELS = 5;       // keys a table
inline constexpr int IX_VELDEN = 10;        // fields a key
inline constexpr int IX_SLEUTELBYTES = 60;  // bytes of a key
inline constexpr int IX_DIEPTE = 10;        // levels of a tree
inline constexpr int IX_INGANGEN = 505;     // bytes of entries in a block
inline constexpr int16_t IX_VERSIE = 351;

/// Modes of IXOPEN and IXCREATE.
inline constexpr int IX_LEES = 0;        // read-only: IXWRITE refuses
inline constexpr int IX_EXCLUSIEF = 1;   // whole file locked, header in memory until IXCLOSE
inline constexpr int IX_GEDEELD = 2;     // each write under the header lock
inline constexpr int IX_VRAAG = 0x1000;  // added: ask the operator when access is refused

/*   OFFSET SIZE FIELD         one key definition, 42 bytes
 *        0    8 key_name      not terminated when full
 *        8    1 dup           'N' no duplicates, 'J' duplicates allowed
 *        9    1 key_length    bytes of the key, the 4 of the record number of a 'J' key included
 *       10    1 max_entries   505 / (key_length + 4): a block splits when it reaches this
 *       11   10 field_type    'C', 'I'; the first zero ends the list
 *       21   10 field_start   first byte in the record, from 1
 *       31   10 field_end     last byte in the record, from 1
 *       41    1 -             zero                                                            */
struct IxSleutel {
  char key_name[8];
  char dup;
  uint8_t key_length;
  int8_t max_entries;
  char field_type[IX_VELDEN];
  uint8_t field_start[IX_VELDEN];
  uint8_t field_end[IX_VELDEN];
  uint8_t nul;
};
static_assert(sizeof(IxSleutel) == 42 && offsetof(IxSleutel, field_end) == 31);

/*   OFFSET SIZE FIELD      one index block, 512 bytes
 *        0    1 key_number key whose tree holds this block (the lock queue: 1)
 *        1    1 level      1 leaf, one more for each level above
 *        4    1 count      entries in use
 *        5  505 entries    key image + 32-bit pointer, back to back; the rest is zero
 *      510    2 -          zero                                                               */
struct IxBlok {
  int8_t key_number, level;
  uint8_t nul[2];
  int8_t count;
  uint8_t entries[IX_INGANGEN];
  uint8_t staart[2];
};
static_assert(sizeof(IxBlok) == IX_BLOK && offsetof(IxBlok, entries) == 5);

/// The handle of an open table or private index, and its cursor: two scans take two handles.
/// The first 260 bytes are the header as it stands in block 0 of the index file.
struct ICB {
  char name[11];         // file name without directory, not always terminated
  int8_t key_count;      // 1 to 5
  int32_t free_head;     // first deleted slot, -1 none
  int32_t record_count;  // slots, so the next new record number
  int32_t next_block;    // next free block, so the length of the index in blocks
  int16_t record_length;
  char description[19];  // a private series index keeps its key letters here
  int8_t busy;           // update-in-progress count, 0 when consistent
  uint8_t nul[2];
  IxSleutel keys[IX_SLEUTELS];
  int16_t version;  // 351
  // Behind the header image, never on disk:
  int32_t index_fd;
  int32_t data_fd;
  int32_t mode;         // IX_LEES, IX_EXCLUSIEF or IX_GEDEELD
  uint8_t file_locked;  // 1: this handle holds the whole file
  uint8_t is_private;   // 1: path with a point
  uint8_t kop_slot;     // header lock held: 1 position not yet trusted, 2 position sound
  uint8_t kop_vers;     // the buffered block was read or written under that lock
  int32_t block_no;     // number of the block in `block`
  int32_t record_no;    // current record, -1 none
  int32_t new_pointer;  // pointer that an insert stores
  uint8_t key_buf[IX_SLEUTELBYTES];
  IxBlok block;              // its key_number is the current key
  int32_t entry;             // offset of the current entry in `block`
  int32_t trail[IX_DIEPTE];  // trail[l]: parent of the buffered level-l block, -1 above the root
  int32_t commit;
  uint8_t cached;  // 1: blocks go through the rebuild cache
  char path[80];
};
static_assert(sizeof(ICB) == 992 && offsetof(ICB, keys) == 48 && offsetof(ICB, version) == 258);
static_assert(offsetof(ICB, index_fd) == IX_KOP && offsetof(ICB, free_head) == 12);

/// How the engine reaches a screen. The defaults work without one; SCRINIT fills them.
struct IxHooks {
  /// Shows a message on the bottom line for `seconden`; an empty text clears it.
  void (*regel)(const char* tekst, int seconden);
  /// The box of FFLASH: option > 0 waits that many seconds, -1 waits for Enter, -2 asks yes or no
  /// (the last line is the question) and returns the answer. Kind 1 and 2 select colour sets.
  int (*doos)(int optie, int soort, const char* titel, const char* tekst);
  /// A lock was refused: tell the operator who holds it, and wait two seconds.
  void (*wacht)(ICB*);
  /// The operator's cancel: switch polling on, and ask whether cancel was given.
  void (*afbreken_aan)();
  bool (*afgebroken)();
  /// Progress bar: titel non-null opens, deel of geheel moves, titel null with geheel 0 closes.
  void (*voortgang)(const char* titel, int64_t deel, int64_t geheel);
  /// A fault that ends the run; never returns.
  void (*fataal)(const char* tekst);
};
extern IxHooks ix_hooks;
extern const IxHooks IX_HOOKS_KAAL;  // the defaults: standard error, no waiting for a person

/// Ends the run through ix_hooks.fataal; exits with status 1 should the hook return.
[[noreturn]] void ix_fataal(const char* tekst);

// Tables ------------------------------------------------------------------------------------------

/// Makes NAME.INX (truncated) and NAME.TXT (an existing one survives; never made for a private
/// index). Definitions and IXINITIX follow. Never null.
ICB* IXCREATE(const char* name, int mode);
/// Opens; a missing or short file ends the run ("TQISAM(errno): path "). Never null.
ICB* IXOPEN(const char* name, int mode);
/// The same for a caller whose buffers hold records of `lengte` bytes: a header that says another
/// length is damaged and ends the run ("Niet consistent"). Programs open their tables so.
ICB* IXOPEN_LENGTE(const char* name, int mode, int lengte);
/// Writes the header in exclusive mode, gives up the file lock, closes, frees. Null is a fault.
void IXCLOSE(ICB*);
/// Definition strings: key 0 "description,record length"; key 1 to 5 any mix of NODUPS, a name, and
/// C or I with first and last byte: "key1,NODUPS,C,5,14,I,1,4". Key 1 is always NODUPS.
void IXUPDFCB(ICB*, int key_number, const char* definition);
/// The same strings built from addresses in a record; see isam/sleutel.cc.
void UPDFCB_INX(const char* description, const void* record, int length);
void UPDFCB_KEY(int key_number, const char* name, bool duplicates);
void UPDFCB_FLD(char type, const void* field, int length);
void UPDFCB_END(ICB*);
/// Writes the empty index: header, one root a key, the lock queue.
bool IXINITIX(ICB*);
/// Empties a table (index and data); of a private index only the index.
bool IXINIT(ICB*);
/// Number of deleted records when the table is sound, else -1. Repairs nothing.
int IXCHECK(const char* name);
/// The walk along the free chain in IXCHECK, on by default; without it a readable index is sound.
void IXCHECK_DIEP(bool aan) noexcept;
/// Builds NAME.INX anew from NAME.TXT and the definitions in the old header. 1 done, 0 not started.
int IXBLDIX(const char* name);
/// Deletes NAME.INX, then NAME.TXT (of a private index only itself); true when gone.
bool IXREMOVE(const char* name);

// Reading by key: true when a live record was read. n > 0 stays inside the group that equals the
// key in its first n fields; on failure record_no is -1.
bool IXREAD(ICB*, void* rec);
bool IXREADL(ICB*, void* rec);    // and locks the record, or the key of a record yet to come
void IXRELEASE(ICB*, void* rec);  // gives up what IXREADL took
bool IXEXISTS(ICB*, void* rec);
bool IXFIRSTR(ICB*, void* rec, int n = 0);
bool IXNEXT(ICB*, void* rec, int n = 0);
bool IXPREV(ICB*, void* rec, int n = 0);

// Reading keys without the record: n fields count, all fields of the key come back in rec.
bool IXFIRSTK(ICB*, void* rec, int n);
bool IXNEXTK(ICB*, void* rec, int n);
bool IXPREVK(ICB*, void* rec, int n);
bool IXFINDK(ICB*, void* rec, int n);

/// By record number: -1 out of range, 1 a live record, 0 a deleted one. Compare with == 1.
int IXGET(ICB*, void* rec, int32_t number);
/// Live records in slot order; one scan at a time in the whole process.
bool IXSEQ(ICB*, void* rec);
/// Forgets a scan that its caller left half-way.
void IXSEQ_STOP() noexcept;
/// Moves `steps` keys along from slot *number, n fields counting; *number follows.
bool IXSKIP(ICB*, void* rec, int n, int steps, int32_t* number);

// Writing.
bool IXWRITE(ICB*, void* rec);      // updates or inserts by key 1 and unlocks
bool IXWRITEKEEP(ICB*, void* rec);  // the same, keeping the lock
/// Rewrites the record that IXREADL holds, whichever of its keys differ, key 1 too, and unlocks:
/// one change of the slot, so whoever dies in it leaves the old record or the new one. False and
/// nothing changed, the lock included, when another record has that key 1 or no record is held.
bool IXUPDATE(ICB*, void* rec);
bool IXDELETE(ICB*, void* rec);  // the record just read; always answers false
void IXPUTREC(ICB*, void* rec);  // rewrites the slot under a lock held; no key may differ

// Keys.
void IXSWITCH(ICB*, int key_number);
void IXBLDKEY(ICB*, const void* rec, int length);
int IXKEYLEN(ICB*, int fields);  // bytes of the first fields; 0 the whole key
void IXKEYTOREC(ICB*, void* rec);
int IXCOMP(ICB*, const void* key_a, const void* key_b, int length);
int32_t IXSEARCH(ICB*, char op, int length);  // '=', '>', '<'; record number or -1
bool IXUNIQK(ICB*, void* rec, int fields);

// Private indexes: the caller copies the table's record_no into the index handle first.
void IXADDKEYS(ICB*, void* rec);
void IXDELKEYS(ICB*, void* rec);
/// The fast road into a private index of one key: 'O' begin, 'W' add, 'C' end. On a table that is
/// open in exclusive mode: between 'O' and 'C' IXWRITE writes blocks and records in larger pieces;
/// whoever dies in between leaves a table without its index. 'O' is true when there is such a road
/// now.
bool IXBULK(char action, ICB*, void* rec);

// Locks.
/// Codes 1 whole file, 2 header, 3 record, 4 key of a record yet to come; 11 to 14 give up.
bool IXLOCK(ICB*, int code);
/// 'S' sole, 'E' exclusive, 'T' test, 'U' unlock, from the start of the file; never waits.
/// Length 0 runs to the end and beyond.
bool file_lock(char letter, int fd, int64_t offset, int64_t length);
int commit_init();
/// Whole-file copies and appended logs: lockf from the current position (3, 4, 13, 14).
bool region_lock(int fd, int code, int64_t length);

/// Reads `length` bytes under code 3; the lock stays. Bytes read, or -1.
int64_t locked_read(int fd, void* buffer, size_t length);
/// Reads, and on a refusal shows the message and tries again.
int64_t retry_read(int fd, void* buffer, size_t length);
/// Writes at the current position, then unlocks what it wrote. Bytes written, or -1.
int64_t locked_write(int fd, const void* buffer, size_t length);
/// Appends a text of up to 883 characters to a log, under code 4.
int64_t locked_append(int fd, const char* formaat, std::span<const Arg> args);
template <class... A>
int64_t locked_printf(int fd, const char* formaat, const A&... a) {
  const Arg args[sizeof...(A) + 1] = {Arg(a)..., Arg(0)};
  return locked_append(fd, formaat, std::span<const Arg>(args, sizeof...(A)));
}

/// A message box cut to what fits: at most 20 lines of at most 76 characters, tabs as blanks.
struct FlashVorm {
  char regels[20][77];
  int aantal;      // lines
  int breedte;     // columns of the box, its frame included
  char titel[66];  // empty when the title is not 1 to 65 characters long
};
FlashVorm fflash_vorm(int option, const char* title, const char* text) noexcept;
/// The engine's message box; see IxHooks::doos. Text of up to 20 lines of 76 characters.
int FFLASH(int option, int kind, int attribute, const char* title, const char* text);

/// How many files the process can still open, 200 at most; entries that match a pattern.
int files_open_limit();
int FILES_PRESENT(const char* pattern);
/// Names and closes the files that are still open at the end of a run, and waits for Enter.
void files_left();
