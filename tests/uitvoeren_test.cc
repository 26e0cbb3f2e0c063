// Execution of advice straight from stock: which labels leave, what is booked, what a process that
// dies at each of its writes leaves, and the search list as a page.
#include <cstring>
#include <map>
#include <set>

#include "main/iofil.h"
#include "main/saldo.h"
#include "main/zoeklijst.h"
#include "sub/adv_krit.h"
#include "sub/muteren.h"
#include "sub/pghdl.h"
#include "tests/support/rapport.h"
#include "tests/support/sterven.h"
#include "tests/support/stukken.h"

namespace {

constexpr Serienr BLOUSE{10100, 10, 1}, BROEK{10200, 310, 4};

struct Uitvoeren : ::testing::Test {
  Keten keten;

  void SetUp() override {
    keten.open();
    stel_in();
    for (const Serienr& nr : {BLOUSE, BROEK}) {
      Keten::serie(nr, 1, 5);
      proef_kleding(nr, "B12-3");
    }
  }
  void TearDown() override { sluit(); }
  static void stel_in() {
    proef_opdrachten();
    str_printf(prt_links, sizeof prt_links, "%s", "De Ketting BV");
    sys_rec1.opties = 1;
  }
  void sluit() {
    if (!keten.is_open) return;
    iofil('C', 0, nullptr);
    keten.sluit();
    prt_links[0] = 0;
  }

  static void etiketten(const Serienr& nr, int aantal, uint8_t maat, uint8_t filiaal,
                        uint8_t status = ETI_VOORRAAD, uint8_t doel = 0) {
    Etiket e = proef_etiket(nr, status, maat, filiaal);
    e.onderweg = doel != 0;
    e.doel = doel;
    while (aantal-- > 0) proef_stuk(e);
  }
  struct Telling {
    std::map<std::string, int> waar;  // "series size place" of all labels
    int onderweg = 0;
    std::set<int32_t> nummers;  // of those under way
  };
  static Telling tel(const Serienr& nr) {
    Telling t;
    IXSWITCH(dtser, 1);
    const DtSer rec = proef_serie(nr);
    for (EtiReeks r(rec); r.volgende();) {
      const Etiket& e = r.etiket;
      std::string plaats = str_format("%d:%d", e.maat, e.filiaal);
      if (e.onderweg != 0) plaats += str_format(">%d", e.doel);
      if (e.status != ETI_VOORRAAD) plaats += str_format("/%d", e.status);
      ++t.waar[plaats];
      if (e.onderweg == 0) continue;
      ++t.onderweg;
      t.nummers.insert(r.nummer);
    }
    return t;
  }
  static std::string lijsten(const std::vector<Uitvoering>& orders, int bladregels = 64) {
    return rapport([&] { uitvoer_lijsten(orders); }, bladregels);
  }
};

using Waar = std::map<std::string, int>;

TEST_F(Uitvoeren, WhatStockHasLeavesAndTheLinesGo) {
  etiketten(BLOUSE, 4, 5, 0);
  etiketten(BLOUSE, 1, 5, 0, ETI_VOORRAAD, 7);  // under way already
  etiketten(BLOUSE, 1, 5, 0, ETI_VERKOPEN);
  etiketten(BLOUSE, 2, 6, 0);
  etiketten(BLOUSE, 3, 6, 1);
  proef_regel(0, 3, BLOUSE, {{5, 2}, {6, 9}});  // nine asked, two there
  proef_regel(0, 4, BLOUSE, {{5, 1}});
  proef_regel(1, 3, BLOUSE, {{6, 1}});
  proef_regel(0, 5, BLOUSE, {{5, 9}}, 20000011);  // an order that is executed by hand
  proef_regel(2, 5, BLOUSE, {{5, 1}});            // nothing there, but a number is drawn
  proef_regel(0, 3, BROEK, {{5, 1}});             // no labels at all
  IXSWITCH(dtpick, 3);
  const std::vector<Uitvoering> orders = uitvoer_pas();
  EXPECT_EQ(dtpick->block.key_number, 3);

  EXPECT_EQ(tel(BLOUSE).waar, (Waar{{"5:0", 1},
                                    {"5:0>3", 2},
                                    {"5:0>4", 1},
                                    {"5:0>7", 1},
                                    {"5:0/3", 1},
                                    {"6:0>3", 2},
                                    {"6:1", 2},
                                    {"6:1>3", 1}}));
  const auto regels = proef_inhoud<DtPick>(dtpick);
  ASSERT_EQ(regels.size(), 1u) << "a line goes, also when it was not served whole";
  EXPECT_EQ(regels[0].opdrachtnr, 20000011u);
  EXPECT_EQ(regels[0].aantal[5], 9u);

  std::map<std::string, uint32_t> nummers;
  for (const Uitvoering& o : orders) nummers[str_format("%d>%d", o.van, o.naar)] = o.nummer;
  ASSERT_EQ(nummers.size(), 4u);
  ASSERT_EQ(orders.size(), 4u);
  const auto go = proef_inhoud<DtGo>(dtgo);
  EXPECT_EQ(go.size(), 6u);
  for (const DtGo& g : go) {
    EXPECT_EQ(g.verzamel, 1);
    EXPECT_EQ(g.zenddatum, date_today());
    EXPECT_EQ(g.opdrachtnr, nummers[str_format("%d>%d", g.vanfil, g.naarfil)]);
  }
  EXPECT_EQ(proef_inhoud<DtFin>(dtfin).size(), 6u);
  EXPECT_EQ(file_size("KASMUT.TXT"), 6 * 32);
  ASSERT_TRUE(serie_probeer(BLOUSE)) << "not locked any more";
  EXPECT_EQ(ser_rec.datum_mutatie, date_today());
  serie_los();
  for (const char* naam : {"DTPICK", "DTGO", "DTFIN", "DTSER"}) EXPECT_GE(IXCHECK(naam), 0) << naam;
}

TEST_F(Uitvoeren, BranchesAndSeriesThatAreNotSelectedStay) {
  etiketten(BLOUSE, 9, 5, 0);
  etiketten(BLOUSE, 9, 5, 1);
  etiketten(BROEK, 9, 5, 0);
  proef_regel(0, 3, BLOUSE, {{5, 1}});
  proef_regel(0, 4, BLOUSE, {{5, 1}});
  proef_regel(1, 3, BLOUSE, {{5, 1}});
  proef_regel(0, 3, BROEK, {{5, 1}});
  proef_regel(0, 200, BLOUSE, {{5, 1}});  // a branch that the chain does not have
  proef_regel(0, 0, BLOUSE, {{5, 1}});
  proef_regel(0, 3, {10300, 5, 2}, {{5, 1}});  // a series that is gone
  pg_remove(adv_rec.vanuit_filialen, 1);
  pg_remove(adv_rec.aanvul_filialen, 4);
  proef_selectie(privaat.o, "AKV", {BLOUSE});
  ICB* icb = IXOPEN(privaat.o, IX_LEES);
  dtser_opzoek = icb;
  EXPECT_EQ(uitvoer_pas().size(), 1u);
  dtser_opzoek = dtser;
  IXCLOSE(icb);
  EXPECT_EQ(tel(BLOUSE).waar, (Waar{{"5:0", 8}, {"5:0>3", 1}, {"5:1", 9}}));
  EXPECT_EQ(tel(BROEK).onderweg, 0);
  EXPECT_EQ(proef_inhoud<DtPick>(dtpick).size(), 6u);
}

TEST_F(Uitvoeren, WithoutTransitThePiecesAreThereAtOnceAndSizesTellNoTill) {
  sys_rec20.transit = 0;
  ASSERT_TRUE(serie_wacht(BLOUSE));
  ser_rec.maatregistratie = 1;
  serie_schrijf();
  etiketten(BLOUSE, 3, 5, 0);
  etiketten(BROEK, 1, 5, 0);
  proef_regel(0, 3, BLOUSE, {{5, 2}});
  proef_regel(0, 3, BROEK, {{5, 1}});
  uitvoer_pas();
  EXPECT_EQ(tel(BLOUSE).waar, (Waar{{"5:0", 1}, {"5:3", 2}}));
  EXPECT_EQ(proef_inhoud<DtGo>(dtgo).size(), 3u);
  EXPECT_EQ(proef_inhoud<DtFin>(dtfin).size(), 3u);
  EXPECT_EQ(file_size("KASMUT.TXT"), 32) << "of the one label that has a number";
}

/// The line is served in part; what it asked for is what is written off.
TEST_F(Uitvoeren, WhatWasAskedForIsWrittenOff) {
  etiketten(BLOUSE, 1, 5, 0);
  for (int i = 0; i < 3; ++i) {
    Etiket e = proef_etiket(BLOUSE, ETI_VERKOPEN, 5, 3);
    e.vrkdat = date_today();
    Keten::voeg(dtaanv, DtAanv{BLOUSE, static_cast<uint32_t>(proef_stuk(e))});
  }
  proef_regel(0, 3, BLOUSE, {{5, 2}});
  uitvoer_pas();
  EXPECT_EQ(proef_inhoud<DtAanv>(dtaanv).size(), 1u);
}

/// The labels of the first series go on into the second's: its lines stay, the second's are served.
TEST_F(Uitvoeren, AChainThatLeadsAstrayIsPassedOver) {
  etiketten(BLOUSE, 2, 5, 0);
  etiketten(BROEK, 2, 5, 0);
  proef_ketting(0, 1);
  for (const Serienr& nr : {BLOUSE, BROEK}) {
    proef_regel(0, 3, nr, {{5, 1}});
    proef_regel(0, 4, nr, {{5, 1}});
  }
  EXPECT_EQ(uitvoer_pas().size(), 2u);
  const auto regels = proef_inhoud<DtPick>(dtpick);
  ASSERT_EQ(regels.size(), 2u);
  EXPECT_TRUE(regels[0].nr == BLOUSE && regels[1].nr == BLOUSE);
  EXPECT_EQ(proef_inhoud<DtGo>(dtgo).size(), 2u);
  EXPECT_EQ(tel(BROEK).onderweg, 2);
  ASSERT_TRUE(serie_probeer(BLOUSE)) << "not locked any more";
  serie_los();
}

TEST_F(Uitvoeren, TheSearchListIsAPageAPair) {
  for (int f : {0, 3}) {
    FiliaalRec rec{};
    str_printf(rec.naam, sizeof rec.naam, "Winkel %d", f);
    veld_zet(rec.adres, sizeof rec.adres, "Dorpsstraat 1");
    veld_zet(rec.plaats, sizeof rec.plaats, "Almelo");
    iofil('W', f, &rec);
  }
  proef_namen(BLOUSE.artgroep, "Blouses");
  DtMaat maten{};
  maten.land = maten.maatsoort = 1;
  proef_maat(maten, 5, " 38", 2);
  proef_maat(maten, 6, " 36", 1);  // comes first in the bar
  Keten::voeg(dtmaat, maten);
  ASSERT_TRUE(serie_wacht(BROEK));
  ser_rec.maatregistratie = 1;
  serie_schrijf();

  etiketten(BLOUSE, 2, 5, 0);
  etiketten(BLOUSE, 1, 6, 0);
  etiketten(BROEK, 3, 5, 0);
  proef_regel(0, 3, BLOUSE, {{5, 2}, {6, 1}});
  proef_regel(0, 3, BROEK, {{5, 3}});
  const std::vector<Uitvoering> orders = uitvoer_pas();
  ASSERT_EQ(orders.size(), 1u);
  // A label sold on the way, one that somebody sent by hand, one that is finished: none is listed.
  const auto tekst = lijsten(orders);
  const std::string streep(109, '-');
  EXPECT_EQ(
      tekst,
      str_format(
          R"(De Ketting BV                             ZOEKLIJST, FILIAAL 0 -> FILIAAL 3                              DD-MM-JJJJ UU:MM blad:   1

Opdrachtnummer %lu
Van   0 Winkel 0                         Dorpsstraat 1                  Almelo                   
Naar  3 Winkel 3                         Dorpsstraat 1                  Almelo                   
10100.10.1       36 KM       3          44.95 | B12-3   DUIN    5 Duinroos             Anna lang       katoen       streep      
                 38 KM       1          44.95 |         blouse met kraag               Blouses                      wit            
                             2          44.95 |
10200.310.4      38 KM             3    44.95 | B12-3   DUIN    5 Duinroos             Anna lang       katoen       streep      
                                              |         blouse met kraag                                                           
                       %s
               Totaal        3     3
)",
          orders[0].nummer, streep));
  EXPECT_FALSE(file_exists((std::string(privaat.tp) + ".TXT").c_str()));

  // What went on since is not looked for.
  const std::set<int32_t> nummers = tel(BLOUSE).nummers;
  go_afwerken(*nummers.begin());
  proef_wijzig(*std::next(nummers.begin()), [](Etiket& e) { e.doel = 8; });
  EXPECT_NE(lijsten(orders).find("Totaal        1     3\n"), std::string::npos);
  // Short pages: each has the head, the total does not stand alone on two of them.
  const std::string kort = lijsten(orders, 9);
  EXPECT_EQ(std::count(kort.begin(), kort.end(), '\f') + 1, 2) << kort;
  EXPECT_NE(kort.find("blad:   2"), std::string::npos);
}

/// Only what the operator marked, under the receiver's name.
TEST_F(Uitvoeren, CancelledMutations) {
  zoek_maak(ZoekTabel::annul, "AKV");
  ICB* tabel = IXOPEN(privaat.tp, IX_EXCLUSIEF);
  for (uint32_t n = 1; n <= 4; ++n) {
    Zoekregel r{};
    r.vanfil = 0;
    r.naarfil = 3;
    r.nr = BLOUSE;
    r.etiket = n;
    r.prijs = 123;
    r.gemarkeerd = n != 2;
    r.verzamel = n == 4;
    r.maat = r.rang = 5;
    memcpy(r.maattekst, " 38", 3);
    IXWRITE(tabel, &r);
  }
  IXCLOSE(tabel);
  const std::string tekst = rapport([] { zoeklijst(OpdrachtSoort::geannuleerd, 0); });
  EXPECT_NE(tekst.find(" -> FILIAAL 3 "), std::string::npos) << tekst;
  EXPECT_EQ(tekst.find("Opdrachtnummer"), std::string::npos);
  EXPECT_NE(tekst.find("\n10100.10.1       38 KM       1*          1.23 | B12-3"),
            std::string::npos)
      << tekst;
  EXPECT_NE(tekst.find("\n                             4           1.23 |\n"), std::string::npos);
  EXPECT_NE(tekst.find("Totaal        3\n"), std::string::npos);
}

/// A process that dies at each of its writes, and another that runs the command again: no piece is
/// lost, at most the one in hand is sent besides, and each that is under way is booked once.
TEST_F(Uitvoeren, DyingAtEachWrite) {
  etiketten(BLOUSE, 14, 5, 0);  // two blocks
  proef_regel(0, 3, BLOUSE, {{5, 3}});
  proef_regel(0, 4, BLOUSE, {{5, 2}});
  sluit();
  const SterfBegin begin({"DTPICK", "DTGO", "DTFIN", "DTSER"}, {"DTETI.TXT"});
  int te_veel = 0;
  for (int n = 0;; ++n) {
    SCOPED_TRACE("dies at write " + std::to_string(n));
    ASSERT_LT(n, 500);
    begin.terug();
    const bool heel = sterft_bij(n, [&] {
      keten.open();
      stel_in();
      uitvoer_pas();
    });
    begin.herbouw();
    keten.open();
    stel_in();
    Telling t = tel(BLOUSE);
    uint32_t gevraagd = 0;
    for (const DtPick& r : proef_inhoud<DtPick>(dtpick)) gevraagd += r.aantal[5];
    EXPECT_GE(t.onderweg + static_cast<int>(gevraagd), 5) << "nothing is forgotten";
    EXPECT_LE(t.onderweg + static_cast<int>(gevraagd), 6) << "the piece in hand at most";
    for (const int32_t nummer : t.nummers) {
      EXPECT_TRUE(go_lees(nummer)) << nummer;
      DtFin fin{};
      fin.etiket = static_cast<uint32_t>(nummer);
      IXSWITCH(dtfin, 2);
      EXPECT_TRUE(IXFIRSTR(dtfin, &fin, 1)) << nummer;
    }
    uitvoer_pas();
    t = tel(BLOUSE);
    EXPECT_GE(t.onderweg, 5);
    EXPECT_LE(t.onderweg, 6);
    te_veel += t.onderweg - 5;
    int totaal = 0;
    for (const auto& [plaats, aantal] : t.waar) totaal += aantal;
    EXPECT_EQ(totaal, 14);
    EXPECT_EQ(proef_inhoud<DtFin>(dtfin).size(), static_cast<size_t>(t.onderweg))
        << "each paid once";
    EXPECT_EQ(proef_inhoud<DtGo>(dtgo).size(), static_cast<size_t>(t.onderweg));
    EXPECT_TRUE(proef_inhoud<DtPick>(dtpick).empty());
    sluit();
    ASSERT_FALSE(HasFailure());
    if (heel) break;
  }
  EXPECT_LE(te_veel, 5 + 2) << "only when it dies between a label and its line";
}

}  // namespace
