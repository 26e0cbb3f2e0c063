// Menus and the choice line as an operator meets them.
#include "scr/scr.h"
#include "tests/support/terminal.h"

namespace {

void gedaan(const char* wat) {
  scr_print(A_WAARDE, 20, 1, "gedaan: %s", wat);
  scr_enter(22, 1);
}
void aanmaken() { gedaan("aanmaken"); }
void wijzigen() { gedaan("wijzigen"); }
void afdrukken() { gedaan("afdrukken"); }
void opruimen() { gedaan("opruimen"); }

void drie_rubrieken() {
  menu_begin(0);
  menu_rubric(true, " EERSTE ");
  menu_item(true, true, "aanmaken", aanmaken);
  menu_item(true, false, "nog niet", afdrukken);
  menu_item(false, true, "voor een ander", aanmaken);
  menu_item(true, true, "wijzigen", wijzigen);
  menu_rubric(false, "VERBORGEN");
  menu_rubric(true, "TWEEDE");
  menu_item(true, true, "\x82\x82n keer", afdrukken);
  menu_column();
  menu_rubric(true, "DERDE");
  menu_item(true, true, "opruimen", opruimen);
}

Terminal start_menu(void (*bouw)()) {
  return start_in_child([bouw] {
    SCRINIT();
    scr_hooks.programma_info = [] { msg_info("over dit programma"); };
    do bouw();
    while (menu_run() != 0);
    scr_print(A_WAARDE, 20, 1, "terug op %d", scr_ctx->last_key);
    scr_enter(22, 1);
    scr_exit(0);
  });
}

TEST(Menu, NumbersItsItemsByRubricAndPutsTheCursorOnTheFirst) {
  Terminal t = start_menu(drie_rubrieken);
  EXPECT_ROWS(t, 3, R"(
 EERSTE                                  DERDE
 11 Aanmaken                             31 Opruimen
 12 Nog niet
 13 Wijzigen

 TWEEDE
 21 Één keer)");
  EXPECT_EQ(t.row(24), "Uw keuze 11");
  EXPECT_EQ(t.cursor_col(), 10);
  EXPECT_TRUE(t.reverse(4, 2) && t.reverse(4, 5));
  EXPECT_FALSE(t.reverse(6, 2));
  EXPECT_TRUE(t.bold(6, 3));   // available
  EXPECT_FALSE(t.bold(5, 3));  // not
}

TEST(Menu, UpDownAndTabGoAround) {
  Terminal t = start_menu(drie_rubrieken);
  struct Stap {
    const char* toets;
    int row, col;
  };
  const Stap stappen[] = {
      {toets::Up, 4, 42},  {toets::Down, 4, 2}, {toets::Down, 5, 2}, {toets::Tab, 9, 2},
      {toets::Tab, 4, 42}, {toets::Tab, 4, 2},  {toets::Down, 5, 2}, {toets::Up, 4, 2},
  };
  int row = 4, col = 2;
  for (const Stap& s : stappen) {
    EXPECT_TRUE(t.type(s.toets).reverse(s.row, s.col)) << s.row << ' ' << s.col;
    EXPECT_FALSE(t.reverse(row, col)) << row << ' ' << col;
    row = s.row, col = s.col;
  }
}

TEST(Menu, RefusesWhatIsNotThereAndComesBackOnWhatWasUsed) {
  Terminal t = start_menu(drie_rubrieken);
  EXPECT_EQ(t.type("19").row(25), "Ongeldige keuze");
  EXPECT_TRUE(t.reverse(4, 2));
  EXPECT_EQ(t.type("12").row(25), "Keuze niet beschikbaar");
  EXPECT_TRUE(t.reverse(5, 2));
  EXPECT_EQ(t.type("21").row(20), "gedaan: afdrukken");
  t.type(toets::Enter);
  // The same operation stands under 12 too: the cursor goes to the first that has it.
  EXPECT_TRUE(t.reverse(5, 2));
  EXPECT_TRUE(t.type("31", toets::Enter).reverse(4, 42));
  EXPECT_EQ(t.type(toets::Enter).row(20), "gedaan: opruimen");
  t.type(toets::Enter, toets::Back);
  EXPECT_EQ(t.type(toets::Enter).row(20),
            "gedaan: opruimen");  // an empty field takes the cursor item
  EXPECT_EQ(t.type(toets::Enter, toets::Cancel).row(20), "terug op 355");
}

TEST(Menu, HelpAndProgramInformationComeBackToTheField) {
  Terminal t = start_menu(drie_rubrieken);
  EXPECT_NE(t.type(toets::Down, toets::F1).row(16).find(" keuzemogelijkheden "), std::string::npos);
  EXPECT_EQ(t.text(17, 3, 30), "11-31   Nummer van menukeuze  ");
  EXPECT_EQ(t.text(18, 3, 30), "Up      Naar vorige menukeuze ");
  EXPECT_EQ(t.text(20, 3, 50), "Tab     Naar eerste menukeuze van volgende rubriek");
  EXPECT_SHOWS(t, "<ENTER> voor vervolg");
  EXPECT_FALSE(t.type(toets::Enter).shows("keuzemogelijkheden"));
  EXPECT_TRUE(t.reverse(5, 2));
  EXPECT_SHOWS(t.type(toets::F10), "over dit programma");
  EXPECT_TRUE(t.type(toets::Enter).reverse(5, 2));
  EXPECT_EQ(t.type(toets::Esc).row(20), "terug op 27");
}

TEST(Menu, WithoutRightsThereIsNothingToChoose) {
  Terminal t = start_menu([] {
    menu_begin(1);
    menu_rubric(false, "NIETS");
    menu_item(false, true, "niets", aanmaken);
  });
  EXPECT_EQ(t.row(23), "Geen menubevoegdheden");
  EXPECT_EQ(t.row(24), "<ENTER> voor vervolg");
  EXPECT_EQ(t.type(toets::Enter).row(20), "terug op 10");
}

template <int N>
void zonder_rubriek() {
  menu_begin(2);
  for (int i = 1; i < N; ++i) menu_item(true, true, "iets", aanmaken);
  menu_item(true, true, "laatste", wijzigen);
}

TEST(Menu, OneDigitChoosesAtOnceUpToEightItems) {
  Terminal acht = start_menu(zonder_rubriek<8>);
  EXPECT_EQ(acht.row(10), "  8 Laatste");
  EXPECT_EQ(acht.type("8").row(20), "gedaan: wijzigen");

  Terminal negen = start_menu(zonder_rubriek<9>);
  EXPECT_EQ(negen.type("9").row(20), "");
  EXPECT_EQ(negen.type(toets::Enter).row(20), "gedaan: wijzigen");
}

TEST(Menu, TabWithoutRubricsGoesToTheFirstItem) {
  Terminal t = start_menu(zonder_rubriek<3>);
  EXPECT_TRUE(t.type(toets::Up).reverse(5, 2));
  EXPECT_TRUE(t.type(toets::Tab).reverse(3, 3));
}

TEST(Menu, ARubricOfTenMakesTheNextSkipTen) {
  Terminal t = start_menu([] {
    menu_begin(3);
    menu_width(20);
    menu_rubric(true, "TIEN");
    for (int i = 0; i < 10; ++i)
      menu_item(true, true, "een tekst van ruim twintig tekens", aanmaken);
    menu_column();
    menu_rubric(true, "NA TIEN");
    menu_gap();
    menu_item(true, true, "erna", wijzigen);
    menu_default(wijzigen);
  });
  EXPECT_EQ(t.row(3), " TIEN                      NA TIEN");
  EXPECT_EQ(t.row(5), " 12 Een tekst van ruim t   31 Erna");
  EXPECT_TRUE(t.reverse(5, 28));
}

TEST(Menu, AFaultOfTheProgramEndsItWithModuleAndCode) {
  for (const bool niveau : {true, false}) {
    Terminal t = start_in_child([niveau] {
      SCRINIT();
      menu_begin(niveau ? 10 : 9);
      menu_item(false, true, "zonder", nullptr);
      menu_run();
    });
    EXPECT_SHOWS(t, niveau ? "menuhdl: errno=101" : "menuhdl: errno=102");
    EXPECT_EQ(t.type(toets::Enter).exit_status(), 1);
  }
}

// The choice line ---------------------------------------------------------------------------------

const char* werkwoord(int item) {
  static const char* const TEKST[] = {"&Selecteren", "&Wijzigen", "ver&plaatsen", "zonder letter"};
  return item < 4 ? TEKST[item] : "&Lange naam van een keuze die de regel vult";
}

/// Asks again and again; what came of it stands on row 2.
Terminal start_keuze(void (*bereid)(uint16_t* getal)) {
  return start_in_child([bereid] {
    SCRINIT();
    for (int ronde = 1;; ++ronde) {
      uint16_t getal = 0;
      popup_begin(werkwoord);
      bereid(&getal);
      const int r = popup_run(10, 3);
      scr_print(A_WAARDE, 2, 1, "%d: %d %d %d   ", ronde, r, scr_ctx->last_key, int{getal});
    }
  });
}

TEST(Keuze, ItemsAreBits) {
  popup_begin(werkwoord);
  popup_add(0);
  EXPECT_TRUE(popup_only(0) && popup_has(0));
  popup_add(31);
  popup_add(32);  // outside the word
  EXPECT_FALSE(popup_only(0) || popup_has(32) || popup_has(-1));
  popup_remove(0);
  EXPECT_TRUE(popup_only(31));
}

TEST(Keuze, ALetterChoosesAndTheCallersKeysHoldForEveryRead) {
  Terminal t = start_keuze([](uint16_t*) {
    for (const int i : {0, 1, 2, 3}) popup_add(i);
    popup_remove(3);
    popup_default(1);
    key_allow(K_F3);
    key_allow(K_CANCEL);
  });
  EXPECT_EQ(t.row(10), "  Uw keuze W Selecteren, Wijzigen, verplaatsen");
  EXPECT_TRUE(t.bold(10, 14) && t.underline(10, 14));
  EXPECT_FALSE(t.underline(10, 15));
  EXPECT_TRUE(t.underline(10, 39));
  EXPECT_EQ(t.type(toets::Enter).row(2), "1: 1 10 0");
  EXPECT_EQ(t.type("p").row(2), "2: 2 10 0");
  EXPECT_EQ(t.type("z").row(25).substr(0, 3), "<Z>");
  EXPECT_EQ(t.type(toets::F3).row(2), "3: -1 267 0");
  EXPECT_EQ(t.type(toets::Esc).row(2), "4: -1 27 0");
}

TEST(Keuze, ANumberOfTheRangeChoosesAsSoonAsItIsOne) {
  Terminal t = start_keuze([](uint16_t* getal) {
    popup_add(0);
    popup_number(77, getal, 11, 23);
    key_allow(K_F3);
  });
  EXPECT_EQ(t.type("0").cursor_col(), 12);  // a leading zero does not move
  EXPECT_EQ(t.type("1").cursor_col(), 13);
  EXPECT_EQ(t.text(10, 12, 1), "1");
  t.type(toets::Enter);  // nothing on the second place: the first digit stays
  EXPECT_EQ(t.type("4").row(2), "1: 77 10 14");
  EXPECT_EQ(t.type("9").row(25), "<9> ongeldige keuze");
  EXPECT_EQ(t.text(10, 12, 2), "_ ");  // wiped, and the field on the first place again
  EXPECT_EQ(t.type("2", "4").row(25), "<24> ongeldige keuze");
  EXPECT_EQ(t.type("1", "s").row(2), "2: 0 10 0");
  EXPECT_EQ(t.type(toets::Enter).row(2),
            "2: 0 10 0");  // empty: asked again, and the caller's key still counts
  EXPECT_EQ(t.type(toets::F3).row(2), "3: -1 267 0");
}

TEST(Keuze, ALineThatDoesNotFitShowsLettersAndListsTheItemsOnHelp) {
  Terminal t = start_keuze([](uint16_t*) {
    for (const int i : {0, 1, 3, 4}) popup_add(i);
    key_allow(K_CANCEL);
  });
  EXPECT_EQ(t.row(10), "  Uw keuze _ S, W, L");
  EXPECT_SHOWS(t.type(toets::F1), "zonder letter", "Lange naam van een keuze die de regel vult");
  EXPECT_FALSE(t.type(toets::Esc).shows("zonder letter"));
  EXPECT_EQ(t.row(2), "");
  EXPECT_EQ(t.type(toets::F1, toets::Down, toets::Down, toets::Enter).row(2), "1: 3 10 0");
}

TEST(Keuze, AnAmpersandMarksALetterButNotTheNameOfAKey) {
  Terminal t = start_in_child([] {
    SCRINIT();
    scr_amp_print(5, 1, "Vorig blad      <Pg&Up>");
    scr_amp_print(6, 1, "&F4 zoeken&x");
    scr_amp_print(7, 1, "&Fris");
    scr_enter(22, 1);
    scr_exit(0);
  });
  EXPECT_EQ(t.row(5), "Vorig blad      <PgUp>");
  EXPECT_TRUE(t.underline(5, 20));
  EXPECT_FALSE(t.underline(5, 21) || t.underline(5, 19));
  EXPECT_EQ(t.row(6), "F4 zoekenx");
  for (const int kolom : {1, 2, 10}) {
    EXPECT_TRUE(t.bold(6, kolom)) << kolom;
    EXPECT_FALSE(t.underline(6, kolom)) << kolom;
  }
  EXPECT_TRUE(t.underline(7, 1));
}

}  // namespace
