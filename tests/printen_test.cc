// Printing as the operator has it: the list of destinations, the questions, an interruption, and
// the printer port of the own terminal.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>

#include "isam/base.h"
#include "isam/ix.h"
#include "prt/prt.h"
#include "prt/tabellen.h"
#include "scr/scr.h"
#include "tests/support/terminal.h"
#include "tests/support/tijdelijk.h"

namespace fs = std::filesystem;

namespace {

std::string lees(const std::string& pad) {
  std::ifstream in(pad, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

template <class R>
void schrijf(const char* tabel, R rec) {
  ICB* icb = IXOPEN(tabel, IX_GEDEELD);
  IXWRITE(icb, &rec);
  IXCLOSE(icb);
}

void printer(uint16_t nr, const char* naam, const char* device, uint8_t to_dir) {
  PtrgRec g{nr, 0, ""};
  veld_zet(g.name, sizeof g.name, naam);
  PtrcRec c{nr, 1, to_dir, "", "kabel"};
  veld_zet(c.device, sizeof c.device, device);
  schrijf(TR_PTRG, g);
  schrijf(TR_PTRC, c);
  schrijf(TR_PTRP, PtrpRec{nr, 1, 1, 80, 64, "staand", "", ""});
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
    return lees(map / "klaar");
  }
  std::string wacht_op(const std::string& naam) {
    for (int i = 0; i < 1000 && lees(map / naam).empty(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return lees(map / naam);
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
  EXPECT_TRUE(p.t.shows("Printbestemming")) << p.t.screen();
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
  p.t.type("mat\r");
  EXPECT_TRUE(p.t.row(5).find("MATRIX") != std::string::npos) << p.t.screen();
  p.t.type(toets::F3);
  EXPECT_EQ(p.klaar(), "1 80 uit.lst");
}

TEST(Printen, LeavingTheListIsARefusalWhereTheScreenIsNotAllowed) {
  Programma p(vraag_80);
  p.t.type(toets::Esc);
  EXPECT_TRUE(p.t.shows("Er is geen geldig uitvoermedium geselecteerd")) << p.t.screen();
  p.t.type(toets::Enter);
  EXPECT_EQ(p.klaar().substr(0, 1), "0");
}

TEST(Printen, AReportThatNeedsADestinationComesBackToTheList) {
  Programma p([] {
    prt_annuleren_mag = false;
    return vraag_80();
  });
  p.t.type(toets::Esc);
  EXPECT_TRUE(p.t.shows("U dient een printbestemming te selecteren")) << p.t.screen();
  p.t.type(toets::Enter);
  EXPECT_TRUE(p.t.shows("Printbestemming"));
  p.t.type(toets::F3);
  EXPECT_EQ(p.klaar(), "1 80 /dev/null");
}

TEST(Printen, AFileOfNoOneWidthAsksForIt) {
  Programma p([] {
    const int goed = XPRT_OPEN(static_cast<uint32_t>(PRT_BESTAND), PRT_80 | PRT_132, "uit.lst");
    if (goed != 0) print_close("");
    return goed;
  });
  EXPECT_TRUE(p.t.shows("Printbreedte")) << p.t.screen();
  EXPECT_TRUE(p.t.shows("132 koloms"));
  p.t.type("4");  // 40 columns will not do
  EXPECT_TRUE(p.t.shows("Printbreedte"));
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
  EXPECT_EQ(p.wacht_op("uit.lst"),
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
  for (const auto& e : fs::directory_iterator(p.map.pad)) {
    EXPECT_FALSE(e.path().filename().string().starts_with("PR")) << e.path();
  }
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
  EXPECT_TRUE(t.shows("PRINTEN")) << t.screen();
  EXPECT_TRUE(t.shows("De env.var. KOBPRT bevat geen geldige directorie."));
  EXPECT_TRUE(t.shows("De huidige directorie wordt gebruikt."));
}
