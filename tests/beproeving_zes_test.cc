// The load of six writers and two readers on one table of this machine.
#include "tests/support/zes.h"

namespace {

TEST(Zes, WhatWasAcknowledgedIsWhatIsThere) {
  TempDir map;
  InMap in(map.pad);
  IXCLOSE(bep_tabel("TAB", IX_EXCLUSIEF));
  Samen<Stand> stand;
  const int seconden = beproeving_seconden();
  ZesKinderen kinderen = zes_start(stand, seconden, {map.pad});
  zes_einde(kinderen, *stand, seconden + 30);
  zes_keur(*stand);
  printf("%ld operations\n", zes_gedaan(*stand));
}

}  // namespace
