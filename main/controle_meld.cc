// What a session tells the operator about itself and others: the fatal reporters, who holds a lock,
// the program-information panel, the log files.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "isam/base.h"
#include "isam/io.h"
#include "main/controle.h"
#include "main/controle_intern.h"
#include "main/teksten_sessie.h"
#include "scr/scr.h"

namespace {

// "sub/ioeti.cc" is IOETI in a report.
std::string module_naam(const char* module) {
  const char* streep = std::strrchr(module, '/');
  std::string naam = streep == nullptr ? module : streep + 1;
  naam.resize(std::strcspn(naam.c_str(), "."));
  str_upper(naam.data());
  return naam;
}

// Process that holds a lock on the range, 0 if nobody does.
pid_t houder_van(int fd, int64_t offset, int64_t lengte) {
  struct flock slot {};
  slot.l_type = F_WRLCK;
  slot.l_whence = SEEK_SET;
  slot.l_start = offset;
  slot.l_len = lengte;
  if (fcntl(fd, F_GETLK, &slot) != 0 || slot.l_type == F_UNLCK) return 0;
  return slot.l_pid;
}

// The terminal whose record that process keeps locked; false if none does. Reads around iotab,
// whose own call may be the one that waits.
bool terminal_van(pid_t houder, TerminalRec& rec) {
  const int fd = iotab_fd();
  if (fd < 0 || houder <= 0) return false;
  for (int slot = 1; slot <= SYS_TERMINALS.aantal; ++slot) {
    const int64_t offset = 2576 + int64_t{slot} * 64;
    if (houder_van(fd, offset, 64) != houder) continue;
    return io_lees(fd, &rec, sizeof rec, offset) == int64_t{sizeof rec};
  }
  return false;
}

struct Bereik {
  int fd;
  int64_t offset, lengte;
};

// Which of a table's locks is in the way: the record's, else whatever stands in its index.
Bereik in_de_weg(const ICB* icb) {
  if (icb->record_no >= 0) {
    const Bereik record{icb->data_fd, int64_t{icb->record_no} * icb->record_length,
                        icb->record_length};
    if (houder_van(record.fd, record.offset, record.lengte) != 0) return record;
  }
  const Bereik index{icb->index_fd, 0, 0};
  if (icb->is_private != 0 || houder_van(index.fd, 0, 0) != 0) return index;
  return {icb->data_fd, 0, 0};
}

// One row of the information panel.
void rij(int nummer, const char* label, const std::string& waarde) {
  scr_print(A_LABEL, nummer, 2, "%-12.12s:", label);
  scr_print(A_WAARDE, nummer, 16, "%s", waarde);
}

void paneel_kop() {
  win_title(" %s ", txt(T_CTL_INFORMATIE));
  rij(1, txt(T_CTL_PROGRAMMA), ctl_eigen_naam());
  rij(2, txt(T_CTL_VERSIE), str_format("%d %s", VERSIE_NUMMER, VERSIE_DATUM));
  rij(3, txt(T_CTL_COMPILATIE), session_builddate);
}

}  // namespace

// Fatal reporters ---------------------------------------------------------------------------------

void ctl_nomem(const char* module, int nr) {
  scr_abort("%s: %s (nr=%d)", module_naam(module), txt(T_CTL_GEEN_GEHEUGEN), nr);
}

void ctl_noopen(const char* module, const char* bestand) {
  const int fout = errno;
  scr_abort("%s: %s (file=%s, errno=%d)", module_naam(module), txt(T_CTL_OPEN), bestand, fout);
}

void ctl_badkey(const char* module, const ICB* icb, int gevraagd) {
  scr_abort("%s: %s (file=%.11s, keynr=%d/%d)", module_naam(module), txt(T_CTL_KEYNR), icb->name,
            icb->block.key_number, gevraagd);
}

void ctl_fault(const char* module, int code) {
  scr_abort("%s: errno=%d", module_naam(module), code);
}

void ctl_badstart(int code) {
  win_open1(5, 15, 5, 52);
  paneel_kop();
  scr_abort("%s %s %d", ctl_eigen_naam(), txt(T_CTL_FOUTIEF_GESTART), code);
}

// Locks -------------------------------------------------------------------------------------------

std::string ctl_lockholder(const char* tekst, int fd, int64_t offset, int64_t lengte) {
  TerminalRec rec{};
  if (!terminal_van(houder_van(fd, offset, lengte), rec)) return txt(T_CTL_ANDER_SCHERM);
  const std::string gebruiker = unscramble_veld(rec.gebruiker, sizeof rec.gebruiker);
  std::string regel;
  if (std::strcmp(tekst, "PROG") == 0)
    regel = str_format("%s %s", txt(T_CTL_PROG_GEBRUIK), gebruiker);
  else if (*tekst == '~')
    regel = str_format("%s: %s %s", tekst + 1, txt(T_CTL_IN_GEBRUIK), gebruiker);
  else
    regel = str_format("%s %s", txt(T_CTL_INFO_GEBRUIK), gebruiker);
  const std::string tty = veld_tekst(rec.tty, sizeof rec.tty);
  if (!tty.empty()) regel += str_format(" (tty%s)", tty);
  return regel;
}

void ctl_slot_wacht(ICB* icb) {
  const Bereik b = in_de_weg(icb);
  const std::string tekst = str_format("%-.11s: %-.19s --> %s", icb->name, icb->description,
                                       ctl_lockholder("", b.fd, b.offset, b.lengte));
  ix_hooks.regel(tekst.c_str(), 2);
  ix_hooks.regel("", 0);
}

// The panel ---------------------------------------------------------------------------------------

void ctl_diag() {
  const IngBewaar velden;
  const Venster venster(6, 15, 10, 52);
  paneel_kop();
  const std::string gebruiker = session_user();
  const char rechten = terminal_rec.rechten == 0 ? ' ' : terminal_rec.rechten;
  rij(4, txt(T_CTL_GEBRUIKER), gebruiker);
  rij(5, txt(T_CTL_BEDRIJF), veld_tekst(sys_rec1.bedrijf, sizeof sys_rec1.bedrijf));
  rij(6, txt(T_CTL_PAKKET), str_format("Lindgar%s %dF", RELEASE, filialen()));
  rij(7, txt(T_CTL_RECHTEN), str_format("%s (%c)", gebruiker, rechten));
  scr_enter(8, 2);
}

// Names and logs ----------------------------------------------------------------------------------

void ctl_ttyname(char* buffer, size_t grootte) {
  std::memset(buffer, 0, grootte);
  const char* naam = ttyname(STDIN_FILENO);
  if (naam == nullptr || grootte == 0) return;
  for (const char* soort : {"tty", "pts"}) {
    const char* p = std::strstr(naam, soort);
    if (p != nullptr && std::strlen(p + 3) < grootte) std::strcpy(buffer, p + 3);
  }
}

void ctl_log(const char* pad, int inspringen, const char* tekst) {
  if (std::strstr(pad, ".LOG") == nullptr) ctl_fault("controle", 1);
  const int fd = open(pad, O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0660);
  if (fd < 0) ctl_noopen("controle", pad);
  const std::string moment =
      str_format("%-8.8s %-5.5s", date_show(date_today()), time_show(time_now()));
  const std::string regel =
      str_format("%s %s%s\n", moment,
                 std::string(inspringen > 0 ? static_cast<size_t>(inspringen) : 0, ' '), tekst);
  region_lock(fd, 4, static_cast<int64_t>(regel.size()));
  io_schrijf(fd, regel.data(), regel.size(), lseek(fd, 0, SEEK_END));
  close(fd);
}
