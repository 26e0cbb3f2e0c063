// Changing records: reading under lock, writing, deleting. In shared mode each change stands inside
// the header protocol, so that one update at a time runs in a table and one that dies leaves its
// mark.

#include <cstring>

#include "isam/io.h"
#include "isam/ix_intern.h"
#include "isam/teksten.h"

namespace {

/// No byte of the key's fields differs: then the images need not be made.
bool zelfde_velden(const IxSleutel& s, const uint8_t* oud, const uint8_t* rec) {
  for (int i = 0; i < IX_VELDEN && s.field_type[i] != 0; ++i) {
    const int van = s.field_start[i] - 1, n = s.field_end[i] - van;
    if (memcmp(oud + van, rec + van, static_cast<size_t>(n)) != 0) return false;
  }
  return true;
}

/// A change of one key of the record in record_no, if the images differ.
void wissel_sleutel(ICB* icb, int k, const uint8_t* oud, const void* rec) {
  const IxSleutel& s = icb->keys[k - 1];
  if (zelfde_velden(s, oud, static_cast<const uint8_t*>(rec))) return;
  uint8_t voor[IX_SLEUTELBYTES], na[IX_SLEUTELBYTES];
  ix_beeld(icb, s, rec, s.key_length, icb->record_no, na);
  ix_beeld(icb, s, oud, s.key_length, icb->record_no, voor);
  if (ix_vergelijk(s, voor, na, s.key_length) == 0) return;
  ix_wissel_sleutel(icb, k, voor, na);
}

/// A change of the record in record_no, inside the header protocol.
bool werk_bij(ICB* icb, const void* rec) {
  ix_test(icb, "IXUPDATE");
  uint8_t* oud = ix_werk(0);
  if (icb->record_no < 0 || !IXRDDAT(icb, oud)) return false;
  for (int k = 1; k <= icb->key_count; ++k) wissel_sleutel(icb, k, oud, rec);
  IXWRDAT(icb, rec);
  return true;
}

/// Takes the slot for a new record: the head of the chain of deleted ones, or the next at the end.
void neem_plaats(ICB* icb) {
  if (icb->free_head >= 0 && icb->free_head < icb->record_count) {
    icb->record_no = icb->free_head;
    while (!IXLOCK(icb, 3)) {
    }
    uint8_t* slot = ix_werk(0);
    if (!IXRDDAT(icb, slot)) {
      icb->free_head = ix_i32(slot + 1);
      return;
    }
    IXLOCK(icb, 13);  // the chain leads to a record in use: it is not to be followed
  }
  icb->free_head = -1;
  icb->record_no = icb->record_count++;
  IXLOCK(icb, 3);
}

/// A new record, inside the header protocol.
void voeg_toe(ICB* icb, const void* rec) {
  ix_test(icb, "IXINSERT");
  neem_plaats(icb);
  ix_voeg_sleutels(icb, rec);
  IXWRDAT(icb, rec);
  IXLOCK(icb, 14);
}

bool alleen_lezen(const ICB* icb) {
  if (icb->mode != IX_LEES) return false;
  FFLASH(-1, 2, 0, txt(T_IX_WAARSCHUWING), txt(T_IX_ALLEEN_LEZEN));
  return true;
}

bool schrijf(ICB* icb, void* rec, bool los) {
  ix_test(icb, "IXW");
  if (alleen_lezen(icb)) return true;
  const bool gedeeld = icb->mode == IX_GEDEELD;
  const int sleutel = ix_huidig(icb);
  IXSWITCH(icb, 1);
  // The protocol begins before the search: while another process moves an entry from block to block
  // a search without the lock can miss it, and the record would enter a second time.
  if (gedeeld) ix_kop_open(icb);
  IXBLDKEY(icb, rec, icb->keys[0].key_length);
  const bool er = (icb->record_no = ix_zoek_blad(icb, '=', icb->keys[0].key_length)) >= 0;
  const bool vol = !er && (icb->next_block > 2147483644 || icb->record_count == INT32_MAX);
  bool goed = !vol;
  if (er)
    goed = werk_bij(icb, rec);
  else if (!vol)
    voeg_toe(icb, rec);
  if (gedeeld) ix_kop_dicht(icb);
  // Only now: nobody waits for an operator while the header is held.
  if (vol) FFLASH(-1, 1, 0, txt(T_IX_WAARSCHUWING), txt(T_IX_VOL));
  if (gedeeld && los && icb->record_no >= 0) goed = IXLOCK(icb, 13) && goed;
  IXSWITCH(icb, sleutel);
  return goed;
}

/// Is the record in `slot` still the one that the key image stands for?
bool zelfde_record(const ICB* icb, const uint8_t* slot, const uint8_t* beeld) {
  const IxSleutel& s = ix_sleutel(icb);
  uint8_t nu[IX_SLEUTELBYTES];
  ix_beeld(icb, s, slot, s.key_length, icb->record_no, nu);
  return ix_vergelijk(s, nu, beeld, s.key_length) == 0;
}

/// A search whose "not there" is certain. Without the header lock it may miss an entry that another
/// process's split is moving; but not when it ends in a leaf that has the key between its first and
/// last entry, because no other leaf can hold it then.
int32_t zoek_zeker(ICB* icb, int lengte) {
  const int32_t gezien = IXSEARCH(icb, '=', lengte);
  if (gezien >= 0 || ix_alleen(icb)) return gezien;
  if (icb->block.level == 1 && ix_in_blok(icb, '=', lengte)) return gezien;
  IXLOCK(icb, 2);
  icb->kop_slot = 1;
  icb->kop_vers = 0;
  const int32_t zeker = ix_zoek_blad(icb, '=', lengte);
  icb->kop_slot = 0;
  IXLOCK(icb, 12);
  return zeker;
}

}  // namespace

bool IXWRITE(ICB* icb, void* rec) { return schrijf(icb, rec, true); }
bool IXWRITEKEEP(ICB* icb, void* rec) { return schrijf(icb, rec, false); }

bool IXUPDATE(ICB* icb, void* rec) {
  ix_test(icb, "IXUPDATE");
  const int32_t nummer = icb->record_no;
  if (nummer < 0 || alleen_lezen(icb)) return false;
  const bool gedeeld = icb->mode == IX_GEDEELD;
  const int sleutel = ix_huidig(icb), lengte = icb->keys[0].key_length;
  IXSWITCH(icb, 1);
  if (gedeeld) ix_kop_open(icb);
  IXBLDKEY(icb, rec, lengte);
  const int32_t houder = ix_zoek_blad(icb, '=', lengte);
  // The keys go first and the record last: until it is written a rebuild finds the old one.
  const bool goed = (houder < 0 || houder == nummer) && werk_bij(icb, rec);
  if (gedeeld) ix_kop_dicht(icb);
  if (gedeeld && goed) IXLOCK(icb, 13);
  IXSWITCH(icb, sleutel);
  return goed;
}

bool IXREADL(ICB* icb, void* rec) {
  ix_test(icb, "IXBLDKEY");
  if (icb->mode == IX_LEES) return IXREAD(icb, rec);
  const IxSleutel& s = ix_sleutel(icb);
  const int lengte = s.key_length;
  uint8_t beeld[IX_SLEUTELBYTES], eerste[IX_SLEUTELBYTES];
  ix_beeld(icb, s, rec, lengte, icb->record_no, beeld);
  // The queue holds images of key 1, whichever key is current.
  ix_beeld(icb, icb->keys[0], rec, icb->keys[0].key_length, -1, eerste);
  const auto zoek = [&] {
    memcpy(icb->key_buf, beeld, sizeof beeld);
    return icb->record_no = IXSEARCH(icb, '=', lengte);
  };
  for (;;) {
    const int32_t nummer = zoek();
    if (nummer < 0) {
      memcpy(icb->key_buf, eerste, sizeof eerste);
      if (!IXLOCK(icb, 4)) continue;
      // Between the search and the queue somebody may have entered it and left the queue; and the
      // search may have missed it.
      memcpy(icb->key_buf, beeld, sizeof beeld);
      if (icb->file_locked != 0 || zoek_zeker(icb, lengte) < 0) {
        icb->record_no = -1;
        return false;
      }
      memcpy(icb->key_buf, eerste, sizeof eerste);
      IXLOCK(icb, 14);
      continue;
    }
    if (!IXLOCK(icb, 3)) continue;
    uint8_t* slot = ix_werk(0);
    const bool leeft = ix_lees_eigen(icb, slot);
    // Between the search and the lock it may have been deleted, and its slot used again.
    if ((!leeft || !zelfde_record(icb, slot, beeld)) && zoek() != nummer) {
      icb->record_no = nummer;
      IXLOCK(icb, 13);
      continue;
    }
    memcpy(rec, slot, static_cast<size_t>(icb->record_length));
    return leeft;
  }
}

void IXRELEASE(ICB* icb, void* rec) {
  ix_test(icb, "IXBLDKEY");
  if (icb->mode == IX_LEES) return;
  const int lengte = ix_sleutel(icb).key_length;
  IXBLDKEY(icb, rec, lengte);
  icb->record_no = zoek_zeker(icb, lengte);
  if (icb->record_no >= 0) {
    IXLOCK(icb, 13);
    return;
  }
  ix_beeld(icb, icb->keys[0], rec, icb->keys[0].key_length, -1, icb->key_buf);
  IXLOCK(icb, 14);
}

bool IXDELETE(ICB* icb, void* rec) {
  ix_test(icb, "IXLOCK");
  IXSEEKDAT(icb);  // ends the run here, before anything is touched
  // An exclusive handle keeps its counters in memory, and the protocol is about to read the header.
  if (icb->mode == IX_EXCLUSIEF) ix_kop_schrijf(icb);
  ix_kop_open(icb);
  const int sleutel = ix_huidig(icb);
  // A record that key 1 does not hold is not in the table: its slot may be another's by now.
  if (ix_wis_sleutels(icb, rec)) {
    const auto lengte = static_cast<size_t>(icb->record_length);
    uint8_t* slot = ix_werk(0);
    memset(slot, 0xFF, lengte);
    ix_zet_i32(slot + 1, icb->free_head);
    IXWRDAT(icb, slot);
    icb->free_head = icb->record_no;
  }
  IXLOCK(icb, 13);
  ix_kop_dicht(icb);
  IXSWITCH(icb, sleutel);
  return false;
}

void IXPUTREC(ICB* icb, void* rec) {
  // A reader of a record across two pages takes an unlocked header for a table at rest.
  const bool kop = !ix_alleen(icb) && icb->is_private == 0 &&
                   ix_over_pagina(IXSEEKDAT(icb), static_cast<size_t>(icb->record_length));
  if (kop) IXLOCK(icb, 2);
  IXWRDAT(icb, rec);
  if (kop) IXLOCK(icb, 12);
  IXLOCK(icb, 13);
}

namespace {

/// A private index that is not held whole changes under its own header lock: block 0 must follow.
struct Protocol {
  ICB* icb;
  bool zelf;
  explicit Protocol(ICB* i) : icb(i), zelf(!ix_alleen(i)) {
    if (zelf) ix_kop_open(icb);
  }
  ~Protocol() {
    if (zelf) ix_kop_dicht(icb);
  }
  Protocol(const Protocol&) = delete;
  Protocol& operator=(const Protocol&) = delete;
};

}  // namespace

void IXADDKEYS(ICB* icb, void* rec) {
  ix_test(icb, "IXSWITCH");
  const Protocol protocol(icb);
  ix_voeg_sleutels(icb, rec);
}

void IXDELKEYS(ICB* icb, void* rec) {
  ix_test(icb, "IXSWITCH");
  const Protocol protocol(icb);
  ix_wis_sleutels(icb, rec);
}
