// The list of locations as text, and the location of one series as an operator gives it.
#include <regex>

#include "isam/base.h"
#include "main/iofil.h"
#include "main/magazijn.h"
#include "scr/scr.h"
#include "sub/muteren.h"
#include "tests/support/agent.h"
#include "tests/support/rapport.h"
#include "tests/support/stukken.h"
#include "tests/support/terminal.h"

namespace {

struct Magazijn : ::testing::Test {
  Keten keten;

  void SetUp() override {
    keten.open();
    artikel(10100, "Blouses", 2);
    artikel(10200, "Broeken", 0);
    artikel(10300, "Tassen", 255);
    proef_merk(5, "Duinroos", "DUIN");
    str_printf(prt_links, sizeof prt_links, "%s", "De Ketting BV");
  }
  void TearDown() override { prt_links[0] = 0; }

  static void artikel(uint32_t nummer, const char* naam, uint8_t magazijn) {
    proef_artikel(nummer, naam, [magazijn](DtArt& art) { art.magazijn = magazijn; });
  }
  static void serie(const Serienr& nr, const char* locatie) {
    Keten::serie(nr, 1, 5);
    proef_kleding(nr, locatie);
  }
  static void etiketten(const Serienr& nr, int aantal, uint8_t status, uint8_t filiaal,
                        uint8_t reden = 0) {
    Etiket e = proef_etiket(nr, status, 5, filiaal);
    e.reden = reden;
    while (aantal-- > 0) proef_stuk(e);
  }
  static std::string lijst(int bladregels = 64) {
    std::string tekst = rapport(locaties_druk, bladregels);
    tekst = std::regex_replace(tekst, std::regex("-{132}"), "=132=");
    return std::regex_replace(tekst, std::regex(" +\n"), "\n");
  }
};

TEST_F(Magazijn, WhatLiesWherePerWarehouse) {
  serie({10100, 10, 1}, "C2");
  etiketten({10100, 10, 1}, 3, ETI_VOORRAAD, 2);
  etiketten({10100, 10, 1}, 2, ETI_NOTA, 2);
  etiketten({10100, 10, 1}, 7, ETI_VOORRAAD, 3);  // in a shop
  etiketten({10100, 10, 1}, 1, ETI_VERKOPEN, 2);
  etiketten({10100, 10, 1}, 1, ETI_CORRECTIES, 2, 0);
  etiketten({10100, 10, 1}, 1, ETI_CORRECTIES, 2, 4);  // not of an inventory
  serie({10100, 20, 1}, "A1");
  etiketten({10100, 20, 1}, 1, ETI_VOORRAAD, 2);
  serie({10100, 30, 1}, "      ");  // no location
  etiketten({10100, 30, 1}, 1, ETI_VOORRAAD, 2);
  serie({10100, 40, 1}, "A9");  // nothing in the warehouse
  etiketten({10100, 40, 1}, 1, ETI_VOORRAAD, 4);
  serie({10200, 999, 9999}, "Z9");
  etiketten({10200, 999, 9999}, 1, ETI_VOORRAAD, 0);
  serie({10300, 1, 1}, "T1");  // a group without a warehouse
  etiketten({10300, 1, 1}, 1, ETI_VOORRAAD, 0);
  serie({10400, 1, 1}, "T2");  // a group that does not exist
  etiketten({10400, 1, 1}, 1, ETI_VOORRAAD, 0);
  IXSWITCH(dtser, 3);
  EXPECT_EQ(locaties_vul(-1), 3);
  EXPECT_EQ(dtser->block.key_number, 3);
  EXPECT_EQ(
      lijst(),
      R"(De Ketting BV                                    LOCATIES MAGAZIJN 0                                     DD-MM-JJJJ UU:MM blad:   1

artikelgroep               locatie serienummer      NOT   VRD   INV merk                model           materiaal    dessin       km
=132=
10200 Broeken              Z9      10200.999.9999           1       DUIN Duinroos       Anna lang       katoen       streep       KM
)"
      "\f"
      R"(De Ketting BV                                    LOCATIES MAGAZIJN 2                                     DD-MM-JJJJ UU:MM blad:   2

artikelgroep               locatie serienummer      NOT   VRD   INV merk                model           materiaal    dessin       km
=132=
10100 Blouses              A1      10100.20.1               1       DUIN Duinroos       Anna lang       katoen       streep       KM
10100 Blouses              C2      10100.10.1         2     3     1 DUIN Duinroos       Anna lang       katoen       streep       KM
)");
  EXPECT_FALSE(file_exists("TP07L.TXT"));
  EXPECT_EQ(locaties_vul(2), 2);
  EXPECT_EQ(locaties_vul(7), 0);
}

/// A chain into another series, and one back into itself: those series are passed over.
TEST_F(Magazijn, ChainsThatLeadAstray) {
  for (uint16_t v = 1; v <= 3; ++v) {
    serie({10100, 10, v}, "C2");
    etiketten({10100, 10, v}, 1, ETI_VOORRAAD, 2);
  }
  proef_ketting(0, 1);
  proef_ketting(2, 2);
  EXPECT_EQ(locaties_vul(-1), 1);
  EXPECT_NE(lijst().find("10100.10.2 "), std::string::npos);
}

TEST_F(Magazijn, PagesPerBranch) {
  for (uint16_t v = 1; v <= 9; ++v) {
    serie({10100, 10, v}, "C2");
    etiketten({10100, 10, v}, 1, ETI_VOORRAAD, 2);
  }
  ASSERT_EQ(locaties_vul(-1), 9);
  const std::string tekst = lijst(8);
  EXPECT_NE(tekst.find("blad:   3"), std::string::npos) << tekst;
  EXPECT_EQ(tekst.find("blad:   4"), std::string::npos) << tekst;
}

/// While the operator types the series is free: what another terminal changed stays, and a location
/// that it gave is not written over.
TEST_F(Magazijn, TheLocationOfASeries) {
  serie({10100, 10, 1}, "C2");
  serie({10300, 1, 1}, "");
  keten.sluit();
  Agent ander([&](const std::string& wat) -> std::string {
    if (!keten.is_open) keten.open();
    if (!serie_probeer({10100, 10, 1})) return "bezet";
    const std::string oud = veld_tekst(ser_rec.locatie, sizeof ser_rec.locatie);
    ser_rec.voorraad = 42;
    if (!wat.empty()) veld_zet(ser_rec.locatie, sizeof ser_rec.locatie, wat);
    serie_schrijf();
    return oud;
  });
  Terminal t = start_in_child([this] {
    keten.open();
    SCRINIT();
    serie_locatie();
  });
  using namespace toets;
  t.type("10100", Enter, "10", Enter, "1", Enter);
  EXPECT_SHOWS(t, "Locatie per serie", "10100.10.1", "Duinroos", "Magazijn", "filiaal-2", "C2");
  EXPECT_EQ(ander.ask(""), "C2");
  EXPECT_SHOWS(t.type("d4", Enter), "Ingave serienummer");
  EXPECT_EQ(ander.ask("E5"), "D4");
  EXPECT_SHOWS(t.type(Enter, Enter, Enter), "E5");
  EXPECT_EQ(ander.ask("F6"), "E5");
  EXPECT_SHOWS(t.type("g7", Enter), "De locatie is inmiddels door een ander gewijzigd");
  EXPECT_SHOWS(t.type(Enter), "Ingave serienummer");
  EXPECT_EQ(ander.ask(""), "F6");
  t.type("10300", Enter, "1", Enter, "1", Enter);
  EXPECT_SHOWS(t, "Er is GEEN magazijn bij deze artikelgroep.", "<ENTER> voor vervolg");
  EXPECT_SHOWS(t.type(Enter), "Ingave serienummer");
  EXPECT_EQ(t.type(Esc).exit_status(), 0);
  keten.open();
  EXPECT_EQ(proef_serie({10100, 10, 1}).voorraad, 42u);
}

TEST_F(Magazijn, TheCommandAsksForABranch) {
  serie({10100, 10, 1}, "C2");
  etiketten({10100, 10, 1}, 1, ETI_VOORRAAD, 2);
  keten.sluit();
  Terminal t = start_in_child([this] {
    keten.open();
    SCRINIT();
    mag_locaties();
    hdr_line('C', "terug");
    mag_locaties();
  });
  using namespace toets;
  EXPECT_SHOWS(t, "Magazijnlocaties", "Filiaal", "<ENTER> voor alle");
  EXPECT_SHOWS(t.type("4", Enter), "Geen informatie");
  EXPECT_SHOWS(t.type(Enter), "<ENTER> voor alle");
  EXPECT_SHOWS(t.type(Enter), "LOCATIES MAGAZIJN 2", "10100.10.1", "Einde overzicht");
  EXPECT_EQ(t.type(Esc).exit_status(), 0);
}

}  // namespace
