// The order document as text: whole pages of each kind, split and not, and where pages end.
#include <map>
#include <numeric>
#include <regex>
#include <sstream>

#include "isam/base.h"
#include "main/iofil.h"
#include "main/opdruk_in.h"
#include "main/saldo.h"
#include "main/saldo_pas.h"
#include "main/verzamel.h"
#include "prt/prt.h"
#include "tests/support/rapport.h"
#include "tests/support/stukken.h"

namespace {

constexpr Serienr BLOUSE{10100, 10, 1}, BROEK{10200, 310, 4}, BREED{10300, 5, 2};

void maatsoort(uint8_t nummer, int aantal) {
  DtMaat rec{};
  rec.land = 1;
  rec.maatsoort = nummer;
  // Position from the end: the bar is not in the order of the indexes.
  for (int i = 1; i <= aantal; ++i) proef_maat(rec, i, str_format("%3d", 30 + i), aantal + 1 - i);
  Keten::voeg(dtmaat, rec);
}

struct Opdruk : ::testing::Test {
  Keten keten{120};

  void SetUp() override {
    keten.open();
    proef_opdrachten();
    maatsoort(1, 4);
    maatsoort(2, 40);
    serie(BLOUSE, 1, "A1");
    serie(BROEK, 1, "B22222");
    serie(BREED, 2, "");
    proef_namen(BLOUSE.artgroep, "Blouses korte mouw");
    str_printf(prt_links, sizeof prt_links, "%s", "De Ketting BV");
  }
  void TearDown() override {
    iofil('C', 0, nullptr);
    prt_links[0] = 0;
  }

  static void serie(const Serienr& nr, uint8_t soort, const char* locatie) {
    DtSer rec = Keten::serie(nr, soort, 5);
    veld_zet(rec.model, sizeof rec.model, "Model-15-tekens");
    veld_zet(rec.omschrijving, sizeof rec.omschrijving, "omschrijving serie");
    veld_zet(rec.materiaal, sizeof rec.materiaal, "katoen");
    veld_zet(rec.dessin, sizeof rec.dessin, "streep");
    veld_zet(rec.kenmerk, sizeof rec.kenmerk, "KM");
    veld_zet(rec.locatie, sizeof rec.locatie, locatie);
    rec.adviesprijs = 123495;
    Keten::voeg(dtser, rec);
  }
  /// The document of the lines that there are, with one date and time for all days.
  static std::string document(OpdrachtSoort soort, int bladregels = 64) {
    verzamel_maak(privaat.tp, saldo_sort, saldo_splits);
    saldo_pass(static_cast<int>(soort));
    return druk(soort, bladregels);
  }
  static std::string druk(OpdrachtSoort soort, int bladregels) {
    std::string tekst = rapport([soort] { opdruk_druk(soort); }, bladregels);
    tekst = std::regex_replace(tekst, std::regex("-{132}"), "=132=");
    tekst = std::regex_replace(tekst, std::regex("\f"), "=blad=\n");
    return std::regex_replace(tekst, std::regex(" +\n"), "\n");
  }
  static int koppen(const std::string& tekst) {
    int n = 0;
    for (size_t p = 0; (p = tekst.find("VERZAMELOPDRACHT", p)) != std::string::npos; ++p) ++n;
    return n;
  }
};

/// The lines behind the page head, from the first with this text.
std::string vanaf(const std::string& tekst, const char* woord) {
  const size_t p = tekst.find(woord);
  return p == std::string::npos ? "not there: " + tekst : tekst.substr(p);
}

TEST_F(Opdruk, ProvisionalPerPairAndABranchOfThreeDigits) {
  proef_regel(0, 3, BLOUSE, {{1, 2}, {4, 11}});
  proef_regel(0, 100, BROEK, {{2, 1}});
  EXPECT_EQ(
      document(OpdrachtSoort::voorlopig),
      R"(De Ketting BV                           VERZAMELOPDRACHT FILIAAL 0 (voorlopig)                            DD-MM-JJJJ UU:MM blad:   1

Van   0  Filiaal 0
Voor  3  Filiaal 3

serie merk            omschrijving          locatie        maatspecificatie
      model           materiaal    dessin     advpr fn tot maataantallen
=132=
10100.10.1            Blouses korte mouw     A1         KM   34  33  32  31
      wit             omschrijving serie    1234.95  3  13   11           2
      DUIN    5       Duinroos
      Model-15-tekens katoen       streep

=132=
VOOR FILIAAL  3  Filiaal 3                        TOT   13
=blad=
De Ketting BV                           VERZAMELOPDRACHT FILIAAL 0 (voorlopig)                            DD-MM-JJJJ UU:MM blad:   2

Van   0  Filiaal 0
Voor100  Filiaal 100

serie merk            omschrijving          locatie        maatspecificatie
      model           materiaal    dessin     advpr fn tot maataantallen
=132=
10200.310.4                                  B22222     KM   34  33  32  31
                      omschrijving serie    1234.95      1            1
                                                   100
      DUIN    5       Duinroos
      Model-15-tekens katoen       streep

=132=
VOOR FILIAAL100  Filiaal 100                      TOT    1
)");
}

TEST_F(Opdruk, DefinitiveForAllReceivers) {
  saldo_splits = false;
  proef_regel(2, 3, BLOUSE, {{1, 2}, {4, 1234}});
  proef_regel(2, 11, BLOUSE, {{3, 1}});
  EXPECT_EQ(
      vanaf(document(OpdrachtSoort::nieuw), "serie merk"),
      R"(serie merk            omschrijving          locatie        maatspecificatie                                     Opdrachtnr: 20000011
      model           materiaal    dessin     advpr fn tot maataantallen
=132=
10100.10.1            Blouses korte mouw     A1         KM   34  33  32  31
      wit             omschrijving serie    1234.95  3     1234           2
                                                      1236
      DUIN    5       Duinroos                      11   1        1
      Model-15-tekens katoen       streep

                                             Totaal   1237 1234   1       2
)");
}

TEST_F(Opdruk, AnOrderAgainRunsOnOverItsSeries) {
  saldo_opdrachtnr = 20000011;
  proef_regel(2, 3, BLOUSE, {{1, 2}}, 20000011);
  proef_regel(2, 3, BROEK, {{4, 7}}, 20000011);
  proef_regel(2, 3, BREED, {{4, 9}}, 20000028);
  proef_regel(2, 3, BREED, {{4, 9}});
  EXPECT_EQ(
      vanaf(document(OpdrachtSoort::bestaand), "serie merk"),
      R"(serie merk            omschrijving          locatie        maatspecificatie                          Opdrachtnr: 20000011 (herhaald)
      model           materiaal    dessin     advpr fn tot maataantallen                             Printdatum: 03-02-2026
=132=
10100.10.1            Blouses korte mouw     A1         KM   34  33  32  31
      wit             omschrijving serie    1234.95  3   2                2
      DUIN    5       Duinroos
      Model-15-tekens katoen       streep

10200.310.4                                  B22222     KM   34  33  32  31
                      omschrijving serie    1234.95  3   7    7
      DUIN    5       Duinroos
      Model-15-tekens katoen       streep

=132=
VOOR FILIAAL  3  Filiaal 3                        TOT    9
)");
}

TEST_F(Opdruk, WideSizeBarsGoInStepsOfEighteen) {
  proef_regel(0, 3, BREED, {{40, 6}, {4, 11}, {1, 2}});
  proef_regel(0, 4, BREED, {{1, 1}});
  saldo_splits = false;
  EXPECT_EQ(
      vanaf(document(OpdrachtSoort::voorlopig), "10300.5"),
      R"(10300.5.2                                               KM   70  69  68  67  66  65  64  63  62  61  60  59  58  57  56  55  54  53
                      omschrijving serie    1234.95  3  19    6
      DUIN    5       Duinroos                       4   1
      Model-15-tekens katoen       streep               KM   52  51  50  49  48  47  46  45  44  43  42  41  40  39  38  37  36  35
                                                     3
                                                     4
                                                        KM   34  33  32  31
                                                     3       11           2
                                                     4                    1
                                                        KM   70  69  68  67  66  65  64  63  62  61  60  59  58  57  56  55  54  53
                                             Totaal     20    6
                                                        KM   52  51  50  49  48  47  46  45  44  43  42  41  40  39  38  37  36  35

                                                        KM   34  33  32  31
                                                             11           3
)");
}

TEST_F(Opdruk, SeriesStandInThePrintOrder) {
  for (const Serienr& nr : {BLOUSE, BROEK, BREED}) proef_regel(0, 3, nr, {{1, 1}});
  const auto volgorde = [](const char* letters) {
    str_printf(saldo_sort, sizeof saldo_sort, "%s", letters);
    const std::string tekst = document(OpdrachtSoort::voorlopig);
    std::map<size_t, std::string> plaats;
    for (const char* nr : {"10100.10.1", "10200.310.4", "10300.5.2"}) plaats[tekst.find(nr)] = nr;
    std::string uit;
    for (const auto& [p, nr] : plaats) uit += nr.substr(0, 3) + " ";
    return uit;
  };
  EXPECT_EQ(volgorde("AKV"), "101 102 103 ");
  EXPECT_EQ(volgorde("LAKV"), "103 101 102 ");
  DtSer ander = proef_serie(BLOUSE);
  veld_zet(ander.model, sizeof ander.model, "Zomer");
  Keten::voeg(dtser, ander);
  EXPECT_EQ(volgorde("RMAKV"), "102 103 101 ");
}

/// The head takes eight lines, a series five, the foot of a pair two.
TEST_F(Opdruk, FiveLinesStayTogether) {
  proef_regel(0, 3, BLOUSE, {{1, 2}});
  proef_regel(0, 3, BROEK, {{1, 2}});
  const auto kop_voor = [](int bladregels, const char* woord) {
    const std::string tekst = document(OpdrachtSoort::voorlopig, bladregels);
    const size_t tweede = tekst.find("VERZAMELOPDRACHT", tekst.find("VERZAMELOPDRACHT") + 1);
    const size_t plaats = tekst.find(woord);
    return tweede != std::string::npos && tweede < plaats;
  };
  EXPECT_EQ(koppen(document(OpdrachtSoort::voorlopig, 20)), 1);
  EXPECT_FALSE(kop_voor(19, "10200.310.4"));
  EXPECT_TRUE(kop_voor(19, "VOOR FILIAAL"));
  EXPECT_FALSE(kop_voor(18, "10200.310.4"));
  EXPECT_TRUE(kop_voor(17, "10200.310.4"));
  EXPECT_EQ(koppen(document(OpdrachtSoort::voorlopig, 17)), 2);
}

TEST_F(Opdruk, NoPageIsLongerThanItsPaper) {
  for (int naar = 1; naar < 4; ++naar) {
    proef_regel(0, naar, BREED, {{40, 6}, {4, 11}, {1, 2}});
    proef_regel(0, naar, BLOUSE, {{1, 1}});
  }
  for (const int zonder_bladen : {0, 9999})
    EXPECT_EQ(koppen(document(OpdrachtSoort::voorlopig, zonder_bladen)), 3) << "one a pair";
  saldo_splits = false;
  for (int bladregels = 10; bladregels < 40; ++bladregels) {
    const std::string tekst = document(OpdrachtSoort::voorlopig, bladregels);
    std::istringstream in(tekst);
    int regels = 0, bladen = 1;
    for (std::string r; std::getline(in, r);) {
      bladen += r == "=blad=";
      regels = r == "=blad=" ? 0 : regels + 1;
      EXPECT_LE(regels, bladregels);
    }
    EXPECT_EQ(koppen(tekst), bladen);
  }
}

TEST_F(Opdruk, ManyReceiversGoOverSeveralPagesWithTheirSizes) {
  saldo_splits = false;
  for (int naar = 1; naar < 120; ++naar) proef_regel(0, naar, BLOUSE, {{1, 1}});
  const std::string tekst = document(OpdrachtSoort::voorlopig, 30);
  std::vector<int> filialen_gezien;
  std::istringstream in(tekst);
  int regels = 0;
  for (std::string r; std::getline(in, r);) {
    if (r == "=blad=") continue;
    regels = r.find("blad:") != std::string::npos ? 1 : regels + 1;
    if (regels == 6) {
      EXPECT_NE(r.find("KM   34  33  32  31"), std::string::npos) << r;
    }
    // A number of three digits may have stepped down from the line with the price.
    const std::string nummer = r.size() > 53 ? r.substr(51, 3) : "";
    if (nummer.find_first_of("0123456789") != std::string::npos && r.find("Totaal") > r.size())
      filialen_gezien.push_back(atoi(nummer.c_str()));
  }
  EXPECT_GT(koppen(tekst), 4);
  std::vector<int> alle(119);
  std::iota(alle.begin(), alle.end(), 1);
  EXPECT_EQ(filialen_gezien, alle);
  EXPECT_NE(tekst.find("Totaal    119"), std::string::npos);
}

/// Lines of which the series, its size type or the branches are not there.
TEST_F(Opdruk, WhatCannotBeReadIsLeftBlank) {
  DtSer zonder = proef_serie(BROEK);
  for (const int soort : {9, 0}) {
    zonder.maatsoort = static_cast<uint8_t>(soort);
    Keten::voeg(dtser, zonder);
    IXINIT(dtpick);
    proef_regel(0, 3, BROEK, {{1, 2}, {95, 3}});
    EXPECT_EQ(vanaf(document(OpdrachtSoort::voorlopig), "10200.310"),
              R"(10200.310.4                                  B22222     KM
                      omschrijving serie    1234.95  3   5    2   3
      DUIN    5       Duinroos
      Model-15-tekens katoen       streep

=132=
VOOR FILIAAL  3  Filiaal 3                        TOT    5
)");
    EXPECT_NE(rapport([] { saldo_druk(); }).find("Filiaal  3       0      5 stuks"),
              std::string::npos);
  }
  IXINIT(dtpick);
  proef_regel(255, 250, BLOUSE, {{1, 2}});
  const std::string vreemd = document(OpdrachtSoort::voorlopig);
  EXPECT_NE(vreemd.find("10100.10.1"), std::string::npos) << vreemd;

  IXINIT(dtpick);
  proef_regel(0, 3, BLOUSE, {{1, 2}});
  verzamel_maak(privaat.tp, saldo_sort, saldo_splits);
  saldo_pass(1);
  proef_weg(dtser, proef_serie(BLOUSE));
  EXPECT_EQ(vanaf(druk(OpdrachtSoort::voorlopig, 64), "10100.10.1"),
            R"(10100.10.1            Blouses korte mouw     A1
      wit                                            3   2    2
      DUIN
      Model-15-tekens

=132=
VOOR FILIAAL  3  Filiaal 3                        TOT    2
)");
}

}  // namespace
