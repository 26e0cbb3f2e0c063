// The tree of a key: searching it from where the last search ended, and changing it. A root keeps
// its block number, a split leaves the upper entries in the old block, and a block is never given
// back.
//
// Two rules keep concurrent work sound. A change that may reach a parent starts from the root,
// inside the header lock: the parents that a handle remembers may date from before another
// process's split. One that stays inside its leaf needs that leaf alone, whichever way it was
// found. And a reader trusts no block further than it can be: whatever does not fit ends a search
// as "not found", a change as "Niet consistent".

#include <cstring>

#include "isam/ix_intern.h"

namespace {

int vergelijk(const ICB* icb, int nr, int lengte) {
  const IxSleutel& s = ix_sleutel(icb);
  return ix_vergelijk(s, icb->key_buf, ix_plaats(icb, nr, ix_ingang(s)), lengte);
}

int32_t ouder(const ICB* icb) {
  const int l = icb->block.level;
  return l >= 1 && l < IX_DIEPTE ? icb->trail[l] : -1;
}

/// First entry above key_buf: behind the equal ones.
int erboven(const ICB* icb, int lengte) {
  int laag = 0, hoog = icb->block.count;
  while (laag < hoog) {
    const int midden = (laag + hoog) / 2;
    if (vergelijk(icb, midden, lengte) < 0)
      hoog = midden;
    else
      laag = midden + 1;
  }
  return laag;
}

void zet_ingang(ICB* icb, int nr) { icb->entry = 5 + nr * ix_ingang(ix_sleutel(icb)); }
int ingang_nr(const ICB* icb) { return (icb->entry - 5) / ix_ingang(ix_sleutel(icb)); }

int32_t wijzer_van(const ICB* icb, int nr) {
  const IxSleutel& s = ix_sleutel(icb);
  return ix_i32(ix_plaats(icb, nr, ix_ingang(s)) + s.key_length);
}

/// Among entries equal to key_buf the one that leads to `wijzer`, else the first; -1 if none
/// equals.
int kies(ICB* icb, int32_t wijzer) {
  const int lengte = ix_sleutel(icb).key_length;
  bool gelijk = false;
  const int eerste = IXLOCKEY(icb, lengte, &gelijk);
  if (!gelijk) return -1;
  for (int i = eerste; i < icb->block.count && vergelijk(icb, i, lengte) == 0; ++i)
    if (wijzer_van(icb, i) == wijzer) return i;
  return eerste;
}

/// Up to the parent of the buffered block; false above the root.
bool naar_ouder(ICB* icb) {
  const int32_t hoger = ouder(icb);
  if (hoger == -1) return false;
  const int niveau = icb->block.level, sleutel = ix_huidig(icb);
  IXRDIX(icb, hoger);
  if (ix_huidig(icb) != sleutel || icb->block.level != niveau + 1) ix_kapot(icb);
  return true;
}

/// Gives the entry of the child a new highest key, and so on up while it is the last of its block.
void hernoem(ICB* icb, int32_t kind, const uint8_t* nieuw) {
  const IxSleutel& s = ix_sleutel(icb);
  for (;;) {
    const int nr = kies(icb, kind);
    if (nr < 0) ix_kapot(icb);
    memcpy(ix_plaats(icb, nr, ix_ingang(s)), nieuw, s.key_length);
    IXWRIX(icb, icb->block_no);
    kind = icb->block_no;
    if (nr < icb->block.count - 1 || !naar_ouder(icb)) return;
  }
}

/// Climbs from where the handle stands until the key is inside the block.
void klim(ICB* icb, char op, int lengte) {
  const int sleutel = ix_huidig(icb);
  for (int keer = 0; !ix_in_blok(icb, op, lengte); ++keer) {
    const int32_t hoger = ouder(icb);
    if (hoger == -1) {
      // A block that could not be used has no way up: start over at the root.
      if (icb->block_no != sleutel) IXRDIX(icb, sleutel);
      return;
    }
    IXRDIX(icb, hoger >= 1 && keer < IX_DIEPTE ? hoger : sleutel);
    if (icb->block.key_number != sleutel) IXRDIX(icb, sleutel);
    if (keer >= IX_DIEPTE) return;
  }
}

int32_t daal(ICB* icb, char op, int lengte) {
  const int sleutel = ix_huidig(icb);
  for (;;) {
    const int32_t p = IXFINDBLK(icb, op, lengte);
    const int niveau = icb->block.level;
    if (niveau <= 1 || p == -1) return p < 0 ? -1 : p;
    if (p <= icb->key_count + 1) return -1;
    IXRDIX(icb, p);
    // The root instead of the block: the file is not that long yet, and we go down again.
    const bool opnieuw = icb->block_no == sleutel;
    if (!opnieuw && (icb->block.key_number != sleutel || icb->block.level != niveau - 1)) return -1;
  }
}

}  // namespace

const uint8_t* ix_gevonden(const ICB* icb) {
  const int breed = ix_ingang(ix_sleutel(icb));
  const int nr = ingang_nr(icb);
  if (icb->entry < 5 || nr >= icb->block.count || (nr + 1) * breed > IX_INGANGEN) return nullptr;
  return ix_plaats(icb, nr, breed);
}

bool ix_in_blok(const ICB* icb, char op, int lengte) {
  const int aantal = icb->block.count;
  if (aantal <= 0) return false;
  const int eerste = vergelijk(icb, 0, lengte), laatste = vergelijk(icb, aantal - 1, lengte);
  return op == '>' ? eerste >= 0 && laatste < 0 : eerste > 0 && laatste <= 0;
}

int IXLOCKEY(ICB* icb, int lengte, bool* gelijk) {
  ix_test(icb, "IXLOCKEY");
  // Halving finds the entry that a walk from the first would stop at: the block is in order.
  int laag = 0, hoog = icb->block.count, bij_hoog = 1;
  while (laag < hoog) {
    const int midden = (laag + hoog) / 2;
    const int uit = vergelijk(icb, midden, lengte);
    if (uit <= 0) {
      hoog = midden;
      bij_hoog = uit;
    } else {
      laag = midden + 1;
    }
  }
  zet_ingang(icb, laag);
  if (gelijk != nullptr) *gelijk = laag < icb->block.count && bij_hoog == 0;
  return laag;
}

int32_t IXFINDBLK(ICB* icb, char op, int lengte) {
  const int aantal = icb->block.count;
  bool gelijk = false;
  int nr;
  if (op == '>') {
    nr = erboven(icb, lengte);
    zet_ingang(icb, nr);
  } else {
    nr = IXLOCKEY(icb, lengte, &gelijk);
  }
  if (op == '=' && icb->block.level == 1 && !gelijk) return -1;
  if (op == '<') {
    if (nr == 0) return -1;
    zet_ingang(icb, --nr);
  }
  // Behind the last entry there is nothing: a block that another process is about to shrink.
  return nr < aantal ? wijzer_van(icb, nr) : -1;
}

namespace {

/// Where a search begins. The buffered leaf, read again, if the key was inside it: the search may
/// well end there. For a step over its end the parent. For anything else the leaf that signposts
/// lead to, or the root: each descent from an ancestor ends in the same leaf, and climbing level by
/// level would read the way twice. A step back stays where the search before it stopped.
void begin(ICB* icb, char op, int lengte) {
  const IxBlok& b = icb->block;
  const int sleutel = ix_huidig(icb);
  const bool blad = b.level == 1 && b.count > 0;
  if (op == '<' || (blad && ix_in_blok(icb, op, lengte))) {
    if (!ix_alleen(icb)) IXRDIX(icb, icb->block_no);
  } else {
    const int32_t hoger = ouder(icb);
    const bool stap = blad && op == '>' && hoger != -1 && vergelijk(icb, b.count - 1, lengte) == 0;
    if (stap)
      IXRDIX(icb, hoger >= 1 ? hoger : sleutel);
    else if (!ix_weg_spring(icb, op, lengte))
      IXRDIX(icb, sleutel);
  }
  if (icb->block.key_number != sleutel) IXRDIX(icb, sleutel);
}

}  // namespace

namespace {

/// The step of a walk: the key is the entry that the handle stands on, the leaf as read again holds
/// what it held, and the entry beside it is another key. Then that entry is the answer, and what a
/// whole search would find.
bool stap(ICB* icb, char op, int lengte) {
  const IxSleutel& s = ix_sleutel(icb);
  const int breed = ix_ingang(s), nr = ingang_nr(icb), naar = op == '>' ? nr + 1 : nr - 1;
  if (icb->block.level != 1 || icb->entry < 5 || naar < 0 || naar >= icb->block.count) return false;
  if (nr >= icb->block.count ||
      memcmp(icb->key_buf, ix_plaats(icb, nr, breed), static_cast<size_t>(lengte)) != 0)
    return false;
  if (!ix_zelfde_blok(icb)) return false;
  const int uit = vergelijk(icb, naar, lengte);
  if (op == '>' ? uit >= 0 : uit <= 0) return false;
  zet_ingang(icb, naar);
  return true;
}

}  // namespace

int32_t ix_stap(ICB* icb, char op, int length) {
  if (icb->kop_slot != 0 || icb->cached != 0 || !stap(icb, op, length)) return -1;
  return wijzer_van(icb, ingang_nr(icb));
}

int32_t IXSEARCH(ICB* icb, char op, int length) {
  ix_test(icb, "IXSEARCH");
  if (icb->kop_slot == 1) {
    IXRDIX(icb, ix_huidig(icb));
    icb->kop_slot = 2;
  } else if (icb->kop_slot == 0) {
    begin(icb, op, length);
  }
  // A step back is only sound inside the leaf that a search for the same key has found.
  if (op == '<' && icb->block.level != 1) return -1;
  klim(icb, op, length);
  return daal(icb, op, length);
}

int32_t ix_zoek_blad(ICB* icb, char op, int lengte) {
  if (icb->kop_slot != 1 || !ix_weg_spring(icb, op, lengte)) return IXSEARCH(icb, op, lengte);
  return IXFINDBLK(icb, op, lengte);
}

void IXSWITCH(ICB* icb, int key_number) {
  ix_test(icb, "IXSWITCH");
  if (key_number < 1 || key_number > icb->key_count || key_number == icb->block.key_number) return;
  IXRDIX(icb, key_number);
  if (icb->kop_slot != 0) icb->kop_slot = 2;
}

namespace {

/// The lower seventy percent of the full block goes to a new one; the separator to the parent.
void splits(ICB* icb) {
  const IxSleutel& s = ix_sleutel(icb);
  const int breed = ix_ingang(s), vol = s.max_entries, laag = vol * 7 / 10;
  const int niveau = icb->block.level, sleutel = ix_huidig(icb);
  const bool wortel = ouder(icb) == -1;
  if (niveau >= IX_DIEPTE || wortel != (icb->block_no == sleutel) || icb->next_block > INT_MAX - 2)
    ix_kapot(icb);
  if (wortel) {
    icb->trail[niveau] = sleutel;
    if (niveau + 1 < IX_DIEPTE) icb->trail[niveau + 1] = -1;
  }
  const IxBlok heel = icb->block;
  const auto deel = [&](int van, int aantal) {
    memset(icb->block.entries, 0, IX_INGANGEN);
    memcpy(icb->block.entries, heel.entries + van * breed, static_cast<size_t>(aantal * breed));
    icb->block.count = static_cast<int8_t>(aantal);
  };
  deel(0, laag);
  const int32_t onder = icb->next_block++;
  IXWRIX(icb, onder);
  memcpy(icb->key_buf, ix_plaats(icb, laag - 1, breed), s.key_length);
  icb->new_pointer = onder;
  deel(laag, vol - laag);
  if (!wortel) {
    const int32_t kind = icb->block_no;
    IXWRIX(icb, kind);
    if (!naar_ouder(icb)) ix_kapot(icb);
    // The separator enters before the entry of the block that was split.
    const int nr = IXLOCKEY(icb, s.key_length);
    if (nr >= icb->block.count) ix_kapot(icb);
    IXINSKEY(icb);
    return;
  }
  const int32_t boven = icb->next_block++;
  IXWRIX(icb, boven);
  icb->block.level = static_cast<int8_t>(niveau + 1);
  icb->block.count = 2;
  memset(icb->block.entries, 0, IX_INGANGEN);
  memcpy(icb->block.entries, icb->key_buf, s.key_length);
  ix_zet_i32(icb->block.entries + s.key_length, onder);
  memset(icb->block.entries + breed, 0xFF, s.key_length);
  ix_zet_i32(icb->block.entries + breed + s.key_length, boven);
  icb->entry = 5;
  IXWRIX(icb, icb->block_no);
}

}  // namespace

void IXINSKEY(ICB* icb) {
  ix_test(icb, "IXINSKEY");
  const IxSleutel& s = ix_sleutel(icb);
  const int breed = ix_ingang(s), aantal = icb->block.count, nr = ingang_nr(icb);
  if (aantal >= s.max_entries || nr < 0 || nr > aantal || (aantal + 1) * breed > IX_INGANGEN)
    ix_kapot(icb);
  uint8_t* plaats = ix_plaats(icb, nr, breed);
  memmove(plaats + breed, plaats, static_cast<size_t>((aantal - nr) * breed));
  memcpy(plaats, icb->key_buf, s.key_length);
  ix_zet_i32(plaats + s.key_length, icb->new_pointer);
  icb->block.count = static_cast<int8_t>(aantal + 1);
  if (icb->block.count == s.max_entries)
    splits(icb);
  else
    IXWRIX(icb, icb->block_no);
}

bool IXDELKEY(ICB* icb, int32_t wijzer) {
  const IxSleutel& s = ix_sleutel(icb);
  const int breed = ix_ingang(s);
  for (;;) {
    const int nr = kies(icb, wijzer);
    if (nr < 0 || wijzer_van(icb, nr) == -1) return false;  // -1: the end of the leaves
    const int over = icb->block.count - 1;
    uint8_t* plaats = ix_plaats(icb, nr, breed);
    memmove(plaats, plaats + breed, static_cast<size_t>((over - nr) * breed));
    memset(ix_plaats(icb, over, breed), 0, static_cast<size_t>(breed));
    icb->block.count = static_cast<int8_t>(over);
    IXWRIX(icb, icb->block_no);
    if (nr < over) return true;
    const int32_t kind = icb->block_no;
    if (over > 0) {
      uint8_t laatste[IX_SLEUTELBYTES];
      memcpy(laatste, ix_plaats(icb, over - 1, breed), s.key_length);
      if (naar_ouder(icb)) hernoem(icb, kind, laatste);
      return true;
    }
    if (!naar_ouder(icb)) return true;
    wijzer = kind;  // the block has run empty: out of its parent with it
  }
}

namespace {

/// Inside the header lock a handle's parents date from before it; a change starts from the root of
/// its key. But a leaf that has the key between its first and last entry is the right one however
/// it was found, and what stays inside it touches no parent: then the leaf alone is read.
bool in_blad(ICB* icb, int lengte) {
  if (icb->kop_slot != 1) return false;
  if (icb->kop_vers != 0 && icb->block.level == 1 && ix_in_blok(icb, '=', lengte)) return true;
  return ix_weg_spring(icb, '=', lengte);
}

/// Makes key k current for a change. Under the header lock its root need not be read for that.
void naar_sleutel(ICB* icb, int k) {
  if (icb->kop_slot == 0) {
    IXSWITCH(icb, k);
    return;
  }
  icb->kop_slot = 1;
  if (k == icb->block.key_number) return;
  icb->block.key_number = static_cast<int8_t>(k);
  icb->block.level = 0;
  icb->block.count = 0;
  icb->block_no = k;
}

}  // namespace

void ix_zet_sleutel(ICB* icb) {
  const IxSleutel& s = ix_sleutel(icb);
  if (in_blad(icb, s.key_length) && icb->block.count + 1 < s.max_entries)
    IXLOCKEY(icb, s.key_length);
  else
    IXSEARCH(icb, '=', s.key_length);
  if (icb->block.level != 1 || ix_gevonden(icb) == nullptr) ix_kapot(icb);
  icb->new_pointer = icb->record_no;
  IXINSKEY(icb);
}

void ix_schuif_in(ICB* icb, const void* rec, int32_t recno) {
  const int lengte = ix_sleutel(icb).key_length;
  icb->record_no = recno;
  IXBLDKEY(icb, rec, lengte);
  // After a split the buffer holds a branch; and a key equal to the first one may belong further
  // left.
  if (icb->block.level == 1 && ix_in_blok(icb, '=', lengte)) {
    IXLOCKEY(icb, lengte);
  } else {
    IXRDIX(icb, ix_huidig(icb));
    daal(icb, '=', lengte);
  }
  if (icb->block.level != 1 || ix_gevonden(icb) == nullptr) ix_kapot(icb);
  icb->new_pointer = recno;
  IXINSKEY(icb);
}

void ix_voeg_sleutels(ICB* icb, const void* rec) {
  for (int k = 1; k <= icb->key_count; ++k) {
    naar_sleutel(icb, k);
    IXBLDKEY(icb, rec, ix_sleutel(icb).key_length);
    ix_zet_sleutel(icb);
  }
  naar_sleutel(icb, 1);
  IXBLDKEY(icb, rec, ix_sleutel(icb).key_length);
}

bool ix_neem_sleutel(ICB* icb) {
  const int lengte = ix_sleutel(icb).key_length;
  // Without the last entry the parent's key for the leaf would be another.
  if (!in_blad(icb, lengte) || vergelijk(icb, icb->block.count - 1, lengte) >= 0)
    IXSEARCH(icb, '=', lengte);
  return icb->block.level == 1 && IXDELKEY(icb, icb->record_no);
}

void ix_wissel_sleutel(ICB* icb, int k, const uint8_t* voor, const uint8_t* na) {
  naar_sleutel(icb, k);
  memcpy(icb->key_buf, voor, sizeof icb->key_buf);
  ix_neem_sleutel(icb);
  naar_sleutel(icb, k);
  memcpy(icb->key_buf, na, sizeof icb->key_buf);
  ix_zet_sleutel(icb);
}

bool ix_wis_sleutels(ICB* icb, const void* rec) {
  bool weg = false;
  for (int k = icb->key_count; k >= 1; --k) {
    naar_sleutel(icb, k);
    IXBLDKEY(icb, rec, ix_sleutel(icb).key_length);
    weg = ix_neem_sleutel(icb);
  }
  return weg;
}
