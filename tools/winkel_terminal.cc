// winkel terminal: a terminal that the screens can be drawn on, and a program in it.
//
// The programs ask for entries of the terminal library that no system has, for a window of 25 rows
// and for a locale in UTF-8; all three are seen to here. With --gebruiker the terminal record is
// left as a program leaves it that goes over to the launcher.
#include <fmt/format.h>
#include <langinfo.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "isam/base.h"
#include "main/iotab.h"
#include "main/kader.h"
#include "scr/terminfo.h"
#include "sub/records.h"
#include "tools/winkel.h"

namespace {

constexpr const char* STARTER = "hoofdmnu";
constexpr uint8_t TUSSEN = 2, KRITIEK = 10;

struct Terminalverb {
  std::string map = ".", gebruiker;
  CLI::App* verb = nullptr;
};

std::string map_van(const std::string& pad) {
  const size_t streep = pad.rfind('/');
  return streep == std::string::npos ? "." : streep == 0 ? "/" : pad.substr(0, streep);
}

std::string eigen_pad() {
  char pad[PATH_MAX];
  const ssize_t n = readlink("/proc/self/exe", pad, sizeof pad);
  return n <= 0 ? "winkel" : std::string(pad, static_cast<size_t>(n));
}

std::string absoluut(const std::string& pad) {
  char heel[PATH_MAX];
  return realpath(pad.c_str(), heel) == nullptr ? pad : heel;
}

/// Where a program stands: in the folders that the suite itself looks in, else beside this tool's
/// own folder; the bare name leaves it to the search path.
std::string programma_pad(const std::string& naam) {
  if (naam.find('/') != std::string::npos) return absoluut(naam);
  std::vector<std::string> mappen;
  for (const char* variabele : {"TSTBIN", "BIN"})
    if (const char* map = std::getenv(variabele); map != nullptr && *map != 0)
      mappen.emplace_back(map);
  mappen.push_back(map_van(map_van(eigen_pad())));
  mappen.push_back(map_van(eigen_pad()));
  for (const std::string& map : mappen) {
    std::string pad = map;
    pad.append("/").append(naam);
    if (access(pad.c_str(), X_OK) == 0 && !file_isdir(pad.c_str())) return pad;
  }
  return naam;
}

/// The chain of programs goes on from where it starts, unless BIN names another folder: without it
/// they would look in the data directory.
void zet_bin(const std::string& programma) {
  if (std::getenv("BIN") == nullptr && programma.find('/') != std::string::npos)
    setenv("BIN", map_van(programma).c_str(), 1);
}

void locale_utf8() {
  setlocale(LC_CTYPE, "");
  if (std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0) return;
  unsetenv("LC_ALL");
  unsetenv("LC_CTYPE");
  setenv("LANG", "C.UTF-8", 1);
}

void terminal_gereed() {
  const char* term = std::getenv("TERM");
  if (terminfo_aanwezig(term) || terminfo_maak(term, nullptr)) return;
  winkel_fout(fmt::format("TERM={}", term == nullptr ? "" : term),
              "de terminalbeschrijvingen kunnen niet gemaakt worden in ~/.terminfo");
}

[[noreturn]] void voer_uit(const std::string& pad, const std::vector<std::string>& argumenten) {
  std::vector<char*> argv{const_cast<char*>(pad.c_str())};
  for (const std::string& a : argumenten) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  std::fflush(stdout);
  execvp(pad.c_str(), argv.data());
  winkel_fout_errno(pad);
}

// The login ---------------------------------------------------------------------------------------

/// The first terminal of the user that nobody sits at.
int32_t vrije_terminal(const std::string& code) {
  bool bekend = false;
  TerminalRec rec{};
  for (int32_t n = 0; iotab('N', &n, &rec, SYS_TERMINALS);) {
    if (unscramble_veld(rec.gebruiker, sizeof rec.gebruiker) != code) continue;
    bekend = true;
    if (iotab('T', &n, nullptr, SYS_TERMINALS)) return n;
  }
  winkel_fout(code, bekend ? "is al aangemeld" : "onbekende gebruikerscode");
}

void laat_achter(int32_t nummer) {
  TerminalRec rec{};
  iotab('X', &nummer, &rec, SYS_TERMINALS);
  if (rec.status < KRITIEK) rec.status = TUSSEN;
  veld_zet(rec.programma, sizeof rec.programma, STARTER);
  char tty[sizeof rec.tty + 1] = "";
  ctl_ttyname(tty, sizeof tty);
  veld_zet(rec.tty, sizeof rec.tty, tty);
  rec.moment = static_cast<uint32_t>(std::time(nullptr));
  rec.datum = date_today();
  rec.woord60 = rec.woord44;
  rec.woord44 = 0;
  iotab('W', &nummer, &rec, SYS_TERMINALS);
}

/// The launcher looks at the home currency only when somebody logs in by hand.
void geld() {
  uint8_t vijftien[64] = {};
  int32_t n = 15;
  iotab('R', &n, vijftien, SYS_RECORDS);
  Valuta valuta{};
  for (n = 1; iotab('R', &n, &valuta, SYS_VALUTA); ++n)
    if (std::memcmp(valuta.code, vijftien, sizeof valuta.code) == 0 && valuta.decimalen == 0)
      setenv("KPOS", "geset", 1);
}

[[noreturn]] void meld_aan(const std::string& code) {
  if (access("DTSYS.TXT", W_OK) != 0) winkel_fout_errno("DTSYS.TXT");
  int32_t n = 1;
  iotab('O', &n, nullptr, SYS_RECORDS);
  const int32_t nummer = vrije_terminal(code);
  geld();
  laat_achter(nummer);
  iotab('C', &n, nullptr, SYS_RECORDS);
  const std::string pad = programma_pad(STARTER);
  zet_bin(pad);
  voer_uit(pad, {STARTER, code, std::to_string(nummer), "winkel"});
}

void doe_terminal(const Terminalverb& o) {
  std::vector<std::string> rest = o.verb->remaining();
  if (!o.gebruiker.empty() && !rest.empty())
    winkel_fout(rest[0], "--gebruiker start altijd de programmakiezer");
  for (const char* variabele :
       {"TSTBIN", "BIN"})  // as the operator meant them, from where he stands
    if (const char* waarde = std::getenv(variabele); waarde != nullptr && *waarde != 0)
      setenv(variabele, absoluut(waarde).c_str(), 1);
  const std::string map = absoluut(o.map);
  const std::string programma = programma_pad(rest.empty() ? STARTER : rest[0]);
  if (!rest.empty()) rest.erase(rest.begin());
  in_keten(map);
  locale_utf8();
  std::vector<std::string> zelf{eigen_pad(), "terminal", "-C", map};
  if (!o.gebruiker.empty()) {
    zelf.insert(zelf.end(), {"--gebruiker", o.gebruiker});
  } else {
    zelf.push_back(programma);
    zelf.insert(zelf.end(), rest.begin(), rest.end());
  }
  kader(zelf);
  terminal_gereed();
  if (!o.gebruiker.empty()) meld_aan(o.gebruiker);
  zet_bin(programma);
  voer_uit(programma, rest);
}

}  // namespace

void verb_terminal(CLI::App& app) {
  static Terminalverb o;
  o.verb = app.add_subcommand("terminal", "een programma op een terminal die ervoor ingericht is");
  optie_map(o.verb, &o.map);
  o.verb->add_option("--gebruiker", o.gebruiker, "meld deze gebruiker zonder vraag aan");
  o.verb->prefix_command();
  o.verb->callback([] { doe_terminal(o); });
}
