// Transactions of labels: what each leaves in the files, the order of a day, and who waits for
// whom.
#include "tests/support/agent.h"
#include "tests/support/dc_proef.h"

namespace {

struct DcLoop : DcProef {
  DtSer serie_nu(const Serienr& nr) {
    DtSer rec{};
    met([&] { rec = proef_serie(nr); });
    return rec;
  }
  int32_t nieuw(uint8_t filiaal, uint8_t status = ETI_VOORRAAD) {
    int32_t n = 0;
    met([&] { n = leg(ROK, status, filiaal); });
    return n;
  }
};

TEST_F(DcLoop, AReceiveReportedBeforeItsSend) {
  const int32_t n = nieuw(1);
  EXPECT_EQ(verwerk({ontvang(1, 2, code(n), DC_GEEN_AANTAL, 7), zend(1, 2, code(n), 1, 7)}), "");
  EXPECT_EQ(staat(n), "2");
  const auto go = alles<DtGo>(dtgo);
  ASSERT_EQ(go.size(), 1u);
  EXPECT_EQ(go[0].afgewerkt, 1);
  EXPECT_EQ(go[0].zenddatum, DAG);
  EXPECT_EQ(go[0].verzamel, 0);
  const auto io = alles<DtIo>(dtio);
  ASSERT_EQ(io.size(), 1u);
  const DtIo soll{2, 1, DAG, static_cast<uint32_t>(n), 7, date_today(), 1, 0};
  EXPECT_EQ(memcmp(&io[0], &soll, sizeof soll), 0);
  EXPECT_EQ(alles<DtFin>(dtfin).size(), 1u);
  EXPECT_EQ(bytes_van("KASMUT.TXT"), str_format("001255F%08ld\n002255F%08ld\n", n, n));
  EXPECT_EQ(serie_nu(ROK).datum_mutatie, DAG);
  EXPECT_FALSE(dc_aanwezig());
}

TEST_F(DcLoop, WhatIsOnItsWayArrivesUnderItsOwnNumberFirst) {
  int32_t n = 0;
  met([&] { n = onderweg(ROK, 1, 2, 20000011); });
  // The other document's receive is not what the label waits for, though it comes first.
  EXPECT_EQ(verwerk({ontvang(1, 2, code(n), 1, 20000028), ontvang(1, 2, code(n), 1, 20000011),
                     zend(2, 3, code(n))}),
            "  1       2 ontv 24-04-23 20000028  " + code(n) +
                "       10100.10.1      1  SGN  Onderweg van 2 naar 3\n");
  EXPECT_EQ(staat(n), "2");
}

TEST_F(DcLoop, ElevenOfADayKeepTheOrderOfTheFile) {
  for (const int meer : {0, 1}) {
    const int32_t n = nieuw(1);
    std::vector<DcRegel> r(8 + static_cast<size_t>(meer), zend(1, 2, code(n)));
    r.insert(r.begin(), zend(2, 3, code(n)));
    r.push_back(ontvang(1, 2, code(n)));
    const std::string lijst = verwerk(r);
    EXPECT_EQ(staat(n), meer == 0 ? "2>3" : "2") << lijst;
  }
}

TEST_F(DcLoop, ASoldPieceFinishesItsTransitAndStaysSold) {
  int32_t n = 0;
  met([&] { n = weg(ROK, ETI_VERKOPEN, 1, 2, DAG); });
  EXPECT_NE(verwerk({ontvang(1, 2, code(n))}).find("SGN  Verkocht in filiaal 2"),
            std::string::npos);
  EXPECT_EQ(staat(n), "2V");
  EXPECT_EQ(alles<DtGo>(dtgo).at(0).afgewerkt, 1);
  EXPECT_EQ(alles<DtIo>(dtio).at(0).onderweg, 1);
  // It is there now: the same line again is refused.
  EXPECT_NE(verwerk({ontvang(1, 2, code(n))}).find("AFK  Ongeldige status VRK"), std::string::npos);
  EXPECT_EQ(alles<DtIo>(dtio).size(), 1u);
}

TEST_F(DcLoop, ATripElsewhereIsUndone) {
  for (const bool afgerekend : {false, true}) {
    int32_t n = 0;
    met([&] {
      n = onderweg(ROK, 1, 3);
      DtFin f{};
      IXSWITCH(dtfin, 2);
      f.etiket = static_cast<uint32_t>(n);
      ASSERT_TRUE(IXNEXT(dtfin, &f, 1));
      f.afgerekend = afgerekend ? 1 : 0;
      IXWRITE(dtfin, &f);
    });
    verwerk({ontvang(1, 2, code(n))});
    EXPECT_EQ(staat(n), "2");
    EXPECT_TRUE(alles<DtGo>(dtgo).empty());
    std::string regels;
    for (const DtFin& f : alles<DtFin>(dtfin))
      if (f.etiket == static_cast<uint32_t>(n))
        regels += str_format("%d-%d>%d/%d ", f.houder, f.vanfil, f.naarfil, f.afgerekend);
    EXPECT_EQ(regels, afgerekend ? "1-1>2/0 1-1>3/1 3-3>1/0 " : "1-1>2/0 ");
  }
  // A transit record of another pair than the label's is no trip: the receive takes it away.
  int32_t n = 0;
  met([&] {
    n = onderweg(ROK, 1, 2);
    DtGo go{};
    go.etiket = static_cast<uint32_t>(n);
    ASSERT_TRUE(IXREAD(dtgo, &go));
    go.naarfil = 4;
    IXWRITE(dtgo, &go);
  });
  EXPECT_EQ(verwerk({ontvang(1, 2, code(n))}), "");
  EXPECT_TRUE(alles<DtGo>(dtgo).empty());
}

TEST_F(DcLoop, WhatWasMissedAtStocktakingIsStockAgain) {
  const int32_t n = nieuw(2, ETI_CORRECTIES);
  DtSer rec = serie_nu(ROK);
  rec.correcties = 3;
  met([&] { IXWRITE(dtser, &rec); });
  // Refused, but found.
  EXPECT_NE(verwerk({zend(1, 2, code(n))}).find("Inventarisatie"), std::string::npos);
  EXPECT_EQ(staat(n), "2");
  EXPECT_EQ(serie_nu(ROK).correcties, 2u);
  EXPECT_EQ(serie_nu(ROK).voorraad, 1u);
  EXPECT_EQ(bytes_van("KASMUT.TXT"), "255255d101000100001\n");
}

TEST_F(DcLoop, WithoutTransitTheReceiveOfASendComesBeforeAllElse) {
  transit = false;
  const int32_t n = nieuw(1);
  const std::string lijst =
      verwerk({zend(1, 2, code(n)), zend(2, 3, code(n)), ontvang(1, 2, code(n))});
  EXPECT_EQ(staat(n), "3");
  EXPECT_EQ(lijst, "  1       2 ontv 24-04-23           " + code(n) +
                       "       10100.10.1      1  AFK  Reeds aanwezig in filiaal\n");
  EXPECT_EQ(alles<DtGo>(dtgo).at(0).afgewerkt, 0);
}

TEST_F(DcLoop, ALabelWhoseSeriesIsInUseIsPassedOver) {
  const int32_t n = nieuw(1);
  Agent agent([this](const std::string& opdracht) {
    keten.open();
    if (opdracht == "neem") return std::string(serie_wacht(ROK) ? "ja" : "nee");
    return std::string();
  });
  ASSERT_EQ(agent.ask("neem"), "ja");
  EXPECT_EQ(verwerk({zend(1, 2, code(n)), zend(1, 2, "x")}),
            "  1       2 verz 24-04-23           x                                 AFK  EAN-code "
            "onbekend\n");
  agent.kill_now();
  EXPECT_EQ(staat(n), "1");
  EXPECT_EQ(verwerk({zend(1, 2, code(n))}), "");
  EXPECT_EQ(staat(n), "1>2");
}

TEST_F(DcLoop, TheRunLeavesKeysAndLocksAsTheyWere) {
  const int32_t n = nieuw(1);
  bestand({zend(1, 2, code(n)), zend(2, 1, code(n))});
  met([&] {
    IXSWITCH(dtgo, 3);
    IXSWITCH(dtfin, 1);
    lijst_van(true);
    EXPECT_EQ(dtgo->block.key_number, 3);
    EXPECT_EQ(dtfin->block.key_number, 1);
  });
  EXPECT_FALSE(file_exists("TP07E.TXT") || file_exists("TP07M.INX"));
  Agent agent([this](const std::string&) {
    keten.open();
    return std::string(serie_probeer(ROK) ? "ja" : "nee");
  });
  EXPECT_EQ(agent.ask("?"), "ja");
}

}  // namespace
