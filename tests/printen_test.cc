// Printing as the operator has it: the list of destinations, the questions, an interruption, and
// the printer port of the own terminal.
#include "scr/scr.h"
#include "tests/support/print_proef.h"
#include "tests/support/terminal.h"

namespace {

void printer(uint16_t nr, const char* naam, const char* device, uint8_t to_dir) {
  prt_printer(nr, naam, device, to_dir, {0, 1, 1, 80, 64, "staand", "", ""});
}

void regel(const char* tekst) {
  print_f("%s", tekst);
  print_nl();
}

/// A program in a folder of its own; what it says at its end is in "klaar".
struct Programma {
  TempDir map;
  Terminal t;

  explicit Programma(const std::function<int()>& werk)
      : t(start_in_child(
            [werk] {
              SCRINIT();
              prt_tabellen_maak();
              const int uitslag = werk();
              std::ofstream("klaar") << uitslag << ' ' << prt_rec.width << ' ' << prt_rec.device;
              scr_exit(0);
            },
            opties(map.pad))) {}
  static TerminalOpties opties(const std::string& map) {
    TerminalOpties o;
    o.dir = map;
    o.env = {"KOBPRT"};
    return o;
  }
  std::string klaar() {
    EXPECT_EQ(t.exit_status(), 0);
    return bytes_van(map / "klaar");
  }
};

int vraag_80() {
  printer(7, "MATRIX", "uit.lst", 0);
  printer(8, "ZEBRA", "afdruk", 1);
  const int goed = XPRT_OPEN(0, PRT_80, nullptr);
  if (goed != 0) print_close("");
  return goed;
}

}  // namespace

TEST(Printen, TheListShowsWhatSuitsAndTakesThePick) {
  Programma p(vraag_80);
  EXPECT_SHOWS(p.t, "Printbestemming");
  EXPECT_EQ(p.t.row(4).substr(4, 76),
            "Printer      Device               Configuratie                  Kol  Rij O W");
  EXPECT_TRUE(p.t.row(5).find(
                  "SCR          SCR                  SCR-80                         80   64 L N") !=
              std::string::npos)
      << p.t.screen();
  EXPECT_TRUE(p.t.row(7).find(
                  "ZEBRA        kabel                staand                         80   64 P J") !=
              std::string::npos)
      << p.t.screen();
  EXPECT_FALSE(p.t.shows("SCR-132"));
  EXPECT_TRUE(p.t.type("mat\r").row(5).find("MATRIX") != std::string::npos) << p.t.screen();
  p.t.type(toets::F3);
  EXPECT_EQ(p.klaar(), "1 80 uit.lst");
}

TEST(Printen, LeavingTheListIsARefusalWhereTheScreenIsNotAllowed) {
  Programma p(vraag_80);
  EXPECT_SHOWS(p.t.type(toets::Esc), "Er is geen geldig uitvoermedium geselecteerd");
  p.t.type(toets::Enter);
  EXPECT_EQ(p.klaar().substr(0, 1), "0");
}

TEST(Printen, AReportThatNeedsADestinationComesBackToTheList) {
  Programma p([] {
    prt_annuleren_mag = false;
    return vraag_80();
  });
  EXPECT_SHOWS(p.t.type(toets::Esc), "U dient een printbestemming te selecteren");
  EXPECT_SHOWS(p.t.type(toets::Enter), "Printbestemming");
  p.t.type(toets::F3);
  EXPECT_EQ(p.klaar(), "1 80 /dev/null");
}

TEST(Printen, AFileOfNoOneWidthAsksForIt) {
  Programma p([] {
    const int goed = XPRT_OPEN(static_cast<uint32_t>(PRT_BESTAND), PRT_80 | PRT_132, "uit.lst");
    if (goed != 0) print_close("");
    return goed;
  });
  EXPECT_SHOWS(p.t, "Printbreedte", "132 koloms");
  EXPECT_SHOWS(p.t.type("4"), "Printbreedte");  // 40 columns will not do
  p.t.type("1");
  EXPECT_EQ(p.klaar(), "1 132 uit.lst");
}

TEST(Printen, AnInterruptionIsPrintedBehindWhatThereIs) {
  Programma p([] {
    XPRT_OPEN(static_cast<uint32_t>(PRT_BESTAND), PRT_80, "uit.lst");
    print_ff();
    regel("half");
    print_f("hangt");
    while (!scr_interrupted()) usleep(20000);
    print_close("");
    return 1;
  });
  p.t.type_now(toets::Cancel);
  ASSERT_TRUE(p.t.wait_for("Onderbreken"));
  p.t.type("\r");
  EXPECT_EQ(p.klaar().substr(0, 1), "1");
  const std::string sterren(25, '*');
  const std::string uit = p.map / "uit.lst";
  EXPECT_TRUE(wacht_tot([&] { return !bytes_van(uit).empty(); }));
  EXPECT_EQ(bytes_van(uit),
            "half\nhangt\n\n\n" + sterren + "\n** Printen onderbroken **\n" + sterren + "\n\f");
}

TEST(Printen, ThePrinterPortOfTheOwnTerminal) {
  Programma p([] {
    printer(7, "KASSA", "AUX", 0);
    const int goed = XPRT_OPEN(7, PRT_80, nullptr);
    if (prt_rec.is_aux != 1 || scr_intr_state()) return 2;
    prt_rec.copies = 2;
    print_ff();
    regel("bon");
    print_close("");
    if (scr_ctx->output_off != 0) return 3;
    return goed;
  });
  EXPECT_EQ(p.klaar().substr(0, 1), "1");
  const std::string bon = "\x1b[5ibon\n\f\x1b[4i";
  EXPECT_NE(p.t.output().find(bon + bon), std::string::npos);
  EXPECT_EQ(prt_spools(p.map.pad), 0);
}

TEST(Printen, ADirectoryThatIsNoneIsTold) {
  TerminalOpties o = Programma::opties("/");
  TempDir map;
  o.dir = map.pad;
  o.env = {"KOBPRT=" + (map / "weg")};
  Terminal t = start_in_child(
      [] {
        SCRINIT();
        prt_path("x");
        scr_exit(0);
      },
      o);
  EXPECT_SHOWS(t, "PRINTEN", "De env.var. KOBPRT bevat geen geldige directorie.",
               "De huidige directorie wordt gebruikt.");
}
