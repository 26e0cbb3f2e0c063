// Formatting with typed arguments: what C's printf prints, and no harm where the arguments do not
// fit the format.
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include "isam/formaat.h"

namespace {

std::string van_c(const char* formaat, auto... a) {
  char buffer[512];
  snprintf(buffer, sizeof buffer, formaat, a...);
  return buffer;
}

TEST(Formaat, PrintsWhatPrintfPrints) {
  for (const char* f : {"%d", "%5d|", "%-5d|", "%05d", "%+d", "% d", "%.3d", "%8.3d|", "%x", "%#X",
                        "%o", "%u", "%i", "100%% %d"})
    for (const int v : {0, 7, -7, 123456, INT_MAX, INT_MIN})
      EXPECT_EQ(str_format(f, v), van_c(f, v)) << f;
  for (const char* f : {"%f", "%8.2f|", "%-10.1f|", "%010.2f", "%e", "%g", "%G", "%.0f", "%#.0f"})
    for (const double v : {0.0, -1.5, 12345.678, 1e300, -0.004})
      EXPECT_EQ(str_format(f, v), van_c(f, v)) << f;
  for (const char* f : {"%s|", "%8s|", "%-8s|", "%.3s|", "%-6.2s|", "%6.0s|"})
    for (const char* v : {"", "ab", "abcdefghij"}) EXPECT_EQ(str_format(f, v), van_c(f, v)) << f;
  EXPECT_EQ(str_format("%-*.*s|%*d", 6, 2, "abc", -4, 5), van_c("%-*.*s|%*d", 6, 2, "abc", -4, 5));
  EXPECT_EQ(str_format("%c%3c|", 'a', 66), "a  B|");
}

// Formats say "%ld" and "%hu" for 32-bit and 16-bit fields.
TEST(Formaat, WidthsOfFields) {
  EXPECT_EQ(str_format("%ld.%hu.%hu", uint32_t{12345}, uint16_t{7}, uint16_t{1}), "12345.7.1");
  EXPECT_EQ(str_format("%4hu stuks", 65536 + 12), "  12 stuks");
  EXPECT_EQ(str_format("%hd", 40000), "-25536");
  EXPECT_EQ(str_format("%ld", uint32_t{0xFFFFFFFF}), "-1");
  EXPECT_EQ(str_format("%lu %x", int32_t{-1}, int8_t{-1}), "4294967295 ffffffff");
  EXPECT_EQ(str_format("%ld", int64_t{5000000000}), "5000000000");
}

TEST(Formaat, NeverReadsPastAField) {
  const char vol[4] = {'a', 'b', 'c', 'd'};
  EXPECT_EQ(str_format("%.4s", static_cast<const char*>(vol)), "abcd");
  EXPECT_EQ(str_format("%s", std::string_view(vol, 4)), "abcd");
  EXPECT_EQ(str_format("[%s]", std::string_view("ab\0\0", 4)), "[ab]");
  EXPECT_EQ(str_format("%s", static_cast<const char*>(nullptr)), "");
}

// A catalogue is a file that anybody may edit.
TEST(Formaat, FormatThatDoesNotFitItsArguments) {
  EXPECT_EQ(str_format("%s: %d %s", "een"), "een:  ");
  EXPECT_EQ(str_format("%d", "tekst"), "0");
  EXPECT_EQ(str_format("%f", "tekst"), "0.000000");
  EXPECT_EQ(str_format("%s %s", 12, 2.5), "12 2.5");
  EXPECT_EQ(str_format("%*d|", 5), "|");
  EXPECT_EQ(str_format("100% %y %", 1), "100% %y %");
  EXPECT_EQ(str_format("%n%p", 1), "%n%p");
  EXPECT_EQ(str_format("%d", std::nan("")), "0");
  EXPECT_LE(str_format("%999999999d%.999999999f", 1, 1.0).size(), 70000u);
}

TEST(Formaat, BufferIsAlwaysTerminatedAndCut) {
  char klein[5];
  memset(klein, 'x', sizeof klein);
  EXPECT_EQ(str_printf(klein, sizeof klein, "%s", "abcdefgh"), 4u);
  EXPECT_STREQ(klein, "abcd");
  EXPECT_EQ(str_printf(klein, 0, "%s", "x"), 0u);
  EXPECT_STREQ(klein, "abcd");
}

TEST(Formaat, PiecesOfAFormat) {
  std::string_view rest = "ab%%c%-5.2lf%hu%";
  std::string gezien;
  Conversie stuk;
  while (formaat_volgende(rest, stuk)) {
    gezien += '<' + std::string(stuk.tekst) + '>';
    if (stuk.letter != 0) gezien += stuk.letter;
    if (stuk.voor != 0) gezien += stuk.voor;
  }
  EXPECT_EQ(gezien, "<ab><%><c><%-5.2lf>fl<%hu>uh<%>");
}

TEST(Formaat, AnyBytesAreAFormat) {
  std::mt19937 kans(4711);
  const std::string_view tekens = "%%%%-+ #0*.123hlLdsfcxgz&";
  for (int i = 0; i < 20000; ++i) {
    std::string formaat;
    for (auto n = kans() % 12; n > 0; --n) formaat += tekens[kans() % tekens.size()];
    EXPECT_LT(str_format(formaat.c_str(), -3, "tekst", 2.5, 'x', 123u).size(), 100000u) << formaat;
  }
}

}  // namespace
