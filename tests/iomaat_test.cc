// Sizes: the four orders of a size bar, and changes that keep index and position apart.
#include <cstring>

#include "isam/base.h"
#include "sub/bitarr.h"
#include "sub/iomaat.h"
#include "tests/support/keten.h"

namespace {

struct Maten : testing::Test {
  Keten keten;
  MaatHandle* h = nullptr;

  // Size type 2: positions 1 to 7 are XS S M L XL XXL 3XL; M was made first, so it has index 1.
  Maten() {
    keten.open();
    const std::pair<const char*, uint8_t> maten[] = {{"  M", 1}, {"  S", 1}, {"  L", 3}, {" XS", 1},
                                                     {" XL", 5}, {"XXL", 6}, {"3XL", 7}};
    open(MT_WIJZIG);
    for (const auto& [tekst, positie] : maten) EXPECT_TRUE(voegtoe(tekst, positie));
    mtclose(h);
    open(0);
  }
  ~Maten() override {
    if (h != nullptr) mtclose(h);
  }
  void open(int vlaggen, uint8_t land = 1) { h = mtopen(land, 2, vlaggen); }
  void heropen(int vlaggen, uint8_t land = 1) {
    mtclose(h);
    open(vlaggen, land);
  }
  bool voegtoe(const char* tekst, uint8_t positie, uint8_t maat = 0) {
    MaatRec rec{};
    rec.positie = positie;
    rec.maat = maat;
    std::memcpy(rec.tekst, tekst, 3);
    return mtvoegtoe(h, &rec);
  }
  /// The whole walk by a key: texts, with the size index behind them.
  std::string loop(int sleutel, char begin = 'F', char stap = 'N', MaatRec rec = {}) {
    std::string uit;
    int geteld = 0;
    for (bool er = mtread(h, begin, &rec, sleutel); er && geteld < 100;
         er = mtread(h, stap, &rec, sleutel), ++geteld) {
      std::string tekst = veld_tekst(rec.tekst, 3);
      uit += str_format("%s%d ", str_ltrim(tekst.data()), rec.maat);
    }
    return uit;
  }
  static DtMaat record(uint8_t land) {
    DtMaat rec{};
    rec.land = land;
    rec.maatsoort = 2;
    EXPECT_TRUE(IXREAD(dtmaat, &rec));
    return rec;
  }
};

TEST_F(Maten, EachKeyHasItsOrder) {
  EXPECT_EQ(loop(1), "M1 S2 L3 XS4 XL5 XXL6 3XL7 ");
  EXPECT_EQ(loop(2), "XS4 S2 M1 L3 XL5 XXL6 3XL7 ");
  EXPECT_EQ(loop(3), "L3 M1 S2 XL5 XS4 3XL7 XXL6 ");
  uint8_t bits[12] = {};
  for (const int maat : {1, 4, 6}) bit_zet(bits, maat);
  mtbits(h, bits);
  EXPECT_EQ(loop(4), "XS4 M1 XXL6 ");
  const uint8_t geen[12] = {};
  mtbits(h, geen);
  EXPECT_EQ(loop(4), "");
}

TEST_F(Maten, EdgesOfTheWalks) {
  MaatRec rec{};
  rec.maat = 7;
  EXPECT_FALSE(mtread(h, 'N', &rec, 1));
  EXPECT_TRUE(rec.maat == 7 && rec.positie == 0) << "as it came";
  EXPECT_TRUE(mtread(h, 'P', &rec, 1));
  EXPECT_TRUE(rec.maat == 6 && rec.positie == 6);
  rec = {};
  EXPECT_FALSE(mtread(h, 'R', &rec, 1));
  for (const uint8_t van : {uint8_t{0}, uint8_t{1}, uint8_t{96}}) {
    rec = {};
    rec.positie = van;
    EXPECT_TRUE(mtread(h, 'P', &rec, 2));  // goes on at the end of the bar
    EXPECT_EQ(rec.maat, 7) << int{van};
  }
  rec.positie = 7;
  EXPECT_FALSE(mtread(h, 'N', &rec, 2));
  std::memcpy(rec.tekst, "  P", 3);
  EXPECT_FALSE(mtread(h, 'R', &rec, 3));
  EXPECT_TRUE(mtread(h, 'F', &rec, 3));
  EXPECT_EQ(std::string(rec.tekst, 3), "  S");
  EXPECT_TRUE(mtread(h, 'P', &rec, 3));
  EXPECT_EQ(std::string(rec.tekst, 3), "  M");
  rec = {};
  rec.rang = 40;
  EXPECT_TRUE(mtread(h, 'P', &rec, 4));
  EXPECT_EQ(rec.rang, 7);
  EXPECT_FALSE(mtread(h, 'N', &rec, 4));
  rec.rang = 1;
  EXPECT_FALSE(mtread(h, 'P', &rec, 4));
  EXPECT_EQ(rec.rang, 1);
}

TEST_F(Maten, IndexesStayWhenPositionsMove) {
  heropen(MT_WIJZIG);
  EXPECT_TRUE(mtverwijder(h, 4));  // XS, position 1
  EXPECT_FALSE(mtverwijder(h, 4));
  EXPECT_EQ(loop(2), "S2 M1 L3 XL5 XXL6 3XL7 ");
  EXPECT_FALSE(voegtoe("4XL", 8));  // one behind the next
  EXPECT_FALSE(voegtoe("4XL", 0));
  EXPECT_FALSE(voegtoe("4XL", 7, 5));  // index in use
  EXPECT_TRUE(voegtoe("4XL", 7));      // takes index 4
  EXPECT_TRUE(voegtoe("XXS", 1, 20));
  MaatRec rec{};
  rec.maat = 1;
  rec.positie = 2;
  std::memcpy(rec.tekst, "MED", 3);
  EXPECT_FALSE(mtwijzig(h, &rec));  // M stands on 3 now
  rec.positie = 3;
  EXPECT_TRUE(mtwijzig(h, &rec));
  heropen(0);
  EXPECT_EQ(loop(2), "XXS20 S2 MED1 L3 XL5 XXL6 3XL7 4XL4 ");
  EXPECT_EQ(loop(4), loop(2));  // the list's own map follows
}

TEST_F(Maten, OwnAndForeignRecordsAreInverseTables) {
  DtMaat vreemd{};
  vreemd.land = 2;
  vreemd.maatsoort = 2;
  const DtMaat eigen = record(1);
  for (size_t i = 1; i < MATEN; ++i) {
    if (eigen.ingang[i].ander == 0) continue;
    MaatIngang& op_plaats = vreemd.ingang[eigen.ingang[i].ander];
    std::memcpy(op_plaats.tekst, i == 1 ? "T40" : eigen.ingang[i].tekst, 3);
    op_plaats.ander = static_cast<uint8_t>(i);
  }
  Keten::voeg(dtmaat, vreemd);
  EXPECT_EQ(eigen.ingang[4].ander, 1);  // by index: XS has position 1
  heropen(MT_WIJZIG);
  EXPECT_TRUE(mtverwijder(h, 4));
  heropen(0, 2);
  EXPECT_EQ(loop(2), "S2 T401 L3 XL5 XXL6 3XL7 ");
  EXPECT_EQ(record(2).ingang[2].ander, 1);  // by position: the second is index 1
  EXPECT_EQ(record(1).ingang[1].ander, 2);
  EXPECT_EQ(std::string(record(1).ingang[1].tekst, 3), "  M");
  EXPECT_EQ(record(1).stempel, 2);
  EXPECT_EQ(record(2).stempel, 2);
}

TEST_F(Maten, AnEmptyListHasNoRecordAndAnUnknownTypeNoSizes) {
  heropen(MT_WIJZIG);
  for (uint8_t maat = 1; maat <= 7; ++maat) EXPECT_TRUE(mtverwijder(h, maat));
  heropen(0);
  EXPECT_EQ(loop(1) + loop(2) + loop(3) + loop(4), "");
  EXPECT_EQ(IXCHECK("DTMAAT"), 1);
  MaatRec rec{};
  EXPECT_FALSE(mtread(h, 'P', &rec, 2));
}

TEST_F(Maten, AFullListHolds95) {
  heropen(MT_WIJZIG);
  char tekst[8];
  for (int i = 8; i <= 95; ++i) {
    str_printf(tekst, sizeof tekst, "%3d", i);
    EXPECT_TRUE(voegtoe(tekst, 1)) << i;
  }
  EXPECT_FALSE(voegtoe(" 96", 1));
  MaatRec rec{};
  rec.positie = 1;
  EXPECT_TRUE(mtread(h, 'P', &rec, 2));
  EXPECT_EQ(rec.positie, 95);
  EXPECT_EQ(std::string(rec.tekst, 3), "3XL");
}

TEST_F(Maten, TranslationsFollowTheirSize) {
  heropen(MT_WIJZIG | MT_VERTAALD);
  MaatRec rec{};
  rec.positie = 8;
  std::memcpy(rec.tekst, "4XL", 3);
  std::memcpy(rec.vertaling, "Reus", 4);
  EXPECT_TRUE(mtvoegtoe(h, &rec));
  EXPECT_EQ(rec.maat, 8);
  heropen(MT_VERTAALD);
  rec = {};
  rec.maat = 8;
  EXPECT_TRUE(mtread(h, 'R', &rec, 1));
  EXPECT_EQ(veld_tekst(rec.vertaling, 7), "Reus");
  heropen(MT_WIJZIG | MT_VERTAALD);
  EXPECT_TRUE(mtverwijder(h, 8));
  EXPECT_EQ(IXCHECK("DTMTOM"), 1);
}

TEST(Matrix, WidthFollowsTheLargestQuantity) {
  Maatrij rij{};
  sys_rec20 = {};
  rij[0] = 123456;  // the row's sum does not count
  EXPECT_EQ(maat_breedte(rij.data()), 3);
  rij[95] = 1000;
  EXPECT_EQ(maat_breedte(rij.data()), 4);
  rij[1] = 10000;
  EXPECT_EQ(maat_breedte(rij.data()), 5);
  EXPECT_EQ(maat_kolommen(80, 3), 20);
}

TEST(Matrix, ABranchRowIsReplacedAndTheTotalGrows) {
  MaatMatrix m(13);
  matrix_wis(m);
  std::array<uint32_t, MATEN> rij{};
  rij[1] = 2;
  rij[95] = 3;
  matrix_add(m, 4, rij);
  matrix_add(m, 4, rij);
  EXPECT_EQ(m[4][0], 5);
  EXPECT_EQ(m[4][95], 3);
  EXPECT_EQ(m[12][0], 10);
  EXPECT_EQ(m[12][1], 4);
  matrix_add(m, 12, rij);  // no branch: the total is not a row of its own
  matrix_add(m, 250, rij);
  EXPECT_EQ(m[12][0], 10);
}

}  // namespace
