// Session start and hand-over as the operator and the next program see them.
#include <fcntl.h>
#include <sys/stat.h>

#include "isam/ix.h"
#include "main/batchvw.h"
#include "scr/scr.h"
#include "tests/support/agent.h"
#include "tests/support/proefsysteem.h"
#include "tests/support/terminal.h"

namespace {

using Woorden = std::vector<std::string>;

// Runs on the terminal as a program of the suite: proves the session, then does its work.
Terminal programma(const std::string& naam, Woorden woorden, const std::function<void()>& werk,
                   const Woorden& env = {}) {
  const auto kind = [=]() mutable {
    std::vector<char*> argv;
    for (std::string& w : woorden) argv.push_back(w.data());
    argv.push_back(nullptr);
    ctl_start(naam.c_str(), "Apr  5 2016 13:38:47", static_cast<int>(woorden.size()), argv.data());
    werk();
  };
  TerminalOpties opties;
  opties.env = env;
  return start_in_child(kind, opties);
}

void wacht_op_toets() {
  msg_info("gestart");
  scr_exit(0);
}

const Woorden GOED = {"pad/proefprog", "proefprog", "jan", "7", "hoofdmnu"};

struct Start : testing::Test {
  ProefSysteem systeem;

  void weigert(const Woorden& woorden, const std::string& tekst, const char* naam = "proefprog") {
    Terminal t = programma(naam, woorden, wacht_op_toets);
    EXPECT_TRUE(t.shows("PROGRAMMA AFGEBROKEN")) << tekst;
    EXPECT_SHOWS(t, tekst);
    EXPECT_EQ(t.type(toets::Enter).exit_status(), 1);
  }
  static int status_op_schijf() {
    return static_cast<uint8_t>(ProefSysteem::bytes("DTSYS.TXT", 2640 + 6 * 64 + 38, 1)[0]);
  }
};

TEST_F(Start, WrongArgumentsAreRefusedWithTheirCode) {
  weigert({"p", "proefprog", "jan", "7"}, "proefprog foutief gestart, code 99");
  weigert({"p"}, "foutief gestart, code 99");
  weigert({"p", "proefprog", "jan", "0", "x"}, "foutief gestart, code 2");
  weigert({"p", "proefprog", "jan", "8", "x"}, "foutief gestart, code 2");
  weigert({"p", "proefprog", "jan", "-50", "x"}, "foutief gestart, code 2");
  weigert({"p", "proefprog", "piet", "7", "x"}, "foutief gestart, code 1");
  weigert({"p", "ander", "jan", "7", "x"}, "foutief gestart, code 0");
  weigert(GOED, "anders foutief gestart, code 13", "anders");
  weigert({"p", "x"}, "hoofdmnu foutief gestart, code 99", "");
}

TEST_F(Start, RefusalShowsTheProgramAndItsVersion) {
  Terminal t = programma("proefprog", {"p"}, wacht_op_toets);
  EXPECT_TRUE(t.reverse(1, 2));
  EXPECT_EQ(t.row(1), " proefprog 8.70");
  EXPECT_SHOWS(t, "870 05-4-2016", "Apr  5 2016 13:38:47");
}

TEST_F(Start, AnotherRelease) {
  ProefSysteem::zet(9 * 64 + 58, "8.60 ", 5);
  weigert(GOED, "Foutieve release: bestanden van 8.60");
}

TEST_F(Start, NoSystemFile) {
  file_delete("DTSYS.TXT");
  weigert(GOED, "DTSYS.TXT niet aanwezig in " + systeem.map.pad.substr(0, 30));
}

TEST_F(Start, RunningSessionHoldsItsRecordWithStatusOne) {
  Agent ander([](const std::string&) {
    ProefSysteem::open();
    int32_t nummer = 7;
    return iotab('T', &nummer, nullptr, SYS_TERMINALS) ? "vrij" : "bezet";
  });
  Terminal t = programma("proefprog", GOED, wacht_op_toets);
  EXPECT_SHOWS(t, "gestart");
  EXPECT_EQ(ander.ask(""), "bezet");
  EXPECT_EQ(status_op_schijf(), 1);
  EXPECT_EQ(t.type(toets::Enter).exit_status(), 0);
  EXPECT_EQ(ander.ask(""), "vrij");
}

TEST_F(Start, CriticalStatusSurvivesTheStart) {
  ProefSysteem::terminal(7, "jan", "3", "proefprog", 11);
  Terminal t = programma("proefprog", GOED, wacht_op_toets);
  EXPECT_SHOWS(t, "gestart");
  EXPECT_EQ(status_op_schijf(), 11);
}

TEST_F(Start, LocaleKeepsItsCharactersAndThePointInNumbers) {
  Terminal t = programma("proefprog", GOED, [] {
    msg_info(str_format("caf\x82 %.2f %s", 1.5, session_caller).c_str());
    scr_exit(0);
  });
  EXPECT_SHOWS(t, "café 1.50 hoofdmnu");
}

TEST_F(Start, HomeCurrencyWithoutDecimalsHoldsForTheChain) {
  ProefSysteem::zet(14 * 64, "JPY", 3);
  ProefSysteem::zet(SYS_VALUTA.basis + 72, "JPY\0", 4);
  const auto toon = [] {
    msg_info(
        str_format("%s [%s] %ld", getenv("KPOS"), money_show(150, 4), session_terminal).c_str());
    scr_exit(0);
  };
  Terminal jpy = programma("", {"p"}, toon);
  EXPECT_SHOWS(jpy, "geset [ 150] 1");
  ProefSysteem::zet(14 * 64, "EUR", 3);
  Terminal eur = programma("", {"p"}, toon);
  EXPECT_SHOWS(eur, " [1.50] 1");
}

TEST_F(Start, BusyTerminalNamesItsHolderAndIsWaitedFor) {
  Agent houder([](const std::string&) {
    ProefSysteem::open();
    TerminalRec rec;
    int32_t nummer = 7;
    return iotab('X', &nummer, &rec, SYS_TERMINALS) ? "ja" : "nee";
  });
  houder.ask("");
  Terminal t = programma("proefprog", GOED, wacht_op_toets);
  EXPECT_TRUE(t.wait_for("SYSTEEM-Informatie in gebruik door jan (tty3)"));
  houder.kill_now();
  EXPECT_SHOWS(t, "gestart");
}

TEST_F(Start, TableLockNamesTableAndHolder) {
  ProefSysteem::maak("DTPROEF.TXT", 200);
  Agent houder([](const std::string&) {
    ProefSysteem::open();
    TerminalRec rec;
    int32_t nummer = 7;
    iotab('X', &nummer, &rec, SYS_TERMINALS);
    static int fd = open("DTPROEF.TXT", O_RDWR);
    return file_lock('S', fd, 100, 100) ? "ja" : "nee";
  });
  EXPECT_EQ(houder.ask(""), "ja");
  ProefSysteem::terminal(8, "eva", "", "proefprog");
  Terminal t = programma("proefprog", {"p", "proefprog", "eva", "8", "hoofdmnu"}, [] {
    static ICB icb{};
    veld_zet(icb.name, sizeof icb.name, "DTPROEF");
    veld_zet(icb.description, sizeof icb.description, "Proeftabel");
    icb.data_fd = icb.index_fd = open("DTPROEF.TXT", O_RDWR);
    icb.record_no = 1;
    icb.record_length = 100;
    for (;;) ix_hooks.wacht(&icb);
  });
  EXPECT_TRUE(t.wait_for("DTPROEF: Proeftabel --> Informatie in gebruik door jan (tty3)"));
}

TEST_F(Start, InquiryUserIsToldAndRefused) {
  Terminal t = programma("proefprog", GOED, [] {
    terminal_rec.rechten = 'I';
    msg_info(ctl_has_rights() ? "mag" : "mag niet");
    terminal_rec.rechten = 'S';
    scr_exit(ctl_has_rights() ? 0 : 3);
  });
  EXPECT_SHOWS(t, "U heeft geen wijzigingsbevoegdheid!");
  EXPECT_SHOWS(t.type(toets::Enter), "mag niet");
  EXPECT_FALSE(t.shows("U heeft geen"));
  EXPECT_EQ(t.type(toets::Enter).exit_status(), 0);
}

TEST_F(Start, ProgramInformation) {
  Terminal t = programma("proefprog", GOED, [] {
    terminal_rec.rechten = 'S';
    scr_hooks.programma_info();
    scr_exit(0);
  });
  for (const char* tekst :
       {"proefprog", "870 05-4-2016", "De Ketting BV", "Lindgar8.70  3F", "jan (S)"})
    EXPECT_TRUE(t.shows(tekst)) << tekst << '\n' << t.screen();
  EXPECT_EQ(t.type(toets::Enter).exit_status(), 0);
}

// Hand-over ---------------------------------------------------------------------------------------

// A program that shows what it was started with.
void script(const std::string& pad, const char* merk) {
  std::ofstream(pad) << "#!/bin/sh\necho \"" << merk << ":$#:$1:$2:$3:$4:\"\nread x\n";
  chmod(pad.c_str(), 0755);
}

TEST_F(Start, NextProgramGetsItsArgumentsFromEachPlace) {
  mkdir("tst", 0755);
  mkdir("bin", 0755);
  mkdir("pad", 0755);
  script("tst/voorraad", "tst");
  script("bin/voorraad", "bin");
  script("pad/voorraad", "pad");
  const std::string map = systeem.map.pad, pad = "PATH=" + map + "/pad:/usr/bin:/bin";
  const auto verder = [] { ctl_next("voorraad"); };
  struct {
    Woorden env;
    const char* merk;
  } const gevallen[] = {{{"TSTBIN=" + map + "/tst", "BIN=bin", pad}, "tst"},
                        {{"TSTBIN=" + map + "/tst/", "BIN=bin", pad}, "tst"},
                        {{"TSTBIN=" + map + "/leeg", "BIN=bin/", pad}, "bin"},
                        {{"TSTBIN", "BIN=leeg", pad}, "pad"}};
  for (const auto& g : gevallen) {
    ProefSysteem::terminal(7, "jan", "3", "proefprog");
    Terminal t = programma("proefprog", GOED, verder, g.env);
    EXPECT_SHOWS(t, std::string(g.merk) + ":4:voorraad:jan:7:proefprog:");
    EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 2640 + 6 * 64 + 48, 10),
              std::string("voorraad\0\0", 10));
    EXPECT_EQ(status_op_schijf(), 2);
  }
  script("voorraad", "hier");
  ProefSysteem::terminal(7, "jan", "3", "proefprog");
  Terminal t = programma("proefprog", GOED, verder, {"TSTBIN", "BIN", pad});
  EXPECT_SHOWS(t, "hier:4:voorraad:jan:7:proefprog:");
}

TEST_F(Start, ProgramThatIsNowhere) {
  Terminal t = programma("proefprog", GOED, [] { ctl_next("nergens"); },
                         {"TSTBIN=" + systeem.map.pad, "BIN", "PATH=/usr/bin"});
  EXPECT_SHOWS(t, "Programma nergens niet gevonden");
  EXPECT_EQ(t.type(toets::Enter).exit_status(), 1);
}

TEST_F(Start, LastProgramOfTheChainClearsItsTerminal) {
  const auto woord = [](int offset) {
    const std::string b = ProefSysteem::bytes("DTSYS.TXT", 2640 + 6 * 64 + offset, 2);
    return static_cast<uint8_t>(b[0]) | static_cast<uint8_t>(b[1]) << 8;
  };
  Terminal t = programma("proefprog", GOED, [] {
    terminal_rec.woord44 = 1234;
    ctl_next("");
  });
  EXPECT_EQ(t.exit_status(), 0);
  EXPECT_EQ(status_op_schijf(), 0);
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 2640 + 6 * 64 + 22, 6), std::string(6, '\0'));
  EXPECT_EQ(woord(44), 1234);
  EXPECT_EQ(woord(60), 0);

  ProefSysteem::terminal(7, "jan", "3", "proefprog", 12);
  script("hoofdmnu", "menu");
  Terminal m = programma("proefprog", GOED,
                         [] {
                           terminal_rec.woord44 = 4321;
                           ctl_next("hoofdmnu");
                         },
                         {"TSTBIN", "BIN"});
  EXPECT_SHOWS(m, "menu:4:hoofdmnu:jan:7:proefprog:");
  EXPECT_EQ(status_op_schijf(), 12);
  EXPECT_EQ(woord(44), 0);
  EXPECT_EQ(woord(60), 4321);
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 2640 + 6 * 64 + 22, 1), "3");
}

// Work exclusion on the screen --------------------------------------------------------------------

// Another terminal that claims: "band" the whole of function 9, else its own byte of it.
std::string claimt(const std::string& opdracht) {
  if (iotab_fd() < 0) ProefSysteem::open();
  session_terminal = 7;
  int32_t nummer = 7;
  iotab('X', &nummer, &terminal_rec, SYS_TERMINALS);
  return (opdracht == "band" ? vw_claim_excl(9) : vw_claim(9, true)) ? "ja" : "nee";
}

Terminal wie_wil(bool exclusief) {
  ProefSysteem::terminal(8, "eva", "", "proefprog");
  return programma("proefprog", {"p", "proefprog", "eva", "8", "hoofdmnu"}, [=] {
    const bool mag = exclusief ? vw_claim_excl(9) : vw_claim(9, true);
    msg_info(mag ? "aan het werk" : "opgegeven");
    scr_exit(0);
  });
}

TEST_F(Start, ExclusiveClaimNamesTheOneWhoIsInTheWay) {
  Agent jan(claimt);
  EXPECT_EQ(jan.ask(""), "ja");
  Terminal t = wie_wil(true);
  EXPECT_TRUE(t.wait_for("Wilt u wachten? (J/N)"));
  EXPECT_TRUE(t.wait_for("Gebruiker jan (tty3)"));
  EXPECT_TRUE(t.wait_for("Er zijn gebruikers actief die verwerking blokkeren!"));
  jan.kill_now();
  EXPECT_TRUE(t.wait_for("aan het werk"));
  EXPECT_FALSE(t.shows("Wilt u wachten"));
}

TEST_F(Start, ExclusiveHolderShowsAsStarted) {
  Agent jan(claimt);
  EXPECT_EQ(jan.ask("band"), "ja");
  Terminal t = wie_wil(true);
  EXPECT_TRUE(t.wait_for("Verwerking is reeds gestart"));
  t.type_now("n\r");
  EXPECT_TRUE(t.wait_for("opgegeven"));
}

TEST_F(Start, SessionClaimWaitsForTheExclusiveOne) {
  Agent jan(claimt);
  EXPECT_EQ(jan.ask("band"), "ja");
  Terminal t = wie_wil(false);
  EXPECT_TRUE(t.wait_for("Verwerking is actief"));
  t.type_now("j\r");
  jan.kill_now();
  EXPECT_TRUE(t.wait_for("aan het werk"));
}

}  // namespace
