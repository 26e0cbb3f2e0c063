// NAME.INX of any bytes under every operation of the engine.
#include <cstring>

#include "fuzzing/fuzz.h"
#include "isam/base.h"
#include "isam/ix.h"

namespace {

constexpr int LENGTE = 40, STAPPEN = 300;
std::string txt_bytes;

void rec_vul(uint8_t* rec, int i) {
  memset(rec, 0, LENGTE);
  rec[0] = static_cast<uint8_t>(i);
  rec[1] = static_cast<uint8_t>(i >> 8);
  snprintf(reinterpret_cast<char*>(rec) + 4, 20, "naam %d", i % 7);
  rec[30] = static_cast<uint8_t>(i % 5);
}

std::string maak(int sleutels, int aantal) {
  ICB* icb = IXCREATE("FUZZ", IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, "Rafeltabel,40");
  IXUPDFCB(icb, 1, "key1,NODUPS,I,1,2");
  if (sleutels > 1) IXUPDFCB(icb, 2, "naam,C,5,24");
  if (sleutels > 2) IXUPDFCB(icb, 3, "soort,I,31,31");
  IXINITIX(icb);
  for (int i = 1; i <= aantal; ++i) {
    uint8_t rec[LENGTE];
    rec_vul(rec, i * 37 % 1009);
    IXWRITE(icb, rec);
  }
  IXCLOSE(icb);
  txt_bytes = fuzz_lees("FUZZ.TXT");
  return fuzz_lees("FUZZ.INX");
}

void loop(ICB* icb, uint8_t* rec) {
  for (int k = 1; k <= IX_SLEUTELS; ++k) {
    IXSWITCH(icb, k);
    rec_vul(rec, 0);
    int stappen = 0;
    for (bool er = IXFIRSTR(icb, rec); er && stappen < STAPPEN; er = IXNEXT(icb, rec)) ++stappen;
    for (bool er = IXPREV(icb, rec); er && stappen > 0; er = IXPREV(icb, rec)) --stappen;
    IXNEXTK(icb, rec, 1);
    IXPREVK(icb, rec, 1);
    IXUNIQK(icb, rec, 1);
    int32_t nummer = 3;
    IXSKIP(icb, rec, 0, 2, &nummer);
  }
  IXSWITCH(icb, 1);
  for (int i = -1; i < 40; ++i) IXGET(icb, rec, i);
  for (int i = 0; i < STAPPEN && IXSEQ(icb, rec); ++i) {
  }
  IXSEQ_STOP();
}

void schrijf(ICB* icb, uint8_t* rec) {
  for (int i = 0; i < 30; ++i) {
    rec_vul(rec, i * 41);
    if (IXREADL(icb, rec)) rec[30] ^= 3;
    IXWRITE(icb, rec);
    rec_vul(rec, i * 37);
    if (IXREAD(icb, rec)) IXDELETE(icb, rec);
  }
}

/// One step of the road; the fault that ends it does not end the road.
template <class F>
void stap(F f) {
  try {
    f();
  } catch (const Einde&) {
  }
}

}  // namespace

std::vector<std::string> fuzz_zaden() {
  fuzz_map();
  return {maak(1, 5), maak(2, 60), maak(3, 200)};
}

void fuzz_een(const uint8_t* data, size_t n) {
  if (txt_bytes.empty()) fuzz_zaden();
  fuzz_schrijf("FUZZ.INX", data, n);
  fuzz_schrijf("FUZZ.TXT", txt_bytes.data(), txt_bytes.size());
  // Records may be as long as the header says.
  static uint8_t rec[65536];
  memset(rec, 0, sizeof rec);
  stap([] { IXCHECK("FUZZ"); });
  ICB* icb = nullptr;
  stap([&] { icb = IXOPEN("FUZZ", IX_GEDEELD); });
  if (icb != nullptr) {
    stap([&] { loop(icb, rec); });
    stap([&] { schrijf(icb, rec); });
    stap([&] { IXLOCK(icb, 12); });
    stap([&] { IXCLOSE(icb); });
  }
  // A wild count of records has put the new one far away: a rebuild of all that is only slow.
  if (file_size("FUZZ.TXT") > 1 << 24) return;
  stap([] { IXBLDIX("FUZZ"); });
  stap([] { IXCHECK("FUZZ"); });
}
