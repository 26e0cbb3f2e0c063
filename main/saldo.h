// The balance of provisional orders: the pass over DTPICK, the totals, the report, the top menu.
#pragma once

#include <cstdint>
#include <cstdio>

void top_menu();
void saldo_afdrukken();  // "Selectie en afdrukken"
/// Modes 1 provisional of the selection, 2 made definitive, 5 lines of the selected order.
void saldo_bouw(int mode);
extern uint32_t saldo_opdrachtnr;
extern bool saldo_splits;  // per receiving branch
extern char saldo_sort[11];

/// Fills DTSER.Onn with the series of the last selection and looks series up through it from now
/// on.
void overlay_maak();
/// The selection screen, then overlay_maak; both branch maps of adv_rec all ones, sorted "AKV",
/// split per receiving branch.
void selecteer_series();

/// Unattended: all series, session 99, report lines to `uit`. False when function 10 is held.
bool saldo_onbewaakt(FILE* uit);
