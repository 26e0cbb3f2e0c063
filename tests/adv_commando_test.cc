// The advice commands as an operator has them: what stands of earlier orders, the dialog, the
// claims between terminals, and the order lines that come of it.
#include "main/batchvw.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_vul.h"
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
      voeg_weg();
      stuk(JAS, ETI_VOORRAAD, 1, 0);
      verkocht(JAS, 1, 2);
    });
  }
  static void voeg_weg() {
    ProefKeten::voeg(dtaanv, DtAanv{WEG, 77});
    ProefKeten::voeg(dtaanv, DtAanv{WEG, 78});
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
  t.type(Enter);
  EXPECT_SHOWS(t, "KLAAR");
  t.type(Enter);
  EXPECT_EQ(t.exit_status(), 0);
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
  t.type("J", Enter, Enter);
  EXPECT_SHOWS(t, "KLAAR");
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
  t.type("N", Enter);
  EXPECT_SHOWS(t, "KLAAR");
  EXPECT_EQ(regels(), voor);
  Terminal u = start();
  u.type("J", Enter);
  EXPECT_SHOWS(u, "Wilt u toch automatisch aanvullen");
  EXPECT_NE(u.output().find("Verwijderen voorlopige verzamelopdrachten"), std::string::npos);
  u.type("N", Enter);
  EXPECT_SHOWS(u, "KLAAR");
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
  const auto wijzig = [](Terminal& t) {
    t.type("N", Enter);
    EXPECT_SHOWS(t, "Magazijn en filialen");
    t.type(Up, Up, Enter);
    EXPECT_SHOWS(t, "Vanuit magazijnen", "Ingave magazijnen, gescheiden door komma's");
    t.type("0", Enter);
    EXPECT_SHOWS(t, "Ingave filialen, gescheiden door komma's");
    t.type("4-5", Enter);
    EXPECT_ROWS(t, 6, R"(
 Aanvullen vanuit     Magazijn
 Vanuit magazijnen    0
 Aanvullen filialen   4-5
)");
  };
  Terminal t = draai(opdracht_automatisch, krit);
  wijzig(t);
  t.type(Esc);
  EXPECT_SHOWS(t, "KLAAR bron 3 vanuit 255 aanvul 255");
  EXPECT_EQ(regels(), "");
  Terminal u = draai(opdracht_automatisch, krit);
  wijzig(u);
  u.type(Enter);
  EXPECT_SHOWS(u, "KLAAR bron 1 vanuit 1 aanvul 48");
  EXPECT_EQ(regels(), "0>4 10100.10.1 2x1\n");
}

/// The second of two series has a chain that leads into the first one's: nothing is written for it.
TEST_F(Automatisch, ASeriesThatCannotBeReadWholeIsTold) {
  stukken();
  met_keten([] {
    DtSer rok{}, jas{};
    rok.nr = ROK;
    jas.nr = JAS;
    IXREAD(dtser, &rok);
    IXREAD(dtser, &jas);
    jas.blok1 = rok.blok1;
    IXWRITE(dtser, &jas);
  });
  Terminal t = start();
  t.type(Enter);
  EXPECT_SHOWS(t, "10100.20.2  Etiketten niet volledig leesbaar", "1 series overgeslagen");
  t.type(Enter);
  EXPECT_SHOWS(t, "KLAAR");
  EXPECT_EQ(regels(), "0>3 10100.10.1 1x1 2x1\n0>4 10100.10.1 2x1\n");
}

/// Another terminal that claims functions of the same chain.
std::string claimer(const std::string& map, const std::string& wat) {
  if (session_terminal != 5) {
    std::filesystem::current_path(map);
    session_terminal = 5;
    int32_t nummer = 1;
    iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
  }
  const int functie = std::stoi(wat.substr(1));
  const int64_t band = 40085 + 99 * functie;
  switch (wat[0]) {
    case 's':
      return vw_claim(functie, false) ? "ja" : "nee";
    case 'x':
      return vw_claim_excl(functie) ? "ja" : "nee";
    case 'u':
      vw_free_excl(functie);
      return "los";
    default:  // whether nobody else holds any of it
      return vw_lock('T', iotab_fd(), band, 99) ? "vrij" : "bezet";
  }
}

TEST_F(Automatisch, WaitsForOrderLinesInUseAndGivesUpOnRequest) {
  stukken();
  const std::string map = keten.map.pad;
  Agent ander([map](const std::string& wat) { return claimer(map, wat); });
  ASSERT_EQ(ander.ask("s10"), "ja");
  Terminal t = start();
  EXPECT_TRUE(t.wait_for("Er zijn gebruikers actief die verwerking blokkeren!"));
  EXPECT_EQ(ander.ask("t9"), "bezet");
  t.type_now("x");
  EXPECT_TRUE(t.wait_for("Wilt u wachten?"));
  t.type("N", Enter);
  EXPECT_SHOWS(t, "KLAAR");
  EXPECT_EQ(ander.ask("t9"), "vrij");
  EXPECT_EQ(regels(), "");

  EXPECT_EQ(ander.ask("u10"), "los");
  Terminal u = start();
  EXPECT_SHOWS(u, "BEREKENEN AANVULADVIES");
  EXPECT_EQ(ander.ask("t9"), "bezet");
  EXPECT_EQ(ander.ask("t10"), "bezet");
  u.type(Esc);
  EXPECT_SHOWS(u, "KLAAR");
  EXPECT_EQ(ander.ask("t9"), "vrij");
  EXPECT_EQ(ander.ask("t10"), "vrij");
}

}  // namespace
