// Checking an order: what counts as sent, both lists as text, and dropping the order on a screen.
#include <cstring>
#include <regex>

#include "main/batchvw.h"
#include "main/opdracht_controle.h"
#include "main/opdracht_controle_in.h"
#include "prt/prt.h"
#include "sub/datacom.h"
#include "sub/muteren.h"
#include "sub/opdrnr.h"
#include "tests/support/adv_keten.h"
#include "tests/support/agent.h"
#include "tests/support/bestand.h"
#include "tests/support/rapport.h"

namespace {

using namespace toets;
constexpr uint32_t ORDER = 20000011, ANDERE = 20000028;
constexpr uint16_t DAG = 46001;  // 10-12-25

struct Controleren : AdvKeten {
  void SetUp() override {
    AdvKeten::SetUp();
    keten.open();
    iofil('O', 0, &filiaal_rec);
    str_printf(prt_links, sizeof prt_links, "%s", "De Ketting BV");
    for (const Serienr& nr : {ROK, JAS}) {
      ASSERT_TRUE(serie_wacht(nr));
      veld_zet(ser_rec.materiaal, sizeof ser_rec.materiaal, "katoen");
      veld_zet(ser_rec.dessin, sizeof ser_rec.dessin, nr == ROK ? "streep" : "effen");
      veld_zet(ser_rec.kenmerk, sizeof ser_rec.kenmerk, "KM");
      veld_zet(ser_rec.locatie, sizeof ser_rec.locatie, nr == ROK ? "B2" : "A1");
      serie_schrijf();
    }
  }
  void TearDown() override {
    if (keten.is_open) iofil('C', 0, nullptr);
    prt_links[0] = 0;
  }

  static void vraagt(int van, int naar, const Serienr& nr, std::initializer_list<uint32_t> per_maat,
                     uint32_t nummer = ORDER) {
    DtPick r{};
    r.vanfil = static_cast<uint8_t>(van);
    r.naarfil = static_cast<uint8_t>(naar);
    r.nr = nr;
    r.opdrachtnr = nummer;
    r.orderdatum = DAG;
    size_t maat = 1;
    for (const uint32_t n : per_maat) r.aantal[maat++] = n;
    ProefKeten::voeg(dtpick, r);
  }
  /// Labels sent by hand under a number.
  static int32_t stuurt(int van, int naar, const Serienr& nr, uint8_t maat, int stuks = 1,
                        uint32_t nummer = ORDER) {
    int32_t laatste = 0;
    for (int i = 0; i < stuks; ++i) {
      laatste = stuk(nr, ETI_VOORRAAD, maat, static_cast<uint8_t>(van));
      EXPECT_TRUE(serie_wacht(nr));
      go_nieuw(laatste, {static_cast<uint8_t>(van), static_cast<uint8_t>(naar), nummer, DAG, 0});
      serie_los();
    }
    return laatste;
  }
  static void meldt(int van, int naar, const std::string& code, uint32_t stuks = DC_GEEN_AANTAL,
                    uint32_t nummer = ORDER, uint8_t soort = DC_ZENDEN) {
    DcRegel r{};
    r.vanfil = static_cast<uint8_t>(van);
    r.naarfil = static_cast<uint8_t>(naar);
    r.soort = soort;
    r.stuks = stuks;
    r.nummer = nummer;
    veld_zet(r.code, sizeof r.code, code);
    zet_bytes(DC_BESTAND,
              bytes_van(DC_BESTAND) + std::string(reinterpret_cast<const char*>(&r), sizeof r));
  }

  static ControleVraag vraag(bool uitgebreid, bool verschillen, const char* volgorde = "AKV") {
    ControleVraag v{};
    EXPECT_TRUE(opdr_zoek(ORDER, {}, &v.opdracht));
    v.uitgebreid = uitgebreid;
    v.verschillen = verschillen;
    str_printf(v.volgorde, sizeof v.volgorde, "%s", volgorde);
    return v;
  }
  static std::string tabel() {
    std::string uit;
    ICB* icb = IXOPEN(controle_bestand().c_str(), IX_EXCLUSIEF);
    for (const Controle& c : proef_inhoud<Controle>(icb)) {
      uit += str_format("%d>%d %s", c.vanfil, c.naarfil, serie_tekst(c.nr));
      for (int m = 0; m < MATEN; ++m)
        if (c.opdracht[m] != 0 || c.verzonden[m] != 0)
          uit += str_format(" %d:%lu/%lu", m, c.opdracht[m], c.verzonden[m]);
      uit += "\n";
    }
    IXCLOSE(icb);
    return uit;
  }
  static std::string lijst(ControleVraag v, int bladregels = 64) {
    EXPECT_TRUE(controle_vul(&v));
    std::string tekst = rapport([&v] { controle_lijst(v); }, bladregels);
    tekst = std::regex_replace(tekst, std::regex("([-=])\\1{131}"), "$1$1$1");
    return std::regex_replace(tekst, std::regex(" +\n"), "\n");
  }
};

TEST_F(Controleren, WhatCountsAsSent) {
  vraagt(1, 3, ROK, {2, 1, 5});
  vraagt(1, 4, JAS, {1});
  vraagt(1, 3, WEG, {4});  // a series that is gone
  vraagt(2, 3, JAS, {9});  // the same number, another sender: not looked at
  vraagt(1, 3, JAS, {7}, ANDERE);
  stuurt(1, 3, ROK, 1, 2);
  stuurt(1, 5, ROK, 2);                                            // to where nobody asked
  zet_go(stuurt(1, 3, ROK, 3), [](DtGo& r) { r.afgewerkt = 1; });  // arrived already
  zet_go(stuurt(1, 3, ROK, 1), [](DtGo& r) { r.printdatum = DAG; });
  zet_go(stuurt(1, 3, ROK, 1), [](DtGo& r) { r.verzamel = 1; });
  zet_go(stuurt(1, 3, ROK, 1), [](DtGo& r) { r.soort = 2; });
  stuurt(1, 3, ROK, 1, 1, ANDERE);
  ProefKeten::voeg(dtgo, DtGo{1, 3, 0, 0, 987654, ROK, ORDER, 1, {}, 0, DAG, 0});  // no such label

  const int32_t gemeld = stuk(JAS, ETI_VOORRAAD, 1, 1);
  char code[14];
  etikode_maak(0, gemeld, code);
  meldt(1, 4, code);
  meldt(1, 4, code, DC_GEEN_AANTAL, ANDERE);
  meldt(1, 4, code, DC_GEEN_AANTAL, ORDER, DC_ONTVANGEN);
  meldt(1, 77, code);  // no such branch
  DtSer maten = ProefKeten::serie({10100, 40, 4}, 1, 5);
  maten.maatregistratie = 1;
  ProefKeten::voeg(dtser, maten);
  proef_ean("8712345678906", 'M', {10100, 40, 4}, 2);
  proef_ean("8712345678913", 'M', ROK, 2);             // has labels
  proef_ean("8712345678920", 'A', {10100, 40, 4}, 2);  // a small article
  meldt(1, 4, "8712345678906", 6);
  meldt(1, 4, "8712345678906");  // no count: a piece
  meldt(1, 4, "8712345678913", 50);
  meldt(1, 4, "8712345678920", 50);
  meldt(1, 4, "8700000000000", 50);
  zet_bytes(DC_BESTAND, bytes_van(DC_BESTAND) + "half");

  IXSWITCH(dtpick, 3);
  ControleVraag v = vraag(false, false);
  EXPECT_EQ(v.opdracht.naarfil, FILIALEN) << "several receivers";
  ASSERT_TRUE(controle_vul(&v));
  EXPECT_EQ(v.opdracht.datum, DAG);
  EXPECT_EQ(dtpick->block.key_number, 3);
  EXPECT_EQ(tabel(), R"(1>3 10100.10.1 1:2/2 2:1/0 3:5/1
1>5 10100.10.1 2:0/1
1>4 10100.20.2 1:1/1
1>3 10100.30.3 1:4/0
1>4 10100.40.4 2:0/7
)");
}

TEST_F(Controleren, TheCompactList) {
  char naam[20] = "hoogte";
  int32_t twee = 2;
  sys_sub20('W', &twee, naam);
  IXSWITCH(dtart, 1);
  art_rec = {};
  art_rec.nummer = ROK.artgroep;
  ASSERT_TRUE(IXREAD(dtart, &art_rec));
  art_rec.kenmerk_nr = 2;
  IXWRITE(dtart, &art_rec);
  art_rec = {};
  vraagt(1, 3, ROK, {2, 1});
  vraagt(1, 4, ROK, {1, 2});
  vraagt(1, 4, JAS, {3});
  vraagt(1, 3, WEG, {12345});
  stuurt(1, 3, ROK, 1, 3);  // one too many there, one too few in 4: the whole is right
  stuurt(1, 3, ROK, 2);
  stuurt(1, 4, ROK, 2, 2);
  stuurt(1, 4, JAS, 1, 4);
  EXPECT_EQ(
      lijst(vraag(false, false, "LAKV")),
      R"(De Ketting BV                             CONTROLE VERZAMELOPDRACHT COMPACT                              DD-MM-JJJJ UU:MM blad:   1

Van  filiaal  1   Filiaal 1                                                 Opdrachtnummer 20000011
Naar filiaal alle                                                           Opdrachtdatum  10-12-2025

merk model           materiaal    dessin       kenmerk    locatie serie             OPDR   VERZ verschil     maat         fil
---
                                               hoogte             10100.30.3       12345             -         *             *
DUIN BEA             katoen       effen        hoogte  KM A1      10100.20.2           3      4      +         *             *
     ANNA                         streep       hoogte  KM B2      10100.10.1           6      6                              *
                                                        TOTAAL opdracht 20000011   12354     10
)");
}

TEST_F(Controleren, OnlyDifferencesOfASingleReceiver) {
  vraagt(1, 3, ROK, {2});
  vraagt(1, 3, JAS, {3});
  stuurt(1, 3, ROK, 1, 2);
  const std::string tekst = lijst(vraag(false, true));
  EXPECT_NE(tekst.find("Naar filiaal  3   Filiaal 3    "), std::string::npos);
  EXPECT_EQ(
      tekst.substr(tekst.find("merk model")),
      R"(merk model           materiaal    dessin       kenmerk    locatie serie             OPDR   VERZ verschil     maat
---
DUIN BEA             katoen       effen                KM A1      10100.20.2           3             -         *
)");
  stuurt(1, 3, JAS, 1, 3);
  EXPECT_EQ(lijst(vraag(false, true)), "");
}

TEST_F(Controleren, TheExtensiveList) {
  DtMaat rec{};
  rec.land = 1;
  rec.maatsoort = 2;
  for (int i = 1; i <= 20; ++i) proef_maat(rec, i, str_format("%3d", 30 + i), i);  // two lines
  ProefKeten::voeg(dtmaat, rec);
  ASSERT_TRUE(serie_wacht(JAS));
  ser_rec.maatsoort = 2;
  memcpy(ser_rec.maten, rec.maten, sizeof ser_rec.maten);
  serie_schrijf();
  vraagt(1, 3, ROK, {2, 1});
  vraagt(1, 3, JAS, {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2});
  vraagt(1, 4, JAS, {1});
  vraagt(2, 4, JAS, {1});
  stuurt(1, 3, ROK, 1, 2);
  stuurt(1, 3, ROK, 2);
  stuurt(1, 3, JAS, 1, 2);
  stuurt(1, 3, JAS, 20);
  stuurt(2, 5, JAS, 2);
  EXPECT_EQ(
      lijst(vraag(true, false)),
      R"(De Ketting BV                            CONTROLE VERZAMELOPDRACHT UITGEBREID                             DD-MM-JJJJ UU:MM blad:   1

Van  filiaal  1   Filiaal 1                                                 Opdrachtnummer 20000011
Naar filiaal alle                                                           Opdrachtdatum  10-12-2025

merk model           materiaal    dessin                  maten
     serie           kenmerk      locatie              tot
---
DUIN ANNA            katoen       streep                     S   M   L
     10100.10.1              KM   B2
     BEA                          effen                     31  32  33  34  35  36  37  38  39  40  41  42  43  44  45  46  47  48
     10100.20.2              KM   A1            F 3         -1
                                                OPDR     5   3
                                                VERZ     3   2
                                                F 4         -1
                                                OPDR     1   1
                                                VERZ     0
                                                            49  50
                                                F 3         -2  +1
                                                OPDR         2
                                                VERZ             1
===
)"
      "\f"
      R"(De Ketting BV                            CONTROLE VERZAMELOPDRACHT UITGEBREID                             DD-MM-JJJJ UU:MM blad:   2

Van  filiaal  2   Filiaal 2                                                 Opdrachtnummer 20000011
Naar filiaal alle                                                           Opdrachtdatum  10-12-2025

merk model           materiaal    dessin                  maten
     serie           kenmerk      locatie              tot
---
DUIN BEA             katoen       effen                     31  32  33  34  35  36  37  38  39  40  41  42  43  44  45  46  47  48
     10100.20.2              KM   A1            F 5             +1
                                                OPDR     0
                                                VERZ     1       1
===
                      TOTAAL opdracht 20000011  OPDR     9
                                                VERZ     7
)");
  // Where the page ends between sizes and pieces the sizes come again.
  std::string kort = lijst(vraag(true, true), 12);
  kort = std::regex_replace(kort, std::regex("De Ketting[^]*?---\n"), "kop");
  EXPECT_EQ(
      std::regex_replace(kort, std::regex(".*(OPDR|VERZ) .*\n"), ""),
      R"(kopDUIN BEA             katoen       effen                     31  32  33  34  35  36  37  38  39  40  41  42  43  44  45  46  47  48
     10100.20.2              KM   A1            F 3         -1
)"
      "\f"
      R"(kop                                                            31  32  33  34  35  36  37  38  39  40  41  42  43  44  45  46  47  48
                                                F 4         -1
)"
      "\f"
      R"(kop                                                            49  50
                                                F 3         -2  +1
)"
      "\f"
      R"(kopDUIN BEA             katoen       effen                     31  32  33  34  35  36  37  38  39  40  41  42  43  44  45  46  47  48
     10100.20.2              KM   A1            F 5             +1
)");
}

// On a screen -------------------------------------------------------------------------------------

TEST_F(Controleren, TheOrderIsDropped) {
  vraagt(1, 3, ROK, {1});
  vraagt(1, 3, JAS, {2});
  vraagt(1, 3, JAS, {7}, ANDERE);
  stuurt(1, 3, ROK, 1);
  keten.sluit();
  Agent ander([&](const std::string& wat) -> std::string {
    if (!keten.is_open) keten.open();
    session_terminal = 8;
    if (wat == "los") return vw_free(10), "los";
    return vw_claim(10, true) ? "vast" : "nee";
  });
  Terminal t = draai(opdracht_controle, [] {
    return str_format("%d", dtpick_soorten()) +
           (file_exists((controle_bestand() + ".TXT").c_str()) ? " rest" : "");
  });
  EXPECT_SHOWS(t, "Controle uitvoering opdracht", "Verzendfiliaal", "Opdrachtnummer");
  EXPECT_SHOWS(t.type(in("1"), in("20000011")), "1 -> 3", "Niveau", "1 Compact", "2 Uitgebreid");
  EXPECT_SHOWS(t.type("1"), "Telling", "1 Alle series", "2 Series met verschillen");
  EXPECT_SHOWS(t.type("2"), "Afdrukvolgorde", "3 merk - model");
  EXPECT_SHOWS(t.type("1"), "CONTROLE VERZAMELOPDRACHT COMPACT", "10100.20.2");
  EXPECT_FALSE(t.shows("10100.10.1"));
  EXPECT_SHOWS(t.type(Esc), "Uitvoering verzamelopdracht goedgekeurd; opdracht verwijderen? (J/N)");
  // Somebody else is at work on orders: the order stays until he is done.
  ASSERT_EQ(ander.ask("neem"), "vast");
  t.type_now("J\r");
  EXPECT_TRUE(t.wait_for("Wilt u wachten"));
  EXPECT_EQ(ander.ask("los"), "los");
  EXPECT_TRUE(t.wait_for("KLAAR"));
  EXPECT_EQ(t.row(20), "KLAAR 2");
  EXPECT_EQ(t.type(Enter).exit_status(), 0);
  EXPECT_EQ(regels(), "1>3 10100.20.2 nr 20000028 1x7\n");
}

TEST_F(Controleren, NoDifferencesAndTheOrderStays) {
  vraagt(1, 3, ROK, {1});
  stuurt(1, 3, ROK, 1);
  keten.sluit();
  Terminal t = draai(opdracht_controle);
  t.type(Enter, Enter, Enter);  // the browser's only order
  EXPECT_SHOWS(t.type("2", "2", "1"), "Geen series met verschillen");
  EXPECT_SHOWS(t.type(Enter), "opdracht verwijderen? (J/N)");
  EXPECT_EQ(t.type(in("N")).row(20), "KLAAR");
  keten.open();
  EXPECT_EQ(dtpick_soorten(), OPDR_DEFINITIEF);
}

}  // namespace
