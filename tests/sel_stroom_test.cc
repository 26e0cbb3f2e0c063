// The bytes of saved selections, and streams that are none.
#include "sub/sel_stroom.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "sub/sel_intern.h"
#include "sub/sel_krit.h"
#include "sub/sel_merken.h"
#include "sub/sel_tabel.h"
#include "tests/support/stukken.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct Uit {
  SelRec rec{};
  uint8_t status[256] = {};
  StroomUit stroom;
};
Uit lees(const Bytes& bytes) {
  Uit u;
  u.stroom = stroom_lees(bytes, &u.rec, u.status);
  return u;
}
Bytes kop(const char* oms = "", uint8_t nr = 0) {
  Bytes b(32);
  memcpy(b.data(), oms, strlen(oms));
  b[30] = nr;
  return b;
}
Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

TEST(Stroom, HoldsEveryFieldInScreenOrderAndAValueOnlyWhereOneWasEntered) {
  SelRec rec{};
  memcpy(rec.sel_oms, "zomer", 5);
  rec.sel_nr = 3;
  rec.artgroep_van = 10100;
  rec.artgroep_tm = 77;  // stands at its default: not written
  memcpy(rec.model, "MODEL-VAN-15-TK", 15);
  rec.kenmerk_nr = 2;
  memcpy(rec.kenmerk_waarde, "KN", 2);
  uint8_t status[256] = {};
  status['a'] = SEL_LIJST;
  status['b'] = status['S'] = status['T'] = SEL_INGEVOERD;
  status['c'] = CODE_LAATSTE;
  const uint16_t merken[] = {7, 0x1234};
  const Bytes soll = kop("zomer", 3) + Bytes{'a', 254, 2,    0,    0, 0, 7,   0, 0x34, 0x12,
                                             'b', 255, 0x74, 0x27, 0, 0, 'c', 2, 'S',  255} +
                     Bytes(rec.model, rec.model + 15) + Bytes{'T', 255, 2, 'K', 'N'};
  EXPECT_EQ(stroom_pak(rec, "abcST", status, merken), soll);
  status['a'] = SEL_LIJST;
  EXPECT_EQ(stroom_pak(rec, "a", status, {}), kop("zomer", 3) + (Bytes{'a', 0}));
  EXPECT_EQ(stroom_naam(13, 0), "DTSEL013.000");
}

TEST(Stroom, EveryFieldOfEveryKindComesBackAsItWasWritten) {
  std::mt19937 rng(20);
  for (int soort = 1; soort <= SEL_SOORTEN; ++soort) {
    const std::string letters = std::string(sel_soort_rij(soort)->letters) + "Y";
    SelRec rec{};
    for (size_t i = 0; i < sizeof rec; ++i) {
      reinterpret_cast<uint8_t*>(&rec)[i] = static_cast<uint8_t>(rng() | 1);
    }
    rec.doelgroep[10] = rec.seizoen[2] = 0;
    rec.stdmod = 2;
    rec.kenmerk_nr = 9;
    uint8_t status[256] = {};
    for (const char c : letters) status[static_cast<uint8_t>(c)] = SEL_INGEVOERD;
    const uint16_t merken[] = {1, 2, 3};
    const Bytes eerste = stroom_pak(rec, letters.c_str(), status, merken);
    const Uit u = lees(eerste);
    EXPECT_EQ(u.stroom.vreemd, 0) << soort;
    EXPECT_EQ(stroom_pak(u.rec, letters.c_str(), u.status, u.stroom.merken), eerste) << soort;
  }
}

TEST(Stroom, PassesOverLettersThatNoFieldHasAndEndsWithTheBytes) {
  const Uit u = lees(kop() + Bytes{'?', '!', 'b', 255, 5, 0, 0, 0, 'n', 'c', 255, 9, 0});
  EXPECT_EQ(u.stroom.vreemd, 3);
  EXPECT_EQ(u.rec.artgroep_van, 5u);
  EXPECT_EQ(u.rec.artgroep_tm, 0u);  // its value is cut short, so the field stays at its default
  EXPECT_EQ(u.status['c'], 0);
  EXPECT_EQ(u.status['b'], SEL_INGEVOERD);
  EXPECT_EQ(lees({'o', 'm', 's'}).rec.sel_oms[2], 's');
  EXPECT_EQ(lees({}).rec.sel_oms[0], 0);
}

struct Selectie : testing::Test {
  Keten k;
  void SetUp() override {
    k.open();
    proef_merk(5);
    proef_merk(7);
    proef_merk(9);
  }
};

TEST_F(Selectie, SavedBrandsComeBackIntoTheListWithoutThoseThatWereDeleted) {
  sel_start(13);
  EXPECT_TRUE(file_exists("DTMERK.07"));
  EXPECT_TRUE(merklijst_nummers().empty());
  merklijst_neem(std::vector<uint16_t>{9, 8, 5, 10001, 5}, true);
  sel_status['a'] = SEL_LIJST;
  EXPECT_EQ(merklijst_nummers(), (std::vector<uint16_t>{5, 9}));
  EXPECT_EQ(sel_rec.merk, 9);
  EXPECT_EQ(merk_aantal, 2);
  sel_schrijf(4);

  DtMerk weg{};
  weg.nummer = 5;
  proef_weg(dtmerk, weg);
  sel_lees(4);
  EXPECT_EQ(merklijst_nummers(), std::vector<uint16_t>{9});
  EXPECT_TRUE(merk_een);
  EXPECT_EQ(sel_status['a'], SEL_LIJST);

  weg.nummer = 9;
  proef_weg(dtmerk, weg);
  sel_lees(4);
  EXPECT_TRUE(merklijst_nummers().empty());
  EXPECT_EQ(sel_status['a'], CODE_ALLE);
  EXPECT_EQ(sel_rec.merk, 0);
  weg.nummer = 7;
  EXPECT_TRUE(IXREAD(dtmerk, &weg));  // emptying the list left the brands' table alone
}

TEST_F(Selectie, AFileOfAnyBytesCanBeShownFilledAndWrittenInEveryKind) {
  sys_rec1.opties2 = 4;
  for (uint32_t zaad = 1; zaad <= 400; ++zaad) {
    std::mt19937 rng(zaad);
    const int soort = 1 + static_cast<int>(zaad) % SEL_SOORTEN;
    sel_standaard(soort);
    std::string bytes(32 + rng() % 300, '\0');
    for (char& c : bytes) c = static_cast<char>(rng() % 3 == 0 ? 255 : rng());
    size_t plaats = 32;
    for (const char* p = sel_letters; *p != 0 && plaats + 2 < bytes.size(); ++p) {
      bytes[plaats] = *p;  // most fields are met, with values out of all bounds
      bytes[plaats + 1] = static_cast<char>(rng() % 3 == 0 ? rng() : 255);
      plaats += 2 + rng() % 12;
    }
    std::ofstream(stroom_naam(soort, 5), std::ios::binary) << bytes;
    sel_lees(5);
    EXPECT_TRUE(sel_rec.doelgroep[10] == 0 && sel_rec.seizoen[2] == 0) << zaad;
    EXPECT_TRUE(sel_rec.stdmod <= 2 && sel_rec.kenmerk_nr <= 9) << zaad;
    for (const char* p = sel_letters; *p != 0; ++p) {
      for (const SelWijze w : {SelWijze::scherm, SelWijze::alles, SelWijze::gezet}) {
        sel_wijze = w;
        EXPECT_LT(sel_regel(*p).een.size(), 200u) << zaad << *p;
      }
    }
    sel_wijze = SelWijze::scherm;
    sel_aanvullen();
    sel_schrijf(6);
    sel_lees(6);
  }
}

TEST_F(Selectie, AnotherKindIsNeverFoundAndSlotZeroIsReadAtTheStart) {
  sel_start(13);
  sel_rec.artgroep_van = 300;
  sel_status['b'] = SEL_INGEVOERD;
  sel_schrijf(0);
  EXPECT_EQ(Keten::bytes("DTSEL013.000", 32, 99).size(), 2u * 13 + 4);
  sel_start(18);
  EXPECT_EQ(sel_rec.artgroep_van, 0u);
  sel_start(13);
  EXPECT_EQ(sel_rec.artgroep_van, 300u);
  EXPECT_EQ(sel_vorig.artgroep_van, 300u);
  sel_rec = {};
  sel_start(0);
  EXPECT_EQ(sel_rec.artgroep_van, 300u);
  sel_start(22);
  sel_schrijf(0);
  EXPECT_FALSE(file_exists("DTSEL022.000"));
}

TEST_F(Selectie, DefaultsAreFilledAndEnteredFieldsOnlyAtTheirEmptyEnds) {
  sel_standaard(13);
  sel_aanvullen();
  EXPECT_TRUE(sel_rec.artgroep_tm == 100000 && sel_rec.kleur_tm == 1000);
  EXPECT_TRUE(sel_rec.jaar_tm == 29990 && sel_rec.deelseizoen[9] == 1);
  EXPECT_EQ(sel_rec.inkoopcode[0], 0);  // not a field of the kind

  sel_standaard(1);
  sel_rec.dat_van = 40000;
  sel_status['H'] = SEL_INGEVOERD;
  sel_rec.begin_tm = 41000;
  sel_status['O'] = SEL_INGEVOERD;
  sel_rec.stdmod = 2;
  sel_status['h'] = SEL_INGEVOERD;
  sel_aanvullen();
  EXPECT_TRUE(sel_rec.dat_van == 40000 && sel_rec.dat_tm == date_today());
  EXPECT_TRUE(sel_rec.begin_van == date_today() && sel_rec.begin_tm == 41000);
  EXPECT_TRUE(sel_rec.eind_tm == DATUM_LAATSTE && sel_rec.jaar_van == 10);
  EXPECT_EQ(sel_rec.filialen[31], 0xFF);

  sel_standaard(14);
  EXPECT_EQ(sel_status['C'], SEL_INGEVOERD);
  sel_aanvullen();
  const uint16_t eerste = date_number(DATUM_EERSTE);
  EXPECT_TRUE(sel_rec.creatie_tm == eerste && sel_rec.orddat == eerste && sel_rec.dat_tm == eerste);
  sel_standaard(10);
  sel_aanvullen();
  EXPECT_EQ(sel_rec.creatie_tm, date_today());
}

TEST_F(Selectie, AChainOfOneBranchHasNoBranchFieldAndAllBranches) {
  sys_rec1.filialen = 1;
  sel_standaard(12);
  EXPECT_EQ(std::string(sel_letters), "abcSTdefhijgGFD");
  memset(sel_rec.filialen, 0, sizeof sel_rec.filialen);
  sel_aanvullen();
  EXPECT_EQ(sel_rec.filialen[0], 0xFF);
  sys_rec1.opties2 = 4;
  sel_standaard(10);
  EXPECT_EQ(std::string(sel_letters), "abcSTdefhijgGWyzY");
}

TEST_F(Selectie, ABranchMapFromOutsideCountsUnlessItIsEmptyOrFull) {
  sel_standaard(12);
  uint8_t map[32] = {4};
  sel_filialen(map);
  EXPECT_EQ(sel_status['l'], SEL_INGEVOERD);
  map[0] = 0;
  sel_filialen(map);
  EXPECT_EQ(sel_status['l'], CODE_ALLE);
  memset(map, 0xFF, sizeof map);
  sel_status['l'] = SEL_INGEVOERD;
  sel_filialen(map);
  EXPECT_EQ(sel_status['l'], CODE_ALLE);
}

}  // namespace
