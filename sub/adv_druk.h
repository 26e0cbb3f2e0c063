// The lines of the advice reports, for a report that is open. Inside the advice commands and their
// tests only.
#pragma once

#include <cstdint>

#include "isam/tekst.h"

/// One block a series, or one line a piece, of the series that DTAANV names and whose advice is not
/// empty, by the criteria in adv_rec; between adv_open and adv_sluit. False when nothing came.
bool adv_druk_series();
bool adv_druk_stuks();
/// Sales by date, both ends included, of the branches of the map: a line a branch and their sum.
bool vrk_verkeer_druk(uint16_t van, uint16_t tm, const uint8_t filialen[32]);

/// A report over the replenishment information as a command: claim, dialog, destination, lines.
void adv_rapport(const Tekst& titel, bool (*druk)());
