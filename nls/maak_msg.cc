// Prints the source of one message catalogue, made from the rows that the code is compiled with:
// maak_msg KBA351 > KBA351.msg. Ends with status 1 on a number that a set holds twice.
//
// Texts stand between quotes, so that blanks at either end survive; what gencat would read as its
// own, and every byte outside ASCII, goes as an escape. gencat takes an escape above 127 only as a
// character of the code set that is named.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "isam/tekst.h"

namespace {

struct Rij {
  Catalogus catalogus;
  int set, nummer;
  const char* naam;
  const char* tekst;
};

std::vector<Rij> rijen_van(Catalogus welke) {
  std::vector<Rij> alle;
  Catalogus catalogus = Catalogus::kba351;
  int set = 0;
#define SECTIE(c, s)        \
  catalogus = Catalogus::c; \
  set = s;
#define TEKST(naam, nummer, tekst) alle.push_back({catalogus, set, nummer, #naam, tekst});
#include "nls/teksten.def"
#undef TEKST
#undef SECTIE
  std::erase_if(alle, [&](const Rij& r) { return r.catalogus != welke; });
  std::stable_sort(alle.begin(), alle.end(), [](const Rij& a, const Rij& b) {
    return a.set != b.set ? a.set < b.set : a.nummer < b.nummer;
  });
  return alle;
}

std::string aangehaald(const char* tekst) {
  std::string uit = "\"";
  for (const char* p = tekst; *p != 0; ++p) {
    const auto c = static_cast<unsigned char>(*p);
    if (c == '"' || c == '\\') {
      uit += '\\';
      uit += *p;
    } else if (c < 32 || c > 126) {
      char octaal[8];
      std::snprintf(octaal, sizeof octaal, "\\%03o", c);
      uit += octaal;
    } else {
      uit += *p;
    }
  }
  return uit + '"';
}

bool druk(const std::vector<Rij>& rijen) {
  std::puts("$ Made from nls/*.def; change the text there.\n$ codeset=IBM850\n$quote \"");
  int set = 0, vorige = 0;
  for (const Rij& r : rijen) {
    if (r.set != set) {
      std::printf("$set %d\n", r.set);
      set = r.set;
      vorige = 0;
    }
    if (r.nummer <= vorige) {
      std::fprintf(stderr, "maak_msg: set %d, number %d of %s is used twice or below 1\n", r.set,
                   r.nummer, r.naam);
      return false;
    }
    vorige = r.nummer;
    std::printf("%d %s\n", r.nummer, aangehaald(r.tekst).c_str());
  }
  return std::fflush(stdout) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  const char* naam = argc == 2 ? argv[1] : "";
  if (std::strcmp(naam, "KBA351") == 0) return druk(rijen_van(Catalogus::kba351)) ? 0 : 1;
  if (std::strcmp(naam, "WINKEL") == 0) return druk(rijen_van(Catalogus::winkel)) ? 0 : 1;
  std::fputs("maak_msg KBA351|WINKEL\n", stderr);
  return 2;
}
