// Locations in the warehouse.
#pragma once

#include <cstdint>

#include "sub/records.h"

void mag_locaties();   // "Magazijnlocaties"
void serie_locatie();  // "Locatie per serie"

// Steps of the first.
#pragma pack(push, 1)
struct Locatie {  // 24 bytes: the private table "locatie"
  uint8_t filiaal;
  char locatie[6];
  uint8_t leeg7;
  Serienr nr;
  uint16_t nota, voorraad, inventaris;
  uint8_t leeg22[2];
};
#pragma pack(pop)
static_assert(sizeof(Locatie) == 24 && offsetof(Locatie, nr) == 8);

/// Fills the table with the series that have a location and labels in their warehouse; `filiaal`
/// -1: of every warehouse. The rows it has; -1 when the operator broke off.
int locaties_vul(int filiaal);
/// Prints the table into an open report and removes it.
void locaties_druk();
