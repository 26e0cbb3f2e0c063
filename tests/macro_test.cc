// Keyboard macros as an operator has them: recorded on one screen, played in a field, in the list,
// and through the next program of the chain.
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "isam/base.h"
#include "isam/ix.h"
#include "scr/macro.h"
#include "scr/scr.h"
#include "tests/support/agent.h"
#include "tests/support/bestand.h"
#include "tests/support/terminal.h"
#include "tests/support/tijdelijk.h"

namespace {

using std::string;
const string F2_INS = string(toets::F2) + toets::Ins, F2_DEL = string(toets::F2) + toets::Del;
string f2(const char* key) { return string(toets::F2) + key; }

struct Macro : testing::Test {
  TempDir map;
  InMap in{map.pad};

  static void schrijf(MacRec rec) {
    ICB* icb = IXOPEN("MACRO", IX_GEDEELD);
    EXPECT_TRUE(IXWRITE(icb, &rec));
    IXCLOSE(icb);
  }
  static MacRec macro(int user, char key, const string& keys, const char* omschrijving = "") {
    MacRec rec{};
    rec.user = static_cast<uint16_t>(user);
    rec.key = static_cast<uint16_t>(key);
    for (const char c : keys) rec.keys[rec.count++] = static_cast<uint8_t>(c);
    veld_zet(rec.description, sizeof rec.description, omschrijving);
    return rec;
  }
  /// The file is the one that the programs make.
  static void maak(std::initializer_list<MacRec> recs) {
    macro_staat.gebruiker = 7;
    EXPECT_TRUE(macro_alle().empty());
    for (const MacRec& r : recs) schrijf(r);
    macro_staat = {true, false, 0, {}, {}};
  }
  static bool lees(int user, char key, MacRec* rec) {
    *rec = macro(user, key, "");
    ICB* icb = IXOPEN("MACRO", IX_LEES);
    const bool er = IXREAD(icb, rec);
    IXCLOSE(icb);
    return er;
  }
  static string staat_bestand() {
    for (const auto& e : std::filesystem::directory_iterator(".")) {
      const string naam = e.path().filename();
      if (naam.starts_with("MAC") && naam.ends_with(".TMP")) return naam;
    }
    return "";
  }
};

/// Fields one below the other on rows 3 to 6; what came out stands behind each. Row 8 tells which
/// of a chain of programs this is.
void velden(int aantal, int programma = 1) {
  scr_print(A_WAARDE, 8, 1, "programma %d", programma);
  for (int i = 0; i < aantal; ++i) {
    char tekst[11] = "";
    scr_print(A_LABEL, 3 + i, 1, "veld %d", i);
    INGAVE(3 + i, 10, "10s", &K_CANCEL, tekst);
    scr_print(A_WAARDE, 3 + i, 30, "<%s> %d", tekst, scr_ctx->last_key);
  }
}

Terminal scherm(int aantal = 4, int user = 7, const std::vector<string>& env = {}) {
  TerminalOpties opties;
  opties.env = env;
  return start_in_child(
      [=] {
        SCRINIT();
        macro_user(user);
        velden(aantal);
        scr_getkey("q");
        scr_close();
      },
      opties);
}

TEST_F(Macro, RecordedUnderALetterAndPlayedUnderBothCases) {
  Terminal t = scherm();
  t.type("ab", F2_INS);
  EXPECT_SHOWS(t, " Macro Opnemen ",
               "Activerende toets :", "Omschrijving :", "Druk op <F2> om de macro in te toetsen.",
               "Druk op <ESC> om te stoppen en de macro's te bewaren.");
  t.type("!");
  EXPECT_EQ(t.row(25), "Ongeldige toets");
  t.type("k", toets::in("twee velden"), toets::F2);
  EXPECT_SHOWS(t, "Activerende toets : K", "Omschrijving :      twee velden", " Opname ",
               "Druk de gewenste toetsen nu in en <F2> om af te sluiten.");
  t.type("x", toets::Enter, toets::Home, "y", toets::F5, toets::Back, toets::Enter);
  EXPECT_SHOWS(t, "x    RTRN HOME y    F5   BACK RTRN");
  t.type(toets::F2, toets::Esc);
  EXPECT_EQ(t.text(3, 1, 20), "veld 0   ab________ ");  // the field goes on where it was
  EXPECT_EQ(t.cursor_col(), 12);
  t.type(toets::Enter, toets::Esc, f2("k"));
  EXPECT_EQ(t.text(5, 30, 10), "<x> 10    ");
  EXPECT_EQ(t.text(6, 30, 10), "<> 10     ");

  MacRec rec;
  ASSERT_TRUE(lees(7, 'K', &rec));
  EXPECT_EQ(rec.count, 7);
  const uint16_t soll[] = {'x', 10, 262, 'y', 269, 263, 10};
  EXPECT_TRUE(std::equal(std::begin(soll), std::end(soll), rec.keys));
  EXPECT_EQ(veld_tekst(rec.description, 30), "twee velden");
  EXPECT_EQ(std::filesystem::file_size("MACRO.TXT"), 236u);
  EXPECT_TRUE(scherm().type(f2("K")).shows("<x> 10"));
}

TEST_F(Macro, AnUnknownOneIsAskedAboutAndRecorded) {
  Terminal t = scherm(1);
  t.type(f2("z"));
  EXPECT_SHOWS(t, "Macro Z is niet aanwezig !", "Macro toevoegen (J/N) ?");
  t.type(toets::in("n"), f2("z"), toets::in("j"));
  EXPECT_SHOWS(t, "Activerende toets : Z");
  t.type(toets::in(""), toets::F2, "12", toets::F2, toets::Esc, f2("Z"));
  EXPECT_EQ(t.text(3, 10, 10), "12________");
  t.type(f2("+"));  // can carry none
  EXPECT_EQ(t.row(25), "Ongeldige toets");
  EXPECT_EQ(t.text(3, 10, 10), "12________");
}

TEST_F(Macro, AHundredKeysEndTheRecordingAndCancelDropsIt) {
  Terminal t = scherm(1);
  t.type(F2_INS, "h", toets::in("lang"), toets::F2, "weg", toets::Cancel);
  EXPECT_FALSE(t.shows(" Opname "));
  MacRec rec;
  EXPECT_FALSE(std::filesystem::exists("MACRO.TXT"));
  t.type(toets::F2, string(99, 'b'));
  EXPECT_TRUE(t.shows(" Opname "));
  t.type("e");
  EXPECT_FALSE(t.shows(" Opname "));
  ASSERT_TRUE(lees(7, 'H', &rec));
  EXPECT_EQ(rec.count, 100);
  EXPECT_EQ(rec.keys[99], 'e');
  t.type(toets::Esc, f2("h"));
  EXPECT_EQ(t.row(25), "Tik <ENTER> toets");  // all of them came
}

TEST_F(Macro, MacrosBelongToAUserAndLieWhereTheVariableSays) {
  std::filesystem::create_directory("macros");
  {
    InMap daar("macros");
    maak({macro(7, 'A', "zeven"), macro(8, 'A', "acht"), macro(7, 'C', "cr\r")});
  }
  Terminal t = scherm(2, 8, {"MACRO=macros"});
  EXPECT_EQ(t.type(f2("a")).text(3, 10, 10), "acht______");
  EXPECT_TRUE(t.type(f2("c")).shows("Macro C is niet aanwezig !"));
  EXPECT_EQ(scherm(2, 7, {"MACRO=macros"}).type(f2("c")).text(3, 30, 8), "<cr> 10 ");
  EXPECT_FALSE(std::filesystem::exists("MACRO.TXT"));
}

TEST_F(Macro, TypingGoesFirstAndEscapeStopsTheReplay) {
  maak({macro(7, 'A', "een\rtwee\rdrie\r")});
  Terminal t = scherm();
  t.type(f2("a") + "X");  // typed ahead: before what is left of the macro
  EXPECT_EQ(t.text(3, 30, 10), "<eXen> 10 ");
  EXPECT_EQ(t.text(5, 30, 10), "<drie> 10 ");
  Terminal stop = scherm();
  stop.type(f2("a") + toets::Esc);
  EXPECT_EQ(stop.text(3, 30, 6), "<> 27 ");
  EXPECT_EQ(stop.text(4, 10, 10), "__________");
  EXPECT_EQ(stop.type("b").text(4, 10, 10), "b_________");
}

TEST_F(Macro, AFieldWithAUseForF2KeepsIt) {
  Terminal t = start_in_child([] {
    SCRINIT();
    char tekst[11] = "";
    INGAVE(3, 10, "10s", &K_F2, &K_CANCEL, tekst);
    scr_print(A_WAARDE, 4, 1, "toets %d", scr_ctx->last_key);
    macro_off_set();
    INGAVE(5, 10, "10s", &K_CANCEL, tekst);
  });
  t.type(toets::F2);
  EXPECT_EQ(t.row(4), "toets 266");
  EXPECT_EQ(t.type(toets::F2).row(25), "Ongeldige toets");
}

TEST_F(Macro, MenuListAndDeletion) {
  maak({macro(7, 'A', "aa", "eerste"), macro(7, 'B', "bb", "tweede"), macro(8, 'C', "cc", "ander"),
        macro(7, '1', "11", "cijfer")});
  Terminal t = scherm();
  t.type(toets::F2);  // and nothing more: the menu comes
  EXPECT_SHOWS(t, "Macro menu", "macro Invoeren", "macro Verwijderen", "macro Uitvoeren", "Terug");
  t.type("u");
  EXPECT_SHOWS(t, " Macro Lijst ", "User   Key   Omschrijving", "7      1     cijfer",
               "7      A     eerste", "Cursor Up, Cursor Down, Page Up, Page Down");
  EXPECT_FALSE(t.shows("ander"));
  t.type(toets::Down, toets::Down, toets::Enter);
  EXPECT_EQ(t.text(3, 10, 10), "bb________");

  t.type(F2_DEL);
  EXPECT_SHOWS(t, " Macro Lijst ", "Druk op <Del> om een macro te verwijderen");
  t.type(toets::Down, toets::Enter, toets::Del);
  EXPECT_FALSE(t.shows("eerste"));
  EXPECT_EQ(t.text(6, 36, 20), "7      B     tweede ");
  EXPECT_TRUE(t.reverse(6, 37));
  t.type(toets::Del, toets::Del);
  EXPECT_FALSE(t.shows(" Macro Lijst "));
  EXPECT_EQ(t.text(3, 10, 10), "bb________");
  MacRec rec;
  for (const char weg : {'1', 'A', 'B'}) EXPECT_FALSE(lees(7, weg, &rec)) << weg;
  EXPECT_TRUE(lees(8, 'C', &rec));
  EXPECT_EQ(t.type(F2_DEL).row(25), "Geen macro's aanwezig");
}

/// Out of the launcher, into a program, back and in again: each replaces the one before by exec.
TEST_F(Macro, AReplayGoesOnThroughTheChainOfPrograms) {
  ASSERT_EQ(std::system(BUILD_DIR "/tools/winkel demo --seed 1 --today 22112026 -C . >/dev/null"),
            0);
  TerminalOpties opties;
  opties.env = {"BIN=" BUILD_DIR, "KOBPRT=.", "TMUX"};
  Terminal t = start({BUILD_DIR "/hoofdmnu"}, opties);
  t.type(toets::in("DEMO"), toets::in("DEMO"), F2_INS, "q", toets::in("bewaren"), toets::F2);
  t.type("2", toets::Esc, "2", "74", toets::F2, toets::Esc);
  EXPECT_SHOWS(t, "Hoofdmenu");
  t.type(f2("q"));
  EXPECT_SHOWS(t, "Bewaren aanvulinformatie * Voorraadbeheer", "dagen bewaren");
  EXPECT_EQ(staat_bestand(), "");
  t.type(toets::Esc);
  t.wait_for("VERZENDMUTATIES");
  t.type(toets::Esc, toets::Esc);
  EXPECT_EQ(t.exit_status(), 0);
}

/// The keys left at the end of a chain are not typed into the next login.
TEST_F(Macro, TheNextLoginStartsWithoutAReplay) {
  ASSERT_EQ(std::system(BUILD_DIR "/tools/winkel demo --seed 1 --today 22112026 -C . >/dev/null"),
            0);
  maak({macro(1, 'A', "\x1b\x1b DEMO\r")});
  TerminalOpties opties;
  opties.env = {"BIN=" BUILD_DIR, "KOBPRT=.", "TMUX"};
  Terminal t = start({"/bin/sh", "-c", BUILD_DIR "/hoofdmnu; exec " BUILD_DIR "/hoofdmnu"}, opties);
  t.type(toets::in("DEMO"), toets::in("DEMO"), f2("a"));
  EXPECT_SHOWS(t, "Aanmelden");
  EXPECT_FALSE(t.shows("DEMO "));
  EXPECT_EQ(staat_bestand(), "");
}

TEST_F(Macro, TheStateFileHoldsWhatIsLeft) {
  maak({macro(7, 'A', "een\rtwee")});
  Terminal t = start_in_child([] {
    SCRINIT();
    macro_user(7);
    velden(1);
    scr_close();
  });
  t.type(f2("a"));
  EXPECT_EQ(t.exit_status(), 0);
  const string naam = staat_bestand();
  EXPECT_NE(naam, "");
  const string b = bytes_van(naam);
  ASSERT_EQ(b.size(), 406u);
  EXPECT_EQ(b.substr(0, 3), string("./\0", 3));
  EXPECT_EQ(b.substr(160, 10), string("\1\0\0\0\1\0\0\0\7\0", 10));
  EXPECT_EQ(b.substr(170, 6), string("A\0\7\0\4\0", 6));
  EXPECT_EQ(b.substr(176, 8), string("e\0e\0w\0t\0", 8));
}

/// Whoever starts on this terminal with a file that was tampered with works on, without a replay.
TEST_F(Macro, ADamagedStateFileIsNamedAndDropped) {
  const auto met = [](size_t plek, const string& bytes, size_t lengte = 406) {
    Terminal t = start_in_child([=] {
      string naam = string("MAC") + (strrchr(ttyname(1), '/') + 1) + ".TMP";
      string b(406, '\0');
      b.replace(0, 2, "./");
      b.replace(160, 12, string("\1\0\0\0\1\0\0\0\7\0A\0", 12));
      b.replace(172, 6, string("\7\0\1\0x\0", 6));
      b.replace(plek, bytes.size(), bytes);
      b.resize(lengte);
      zet_bytes(naam, b);
      SCRINIT();
      macro_user(7);
      char tekst[11] = "";
      scr_print(A_WAARDE, 1, 1, "%s", scr_ctx->message);
      INGAVE(3, 10, "10s", &K_CANCEL, tekst);
    });
    t.ready();
    EXPECT_EQ(staat_bestand(), "");
    return t.text(3, 10, 2) + "|" + t.text(1, 1, 23);
  };
  const string goed = "x_|                       ", fout = "__|Macrobestand beschadigd";
  EXPECT_EQ(met(0, "./"), goed);
  EXPECT_EQ(met(174, string("\x65\0", 2)), fout);  // 101 keys
  EXPECT_EQ(met(174, "\xff\xff"), fout);
  EXPECT_EQ(met(0, string(160, 'm')), fout);
  EXPECT_EQ(met(160, "\2"), fout);
  EXPECT_EQ(met(0, "./", 405), fout);
  EXPECT_EQ(met(0, "./", 407), fout);
  EXPECT_EQ(met(0, "./", 0), fout);
  EXPECT_EQ(met(172, "\x8"), fout);  // another user's record
}

TEST_F(Macro, ADamagedTableIsNamedAndNothingPlays) {
  maak({macro(7, 'A', "aa"), macro(7, 'B', "bb")});
  MacRec stuk = macro(7, 'C', "");
  for (const int16_t aantal : {int16_t{101}, int16_t{-1}, int16_t{32767}}) {
    stuk.count = aantal;
    schrijf(stuk);
    Terminal t = scherm();
    t.type("q", f2("c"));
    EXPECT_EQ(t.row(25), "Macrobestand beschadigd: ./MACRO");
    EXPECT_EQ(t.text(3, 10, 10), "q_________");
    EXPECT_EQ(t.type(f2("a")).text(3, 10, 10), "qaa_______");
  }
  const string inx = bytes_van("MACRO.INX"), data = bytes_van("MACRO.TXT");
  const auto weigert = [&](const char* wat) {
    Terminal t = scherm();
    t.type("q", f2("a"));
    EXPECT_EQ(t.row(25), "Macrobestand beschadigd: ./MACRO") << wat;
    EXPECT_EQ(t.type("r").text(3, 10, 10), "qr________") << wat;
  };
  zet_bytes("MACRO.INX", inx.substr(0, 700));
  weigert("half an index");
  string kop = inx;
  kop[24] = 100;  // record length
  zet_bytes("MACRO.INX", kop);
  weigert("another length");
  file_delete("MACRO.INX");
  weigert("no index");
  zet_bytes("MACRO.INX", inx);
  zet_bytes("MACRO.TXT", data.substr(0, data.size() - 7));
  weigert("half a record");
  EXPECT_TRUE(scherm(1, 7, {"MACRO=/nergens"}).type(F2_DEL).shows("beschadigd: /nergens/MACRO"));
}

/// A long run polls for cancel while a macro plays: F2 typed meanwhile is no macro, and the replay
/// goes on behind the poll.
TEST_F(Macro, APollLeavesTheReplayAlone) {
  maak({macro(7, 'A', "een\rtwee\r")});
  Terminal t = start_in_child([] {
    SCRINIT();
    macro_user(7);
    velden(1);
    scr_print(A_WAARDE, 10, 1, "bezig");
    scr_flush(0);
    while (scr_ctx->message[0] == 0) scr_interrupted();
    scr_print(A_WAARDE, 11, 1, "%s", scr_ctx->message);
    velden(2);
    scr_getkey("q");
  });
  t.type(f2("a"));
  ASSERT_TRUE(t.wait_for("bezig"));
  t.type_now(toets::F2);
  EXPECT_SHOWS(t, "Alleen <CANCEL> voor onderbreken", "<twee> 10");
}

/// Operators who make the file at the same moment all find their macro in it.
TEST_F(Macro, ManyMakeTheFileAtOnce) {
  const auto doe = [](const string& wie) {
    macro_staat.gebruiker = static_cast<uint16_t>(std::stoi(wie));
    return string(macro_schrijf(macro(macro_staat.gebruiker, 'A', wie)) ? "ja" : "nee");
  };
  Agent een(doe), twee(doe), drie(doe);
  for (int ronde = 0; ronde < 10; ++ronde) {
    file_delete("MACRO.TXT");
    file_delete("MACRO.INX");
    een.send("1");
    twee.send("2");
    drie.send("3");
    for (Agent* a : {&een, &twee, &drie}) EXPECT_EQ(a->answer(), "ja");
    MacRec rec;
    for (const int user : {1, 2, 3}) EXPECT_TRUE(lees(user, 'A', &rec)) << user;
  }
}

}  // namespace
