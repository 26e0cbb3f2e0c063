// Sort letters as keys of private indexes, and the question for an order.
#include <gtest/gtest.h>

#include <fstream>

#include "scr/scr.h"
#include "sub/serie.h"
#include "tests/support/keten.h"
#include "tests/support/terminal.h"

namespace {

std::string velden(const ICB* icb) {
  std::string uit;
  for (int i = 0; i < IX_VELDEN && icb->keys[0].field_type[i] != 0; ++i) {
    uit += str_format("%c%d-%d ", icb->keys[0].field_type[i], icb->keys[0].field_start[i],
                      icb->keys[0].field_end[i]);
  }
  return uit;
}

TEST(Sorteer, KeysStandOnTheFieldsOfASeries) {
  Keten k;
  k.open();
  Keten::serie({10100, 15, 1});
  ICB* icb = sort_maak("DTSER.V07", "RMDJSENZBL");
  ASSERT_NE(icb, nullptr);
  EXPECT_EQ(velden(icb), "I9-10 C20-34 I16-16 I11-12 C13-13 C55-66 C79-80 I14-14 I17-17 C165-170 ");
  EXPECT_EQ(std::string(icb->keys[0].key_name, 5), "key-1");
  EXPECT_EQ(icb->keys[0].dup, 'N');
  EXPECT_EQ(icb->record_length, 200);
  IXCLOSE(icb);
  icb = IXOPEN("DTSER.V07", IX_LEES);
  EXPECT_STREQ(icb->description, "RMDJSENZBL");
  IXCLOSE(icb);

  EXPECT_EQ(sort_maak("DTSER.V07", "AKVRMDJSENZ"), nullptr);  // eleven
  EXPECT_EQ(sort_maak("DTSER.V07", "CFTU"), nullptr);         // nothing that a series carries
  DtSer rec{};
  EXPECT_TRUE(IXFIRSTR(dtser, &rec));  // the table is as it was
}

TEST(Sorteer, ANameWithoutAPointIsATableOfItsOwn) {
  Keten k;
  k.open();
  ICB* icb = sort_maak("TP07S", "AKV");
  DtSer rec{};
  rec.nr = {10100, 1, 1};
  IXWRITE(icb, &rec);
  IXCLOSE(icb);
  IXCLOSE(sort_maak("TP07S", "AKV"));
  EXPECT_EQ(file_size("TP07S.TXT"), 0);
}

/// Asks for an order; what came of it stands on row 1.
Terminal vraag(const char* allowed, const char* order) {
  return start_in_child([=] {
    SCRINIT();
    char letters[11];
    str_printf(letters, sizeof letters, "%s", order);
    const bool gekozen = sort_kies(4, 20, allowed, letters);
    scr_print(A_WAARDE, 1, 1, "%d %s.", gekozen, letters);
    scr_enter(22, 1);
    scr_exit(0);
  });
}

TEST(Sorteer, TheDialogNamesTheLettersAndAddsWhatAKeyNeeds) {
  Terminal t = vraag("AKVRMDJSENZBL", "AKV");
  EXPECT_SHOWS(t, "Sorteermogelijkheden");
  EXPECT_EQ(t.text(5, 22, 16), "A = Artikelgroep");
  EXPECT_EQ(t.text(17, 22, 11), "L = Locatie");
  EXPECT_EQ(t.text(18, 22, 19), "Sorteervolgorde AKV");
  EXPECT_EQ(t.type("rm", toets::Enter).row(1).substr(0, 8), "1 RMAKV.");
}

TEST(Sorteer, TheDialogAsksAgainUntilTheOrderFits) {
  Terminal t = vraag("AKVRMDJSENZBL", "AKV");
  EXPECT_SHOWS(t.type(toets::in("RR")), "<R> Ongeldige ingave");
  EXPECT_SHOWS(t.type(toets::in("RMDJSENZ")),
               "Te veel velden in sorteervolgorde");  // eight, and three to come
  EXPECT_EQ(t.type(toets::in("RMDJSEKZVA")).row(1).substr(0, 13), "1 RMDJSEKZVA.");
}

TEST(Sorteer, ATildeTurnsTheAddingOffButNotTheCount) {
  Terminal t = vraag("AKVRMDJSENZBL~", "AKV");
  EXPECT_EQ(t.text(18, 22, 19), "Sorteervolgorde AKV");  // the sign is no letter
  EXPECT_SHOWS(t.type(toets::in("RMDJSENZ")), "Te veel velden");
  EXPECT_EQ(t.type(toets::in("RM")).row(1).substr(0, 5), "1 RM.");
}

TEST(Sorteer, LeavingKeepsTheOrderAndNumbersAreForLabelsOnly) {
  Terminal t = vraag("AKVRU", "RAKV");
  EXPECT_EQ(t.type(toets::Esc).row(1).substr(0, 7), "0 RAKV.");
  Terminal u = vraag("AKVRU", "AKV");
  EXPECT_FALSE(u.shows("Nummer"));
  EXPECT_SHOWS(u.type(toets::in("U")), "Sorteren op nummer is hier niet mogelijk");
  EXPECT_EQ(u.row(1).substr(0, 6), "0 AKV.");
}

TEST(Sorteer, LettersUnknownToTheCatalogueStay) {
  char tekst[] = "AKV~?";
  sort_vertaal(tekst, 0);
  EXPECT_STREQ(tekst, "AKV~?");
  sort_vertaal(tekst, 1);
  EXPECT_STREQ(tekst, "AKV~?");
}

}  // namespace
