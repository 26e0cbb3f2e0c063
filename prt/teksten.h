// Texts of the print engine: section nls/prt.def.
#pragma once

#include "isam/tekst.h"

#define TEKST(naam, nummer, tekst) inline constexpr Tekst naam{Catalogus::kba351, 3, nummer, tekst};
#include "nls/prt.def"
#undef TEKST
