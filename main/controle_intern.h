// What the files of session start share among themselves.
#pragma once

#include <string>

#include "isam/ix.h"

/// The program's own name, as ctl_start was given it; the launcher's for the empty name.
const std::string& ctl_eigen_naam();

/// The engine's lock hook of a session: who holds the record, for two seconds on the bottom line.
void ctl_slot_wacht(ICB* icb);

/// ctl_backup_result on the files of another directory (with a '/' at its end).
bool ctl_backup_uit(const char* map);
