// Our own store, used as the programs use it: the record or its key is locked before each change.
#include "bench/gegevens.h"
#include "bench/partij.h"

namespace {

ICB* tabel = nullptr;

void open(bool nieuw) {
  if (nieuw) {
    IXREMOVE("DTSER");
    ICB* icb = IXCREATE("DTSER", IX_EXCLUSIEF);
    meet_definitie(icb);
    IXCLOSE(icb);
  }
  tabel = IXOPEN("DTSER", IX_GEDEELD);
}

void sluit() { IXCLOSE(tabel); }

void vul(std::span<const DtSer> records) {
  IXCLOSE(tabel);
  tabel = IXOPEN("DTSER", IX_EXCLUSIEF);
  for (DtSer r : records) IXWRITE(tabel, &r);
  IXCLOSE(tabel);
  tabel = IXOPEN("DTSER", IX_GEDEELD);
}

bool lees(const Serienr& nr, DtSer* uit) {
  uit->nr = nr;
  return IXREAD(tabel, uit);
}

uint64_t loop() {
  DtSer r{};
  uint64_t som = 0;
  for (bool er = IXFIRSTR(tabel, &r); er; er = IXNEXT(tabel, &r)) som += r.voorraad;
  return som;
}

bool voeg(const DtSer& nieuw) {
  DtSer r = nieuw;
  if (IXREADL(tabel, &r)) return false;
  r = nieuw;
  return IXWRITE(tabel, &r);
}

bool wijzig(const Serienr& nr) {
  DtSer r;
  r.nr = nr;
  if (!IXREADL(tabel, &r)) return false;
  ++r.voorraad;
  return IXWRITE(tabel, &r);
}

void bouw_klaar(uint32_t n) {
  IXREMOVE("BOUW");
  ICB* icb = IXCREATE("BOUW", IX_EXCLUSIEF);
  meet_definitie(icb);
  IXCLOSE(icb);
  meet_schrijf("BOUW.TXT", n);
}

void bouw() {
  if (IXBLDIX("BOUW") != 1) meet_fout("ons", "IXBLDIX");
}

}  // namespace

const Partij PARTIJ_ONS = {"ons", open, sluit, vul, lees, loop, voeg, wijzig, bouw_klaar, bouw};
