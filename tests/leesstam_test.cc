// Reads of the master files, and the definitions that all tables are made from.

#include "sub/leesstam.h"
#include "sub/tabeldef.h"
#include "tests/support/stukken.h"

namespace {

struct Stam : testing::Test {
  Keten keten;
  Stam() { keten.open(); }

  static void ean(const char* code, char soort, uint8_t maat = 0) {
    proef_ean(code, soort, {10100, 10, 1}, maat);
  }
};

TEST_F(Stam, EveryTableIsMadeSoundAndAsItsRecords) {
  for (const TabelDef& def : tabel_alle()) {
    EXPECT_EQ(IXCHECK(def.name), 0) << def.name;
    EXPECT_EQ(tabel_zoek(def.name), &def);
  }
  EXPECT_EQ(tabel_zoek("DTXYZ"), nullptr);
  struct {
    const ICB* icb;
    int lengte, sleutels, laatste;  // bytes of the last key
  } const soll[] = {{dtser, 200, 3, 9}, {dtpick, 404, 3, 14}, {dtgo, 28, 3, 12},
                    {dtfin, 32, 2, 10}, {dtean, 28, 2, 14},   {dtmerk, 76, 3, 14},
                    {dtmaat, 404, 1, 2}};
  for (const auto& s : soll) {
    EXPECT_EQ(s.icb->record_length, s.lengte) << s.icb->name;
    EXPECT_EQ(s.icb->key_count, s.sleutels) << s.icb->name;
    EXPECT_EQ(s.icb->keys[s.sleutels - 1].key_length, s.laatste) << s.icb->name;
    EXPECT_EQ(s.icb->keys[0].dup, 'N') << s.icb->name;
  }
}

TEST_F(Stam, AFailedReadIsNotRememberedAsFound) {
  DtMerk merk{};
  EXPECT_FALSE(lees_merk(dtmerk, &merk, 7));
  EXPECT_FALSE(lees_merk(dtmerk, &merk, 7));
  proef_merk(7, "Duinroos");
  EXPECT_TRUE(lees_merk(dtmerk, &merk, 7));
  EXPECT_EQ(veld_tekst(merk.naam, sizeof merk.naam), "Duinroos");
  merk.naam[0] = 'X';
  EXPECT_TRUE(lees_merk(dtmerk, &merk, 7));  // the buffer holds it: not read again
  EXPECT_EQ(merk.naam[0], 'X');
  EXPECT_FALSE(lees_merk(dtmerk, &merk, 8));
  EXPECT_EQ(merk.naam[0], 0);
  EXPECT_TRUE(lees_merk(&merk, 7));
}

TEST_F(Stam, ReadsLeaveTheFileOnItsKey) {
  Keten::serie({10100, 10, 1});
  IXSWITCH(dtser, 3);
  DtSer serie{};
  EXPECT_TRUE(lees_serie(dtser, &serie, {10100, 10, 1}));
  EXPECT_EQ(dtser->block.key_number, 3);
  serie.merk = 99;
  EXPECT_TRUE(lees_serie(dtser, &serie, {10100, 10, 1}));  // a series is always read
  EXPECT_EQ(serie.merk, 1);
}

TEST_F(Stam, EanCodesWithALeadingZero) {
  ean("123456789012", 'E');
  ean("8711234567891", 'E');
  DtEan rec{};
  EXPECT_TRUE(lees_ean(dtean, &rec, "0123456789012"));
  EXPECT_EQ(std::string(rec.code, 12), "123456789012");
  EXPECT_EQ(rec.artgroep, 10100u);
  EXPECT_TRUE(lees_ean(dtean, &rec, "8711234567891  "));
  EXPECT_FALSE(lees_ean(dtean, &rec, "0999999999999"));
  EXPECT_EQ(std::string(rec.code, 13), "0999999999999");  // the code asked for, put back
  EXPECT_EQ(rec.artgroep, 0u);
  EXPECT_FALSE(lees_ean(dtean, &rec, "0999999999999"));
  EXPECT_FALSE(lees_ean(dtean, &rec, ""));
}

TEST_F(Stam, TheSizeCodeOfASeriesAndSize) {
  ean("2013000001000", 'M', 17);
  ean("8711234567891", 'E', 18);
  DtEan rec{};
  EXPECT_TRUE(lees_ean_maat(dtean, &rec, {10100, 10, 1}, 17));
  EXPECT_EQ(std::string(rec.code, 13), "2013000001000");
  EXPECT_FALSE(lees_ean_maat(dtean, &rec, {10100, 10, 1}, 18));  // of another kind
  EXPECT_FALSE(lees_ean_maat(dtean, &rec, {10100, 10, 2}, 17));
  EXPECT_EQ(dtean->block.key_number, 1);
}

}  // namespace
