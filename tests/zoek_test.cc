// The lookup fields and lists as an operator sees them, over a small chain of brands, colours,
// article groups, target groups, actions, codes, seasons, models and sizes.
#include "sub/zoek.h"

#include <gtest/gtest.h>

#include "scr/scr.h"
#include "sub/iomaat.h"
#include "sub/sel_krit.h"
#include "sub/sel_merken.h"
#include "tests/support/stukken.h"
#include "tests/support/terminal.h"

namespace {

using namespace toets;

void sys(const SysTabel& tabel, int32_t nummer, const std::string& bytes) {
  std::string rec = bytes;
  rec.resize(static_cast<size_t>(tabel.lengte));
  iotab('W', &nummer, rec.data(), tabel);
}

struct Zoek : testing::Test {
  Keten k;
  void SetUp() override {
    k.open();
    proef_merk(5, "Duinroos", "DUIN");
    proef_merk(7, "Zilt", "ZILT");
    proef_merk(123, "Aardappel", "DUIM");
    proef_merk(40, "Kaap Veertig", "KAAP");
    proef_artikel(10100, "Rokken", [](DtArt& art) { art.omzetgroep = 30; });
    proef_artikel(20200, "Jassen", [](DtArt& art) { art.omzetgroep = 10; });
    proef_artikel(30300, "Blouses", [](DtArt& art) { art.omzetgroep = 20; });
    sys(SYS_KLEUREN, 10, std::string("\x0A\0wit", 5));
    sys(SYS_KLEUREN, 100, std::string("\x64\0zwart", 7));
    Actie actie{};
    actie.van = date_number("01012025");
    actie.tm = date_number("31012025");
    actie.code = 3;
    veld_zet(actie.tekst, sizeof actie.tekst, "Opruiming");
    sys(SYS_ACTIES, 12, std::string(reinterpret_cast<const char*>(&actie), sizeof actie));
    sys(SYS_CODES_SEIZOEN, 1, "begin");
    sys(SYS_CODES_SEIZOEN, 4, "zomer");
    k.sluit();
    InkSys seizoenen[3] = {};
    seizoenen[0] = {2026, 'W', 0, {}};  // the newest first
    seizoenen[1] = {2025, 'Z', 0, {}};
    seizoenen[2] = {2024, 'K', 0, {}};
    veld_zet(seizoenen[0].tekst, sizeof seizoenen[0].tekst, "Winter");
    veld_zet(seizoenen[1].tekst, sizeof seizoenen[1].tekst, "Zomer");
    std::ofstream("INKSYS.TXT", std::ios::binary)
        .write(reinterpret_cast<const char*>(seizoenen), sizeof seizoenen);
  }
  /// Runs `werk` on a screen and shows the line that it returns on row 22.
  Terminal start(const std::function<std::string()>& werk) {
    return start_in_child([this, werk] {
      k.open();
      SCRINIT();
      hdr_line('C', "");
      const std::string uit = werk();
      scr_print(A_WAARDE, 22, 1, "%s", uit);
      scr_enter(23, 1);
      scr_exit(0);
    });
  }
};

struct ZoekMerk : Zoek {
  /// The field at row 3, column 10 with 5 and 7 in the choice; as often as `keer`.
  Terminal veld(int keer = 1, uint16_t nummer = 5, const char* opties = "") {
    return start([keer, nummer, opties] {
      merklijst_leeg();
      merklijst_neem(std::vector<uint16_t>{5, 7}, true);
      ICB* lijst = merklijst_open(IX_EXCLUSIEF);
      uint16_t nr = nummer;
      std::string uit;
      for (int i = 0; i < keer; ++i) {
        key_allow(K_CANCEL);
        const int n = ing_merk(3, 10, opties, &nr, lijst);
        uit += str_format("n%d nr%d %s%s/", n, nr, weg_toets() ? "weg" : "",
                          (scr_ctx->ing_result & ING_ANDERS) != 0 ? "anders" : "");
      }
      IXCLOSE(lijst);
      for (const uint16_t nr2 : merklijst_nummers()) uit += str_format(" %d", nr2);
      return uit;
    });
  }
};

TEST_F(ZoekMerk, ANumberOrTheOnlySearchNameIsTaken) {
  Terminal t = veld(3);
  EXPECT_EQ(t.text(3, 10, 4), "5___");
  EXPECT_EQ(t.type(in("7")).text(3, 10, 4), "7___");
  EXPECT_EQ(t.type(in("k")).text(3, 10, 4), "40__");
  EXPECT_EQ(t.type(Enter).text(3, 10, 4), "  40");
  EXPECT_EQ(t.row(22), "n1 nr7 anders/n1 nr40 anders/n1 nr40 / 40");
}

TEST_F(ZoekMerk, EmptyIsNoBrandAndCancelChangesNothing) {
  Terminal t = veld(2);
  t.type(std::string(Back) + Enter, Esc);
  EXPECT_TRUE(t.row(22).starts_with("n0 nr0 anders/n2 nr0 weg/ 5 7")) << t.row(22);
  Terminal u = veld(1, 7, "I");
  EXPECT_EQ(u.text(3, 10, 4), "____");
  u.type(std::string("12") + Esc);
  EXPECT_TRUE(u.row(22).starts_with("n2 nr7 weg/ 5 7")) << u.row(22);
  Terminal v = veld(1, 0, "E");
  EXPECT_SHOWS(v.type(Enter), "Ingave verplicht");
}

TEST_F(ZoekMerk, SeveralNamesOrAnUnknownNumberOpenTheListAtTheNearest) {
  Terminal t = veld(2);
  EXPECT_SHOWS(t.type(in("du")), " selecteren merk(en) ");
  EXPECT_EQ(t.text(4, 46, 30), " mkzn merknr merknaam         ") << t.screen();
  EXPECT_EQ(t.text(5, 46, 30), " DUIM  123   Aardappel        ");
  EXPECT_TRUE(t.reverse(5, 47));
  EXPECT_SHOWS(t, "Zoeknaam ____", "→ 2│");
  EXPECT_EQ(t.type(Esc).cursor_row(), 3);        // the field again, as it was
  EXPECT_TRUE(t.type(in("zz")).reverse(5, 47));  // behind all search names: the last
  EXPECT_EQ(t.text(5, 47, 10), "ZILT    7 ");
  EXPECT_EQ(t.type(Esc, in("123"), in("9")).text(5, 46, 10), "→DUIM  123");
  t.type(Esc, Esc);
  EXPECT_TRUE(t.row(22).starts_with("n1 nr123 anders/n1 nr123 weg/ 123")) << t.row(22);
}

TEST_F(ZoekMerk, AllButSomeAreTakenInOrderAndTheOrderStaysWithTab) {
  Terminal t = veld(2);
  EXPECT_EQ(t.type(F5).text(5, 46, 10), "→DUIN    5");  // at the present brand, 5 and 7 marked
  EXPECT_EQ(t.text(6, 46, 6), " KAAP ");
  EXPECT_EQ(t.text(7, 46, 10), "→ZILT    7");
  EXPECT_SHOWS(t.type(Enter), "Zoeknaam ____");             // with marks Enter does nothing
  EXPECT_EQ(t.type(F7, Up).text(5, 46, 10), " DUIN    5");  // its mark goes and comes back
  EXPECT_EQ(t.type(F7, Up).text(5, 46, 10), "→DUIN    5");
  t.type(F10);
  t.type(F7);  // 5
  t.type(F6);
  EXPECT_EQ(
      t.type(Tab).text(4, 46, 33),
      " merknaam             mkzn merknr");  // by name: the record under the cursor, 40, on top
  EXPECT_EQ(t.text(5, 47, 31), "Kaap Veertig         KAAP   40 ");
  EXPECT_SHOWS(t, "Naam __________");
  EXPECT_EQ(t.type(Tab).text(4, 46, 33), " merknr merknaam             mkzn");
  EXPECT_EQ(t.text(5, 47, 32), "  40   Kaap Veertig         KAAP");
  EXPECT_EQ(t.text(6, 47, 32), " 123   Aardappel            DUIM");
  EXPECT_SHOWS(t, "Nummer ____");
  EXPECT_EQ(t.type(std::string("7") + Tab).text(4, 46, 6),
            " mkzn ");  // a text before the key: searched, and then the next order
  EXPECT_EQ(t.text(5, 47, 9), "ZILT    7");
  EXPECT_EQ(t.type(F3, F5).text(4, 46, 6), " mkzn ");
  t.type(Esc, Esc);
  EXPECT_TRUE(t.row(22).starts_with("n3 nr7 anders/n3 nr7 weg/ 7 40 123")) << t.row(22);
}

TEST_F(ZoekMerk, OnePickAndAnEmptyFile) {
  Terminal t = start([] { return str_format("keus %d", ing_merk_pick()); });
  EXPECT_SHOWS(t, " selecteren merk ");
  EXPECT_EQ(t.type(in("KA"), F3).row(22), "keus 40");
  k.open();
  IXINIT(dtmerk);
  k.sluit();
  Terminal u = start([] {
    ICB* lijst = merklijst_open(IX_EXCLUSIEF);
    uint16_t nr = 0;
    key_allow(K_CANCEL);
    ing_merk(3, 10, "", &nr, lijst);
    IXCLOSE(lijst);
    return std::string("weg");
  });
  EXPECT_EQ(u.type(F5).text(22, 21, 18), "│ Geen informatie ");
  EXPECT_TRUE(u.bold(22, 23));
  EXPECT_EQ(u.type(Enter).cursor_row(), 3);
  EXPECT_EQ(u.type(Esc).row(22), "weg");
}

TEST_F(Zoek, ColoursAreSlots) {
  Terminal t = start([] {
    uint16_t nr = 11;
    key_allow(K_CANCEL);
    const bool anders = ing_kleur(3, 10, "", &nr);
    return str_format("%d %d %d", anders, nr, kleur_pick(500));
  });
  EXPECT_SHOWS(t.type(F5), " selecteren kleur ", " klr  kleur", " 100 zwart");
  EXPECT_FALSE(t.shows("  10 wit"));  // the page starts at the first colour from 11 on
  EXPECT_SHOWS(t.type(Up), "  10 wit", "Kleurnummer ___");
  EXPECT_EQ(t.type(Esc).cursor_row(), 3);
  t.type(F5, in("2"), F3);
  t.type(in("700"));  // behind all: the last
  EXPECT_EQ(t.type(Enter).row(22), "1 10 100");
}

TEST_F(Zoek, ArticleGroupsInThreeOrdersThatAreRemembered) {
  Terminal t = start([] {
    uint32_t nr = 15000;
    key_allow(K_CANCEL);
    const bool anders = ing_artikel(3, 10, "", &nr);
    return str_format("%d %d %d", anders, nr, artikel_pick(10100));
  });
  EXPECT_SHOWS(t.type(F5), " selecteren artikelgroep ", " artg  omschrijving          omzg",
               "artikelgroep _____");
  EXPECT_EQ(t.text(5, 47, 12), "20200 Jassen") << t.screen();
  EXPECT_SHOWS(t.type(Tab), "omschrijving ____________________");
  EXPECT_TRUE(t.text(6, 47, 12) == "10100 Rokken");
  EXPECT_SHOWS(t.type(Tab), "Omzetgroep _____");
  EXPECT_TRUE(
      t.type(in("15"), F3).shows("Omzetgroep _____"));  // the second list in the order of the first
  EXPECT_TRUE(t.text(5, 47, 12) == "10100 Rokken");
  EXPECT_EQ(t.type(F3).row(22), "1 30300 10100");
}

struct ZoekDoelgroep : Zoek {
  void SetUp() override {
    Zoek::SetUp();
    ICB* icb = IXOPEN("DTDOELGR", IX_EXCLUSIEF);
    for (const char* naam : {"Dames", "Heren", "Meisjes"}) {
      DtDoelgr rec{};
      rec.letter = naam[0];
      veld_zet(rec.tekst, sizeof rec.tekst, naam);
      IXWRITE(icb, &rec);
    }
    IXCLOSE(icb);
  }
  Terminal veld() {
    return start([] {
      char letter = 'X';
      key_allow(K_CANCEL);
      const bool anders = ing_doelgroep(3, 10, "", &letter);
      return str_format("%d <%c> %s", anders, letter, doelgroep_tekst(letter));
    });
  }
};

TEST_F(ZoekDoelgroep, TheFieldNamesAWrongLetterAndTheListMovesUnderItsChoiceLine) {
  Terminal t = veld();
  EXPECT_SHOWS(t.type(Enter), "<X> Ongeldige doelgroep");
  EXPECT_SHOWS(t.type(F5), " dgr    omschrijving", "   D    Dames", "Uw keuze _ S, W, V");
  t.type(Down, Down, Down, Up);
  const int rij = t.row(6).find("   H    Heren") != std::string::npos ? 6 : 0;
  EXPECT_TRUE(rij != 0 && t.reverse(rij, 60)) << t.screen();
  EXPECT_SHOWS(t.type(Enter), "Uw keuze _ S, W, V");  // an empty choice is asked again
  EXPECT_EQ(t.type("s").row(22), "1 <H> Heren");
  EXPECT_EQ(t.text(3, 10, 1), "H");
}

TEST_F(ZoekDoelgroep, AGroupIsChangedAndDeletedFromTheList) {
  Terminal t = veld();
  EXPECT_SHOWS(t.type(F5, Down, "w"), " WIJZIGEN DOELGROEP ",
               " Omschrijving doelgroep Heren_______");
  EXPECT_SHOWS(t.type(Esc, "w", in("Mannen")), "   H    Mannen");
  EXPECT_SHOWS(t.type("v"), "Deze doelgroep wordt verwijderd. Akkoord? (J/N) N");
  EXPECT_SHOWS(t.type(Enter), "   H    Mannen");
  EXPECT_FALSE(t.type("v", "J", Enter).shows("Mannen")) << t.screen();
  EXPECT_SHOWS(t, "   M    Meisjes");
  EXPECT_TRUE(t.type("v", "J", Enter).shows("   D    Dames"))
      << t.screen();  // behind the last: the one before it
  EXPECT_EQ(t.type("v", "J", Enter).cursor_row(), 3)
      << t.screen();  // emptied: the list ends, the field comes back
  EXPECT_SHOWS(t.type(F5), "Geen doelgroepen gedefinieerd");
  EXPECT_EQ(t.type(Enter, Esc).row(22), "0 <X>");
}

TEST_F(Zoek, ActionsShowTheirPeriod) {
  Terminal t = start([] {
    uint8_t nr = 0;
    key_allow(K_CANCEL);
    const bool anders = ing_actie(3, 10, "E", &nr);
    return str_format("%d %d", anders, nr);
  });
  EXPECT_SHOWS(t.type(in("13")), "<13> Onbekend actienummer");
  EXPECT_SHOWS(t.type(F5), " an  periode va-tm ac  actie", "12  010125-310125  3  Opruiming",
               "Actienummer __");
  EXPECT_EQ(t.type(Enter).row(22), "1 12");
}

TEST_F(Zoek, CodesAreTakenByOneKeyAndKeptUp) {
  Terminal t = start([] {
    uint8_t code = 9;
    key_allow(K_CANCEL);
    const bool anders = ing_code(3, 10, "", 4, &code);
    const int keus = code_pick(4, true);
    const std::string vijf = code_tekst(4, 5);
    return str_format("%d %d %d %s|%s", anders, code, keus, vijf, code_tekst(4, 3));
  });
  EXPECT_SHOWS(t.type(Enter), "<9> Ongeldige ingave");
  EXPECT_TRUE(t.type(F5).row(3).find(" Raadplegen deelseizoen ") != std::string::npos);
  EXPECT_EQ(t.text(4, 50, 16), "nr omschrijving ");
  EXPECT_EQ(t.text(5, 50, 10), "0 begin   ");
  EXPECT_EQ(t.text(8, 50, 10), "3 zomer   ");
  EXPECT_SHOWS(t.type("5"), "<5> Ongeldige ingave");
  EXPECT_SHOWS(t.type(Esc, F5, "0"), "Uw keuze _ S, W, V");
  EXPECT_SHOWS(t.type("w", "5"), " WIJZIGEN deelseizoen ");
  EXPECT_EQ(t.type(in("herfst")).text(10, 50, 10), "5 herfst  ");
  EXPECT_EQ(t.type("v", "3", in("J")).text(8, 50, 10), "          ");
  EXPECT_EQ(t.type("s", "5").row(22), "1 0 5 herfst|");
}

TEST_F(Zoek, YearsExpandAreLimitedAndComeWithTheirSeason) {
  const auto jaar = [](uint16_t laag, uint16_t hoog) {
    return [=] {
      uint16_t j = 0;
      char s = 0;
      key_allow(K_CANCEL);
      ing_jaar(3, 10, "", laag, hoog, &j, &s);
      return str_format("%d %c", j, s == 0 ? '-' : s);
    };
  };
  for (const auto& [tekst, uit] :
       {std::pair{"25", "2025 -"}, std::pair{"00", "2000 -"}, std::pair{"80", "1980 -"},
        std::pair{"50", "2050 -"}, std::pair{"1999", "1999 -"}, std::pair{"", "0 -"}}) {
    Terminal t = start(jaar(0, 0));
    EXPECT_EQ(t.type(in(tekst)).row(22), uit);
  }
  Terminal t = start(jaar(0, 0));
  EXPECT_SHOWS(t.type(in("1979")), "<1979> Ongeldig jaartal");
  EXPECT_SHOWS(t.type(in("2080")), "<2080> Alleen 1980 t/m 2079 mogelijk");
  EXPECT_SHOWS(t.type(F5), " seizoen omschrijving", " 2026W   Winter", " 2025Z   Zomer");
  EXPECT_EQ(t.type(in("2025"), F3).row(22), "2025 Z");

  Terminal u = start(jaar(2026, 2026));  // a season that is refused leaves nothing behind
  EXPECT_SHOWS(u.type(F5, Down, F3), "<2025> Alleen 2026 t/m 2026 mogelijk");
  EXPECT_EQ(u.type(in("26")).row(22), "2026 -");

  Terminal v = start([] {
    char s = 'K';
    const bool anders = ing_seizoen(3, 10, &s);
    return str_format("%d %c", anders, s);
  });
  EXPECT_SHOWS(v.type("q"), "<Q> Ongeldige ingave");
  EXPECT_EQ(v.type(in("z")).row(22), "1 Z");
}

TEST_F(Zoek, TheModelListHoldsTheModelsOfOneBrandOnce) {
  k.open();
  uint16_t volgnr = 0;
  for (const auto& [merk, model] :
       {std::pair{5, "ROMA"}, std::pair{7, "PARIJS"}, std::pair{7, "BERLIJN"},
        std::pair{7, "PARIJS"}, std::pair{7, "WENEN"}, std::pair{40, "ALMELO"}}) {
    DtSer s = Keten::serie({10100, 10, ++volgnr}, 1, static_cast<uint16_t>(merk));
    veld_zet(s.model, sizeof s.model, model);
    Keten::voeg(dtser, s);
  }
  k.sluit();
  const auto kies = [](uint16_t merk) {
    return [merk] {
      char model[15] = {};
      const bool er = model_pick(merk, model);
      return str_format("%d <%s> %d", er, veld_tekst(model, sizeof model), file_exists(privaat.s));
    };
  };
  Terminal t = start(kies(7));
  EXPECT_SHOWS(t, " selecteren model ", "Merk: 7 Zilt");
  EXPECT_EQ(t.text(5, 47, 8), "BERLIJN ") << t.screen();
  EXPECT_EQ(t.text(6, 47, 8), "PARIJS  ");
  EXPECT_EQ(t.text(7, 47, 8), "WENEN   ");
  EXPECT_EQ(t.text(8, 47, 8), "        ");
  EXPECT_SHOWS(t, "Model _______________");
  EXPECT_TRUE(t.type(Down, Down, Down, Up).reverse(6, 47));
  EXPECT_EQ(t.type(in("p"), Enter).row(22), "1 <PARIJS> 0");

  Terminal u = start(kies(123));
  EXPECT_SHOWS(u, "selecteren model", "Geen informatie");
  EXPECT_EQ(u.type(Enter).row(22), "0 <> 0");
}

TEST_F(Zoek, SizesGoByTextAndByTheirBar) {
  k.open();
  DtMaat m{};
  m.land = 1;
  m.maatsoort = 2;
  proef_maat(m, 1, "  S", 1);
  proef_maat(m, 2, "  M", 3);
  proef_maat(m, 3, "  L", 2);  // the bar shows S L M
  Keten::voeg(dtmaat, m);
  DtMtom oms{};
  oms.land = 1;
  oms.maatsoort = 2;
  oms.maat = 2;
  veld_zet(oms.tekst, sizeof oms.tekst, "Medium");
  Keten::voeg(dtmtom, oms);
  k.sluit();
  const auto veld = [](const char* opties, uint8_t soort) {
    return [=] {
      MaatHandle* mt = mtopen(1, soort, MT_VERTAALD);
      uint8_t maat = 1;
      key_allow(K_CANCEL);
      const bool er = ing_maat(3, 10, opties, mt, &maat);
      mtclose(mt);
      return str_format("%d %d", er, maat);
    };
  };
  Terminal t = start(veld("U", 2));
  EXPECT_SHOWS(t.type(in("x")), "<  X> Onbekende/foutieve maat");
  EXPECT_EQ(t.type(in("l")).row(22), "1 3");  // a text typed at the left is meant at the right

  Terminal u = start(veld("J", 2));
  EXPECT_SHOWS(u.type(F5), " maat  omschr");
  EXPECT_TRUE(u.row(5).find("   S  ") != std::string::npos);
  EXPECT_TRUE(u.row(6).find("   L  ") != std::string::npos);
  EXPECT_TRUE(u.row(7).find("   M  Medium") != std::string::npos);
  EXPECT_EQ(u.type(in("M"), Enter).text(3, 10, 3), "  M");
  EXPECT_EQ(u.row(22), "1 2");

  Terminal v = start(veld("", 44));
  EXPECT_SHOWS(v, "<44> Onbekende maatsoort");
  Terminal w = start([] { return str_format("%d", maatsoort_pick(0)); });
  EXPECT_SHOWS(w, "<0> Onbekend maatstelsel");
  Terminal x = start([] { return str_format("%d", maatsoort_pick(1)); });
  EXPECT_SHOWS(x, "  2    S   M   L");
  EXPECT_EQ(x.type(Enter).row(22), "2");
}

}  // namespace
