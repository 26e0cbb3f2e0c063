// The two open catalogues. A text asked for while none is open is its Dutch default.
#include "isam/tekst.h"

#include <nl_types.h>

namespace {

// The mark that catopen itself gives for "not open".
const nl_catd DICHT = reinterpret_cast<nl_catd>(-1);  // NOLINT(performance-no-int-to-ptr)
nl_catd catalogi[2] = {DICHT, DICHT};

}  // namespace

const char* txt(const Tekst& rij) noexcept {
  const nl_catd catalogus = catalogi[rij.catalogus == Catalogus::kba351 ? 0 : 1];
  if (catalogus == DICHT) return rij.standaard;
  return catgets(catalogus, rij.set, rij.nummer, rij.standaard);
}

void teksten_open() noexcept {
  teksten_sluit();
  catalogi[0] = catopen("KBA351", 0);
  catalogi[1] = catopen("WINKEL", 0);
}

void teksten_sluit() noexcept {
  for (nl_catd& catalogus : catalogi) {
    if (catalogus != DICHT) catclose(catalogus);
    catalogus = DICHT;
  }
}
