// The advice as its commands work it out: each series of the large chain that has provisional lines
// loaded from the tables and calculated. It must cost by the labels that it reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bench/tabel.h"

/// The rows of the chain in the current directory; `snel`: it is the small one.
std::vector<Rij> advies_helling(bool snel);

struct AdviesGroei {
  size_t series;
  std::vector<Paar> label;  // microseconds for each label, by part
  Paar alles;               // seconds for all series
};
/// A part is one in so many of the series; the last one is all of them.
AdviesGroei advies_groei(bool snel, const std::vector<uint32_t>& delen);
