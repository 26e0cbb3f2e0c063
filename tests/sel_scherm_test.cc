// The criteria screen as an operator sees it: fields, their defaults, refusals, saving and
// recalling.
#include <gtest/gtest.h>

#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/sel_intern.h"
#include "sub/sel_merken.h"
#include "tests/support/stukken.h"
#include "tests/support/terminal.h"

namespace {

using namespace toets;

struct Scherm : testing::Test {
  Keten k;
  void SetUp() override {
    k.open();
    proef_merk(5, "Duinroos", "DUIN");
    proef_merk(7, "Zilt", "ZILT");
    proef_merk(123, "Duinroos", "DUIN");
    k.sluit();
  }
  /// The screen of a kind; behind it some of the record and the statuses stand on rows 2 and 3.
  Terminal start(int soort) {
    return start_in_child([this, soort] {
      k.open();
      sys_rec1.opties2 = 4;
      SCRINIT();
      sel_start(soort);
      sel_scherm();
      const SelRec r = sel_rec;
      sel_aanvullen();
      scr_clrbot(2, 1);
      scr_print(A_WAARDE, 2, 1, "m%hu a%ld-%ld k%hu-%hu dg[%s] sz[%s] j%hu-%hu h%d.", r.merk,
                r.artgroep_van, r.artgroep_tm, r.kleur_van, r.kleur_tm, r.doelgroep, r.seizoen,
                r.jaar_van, r.jaar_tm, r.stdmod);
      scr_print(A_WAARDE, 3, 1, "d%hu-%hu v%ld-%ld w%d%d p%d oms[%s] aangevuld %hu-%hu.", r.dat_van,
                r.dat_tm, r.voorraad_van, r.voorraad_tm, r.verwijderen, r.verwijder_soort,
                r.prijzen, veld_tekst(r.sel_oms, 30), sel_rec.jaar_van, sel_rec.jaar_tm);
      scr_enter(22, 1);
      scr_exit(0);
    });
  }
};

TEST_F(Scherm, TheStockKindShowsThirteenFieldsNumberedToTwentyOne) {
  Terminal t = start(13);
  EXPECT_EQ(t.row(1).substr(0, 17), " Selectiecriteria");
  EXPECT_ROWS(t, 2, R"(
VOORRAADBEHEER
 11 Merk                 alle
 12 Artikelgroep  vanaf  eerste
 13 Artikelgroep  t/m    laatste
 14 Model                alle
 15 Kenmerk              alle
 16 Kleurnummer   vanaf  eerste
 17 Kleurnummer   t/m    laatste
 18 Doelgroep            alle
 19 Standaard/modisch    beide
    Jaar          vanaf  eerste
    Jaar          t/m    laatste
 20 Hoofdseizoen(Z,W,K)  heel jaar
 21 Deelseizoen          alle
)");
  EXPECT_TRUE(t.reverse(3, 2));
  EXPECT_EQ(t.row(24), "Uw keuze _ I, W, B, O, A");
  EXPECT_SHOWS(t.type(Esc), "m0 a0-0 k0-0", "aangevuld 0-29990");
  EXPECT_EQ(file_size("DTSEL013.000"), 32 + 13 * 2);
}

TEST_F(Scherm, StandardSeriesHaveNoYears) {
  Terminal t = start(13);
  EXPECT_EQ(t.type("19", in("s")).text(11, 26, 9), "standaard");
  EXPECT_EQ(t.text(12, 26, 8), "geen    ");
  EXPECT_EQ(t.text(13, 26, 8), "geen    ");
  EXPECT_EQ(t.type("19", in("M")).text(11, 26, 9), "modisch  ");
  EXPECT_EQ(t.text(13, 26, 8), "laatste ");
  EXPECT_EQ(t.type(in("22")).text(12, 26, 8), "2022    ");  // the field stands on the year from
  EXPECT_SHOWS(t.type(in("21")), "Alleen 2022 t/m 2999 mogelijk");
  EXPECT_EQ(t.type(in("2023"), in("z")).text(13, 26, 8), "2023 Z  ");
  EXPECT_SHOWS(t.type(Esc), "j20220-20232 h2.");
}

TEST_F(Scherm, RangesThatEndBeforeTheyBeginAreNamedAndTheEndIsAsked) {
  Terminal t = start(13);
  EXPECT_SHOWS(t.type("13", in("20000"), "12", in("30000")), "Ongeldige artikelgroep vanaf - t/m");
  EXPECT_EQ(t.cursor_row(), 5);
  EXPECT_SHOWS(t.type(in("10")), "Alleen 30000 t/m 99999 mogelijk");
  EXPECT_SHOWS(t.type(in("40000"), "17", in("5"), "16", in("9")),
               "Ongeldig kleurnummer vanaf - t/m");
  EXPECT_EQ(t.type(std::string(Back) + Enter).text(9, 26, 8), "laatste ");
  EXPECT_SHOWS(t.type(Esc), "a30000-40000 k9-0");
}

TEST_F(Scherm, TargetGroupsAndSeasonsAreTypedWithCommas) {
  Terminal t = start(13);
  EXPECT_EQ(t.type("18").row(24),
            "Ingave doelgroepen, gescheiden door komma's; F5 voor overzicht omschrijvingen");
  EXPECT_SHOWS(t.type(in("D,HM")), "<M> Komma verwacht");
  EXPECT_SHOWS(t.type(in("D,,H")), "<,> Ongeldige ingave");
  EXPECT_SHOWS(t.type(in("D.H,D")), "<D> Doelgroep reeds geselecteerd");
  EXPECT_EQ(t.type(in("D.H,")).text(10, 26, 5), "D,H  ");
  EXPECT_EQ(t.type("20", in("ww")).text(14, 26, 5), "W    ");
  EXPECT_EQ(t.type("21", in("1,2")).text(15, 26, 5), "1,2, ");
  EXPECT_EQ(t.type("21", std::string(Back) + Enter).text(15, 26, 5), "alle ");
  EXPECT_SHOWS(t.type(Esc), "dg[DH] sz[W]");
}

TEST_F(Scherm, OneBrandShowsItsNameAndTwoAreSeveral) {
  Terminal t = start(13);
  EXPECT_EQ(t.type("11", in("7")).text(3, 26, 20), "   7  ZILT Zilt     ");
  t.type("11");
  t.type(F5);  // the list opens at the brand, which is marked
  EXPECT_EQ(t.type(Up, F7, F3).text(3, 30, 16), ", ...  meerdere ");
  EXPECT_SHOWS(t.type("14", F5), "Selecteren model alleen mogelijk bij 1 merk");
  EXPECT_EQ(t.type(Enter, Esc, "i").text(3, 26, 10), "alle      ");
  EXPECT_SHOWS(t.type(Esc), "m0 a0-0");
}

TEST_F(Scherm, ChangingAsksForAFieldUntilItIsLeftAndEnterTakesAllOfThem) {
  Terminal t = start(13);
  EXPECT_EQ(t.type("w").row(24), "Uw keuze __ 11-21  <ENTER> voor alle");
  EXPECT_SHOWS(t.type("22"), "<22> Ongeldige ingave");
  EXPECT_EQ(t.type("12", in("10100")).text(4, 26, 8), "10100   ");
  EXPECT_SHOWS(t, "<ENTER> voor alle");
  t.type(Enter);
  for (const int rij : {3, 4, 5, 6}) {
    EXPECT_EQ(t.cursor_row(), rij);
    t.type(Enter);
  }
  EXPECT_SHOWS(t, "Kenmerk", "0  Alle");
  t.type("0");
  for (const int rij : {8, 9, 10, 11, 12, 13, 14, 15}) {
    EXPECT_EQ(t.cursor_row(), rij);
    t.type(Enter);
  }
  EXPECT_SHOWS(t, "<ENTER> voor alle");
  EXPECT_EQ(t.type(Esc).row(24), "Uw keuze _ I, W, B, O, A");
}

TEST_F(Scherm, PeriodsStartAtTheirDefaultsAndMustNotRunBack) {
  const std::string vandaag = date_plain(date_today());
  Terminal t = start(4);
  EXPECT_EQ(t.text(19, 26, 37), "eerste  (010180) t/m vandaag         ");
  EXPECT_EQ(t.type("25").text(19, 26, 6), "010180");
  EXPECT_EQ(t.type(in("010125")).text(19, 47, 6), vandaag);
  EXPECT_SHOWS(t.type(in("311224")), "Ongeldige periode");
  EXPECT_EQ(t.text(19, 26, 6), "010125");
  EXPECT_EQ(t.type(Enter, in("020125")).text(19, 26, 27), "010125           t/m 020125");
  EXPECT_EQ(t.type("25", in("010180"), in(vandaag.c_str())).text(19, 26, 16), "eerste  (010180)");
  EXPECT_SHOWS(t.type(Esc), "d0-0 ");
}

TEST_F(Scherm, StockLimitsActionsAndRemovalHaveTheirOwnFields) {
  Terminal t = start(10);
  EXPECT_EQ(t.text(20, 5, 33), "Series via EDI       alle series ");
  EXPECT_EQ(t.text(17, 26, 28), "eerste  (010180) t/m vandaag");
  EXPECT_EQ(t.type("24", in("12")).text(18, 26, 5), "   12");
  EXPECT_SHOWS(t.type("25", in("7")), "Alleen 12 t/m 99999 mogelijk");
  EXPECT_EQ(t.type(in("99999")).text(19, 26, 7), "maximum");
  EXPECT_EQ(t.type("26", "2").text(20, 26, 18), "series via pricat ");
  EXPECT_SHOWS(t.type(Esc), "v12-99999");

  Terminal u = start(14);
  EXPECT_EQ(u.text(17, 26, 27), "eerste  (010180) t/m 010180");
  EXPECT_EQ(u.text(18, 26, 15), "geen (010180)  ");
  EXPECT_EQ(u.text(22, 2, 30), "28 INVENT.  invdat t/m  geen (");
  EXPECT_SHOWS(u.type("29"), "Ja alleen series via Pricat zonder etiketten");
  EXPECT_TRUE(u.type("3").row(23).ends_with("Ja  alleen series via Pricat zonder etiketten"));
  EXPECT_EQ(u.type("29", "1").text(23, 26, 10), "Nee       ");
  EXPECT_SHOWS(u.type(Esc), "w00 ");
}

TEST_F(Scherm, TheInventoryListAsksForPricesWhenItEnds) {
  Terminal t = start(20);
  EXPECT_EQ(t.row(20), "");  // a letter without a field
  EXPECT_SHOWS(t.type(Esc), "Aankoopprijzen? (J/N)");
  EXPECT_SHOWS(t.type(in("N")), "Verkoopprijzen? (J/N)");
  EXPECT_SHOWS(t.type(in("N")), "p0 ");
}

TEST_F(Scherm, ASelectionIsSavedUnderANumberRecalledAndDeleted) {
  Terminal t = start(13);
  EXPECT_SHOWS(t.type("12", in("10100"), "b"), "Bewaren selectie");
  EXPECT_EQ(t.type(in("3"), in("Zomer")).text(2, 47, 12), " 3  Zomer   ");
  EXPECT_EQ(t.type("i").text(4, 26, 6), "eerste");
  EXPECT_SHOWS(t.type("o"), "nr  omschrijving", " 2  ** niet in gebruik **", " 3  Zomer");
  EXPECT_SHOWS(t.type(in("4"), Enter), "Opgevraagde selectie is niet in gebruik");
  EXPECT_EQ(t.type(in("3"), Enter).text(4, 26, 6), "10100 ");

  EXPECT_SHOWS(t.type("b", in("3")), "Huidige selectie 3  wordt vervangen. Akkoord? (J/N)");
  EXPECT_EQ(t.type(in("N"), in("3"), in("J"), std::string(Back) + Enter).text(2, 47, 12),
            "            ");
  EXPECT_FALSE(file_exists("DTSEL013.003"));
  EXPECT_SHOWS(t.type(Esc), "a10100-0");
}

TEST_F(Scherm, AFileThatIsNoSelectionIsNamedAndLeavesAScreenThatWorks) {
  Keten::maak("DTSEL013.000", 0);
  std::ofstream("DTSEL013.000", std::ios::binary)
      << std::string(32, 'x') << "?!b\xFF" << std::string("\x10\x27\0\0", 4) << "a\xFE"
      << std::string("\2\0\0\0\x63\0\7\0", 8) << "f\xFF" << std::string(11, 'Q') << "k";
  Terminal t = start(13);  // the record is read once before the screen and once by it
  EXPECT_SHOWS(t, "Foutief merk in selectie", "Merknr 99");
  EXPECT_SHOWS(t.type(Enter), "Merknr 99");
  EXPECT_SHOWS(t.type(Enter), "selectiebestand is inconsistent");
  EXPECT_EQ(t.text(3, 26, 10), "   7  ZILT");
  EXPECT_EQ(t.text(4, 26, 6), "10000 ");
  EXPECT_EQ(t.type("18", in("D")).text(10, 26, 3), "D  ");
}

TEST_F(Scherm, ThePrintOptionShowsAllFieldsAndComesBack) {
  Terminal t = start(13);
  EXPECT_SHOWS(t.type("12", in("10100"), "a"), "Printbestemming");
  EXPECT_SHOWS(t.type(F3), "Selectiecriteria VOORRAADBEHEER", "\nArtikelgroep  vanaf  10100\n",
               "\nDeelseizoen          alle\n");
  EXPECT_EQ(t.type(Esc).text(4, 2, 28), "12 Artikelgroep  vanaf  1010");
}

/// What `werk` prints, by line.
std::string gedrukt(void (*werk)()) {
  FILE* uit = tmpfile();
  prt_open_stil(uit, 132, 64);
  werk();
  print_close("");
  std::string tekst(4096, '\0');
  rewind(uit);
  tekst.resize(fread(tekst.data(), 1, tekst.size(), uit));
  fclose(uit);
  return tekst;
}

TEST_F(Scherm, AReportNamesWhatWasSetAndItsBrandsTwoToALine) {
  k.open();
  sel_standaard(1);
  EXPECT_EQ(gedrukt(sel_kop), "Alles geselecteerd\n");
  merklijst_leeg();
  merklijst_neem(std::vector<uint16_t>{5, 7, 123}, true);
  sel_stand('a') = SEL_LIJST;
  sel_rec.dat_tm = date_number("01022025");
  sel_stand('H') = SEL_INGEVOERD;
  EXPECT_EQ(
      gedrukt(sel_kop),
      "Merk                    5 DUIN Duinroos                 7 ZILT Zilt                  \n"
      "                      123 DUIN Duinroos              \n"
      "Orderdatum    vanaf  010180 t/m 010225\n");
  const std::string alles = gedrukt(sel_druk);
  EXPECT_NE(alles.find("Orderdatum    vanaf  eerste t/m 010225\n"), std::string::npos) << alles;
  EXPECT_NE(alles.find("Filiaal              alle\n"), std::string::npos) << alles;
  EXPECT_NE(alles.find(str_format("Beginleverdat vanaf  vandaag (%s) t/m laatste\n",
                                  date_plain(date_today()))),
            std::string::npos)
      << alles;
}

}  // namespace
