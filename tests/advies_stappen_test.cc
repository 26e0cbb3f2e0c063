// The rules of the advice one by one, on chains of a few branches.
#include <gtest/gtest.h>

#include "tests/support/advies_proef.h"

namespace {

std::vector<int> leden(const std::bitset<256>& set) {
  std::vector<int> uit;
  for (size_t b = 0; b < set.size(); ++b)
    if (set[b]) uit.push_back(static_cast<int>(b));
  return uit;
}
using Wie = std::vector<int>;
using Orde = std::vector<uint8_t>;

// Sets and service order --------------------------------------------------------------------------

TEST(Verzamelingen, WhoMayGiveFollowsTheSourceAndIsCutAtTheLastBranch) {
  struct Geval {
    int soort, magazijn;
    bool in_vanuit;
    Wie bron;
  };
  for (const Geval& g : {Geval{1, 1, true, {1}},
                         {2, 1, true, {0, 2, 3}},
                         {3, 1, true, {0, 1, 2, 3}},
                         {1, 1, false, {}},
                         {3, 1, false, {0, 2, 3}},
                         {1, 255, true, {}},
                         {2, 255, true, {0, 1, 2, 3}},
                         {1, 4, true, {}}}) {
    AdvProef p(4, 1);
    p.magazijn(g.magazijn);
    p.a.bron_soort = static_cast<uint8_t>(g.soort);
    if (!g.in_vanuit) pg_remove(p.vanuit, 1);
    p.klaar();
    EXPECT_EQ(leden(p.a.bron), g.bron) << g.soort << g.magazijn << g.in_vanuit;
  }
}

TEST(Verzamelingen, ABranchOfTheBrandThatHadNothingDoesNotReceive) {
  AdvProef p(5, 1);
  for (const int b : {0, 1, 2}) pg_add(p.merk, b);
  pg_remove(p.aanvul, 4);
  p.voorraad("1 / . / . / . / 1");
  p.a.m_correctie[1][1] = 1;  // had one, and lost it
  p.klaar();
  EXPECT_EQ(leden(p.a.doel), (Wie{0, 1, 3}));
  EXPECT_EQ(p.a.adv_volgorde, (Orde{1, 0}));  // 3 had nothing; 1 holds less than 0
}

TEST(Verzamelingen, TheOrderIsBySalesThenByWhatIsHeldThenByNumber) {
  AdvProef p(6, 2);
  p.magazijn(5)
      .verkocht("1 . / 1 2 / 2 1 / . 3 / 1 . / 9 .")
      .voorraad("1 . / 2 2 / . 1 / . 1 / 1 . / . .");
  p.a.m_uit[1][1] = 4;  // holds 0, less than 2 and 3
  EXPECT_EQ(p.klaar().a.adv_volgorde, (Orde{1, 2, 3, 0, 4}));
  AdvProef q(2, 1);
  EXPECT_EQ(q.magazijn(0, false).verkocht("1 / .").klaar().a.adv_volgorde, (Orde{0}));
}

TEST(Verzamelingen, SumsAreOfAllSizesAndSizesOutOfBoundsAreNotWalked) {
  AdvProef p(2, 2);
  p.a.m_voorraad[0][1] = 2;
  p.a.m_voorraad[1][95] = 3;
  p.klaar();
  p.a.maten = {0, 2, 1, 96, 255};
  adv_verzamelingen(p.a, p.vanuit, p.aanvul, p.merk);
  EXPECT_EQ(p.a.maten, (Orde{2, 1}));
  EXPECT_EQ(p.a.m_voorraad[1][0], 3);
  EXPECT_EQ(p.a.m_voorraad[2][0], 5);
  EXPECT_EQ(p.a.m_voorraad[2][95], 3);
  adv_wis(p.a);
  EXPECT_EQ(p.a.m_voorraad[2][0], 0);
  EXPECT_TRUE(p.a.maten.empty() && p.a.bron.none() && p.a.adv_volgorde.empty());
}

// Replenishment from the warehouse ----------------------------------------------------------------

/// A pure warehouse 0 with `voorraad`, branches 1 and 2 that ask; 1 comes first.
AdvProef vraagt(const char* voorraad, const char* vraag) {
  AdvProef p(3, 2);
  p.magazijn(0).streef({0, 1, 2}).voorraad(voorraad).verkocht(". . / 9 9 / 5 5").vraag(vraag);
  return p;
}

std::string aanvul(AdvProef& p) {
  aanvul_magazijn(p.a, p.a.r_aanvul);
  return p.tabel(p.a.r_aanvul);
}

TEST(Aanvul, PiecesFollowTheAims) {
  // Weights 1 and 2: the first of equals, then twice the other.
  struct Geval {
    int stuks;
    const char* soll;
  };
  for (const Geval& g : {Geval{1, "-1 . / 1 . / . ."},
                         {2, "-2 . / 1 . / 1 ."},
                         {3, "-3 . / 1 . / 2 ."},
                         {6, "-6 . / 2 . / 4 ."}}) {
    AdvProef p = vraagt((std::to_string(g.stuks) + " .").c_str(), ". . / 9 . / 9 .");
    p.klaar();
    EXPECT_EQ(aanvul(p), g.soll);
  }
}

TEST(Aanvul, WhatABranchHoldsCountsAgainstItAndDebtsDoNot) {
  AdvProef p = vraagt("4 . / . . / 3 .", ". . / 9 . / 9 .");
  p.klaar();
  EXPECT_EQ(aanvul(p), "-4 . / 3 . / 1 .");
  AdvProef q = vraagt("3 .", ". . / 9 . / 9 .");
  q.zet(&Advies::m_uit, ". . / . . / 5 .").klaar();
  EXPECT_EQ(aanvul(q), "-3 . / 1 . / 2 .");
}

TEST(Aanvul, TheWishIsTheDemandAndWhoMayNotGetsNothing) {
  AdvProef p = vraagt("9 .", "2 . / 1 . / 3 .");
  p.klaar();
  EXPECT_EQ(aanvul(p), "-4 . / 1 . / 3 .");
  AdvProef q = vraagt("9 .", ". . / 1 . / 3 .");
  q.streef({0, 1, 0}).klaar();
  EXPECT_EQ(aanvul(q), "-1 . / 1 . / . .");
  AdvProef niet = vraagt("9 .", ". . / 1 . / 3 .");
  pg_remove(niet.aanvul, 1);
  niet.klaar();
  EXPECT_EQ(aanvul(niet), "-3 . / . . / 3 .");
  AdvProef zonder = vraagt("9 .", ". . / 1 . / 3 .");
  pg_remove(zonder.vanuit, 0);
  zonder.klaar();
  EXPECT_EQ(aanvul(zonder), ". . / . . / . .");
}

TEST(Aanvul, OnlyBranchesAtOrBelowTheMinimumWhenSaidSo) {
  for (const char soort : {'A', 'P'}) {
    AdvProef p = vraagt("9 9 / 2 1 / . 1", ". . / 4 4 / 4 4");
    p.a.groep.alleen_onder = true;
    p.a.groep.verdeelsoort = soort;
    p.streef({0, 3, 2}).klaar();
    EXPECT_EQ(aanvul(p), soort == 'A' ? "-2 -3 / . 2 / 2 1" : "-4 -8 / . 4 / 4 4") << soort;
  }
}

TEST(Aanvul, ASellingWarehouseKeepsItsMinimumAndIsNotItsOwnTaker) {
  AdvProef p(2, 1);
  p.magazijn(0, false).streef({1, 1}).voorraad("3 / .").verkocht("9 / 1").vraag("9 / 9");
  p.a.groep.minimum = 2;
  p.klaar();
  EXPECT_EQ(aanvul(p), "-1 / 1");
  AdvProef q(2, 1);
  q.magazijn(0, false).voorraad("2 / .").verkocht(". / 1").vraag(". / 9");
  q.a.groep.minimum = 2;
  q.klaar();
  EXPECT_EQ(aanvul(q), ". / .");
}

TEST(Aanvul, TheScoreLivesOverSizesAndSeriesOfOneModel) {
  AdvProef p = vraagt("1 1", ". . / 9 9 / 9 9");
  p.klaar();
  EXPECT_EQ(aanvul(p), "-1 -1 / 1 . / . 1");
  AdvProef los = vraagt("1 1", ". . / 9 9 / 9 9");
  los.a.verdeel.per_maat = true;
  los.klaar();
  EXPECT_EQ(aanvul(los), "-1 -1 / 1 1 / . .");
  // Three pieces make the round of weights 1 and 2 whole: one here, the next there, then both.
  AdvProef m = vraagt("1 .", ". . / 9 . / 9 .");
  m.klaar();
  const char* beurten[] = {"-1 . / 1 . / . .", "-1 . / . . / 1 .", "-1 . / . . / 1 ."};
  for (const char* soll : beurten) {
    matrix_wis(m.a.r_aanvul);
    EXPECT_EQ(aanvul(m), soll);
  }
  matrix_wis(m.a.r_aanvul);
  aanvul(m);
  m.a.model[0] = 'X';
  matrix_wis(m.a.r_aanvul);
  EXPECT_EQ(aanvul(m), "-1 . / 1 . / . .");
}

TEST(Minimum, TheFirstIsServedWholeBeforeTheNext) {
  AdvProef p = vraagt("3 5", ". . / 1 1 / 1 .");
  p.a.groep.minimum = 2;
  p.klaar();
  aanvul_minimum(p.a, p.a.m_vrk_periode, p.a.r_aanvul);
  EXPECT_EQ(p.tabel(p.a.r_aanvul), "-3 -2 / 2 2 / 1 .");
}

TEST(Minimum, WhatTheResultAndOrdersBringCounts) {
  AdvProef p = vraagt("4 4", ". . / 1 1 / 1 1");
  p.a.groep.minimum = 2;
  p.zet(&Advies::m_in, ". . / . 1 / . .").zet(&Advies::m_uit, "1 . / . . / . .").klaar();
  tel(p.a.r_aanvul[0], 1, -1);
  tel(p.a.r_aanvul[2], 1, 1);
  aanvul_minimum(p.a, p.a.m_vrk_periode, p.a.r_aanvul);
  EXPECT_EQ(p.tabel(p.a.r_aanvul), "-3 -3 / 2 1 / 1 2");
  AdvProef q(2, 1);
  q.magazijn(0, false).voorraad("2 / .").verkocht(". / 1").vraag(". / 1");
  q.klaar();
  aanvul_minimum(q.a, q.a.m_vrk_periode, q.a.r_aanvul);
  EXPECT_EQ(q.tabel(q.a.r_aanvul), "-1 / 1");
  matrix_wis(q.a.r_aanvul);
  q.a.groep.streef.fill(0);
  aanvul_minimum(q.a, q.a.m_vrk_periode, q.a.r_aanvul);
  EXPECT_EQ(q.tabel(q.a.r_aanvul), ". / .");
}

// Switch ------------------------------------------------------------------------------------------

std::string wissel(AdvProef& p) {
  p.klaar();
  switch_(p.a, p.a.m_vrk_periode, p.a.r_switch);
  return p.tabel(p.a.r_switch);
}

TEST(Switch, WhoHasMostGivesThenWhoSellsLeastThenTheFirst) {
  AdvProef p(4, 3);
  p.verkocht("9 9 9 / 2 . . / 1 . . / 1 . .").vraag("1 1 1");
  p.voorraad(". . . / 2 3 2 / 3 3 2 / 2 3 2");
  EXPECT_EQ(wissel(p), "1 1 1 / . . . / -1 -1 -1 / . . .");
}

TEST(Switch, AGiverKeepsItsMinimumAndTheFirstTakerIsServedWhole) {
  AdvProef p(3, 1);
  p.a.groep.minimum = 2;
  p.verkocht("9 / 5 / .").vraag("1 / 1").voorraad(". / . / 5");
  EXPECT_EQ(wissel(p), "2 / 1 / -3");
  AdvProef q(2, 1);
  q.verkocht("9").vraag("1").voorraad(". / 1");
  EXPECT_EQ(wissel(q), ". / .");
}

TEST(Switch, WithMinimumZeroNobodyIsShort) {
  AdvProef p(2, 1);
  p.a.groep.minimum = 0;
  p.verkocht("9").vraag("1").voorraad(". / 5");
  EXPECT_EQ(wissel(p), ". / .");
  // Unless orders take away what it does not have.
  p.zet(&Advies::m_uit, "2");
  EXPECT_EQ(wissel(p), "2 / -2");
}

TEST(Switch, OnlyGiversGiveAndOnlyWhoAsksAndAimsReceives) {
  AdvProef p(4, 1);
  p.streef({1, 0, 1, 1}).verkocht("9 / 8 / 7 / .").vraag("1 / 1 / .").voorraad(". / . / . / 9");
  EXPECT_EQ(wissel(p), "1 / . / . / -1");
  AdvProef q(3, 1);
  pg_remove(q.vanuit, 1);
  q.verkocht("9").vraag("1").voorraad(". / 9 / 2").magazijn(2);
  EXPECT_EQ(wissel(q), "1 / . / -1");
}

TEST(SwitchTest, ShortageMustExceedWhatTheWarehouseHas) {
  for (const int heeft : {1, 2}) {
    AdvProef p(4, 1);
    p.magazijn(0)
        .verkocht(". / 1 / 1")
        .vraag(". / 1 / 1")
        .voorraad(std::to_string(heeft) + " / . / . / 5");
    p.klaar();
    EXPECT_EQ(toets_switch(p.a, p.a.m_vrk_periode), heeft == 1);
  }
}

TEST(SwitchTest, AnOpenOrderBlocksItAndTheRemainders) {
  AdvProef p(3, 2);
  p.verkocht("1 1").vraag("1 1").voorraad(". . / 2 .").klaar();
  EXPECT_TRUE(toets_switch(p.a, p.a.m_vrk_periode));
  AdvProef q(3, 2);
  q.verkocht("1 1 / 1 1 / 1 1").voorraad(". . / 1 1").klaar();
  EXPECT_TRUE(toets_restant(q.a));
  for (AdvProef* x : {&p, &q}) {
    x->a.m_besteld[2][2] = 1;
    adv_totalen(x->a);
  }
  EXPECT_FALSE(toets_switch(p.a, p.a.m_vrk_periode));
  EXPECT_FALSE(toets_restant(q.a));
}

TEST(SwitchTest, PositionsBelowZeroCountAsLargeWhereTheyAreCompared) {
  // A debt is no shortage.
  AdvProef p(2, 1);
  p.verkocht("1").vraag("1").voorraad(". / 5").zet(&Advies::m_uit, "1").klaar();
  EXPECT_FALSE(toets_switch(p.a, p.a.m_vrk_periode));
  // A debtor is the first that seems able to give, and decides.
  AdvProef q(3, 1);
  q.verkocht("1").vraag("1").voorraad(". / . / 5").zet(&Advies::m_uit, ". / 1 / .").klaar();
  EXPECT_FALSE(toets_switch(q.a, q.a.m_vrk_periode));
  pg_remove(q.vanuit, 1);
  adv_verzamelingen(q.a, q.vanuit, q.aanvul, q.merk);
  EXPECT_TRUE(toets_switch(q.a, q.a.m_vrk_periode));
}

// The replenishment and new-series tests ----------------------------------------------------------

TEST(AanvulTest, AsksForAnotherBranchsDemandOrOneBelowTheMinimum) {
  const auto toets = [](const char* voorraad, const char* aanvul, const char* periode, int mag) {
    AdvProef p(2, 1);
    p.magazijn(mag).verkocht(". / 1").voorraad(voorraad).zet(&Advies::m_aanvul, aanvul);
    p.zet(&Advies::m_vrk_periode, periode).klaar();
    return toets_aanvul(p.a, p.a.m_vrk_periode);
  };
  EXPECT_TRUE(toets("1 / .", ". / 1", ". / .", 0));
  EXPECT_FALSE(toets("1 / .", "1 / .", ". / 1", 0));  // only the warehouse itself
  EXPECT_TRUE(toets("1 / .", ". / .", ". / 1", 0));
  EXPECT_FALSE(toets("1 / 1", ". / .", ". / 1", 0));  // at the minimum
  EXPECT_FALSE(toets("1 / .", ". / .", ". / .", 0));
  EXPECT_FALSE(toets(". / .", ". / 1", ". / 1", 0));
  EXPECT_FALSE(toets("1 / .", ". / 1", ". / 1", 255));
}

TEST(NieuwTest, AllInOneBranchThatMayGiveAndNothingSoldOrLeaving) {
  const auto maak = [] {
    AdvProef p(2, 1);
    return p.voorraad(". / 3");
  };
  EXPECT_TRUE(toets_nieuw(maak().klaar().a));
  AdvProef leeg(2, 1);
  EXPECT_FALSE(toets_nieuw(leeg.klaar().a));
  EXPECT_FALSE(toets_nieuw(maak().voorraad("1 / 2").klaar().a));
  EXPECT_FALSE(toets_nieuw(maak().verkocht(". / 1").klaar().a));
  EXPECT_FALSE(toets_nieuw(maak().zet(&Advies::m_uit, ". / 1").klaar().a));
  AdvProef mag_niet = maak();
  pg_remove(mag_niet.vanuit, 1);
  EXPECT_FALSE(toets_nieuw(mag_niet.klaar().a));
  AdvProef een(1, 1);
  EXPECT_TRUE(toets_nieuw(een.voorraad("1").klaar().a));
}

// Remainders --------------------------------------------------------------------------------------

TEST(RestantTest, FewPiecesLeftOfASeriesThatWentRound) {
  const auto toets = [](const char* voorraad, const char* verkocht, bool puur) {
    AdvProef p(3, 2);
    p.magazijn(0, puur).voorraad(voorraad).verkocht(verkocht).klaar();
    return toets_restant(p.a);
  };
  EXPECT_TRUE(toets(". . / 1 . / . 1", "1 . / 1 . / 1 .", false));
  EXPECT_FALSE(toets(". . / 1 . / 2 .", "1 . / 1 . / 1 .", false));  // 3 of a size for 3 branches
  EXPECT_FALSE(toets(". . / 1 . / 1 .", "1 . / 1 . / 1 .", true));   // the warehouse is not one
  EXPECT_FALSE(toets(". . / 1 . / . .", ". 1 / . 1 / . .", false) &&
               toets(". . / . . / . .", "1 . / 1 . / 1 .", false));  // nothing in stock
  AdvProef weinig(3, 2);
  weinig.a.groep.minimum = 2;
  weinig.voorraad(". . / 1 . / . 1").verkocht("1 . / 1 . / 1 .").klaar();
  EXPECT_FALSE(toets_restant(weinig.a));  // 4 received, 2 x 3 wanted
}

/// Three branches with sales 9, 5 and 2.
std::string verdeeld(const char* voorraad, int maten, const char* uit = "") {
  AdvProef p(3, maten);
  p.verkocht("9 / 5 / 2").voorraad(voorraad).zet(&Advies::m_uit, uit).klaar();
  restanten(p.a);
  return p.tabel(p.a.r_herverdeel);
}

TEST(Restant, TheBestSellerGetsTheWholeRow) {
  EXPECT_EQ(verdeeld(". . 1 / . 1 . / 1 . .", 3), "1 1 . / . -1 . / -1 . .");
}

TEST(Restant, OneSizeGoesRoundOncePieceByPiece) {
  EXPECT_EQ(verdeeld(". . / . . / . 2", 2), ". 1 / . 1 / . -2");
  // More than there are branches: the rest is given up and goes to nobody.
  EXPECT_EQ(verdeeld("4 / . / .", 1), "-3 / 1 / 1");
}

TEST(Restant, TheLongestRowGoesOnAndTheRestIsSpreadBySales) {
  // After the first turn 1 2 . 1 1 is left: sizes 1 and 2 hold most and go on, 4 and 5 stay with
  // the first, the only one to claim yet. The last of size 2 is spread over two: 27/14 - 1 against
  // 15/14 - 1.
  EXPECT_EQ(verdeeld("2 3 1 2 2 / . . . . . / . . . . .", 5),
            "-1 -1 . . . / 1 1 . . . / . . . . .");
  // Of equal rows the first.
  EXPECT_EQ(verdeeld("2 2 1 2 2 / . . . . . / . . . . .", 5),
            "-1 -1 . . . / 1 1 . . . / . . . . .");
}

TEST(Restant, SizesAreNeighboursByTheBarNotByWhatIsLeft) {
  // Size 2 is gone: 1 and 3 are no row, though nothing lies between them that could be had.
  EXPECT_EQ(verdeeld(". . . / . . . / 2 . 2", 3), "2 . 2 / . . . / -2 . -2");
  EXPECT_EQ(verdeeld(". . . / . . . / 2 1 2", 3), "2 1 2 / . . . / -2 -1 -2");
}

TEST(Restant, AClaimIsTheShareOfSalesLessWhatIsThere) {
  // Two turns: what the second leaves is spread over two by 9 and 5 of 14, of six pieces.
  AdvProef p(2, 2);
  p.verkocht("9 / 5").voorraad("6 2 / . .").klaar();
  restanten(p.a);
  // 1: one each, four left; claims 6*9/14-1 = 2.86 and 6*5/14-1 = 1.14: 2.86 1.86 1.14 0.86.
  EXPECT_EQ(p.tabel(p.a.r_herverdeel), "-2 -1 / 2 1");
}

TEST(Restant, WhatOrdersTakeIsNotInThePoolAndADebtIsNotGathered) {
  EXPECT_EQ(verdeeld(". . / 1 1 / 1 1", 2, ". . / 1 . / . ."), "1 2 / . -1 / -1 -1");
  // Size 2: 1 and -2 make a pool of -1, which is no pool; the debt still comes back as movement.
  EXPECT_EQ(verdeeld(". . / . 1 / 1 .", 2, ". . / . . / . 2"), "1 . / . -1 / -1 2");
}

TEST(Restant, ReceiversNeedNotGive) {
  AdvProef p(3, 2);
  for (const int b : {0, 1}) pg_remove(p.vanuit, b);
  p.verkocht("9 / 5 / 2").voorraad(". 1 / . . / 1 1").klaar();
  restanten(p.a);
  EXPECT_EQ(p.tabel(p.a.r_herverdeel), "1 1 / . . / -1 -1");
}

// Distribution ------------------------------------------------------------------------------------

AdvProef nieuw(const char* voorraad, char soort, int minimum, const std::vector<int>& aim,
               int magazijn = 0, bool puur = true) {
  AdvProef p(static_cast<int>(aim.size()), 1);
  p.magazijn(magazijn, puur).streef(aim).voorraad(voorraad);
  p.a.groep.verdeelsoort = soort;
  p.a.groep.minimum = static_cast<uint8_t>(minimum);
  return p;
}
std::string verspreid(AdvProef p) {
  p.klaar();
  distributie(p.a);
  return p.tabel(p.a.r_aanvul);
}

TEST(Distributie, ByQuantityEveryAimAndTheRestForTheKeeper) {
  EXPECT_EQ(verspreid(nieuw("9", 'A', 1, {0, 2, 3})), "-5 / 2 / 3");
  EXPECT_EQ(verspreid(nieuw(". / 9", 'A', 1, {0, 2, 3})), "4 / -7 / 3");
  // Without a warehouse the source keeps it.
  EXPECT_EQ(verspreid(nieuw("9", 'A', 1, {0, 2, 3}, 255)), "-5 / 2 / 3");
  // The aim of a pure warehouse is looked for and not given; a selling one gets it.
  EXPECT_EQ(verspreid(nieuw(". / 6", 'A', 1, {1, 2, 3})), "1 / -4 / 3");
  EXPECT_EQ(verspreid(nieuw(". / 7", 'A', 1, {1, 2, 3}, 0, false)), "2 / -5 / 3");
}

TEST(Distributie, ByQuantityWithTooLittleRoundsAndThenFairShare) {
  // Need 5, pool 4: a round of 1 each, then by weights 2 and 3 after one each: 3 claims first.
  EXPECT_EQ(verspreid(nieuw("4", 'A', 1, {0, 2, 3})), "-4 / 2 / 2");
  EXPECT_EQ(verspreid(nieuw("3", 'A', 1, {0, 2, 3})), "-3 / 1 / 2");
  // One piece for two: no round.
  EXPECT_EQ(verspreid(nieuw("1", 'A', 1, {0, 2, 3})), "-1 / 1 / .");
  // A minimum above the aim is still brought to all; then nobody is below its aim.
  EXPECT_EQ(verspreid(nieuw("5", 'A', 2, {0, 1, 1, 4})), "-5 / 1 / 1 / 3");
  EXPECT_EQ(verspreid(nieuw("1", 'A', 0, {0, 0, 0}, 1)), "-1 / 1 / .");
}

TEST(Distributie, ByPercentageTheMinimumTheKeepersShareAndFairShare) {
  AdvProef p = nieuw("10", 'P', 2, {0, 1, 1});
  p.a.groep.magazijn_pct = 25;  // 2.5: three
  EXPECT_EQ(verspreid(p), "-7 / 4 / 3");
  p.a.groep.magazijn_pct = 90;  // nine, reduced to the six that are left
  EXPECT_EQ(verspreid(p), "-4 / 2 / 2");
  AdvProef weinig = nieuw("3", 'P', 2, {0, 1, 1});
  weinig.a.groep.magazijn_pct = 90;  // below the need nothing is set aside
  EXPECT_EQ(verspreid(weinig), "-3 / 2 / 1");
  AdvProef nul = nieuw("4", 'P', 0, {0, 1, 1});
  nul.a.groep.magazijn_pct = 50;
  EXPECT_EQ(verspreid(nul), "-2 / 1 / 1");
}

TEST(Distributie, AimsOfZeroAreNotServedNorCounted) {
  EXPECT_EQ(verspreid(nieuw("4", 'P', 2, {0, 1, 0, 1})), "-4 / 2 / . / 2");
  AdvProef p = nieuw("4", 'P', 2, {0, 1, 1, 1});
  pg_remove(p.aanvul, 2);
  EXPECT_EQ(verspreid(p), "-4 / 2 / . / 2");
}

// The whole ---------------------------------------------------------------------------------------

TEST(Bereken, ANewSeriesGetsNothingButDistribution) {
  AdvProef p(3, 1);
  p.magazijn(0).streef({0, 1, 1}).voorraad("9").vraag(". / 1 / 1").klaar();
  EXPECT_TRUE(p.bereken());
  EXPECT_EQ(p.a.adv_kenmerk, ADV_DISTRIBUTIE);
  EXPECT_EQ(p.tabel(p.a.r_aanvul), "-2 / 1 / 1");
  EXPECT_EQ(p.tabel(p.a.r_switch), ". / . / .");
  p.krit.adv_distributie = 0;
  EXPECT_FALSE(p.bereken());
}

TEST(Bereken, TheSwitchUsesTheWarehouseFirstAndSalesOfAllTimeMakeTheOtherRedistribution) {
  AdvProef p(4, 1);
  p.magazijn(0).streef({0, 1, 1, 1}).voorraad("1 / . / . / 7").verkocht(". / 3 / 2 / 1");
  p.vraag(". / 1 / 1").klaar();
  EXPECT_TRUE(p.bereken());
  EXPECT_EQ(p.a.adv_kenmerk, ADV_AANVUL | ADV_SWITCH | ADV_OVERIG);
  EXPECT_EQ(p.tabel(p.a.r_aanvul), "-1 / 1 / . / .");
  EXPECT_EQ(p.tabel(p.a.r_switch), "-1 / 1 / 1 / -1");  // fair share went on where it was
  EXPECT_EQ(p.tabel(p.a.r_herverdeel), ". / 1 / 1 / -2");
}

TEST(Bereken, TheAnswerFollowsTheKindsThatAreAskedFor) {
  const auto antwoord = [](AdvProef p, uint8_t AdvRec::*alleen) {
    p.krit = {};
    p.krit.*alleen = 1;
    return p.klaar().bereken();
  };
  AdvProef stil(2, 1);
  stil.voorraad("5 / 5").verkocht("1 / 1");
  EXPECT_TRUE(antwoord(stil, &AdvRec::adv_overig));
  for (const auto soort :
       {&AdvRec::adv_aanvul, &AdvRec::adv_switch, &AdvRec::adv_restant, &AdvRec::adv_distributie})
    EXPECT_FALSE(antwoord(stil, soort));
  AdvProef rest(2, 2);
  rest.voorraad("1 . / . 1").verkocht("2 . / 1 .");
  EXPECT_TRUE(antwoord(rest, &AdvRec::adv_restant));
  EXPECT_FALSE(antwoord(rest, &AdvRec::adv_overig));
  AdvProef overig(2, 1);
  overig.voorraad(". / 5").verkocht("1");
  EXPECT_TRUE(antwoord(overig, &AdvRec::adv_overig));
  EXPECT_FALSE(antwoord(overig, &AdvRec::adv_switch));
}

TEST(Automatisch, WarehouseThenMinimumThenSwitchIntoOneResult) {
  const auto uitkomst = [](int soort, bool mag_geeft) {
    AdvProef p(4, 1);
    p.magazijn(0).streef({0, 1, 1, 1}).voorraad("1 / . / . / 7").verkocht(". / 3 / 2 / 1");
    p.vraag(". / 1 / 1");
    p.a.bron_soort = static_cast<uint8_t>(soort);
    if (!mag_geeft) pg_remove(p.vanuit, 0);
    p.klaar();
    tel(p.a.r_aanvul[3], 1, 5);  // left by another series
    adv_automatisch(p.a);
    return p.tabel(p.a.r_aanvul);
  };
  EXPECT_EQ(uitkomst(1, true), "-1 / 1 / . / .");
  EXPECT_EQ(uitkomst(2, true), ". / 1 / 1 / -2");
  EXPECT_EQ(uitkomst(3, true), "-1 / 1 / 1 / -1");
  EXPECT_EQ(uitkomst(1, false), ". / . / . / .");
}

}  // namespace
