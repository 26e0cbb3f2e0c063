// Saved selections on disk: DTSELkkk.sss, of the kind and the slot. Slot 0 holds the last selection
// of the kind and is shared by all terminals; the last writer wins.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <vector>

#include "isam/base.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/sel_intern.h"
#include "sub/sel_merken.h"
#include "sub/sel_stroom.h"
#include "sub/tabellen.h"

namespace {

constexpr int SOORT_ZONDER_BESTAND = 22;

/// The whole of a small file; false when it does not exist.
bool lees_bestand(const char* naam, std::vector<uint8_t>& bytes) {
  if (!file_exists(naam)) return false;
  const int fd = open(naam, O_RDONLY | O_CLOEXEC);
  if (fd < 0) ctl_noopen(SEL_MODULE, naam);
  std::array<uint8_t, 4096> stuk;
  ssize_t n;
  while ((n = read(fd, stuk.data(), stuk.size())) > 0) {
    bytes.insert(bytes.end(), stuk.data(), stuk.data() + n);
  }
  close(fd);
  return true;
}

}  // namespace

void sel_schrijf(int slot) {
  if (sel_soort == SOORT_ZONDER_BESTAND) return;
  std::vector<uint16_t> merken;
  if (sel_heeft('a') && sel_gezet('a')) merken = merklijst_nummers();
  const auto bytes = stroom_pak(sel_rec, sel_letters, sel_status, merken);
  const std::string naam = stroom_naam(sel_soort, slot);
  const int fd = open(naam.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0660);
  if (fd < 0) ctl_noopen(SEL_MODULE, naam.c_str());
  // A full disk leaves a short file, which reads as far as it goes.
  [[maybe_unused]] const ssize_t n = write(fd, bytes.data(), bytes.size());
  close(fd);
}

void sel_lees(int slot) {
  const bool met_merken = sel_heeft('a');
  if (met_merken && (slot != 0 || !file_exists(privaat.merk))) merklijst_leeg();
  sel_leeg();
  std::vector<uint8_t> bytes;
  if (!lees_bestand(stroom_naam(sel_soort, slot).c_str(), bytes)) return;
  const StroomUit uit = stroom_lees(bytes, &sel_rec, sel_status);
  if (uit.vreemd > 0 && scr_ctx != nullptr) scr_error("%s", txt(T_SEL_INCONSISTENT));
  if (!met_merken) return;
  // At the start of a kind only the record is wanted: the screen reads slot 0 once more and fills.
  if (sel_gezet('a')) merklijst_neem(uit.merken, slot != 0 || sel_actief);
}
