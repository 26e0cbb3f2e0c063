// The work tables of a terminal: a left-over of an earlier run is only used when its records are
// ours and its index is sound.
#include "main/werktabel.h"

#include "isam/base.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"

namespace {

bool tpck_bruikbaar() {
  const std::string txt_naam = str_format("%s%s", privaat.tpck, ".TXT");
  if (!file_exists(txt_naam.c_str())) return false;
  if (IXCHECK(privaat.tpck) < 0) return false;
  ICB* icb = IXOPEN(privaat.tpck, IX_LEES);
  const bool goed = icb->record_length == TABEL_TPCK.lengte;
  IXCLOSE(icb);
  return goed;
}

void sluit(ICB*& icb) {
  if (icb != nullptr) IXCLOSE(icb);
  icb = nullptr;
}

}  // namespace

void werktabellen_open() {
  if (!tpck_bruikbaar()) tabel_maak(TABEL_TPCK, privaat.tpck);
  tabel_maak(TABEL_TMPGO, privaat.tmpgo);
  tpck = IXOPEN_LENGTE(privaat.tpck, IX_GEDEELD, TABEL_TPCK.lengte);
}

void werktabellen_sluit() {
  sluit(tpck);
  sluit(tmpgo);
  IXREMOVE(privaat.tpck);
  IXREMOVE(privaat.tmpgo);
}
