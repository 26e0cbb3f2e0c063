// Texts of the session modules: section nls/sessie.def.
#pragma once

#include "isam/tekst.h"

#define TEKST(naam, nummer, tekst) inline constexpr Tekst naam{Catalogus::winkel, 1, nummer, tekst};
#include "nls/sessie.def"
#undef TEKST
