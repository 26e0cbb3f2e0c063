// The byte stream of a saved selection: packing and reading without files or screen.
//
//   OFFSET SIZE  what
//        0   30  description
//       30    2  number
//       32       entries in screen order: letter, status and, with status 254 or 255, the value
//
// Any bytes may be read: a letter that no field has is counted and passed over one byte at a time,
// and a value that the stream cuts short ends the reading with that field at its default.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "sub/sel_krit.h"

/// One letter's status and value. `merken` is the brand list in key order; an empty one is written
/// as the default.
std::vector<uint8_t> stroom_pak(const SelRec& rec, const char* letters, const uint8_t* status,
                                std::span<const uint16_t> merken);

struct StroomUit {
  int vreemd = 0;                // bytes where a letter should have stood
  std::vector<uint16_t> merken;  // as stored, not yet looked up
};
/// Fills the record and the statuses from the stream; what it does not hold stays. Text fields come
/// back terminated and flags of small sets within their bounds.
StroomUit stroom_lees(std::span<const uint8_t> bytes, SelRec* rec, uint8_t* status);

/// "DTSEL013.000"
std::string stroom_naam(int soort, int slot);
