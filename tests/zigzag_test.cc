// Where the values of a report line go: columns kept, wide numbers on a second line.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "prt/zigzag.h"

namespace {

struct Regels {
  PrtFmt f;
  std::vector<std::string> uit;  // line 0 and line 1 of each pair handed over
  ZzUitslag laatste;

  Regels() {
    f.zigzag_on = true;
    EXPECT_TRUE(zz_begin(f));
  }
  ZzUit naar() {
    return {[](void* wie, std::string_view l0, std::string_view l1) {
              auto& regels = *static_cast<std::vector<std::string>*>(wie);
              regels.emplace_back(l0);
              regels.emplace_back(l1);
            },
            &uit};
  }
  template <class... A>
  Regels& druk(std::string_view fmt, const A&... a) {
    const Arg args[sizeof...(A) + 1] = {Arg(a)..., Arg(0)};
    laatste = zz_print(f, fmt, std::span<const Arg>(args, sizeof...(A)), naar());
    return *this;
  }
  std::string paar() { return f.line[0] + "|" + f.line[1]; }
};

template <class... A>
std::string paar(std::string_view fmt, const A&... a) {
  return Regels().druk(fmt, a...).paar();
}

}  // namespace

TEST(Zigzag, NumbersInARowStepDownRatherThanShift) {
  EXPECT_EQ(paar("%5d%5d", 123456, 7), "123456    7|           ");
  EXPECT_EQ(paar("%5d%5d", 1234, 123456), " 1234     |    123456");
  EXPECT_EQ(paar("%d%d", 1, 2), "1 | 2");
  EXPECT_EQ(paar("%05ld%03hu%04hu", 12, 3, 4), "00012   0004|     003    ");
  EXPECT_EQ(paar("%4d%4d%4d", 1234, 5678, 9012), "1234    9012|    5678    ");
  EXPECT_EQ(paar("%5d%9d%3d", 1, 2, 1234), "    1        2   |             1234");
  // Room enough on the left: the number grows into it and stays.
  EXPECT_EQ(paar("%-5d%3d", 1, 1234), "1   1234|        ");
  EXPECT_EQ(paar("%-5d%3d", 1, 1234567), "1       | 1234567");
}

TEST(Zigzag, TextBetweenNumbersTakesTheSecondLineAway) {
  EXPECT_EQ(paar("%5d %5d", 1234, 123456), " 1234123456|           ");
  EXPECT_EQ(paar("%5d %5d", 1234, 1234567), " 12341234567|            ");
  EXPECT_EQ(paar("Filiaal %2d    %4hu   %4hu stuks", 100, 12, 70000),
            "Filiaal100      12   4464 stuks|                               ");
  // Two numbers in a row behind a text may zigzag again.
  EXPECT_EQ(paar("a%3d%3d%3d", 100, 200, 300), "a100   300|    200   ");
  EXPECT_EQ(paar("%s%2d", "x", 345), "x345|    ");
  EXPECT_EQ(paar("%c%c%%", 'a', 'b'), "ab%|   ");
}

TEST(Zigzag, ACallGoesOnWhereTheOneBeforeStopped) {
  Regels r;
  r.druk("%4d", 1234).druk("%4d", 5678).druk("%4d", 9012);
  EXPECT_EQ(r.paar(), "1234    9012|    5678    ");
  r.druk("%-*d|", 6, 12);
  EXPECT_EQ(r.paar(), "1234    9012      ||    5678    12     ");
}

TEST(Zigzag, ConversionsCutTheirArgumentsToTheirWidth) {
  EXPECT_EQ(paar("%.9f", 0.1), "0.100000001|           ");
  EXPECT_EQ(paar("%.9lf", 0.1), "0.100000000|           ");
  EXPECT_EQ(paar("%ld", int64_t{1} << 32), "0| ");
  EXPECT_EQ(paar("%hd", 65537), "1| ");
  EXPECT_EQ(paar("%u", -1), "4294967295|          ");
  EXPECT_EQ(paar("%x", -1), "ffffffff|        ");
  EXPECT_EQ(paar("%5s|%-5s|%.2s", "ab", "cd", "efg"), "   ab|cd   |ef|              ");
}

TEST(Zigzag, ANewlineEndsThePairOnce) {
  Regels r;
  r.druk("ab\ncd\n\nef");
  EXPECT_EQ(r.uit, (std::vector<std::string>{"ab", "  ", "cd", "  ", "", ""}));
  EXPECT_EQ(r.paar(), "ef|  ");
  Regels s;
  s.druk("%4d%4d", 1234, 5678).druk("\r\n");
  EXPECT_EQ(s.uit, (std::vector<std::string>{"1234    \r", "    5678\r"}));
}

TEST(Zigzag, LinesGrowUpToTheirLimits) {
  Regels r;
  for (int i = 0; i < 10; ++i) r.druk("%s", std::string(340, 'x'));
  EXPECT_EQ(r.f.line[0].size(), 3400u);
  EXPECT_GE(r.f.buf_size, 3401);
  // One value never fills more than the format buffer.
  EXPECT_EQ(Regels().druk("%s", std::string(1000, 'y')).f.line[0].size(), 349u);
  EXPECT_EQ(Regels().druk("%*d", 1000000, 1).f.line[0].size(), 349u);

  Regels vol;
  vol.f.buf_max = 320;
  EXPECT_EQ(vol.druk("%319s", "").laatste.fout, ZzFout::geen);
  EXPECT_EQ(vol.druk("x").laatste.fout, ZzFout::maximum);
  EXPECT_EQ(vol.laatste.nodig, 321);
  Regels lang;
  while (lang.druk("%300s", "z").laatste.fout == ZzFout::geen)
    ASSERT_LE(lang.f.line[0].size(), 32000u);
  EXPECT_EQ(lang.laatste.fout, ZzFout::te_lang);
  EXPECT_EQ(Regels().druk("ab%y", 1).laatste.teken, 'y');
}

TEST(Zigzag, SettingsOfTheEnvironment) {
  PrtFmt f;
  EXPECT_EQ(zz_instellen(f, nullptr, nullptr, nullptr), "");
  EXPECT_EQ(f.fmt_size, 350);
  EXPECT_EQ(f.buf_size, 300);
  EXPECT_EQ(f.buf_max, 0);
  EXPECT_EQ(zz_instellen(f, "x", nullptr, nullptr), "Unknown Text in MMEINI");
  EXPECT_EQ(zz_instellen(f, nullptr, "", nullptr), "Unknown Text in SYSBUF");
  EXPECT_EQ(zz_instellen(f, nullptr, "32001", nullptr), "SYSBUF IS > 32000");
  EXPECT_EQ(zz_instellen(f, nullptr, nullptr, "abc"), "Unknown Text in MAXSYSBUF");
  EXPECT_EQ(zz_instellen(f, nullptr, nullptr, "40000"), "MAXSYSBUF IS > 32000");
  EXPECT_EQ(zz_instellen(f, nullptr, nullptr, "299"),
            "MAXSYSBUF < DEFAULT SYSBUF -> MAXSYSBUF > 300");
  EXPECT_EQ(zz_instellen(f, nullptr, "500", "400"), "MAXSYSBUF < SYSBUF --> MAXSYSBUF > SYSBUF");
  EXPECT_EQ(zz_instellen(f, "100", "132", "200"), "");
  EXPECT_EQ(f.fmt_size, 100);
  EXPECT_EQ(f.buf_size, 132);
  EXPECT_EQ(f.buf_max, 200);
}

// Formats from nowhere: both lines stay equally long, and nothing is lost past a fault.
TEST(Zigzag, AnyFormatAtAll) {
  const unsigned zaad = 20251122;
  SCOPED_TRACE(zaad);
  std::mt19937 gen(zaad);
  const std::string tekens = "%%%%%%0123456789.*-+ #hlLsdiouxXefgEGcab\n\r\fq";
  for (int ronde = 0; ronde < 20000; ++ronde) {
    Regels r;
    for (int deel = 0; deel < 3; ++deel) {
      std::string fmt;
      for (auto n = gen() % 24; n > 0; --n) fmt += tekens[gen() % tekens.size()];
      r.druk(fmt, static_cast<int>(gen()), 1e300, "tekst\nmeer", 'c', -7, "x");
      ASSERT_EQ(r.f.line[0].size(), r.f.line[1].size()) << fmt;
      ASSERT_EQ(r.f.last_pos + 1, static_cast<int>(r.f.line[0].size())) << fmt;
      ASSERT_EQ(r.f.line[0].find('\n'), std::string::npos) << fmt;
    }
  }
}
