// Selecting one brand of many: it costs by what it finds, so the bytes are counted, not the time.
#include <sys/stat.h>

#include "bench/gegevens.h"
#include "bench/partij.h"
#include "bench/saldo_meet.h"
#include "bench/scherm_meet.h"
#include "isam/io.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/iotab.h"
#include "sub/sel_krit.h"
#include "sub/sel_merken.h"
#include "sub/serie.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"

namespace {

constexpr int TERMINAL = 98;
constexpr uint16_t MERK = 7;

ino_t series_inode;
uint64_t gelezen;

/// Any handle's reads of the table count.
void tel(int fd, void*, size_t n, int64_t) {
  struct stat s;
  if (fstat(fd, &s) == 0 && s.st_ino == series_inode) gelezen += n;
}

void systeem(char hoe) {
  int32_t nummer = 1;
  iotab(hoe, &nummer, &sys_rec1, SYS_RECORDS);
  iofil(hoe, 0, nullptr);
}

void kies_merk() {
  sel_standaard(13);
  merklijst_neem(std::vector<uint16_t>{MERK}, true);
  sel_status[uint8_t{'a'}] = SEL_LIJST;
}

int gekozen() {
  ICB* icb = IXOPEN(privaat.o, IX_LEES);
  int n = 0;
  DtSer rec{};
  for (bool er = IXFIRSTR(icb, &rec); er; er = IXNEXT(icb, &rec)) ++n;
  IXCLOSE(icb);
  return n;
}

}  // namespace

Rij merk_meet(uint32_t series) {
  keten_maak(series, 0);
  int goed = 0;
  for (uint32_t i = 0; i < series; ++i)
    if (meet_serie(i).merk == MERK) ++goed;
  session_terminal = TERMINAL;
  systeem('O');
  int32_t nummer = 1;
  iotab('R', &nummer, &sys_rec1, SYS_RECORDS);
  privaat_maak(TERMINAL);
  ICB** const tafels[] = {&dtart, &dtmerk, &dtser};
  const char* const namen[] = {"DTART", "DTMERK", "DTSER"};
  for (size_t i = 0; i < std::size(tafels); ++i) *tafels[i] = tabel_open(namen[i], IX_LEES);
  kies_merk();
  struct stat s;
  if (stat("DTSER.TXT", &s) != 0) meet_fout("brand", "DTSER.TXT");
  series_inode = s.st_ino;
  gelezen = 0;
  io_proef.na_lees = tel;
  const bool heel = serie_selecteer(privaat.o, "AKV");
  io_proef.na_lees = nullptr;
  if (!heel || gekozen() != goed || goed == 0) meet_fout("brand", "not the series of the brand");
  for (ICB** tafel : tafels) {
    IXCLOSE(*tafel);
    *tafel = nullptr;
  }
  systeem('C');
  if (gelezen == 0) meet_fout("brand", "nothing was counted");
  const double deel = 100.0 * static_cast<double>(gelezen) / static_cast<double>(s.st_size);
  return {"11", "one brand of 220: bytes of DTSER.TXT read", "%", {{deel}}};
}
