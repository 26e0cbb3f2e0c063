// The pass over order lines and its list, on hand-made lines: modes, branch maps, series that are
// not selected, what a definitive order writes off.
#include <map>

#include "isam/base.h"
#include "main/iofil.h"
#include "main/saldo.h"
#include "main/saldo_pas.h"
#include "main/verzamel.h"
#include "sub/adv_krit.h"
#include "sub/opdrnr.h"
#include "sub/pghdl.h"
#include "tests/support/rapport.h"
#include "tests/support/stukken.h"

namespace {

constexpr Serienr BLOUSE{10100, 10, 1}, BROEK{10200, 310, 4}, VREEMD{10300, 5, 2};

struct Saldo : ::testing::Test {
  Keten keten;

  void SetUp() override {
    keten.open();
    for (const Serienr& nr : {BLOUSE, BROEK, VREEMD}) Keten::voeg(dtser, Keten::serie(nr));
    proef_opdrachten();
    // Selected are the first two.
    proef_selectie(privaat.o, "AKV", {BLOUSE, BROEK});
    dtser_o = IXOPEN(privaat.o, IX_LEES);
    dtser_opzoek = dtser_o;
  }
  void TearDown() override {
    IXCLOSE(dtser_o);
    dtser_o = nullptr;
    dtser_opzoek = dtser;
    iofil('C', 0, nullptr);
  }

  static void regel(int van, int naar, const Serienr& nr, uint32_t stuks, uint32_t opdracht = 0) {
    proef_regel(van, naar, nr, {{1, stuks / 2}, {95, stuks - stuks / 2}}, opdracht);
  }
  /// The list of a run, without its head.
  static std::string lijst(int mode) {
    verzamel_maak(privaat.tp, saldo_sort, saldo_splits);
    saldo_pass(mode);
    const std::string tekst = rapport(saldo_druk);
    const size_t streep = tekst.find(std::string(132, '-') + "\n");
    return streep == std::string::npos ? tekst : tekst.substr(streep + 133);
  }
};

TEST_F(Saldo, SumsProvisionalLinesOfSelectedSeries) {
  regel(0, 3, BLOUSE, 5);
  regel(0, 3, BROEK, 7);
  regel(0, 4, BLOUSE, 1);
  regel(3, 4, BROEK, 2);
  regel(0, 3, BLOUSE, 100, 20000011);  // definitive
  regel(0, 5, VREEMD, 50);             // not selected
  regel(6, 7, BROEK, 0);               // nothing on it
  EXPECT_EQ(lijst(1),
            "Filiaal  0      13      0 stuks\n"
            "Filiaal  3       2     12 stuks\n"
            "Filiaal  4       0      3 stuks\n"
            "-------------------------------\n"
            "TOTAAL                 15 stuks\n");
  EXPECT_EQ(dtpick->block.key_number, 1) << "the pass gives DTPICK its key back";
}

TEST_F(Saldo, CountsPrintModulo65536AndNothingPrintsNothing) {
  EXPECT_EQ(lijst(1), "");
  regel(0, 1, BLOUSE, 65540);
  EXPECT_EQ(lijst(1),
            "Filiaal  0       4      0 stuks\nFiliaal  1       0      4 stuks\n"
            "-------------------------------\nTOTAAL                  4 stuks\n");
}

TEST_F(Saldo, BranchesThatAreOffAreSkipped) {
  for (int van = 0; van < 4; ++van)
    for (int naar = 4; naar < 8; ++naar) regel(van, naar, BLOUSE, 1);
  pg_remove(adv_rec.vanuit_filialen, 1);
  pg_remove(adv_rec.aanvul_filialen, 5);
  EXPECT_EQ(lijst(1),
            "Filiaal  0       3      0 stuks\nFiliaal  2       3      0 stuks\n"
            "Filiaal  3       3      0 stuks\nFiliaal  4       0      3 stuks\n"
            "Filiaal  6       0      3 stuks\nFiliaal  7       0      3 stuks\n"
            "-------------------------------\nTOTAAL                  9 stuks\n");
}

TEST_F(Saldo, OneOrderOnlyAlsoWhenItIsNotSplit) {
  regel(0, 3, BLOUSE, 4, 20000011);
  regel(0, 4, BLOUSE, 6, 20000011);
  regel(0, 4, BROEK, 9, 20000028);
  regel(0, 4, BROEK, 8);
  saldo_opdrachtnr = 20000011;
  const char* soll =
      "Filiaal  0      10      0 stuks\nFiliaal  3       0      4 stuks\nFiliaal  4       0      6 "
      "stuks\n"
      "-------------------------------\nTOTAAL                 10 stuks\n";
  EXPECT_EQ(lijst(5), soll);
  saldo_splits = false;
  EXPECT_EQ(lijst(5), soll);
}

TEST_F(Saldo, ADefinitiveOrderTakesItsLinesOnce) {
  regel(0, 3, BLOUSE, 4);
  regel(0, 3, BROEK, 2);
  regel(1, 3, BLOUSE, 1);
  regel(0, 5, VREEMD, 9);
  lijst(2);
  std::map<std::pair<int, int>, uint32_t> nummers;
  int definitief = 0;
  for (const DtPick& r : proef_inhoud<DtPick>(dtpick)) {
    if (r.nr == VREEMD) {
      EXPECT_EQ(r.opdrachtnr, 0u);
      continue;
    }
    ++definitief;
    EXPECT_TRUE(opdrnr_ok(std::to_string(r.opdrachtnr).c_str()));
    EXPECT_EQ(r.orderdatum, date_today());
    const auto [plaats, nieuw] = nummers.try_emplace({r.vanfil, r.naarfil}, r.opdrachtnr);
    EXPECT_TRUE(nieuw || plaats->second == r.opdrachtnr) << "one number a pair";
  }
  EXPECT_EQ(definitief, 3);
  EXPECT_EQ(nummers.size(), 2u);
  EXPECT_EQ(lijst(1), "") << "the other provisional line is of a series that is not selected";
  EXPECT_EQ(IXCHECK("DTPICK"), 0);
}

/// Two labels sold in branch 3 of a size of which one piece comes, one of a size of which none
/// does.
TEST_F(Saldo, WhatIsReplenishedIsWrittenOff) {
  const auto verkocht = [](uint8_t maat, uint16_t datum) {
    Etiket e = proef_etiket(BLOUSE, ETI_VERKOPEN, maat, 3);
    e.vrkdat = datum;
    const int32_t nummer = proef_stuk(e);
    Keten::voeg(dtaanv, DtAanv{BLOUSE, static_cast<uint32_t>(nummer)});
    return static_cast<uint32_t>(nummer);
  };
  const uint16_t vandaag = date_today();
  verkocht(1, vandaag);
  const uint32_t tweede = verkocht(1, vandaag);
  const uint32_t andere_maat = verkocht(2, vandaag);
  verkocht(3, static_cast<uint16_t>(vandaag - 40));  // older than is kept
  Keten::voeg(dtaanv, DtAanv{BLOUSE, 29999});
  regel(0, 3, BLOUSE, 2);  // one piece of size 1, one of size 95
  lijst(2);
  std::vector<uint32_t> over;
  for (const DtAanv& rec : proef_inhoud<DtAanv>(dtaanv)) over.push_back(rec.etiket);
  EXPECT_EQ(over, (std::vector<uint32_t>{tweede, andere_maat}));
}

TEST_F(Saldo, TheMenuLooksForBothKindsOfLines) {
  EXPECT_EQ(dtpick_soorten(), 0);
  regel(2, 3, BLOUSE, 1, 20000011);
  regel(2, 3, BROEK, 1, 20000011);
  EXPECT_EQ(dtpick_soorten(), 2);
  regel(9, 3, BLOUSE, 1);
  EXPECT_EQ(dtpick_soorten(), 3);
  IXINIT(dtpick);
  regel(9, 3, BLOUSE, 1);
  EXPECT_EQ(dtpick_soorten(), 1);
}

}  // namespace
