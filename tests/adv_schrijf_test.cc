// Order lines out of accepted movements: what is written balances with what was wanted, lines that
// still fit are kept, and what has no other side writes nothing.
#include <filesystem>
#include <map>
#include <random>

#include "main/werktabel.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_vul_intern.h"
#include "sub/advies.h"
#include "sub/tabeldef.h"
#include "tests/support/stukken.h"

namespace {

constexpr Serienr BLOUSE{10100, 10, 1}, BROEK{10200, 310, 4};
constexpr int FILIALEN = 12;
using Cel = std::pair<int, int>;         // branch and size
using Lijn = std::tuple<int, int, int>;  // from, to, size

struct AdvSchrijf : ::testing::Test {
  Keten keten{FILIALEN};

  void SetUp() override {
    keten.open();
    werktabellen_open();
    adv_maak(advies, FILIALEN);
    advies.maten = {7, 1, 2, 3};
    ser_rec = {};
    ser_rec.nr = BLOUSE;
  }
  void TearDown() override {
    advies = {};
    werktabellen_sluit();
  }

  static void wens(int filiaal, int maat, int32_t n) {
    advies.m_voorlopig[static_cast<size_t>(filiaal)][static_cast<size_t>(maat)] += n;
  }
  static void oud(int van, int naar, int maat, int32_t n) {
    TpckRec rec{static_cast<uint8_t>(van), static_cast<uint8_t>(naar), static_cast<uint8_t>(maat),
                0, n};
    IXWRITE(tpck, &rec);
  }
  /// All lines in key order, "from>to/size=pieces", an order number behind "#".
  static std::string regels() {
    std::string uit;
    for (const DtPick& rec : proef_inhoud<DtPick>(dtpick)) {
      uit += str_format("%s %d>%d", uit.empty() ? "" : ",", rec.vanfil, rec.naarfil);
      if (!(rec.nr == BLOUSE)) uit += str_format("@%ld", uint32_t{rec.nr.artgroep});
      if (rec.opdrachtnr != 0) uit += str_format("#%ld", uint32_t{rec.opdrachtnr});
      for (int m = 0; m < MATEN; ++m)
        if (rec.aantal[m] != 0) uit += str_format("/%d=%ld", m, uint32_t{rec.aantal[m]});
    }
    return uit;
  }
  static std::map<Lijn, int64_t> lijnen() {
    std::map<Lijn, int64_t> uit;
    for (const DtPick& rec : proef_inhoud<DtPick>(dtpick)) {
      EXPECT_EQ(rec.aantal[0], 0u);
      EXPECT_TRUE(rec.nr == BLOUSE && rec.opdrachtnr == 0 && rec.orderdatum == 0);
      for (int m = 1; m < MATEN; ++m)
        if (rec.aantal[m] != 0) uit[{rec.vanfil, rec.naarfil, m}] = rec.aantal[m];
    }
    return uit;
  }
};

struct Geval {
  std::vector<Lijn> wensen;  // branch, size, pieces: given below zero
  std::vector<std::tuple<int, int, int, int>> oud;
  const char* soll;
};

TEST_F(AdvSchrijf, PairsInOrderOfBranchAndOldLinesAsFarAsTheyFit) {
  const Geval GEVALLEN[] = {
      {{{5, 1, -3}, {2, 1, -2}, {2, 7, -1}, {0, 1, 1}, {3, 7, 1}, {9, 1, 4}},
       {},
       " 2>0/1=1, 2>3/7=1, 2>9/1=1, 5>9/1=3"},
      // Wants only two now; wants nothing any more; of a size that nobody gives; from a branch that
      // gives nothing.
      {{{1, 1, -5}, {4, 1, 2}, {3, 1, 2}, {8, 1, 1}},
       {{1, 4, 1, 4}, {1, 6, 1, 3}, {1, 8, 2, 1}, {2, 3, 1, 2}},
       " 1>3/1=2, 1>4/1=2, 1>8/1=1"},
      // Not a size of the series; no such pair, branch or size.
      {{{1, 1, -5}, {2, 2, 4}, {3, 1, 2}, {6, 40, -1}, {7, 40, 1}},
       {{3, 3, 1, 9}, {1, 255, 1, 9}, {250, 3, 1, 9}, {1, 3, 200, 9}},
       " 1>3/1=2"},
      {{{1, 1, INT32_MIN}, {2, 1, INT32_MAX}, {3, 1, 1}}, {}, " 1>2/1=2147483647, 1>3/1=1"},
  };
  for (const Geval& g : GEVALLEN) {
    for (ICB* tabel : {dtpick, tpck}) IXINIT(tabel);
    matrix_wis(advies.m_voorlopig);
    for (const auto& [filiaal, maat, n] : g.wensen) wens(filiaal, maat, n);
    for (const auto& [van, naar, maat, n] : g.oud) oud(van, naar, maat, n);
    const MaatMatrix voor = advies.m_voorlopig;
    opdracht_schrijven();
    EXPECT_EQ(regels(), g.soll);
    EXPECT_TRUE(advies.m_voorlopig == voor) << "works on a copy";
    EXPECT_TRUE(proef_inhoud<TpckRec>(tpck).empty()) << "for the next series";
  }
}

TEST_F(AdvSchrijf, ALineIsAddedToTheProvisionalOneOfItsPair) {
  proef_regel(1, 2, BLOUSE, {{1, 4}});
  proef_regel(1, 2, BLOUSE, {{1, 8}}, 20000011);
  proef_regel(1, 2, BROEK, {{1, 16}});
  std::array<uint32_t, MATEN> rij{};
  rij[1] = 1;
  rij[95] = 2;
  opdracht_regel(1, 2, rij);
  opdracht_regel(2, 1, rij);
  EXPECT_EQ(regels(), " 1>2/1=5/95=2, 1>2#20000011/1=8, 1>2@10200/1=16, 2>1/1=1/95=2");
}

TEST_F(AdvSchrijf, OnlyProvisionalLinesOfTheSeriesAreDeleted) {
  for (int van = 0; van < 3; ++van)
    for (const uint32_t opdracht : {0u, 20000011u, 20000028u}) {
      proef_regel(van, 5, BLOUSE, {{1, 1}}, opdracht);
      if (van == 1) proef_regel(van, 5, BROEK, {{1, 1}}, opdracht);
    }
  proef_regel(1, 6, BLOUSE, {{1, 1}});
  opdrachten_wissen(BLOUSE);
  EXPECT_EQ(regels(),
            " 0>5#20000011/1=1, 0>5#20000028/1=1, 1>5#20000011/1=1, 1>5#20000028/1=1, "
            "1>5@10200/1=1, 1>5@10200#20000011/1=1, 1>5@10200#20000028/1=1, 2>5#20000011/1=1, "
            "2>5#20000028/1=1");
  for (uint32_t label = 1; label < 40; ++label)
    Keten::voeg(dtaanv, DtAanv{label % 2 != 0 ? BLOUSE : BROEK, label});
  aanvul_wissen(BLOUSE);
  const auto over = proef_inhoud<DtAanv>(dtaanv);
  EXPECT_EQ(over.size(), 19u);
  for (const DtAanv& rec : over) EXPECT_TRUE(rec.nr == BROEK);
  EXPECT_EQ(IXCHECK("DTPICK"), 4) << "nothing but deleted slots";
}

/// What a run that crashed left is used when it is ours and sound, and made anew when it is not.
TEST_F(AdvSchrijf, TheWorkTableOfACrashIsKeptOnlyWhenItIsSound) {
  const auto regels_na = [] {
    IXCLOSE(tpck);
    werktabellen_open();
    EXPECT_EQ(tpck->record_length, 8);
    EXPECT_TRUE(file_exists((std::string(privaat.tmpgo) + ".INX").c_str()));
    return tpck->record_count;
  };
  oud(1, 2, 3, 4);
  EXPECT_EQ(regels_na(), 1);
  std::filesystem::resize_file(std::string(privaat.tpck) + ".INX", 1000);
  EXPECT_EQ(regels_na(), 0);
  oud(1, 2, 3, 4);
  std::filesystem::remove(std::string(privaat.tpck) + ".TXT");
  EXPECT_EQ(regels_na(), 0);
  tabel_maak(TABEL_TMP_BROWSE, privaat.tpck);
  EXPECT_EQ(regels_na(), 0);
  werktabellen_sluit();
  EXPECT_EQ(tpck, nullptr);
  EXPECT_FALSE(file_exists((std::string(privaat.tpck) + ".TXT").c_str()));
  EXPECT_FALSE(file_exists((std::string(privaat.tmpgo) + ".INX").c_str()));
}

/// Random wishes and old lines. Per size as much moves as the smaller of what is given and what is
/// wanted; nobody gives or gets more than it should; every old line is kept as far as it fits when
/// those before it are.
TEST_F(AdvSchrijf, LinesBalanceWithWhatWasWanted) {
  for (unsigned zaad = 1; zaad <= 200; ++zaad) {
    SCOPED_TRACE("seed " + std::to_string(zaad));
    std::mt19937 toeval(zaad);
    const auto getal = [&](int van, int tm) {
      return van + static_cast<int>(toeval() % static_cast<unsigned>(tm - van + 1));
    };
    for (ICB* tabel : {dtpick, tpck}) IXINIT(tabel);
    matrix_wis(advies.m_voorlopig);
    const bool in_evenwicht = getal(0, 1) != 0;
    for (int n = getal(0, 40); n > 0; --n) {
      const uint8_t maat = advies.maten[static_cast<size_t>(getal(0, 3))];
      const int stuks = getal(1, 9);
      wens(getal(0, FILIALEN - 1), maat, -stuks);
      wens(getal(0, FILIALEN - 1), maat, in_evenwicht ? stuks : getal(0, 9));
    }
    std::map<Lijn, int32_t> oude;
    for (int n = getal(0, 30); n > 0; --n)
      oude[{getal(0, FILIALEN - 1), getal(0, FILIALEN - 1),
            advies.maten[static_cast<size_t>(getal(0, 3))]}] = getal(1, 9);
    std::map<Cel, int64_t> over;
    std::map<int, std::pair<int64_t, int64_t>> per_maat;  // given, wanted
    for (int b = 0; b < FILIALEN; ++b)
      for (const uint8_t m : advies.maten) {
        const int32_t n = advies.m_voorlopig[static_cast<size_t>(b)][m];
        over[{b, m}] = n;
        (n < 0 ? per_maat[m].first : per_maat[m].second) += std::abs(n);
      }
    std::map<Lijn, int64_t> gehouden;
    for (const auto& [lijn, n] : oude) {
      const auto [van, naar, m] = lijn;
      oud(van, naar, m, n);
      const int64_t past = std::min({int64_t{n}, -over[{van, m}], over[{naar, m}]});
      if (past <= 0) continue;
      gehouden[lijn] = past;
      over[{van, m}] += past;
      over[{naar, m}] -= past;
    }
    opdracht_schrijven();
    std::map<Cel, int64_t> netto;
    std::map<int, int64_t> verplaatst;
    for (const auto& [lijn, n] : lijnen()) {
      const auto [van, naar, m] = lijn;
      netto[{van, m}] -= n;
      netto[{naar, m}] += n;
      verplaatst[m] += n;
    }
    for (int b = 0; b < FILIALEN; ++b)
      for (const uint8_t m : advies.maten) {
        const int64_t wil = advies.m_voorlopig[static_cast<size_t>(b)][m], n = netto[{b, m}];
        ASSERT_TRUE(wil < 0 ? n >= wil && n <= 0 : n <= wil && n >= 0) << b << "/" << int{m};
        ASSERT_TRUE(!in_evenwicht || n == wil) << b << "/" << int{m};
      }
    for (const auto& [m, n] : per_maat)
      ASSERT_EQ(verplaatst[m], std::min(n.first, n.second)) << "size " << m;
    auto geschreven = lijnen();
    for (const auto& [lijn, n] : gehouden) ASSERT_GE(geschreven[lijn], n);
  }
}

}  // namespace
