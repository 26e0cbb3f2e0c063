// temp_verzamel: the private table in which a run gathers order lines in the order of its list.
#pragma once

#include <cstddef>

#include "isam/ix.h"
#include "sub/records.h"

#pragma pack(push, 1)
struct Verzamel {  // 432 bytes
  uint8_t vanfil, naarfil;
  char model[15];
  uint8_t leeg17[3];
  Serienr nr;
  char merk[4];  // the brand's search name
  uint8_t leeg32[4];
  uint32_t opdrachtnr;
  char locatie[6];
  uint16_t orderdatum;
  uint32_t aantal[MATEN];
};
#pragma pack(pop)
static_assert(sizeof(Verzamel) == 432 && offsetof(Verzamel, nr) == 20);
static_assert(offsetof(Verzamel, opdrachtnr) == 36 && offsetof(Verzamel, aantal) == 48);

/// Makes the table anew, empty and closed, for a sort order of the letters A K V L M R; `splits`:
/// per receiving branch. A left-over of an earlier run is removed first.
void verzamel_maak(const char* naam, const char* sortering, bool splits);
/// The line of DTPICK as a record, with brand code, location and model of its series.
Verzamel verzamel_regel(const DtPick& regel, const DtSer& serie, const DtMerk& merk);
