// The advice reports as text, without a screen.
#include "sub/adv_druk.h"

#include <sstream>

#include "prt/prt.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_vul.h"
#include "sub/pghdl.h"
#include "tests/support/adv_keten.h"
#include "tests/support/rapport.h"

namespace {

struct Druk : AdvKeten {
  uint8_t alle[32];
  void SetUp() override {
    AdvKeten::SetUp();
    keten.open();
    iofil('O', 0, &filiaal_rec);
    werktabellen_open();
    adv_rec = adv_standaard();
    pg_fill(alle);
  }
  void TearDown() override {
    werktabellen_sluit();
    iofil('C', 0, nullptr);
  }
  static std::string advies(bool (*doe)(), int regels = 64) {
    const AdvOpen open;
    return rapport(doe, regels);
  }
  /// The lines behind the first rule, blanks at their ends cut.
  static std::string lijst(const std::string& tekst) {
    const size_t streep = tekst.find(std::string(132, '-') + "\n");
    std::istringstream in(streep == std::string::npos ? tekst : tekst.substr(streep + 133));
    std::string uit;
    for (std::string regel; std::getline(in, regel);) {
      while (!regel.empty() && regel.back() == ' ') regel.pop_back();
      uit += regel + "\n";
    }
    return uit;
  }
};

TEST_F(Druk, ABlockOfASeriesHasALineForEachBranchThatGetsOrGives) {
  for (const int maat : {1, 2, 2, 2}) stuk(ROK, ETI_VOORRAAD, static_cast<uint8_t>(maat), 0);
  stuk(ROK, ETI_VOORRAAD, 3, 3);
  for (const int maat : {1, 1, 2}) verkocht(ROK, static_cast<uint8_t>(maat), 3);
  verkocht(ROK, 2, 4);
  verkocht(JAS, 1, 2);  // nothing to give
  ProefKeten::voeg(dtaanv, DtAanv{WEG, 77});
  const std::string tekst = advies(adv_druk_series);
  EXPECT_NE(tekst.find("AANVULADVIES PER SERIE"), std::string::npos);
  EXPECT_EQ(advies(adv_druk_series, 0), tekst) << "no rows: paper without end";
  EXPECT_NE(tekst.find("serienummer    omschrijving         locatie     vrkpr km  VRD  VRK fil  "
                       "maatspecificatie\n     merk      model           materiaal    dessin"),
            std::string::npos)
      << tekst;
  EXPECT_EQ(lijst(tekst),
            "10100.10.1     Rok geplooid                     49.95                     S   M   L\n"
            "     DUIN 5    ANNA                                         4    0   0   -1  -2\n"
            "                                                            1    3   3    1   1\n"
            "                                                            0    1   4        1\n\n");
  EXPECT_EQ(dtpick->record_count, 0) << "nothing is written";
}

/// Twenty sizes do not fit on a line: those of the second line follow with their own branches.
TEST_F(Druk, ManySizesTakeSeveralLines) {
  DtMaat rec{};
  rec.land = 1;
  rec.maatsoort = 2;
  for (int i = 1; i <= 20; ++i) proef_maat(rec, i, str_format("%3d", 30 + i), i);
  IXWRITE(dtmaat, &rec);
  DtSer s = proef_serie(JAS);
  s.maatsoort = 2;
  memset(s.maten, 0xFF, sizeof s.maten);
  IXWRITE(dtser, &s);
  for (const uint8_t maat : {uint8_t{15}, uint8_t{16}, uint8_t{20}}) {
    stuk(JAS, ETI_VOORRAAD, maat, 0);
    verkocht(JAS, maat, maat == 15 ? 3 : 4);
  }
  const std::string tekst = lijst(advies(adv_druk_series));
  std::istringstream in(tekst);
  std::string regel[6];
  for (std::string& r : regel) std::getline(in, r);
  EXPECT_EQ(regel[0].substr(56),
            std::string(15, ' ') + "  31  32  33  34  35  36  37  38  39  40  41  42  43  44  45");
  EXPECT_EQ(regel[1].substr(56), "    3    0   0 " + std::string(58, ' ') + "-1");
  EXPECT_EQ(regel[2].substr(56), "    0    1   3 " + std::string(59, ' ') + "1");
  EXPECT_EQ(regel[3].substr(56), std::string(15, ' ') + "  46  47  48  49  50");
  EXPECT_EQ(regel[4].substr(56), "    3    0   0   -1              -1") << tekst;
  EXPECT_EQ(regel[5].substr(56), "    0    2   4    1               1");
}

TEST_F(Druk, PiecesOfReceivingBranchesThatAskForAnother) {
  for (int i = 0; i < 4; ++i) stuk(ROK, ETI_VOORRAAD, 2, 0);
  Etiket e = proef_etiket(ROK, ETI_VERKOPEN, 2, 3);
  e.bedrag = 123456;
  e.actie = 7;
  e.nummer3 = 12;
  e.klant = 4711;
  e.vrkdat = date_number("24122025");
  int32_t nummer = verkocht(ROK, 2, 3);
  ioeti('W', &nummer, &e);
  verkocht(ROK, 2, 4);
  verkocht(ROK, 2, 5);
  stuk(ROK, ETI_VERKOPEN, 2, 3);                       // asks for nothing
  ProefKeten::voeg(dtaanv, DtAanv{ROK, 29999});        // no such label
  ProefKeten::voeg(dtaanv, DtAanv{ROK, 4000000000u});  // nor such a number
  pg_remove(adv_rec.aanvul_filialen, 5);
  EXPECT_EQ(
      lijst(advies(adv_druk_stuks)),
      "10100.10.1     Rok geplooid                5    M    1234.56  7      49.95 24-12-25  12 "
      "  4711   3\n"
      "                                           6    M      44.95         49.95 04-05-23     "
      "         4\n");
}

TEST_F(Druk, AnEmptyAdvicePrintsNothingAndPagesHaveHeads) {
  verkocht(JAS, 1, 2);
  EXPECT_EQ(advies(adv_druk_series), "");
  EXPECT_EQ(advies(adv_druk_stuks), "");
  for (int i = 0; i < 9; ++i) {
    const Serienr nr{10100, 40, static_cast<uint16_t>(i + 1)};
    serie(nr, "CLEO", "Blouse");
    stuk(nr, ETI_VOORRAAD, 1, 0);
    verkocht(nr, 1, 2);
  }
  const std::string tekst = advies(adv_druk_series, 12);
  int koppen = 0, blokken = 0;
  for (size_t i = 0; (i = tekst.find("AANVULADVIES PER", i)) != std::string::npos; ++i) ++koppen;
  for (size_t i = 0; (i = tekst.find("10100.40.", i)) != std::string::npos; ++i) ++blokken;
  EXPECT_EQ(blokken, 9);
  EXPECT_EQ(koppen, 5) << "two blocks a page";
}

TEST_F(Druk, SalesPerBranchOfThePeriod) {
  const auto verkoop = [](const Serienr& nr, uint8_t filiaal, const char* datum, int32_t bedrag) {
    Etiket e = proef_etiket(nr, ETI_VERKOPEN, 1, filiaal);
    int32_t nummer = stuk(nr, ETI_VERKOPEN, 1, filiaal);
    e.vrkdat = date_number(datum);
    e.bedrag = bedrag;
    ioeti('W', &nummer, &e);
  };
  verkoop(ROK, 2, "01032025", 1050);
  verkoop(JAS, 2, "31032025", 2000);
  verkoop(ROK, 4, "15032025", 100);
  verkoop(ROK, 4, "28022025", 7777);  // too early
  verkoop(ROK, 3, "15032025", 7777);  // of a branch that is not asked for
  verkoop(WEG, 2, "15032025", 7777);  // of no series
  verkoop(WEG, 4, "15032025", 7777);
  stuk(ROK, ETI_VOORRAAD, 1, 2);
  pg_remove(alle, 3);
  const std::string tekst = rapport([&] {
    EXPECT_TRUE(vrk_verkeer_druk(date_number("01032025"), date_number("31032025"), alle));
  });
  EXPECT_NE(tekst.find("VERKOPEN TBV FILIAALVERKEER"), std::string::npos);
  EXPECT_EQ(lijst(tekst),
            "10100.30.3     serie onbekend\n"
            "   2 :       30.50        2  Filiaal 2\n"
            "   4 :        1.00        1  Filiaal 4\n"
            "       =========== +\n"
            "             31.50        3\n");
  EXPECT_EQ(rapport([&] { EXPECT_FALSE(vrk_verkeer_druk(1, 2, alle)); }), "");
}

/// The commands on a screen, which is the only destination there is.
struct DrukScherm : AdvKeten {
  void SetUp() override {
    AdvKeten::SetUp();
    met_keten([] {
      stuk(ROK, ETI_VOORRAAD, 2, 0);
      verkocht(ROK, 2, 3);
    });
  }
  Terminal start(void (*commando)()) {
    return draai([commando] {
      prt_tabellen_maak();
      commando();
    });
  }
};

TEST_F(DrukScherm, TheDialogAndThePreview) {
  using namespace toets;
  Terminal t = start(adv_druk_serie);
  EXPECT_SHOWS(t, "Afdrukken adviezen per serie", "BEREKENEN AANVULADVIES");
  EXPECT_SHOWS(t.type(Enter), "AANVULADVIES PER SERIE", "10100.10.1     Rok geplooid");
  EXPECT_SHOWS(t.type(Esc), "KLAAR");
  Terminal u = start(adv_druk_stuk);
  EXPECT_SHOWS(u, "Afdrukken per artikel", "BEREKENEN AANVULADVIES");
  EXPECT_SHOWS(u.type(Esc), "KLAAR");
}

TEST_F(DrukScherm, SalesAskForAPeriodAndBranches) {
  using namespace toets;
  Terminal t = start(vrk_verkeer);
  EXPECT_ROWS(t, 4, R"(
 Verkoopdatum vanaf  01-01-1980
 Verkoopdatum   t/m
 Filialen
)");
  t.type("01012020", Enter);
  EXPECT_SHOWS(t.type("31122019", Enter), "Alleen datum tussen 01-01-2020");
  EXPECT_SHOWS(t.type("31122019", Esc), "KLAAR");
  Terminal u = start(vrk_verkeer);
  u.type(Enter, Enter, "3", Enter);
  EXPECT_SHOWS(u, "VERKOPEN TBV FILIAALVERKEER", "   3 :       44.95        1  Filiaal 3");
}

TEST_F(DrukScherm, WithoutAnyAdviceTheOperatorIsTold) {
  using namespace toets;
  met_keten([] { IXINIT(dtaanv); });
  Terminal t = start(adv_druk_serie);
  EXPECT_SHOWS(t.type(Enter), "Geen adviezen aanwezig");
  EXPECT_SHOWS(t.type(Enter), "KLAAR");
}

}  // namespace
