// Bit arrays: branch maps (32 bytes) and size maps (12 bytes), bit n at byte n/8, bit n%8.
#pragma once

#include <cstdint>

inline bool bit_test(const uint8_t* map, int n) { return (map[n >> 3] >> (n & 7) & 1) != 0; }
inline void bit_zet(uint8_t* map, int n) {
  map[n >> 3] = static_cast<uint8_t>(map[n >> 3] | 1u << (n & 7));
}
inline void bit_wis(uint8_t* map, int n) {
  map[n >> 3] = static_cast<uint8_t>(map[n >> 3] & ~(1u << (n & 7)));
}
/// All bytes 255; all bytes 0. A null map ends the program ("bitarr", 1000 or 2000 + length).
bool bit_vol(const uint8_t* map, int lengte);
bool bit_leeg(const uint8_t* map, int lengte);
/// Over as many bits as the chain has branches.
bool bit_alle_filialen(const uint8_t* map);
bool bit_geen_filialen(const uint8_t* map);
