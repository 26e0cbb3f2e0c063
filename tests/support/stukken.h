// Pieces in the label store of a chain under test, and chains of blocks that lead astray.
#pragma once

#include "isam/io.h"
#include "sub/ioeti.h"
#include "sub/ioeti_intern.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "tests/support/keten.h"

/// Puts a label at the end of its series' chain; its number.
inline int32_t proef_stuk(Etiket e) {
  int32_t nummer = 0;
  ioeti('W', &nummer, &e);
  const OpSleutel sleutel(dtser, 1);
  DtSer rec{};
  rec.nr = e.nr;
  if (IXREAD(dtser, &rec) && rec.blok1 < 0) {
    rec.blok1 = eti_blok(nummer);
    IXWRITE(dtser, &rec);
  }
  return nummer;
}

/// Makes the chain go on from a block into another.
inline void proef_ketting(int32_t blok, int32_t volgende) {
  io_schrijf(eti.fd, &volgende, sizeof volgende, int64_t{blok} * 376 + 12);
}
