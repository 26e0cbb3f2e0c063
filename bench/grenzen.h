// What is promised of each row and what is aimed at, and how a run did by it.
#pragma once

#include <string>
#include <vector>

#include "bench/tabel.h"

enum class Soort { VLOER, STREVEN };

/// Our figure, divided by that of a column, at most `waarde`.
struct Grens {
  const char* rij;
  Soort soort;
  size_t tegen;  // a Kolom, or one of the two below
  double waarde;
  bool minstens = false;  // at least, instead
};
inline constexpr size_t TEGEN_MACHINE = KOLOMMEN;
inline constexpr size_t TEGEN_NIETS = KOLOMMEN + 1;  // the figure itself counts

struct Oordeel {
  std::string tekst = "-";  // each limit with the figure reached
  int gehaald = -1;         // of all of them; below 0: none was measured
};
Oordeel oordeel(const Rij& r, Soort soort);

/// Where we take longest against a peer, in a sentence; empty where none was measured.
std::string traagste(const std::vector<Rij>& rijen);
