// Transactions by size: which pieces move, how chains work out within a day, and what remains.
#include <numeric>

#include "tests/support/dc_proef.h"

namespace {

struct DcMaat : DcProef {
  static constexpr const char *S = "8711111111119", *M = "8722222222228";

  void SetUp() override {
    DcProef::SetUp();
    met([] {
      proef_ean(S, 'M', JAS, 1);
      proef_ean(M, 'M', JAS, 2);
    });
  }
  void voorraad(int filiaal, int stuks, uint8_t maat = 1) {
    met([&] {
      for (int i = 0; i < stuks; ++i) leg(JAS, ETI_VOORRAAD, static_cast<uint8_t>(filiaal), maat);
    });
  }
  /// "1:3 2:4 1>2:5", by place; sold and corrected pieces with their letter.
  std::string stand() {
    std::map<std::string, int> n;
    met([&] { elk(JAS, [&](int32_t, const Etiket& e) { ++n[staat(e)]; }); });
    std::string uit;
    for (const auto& [waar, aantal] : n)
      uit += (uit.empty() ? "" : " ") + waar + ":" + std::to_string(aantal);
    return uit;
  }
  /// The last column of the list.
  std::string opmerkingen(const std::vector<DcRegel>& r) {
    std::istringstream in(verwerk(r));
    std::string uit;
    for (std::string regel; std::getline(in, regel);) uit += regel.substr(65) + "\n";
    return uit;
  }
};

TEST_F(DcMaat, SendsAndReceivesDrawOnTheSameStockWithoutTransit) {
  transit = false;
  voorraad(1, 5);
  voorraad(1, 9, 2);
  EXPECT_EQ(opmerkingen({zend(1, 2, S, 3), ontvang(1, 2, S, 3)}),
            "  3  AFK  Maat S   1 stuks te weinig voorraad\n");
  EXPECT_EQ(stand(), "1:9 2:5");
  // Nothing in 3 until it comes from 2: a later round serves the earlier pair.
  EXPECT_EQ(opmerkingen({zend(3, 1, S, 4), zend(2, 3, S, 5)}), "");
  EXPECT_EQ(stand(), "1:13 3:1");
}

TEST_F(DcMaat, ToAndFroWithHugeCountsComesToAnEnd) {
  for (const bool aan : {false, true}) {
    transit = aan;
    voorraad(1, 1);
    bestand({zend(1, 2, S, 4000000000u), zend(1, 2, S, 4000000000u),
             zend(2, 1, S, DC_GEEN_AANTAL - 1), ontvang(1, 2, S, 4000000000u),
             ontvang(2, 1, S, 4000000000u)});
    const std::string lijst = regels_van(loop(false));
    EXPECT_NE(lijst.find("te weinig voorraad"), std::string::npos);
    EXPECT_NE(lijst.find(" 4294"), std::string::npos) << "the sum stays below the mark";
  }
}

TEST_F(DcMaat, AChainOfADayWithTransit) {
  voorraad(1, 3);
  EXPECT_EQ(opmerkingen({ontvang(2, 3, S, 2), zend(2, 3, S, 2), ontvang(1, 2, S, 3),
                         zend(1, 2, S, 1), zend(1, 2, S, 2, 20000011)}),
            "");
  EXPECT_EQ(stand(), "2:1 3:2");
  const auto go = alles<DtGo>(dtgo);
  EXPECT_EQ(go.size(), 3u);
  EXPECT_EQ(std::accumulate(go.begin(), go.end(), 0,
                            [](int n, const DtGo& g) { return n + g.afgewerkt; }),
            3);
  EXPECT_EQ(alles<DtFin>(dtfin).size(), 5u);
  EXPECT_EQ(alles<DtIo>(dtio).size(), 5u);
}

TEST_F(DcMaat, ADocumentTakesItsOwnPiecesPrintedOrNot) {
  met([&] {
    onderweg(JAS, 1, 2);
    const int32_t n = onderweg(JAS, 1, 2, 20000011);
    DtGo go{};
    go.etiket = static_cast<uint32_t>(n);
    ASSERT_TRUE(IXREAD(dtgo, &go));
    go.printdatum = DAG;
    IXWRITE(dtgo, &go);
    weg(JAS, ETI_VERKOPEN, 1, 2, DAG, 20000011);
    weg(JAS, ETI_VERKOPEN, 1, 2, DAG - 1, 20000011);  // sold too early
    onderweg(JAS, 1, 3, 20000011);
  });
  // A printed one is nobody's without its number; the others do not wait for a document.
  EXPECT_EQ(opmerkingen({ontvang(1, 2, S, 5)}),
            "  5  SGN  Maat S   1 stuks niet meer op voorraad\n"
            "  5  AFK  Maat S   3 stuks niet onderweg zonder documentnummer\n");
  EXPECT_EQ(stand(), "1>2:1 1>3:1 2:1 2V:2");
  EXPECT_EQ(opmerkingen({ontvang(1, 2, S, 4, 20000011), zend(1, 2, S, 1, 20000011)}),
            "  4  AFK  Maat S   3 stuks niet onderweg met dit documentnummer\n"
            "  1  AFK  Maat S   1 stuks te weinig voorraad\n");
  EXPECT_EQ(stand(), "1>3:1 2:2 2V:2");
}

TEST_F(DcMaat, WhatAsksForNothingAndWhatIsThereSaysSo) {
  voorraad(1, 2);
  EXPECT_EQ(opmerkingen({zend(1, 2, S, 0), zend(1, 1, S, 2), ontvang(1, 2, M, 0)}),
            "  2  AFK  Reeds aanwezig in filiaal\n"
            "  0  AFK  Maat S   0 stuks te weinig voorraad\n"
            "  0  AFK  Maat M   0 stuks niet onderweg zonder documentnummer\n");
  EXPECT_EQ(stand(), "1:2");
}

TEST_F(DcMaat, ASeriesThatCannotBeReadIsLeftAlone) {
  voorraad(1, 12);  // two blocks
  const std::string heel = bytes_van("DTETI.TXT");
  for (const int32_t volgende : {0, -5, 2999999}) {
    std::string bytes = heel;
    const size_t plaats = bytes.size() / 376 == 2 ? 12 : 0;
    ASSERT_EQ(plaats, 12u);
    memcpy(bytes.data() + plaats, &volgende, sizeof volgende);
    zet_bytes("DTETI.TXT", bytes);
    EXPECT_EQ(opmerkingen({zend(1, 2, S, 1)}),
              "  1  AFK  Etiketten van serie niet leesbaar (check!)\n")
        << volgende;
    EXPECT_TRUE(bytes_van("DTETI.TXT") == bytes);
  }
  zet_bytes("DTETI.TXT", heel);
  EXPECT_EQ(opmerkingen({zend(1, 2, S, 1)}), "");
}

}  // namespace
