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
  EXPECT_EQ(veld(t.type("12"), 6), "12___ ");
  EXPECT_EQ(t.cursor_col(), 12);
  EXPECT_EQ(veld(t.type(toets::Enter), 6), "12    ");
  EXPECT_UIT(t, true, false, 10, "12");
}

TEST(VeldGetal, OldValueStaysWhenUntouchedAndZeroShowsWithZAndE) {
  Terminal t = getal<int32_t>("5l,EZP", 0);
  EXPECT_EQ(veld(t, 5), "0____");
  EXPECT_UIT(t.type(toets::Enter), false, false, 10, "0");
  Terminal leeg = getal<int32_t>("5l,P", 7);
  EXPECT_UIT(leeg.type(string(toets::Back) + toets::Enter), true, true, 10,
             "0");  // an empty number is 0, even without Z
}

TEST(VeldGetal, RefusalsKeepTheTextAndTheNextCharacterReplacesIt) {
  Terminal t = getal<int16_t>("3d,P", 5, 0, 250);
  EXPECT_EQ(t.type(toets::in("300")).row(25), "<300> Alleen 1 t/m 250 mogelijk");
  EXPECT_EQ(veld(t, 3), "300");
  EXPECT_EQ(t.cursor_col(), 10);
  EXPECT_EQ(t.type("0").row(25), "");
  EXPECT_EQ(veld(t, 3), "0__");
  EXPECT_EQ(t.type(toets::Enter).row(25), "<0> Moet ongelijk zijn aan 0");
  EXPECT_UIT(t.type(toets::in("25")), true, false, 10, "25");
}

TEST(VeldGetal, DecimalsSignsAndBothPoints) {
  Terminal t = getal<double>("6.2f,EJNPZ", 0.0);
  EXPECT_EQ(t.type(toets::in("1,255")).row(25), "<1,255> Teveel cijfers na de komma");
  EXPECT_EQ(t.type(toets::in("-100")).row(25), "<-100> Alleen -99.99 t/m 999.99 mogelijk");
  EXPECT_EQ(veld(t.type(toets::in("12,5-")), 6), "-12.50");
  EXPECT_UIT(t, true, false, 10, "-12.5000");
  Terminal geen_min = getal<int32_t>("5l,ZP", 3);
  EXPECT_EQ(geen_min.type("-").row(25), "<-> Ongeldige ingave!!  (HELP voor toelichting)");
  EXPECT_EQ(veld(geen_min, 5), "3____");
}

TEST(VeldGetal, AmountsAreHundredthsAndSmallVariablesKeepTheirWidth) {
  Terminal t = getal<int32_t>("8B,JEP", 1250);
  EXPECT_EQ(veld(t, 8), "12.50___");
  EXPECT_EQ(veld(t.type(toets::in("3,07")), 8), "    3.07");
  EXPECT_UIT(t, true, false, 10, "307");
  Terminal n = getal<int8_t>("4n", 0);
  EXPECT_EQ(n.type(toets::in("128")).row(25), "<128> Alleen -128 t/m 127 mogelijk");
  EXPECT_UIT(n.type(toets::in("128-")), true, false, 10, "-128");
}

TEST(VeldLoop, EscapeRestoresEverywhereAndCancelOnlyAtTheFront) {
  Terminal esc = tekst("6c", "oud", 6);
  EXPECT_EQ(veld(esc.type("nieuw", toets::Esc), 6), "oud   ");
  EXPECT_UIT(esc, false, false, 27, "oud~~~");

  EXPECT_UIT(tekst("6c", "oud", 6).type(string("x") + toets::Home, toets::Cancel), false, false,
             TOETS_CANCEL, "oud~~~");

  Terminal achter =
      tekst("6c", "oud", 6);  // behind a character: the text stays, first byte of the key
  EXPECT_UIT(achter.type("x", toets::Cancel), true, false, 27, "x~~~~~");

  EXPECT_UIT(getal<int32_t>("5l,P", 44).type("99", toets::Cancel), false, false, 27, "44");
}

TEST(VeldLoop, OtherExitKeysKeepTheTypedTextBehindTheFront) {
  EXPECT_UIT(tekst("6c", "oud", 6).type("ab", toets::F5), true, false, 269, "ab~~~~");
  EXPECT_UIT(tekst("6c", "oud", 6).type(string("ab") + toets::Home + toets::F5), false, false, 269,
             "oud~~~");
  EXPECT_EQ(tekst("6c", "oud", 6).type(toets::F6).row(25), "Ongeldige toets");
}

TEST(VeldLoop, RequiredFieldsHoldTheCursorKeys) {
  Terminal t = getal<int32_t>("5l,EP", 0);
  EXPECT_EQ(t.type(toets::Up).row(25), "<> Ingave verplicht");
  EXPECT_UIT(t.type(string("7") + toets::Home + toets::Up), true, false, TOETS_UP, "7");
  EXPECT_UIT(getal<int32_t>("5l,P", 0).type(toets::Up), false, true, TOETS_UP, "0");
}

TEST(VeldLoop, SignalsAreKeys) {
  Terminal t = tekst("6c", "abc", 6);
  t.ready();
  kill(t.pid(), SIGINT);  // the Delete key
  t.wait_for("bc_");
  EXPECT_EQ(veld(t, 6), "bc____");
  kill(t.pid(), SIGQUIT);
  EXPECT_TRUE(t.wait_for("EXIT-toets gebruikt"));
  EXPECT_EQ(t.type(toets::Enter).exit_status(), 1);
}

TEST(VeldTekst, OverwriteInsertDeleteAndUndo) {
  Terminal t = tekst("6c", "abcd", 6);
  EXPECT_EQ(veld(t.type(string(toets::Right) + "X"), 6), "aXcd__");
  EXPECT_EQ(veld(t.type(string(toets::Ins) + "YZQ"), 6), "aXYZQc");  // cut at the field's length
  EXPECT_EQ(veld(t.type(string(toets::Back) + toets::Left + toets::Del), 6), "aXYc__");
  EXPECT_EQ(t.cursor_col(), 13);
  EXPECT_EQ(veld(t.type(string(toets::End) + "!" + toets::Home), 6), "aXYc!_");
  EXPECT_EQ(veld(t.type(toets::Home), 6), "abcd__");
  EXPECT_EQ(veld(t.type(string(toets::Ins) + "z"), 6),
            "zbcd__");  // behind the undo nothing is replaced any more
  EXPECT_EQ(veld(t.type(string(toets::Home) + toets::Back), 6), "______");
  EXPECT_UIT(t.type(toets::Enter), true, true, 10, "~~~~~~");
}

TEST(VeldTekst, TheEndOfAFieldWaitsForEnterUnlessAutomatic) {
  Terminal t = tekst("3c", "", 3);
  EXPECT_EQ(t.type("abcd").row(25), "Tik <ENTER> toets");
  EXPECT_EQ(veld(t, 4), "abc ");
  Terminal a = tekst("2s[0123],AF", "", 2);
  EXPECT_EQ(a.type("1x").row(25), "<x> Ongeldige ingave!!  (HELP voor toelichting)");
  EXPECT_EQ(a.type(toets::Enter).row(25), "<1> Volledig vullen");
  EXPECT_UIT(a.type("32"), true, false, 10, "32");
}

TEST(VeldTekst, AnAutomaticEnterIsCheckedOnceAndDoesNotRepeat) {
  Terminal t = getal<int16_t>("1d,IEPA", 0, 2, 5);
  EXPECT_EQ(t.type("9").row(25), "<9> Alleen 2 t/m 5 mogelijk");
  EXPECT_EQ(t.cursor_col(), 10);
  EXPECT_UIT(t.type("3"), true, false, 10, "3");
  Terminal vol = tekst("3c,A", "abc", 3);
  EXPECT_UIT(vol.type(toets::End), false, false, 10,
             "abc");  // standing behind the last place is enough
}

TEST(VeldTekst, BlanksUpperCasePaddingAndHiding) {
  EXPECT_UIT(tekst("1c", "x", 1).type(toets::in(" ")), true, false, 10, " ");
  Terminal hoog = tekst("4s,U", "", 4);
  EXPECT_EQ(veld(hoog.type(toets::in("aé")), 4), "AÉ  ");
  Terminal rechts = tekst("3c,JI", "12", 3);
  EXPECT_EQ(veld(rechts, 3), "___");
  EXPECT_EQ(veld(rechts.type(toets::in("38")), 3), " 38");
  EXPECT_UIT(rechts, true, false, 10, " 38");
  Terminal geheim = tekst("8s,SEF", "", 8);
  EXPECT_EQ(veld(geheim.type("pas"), 8), "________");
  EXPECT_EQ(geheim.cursor_col(), 13);
  EXPECT_EQ(geheim.type(toets::Enter).row(25), "<> Volledig vullen");
  EXPECT_EQ(veld(geheim.type(toets::in("geheim12")), 8), "        ");
  EXPECT_UIT(geheim, true, false, 10, "geheim12");
}

TEST(VeldTekst, HexadecimalTakesKeysAsDigits) {
  Terminal t = tekst("6x", "", 6);
  EXPECT_EQ(veld(t.type("4a\\A"), 6), "4A41__");
  EXPECT_EQ(t.type("0\\").row(25), "<\\> Ongeldige ingave!!  (HELP voor toelichting)");
  EXPECT_UIT(t.type(toets::Enter), true, false, 10, "4A410~");
}

TEST(VeldTekst, AScrollingFieldFollowsItsCursor) {
  Terminal t = tekst("20.6C", "abcdefghij", 20);
  EXPECT_EQ(t.text(5, 9, 8), " abcdef→");
  EXPECT_EQ(t.type(toets::End).text(5, 9, 8), "←ghij__ ");
  EXPECT_EQ(t.cursor_col(), 14);
  EXPECT_EQ(t.type(string(toets::Left) + toets::Left + toets::Left + toets::Left).text(5, 9, 8),
            "←efghij ");
  EXPECT_EQ(t.type(toets::Home).text(5, 9, 8), " abcdef→");
  EXPECT_EQ(t.type(string(toets::End) + "klmnopqrst").text(5, 9, 8), "←opqrst ");
  EXPECT_EQ(t.type(toets::Enter).text(5, 9, 8), " abcdef ");
  EXPECT_UIT(t, true, false, 10, "abcdefghijklmnopqrst");
  Terminal nul = tekst("5C", "ab", 5);
  EXPECT_EQ(veld(nul, 5), "     ");
  EXPECT_UIT(nul.type(toets::in("xyz")), true, false, 10, "xyz~~");
}

TEST(VeldDatum, TemplateKeepsItsSeparators) {
  Terminal t = datum("10D", "");
  EXPECT_EQ(veld(t, 10), "__-__-____");
  EXPECT_EQ(veld(t.type("1-"), 10), "01-__-____");
  EXPECT_EQ(t.cursor_col(), 13);
  EXPECT_EQ(veld(t.type("3-2026"), 10), "01-03-2026");
  EXPECT_EQ(veld(t.type(string(toets::Home) + toets::Del), 10), "1_-03-2026");
  EXPECT_EQ(veld(t.type(toets::Enter), 10), "01-03-2026");
  EXPECT_UIT(t, true, false, 10, "01032026");
}

TEST(VeldDatum, DeleteAndBackspaceStepOverTheSeparators) {
  Terminal t = datum("8D", "12032026");
  EXPECT_EQ(veld(t, 8), "12-03-26");
  EXPECT_EQ(veld(t.type(string(toets::Right) + toets::Right + toets::Back), 8), "1_-03-26");
  EXPECT_EQ(t.cursor_col(), 11);
  EXPECT_EQ(veld(t.type("5"), 8), "15-03-26");
  EXPECT_EQ(veld(t.type(string(toets::End) + toets::Back + toets::Back + toets::Back), 8),
            "15-0_-__");
  EXPECT_EQ(veld(t.type("4", "27"), 8), "15-04-27");
  EXPECT_UIT(t.type(toets::Enter), true, false, 10, "15042027");
}

TEST(VeldDatum, CountingFromTheDateThatStands) {
  Terminal t = datum("8D", "28022026");
  EXPECT_EQ(veld(t.type(toets::in("+7")), 8), "07-03-26");
  EXPECT_UIT(t, true, false, 10, "07032026");
  Terminal terug = datum("D", "01032026");
  EXPECT_EQ(veld(terug.type(toets::in("-1")), 6), "280226");
  Terminal leeg = datum("D,I", "01032026");  // empty, but it may count: from day 0
  EXPECT_EQ(leeg.type(toets::in("+7")).row(25),
            "<+7> Alleen datum tussen 01-01-1980 en 31-12-2050");
  EXPECT_EQ(datum("D,IE", "01032026").type(toets::in("+0")).row(25), "<+0> Foutieve ingave");
  EXPECT_EQ(datum("D", "").type("+").row(25), "<+> Ongeldige ingave!!  (HELP voor toelichting)");
}

TEST(VeldDatum, RefusalsBringTheOldDateBack) {
  Terminal t = datum("8D", "12032026");
  EXPECT_EQ(t.type(toets::in("31-02")).row(25), "<31-02-26> Datum voldoet niet aan DD-MM-JJ");
  EXPECT_EQ(veld(t, 8), "12-03-26");
  EXPECT_EQ(t.type(toets::in("01-01-79")).row(25),
            "<01-01-79> Alleen datum tussen 01-01-1980 en 31-12-2050");
  EXPECT_UIT(t.type(toets::Enter), false, false, 10, "12032026");
  Terminal kort = datum("D,F", "");
  EXPECT_EQ(kort.type(toets::in("1203")).row(25), "<1203> Datum voldoet niet aan DDMMJJ");
  EXPECT_EQ(veld(kort, 6), "______");
  EXPECT_EQ(datum("10D", "", 40000, 50000).type(toets::in("01022079")).row(25),
            "<01-02-2079> Alleen datum tussen 06-07-2009 en 21-11-2036");
  EXPECT_UIT(datum("D", "", 0, 0).type(toets::in("010160")), true, false, 10, "01011960");
  EXPECT_UIT(datum("D,", "").type(toets::Enter), false, true, 10, "        ");
}

TEST(VeldHulp, TellsWhatTheFieldTakes) {
  Terminal t = getal<double>("6.2f,EP", 1.5, 0, 250);
  EXPECT_SHOWS(t.type(toets::F1), " Ingave HELP-informatie ",
               "Er wordt ingave van een getal verwacht",
               "U moet 6 posities vullen, waarvan 2 cijfers na de komma", "Alle cijfers toegestaan",
               "De volgende functietoetsen zijn toe te passen :", "Cursor Up, CANCEL", "F5",
               "Bereik 0.01 t/m 250.00", "<ENTER> voor vervolg _");
  EXPECT_EQ(t.type("x").row(25), "Ongeldige ingave");
  EXPECT_FALSE(t.type(toets::Enter).shows("HELP-informatie"));
  EXPECT_EQ(veld(t, 6), "1.50__");
  EXPECT_UIT(t.type(toets::Enter), false, false, 10, "1.5000");
  Terminal verzameling = tekst("1c[^.,]", "", 1);
  EXPECT_SHOWS(verzameling.type(toets::F1), ". , niet toegestaan");
}

TEST(VeldHulp, ComposesACharacter) {
  Terminal t = tekst("6c", "", 6);
  EXPECT_EQ(t.type(string("a") + toets::F11).text(5, 10, 6), "┌────┐");
  EXPECT_EQ(veld(t.type(toets::in("e'")), 6), "aé____");
  EXPECT_EQ(veld(t.type(string(toets::F11) + "135" + toets::Enter), 6), "aéç___");
  EXPECT_EQ(t.type(string(toets::F11) + "qq" + toets::Enter).row(25), "Ongeldige toets");
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
    EXPECT_EQ(t.type(toets::Enter).exit_status(), 1);
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
  EXPECT_EQ(t.type(toets::in("900"), toets::in("9")).row(25), "<9> Alleen 3 t/m 5 mogelijk");
  EXPECT_EQ(t.type(toets::in("4"), "9?").row(25),
            "<?> Ongeldige ingave!!  (HELP voor toelichting)");
  EXPECT_UIT(t.type(toets::Enter), false, false, 10, "9 900");
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
  EXPECT_UIT(t.type(toets::Enter), true, false, 10, "");
  Terminal nee = vraag("[-],Stoppen");
  EXPECT_EQ(nee.text(5, 10, 18), "Stoppen? (J/N) N  ");
  EXPECT_UIT(nee.type(toets::in("+")), true, false, 10, "");
  Terminal open = vraag("Stoppen");
  EXPECT_EQ(open.text(5, 10, 18), "Stoppen? (J/N) _  ");
  EXPECT_EQ(open.type(toets::Enter).row(25), "<> Ingave verplicht");
  EXPECT_UIT(open.type(string("j") + toets::Esc), false, false, 27, "");

  Terminal toets = scherm([] {
    const int k = scr_getkey("ab", &K_F5, &K_CANCEL);
    uitslag(false, als_tekst(k));
  });
  EXPECT_FALSE(toets.cursor_visible());
  EXPECT_UIT(toets.type(string("x") + toets::F5), false, true, 269, "269");
}

}  // namespace
