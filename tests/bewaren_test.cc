// Removing what the order cycle leaves behind, and its two settings: on the screen, and in the
// files afterwards.
#include "main/bewaren.h"

#include "main/controle.h"
#include "sub/sel_krit.h"
#include "sub/tabellen.h"
#include "tests/support/adv_keten.h"

namespace {

using namespace toets;
constexpr uint32_t EEN = 20000011, TWEE = 20000028, DRIE = 20000035;

struct Bewaren : AdvKeten {
  static void opdracht(uint32_t nummer, int van, int naar, const Serienr& nr, const char* datum) {
    proef_regel(van, naar, nr, {{1, 1}}, nummer, datum);
  }
  SysRec20 rec20() {
    SysRec20 rec;
    memcpy(&rec, ProefKeten::sysrec(20).data(), sizeof rec);
    return rec;
  }
};

/// Behind a fresh start of the selection, as a program has it.
void wis_voorlopig() {
  sel_start(13);
  voorl_wissen();
}

// Provisional lines -------------------------------------------------------------------------------

struct Voorlopig : Bewaren {
  void SetUp() override {
    Bewaren::SetUp();
    met_keten([] {
      proef_merk(6);
      ProefKeten::serie(WEG, 1, 6);
      for (const Serienr& nr : {ROK, JAS, WEG})
        for (const auto& [van, naar] : {std::pair{0, 1}, {0, 2}, {0, 3}, {2, 1}, {2, 3}})
          regel(van, naar, nr, 1);
      opdracht(EEN, 0, 1, ROK, "01022026");
      opdracht(TWEE, 0, 3, ROK, "01022026");
    });
  }
};

TEST_F(Voorlopig, OfTheBranchesAndSeriesAskedForOnly) {
  Terminal t = draai(wis_voorlopig);
  t.type("1", "1", in("5"), Esc);  // one brand
  EXPECT_ROWS(t, 1, R"(
 Verwijderen voorlopige opdracht

Verzendfiliaal    : ___________________________________________________________)");
  EXPECT_SHOWS(t, "Ingave filialen, gescheiden door komma's");
  EXPECT_EQ(t.type(in("0")).row(3), "Verzendfiliaal    : 0");
  t.type(in("1,3"));  // past the receiver in between
  EXPECT_EQ(t.row(4), "Bestemmingsfiliaal: 1,3");
  EXPECT_SHOWS(t, "Akkoord? (J/N)");
  EXPECT_SHOWS(t.type(in("j")), "KLAAR");
  EXPECT_EQ(regels(),
            "0>1 10100.10.1 nr 20000011 1x1\n"
            "0>2 10100.10.1 1x1\n"
            "0>3 10100.10.1 nr 20000028 1x1\n"
            "0>2 10100.20.2 1x1\n"
            "0>1 10100.30.3 1x1\n"
            "0>2 10100.30.3 1x1\n"
            "0>3 10100.30.3 1x1\n"
            "2>1 10100.10.1 1x1\n"
            "2>3 10100.10.1 1x1\n"
            "2>1 10100.20.2 1x1\n"
            "2>3 10100.20.2 1x1\n"
            "2>1 10100.30.3 1x1\n"
            "2>3 10100.30.3 1x1\n");
}

TEST_F(Voorlopig, EnterIsAllAndTheOrdersStay) {
  const std::string was = regels();
  for (const bool ja : {false, true}) {
    Terminal t = draai(wis_voorlopig);
    EXPECT_EQ(t.type(Esc, Enter, Enter).row(3), "Verzendfiliaal    : alle");
    EXPECT_EQ(t.row(4), "Bestemmingsfiliaal: alle");
    EXPECT_SHOWS(t.type(in(ja ? "j" : "n")), "KLAAR");
    EXPECT_EQ(regels(), ja ? "0>1 10100.10.1 nr 20000011 1x1\n"
                             "0>3 10100.10.1 nr 20000028 1x1\n"
                           : was);
  }
}

TEST_F(Voorlopig, LeftNothingGoes) {
  const std::string was = regels();
  EXPECT_SHOWS(draai(wis_voorlopig).type(Esc, in("0"), Esc), "KLAAR");
  EXPECT_EQ(regels(), was);
}

// Orders ------------------------------------------------------------------------------------------

struct Orders : Bewaren {
  void SetUp() override {
    Bewaren::SetUp();
    met_keten([] {
      opdracht(EEN, 0, 1, ROK, "01022026");
      regel(0, 1, ROK, 1);
      opdracht(TWEE, 2, 1, ROK, "05022026");
      opdracht(DRIE, 0, 3, ROK, "09022026");
      opdracht(EEN, 0, 1, JAS, "01022026");
      opdracht(DRIE, 0, 3, JAS, "09022026");
      opdracht(TWEE, 2, 1, JAS, "05022026");
    });
  }
};

TEST_F(Orders, EveryLineOfThoseKeptInTheListGoes) {
  Terminal t = draai(verzamel_wissen);
  EXPECT_SHOWS(t, "Verwijderen bestaande verzamelopdracht", "<ENTER> voor alle");
  EXPECT_EQ(t.type(Enter, Enter).row(3), "Verzendfiliaal    : alle");
  EXPECT_EQ(t.row(4), "Printdatum vanaf  : eerste");
  EXPECT_EQ(t.text(5, 1, 26), std::string("Printdatum t/m    : ") + date_plain(date_today()));
  EXPECT_EQ(t.type(Back, Enter).text(5, 1, 27), "Printdatum t/m    : laatste");
  EXPECT_SHOWS(t, "20000011", "20000028", "20000035");
  t.type(F7, Down, F7, F3);  // the first and the last
  EXPECT_SHOWS(t, "<ENTER> voor alle");
  EXPECT_EQ(regels(),
            "0>1 10100.10.1 1x1\n"
            "2>1 10100.10.1 nr 20000028 1x1\n"
            "2>1 10100.20.2 nr 20000028 1x1\n");
  EXPECT_SHOWS(t.type(Esc), "KLAAR");
}

TEST_F(Orders, WithinTheBranchAndTheDates) {
  Terminal t = draai(verzamel_wissen);
  EXPECT_EQ(t.type(in("2")).row(3), "Verzendfiliaal    : 2");
  EXPECT_SHOWS(t.type(in("050226"), in("050226")), "20000028");
  EXPECT_FALSE(t.shows("20000011") || t.shows("20000035"));
  t.type(Esc);
  EXPECT_EQ(t.text(3, 21, 2), "2 ");  // the values of before
  EXPECT_SHOWS(t.type(Enter, Enter, in("040226")), "Geen informatie");
  EXPECT_SHOWS(t.type(Enter, in("0"), Enter, Enter), "Geen informatie");
  // Branch 0 stands there too, and Enter keeps it; all is what an emptied field means.
  EXPECT_EQ(t.type(Enter, Enter).row(3), "Verzendfiliaal    : 0");
  EXPECT_EQ(t.type(Enter, Enter, Enter, Back, Enter).row(3), "Verzendfiliaal    : alle");
  EXPECT_SHOWS(t.type(Esc), "KLAAR");
}

// Replenishment information -----------------------------------------------------------------------

struct Aanvul : Bewaren {
  uint32_t vandaag = 0, oud = 0, grens = 0, terug = 0;

  void SetUp() override {
    Bewaren::SetUp();
    met_keten([this] {
      vandaag = verkoop(date_today());
      grens = verkoop(static_cast<uint16_t>(date_today() - 21));
      oud = verkoop(static_cast<uint16_t>(date_today() - 300));
      terug = verkoop(0);
      ProefKeten::voeg(dtaanv, DtAanv{ROK, 99999});  // no such label
    });
  }
  static uint32_t verkoop(uint16_t datum) {
    const int32_t nummer = verkocht(ROK, 1, 1);
    proef_wijzig(nummer, [datum](Etiket& e) {
      e.vrkdat = datum;
      if (datum == 0) e.status = ETI_VOORRAAD;
    });
    return static_cast<uint32_t>(nummer);
  }
  std::vector<uint32_t> over() {
    std::vector<uint32_t> uit;
    met_keten([&uit] {
      for (const DtAanv& rec : proef_inhoud<DtAanv>(dtaanv)) uit.push_back(rec.etiket);
    });
    return uit;
  }
  void dagen(uint8_t n) {
    SysRec20 rec = rec20();
    rec.dagen_bewaard = n;
    ProefKeten::sysrec_zet(20, &rec, sizeof rec);
  }
};

TEST_F(Aanvul, UpToTheLimitAndOfLabelsThatAreGone) {
  Terminal t = draai(aanvulinfo_wissen);
  EXPECT_SHOWS(t, "Verwijderen aanvulinformatie van verkopen met verkoopdatum t/m " +
                      std::string(date_plain(static_cast<uint16_t>(date_today() - 21))));
  EXPECT_SHOWS(t.type(in("j")), "KLAAR");
  EXPECT_EQ(over(), std::vector{vandaag});
  dagen(0);
  Terminal nul = draai(aanvulinfo_wissen);
  EXPECT_SHOWS(nul, "t/m " + std::string(date_plain(date_today())));
  EXPECT_SHOWS(nul.type(Esc), "KLAAR");
  EXPECT_EQ(over(), std::vector{vandaag}) << "left: nothing goes";
}

TEST_F(Aanvul, AnotherDate) {
  Terminal t = draai(aanvulinfo_wissen);
  t.type(in("n"), in(date_plain(static_cast<uint16_t>(date_today() - 22))), in("j"));
  EXPECT_SHOWS(t, "KLAAR");
  EXPECT_EQ(over(), (std::vector{vandaag, grens}));
  Terminal leeg = draai(aanvulinfo_wissen);
  leeg.type(in("n"), Back, Enter);  // today
  EXPECT_SHOWS(leeg, "t/m " + std::string(date_plain(date_today())));
  EXPECT_SHOWS(leeg.type(in("j")), "KLAAR");
  EXPECT_TRUE(over().empty());
}

// Settings ----------------------------------------------------------------------------------------

TEST_F(Bewaren, DaysKeptAreWrittenAndNothingElse) {
  Terminal t = draai(aanvulinfo_bewaren);
  EXPECT_SHOWS(t, "Bewaren aanvulinformatie", "Aanvulinformatie van verkopen 21 dagen bewaren");
  SysRec20 rec = rec20();
  rec.verkoopdagen = 99;  // another program's
  ProefKeten::sysrec_zet(20, &rec, sizeof rec);
  t.type(in("30"), in("n")).ready();
  EXPECT_EQ(rec20().dagen_bewaard, 21);
  EXPECT_SHOWS(t.type(in("0"), in("j")), "KLAAR");
  EXPECT_EQ(rec20().dagen_bewaard, 0);
  EXPECT_EQ(rec20().verkoopdagen, 99);
  EXPECT_EQ(rec20().transit, 1);
}

TEST_F(Bewaren, LeftTheOldValuesStand) {
  const auto na = [] {
    return str_format("%d %d", sys_rec20.dagen_bewaard, sys_rec20.controle_keuze);
  };
  Terminal t = draai(aanvulinfo_bewaren, na);
  t.type(in("45"), Esc);
  EXPECT_TRUE(t.wait_for("van verkopen 21 dagen"));
  EXPECT_SHOWS(t, "KLAAR 21 0");
  Terminal c = draai(controle_instellen, na);
  EXPECT_SHOWS(c, "Instellen contr. verzamelopdrachten", "Keuze controleren verzamelopdrachten");
  c.type("j", Esc);
  EXPECT_TRUE(c.wait_for("verzamelopdrachten N"));
  EXPECT_SHOWS(c, "KLAAR 21 0");
  EXPECT_SHOWS(draai(controle_instellen).type(in("j")), "KLAAR");
  EXPECT_EQ(rec20().controle_keuze, 1);
  EXPECT_EQ(rec20().dagen_bewaard, 21);
}

}  // namespace
