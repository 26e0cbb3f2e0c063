// Walking a directory by pattern. A walk is a picture of the moment it was opened, in the order of
// the names, so that two walks over a quiet directory agree and files may be deleted on the way.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

#include "isam/base.h"
#include "isam/ix.h"

namespace {

constexpr size_t DIEPTE = 3;

struct Wandeling {
  std::vector<std::string> namen;
  size_t volgende = 0;
};
Wandeling wandelingen[DIEPTE];
size_t open_wandelingen = 0;

// A pattern with "%*" is matched as scanf reads: only conversions that store nothing are taken.
bool scanf_past(const char* patroon, const char* naam) {
  for (const char* p = patroon; *p != 0; ++p) {
    if (*p != '%') continue;
    ++p;
    if (*p != '*' && *p != '%') return false;
  }
  int gelezen = -1;
  const std::string tot_hier = std::string(patroon) + "%n";
  std::sscanf(naam, tot_hier.c_str(), &gelezen);
  return gelezen >= 0 && naam[gelezen] == 0;
}

bool past(const char* patroon, const char* naam) {
  if (std::strstr(patroon, "%*") != nullptr) return scanf_past(patroon, naam);
  if (naam[0] == '.' && patroon[0] != '.') return false;
  return wild_past(patroon, naam);
}

bool is_map(const std::string& pad) {
  struct stat st;
  return lstat(pad.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

void verzamel(const std::string& map, const char* patroon, bool recursief,
              std::vector<std::string>& namen) {
  DIR* d = opendir(map.empty() ? "." : map.c_str());
  if (d == nullptr) return;
  while (const dirent* ingang = readdir(d)) {
    const char* naam = ingang->d_name;
    if (std::strcmp(naam, ".") == 0 || std::strcmp(naam, "..") == 0) continue;
    if (past(patroon, naam)) namen.push_back(map + naam);
    if (recursief && is_map(map + naam)) verzamel(map + naam + '/', patroon, true, namen);
  }
  closedir(d);
}

const char* open_wandeling(const char* patroon, bool recursief) {
  if (open_wandelingen == DIEPTE || patroon == nullptr) return nullptr;
  Wandeling& w = wandelingen[open_wandelingen];
  try {
    const char* streep = std::strrchr(patroon, '/');
    const char* deel = streep == nullptr ? patroon : streep + 1;
    w.volgende = 0;
    w.namen.clear();
    verzamel(std::string(patroon, deel), deel, recursief, w.namen);
    std::sort(w.namen.begin(), w.namen.end());
  } catch (const std::bad_alloc&) {
    ix_fataal("DIRECTORY : ALLOC");
  }
  ++open_wandelingen;
  return patroon;
}

}  // namespace

bool wild_past(const char* patroon, const char* naam) noexcept {
  const char *ster = nullptr, *hervat = nullptr;
  while (*naam != 0) {
    if (*patroon == '*') {
      ster = ++patroon;
      hervat = naam;
    } else if (*patroon == '?' || *patroon == *naam) {
      ++patroon;
      ++naam;
    } else if (ster != nullptr) {
      patroon = ster;
      naam = ++hervat;
    } else {
      return false;
    }
  }
  while (*patroon == '*') ++patroon;
  return *patroon == 0;
}

const char* DIRECTORY(char actie, const char* patroon, bool recursief) {
  if (actie == 'O') return open_wandeling(patroon, recursief);
  if (open_wandelingen == 0) return nullptr;
  Wandeling& w = wandelingen[open_wandelingen - 1];
  if (actie == 'N') return w.volgende < w.namen.size() ? w.namen[w.volgende++].c_str() : nullptr;
  if (actie == 'C') {
    w.namen = {};
    --open_wandelingen;
  }
  return nullptr;
}
