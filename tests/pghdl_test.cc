// Sets of branches: text and back, the field, the stored series.
#include <cstring>

#include "scr/scr.h"
#include "sub/bitarr.h"
#include "sub/pghdl.h"
#include "tests/support/keten.h"
#include "tests/support/terminal.h"

namespace {

struct Groepen : testing::Test {
  uint8_t set[32] = {};
  Groepen() { sys_rec1.filialen = 12; }
  ~Groepen() override { sys_rec1 = {}; }

  std::string ontleed(const char* tekst, int lengte = 32) {
    pg_clear(set);
    pg_add(set, 11);  // must stay when the text is refused
    const std::string fout = pg_ontleed(tekst, set, lengte);
    if (!fout.empty()) {
      EXPECT_TRUE(pg_test(set, 11)) << tekst;
      return fout;
    }
    char uit[1024];
    pg_to_text(set, uit);
    return uit;
  }
};

TEST_F(Groepen, TextAndBack) {
  for (const char* tekst : {"1-5,7", "0", "0-11", "0,2,4,6,8,10", "11"}) {
    EXPECT_EQ(ontleed(tekst), tekst);
  }
  EXPECT_EQ(ontleed("1-5.7"), "1-5,7");
  EXPECT_EQ(ontleed("3,1,2"), "1-3");
  EXPECT_EQ(ontleed("3-3"), "3");
  EXPECT_EQ(ontleed("1,2,"), "1-2");
  EXPECT_EQ(ontleed("007"), "7");
  EXPECT_EQ(ontleed(""), "");
}

TEST_F(Groepen, Refusals) {
  EXPECT_EQ(ontleed("x"), "<x> Cijfer verwacht");
  EXPECT_EQ(ontleed(",1"), "<,> Cijfer verwacht");
  EXPECT_EQ(ontleed("1,,2"), "<,> Cijfer verwacht");
  EXPECT_EQ(ontleed("1-"), "<> Cijfer verwacht");
  EXPECT_EQ(ontleed("123"), "<12> Ongeldig filiaal");
  EXPECT_EQ(ontleed("1-99"), "<99> Ongeldig filiaal");
  EXPECT_EQ(ontleed("5-3"), "<5-3> ongeldige reeks");
  EXPECT_EQ(ontleed("3,3"), "<3> Filiaal reeds geselecteerd");
  EXPECT_EQ(ontleed("1-4,3"), "<3> Filiaal reeds geselecteerd");
  EXPECT_EQ(ontleed("1 2"), "< > Ongeldige ingave");
  EXPECT_EQ(ontleed("1-2-3"), "<-> Ongeldige ingave");
}

TEST_F(Groepen, TheShortFormEndsAtItsBits) {
  sys_rec1.filialen = 200;
  pg_add(set, 104);
  EXPECT_EQ(pg_ontleed("103", set, 13), "");
  EXPECT_EQ(set[12], 0x80);
  EXPECT_EQ(set[13], 0x01);  // behind the short form
  uint8_t kort[13] = {};
  EXPECT_EQ(pg_ontleed("104", kort, 13), "<104> Ongeldig filiaal");
  EXPECT_EQ(pg_ontleed("7-9", kort, 13), "");
  char tekst[1024];
  pg_to_text13(kort, tekst);
  EXPECT_STREQ(tekst, "7-9");
}

TEST_F(Groepen, ShowingInPieces) {
  ontleed("0,2,4,6,8,10");
  EXPECT_EQ(pg_show('F', set, 12), "0,2,4,6,8,10");
  EXPECT_EQ(pg_show('N', set, 12), "");
  EXPECT_EQ(pg_show('F', set, 6), "0,2,4>");
  EXPECT_EQ(pg_show('N', set, 6), "6,8,10");
  EXPECT_EQ(pg_show('N', set, 6), "");
  EXPECT_EQ(pg_show('F', set, 7), "0,2,4>");
}

TEST_F(Groepen, DigitsAndColumns) {
  EXPECT_EQ(fil_digits(false), 2);
  sys_rec1.filialen = 10;
  EXPECT_EQ(fil_digits(false), 1);
  sys_rec1.nummering = 2;
  EXPECT_EQ(fil_digits(false), 2);
  sys_rec1.filialen = 101;
  EXPECT_EQ(fil_digits(false), 3);
  EXPECT_EQ(fil_digits(true), 2);
  EXPECT_EQ(fil_column_attr(4), A_STREEP);  // no screen, so no colours
  EXPECT_EQ(fil_column_attr(5), A_LABEL);
  uint8_t vol[32];
  pg_fill(vol);
  EXPECT_TRUE(pg_is_all(vol) && bit_alle_filialen(vol));
  pg_remove(vol, 255);
  EXPECT_TRUE(!pg_is_all(vol) && bit_alle_filialen(vol));
  pg_clear(vol);
  EXPECT_TRUE(bit_geen_filialen(vol));
  EXPECT_FALSE(pg_test(vol, 256));
}

/// A program with one set field after another; row 4 tells what came of each.
struct Veld : testing::Test {
  Keten keten;
  Terminal t;

  void start(const char* formaat, bool f5) {
    t = start_in_child([=, this] {
      keten.open();
      SCRINIT();
      uint8_t set[32] = {};
      pg_add(set, 1);
      pg_add(set, 2);
      for (;;) {
        key_allow(K_CANCEL);
        if (f5) key_allow(K_F5);
        const bool anders = pg_field(2, 5, formaat, set);
        const bool leeg = (scr_ctx->ing_result & ING_LEEG) != 0;
        char tekst[1024];
        pg_to_text(set, tekst);
        scr_print(A_WAARDE, 4, 1, "%-78s",
                  str_format("%s%s%s %s", anders ? "anders " : "", leeg ? "leeg " : "",
                             pg_is_all(set) ? "alle" : "deel", tekst));
      }
    });
  }
};

TEST_F(Veld, WhatIsTypedBecomesTheSet) {
  start("60s", false);
  EXPECT_EQ(t.text(2, 5, 4), "1-2_");
  EXPECT_EQ(t.type("3-5,9\r").row(4), "anders deel 3-5,9");
  EXPECT_SHOWS(t.type("3,3\r"), "<3> Filiaal reeds geselecteerd");
  EXPECT_EQ(t.type("7\r").row(4), "anders deel 7");
  EXPECT_EQ(t.type("\r").row(4), "deel 7");
  EXPECT_EQ(t.type("0-11\r").row(4), "anders alle 0-11");
  EXPECT_EQ(t.type(std::string(toets::Back) + "\r").row(4), "anders leeg deel");
  EXPECT_EQ(t.type(std::string("5") + toets::Esc).row(4), "leeg deel");
}

TEST_F(Veld, TheListHasSeriesOneAndKeepsTheOthers) {
  start("60s,I", true);
  EXPECT_SHOWS(t.type(toets::F5), "alle filialen        alle");
  EXPECT_SHOWS(t.type("T"), "Toevoegen filiaalreeks");
  EXPECT_SHOWS(t.type("grote winkels\r", "1,2,9\r"), "grote winkels        1-2,9");
  EXPECT_EQ(t.type("S").row(4), "anders deel 1-2,9");  // the one just made
  EXPECT_SHOWS(t.type(toets::F5, toets::Down, "W"), "Wijzigen filiaalreeks");
  EXPECT_SHOWS(t.type("winkels\r", "1-10\r"), "winkels              1-10");
  EXPECT_FALSE(t.shows("grote"));
  EXPECT_SHOWS(t.type("V"), "Verwijderen filiaalreeks");
  EXPECT_FALSE(t.type("J\r").shows("winkels"));
  EXPECT_SHOWS(t, "alle filialen        alle");
  t.type("T", "leeg\r");
  EXPECT_SHOWS(t.type("\r"), "leeg                 alle");  // no set is every branch
  t.type("V", "J\r", "V");
  EXPECT_SHOWS(t.type("J\r"), "alle filialen        alle");  // series 1 comes back
  EXPECT_EQ(t.type(toets::F3).row(4), "anders alle 0-11");
}

TEST_F(Veld, TheHundredthSeriesDoesNotFit) {
  Filiaalreeks rec{};
  for (int n = 1; n <= 99; ++n) {
    rec.nummer = n;
    std::strcpy(rec.naam, "reeks");
    ProefSysteem::zet(SYS_FILIAALREEKSEN.basis + (n - 1) * 56, &rec, sizeof rec);
  }
  start("60s,I", true);
  EXPECT_SHOWS(t.type(toets::F5, "T"), "Geen ruimte meer beschikbaar");
}

}  // namespace
