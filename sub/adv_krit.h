// The advice criteria: seven sets a terminal in DTSELVRD.nnn, and their screen.
#pragma once

#include "sub/records.h"

inline constexpr int ADV_AUTOMATISCH = 0, ADV_HANDMATIG = 2, ADV_SALDO = 4, ADV_MUTATIES = 6;

uint16_t adv_verkoopdagen();  // the system's number of days of sales
AdvRec adv_standaard();
void adv_laad(int terminal);  // reads, defaults, normalises vrk_dagen
void adv_bewaar(int terminal);
/// The screen on the current adv_rec; `slot` 6 shows the fourth block.
void adv_scherm(int slot);
