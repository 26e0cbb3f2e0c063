// Filling a private index over the series. It is filled in exclusive mode: only then does closing
// it write the header with the blocks that were added.
#include <cstring>

#include "isam/base.h"
#include "scr/scr.h"
#include "sub/sel_krit.h"
#include "sub/sel_tabel.h"
#include "sub/serie.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"

namespace {

constexpr int RIJ = 21, K_TELLER = 10;

bool afgebroken() { return scr_ctx != nullptr && scr_interrupted(); }

/// Adds the series in ser_rec unless the file holds it.
void voeg_toe(ICB* doel, bool bulk) {
  if (IXEXISTS(doel, &ser_rec)) return;
  doel->record_no = dtser->record_no;  // behind the test, which clears it
  if (bulk)
    IXBULK('W', doel, &ser_rec);
  else
    IXADDKEYS(doel, &ser_rec);
}

/// Methods 1 and 2: along the key of that number.
bool per_sleutel(ICB* doel, bool bulk, int sleutel) {
  IXSWITCH(dtser, sleutel);
  bool door = true;
  for (bool er = serie_eerste(); er; er = serie_volgende()) {
    voeg_toe(doel, bulk);
    if (afgebroken()) {
      door = false;
      break;
    }
  }
  IXSWITCH(dtser, 1);
  return door && !afgebroken();
}

/// Method 0: the whole table in slot order.
bool hele_tabel(ICB* doel, bool bulk) {
  if (scr_ctx != nullptr) {
    scr_clreol(RIJ, 1);
    scr_print(A_LABEL, RIJ, 1, "%s", txt(T_SERIE_VERWERKT));
  }
  IXSEQ_STOP();
  while (!afgebroken() && IXSEQ(dtser, &ser_rec)) {
    if (serie_test()) voeg_toe(doel, bulk);
    if (scr_ctx != nullptr) scr_print(A_WAARDE, RIJ, K_TELLER, "%8ld", dtser->record_no);
  }
  IXSEQ_STOP();
  return !afgebroken();
}

}  // namespace

bool serie_vul(const char* naam, const char* letters, bool bulk) {
  serie_einde();  // what an earlier walk left open
  sel_aanvullen();
  if (scr_ctx != nullptr) scr_intr_reset();
  const int methode = serie_methode();
  ICB* doel = tabel_open(naam, IX_EXCLUSIEF);
  if (bulk) IXBULK('O', doel, nullptr);
  const bool door = methode == 0 ? hele_tabel(doel, bulk) : per_sleutel(doel, bulk, methode);
  if (bulk) IXBULK('C', doel, nullptr);
  IXCLOSE(doel);
  serie_einde();
  if (door) return true;
  ICB* leeg = sort_maak(naam, letters);
  if (leeg != nullptr) IXCLOSE(leeg);
  return false;
}

bool serie_selecteer(const char* naam, const char* letters) {
  if (dtser_o != nullptr && strcmp(naam, privaat.o) == 0) {
    IXCLOSE(dtser_o);
    if (dtser_opzoek == dtser_o) dtser_opzoek = dtser;
    dtser_o = nullptr;
  }
  ICB* doel = sort_maak(naam, letters);
  if (doel == nullptr) return false;
  IXCLOSE(doel);
  return serie_vul(naam, letters, true);
}
