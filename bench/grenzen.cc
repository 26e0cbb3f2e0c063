#include "bench/grenzen.h"

namespace {

constexpr Soort VLOER = Soort::VLOER, STREVEN = Soort::STREVEN;
constexpr bool MINSTENS = true;

constexpr Grens GRENZEN[] = {
    {"1", VLOER, BDB_CDB, 1.0},       {"1", VLOER, SQ_WAL, 1.0},
    {"1", STREVEN, LMDB, 1.5},        {"2", VLOER, LMDB, 1.0},
    {"2", STREVEN, LMDB, 0.2},        {"3", VLOER, SQ_WAL, 0.35},
    {"3", VLOER, LMDB, 0.85},         {"3", STREVEN, BDB_CDB, 1.0},
    {"4", VLOER, SQ_WAL, 0.5},        {"4", STREVEN, BDB_CDB, 0.75},
    {"5", VLOER, SQ_WAL, 0.25},       {"5", VLOER, LMDB, 1.5},
    {"5", STREVEN, LMDB, 1.0},        {"6", VLOER, SQ_WAL, 0.4},
    {"6", STREVEN, TDB, 1.0},         {"7", VLOER, SQ_WAL, 1.0},
    {"7b", STREVEN, SQ_WAL, 1.0},     {"8", VLOER, TEGEN_NIETS, 32},
    {"9", VLOER, TEGEN_NIETS, 100},   {"10", VLOER, TEGEN_NIETS, 10},
    {"11", VLOER, TEGEN_NIETS, 10},   {"12", VLOER, TEGEN_NIETS, 2000, MINSTENS},
    {"13", VLOER, TEGEN_NIETS, 1.25}, {"14", VLOER, TEGEN_MACHINE, 2.0},
    {"15", VLOER, TEGEN_NIETS, 50},   {"16", VLOER, TEGEN_NIETS, 10},
    {"16b", VLOER, TEGEN_NIETS, 10},  {"17", VLOER, TEGEN_NIETS, 300000, MINSTENS},
};

double kolom_van(const Rij& r, size_t kolom) {
  if (kolom == TEGEN_NIETS) return 1;
  if (kolom == TEGEN_MACHINE) return r.machine;
  return kolom < r.cellen.size() ? r.cellen[kolom].waarde : -1;
}

std::string tekst_van(const Grens& g, double bereikt) {
  std::string uit = getal(bereikt) + (g.minstens ? " >= " : " <= ") + getal(g.waarde);
  if (g.tegen == TEGEN_MACHINE) uit += " machine";
  if (g.tegen < KOLOMMEN) uit += std::string(" ") + KOLOM_NAAM[g.tegen];
  return uit;
}

}  // namespace

Oordeel oordeel(const Rij& r, Soort soort) {
  Oordeel uit;
  for (const Grens& g : GRENZEN) {
    if (g.soort != soort || r.nr != g.rij) continue;
    const double ons = kolom_van(r, ONS), ander = kolom_van(r, g.tegen);
    if (ons < 0 || ander <= 0) continue;
    const double bereikt = ons / ander;
    const bool goed = g.minstens ? bereikt >= g.waarde : bereikt <= g.waarde;
    uit.tekst = uit.gehaald < 0 ? tekst_van(g, bereikt) : uit.tekst + ", " + tekst_van(g, bereikt);
    uit.gehaald = goed && uit.gehaald != 0 ? 1 : 0;
  }
  return uit;
}

std::string traagste(const std::vector<Rij>& rijen) {
  double meest = 0;
  std::string uit;
  for (const Rij& r : rijen)
    for (size_t i = SQ_WAL; i < r.cellen.size(); ++i) {
      const double deel = r.cellen[i].waarde > 0 ? r.cellen[ONS].waarde / r.cellen[i].waarde : 0;
      if (deel <= meest) continue;
      meest = deel;
      uit = "Slowest against a peer: row " + r.nr + ", " + getal(deel) + " of " + KOLOM_NAAM[i];
    }
  return uit;
}
