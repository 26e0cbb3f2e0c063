#include "bench/tabel.h"

#include <algorithm>
#include <ctime>

namespace {

std::string getal(double v) {
  char tekst[32];
  snprintf(tekst, sizeof tekst, v < 10 ? "%.2f" : v < 100 ? "%.1f" : "%.0f", v);
  return tekst;
}

/// A peer's figure with its ratio to ours: above 1 the peer takes longer.
std::string cel_tekst(const Rij& r, size_t i) {
  const double v = i < r.cellen.size() ? r.cellen[i].waarde : -1;
  if (v < 0) return "-";
  if (i == 0) return getal(v);
  return getal(v) + " (" + getal(v / r.cellen[0].waarde) + "x)";
}

}  // namespace

void tabel_druk(FILE* uit, const std::vector<const char*>& kolommen,
                const std::vector<Rij>& rijen) {
  std::vector<std::vector<std::string>> t;
  t.push_back({"measurement", "unit"});
  for (const char* k : kolommen) t.back().push_back(k);
  for (const char* k : {"machine", "floor", "met"}) t.back().push_back(k);
  for (const Rij& r : rijen) {
    t.push_back({r.naam, r.eenheid});
    for (size_t i = 0; i < kolommen.size(); ++i) t.back().push_back(cel_tekst(r, i));
    std::string machine = "-";
    if (r.machine >= 0) {
      machine = getal(r.machine);
      if (!r.cellen.empty() && r.cellen[0].waarde > 0)
        machine += " (" + getal(r.machine / r.cellen[0].waarde) + "x)";
    }
    t.back().push_back(machine);
    t.back().push_back(r.drempel.empty() ? "-" : r.drempel);
    t.back().push_back(r.gehaald < 0 ? "-" : r.gehaald > 0 ? "yes" : "NO");
  }
  std::vector<size_t> breed(t[0].size(), 0);
  for (const auto& rij : t)
    for (size_t i = 0; i < rij.size(); ++i) breed[i] = std::max(breed[i], rij[i].size());
  for (size_t n = 0; n < t.size(); ++n) {
    for (size_t i = 0; i < t[n].size(); ++i)
      fprintf(uit, i < 2 ? "%-*s  " : "%*s  ", static_cast<int>(breed[i]), t[n][i].c_str());
    fputc('\n', uit);
    if (n > 0) continue;
    for (const size_t b : breed) fprintf(uit, "%s  ", std::string(b, '-').c_str());
    fputc('\n', uit);
  }
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
