// Blocks and the header between file and handle. Guarantees: what stands in the handle is whole and
// within bounds, whatever the file holds; the header in memory was read under its lock; the mark of
// an update in progress is on disk while an update is.

#include <cstring>

#include "isam/io.h"
#include "isam/ix_intern.h"
#include "isam/teksten.h"

namespace {

/// A block that does not fit the definitions becomes an empty one without a level: outside every
/// search window, and no place for a change.
void keur(ICB* icb, int sleutel) {
  IxBlok& b = icb->block;
  const bool ons = b.key_number >= 1 && b.key_number <= icb->key_count;
  const int breed = ons ? ix_ingang(icb->keys[b.key_number - 1]) : 0;
  if (ons && b.level >= 1 && b.level <= IX_DIEPTE && b.count >= 0 && b.count * breed <= IX_INGANGEN)
    return;
  b.key_number = static_cast<int8_t>(sleutel);
  b.level = 0;
  b.count = 0;
}

void onthoud_pad(ICB* icb, int32_t blok) {
  const int niveau = icb->block.level;
  if (blok == icb->block.key_number && niveau < IX_DIEPTE) icb->trail[niveau] = -1;
  if (niveau >= 2 && niveau <= IX_DIEPTE) icb->trail[niveau - 1] = blok;
}

/// The file is shorter than the block's place: another process's file has not grown that far yet.
/// Tells so for a second; returns the block to try next.
int32_t wacht_op_groei(ICB* icb, int32_t blok, int sleutel) {
  if (ix_alleen(icb)) ix_kapot(icb);  // nobody can make it grow
  const std::string naam(icb->name, strnlen(icb->name, sizeof icb->name));
  ix_hooks.regel(str_format("TQISAM: %s.INX (EOF: r=%ld)", naam, blok).c_str(), 1);
  ix_hooks.regel("", 0);
  return io_grootte(icb->index_fd) >= ix_blokplaats(blok) + IX_BLOK ? blok : sleutel;
}

}  // namespace

bool ix_lees_blok(ICB* icb, int32_t blok) {
  const int sleutel = ix_huidig(icb);
  if (icb->cached != 0) {
    IOCACHE('R', icb, blok);
    keur(icb, sleutel);
  } else {
    if (icb->busy != 0 || blok < 0) ix_kapot(icb);
    const bool heel = icb->mode == IX_EXCLUSIEF && icb->file_locked != 0;
    const bool bekend = heel && ix_weg_blok(icb, blok);
    const int64_t plaats = ix_blokplaats(blok);
    const void* oud = icb->block_no == blok ? &icb->block : nullptr;
    const int64_t n = bekend           ? IX_BLOK
                      : ix_alleen(icb) ? io_lees(icb->index_fd, &icb->block, IX_BLOK, plaats)
                                       : io_lees_heel(icb->index_fd, &icb->block, IX_BLOK, plaats,
                                                      oud, {-1, icb->index_fd});
    icb->block_no = blok;
    if (n != IX_BLOK) {
      icb->block = IxBlok{};
      icb->block.key_number = static_cast<int8_t>(sleutel);
      return false;
    }
    keur(icb, sleutel);
    if (!bekend) ix_weg_onthoud(icb, blok);
  }
  icb->kop_vers = icb->kop_slot;
  if (blok != icb->key_count + 1) onthoud_pad(icb, blok);
  return true;
}

bool ix_zelfde_blok(ICB* icb) {
  if (icb->busy != 0) ix_kapot(icb);
  return ix_alleen(icb) ||
         io_zelfde(icb->index_fd, &icb->block, IX_BLOK, ix_blokplaats(icb->block_no));
}

void IXRDIX(ICB* icb, int32_t blok) {
  ix_test(icb, "IXRDIX");
  if (blok == 0) {
    ix_kop_lees(icb);
    return;
  }
  const int sleutel = ix_huidig(icb);
  while (!ix_lees_blok(icb, blok)) blok = wacht_op_groei(icb, blok, sleutel);
}

void IXWRIX(ICB* icb, int32_t blok) {
  ix_test(icb, "IXWRIX");
  if (blok == 0)
    ix_kop_schrijf(icb);
  else if (icb->cached != 0)
    IOCACHE('W', icb, blok);
  else {
    io_schrijf(icb->index_fd, &icb->block, IX_BLOK, ix_blokplaats(blok));
    ix_weg_onthoud(icb, blok);
  }
}

namespace {

bool sleutel_geldig(const IxSleutel& s, int record_length) {
  int lengte = s.dup == 'J' ? 4 : 0;
  for (int i = 0; i < IX_VELDEN && s.field_type[i] != 0; ++i) {
    if (s.field_type[i] != 'C' && s.field_type[i] != 'I') return false;
    if (s.field_start[i] < 1 || s.field_end[i] < s.field_start[i]) return false;
    if (s.field_end[i] > record_length) return false;
    lengte += s.field_end[i] - s.field_start[i] + 1;
  }
  return s.field_type[0] != 0 && lengte == s.key_length && lengte <= IX_SLEUTELBYTES &&
         s.max_entries >= 2 && s.max_entries * ix_ingang(s) <= IX_INGANGEN;
}

}  // namespace

namespace {

bool tellers_geldig(const ICB* icb) {
  return icb->record_count >= 0 && icb->next_block >= icb->key_count + 2;
}

}  // namespace

bool ix_kop_geldig(const ICB* icb) {
  // Five bytes are what a deleted slot takes: the mark and the chain.
  if (icb->key_count < 1 || icb->key_count > IX_SLEUTELS || icb->record_length < 5) return false;
  for (int k = 0; k < icb->key_count; ++k)
    if (!sleutel_geldig(icb->keys[k], icb->record_length)) return false;
  return tellers_geldig(icb);
}

void ix_kop_lees(ICB* icb) {
  // Definitions stay as they are while a table is open: looked at once, they are compared.
  auto* h = reinterpret_cast<IxHandvat*>(icb);
  if (io_lees(icb->index_fd, icb, IX_KOP, 0) != IX_KOP) ix_kapot(icb);
  const bool bekend = h->gekeurd && memcmp(h->sleutels, icb->keys, sizeof icb->keys) == 0 &&
                      h->aantal == icb->key_count && h->lengte == icb->record_length;
  if (!(bekend ? tellers_geldig(icb) : ix_kop_geldig(icb))) ix_kapot(icb);
  if (bekend) return;
  memcpy(h->sleutels, icb->keys, sizeof icb->keys);
  h->aantal = icb->key_count;
  h->lengte = icb->record_length;
  h->gekeurd = true;
}

void ix_kop_schrijf(const ICB* icb) {
  alignas(64) uint8_t blok[IX_BLOK] = {};
  memcpy(blok, icb, IX_KOP);
  io_schrijf(icb->index_fd, blok, IX_BLOK, 0);
}

void ix_kap_index(ICB* icb) {
  icb->busy = 1;
  ix_kop_schrijf(icb);
  icb->busy = 0;
  io_kap(icb->index_fd, IX_BLOK);
  ix_weg_wis(icb->index_fd);
}

void ix_kop_open(ICB* icb) {
  IXLOCK(icb, 2);
  ix_kop_lees(icb);
  if (icb->busy < INT8_MAX) {
    ++icb->busy;
    ix_kop_schrijf(icb);
    --icb->busy;
  }
  icb->kop_slot = 1;  // the position is from before the lock: the first search starts at the root
  icb->kop_vers = 0;
}

void ix_kop_dicht(ICB* icb) {
  ix_kop_schrijf(icb);
  icb->kop_slot = 0;
  IXLOCK(icb, 12);
}
