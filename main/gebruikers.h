// The users of the chain and who is at work: liveness is told by the lock of a terminal record, not
// by its status alone.
#pragma once

#include <cstdint>

inline constexpr int GEBRUIKERS_LANG = 1;  // flags: number, password and status too

/// The operator picks a terminal record; *number is where the list starts (0 the first) and gets
/// the record chosen. False when left, or when there are none.
bool user_pick(int32_t* number, int flags);

/// "Gebruikers", of the launcher: the long list, to look at.
void gebruikers_lijst();
