// Combinations of printer, connection and configuration that suit a report, and the choice among
// them.
#pragma once

#include <cstdint>
#include <vector>

#include "prt/tabellen.h"

/// The packed records keep their numbers on even places here.
struct alignas(4) PrtKeuze {
  PtrgRec printer;
  PtrcRec verbinding;
  PtrpRec configuratie;
};
static_assert(sizeof(PrtKeuze) == 16 + 64 + 284);

/// The width mask of a report against a configuration.
bool prt_past(int widths, int columns, int rows) noexcept;
/// All suitable combinations, by printer, connection and configuration number.
std::vector<PrtKeuze> prt_lijst_alles(int widths);
/// Those of one printer and connection; connection 0 is the only one that the printer has. False
/// when printer or connection is not there, or the connection is not the only one. *basis gets
/// both.
bool prt_lijst_printer(uint16_t printer, uint8_t verbinding, int widths, PrtKeuze* basis,
                       std::vector<PrtKeuze>* lijst);
/// Shows the list and lets the operator pick; the index, -1 when he left it.
int prt_lijst_kies(std::vector<PrtKeuze>& lijst);
