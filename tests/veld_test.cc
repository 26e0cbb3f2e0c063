// Input fields as an operator has them: keys on a terminal, the field, the message line (row 25)
// and what the program got out of it.
#include <csignal>
#include <cstring>
#include <random>

#include "isam/base.h"
#include "scr/scr.h"
#include "scr/veld_formaat.h"
#include "tests/support/terminal.h"

namespace {

using std::string;

/// What came out of a field, on row 7: changed, empty, the key, and the variable as text.
void uitslag(bool anders, const string& waarde) {
  const bool leeg = (scr_ctx->ing_result & ING_LEEG) != 0;
  scr_print(A_WAARDE, 7, 1, "uit anders=%d leeg=%d toets=%d <%s>", anders, leeg, scr_ctx->last_key,
            waarde);
}

/// Asks until "q", on a screen of its own, so that a test can look at the outcome.
Terminal scherm(const std::function<void()>& vraag) {
  return start_in_child([vraag] {
    SCRINIT();
    vraag();
    scr_getkey("q");
    scr_close();
  });
}

template <class T>
string als_tekst(T waarde) {
  return str_format("%ld", static_cast<int32_t>(waarde));
}
string als_tekst(double waarde) { return str_format("%.4f", waarde); }

/// A field of a number at (5,10) with cancel, F5 and Up as exit keys.
template <class T>
Terminal getal(const char* formaat, T begin, double min = 0, double max = -1) {
  return scherm([=] {
    T v = begin;
    scr_ctx->ing->min = min;
    scr_ctx->ing->max = max;
    const bool anders = INGAVE(5, 10, formaat, &K_CANCEL, &K_F5, &K_UP, &v);
    uitslag(anders, als_tekst(v));
  });
}

/// A text field; the outcome shows every byte of the variable, NUL as "~".
Terminal tekst(const char* formaat, const char* begin, int lengte) {
  return scherm([=] {
    char v[300] = {};
    memcpy(v, begin, strlen(begin));
    memset(v + lengte + 1, '#', 1);
    const bool anders = INGAVE(5, 10, formaat, &K_CANCEL, &K_F5, &v[0]);
    string gezien(v, static_cast<size_t>(lengte));
    for (char& c : gezien)
      if (c == '\0') c = '~';
    uitslag(anders, gezien + (v[lengte + 1] == '#' ? "" : "OVER"));
  });
}

Terminal datum(const char* formaat, const char* begin, double min = 0, double max = -1) {
  return scherm([=] {
    uint16_t v = date_number(begin);
    scr_ctx->ing->min = min;
    scr_ctx->ing->max = max;
    const bool anders = INGAVE(5, 10, formaat, &K_CANCEL, &v);
    char lang[16];
    date_text(lang, v, true);
    uitslag(anders, lang);
  });
}

string veld(Terminal& t, int breedte = 12) { return t.text(5, 10, breedte); }
string uit(bool anders, bool leeg, int toets, const string& waarde) {
  return str_format("uit anders=%d leeg=%d toets=%d <%s>", anders, leeg, toets, waarde);
}
#define EXPECT_UIT(t, ...) EXPECT_EQ((t).row(7), uit(__VA_ARGS__))

TEST(VeldGetal, TypingReplacesAndUnderscoresGo) {
  Terminal t = getal<int32_t>("5l,ZP", 0);
  EXPECT_EQ(veld(t, 6), "_____ ");
  EXPECT_TRUE(t.bold(5, 10));
  t.type("12");
  EXPECT_EQ(veld(t, 6), "12___ ");
  EXPECT_EQ(t.cursor_col(), 12);
  t.type(toets::Enter);
  EXPECT_EQ(veld(t, 6), "12    ");
  EXPECT_UIT(t, true, false, 10, "12");
}

TEST(VeldGetal, OldValueStaysWhenUntouchedAndZeroShowsWithZAndE) {
  Terminal t = getal<int32_t>("5l,EZP", 0);
  EXPECT_EQ(veld(t, 5), "0____");
  t.type(toets::Enter);
  EXPECT_UIT(t, false, false, 10, "0");
  Terminal leeg = getal<int32_t>("5l,P", 7);
  leeg.type(string(toets::Back) + toets::Enter);  // an empty number is 0, even without Z
  EXPECT_UIT(leeg, true, true, 10, "0");
}

TEST(VeldGetal, RefusalsKeepTheTextAndTheNextCharacterReplacesIt) {
  Terminal t = getal<int16_t>("3d,P", 5, 0, 250);
  t.type(string("300") + toets::Enter);
  EXPECT_EQ(t.row(25), "<300> Alleen 1 t/m 250 mogelijk");
  EXPECT_EQ(veld(t, 3), "300");
  EXPECT_EQ(t.cursor_col(), 10);
  t.type("0");
  EXPECT_EQ(t.row(25), "");
  EXPECT_EQ(veld(t, 3), "0__");
  t.type(toets::Enter);
  EXPECT_EQ(t.row(25), "<0> Moet ongelijk zijn aan 0");
  t.type(string("25") + toets::Enter);
  EXPECT_UIT(t, true, false, 10, "25");
}

TEST(VeldGetal, DecimalsSignsAndBothPoints) {
  Terminal t = getal<double>("6.2f,EJNPZ", 0.0);
  t.type(string("1,255") + toets::Enter);
  EXPECT_EQ(t.row(25), "<1,255> Teveel cijfers na de komma");
  t.type(string("-100") + toets::Enter);
  EXPECT_EQ(t.row(25), "<-100> Alleen -99.99 t/m 999.99 mogelijk");
  t.type(string("12,5-") + toets::Enter);
  EXPECT_EQ(veld(t, 6), "-12.50");
  EXPECT_UIT(t, true, false, 10, "-12.5000");
  Terminal geen_min = getal<int32_t>("5l,ZP", 3);
  geen_min.type("-");
  EXPECT_EQ(geen_min.row(25), "<-> Ongeldige ingave!!  (HELP voor toelichting)");
  EXPECT_EQ(veld(geen_min, 5), "3____");
}

TEST(VeldGetal, AmountsAreHundredthsAndSmallVariablesKeepTheirWidth) {
  Terminal t = getal<int32_t>("8B,JEP", 1250);
  EXPECT_EQ(veld(t, 8), "12.50___");
  t.type(string("3,07") + toets::Enter);
  EXPECT_EQ(veld(t, 8), "    3.07");
  EXPECT_UIT(t, true, false, 10, "307");
  Terminal n = getal<int8_t>("4n", 0);
  n.type(string("128") + toets::Enter);
  EXPECT_EQ(n.row(25), "<128> Alleen -128 t/m 127 mogelijk");
  n.type(string("128-") + toets::Enter);
  EXPECT_UIT(n, true, false, 10, "-128");
}

TEST(VeldLoop, EscapeRestoresEverywhereAndCancelOnlyAtTheFront) {
  Terminal esc = tekst("6c", "oud", 6);
  esc.type("nieuw", toets::Esc);
  EXPECT_EQ(veld(esc, 6), "oud   ");
  EXPECT_UIT(esc, false, false, 27, "oud~~~");

  Terminal voor = tekst("6c", "oud", 6);
  voor.type(string("x") + toets::Home, toets::Cancel);
  EXPECT_UIT(voor, false, false, TOETS_CANCEL, "oud~~~");

  Terminal achter =
      tekst("6c", "oud", 6);  // behind a character: the text stays, first byte of the key
  achter.type("x", toets::Cancel);
  EXPECT_UIT(achter, true, false, 27, "x~~~~~");

  Terminal getal_half = getal<int32_t>("5l,P", 44);
  getal_half.type("99", toets::Cancel);
  EXPECT_UIT(getal_half, false, false, 27, "44");
}

TEST(VeldLoop, OtherExitKeysKeepTheTypedTextBehindTheFront) {
  Terminal t = tekst("6c", "oud", 6);
  t.type("ab", toets::F5);
  EXPECT_UIT(t, true, false, 269, "ab~~~~");
  Terminal voor = tekst("6c", "oud", 6);
  voor.type(string("ab") + toets::Home + toets::F5);
  EXPECT_UIT(voor, false, false, 269, "oud~~~");
  Terminal niet = tekst("6c", "oud", 6);
  niet.type(toets::F6);
  EXPECT_EQ(niet.row(25), "Ongeldige toets");
}

TEST(VeldLoop, RequiredFieldsHoldTheCursorKeys) {
  Terminal t = getal<int32_t>("5l,EP", 0);
  t.type(toets::Up);
  EXPECT_EQ(t.row(25), "<> Ingave verplicht");
  t.type(string("7") + toets::Home + toets::Up);
  EXPECT_UIT(t, true, false, TOETS_UP, "7");
  Terminal vrij = getal<int32_t>("5l,P", 0);
  vrij.type(toets::Up);
  EXPECT_UIT(vrij, false, true, TOETS_UP, "0");
}

TEST(VeldLoop, SignalsAreKeys) {
  Terminal t = tekst("6c", "abc", 6);
  t.ready();
  kill(t.pid(), SIGINT);  // the Delete key
  t.wait_for("bc_");
  EXPECT_EQ(veld(t, 6), "bc____");
  kill(t.pid(), SIGQUIT);
  EXPECT_TRUE(t.wait_for("EXIT-toets gebruikt"));
  t.type(toets::Enter);
  EXPECT_EQ(t.exit_status(), 1);
}

TEST(VeldTekst, OverwriteInsertDeleteAndUndo) {
  Terminal t = tekst("6c", "abcd", 6);
  t.type(string(toets::Right) + "X");
  EXPECT_EQ(veld(t, 6), "aXcd__");
  t.type(string(toets::Ins) + "YZQ");
  EXPECT_EQ(veld(t, 6), "aXYZQc");  // cut at the field's length
  t.type(string(toets::Back) + toets::Left + toets::Del);
  EXPECT_EQ(veld(t, 6), "aXYc__");
  EXPECT_EQ(t.cursor_col(), 13);
  t.type(string(toets::End) + "!" + toets::Home);
  EXPECT_EQ(veld(t, 6), "aXYc!_");
  t.type(toets::Home);
  EXPECT_EQ(veld(t, 6), "abcd__");
  t.type(string(toets::Ins) + "z");  // behind the undo nothing is replaced any more
  EXPECT_EQ(veld(t, 6), "zbcd__");
  t.type(string(toets::Home) + toets::Back);
  EXPECT_EQ(veld(t, 6), "______");
  t.type(toets::Enter);
  EXPECT_UIT(t, true, true, 10, "~~~~~~");
}

TEST(VeldTekst, TheEndOfAFieldWaitsForEnterUnlessAutomatic) {
  Terminal t = tekst("3c", "", 3);
  t.type("abcd");
  EXPECT_EQ(t.row(25), "Tik <ENTER> toets");
  EXPECT_EQ(veld(t, 4), "abc ");
  Terminal a = tekst("2s[0123],AF", "", 2);
  a.type("1x");
  EXPECT_EQ(a.row(25), "<x> Ongeldige ingave!!  (HELP voor toelichting)");
  a.type(toets::Enter);
  EXPECT_EQ(a.row(25), "<1> Volledig vullen");
  a.type("32");
  EXPECT_UIT(a, true, false, 10, "32");
}

TEST(VeldTekst, AnAutomaticEnterIsCheckedOnceAndDoesNotRepeat) {
  Terminal t = getal<int16_t>("1d,IEPA", 0, 2, 5);
  t.type("9");
  EXPECT_EQ(t.row(25), "<9> Alleen 2 t/m 5 mogelijk");
  EXPECT_EQ(t.cursor_col(), 10);
  t.type("3");
  EXPECT_UIT(t, true, false, 10, "3");
  Terminal vol = tekst("3c,A", "abc", 3);
  vol.type(toets::End);  // standing behind the last place is enough
  EXPECT_UIT(vol, false, false, 10, "abc");
}

TEST(VeldTekst, BlanksUpperCasePaddingAndHiding) {
  Terminal een = tekst("1c", "x", 1);
  een.type(string(" ") + toets::Enter);
  EXPECT_UIT(een, true, false, 10, " ");
  Terminal hoog = tekst("4s,U", "", 4);
  hoog.type(string("aé") + toets::Enter);
  EXPECT_EQ(veld(hoog, 4), "AÉ  ");
  Terminal rechts = tekst("3c,JI", "12", 3);
  EXPECT_EQ(veld(rechts, 3), "___");
  rechts.type(string("38") + toets::Enter);
  EXPECT_EQ(veld(rechts, 3), " 38");
  EXPECT_UIT(rechts, true, false, 10, " 38");
  Terminal geheim = tekst("8s,SEF", "", 8);
  geheim.type("pas");
  EXPECT_EQ(veld(geheim, 8), "________");
  EXPECT_EQ(geheim.cursor_col(), 13);
  geheim.type(toets::Enter);
  EXPECT_EQ(geheim.row(25), "<> Volledig vullen");
  geheim.type(string("geheim12") + toets::Enter);
  EXPECT_EQ(veld(geheim, 8), "        ");
  EXPECT_UIT(geheim, true, false, 10, "geheim12");
}

TEST(VeldTekst, HexadecimalTakesKeysAsDigits) {
  Terminal t = tekst("6x", "", 6);
  t.type("4a\\A");
  EXPECT_EQ(veld(t, 6), "4A41__");
  t.type("0\\");
  EXPECT_EQ(t.row(25), "<\\> Ongeldige ingave!!  (HELP voor toelichting)");
  t.type(toets::Enter);
  EXPECT_UIT(t, true, false, 10, "4A410~");
}

TEST(VeldTekst, AScrollingFieldFollowsItsCursor) {
  Terminal t = tekst("20.6C", "abcdefghij", 20);
  EXPECT_EQ(t.text(5, 9, 8), " abcdef→");
  t.type(toets::End);
  EXPECT_EQ(t.text(5, 9, 8), "←ghij__ ");
  EXPECT_EQ(t.cursor_col(), 14);
  t.type(string(toets::Left) + toets::Left + toets::Left + toets::Left);
  EXPECT_EQ(t.text(5, 9, 8), "←efghij ");
  t.type(toets::Home);
  EXPECT_EQ(t.text(5, 9, 8), " abcdef→");
  t.type(string(toets::End) + "klmnopqrst");
  EXPECT_EQ(t.text(5, 9, 8), "←opqrst ");
  t.type(toets::Enter);
  EXPECT_EQ(t.text(5, 9, 8), " abcdef ");
  EXPECT_UIT(t, true, false, 10, "abcdefghijklmnopqrst");
  Terminal nul = tekst("5C", "ab", 5);
  EXPECT_EQ(veld(nul, 5), "     ");
  nul.type(string("xyz") + toets::Enter);
  EXPECT_UIT(nul, true, false, 10, "xyz~~");
}

TEST(VeldDatum, TemplateKeepsItsSeparators) {
  Terminal t = datum("10D", "");
  EXPECT_EQ(veld(t, 10), "__-__-____");
  t.type("1-");
  EXPECT_EQ(veld(t, 10), "01-__-____");
  EXPECT_EQ(t.cursor_col(), 13);
  t.type("3-2026");
  EXPECT_EQ(veld(t, 10), "01-03-2026");
  t.type(string(toets::Home) + toets::Del);
  EXPECT_EQ(veld(t, 10), "1_-03-2026");
  t.type(toets::Enter);
  EXPECT_EQ(veld(t, 10), "01-03-2026");
  EXPECT_UIT(t, true, false, 10, "01032026");
}

TEST(VeldDatum, DeleteAndBackspaceStepOverTheSeparators) {
  Terminal t = datum("8D", "12032026");
  EXPECT_EQ(veld(t, 8), "12-03-26");
  t.type(string(toets::Right) + toets::Right + toets::Back);
  EXPECT_EQ(veld(t, 8), "1_-03-26");
  EXPECT_EQ(t.cursor_col(), 11);
  t.type("5");
  EXPECT_EQ(veld(t, 8), "15-03-26");
  t.type(string(toets::End) + toets::Back + toets::Back + toets::Back);
  EXPECT_EQ(veld(t, 8), "15-0_-__");
  t.type("4", "27");
  EXPECT_EQ(veld(t, 8), "15-04-27");
  t.type(toets::Enter);
  EXPECT_UIT(t, true, false, 10, "15042027");
}

TEST(VeldDatum, CountingFromTheDateThatStands) {
  Terminal t = datum("8D", "28022026");
  t.type(string("+7") + toets::Enter);
  EXPECT_EQ(veld(t, 8), "07-03-26");
  EXPECT_UIT(t, true, false, 10, "07032026");
  Terminal terug = datum("D", "01032026");
  terug.type(string("-1") + toets::Enter);
  EXPECT_EQ(veld(terug, 6), "280226");
  Terminal leeg = datum("D,I", "01032026");  // empty, but it may count: from day 0
  leeg.type(string("+7") + toets::Enter);
  EXPECT_EQ(leeg.row(25), "<+7> Alleen datum tussen 01-01-1980 en 31-12-2050");
  Terminal nul = datum("D,IE", "01032026");
  nul.type(string("+0") + toets::Enter);
  EXPECT_EQ(nul.row(25), "<+0> Foutieve ingave");
  Terminal geen = datum("D", "");
  geen.type("+");
  EXPECT_EQ(geen.row(25), "<+> Ongeldige ingave!!  (HELP voor toelichting)");
}

TEST(VeldDatum, RefusalsBringTheOldDateBack) {
  Terminal t = datum("8D", "12032026");
  t.type(string("31-02") + toets::Enter);
  EXPECT_EQ(t.row(25), "<31-02-26> Datum voldoet niet aan DD-MM-JJ");
  EXPECT_EQ(veld(t, 8), "12-03-26");
  t.type(string("01-01-79") + toets::Enter);
  EXPECT_EQ(t.row(25), "<01-01-79> Alleen datum tussen 01-01-1980 en 31-12-2050");
  t.type(toets::Enter);
  EXPECT_UIT(t, false, false, 10, "12032026");
  Terminal kort = datum("D,F", "");
  kort.type(string("1203") + toets::Enter);
  EXPECT_EQ(kort.row(25), "<1203> Datum voldoet niet aan DDMMJJ");
  EXPECT_EQ(veld(kort, 6), "______");
  Terminal lang = datum("10D", "", 40000, 50000);
  lang.type(string("01022079") + toets::Enter);
  EXPECT_EQ(lang.row(25), "<01-02-2079> Alleen datum tussen 06-07-2009 en 21-11-2036");
  Terminal vrij = datum("D", "", 0, 0);
  vrij.type(string("010160") + toets::Enter);
  EXPECT_UIT(vrij, true, false, 10, "01011960");
  Terminal niets = datum("D,", "");
  niets.type(toets::Enter);
  EXPECT_UIT(niets, false, true, 10, "        ");
}

TEST(VeldHulp, TellsWhatTheFieldTakes) {
  Terminal t = getal<double>("6.2f,EP", 1.5, 0, 250);
  t.type(toets::F1);
  EXPECT_SHOWS(t, " Ingave HELP-informatie ", "Er wordt ingave van een getal verwacht",
               "U moet 6 posities vullen, waarvan 2 cijfers na de komma", "Alle cijfers toegestaan",
               "De volgende functietoetsen zijn toe te passen :", "Cursor Up, CANCEL", "F5",
               "Bereik 0.01 t/m 250.00", "<ENTER> voor vervolg _");
  t.type("x");
  EXPECT_EQ(t.row(25), "Ongeldige ingave");
  t.type(toets::Enter);
  EXPECT_FALSE(t.shows("HELP-informatie"));
  EXPECT_EQ(veld(t, 6), "1.50__");
  t.type(toets::Enter);
  EXPECT_UIT(t, false, false, 10, "1.5000");
  Terminal verzameling = tekst("1c[^.,]", "", 1);
  verzameling.type(toets::F1);
  EXPECT_SHOWS(verzameling, ". , niet toegestaan");
}

TEST(VeldHulp, ComposesACharacter) {
  Terminal t = tekst("6c", "", 6);
  t.type(string("a") + toets::F11);
  EXPECT_EQ(t.text(5, 10, 6), "┌────┐");
  t.type(string("e'") + toets::Enter);
  EXPECT_EQ(veld(t, 6), "aé____");
  t.type(string(toets::F11) + "135" + toets::Enter);
  EXPECT_EQ(veld(t, 6), "aéç___");
  t.type(string(toets::F11) + "qq" + toets::Enter);
  EXPECT_EQ(t.row(25), "Ongeldige toets");
}

TEST(VeldFout, ABadFormatEndsTheProgram) {
  const struct {
    const char *formaat, *reden;
  } rijen[] = {{"256s", "Lengte > 255 tekens"},
               {"5l", "ongeldige vartype"},  // the variable holds characters
               {"2s", "STRING fout"}};
  for (const auto& rij : rijen) {
    const string formaat = rij.formaat;
    Terminal t = scherm([formaat] {
      char v[300] = "te lang";
      INGAVE(3, 20, formaat.c_str(), &K_CANCEL, &v[0]);
    });
    EXPECT_SHOWS(t, "INGAVE(): r=3, c=20, cs=" + formaat + " --> " + rij.reden);
    t.type(toets::Enter);
    EXPECT_EQ(t.exit_status(), 1);
  }
}

TEST(VeldStaat, WhatACallerSetsCountsOnceAndIsKeptOverAScreenInBetween) {
  Terminal t = scherm([] {
    int32_t v = 1, ander = 2;
    scr_ctx->ing->max = 5;
    scr_ctx->ing->min = 3;
    key_allow('?');
    {
      const IngBewaar bewaar;
      INGAVE(3, 10, "4l,P", &K_CANCEL, &ander);
    }
    INGAVE(5, 10, "4l,P", &v);
    INGAVE(6, 10, "4l,P", &v);
    uitslag(key_allowed('?'), str_format("%ld %ld", v, ander));
  });
  t.type(string("900") + toets::Enter, string("9") + toets::Enter);
  EXPECT_EQ(t.row(25), "<9> Alleen 3 t/m 5 mogelijk");
  t.type(string("4") + toets::Enter, "9?");
  EXPECT_EQ(t.row(25), "<?> Ongeldige ingave!!  (HELP voor toelichting)");
  t.type(toets::Enter);
  EXPECT_UIT(t, false, false, 10, "9 900");
}

/// Fields of every letter, one after the other, each with guard bytes behind its variable; row 9
/// counts those that were overrun and the numbers that came out beyond their range.
void alle_velden(int ronden) {
  static constexpr const char* FORMATEN[] = {
      "6c,E", "1c", "8s,JU", "20.6C", "12.5S,F", "6x",   "12.4X",  "5l,ZP", "6.2f", "8B,JEP",
      "D",    "8D", "10D,E", "b",     "3n",      "3c,A", "2u,ZPA", "4s,S",  "2.2f"};
  int fout = 0;
  for (int i = 0; i < ronden; ++i) {
    const char* f = FORMATEN[static_cast<size_t>(i) % std::size(FORMATEN)];
    VeldFormaat formaat;
    veld_ontleed(f, 2, formaat);
    struct {
      union {
        int32_t l;
        uint16_t u;
        int8_t n;
        uint8_t b;
        double d;
        char c[32];
      };
    } v = {};
    memset(&v, 0, sizeof v);
    const auto vraag = [&](auto* p, size_t breedte) {
      memset(v.c + breedte, '#', sizeof v.c - breedte);
      INGAVE(5, 10, f, &K_CANCEL, &K_F5, p);
      for (size_t k = breedte; k < sizeof v.c; ++k) fout += v.c[k] != '#';
    };
    switch (formaat.letter) {
      case 'l':
      case 'B':
        vraag(&v.l, 4);
        break;
      case 'u':
      case 'D':
        vraag(&v.u, 2);
        break;
      case 'n':
        vraag(&v.n, 1);
        break;
      case 'b':
        vraag(&v.b, 1);
        break;
      case 'f':
        vraag(&v.d, 8);
        break;
      default:
        vraag(v.c, static_cast<size_t>(formaat.lengte) + (strchr("sS", formaat.letter) ? 1 : 0));
    }
    if (formaat.letter == 'l') fout += v.l < 0 || v.l > 99999;
    if (formaat.letter == 'D') fout += v.u > 55153 && formaat.lengte != 10;
  }
  scr_print(A_WAARDE, 9, 1, "klaar, fout=%d", fout);
}

TEST(VeldLoop, AnyKeysInAnyFieldStayInsideTheVariable) {
  const unsigned zaad = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(zaad));
  std::mt19937 kans(zaad);
  Terminal t = scherm([] { alle_velden(300); });
  const string toetsen[] = {"1",         "2",           "0",          "9",          "-",
                            "+",         ",",           ".",          " ",          "a",
                            "J",         "\\",          "é",          "F",          toets::Home,
                            toets::End,  toets::Left,   toets::Right, toets::Ins,   toets::Del,
                            toets::Back, toets::Up,     toets::F5,    toets::F11,   toets::F1,
                            toets::F6,   toets::Cancel, toets::Enter, toets::Enter, toets::Enter};
  for (int beurt = 0; beurt < 3000 && !t.shows("klaar"); ++beurt) {
    string reeks;
    for (int k = 0; k < 12; ++k) reeks += toetsen[kans() % std::size(toetsen)];
    t.type(reeks);
    t.type(string(toets::Enter) + toets::Home + toets::Cancel);  // any field can be left
  }
  EXPECT_EQ(t.row(9), "klaar, fout=0");
}

TEST(Vraag, YesNoAndKeys) {
  const auto vraag = [](const char* tekst) {
    return scherm([tekst] {
      const bool ja = scr_confirm(5, 10, "%s", tekst);
      uitslag(ja, "");
    });
  };
  Terminal t = vraag("[+]");
  EXPECT_EQ(t.text(5, 10, 18), "Akkoord? (J/N) J  ");
  t.type(toets::Enter);
  EXPECT_UIT(t, true, false, 10, "");
  Terminal nee = vraag("[-],Stoppen");
  EXPECT_EQ(nee.text(5, 10, 18), "Stoppen? (J/N) N  ");
  nee.type(string("+") + toets::Enter);
  EXPECT_UIT(nee, true, false, 10, "");
  Terminal open = vraag("Stoppen");
  EXPECT_EQ(open.text(5, 10, 18), "Stoppen? (J/N) _  ");
  open.type(toets::Enter);
  EXPECT_EQ(open.row(25), "<> Ingave verplicht");
  open.type(string("j") + toets::Esc);
  EXPECT_UIT(open, false, false, 27, "");

  Terminal toets = scherm([] {
    const int k = scr_getkey("ab", &K_F5, &K_CANCEL);
    uitslag(false, als_tekst(k));
  });
  EXPECT_FALSE(toets.cursor_visible());
  toets.type(string("x") + toets::F5);
  EXPECT_UIT(toets, false, true, 269, "269");
}

}  // namespace
