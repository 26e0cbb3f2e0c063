// The advice criteria of a terminal: seven sets back to back in DTSELVRD.nnn, read at the start of
// a run and written back at its end.
#include "sub/adv_krit.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/tabellen.h"

static_assert(sizeof adv_sets == 868);

namespace {

constexpr const char* MODULE = "adv_krit";
constexpr int32_t VRD_ALLE = 99999, VRK_ALLE = 32767;
constexpr int16_t DAGEN_GRENS = 251;

/// True when there was a file to read. What it does not hold stays zero.
bool lees_sets(const std::string& naam) {
  if (!file_exists(naam.c_str())) return false;
  const int fd = open(naam.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) ctl_noopen(MODULE, naam.c_str());
  for (AdvRec& set : adv_sets) {
    AdvRec rec{};
    const ssize_t n = read(fd, &rec, sizeof rec);
    if (n > 0) memcpy(&set, &rec, static_cast<size_t>(n));
  }
  close(fd);
  return true;
}

/// Only the set of "Ingeven mutaties" remembers a number of its own. Values with the high bit count
/// as below the limit, as they always have in these files.
bool houdt_dagen(size_t slot, uint16_t dagen) {
  return slot == ADV_MUTATIES && dagen != 0 && static_cast<int16_t>(dagen) < DAGEN_GRENS;
}

}  // namespace

uint16_t adv_verkoopdagen() {
  return sys_rec20.verkoopdagen != 0 ? sys_rec20.verkoopdagen : sys_rec1.eigen_filiaal;
}

AdvRec adv_standaard() {
  AdvRec r{};
  memset(r.filialen, 0xFF, sizeof r.filialen);
  r.vrd_tm = VRD_ALLE;
  r.vrk_tm = VRK_ALLE;
  r.vrk_soort = 'A';
  r.bron_soort = 3;
  r.vrk_dagen = adv_verkoopdagen();
  memset(r.aanvul_filialen, 0xFF, sizeof r.aanvul_filialen);
  memset(r.vanuit_filialen, 0xFF, sizeof r.vanuit_filialen);
  r.met_opdracht = r.zonder_opdracht = 1;
  r.adv_aanvul = r.adv_switch = r.adv_restant = r.adv_distributie = r.adv_overig = 1;
  return r;
}

void adv_laad(int terminal) {
  adv_sets = {};
  const auto naam = [](int t) { return str_format("DTSELVRD.%03ld", t); };
  if (!lees_sets(naam(terminal)) && !lees_sets(naam(1))) adv_sets.fill(adv_standaard());
  for (size_t slot = 0; slot < adv_sets.size(); ++slot) {
    if (!houdt_dagen(slot, adv_sets[slot].vrk_dagen)) adv_sets[slot].vrk_dagen = adv_verkoopdagen();
  }
}

void adv_bewaar(int terminal) {
  const std::string naam = str_format("DTSELVRD.%03ld", terminal);
  const int fd = open(naam.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0660);
  if (fd < 0) return;
  // Nobody waits for the outcome: without a file the next run takes the defaults.
  [[maybe_unused]] const ssize_t n = write(fd, adv_sets.data(), sizeof adv_sets);
  close(fd);
}
