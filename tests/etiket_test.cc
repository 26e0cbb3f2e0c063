// Labels as bits, and label codes.
#include <cstring>
#include <random>

#include "sub/ioeti.h"
#include "tests/support/keten.h"

namespace {

bool gelijk(const Etiket& a, const Etiket& b) {
  uint32_t wa[9], wb[9];
  etiket_pak(a, wa, true);
  etiket_pak(b, wb, true);
  return std::memcmp(wa, wb, sizeof wa) == 0;
}

TEST(Pakken, TheLargestLabelFillsEveryWord) {
  Etiket e{};
  e.status = ETI_CORRECTIES;
  e.inkpr = e.advpr = e.vrkpr = 429496728;
  e.cijfer = e.reden = 9;
  e.p = 1;
  e.nummer3 = 999;
  e.klant = 999999;
  e.bedrag = -1;
  e.maat = 95;
  e.actie = 99;
  e.filiaal = 248;
  e.onderweg = 1;
  e.doel = 248;
  e.lvnr = e.orddat = e.ontdat = e.vrkdat = 65535;
  e.tarief = 428;
  e.ordernr = 9999999;
  uint32_t w[9];
  etiket_pak(e, w, true);
  const uint32_t soll[9] = {4294967289, 4294967289, 4294967284,
                            1999999999, 4294967295, 9599u | 248u << 16 | 249u << 24,
                            4294967295, 4294967295, 4289999999};
  for (int i = 0; i < 9; ++i) EXPECT_EQ(w[i], soll[i]) << i;
  Etiket terug{};
  ASSERT_TRUE(etiket_uitpak(w, &terug, true));
  EXPECT_TRUE(gelijk(e, terug));
  EXPECT_TRUE(terug.bedrag == -1 && terug.doel == 248 && terug.klant == 999999);
}

TEST(Pakken, WhatDoesNotFitCannotSpillOver) {
  Etiket e{};
  e.status = ETI_VERKOPEN;
  e.inkpr = -5;
  e.advpr = INT32_MAX;
  e.cijfer = 12;
  e.klant = 1000000;
  e.nummer3 = 1000;
  e.p = 7;
  e.maat = 200;
  e.actie = 150;
  e.tarief = 429;
  e.ordernr = 10000000;
  uint32_t w[9];
  etiket_pak(e, w, true);
  EXPECT_EQ(w[0], 9u);
  EXPECT_EQ(w[1], 4294967280u);
  EXPECT_EQ(w[3], 1999999999u);
  EXPECT_EQ(w[5], 9599u);
  EXPECT_EQ(w[8], 4289999999u);
}

TEST(Pakken, DatesRateAndFourthByteFollowTheStatus) {
  Etiket e{};
  e.levertermijn = 11;
  e.ontdat = 22;
  e.vrkdat = 33;
  e.tarief = 210;
  e.onderweg = 1;
  e.doel = 3;
  e.besteld = 1;
  e.besteller = 7;
  struct {
    uint8_t status;
    bool transit;
    uint32_t hoog, vierde, tarief;
  } const gevallen[] = {{ETI_NOTA, true, 11, 8, 0},         {ETI_NOTA, false, 11, 8, 0},
                        {ETI_VOORRAAD, true, 0, 4, 0},      {ETI_VOORRAAD, false, 0, 0, 0},
                        {ETI_VERKOPEN, true, 33, 4, 210},   {ETI_CORRECTIES, true, 33, 4, 210},
                        {ETI_CORRECTIES, false, 33, 0, 210}};
  for (const auto& g : gevallen) {
    e.status = g.status;
    uint32_t w[9];
    etiket_pak(e, w, g.transit);
    EXPECT_EQ(w[7], 22u | g.hoog << 16) << int{g.status};
    EXPECT_EQ(w[5] >> 24, g.vierde) << int{g.status} << g.transit;
    EXPECT_EQ(w[8] / 10000000, g.tarief) << int{g.status};
    Etiket terug{};
    ASSERT_TRUE(etiket_uitpak(w, &terug, g.transit));
    EXPECT_EQ(terug.besteld, g.status == ETI_NOTA);
    EXPECT_EQ(terug.onderweg, g.status != ETI_NOTA && g.transit);
  }
}

TEST(Pakken, AFreeSlotIsZeroAndAnyOtherComesBack) {
  Etiket e = proef_etiket({10100, 10, 1}, ETI_VRIJ);
  uint32_t w[9];
  etiket_pak(e, w, true);
  for (const uint32_t woord : w) EXPECT_EQ(woord, 0u);
  EXPECT_FALSE(etiket_uitpak(w, &e, true));

  std::mt19937 kans(20240607);
  for (int i = 0; i < 5000; ++i) {
    for (uint32_t& woord : w) woord = static_cast<uint32_t>(kans());
    w[2] = w[2] / 10 * 10 + 1 + kans() % 4;
    if (w[2] < 10) continue;
    Etiket uit{};
    if (!etiket_uitpak(w, &uit, true)) continue;  // the last ten below 2^32 wrap to a free digit
    ASSERT_LE(uit.maat, 95);
    uint32_t w2[9];
    etiket_pak(uit, w2, true);
    Etiket weer{};
    ASSERT_TRUE(etiket_uitpak(w2, &weer, true));
    ASSERT_TRUE(gelijk(uit, weer)) << i;
  }
}

struct Codes : testing::Test {
  Keten keten;
  Codes() { keten.open(); }

  static std::string lees(const char* tekst) {
    Etiketcode code{'?', -1};
    if (!etikode_lees(tekst, &code)) return "niets";
    return std::string(1, code.letter == 0 ? '0' : code.letter) + " " + std::to_string(code.nummer);
  }
  static std::string maak(char letter, int32_t nummer) {
    char code[14];
    etikode_maak(letter, nummer, code);
    return code;
  }
};

TEST_F(Codes, InternalCodesAreValidEanCodes) {
  EXPECT_EQ(maak(0, 1), "2900000000001");
  for (const char letter : {'\0', 'A', 'M', 'Z'}) {
    for (const int32_t nummer : {1, 1000, 9999999, 30000000}) {
      const std::string code = maak(letter, nummer);
      EXPECT_TRUE(ean_goed(code)) << code;
      EXPECT_EQ(code[0], '2');
      EXPECT_EQ(lees(code.c_str()),
                std::string(1, letter == 0 ? '0' : letter) + " " + std::to_string(nummer));
    }
  }
}

TEST_F(Codes, EightDigitsAreALabelOnlyWithEightLabelDigits) {
  EXPECT_EQ(lees("00000017"), "0 17");
  EXPECT_EQ(lees("29999999  "), "0 29999999");
  EXPECT_EQ(lees("20000011"), "0 20000011");  // an order number too; the field decides
  EXPECT_EQ(lees("30000000"), "E 0");
  EXPECT_EQ(lees("2000001x"), "E 0");
  SysRec4 vier{};
  vier.cijfers = 7;
  keten.sluit();
  Keten::sysrec_zet(4, &vier, sizeof vier);
  keten.open();
  EXPECT_EQ(lees("00000017"), "E 0");
  EXPECT_EQ(eti_hoogste_blok(), 999999);
}

TEST_F(Codes, CodesThatAreNotInternalAreForeign) {
  EXPECT_EQ(lees(maak(0, 30000001).c_str()), "E 0");  // above the highest label
  EXPECT_EQ(lees("8711234567891"), "E 0");
  std::string vreemd = "2027000000001";  // letter place 27
  while (!ean_goed(vreemd)) ++vreemd[1];
  EXPECT_EQ(lees(vreemd.c_str()), "E 0");
  std::string kapot = maak('M', 1000);
  kapot[12] = kapot[12] == '9' ? '0' : static_cast<char>(kapot[12] + 1);
  EXPECT_EQ(lees(kapot.c_str()), "E 0");
  EXPECT_EQ(lees(""), "niets");
  EXPECT_EQ(lees("   "), "niets");
}

TEST_F(Codes, AReservedPrefixTakesOnlyItsOwnNumbers) {
  const std::string een = maak('M', 1000), ander = maak('M', 1001);
  ASSERT_NE(een.substr(0, 4), ander.substr(0, 4));
  const auto voor = static_cast<uint16_t>(std::stoi(een.substr(0, 4)));
  Keten::sysrec_zet(2, &voor, sizeof voor);
  EXPECT_EQ(lees(een.c_str()), "E 0");
  EXPECT_EQ(lees(ander.c_str()), "M 1001");
}

TEST_F(Codes, ALetterWithDigits) {
  EXPECT_EQ(lees("M1000"), "M 1000");
  EXPECT_EQ(lees("O0007"), "O 7");
  EXPECT_EQ(lees("A999999999"), "A 999999999");
  EXPECT_EQ(lees("A1000000000"), "E 0");
  for (const char* fout : {"M", "B12", "M12x", "M-1", "M 1"}) EXPECT_EQ(lees(fout), "E 0") << fout;
}

TEST_F(Codes, SizeCodesRunFromAThousandAndWrap) {
  EXPECT_EQ(maatcode_nieuw(), 1000);
  EXPECT_EQ(maatcode_nieuw(), 1001);
  const uint32_t laatste = 9999998;
  Keten::sysrec_zet(5, &laatste, sizeof laatste);
  EXPECT_EQ(maatcode_nieuw(), 9999999);
  EXPECT_EQ(maatcode_nieuw(), 1000);
  uint32_t opgeslagen = 0;
  std::memcpy(&opgeslagen, Keten::sysrec(5).data(), 4);
  EXPECT_EQ(opgeslagen, 1000u);
}

}  // namespace
