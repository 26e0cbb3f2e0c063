// Our own store, used as the programs use it: the record or its key is locked before each change.
// Once with each reader.
#include <unistd.h>

#include "bench/gegevens.h"
#include "bench/lezer.h"
#include "bench/partij.h"

namespace {

ICB* tabel = nullptr;

void open(bool nieuw) {
  // Nobody is there to be told whose lock it is: a refused one is tried again soon.
  ix_hooks.wacht = [](ICB*) { usleep(300); };
  if (nieuw) {
    IXREMOVE("DTSER");
    ICB* icb = IXCREATE("DTSER", IX_EXCLUSIEF);
    meet_definitie(icb);
    IXCLOSE(icb);
  }
  tabel = IXOPEN("DTSER", IX_GEDEELD);
}
void open_kaart(bool nieuw) {
  lezer_kies(true);
  open(nieuw);
}
void open_gewoon(bool nieuw) {
  lezer_kies(false);
  open(nieuw);
}

void sluit() {
  IXCLOSE(tabel);
  lezer_kies(true);
}

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
  for (bool er = IXFIRSTR(tabel, &r); er; er = IXNEXT(tabel, &r)) loop_tel(&som, r);
  return som;
}

uint64_t loop_tweede() {
  IXSWITCH(tabel, 2);
  const uint64_t som = loop();
  IXSWITCH(tabel, 1);
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

const Partij PARTIJ_ONS = {ONS,         open_kaart, sluit,  vul,        lees, loop,
                           loop_tweede, voeg,       wijzig, bouw_klaar, bouw};
const Partij PARTIJ_ONS_GEWOON = {GEWOON,      open_gewoon, sluit,  vul,        lees, loop,
                                  loop_tweede, voeg,        wijzig, bouw_klaar, bouw};
