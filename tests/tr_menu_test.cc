// Pull-down menus: a box as the preview uses it, and a bar with boxes under it.
#include "scr/scr.h"
#include "tests/support/terminal.h"

namespace {

TrMenu* doos() {
  TrMenu* const m = tr_menu_new(TR_BOX, 4, 60, 0, "PrintMenu");
  tr_menu_add(m, -1, "Scrollen", 1005, TR_GROEP, 0, nullptr);
  tr_menu_add(m, -1, "&Eerste blad", 1011, TR_AAN, TOETS_HOME, nullptr);
  tr_menu_add(m, -1, "&Links  <--", 1008, 0, TOETS_LEFT, nullptr);
  tr_menu_add(m, -1, "&Rechts -->", 1009, TR_AAN, TOETS_RIGHT, nullptr);
  tr_menu_add(m, -1, "Laa&tste blad <F6>", 1012, TR_AAN, TOETS_F1 + 5, nullptr);
  return m;
}

TrMenu* balk() {
  TrMenu* const m = tr_menu_new(TR_BAR, 9, 9, 10, nullptr);
  tr_menu_add(m, -1, "&Bestand", 1, TR_AAN | TR_GROEP, 0, nullptr);
  tr_menu_add(m, -1, "", 9, TR_AAN | TR_GROEP, 0, nullptr);  // a title without text is none
  tr_menu_add(m, -1, "&Dicht", 2, TR_GROEP, 0, nullptr);
  tr_menu_add(m, -1, "&Nieuw", 3, TR_AAN | TR_GROEP, 0, nullptr);
  tr_menu_add(m, 1, "&Openen", 11, TR_AAN, 0, nullptr);
  tr_menu_add(m, 1, "&Meer", 12, TR_AAN | TR_GROEP, 0, nullptr);
  tr_menu_add(m, 12, "&Verder weg", 121, TR_AAN, 0, nullptr);
  tr_menu_add(m, 3, "&Artikel", 31, TR_AAN, 0, nullptr);
  return m;
}

/// Runs the menu for ever; what it gave stands on row 24. `vooraf` is typed ahead by the program.
Terminal start_tr(TrMenu* (*bouw)(), int first_id = -1, int vooraf = 0) {
  return start_in_child([=] {
    SCRINIT();
    TrMenu* const m = bouw();
    if (vooraf != 0) key_push(vooraf);
    for (int ronde = 1;; ++ronde) {
      const int gekozen = tr_menu_run(m, first_id);
      scr_print(A_WAARDE, 24, 1, "%d: %d   ", ronde, gekozen);
    }
  });
}

TEST(TrMenu, ABoxShowsItsItemsAndPassesOverWhatIsOff) {
  Terminal t = start_tr(doos);
  EXPECT_ROWS(t, 4, R"(
                                                           ┌─────PrintMenu─────┐
                                                           │ Scrollen          │
                                                           │ Eerste blad       │
                                                           │ Links  <--        │
                                                           │ Rechts -->        │
                                                           │ Laatste blad <F6> │
                                                           └───────────────────┘)");
  EXPECT_TRUE(t.reverse(6, 62));
  EXPECT_TRUE(t.underline(9, 65) && t.bold(9, 65));
  EXPECT_FALSE(t.bold(5, 62));
  EXPECT_FALSE(t.cursor_visible());
  EXPECT_TRUE(t.type(toets::Up).reverse(9, 62));  // around, past the title
  EXPECT_TRUE(t.type(" ").reverse(6, 62));
  EXPECT_TRUE(t.type(toets::Down).reverse(8, 62));
  EXPECT_EQ(t.type(toets::Enter).row(24), "1: 1009");
}

TEST(TrMenu, AHotLetterOrASecondKeyPicksOnlyWhatIsOn) {
  Terminal t = start_tr(doos, 1012);
  EXPECT_TRUE(t.reverse(9, 62));
  EXPECT_EQ(t.type("l", toets::Left).row(24), "");
  EXPECT_EQ(t.type("t").row(24), "1: 1012");
  EXPECT_EQ(t.type(toets::Right).row(24), "2: 1009");
  EXPECT_EQ(t.type(toets::F6).row(24), "3: 1012");
  EXPECT_EQ(t.type(toets::Cancel).row(24), "4: -1");
  EXPECT_EQ(t.type(toets::Esc).row(24), "5: -1");
}

TEST(TrMenu, AKeyThatWaitsPicksAtOnceOrGoesToTheMenu) {
  Terminal letter = start_tr(doos, -1, 'e');
  EXPECT_EQ(letter.row(24), "1: 1011");
  Terminal uit = start_tr(doos, -1, 'l');  // off: the menu stands and waits
  EXPECT_EQ(uit.row(24), "");
  EXPECT_SHOWS(uit, "PrintMenu");
  Terminal escape = start_tr(doos, -1, TOETS_ESC);
  EXPECT_EQ(escape.row(24), "1: -1");
}

TEST(TrMenu, ABarOpensBoxesAndMovesFromOneToTheNext) {
  Terminal t = start_tr(balk);
  EXPECT_EQ(t.row(2), " Bestand    Dicht      Nieuw");
  EXPECT_TRUE(t.type(toets::Right).reverse(2, 24));  // nothing stands under "Dicht"
  EXPECT_EQ(t.type(toets::Left, toets::Down).row(4), "│ Openen │");
  EXPECT_EQ(t.type(toets::Left).row(4).find("Openen"), std::string::npos);
  EXPECT_EQ(t.text(4, 23, 11), "│ Artikel │");
  EXPECT_SHOWS(t.type(toets::Right, toets::Down, toets::Enter), "Verder weg");
  t.type(toets::Right);  // out of both boxes
  EXPECT_FALSE(t.shows("Verder weg") || t.shows("Openen"));
  EXPECT_SHOWS(t, "Artikel");
  EXPECT_FALSE(t.type(toets::Esc).shows("Artikel"));
  EXPECT_SHOWS(t, "Bestand");
  EXPECT_EQ(t.type("b", "m", "v").row(24), "1: 121");
  EXPECT_FALSE(t.shows("Verder weg"));
  EXPECT_EQ(t.type(toets::Esc).row(24), "2: -1");
}

TEST(TrMenu, ItemsAreAskedAndChangedById) {
  Terminal t = start_in_child([] {
    SCRINIT();
    TrMenu* const m = doos();
    std::string s = str_format("%d %d", tr_menu_flags(m, 1005), tr_menu_flags(m, 1011));
    s += str_format(" %d %d %d", tr_menu_toets(m, 'E'), tr_menu_toets(m, 'e'),
                    tr_menu_toets(m, 'L'));
    tr_menu_enable(m, 1008, 3);
    tr_menu_enable(m, 1011, 0);
    tr_menu_rename(m, 1009, "Na&ar rechts");
    s += str_format(" %d %d %d %d", tr_menu_toets(m, 'L'), tr_menu_toets(m, 'E'),
                    tr_menu_toets(m, 'R'), tr_menu_toets(m, 'A'));
    s += str_format(" %d", tr_menu_toets(m, TOETS_LEFT));
    scr_print(A_WAARDE, 1, 1, "%s", s);
    const bool gelukt = tr_menu_enable(m, 7, 1);
    scr_print(A_WAARDE, 2, 1, "%d %d", int{gelukt}, tr_menu_flags(m, 4711));
    tr_menu_free(m);
    scr_getkey("q");
    scr_exit(0);
  });
  EXPECT_EQ(t.row(1), "513 257 1011 0 0 1008 0 0 1009 1008");
  EXPECT_EQ(t.row(2), "0 65535");
  EXPECT_EQ(t.row(25), "Item_ID 4711 not found !");
}

TEST(TrMenu, ALongBoxScrollsAndADeepOneStops) {
  Terminal lang = start_tr([] {
    TrMenu* const m = tr_menu_new(TR_BOX, 20, 70, 0, "lang");
    for (int i = 1; i <= 40; ++i) {
      tr_menu_add(m, -1, str_format("regel nummer %d", i).c_str(), i, TR_AAN, 0, nullptr);
    }
    return m;
  });
  EXPECT_SHOWS(lang, "regel nummer 22 ");
  EXPECT_FALSE(lang.shows("regel nummer 23 "));
  EXPECT_SHOWS(lang.type(toets::Up), "regel nummer 40 ");
  EXPECT_EQ(lang.type(toets::Enter).text(24, 1, 6), "1: 40 ");

  Terminal diep = start_tr([] {
    TrMenu* const m = tr_menu_new(TR_BOX, 2, 2, 0, "diep");
    for (int i = 1; i <= 20; ++i) {
      tr_menu_add(m, i == 1 ? -1 : i - 1, "&Dieper", i, TR_AAN | TR_GROEP, 0, nullptr);
    }
    return m;
  });
  for (int i = 0; i < 13; ++i) diep.type("d");
  EXPECT_EQ(diep.row(25), "stackoverflow");
}

}  // namespace
