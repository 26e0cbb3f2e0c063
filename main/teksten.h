// Texts of the programs and the commands of orders: section nls/main.def.
#pragma once

#include "isam/tekst.h"

#define TEKST(naam, nummer, tekst) inline constexpr Tekst naam{Catalogus::winkel, 4, nummer, tekst};
#include "nls/main.def"
#undef TEKST
