// See opstart.h. The screen is not open yet: plain lines on the terminal.
#include "main/opstart.h"

#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "isam/base.h"
#include "main/kader.h"
#include "scr/terminfo.h"

namespace {

std::string eigen_map() {
  char pad[512];
  const ssize_t n = readlink("/proc/self/exe", pad, sizeof pad - 1);
  if (n <= 0) return ".";
  std::string tekst(pad, static_cast<size_t>(n));
  return tekst.substr(0, tekst.find_last_of('/'));
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
  std::vector<std::string> woorden{eigen_map() + "/hoofdmnu"};
  if (keuze > 0) woorden.insert(woorden.end(), {"-t", std::to_string(keuze)});
  kader(woorden);
}
