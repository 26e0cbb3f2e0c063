// The demo chain as the advice sees it: whoever starts finds every kind of advice in it.
#include <map>

#include "isam/base.h"
#include "main/iofil.h"
#include "main/iotab.h"
#include "main/werktabel.h"
#include "main/work.h"
#include "sub/adv_krit.h"
#include "sub/adv_vul.h"
#include "tests/support/tijdelijk.h"
#include "tools/keten.h"

namespace {

struct Demo {
  TempDir map;
  InMap in{map.pad};
  Demo(uint64_t zaad, bool transit) {
    KetenMaat maat = keten_klein();
    maat.zaad = zaad;
    maat.transit = transit;
    maat.vandaag = date_today();
    keten_schrijf(keten_plan(maat));
    session_terminal = 1;
    int32_t nummer = 1;
    iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
    iotab('R', &nummer, &sys_rec1, SYS_RECORDS);
    iofil('O', 0, nullptr);
    work_open();
    werktabellen_open();
  }
  ~Demo() {
    werktabellen_sluit();
    work_close();
    iofil('C', 0, nullptr);
    int32_t nummer = 1;
    iotab('C', &nummer, nullptr, SYS_RECORDS);
    session_terminal = 0;
  }
};

/// How many series show each kind of advice, by its value.
std::map<uint8_t, int> soorten(int slot) {
  std::map<uint8_t, int> aantal;
  adv_rec = adv_sets[static_cast<size_t>(slot)];
  const AdvOpen open;
  ser_rec = {};
  for (bool er = IXFIRSTR(dtser, &ser_rec); er; er = IXNEXT(dtser, &ser_rec)) {
    EXPECT_TRUE(adv_vul()) << serie_tekst(ser_rec.nr);
    adv_bereken(advies, adv_rec, slot == ADV_HANDMATIG ? advies.m_aanvul : advies.m_vrk_periode);
    for (int soort = ADV_AANVUL; soort <= ADV_DISTRIBUTIE; soort *= 2)
      if ((advies.adv_kenmerk & soort) != 0) ++aantal[static_cast<uint8_t>(soort)];
  }
  return aantal;
}

TEST(KetenAdvies, EveryKindIsThereInBothCommands) {
  for (const auto& [zaad, transit] : {std::pair{1, true}, {7, false}}) {
    const Demo demo(static_cast<uint64_t>(zaad), transit);
    EXPECT_TRUE(keten_keur().empty());
    for (const int slot : {ADV_HANDMATIG, ADV_MUTATIES}) {
      std::map<uint8_t, int> aantal = soorten(slot);
      for (const uint8_t soort : {ADV_AANVUL, ADV_SWITCH, ADV_OVERIG, ADV_RESTANT, ADV_DISTRIBUTIE})
        EXPECT_GE(aantal[soort], 10) << "seed " << zaad << " slot " << slot << " kind " << +soort;
    }
  }
}

}  // namespace
