// Dates, text, hidden names, the code page, numbers and money, files.
#include "isam/base.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <set>

#include "tests/support/bestand.h"
#include "tests/support/tijdelijk.h"

namespace {

namespace fs = std::filesystem;

std::string bewerkt(const char* tekst, auto werk) {
  char buffer[64];
  str_printf(buffer, sizeof buffer, "%s", tekst);
  werk(buffer);
  return buffer;
}

// Dates -------------------------------------------------------------------------------------------

TEST(Datum, NumbersAndTexts) {
  struct {
    const char* tekst;
    uint16_t nummer;
  } const rijen[] = {{"01011900", 1},   {"29021900", 60},   {"01011980", 29221}, {"311299", 36525},
                     {"010100", 36526}, {"290200", 36585},  {"010151", 18629},   {"311250", 55153},
                     {"050416", 42465}, {"04062079", 65535}};
  for (const auto& r : rijen) {
    EXPECT_TRUE(date_valid(r.tekst)) << r.tekst;
    EXPECT_EQ(date_number(r.tekst), r.nummer) << r.tekst;
  }
  for (const char* fout : {"", "0101", "310499", "290201", "001299", "011300", "01 199", "0101190a",
                           "010119000", "2902199"})
    EXPECT_EQ(date_number(fout), 0) << fout;
  EXPECT_EQ(date_number("31121899"), 0);
  EXPECT_EQ(date_number("05062079"), 0);  // past 16 bits
  EXPECT_EQ(date_number("01012100"), 0);
}

TEST(Datum, EveryNumberComesBackFromItsText) {
  for (int n = 1; n <= UINT16_MAX; ++n) {
    char tekst[9];
    date_text(tekst, static_cast<uint16_t>(n), true);
    ASSERT_EQ(date_number(tekst), n) << tekst;
  }
}

TEST(Datum, Shown) {
  char tekst[9];
  date_text(tekst, 36525, true);
  EXPECT_STREQ(tekst, "31121999");
  date_text(tekst, 36526, true);
  EXPECT_STREQ(tekst, "01012000");
  date_text(tekst, 0, false);
  EXPECT_STREQ(tekst, "      ");
  EXPECT_STREQ(date_show(42465), "05-04-16");
  EXPECT_STREQ(date_show_long(42465), "05-04-2016");
  EXPECT_STREQ(date_plain(42465), "050416");
  EXPECT_STREQ(time_show(13 * 3600 + 38 * 60 + 7), "13:38:07");
}

// Text --------------------------------------------------------------------------------------------

TEST(Tekst, EditedInPlace) {
  EXPECT_EQ(bewerkt("abcdef", [](char* t) { str_cut(t, 1, 2); }), "adef");
  EXPECT_EQ(bewerkt("abc", [](char* t) { str_cut(t, 1, 3); }), "abc");
  char staart[] = "abcdef";
  str_cut(staart, 0, 4);
  EXPECT_EQ(memcmp(staart, "ef\0\0\0\0", 7), 0);
  EXPECT_EQ(bewerkt("abc", [](char* t) { str_put(t, 'X', 3); }), "abcX");
  EXPECT_EQ(bewerkt("abc", [](char* t) { str_put(t, 'X', 4); }), "abc");
  EXPECT_EQ(bewerkt("abc", [](char* t) { str_ins(t, "12", 1); }), "a12bc");
  EXPECT_EQ(bewerkt("  a b  ", str_trim), "a b");
  EXPECT_EQ(bewerkt("   ", str_trim), "");
  EXPECT_EQ(str_chr('c', "abc"), 2);
  EXPECT_EQ(str_chr('x', "abc"), -1);
  EXPECT_EQ(str_pos("bc", "abc"), 1);
  EXPECT_GT(mem_cmp("\x80", "a", 1), 0);
  EXPECT_EQ(bewerkt("\\1B[0m\\\\x\\zz\\4", str_unescape), "\x1b[0m\\x\\zz\\4");
}

TEST(Tekst, UpperCaseOfTheCodePage) {
  EXPECT_EQ(bewerkt("az{\x82\x84\xA0\x91\x87\x9B", str_upper), "AZ{\x90\x8E\xB5\x92\x80\x9D");
  // Each change is from a small letter to the capital of the same letter.
  for (int c = 128; c < 256; ++c) {
    const uint8_t groot = chr_upper(static_cast<uint8_t>(c));
    EXPECT_EQ(chr_upper(groot), groot);
    if (groot == c) continue;
    const char32_t van = cp850_punt(static_cast<uint8_t>(c)), naar = cp850_punt(groot);
    EXPECT_EQ(van - naar, 32u) << c;  // Latin-1 letters lie 32 apart
  }
}

TEST(Tekst, CodePageToUtf8AndBack) {
  std::string alle;
  for (int c = 1; c < 256; ++c) alle += static_cast<char>(c);
  bool geheel = true;
  EXPECT_EQ(utf8_cp850(cp850_utf8(alle), &geheel), alle);
  EXPECT_TRUE(geheel);
  EXPECT_EQ(cp850_utf8("caf\x82 \xC4\xB3"), "caf\u00e9 \u2500\u2502");
  EXPECT_EQ(utf8_cp850("\u20ac 5", &geheel), "? 5");
  EXPECT_FALSE(geheel);
  EXPECT_EQ(utf8_cp850("a\xE9\xC3"), "a??");                 // cut short
  EXPECT_EQ(utf8_cp850("\xC0\xAF\xF0\x9F\x98\x80"), "???");  // overlong, and outside
}

// Hidden names ------------------------------------------------------------------------------------

TEST(Scramble, KnownBytes) {
  char tekst[16] = "";
  scramble_op(tekst, 94 * 7);
  EXPECT_STREQ(tekst, "\xA0");
  UNSCRAMBLE(tekst);
  EXPECT_STREQ(tekst, "");
  UNSCRAMBLE(tekst);
  EXPECT_STREQ(tekst, "");
  // Key 160: step 17, base 5. 'j' is 74 - 17 + 5 + 32 = 94, 'a' is 65 + 34 + 5 + 32 = 136.
  strcpy(tekst, "ja");
  scramble_op(tekst, 0);
  EXPECT_STREQ(tekst, "\x88\x5E\xA0");
}

TEST(Scramble, EverySecondHidesDifferentlyAndComesBack) {
  std::string plat;
  for (int c = 32; c <= 253; ++c) plat += static_cast<char>(c);
  std::set<std::string> vormen;
  for (int nu = 0; nu < 94; ++nu) {
    char tekst[300];
    strcpy(tekst, plat.c_str());
    scramble_op(tekst, 1447000000 + nu);
    EXPECT_EQ(strlen(tekst), plat.size() + 1);
    vormen.insert(tekst);
    UNSCRAMBLE(tekst);
    ASSERT_EQ(tekst, plat) << nu;
  }
  EXPECT_EQ(vormen.size(), 94u);
}

TEST(Scramble, OlderRangeAndFullField) {
  // Key 'A' (65): step 7, base 10, range 94. 'x' is 88 - 7 + 10 = 91, 'y' is 89 + 14 + 10 - 94
  // = 19.
  char oud[] =
      "\x33\x7B"
      "A";
  UNSCRAMBLE(oud);
  EXPECT_STREQ(oud, "xy");
  EXPECT_EQ(unscramble_veld("\x88\x5E\xA0zz", 3), "ja");
  EXPECT_EQ(unscramble_veld("\0\0\0", 3), "");
}

// Numbers -----------------------------------------------------------------------------------------

TEST(Getal, Pictures) {
  EXPECT_EQ(num_picture("9.999.999", 1234567), "1.234.567 ");
  EXPECT_EQ(num_picture("ZZZ.ZZ9,99", 1234.5), "  1.234,50 ");
  EXPECT_EQ(num_picture("ZZZ.ZZ9,99", -0.05), "      0,05-");
  EXPECT_EQ(num_picture("***.**9", 42), "*****42 ");
  EXPECT_EQ(num_picture("ZZZZ", 0), "     ");
  EXPECT_EQ(num_picture("999 999", 12345), "012 345 ");
  EXPECT_EQ(num_picture("", 5), " ");
}

TEST(Getal, Money) {
  EXPECT_EQ(money_show(-5, 8), "   -0.05");
  EXPECT_EQ(money_show(-99, 8), "   -0.99");
  EXPECT_EQ(money_show(-100, 8), "   -1.00");
  EXPECT_EQ(money_show(123456, 9), "  1234.56");
  EXPECT_EQ(money_show(INT32_MIN, 2), "-21474836.48");
  EXPECT_EQ(money_whole(150), 2);
  EXPECT_EQ(money_whole(-150), -2);
  EXPECT_EQ(money_whole(149), 1);
  geld_decimalen = 0;
  EXPECT_EQ(money_show(-5, 8), "      -5");
  EXPECT_EQ(money_whole(150), 150);
  geld_decimalen = 2;
}

TEST(Getal, Percentages) {
  EXPECT_EQ(percent_add(10000, 210), 12100);
  EXPECT_EQ(percent_add(3, 210), 4);
  EXPECT_EQ(percent_add(-3, 210), -4);
  EXPECT_EQ(percent_add(2000000000, 210), INT32_MAX);
  EXPECT_EQ(percent_strip(12100, 210), 10000);
  EXPECT_EQ(percent_strip(119, 190), 100);
  for (int32_t v : {2139999, 2140000, 2140001, 40000001, -12100, -119})
    EXPECT_NEAR(percent_strip(v, 210), v / 1.21, 0.51) << v;
}

TEST(Getal, CheckDigits) {
  EXPECT_TRUE(ean_goed("8711000000007"));
  EXPECT_TRUE(ean_goed("96385074"));
  EXPECT_FALSE(ean_goed("96385075"));
  EXPECT_FALSE(ean_goed("9638507x"));
  EXPECT_FALSE(ean_goed(""));
}

// Files -------------------------------------------------------------------------------------------

struct Bestand : testing::Test {
  TempDir map;
  InMap in{map.pad};
};

TEST_F(Bestand, CopyAndMove) {
  const std::string groot(100001, 'x');
  zet_bytes("a", groot);
  EXPECT_TRUE(file_copy("a", "b", 0));
  EXPECT_EQ(bytes_van("b"), groot);
  EXPECT_FALSE(file_copy("a", "b", -1));
  zet_bytes("c", "nog");
  EXPECT_TRUE(file_copy("c", "b", 1));
  EXPECT_EQ(bytes_van("b"), groot + "nog");
  EXPECT_TRUE(file_copy("c", "b", 0));
  EXPECT_EQ(bytes_van("b"), "nog");
  EXPECT_FALSE(file_copy("geen", "d", 0));
  EXPECT_FALSE(file_exists("d"));
  EXPECT_FALSE(file_copy("a", "./a", 0));
  EXPECT_EQ(file_size("a"), 100001);

  EXPECT_FALSE(file_move("a", "b", false));
  EXPECT_TRUE(file_move("a", "b", true));
  EXPECT_EQ(bytes_van("b"), groot);
  EXPECT_FALSE(file_exists("a"));
  EXPECT_TRUE(file_move("b", "b", true));
  EXPECT_TRUE(file_exists("b"));
  EXPECT_FALSE(file_move("geen", "b", true));
  EXPECT_TRUE(file_exists("b"));
  EXPECT_TRUE(file_delete("b"));
  EXPECT_TRUE(file_delete("b"));
  EXPECT_EQ(file_size("b"), -1);
}

TEST_F(Bestand, ReadOnlySourceAndFullTarget) {
  zet_bytes("a", "inhoud");
  chmod("a", 0440);
  EXPECT_TRUE(file_copy("a", "b", 0));
  EXPECT_EQ(bytes_van("b"), "inhoud");
  EXPECT_FALSE(file_copy("a", "/dev/full", 1));
  EXPECT_TRUE(file_exists("/dev/full"));
}

TEST_F(Bestand, FreshNames) {
  const std::string cijfers = str_format("%02d", getpid() % 100);
  EXPECT_EQ(file_temp("", "PR"), "PRAA" + cijfers);
  zet_bytes(("PRAA" + cijfers).c_str(), "");
  EXPECT_EQ(file_temp(nullptr, "PR"), "PRAB" + cijfers);
  EXPECT_STREQ(file_temp(".", "LANGER", -1207), "LANGAA07");
  for (char a = 'A'; a <= 'Z'; ++a)
    for (char b = 'A'; b <= 'Z'; ++b) zet_bytes(str_format("T%c%c99", a, b).c_str(), "");
  EXPECT_STREQ(file_temp("", "T", -99), "TAA00");
  EXPECT_STREQ(file_temp("geen map", "T"), "");
}

TEST_F(Bestand, Lines) {
  zet_bytes("t", "een\n\n1234\n123456\n1234567\nslot");
  FILE* f = fopen("t", "r");
  char regel[8];
  EXPECT_TRUE(file_line(f, regel, 8));
  EXPECT_STREQ(regel, "een");
  EXPECT_TRUE(file_line(f, regel, 8));
  EXPECT_STREQ(regel, "");
  EXPECT_TRUE(file_line(f, regel, 4));
  EXPECT_STREQ(regel, "123");  // the rest is gone
  EXPECT_TRUE(file_line(f, regel, 8));
  EXPECT_FALSE(file_line(f, regel, 8));
  EXPECT_STREQ(regel, "1234567");  // filled exactly
  EXPECT_TRUE(file_line(f, regel, 8));
  EXPECT_STREQ(regel, "slot");
  EXPECT_FALSE(file_line(f, regel, 8));
  fclose(f);
}

std::string wandel(const char* patroon, bool recursief = false) {
  std::string namen;
  EXPECT_NE(DIRECTORY('O', patroon, recursief), nullptr);
  while (const char* naam = DIRECTORY('N', nullptr, false)) namen += std::string(naam) + ' ';
  DIRECTORY('C', nullptr, false);
  return namen;
}

TEST_F(Bestand, WalkingADirectory) {
  for (const char* naam : {"KAS0103.SYS", "KAS0201.SYS", "KASMUT.TXT", ".verborgen", "DTSER.V07"})
    zet_bytes(naam, "");
  fs::create_directory("sub");
  zet_bytes("sub/KAS9.SYS", "");
  EXPECT_EQ(wandel("KAS*.SYS"), "KAS0103.SYS KAS0201.SYS ");
  EXPECT_EQ(wandel("DTSER.?0?"), "DTSER.V07 ");
  EXPECT_EQ(wandel("*.SYS", true), "KAS0103.SYS KAS0201.SYS sub/KAS9.SYS ");
  EXPECT_EQ(wandel("sub/*"), "sub/KAS9.SYS ");
  EXPECT_EQ(wandel("KAS%*2d%*2d.SYS"), "KAS0103.SYS KAS0201.SYS ");
  EXPECT_EQ(wandel("KAS%*d%s"), "");  // would store
  EXPECT_EQ(wandel("geen/*"), "");
}

TEST_F(Bestand, WalksNestThreeDeep) {
  zet_bytes("a", "");
  zet_bytes("b", "");
  for (int i = 0; i < 3; ++i) {
    EXPECT_NE(DIRECTORY('O', "*", false), nullptr);
    EXPECT_STREQ(DIRECTORY('N', nullptr, false), "a");
  }
  EXPECT_EQ(DIRECTORY('O', "*", false), nullptr);
  for (int i = 0; i < 3; ++i) {
    EXPECT_STREQ(DIRECTORY('N', nullptr, false), "b");
    DIRECTORY('C', nullptr, false);
  }
  EXPECT_EQ(DIRECTORY('N', nullptr, false), nullptr);
}

}  // namespace
