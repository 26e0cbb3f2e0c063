// Records that a walk along a key is about to ask for.
//
// One reading of a record says little: another process may be in the middle of writing it. So every
// record is read twice, with a moment between the readings at which nobody had the header. A walk
// knows from its leaf which records come next: they are read a first time together, one look at the
// header serves them all, and the second reading happens when the walk asks for each. What differs
// by then is read as if nothing had been read ahead; nothing is given that the file does not hold
// at the moment of asking. Only where reading is a copy in memory: a call to the system too many
// costs more than it saves.

#include <algorithm>

#include "isam/io.h"
#include "isam/ix_intern.h"

namespace {

constexpr int HOOGST = 32, LANGST = 512, EERST = 4;

struct {
  const ICB* van = nullptr;
  uint32_t opening = 0;  // of its data file
  int32_t blok = 0;      // leaf of the last step
  char op = 0;
  int stappen = 0;  // on end in that leaf and direction
  int wens = 0;     // records to read ahead next time
  int aantal = 0, plaats = 0;
  int32_t nummers[HOOGST];
  alignas(64) uint8_t bytes[HOOGST][LANGST];
} v;

int64_t plaats_van(const ICB* icb, int32_t nummer) {
  return static_cast<int64_t>(nummer) * icb->record_length;
}

/// Notes the step; true when it goes on where the one before it went.
bool zelfde_loop(const ICB* icb, char op) {
  const uint32_t opening = io_opening(icb->data_fd);
  const bool zelfde = v.van == icb && v.opening == opening && v.op == op;
  if (!zelfde) v.aantal = v.wens = v.stappen = 0;
  if (!zelfde || v.blok != icb->block_no) v.aantal = v.stappen = 0;
  v.van = icb;
  v.opening = opening;
  v.op = op;
  v.blok = icb->block_no;
  return ++v.stappen > 2 || v.wens > 0;
}

/// Takes the first reading of the records behind the entry that the handle stands on.
void haal(const ICB* icb, char op, const IxGrens& grens) {
  const IxSleutel& s = ix_sleutel(icb);
  const int breed = ix_ingang(s), richting = op == '>' ? 1 : -1;
  const auto lengte = static_cast<size_t>(icb->record_length);
  v.wens = v.wens == 0 ? EERST : std::min(v.wens * 2, HOOGST);
  v.aantal = v.plaats = 0;
  const int hier = (icb->entry - 5) / breed;
  int nummers = 0;
  for (int nr = hier; nr >= 0 && nr < icb->block.count && nummers < v.wens; nr += richting) {
    const uint8_t* ingang = ix_plaats(icb, nr, breed);
    const int32_t nummer = ix_i32(ingang + s.key_length);
    if (nummer < 0 || ix_vergelijk(s, grens.sleutel, ingang, grens.lengte) != 0) break;
    if (!io_raak_aan(icb->data_fd, plaats_van(icb, nummer), lengte)) break;
    v.nummers[nummers++] = nummer;
  }
  for (int i = 0; i < nummers; ++i)
    if (io_lees(icb->data_fd, v.bytes[i], lengte, plaats_van(icb, v.nummers[i])) !=
        icb->record_length)
      return;
  // Who writes the records of a private index cannot be seen from it.
  if (icb->is_private == 0 && !file_lock('T', icb->index_fd, 0, IX_BLOK)) return;
  v.aantal = nummers;
}

/// One reading is enough for whoever has the table alone; the processor may fetch it beforehand.
void raak_aan(const ICB* icb, char op) {
  constexpr int AFSTAND = 4;
  const IxSleutel& s = ix_sleutel(icb);
  const int breed = ix_ingang(s);
  const int nr = (icb->entry - 5) / breed + (op == '>' ? AFSTAND : -AFSTAND);
  if (nr < 0 || nr >= icb->block.count) return;
  const int32_t nummer = ix_i32(ix_plaats(icb, nr, breed) + s.key_length);
  if (nummer >= 0)
    io_raak_aan(icb->data_fd, plaats_van(icb, nummer), static_cast<size_t>(icb->record_length));
}

}  // namespace

bool ix_vooruit(const ICB* icb, void* rec, char op, const IxGrens& grens) {
  const auto lengte = static_cast<size_t>(icb->record_length);
  if (ix_alleen(icb)) raak_aan(icb, op);
  if (ix_alleen(icb) || lengte > LANGST) return false;
  if (!zelfde_loop(icb, op)) return false;
  if (v.plaats >= v.aantal || v.nummers[v.plaats] != icb->record_no) haal(icb, op, grens);
  if (v.plaats >= v.aantal) return false;
  const int64_t plaats = plaats_van(icb, icb->record_no);
  const uint8_t* eerst = v.bytes[v.plaats++];
  // Those of a private index that lie across two pages need a look at their own lock.
  if (icb->is_private != 0 && ix_over_pagina(plaats, lengte)) return false;
  if (!io_zelfde(icb->data_fd, eerst, lengte, plaats)) return false;
  memcpy(rec, eerst, lengte);
  return true;
}
