// The series that have replenishment information, one after another: what the automatic command and
// the reports share. Inside the advice commands only.
#pragma once

#include "sub/records.h"

/// Runs `doe` once for each series that DTAANV names, in its order, with the number on the bottom
/// row, until the end or until the operator breaks off between two series. `doe` answers false when
/// the data of its series could not be read whole: the screen tells so, and again at the end.
void adv_aanv_reeks(bool (*doe)(const Serienr&));
/// The dialog on the criteria of the automatic command, written back when it was confirmed.
bool adv_dialoog_slot();
