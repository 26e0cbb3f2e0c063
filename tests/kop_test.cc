// Pages of a report, their heads, and the odd ways to print an amount, as the text that comes out.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "isam/base.h"
#include "prt/prt.h"

namespace {

/// A report on the unattended road, read back as text.
struct Rapport {
  char* tekst = nullptr;
  size_t n = 0;
  FILE* uit = open_memstream(&tekst, &n);

  explicit Rapport(int breedte, int regels = 64, bool utf8 = true) {
    EXPECT_EQ(prt_open_stil(uit, breedte, regels, utf8), 1);
  }
  std::string sluit() {
    print_close("");
    std::fclose(uit);
    uit = nullptr;
    return std::string(tekst, n);
  }
  ~Rapport() {
    if (uit != nullptr) sluit();
    std::free(tekst);
  }
};

std::string vandaag() { return date_show_long(date_today()); }

// The time of day is not the test's.
std::string zonder_tijd(std::string tekst) {
  const std::string dag = " " + vandaag() + " ";
  for (size_t p = tekst.find(dag); p != std::string::npos; p = tekst.find(dag, p + 1)) {
    tekst.replace(p, dag.size() + 5, " DATUM");
  }
  return tekst;
}

}  // namespace

TEST(Blad, HoldsExactlyItsLinesAndTheFirstHasNoFormFeed) {
  Rapport r(40, 5);
  for (int i = 1; i <= 7; ++i) {
    if (prt_rec.line_no > prt_rec.page_lines) {
      print_ff();
      print_f("kop %d", prt_rec.page_no);
      print_nl();
    }
    print_f("regel %d", i);
    print_nl();
  }
  EXPECT_EQ(prt_rec.page_count, 2);
  EXPECT_EQ(r.sluit(),
            "kop 1\nregel 1\nregel 2\nregel 3\nregel 4\n\fkop 2\nregel 5\nregel 6\nregel 7\n");
}

TEST(Blad, ANewPageFirstWritesTheLineInHand) {
  Rapport r(40);
  print_ff();
  print_f("half");
  print_ff();
  print_f("heel");
  EXPECT_EQ(r.sluit(), "half\n\fheel\n");
}

TEST(Blad, LinesAreCutAtTheWidthAndASecondLineOnlyComesWhenItHoldsText) {
  Rapport r(10);
  print_f("%s", "0123456789ABC");
  print_nl();
  print_f("%4d%4d", 1234, 5678);
  print_nl();
  print_f("%-10s%4d%4d", "x", 1, 23456);  // what stepped down lies past the edge
  print_nl();
  print_nl();
  EXPECT_EQ(r.sluit(), "0123456789\n1234    \n    5678\nx         \n\n");
}

TEST(Blad, DroppedLinesStayAway) {
  Rapport r(40);
  print_f("weg");
  print_clear();
  print_f("blijft");
  EXPECT_EQ(r.sluit(), "blijft\n");
}

TEST(Kop, OneLineWhenTheTitleFitsWithTwoToSpare) {
  Rapport r(60);
  print_head("Winkel BV", "Lijst %d", 7);
  EXPECT_EQ(prt_rec.line_no, 3);
  // 60 - 9 - 27 leaves 24 for a title of 7: 8 blanks on both sides, one column short of the edge.
  EXPECT_EQ(zonder_tijd(r.sluit()), "Winkel BV        Lijst 7         DATUM blad:   1\n\n");
}

TEST(Kop, TwoLinesWhenItDoesNot) {
  Rapport r(60);
  print_head("Winkel BV", "%s", "Titel van 23 posities..");
  print_head("Winkel BV", "%s", "Titel van 22 posities.");
  const std::string ruimte(24, ' ');
  EXPECT_EQ(zonder_tijd(r.sluit()), "Winkel BV" + ruimte + " DATUM blad:   1\n" +
                                        std::string(18, ' ') + "Titel van 23 posities..\n\n\f" +
                                        "Winkel BV Titel van 22 posities.  DATUM blad:   2\n\n");
}

TEST(Kop, AWidthThatHoldsNothingIsCut) {
  Rapport r(8);
  print_head("Winkel BV", "%s", "");
  print_head("", "Een titel die niet past");
  const std::string uit = r.sluit();
  EXPECT_EQ(uit.substr(0, 16), "Winkel B\n    \n\n\f");
  EXPECT_EQ(uit.substr(24), "\nEen tite\n\n");
}

TEST(Kop, DataInATitleIsNoFormat) {
  Rapport r(60);
  print_head("100% %s", "%s", "%d");
  EXPECT_EQ(zonder_tijd(r.sluit()).substr(0, 7), "100% %s");
}

TEST(Bedrag, BlanksForNothing) {
  Rapport r(60);
  print_blank_amount("%5ld", 0);
  print_f("|");
  print_blank_amount("%5ld", 12.0);
  print_f("|");
  print_blank_amount("%8.2lf", 0.001);
  print_f("|");
  print_blank_amount("%8.2lf", -1.5);
  print_f("|");
  print_amount(12, 6);
  print_f("|");
  print_amount(12.5, 6);
  print_f("|");
  print_amount(3e9, 12);
  print_nl();
  char buffer[32];
  zero_blank(buffer, "%6.2lf", 0);
  EXPECT_STREQ(buffer, "      ");
  zero_blank(buffer, "%4hu", 70000);
  EXPECT_STREQ(buffer, "4464");
  EXPECT_EQ(r.sluit(), "     |   12|        |   -1.50|    12| 12.50|  3000000000\n");
}

TEST(Bedrag, ARuleOfDashes) {
  Rapport r(132);
  print_rep(0, '-');
  print_rep(131, '-');
  print_rep(5, '=');
  EXPECT_EQ(r.sluit(), std::string(131, '-') + "=\n");
}

TEST(Stil, LettersLeaveAsUtf8OrAsTheyAre) {
  Rapport r(40);
  print_f("caf%c", '\x82');
  EXPECT_EQ(r.sluit(), "caf\xC3\xA9\n");
  Rapport s(40, 64, false);
  print_f("caf%c", '\x82');
  EXPECT_EQ(s.sluit(), "caf\x82\n");
}

TEST(StilDeathTest, TwoReportsAtOnceAndNoneAtAllAreFaults) {
  EXPECT_EXIT(
      {
        std::fclose(stdin);
        prt_open_stil(stdout, 80, 64);
        prt_open_stil(stdout, 80, 64);
      },
      testing::ExitedWithCode(1), "");
  EXPECT_EXIT(
      {
        std::fclose(stdin);
        print_close("");
      },
      testing::ExitedWithCode(1), "");
}
