// Chance for the generator of demo chains: the same seed and stream give the same values on every
// machine, so nothing here leans on the library's distributions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

struct Bron {
  /// A stream of its own for each thing that is made: what one thing draws never moves another.
  Bron(uint64_t zaad, uint64_t stroom) : staat(meng(zaad * 0x9E3779B97F4A7C15u + stroom)) {}

  uint64_t volgende() {
    staat += 0x9E3779B97F4A7C15u;
    return meng(staat);
  }
  /// 0 to n - 1; 0 when n is not positive.
  int32_t tot(int32_t n) {
    if (n <= 0) return 0;
    return static_cast<int32_t>((volgende() >> 32) * static_cast<uint64_t>(n) >> 32);
  }
  /// a to b, both included.
  int32_t tussen(int32_t a, int32_t b) { return a + tot(b - a + 1); }
  bool kans(int32_t promille) { return tot(1000) < promille; }
  /// Near the standard normal distribution, in thousandths.
  int32_t normaal() {
    int32_t som = 0;
    for (int i = 0; i < 12; ++i) som += tot(1000);
    return som - 5994;
  }
  /// An index, by weight; 0 when all weights are 0.
  size_t gewogen(std::span<const int32_t> gewicht) {
    int32_t som = 0;
    for (const int32_t g : gewicht) som += g;
    int32_t trek = tot(som);
    for (size_t i = 0; i < gewicht.size(); ++i) {
      trek -= gewicht[i];
      if (trek < 0) return i;
    }
    return 0;
  }
  template <class T>
  const T& een(std::span<const T> rij) {
    return rij[static_cast<size_t>(tot(static_cast<int32_t>(rij.size())))];
  }

 private:
  static uint64_t meng(uint64_t z) {
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9u;
    z = (z ^ z >> 27) * 0x94D049BB133111EBu;
    return z ^ z >> 31;
  }
  uint64_t staat;
};
