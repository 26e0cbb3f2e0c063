// The list of users: what stands behind each, with a second terminal at work, and who gets it.
#include "main/gebruikers.h"

#include <ctime>

#include "scr/scr.h"
#include "sub/records.h"
#include "tests/support/agent.h"
#include "tests/support/proefsysteem.h"
#include "tests/support/terminal.h"

namespace {

using namespace toets;

struct Gebruikers : testing::Test {
  ProefSysteem systeem;
  static constexpr time_t MOMENT = 1'790'000'000;

  static void gebruiker(int nummer, const char* code, const char* wachtwoord, uint8_t status,
                        uint32_t moment = 0) {
    TerminalRec rec{};
    strcpy(rec.gebruiker, code);
    SCRAMBLE(rec.gebruiker);
    strcpy(rec.wachtwoord, wachtwoord);
    SCRAMBLE(rec.wachtwoord);
    rec.status = status;
    rec.moment = moment;
    rec.datum = date_number("15092026");
    ProefSysteem::zet(SYS_TERMINALS.basis + (nummer - 1) * 64, &rec, sizeof rec);
  }
  void SetUp() override {
    gebruiker(3, "ANNA", "geheim", 0, MOMENT);
    gebruiker(7, "JAN", "jan", 1, MOMENT);
    gebruiker(9, "ANTON", "x", 5);
    gebruiker(12, "EVA", "y", 2);
    gebruiker(40, "PIET", "z", 1);
    gebruiker(41, "REIN", "z", 0);
  }
  /// As terminal 7; the number picked stands on row 24.
  static Terminal lijst(int vlaggen, int32_t begin = 0) {
    return start_in_child([=] {
      ProefSysteem::open();
      session_terminal = 7;
      SCRINIT();
      int32_t nummer = begin;
      const bool gekozen = user_pick(&nummer, vlaggen);
      scr_print(A_WAARDE, 24, 1, "%s %ld", gekozen ? "gekozen" : "weg", nummer);
      scr_getkey("q");
      scr_exit(0);
    });
  }
  /// Another terminal's process, which holds the record that it is told.
  static std::string houd(const std::string& nummer) {
    ProefSysteem::open();
    TerminalRec rec;
    int32_t n = std::stoi(nummer);
    return iotab('X', &n, &rec, SYS_TERMINALS) ? "ja" : "nee";
  }
};

TEST_F(Gebruikers, StatusAndTimeOfEach) {
  Agent eva(houd), rein(houd);
  ASSERT_EQ(eva.ask("12"), "ja");
  ASSERT_EQ(rein.ask("41"), "ja");
  Terminal t = lijst(GEBRUIKERS_LANG);
  char tijd[6];
  strftime(tijd, sizeof tijd, "%H:%M", localtime(&MOMENT));
  const std::string om = std::string("  15-09-26 ") + tijd;
  EXPECT_SHOWS(t, " selecteren gebruiker ", "code   nr wachtwrd  status                datum/tijd",
               "ANNA    3 geheim    niet actief         " + om,
               "JAN     7 jan       systeembeheer       " + om,
               "ANTON   9 x         login mislukt ", "EVA    12 y         actief  ",
               "PIET   40 z         programma afgebroken",
               "REIN   41 z         niet actief");  // the status decides before the lock
  eva.kill_now();
  Terminal later = lijst(GEBRUIKERS_LANG);
  EXPECT_SHOWS(later, "EVA    12 y         programma afgebroken");
}

TEST_F(Gebruikers, ShortFormSearchAndChoice) {
  Terminal t = lijst(0, 12);
  EXPECT_FALSE(t.shows("geheim") || t.shows("actief"));
  EXPECT_TRUE(t.reverse(5, 50));
  EXPECT_EQ(t.text(5, 38, 8), "EVA     ");  // where the caller asked for
  t.type(in("an"));
  EXPECT_EQ(t.text(5, 38, 8), "ANNA    ");
  t.type(in("ant"));
  EXPECT_EQ(t.text(5, 38, 8), "ANTON   ");
  t.type(in("zz"));  // nobody: the last one
  EXPECT_EQ(t.text(5, 38, 8), "REIN    ");
  t.type(in("p"), Up, Enter);
  EXPECT_EQ(t.row(24), "gekozen 12");
  EXPECT_EQ(lijst(0).type(Esc).row(24), "weg 0");
}

TEST_F(Gebruikers, NobodyAtAll) {
  const std::string leeg(64 * 99, '\0');
  ProefSysteem::zet(SYS_TERMINALS.basis, leeg.data(), leeg.size());
  Terminal t = lijst(GEBRUIKERS_LANG);
  EXPECT_SHOWS(t, "Geen informatie");
  EXPECT_EQ(t.type(Enter).row(24), "weg 0");
}

TEST(GebruikersMenu, ForASystemManagerOnly) {
  TempDir map;
  const std::string maak = BUILD_DIR "/tools/winkel demo --seed 1 --today 22112026 -C " + map.pad;
  ASSERT_EQ(std::system((maak + " >/dev/null").c_str()), 0);
  TerminalOpties opties;
  opties.dir = map.pad;
  opties.env = {"BIN=" BUILD_DIR, "KOBPRT=" + map.pad, "TMUX"};
  const auto inloggen = [&](const char* wie) {
    Terminal t = start({BUILD_DIR "/hoofdmnu"}, opties);
    t.type(in(wie), in(wie));
    return t;
  };
  Terminal demo = inloggen("DEMO");
  EXPECT_SHOWS(demo, "Hoofdmenu");
  EXPECT_FALSE(demo.shows("Gebruikers"));
  Terminal beheer = inloggen("BEHEER");
  EXPECT_SHOWS(beheer, "Gebruikers");
  beheer.type(Up, Enter);
  EXPECT_SHOWS(beheer, "systeembeheer", "DEMO    1 DEMO      actief", "KIJK");
  EXPECT_SHOWS(beheer.type(Esc), "Hoofdmenu");
}

}  // namespace
