// What this process remembers of index blocks.
//
// Blocks above the leaves are kept as signposts: the way from the root to the leaf of a key is
// worked out in memory, and one block is read. A signpost may be out of date, since other processes
// change the tree; that costs a second look and never an answer, because the leaf is taken only if
// the key lies between its own first and last entry as just read. Ranges of leaves do not overlap,
// so that no other leaf can hold the key: it is the test by which a search has always stayed in the
// leaf where the last one ended.
//
// While a handle has the whole file nobody else changes it, and each of its blocks stands here as
// it stands in the file: then it needs no reading at all, and the way is exact, fit to change the
// tree by. What was remembered before the file was taken is forgotten at that moment.

#include <cstring>

#include "isam/io.h"
#include "isam/ix_intern.h"

namespace {

constexpr size_t PLAATSEN = 16384, BESTANDEN = 256;

struct Merk {
  int32_t fd, blok;
  uint32_t opening, tijdvak;
};
Merk merken[PLAATSEN];
alignas(64) IxBlok beelden[PLAATSEN];
uint32_t tijdvakken[BESTANDEN];  // by descriptor: counts what was forgotten

uint32_t& tijdvak(int fd) { return tijdvakken[static_cast<size_t>(fd) % BESTANDEN]; }

size_t plaats_van(int fd, int32_t blok) {
  return (static_cast<uint32_t>(blok) + static_cast<uint32_t>(fd) * 7919U) % PLAATSEN;
}

bool is_van(size_t plaats, int fd, int32_t blok) {
  const Merk& m = merken[plaats];
  return m.blok == blok && m.fd == fd && m.opening == io_opening(fd) && m.tijdvak == tijdvak(fd) &&
         blok > 0;
}

/// Entry of a signpost that leads towards key_buf; -1 when it cannot be followed.
int wijst(const ICB* icb, const IxBlok& b, char op, int lengte) {
  const IxSleutel& s = ix_sleutel(icb);
  const int breed = ix_ingang(s);
  if (b.key_number != ix_huidig(icb) || b.count <= 0 || b.count * breed > IX_INGANGEN) return -1;
  int laag = 0, hoog = b.count;
  while (laag < hoog) {
    const int midden = (laag + hoog) / 2;
    const int uit = ix_vergelijk(s, icb->key_buf, b.entries + midden * breed, lengte);
    if (op == '>' ? uit < 0 : uit <= 0)
      hoog = midden;
    else
      laag = midden + 1;
  }
  return laag < b.count ? laag : -1;
}

}  // namespace

void ix_weg_wis(int fd) noexcept { ++tijdvak(fd); }

void ix_weg_onthoud(const ICB* icb, int32_t blok) {
  const size_t plaats = plaats_van(icb->index_fd, blok);
  const int niveau = icb->block.level;
  if (niveau >= 2 || (niveau == 1 && icb->mode == IX_EXCLUSIEF)) {
    merken[plaats] = {icb->index_fd, blok, io_opening(icb->index_fd), tijdvak(icb->index_fd)};
    ix_kopieer(&beelden[plaats], &icb->block);
  } else if (is_van(plaats, icb->index_fd, blok)) {
    merken[plaats].blok = 0;
  }
}

bool ix_weg_blok(ICB* icb, int32_t blok) {
  const size_t plaats = plaats_van(icb->index_fd, blok);
  if (!is_van(plaats, icb->index_fd, blok)) return false;
  ix_kopieer(&icb->block, &beelden[plaats]);
  return true;
}

bool ix_weg_spring(ICB* icb, char op, int lengte) {
  if (icb->cached != 0) return false;  // those blocks stand elsewhere
  const int sleutel = ix_huidig(icb);
  int32_t spoor[IX_DIEPTE + 1], blok = sleutel;
  int hoogste = 0, niveau = 0;
  do {
    const size_t plaats = plaats_van(icb->index_fd, blok);
    if (!is_van(plaats, icb->index_fd, blok)) return false;
    const IxBlok& b = beelden[plaats];
    if (b.level < 2 || b.level > IX_DIEPTE || (niveau != 0 && b.level != niveau - 1)) return false;
    const int nr = wijst(icb, b, op, lengte);
    if (nr < 0) return false;
    niveau = b.level;
    if (hoogste == 0) hoogste = niveau;
    spoor[niveau - 1] = blok;
    const IxSleutel& s = ix_sleutel(icb);
    blok = ix_i32(b.entries + nr * ix_ingang(s) + s.key_length);
    if (blok <= icb->key_count + 1) return false;
  } while (niveau > 2);
  // The file may be shorter by now: somebody built its index anew.
  if (!ix_lees_blok(icb, blok) || icb->block.key_number != sleutel || icb->block.level != 1 ||
      !ix_in_blok(icb, op, lengte))
    return false;
  for (int l = 1; l < hoogste; ++l) icb->trail[l] = spoor[l];
  if (hoogste < IX_DIEPTE) icb->trail[hoogste] = -1;
  return true;
}
