// The programs of this build, run from here, with what they took.
#pragma once

#include <string>
#include <vector>

struct Gelopen {
  double duur, rekentijd;  // seconds
  std::string uitvoer;
};
/// Runs a program of the build folder to its end; one that fails ends the measurement. `een_kern`:
/// all of its threads on one processor.
Gelopen programma(const std::vector<std::string>& woorden, bool een_kern = false);

/// A demo chain in the current directory, the large or the small one.
void demo_keten(bool groot);
