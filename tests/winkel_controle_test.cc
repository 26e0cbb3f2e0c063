// What the stock tables say of each other: demo chains are sound, each kind of fault is named, and
// users who move pieces meanwhile are none.
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <set>

#include "isam/base.h"
#include "prt/prt.h"
#include "sub/datacom.h"
#include "sub/ioeti_intern.h"
#include "sub/muteren.h"
#include "tests/support/adv_keten.h"
#include "tests/support/agent.h"
#include "tests/support/bestand.h"
#include "tests/support/tijdelijk.h"

namespace {

namespace fs = std::filesystem;

struct Uitkomst {
  int status;
  std::string tekst;
};
Uitkomst winkel(const std::string& argumenten) {
  FILE* pijp = popen((BUILD_DIR "/tools/winkel " + argumenten + " 2>&1 </dev/null").c_str(), "r");
  Uitkomst u{-1, ""};
  char stuk[4096];
  while (const size_t n = fread(stuk, 1, sizeof stuk, pijp)) u.tekst.append(stuk, n);
  const int status = pclose(pijp);
  if (WIFEXITED(status)) u.status = WEXITSTATUS(status);
  return u;
}
/// The lines behind the totals.
std::string bevindingen(const Uitkomst& u) {
  const size_t p = u.tekst.find("ontvangen; DTSER");
  return p == u.tekst.npos ? u.tekst : u.tekst.substr(u.tekst.find('\n', p) + 1);
}

TEST(Controle, DemoChainsAreSound) {
  const TempDir map;
  for (const char* meer : {"", " --zonder-transit", " --seed 77"}) {
    const std::string keten = map / ("k" + std::to_string(strlen(meer)));
    ASSERT_EQ(winkel("demo --today 15032026 -C " + keten + meer).status, 0);
    const Uitkomst u = winkel("status --controle -C " + keten);
    EXPECT_EQ(u.status, 0) << u.tekst;
    EXPECT_EQ(bevindingen(u), "geen bevindingen\n");
  }
}

/// The codes of the signal list, by its words.
std::set<int> opmerkingen(const std::string& lijst) {
  constexpr const char* WOORDEN[] = {"Ongeldig filiaalnummer",
                                     "Onbekend etiketnummer",
                                     "Ongeldige status",
                                     "Verkocht in filiaal",
                                     "Gecorrigeerd in filiaal",
                                     "Afwijkend verzend-filiaal",
                                     "Reeds aanwezig in filiaal",
                                     "Reeds onderweg",
                                     "  Onderweg van",
                                     "Serie onbekend (check!)",
                                     "Inventarisatie",
                                     "geen EAN-code",
                                     "Serie met maatregistratie\n",
                                     "stuks niet onderweg",
                                     "stuks niet meer op voorraad",
                                     "stuks te weinig voorraad",
                                     "Geen maatregistratie. Maat",
                                     "EAN-code onbekend",
                                     "EAN-code van klein artikel"};
  std::set<int> uit;
  for (size_t i = 0; i < std::size(WOORDEN); ++i)
    if (lijst.find(WOORDEN[i]) != std::string::npos) uit.insert(static_cast<int>(i) + 1);
  return uit;
}

/// The run over what the tills of a demo chain reported; the list of it.
std::string datacom(const std::string& map, bool schrijven) {
  ProefKeten keten;  // for its handles alone
  const InMap hier(map);
  keten.open();
  FILE* f = tmpfile();
  prt_open_stil(f, 132, 0, false);
  dc_loop(schrijven);
  print_close("");
  rewind(f);
  std::string uit(1 << 20, '\0');
  uit.resize(fread(uit.data(), 1, uit.size(), f));
  fclose(f);
  keten.sluit();
  return uit;
}

TEST(Controle, TheTillsOfADemoChainReportEverything) {
  const TempDir map;
  for (const bool transit : {true, false}) {
    for (const char* zaad : {"1", "2", "3"}) {
      const std::string keten = map / (std::string(zaad) + (transit ? "t" : "z"));
      ASSERT_EQ(winkel("demo --today 15032026 --seed " + std::string(zaad) + " -C " + keten +
                       (transit ? "" : " --zonder-transit"))
                    .status,
                0);
      std::set<int> soll;
      for (int i = 1; i <= 19; ++i) soll.insert(i);
      if (!transit)
        for (const int i : {4, 5, 8, 9, 14, 15}) soll.erase(i);
      const std::string lijst = datacom(keten, false);
      EXPECT_EQ(opmerkingen(lijst), soll) << lijst;
      EXPECT_EQ(bevindingen(winkel("status --controle -C " + keten)), "geen bevindingen\n");
      EXPECT_EQ(opmerkingen(datacom(keten, true)), soll);
      EXPECT_EQ(bevindingen(winkel("status --controle -C " + keten)), "geen bevindingen\n");
      EXPECT_FALSE(fs::exists(keten + "/DTDCIF.TXT"));
    }
  }
}

/// Six labels of one series, moved by the steps that all programs share.
struct ControleKeten : AdvKeten {
  std::vector<int32_t> labels;

  void SetUp() override {
    AdvKeten::SetUp();
    met_keten([&] {
      for (int i = 0; i < 6; ++i) labels.push_back(stuk(ROK, ETI_VOORRAAD, 1, 1));
      tel();
    });
  }
  /// Puts the counters right.
  static void tel(uint32_t verkocht = 0) {
    ASSERT_TRUE(serie_wacht(ROK));
    ser_rec.voorraad = 6 - verkocht;
    ser_rec.verkocht = verkocht;
    serie_schrijf();
  }
  static Etiket label(int32_t n) {
    Etiket e{};
    EXPECT_TRUE(ioeti('R', &n, &e));
    return e;
  }
  static void zet(int32_t n, Etiket e) { ioeti('W', &n, &e); }
  static Zending rit(int van, int naar, const char* dag = "15032026") {
    return {static_cast<uint8_t>(van), static_cast<uint8_t>(naar), 0, date_number(dag), 0};
  }
  static void stuur(int32_t n, const Zending& z) {
    ASSERT_TRUE(serie_wacht(ROK));
    Etiket e = label(n);
    zend_etiket(n, &e, z, false);
    serie_schrijf();
  }
  static void ontvang(int32_t n, const Zending& z) {
    ASSERT_TRUE(serie_wacht(ROK));
    Etiket e = label(n);
    go_afwerken(n);
    io_nieuw(n, z, 1);
    e.filiaal = z.naar;
    e.onderweg = e.doel = 0;
    zet(n, e);
    serie_schrijf();
  }
  static std::string naam(int32_t n) { return str_format("10100.10.1 etiket %ld: ", n); }
  static std::string controle() { return bevindingen(winkel("status --controle")); }
};

TEST_F(ControleKeten, WhatMovesAreAllowed) {
  met_keten([&] {
    stuur(labels[0], rit(1, 2));
    stuur(labels[1], rit(1, 3));
    ontvang(labels[1], rit(1, 3));
    stuur(labels[1], rit(3, 4));  // and on, the same day
    stuur(labels[2], rit(1, 2));
    Etiket e = label(labels[2]);  // sold there before the receipt came
    e.status = ETI_VERKOPEN;
    e.filiaal = 2;
    e.onderweg = e.doel = 0;
    e.vrkdat = date_number("16032026");
    zet(labels[2], e);
    tel(1);
    Etiket f = label(labels[3]);
    ontvang_etiket(labels[3], &f, rit(1, 5));  // nobody sent it
  });
  EXPECT_EQ(controle(), "geen bevindingen\n");
}

TEST_F(ControleKeten, EachFaultIsNamed) {
  met_keten([&] {
    tel(1);  // counters
    for (int i = 0; i < 3; ++i) stuur(labels[static_cast<size_t>(i)], rit(1, 2));
    go_verwijder(labels[0]);  // on its way without a record
    Etiket e = label(labels[1]);
    e.onderweg = e.doel = 0;  // broken off before its label
    zet(labels[1], e);
    ASSERT_TRUE(serie_wacht(ROK));
    go_nieuw(4711, rit(1, 2));  // of no label
    serie_los();
    Etiket f = label(labels[3]);
    ontvang_etiket(labels[3], &f, rit(1, 3));
    f.filiaal = 4;  // moved without a line
    zet(labels[3], f);
    Etiket g = label(labels[4]);
    g.filiaal = 200;
    zet(labels[4], g);
  });
  const auto n = [&](size_t i) { return naam(labels[i]); };
  const Uitkomst u = winkel("status --controle");
  EXPECT_EQ(u.status, 1);
  const std::string gevonden = bevindingen(u);
  for (const std::string& soll :
       {std::string("10100.10.1: voorraad 5, 6 etiketten\n"),
        std::string("10100.10.1: verkocht 1, 0 etiketten\n"),
        n(0) + "onderweg van filiaal 1 naar 2 zonder zending in DTGO\n",
        n(1) + "zending van filiaal 1 naar 2 niet afgewerkt, het etiket staat in filiaal 1\n",
        n(1) + "laatste financiële regel, van 15-03-2026, gaat naar filiaal 2, het etiket staat in "
               "filiaal 1\n",
        naam(4711) + "zending van filiaal 1 naar 2, het etiket bestaat niet\n",
        n(3) + "laatste financiële regel, van 15-03-2026, gaat naar filiaal 3, het etiket staat in "
               "filiaal 4\n",
        n(3) +
            "laatste ontvangst, van 15-03-2026, is in filiaal 3, het etiket staat in filiaal 4\n",
        n(4) + "filiaal bestaat niet, het etiket staat in filiaal 200\n",
        std::string("9 bevindingen\n")})
    EXPECT_NE(gevonden.find(soll), std::string::npos) << soll << "in\n" << gevonden;
  EXPECT_EQ(std::count(gevonden.begin(), gevonden.end(), '\n'), 10) << gevonden;
}

/// Labels of a series that is gone, and the rule without transit administration.
TEST_F(ControleKeten, WithoutTransitALabelStandsWhereItWasSent) {
  SysRec20 twintig{};
  ProefKeten::sysrec_zet(20, &twintig, sizeof twintig);
  met_keten([&] {
    stuur(labels[0], rit(1, 2));
    stuur(labels[1], rit(1, 2));
    Etiket e = label(labels[1]);
    ontvang_etiket(labels[1], &e, rit(2, 3, "16032026"));  // and on, without a send
    stuk(JAS, ETI_VOORRAAD, 1, 1);
    DtSer jas{};
    jas.nr = JAS;
    ASSERT_TRUE(IXREADL(dtser, &jas));
    IXDELETE(dtser, &jas);
  });
  EXPECT_EQ(controle(), "10100.20.2: de serie bestaat niet, wel 1 etiketten\n1 bevinding\n");
  met_keten([&] {
    Etiket e = label(labels[0]);
    e.filiaal = 5;
    zet(labels[0], e);
  });
  EXPECT_NE(controle().find(naam(labels[0]) +
                            "verzonden van filiaal 1 naar 2, het etiket staat in filiaal 5\n"),
            std::string::npos);
}

TEST_F(ControleKeten, WhoWorksMeanwhileIsNoFinding) {
  Agent mover([this](const std::string&) {
    keten.open();
    for (int ronde = 0;; ++ronde) {
      const int32_t n = labels[static_cast<size_t>(ronde / 2 % 6)];
      const Etiket e = label(n);
      const Zending z =
          e.onderweg != 0 ? rit(e.filiaal, e.doel) : rit(e.filiaal, (e.filiaal + ronde) % 5);
      if (e.onderweg != 0)
        ontvang(n, z);
      else if (z.van != z.naar)
        stuur(n, z);
      usleep(3000);
    }
    return std::string();
  });
  mover.send("work");
  for (int i = 0; i < 10; ++i) EXPECT_EQ(controle(), "geen bevindingen\n");
  mover.kill_now();
}

}  // namespace
