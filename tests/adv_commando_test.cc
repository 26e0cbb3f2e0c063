// The advice commands as an operator has them: what stands of earlier orders, the dialog, the
// claims between terminals, and the order lines that come of it.
#include "sub/adv_opdracht.h"
#include "sub/adv_vul.h"
#include "sub/muteren.h"
#include "sub/serie.h"
#include "sub/serie_keuze.h"
#include "tests/support/adv_keten.h"
#include "tests/support/agent.h"

namespace {

using namespace toets;

struct Automatisch : AdvKeten {
  Terminal start() { return draai(opdracht_automatisch); }
  /// Two pieces of size S and one of M sold in branch 3, one M in branch 4; in the warehouse one S
  /// and three M. A series that is gone asks too.
  void stukken() {
    met_keten([] {
      for (const int maat : {1, 2, 2, 2}) stuk(ROK, ETI_VOORRAAD, static_cast<uint8_t>(maat), 0);
      for (const int maat : {1, 1, 2}) verkocht(ROK, static_cast<uint8_t>(maat), 3);
      verkocht(ROK, 2, 4);
      for (const uint32_t weg : {77u, 78u}) ProefKeten::voeg(dtaanv, DtAanv{WEG, weg});
      stuk(JAS, ETI_VOORRAAD, 1, 0);
      verkocht(JAS, 1, 2);
    });
  }
};

TEST_F(Automatisch, ReplenishesWhatWasSoldFromTheWarehouse) {
  stukken();
  Terminal t = start();
  EXPECT_ROWS(t, 3, R"(
 BEREKENEN AANVULADVIES

 Aanvullen filialen
 Aanvullen vanuit     Magazijn en filialen
 Vanuit filialen      alle
 Aanvullen filialen   alle
)");
  EXPECT_SHOWS(t, "Automatisch aanmaken", "Akkoord? (J/N)");
  EXPECT_SHOWS(t.type(Enter), "KLAAR");
  EXPECT_EQ(t.type(Enter).exit_status(), 0);
  EXPECT_EQ(regels(),
            "0>3 10100.10.1 1x1 2x1\n"
            "0>4 10100.10.1 2x1\n"
            "0>2 10100.20.2 1x1\n");
  EXPECT_EQ(aanvul_regels(), 7) << "the information stays, of a series that is gone too";
}

TEST_F(Automatisch, WithoutInformationNothingHappens) {
  met_keten([] { regel(0, 1, ROK, 2, 20000011); });
  Terminal t = start();
  EXPECT_SHOWS(t, "Er zijn nog definitieve verzamelopdrachten,",
               "Wilt u toch automatisch aanvullen? (J/N)");
  EXPECT_SHOWS(t.type("J", Enter, Enter), "KLAAR");
  EXPECT_EQ(regels(), "0>1 10100.10.1 nr 20000011 1x2\n");
}

TEST_F(Automatisch, ProvisionalOrdersAreKeptOrGoAllAtOnce) {
  met_keten([] {
    for (int van = 0; van < 4; ++van)
      for (int naar = 0; naar < 4; ++naar) {
        regel(van, naar, ROK, 3);
        regel(van, naar, WEG, 4);
        if (naar == 2) regel(van, naar, JAS, 1, 20000011);
      }
  });
  const std::string voor = regels();
  Terminal t = start();
  EXPECT_SHOWS(t, "Er zijn nog voorlopige verzamelopdrachten.",
               "Mogen deze worden verwijderd? (J/N)");
  EXPECT_SHOWS(t.type("N", Enter), "KLAAR");
  EXPECT_EQ(regels(), voor);
  Terminal u = start();
  EXPECT_SHOWS(u.type("J", Enter), "Wilt u toch automatisch aanvullen");
  EXPECT_NE(u.output().find("Verwijderen voorlopige verzamelopdrachten"), std::string::npos);
  EXPECT_SHOWS(u.type("N", Enter), "KLAAR");
  EXPECT_EQ(regels(),
            "0>2 10100.20.2 nr 20000011 1x1\n1>2 10100.20.2 nr 20000011 1x1\n"
            "2>2 10100.20.2 nr 20000011 1x1\n3>2 10100.20.2 nr 20000011 1x1\n");
}

TEST_F(Automatisch, TheDialogChangesTheCriteriaOnlyWhenItIsConfirmed) {
  stukken();
  const auto krit = [] {
    const AdvRec& r = adv_sets[ADV_AUTOMATISCH];
    return str_format("bron %d vanuit %d aanvul %d", r.bron_soort, r.vanuit_filialen[0],
                      r.aanvul_filialen[0]);
  };
  for (const bool akkoord : {false, true}) {
    Terminal t = draai(opdracht_automatisch, krit);
    t.type("N", Enter, Up, Up, Enter);
    EXPECT_SHOWS(t, "Vanuit magazijnen", "Ingave magazijnen, gescheiden door komma's");
    t.type("0", Enter, "4-5", Enter);
    EXPECT_ROWS(t, 6, R"(
 Aanvullen vanuit     Magazijn
 Vanuit magazijnen    0
 Aanvullen filialen   4-5
)");
    t.type(akkoord ? Enter : Esc);
    EXPECT_SHOWS(
        t, akkoord ? "KLAAR bron 1 vanuit 1 aanvul 48" : "KLAAR bron 3 vanuit 255 aanvul 255");
    EXPECT_EQ(regels(), akkoord ? "0>4 10100.10.1 2x1\n" : "");
  }
}

/// The second of two series has a chain that leads into the first one's: nothing is written for it.
TEST_F(Automatisch, ASeriesThatCannotBeReadWholeIsTold) {
  stukken();
  met_keten([] {
    DtSer jas = proef_serie(JAS);
    jas.blok1 = proef_serie(ROK).blok1;
    IXWRITE(dtser, &jas);
  });
  Terminal t = start();
  t.type(Enter);
  EXPECT_SHOWS(t, "10100.20.2  Etiketten niet volledig leesbaar", "1 series overgeslagen");
  EXPECT_SHOWS(t.type(Enter), "KLAAR");
  EXPECT_EQ(regels(), "0>3 10100.10.1 1x1 2x1\n0>4 10100.10.1 2x1\n");
}

struct Handmatig : AdvKeten {
  void SetUp() override {
    AdvKeten::SetUp();
    met_keten([] {
      serie(MAT, "ABBA", "Mantel");
      for (const Serienr& nr : {ROK, JAS, MAT}) {
        for (const uint8_t maat : {uint8_t{1}, uint8_t{2}}) stuk(nr, ETI_VOORRAAD, maat, 0);
        verkocht(nr, 1, 3);
      }
    });
  }
  static constexpr Serienr MAT{10100, 50, 1};
  /// Behind the criteria, at the choice of series.
  Terminal start() {
    Terminal t = draai(opdracht_handmatig);
    EXPECT_SHOWS(t, "Handmatig aanmaken", "SELECTIE OP OPDRACHT");
    EXPECT_FALSE(t.shows("SELECTIE OP VOORRAAD en VERKOPEN"));
    t.type(Esc);
    EXPECT_SHOWS(t, "SERIES", "11 Via serienummer", "12 Via merk-artg-model", "13 Via merk-model");
    return t;
  }
  static void nummer(Terminal& t, const Serienr& nr) {
    t.type(std::string(Back) + std::to_string(nr.artgroep), Enter);
    t.type(std::string(Back) + std::to_string(nr.kleur), Enter);
    t.type(std::string(Back) + std::to_string(nr.volgnr), Enter);
  }
};

TEST_F(Handmatig, AnAcceptedAdviceBecomesOrdersWhenTheSeriesIsLeft) {
  met_keten([] {
    regel(2, 4, ROK, 7, 20000011);
    regel(0, 4, JAS, 1);  // stands, and stays
  });
  Terminal t = start();
  EXPECT_FALSE(t.shows("Via selectie"));
  EXPECT_SHOWS(t.type("11"), "Ingave serienummer");
  nummer(t, WEG);
  EXPECT_SHOWS(t, "Serie onbekend");
  nummer(t, ROK);
  EXPECT_SHOWS(t, "10100.10.1");
  t.type("=");
  EXPECT_EQ(regels(), "0>4 10100.20.2 1x1\n2>4 10100.10.1 nr 20000011 1x7\n")
      << "nothing is written yet";
  EXPECT_SHOWS(t.type("+"), "10100.20.2");
  EXPECT_SHOWS(t.type("-"), "10100.10.1");
  EXPECT_SHOWS(t.type("z"), "Ingave serienummer");
  nummer(t, MAT);
  EXPECT_SHOWS(t.type("+"), "Geen series met een advies meer");
  EXPECT_SHOWS(t.type(Enter), "Ingave serienummer");
  nummer(t, MAT);
  EXPECT_SHOWS(t.type(Esc), "SERIES", "11 Via serienummer");
  EXPECT_SHOWS(t.type(Esc), "KLAAR");
  EXPECT_EQ(regels(), "0>3 10100.10.1 1x1\n0>4 10100.20.2 1x1\n2>4 10100.10.1 nr 20000011 1x7\n");
}

TEST_F(Handmatig, TheSeriesInHandIsLockedForOthersUntilItIsLeft) {
  Agent ander([this](const std::string&) {
    if (!keten.is_open) keten.open();
    const bool vrij = serie_probeer(ROK);
    if (vrij) serie_los();
    return std::string(vrij ? "vrij" : "bezet");
  });
  EXPECT_EQ(ander.ask("?"), "vrij");
  Terminal t = start();
  t.type("11");
  nummer(t, ROK);
  EXPECT_SHOWS(t, "10100.10.1");
  EXPECT_EQ(ander.ask("?"), "bezet");
  EXPECT_SHOWS(t.type("+"), "10100.20.2");
  EXPECT_EQ(ander.ask("?"), "vrij");
}

TEST_F(Handmatig, GoesOnInTheOrderOfTheWayThatWasChosen) {
  Terminal t = start();
  EXPECT_SHOWS(t.type("13"), "Ingave merk-model");
  t.type("5", Enter, "anna", Enter);  // by model: ABBA, ANNA, BEA
  EXPECT_SHOWS(t, "10100.10.1");
  EXPECT_SHOWS(t.type("+"), "10100.20.2");
  EXPECT_SHOWS(t.type("-", "-"), "10100.50.1");
  EXPECT_SHOWS(t.type(Esc, "12"), "Ingave merk-artg-model");
  EXPECT_SHOWS(t.type("5", Enter, "10100", Enter, std::string(Back) + "bea", Enter), "10100.20.2");
  EXPECT_SHOWS(t.type("-"), "10100.10.1");
}

TEST_F(Handmatig, ThroughTheSelectionInItsOwnOrder) {
  Terminal t = draai([] {
    proef_selectie(privaat.v, "MAKV", {ROK, MAT});
    serie_gevuld = true;
    opdracht_handmatig();
  });
  EXPECT_SHOWS(t.type(Esc, "14"), "10100.50.1");
  EXPECT_SHOWS(t.type("=", "+"), "10100.10.1");
  EXPECT_SHOWS(t.type("=", "z"), "10100.50.1");
  EXPECT_SHOWS(t.type("+", "+"), "Geen series met een advies meer");
  EXPECT_SHOWS(t.type(Enter), "SERIES", "14 Via selectie");
  EXPECT_EQ(regels(), "0>3 10100.10.1 1x1\n0>3 10100.50.1 1x1\n");
}

TEST_F(Handmatig, MutationsAreSelectedOnStockAndSalesToo) {
  Terminal t = draai(mutaties_ingeven);
  EXPECT_SHOWS(t, "Ingeven mutaties", "SELECTIE OP VOORRAAD en VERKOPEN");
}

}  // namespace
