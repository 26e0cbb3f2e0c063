// What every fuzz target shares. A target is fuzzing/NAME_fuzz.cc: seeds, and one call per input. A
// fault that ends a program (the abort, "Niet consistent") is an answer here: it comes back as
// Einde.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct Einde {};

/// Inputs to start from.
std::vector<std::string> fuzz_zaden();
/// One input; leaves nothing behind that the next one sees.
void fuzz_een(const uint8_t* data, size_t n);

/// Faults and waits of the engine and the toolkit become Einde. Once, before the first input.
void fuzz_haken();
/// A private folder that is the current directory from now on; removed at the end of the process.
void fuzz_map();
void fuzz_schrijf(const char* naam, const void* bytes, size_t n);
std::string fuzz_lees(const char* naam);

/// Numbers out of an input; zeros behind its end.
struct Bron {
  const uint8_t* p;
  size_t n;
  uint8_t byte() { return n == 0 ? uint8_t{0} : (--n, *p++); }
  uint32_t getal(int bytes) {
    uint32_t uit = 0;
    for (int i = 0; i < bytes; ++i) uit |= static_cast<uint32_t>(byte()) << (8 * i);
    return uit;
  }
  std::string tekst(size_t hoogstens) {
    const size_t lengte = n < hoogstens ? n : hoogstens;
    std::string uit(reinterpret_cast<const char*>(p), lengte);
    p += lengte;
    n -= lengte;
    return uit;
  }
};
