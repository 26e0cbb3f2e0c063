// Texts of series selection and the advice criteria: section nls/sel.def.
#pragma once

#include "isam/tekst.h"

#define TEKST(naam, nummer, tekst) inline constexpr Tekst naam{Catalogus::winkel, 3, nummer, tekst};
#include "nls/sel.def"
#undef TEKST
