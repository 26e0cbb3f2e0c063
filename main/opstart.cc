// See opstart.h. The screen is not open yet: plain lines on the terminal.
#include "main/opstart.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "isam/base.h"
#include "main/teksten.h"
#include "scr/terminfo.h"

namespace {

constexpr int RIJEN = 25, KOLOMMEN = 80;

std::string eigen_map() {
  char pad[512];
  const ssize_t n = readlink("/proc/self/exe", pad, sizeof pad - 1);
  if (n <= 0) return ".";
  std::string tekst(pad, static_cast<size_t>(n));
  return tekst.substr(0, tekst.find_last_of('/'));
}

bool venster_te_klein() {
  winsize ws{};
  if (ioctl(STDIN_FILENO, TIOCGWINSZ, &ws) != 0 || ws.ws_row == 0) return false;
  return ws.ws_row < RIJEN || ws.ws_col < KOLOMMEN;
}

bool ja() {
  char regel[16];
  if (fgets(regel, sizeof regel, stdin) == nullptr) return false;
  return chr_upper(static_cast<uint8_t>(regel[0])) == 'J' || regel[0] == '\n';
}

/// The frame: a terminal of exactly the size that the screens are drawn for.
[[noreturn]] void in_tmux(int keuze) {
  std::string pad = eigen_map() + "/hoofdmnu";
  std::string opdracht = "exec '" + pad + "'";
  if (keuze > 0) opdracht += " -t " + std::to_string(keuze);
  execlp("tmux", "tmux", "-L", "winkel", "new", "-x", "80", "-y", "25", opdracht.c_str(), ";",
         "set", "status", "off", ";", "set", "-w", "window-size", "manual", ";", "resize-window",
         "-x", "80", "-y", "25", ";", "set", "-s", "escape-time", "25",
         static_cast<char*>(nullptr));
  fprintf(stderr, "%s\n", txt(T_GEEN_TMUX));
  exit(1);
}

}  // namespace

void opstart_catalogi() {
  if (getenv("NLSPATH") != nullptr) return;
  const std::string map = eigen_map();
  for (const std::string& nls : {map + "/nls", map + "/../share/opdsaldo/nls"}) {
    if (!file_isdir(nls.c_str())) continue;
    setenv("NLSPATH", (nls + "/%N.cat").c_str(), 1);
    return;
  }
}

void opstart_terminal() {
  const char* term = getenv("TERM");
  if (!terminfo_aanwezig(term)) terminfo_maak(term, nullptr);
}

void opstart_venster(int keuze) {
  if (isatty(STDIN_FILENO) == 0 || !venster_te_klein()) return;
  printf("%s\n%s ", txt(T_VENSTER_KLEIN), txt(T_VENSTER_KADER));
  fflush(stdout);
  if (ja()) in_tmux(keuze);
}
