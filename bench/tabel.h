// The tables that a run ends with. One row a measurement: ours with each reader, the peers with
// their ratio to ours, what the machine itself can do, and the floors and aims of bench/grenzen.cc.
#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

/// What a row can hold; also the folder of each store.
enum Kolom : size_t { ONS, GEWOON, SQ_WAL, SQ_ROL, LMDB, BDB_CDB, BDB_TDS, TDB, KOLOMMEN };
extern const char* const KOLOM_NAAM[KOLOMMEN];

struct Cel {
  double waarde = -1;  // in the row's unit; below 0 not measured
};

struct Rij {
  std::string nr;  // as the limits name it
  std::string naam;
  std::string eenheid;
  std::vector<Cel> cellen;  // by Kolom; what is missing at the end was not measured
  double machine = -1;      // the same unit
};

/// Our figure with each reader.
struct Paar {
  double kaart = -1, gewoon = -1;
};

/// Three significant digits, no more.
std::string getal(double v);

using Tekstrijen = std::vector<std::vector<std::string>>;
/// The first row names the columns. Aligned, or as Markdown.
void tekst_druk(FILE* uit, const Tekstrijen& t, bool md);
void tabel_druk(FILE* uit, const std::vector<Rij>& rijen, bool md);

double seconden_nu() noexcept;
/// Seconds that `doe` takes.
double tijd_van(const std::function<void()>& doe);
double mediaan(std::vector<double> v);
