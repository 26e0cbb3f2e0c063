// The advice matrix as an operator sees it: views and their options, acceptance, the three ways of
// changing, the wide terminal, the explanation. The advice is made by hand: its calculation has
// tests of its own.
#include "sub/servrd.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "isam/base.h"
#include "main/werktabel.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/adv_vul.h"
#include "sub/ioeti.h"
#include "tests/support/stukken.h"
#include "tests/support/terminal.h"

namespace {

constexpr Serienr NR{123, 4, 5};

void zet(MaatMatrix& m, int fil, std::initializer_list<int32_t> stuks) {
  std::ranges::copy(stuks, m[static_cast<size_t>(fil)].begin() + 1);
}

/// A size bar 38 39 40 of size type 1.
void maak_maten() {
  DtMaat rec{};
  rec.land = rec.maatsoort = 1;
  for (int i = 1; i <= 3; ++i) proef_maat(rec, i, str_format(" %d", 37 + i), i);
  Keten::voeg(dtmaat, rec);
  adv_maten = mtopen(1, 1, 0);
}

/// A series of three sizes in a chain with its warehouse in branch 0.
void maak_serie() {
  maak_maten();
  ser_rec = Keten::serie(NR);
  Etiket e = proef_etiket(NR, ETI_VOORRAAD);
  int32_t nummer = 0;
  ioeti('W', &nummer, &e);
  ser_rec.blok1 = eti_blok(nummer);
  veld_zet(ser_rec.omschrijving, sizeof ser_rec.omschrijving, "Pump zwart");
  veld_zet(ser_rec.locatie, sizeof ser_rec.locatie, "A12");
  advies.maten = {1, 2, 3};
  advies.groep.magazijn = 0;
  advies.groep.pure_magazijn = true;
  advies.groep.minimum = 1;
  zet(advies.m_voorraad, 0, {5, 5, 0});
  zet(advies.m_voorraad, 1, {2, 0, 1});
  zet(advies.m_voorraad, 2, {0, 1, 0});
  zet(advies.m_voorraad, 3, {1, 1, 1});
  zet(advies.m_verkocht, 2, {2, 0, 0});
  zet(advies.m_order, 1, {0, 4, 0});
}
/// The warehouse sends branch 2 two of the first size.
void met_aanvul() {
  advies.adv_kenmerk = ADV_AANVUL;
  zet(advies.r_aanvul, 0, {-2, 0, 0});
  zet(advies.r_aanvul, 2, {2, 0, 0});
}

/// The screen on a series that `vul` completes; behind it stand its answer and the mutations.
Terminal toon(Keten& k, int slot, const std::function<void()>& vul,
              const TerminalOpties& opties = {}) {
  return start_in_child(
      [&k, slot, vul] {
        k.open();
        SCRINIT();
        hdr_title("Voorraad");
        adv_rec = adv_standaard();
        adv_maak(advies, filialen());
        maak_serie();
        vul();
        adv_totalen(advies);
        const int code = servrd("Ingeven mutaties", slot);
        hdr_line('C', "klaar %d %d", code, scr_ctx->cols);
        for (int b = 0; b < std::min(filialen(), 20); ++b) {
          const Maatrij& r = advies.m_voorlopig[static_cast<size_t>(b)];
          scr_print(A_WAARDE, b + 3, 1, "%d: %ld %ld %ld", b, r[1], r[2], r[3]);
        }
        scr_enter(24, 1);
        scr_exit(0);
      },
      opties);
}

void met_info() {
  zet(advies.m_aanvul, 2, {2, 0, 0});
  Keten::voeg(dtaanv, DtAanv{NR, 11});
  Keten::voeg(dtaanv, DtAanv{NR, 12});
  Keten::voeg(dtaanv, DtAanv{{9, 9, 9}, 13});
}
void niets() {}

TEST(Matrix, ShowsTheAdviceItsStockAndWhatWasTakenOver) {
  Keten k(4);
  Terminal t = toon(k, ADV_HANDMATIG, met_aanvul);
  EXPECT_ROWS(t, 1, R"(
 Ingeven mutaties  Aanvuladvies * Voorraad
123.4.5        Pump zwart                                            Loc: A12
Aanvullen advies                                                Ontdat: 04-04-23
fil  38  39  40 tot
0    -2<  0   0  -2
1     0   0   0   0
2     2>  0   0   2
3     0   0   0   0
TOT   0   0   0   0
+/-   0   0   0   0
NOT   0   4   0   4
VRK   2   0   0   2
GO    0   0   0   0
)");
  EXPECT_TRUE(t.reverse(5, 5));
  EXPECT_TRUE(t.type("h").row(3).starts_with("huidig + aanvuladvies "));
  EXPECT_EQ(t.row(5), "0     3<  5   0   8");
  t.type("=");  // nothing to overwrite: no question
  EXPECT_TRUE(t.row(3).starts_with("Aanvullen uitgevoerd "));
  EXPECT_TRUE(t.type("1").row(3).starts_with("nieuw VRD "));
  EXPECT_EQ(t.row(9), "TOT   8   7   2  17");
  EXPECT_TRUE(t.type("b").row(3).starts_with("huidig VRD "));
  EXPECT_EQ(t.row(5), "0     5   5   0  10");
  EXPECT_TRUE(t.type("2").row(3).starts_with("beschikbaar VRD "));
  EXPECT_TRUE(t.type("3").row(3).starts_with("mutaties "));
  EXPECT_EQ(t.row(7), "2     2>  0   0   2");
  EXPECT_EQ(t.type("e").row(25), "niet beschikbaar");
  EXPECT_EQ(t.type("+").row(1), " Klaar 19 80 * Voorraad");
  EXPECT_EQ(t.row(5), "2: 2 0 0");
}

TEST(Matrix, OffersOnlyTheAdviceThatTheSeriesHas) {
  struct Geval {
    uint8_t kenmerk;
    const char *letters, *titel;
  };
  for (const Geval g : {Geval{0, "W X 1", "huidig VRD"},
                        {ADV_AANVUL, "= W X", "Aanvullen advies"},
                        {ADV_SWITCH | ADV_OVERIG, "= R W X", "Switchadvies"},
                        {ADV_AANVUL | ADV_SWITCH | ADV_RESTANT, "= C R W", "Aanvullen advies"},
                        {ADV_RESTANT, "= W X", "Herverdelen restant"},
                        {ADV_OVERIG, "= W X", "Herverdelen serie"},
                        {ADV_DISTRIBUTIE, "= W X", "Herverdelen distributie"}}) {
    Keten k(4);
    Terminal t = toon(k, ADV_HANDMATIG, [&g] {
      met_aanvul();
      advies.adv_kenmerk = g.kenmerk;
      advies.r_switch = advies.r_herverdeel = advies.r_aanvul;
    });
    const std::string soll = g.kenmerk == 0 ? "W X 2 3" : g.letters;
    EXPECT_TRUE(t.row(24).starts_with("Uw keuze  " + soll)) << t.row(24) << int{g.kenmerk};
    EXPECT_TRUE(t.row(3).starts_with(std::string(g.titel) + "  ")) << t.row(3);
    EXPECT_EQ(t.shows("Uitleg"), g.kenmerk != 0);
  }
}

TEST(Matrix, AChainWithoutAWarehouseRedistributesAndChoosesFromAList) {
  Keten k(4);
  Terminal t = toon(k, ADV_MUTATIES, [] {
    advies.groep.magazijn = FILIAAL_GEEN;
    advies.adv_kenmerk = ADV_SWITCH;
    zet(advies.r_switch, 1, {-3, 0, 0});
    zet(advies.r_switch, 2, {3, 0, 0});
  });
  EXPECT_TRUE(t.row(3).starts_with("Herverdelen  "));
  EXPECT_EQ(t.row(6), "1    -3X  0   0  -3");  // it has two
  EXPECT_SHOWS(t.type(toets::Enter), "=  Advies overnemen", "W  Wijzigen voorraadverdeling");
  EXPECT_FALSE(t.shows("Switchadvies │"));
  t.type(toets::Enter);  // the first of them
  EXPECT_TRUE(t.row(3).starts_with("Herverdelen uitgevoerd  "));
  EXPECT_EQ(t.row(6), "1    -1X  0   1   0");
  EXPECT_SHOWS(t.type("w"), "1 Filiaalmutaties", "2 Compleet verplaatsen");
  EXPECT_FALSE(t.shows("Magazijnmutaties"));
  EXPECT_EQ(t.text(25, 54, 26), "Wijzigen voorraadverdeling");
  EXPECT_TRUE(t.type(toets::Esc, toets::Esc).row(1).starts_with(" Klaar 0 80"));
  EXPECT_EQ(t.row(5), "2: 3 0 0");
}

TEST(Matrix, ExistingMutationsAreOverwrittenOnlyWhenTheOperatorSaysSo) {
  Keten k(4);
  Terminal t = toon(k, ADV_HANDMATIG, [] {
    met_aanvul();
    zet(advies.m_voorlopig, 0, {-1, 0, 0});
    zet(advies.m_voorlopig, 3, {1, 0, 0});
  });
  EXPECT_EQ(t.row(5), "0    -2*  0   0  -2");
  EXPECT_TRUE(t.type("=").row(3).starts_with("bestaande mutaties "));
  EXPECT_EQ(t.row(8), "3     1>  0   0   1");
  EXPECT_TRUE(t.row(24).starts_with("Bestaande mutaties overschrijven? (J/N)"));
  EXPECT_TRUE(t.type("N\r").row(3).starts_with("Aanvullen advies "));
  EXPECT_EQ(t.type("a").row(8), "3     1>  0   0   1");
  EXPECT_EQ(t.type("p", "=", "J\r", toets::Esc).row(3), "0: -2 0 0");
  EXPECT_EQ(t.row(6), "3: 0 0 0");
}

TEST(Matrix, DeletedReplenishmentInformationTakesItsAdviceAlong) {
  Keten k(4);
  Terminal t = toon(k, ADV_HANDMATIG, [] {
    met_aanvul();
    met_info();
  });
  EXPECT_TRUE(t.type("o").row(3).starts_with("Aanvulinformatie "));
  EXPECT_EQ(t.row(7), "2     2   0   0   2");
  EXPECT_TRUE(t.type("p", "v").row(24).starts_with("Aanvulinformatie verwijderen? (J/N)"));
  EXPECT_TRUE(t.type("N\r").row(24).starts_with("Uw keuze  = O V"));
  EXPECT_TRUE(t.type("v", "J\r").shows("Geen aanvuladvies aanwezig"));
  EXPECT_TRUE(t.row(24).starts_with("Uw keuze  W X"));
  t.type(toets::Esc);
  k.open();
  for (const DtAanv& soll : {DtAanv{NR, 11}, DtAanv{NR, 12}, DtAanv{{9, 9, 9}, 13}}) {
    DtAanv rec = soll;
    EXPECT_EQ(IXREAD(dtaanv, &rec), soll.etiket == 13) << soll.etiket;
  }
}

TEST(Matrix, OtherCriteriaAreCalculatedAtOnce) {
  Keten k(4);
  Terminal t = toon(k, ADV_HANDMATIG, [] {
    met_info();
    zet(advies.m_ontvangen, 2, {2, 1, 0});
    zet(advies.m_ontvangen, 0, {5, 5, 0});
    advies.groep.streef[2] = 2;
  });
  EXPECT_FALSE(t.row(24).starts_with("Uw keuze  ="));
  EXPECT_TRUE(t.type("x").shows("SELECTIE OP ADVIEZEN"));
  EXPECT_TRUE(t.type(toets::Esc).row(24).starts_with("Uw keuze  P O V"));
  EXPECT_EQ(t.type("p").row(5), "0    -2<  0   0  -2");
}

/// A series with pieces: five in the warehouse, one sold twenty days ago in branch 2.
void laad_serie() {
  mtclose(adv_maten);
  adv_maten = nullptr;
  werktabellen_open();
  proef_artikel(NR.artgroep, "", [](DtArt& art) { art.vlaggen = 1; });
  for (int i = 0; i < 6; ++i) {
    Etiket e = proef_etiket(NR, i < 5 ? ETI_VOORRAAD : ETI_VERKOPEN, 1, i < 5 ? 0 : 2);
    e.vrkdat = i < 5 ? 0 : static_cast<uint16_t>(date_today() - 20);
    int32_t nummer = 0;
    if (i == 0) nummer = ser_rec.blok1 * 10 + 1;
    ioeti('W', &nummer, &e);
  }
  DtSer rec = ser_rec;
  IXWRITE(dtser, &rec);
  adv_open();
  adv_vul();
  advies.maten = {1, 2, 3};
  zet(advies.m_voorlopig, 0, {-1, 0, 0});
  zet(advies.m_voorlopig, 1, {1, 0, 0});
}

TEST(Matrix, OtherDaysOfSalesAreReadAndMutationsStay) {
  Keten k(4);
  Terminal t = toon(k, ADV_MUTATIES, laad_serie);
  EXPECT_EQ(t.row(12), "VRK   0   0   0   0") << t.screen();
  t.type("x", "4", toets::Enter, toets::Enter, toets::Enter, "30\r");
  t.type(toets::Esc, toets::Esc);
  EXPECT_EQ(t.row(12), "VRK   1   0   0   1") << t.screen();
  t.type("1");
  EXPECT_EQ(t.row(5), "0     4<  0   0   4") << t.screen();
  EXPECT_EQ(t.row(6), "1     1>  0   0   1");
}

// Changing by hand --------------------------------------------------------------------------------

TEST(Wijzigen, TheWarehouseGivesNoMoreThanItHas) {
  Keten k(4);
  Terminal t = toon(k, ADV_MUTATIES, [] { zet(advies.m_uit, 0, {1, 0, 0}); });
  EXPECT_TRUE(t.type("w").shows("1 Magazijnmutaties"));
  EXPECT_EQ(t.type("1").row(24), "Filiaal _    <ENTER> voor alle");
  EXPECT_EQ(t.type("0\r").row(25), "Ingave magazijn niet toegestaan");
  EXPECT_EQ(t.type("2\r").row(24), "Filiaal 2  Maat ___  <ENTER> voor alle");
  EXPECT_EQ(t.type("41\r").row(25), "Onbekende/foutieve maat");
  t.type("38\r", "5\r");  // one of its five is on its way out
  EXPECT_EQ(t.row(25), "Meer dan de voorraad in het magazijn van deze maat");
  EXPECT_EQ(t.type("4\r").row(5), "0     1<  5   0   6");
  EXPECT_EQ(t.row(7), "2     4>  1   0   5");
  EXPECT_EQ(t.row(24), "Filiaal _    <ENTER> voor alle");
  t.type("\r", "39\r", "1\r", toets::Down, "2\r");  // branch 1, not 2, branch 3
  EXPECT_EQ(t.row(5), "0     1<  2<  0   3");
  t.type("2\r", "38\r", "1\r");  // what came from the warehouse goes back
  EXPECT_EQ(t.row(5), "0     4<  2<  0   6");
  t.type(toets::Esc, toets::Esc);
  EXPECT_ROWS(t, 3, R"(
0: -1 -3 0
1: 0 1 0
2: 1 0 0
3: 0 2 0
)");
}

TEST(Wijzigen, BranchesKeepTheTotalOfASize) {
  Keten k(4);
  Terminal over = toon(k, ADV_MUTATIES, [] { zet(advies.m_voorlopig, 0, {-1, 0, 0}); });
  EXPECT_EQ(over.type("w", "2").row(9), "TOT   1   0   0   1");  // accepted with pieces over
  EXPECT_TRUE(over.type(toets::Esc).row(24).starts_with("Uw keuze")) << "untouched: left at once";
  Terminal t = toon(k, ADV_MUTATIES, niets);
  t.type("2", "w", "2");
  EXPECT_FALSE(t.shows("Beschikbare"));  // all of the stock is divided
  EXPECT_EQ(t.row(9), "TOT   0   0   0   0");
  EXPECT_EQ(t.type("6\r").row(25), "Meer dan de totale voorraad van deze maat");
  t.type(toets::Home, "2\r");  // three to place
  EXPECT_EQ(t.row(9), "TOT   3   0   0   3");
  EXPECT_EQ(t.row(10), "+/-  -3   0   0  -3");
  EXPECT_EQ(t.type(toets::Esc).row(25), "Nog niet alle aantallen zijn verdeeld.");
  t.type(toets::Down, toets::Left, "4", toets::Down, "1\r");
  EXPECT_EQ(t.row(6), "1     4>  0   1   5");
  EXPECT_EQ(t.row(9), "TOT   0   0   0   0");
  t.type(toets::Down, toets::Down, "1\r");  // the chain's row
  EXPECT_EQ(t.row(25), "Meer stuks in filialen dan totaal aanwezig van deze maat");
  EXPECT_TRUE(t.type(toets::Esc).row(3).starts_with("nieuw VRD "));
  t.type(toets::Esc);
  EXPECT_ROWS(t, 3, R"(
0: -3 0 0
1: 2 0 0
2: 1 0 0
3: 0 0 0
)");
}

TEST(Wijzigen, MovesOneBranchOrAllToAnother) {
  Keten k(4);
  Terminal t = toon(k, ADV_MUTATIES, niets);
  EXPECT_EQ(t.type("w", "3").row(24), "Alles van filiaal _   <ENTER> voor alle,   naar filiaal");
  EXPECT_EQ(t.type("1\r", "3\r").row(6), "1     0<  0   0<  0");
  EXPECT_EQ(t.row(8), "3     3>  1   2>  6");
  EXPECT_EQ(t.type("w", "3", "\r", "2\r").row(7), "2     8>  7>  2> 17");
  EXPECT_EQ(t.row(9), "TOT   8   7   2  17");
  EXPECT_EQ(t.type(toets::Esc).row(3), "0: -5 -5 0");
  EXPECT_EQ(t.row(5), "2: 8 6 2");
}

// Places ------------------------------------------------------------------------------------------

TerminalOpties breed_venster() {
  TerminalOpties o;
  o.resizes = true;
  return o;
}

TEST(Breed, OnlyWithMoreBranchesThanTheNarrowOneShows) {
  struct Geval {
    int filialen;
    bool gewoon, verkopen;  // wide
  };
  for (const Geval g :
       {Geval{6, false, false}, {7, false, true}, {16, false, true}, {17, true, true}}) {
    Keten k(g.filialen);
    Terminal t = toon(k, ADV_MUTATIES, met_aanvul, breed_venster());
    const auto breed = [&t] { return t.text(4, 67, 3) == "fil" || t.text(4, 67, 3) == "VRK"; };
    EXPECT_EQ(breed(), g.gewoon) << g.filialen;
    t.type("k");
    EXPECT_EQ(breed(), g.verkopen) << g.filialen << t.screen();
    EXPECT_NE(t.screen().find("VRK  38  39  40 tot"), std::string::npos) << g.filialen;
    t.type("l");
    EXPECT_EQ(breed(), g.gewoon) << g.filialen;
    t.type(toets::Esc);
    EXPECT_TRUE(t.row(1).starts_with(" Klaar 0 80 ")) << t.row(1);
  }
}

TEST(Breed, TwoBlocksOfBranchesThatScrollTogether) {
  Keten k(40);
  Terminal t = toon(
      k, ADV_MUTATIES,
      [] {
        zet(advies.m_voorraad, 39, {0, 0, 1234});
      },
      breed_venster());
  EXPECT_EQ(t.text(5, 1, 4), "0   ");
  EXPECT_EQ(t.text(5, 67, 4), "16  ");
  EXPECT_EQ(t.text(21, 1, 23), "TOT    8    7 1236 1251");
  EXPECT_EQ(t.text(21, 67, 3), "VRK");
  EXPECT_TRUE(t.row(24).ends_with(" M + - Z")) << t.row(24);  // downward only
  EXPECT_EQ(t.type("m").text(20, 67, 23), "39     0    0 1234 1234");
  EXPECT_TRUE(t.row(24).ends_with(" I + - Z"));
  t.type("i", "w", "1", "18\r", "38\r", "2\r");
  EXPECT_EQ(t.text(7, 67, 24), "18     2>   0    0    2 ");
  EXPECT_EQ(t.text(5, 1, 24), "0      3<   5    0    8 ");
  t.type(toets::Esc, toets::Esc);
}

TEST(Breed, AWindowThatStaysNarrowScrolls) {
  Keten k(40);
  Terminal t = toon(k, ADV_MUTATIES, [] {
    advies.maten.clear();
    for (uint8_t s = 1; s <= 30; ++s) advies.maten.push_back(s);
    zet(advies.m_voorraad, 39, {7, 0, 0});
  });
  EXPECT_TRUE(t.row(24).ends_with(" M N + - Z")) << t.row(24);
  EXPECT_EQ(t.text(4, 1, 16), "fil  38  39  40 ");
  EXPECT_EQ(t.type("n").text(4, 73, 7), " 30 tot");
  EXPECT_TRUE(t.row(24).ends_with(" J M + - Z"));
  EXPECT_EQ(t.type(toets::PgDn, toets::PgDn, toets::PgDn, "j").text(20, 1, 8), "39    7 ");
  EXPECT_TRUE(t.row(24).ends_with(" I N + - Z"));
  EXPECT_EQ(t.text(21, 1, 8), "TOT  15 ");
}

TEST(Breed, ASeriesWithoutSizesHasNoColumns) {
  Keten k(4);
  Terminal t = toon(k, ADV_MUTATIES, [] { advies.maten.clear(); });
  EXPECT_EQ(t.row(4), "fil tot");
  EXPECT_EQ(t.type(toets::Right, toets::Down).row(24), "Uw keuze  X 2 3 K E S + - Z");
}

TEST(Uitleg, TellsWhyInAWindowThatScrolls) {
  Keten k(240);
  Terminal t = toon(k, ADV_HANDMATIG, [] {
    met_info();
    for (int b = 0; b < 240; ++b) zet(advies.m_ontvangen, b, {2, 1, 0});
    for (int b = 2; b < 240; b += 2) zet(advies.m_aanvul, b, {1, 0, 0});
    advies.groep.streef.fill(2);
  });
  EXPECT_TRUE(t.type("x", toets::Esc, "p", toets::Down, toets::Down).reverse(7, 5));
  EXPECT_SHOWS(t.type("?"), "Uitleg filiaal 2 maat  38", "> krijgt   < geeft", "Voorraad 0,");
  const std::string eerste = t.screen();
  t.type(toets::PgDn);
  EXPECT_NE(t.screen(), eerste);
  EXPECT_TRUE(t.shows("Uitleg filiaal 2")) << t.screen();
  t.type(toets::PgUp);
  EXPECT_EQ(t.screen(), eerste);
  t.type("x");
  EXPECT_FALSE(t.shows("Uitleg filiaal 2"));
  EXPECT_TRUE(t.row(24).starts_with("Uw keuze"));
}

}  // namespace
