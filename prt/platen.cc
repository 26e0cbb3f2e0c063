// Pictures in a report: the list that it names while it prints, and the two ways to place them.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "isam/base.h"
#include "prt/intern.h"

namespace {

constexpr std::string_view MERK = "PCXTEC";

struct Plaat {
  int blad;
  std::string naam;
};
std::vector<Plaat> platen;
PrtPlaatRoutine routine = nullptr;
bool op_volgorde = false;

bool platen_van_blad(FILE* naar, int blad) {
  bool goed = true;
  for (const Plaat& p : platen) {
    if (p.blad == blad) goed = routine(naar, p.naam.c_str()) && goed;
  }
  return goed;
}

// A page starts behind its form feed, the first at the start of the text.
bool schrijf_bladen(FILE* van, FILE* naar) {
  int blad = 1, teken;
  for (long plek = 0;; ++plek) {
    if (plek == prt_rec.text_start && !platen_van_blad(naar, blad)) return false;
    if ((teken = std::getc(van)) == EOF) return true;
    std::putc(teken, naar);
    if (teken == '\f' && plek >= prt_rec.text_start && !platen_van_blad(naar, ++blad)) return false;
  }
}

// The first letter stands once in the marker, so a mismatch can only begin a new one.
bool schrijf_merken(FILE* van, FILE* naar) {
  size_t gelijk = 0, volgende = 0;
  for (int teken = std::getc(van); teken != EOF; teken = std::getc(van)) {
    const bool past = teken == MERK[gelijk];
    if (!past) {
      std::fwrite(MERK.data(), 1, gelijk, naar);
      gelijk = teken == MERK[0] ? 1 : 0;
      if (gelijk == 0) std::putc(teken, naar);
      continue;
    }
    if (++gelijk < MERK.size()) continue;
    gelijk = 0;
    if (volgende >= platen.size()) {
      std::fwrite(MERK.data(), 1, MERK.size(), naar);
    } else if (!routine(naar, platen[volgende++].naam.c_str())) {
      return false;
    }
  }
  std::fwrite(MERK.data(), 1, gelijk, naar);
  return true;
}

}  // namespace

void prt_plaat_zet(PrtPlaatRoutine nieuw, bool volgorde) {
  routine = nieuw;
  op_volgorde = volgorde;
}

void prt_plaat(int blad, const char* naam) { platen.push_back({blad, naam}); }

void prt_platen_plaats() {
  if (routine == nullptr || platen.empty()) return;
  prt_herschrijf(op_volgorde ? schrijf_merken : schrijf_bladen);
}

void prt_platen_weg() {
  platen.clear();
  platen.shrink_to_fit();
}
