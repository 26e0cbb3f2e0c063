// Opens and closes the screen and its terminals.
//
// The size is that of the terminal's description, never that of the window it runs in:
// use_env(FALSE) stands before newterm, and lines and columns are read back from stdscr after every
// switch, since set_term does not restore them. LC_CTYPE is settled before the first newterm:
// ncurses decides there how it writes what is not ASCII.
#include <fcntl.h>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>

#include "isam/base.h"
#include "isam/ix.h"
#include "isam/tekst.h"
#include "scr/macro.h"
#include "scr/scr_curses.h"
#include "scr/teksten.h"
#include "scr/terminfo.h"

ScrCtx* scr_ctx = nullptr;
ScrHooks scr_hooks{};

namespace {

constexpr int TERMINALS = 5;
constexpr int WACHT_MAAT_MS = 300;  // for a window to take another size

termios echo_bewaard;
bool echo_bekend = false;
struct sigaction stop_bewaard;

struct ToetsRij {
  int index, code;
};
constexpr ToetsRij TOETSEN[] = {
    {0, TOETS_CANCEL}, {1, 9},          {2, TOETS_HELP}, {3, TOETS_UP},   {4, TOETS_DOWN},
    {5, TOETS_PGUP},   {6, TOETS_PGDN}, {7, TOETS_ESC},  {8, KEY_BTAB},   {12, KEY_F(1)},
    {13, KEY_F(2)},    {14, KEY_F(3)},  {15, KEY_F(4)},  {16, KEY_F(5)},  {17, KEY_F(6)},
    {18, KEY_F(7)},    {19, KEY_F(8)},  {20, KEY_F(9)},  {21, KEY_F(10)}, {22, KEY_F(11)},
    {23, KEY_F(12)}};
static_assert(TOETS_CANCEL == KEY_CANCEL && TOETS_HELP == KEY_HELP && TOETS_EXIT == KEY_EXIT);
static_assert(TOETS_UP == KEY_UP && TOETS_PGDN == KEY_NPAGE && TOETS_F11 == KEY_F(11));
static_assert(A_LABEL == A_DIM && A_WAARDE == A_BOLD && A_BALK == A_REVERSE &&
              A_STREEP == A_UNDERLINE && A_LIJN == A_ALTCHARSET);

void locale_zet() {
  std::setlocale(LC_CTYPE, "");
  if (std::strcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0) std::setlocale(LC_CTYPE, "C.UTF-8");
}

void echo_weg() {
  if (!echo_bekend) return;
  termios zonder{};
  if (tcgetattr(0, &zonder) != 0) return;
  zonder.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  tcsetattr(0, TCSADRAIN, &zonder);
}

void echo_terug() {
  if (echo_bekend) tcsetattr(0, TCSADRAIN, &echo_bewaard);
  echo_bekend = false;
}

/// A stopped program would keep its locks: Ctrl+Z does nothing while the screen is open.
void stop_weg() {
  struct sigaction negeer {};
  negeer.sa_handler = SIG_IGN;
  sigaction(SIGTSTP, &negeer, &stop_bewaard);
}

int terminal_zoek(const char* naam) {
  for (int i = 0; i < scr_ctx->term_count; ++i)
    if (std::strncmp(scr_ctx->terminals[i].name, naam, sizeof scr_ctx->terminals[i].name) == 0)
      return i;
  return -1;
}

/// Opens a new terminal; its index, -1 when its description cannot be had.
int terminal_maak(const char* naam) {
  if (scr_ctx->term_count >= TERMINALS) return -1;
  SCREEN* scherm = newterm(terminfo_naam(std::getenv("TERM"), naam).c_str(), stdout, stdin);
  if (scherm == nullptr) return -1;
  const int index = scr_ctx->term_count++;
  ScrTerminal& t = scr_ctx->terminals[index];
  std::strncpy(t.name, naam, sizeof t.name - 1);
  t.scherm = scherm;
  toets_leer();
  return index;
}

/// Whether the window is as large as this terminal wants. "" makes do with any; a line that cannot
/// tell its size is believed.
bool maat_goed(const char* naam) {
  winsize maat{};
  if (*naam == 0 || ioctl(1, TIOCGWINSZ, &maat) != 0 || maat.ws_col == 0) return true;
  return std::strcmp(naam, "-l") == 0 ? maat.ws_row >= LINES : maat.ws_col >= COLS;
}

bool maat_komt(const char* naam) {
  for (int ms = 0; ms < WACHT_MAAT_MS && !maat_goed(naam); ms += 20) {
    const timespec even{0, 20'000'000};
    nanosleep(&even, nullptr);
  }
  return maat_goed(naam);
}

[[noreturn]] void terminfo_onbekend(const char* naam) {
  const std::string geprobeerd = terminfo_naam(std::getenv("TERM"), naam);
  std::printf("\n%s (%s)\n", cp850_utf8(txt(T_ONBEKENDE_TERMINFO)).c_str(), geprobeerd.c_str());
  scr_exit(10);
}

bool stdscr_in_stapel() {
  for (int i = 0; i < scr_ctx->win_count; ++i)
    if (venster_op(i) == stdscr) return true;
  return false;
}

void hooks_vul() {
  ix_hooks.regel = scr_regel;
  ix_hooks.doos = scr_doos;
  ix_hooks.afbreken_aan = scr_intr_on;
  ix_hooks.afgebroken = scr_interrupted;
  ix_hooks.voortgang = scr_voortgang;
  ix_hooks.fataal = [](const char* tekst) { scr_abort_tekst(tekst); };
}

/// The lock report stays whose it is: it speaks through the bottom line, with or without a screen.
void hooks_terug() {
  void (*const wacht)(ICB*) = ix_hooks.wacht;
  ix_hooks = IX_HOOKS_KAAL;
  ix_hooks.wacht = wacht;
}

/// endwin first for every screen, then delscreen: the other way round the terminal is left in
/// keypad mode and on its second screen.
void terminals_weg() {
  for (int i = scr_ctx->term_count - 1; i >= 0; --i) {
    set_term(static_cast<SCREEN*>(scr_ctx->terminals[i].scherm));
    endwin();
  }
  for (int i = scr_ctx->term_count - 1; i >= 0; --i)
    delscreen(static_cast<SCREEN*>(scr_ctx->terminals[i].scherm));
  scr_ctx->term_count = 0;
}

void tekendevices_dicht() {
  for (int fd = 3; fd < 40; ++fd) {
    struct stat st {};
    if (fstat(fd, &st) == 0 && S_ISCHR(st.st_mode)) close(fd);
  }
}

}  // namespace

void term_stuur(const char* capability) {
  const char* s = tigetstr(capability);
  if (s == nullptr) return;
  putp(s);
  std::fflush(stdout);  // putp writes through stdio, ncurses past it
}

void term_maten() {
  getmaxyx(stdscr, scr_ctx->lines, scr_ctx->cols);
  LINES = scr_ctx->lines;
  COLS = scr_ctx->cols;
}

void term_verlaat() {
  term_stuur("clear");
  term_stuur("rs2");
}

void term_neem(int index) {
  scr_ctx->term_cur = index;
  set_term(static_cast<SCREEN*>(scr_ctx->terminals[index].scherm));
  term_maten();
  term_stuur("is2");
  term_stuur("is3");
  term_stuur(
      "smkx");  // ncurses sends it once a screen; another terminal's reset may have undone it
  clearok(curscr, TRUE);
}

void scr_term_open(const char* naam) {
  if (scr_ctx == nullptr) return;
  if (scr_ctx->win_count >= SCR_VENSTERS) scr_abort("win_open : %s", txt(T_TEVEEL_VENSTERS));
  const bool eerste = scr_ctx->term_cur < 0;
  if (!eerste) {
    scr_error("");  // or it stands there for good when this terminal comes back
    term_verlaat();
  }
  int index = terminal_zoek(naam);
  if (index < 0) index = terminal_maak(naam);
  if (index < 0 && eerste) terminfo_onbekend(naam);
  if (index < 0) return scr_term_open("");
  term_neem(index);
  cbreak();
  noecho();
  signalen_vang();
  typeahead(-1);
  if (!maat_komt(naam)) return scr_term_open("");
  scr_ctx->win_base = scr_ctx->win_count;
  if (stdscr_in_stapel()) return win_open(1, 1, scr_ctx->lines, scr_ctx->cols, 0);
  if (has_colors()) start_color();
  win_stapel(stdscr, 0);
}

void SCRINIT() {
  if (scr_ctx != nullptr) return;
  locale_zet();
  teksten_open();
  ScrCtx* const ctx = new (std::nothrow) ScrCtx{};
  if (ctx == nullptr) scr_abort("SCRINIT : %s", txt(T_GEEN_GEHEUGEN));
  scr_ctx = ctx;
  ctx->win_cur = ctx->term_cur = -1;
  for (const ToetsRij& rij : TOETSEN) ctx->key_table[rij.index] = rij.code;
  geld_decimalen = ctx->money_decimals = std::getenv("KPOS") == nullptr ? 2 : 0;
  toets_begin();
  uit_begin();
  melding_begin();
  afbreken_begin();
  echo_bekend = tcgetattr(0, &echo_bewaard) == 0;
  stop_weg();
  signalen_vang();  // before newterm, which would put its own handlers in between
  veld_begin();
  use_env(FALSE);
  if (std::getenv("ESCDELAY") == nullptr) set_escdelay(50);
  scr_term_open("");
  echo_weg();  // behind newterm: what ncurses gives back after a kill has it still on
  hooks_vul();
  macro_begin();
  scr_busy_suppress();
}

void scr_close() {
  if (scr_ctx == nullptr) return;
  hooks_terug();
  if (scr_ctx->win_count > 0) {
    typeahead(-1);
    if (key_pending()) macro_stop();
    macro_draag_over();
    scr_ctx->output_off = 0;
    while (scr_ctx->win_count > 1) win_close();
    scr_clrbot(1, 1);
    scr_toon();
  }
  if (scr_ctx->term_count > 0) terminals_weg();
  signalen_terug();
  sigaction(SIGTSTP, &stop_bewaard, nullptr);
  echo_terug();
  veld_eind();
  toets_begin();
  delete scr_ctx;
  scr_ctx = nullptr;
  tekendevices_dicht();
}

void scr_exit(int status) {
  scr_close();
  std::exit(status);
}
