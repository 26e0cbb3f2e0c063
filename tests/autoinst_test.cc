// A program that enters itself in the launcher's menu: rows and rights as they stand in the tables
// afterwards.
#include "main/autoinst.h"

#include "isam/base.h"
#include "isam/ix.h"
#include "main/controle.h"
#include "sub/records.h"
#include "sub/tabeldef.h"
#include "tests/support/bestand.h"
#include "tests/support/keten.h"
#include "tests/support/terminal.h"

namespace {

using namespace toets;

struct Autoinst : testing::Test {
  ProefKeten keten;

  void SetUp() override {
    uint8_t elf[64] = {0b1010, 0, 3};  // variants 1 and 3 are in use, 3 counts
    ProefKeten::sysrec_zet(11, elf, sizeof elf);
    ProefSysteem::terminal(7, "JAN", "", "");
    ProefSysteem::terminal(8, "EVA", "", "");
  }
  static Terminal programma(std::vector<std::string> woorden = {"opdsaldo", "AUTOINST"}) {
    return start_in_child([woorden]() mutable {
      std::vector<char*> argv;
      for (std::string& w : woorden) argv.push_back(w.data());
      argv.push_back(nullptr);
      const int argc = static_cast<int>(woorden.size());
      const bool ja = autoinst(argc, argv.data(), 199, "Voorraadbeheer", 'S');
      _exit(ja ? 0 : 9);
    });
  }
  static std::string menu() {
    std::string uit;
    ICB* icb = tabel_open("DTHMNU", IX_LEES);
    DtHmnu rec{};
    for (bool er = IXFIRSTR(icb, &rec); er; er = IXNEXT(icb, &rec))
      uit += str_format("%d.%d %s (%s) %c\n", rec.slot, rec.variant,
                        unscramble_veld(rec.titel, sizeof rec.titel),
                        unscramble_veld(rec.programma, sizeof rec.programma), rec.soort);
    IXCLOSE(icb);
    return uit;
  }
  static std::string rechten() {
    std::string uit;
    ICB* icb = tabel_open("DTREL", IX_LEES);
    DtRel rec{};
    for (bool er = IXFIRSTR(icb, &rec); er; er = IXNEXT(icb, &rec))
      uit += str_format("%d:%d%c ", rec.gebruiker, rec.slot, rec.soort);
    IXCLOSE(icb);
    return uit;
  }
  static void bezet(uint16_t slot, uint8_t variant, const char* naam) {
    DtHmnu rec{};
    rec.slot = slot;
    rec.variant = variant;
    rec.soort = 'M';
    char werk[12];
    str_printf(werk, sizeof werk, "%s", naam);
    SCRAMBLE(werk);
    veld_zet(rec.programma, sizeof rec.programma, werk);
    ICB* icb = tabel_open("DTHMNU", IX_GEDEELD);
    EXPECT_TRUE(IXWRITE(icb, &rec));
    IXCLOSE(icb);
  }
};

TEST_F(Autoinst, RowsInEachVariantAndTheRightsOfTheUsersNamed) {
  bezet(501, 3, "ander");
  bezet(502, 1, "eigen");  // free in the variant that counts; this row stays as it is
  Terminal t = programma();
  EXPECT_EQ(t.row(3), " Programma \"Voorraadbeheer\" (opdsaldo) wordt geinstalleerd.");
  EXPECT_SHOWS(t, " Installatie maatwerkprogramma \"Voorraadbeheer\" ",
               "Bevoegdheid toekennen aan gebruikers", "Gebruiker");
  t.type(in("mies"));
  EXPECT_EQ(t.row(25), "Onbekende gebruikerscode");
  t.type(in("a b"));
  EXPECT_EQ(t.row(25), "Gebruikerscode mag niet met spaties. Onbekende gebruikerscode");
  t.type(in("eva"));
  EXPECT_SHOWS(t, "EVA", "Akkoord? (J/N)");
  t.type(in("n"), in("jan"), in("j"));
  EXPECT_EQ(t.row(19), " \"Voorraadbeheer\" toegevoegd aan menu van JAN");
  t.type(in("eva"), in("j"));
  EXPECT_EQ(t.row(20), " \"Voorraadbeheer\" toegevoegd aan menu van EVA");
  t.type(Enter);
  EXPECT_EQ(t.exit_status(), 0);
  EXPECT_EQ(menu(),
            "502.1  (eigen) M\n"
            "501.3  (ander) M\n"
            "502.3 Voorraadbeheer (opdsaldo) S\n");
  EXPECT_EQ(rechten(), "7:500S 7:502S 8:500S 8:502S ");
}

TEST_F(Autoinst, ASecondTimeNothingChanges) {
  programma().type(Esc).exit_status();
  const std::string rijen = menu(), bytes = bytes_van("DTHMNU.TXT") + bytes_van("DTHMNU.INX");
  EXPECT_EQ(rijen,
            "501.1 Voorraadbeheer (opdsaldo) S\n"
            "501.3 Voorraadbeheer (opdsaldo) S\n");
  Terminal t = programma();
  EXPECT_SHOWS(t, "<opdsaldo> Maatwerkprogramma reeds geinstalleerd.");
  EXPECT_FALSE(t.shows("wordt geinstalleerd"));
  EXPECT_EQ(t.type(Enter).exit_status(), 0);
  EXPECT_EQ(bytes_van("DTHMNU.TXT") + bytes_van("DTHMNU.INX"), bytes);
  EXPECT_EQ(rechten(), "");
}

TEST_F(Autoinst, NoRoomLeft) {
  for (int slot = 501; slot <= 599; ++slot) bezet(static_cast<uint16_t>(slot), 3, "vol");
  const std::string bytes = bytes_van("DTHMNU.TXT");
  Terminal t = programma();
  EXPECT_SHOWS(t, "error 7", "<opdsaldo> Geen ruimte meer voor maatwerkprogramma");
  EXPECT_EQ(t.type(Enter).exit_status(), 0);
  EXPECT_EQ(bytes_van("DTHMNU.TXT"), bytes);
}

TEST_F(Autoinst, OnlyWithThatOneArgument) {
  using Woorden = std::vector<std::string>;
  for (const Woorden& w : {Woorden{"opdsaldo"}, Woorden{"opdsaldo", "AUTOINS"},
                           Woorden{"opdsaldo", "autoinst"}, Woorden{"opdsaldo", "AUTOINST", "x"}})
    EXPECT_EQ(programma(w).exit_status(), 9) << w.size();
  EXPECT_EQ(menu(), "");
  EXPECT_TRUE(programma({"opdsaldo", "AUTOINSTALL"}).shows("wordt geinstalleerd"));

  TerminalOpties opties;
  opties.dir = keten.map.pad;
  Terminal t = start({BUILD_DIR "/opdsaldo", "AUTOINST", "x"}, opties);
  EXPECT_SHOWS(t, "opdsaldo foutief gestart, code 99");
}

}  // namespace
