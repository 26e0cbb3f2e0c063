// The record browser over a list in memory: records 1 to n, on a page of sixteen lines.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "scr/scr.h"
#include "tests/support/terminal.h"

namespace {

std::vector<uint32_t> lijst;
char regel[80];

bool ga(BrwRec* b, int n) {
  auto i = std::find(lijst.begin(), lijst.end(), b->current);
  if (i == lijst.end()) return false;
  for (; n > 0; --n) {
    if (i + 1 == lijst.end()) return false;
    b->current = *++i;
  }
  for (; n < 0; ++n) {
    if (i == lijst.begin()) return false;
    b->current = *--i;
  }
  return true;
}

/// 999 empties the list and 998 deletes the record in hand, as another operator may.
void zoek(BrwRec* b) {
  char tekst[4] = "";
  scr_clreol(brw_search_row(), 1);
  scr_print(A_LABEL, brw_search_row(), 2, "Nummer");
  INGAVE(brw_search_row(), 9, "3s[0123456789],I", &K_TAB, tekst);
  if (weg_toets() || (scr_ctx->ing_result & ING_LEEG) != 0) return;
  const auto nummer = static_cast<uint32_t>(std::atoi(tekst));
  if (nummer == 999) lijst.clear();
  if (nummer == 998) {
    std::erase(lijst, b->current);
    b->current = lijst.front();
  }
  const auto i =
      std::find_if(lijst.begin(), lijst.end(), [=](uint32_t id) { return id >= nummer; });
  if (i != lijst.end()) b->current = *i;
}

void kop(BrwRec*) {
  scr_print(A_LABEL, 1, 2, fmt_col(0, -8, 2).c_str(), "record");
  scr_print(A_LABEL, 1, 12, fmt_col(0, 6, 0).c_str(), "tien");
}

const char* toon(BrwRec* b) {
  str_printf(regel, sizeof regel, "regel %02lu  %6lu", b->current, b->current * 10);
  return regel;
}

struct Vraag {
  int records;
  bool multi = false, kop = true, no_cursor = false;
  int draw_mode = 2;
  uint32_t begin = 1;
};

/// Runs one browse; the records chosen stand on row 1 with the phase behind them, on row 2 the next
/// key that the program reads.
Terminal start_lijst(const Vraag& v) {
  return start_in_child([v] {
    SCRINIT();
    for (int i = 1; i <= v.records; ++i) lijst.push_back(static_cast<uint32_t>(i));
    BrwRec* const b = brw_new(ga, zoek, v.kop ? kop : nullptr, toon);
    b->current = v.begin;
    b->multi = v.multi;
    b->no_cursor = v.no_cursor;
    b->draw_mode = v.draw_mode;
    b->title = " selecteren regel ";
    std::string gekozen;
    while (brw_run(b, 0) != 0) {
      gekozen += str_format(" %lu", b->current);
      if (!v.multi) break;
    }
    scr_print(A_WAARDE, 1, 1, "gekozen%s (%d)", gekozen, b->phase);
    brw_free(b);
    scr_print(A_WAARDE, 2, 1, "toets %d", scr_getkey("q", &K_CANCEL));
    scr_enter(22, 1);
    scr_exit(0);
  });
}

/// First and last line of the page and the line of the cursor: "01-16 04".
std::string stand(Terminal& t) {
  std::string eerste, laatste, cursor;
  for (int r = 5; r <= 20; ++r) {
    const std::string nr = t.text(r, 67, 2);
    if (nr == "  ") break;
    if (eerste.empty()) eerste = nr;
    laatste = nr;
    if (t.reverse(r, 61)) cursor += nr;
  }
  return eerste + "-" + laatste + " " + cursor;
}

void keer(Terminal& t, const char* toets, int n) {
  while (n-- > 0) t.type(toets);
}

TEST(Browser, StandsAtTheRightWithHeadingsMarksAndTheSearchField) {
  Terminal t = start_lijst({3, true});
  t.type(toets::F7);
  EXPECT_ROWS(t, 3, R"(
                                                          ┌─ selecteren regel ─┐
                                                          │ record      tien   │
                                                          │→regel 01      10   │
                                                          │ regel 02      20   │
                                                          │ regel 03      30   │
                                                          │                    │)");
  EXPECT_EQ(t.text(22, 59, 22), "│ Nummer ___         │");
  EXPECT_EQ(t.text(23, 59, 22), "└────────────────────┘");
  EXPECT_FALSE(t.reverse(5, 61));
  EXPECT_TRUE(t.reverse(6, 61) && t.reverse(6, 79));
  EXPECT_FALSE(t.reverse(6, 60));  // not the mark
}

TEST(Browser, PagesAndStopsAtBothEnds) {
  Terminal t = start_lijst({40});
  EXPECT_EQ(stand(t), "01-16 01");
  keer(t, toets::Down, 15);
  EXPECT_EQ(stand(t), "01-16 16");
  EXPECT_EQ(stand(t.type(toets::Down)), "02-17 17");  // the page moves one record on
  EXPECT_EQ(stand(t.type(toets::PgDn)), "18-33 33");
  EXPECT_EQ(stand(t.type(toets::PgDn)),
            "34-40 40");  // the list ends inside the page: the cursor is pulled back
  EXPECT_EQ(t.text(12, 59, 22), "│                    │");
  EXPECT_EQ(stand(t.type(toets::Down, toets::PgDn)), "34-40 40");
  keer(t, toets::Up, 7);
  EXPECT_EQ(stand(t), "33-40 33");
  EXPECT_EQ(stand(t.type(toets::PgUp)), "17-32 17");
  EXPECT_EQ(stand(t.type(toets::Down, toets::PgUp)), "01-16 02");
  EXPECT_EQ(stand(t.type(toets::PgUp)),
            "01-16 01");  // nothing before it: the cursor goes to the top
  EXPECT_EQ(stand(t.type(toets::Up)), "01-16 01");
  keer(t, toets::Down, 3);
  EXPECT_EQ(stand(t.type(toets::Tab)), "04-19 04");
  EXPECT_EQ(t.text(4, 61, 17), "record      tien ");
}

TEST(Browser, ASearchPutsTheFoundRecordOnTopAndEnterPicksIt) {
  Terminal t = start_lijst({40});
  keer(t, toets::Down, 3);
  EXPECT_EQ(stand(t.type("25", toets::Enter)), "25-40 25");
  EXPECT_EQ(t.type(toets::Down, toets::Enter).row(1),
            "gekozen 26 (0)");  // a single pick is over at once
}

TEST(Browser, TheCallerMayHaveTheFoundRecordShownOtherwise) {
  Terminal een_terug = start_lijst({40, false, true, false, 1, 3});
  EXPECT_EQ(stand(een_terug), "02-17 03");
  een_terug.type("25");
  EXPECT_EQ(stand(een_terug.type(toets::Down)),
            "24-39 25");  // a key other than Enter ends a search as well

  Terminal alleen_cursor = start_lijst({40, false, true, false, 4});
  EXPECT_EQ(stand(alleen_cursor.type("12", toets::Enter)), "01-16 12");
  EXPECT_EQ(stand(alleen_cursor.type("20", toets::Enter)), "20-35 20");
}

TEST(Browser, WithoutCursorTheTopLineIsTheRecordInHand) {
  Terminal t = start_lijst({40, false, true, true});
  EXPECT_EQ(stand(t.type(toets::Down)), "02-17 02");
  EXPECT_EQ(stand(t.type(toets::PgDn, toets::Up)), "17-32 17");
  EXPECT_EQ(t.type(toets::F3).row(1), "gekozen 17 (0)");
}

TEST(Browser, MarksComeInMarkingOrder) {
  Terminal t = start_lijst({20, true});
  keer(t, toets::Down, 4);
  t.type(toets::F7);  // 5, and the cursor moves down
  t.type(toets::PgUp);
  t.type(toets::F7);  // 1
  t.type(toets::F7);  // 2
  t.type(toets::F7);  // 3
  t.type(toets::Up, toets::Up);
  t.type(toets::F7);  // 2 again: no longer
  EXPECT_EQ(t.text(5, 60, 1) + t.text(6, 60, 1) + t.text(7, 60, 1) + t.text(9, 60, 1), "→ →→");
  EXPECT_EQ(stand(t), "01-16 03");
  EXPECT_EQ(stand(t.type(toets::Enter)), "01-16 03");  // with marks Enter does nothing
  EXPECT_EQ(t.type(toets::F3).row(1), "gekozen 5 1 3 (0)");
}

TEST(Browser, InvertedMarksGiveAllTheOthersInFileOrder) {
  Terminal t = start_lijst({19, true});
  t.type(toets::F6);
  EXPECT_EQ(t.text(5, 60, 1) + t.text(20, 60, 1), "→→");
  t.type(toets::Down);
  keer(t, toets::F7, 3);
  EXPECT_EQ(t.text(5, 60, 1) + t.text(6, 60, 1) + t.text(9, 60, 1), "→ →");
  EXPECT_EQ(t.type(toets::PgDn, toets::F3).row(1),
            "gekozen 1 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 (0)");
}

TEST(Browser, MarksCanBeWipedAndWithoutAnyEnterPicksTheRecordInHand) {
  Terminal t = start_lijst({20, true});
  t.type(toets::F7, toets::F6, toets::F10);
  EXPECT_EQ(t.text(5, 60, 1) + t.text(6, 60, 1), "  ");
  EXPECT_EQ(stand(t), "01-16 02");
  EXPECT_EQ(t.type(toets::Enter).row(1), "gekozen 2 (0)");
}

TEST(Browser, CancelForgetsTheMarks) {
  for (const char* toets : {toets::Esc, toets::Cancel}) {
    Terminal t = start_lijst({20, true});
    EXPECT_EQ(t.type(toets::F7, toets).row(1), "gekozen (0)");
    EXPECT_FALSE(t.shows("regel"));
  }
}

TEST(Browser, AnEmptyListShowsNothing) {
  Terminal t = start_lijst({0});
  EXPECT_EQ(t.row(1), "gekozen (0)");
  EXPECT_EQ(t.row(3), "");
}

TEST(Browser, AListEmptiedUnderItEndsItAndLeavesNoKeyBehind) {
  Terminal t = start_lijst({3, true});
  EXPECT_EQ(t.type(toets::F7, "999", toets::Enter).row(1), "gekozen (0)");
  EXPECT_EQ(t.row(2), "");
  EXPECT_EQ(t.type("q").row(2), "toets 113");
}

TEST(Browser, ARecordThatVanishesIsPassedOver) {
  Terminal t = start_lijst({20, true});
  t.type(toets::F7, toets::F7, toets::Up);
  t.type("998");  // number 2 goes
  EXPECT_EQ(stand(t.type(toets::Enter)), "01-17 01");
  EXPECT_EQ(t.type(toets::F3).row(1), "gekozen 1 (0)");
}

TEST(Browser, ColumnFormatsKeepHeadingAndLineTogether) {
  EXPECT_EQ(fmt_col(2, -20, 1), "  %-20.20s ");
  EXPECT_EQ(str_format(fmt_col(1, 5, 2).c_str(), "abcdefg"), " abcde  ");
  EXPECT_EQ(str_format(fmt_col(0, -5, 0).c_str(), "ab"), "ab   ");
}

}  // namespace
