// Tables of the field formats: what is read, what is refused, which limits follow.
#include "scr/veld_formaat.h"

#include <cmath>
#include <string>

#include "isam/base.h"
#include "scr/veld_intern.h"

namespace {

VeldFormaat goed(const char* formaat, int geld = 2) {
  VeldFormaat f;
  EXPECT_EQ(veld_ontleed(formaat, geld, f), VeldFout::geen) << formaat;
  return f;
}

std::string tekens(const char* formaat, std::string_view vooraf = {}) {
  uint8_t bits[64] = {};
  for (const char c : vooraf)
    bits[static_cast<unsigned char>(c) / 8] |= static_cast<uint8_t>(1u << (c % 8));
  veld_tekens(goed(formaat), 'J', 'N', bits);
  std::string uit;
  for (int code = 0; code < 512; ++code) {
    if (bits[code / 8] >> (code % 8) & 1) uit += static_cast<char>(code);
  }
  return uit;
}

TEST(VeldFormaat, ReadsEveryPart) {
  const struct {
    const char* formaat;
    int lengte, precisie;
    char letter;
    const char *tekens, *opties;
  } rijen[] = {
      {"5l,EZP", 5, 0, 'l', "", "EZP"},
      {"c,AIU", 1, 0, 'c', "", "AIU"},
      {"0c", 1, 0, 'c', "", ""},
      {"6.2f,EJNPZ", 6, 2, 'f', "", "EJNPZ"},
      {" 5l ", 5, 0, 'l', "", "NZP"},
      {"5l,E", 5, 0, 'l', "", "ENZP"},
      {"8B,JEP", 8, 2, 'B', "", "JEP"},
      {"D, ", 6, 0, 'D', "", ""},
      {"7D,I", 6, 0, 'D', "", "I"},
      {"8D", 8, 0, 'D', "", ""},
      {"10D,E", 10, 0, 'D', "", "E"},
      {"b,/E", 1, 0, 'b', "", "EU"},
      {"3b", 1, 0, 'b', "", "UE"},
      {"1c[1234],IEA", 1, 0, 'c', "1234", "IEA"},
      {"1c[^.,]", 1, 0, 'c', ".,", ""},
      {"255.60C[0123456789-.,],I", 255, 60, 'C', "0123456789-.,", "I"},
      {"4x,U", 4, 0, 'x', "", "U"},
      {"8.4X", 8, 4, 'X', "", "U"},
      {"3lZP", 3, 0, 'l', "", "ZP"},  // the comma may be left out
  };
  for (const auto& rij : rijen) {
    SCOPED_TRACE(rij.formaat);
    const VeldFormaat f = goed(rij.formaat);
    EXPECT_EQ(f.lengte, rij.lengte);
    EXPECT_EQ(f.precisie, rij.precisie);
    EXPECT_EQ(f.letter, rij.letter);
    EXPECT_EQ(f.tekens, rij.tekens);
    EXPECT_STREQ(f.opties, rij.opties);
  }
  EXPECT_EQ(goed("8B,P", 0).precisie, 0);
  EXPECT_TRUE(goed("1c[^.,]").reeks_niet);
  EXPECT_FALSE(goed("1c[.^]").reeks_niet);
  EXPECT_TRUE(goed("1c[]").reeks);
}

TEST(VeldFormaat, RefusesWhatNoFieldCanBe) {
  const struct {
    const char* formaat;
    VeldFout fout;
  } rijen[] = {
      {"256c", VeldFout::lengte},   {"99999999999999999999l", VeldFout::lengte},
      {"5.2l", VeldFout::precisie}, {"5.2c", VeldFout::precisie},
      {"5.2B", VeldFout::precisie}, {"5.0s", VeldFout::precisie},
      {"", VeldFout::vartype},      {"5", VeldFout::vartype},
      {"5q", VeldFout::vartype},    {"5.2", VeldFout::vartype},
      {"1c[abc", VeldFout::haak},   {"1c[", VeldFout::haak},
  };
  for (const auto& rij : rijen) {
    VeldFormaat f;
    EXPECT_EQ(veld_ontleed(rij.formaat, 2, f), rij.fout) << rij.formaat;
  }
}

TEST(VeldFormaat, LimitsFollowLetterLengthAndOptions) {
  const struct {
    const char* formaat;
    double min, max;
  } rijen[] = {
      {"5l", -9999, 99999},
      {"5l,P", 1, 99999},
      {"5l,ZP", 0, 99999},
      {"5l,N", -9999, -1},
      {"5l,NP", -9999, 99999},
      {"1l", 0, 9},
      {"12l", -2147483647.0, 2147483647.0},
      {"9d", -32768, 32767},
      {"9u", 0, 65535},
      {"9n", -128, 127},
      {"9U", 0, 255},
      {"6.2f", -99.99, 999.99},
      {"6.2f,P", 0.01, 999.99},
      {"8.4f,EP", 0.0001, 999.9999},
      {"8B,JEP", 0.01, 99999.99},
      {"20B,NZP", -21474836.47, 21474836.47},
      {"2.2f,ZP", 0, 99},
      {"8D", 29221, 55153},
      {"D", 29221, 55153},
      {"10D", 1, date_number("31122078") * 1.0},
  };
  for (const auto& rij : rijen) {
    const VeldGrenzen g = veld_grenzen(goed(rij.formaat), 2);
    EXPECT_DOUBLE_EQ(g.min, rij.min) << rij.formaat;
    EXPECT_DOUBLE_EQ(g.max, rij.max) << rij.formaat;
  }
  EXPECT_DOUBLE_EQ(veld_grenzen(goed("20B", 0), 0).max, 2147483647.0);
}

TEST(VeldFormaat, RangeOfTheCallerIsHeldInsideTheLimits) {
  const struct {
    const char* formaat;
    double min, max;
    bool goed;
    double wordt_min, wordt_max;
  } rijen[] = {
      {"5l,P", 0, -1, true, 1, 99999},      // nothing given
      {"5l,P", 0, 250, true, 1, 250},       // only a maximum: the minimum is raised
      {"5l,P", 10, -1, true, 10, 99999},    // only a minimum
      {"3d,P", 5000, -1, true, 5000, 999},  // a field that accepts nothing, but no fault
      {"3d,P", 5000, 6000, false, 0, 0},
      {"5l,NZP", -5, 5, true, -5, 5},
      {"D", 0, 0, true, 0, 0},  // any date
      {"D", 40000, 65534, true, 40000, 55153},
      {"D", 0, 40000, true, 29221, 40000},
      {"5l,P", 0, 0, false, 0, 0},
  };
  for (const auto& rij : rijen) {
    const VeldFormaat f = goed(rij.formaat);
    double min = rij.min, max = rij.max;
    SCOPED_TRACE(std::string(rij.formaat) + " " + std::to_string(rij.min));
    ASSERT_EQ(veld_bereik(f, veld_grenzen(f, 2), min, max), rij.goed);
    if (!rij.goed) continue;
    EXPECT_EQ(min, rij.wordt_min);
    EXPECT_EQ(max, rij.wordt_max);
  }
}

TEST(VeldFormaat, CharactersThatAreAccepted) {
  EXPECT_EQ(tekens("5l"), "0123456789");
  EXPECT_EQ(tekens("5.0f"), "0123456789");
  EXPECT_EQ(tekens("5.1f"), ",.0123456789");
  EXPECT_EQ(tekens("b"), "+-JN");
  EXPECT_EQ(tekens("4x"), "0123456789ABCDEF");
  EXPECT_EQ(tekens("5l[12]"), "12");
  EXPECT_EQ(tekens("1c[ba]", "?"), "ab");  // a set rules out what a caller allowed
  EXPECT_EQ(tekens("5l", "?"), "0123456789?");
  EXPECT_EQ(tekens("5l[^12]"), "03456789");
  EXPECT_EQ(tekens("9c").size(), 223u);
  EXPECT_EQ(tekens("9c").find('\xff'), std::string::npos);
  EXPECT_EQ(tekens("9c[\x82]"), "\x82");
}

TEST(VeldControle, NumbersAsTyped) {
  const struct {
    const char* tekst;
    double waarde;
    int decimalen;
  } rijen[] = {
      {"12", 12, 0},   {"12-", -12, 0},   {"-12", -12, 0},  {"  12", 12, 0},
      {"1,5", 1.5, 1}, {"1.25", 1.25, 2}, {",5-", -0.5, 1}, {"0-", 0, 0},
      {"-", 0, 0},     {"1,2,3", 1.2, 3}, {"1e999", 0, 0},
  };
  for (const auto& rij : rijen) {
    const GetalTekst g = getal_uit_tekst(rij.tekst);
    EXPECT_DOUBLE_EQ(g.waarde, rij.waarde) << rij.tekst;
    EXPECT_FALSE(std::signbit(g.waarde) && g.waarde == 0.0) << rij.tekst;
    EXPECT_EQ(g.decimalen, rij.decimalen) << rij.tekst;
  }
}

TEST(VeldControle, DatesAreRepairedAndTakeTheirSeparators) {
  EXPECT_EQ(datum_gerepareerd(" 1 226"), "010226");
  EXPECT_EQ(datum_gerepareerd("1 2 26"), "010226");
  EXPECT_EQ(datum_gerepareerd("_1__26"), "01__26");
  EXPECT_EQ(datum_gerepareerd("1"), "1");
  EXPECT_EQ(datum_met_streep("01022026"), "01-02-2026");
  EXPECT_EQ(datum_met_streep("01"), "01");
  EXPECT_EQ(datum_met_streep("010"), "01-0");
  EXPECT_EQ(datum_zonder_streep("01-02-26"), "010226");
  EXPECT_EQ(datum_zonder_streep("+1-2"), "+12");
  EXPECT_EQ(datum_zonder_streep("-7"), "-7");
}

TEST(VeldHulp, ComposedCharacters) {
  EXPECT_EQ(compose_code("e'"), 130);
  EXPECT_EQ(compose_code("E'"), 144);
  EXPECT_EQ(compose_code("3/4"), 243);
  EXPECT_EQ(compose_code("gr"), 248);
  EXPECT_EQ(compose_code("130"), 130);
  EXPECT_EQ(compose_code("e"), 0);
  EXPECT_EQ(compose_code("zz"), 0);
  EXPECT_EQ(compose_code(""), 0);
}

}  // namespace
