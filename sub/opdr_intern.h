// The rows of the order browser, between sub/opdr_verzamel.cc and sub/opdr_kies.cc.
#pragma once

#include <cstddef>
#include <vector>

#include "sub/opdr_kies.h"

inline constexpr uint8_t BRON_PICK = 1, BRON_GO = 2;

#pragma pack(push, 1)
struct OpdrRij {  // tmp_browse, 20 bytes
  uint32_t nummer;
  uint8_t vanfil, naarfil;  // naarfil B: several receivers
  uint16_t datum;
  uint32_t stuks, regels;
  uint8_t bron;  // where it was found first
  uint8_t leeg17[3];
};
#pragma pack(pop)
static_assert(sizeof(OpdrRij) == 20 && offsetof(OpdrRij, datum) == 6 &&
              offsetof(OpdrRij, bron) == 16);

/// One row for each number and sending branch within the limits, in that order; `nummer` 0 all.
std::vector<OpdrRij> opdr_verzamel(const OpdrGrens&, uint32_t nummer);
