// The data directory: going into one, making one, and its empty files.
#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "isam/base.h"
#include "isam/io.h"
#include "main/iotab.h"
#include "prt/prt.h"
#include "prt/tabellen.h"
#include "sub/tabeldef.h"
#include "tools/winkel.h"

namespace {

constexpr mode_t MAP_RECHTEN = 02770;  // who works here shares a group, and its files do too
constexpr const char* PLATTE[] = {"DTETI.TXT", "DTIPG.TXT", "INKSYS.TXT"};

bool map_leeg(const char* pad) {
  DIR* map = opendir(pad);
  if (map == nullptr) winkel_fout_errno(pad);
  bool leeg = true;
  while (const dirent* e = readdir(map))
    if (std::strcmp(e->d_name, ".") != 0 && std::strcmp(e->d_name, "..") != 0) leeg = false;
  closedir(map);
  return leeg;
}

}  // namespace

void winkel_fout(std::string_view wat, std::string_view reden) {
  fmt::print(stderr, "winkel: {}: {}\n", wat, reden);
  std::exit(UIT_FOUT);
}

void winkel_fout_errno(std::string_view wat) { winkel_fout(wat, std::strerror(errno)); }

void optie_map(CLI::App* app, std::string* map) {
  app->add_option("-C", *map, "gegevensmap")->type_name("MAP")->capture_default_str();
}

void in_keten(const std::string& map) {
  if (chdir(map.c_str()) != 0) winkel_fout_errno(map);
  if (!file_exists("DTSYS.TXT")) winkel_fout(map + "/DTSYS.TXT", "niet aanwezig");
  if (file_size("DTSYS.TXT") < SYS_GROOTTE)
    winkel_fout(map + "/DTSYS.TXT", fmt::format("korter dan {} bytes", SYS_GROOTTE));
  umask(007);
}

void in_lege_map(const std::string& map) {
  umask(007);
  if (mkdir(map.c_str(), MAP_RECHTEN) != 0 && errno != EEXIST) winkel_fout_errno(map);
  if (!map_leeg(map.c_str())) winkel_fout(map, "de map is niet leeg");
  if (chmod(map.c_str(), MAP_RECHTEN) != 0) winkel_fout_errno(map);
  if (chdir(map.c_str()) != 0) winkel_fout_errno(map);
}

void schrijf_bestand(const char* naam, const void* bytes, size_t n) {
  const int fd = open(naam, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0660);
  if (fd < 0) winkel_fout_errno(naam);
  if (io_schrijf(fd, bytes, n, 0) != static_cast<int64_t>(n)) winkel_fout_errno(naam);
  if (close(fd) != 0) winkel_fout_errno(naam);
}

void maak_lege_tabellen() {
  for (const TabelDef& def : tabel_alle())
    if (!tabel_maak(def, def.name)) winkel_fout(def.name, "kan niet gemaakt worden");
  for (const char* naam : PLATTE) schrijf_bestand(naam, "", 0);
  unsetenv("KOBPRT");  // the tables of a new chain stand beside its files
  if (!prt_tabellen_maak()) winkel_fout(TR_PTRG, "de printertabellen kunnen niet gemaakt worden");
}
