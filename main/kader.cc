// See kader.h. A frame of tmux starts its command before it has taken its size, and its server may
// have been started with another environment: a mark tells the command to wait for the size, and
// what the programs look at goes along.
#include "main/kader.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "isam/base.h"
#include "main/teksten.h"

namespace {

constexpr int RIJEN = 25, KOLOMMEN = 80;
constexpr const char* IN_KADER = "WINKEL_KADER";
constexpr std::string_view GEWEIGERD = "0";  // its value where a frame was refused

bool te_klein() {
  winsize ws{};
  if (ioctl(STDIN_FILENO, TIOCGWINSZ, &ws) != 0 || ws.ws_row == 0) return false;
  return ws.ws_row < RIJEN || ws.ws_col < KOLOMMEN;
}

bool ja() {
  char regel[16];
  if (fgets(regel, sizeof regel, stdin) == nullptr) return false;
  return chr_upper(static_cast<uint8_t>(regel[0])) == 'J' || regel[0] == '\n';
}

std::string aangehaald(const std::string& woord) {
  std::string uit = "'";
  for (const char c : woord) uit += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return uit + "'";
}

std::string opdracht(const std::vector<std::string>& woorden) {
  std::string regel = std::string("exec env ") + IN_KADER + "=1";
  for (const char* naam : {"LANG", "LC_ALL", "LC_CTYPE", "TZ", "TSTBIN", "BIN", "NLSPATH", "KOBPRT",
                           "KOBPRTCODE", "KPOS", "COMMIT", "MACRO", "MAXFMT", "SYSBUF", "MAXSYSBUF",
                           "TERMINFO_DIRS", "ESCDELAY", "KOB_INTERN", "OPDSALDO_KAART"}) {
    if (const char* waarde = getenv(naam); waarde != nullptr)
      regel += " " + aangehaald(std::string(naam) + "=" + waarde);
  }
  for (const std::string& woord : woorden) regel += " " + aangehaald(woord);
  return regel;
}

[[noreturn]] void in_tmux(const std::vector<std::string>& woorden) {
  execlp("tmux", "tmux", "-L", "winkel", "new", "-x", "80", "-y", "25", opdracht(woorden).c_str(),
         ";", "set", "status", "off", ";", "set", "-w", "window-size", "manual", ";",
         "resize-window", "-x", "80", "-y", "25", ";", "set", "-s", "escape-time", "25", ";", "set",
         "destroy-unattached", "on", static_cast<char*>(nullptr));
  fprintf(stderr, "%s\n", txt(T_GEEN_TMUX));
  exit(1);
}

}  // namespace

void kader(const std::vector<std::string>& woorden) {
  if (const char* stand = getenv(IN_KADER); stand != nullptr) {
    if (stand == GEWEIGERD) return;
    for (int i = 0; i < 100 && te_klein(); ++i) usleep(20000);
    return;
  }
  if (isatty(STDIN_FILENO) == 0 || !te_klein()) return;
  printf("%s\n%s ", txt(T_VENSTER_KLEIN), txt(T_VENSTER_KADER));
  fflush(stdout);
  if (ja()) in_tmux(woorden);
  setenv(IN_KADER, GEWEIGERD.data(), 1);  // what is started from here does not ask again
}
