// Texts of the stock master data and its lookups: section nls/stam.def.
#pragma once

#include "isam/tekst.h"

#define TEKST(naam, nummer, tekst) inline constexpr Tekst naam{Catalogus::winkel, 2, nummer, tekst};
#include "nls/stam.def"
#undef TEKST
