// The criteria sets of a terminal: where they come from, what of them survives, and their screen.
#include "sub/adv_krit.h"

#include <gtest/gtest.h>

#include "scr/scr.h"
#include "tests/support/keten.h"
#include "tests/support/terminal.h"

namespace {

std::string set_bytes(int terminal, int slot) {
  return Keten::bytes(str_format("DTSELVRD.%03d", terminal).c_str(), slot * 124, 124);
}

TEST(Adviessets, DefaultsAreTheBytesOfSevenRecords) {
  Keten k;
  k.open();
  adv_laad(7);
  adv_bewaar(7);
  EXPECT_EQ(file_size("DTSELVRD.007"), 868);
  std::string soll = std::string(32, '\xFF') + std::string("\0\0\0\0\x9F\x86\1\0", 8) +
                     std::string("\0\0\0\0\xFF\x7F\0\0", 8) + std::string("A\3\x0E\0", 4) +
                     std::string(64, '\xFF') + std::string(7, '\1') + '\0';
  for (int slot = 0; slot < 7; ++slot) EXPECT_EQ(set_bytes(7, slot), soll) << slot;
}

TEST(Adviessets, OnlyTheLastSetRemembersItsDays) {
  struct Geval {
    uint16_t in, uit;
  };
  for (const Geval g : {Geval{1, 1}, {250, 250}, {251, 14}, {0, 14}, {0x8000, 0x8000}}) {
    Keten k;
    k.open();
    adv_laad(7);
    for (AdvRec& s : adv_sets) s.vrk_dagen = g.in;
    adv_bewaar(7);
    adv_laad(7);
    EXPECT_EQ(adv_sets[6].vrk_dagen, g.uit) << g.in;
    for (size_t i = 0; i < 6; ++i) EXPECT_EQ(adv_sets[i].vrk_dagen, 14) << g.in;
  }
}

TEST(Adviessets, DaysComeFromTheOwnBranchWhenTheSystemNamesNone) {
  Keten k;
  k.open();
  sys_rec20.verkoopdagen = 0;
  sys_rec1.eigen_filiaal = 3;
  EXPECT_EQ(adv_verkoopdagen(), 3);
}

TEST(Adviessets, TheFirstTerminalsFileServesOneWithoutItsOwnAndAShortFileIsFilledWithZeros) {
  Keten k;
  k.open();
  adv_laad(1);
  adv_sets[0].vrd_van = 77;
  adv_sets[1].vrd_van = 88;
  adv_bewaar(1);
  std::filesystem::resize_file("DTSELVRD.001", 124 + 34);
  adv_laad(7);
  EXPECT_EQ(adv_sets[0].vrd_van, 77);
  EXPECT_EQ(adv_sets[1].filialen[31], 0xFF);
  EXPECT_EQ(adv_sets[1].vrd_van, 88 & 0xFFFF);
  EXPECT_EQ(adv_sets[1].vrd_tm, 0);
  EXPECT_EQ(adv_sets[2].met_opdracht, 0);
  adv_sets[0].vrd_van = 5;
  adv_bewaar(7);
  adv_laad(7);
  EXPECT_EQ(adv_sets[0].vrd_van, 5);
}

/// The screen on default criteria; the fields of interest stand on row 1 behind it.
Terminal scherm(Keten& k, int slot) {
  return start_in_child([&k, slot] {
    k.open();
    SCRINIT();
    adv_rec = adv_standaard();
    adv_scherm(slot);
    const AdvRec& a = adv_rec;
    scr_print(A_WAARDE, 1, 1, "o%d%d s%d vrd %ld-%ld vrk %c %ld-%ld dg %hu v%d a%d.",
              a.met_opdracht, a.zonder_opdracht, a.adv_switch, a.vrd_van, a.vrd_tm, a.vrk_soort,
              a.vrk_van, a.vrk_tm, a.vrk_dagen, a.vanuit_filialen[0], a.aanvul_filialen[0]);
    scr_enter(22, 1);
    scr_exit(0);
  });
}

TEST(Adviesscherm, ShowsThreeBlocksAndTheFourthForMutationsOnly) {
  Keten k;
  Terminal t = scherm(k, ADV_HANDMATIG);
  EXPECT_ROWS(t, 3, R"(
 1 SELECTIE OP OPDRACHT
   Alle series

 2 BEREKENEN ADVIES
   Aanvullen/herverdelen vanuit filialen      alle
   Aanvullen filialen                         alle

 3 SELECTIE OP ADVIEZEN
   Series met een aanvuladvies              : Ja
   Series met een switchadvies              : Ja
   Series met herverdeeladvies van restanten: Ja
   Series met distributie-advies            : Ja
   Overige series                           : Ja
)");
  EXPECT_SHOWS(t.type("4"), "Ongeldige ingave");
  Terminal u = scherm(k, ADV_MUTATIES);
  EXPECT_EQ(u.row(17), " 4 SELECTIE OP VOORRAAD en VERKOPEN");
  EXPECT_SHOWS(u, "maximum");
}

TEST(Adviesscherm, TakesOrdersBranchesAndAnswers) {
  Keten k;
  Terminal t = scherm(k, ADV_HANDMATIG);
  EXPECT_EQ(t.type("1", "2").text(4, 4, 33), "Series met voorlopige opdracht   ");
  EXPECT_SHOWS(t.type("2"), "Ingave filialen, gescheiden door komma's");
  EXPECT_EQ(t.type(toets::in("1-3"), toets::Enter).text(7, 47, 4), "1-3 ");
  EXPECT_EQ(t.text(8, 47, 4), "alle");
  EXPECT_EQ(t.type("3", toets::Enter, toets::in("N"), toets::Esc).text(12, 47, 3), "Nee");
  EXPECT_EQ(t.type(toets::Esc).text(1, 1, 9), "o10 s0 vr");
  EXPECT_TRUE(t.row(1).ends_with("v14 a255."));
}

TEST(Adviesscherm, AnotherKindOfSalesBeginsWithItsOwnRange) {
  Keten k;
  Terminal t = scherm(k, ADV_MUTATIES);
  t.type("4");
  t.type(toets::Enter);                                                 // branches
  t.type(toets::in("3"));                                               // stock from
  EXPECT_SHOWS(t.type(toets::in("2")), "Alleen 3 t/m 99999 mogelijk");  // below it: refused
  t.type(toets::in("20"));
  t.type(toets::in("30"));  // days
  EXPECT_EQ(t.type(toets::in("p")).text(21, 54, 8), "100     ");
  EXPECT_SHOWS(t.type(toets::Esc, toets::Esc), "vrd 3-20 vrk P 0-100 dg 30");
}

}  // namespace
