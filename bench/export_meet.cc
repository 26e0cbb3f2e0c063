#include "bench/export_meet.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "bench/lezer.h"
#include "bench/partij.h"
#include "bench/programma.h"

namespace {

constexpr const char* BESTAND = "keten.db";

/// "keten.db: 4984225 rijen"
double rijen_van(const std::string& uitvoer) {
  const size_t plek = uitvoer.find(": ");
  const double n = plek == std::string::npos ? 0 : atof(uitvoer.c_str() + plek + 2);
  if (n <= 0) meet_fout("export", uitvoer.c_str());
  return n;
}

double tempo() {
  std::vector<double> uit;
  for (int ronde = 0; ronde < 3; ++ronde) {
    unlink(BESTAND);
    const Gelopen g = programma({"tools/winkel", "export", "--sqlite", BESTAND}, true);
    uit.push_back(rijen_van(g.uitvoer) / g.duur);
  }
  unlink(BESTAND);
  return mediaan(uit);
}

}  // namespace

Rij export_meet() {
  const double kaart = tempo();
  setenv(LEZER_VAR, LEZER_GEWOON, 1);
  const double gewoon = tempo();
  unsetenv(LEZER_VAR);
  return {"17", "export --sqlite of the large chain, one processor", "1/s", {{kaart}, {gewoon}}};
}
