// The table that a run ends with: one row a measurement, with ours, each peer and its ratio to
// ours, the floor that we promise, whether it was reached, and what the machine itself can do.
#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

struct Cel {
  double waarde = -1;  // in the row's unit; below 0 not measured
};

struct Rij {
  std::string naam;
  std::string eenheid;
  std::vector<Cel> cellen;  // ours first
  double machine = -1;      // the same unit
  /// The floor in words; `gehaald` is -1 where there is none, else 0 or 1.
  std::string drempel;
  int gehaald = -1;
};

/// Columns of the peers, ours first.
void tabel_druk(FILE* uit, const std::vector<const char*>& kolommen, const std::vector<Rij>& rijen);

double seconden_nu() noexcept;
/// Seconds that `doe` takes.
double tijd_van(const std::function<void()>& doe);
double mediaan(std::vector<double> v);
