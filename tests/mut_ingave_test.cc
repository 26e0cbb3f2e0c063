// Moves entered by hand as an operator with a scanner makes them, on a screen of their own, and
// what the files hold afterwards.
#include "sub/mut_ingave.h"

#include <map>
#include <random>

#include "sub/mut_intern.h"
#include "tests/support/agent.h"
#include "tests/support/dc_proef.h"

namespace {

using namespace toets;
constexpr uint32_t ORDER = 20000011, ANDERE = 20000028;

/// A label with its series: JAS has size registration, its code of size 2 is M1002.
struct MutIngave : DcProef {
  std::string maatcode;

  void SetUp() override {
    DcProef::SetUp();
    met_keten([this] { maatcode = maatnummer('M', 1002, JAS, 2); });
  }
  static std::string maatnummer(char soort, int32_t nummer, const Serienr& nr, uint8_t maat) {
    char code[14];
    etikode_maak('M', nummer, code);
    proef_ean(code, soort, nr, maat);
    return code;
  }
  static void transit(int32_t nummer, const Serienr& nr, uint8_t van, uint8_t naar) {
    ASSERT_TRUE(serie_wacht(nr));
    go_nieuw(nummer, {van, naar, 0, date_today(), 0});
    serie_los();
  }
  /// Sold or corrected, `dagen` ago.
  static int32_t weg(const Serienr& nr, uint8_t status, uint8_t filiaal, int dagen,
                     uint8_t reden = 1) {
    return leg(nr, status, filiaal, 2, [=](Etiket& e) {
      e.vrkdat = static_cast<uint16_t>(date_today() - dagen);
      e.reden = reden;
    });
  }

  Terminal start(const std::function<void()>& doe, int sessie = 7) {
    return start_in_child([this, doe, sessie] {
      keten.open();
      session_terminal = sessie;
      privaat_maak(sessie);
      sys_rec1.opties = 1;
      iofil('O', 0, &filiaal_rec);
      SCRINIT();
      doe();
      scr_error("");
      scr_print(A_WAARDE, 21, 1, "KLAAR");
      scr_enter(24, 1);
      scr_exit(0);
    });
  }
  /// The scan of a command: branches in the order in which it asks them, no document.
  Terminal scan(void (*commando)(), const char* eerste, const char* tweede, int sessie = 7) {
    Terminal t = start(commando, sessie);
    t.type(in(eerste), in(tweede));
    if (!t.shows("artikel       stuks")) t.type(Enter);
    EXPECT_SHOWS(t, "artikel       stuks");
    return t;
  }
};

// Screens -----------------------------------------------------------------------------------------

TEST_F(MutIngave, AScannerSendsLabelsOneAfterAnother) {
  int32_t n[4];
  met_keten([&] {
    for (int32_t& nummer : n) nummer = stuk(ROK, ETI_VOORRAAD, 2, 1);
  });
  Terminal t = start(verz_ingave);
  EXPECT_SHOWS(t, "VERZENDMUTATIES - Ingave per nummer", "Van  filiaal");
  EXPECT_SHOWS(t.type(in("1"), in("1")), "Ongeldige ingave");
  EXPECT_EQ(t.type(in("3")).row(3), "Van  filiaal  1              naar filiaal  3");
  EXPECT_EQ(t.row(4), "Opdrachtnr Niet ingegeven");
  t.type(in(code(n[0])));
  EXPECT_EQ(t.row(22),
            str_format("Artikel %08ld      %-8sSerie 101000100001  Maat M    Filiaal 1", n[0], ""));
  EXPECT_EQ(t.row(23), "Akkoord? (J/N) _");
  EXPECT_SHOWS(t.type(in("N")), str_format("<%ld> Niet akkoord", n[0]));
  EXPECT_SHOWS(t.type(in(code(n[0])), Esc), str_format("<%ld> Niet akkoord", n[0]));
  EXPECT_EQ(t.row(6), "");
  EXPECT_SHOWS(t.type(in("a12")), "Alleen etiket- of seriemaatnr mogelijk");
  t.type(in(code(n[0])));
  // Another code is no answer, the same one is; whatever is scanned ahead comes in turn.
  t.type(in(code(n[1])));
  EXPECT_SHOWS(t, str_format("<%08ld> Ongeldige ingave", n[1]), "Akkoord? (J/N) _");
  char lang[14];
  etikode_maak(0, n[0], lang);
  std::string vooruit = in(lang);
  for (int i = 1; i < 4; ++i) vooruit += in(code(n[i])) + in(code(n[i]));
  t.type(vooruit);
  EXPECT_ROWS(t, 5,
              str_format(R"(
artikel       stuks         artikel       stuks         artikel       stuks
%08ld          1         %08ld          1         %08ld          1
%08ld          1
)",
                         n[0], n[1], n[2], n[3]));
  EXPECT_SHOWS(t.type(Esc, Esc, Esc), "KLAAR");
  met_keten([&] {
    for (const int32_t nummer : n) {
      EXPECT_EQ(staat(proef_lees(nummer)), "1>3");
      ASSERT_TRUE(go_lees(nummer));
      EXPECT_TRUE(go_rec.vanfil == 1 && go_rec.naarfil == 3 && go_rec.verzamel == 0);
    }
    EXPECT_EQ(proef_inhoud<DtFin>(dtfin).size(), 4u);
  });
  EXPECT_EQ(file_size("KASMUT.TXT"), 4 * 32);
}

TEST_F(MutIngave, AnOrderNamesTheReceiver) {
  int32_t een = 0, twee = 0;
  met_keten([&] {
    een = stuk(ROK, ETI_VOORRAAD, 2, 1);
    twee = stuk(ROK, ETI_VOORRAAD, 2, 1);
    AdvKeten::regel(1, 4, ROK, 2, ORDER);
    AdvKeten::regel(1, 2, JAS, 2, ANDERE);
    AdvKeten::regel(1, 3, JAS, 2, ANDERE);
    AdvKeten::regel(2, 3, JAS, 2, ORDER);
  });
  Terminal t = start(verz_ingave);
  EXPECT_SHOWS(t.type(in("1")), "Opdrachtnr", "<ESC> zonder opdracht");
  EXPECT_EQ(t.type(in("20000011")).row(3), "Van  filiaal  1              naar filiaal  4");
  EXPECT_EQ(t.row(4), "Opdrachtnr 20000011");
  t.type(in(code(een)), in("J"));
  // Back: the order of several receivers leaves the branch open.
  EXPECT_EQ(t.type(Esc, in("20000028")).row(3), "Van  filiaal  1              naar filiaal  _");
  EXPECT_EQ(t.row(4), "Opdrachtnr 20000028");
  t.type(in("2"));
  t.type(in(code(twee)), in("J"), Esc);
  t.type(Esc);
  EXPECT_SHOWS(t.type(Esc, Esc, Esc, Esc), "KLAAR");
  met_keten([&] {
    ASSERT_TRUE(go_lees(een));
    EXPECT_EQ(go_rec.opdrachtnr, ORDER);
    EXPECT_EQ(go_rec.naarfil, 4);
    ASSERT_TRUE(go_lees(twee));
    EXPECT_EQ(go_rec.opdrachtnr, ANDERE);
  });
}

TEST_F(MutIngave, TheListStartsAgainWhenItIsFull) {
  std::string codes;
  int32_t laatste = 0;
  met_keten([&] {
    for (int i = 0; i < 46; ++i) {
      laatste = stuk(ROK, ETI_VOORRAAD, 2, 1);
      codes += in(code(laatste)) + in("J");
    }
  });
  Terminal t = scan(verz_ingave, "1", "3");
  EXPECT_EQ(t.type(codes).row(6), code(laatste) + "          1");
  EXPECT_EQ(t.row(7), "");
  EXPECT_EQ(t.row(20), "");
}

TEST_F(MutIngave, AReceiptNobodySentAsksForANumber) {
  int32_t een = 0, twee = 0;
  met_keten([&] {
    een = stuk(ROK, ETI_VOORRAAD, 2, 1);
    twee = stuk(ROK, ETI_VOORRAAD, 2, 1);
  });
  Terminal t = start(ontv_ingave);
  EXPECT_SHOWS(t, "ONTVANGSTMUTATIES - Ingave per nummer");
  EXPECT_EQ(t.type(in("1"), in("3"), Enter).row(4), "Opdrachtnr Niet ingegeven");
  t.type(in(code(een)), in("J"), Esc);
  EXPECT_SHOWS(t.type(in("12")), "Ongeldig nummer");
  t.type(in("11"), in(code(twee)), in("J"));
  EXPECT_SHOWS(t.type(Esc, Esc, Esc, Esc), "KLAAR");
  met_keten([&] {
    EXPECT_EQ(proef_lees(een).filiaal, 3);
    EXPECT_TRUE(proef_inhoud<DtGo>(dtgo).empty());
    const auto io = proef_inhoud<DtIo>(dtio);
    ASSERT_EQ(io.size(), 2u);
    EXPECT_TRUE(io[0].opdrachtnr == 0 && io[1].opdrachtnr == ORDER && io[0].onderweg == 0);
  });
}

// Reasons -----------------------------------------------------------------------------------------

struct Geval {
  std::string code, soll;
};

/// Each code on the message line as the text it should give; a question behind it is denied.
void probeer(Terminal& t, const std::vector<Geval>& gevallen) {
  for (const Geval& g : gevallen) {
    EXPECT_EQ(t.type(in(g.code)).row(25), g.soll);
    if (t.row(23).starts_with("Akkoord")) t.type(Esc);
  }
  EXPECT_EQ(t.row(6), "") << "nothing moved";
}

struct Redenen : MutIngave {
  std::vector<Geval> g;
  const std::string vandaag = date_show(date_today()), toen = date_show(45050);
  const std::string rok = " (101000100001)", jas = " (101000200002)";

  void geval(int32_t nummer, const std::string& soll) {
    g.push_back({code(nummer), str_format("<%ld> %s", nummer, soll)});
  }
  std::string bytes() const {
    std::string uit;
    for (const char* naam : {"DTETI.TXT", "DTGO.TXT", "DTFIN.TXT", "DTIO.TXT", "DTSER.TXT"})
      uit += bytes_van(naam);
    return uit;
  }
};

TEST_F(Redenen, OfASend) {
  met_keten([this] {
    geval(2900, "Onbekend etiketnummer");
    const int32_t los = stuk(WEG, ETI_VOORRAAD, 1, 1);
    g.push_back({code(los), "101000300003 Serie onbekend"});
    geval(weg(ROK, ETI_CORRECTIES, 2, 3, 0),
          std::string("Inventarisatie filiaal 2 ") + date_show(date_today() - 3));
    geval(stuk(ROK, ETI_VERKOPEN, 1, 2), "Ongeldige status: VRK fil 2 " + toen + rok);
    geval(weg(ROK, ETI_CORRECTIES, 1, 0), "Ongeldige status: COR fil 1 " + vandaag + rok);
    geval(stuk(ROK, ETI_NOTA, 1, 1), "Ongeldige status: NOT fil 1" + rok);
    geval(stuk(ROK, ETI_VOORRAAD, 1, 4), "Afwijkend verzendfiliaal (4)");
    geval(stuk(ROK, ETI_VOORRAAD, 1, 3), "Reeds aanwezig in filiaal" + rok);
    geval(onderweg(ROK, 1, 2), "Onderweg van filiaal 1 naar 2" + rok);
    geval(onderweg(ROK, 1, 3), "Reeds onderweg van filiaal 1 naar 3" + rok);
    const int32_t jas_l = stuk(JAS, ETI_VOORRAAD, 3, 1), jas_m = stuk(JAS, ETI_VOORRAAD, 2, 2);
    geval(jas_l, "Maat L   Serie met maatregistratie geen EAN-code gevonden");
    g.push_back({code(jas_m), "Maatnummer <" + maatcode + "> geen voorraad in filiaal"});
    g.push_back({maatcode, "<" + maatcode + "> Geen voorraad aanwezig"});
    const std::string kaal = maatnummer('M', 1003, ROK, 3), klein = maatnummer('A', 1004, ROK, 3),
                      zonder = maatnummer('M', 1005, WEG, 1);
    g.push_back({kaal, "<" + kaal + "> Geen maatregistratie Maat L   1 stuks niet verplaatst"});
    g.push_back({"8710000000003", "<8710000000003> EAN-code onbekend"});
    g.push_back({"M999", "<M999> Onbekend maatnummer"});
    g.push_back({klein, "<" + klein + "> EAN-code van klein artikel"});
    g.push_back({zonder, "101000300003 Serie onbekend"});
  });
  const std::string eerst = bytes();
  for (void (*commando)() : {verz_ingave, ontv_ingave}) {
    Terminal t = scan(commando, "1", "3");
    probeer(t, g);
  }
  EXPECT_TRUE(bytes() == eerst) << "a refusal leaves everything as it was";
}

TEST_F(Redenen, OfAConfirmation) {
  std::vector<Geval> algemeen, zonder, met, ander;
  met_keten([&] {
    geval(weg(ROK, ETI_CORRECTIES, 3, 0, 0), "Inventarisatie filiaal 3 " + vandaag);
    geval(onderweg(ROK, 1, 2), "Onderweg van filiaal 1 naar 2" + rok);
    geval(onderweg(ROK, 2, 3), "Afwijkend verzendfiliaal (2)");
    geval(stuk(ROK, ETI_VOORRAAD, 1, 3), "Artikel niet onderweg" + rok);
    for (int wat = 0; wat < 4; ++wat) {  // yesterday, elsewhere, another pair, no transit
      const int32_t n = weg(ROK, ETI_VERKOPEN, wat == 1 ? 2 : 3, wat == 0 ? 1 : 0);
      if (wat < 3) transit(n, ROK, wat == 2 ? 2 : 1, 3);
      geval(n, "Artikel niet onderweg" + rok);
    }
    const int32_t klaar = weg(ROK, ETI_VERKOPEN, 3, 0);
    transit(klaar, ROK, 1, 3);
    go_afwerken(klaar);
    geval(klaar, "Artikel niet onderweg" + rok);
    const int32_t jas_m = stuk(JAS, ETI_VOORRAAD, 2, 2), jas_l = stuk(JAS, ETI_VOORRAAD, 3, 2);
    geval(jas_l, "Maat L   Serie met maatregistratie geen EAN-code gevonden");
    g.push_back({code(jas_m), "Maatnummer <" + maatcode + "> geen artikelen onderweg"});
    g.push_back({maatcode, "<" + maatcode + "> Geen artikelen onderweg"});
    algemeen = g;
    g.clear();
    const int32_t geprint = onderweg(ROK, 1, 3, ORDER), open = onderweg(ROK, 1, 3, ORDER);
    ASSERT_TRUE(go_lees(geprint));
    go_rec.printdatum = date_today();
    IXWRITE(dtgo, &go_rec);
    geval(geprint, "Geen documentnummer" + rok);
    g.push_back({code(open), ""});
    const int32_t vrk = weg(ROK, ETI_VERKOPEN, 3, 0), cor = weg(ROK, ETI_CORRECTIES, 3, 0);
    for (const int32_t n : {vrk, cor}) transit(n, ROK, 1, 3);
    geval(vrk, "verkocht d.d. " + vandaag);
    geval(cor, "gecorrigeerd d.d. " + vandaag);
    zonder = g;
    g.clear();
    geval(open, "Documentnummer onjuist" + rok);
    g.push_back({code(geprint), ""});
    met = g;
    g.clear();
    geval(geprint, "Documentnummer onjuist" + rok);
    ander = g;
  });
  const std::string eerst = bytes();
  Terminal t = start(ing_ontvangst);
  EXPECT_SHOWS(t, "Ontvangstbevestiging per nummer", "Naar filiaal");
  EXPECT_SHOWS(t.type(in("3"), in("1")), "van filiaal  1", "Documentnummer");
  EXPECT_EQ(t.type(Enter).row(4), "Documentnummer Niet ingegeven");
  probeer(t, algemeen);
  probeer(t, zonder);
  t.type(Esc, in("20000011"));
  probeer(t, met);
  t.type(Esc, in("20000028"));
  probeer(t, ander);
  EXPECT_TRUE(bytes() == eerst) << "a refusal leaves everything as it was";
}

// Confirmations -----------------------------------------------------------------------------------

TEST_F(MutIngave, AConfirmationFinishesItsTransit) {
  int32_t gewoon = 0, ander = 0, verkocht = 0, kaal = 0;
  met_keten([&] {
    gewoon = onderweg(ROK, 1, 3);
    ander = onderweg(ROK, 2, 3);
    verkocht = weg(ROK, ETI_VERKOPEN, 3, 0);
    transit(verkocht, ROK, 1, 3);
    kaal = leg(ROK, ETI_VOORRAAD, 1, 2, [](Etiket& e) {
      e.onderweg = 1;
      e.doel = 3;
    });
  });
  Terminal t = scan(ing_ontvangst, "3", "1");
  EXPECT_EQ(t.row(4), "") << "nothing on its way has a number";
  for (const int32_t n : {gewoon, ander, verkocht, kaal}) t.type(in(code(n)) + in(code(n)));
  EXPECT_EQ(t.row(7), code(kaal) + "          1") << t.screen();
  t.type(Esc);  // the number is passed over on the way back too
  EXPECT_SHOWS(t, "van filiaal");
  EXPECT_SHOWS(t.type(Esc, Esc), "KLAAR");
  met_keten([&] {
    for (const int32_t n : {gewoon, ander, kaal}) EXPECT_EQ(staat(proef_lees(n)), "3");
    EXPECT_EQ(staat(proef_lees(verkocht)), "3V");
    for (const int32_t n : {gewoon, verkocht}) {
      ASSERT_TRUE(go_lees(n));
      EXPECT_EQ(go_rec.afgewerkt, 1);
    }
    EXPECT_FALSE(go_lees(ander));
    const auto fin = proef_inhoud<DtFin>(dtfin);
    ASSERT_EQ(fin.size(), 2u) << "the line of the other pair was reversed";
    for (const DtFin& r : fin) {
      EXPECT_TRUE(r.vanfil == 1 && r.naarfil == 3);
      EXPECT_EQ(r.houder, r.datum == date_today() ? 2 : 1);
    }
    const auto io = proef_inhoud<DtIo>(dtio);
    ASSERT_EQ(io.size(), 4u);
    for (const DtIo& r : io) EXPECT_TRUE(r.onderweg == 1 && r.vanfil == 1 && r.naarfil == 3);
  });
}

// Sizes -------------------------------------------------------------------------------------------

TEST_F(MutIngave, ACountOfPiecesOfOneSize) {
  std::vector<int32_t> n;
  met_keten([&] {
    for (int i = 0; i < 12; ++i) n.push_back(stuk(JAS, ETI_VOORRAAD, 2, 1));
    stuk(JAS, ETI_VOORRAAD, 1, 1);
    stuk(JAS, ETI_VOORRAAD, 2, 2);
  });
  Terminal t = scan(verz_ingave, "1", "3");
  t.type(in("M1002"));
  EXPECT_EQ(t.row(22), "Artikel M1002               Stuks 1       Serie 101000200002 Maat M");
  EXPECT_EQ(t.row(23), "Akkoord? (J/N) _");
  EXPECT_EQ(t.row(25), "TAB voor wijzigen stuks");
  EXPECT_EQ(t.type(Tab, in("13")).row(25), "Filiaal heeft 12 stuks voorraad");
  EXPECT_SHOWS(t.type(Esc), "Stuks 1  ", "TAB voor wijzigen stuks");
  EXPECT_SHOWS(t.type(Tab, in("11")), "Stuks 11 ");
  t.type(in(maatcode));  // the same code in its other form
  EXPECT_EQ(t.row(6), "M1002            11");
  EXPECT_EQ(t.row(25), "");
  t.type(in(maatcode) + in(maatcode));
  EXPECT_SHOWS(t, "M1002            11         " + maatcode + "     1");
  EXPECT_SHOWS(t.type(in(maatcode)), "Geen voorraad aanwezig");
  t.type(Esc, Esc, Esc);

  // One of them is sold where it arrived; a label of the series stands for any piece of its size.
  met_keten([&] {
    EXPECT_EQ(proef_inhoud<DtGo>(dtgo).size(), 12u);
    proef_wijzig(n[0], [](Etiket& e) {
      e.status = ETI_VERKOPEN;
      e.filiaal = 3;
      e.onderweg = e.doel = 0;
      e.vrkdat = date_today();
    });
  });
  Terminal o = scan(ing_ontvangst, "3", "1", 6);
  o.type(in(code(n[0])));
  EXPECT_SHOWS(o, str_format("<%ld> Maat M   Serie met maatregistratie (101000200002)", n[0]));
  o.type(in("J"));
  EXPECT_SHOWS(o.type(in(maatcode), Tab, in("12")), "Filiaal heeft 11 stuks onderweg");
  o.type(in("11") + in(maatcode));
  EXPECT_EQ(o.row(6), code(n[0]) + "          1         " + maatcode + "    11");
  EXPECT_SHOWS(o.type(Esc, Esc, Esc), "KLAAR");
  met_keten([&] {
    for (const DtGo& go : proef_inhoud<DtGo>(dtgo)) EXPECT_EQ(go.afgewerkt, 1);
    EXPECT_EQ(proef_inhoud<DtIo>(dtio).size(), 12u);
    for (const int32_t nummer : n) EXPECT_EQ(proef_lees(nummer).filiaal, 3);
    EXPECT_EQ(proef_lees(n[0]).status, ETI_VERKOPEN);
  });
}

TEST_F(MutIngave, WhatWentAwayMeanwhileIsTold) {
  int32_t n[3];
  met_keten([&] {
    for (int32_t& nummer : n) nummer = stuk(JAS, ETI_VOORRAAD, 2, 1);
  });
  Terminal t = scan(verz_ingave, "1", "3");
  t.type(in(maatcode), Tab, in("3"));
  EXPECT_TRUE(t.ready());
  met_keten([&] { proef_wijzig(n[1], [](Etiket& e) { e.status = ETI_VERKOPEN; }); });  // a till
  t.type(in("J"));
  EXPECT_EQ(t.row(25), "<" + maatcode + "> Maat M   1 stuks niet verplaatst onvoldoende voorraad");
  EXPECT_EQ(t.row(6), maatcode + "     2");
  met_keten([&] {
    EXPECT_EQ(proef_inhoud<DtGo>(dtgo).size(), 2u);
    EXPECT_EQ(proef_lees(n[1]).onderweg, 0);
  });
}

// Several terminals -------------------------------------------------------------------------------

TEST_F(MutIngave, ASeriesOfAnInventoryStaysLockedUntilTheNextCode) {
  Agent ander([&](const std::string& wat) -> std::string {
    if (!keten.is_open) keten.open();
    const Serienr nr = wat == "rok" ? ROK : JAS;
    if (wat == "jas los") serie_los();
    if (wat == "jas los") return "";
    const bool vrij = serie_probeer(nr);
    if (vrij && wat == "rok") serie_los();
    return vrij ? "vrij" : "bezet";
  });
  int32_t telling = 0;
  met_keten([&] {
    telling = weg(ROK, ETI_CORRECTIES, 2, 0, 0);
    stuk(JAS, ETI_VOORRAAD, 2, 1);
  });
  Terminal t = scan(verz_ingave, "1", "3");
  EXPECT_SHOWS(t.type(in(code(telling))), "Inventarisatie filiaal 2");
  EXPECT_EQ(ander.ask("rok"), "bezet");
  EXPECT_SHOWS(t.type(in("8710000000003")), "EAN-code onbekend");
  EXPECT_EQ(ander.ask("rok"), "vrij");
  t.type(in(code(telling)), Esc);
  EXPECT_TRUE(t.ready());
  EXPECT_EQ(ander.ask("rok"), "vrij") << "or until the scan is left";

  // By size nobody waits.
  t.type(in("3"));
  EXPECT_EQ(ander.ask("jas"), "vrij");
  EXPECT_SHOWS(t.type(in(maatcode)), "<" + maatcode + "> Serie in gebruik");
  EXPECT_EQ(ander.ask("jas los"), "");
  EXPECT_SHOWS(t.type(in(maatcode)), "Akkoord? (J/N)");
}

TEST_F(MutIngave, OneTerminalSendsAnotherConfirms) {
  std::vector<int32_t> rokken, jassen;
  met_keten([&] {
    for (int i = 0; i < 2; ++i) rokken.push_back(stuk(ROK, ETI_VOORRAAD, 1, 1));
    for (int i = 0; i < 3; ++i) jassen.push_back(stuk(JAS, ETI_VOORRAAD, 2, 1));
  });
  Terminal zend = scan(verz_ingave, "1", "3", 5);
  Terminal ontvang = scan(ing_ontvangst, "3", "1", 6);
  for (const int32_t n : rokken) {
    EXPECT_SHOWS(zend.type(in(code(n))), "Akkoord");
    ontvang.type(in(code(n)));  // waits for the series as long as the other has not answered
    EXPECT_TRUE(ontvang.wait_for("Informatie in gebruik"));
    zend.type(in(code(n)));
    EXPECT_TRUE(ontvang.wait_for("Akkoord"));
    ontvang.type(in(code(n)));
  }
  zend.type(in(maatcode), Tab, in("3"), in("J"));
  EXPECT_TRUE(zend.ready());
  ontvang.type(in(maatcode), Tab, in("3"), in("J"));
  for (Terminal* t : {&zend, &ontvang}) {
    t->type(Esc, Esc, Esc);
    EXPECT_SHOWS(*t, "KLAAR");
    t->type(Enter);
    EXPECT_EQ(t->exit_status(), 0);
  }
  met_keten([&] {
    for (const auto* lijst : {&rokken, &jassen})
      for (const int32_t n : *lijst) EXPECT_EQ(staat(proef_lees(n)), "3");
    const auto go = proef_inhoud<DtGo>(dtgo);
    EXPECT_EQ(go.size(), 5u);
    for (const DtGo& r : go) EXPECT_EQ(r.afgewerkt, 1);
    EXPECT_EQ(proef_inhoud<DtFin>(dtfin).size(), 5u);
    EXPECT_EQ(proef_inhoud<DtIo>(dtio).size(), 5u);
  });
  EXPECT_TRUE(tabellen_heel());
}

// Conservation ------------------------------------------------------------------------------------

/// Hundreds of random entries through the routes themselves; the keys of the operator are planted.
void willekeurig(uint32_t zaad, const std::vector<int32_t>& nummers, const std::string& maatcode) {
  std::mt19937 rng(zaad);
  const auto een_van = [&](size_t n) { return static_cast<size_t>(rng() % n); };
  for (int i = 0; i < 400; ++i) {
    MutIngang in{};
    in.vanfil = static_cast<uint8_t>(een_van(4));
    in.naarfil = static_cast<uint8_t>((in.vanfil + 1 + een_van(3)) % 4);
    const int mode = 1 + static_cast<int>(een_van(4));
    for (int k = 0; k < 6; ++k) key_push(K_ESC);
    key_push(TOETS_ENTER);
    key_push('J');
    if (een_van(3) == 0) {
      in.soort = 'E';
      str_printf(in.code, sizeof in.code, "%s", maatcode);
      key_push(TOETS_ENTER);
      key_push('1' + static_cast<int>(een_van(3)));
      key_push(K_TAB);
      mode > 2 ? mut_ontv_maat(&in) : mut_maat(&in, mode);
    } else {
      in.nummer = nummers[een_van(nummers.size())];
      str_printf(in.code, sizeof in.code, "%08ld", in.nummer);
      mode > 2 ? mut_ontv_etiket(&in) : mut_etiket(&in, mode);
    }
    while (key_pending()) key_read(nullptr);
  }
  mut_los();
}

TEST_F(MutIngave, MoneyAndTransitFollowEveryPiece) {
  for (const uint32_t zaad : {1u, 2u, 3u}) {
    std::map<int32_t, uint8_t> begin;
    std::vector<int32_t> nummers;
    met_keten([&] {
      for (ICB* tabel : {dtgo, dtfin, dtio}) IXINIT(tabel);
      for (int i = 0; i < 24; ++i) {
        const auto filiaal = static_cast<uint8_t>(i % 4);
        nummers.push_back(stuk(i % 3 == 0 ? JAS : ROK, ETI_VOORRAAD, 2, filiaal));
        begin[nummers.back()] = filiaal;
      }
    });
    Terminal t = start([&] { willekeurig(zaad, nummers, maatcode); });
    ASSERT_TRUE(t.wait_for("KLAAR")) << t.screen();
    EXPECT_EQ(t.type(Enter).exit_status(), 0);
    met_keten([&] {
      size_t lopend = 0, bewogen = 0;
      for (const DtGo& go : proef_inhoud<DtGo>(dtgo)) lopend += go.afgewerkt == 0;
      std::map<int32_t, uint8_t> rekening = begin;
      for (const DtFin& f : proef_inhoud<DtFin>(dtfin, 2)) {
        const auto n = static_cast<int32_t>(f.etiket);
        if (!rekening.contains(n)) continue;
        EXPECT_EQ(f.houder, rekening[n]) << n << " line " << f.regel;
        rekening[n] = f.naarfil;
        ++bewogen;
      }
      size_t onderweg = 0;
      for (const auto& [n, filiaal] : begin) {
        const Etiket e = proef_lees(n);
        EXPECT_EQ(e.status, ETI_VOORRAAD);
        EXPECT_EQ(rekening[n], e.onderweg != 0 ? e.doel : e.filiaal) << n;
        onderweg += e.onderweg != 0;
        const bool go = go_lees(n) && go_rec.afgewerkt == 0;
        EXPECT_EQ(go, e.onderweg != 0) << n;
      }
      EXPECT_GT(bewogen, 50u);
      EXPECT_GE(lopend, onderweg);
      for (const Serienr& nr : {ROK, JAS}) {
        ASSERT_TRUE(serie_probeer(nr)) << "everything was let go";
        serie_los();
      }
    });
    EXPECT_TRUE(tabellen_heel());
  }
}

}  // namespace
