// Session start and the hand-over to the next program.
//
// The order of ctl_start is fixed: each step stands on the one before, and from the moment that the
// terminal record is locked that lock is the session's sign of life, until ctl_next gives it up.
#include "main/controle.h"

#include <unistd.h>

#include <cctype>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "isam/base.h"
#include "main/controle_intern.h"
#include "main/iofil.h"
#include "main/teksten_sessie.h"
#include "scr/scr.h"

int32_t session_terminal = 0;
char session_caller[32];
std::string session_builddate;
TerminalRec terminal_rec;
SysRec1 sys_rec1;
SysRec10 sys_rec10;
uint8_t sys_rec15[64];

namespace {

constexpr std::string_view SUPPORT = "kpxw";
constexpr const char* STARTER = "hoofdmnu";
constexpr uint8_t LOOPT = 1, TUSSEN = 2, MISLUKT = 5, HOOGSTE_GEWONE = 9;
enum Start {
  ANDERE_NAAM = 0,
  ANDERE_GEBRUIKER = 1,
  GEEN_TERMINAL = 2,
  ANDER_PROGRAMMA = 13,
  ARGUMENTEN = 99
};

struct Valuta {
  char code[3];
  uint8_t decimalen;
  uint8_t rest[32];
};
static_assert(sizeof(Valuta) == 36);

std::string eigen_naam;
bool support = false;

void kop_teken() {
  const std::string tekst = eigen_naam + ' ' + RELEASE;
  scr_print(A_BALK, 1, 1, " %-*.*s ", scr_ctx->cols - 2, scr_ctx->cols - 2, tekst);
  scr_flush(0);
}

// The character set was chosen before the terminal opened and must stay what it is; a comma as
// decimal point would reach every amount and picture.
void catalogi_open() {
  const std::string tekens = setlocale(LC_CTYPE, nullptr);
  setlocale(LC_ALL, "");
  const char* gemeld = setlocale(LC_MESSAGES, nullptr);
  const std::string taal = gemeld == nullptr ? "C" : gemeld;
  setlocale(LC_COLLATE, taal.c_str());
  setlocale(LC_MESSAGES, taal.c_str());
  setlocale(LC_CTYPE, tekens.c_str());
  setlocale(LC_NUMERIC, "C");
  teksten_open();
}

void toets_release() {
  int32_t nummer = 10;
  iotab('R', &nummer, &sys_rec10, SYS_RECORDS);
  if (std::memcmp(sys_rec10.release, RELEASE, sizeof sys_rec10.release) == 0) return;
  kop_teken();
  scr_abort("%s %-.5s", txt(T_CTL_RELEASE), sys_rec10.release);
}

int32_t terminal_uit(const char* tekst) {
  const long nummer = std::strtol(tekst, nullptr, 10);
  return nummer < INT32_MIN || nummer > INT32_MAX ? 0 : static_cast<int32_t>(nummer);
}

std::string volgend_programma() {
  return veld_tekst(terminal_rec.programma, sizeof terminal_rec.programma);
}

// Locks the terminal record and proves the arguments against it.
void bewijs(char** argv) {
  str_printf(session_caller, sizeof session_caller, "%s", argv[4]);
  session_terminal = terminal_uit(argv[3]);
  int32_t nummer = session_terminal;
  if (nummer == 0 || !iotab('X', &nummer, &terminal_rec, SYS_TERMINALS))
    ctl_badstart(GEEN_TERMINAL);
  if (session_user() != argv[2]) ctl_badstart(ANDERE_GEBRUIKER);
  if (volgend_programma() != argv[1]) ctl_badstart(ANDERE_NAAM);
  // A critical status survives: it tells that the update before was broken off.
  if (terminal_rec.status <= HOOGSTE_GEWONE) ctl_set_status(LOOPT);
  if (volgend_programma() != eigen_naam) ctl_badstart(ANDER_PROGRAMMA);
}

void starter_begin() {
  session_caller[0] = 0;
  session_terminal = 1;
  int32_t nummer = session_terminal;
  iotab('R', &nummer, &terminal_rec, SYS_TERMINALS);
  terminal_rec.status = 0;
}

// A home currency without decimals holds for the whole chain of programs, through KPOS.
void starter_geld() {
  Valuta valuta;
  for (int32_t nummer = 1; iotab('R', &nummer, &valuta, SYS_VALUTA); ++nummer) {
    if (std::memcmp(valuta.code, sys_rec15, sizeof valuta.code) != 0) continue;
    if (valuta.decimalen != 0) return;
    static char kpos[] = "KPOS=geset";
    putenv(kpos);
    geld_decimalen = 0;
    scr_ctx->money_decimals = 0;
    return;
  }
}

std::string map_van(const char* variabele) {
  const char* waarde = std::getenv(variabele);
  std::string map = waarde == nullptr ? "" : waarde;
  if (!map.empty() && map.back() != '/') map += '/';
  return map;
}

// Tries the three places of a program; returns only when none could be run, with the last tried.
std::string voer_uit(const char* naam, const char* a, const char* b, const char* c) {
  if (std::getenv("TSTBIN") != nullptr) {
    const std::string pad = map_van("TSTBIN") + naam;
    execl(pad.c_str(), pad.c_str(), naam, a, b, c, static_cast<char*>(nullptr));
  }
  const std::string pad = map_van("BIN") + naam;
  execl(pad.c_str(), pad.c_str(), naam, a, b, c, static_cast<char*>(nullptr));
  execlp(naam, naam, naam, a, b, c, static_cast<char*>(nullptr));
  return naam;
}

void scherm_terug() {
  SCRINIT();
  hdr_repaint();
  teksten_open();
}

[[noreturn]] void niet_gevonden(const std::string& pad) {
  scr_abort("%s %s %s", txt(T_CTL_PROGRAMMA), pad, txt(T_CTL_NIET_GEVONDEN));
}

void scherm_dicht() {
  teksten_sluit();
  if (scr_ctx != nullptr) scr_close();
}

// What the next program finds in the terminal record; the last write gives up the lock.
void geef_over(const char* naam) {
  int32_t nummer = session_terminal;
  if (terminal_rec.status != 0 && terminal_rec.status < MISLUKT)
    ctl_set_status(*naam != 0 ? TUSSEN : uint8_t{0});
  veld_zet(terminal_rec.programma, sizeof terminal_rec.programma, naam);
  terminal_rec.moment = static_cast<uint32_t>(std::time(nullptr));
  terminal_rec.woord60 = 0;
  if (std::strcmp(naam, STARTER) == 0) {
    terminal_rec.woord60 = terminal_rec.woord44;
    terminal_rec.woord44 = 0;
  }
  if (*naam == 0) std::memset(terminal_rec.tty, 0, sizeof terminal_rec.tty);
  iotab('W', &nummer, &terminal_rec, SYS_TERMINALS);
}

}  // namespace

bool session_support() noexcept { return support; }

std::string session_user() {
  return unscramble_veld(terminal_rec.gebruiker, sizeof terminal_rec.gebruiker);
}

const std::string& ctl_eigen_naam() { return eigen_naam; }

void ctl_start(const char* naam, const char* bouwdatum, int argc, char** argv) {
  const bool starter = *naam == 0;
  eigen_naam = starter ? STARTER : naam;
  session_builddate = bouwdatum;
  SCRINIT();
  support = argc == 5 && std::string_view(argv[2]).starts_with(SUPPORT);
  kop_teken();
  if (argc != (starter ? 1 : 5)) ctl_badstart(ARGUMENTEN);
  catalogi_open();
  int32_t nummer = 1;
  iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
  iofil('O', 0, nullptr);
  toets_release();
  if (starter)
    starter_begin();
  else
    bewijs(argv);
  nummer = 1;
  iotab('R', &nummer, &sys_rec1, SYS_RECORDS);
  nummer = 15;
  iotab('R', &nummer, sys_rec15, SYS_RECORDS);
  geld_decimalen = scr_ctx->money_decimals;
  if (starter) starter_geld();
  pairs_load();
  ix_hooks.wacht = ctl_slot_wacht;
  scr_hooks.programma_info = ctl_diag;
  scr_intr_reset();
  if (starter) macro_stop();  // what the end of a chain left is not typed into the next login
  macro_user(session_terminal);
}

void ctl_next(const char* naam) {
  const std::string volgende = naam == nullptr ? "" : naam;
  geef_over(volgende.c_str());
  int32_t nummer = 0;
  iotab('C', &nummer, nullptr, SYS_RECORDS);
  iofil('C', 0, nullptr);
  pairs_free();
  const std::string gebruiker = session_user();
  const std::string terminal = str_format("%ld", session_terminal);
  scherm_dicht();
  if (volgende.empty()) std::exit(0);
  const std::string pad =
      voer_uit(volgende.c_str(), gebruiker.c_str(), terminal.c_str(), eigen_naam.c_str());
  scherm_terug();
  niet_gevonden(pad);
}

void ctl_batch(const char* arg1, int type, const char* arg3, bool moet) {
  const std::string soort = str_format("%d", type);
  teksten_sluit();
  for (int fd = 6; fd < 60; ++fd) close(fd);
  if (scr_ctx != nullptr) scr_close();
  const std::string pad = voer_uit("batchrun", arg1, soort.c_str(), arg3);
  scherm_terug();
  if (moet) niet_gevonden(pad);
}
