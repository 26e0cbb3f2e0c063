// The label store as bytes of DTETI.TXT and the control record: chains, the free list, stepping.
#include <algorithm>
#include <cstring>

#include "isam/io.h"
#include "sub/ioeti.h"
#include "sub/ioeti_intern.h"
#include "tests/support/agent.h"
#include "tests/support/stukken.h"

namespace {

constexpr Serienr A{10100, 10, 1}, B{10100, 20, 1};

struct Winkel : testing::Test {
  Keten keten;
  Winkel() { keten.open(); }

  /// "free head/highest/free count" of the control record.
  static std::string control() {
    SysRec4 rec;
    std::memcpy(&rec, Keten::sysrec(4).data(), sizeof rec);
    EXPECT_EQ(rec.cijfers, 8) << "kept beside the counters";
    return str_format("%ld/%ld/%ld", rec.vrij_hoofd, rec.hoogste, rec.vrij_aantal);
  }
  static EtiBlok blok(int32_t n) {
    EtiBlok b{};
    std::memset(&b, 0xEE, sizeof b);
    io_lees(eti.fd, &b, sizeof b, int64_t{n} * 376);
    return b;
  }
  /// Adds a label and keeps the series' first block, as every caller does.
  static int32_t voeg(DtSer& serie, uint8_t status = ETI_VOORRAAD, uint8_t maat = 1) {
    Etiket e = proef_etiket(serie.nr, status, maat);
    int32_t nummer = 0;
    EXPECT_TRUE(ioeti('W', &nummer, &e));
    if (serie.blok1 == -1) {
      serie.blok1 = eti_blok(nummer);
      Keten::voeg(dtser, serie);
    }
    return nummer;
  }
  static std::string keten_van(const DtSer& serie) {
    std::string uit;
    for (int32_t b = serie.blok1; b != -1 && uit.size() < 200; b = blok(b).volgende) {
      uit += std::to_string(b) + (blok(b).nr == serie.nr ? " " : "! ");
    }
    return uit;
  }
  static std::string nummers(const DtSer& serie, uint8_t status) {
    std::string uit;
    int32_t nummer = serie.blok1;
    Etiket e{};
    for (bool er = eti_filter('F', &nummer, &e, status); er;
         er = eti_filter('N', &nummer, &e, status)) {
      uit += std::to_string(nummer) + " ";
    }
    return uit;
  }
};

TEST_F(Winkel, NumbersStartAtOneAndABlockHoldsTen) {
  DtSer a = Keten::serie(A), b = Keten::serie(B);
  for (int i = 1; i <= 10; ++i) EXPECT_EQ(voeg(a), i);
  EXPECT_EQ(voeg(b), 11);  // block 1, slot 0
  EXPECT_EQ(voeg(a), 21);  // the chain of a goes on in block 2
  EXPECT_EQ(keten_van(a), "0 2 ");
  EXPECT_EQ(keten_van(b), "1 ");
  EXPECT_EQ(blok(2).maatsoort, 1);
  EXPECT_EQ(control(), "3/3/0");
  EXPECT_EQ(io_grootte(eti.fd), 3 * 376);
}

TEST_F(Winkel, AFreeSlotInAnEarlierBlockIsTakenFirst) {
  DtSer a = Keten::serie(A);
  for (int i = 0; i < 15; ++i) voeg(a);
  int32_t nummer = 4;
  Etiket e{};
  EXPECT_FALSE(ioeti('D', &nummer, &e));  // not the current one
  ASSERT_TRUE(ioeti('R', &nummer, &e));
  ioeti('D', &nummer, &e);
  EXPECT_FALSE(ioeti('R', &nummer, &e));
  const EtiBlok leeg{};
  EXPECT_EQ(std::memcmp(blok(0).woord[3], leeg.woord[0], 36), 0);
  nummer = 15;
  ASSERT_TRUE(ioeti('R', &nummer, &e));  // stands in the second block
  EXPECT_EQ(voeg(a), 4);
  EXPECT_EQ(voeg(a), 16);
}

TEST_F(Winkel, StepsFollowTheChainOverHolesAndStatuses) {
  DtSer a = Keten::serie(A), b = Keten::serie(B);
  for (int i = 0; i < 10; ++i) voeg(a, i % 2 == 0 ? ETI_VOORRAAD : ETI_VERKOPEN);
  voeg(b);
  voeg(a, ETI_VERKOPEN);
  EXPECT_EQ(nummers(a, ETI_VOORRAAD), "1 3 5 7 9 ");
  EXPECT_EQ(nummers(a, ETI_VERKOPEN), "2 4 6 8 10 21 ");
  EXPECT_EQ(nummers(a, ETI_NOTA), "");
  int32_t nummer = 1;
  Etiket e{};
  ioeti('R', &nummer, &e);
  ioeti('D', &nummer, &e);
  nummer = a.blok1;
  ASSERT_TRUE(ioeti('F', &nummer, &e));  // slot 0 is free: the next one
  EXPECT_EQ(nummer, 2);
  for (const int32_t weg : {0, -1, 22, 1000, 30000001, INT32_MAX}) {
    nummer = weg;
    EXPECT_FALSE(ioeti('R', &nummer, &e)) << weg;
  }
}

TEST_F(Winkel, LabelsCarryTheirSeriesAndTheirRate) {
  proef_artikel(A.artgroep, "", [](DtArt& art) { art.tariefcode = 2; });
  DtSer a = Keten::serie(A);
  DtSer los = Keten::serie({55555, 1, 1});
  Etiket e = proef_etiket(A, ETI_VERKOPEN, 17, 3);
  e.tarief = 60;
  int32_t verkocht = 0;
  ioeti('W', &verkocht, &e);
  a.blok1 = eti_blok(verkocht);
  Keten::voeg(dtser, a);
  const int32_t voorraad = voeg(a), zonder = voeg(los);
  Etiket terug{};
  ASSERT_TRUE(ioeti('R', &verkocht, &terug));
  EXPECT_TRUE(terug.nr == A && terug.maatsoort == 1 && terug.maat == 17);
  EXPECT_EQ(terug.tarief, 60);  // what it was sold at
  int32_t n = voorraad;
  ASSERT_TRUE(ioeti('R', &n, &terug));
  EXPECT_EQ(terug.tarief, 90);  // today's, by the article's code
  n = zonder;
  ASSERT_TRUE(ioeti('R', &n, &terug));
  EXPECT_EQ(terug.tarief, 210);  // no article: code 1
}

TEST_F(Winkel, TransitIsStoredOnlyWhileItIsAdministrated) {
  DtSer a = Keten::serie(A);
  Etiket e = proef_etiket(A, ETI_VOORRAAD);
  e.onderweg = 1;
  e.doel = 5;
  int32_t n = voeg(a);
  ioeti('W', &n, &e);
  EXPECT_EQ(blok(0).woord[0][5] >> 24, 6u);
  sys_rec20.transit = 0;
  ioeti('W', &n, &e);
  EXPECT_EQ(blok(0).woord[0][5] >> 24, 0u);
  ASSERT_TRUE(ioeti('R', &n, &e));
  EXPECT_EQ(e.onderweg, 0);
}

TEST_F(Winkel, AChainGivenBackIsUsedAgainLastFirst) {
  DtSer a = Keten::serie(A), b = Keten::serie(B);
  for (int i = 0; i < 25; ++i) voeg(a);  // blocks 0 1 2
  voeg(b);                               // block 3
  EXPECT_TRUE(eti_vrijgeven(&a));
  EXPECT_EQ(a.blok1, -1);
  Keten::voeg(dtser, a);
  EXPECT_EQ(control(), "2/4/3");
  for (const auto& [n, volgende] : {std::pair{2, 1}, {1, 0}, {0, 4}}) {
    EtiBlok vrij{};
    vrij.volgende = volgende;
    const EtiBlok is = blok(n);
    EXPECT_EQ(std::memcmp(&is, &vrij, sizeof is), 0) << n;
  }
  for (int i = 0; i < 9; ++i) voeg(b);
  EXPECT_EQ(voeg(b), 21);  // block 2, the head
  EXPECT_EQ(voeg(a), 11);  // block 1
  EXPECT_EQ(a.blok1, 1);
  EXPECT_EQ(keten_van(b), "3 2 ");
  EXPECT_EQ(control(), "0/4/1");
  for (int i = 0; i < 10; ++i) voeg(a);
  EXPECT_EQ(keten_van(a), "1 0 ");
  EXPECT_EQ(control(), "4/4/0");
  EXPECT_EQ(terminal_rec.status, 1);  // no longer at a critical place
}

TEST_F(Winkel, ABlockOfAnotherSeriesEndsTheFreeing) {
  DtSer a = Keten::serie(A), b = Keten::serie(B);
  for (int i = 0; i < 11; ++i) voeg(a);
  voeg(b);
  EtiBlok eerste = blok(0);
  eerste.volgende = 2;  // into the chain of b
  io_schrijf(eti.fd, &eerste, sizeof eerste, 0);
  EXPECT_FALSE(eti_vrijgeven(&a));
  EXPECT_EQ(control(), "0/3/1");
  EXPECT_EQ(keten_van(b), "2 ");
}

TEST_F(Winkel, ASeriesOfWhichTheFirstBlockIsNotStoredYetKeepsOneChain) {
  Etiket e = proef_etiket(B, ETI_VOORRAAD);
  for (int i = 1; i <= 25; ++i) {
    int32_t n = 0;
    ASSERT_TRUE(ioeti('W', &n, &e));
    EXPECT_EQ(n, i);
  }
}

// What ends the program: the child says so on standard output and stops with status 1.
void meldt(const char* wat, void (*doe)()) {
  EXPECT_EXIT(
      {
        if (std::freopen("/dev/null", "r", stdin) == nullptr) std::abort();
        std::fflush(stdout);
        dup2(STDERR_FILENO, STDOUT_FILENO);
        doe();
        std::exit(0);
      },
      testing::ExitedWithCode(1), wat);
}

TEST_F(Winkel, BrokenChainsAndMisuseEndTheProgram) {
  DtSer a = Keten::serie(A);
  for (int i = 0; i < 11; ++i) voeg(a);
  meldt("Ongeldige etiketketting", [] {
    int32_t n = 3000000;
    Etiket e{};
    ioeti('F', &n, &e);
  });
  meldt("ioeti.*a=F.*r=7 -> Buiten bestand", [] {
    int32_t n = 7;
    Etiket e{};
    ioeti('F', &n, &e);
  });
  meldt("Etiket niet van 10100.20.1", [] {
    eti_eigenaar(&B);
    int32_t n = 1;
    Etiket e{};
    ioeti('R', &n, &e);
  });
  meldt("errno=2", [] { ioeti('O', nullptr, nullptr); });
  meldt("errno=1", [] {
    ioeti('C', nullptr, nullptr);
    int32_t n = 1;
    Etiket e{};
    ioeti('R', &n, &e);
  });
  EtiBlok tweede = blok(1);
  tweede.volgende = 0;  // bites its tail
  io_schrijf(eti.fd, &tweede, sizeof tweede, 376);
  keten.sluit();
  SysRec4 vier{};
  vier.cijfers = 6;
  vier.vrij_hoofd = vier.hoogste = 2;
  Keten::sysrec_zet(4, &vier, sizeof vier);
  keten.open();
  meldt("Ongeldige etiketketting", [] {
    int32_t n = 0;
    Etiket e{};
    for (bool er = ioeti('F', &n, &e); er;) er = ioeti('N', &n, &e);
  });
}

// Two terminals that add to series of their own at the same time share the control record only.
TEST(Gelijktijdig, TwoTerminalsNeverTakeTheSameBlock) {
  Keten keten;
  const auto werk = [&keten](const std::string& opdracht) {
    keten.open();
    DtSer serie = Keten::serie({20000, static_cast<uint16_t>(std::atoi(opdracht.c_str())), 1});
    for (int i = 0; i < 120; ++i) Winkel::voeg(serie);
    keten.sluit();
    return std::string("klaar");
  };
  {
    Agent een(werk), twee(werk);
    een.send("1");
    twee.send("2");
    EXPECT_EQ(een.answer(), "klaar");
    EXPECT_EQ(twee.answer(), "klaar");
  }
  keten.open();
  long gezien = 0;
  for (const uint16_t kleur : {uint16_t{1}, uint16_t{2}}) {
    const DtSer serie = proef_serie({20000, kleur, 1});
    eti_eigenaar(&serie.nr);
    const std::string alle = Winkel::nummers(serie, ETI_VOORRAAD);
    gezien += std::count(alle.begin(), alle.end(), ' ');
  }
  EXPECT_EQ(gezien, 240);
  EXPECT_EQ(io_grootte(eti.fd), 24 * 376);
}

}  // namespace
