// Texts of the file engine and the base utilities: section nls/isam.def.
#pragma once

#include "isam/tekst.h"

#define TEKST(naam, nummer, tekst) inline constexpr Tekst naam{Catalogus::kba351, 2, nummer, tekst};
#include "nls/isam.def"
#undef TEKST
