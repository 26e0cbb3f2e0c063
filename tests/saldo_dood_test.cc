// Making orders definitive with a process that dies at each of its writes: every line stays what it
// was or becomes what it was to be, and after a rebuild it is found once by each key.
#include <random>
#include <set>

#include "main/saldo.h"
#include "main/saldo_pas.h"
#include "main/verzamel.h"
#include "sub/adv_krit.h"
#include "sub/opdrnr.h"
#include "tests/support/keten.h"
#include "tests/support/sterven.h"

namespace {

constexpr Serienr BLOUSE{10100, 10, 1}, BROEK{10200, 310, 4};

DtPick pick(const Serienr& nr, int van, int naar, uint32_t opdracht, uint32_t stuks) {
  DtPick rec{};
  rec.nr = nr;
  rec.vanfil = static_cast<uint8_t>(van);
  rec.naarfil = static_cast<uint8_t>(naar);
  rec.opdrachtnr = opdracht;
  rec.orderdatum = opdracht != 0 ? 46000 : 0;
  rec.aantal[1] = stuks;
  return rec;
}

/// What a line is, whatever its order number became.
std::string wie(const DtPick& r) {
  return str_format("%ld:%d>%d=%ld", uint32_t{r.nr.artgroep}, r.vanfil, r.naarfil,
                    uint32_t{r.aantal[1]});
}

struct SaldoDood : ::testing::Test {
  Keten keten;
  int provisioneel = 0;
  std::set<std::string> alle;

  void vul(int paren) {
    keten.open();
    for (const Serienr& nr : {BLOUSE, BROEK}) {
      Keten::serie(nr);
      for (int n = 0; n < paren; ++n) {
        const DtPick rec = pick(nr, n % 5, 5 + n / 5, 0, static_cast<uint32_t>(n + 1));
        Keten::voeg(dtpick, rec);
        alle.insert(wie(rec));
        ++provisioneel;
      }
      const DtPick vast = pick(nr, 1, 5, 29000000, 99);
      Keten::voeg(dtpick, vast);
      alle.insert(wie(vast));
    }
    keten.sluit();
  }

  /// As the command does it, without its screen.
  void maak_definitief() {
    keten.open();
    werk8.assign(static_cast<size_t>(filialen()) + 1, {});
    adv_rec = adv_standaard();
    dtser_opzoek = dtser;
    verzamel_maak(privaat.tp, saldo_sort, saldo_splits);
    saldo_pass(2);
  }

  bool sterft(int n) {
    return sterft_bij(n, [this] { maak_definitief(); });
  }

  /// Judges DTPICK after a death; the number of lines that became definitive.
  int keur() {
    const bool bezig = bytes_van("DTPICK.INX")[45] != 0;
    gemerkt += bezig ? 1 : 0;
    EXPECT_EQ(IXCHECK("DTPICK") < 0, bezig);
    EXPECT_TRUE(bezig || tabel_fouten("DTPICK").empty()) << "unmarked, so it must be sound";
    EXPECT_EQ(IXBLDIX("DTPICK"), 1);
    EXPECT_EQ(tabel_fouten("DTPICK"), "");
    ICB* icb = IXOPEN("DTPICK", IX_GEDEELD);
    int definitief = 0;
    for (int k = 1; k <= 3; ++k) {
      IXSWITCH(icb, k);
      std::multiset<std::string> gezien;
      definitief = 0;
      DtPick rec{};
      for (bool er = IXFIRSTR(icb, &rec); er; er = IXNEXT(icb, &rec)) {
        gezien.insert(wie(rec));
        const bool vast = rec.opdrachtnr != 0;
        EXPECT_EQ(vast, rec.orderdatum != 0) << wie(rec);
        definitief += vast && rec.opdrachtnr != 29000000 ? 1 : 0;
      }
      EXPECT_EQ(gezien, std::multiset<std::string>(alle.begin(), alle.end())) << "key " << k;
    }
    IXCLOSE(icb);
    return definitief;
  }

  int gemerkt = 0;
};

TEST_F(SaldoDood, AtEachWrite) {
  vul(4);
  const SterfBegin begin({"DTPICK", "DTAANV"}, {"DTSYS.TXT"});
  int hoogst = 0;
  for (int n = 0;; ++n) {
    SCOPED_TRACE("dies at write " + std::to_string(n));
    ASSERT_LT(n, 500);
    begin.terug();
    const bool heel = sterft(n);
    const int definitief = keur();
    ASSERT_FALSE(HasFailure());
    EXPECT_GE(definitief, hoogst) << "one line after the other";
    hoogst = definitief;
    if (!heel) continue;
    EXPECT_EQ(definitief, provisioneel);
    break;
  }
  EXPECT_GE(gemerkt, 6 * provisioneel) << "three keys out and in, and the record";
}

/// Runs that die again and again on one table, each going on where the last one ended.
TEST_F(SaldoDood, AgainAndAgain) {
  vul(30);
  std::mt19937 toeval(20260731);
  int hoogst = 0;
  for (int keer = 0; keer < 60 && hoogst < provisioneel; ++keer) {
    SCOPED_TRACE("run " + std::to_string(keer));
    sterft(static_cast<int>(toeval() % 60));
    const int definitief = keur();
    ASSERT_FALSE(HasFailure());
    ASSERT_GE(definitief, hoogst);
    hoogst = definitief;
  }
  EXPECT_GT(gemerkt, 10);
  EXPECT_EQ(hoogst, provisioneel);
}

/// The counter has come round and gives a number that the same pair and series had before.
TEST_F(SaldoDood, ANumberThatCameRoundTakesTheOldLinesPlace) {
  vul(1);
  keten.open();
  const uint32_t volgende = opdrnr_cijfer(1);
  Keten::voeg(dtpick, pick(BLOUSE, 0, 5, volgende, 77));
  keten.sluit();
  maak_definitief();
  DtPick rec = pick(BLOUSE, 0, 5, volgende, 0);
  EXPECT_TRUE(IXREAD(dtpick, &rec));
  EXPECT_EQ(rec.aantal[1], 1u);
  rec = pick(BLOUSE, 0, 5, 0, 0);
  EXPECT_FALSE(IXREAD(dtpick, &rec));
  keten.sluit();
  EXPECT_EQ(tabel_fouten("DTPICK"), "");
}

}  // namespace
