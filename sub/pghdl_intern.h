// What the branch field and the list of stored series need from each other.
#pragma once

#include "sub/pghdl.h"

/// Branch numbers below this can stand in a set of `lengte` bytes.
int pg_grens(int lengte);
/// Redraws a set field of a format such as "60s,I" with a text, as it stands after a field.
void pg_toon_veld(int row, int col, const char* formaat, const char* tekst);
