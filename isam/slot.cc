// Locks between processes. All of them are fcntl record locks, found by process number; none waits
// in the kernel. A header or queue lock is held for milliseconds, so a refused one is tried again
// for a fifth of a second before an operator hears of it; a record may be held through somebody's
// lunch.
//
// The order is: file lock at open; record or queued key; header; the queue's own lock innermost.

#include <fcntl.h>
#include <sched.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "isam/io.h"
#include "isam/ix_intern.h"
#include "isam/teksten.h"

namespace {

bool vraag_slot(int fd, int opdracht, short soort, int64_t offset, int64_t length,
                struct flock* antwoord = nullptr) {
  struct flock fl = {};
  fl.l_type = soort;
  fl.l_whence = SEEK_SET;
  fl.l_start = offset;
  fl.l_len = length;
  const bool uit = fcntl(fd, opdracht, &fl) == 0;
  if (antwoord != nullptr) *antwoord = fl;
  return uit;
}

bool vrij_van_anderen(int fd, int64_t offset, int64_t length) {
  struct flock fl;
  return vraag_slot(fd, F_GETLK, F_WRLCK, offset, length, &fl) && fl.l_type == F_UNLCK;
}

int64_t nu_us() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<int64_t>(t.tv_sec) * 1000000 + t.tv_nsec / 1000;
}

constexpr int64_t GEDULD_US = 200000;
constexpr int VLUGGE_POGINGEN = 20;

/// 'E' on a block of the index, tried again for a short while.
bool probeer_even(int fd, int64_t offset) {
  // It is held for some microseconds: whoever has it is at work on the other core, or waits for
  // ours.
  for (int keer = 0; keer < VLUGGE_POGINGEN; ++keer) {
    if (file_lock('E', fd, offset, IX_BLOK)) return true;
    sched_yield();
  }
  const int64_t einde = nu_us() + GEDULD_US;
  int64_t pauze_us = 50;
  while (!file_lock('E', fd, offset, IX_BLOK)) {
    if (nu_us() >= einde) return false;
    const timespec rust{0, pauze_us * 1000};
    nanosleep(&rust, nullptr);
    pauze_us = std::min<int64_t>(pauze_us * 2, 10000);
  }
  return true;
}

/// The whole file: data first, then the header, and nothing kept while waiting. An inserter that
/// holds the header may be after a slot of ours.
bool heel_bestand(ICB* icb) {
  if (icb->file_locked != 0) return true;
  for (;;) {
    const bool data = icb->is_private != 0 || file_lock('S', icb->data_fd, 0, 0);
    if (data && file_lock('E', icb->index_fd, 0, IX_BLOK)) break;
    if (data && icb->is_private == 0) file_lock('U', icb->data_fd, 0, 0);
    ix_hooks.wacht(icb);
  }
  icb->file_locked = 1;
  ix_weg_wis(icb->index_fd);  // from here on what is remembered is what the file holds
  return true;
}

bool heel_los(ICB* icb) {
  icb->file_locked = 0;
  if (icb->is_private == 0) file_lock('U', icb->data_fd, 0, 0);
  return file_lock('U', icb->index_fd, 0, IX_BLOK);
}

bool record_slot(ICB* icb, char letter) {
  if (icb->file_locked != 0) return true;
  const int64_t lengte = icb->record_length;
  if (icb->record_no >= 0 && file_lock(letter, icb->data_fd, icb->record_no * lengte, lengte))
    return true;
  if (letter != 'U') ix_hooks.wacht(icb);
  return false;
}

// The queue of keys that somebody is about to enter -----------------------------------------------

struct Rij {
  alignas(64) IxBlok blok;
  int64_t plaats;
  int breed, aantal, hoogst;
};

Rij rij_lees(const ICB* icb) {
  Rij rij{};
  rij.plaats = ix_blokplaats(icb->key_count + 1);
  rij.breed = icb->keys[0].key_length;
  // The count is a byte: a queue of one-byte keys is full before its block is.
  rij.hoogst = std::min(IX_INGANGEN / std::max(rij.breed, 1), 255);
  io_lees(icb->index_fd, &rij.blok, IX_BLOK, rij.plaats);
  rij.aantal = std::min<int>(static_cast<uint8_t>(rij.blok.count), rij.hoogst);
  return rij;
}

int rij_zoek(const ICB* icb, const Rij& rij) {
  for (int i = 0; i < rij.aantal; ++i)
    if (ix_vergelijk(icb->keys[0], icb->key_buf, rij.blok.entries + i * rij.breed, rij.breed) == 0)
      return i;
  return -1;
}

void rij_schrijf(const ICB* icb, Rij& rij) {
  rij.blok.key_number = 1;
  rij.blok.count = static_cast<int8_t>(rij.aantal);
  io_schrijf(icb->index_fd, &rij.blok, IX_BLOK, rij.plaats);
}

bool rij_bij(ICB* icb) {
  if (icb->file_locked != 0) return true;
  const int64_t plaats = ix_blokplaats(icb->key_count + 1);
  ix_slot_wacht(icb, plaats);
  Rij rij = rij_lees(icb);
  const bool bezet = rij_zoek(icb, rij) >= 0;
  if (!bezet) {
    if (rij.aantal >= rij.hoogst) ix_fataal(ix_melding(icb, txt(T_IX_QUEUE_VOL), true).c_str());
    memcpy(rij.blok.entries + rij.aantal * rij.breed, icb->key_buf, static_cast<size_t>(rij.breed));
    ++rij.aantal;
    rij_schrijf(icb, rij);
  }
  file_lock('U', icb->index_fd, plaats, IX_BLOK);
  if (bezet) ix_hooks.wacht(icb);
  return !bezet;
}

bool rij_af(ICB* icb) {
  if (icb->file_locked != 0) return true;
  // A key of ours was put in before we came here: an empty queue needs no lock to be left alone.
  if (rij_lees(icb).aantal == 0) return true;
  const int64_t plaats = ix_blokplaats(icb->key_count + 1);
  ix_slot_wacht(icb, plaats);
  Rij rij = rij_lees(icb);
  const int nr = rij_zoek(icb, rij);
  if (nr >= 0) {
    const auto n = static_cast<size_t>(rij.breed);
    uint8_t* laatste = rij.blok.entries + (rij.aantal - 1) * rij.breed;
    memmove(rij.blok.entries + nr * rij.breed, laatste, n);
    memset(laatste, 0, n);
    --rij.aantal;
    rij_schrijf(icb, rij);
  }
  file_lock('U', icb->index_fd, plaats, IX_BLOK);
  return true;
}

int commit_waarde = 0;

}  // namespace

bool file_lock(char letter, int fd, int64_t offset, int64_t length) {
  switch (letter) {
    case 'S':
      // A read lock alone keeps nobody out: it stands only if nobody else is in the range.
      if (!vraag_slot(fd, F_SETLK, F_RDLCK, offset, length)) return false;
      if (vrij_van_anderen(fd, offset, length)) return true;
      vraag_slot(fd, F_SETLK, F_UNLCK, offset, length);
      return false;
    case 'E':
      return vraag_slot(fd, F_SETLK, F_WRLCK, offset, length);
    case 'T':
      return vrij_van_anderen(fd, offset, length);
    case 'U':
      return vraag_slot(fd, F_SETLK, F_UNLCK, offset, length);
    default:
      return false;
  }
}

void ix_slot_wacht(ICB* icb, int64_t offset) {
  if (probeer_even(icb->index_fd, offset)) return;
  do {
    ix_hooks.wacht(icb);
  } while (!file_lock('E', icb->index_fd, offset, IX_BLOK));
}

bool IXLOCK(ICB* icb, int code) {
  ix_test(icb, "IXLOCK");
  switch (code) {
    case 1:
      return heel_bestand(icb);
    case 2:
      if (icb->file_locked == 0) ix_slot_wacht(icb, 0);
      return true;
    case 3:
      return record_slot(icb, 'S');
    case 4:
      return rij_bij(icb);
    case 11:
      return heel_los(icb);
    case 12:
      return icb->file_locked != 0 || file_lock('U', icb->index_fd, 0, IX_BLOK);
    case 13:
      return record_slot(icb, 'U');
    case 14:
      return rij_af(icb);
    default:
      return false;
  }
}

int ix_commit() { return commit_waarde; }

int commit_init() {
  const char* wens = getenv("COMMIT");
  if (wens != nullptr && strcmp(wens, "YES") == 0) commit_waarde = 1;
  if (wens != nullptr && strcmp(wens, "NO") == 0) commit_waarde = 0;
  return wens != nullptr && strcmp(wens, "YES") == 0;
}
