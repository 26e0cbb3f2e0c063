// The data that every measurement works on: series records with three keys, made from a seed, the
// same for each store. Key images are big-endian, so that stores which compare bytes have the same
// order as ours.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "isam/ix.h"
#include "sub/records.h"

inline constexpr int MEET_RECORDS = 200000;
inline constexpr int MEET_BOUW = 1000000;

/// splitmix64: the same row of numbers on every machine.
struct Toeval {
  uint64_t staat;
  uint64_t volgend() {
    uint64_t z = staat += 0x9E3779B97F4A7C15u;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9u;
    z = (z ^ z >> 27) * 0x94D049BB133111EBu;
    return z ^ z >> 31;
  }
  uint32_t tot(uint32_t n) { return static_cast<uint32_t>((volgend() >> 32) * n >> 32); }
};

/// Record `i` of a row without equal keys: neighbouring numbers lie far apart in every key.
DtSer meet_serie(uint32_t i);
/// Records i0 to i0 + n - 1.
std::vector<DtSer> meet_series(uint32_t i0, uint32_t n);

using Beeld1 = std::array<uint8_t, 8>;   // group, colour, number
using Beeld2 = std::array<uint8_t, 25>;  // brand, group, model, colour, number
using Beeld3 = std::array<uint8_t, 9>;   // group, part of the season, colour, number
Beeld1 beeld1(const Serienr& nr);
Beeld2 beeld2(const DtSer& s);
Beeld3 beeld3(const DtSer& s);

/// Defines the table of series with its three keys on a handle from IXCREATE.
void meet_definitie(ICB* icb);
/// Writes records straight into `pad`, in pieces; a table's data without an index.
void meet_schrijf(const std::string& pad, uint32_t n);
