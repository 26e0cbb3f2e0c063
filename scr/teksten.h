// Texts of the terminal toolkit: section nls/scr.def.
#pragma once

#include "isam/tekst.h"

#define TEKST(naam, nummer, tekst) inline constexpr Tekst naam{Catalogus::kba351, 1, nummer, tekst};
#include "nls/scr.def"
#undef TEKST
