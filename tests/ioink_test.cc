// Price sets: overlap of periods, chains of groups, the free list of DTIPG.TXT.
#include <cstring>

#include "sub/bitarr.h"
#include "sub/ioink.h"
#include "sub/ioink_intern.h"
#include "tests/support/keten.h"

namespace {

constexpr Serienr A{10100, 10, 1};

struct Prijzen : testing::Test {
  Keten keten;
  Prijzen() { keten.open(); }

  static void groep(int maat, int32_t verkoop) {
    Prijsgroep g{};
    bit_zet(g.rec.maten, maat);
    g.rec.verkoopprijs = verkoop;
    g.rec.inkoopprijs = verkoop / 2;
    prijsgroepen.push_back(g);
  }
  /// A new set over a period, with one group a price.
  static DtIpa nieuw(uint16_t van, uint16_t tm, std::initializer_list<int32_t> prijzen,
                     Serienr nr = A, uint16_t nummer = 1) {
    DtIpa rec{};
    rec.nr = nr;
    rec.nummer = nummer;
    rec.begin = van;
    rec.eind = tm;
    rec.soort = 3;
    rec.code = 4;
    rec.groepnummer = 5;
    rec.groep1 = -1;
    prijsgroepen.clear();
    int maat = 1;
    for (const int32_t prijs : prijzen) groep(maat++, prijs);
    ipa_schrijf(&rec);
    return rec;
  }
  /// Every set of the series: "begin-end:prices".
  static std::string sets(Serienr nr = A) {
    std::string uit;
    DtIpa rec{};
    rec.nr = nr;
    for (bool er = ipa_stap('F', &rec, 1, 3); er; er = ipa_stap('N', &rec, 1, 3)) {
      DtIpa lees = rec;
      EXPECT_TRUE(ipa_lees(&lees));
      uit += str_format("%hu-%hu:", rec.begin, rec.eind);
      for (const Prijsgroep& g : prijsgroepen) {
        uit += str_format("%ld,", g.rec.verkoopprijs);
        EXPECT_EQ(g.rec.eind, rec.eind);
      }
      uit.back() = ' ';
    }
    return uit;
  }
  static SysRec9 control() {
    SysRec9 rec;
    std::memcpy(&rec, Keten::sysrec(9).data(), sizeof rec);
    return rec;
  }
  /// Groups on disk: in chains of sets and on the free list; each must be in one place.
  static void alles_telt(size_t in_gebruik) {
    std::vector<int> gezien(static_cast<size_t>(control().hoogste));
    size_t gebruikt = 0;
    DtIpa rec{};
    for (bool er = ipa_stap('F', &rec, 1, 0); er; er = ipa_stap('N', &rec, 1, 0)) {
      for (const Prijsgroep& g : ink_keten(rec, Niveau::stil)) {
        ++gezien.at(static_cast<size_t>(g.nummer));
        ++gebruikt;
      }
    }
    for (int32_t n = control().vrij_hoofd; n != control().hoogste;) {
      DtIpg vrij;
      ASSERT_TRUE(ink_lees_groep(n, Niveau::stil, &vrij, nullptr));
      EXPECT_EQ(vrij.verkoopprijs, 0);
      ++gezien.at(static_cast<size_t>(n));
      n = vrij.volgende;
    }
    EXPECT_EQ(gebruikt, in_gebruik);
    for (const int keer : gezien) EXPECT_EQ(keer, 1);
  }
};

TEST(Overlappen, TheFirstRuleThatHoldsDecides) {
  struct {
    uint16_t van, tm;
    Overlap soll;
  } const gevallen[] = {{200, 299, Overlap::wissen},      {100, 400, Overlap::wissen},
                        {200, 300, Overlap::wissen},      {150, 200, Overlap::begin_later},
                        {200, 298, Overlap::begin_later}, {299, 350, Overlap::eind_eerder},
                        {201, 299, Overlap::eind_eerder}, {201, 298, Overlap::splitsen},
                        {250, 250, Overlap::splitsen},    {100, 199, Overlap::geen},
                        {300, 400, Overlap::geen}};
  for (const auto& g : gevallen) EXPECT_EQ(ink_overlap(200, 299, g.van, g.tm), g.soll) << g.van;
}

TEST_F(Prijzen, ASetIsStoredWithItsGroupsAndTheirUnion) {
  const DtIpa set = nieuw(200, 299, {1000, 1200, 1400});
  EXPECT_EQ(set.groep1, 0);
  EXPECT_EQ(set.maten[0], 0b1110);
  const std::string groep1 = ProefSysteem::bytes("DTIPG.TXT", 40, 40);
  DtIpg g;
  std::memcpy(&g, groep1.data(), sizeof g);
  EXPECT_EQ(g.nr, A);
  EXPECT_EQ(g.nummer, 1);
  EXPECT_EQ(g.eind, 299);
  EXPECT_EQ(g.groepnummer, 5);
  EXPECT_EQ(g.code, 4);
  EXPECT_EQ(g.soort, 3);
  EXPECT_EQ(g.inkoopprijs, 600);
  EXPECT_EQ(g.volgende, 2);
  EXPECT_EQ(control().hoogste, 3);
  EXPECT_EQ(terminal_rec.status, 1);

  DtIpa rec;
  EXPECT_TRUE(ipa_geldig(A, 1, 250, &rec));
  EXPECT_EQ(prijsgroepen.size(), 3u);
  EXPECT_TRUE(ipa_geldig(A, 1, 299, &rec));
  EXPECT_FALSE(ipa_geldig(A, 1, 199, &rec));
  EXPECT_TRUE(prijsgroepen.empty());
  EXPECT_FALSE(ipa_geldig(A, 1, 300, &rec));
  EXPECT_FALSE(ipa_geldig(A, 2, 250, &rec));
  EXPECT_FALSE(ipa_stap('R', &rec, 1, 0));
}

TEST_F(Prijzen, ANewPeriodPushesTheOldOnesAside) {
  nieuw(200, 299, {1000, 1200});
  nieuw(300, 399, {2000});
  nieuw(280, 320, {3000});
  EXPECT_EQ(sets(), "200-279:1000,1200 280-320:3000 321-399:2000 ");
  alles_telt(4);
  nieuw(230, 240, {4000});  // inside: a split, and the part ahead has copies
  EXPECT_EQ(sets(), "200-229:1000,1200 230-240:4000 241-279:1000,1200 280-320:3000 321-399:2000 ");
  alles_telt(7);
  nieuw(200, 399, {5000, 5100});
  EXPECT_EQ(sets(), "200-399:5000,5100 ");
  alles_telt(2);
  nieuw(200, 399, {6000});  // equal: replaced
  EXPECT_EQ(sets(), "200-399:6000 ");
  alles_telt(1);
  EXPECT_EQ(IXCHECK("DTIPA"), 4);
}

TEST_F(Prijzen, OtherSeriesAndNumbersAreLeftAlone) {
  nieuw(200, 299, {1000});
  nieuw(200, 299, {2000}, A, 2);
  nieuw(200, 299, {3000}, {10100, 10, 2});
  nieuw(250, 350, {4000});
  EXPECT_EQ(sets(), "200-249:1000 250-350:4000 200-299:2000 ");
  ipa_wis_serie(A);
  EXPECT_EQ(sets(), "");
  EXPECT_EQ(sets({10100, 10, 2}), "200-299:3000 ");
  alles_telt(1);
}

TEST_F(Prijzen, AnEditThatNarrowsLeavesNothingOfTheOldPeriod) {
  DtIpa rec = nieuw(200, 299, {1000, 1200});
  ASSERT_TRUE(ipa_lees(&rec));
  rec.begin = 220;
  rec.eind = 260;
  ipa_schrijf(&rec);
  EXPECT_EQ(sets(), "220-260:1000,1200 ");
  alles_telt(2);
  // The same period as a new set over the old one splits it.
  nieuw(300, 399, {2000});
  nieuw(320, 360, {2500});
  EXPECT_EQ(sets(), "220-260:1000,1200 300-319:2000 320-360:2500 361-399:2000 ");
}

TEST_F(Prijzen, AnEditThatWidensPushesNeighbours) {
  nieuw(100, 199, {500});
  DtIpa rec = nieuw(200, 299, {1000});
  ASSERT_TRUE(ipa_lees(&rec));
  rec.begin = 150;
  ipa_schrijf(&rec);
  EXPECT_EQ(sets(), "100-149:500 150-299:1000 ");
  ASSERT_TRUE(ipa_lees(&rec));
  prijsgroepen.clear();  // without groups the set is not written again
  ipa_schrijf(&rec);
  EXPECT_EQ(sets(), "100-149:500 ");
  alles_telt(1);
}

TEST_F(Prijzen, DeletingASetFreesItsGroups) {
  DtIpa een = nieuw(200, 299, {1000, 1100, 1200});
  nieuw(300, 399, {2000});
  ipa_wis(&een);
  EXPECT_EQ(sets(), "300-399:2000 ");
  alles_telt(1);
  EXPECT_EQ(nieuw(400, 499, {3000}).groep1, 2);  // the last one freed
}

TEST_F(Prijzen, LoadingStopsAtAGroupOfAnotherSet) {
  DtIpa rec = nieuw(200, 299, {1000, 1100, 1200});
  DtIpg g;
  ASSERT_TRUE(ink_lees_groep(1, Niveau::stil, &g, nullptr));
  g.nr.kleur = 99;
  ink_schrijf_groep(1, g);
  testing::internal::CaptureStderr();
  EXPECT_TRUE(ipa_lees(&rec));
  const std::string melding = testing::internal::GetCapturedStderr();
  EXPECT_NE(melding.find("Prijzen zijn NIET consistent, bestandscontroles uitvoeren (3)"),
            std::string::npos)
      << melding;
  EXPECT_EQ(prijsgroepen.size(), 1u);
}

TEST_F(Prijzen, AMapThatIsNotTheUnionIsReportedAndKept) {
  DtIpa rec = nieuw(200, 299, {1000});
  rec.maten[5] = 0x40;
  IXWRITE(ink.dtipa, &rec);
  testing::internal::CaptureStderr();
  EXPECT_TRUE(ipa_lees(&rec));
  EXPECT_NE(testing::internal::GetCapturedStderr().find("maatbitmaps kloppen niet"),
            std::string::npos);
  EXPECT_EQ(rec.maten[5], 0x40);
  rec.groep1 = -1;
  IXWRITE(ink.dtipa, &rec);
  testing::internal::CaptureStderr();
  EXPECT_TRUE(ipa_lees(&rec));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_TRUE(prijsgroepen.empty());
}

}  // namespace
