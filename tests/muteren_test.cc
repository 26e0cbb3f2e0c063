// The steps of a move as records and bytes: what each file holds afterwards, which key the tables
// stand on, and two terminals at the same series and the same file.
#include <cstring>

#include "isam/base.h"
#include "main/iofil.h"
#include "sub/ioeti.h"
#include "sub/muteren.h"
#include "tests/support/agent.h"
#include "tests/support/bestand.h"
#include "tests/support/stukken.h"

namespace {

constexpr Serienr BLOUSE{10100, 10, 1}, BROEK{10200, 310, 4};

struct Muteren : ::testing::Test {
  Keten keten;

  void open(uint8_t opties = 1, uint8_t koppeling = 1) {
    keten.open();
    sys_rec1.opties = opties;
    sys_rec1.seriekoppeling = koppeling;
    Keten::serie(BLOUSE);
    // As a walk of a caller has them.
    IXSWITCH(dtgo, 2);
    IXSWITCH(dtfin, 2);
    IXSWITCH(dtser, 2);
  }
  void sleutels_staan() const {
    EXPECT_EQ(dtgo->block.key_number, 2);
    EXPECT_EQ(dtfin->block.key_number, 2);
    EXPECT_EQ(dtser->block.key_number, 2);
  }
  /// A label of the series; its block is the series' chain.
  static int32_t etiket(uint8_t status, uint8_t filiaal) {
    Etiket e = proef_etiket(BLOUSE, status, 5, filiaal);
    int32_t nummer = 0;
    EXPECT_TRUE(serie_wacht(BLOUSE));
    ioeti('W', &nummer, &e);
    ser_rec.blok1 = eti_blok(nummer);
    serie_schrijf();
    return nummer;
  }
};

TEST_F(Muteren, ASendLeavesTransitMoneyAndTheLabelOnItsWay) {
  open();
  int32_t nummer = etiket(ETI_VOORRAAD, 1);
  ASSERT_TRUE(serie_wacht(BLOUSE));
  Etiket e = proef_lees(nummer);
  const uint16_t vandaag = date_today();
  // The books know it at branch 1, the send comes from 2: the money goes from 1.
  zend_etiket(nummer, &e, {2, 4, 20000011, vandaag, 1}, true);
  EXPECT_EQ(ser_rec.datum_mutatie, vandaag);
  serie_schrijf();
  sleutels_staan();

  e = proef_lees(nummer);
  EXPECT_TRUE(e.status == ETI_VOORRAAD && e.filiaal == 2 && e.onderweg == 1 && e.doel == 4);
  ASSERT_TRUE(go_lees(nummer));
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&go_rec), 4), std::string("\2\4\1\0", 4));
  EXPECT_EQ(go_rec.opdrachtnr, 20000011u);
  EXPECT_TRUE(go_rec.nr == BLOUSE && go_rec.soort == 1 && go_rec.afgewerkt == 0);
  EXPECT_EQ(go_rec.zenddatum, vandaag);
  const auto fin = proef_inhoud<DtFin>(dtfin, 1);
  ASSERT_EQ(fin.size(), 1u);
  EXPECT_TRUE(fin[0].houder == 1 && fin[0].vanfil == 2 && fin[0].naarfil == 4);
  EXPECT_EQ(fin[0].regel, 0u);
  EXPECT_EQ(bytes_van("KASMUT.TXT"), str_format("002255F%08ld\n004255F%08ld\n", nummer, nummer));

  // With nothing travelling in the books it is at its destination at once, and a label that stands
  // there already costs nothing.
  sys_rec20.transit = 0;
  ASSERT_TRUE(serie_wacht(BLOUSE));
  e.onderweg = e.doel = 0;
  e.filiaal = 5;
  ioeti('W', &nummer, &e);
  zend_etiket(nummer, &e, {2, 5, 0, static_cast<uint16_t>(vandaag - 3), 0}, false);
  EXPECT_EQ(ser_rec.datum_mutatie, vandaag) << "an older send does not set the date back";
  serie_los();
  e = proef_lees(nummer);
  EXPECT_TRUE(e.filiaal == 5 && e.onderweg == 0);
  EXPECT_EQ(proef_inhoud<DtFin>(dtfin, 1).size(), 1u);
  EXPECT_EQ(proef_inhoud<DtGo>(dtgo, 1).size(), 1u)
      << "one transit a label: the new trip replaces it";
  EXPECT_TRUE(go_lees(nummer) && go_rec.naarfil == 5);
  EXPECT_EQ(file_size("KASMUT.TXT"), 32) << "no lines were asked for";
}

TEST_F(Muteren, TransitIsFinishedOrDeletedAndAMissingOneIsNoTrouble) {
  open();
  ASSERT_TRUE(serie_wacht(BLOUSE));
  go_nieuw(17, {0, 3, 0, 45000, 0});
  go_nieuw(18, {0, 3, 0, 45000, 0});
  go_afwerken(17);
  go_verwijder(18);
  go_afwerken(19);
  go_verwijder(19);
  sleutels_staan();
  const auto go = proef_inhoud<DtGo>(dtgo, 1);
  ASSERT_EQ(go.size(), 1u);
  EXPECT_TRUE(go[0].etiket == 17 && go[0].afgewerkt == 1);
  EXPECT_FALSE(go_lees(19));
  EXPECT_EQ(go_rec.etiket, 0u);
  // Nothing stayed locked: another trip replaces the finished one.
  go_nieuw(17, {3, 1, 20000028, 45001, 0});
  ASSERT_TRUE(go_lees(17));
  EXPECT_TRUE(go_rec.afgewerkt == 0 && go_rec.vanfil == 3);
  serie_los();
}

TEST_F(Muteren, LinesAreNumberedPerLabelAndDay) {
  open();
  ASSERT_TRUE(serie_wacht(BLOUSE));
  fin_nieuw(17, 0, {0, 3, 0, 45000, 0});
  fin_nieuw(17, 3, {3, 1, 0, 45000, 0});  // another pair, the same day
  fin_nieuw(17, 1, {1, 2, 0, 45001, 0});
  fin_nieuw(18, 0, {0, 3, 0, 45000, 0});
  fin_nieuw(18, 3, {0, 3, 0, 45000, 0});  // stands there already
  serie_los();
  std::string nummers;
  for (const DtFin& f : proef_inhoud<DtFin>(dtfin, 2))
    nummers += str_format("%lu/%u/%lu ", f.etiket, f.datum, f.regel);
  EXPECT_EQ(nummers, "17/45000/0 17/45000/1 17/45001/0 18/45000/0 ");
}

TEST_F(Muteren, AReversalDeletesOrCountersTheLastLineOfItsPair) {
  open();
  ASSERT_TRUE(serie_wacht(BLOUSE));
  fin_nieuw(17, 6, {0, 3, 0, 45000, 0});
  EXPECT_EQ(fin_terug(17, 0, 4, 45002), 0) << "another pair: nothing to reverse";
  EXPECT_EQ(fin_terug(99, 5, 4, 45002), 5) << "no line at all";
  EXPECT_EQ(proef_inhoud<DtFin>(dtfin, 1).size(), 1u);
  EXPECT_EQ(fin_terug(17, 0, 3, 45002), 6) << "the holder, not the sender";
  EXPECT_TRUE(proef_inhoud<DtFin>(dtfin, 1).empty());
  EXPECT_EQ(IXCHECK("DTFIN"), 1);

  fin_nieuw(17, 6, {0, 3, 0, 45002, 0});
  DtFin regel = proef_inhoud<DtFin>(dtfin, 1).front();
  regel.afgerekend = 1;
  memset(regel.afrekening, 7, sizeof regel.afrekening);
  IXWRITE(dtfin, &regel);
  EXPECT_EQ(fin_terug(17, 0, 3, 45002), 6);
  serie_los();
  const auto fin = proef_inhoud<DtFin>(dtfin, 2);
  ASSERT_EQ(fin.size(), 2u);
  EXPECT_EQ(memcmp(&fin[0], &regel, sizeof regel), 0) << "what was settled stays";
  DtFin tegen{};
  tegen.houder = tegen.vanfil = 3;
  tegen.naarfil = 6;
  tegen.soort = 1;
  tegen.datum = 45002;
  tegen.nr = BLOUSE;
  tegen.etiket = 17;
  tegen.regel = 1;
  EXPECT_EQ(memcmp(&fin[1], &tegen, sizeof tegen), 0);
  sleutels_staan();
}

TEST_F(Muteren, AReceiptNobodySent) {
  open();
  const int32_t nummer = etiket(ETI_VOORRAAD, 1);
  ASSERT_TRUE(serie_wacht(BLOUSE));
  Etiket e = proef_lees(nummer);
  ontvang_etiket(nummer, &e, {2, 4, 20000011, 45010, 0});
  serie_schrijf();
  EXPECT_EQ(proef_lees(nummer).filiaal, 4);
  EXPECT_FALSE(go_lees(nummer));
  const auto io = proef_inhoud<DtIo>(dtio, 1);
  ASSERT_EQ(io.size(), 1u);
  DtIo soll{4, 2, 45010, static_cast<uint32_t>(nummer), 20000011, date_today(), 0, 0};
  EXPECT_EQ(memcmp(&io[0], &soll, sizeof soll), 0);
  EXPECT_EQ(proef_inhoud<DtFin>(dtfin, 1).front().houder, 1);
  EXPECT_EQ(bytes_van("KASMUT.TXT"), str_format("002255F%08ld\n004255F%08ld\n", nummer, nummer));
}

TEST_F(Muteren, ACorrectedLabelComesBackInTheCounters) {
  open();
  const int32_t nummer = etiket(ETI_CORRECTIES, 1);
  ASSERT_TRUE(serie_wacht(BLOUSE));
  ser_rec.correcties = 1;
  Etiket e = proef_lees(nummer);
  etiket_terug_voorraad(&e);
  EXPECT_TRUE(e.status == ETI_VOORRAAD && e.vrkdat == 0);
  EXPECT_TRUE(ser_rec.voorraad == 1 && ser_rec.correcties == 0);
  EXPECT_EQ(bytes_van("KASMUT.TXT"), "255255d101000100001\n");
  etiket_terug_voorraad(&e, false);
  EXPECT_EQ(ser_rec.correcties, 0u) << "a counter that was wrong does not turn round";
  sys_rec1.seriekoppeling = 0;
  kasmut_d();
  sys_rec1.opties = 0;
  sys_rec1.seriekoppeling = 1;
  kasmut_d();
  kasmut_f(nummer, 1, 2);
  EXPECT_EQ(file_size("KASMUT.TXT"), 20);
  serie_los();
}

TEST_F(Muteren, TillsWithAFileOfTheirOwnHearItToo) {
  for (const char* naam : {"KAS0201.SYS", "KAS0202.SYS", "KAS0401.SYS"}) zet_bytes(naam, "");
  open(1 | 4);
  pairs_load();
  kasmut_f(17, 2, 5);
  ASSERT_TRUE(serie_wacht(BLOUSE));
  kasmut_d();
  serie_los();
  pairs_free();
  const std::string f("F00000017\n\0", 11), d("d101000100001\n\0", 15);
  EXPECT_EQ(bytes_van("DCMU0201.TXT"), f + d);
  EXPECT_EQ(bytes_van("DCMU0202.TXT"), f + d);
  EXPECT_EQ(bytes_van("DCMU0401.TXT"), d);
}

TEST_F(Muteren, ASeriesOfAnotherTerminalIsRefusedAndReadAgainUnderTheLock) {
  const auto wacht = ix_hooks.wacht;
  ix_hooks.wacht = [](ICB*) {};  // nobody reads who holds it
  Agent ander([&](const std::string& wat) -> std::string {
    if (wat == "open") keten.open();
    if (wat == "pak") return serie_wacht(BLOUSE) ? "ja" : "nee";
    if (wat == "schrijf") {
      ser_rec.voorraad = 42;
      serie_schrijf();
    }
    if (wat == "probeer") return serie_probeer(BLOUSE) ? "ja" : "nee";
    if (wat == "wis") {
      IXSWITCH(dtser, 1);
      IXDELETE(dtser, &ser_rec);
    }
    return "goed";
  });
  open();
  ander.ask("open");
  EXPECT_EQ(ander.ask("pak"), "ja");
  EXPECT_FALSE(serie_probeer(BLOUSE));
  EXPECT_EQ(ser_rec.nr.artgroep, 0u) << "nothing that looks like the series";
  ander.ask("schrijf");
  EXPECT_TRUE(serie_probeer(BLOUSE));
  EXPECT_EQ(ser_rec.voorraad, 42u);
  EXPECT_EQ(ander.ask("probeer"), "nee");
  memset(&ser_rec, 0, sizeof ser_rec);  // whatever became of the buffer
  serie_los();
  EXPECT_EQ(ander.ask("probeer"), "ja");
  sleutels_staan();
  // Deleted while we had it in mind; a key that is not there is not held either.
  ander.ask("wis");
  EXPECT_FALSE(serie_probeer(BLOUSE));
  EXPECT_FALSE(serie_wacht(BLOUSE));
  EXPECT_EQ(ander.ask("pak"), "nee");
  EXPECT_FALSE(serie_wacht(BROEK));
  ix_hooks.wacht = wacht;
}

TEST_F(Muteren, LinesOfTwoTerminalsDoNotMix) {
  constexpr int AANTAL = 300;
  const auto schrijf = [](int32_t vanaf, uint8_t filiaal) {
    for (int32_t i = 0; i < AANTAL; ++i) kasmut_f(vanaf + i, filiaal, 9);
  };
  Agent ander([&](const std::string&) -> std::string {
    keten.open();
    session_terminal = 8;
    sys_rec1.opties = 1;
    schrijf(50000, 2);
    return "klaar";
  });
  open();
  ander.send("schrijf");
  schrijf(10000, 1);
  EXPECT_EQ(ander.answer(), "klaar");
  const std::string bytes = bytes_van("KASMUT.TXT");
  ASSERT_EQ(bytes.size(), size_t{AANTAL} * 2 * 2 * 16);
  int32_t volgend[2] = {10000, 50000};
  for (size_t plaats = 0; plaats < bytes.size(); plaats += 32) {
    const int wie = bytes[plaats + 2] == '1' ? 0 : 1;
    const int32_t nummer = volgend[wie]++;
    ASSERT_EQ(bytes.substr(plaats, 32),
              str_format("%03d255F%08ld\n009255F%08ld\n", wie + 1, nummer, nummer));
  }
}

}  // namespace
