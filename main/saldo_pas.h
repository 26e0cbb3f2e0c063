// The steps of the balance, between main/saldo.cc, main/saldo_pas.cc and main/saldo_lijst.cc.
#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "sub/records.h"

/// One order number for each (sending branch, second branch) of a run; the second is B where an
/// order holds all receivers. A pair that is new draws one.
using OrderParen = std::map<std::pair<uint8_t, uint8_t>, uint32_t>;
uint32_t order_nummer(OrderParen&, const DtPick& regel);

/// Walks the order lines of the selected series into temp_verzamel. In mode 2 each line becomes
/// definitive on the way. Ends early when the operator breaks off, with what it has.
void saldo_pass(int mode);
/// The report over temp_verzamel, which it removes; nothing of that when no destination is chosen.
void saldo_totalen();
/// The report's lines alone, into an open report; true when anything was printed.
bool saldo_druk();
/// Writes the pieces that an order replenishes off against the series' sold labels.
void aanv_afboek(const Serienr& nr);
