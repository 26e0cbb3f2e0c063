#include "bench/tabel.h"

#include <algorithm>
#include <ctime>

#include "bench/grenzen.h"

const char* const KOLOM_NAAM[KOLOMMEN] = {"ons",  "ons gewoon", "SQLite WAL", "SQLite rollback",
                                          "LMDB", "BDB CDB",    "BDB TDS",    "TDB"};

namespace {

/// A figure with its ratio to ours: above 1 it takes longer.
std::string met_verhouding(const Rij& r, double v) {
  if (v < 0) return "-";
  const double ons = r.cellen.empty() ? -1 : r.cellen[ONS].waarde;
  return ons > 0 ? getal(v) + " (" + getal(v / ons) + "x)" : getal(v);
}

std::string cel_tekst(const Rij& r, size_t i) {
  const double v = i < r.cellen.size() ? r.cellen[i].waarde : -1;
  if (v < 0) return "-";
  return i == ONS ? getal(v) : met_verhouding(r, v);
}

bool gemeten(const std::vector<Rij>& rijen, size_t kolom) {
  return kolom == ONS || std::any_of(rijen.begin(), rijen.end(), [kolom](const Rij& r) {
           return kolom < r.cellen.size() && r.cellen[kolom].waarde >= 0;
         });
}

void druk_md(FILE* uit, const Tekstrijen& t) {
  for (size_t n = 0; n < t.size(); ++n) {
    for (const std::string& cel : t[n]) fprintf(uit, "| %s ", cel.c_str());
    fputs("|\n", uit);
    if (n > 0) continue;
    for (size_t i = 0; i < t[0].size(); ++i) fputs(i < 3 ? "|---" : "|--:", uit);
    fputs("|\n", uit);
  }
}

}  // namespace

std::string getal(double v) {
  char tekst[32];
  snprintf(tekst, sizeof tekst, v < 10 ? "%.2f" : v < 100 ? "%.1f" : "%.0f", v);
  return tekst;
}

void tekst_druk(FILE* uit, const Tekstrijen& t, bool md) {
  if (md) return druk_md(uit, t);
  std::vector<size_t> breed(t[0].size(), 0);
  for (const auto& rij : t)
    for (size_t i = 0; i < rij.size(); ++i) breed[i] = std::max(breed[i], rij[i].size());
  for (size_t n = 0; n < t.size(); ++n) {
    for (size_t i = 0; i < t[n].size(); ++i)
      fprintf(uit, i < 3 ? "%-*s  " : "%*s  ", static_cast<int>(breed[i]), t[n][i].c_str());
    fputc('\n', uit);
    if (n > 0) continue;
    for (const size_t b : breed) fprintf(uit, "%s  ", std::string(b, '-').c_str());
    fputc('\n', uit);
  }
}

void tabel_druk(FILE* uit, const std::vector<Rij>& rijen, bool md) {
  Tekstrijen t;
  t.push_back({"row", "measurement", "unit"});
  for (size_t i = 0; i < KOLOMMEN; ++i)
    if (gemeten(rijen, i)) t.back().push_back(KOLOM_NAAM[i]);
  for (const char* k : {"machine", "floor", "met", "aim", "met"}) t.back().push_back(k);
  for (const Rij& r : rijen) {
    t.push_back({r.nr, r.naam, r.eenheid});
    for (size_t i = 0; i < KOLOMMEN; ++i)
      if (gemeten(rijen, i)) t.back().push_back(cel_tekst(r, i));
    t.back().push_back(met_verhouding(r, r.machine));
    for (const Soort soort : {Soort::VLOER, Soort::STREVEN}) {
      const Oordeel o = oordeel(r, soort);
      t.back().push_back(o.tekst);
      t.back().push_back(o.gehaald < 0   ? "-"
                         : o.gehaald > 0 ? "yes"
                                         : (soort == Soort::VLOER ? "NO" : "no"));
    }
  }
  tekst_druk(uit, t, md);
  if (const std::string regel = traagste(rijen); !regel.empty())
    fprintf(uit, "\n%s.\n", regel.c_str());
}

double seconden_nu() noexcept {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

double tijd_van(const std::function<void()>& doe) {
  const double begin = seconden_nu();
  doe();
  return seconden_nu() - begin;
}

double mediaan(std::vector<double> v) {
  if (v.empty()) return -1;
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}
