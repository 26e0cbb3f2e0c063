// Who is at the terminal: user code and password against the terminal records.
#pragma once

/// Asks user code and password until a terminal record is proved, locks that record and makes it
/// the session. `keuze` is the number given with -t (0 none), for a code that several records hold.
/// False when the operator left, or after five wrong passwords.
bool aanmelden(int keuze);
