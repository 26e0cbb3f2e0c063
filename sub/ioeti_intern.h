// The label store's blocks and its one current position, shared by the actions and the chains.
#pragma once

#include "sub/ioeti.h"

inline constexpr int ETI_SLOTS = 10;

#pragma pack(push, 1)
/*   OFFSET SIZE FIELD       one label block, 376 bytes
 *        0    8 nr          owning series, zero in a free block
 *        8    2 maatsoort   size type of the owner
 *       10    2 -           zero
 *       12    4 volgende    next block of the series, or of the free list; -1 ends a series' chain
 *       16  360 woord       ten label slots of nine words                                     */
struct EtiBlok {
  Serienr nr;
  uint16_t maatsoort;
  uint8_t leeg10[2];
  int32_t volgende;
  uint32_t woord[ETI_SLOTS][9];
};
#pragma pack(pop)
static_assert(sizeof(EtiBlok) == 376 && offsetof(EtiBlok, volgende) == 12 &&
              offsetof(EtiBlok, woord) == 16);

/// The open store. `blok` is the number of the block in `buffer`, -1 for none.
struct EtiStand {
  int fd = -1;
  int cijfers = 0;
  char actie = 0;  // for the reports
  int32_t blok = -1;
  int slot = 0;
  EtiBlok buffer{};
  Serienr reeks{};  // the series walked last and its first block
  int32_t eerste = -1;
  int32_t stappen = 0;  // blocks since the start of the walk: a chain that bites its tail ends
  bool bewaakt = false;
  Serienr eigenaar{};
};
extern EtiStand eti;

enum class EtiLees { goed, buiten, zoekfout, kort };

/// Reads block `blok` as it stands, without any check of its owner.
EtiLees eti_lees_rauw(int32_t blok, EtiBlok* buffer);
/// Makes `blok` the current block; a fault ends the program.
void eti_ga(int32_t blok);
/// Writes the current block; a number beyond the highest is skipped.
void eti_schrijf();
[[noreturn]] void eti_fataal(EtiLees soort, int32_t blok);
/// Adds a block at the end of the series' chain (after the current block when that is the series')
/// and makes it current, slot 0.
void eti_blok_erbij(const Serienr& nr, uint8_t maatsoort);
/// First block of the series' chain by what the store knows, -1 none.
int32_t eti_eerste_blok(const Serienr& nr);
/// Rate in permille of an article group's labels now, by the system's table.
uint16_t eti_tarief(uint32_t artgroep);
void eti_tabellen_dicht();
