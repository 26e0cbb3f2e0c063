// Makes the terminal entries from the user's own, with infocmp and tic of ncurses-bin. What differs
// from the donor, and why:
//   lines, cols   the size the programs draw for, whatever the window has
//   is2           asks for that size; replaces a soft reset that would take the keypad mode with it
//   rs2 and so on gone: a full reset of the terminal on the way out wipes the other screen
//   kcan          Ctrl+Delete, a key that modern terminals have; it begins with ESC
//   kent          keypad Enter where the donor has none (it would arrive as Escape and text)
//   khlp, kext    gone: their first byte is ESC, so Help inside a field would leave it
//   U8            line drawing in Unicode instead of the alternate character set
#include "scr/terminfo.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace {

struct Maat {
  const char* terminal;
  int rijen, kolommen;
};
constexpr Maat MATEN[] = {{"", 25, 80}, {"-w", 25, 132}, {"-l", 43, 80}};
constexpr const char* DONOR = "xterm-256color";

/// Runs a program with stdin, stdout and stderr on /dev/null, but for stdin when given.
bool draai(std::initializer_list<std::string> woorden, int invoer) {
  std::vector<char*> argv;
  for (const std::string& w : woorden) argv.push_back(const_cast<char*>(w.c_str()));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t acties;
  posix_spawn_file_actions_init(&acties);
  if (invoer >= 0) posix_spawn_file_actions_adddup2(&acties, invoer, 0);
  if (invoer < 0) posix_spawn_file_actions_addopen(&acties, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&acties, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&acties, 2, "/dev/null", O_WRONLY, 0);
  pid_t kind = 0;
  const int fout = posix_spawnp(&kind, argv[0], &acties, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&acties);
  if (fout != 0) return false;
  int status = 0;
  while (waitpid(kind, &status, 0) < 0)
    if (errno != EINTR) return false;
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool bestaat(const std::string& naam) { return draai({"infocmp", naam}, -1); }

/// A name that can stand in an entry and in a path.
bool naam_goed(std::string_view naam) {
  if (naam.empty() || naam.size() > 60 || std::isalnum(static_cast<unsigned char>(naam[0])) == 0)
    return false;
  for (const char c : naam)
    if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '-' && c != '+' && c != '.' &&
        c != '_')
      return false;
  return true;
}

std::string beschrijving(const std::string& naam, const Maat& maat, const std::string& donor) {
  const std::string r = std::to_string(maat.rijen), k = std::to_string(maat.kolommen);
  return naam + "|" + donor + " at " + r + " rows of " + k + ",\n  lines#" + r + ", cols#" + k +
         ", U8#1, is2=\\E[8;" + r + ";" + k +
         "t, kcan=\\E[3;5~, kent=\\EOM,\n  is1@, is3@, rs1@, rs2@, rs3@, if@, rf@, iprog@, khlp@, "
         "kext@, kDC5@, use=" +
         donor + ",\n\n";
}

/// The source goes through an unlinked file: a pipe could fill up before tic starts to read.
int bron_bestand(const std::string& tekst) {
  char naam[] = "/tmp/tinfoXXXXXX";
  const int fd = mkostemp(naam, O_CLOEXEC);
  if (fd < 0) return -1;
  unlink(naam);
  if (write(fd, tekst.data(), tekst.size()) != static_cast<ssize_t>(tekst.size()) ||
      lseek(fd, 0, SEEK_SET) != 0) {
    close(fd);
    return -1;
  }
  return fd;
}

}  // namespace

std::string terminfo_naam(const char* term, const char* terminal) {
  std::string naam = term == nullptr ? "TERM" : term;
  if (!naam.empty()) naam[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(naam[0])));
  return naam + terminal;
}

bool terminfo_aanwezig(const char* term) {
  if (!naam_goed(terminfo_naam(term, ""))) return false;
  for (const Maat& maat : MATEN)
    if (!bestaat(terminfo_naam(term, maat.terminal))) return false;
  return true;
}

bool terminfo_maak(const char* term, const char* map) {
  const std::string eigen = terminfo_naam(term, "");
  if (!naam_goed(eigen)) return false;
  std::string doel;
  if (map != nullptr) doel = map;
  if (map == nullptr) {
    const char* huis = std::getenv("HOME");
    if (huis == nullptr || *huis == 0) return false;
    doel = std::string(huis) + "/.terminfo";
  }
  if (mkdir(doel.c_str(), 0755) != 0 && errno != EEXIST) return false;
  // An entry that is its own donor would be a circle.
  const bool bekend = term != nullptr && eigen != term && bestaat(term);
  std::string bron;
  for (const Maat& maat : MATEN)
    bron += beschrijving(terminfo_naam(term, maat.terminal), maat, bekend ? term : DONOR);
  const int fd = bron_bestand(bron);
  if (fd < 0) return false;
  const bool goed = draai({"tic", "-x", "-o", doel, "-"}, fd);
  close(fd);
  return goed;
}
