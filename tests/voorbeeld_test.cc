// The preview as the operator has it: pages, head lines, scrolling, the menu, and what it leads to.
#include "prt/bladen.h"
#include "scr/scr.h"
#include "tests/support/print_proef.h"
#include "tests/support/terminal.h"

namespace fs = std::filesystem;

namespace {

/// A report of pages with so many lines each, then the preview; the last key is told in "klaar".
struct Rapport {
  int breedte = 80, bladen = 3, regels = 30;
  const char* device = "uit.lst";
};

void maak_rapport(const Rapport& r) {
  SCRINIT();
  scr_print(0, 10, 5, "Het scherm van het programma");
  XPRT_OPEN(static_cast<uint32_t>(PRT_BESTAND), r.breedte == 132 ? PRT_132 : PRT_80, "uit.lst");
  prt_rec.to_screen = 1;
  std::strcpy(prt_rec.device, r.device);
  for (int blad = 1; blad <= r.bladen; ++blad) {
    print_ff();
    print_f("Kop van blad %d", blad);
    print_nl();
    for (int i = 2; i <= r.regels; ++i) {
      print_f("blad %d regel %02d %c", blad, i, '\x82');
      if (r.breedte == 132) print_f("%100s", str_format("rechts %d", i));
      print_nl();
    }
  }
  print_close("");
  const int toets = scr_ctx->last_key;
  std::ofstream("klaar") << toets;
  scr_print(0, 1, 1, "Terug in het programma");
  scr_flush(0);
  scr_enter(2, 1);
  scr_exit(0);
}

struct Kijk {
  TempDir map;
  Terminal t;

  explicit Kijk(const Rapport& r = {}, int cols = 80)
      : t(start_in_child([r] { maak_rapport(r); }, opties(map.pad, cols))) {}
  static TerminalOpties opties(const std::string& map, int cols) {
    TerminalOpties o;
    o.dir = map;
    o.cols = cols;
    return o;
  }
  std::string klaar() {
    EXPECT_TRUE(t.wait_for("Terug in het programma")) << t.screen();
    return bytes_van(map / "klaar");
  }
};

}  // namespace

TEST(Bladen, AWalkOverLinesAndPages) {
  TempDir map;
  const std::string pad = map / "spool";
  // The form feed that ends a page lies in the block before, on its edge, and right at the start.
  std::string tekst = "START" + std::string("een\n\x1b[1m\n\n\f");
  const std::string lang(3000, 'x');
  tekst += lang + "\nlaatste\f\fvier\n\fSTOP";
  std::ofstream(pad) << tekst;
  PrtBladen b;
  ASSERT_TRUE(bladen_open(b, pad.c_str(), 5, static_cast<long>(tekst.size()) - 4, 10, 4));
  std::string regel;
  const auto eerste = [&] {
    std::fseek(b.bestand, b.blad_plek, SEEK_SET);
    return bladen_regel(b, regel) ? regel : "(none)";
  };
  std::vector<std::string> regels;
  while (bladen_regel(b, regel)) regels.push_back(regel);
  EXPECT_EQ(regels, (std::vector<std::string>{"een", ".[1m", ""}));
  EXPECT_FALSE(bladen_op(b));
  EXPECT_FALSE(bladen_terug(b));
  ASSERT_TRUE(bladen_verder(b));
  EXPECT_EQ(eerste(), std::string(10, 'x'));
  EXPECT_TRUE(bladen_meer(b));
  bladen_naar(b, 4);
  EXPECT_EQ(b.blad, 4);
  EXPECT_FALSE(bladen_verder(b));
  EXPECT_EQ(eerste(), "vier");
  EXPECT_TRUE(bladen_op(b));
  ASSERT_TRUE(bladen_terug(b));
  EXPECT_EQ(eerste(), "(none)");  // page 3 is empty
  ASSERT_TRUE(bladen_terug(b));
  EXPECT_EQ(eerste(), std::string(10, 'x'));
  bladen_naar(b, -3);
  EXPECT_EQ(b.blad_plek, 5);
  bladen_sluit(b);
  EXPECT_FALSE(bladen_open(b, (map / "weg").c_str(), 0, 0, 10, 1));
}

TEST(Voorbeeld, ScreensOfAPageKeepTheHeadLine) {
  Kijk k;
  EXPECT_EQ(k.t.row(1), "Kop van blad 1");
  EXPECT_TRUE(k.t.reverse(1, 1));
  EXPECT_EQ(k.t.row(2), "blad 1 regel 02 \u00e9");
  EXPECT_FALSE(k.t.reverse(2, 1));
  EXPECT_EQ(k.t.row(24), "blad 1 regel 24 \u00e9");
  EXPECT_EQ(k.t.row(25), "(blad 1 van 3)");
  EXPECT_EQ(k.t.type(toets::Enter).row(1), "Kop van blad 1");
  EXPECT_EQ(k.t.row(2), "blad 1 regel 25 \u00e9");
  EXPECT_EQ(k.t.row(7), "blad 1 regel 30 \u00e9");
  EXPECT_EQ(k.t.row(8), "");
  EXPECT_EQ(k.t.type(toets::Enter).row(1), "Kop van blad 2");
  EXPECT_EQ(k.t.row(24), "blad 2 regel 24 \u00e9");
  EXPECT_EQ(k.t.type("e").row(2), "blad 2 regel 25 \u00e9");  // the letter of the same item
}

TEST(Voorbeeld, PagesByKeyAndByNumber) {
  Kijk k;
  EXPECT_EQ(k.t.type(toets::PgDn).row(1), "Kop van blad 2");
  EXPECT_EQ(k.t.type(toets::End).row(1), "Kop van blad 3");
  EXPECT_EQ(k.t.row(25), "(blad 3 van 3)");
  EXPECT_EQ(k.t.type(toets::PgDn).row(1), "Kop van blad 3");  // nothing behind the last
  EXPECT_EQ(k.t.type(toets::Enter).row(25), "Einde overzicht (blad 3 van 3)");
  EXPECT_TRUE(k.t.reverse(25, 1));
  EXPECT_FALSE(k.t.reverse(25, 17));
  EXPECT_SHOWS(k.t.type(toets::F6), "GA NAAR BLAD");
  EXPECT_EQ(k.t.type("2\r").row(1), "Kop van blad 2");
  EXPECT_EQ(k.t.type(toets::Home).row(1), "Kop van blad 1");
  EXPECT_EQ(k.t.type("s9\r").row(1),
            "Kop van blad 3");  // there is no such page: the walk ends at the last
  EXPECT_EQ(k.t.type(std::string("s") + toets::Esc).row(1), "Kop van blad 3");
}

TEST(Voorbeeld, HeadLinesAreTheOperators) {
  Kijk k;
  EXPECT_SHOWS(k.t.type("k"), "Kopregels");
  EXPECT_TRUE(k.t.type("3\r").reverse(3, 1));
  EXPECT_FALSE(k.t.reverse(4, 1));
  EXPECT_EQ(k.t.type(toets::Enter).row(3), "blad 1 regel 03 \u00e9");
  EXPECT_EQ(k.t.row(4), "blad 1 regel 25 \u00e9");
  EXPECT_SHOWS(k.t.type("z"), "Kopregels (3)");  // no key of the menu: it shows itself
}

TEST(Voorbeeld, AWideReportScrollsOnANarrowTerminal) {
  Kijk k({132, 1, 5, "uit.lst"});
  EXPECT_EQ(k.t.row(2), "blad 1 regel 02 \u00e9");
  EXPECT_TRUE(k.t.type(toets::Right).row(2).ends_with("rechts 2")) << k.t.screen();
  EXPECT_EQ(k.t.type(toets::Left).row(2), "blad 1 regel 02 \u00e9");
  EXPECT_SHOWS(k.t.type("i"), "INGAVE SCROLL LENGTE", "Aantal posities");
  EXPECT_EQ(k.t.type("5\r", "r").row(2), "1 regel 02 \u00e9");
}

TEST(Voorbeeld, AWideReportOnAWideTerminalStandsThereWhole) {
  Kijk k({132, 1, 5, "uit.lst"}, 132);
  EXPECT_TRUE(k.t.row(2).ends_with("rechts 2")) << k.t.screen();
  EXPECT_FALSE(k.t.shows("Het scherm"));
  k.t.type("n");
  EXPECT_EQ(k.klaar(), "355");
  EXPECT_EQ(k.t.row(1), "Terug in het programma");
  EXPECT_EQ(k.t.row(10), "    Het scherm van het programma") << k.t.screen();
}

TEST(Voorbeeld, PrintGoesOnWithTheCopies) {
  Kijk k({80, 1, 2, "uit.lst"});
  EXPECT_SHOWS(k.t.type("A"), "Aantal Afdrukken");
  k.t.type("2\r", "p");
  EXPECT_EQ(k.klaar(), "0");
  const std::string blad = "Kop van blad 1\nblad 1 regel 02 \x82\n\f";
  EXPECT_TRUE(wacht_tot([&] { return bytes_van(k.map / "uit.lst") == blad + blad; }));
}

TEST(Voorbeeld, LeavingPrintsNothingAndLeavesNothing) {
  for (const char* weg : {toets::Esc, toets::Cancel, "n"}) {
    Kijk k;
    EXPECT_FALSE(k.t.shows("Het scherm"));
    k.t.type(weg);
    EXPECT_EQ(k.klaar(), "355");
    EXPECT_EQ(k.t.row(10), "    Het scherm van het programma") << k.t.screen();
    EXPECT_EQ(prt_spools(k.map.pad), 0);
    EXPECT_FALSE(fs::exists(k.map / "uit.lst"));
  }
}

TEST(Voorbeeld, WhatLeadsNowhereIsDisabled) {
  Kijk k({80, 1, 2, "/dev/null"});
  EXPECT_EQ(k.t.type("p").row(1), "Kop van blad 1");
  k.t.type("a");  // a small a is no key of the menu
  EXPECT_ROWS(k.t, 4, R"(
                                                     ┌───────PrintMenu────────┐
                                                     │ Vorig blad      <PgUp> │
                                                     │ Volgend blad    <PgDn> │
                                                     │ Volgend scherm <Enter> │
                                                     │ Spring naar blad  <F6> │
                                                     │ Scrollen               │
                                                     │ Eerste blad     <Home> │
                                                     │ Laatste blad     <End> │
                                                     │ Links              <-- │
                                                     │ Rechts             --> │
                                                     │ Instellen (52)         │
                                                     │ Aantal afdrukken  <F4> │
                                                     │ Kopregels (1)          │
                                                     │ Einde                  │
                                                     │ Printen                │
                                                     │ Niet printen           │
                                                     └────────────────────────┘
)");
  EXPECT_SHOWS(k.t.type("p"), "PrintMenu");
  k.t.type("n");
  EXPECT_EQ(k.klaar(), "355");
}
