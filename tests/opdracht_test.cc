// The commands that print orders, on a screen: what they ask in which order, what they leave behind
// in DTPICK, and what keeps them out.

#include "isam/base.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/opdruk.h"
#include "main/work.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/opdrnr.h"
#include "tests/support/print_proef.h"
#include "tests/support/stukken.h"
#include "tests/support/terminal.h"

namespace {

using namespace toets;
constexpr Serienr BLOUSE{10100, 10, 1}, BROEK{10200, 310, 4};

struct Opdracht : ::testing::Test {
  Keten k;

  void SetUp() override {
    k.open();
    for (const Serienr& nr : {BLOUSE, BROEK}) Keten::serie(nr);
    proef_regel(0, 3, BLOUSE, {{7, 5}});
    proef_regel(1, 4, BROEK, {{7, 7}});
    proef_regel(2, 3, BLOUSE, {{7, 11}}, 20000011);
    proef_regel(2, 4, BROEK, {{7, 13}}, 20000011);
    ASSERT_TRUE(prt_tabellen_maak());
    prt_printer(2, "BESTAND", "afdruk.lst", 0, {0, 1, 1, 132, 64, "liggend", "", ""});
    k.sluit();
  }
  /// Runs the command in a program's own surroundings; "klaar" stands on row 22 behind it.
  static Terminal start(void (*commando)()) {
    return start_in_child([commando] {
      ProefSysteem::open();
      session_terminal = 7;
      int32_t nummer = 7;
      iotab('R', &nummer, &terminal_rec, SYS_TERMINALS);
      iofil('O', 0, &filiaal_rec);
      SCRINIT();
      work_open();
      commando();
      hdr_line('C', "");
      scr_print(A_WAARDE, 22, 1, "klaar%s%s", file_exists("TP07.TXT") ? " TP07" : "",
                file_exists("TP07B.TXT") ? " TP07B" : "");
      scr_enter(23, 1);
      work_close();
      scr_exit(0);
    });
  }
  /// A report on the screen, from the choice of its destination to the end of the preview.
  static void bekijk(Terminal& t, std::initializer_list<const char*> teksten) {
    ASSERT_TRUE(t.shows("Printbestemming")) << t.screen();
    t.type(Enter);
    for (const char* tekst : teksten) EXPECT_TRUE(t.shows(tekst)) << tekst << "\n" << t.screen();
    t.type(Esc);
  }
  static std::vector<DtPick> regels() {
    ICB* icb = IXOPEN("DTPICK", IX_LEES);
    const std::vector<DtPick> uit = proef_inhoud<DtPick>(icb);
    IXCLOSE(icb);
    return uit;
  }
};

TEST_F(Opdracht, ProvisionalOrdersAreOnlyLookedAt) {
  Terminal weg = start(opdracht_voorlopig);
  EXPECT_EQ(weg.type(Esc, Esc).row(22), "klaar");
  Terminal t = start(opdracht_voorlopig);
  EXPECT_TRUE(t.shows("Selectiecriteria"));
  t.type(Esc);
  EXPECT_TRUE(t.row(6).starts_with("Afdrukvolgorde")) << t.screen();
  t.type("2");
  bekijk(t, {"VERZAMELOPDRACHT FILIAAL 0 (voorlopig)", "10100.10.1"});
  EXPECT_EQ(t.row(22), "klaar");
  for (const DtPick& r : regels()) EXPECT_EQ(r.opdrachtnr, r.vanfil == 2 ? 20000011u : 0u);
}

TEST_F(Opdracht, ANewOrderIsDefinitiveBeforeItIsPrinted) {
  Terminal t = start(opdracht_nieuw);
  ASSERT_TRUE(t.shows("Selectiecriteria"));
  t.type(Esc);
  ASSERT_TRUE(t.shows("Printbestemming"));
  for (const DtPick& r : regels()) {
    EXPECT_TRUE(opdrnr_ok(std::to_string(r.opdrachtnr).c_str()));
    EXPECT_EQ(r.orderdatum, r.vanfil == 2 ? date_number("03022026") : date_today());
  }
  t.type(Down);
  t.type(Enter);  // the document to the file
  bekijk(t, {"Filiaal  0       5      0 stuks", "Filiaal  4       0      7 stuks"});
  EXPECT_EQ(t.row(22), "klaar");
  ASSERT_TRUE(
      wacht_tot([] { return bytes_van("afdruk.lst").find("FILIAAL 1") != std::string::npos; }));
  const std::string document = bytes_van("afdruk.lst");
  EXPECT_NE(document.find("Opdrachtnr: 20000011"), std::string::npos);
  EXPECT_NE(document.find("Opdrachtnr: 20000028"), std::string::npos) << "one number a pair";
}

TEST_F(Opdracht, AnOrderAgain) {
  Terminal t = start(opdracht_bestaand);
  EXPECT_TRUE(t.row(4).starts_with("Opdrachtnummer ________")) << t.screen();
  EXPECT_TRUE(t.type(Enter).shows("20000011   2 alle 03-02-26     24      2"));
  EXPECT_EQ(t.type(Enter).text(4, 16, 8), "20000011");
  EXPECT_TRUE(t.row(6).starts_with("Afdrukvolgorde")) << t.screen();
  t.type("1");
  bekijk(t, {"VERZAMELOPDRACHT FILIAAL 2", "10100.10.1", "10200.310.4"});
  bekijk(t, {"Filiaal  2      24      0 stuks", "Filiaal  3       0     11 stuks"});
  EXPECT_EQ(t.row(22), "klaar");
}

}  // namespace
