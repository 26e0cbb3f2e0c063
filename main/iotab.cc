// DTSYS.TXT: the only routine that opens, reads, writes and locks it.
//
// The descriptor is opened once and carries the terminal's own lock and every work claim, so
// nothing here or elsewhere may open and close a second one. A lock is taken on exactly the
// record's bytes.
#include "main/iotab.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix.h"
#include "main/controle.h"
#include "main/teksten_sessie.h"
#include "scr/scr.h"

namespace {

constexpr const char* BESTAND = "DTSYS.TXT";

int fd = -1;

// The call in hand; the helpers below work on it.
struct Aanroep {
  char actie;
  int32_t* nummer;
  void* buffer;
  SysTabel tabel;
};

bool bestaat(const Aanroep& a) { return *a.nummer >= 1 && *a.nummer <= a.tabel.aantal; }

// The place of the record; a file that cannot be positioned there ends the run.
int64_t plaats(const Aanroep& a) {
  const int64_t offset = a.tabel.basis + int64_t{*a.nummer - 1} * a.tabel.lengte;
  if (lseek(fd, offset, SEEK_SET) == offset) return offset;
  scr_abort("%s: errno=%d a=%c fd=%d o=%ld", BESTAND, errno, a.actie, fd, offset);
}

bool lees(const Aanroep& a) {
  if (!bestaat(a)) return false;
  const size_t n = static_cast<size_t>(a.tabel.lengte);
  auto* bytes = static_cast<uint8_t*>(a.buffer);
  const int64_t gelezen = io_lees(fd, bytes, n, plaats(a));
  if (gelezen != static_cast<int64_t>(n)) return false;
  return std::any_of(bytes, bytes + n, [](uint8_t b) { return b != 0; });
}

bool stap(const Aanroep& a, int richting) {
  *a.nummer = std::clamp(*a.nummer, int32_t{0}, a.tabel.aantal + 1);
  for (*a.nummer += richting; bestaat(a); *a.nummer += richting)
    if (lees(a)) return true;
  return false;
}

void schrijf(const Aanroep& a) {
  if (bestaat(a)) io_schrijf(fd, a.buffer, static_cast<size_t>(a.tabel.lengte), plaats(a));
}

bool slot(const Aanroep& a, char letter) {
  return file_lock(letter, fd, plaats(a), a.tabel.lengte);
}

void geef_vrij(const Aanroep& a) {
  if (bestaat(a)) slot(a, 'U');
}

// One round of waiting: who holds it, for two seconds on the bottom line.
void wacht(const Aanroep& a) {
  const std::string houder = ctl_lockholder("", fd, plaats(a), a.tabel.lengte);
  ix_hooks.regel((txt(T_CTL_SYSTEEM) + houder).c_str(), 2);
  ix_hooks.regel("", 0);
}

bool slot_en_lees(const Aanroep& a) {
  if (!bestaat(a)) return false;  // no such place to lock: waiting would never end
  while (!slot(a, 'S')) wacht(a);
  return lees(a);
}

bool open_bestand(int32_t* nummer) {
  if (fd < 0) fd = io_open(BESTAND, false);
  if (fd < 0) {
    char map[512] = "";
    if (getcwd(map, sizeof map) == nullptr) map[0] = 0;
    scr_abort(txt(T_CTL_NIET_AANWEZIG), BESTAND, map);
  }
  *nummer = 1;
  return true;
}

bool sluit_bestand() {
  if (fd >= 0) io_close(fd);
  fd = -1;
  return true;
}

// A table of ten records a group: number 0 to 9 goes in and out, `eerste` is added on the way.
bool van_groep(char actie, int32_t* nummer, void* buffer, const SysTabel& tabel, int eerste) {
  const int32_t groep = terminal_rec.groep;
  int32_t n = *nummer + groep * 10 + eerste;
  const bool gevonden = iotab(actie, &n, buffer, tabel);
  n -= eerste;
  const bool eigen = n >= 0 && n / 10 == groep;
  *nummer = n % 10;
  return gevonden && eigen;
}

}  // namespace

int iotab_fd() noexcept { return fd; }

bool iotab(char actie, int32_t* nummer, void* buffer, int32_t basis, int32_t aantal,
           int32_t lengte) {
  const Aanroep a{actie, nummer, buffer, {basis, aantal, lengte}};
  switch (actie) {
    case 'O':
      return open_bestand(nummer);
    case 'C':
      return sluit_bestand();
    case 'R':
      return lees(a);
    case 'N':
      return stap(a, 1);
    case 'P':
      return stap(a, -1);
    case 'F':
      return lees(a) || stap(a, 1);
    case 'D':
      std::memset(buffer, 0, static_cast<size_t>(lengte));
      [[fallthrough]];
    case 'W':
      schrijf(a);
      geef_vrij(a);
      return true;
    case 'w':
      schrijf(a);
      return true;
    case 'X':
      return slot_en_lees(a);
    case 'T':
      return bestaat(a) && slot(a, 'T');
    case 'U':
      geef_vrij(a);
      return true;
    default:
      return false;
  }
}

bool sys_sub20(char actie, int32_t* nummer, void* buffer) {
  return van_groep(actie, nummer, buffer, SYS_SUB20, 0) && *nummer > 0;
}

bool sys_sub52(char actie, int32_t* nummer, void* buffer) {
  return van_groep(actie, nummer, buffer, SYS_SUB52, 1);
}
