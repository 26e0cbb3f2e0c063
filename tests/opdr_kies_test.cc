// The browser of orders as an operator sees it, and the number field in front of it.
#include "sub/opdr_kies.h"

#include "isam/base.h"
#include "scr/scr.h"
#include "tests/support/keten.h"
#include "tests/support/terminal.h"

namespace {

using namespace toets;
constexpr Serienr BLOUSE{10100, 10, 1}, BROEK{10200, 310, 4};
constexpr uint32_t EEN = 20000011, TWEE = 20000028, DRIE = 20000035, VIER = 20000042;

struct OpdrKies : ::testing::Test {
  Keten k;

  void SetUp() override {
    k.open();
    pick(2, 3, BLOUSE, EEN, 5, "01022026");
    pick(2, 3, BROEK, EEN, 7, "01022026");
    pick(1, 3, BLOUSE, TWEE, 1, "05022026");  // two receivers
    pick(1, 4, BLOUSE, TWEE, 2, "05022026");
    pick(1, 4, BLOUSE, DRIE, 70000, "03012026");
    pick(1, 4, BROEK, 0, 9, "");  // provisional
    go(5, 6, 101, VIER, "09022026");
    go(5, 6, 102, VIER, "09022026");
    go(5, 7, 103, 0, "09022026");
    go(2, 3, 104, EEN, "09022026");
    k.sluit();
  }
  static void pick(int van, int naar, const Serienr& nr, uint32_t nummer, uint32_t stuks,
                   const char* datum) {
    DtPick r{};
    r.vanfil = static_cast<uint8_t>(van);
    r.naarfil = static_cast<uint8_t>(naar);
    r.nr = nr;
    r.opdrachtnr = nummer;
    r.aantal[0] = 1000;  // never counts
    r.aantal[7] = stuks;
    r.orderdatum = date_number(datum);
    Keten::voeg(dtpick, r);
  }
  static void go(int van, int naar, uint32_t etiket, uint32_t nummer, const char* datum) {
    DtGo r{};
    r.vanfil = static_cast<uint8_t>(van);
    r.naarfil = static_cast<uint8_t>(naar);
    r.etiket = etiket;
    r.opdrachtnr = nummer;
    r.soort = 1;
    r.zenddatum = date_number(datum);
    Keten::voeg(dtgo, r);
  }
  static std::string tekst(const OpdrKeuze& o) {
    return str_format("%lu %d>%d %s %lu/%lu", o.nummer, o.vanfil, o.naarfil, date_show(o.datum),
                      o.stuks, o.regels);
  }
  Terminal start(const std::function<std::string()>& werk) {
    return start_in_child([this, werk] {
      k.open();
      SCRINIT();
      hdr_line('C', "");
      const std::string uit = werk();
      scr_print(A_WAARDE, 22, 1, "%s", uit);
      scr_enter(23, 1);
      scr_exit(0);
    });
  }
  Terminal veld(const OpdrGrens& grens = {}) {
    return start([grens] {
      OpdrKeuze keuze{};
      const bool ja = opdr_kies(4, 16, grens, &keuze);
      return (ja ? "ja " : "nee ") + tekst(keuze) + (file_exists("TP07B.TXT") ? " rest" : "");
    });
  }
};

TEST_F(OpdrKies, LooksNumbersUpWithinLimits) {
  k.open();
  OpdrKeuze o{};
  IXSWITCH(dtpick, 2);
  ASSERT_TRUE(opdr_zoek(EEN, {}, &o));
  EXPECT_EQ(tekst(o), "20000011 2>3 01-02-26 12/2");
  EXPECT_EQ(dtpick->block.key_number, 2);
  ASSERT_TRUE(opdr_zoek(TWEE, {}, &o));
  EXPECT_EQ(tekst(o), "20000028 1>12 05-02-26 3/2") << "several receivers";
  ASSERT_TRUE(opdr_zoek(DRIE, {}, &o));
  EXPECT_EQ(o.stuks, 70000u);
  OpdrGrens onderweg;
  onderweg.opdrachten = false;
  onderweg.onderweg = true;
  EXPECT_FALSE(opdr_zoek(VIER, {}, &o));
  ASSERT_TRUE(opdr_zoek(VIER, onderweg, &o));
  EXPECT_EQ(tekst(o), "20000042 5>6 09-02-26 2/2");
  EXPECT_FALSE(opdr_zoek(DRIE, onderweg, &o));
  onderweg.opdrachten = true;
  ASSERT_TRUE(opdr_zoek(EEN, onderweg, &o));
  EXPECT_EQ(tekst(o), "20000011 2>3 01-02-26 13/3") << "both sources";
  EXPECT_FALSE(opdr_zoek(0, onderweg, &o));
  OpdrGrens van1;
  van1.vanfil = 1;
  EXPECT_FALSE(opdr_zoek(EEN, van1, &o));
  EXPECT_TRUE(opdr_zoek(TWEE, van1, &o));
  van1.van = van1.tm = date_number("03012026");
  EXPECT_FALSE(opdr_zoek(TWEE, van1, &o));
  EXPECT_TRUE(opdr_zoek(DRIE, van1, &o));
}

TEST_F(OpdrKies, ATypedNumberMustExist) {
  Terminal t = veld();
  EXPECT_SHOWS(t.type(in("20000012")), "Ongeldig nummer");
  EXPECT_SHOWS(t.type(in("20000042")), "Onbekend opdrachtnummer");
  EXPECT_EQ(t.type(in("28")).row(22), "ja 20000028 1>12 05-02-26 3/2");  // its last digits
  EXPECT_EQ(t.text(4, 16, 8), "20000028");
  Terminal u = veld();
  u.type(Esc);
  EXPECT_TRUE(u.row(22).starts_with("nee 0 ")) << u.row(22);
}

TEST_F(OpdrKies, ThreeOrdersOfTheListAndTheirSearchFields) {
  Terminal t = veld();
  t.type(Enter);
  EXPECT_SHOWS(t, " selecteren opdracht ", " nummer   van naar datum     stuks regels",
               "20000011   2    3 01-02-26     12      2",
               "20000028   1 alle 05-02-26      3      2",
               "20000035   1    4 03-01-26  70000      1", "Nummer ________");
  EXPECT_FALSE(t.shows("20000042"));
  t.type(Tab);
  EXPECT_SHOWS(t, " van naar nummer   datum     stuks regels",
               "  2    3 20000011 01-02-26     12      2", "Van filiaal ___");
  EXPECT_SHOWS(t.type(in("1")), "  1    4 20000035 03-01-26");
  EXPECT_SHOWS(t.type(Tab), " datum    nummer   van naar");
  EXPECT_SHOWS(t.type(in("020226")), "Datum (DDMMJJ) ______");  // the next date
  EXPECT_EQ(t.type(F3).row(22), "ja 20000028 1>12 05-02-26 3/2");
}

TEST_F(OpdrKies, LeavingTheListComesBackToTheFieldAndNothingIsNumberZero) {
  Terminal t = veld();
  EXPECT_SHOWS(t.type(F5), "selecteren opdracht");
  EXPECT_EQ(t.type(Esc).cursor_row(), 4);
  EXPECT_SHOWS(t.type(std::string("20000030") + F5), "20000035");  // opens at the next
  EXPECT_EQ(t.type(Enter).row(22), "ja 20000035 1>4 03-01-26 70000/1");
  OpdrGrens leeg;
  leeg.vanfil = 9;
  Terminal u = veld(leeg);
  EXPECT_SHOWS(u.type(F5), "Geen informatie");
  EXPECT_TRUE(u.type(Enter).row(22).starts_with("ja 0 ")) << u.row(22);
}

TEST_F(OpdrKies, SeveralAreMarked) {
  const auto meer = [this](const OpdrGrens& grens) {
    return start([grens] {
      std::string uit;
      for (const OpdrKeuze& o : opdr_kies_meer(grens)) uit += str_format("%lu ", o.nummer);
      return uit + (file_exists("TP07B.TXT") ? "rest" : ".");
    });
  };
  Terminal t = meer({});
  EXPECT_TRUE(t.shows(" selecteren opdracht(en) "));
  EXPECT_EQ(t.type(Down, F7, Up, Up, F7, F3).row(22), "20000028 20000011 .")
      << "in the order of marking";
  OpdrGrens onderweg{-1, 0, UINT16_MAX, false, true};
  Terminal u = meer(onderweg);
  EXPECT_TRUE(u.shows("20000042   5    6 09-02-26      2      2")) << u.screen();
  EXPECT_EQ(u.type(Esc).row(22), ".");
}

TEST_F(OpdrKies, ThePrintOrder) {
  const auto volgorde = [this] {
    return start([] {
      char letters[11] = "LAKV";
      const bool ja = volgorde_kies(6, 1, letters);
      return str_format("%s %d", letters, ja);
    });
  };
  Terminal t = volgorde();
  EXPECT_SHOWS(t, "\nAfdrukvolgorde", "1 serienummer", "2 locatienummer", "3 merk - model");
  EXPECT_EQ(t.type("3").row(22), "RMAKV 1");
  EXPECT_EQ(t.row(6), "Afdrukvolgorde 3 merk - model");
  EXPECT_EQ(volgorde().type(Enter).row(22), "LAKV 1");
  EXPECT_EQ(volgorde().type(Esc).row(22), "LAKV 0");
}

}  // namespace
