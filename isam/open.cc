// Making, opening, closing and removing tables and private indexes. Guarantees: a file's descriptor
// is shared by all handles of the process; an index is never cut before the lock that its mode asks
// for is held; what an exclusive handle has in memory was read under that lock.

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix_intern.h"
#include "isam/teksten.h"

IxPaden ix_paden(const char* name) {
  const std::string pad(name == nullptr ? "" : name);
  // Only the last component counts: a directory may well have a point in its name.
  const size_t streep = pad.rfind('/');
  const size_t begin = streep == std::string::npos ? 0 : streep + 1;
  const size_t punt = pad.find('.', begin);
  if (punt == std::string::npos) return {pad + ".INX", pad + ".TXT", false};
  return {pad, pad.substr(0, punt) + ".TXT", true};
}

ICB* ix_nieuw() {
  auto* h = static_cast<IxHandvat*>(calloc(1, sizeof(IxHandvat)));
  if (h == nullptr) ix_fataal(txt(T_IX_GEEN_GEHEUGEN));
  h->icb.record_no = -1;
  return &h->icb;
}

void ix_vrij(ICB* icb) {
  ix_seq_los(icb);
  io_close(icb->index_fd);
  io_close(icb->data_fd);
  free(icb);
}

namespace {

void zet_pad(ICB* icb, const char* name) { veld_zet(icb->path, sizeof icb->path - 1, name); }

/// Opens a file of an IXCREATE, making it if need be; a failure ends the run.
int maak_of_open(const std::string& pad, bool maken, int ander) {
  const bool bestaat = file_exists(pad.c_str());
  const int fd = io_open(pad.c_str(), maken);
  if (fd >= 0) return fd;
  if (ander >= 0) io_close(ander);
  ix_fataal(str_format(txt(bestaat ? T_IX_OPEN_MISLUKT : T_IX_CREATE_MISLUKT), pad).c_str());
}

int maak_index(const std::string& pad) {
  const int fd = io_open(pad.c_str(), true);
  if (fd < 0) ix_fataal(str_format(txt(T_IX_CREATE_MISLUKT), pad).c_str());
  return fd;
}

int maak_data(const IxPaden& paden, int index, bool vraag) {
  if (paden.privaat) {
    // Its records are the table's; a table is not made by the way.
    const int fd = io_open(paden.data.c_str(), false);
    if (fd < 0) ix_open_fout(errno, paden.data);
    return fd;
  }
  if (vraag) return maak_of_open(paden.data, true, index);
  const int fd = io_open(paden.data.c_str(), true);
  if (fd >= 0) return fd;
  io_close(index);
  ix_fataal(str_format(txt(T_IX_CREATE_MISLUKT), paden.data).c_str());
}

struct Descriptors {
  int index, data;
};

Descriptors open_paar(const IxPaden& paden) {
  const int data = io_open(paden.data.c_str(), false);
  if (data < 0) ix_open_fout(errno, paden.data);
  if (file_size(paden.index.c_str()) < IX_BLOK) ix_open_fout(errno, paden.index);
  const int index = io_open(paden.index.c_str(), false);
  if (index < 0) ix_open_fout(errno, paden.index);
  return {index, data};
}

/// Access refused: the operator may try again; any other failure ends the run.
void vraag_nogmaals(int fout, const std::string& pad) {
  if (fout != EACCES || FFLASH(-2, 1, 0, pad.c_str(), txt(T_IX_NOGMAALS)) == 0)
    ix_open_fout(fout, pad);
}

Descriptors open_paar_vraag(const IxPaden& paden) {
  for (;;) {
    const int data = io_open(paden.data.c_str(), false);
    if (data < 0) {
      vraag_nogmaals(errno, paden.data);
      continue;
    }
    if (file_size(paden.index.c_str()) < IX_BLOK && errno != EACCES)
      ix_open_fout(errno, paden.index);
    const int index = io_open(paden.index.c_str(), false);
    if (index >= 0) return {index, data};
    const int fout = errno;
    io_close(data);
    vraag_nogmaals(fout, paden.index);
  }
}

void verkeerde_versie(ICB* icb, const IxPaden& paden) {
  const int versie = icb->version;
  const Tekst& tekst = paden.privaat ? T_IX_VERSIE_TIJDELIJK : T_IX_VERSIE;
  FFLASH(-1, 2, 0, paden.index.c_str(),
         str_format(txt(tekst), paden.index, versie, IX_VERSIE).c_str());
  ix_vrij(icb);
  ix_fataal(txt(paden.privaat ? T_IX_BEEINDIGD : T_IX_CONVERTEER));
}

}  // namespace

bool ix_versie_350(ICB* icb) {
  if (icb->version == 350) return true;
  if (icb->version != IX_VERSIE) {
    icb->version = IX_VERSIE;
    io_schrijf(icb->index_fd, &icb->version, sizeof icb->version, offsetof(ICB, version));
  }
  return false;
}

ICB* ix_maak(const char* name, int mode, bool houd) {
  const IxPaden paden = ix_paden(name);
  const bool vraag = (mode & IX_VRAAG) != 0;
  Descriptors fd{-1, -1};
  if (vraag) fd.data = maak_data(paden, -1, true);
  fd.index = maak_index(paden.index);
  if (!vraag) fd.data = maak_data(paden, fd.index, false);
  ICB* icb = ix_nieuw();
  icb->index_fd = fd.index;
  icb->data_fd = fd.data;
  icb->mode = mode & ~IX_VRAAG;
  icb->is_private = paden.privaat ? 1 : 0;
  zet_pad(icb, name);
  const char* streep = strrchr(name, '/');
  veld_zet(icb->name, sizeof icb->name, streep == nullptr ? name : streep + 1);
  icb->version = IX_VERSIE;
  if (icb->mode == IX_EXCLUSIEF) IXLOCK(icb, 1);
  if (!houd) io_kap(icb->index_fd, 0);
  return icb;
}

ICB* IXCREATE(const char* name, int mode) {
  if (name == nullptr) ix_leeg("IXCREATE");
  return ix_maak(name, mode, false);
}

bool IXINITIX(ICB* icb) {
  ix_test(icb, "IXINITIX");
  icb->free_head = -1;
  icb->record_count = 0;
  icb->next_block = icb->key_count + 2;
  icb->busy = 0;
  icb->version = IX_VERSIE;
  if (!ix_kop_geldig(icb)) ix_kapot(icb);  // a definition that no block could hold
  icb->busy = 1;
  ix_kop_schrijf(icb);
  icb->busy = 0;
  for (int k = 1; k <= icb->key_count; ++k) {
    icb->block = IxBlok{};
    icb->block.key_number = static_cast<int8_t>(k);
    icb->block.level = 1;
    icb->block.count = 1;
    memset(icb->block.entries, 0xFF, static_cast<size_t>(ix_ingang(icb->keys[k - 1])));
    IXWRIX(icb, k);
  }
  icb->block = IxBlok{};
  icb->block.key_number = 1;
  IXWRIX(icb, icb->key_count + 1);
  icb->block_no = icb->key_count + 1;
  icb->record_no = -1;
  // A rebuild keeps its mark: its blocks are still in memory.
  if (icb->cached == 0) ix_kop_schrijf(icb);
  IXRDIX(icb, 1);
  return true;
}

ICB* IXOPEN(const char* name, int mode) {
  if (name == nullptr) ix_leeg("IXOPEN");
  const IxPaden paden = ix_paden(name);
  const Descriptors fd = (mode & IX_VRAAG) != 0 ? open_paar_vraag(paden) : open_paar(paden);
  ICB* icb = ix_nieuw();
  icb->index_fd = fd.index;
  icb->data_fd = fd.data;
  icb->mode = mode & ~IX_VRAAG;
  icb->is_private = paden.privaat ? 1 : 0;
  zet_pad(icb, name);
  if (io_lees(icb->index_fd, icb, IX_KOP, 0) == IX_KOP && ix_versie_350(icb))
    verkeerde_versie(icb, paden);
  // Under its lock the header is not in mid-update.
  IXLOCK(icb, 2);
  ix_kop_lees(icb);
  IXLOCK(icb, 12);
  if (icb->mode == IX_EXCLUSIEF) {
    IXLOCK(icb, 1);
    ix_kop_lees(icb);  // it may have changed while others were being waited for
  }
  icb->block.key_number = 0;
  IXSWITCH(icb, 1);
  icb->commit = ix_commit();
  return icb;
}

ICB* IXOPEN_LENGTE(const char* name, int mode, int lengte) {
  ICB* icb = IXOPEN(name, mode);
  if (icb->record_length != lengte) ix_kapot(icb);
  return icb;
}

void IXCLOSE(ICB* icb) {
  ix_test(icb, "IXCLOSE");
  ix_aanhang_einde(icb);
  if (icb->cached != 0) IOCACHE('F', icb, 0);
  if (icb->mode == IX_EXCLUSIEF) {
    ix_kop_schrijf(icb);
    IXLOCK(icb, 11);
  }
  ix_vrij(icb);
}

bool IXINIT(ICB* icb) {
  ix_test(icb, "IXINIT");
  IXLOCK(icb, 1);
  ix_kap_index(icb);
  if (icb->is_private == 0) io_kap(icb->data_fd, 0);
  const bool goed = IXINITIX(icb);
  if (icb->mode != IX_EXCLUSIEF) IXLOCK(icb, 11);
  return goed;
}

bool IXREMOVE(const char* name) {
  const IxPaden paden = ix_paden(name);
  const bool index = file_delete(paden.index.c_str());
  return paden.privaat ? index : file_delete(paden.data.c_str()) && index;
}
