// The screen as an operator sees it: windows, bars, messages, accents, breaking off, terminals.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "isam/ix.h"
#include "scr/scr.h"
#include "scr/terminfo.h"
#include "tests/support/terminal.h"
#include "tests/support/tijdelijk.h"

namespace {

/// Runs steps on an open screen; each scr_getkey in them is a picture for the test.
Terminal op_scherm(const std::function<void()>& stappen, const TerminalOpties& opties = {}) {
  return start_in_child(
      [&stappen] {
        SCRINIT();
        stappen();
        scr_exit(0);
      },
      opties);
}

void wacht() { scr_getkey(" "); }

/// What a read gives, as a number on row 1; 'q' ends.
void toon_toetsen() {
  for (int n = 1;; ++n) {
    const int key = key_read(nullptr);
    if (key == 'q') return;
    scr_print(A_WAARDE, 1, 1, "%3d: %5d", n, key);
  }
}

int eind(Terminal& t) {
  t.type(" ");
  return t.exit_status();
}

}  // namespace

TEST(Vensters, BorderTitleAndEdges) {
  Terminal t = op_scherm([] {
    scr_print(A_WAARDE, 5, 1, "%s", std::string(80, '.'));
    win_open1(4, 10, 5, 20);
    win_title(" %s ", "Titel");
    const int geheel = scr_print(A_WAARDE, 1, 1, "linksboven");
    const int gesneden = scr_print(A_WAARDE, 2, 15, "abcdefgh");
    const int buiten = scr_print(A_WAARDE, 4, 1, "x") + scr_print(A_WAARDE, 0, 1, "x") +
                       scr_print(A_WAARDE, 1, 19, "x");
    scr_print(A_WAARDE, 3, 1, "weg");
    scr_clreol(3, 1);
    scr_puts("%d %d %d", geheel, gesneden, buiten);
    wacht();
    win_close();
    wacht();
  });
  EXPECT_ROWS(t, 4, R"(
         ┌───── Titel ──────┐
.........│linksboven        │...................................................
         │              abcd│
         │10 4 0            │
         └──────────────────┘)");
  EXPECT_TRUE(t.bold(4, 10));
  EXPECT_EQ(t.bg(6, 12), 7);  // colour set 1: blue on white
  EXPECT_EQ(t.fg(5, 11), 4);
  EXPECT_EQ(t.bg(1, 1), 4);
  EXPECT_EQ(t.type(" ").row(5), std::string(80, '.'));
  EXPECT_EQ(t.row(4) + t.row(6) + t.row(8), "");
  EXPECT_EQ(eind(t), 0);
}

TEST(Vensters, BaseTextSlidesUnderWindows) {
  Terminal t = op_scherm([] {
    hdr_title("  Voorraad  ");
    hdr_line('C', "selectie");
    const Venster onder(20, 1, 6, 30);
    win_title(nullptr);
    scr_print(A_WAARDE, 1, 1, "onder");
    const Venster boven(24, 20, 2, 20, 2);
    scr_print(A_WAARDE, 1, 1, "boven");
    scr_print(A_MERK, 2, 1, "merk");
    scr_busy_allow();
    scr_busy_on();
    scr_error("Ongeldige toets, doorlopend onder de vensters door");
    key_read(nullptr);
    scr_error("");
    hdr_line('E', "");
    key_read(nullptr);
    scr_busy_off();
    key_read(nullptr);
  });
  EXPECT_EQ(t.row(1), " Selectie * Voorraad");
  EXPECT_TRUE(t.reverse(1, 1) && t.reverse(1, 80) && !t.reverse(2, 1));
  EXPECT_ROWS(t, 23, R"(
│                            │
│                  boven
└──────────────────merk                nsters door               Even geduld aub)");
  EXPECT_EQ(t.fg(25, 20), 7);  // the accent of set 2 stands for the underline
  EXPECT_EQ(t.fg(24, 20), 6);
  EXPECT_EQ(t.type("x").row(1), " Voorraad");
  EXPECT_EQ(t.text(25, 41, 40), std::string(25, ' ') + "Even geduld aub");
  EXPECT_EQ(t.type("x").text(25, 41, 40), std::string(40, ' '));
  EXPECT_EQ(t.type("x").exit_status(), 0);
}

TEST(Vensters, ClearsAndOutputOff) {
  Terminal t = op_scherm([] {
    win_open2(2, 2, 6, 12);
    win_title(nullptr);
    for (int r = 1; r <= 4; ++r) scr_print(A_WAARDE, r, 1, "vol vol vol");
    scr_clrbot(2, 4);
    scr_move(2, 6);
    scr_ctx->output_off = 1;
    win_title("nooit");
    scr_print(A_WAARDE, 4, 1, "nooit");
    scr_move(4, 1);
    scr_error("nooit");
    scr_ctx->output_off = 0;
    scr_puts("\x1b[2J\n");
    wacht();
  });
  EXPECT_ROWS(t, 1, R"(

 ┌──────────┐
 │vol vol vo│
 │vol  .[2J.│
 │          │
 │          │
 └──────────┘)");
  EXPECT_EQ(t.row(25), "");
  EXPECT_EQ(eind(t), 0);
}

TEST(Meldingen, BoxesWaitForEnter) {
  Terminal t = op_scherm([] {
    msg_waarschuw("Etiket is al onderweg", "naar filiaal 7");
    msg_info("Klaar");
    scr_print(A_WAARDE, 1, 1, "%d",
              FFLASH(-2, 1, 0, "PAD/X.TXT", "Het bestand is in gebruik,\nOpnieuw"));
    FFLASH(-1, 2, 0, "", "Versie\tpakket");
    wacht();
  });
  EXPECT_ROWS(t, 19, R"(
                           ┌──── waarschuwing ─────┐
                           │ Etiket is al onderweg │
                           │ naar filiaal 7        │
                           │ <ENTER> voor vervolg  │
                           └───────────────────────┘)");
  EXPECT_SHOWS(t.type("x"), "waarschuwing");  // anything but Enter leaves it
  t.type(toets::Enter);
  EXPECT_TRUE(t.shows("Klaar") && !t.shows("waarschuwing"));
  EXPECT_SHOWS(t.type(toets::Enter), "─PAD/X.TXT─", "Opnieuw? (J/N)");
  EXPECT_SHOWS(t.type("j\r"), "Versie pakket", "<ENTER> voor vervolg");
  EXPECT_EQ(t.type(toets::Enter).row(1), "1");
  EXPECT_EQ(eind(t), 0);
}

TEST(Meldingen, ProgressBar) {
  Terminal t = op_scherm([] {
    ix_hooks.voortgang("Voortgang DTSER", 0, 0);
    ix_hooks.voortgang(nullptr, 5, 20);
    key_read(nullptr);
    ix_hooks.voortgang(nullptr, 0, 0);
    wacht();
  });
  EXPECT_SHOWS(t, "Voortgang DTSER", " 25 %");
  EXPECT_TRUE(t.reverse(12, 16) && t.reverse(12, 27) && !t.reverse(12, 28));
  EXPECT_EQ(t.type("x").screen().find_first_not_of('\n'), std::string::npos);
  EXPECT_EQ(eind(t), 0);
}

TEST(Toetsen, AccentsInAndOut) {
  Terminal t = op_scherm(
      [] {
        scr_print(A_WAARDE, 2, 1, "caf\x82 \x84\x81\xE1 \x9C|");
        toon_toetsen();
      },
      {{"LANG=C"}});  // even where nobody chose a locale
  EXPECT_EQ(t.row(2), "café äüß £|");
  const std::pair<const char*, int> reeks[] = {{"é", 0x82}, {"€", 0},   {"ß", 0xE1},
                                               {"\xE9", 0}, {"a", 'a'}, {"ü", 0x81}};
  for (int n = 1; const auto& [toets, code] : reeks) {
    t.type(toets);
    t.wait_for(std::to_string(n) + ":");
    EXPECT_EQ(std::atoi(t.text(1, 5, 6).c_str()), code) << toets;
    ++n;
  }
  EXPECT_EQ(t.type("\xE9qqq").exit_status(), 0);  // a stray byte takes nothing with it
}

TEST(Toetsen, EveryKeyHasItsCode) {
  Terminal t = op_scherm([] {
    macro_off_set();  // F2 too
    toon_toetsen();
  });
  const std::pair<const char*, int> reeks[] = {
      {toets::Enter, 10},    {"\x1bOM", 10},     {toets::Esc, 27},     {toets::Tab, 9},
      {toets::BackTab, 353}, {toets::Back, 263}, {toets::Cancel, 355}, {toets::Up, 259},
      {"\x1b[A", 259},       {toets::Left, 260}, {toets::Home, 262},   {toets::End, 360},
      {toets::Ins, 331},     {toets::Del, 330},  {toets::PgUp, 339},   {toets::PgDn, 338},
      {toets::F1, 265},      {toets::F2, 266},   {toets::F10, 274},    {toets::F12, 276},
      {"\x1b[999~", 0},      {"\x1bx", 'x'},     {"\x03", 330},        {"\x1c", 361},
      {"\x08", 8},           {"~", '~'}};
  int n = 0;
  for (const auto& [toets, code] : reeks) {
    n += std::string(toets) == "\x1bx" ? 2 : 1;  // Escape, then a letter
    EXPECT_EQ(t.type(toets).text(1, 1, 10), str_format("%3d: %5d", n, code)) << n;
  }
  t.resize(40, 100);  // is no key
  EXPECT_EQ(t.type("~").text(1, 1, 10), str_format("%3d: %5d", ++n, int{'~'}));
  EXPECT_EQ(t.type("\x1a\x11q").exit_status(), 0);  // neither Ctrl+Z nor XON
}

TEST(Toetsen, StackAndNames) {
  Terminal t = op_scherm([] {
    key_push('b');
    key_push('a');
    scr_print(A_WAARDE, 1, 1, "%d%d", key_pending(), key_wait(0));
    const int een = key_read(nullptr), twee = key_read(nullptr);
    scr_puts(" %c%c %d", een, twee, key_wait(1));
    char naam[16];
    for (const int key : {265, 266, 276, 10, 353, 258, 263, 120})
      scr_puts(" %s|", key_name(key, naam));
    wacht();
  });
  EXPECT_EQ(t.row(1), "11 ab 0 F1 | | F12| RTRN| SH_TAB| DOWN| BACK| x|");
  EXPECT_EQ(eind(t), 0);
}

TEST(Afbreken, QuestionDuringALongRun) {
  Terminal t = op_scherm([] {
    scr_refresh_set(0);
    for (int64_t n = 0; !scr_interrupted(); ++n)
      if (n % 100000 == 0) scr_print(A_WAARDE, 1, 1, "%d bezig", static_cast<int>(n / 100000));
    scr_print(A_WAARDE, 2, 1, "gestopt");
    wacht();
  });
  t.wait_for("bezig");
  t.type_now("x");
  t.wait_for("Alleen <CANCEL> voor onderbreken");
  t.type_now(toets::Cancel);
  t.wait_for("Onderbreken");
  EXPECT_ROWS(t, 18, R"(
          ┌──── Onderbreken ─────┐
          │                      │
          │   Akkoord? (J/N) J   │
          │                      │
          └──────────────────────┘)");
  EXPECT_EQ(t.row(25), "");
  t.type("n\r");
  t.wait_for("bezig");
  t.type_now(toets::Cancel);
  t.wait_for("Onderbreken");
  EXPECT_EQ(t.type("\r").row(2), "gestopt");
  EXPECT_EQ(eind(t), 0);
}

TEST(Afbreken, TheLastScreen) {
  Terminal t = op_scherm([] {
    scr_hooks.afbreken = [] { scr_print(A_WAARDE, 1, 1, "hook"); };
    win_open1(3, 3, 10, 40);
    scr_ctx->output_off = 1;
    scr_abort("INGAVE(): r=%d --> %s ", 3, "kapot");
  });
  EXPECT_ROWS(t, 18, R"(
         ┌─────────PROGRAMMA AFGEBROKEN─────────┐
         │ INGAVE(): r=3 --> kapot              │
         │ Neem contact op met de Support-groep │
         │ <ENTER> voor vervolg                 │
         └──────────────────────────────────────┘)");
  // A signal takes the place of the key that it meets: one that does not matter comes between.
  for (const char* toets : {"x", "\x03", "x", "\r"}) t.type(toets);
  EXPECT_EQ(t.exit_status(), 1);

  for (const bool terminal : {false, true}) {
    Terminal diep = op_scherm([terminal] {
      while (!terminal || scr_ctx->win_count < SCR_VENSTERS) win_open1(2, 2, 3, 3);
      scr_term_open("-w");  // brings a window of its own
    });
    EXPECT_SHOWS(diep, "win_open : Teveel vensters open");
    EXPECT_EQ(diep.type("\r").exit_status(), 1);
  }

  Terminal dicht = start_in_child([] { ix_hooks = IX_HOOKS_KAAL, scr_abort("vroeg"); });
  EXPECT_SHOWS(dicht, "PROGRAMMA AFGEBROKEN\nvroeg\nNeem contact op met de Support-groep");
  EXPECT_EQ(dicht.type("\r").exit_status(), 1);
}

TEST(Afbreken, ALineThatGoesAwayEndsTheProgram) {
  for (const bool in_abort : {false, true}) {
    Terminal t = op_scherm([in_abort] {
      std::signal(SIGHUP, SIG_IGN);
      if (in_abort) scr_abort("weg");
      toon_toetsen();
    });
    ASSERT_TRUE(t.ready());
    t.hang_up();
    EXPECT_EQ(t.exit_status(), 1);
  }
}

TEST(Terminals, UnknownOneIsNamed) {
  Terminal t = op_scherm(wacht, {{"TERM=onbekend9"}});
  EXPECT_EQ(t.exit_status(), 10);
  EXPECT_EQ(t.row(2), "Onbekende terminfo (Onbekend9)");
}

TEST(Terminals, AlwaysTwentyFiveRowsOfEighty) {
  TerminalOpties groot;
  groot.rows = 40;
  groot.cols = 120;
  Terminal t = op_scherm(
      [] {
        scr_print(A_WAARDE, 1, 1, "%d %d", scr_ctx->lines, scr_ctx->cols);
        scr_error("onder");
        wacht();
      },
      groot);
  EXPECT_EQ(t.row(1), "25 80");
  EXPECT_EQ(t.row(25), "onder");
  EXPECT_EQ(eind(t), 0);
}

namespace {
void naar_breed() {
  scr_print(A_WAARDE, 3, 1, "gewoon");
  win_open1(5, 5, 3, 20);
  win_title("venster");
  scr_error("Van voor het andere scherm");
  scr_term_open("-w");
  scr_error("");  // as every field does at its first key
  scr_print(A_WAARDE, 1, 1, "breed %d %d", scr_ctx->lines, scr_ctx->cols);
  scr_print(A_WAARDE, scr_ctx->lines, scr_ctx->cols - 4, "hoek");
  key_read(nullptr);
  win_close();
  scr_print(A_WAARDE, 1, 1, "terug %d", scr_ctx->cols);
  key_read(nullptr);
}
}  // namespace

TEST(Terminals, WideWhereTheWindowFollows) {
  TerminalOpties mee;
  mee.resizes = true;
  Terminal t = op_scherm(
      [] {
        naar_breed();
        naar_breed();  // opened once, used again
      },
      mee);
  for (int keer = 0; keer < 2; ++keer) {
    EXPECT_EQ(t.row(1), "breed 25 132");
    EXPECT_EQ(t.text(25, 128, 4), "hoek");
    EXPECT_EQ(t.type("x").row(3), "gewoon");
    EXPECT_EQ(t.row(25), "");
    EXPECT_EQ(t.text(6, 5, 20), "│terug 80          │") << t.screen();
    const std::string& uit = t.output();  // the keypad mode comes behind what may undo it
    EXPECT_GT(uit.rfind("\x1b[?1h"), uit.rfind("\x1b[8;25;80t"));
    t.type("x");
  }
  EXPECT_EQ(t.exit_status(), 0);
}

TEST(Terminals, WideFallsBackWhereItDoesNot) {
  Terminal t = op_scherm([] {
    naar_breed();
    key_push(key_read(nullptr));
    scr_print(A_WAARDE, 1, 1, "%d ", key_read(nullptr));
    wacht();
  });
  EXPECT_EQ(t.row(1), "breed 25 80");
  EXPECT_EQ(t.row(3), "");
  EXPECT_EQ(t.text(25, 76, 4), "hoek");
  EXPECT_EQ(t.type("x").row(3), "gewoon");
  EXPECT_EQ(t.row(25), "");
  EXPECT_EQ(t.text(5, 5, 20), "┌─────venster──────┐");
  EXPECT_EQ(t.type("x", toets::Up).text(6, 5, 6), "│259 g") << t.screen();
  EXPECT_EQ(eind(t), 0);
}

TEST(Terminals, LeftAsFound) {
  Terminal t = start_in_child([] {
    for (int i = 0; i < 2; ++i) {  // a program that could not be started comes back to its screen
      SCRINIT();
      scr_print(A_WAARDE, 1, 1, "open %d", i);
      key_read(nullptr);
      scr_close();
    }
    std::printf("dicht\n");
    std::fflush(stdout);
    std::exit(std::system("stty -a | grep -q ' echo '"));
  });
  EXPECT_EQ(t.row(1), "open 0");
  EXPECT_EQ(t.type("x").row(1), "open 1");
  EXPECT_EQ(t.type("x").exit_status(), 0);
  EXPECT_EQ(t.row(1), "dicht");
  const std::string& uit = t.staat == nullptr ? "" : t.output();
  EXPECT_NE(uit.rfind("\x1b[?1l"), std::string::npos);  // keypad mode off
  EXPECT_GT(uit.rfind("\x1b[?1049l"), uit.rfind("\x1b[?1049h"));
}

TEST(Terminals, EntriesComeFromTheUsersOwn) {
  const TempDir huis;
  Terminal t = start_in_child(
      [&huis] {
        const bool eerst = terminfo_aanwezig("vt220");
        const bool gemaakt = terminfo_maak("vt220", nullptr);
        const bool slecht = terminfo_maak("../x", nullptr) || terminfo_maak("", nullptr);
        const bool daarna = terminfo_aanwezig("vt220");
        std::filesystem::remove(huis / ".terminfo/V/Vt220-w");
        SCRINIT();
        scr_print(A_WAARDE, 2, 1, "%d%d%d%d", eerst, gemaakt, slecht, daarna);
        naar_breed();
        scr_exit(0);
      },
      {{"TERM=vt220", "HOME=" + huis.pad}});
  EXPECT_EQ(t.row(1), "breed 25 80");  // without an entry for the wide one
  EXPECT_EQ(t.type("x").row(2), "0101");
  EXPECT_EQ(t.row(3), "gewoon");
  EXPECT_EQ(t.type("x").exit_status(), 0);
}
