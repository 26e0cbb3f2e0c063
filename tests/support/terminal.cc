#include "tests/support/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vterm.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "scr/terminfo.h"

/// ncurses forgets a little at a newterm that fails; the leak check of a child would say so.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:new_prescr\n"; }

namespace {
using Klok = std::chrono::steady_clock;
constexpr auto GEDULD = std::chrono::seconds(20);

/// Whether a process is blocked in a read of this tty.
bool leest_tty(pid_t pid, const std::string& tty) {
  const std::string proc = "/proc/" + std::to_string(pid);
  std::ifstream in(proc + "/syscall");
  std::string nummer, fd;
  if (!(in >> nummer >> fd) || nummer != std::to_string(SYS_read)) return false;
  const std::string link = proc + "/fd/" + std::to_string(std::strtol(fd.c_str(), nullptr, 16));
  char doel[256];
  const ssize_t n = readlink(link.c_str(), doel, sizeof doel);
  return n > 0 && std::string(doel, static_cast<size_t>(n)) == tty;
}

/// Asleep, and no signal on its way: what is waking up still stands in its read.
bool slaapt(pid_t pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/status");
  bool slaap = false;
  for (std::string regel; std::getline(in, regel);) {
    if (regel.starts_with("State:")) slaap = regel.find('S', 6) == 7;
    const bool wacht = regel.starts_with("SigPnd:") || regel.starts_with("ShdPnd:");
    if (wacht && regel.find_first_not_of('0', 8) != std::string::npos) return false;
  }
  return slaap;
}

/// The same of a process or of one below it: a shell waits while its child reads.
bool iemand_leest(pid_t pid, const std::string& tty) {
  if (leest_tty(pid, tty) && slaapt(pid)) return true;
  const std::string p = std::to_string(pid);
  std::ifstream in("/proc/" + p + "/task/" + p + "/children");
  for (pid_t kind = 0; in >> kind;)
    if (iemand_leest(kind, tty)) return true;
  return false;
}

void zet_omgeving(const TerminalOpties& opties) {
  for (const char* weg : {"LC_ALL", "LC_CTYPE", "LC_NUMERIC", "LC_MESSAGES", "LANGUAGE", "LINES",
                          "COLUMNS", "TERMINFO", "ESCDELAY", "KPOS", "MACRO", "NLSPATH"})
    unsetenv(weg);
  setenv("TERM", "xterm-256color", 1);
  setenv("TERMINFO_DIRS", (terminfo_map() + ":").c_str(), 1);
  setenv("HOME", BUILD_DIR "/home", 1);
  setenv("LANG", "C.UTF-8", 1);
  for (const std::string& e : opties.env) {
    const size_t is = e.find('=');
    if (is == std::string::npos)
      unsetenv(e.c_str());
    else
      setenv(e.substr(0, is).c_str(), e.substr(is + 1).c_str(), 1);
  }
}

std::string utf8(uint32_t c) {
  if (c < 0x80) return {static_cast<char>(c)};
  if (c < 0x800) return {static_cast<char>(0xC0 | c >> 6), static_cast<char>(0x80 | (c & 63))};
  return {static_cast<char>(0xE0 | c >> 12), static_cast<char>(0x80 | (c >> 6 & 63)),
          static_cast<char>(0x80 | (c & 63))};
}

std::string kaal(std::string s) {
  while (!s.empty() && s.back() == ' ') s.pop_back();
  return s;
}
}  // namespace

struct TerminalStaat {
  pid_t pid = -1;
  int master = -1, slave = -1;
  std::string tty, uit;
  VTerm* vt = nullptr;
  VTermScreen* scherm = nullptr;
  int rows = 25, cols = 80, status = -1;
  bool eind = false, resizes = false, cursor = true;
  size_t gezien = 0;  // output searched for requests of another size

  TerminalStaat(int r, int c);
  ~TerminalStaat();
  TerminalStaat(const TerminalStaat&) = delete;
  TerminalStaat& operator=(const TerminalStaat&) = delete;
  bool pomp();
  void herschaal();
  void maat(int r, int c);
  void einde();
  bool rust();
  VTermScreenCell cel(int row, int col) const;
  std::string regel(int row, int van, int tot) const;
  std::string beeld() const;
};

namespace {
int cursor_of_niet(VTermProp prop, VTermValue* waarde, void* data) {
  if (prop == VTERM_PROP_CURSORVISIBLE) static_cast<TerminalStaat*>(data)->cursor = waarde->boolean;
  return 1;
}
}  // namespace

TerminalStaat::TerminalStaat(int r, int c) : rows(r), cols(c) {
  vt = vterm_new(r, c);
  vterm_set_utf8(vt, 1);
  scherm = vterm_obtain_screen(vt);
  vterm_screen_enable_altscreen(scherm, 1);
  static VTermScreenCallbacks terug = [] {
    VTermScreenCallbacks t{};
    t.settermprop = cursor_of_niet;
    return t;
  }();
  vterm_screen_set_callbacks(scherm, &terug, this);
  vterm_screen_reset(scherm, 1);
}

TerminalStaat::~TerminalStaat() {
  if (pid > 0 && !eind) {
    kill(-pid, SIGKILL);
    kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
  }
  if (master >= 0) close(master);
  if (slave >= 0) close(slave);
  if (vt != nullptr) vterm_free(vt);
}

/// Takes in what the child has written. A read of the master waits for bytes on their way, so
/// nothing is missed once the child is blocked.
bool TerminalStaat::pomp() {
  bool iets = false;
  char stuk[4096];
  while (master >= 0) {
    const ssize_t n = read(master, stuk, sizeof stuk);
    if (n <= 0) break;
    iets = true;
    uit.append(stuk, static_cast<size_t>(n));
    vterm_input_write(vt, stuk, static_cast<size_t>(n));
  }
  if (iets && resizes) herschaal();
  return iets;
}

void TerminalStaat::herschaal() {
  for (size_t p; (p = uit.find("\x1b[8;", gezien)) != std::string::npos;) {
    int r = 0, c = 0;
    gezien = p + 1;
    if (std::sscanf(uit.c_str() + p, "\x1b[8;%d;%dt", &r, &c) != 2) continue;
    if (r < 1 || r > 100 || c < 1 || c > 300 || (r == rows && c == cols)) continue;
    maat(r, c);
  }
}

void TerminalStaat::maat(int r, int c) {
  rows = r;
  cols = c;
  vterm_set_size(vt, r, c);
  const winsize nieuw{static_cast<unsigned short>(r), static_cast<unsigned short>(c), 0, 0};
  ioctl(master, TIOCSWINSZ, &nieuw);
}

void TerminalStaat::einde() {
  int s = 0;
  if (eind || waitpid(pid, &s, WNOHANG) != pid) return;
  eind = true;
  status = WIFEXITED(s) ? WEXITSTATUS(s) : 128 + WTERMSIG(s);
  pomp();
}

/// Blocked in a read of the terminal, with no typed byte left (the poll of the slave's side also
/// waits for bytes on their way) and nothing more to show.
bool TerminalStaat::rust() {
  if (master < 0) return false;
  pollfd in{slave, POLLIN, 0};
  if (poll(&in, 1, 0) != 0) return false;
  const pid_t voorgrond = tcgetpgrp(master);
  if (!iemand_leest(voorgrond > 0 ? voorgrond : pid, tty)) return false;
  return !pomp() && iemand_leest(voorgrond > 0 ? voorgrond : pid, tty) && poll(&in, 1, 0) == 0;
}

VTermScreenCell TerminalStaat::cel(int row, int col) const {
  VTermScreenCell c{};
  if (row >= 1 && row <= rows && col >= 1 && col <= cols)
    vterm_screen_get_cell(scherm, VTermPos{row - 1, col - 1}, &c);
  return c;
}

std::string TerminalStaat::regel(int row, int van, int tot) const {
  std::string s;
  for (int k = van; k <= tot && k <= cols; ++k) {
    const VTermScreenCell c = cel(row, k);
    if (c.chars[0] == static_cast<uint32_t>(-1)) continue;  // second half of a wide one
    if (c.chars[0] == 0) s += ' ';
    for (int i = 0; i < VTERM_MAX_CHARS_PER_CELL && c.chars[i] != 0; ++i) s += utf8(c.chars[i]);
  }
  return s;
}

std::string TerminalStaat::beeld() const {
  std::string s;
  for (int r = 1; r <= rows; ++r) s += kaal(regel(r, 1, cols)) + "\n";
  return s;
}

Terminal::Terminal() = default;
Terminal::~Terminal() = default;
Terminal::Terminal(Terminal&&) noexcept = default;
Terminal& Terminal::operator=(Terminal&&) noexcept = default;

bool Terminal::ready() {
  const auto uiterste = Klok::now() + GEDULD;
  while (Klok::now() < uiterste) {
    staat->pomp();
    staat->einde();
    if (staat->eind || staat->rust()) return true;
    pollfd uit{staat->master, POLLIN, 0};
    poll(&uit, 1, 1);
  }
  ADD_FAILURE() << "the program does not wait for a key; its screen:\n" << staat->beeld();
  return false;
}

bool Terminal::wait_for(std::string_view text) {
  const auto uiterste = Klok::now() + GEDULD;
  while (Klok::now() < uiterste) {
    staat->pomp();
    if (staat->beeld().find(text) != std::string::npos) return true;
    staat->einde();
    if (staat->eind) break;
    pollfd uit{staat->master, POLLIN, 0};
    poll(&uit, 1, 5);
  }
  ADD_FAILURE() << "\"" << text << "\" does not come; the screen:\n" << staat->beeld();
  return false;
}

void Terminal::type_now(std::string_view keys) {
  const auto uiterste = Klok::now() + GEDULD;
  while (!keys.empty() && Klok::now() < uiterste) {
    const ssize_t n = write(staat->master, keys.data(), keys.size());
    if (n > 0) keys.remove_prefix(static_cast<size_t>(n));
    staat->pomp();
  }
}

Terminal& Terminal::type(std::string_view keys) {
  if (ready()) type_now(keys);
  return *this;
}

std::string Terminal::screen() { return ready(), staat->beeld(); }
std::string Terminal::row(int row) { return ready(), kaal(staat->regel(row, 1, staat->cols)); }
std::string Terminal::text(int row, int col, int width) {
  return ready(), staat->regel(row, col, col + width - 1);
}
bool Terminal::shows(std::string_view text) { return screen().find(text) != std::string::npos; }
bool Terminal::reverse(int r, int c) { return ready(), staat->cel(r, c).attrs.reverse; }
bool Terminal::bold(int r, int c) { return ready(), staat->cel(r, c).attrs.bold; }
bool Terminal::underline(int r, int c) { return ready(), staat->cel(r, c).attrs.underline != 0; }

int Terminal::fg(int r, int c) {
  ready();
  const VTermScreenCell cel = staat->cel(r, c);
  return VTERM_COLOR_IS_INDEXED(&cel.fg) ? cel.fg.indexed.idx : -1;
}

int Terminal::bg(int r, int c) {
  ready();
  const VTermScreenCell cel = staat->cel(r, c);
  return VTERM_COLOR_IS_INDEXED(&cel.bg) ? cel.bg.indexed.idx : -1;
}

namespace {
VTermPos cursor(TerminalStaat& s) {
  VTermPos p{};
  vterm_state_get_cursorpos(vterm_obtain_state(s.vt), &p);
  return p;
}
}  // namespace
int Terminal::cursor_row() { return ready(), cursor(*staat).row + 1; }
int Terminal::cursor_col() { return ready(), cursor(*staat).col + 1; }
bool Terminal::cursor_visible() { return ready(), staat->cursor; }

const std::string& Terminal::output() { return ready(), staat->uit; }
pid_t Terminal::pid() const { return staat->pid; }

int Terminal::exit_status() {
  const auto uiterste = Klok::now() + GEDULD;
  while (!staat->eind && Klok::now() < uiterste) {
    staat->pomp();
    staat->einde();
    pollfd uit{staat->master, POLLIN, 0};
    if (!staat->eind) poll(&uit, 1, 1);
  }
  if (!staat->eind) ADD_FAILURE() << "the program does not end; its screen:\n" << staat->beeld();
  return staat->eind ? staat->status : -1;
}

void Terminal::resize(int rows, int cols) { staat->maat(rows, cols); }

void Terminal::hang_up() {
  close(staat->slave);
  close(staat->master);
  staat->slave = staat->master = -1;
}

Terminal start_in_child(const std::function<void()>& werk, const TerminalOpties& opties) {
  terminfo_map();
  std::fflush(nullptr);
  Terminal t;
  t.staat = std::make_unique<TerminalStaat>(opties.rows, opties.cols);
  const winsize maat{static_cast<unsigned short>(opties.rows),
                     static_cast<unsigned short>(opties.cols), 0, 0};
  char naam[128] = "";
  const pid_t kind = forkpty(&t.staat->master, naam, nullptr, &maat);
  if (kind == 0) {
    zet_omgeving(opties);
    if (!opties.dir.empty() && chdir(opties.dir.c_str()) != 0) _exit(126);
    werk();
    std::fflush(nullptr);
    _exit(0);
  }
  t.staat->pid = kind;
  t.staat->tty = naam;
  t.staat->resizes = opties.resizes;
  t.staat->slave = open(naam, O_RDWR | O_NOCTTY | O_CLOEXEC);
  fcntl(t.staat->master, F_SETFL, O_NONBLOCK);
  fcntl(t.staat->master, F_SETFD, FD_CLOEXEC);
  if (kind < 0) {
    ADD_FAILURE() << "forkpty: " << std::strerror(errno);
    t.staat->eind = true;
  }
  return t;
}

Terminal start(const std::vector<std::string>& argv, const TerminalOpties& opties) {
  return start_in_child(
      [&argv] {
        std::vector<char*> woorden;
        for (const std::string& w : argv) woorden.push_back(const_cast<char*>(w.c_str()));
        woorden.push_back(nullptr);
        execvp(woorden[0], woorden.data());
        std::perror(woorden[0]);
        _exit(127);
      },
      opties);
}

const std::string& terminfo_map() {
  static const std::string map = BUILD_DIR "/terminfo";
  static const bool klaar = [] {
    const int slot = open(BUILD_DIR "/terminfo.lock", O_CREAT | O_RDWR | O_CLOEXEC, 0666);
    flock(slot, LOCK_EX);  // several test programs start at once
    struct stat st {};
    const bool er = stat((map + "/X/Xterm-256color-l").c_str(), &st) == 0;
    const bool goed = er || terminfo_maak("xterm-256color", map.c_str());
    close(slot);
    return goed;
  }();
  if (!klaar) ADD_FAILURE() << "no terminal entries in " << map;
  return map;
}

std::string picture_wanted(std::string_view soll) {
  std::istringstream in{std::string(soll.substr(soll.starts_with('\n') ? 1 : 0))};
  std::string s;
  for (std::string r; std::getline(in, r);) s += kaal(r) + "\n";
  return s;
}

std::string picture(Terminal& t, int first, std::string_view soll) {
  std::istringstream in(picture_wanted(soll));
  std::string s;
  for (std::string r; std::getline(in, r);) s += t.row(first++) + "\n";
  return s;
}

std::string picture_lacks(Terminal& t, std::initializer_list<std::string_view> texts) {
  const std::string beeld = t.screen();
  std::string weg;
  for (const std::string_view tekst : texts)
    if (beeld.find(tekst) == std::string::npos) weg += "\"" + std::string(tekst) + "\", ";
  return weg.empty() ? weg : weg + "on\n" + beeld;
}
