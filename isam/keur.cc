// IXCHECK: is a table what its header says? Sizes, the mark of an unfinished update and the chain
// of deleted slots are looked at under the header lock; nothing is repaired, and the trees are not
// walked.

#include <algorithm>
#include <cerrno>
#include <ctime>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix_intern.h"
#include "isam/teksten.h"

namespace {

bool diep = true;

/// Opens a progress bar once a walk has taken two seconds.
struct Voortgang {
  std::string titel;
  int64_t geheel;
  time_t begin = time(nullptr);
  bool open = false;

  void op(int64_t deel) {
    if (!open && time(nullptr) - begin < 2) return;
    if (!open) ix_hooks.voortgang(titel.c_str(), 0, geheel);
    open = true;
    ix_hooks.voortgang(nullptr, deel, geheel);
  }
  ~Voortgang() {
    if (open) ix_hooks.voortgang(nullptr, 0, 0);
  }
};

/// Deleted slots on the chain; -1 when it does not end within record_count steps.
int loop_keten(const ICB* icb, const std::string& data) {
  const auto lengte = static_cast<size_t>(icb->record_length);
  uint8_t* slot = ix_werk(0);
  Voortgang balk{str_format(txt(T_IX_VOORTGANG), data), icb->record_count};
  int32_t nummer = icb->free_head;
  int aantal = 0;
  while (nummer >= 0 && aantal < icb->record_count) {
    const int64_t plaats = static_cast<int64_t>(nummer) * icb->record_length;
    if (io_lees(icb->data_fd, slot, lengte, plaats) != static_cast<int64_t>(lengte)) break;
    if (ix_levend(slot, icb->record_length - 1)) break;
    nummer = ix_i32(slot + 1);
    ++aantal;
    if (aantal % 256 == 0) balk.op(aantal);
  }
  return nummer < 0 ? aantal : -1;
}

/// The findings under the header lock.
int keur(ICB* icb, const IxPaden& paden) {
  if (io_lees(icb->index_fd, icb, IX_KOP, 0) != IX_KOP) return -1;
  if (!diep) return 0;
  if (!ix_kop_geldig(icb) || icb->busy != 0) return -1;
  if (io_grootte(icb->index_fd) != ix_blokplaats(icb->next_block)) return -1;
  const int64_t data = static_cast<int64_t>(icb->record_length) * icb->record_count;
  if (paden.index.find(".INX") != std::string::npos && file_size(paden.data.c_str()) != data)
    return -1;
  icb->data_fd = io_open(paden.data.c_str(), false);
  if (icb->data_fd < 0) {
    const int fout = errno;
    IXLOCK(icb, 12);
    ix_open_fout(fout, paden.data);
  }
  return loop_keten(icb, paden.data);
}

void bijna_vol(const ICB* icb, const std::string& pad) {
  if (icb->next_block <= 2147482999) return;
  if (FFLASH(-2, 1, 0, txt(T_IX_WAARSCHUWING), str_format(txt(T_IX_BIJNA_VOL), pad).c_str()) == 0)
    ix_fataal(str_format(txt(T_IX_LIMIET), pad).c_str());
}

/// Version 350 cannot be used: tells so. A table's ends the run.
void verkeerde_versie(const ICB* icb, const IxPaden& paden) {
  const int versie = icb->version;
  const Tekst& tekst = paden.privaat ? T_IX_VERSIE_TIJDELIJK : T_IX_VERSIE;
  FFLASH(-1, 2, 0, paden.index.c_str(),
         str_format(txt(tekst), paden.index, versie, IX_VERSIE).c_str());
  if (!paden.privaat) ix_fataal(txt(T_IX_CONVERTEER_EXE));
}

}  // namespace

void IXCHECK_DIEP(bool aan) noexcept { diep = aan; }

int IXCHECK(const char* name) {
  if (name == nullptr) ix_leeg("IXCHECK");
  const IxPaden paden = ix_paden(name);
  const int64_t grootte = file_size(paden.index.c_str());
  if (grootte <= 0 || grootte % IX_BLOK != 0 || file_size(paden.data.c_str()) < 0) return -1;
  const int fd = io_open(paden.index.c_str(), false);
  if (fd < 0) return -1;
  ICB* icb = ix_nieuw();
  icb->index_fd = fd;
  icb->data_fd = -1;
  icb->mode = IX_GEDEELD;
  int uit = -1;
  if (io_lees(fd, icb, IX_KOP, 0) == IX_KOP) {
    if (ix_versie_350(icb)) {
      verkeerde_versie(icb, paden);
    } else {
      IXLOCK(icb, 2);
      uit = keur(icb, paden);
      IXLOCK(icb, 12);
      if (uit >= 0) bijna_vol(icb, paden.index);
    }
  }
  ix_vrij(icb);
  return uit;
}
