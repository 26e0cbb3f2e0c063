// The brand list of a selection: the private index DTMERK.nn over the brands' table.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "isam/ix.h"

/// Numbers of the list in key order; empty when there is no list.
std::vector<uint16_t> merklijst_nummers();
/// Looks up brands read from a selection, adds those that exist to the list when it is being
/// filled, warns about the others, and sets sel_rec.merk, merk_aantal and merk_een.
void merklijst_neem(std::span<const uint16_t> nummers, bool vul);
