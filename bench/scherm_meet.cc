#include "bench/scherm_meet.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>

#include "bench/partij.h"
#include "scr/macro.h"

namespace {

constexpr int GEDULD_MS = 10000, STIL_MS = 40;
constexpr double MILLI = 1e-3;
constexpr const char *ESC = "\x1b", *WIS = "\x7f", *F2 = "\x1bOQ", *INS = "\x1b[2~";

/// A program on a terminal of its own; it goes when this goes.
struct Sessie {
  int lijn = -1;
  pid_t kind = -1;
  ~Sessie() {
    close(lijn);
    kill(kind, SIGHUP);
    waitpid(kind, nullptr, 0);
  }
};

/// The bytes of a terminal's output that stand on the screen: without its control sequences.
std::string zichtbaar(std::string_view uit) {
  std::string tekst;
  for (size_t i = 0; i < uit.size(); ++i) {
    if (uit[i] != '\x1b') {
      tekst += uit[i];
    } else if (++i < uit.size() && uit[i] == '[') {
      while (++i < uit.size() && (uit[i] < '@' || uit[i] > '~')) {
      }
    } else if (i < uit.size() && uit[i] == '(') {
      ++i;
    }
  }
  return tekst;
}

bool komt(const Sessie& s, int ms) {
  pollfd in{s.lijn, POLLIN, 0};
  return poll(&in, 1, ms) > 0;
}

bool neem(const Sessie& s, std::string* uit) {
  char stuk[8192];
  const ssize_t n = read(s.lijn, stuk, sizeof stuk);
  if (n > 0) uit->append(stuk, static_cast<size_t>(n));
  return n > 0;
}

/// Types and gives the seconds until the text has come; then waits until nothing more comes.
double typ(const Sessie& s, std::string_view toetsen, std::string_view tekst) {
  std::string uit;
  const double begin = seconden_nu();
  if (write(s.lijn, toetsen.data(), toetsen.size()) < 0) meet_fout("terminal", "write");
  while (zichtbaar(uit).find(tekst) == std::string::npos)
    if (!komt(s, GEDULD_MS) || !neem(s, &uit))
      meet_fout("terminal", ("no \"" + std::string(tekst) + "\" in " + zichtbaar(uit)).c_str());
  const double t = seconden_nu() - begin;
  while (komt(s, STIL_MS) && neem(s, &uit)) {
  }
  return t;
}

/// The operator of the demo chain at the launcher.
void meld_aan(Sessie* s) {
  const winsize maat{25, 80, 0, 0};
  s->kind = forkpty(&s->lijn, nullptr, nullptr, &maat);
  if (s->kind < 0) meet_fout("terminal", "forkpty");
  if (s->kind == 0) {
    setenv("BIN", BUILD_DIR, 1);
    setenv("TERM", "xterm-256color", 1);
    setenv("HOME", ".", 1);  // terminal entries that are missing are made here
    for (const char* weg : {"TSTBIN", "TMUX", "KPOS", "NLSPATH", "MACRO"}) unsetenv(weg);
    execl(BUILD_DIR "/tools/winkel", "winkel", "terminal", "--gebruiker", "DEMO", nullptr);
    _exit(1);
  }
  typ(*s, "", "Voorraadbeheer");
}

Rij rij(const char* nr, const char* naam, const std::vector<double>& tijden) {
  return {nr, naam, "ms", {{mediaan(tijden) / MILLI}}};
}

/// What was recorded is what is measured.
void keur_macro() {
  MacRec rec{};
  FILE* f = fopen("MACRO.TXT", "rb");
  const bool gelezen = f != nullptr && fread(&rec, sizeof rec, 1, f) == 1;
  if (f != nullptr) fclose(f);
  if (!gelezen || rec.count != MACRO_TOETSEN) meet_fout("terminal", "not a macro of 100 keys");
}

/// In the field: records a hundred keys, after which the recording ends of itself, and gives the
/// times from F2 and the letter until the field holds what they leave.
std::vector<double> macro_meet(const Sessie& s, int rondes) {
  std::string toetsen;
  for (int n = 2; n < MACRO_TOETSEN; n += 2) toetsen += std::string("3") + WIS;
  typ(s, std::string(F2) + INS, "Omschrijving");
  typ(s, "m", "M");
  typ(s, std::string("meting\r") + F2, "Opname");
  typ(s, toetsen + "45", "");
  typ(s, ESC, "");
  keur_macro();
  std::vector<double> uit;
  for (int i = 0; i < rondes; ++i) {
    uit.push_back(typ(s, std::string(F2) + "m", "45"));
    typ(s, std::string(WIS) + WIS, "_");
  }
  return uit;
}

}  // namespace

std::vector<Rij> scherm_meet(int rondes) {
  Sessie s;
  meld_aan(&s);
  std::vector<double> start, echo;
  constexpr const char* MENU = "Uw keuze 11";
  for (int i = 0; i <= rondes; ++i) {  // from the key with which the launcher goes over to it
    const double t = typ(s, "1", MENU);
    if (i > 0) start.push_back(t);  // the first one warms the files
    if (i < rondes) typ(s, ESC, "Hoofdmenu");
  }
  typ(s, "11", "Selectiecriteria");
  typ(s, "12", "_____");
  for (int i = 0; i < rondes; ++i) {
    echo.push_back(typ(s, "3", "3"));
    typ(s, WIS, "_");
  }
  return {rij("9", "start of opdsaldo to its menu", start),
          rij("10", "key typed in a field to its echo", echo),
          rij("15", "replay of a macro of 100 keys", macro_meet(s, rondes))};
}
