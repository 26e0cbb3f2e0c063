// Blocks and records that are caught half-written. A 512-byte write is not atomic against a reader:
// what a search works with must be one image or the other, never the head of one and the tail of
// the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <utility>
#include <vector>

#include "tests/support/beproeving.h"

namespace {

/// Tears what is read: a part of what stood there before the last write, a part of what stands
/// there now. Never twice the same, for then it could not be told from a whole image.
struct Scheur {
  static inline std::map<std::pair<int, int64_t>, std::string> vorig, laatst;
  static inline std::minstd_rand kans;
  static inline uint32_t procent = 0;
  static inline long gescheurd = 0;

  static void begin(uint32_t zaad) {
    vorig.clear();
    laatst.clear();
    kans.seed(zaad);
    gescheurd = 0;
    io_proef.voor_schrijf = bewaar;
  }
  /// Only what the reader reads is torn: `deel` percent of it.
  static void aan(uint32_t deel) {
    procent = deel;
    io_proef.na_lees = deel > 0 ? scheur : nullptr;
  }

 private:
  static void bewaar(int fd, int64_t offset, size_t n) {
    std::string nu(n, 0);
    if (pread(fd, nu.data(), n, offset) == static_cast<ssize_t>(n)) vorig[{fd, offset}] = nu;
  }
  static void scheur(int fd, void* buffer, size_t n, int64_t offset) {
    const auto oud = vorig.find({fd, offset});
    const std::string nu(static_cast<char*>(buffer), n);
    if (oud == vorig.end() || oud->second.size() != n || oud->second == nu) return;
    std::string& toen = laatst[{fd, offset}];
    if (kans() % 100 >= procent) return void(toen = nu);
    const size_t snede = 1 + kans() % (n - 1);
    const std::string& kop = kans() % 2 == 0 ? nu : oud->second;
    const std::string& staart = &kop == &nu ? oud->second : nu;
    const std::string uit = kop.substr(0, snede) + staart.substr(snede);
    if (uit == toen || uit == nu || uit == oud->second) return void(toen = nu);
    toen = uit;
    ++gescheurd;
    memcpy(buffer, uit.data(), n);
  }
};

/// A block as the engine writes it: entries in order, nothing behind them.
std::string blok_fout(ICB* icb) {
  const IxBlok& b = icb->block;
  const IxSleutel& s = icb->keys[b.key_number - 1];
  const int breed = s.key_length + 4;
  for (int i = 1; i < b.count; ++i)
    if (IXCOMP(icb, b.entries + (i - 1) * breed, b.entries + i * breed, s.key_length) >= 0)
      return "block " + std::to_string(icb->block_no) + " entry " + std::to_string(i);
  for (int i = b.count * breed; i < IX_INGANGEN; ++i)
    if (b.entries[i] != 0) return "block " + std::to_string(icb->block_no) + " tail";
  return "";
}

struct Scheuren : testing::Test {
  TempDir map;
  InMap in{map.pad};
  ICB *schrijver = nullptr, *lezer = nullptr;
  std::map<int32_t, BepRec> model;
  std::minstd_rand kans;

  void SetUp() override {
    IXCLOSE(bep_tabel("TAB", IX_EXCLUSIEF));
    schrijver = IXOPEN("TAB", IX_GEDEELD);
    lezer = IXOPEN("TAB", IX_LEES);
  }
  void TearDown() override {
    io_proef = IoProef{};
    IXCLOSE(lezer);
    IXCLOSE(schrijver);
  }
  void verander() {
    const auto nummer = static_cast<int32_t>(kans() % 150);
    BepRec r = bep_rec(nummer);
    const bool er = IXREADL(schrijver, &r);
    if (er && kans() % 4 == 0) {
      IXDELETE(schrijver, &r);
      model.erase(nummer);
      return;
    }
    r = bep_rec(nummer, static_cast<int>(kans() % 500), static_cast<int32_t>(kans() % 500));
    model[nummer] = r;
    ASSERT_TRUE(IXWRITE(schrijver, &r));
  }
  /// The writer is at rest: nothing may be missed now.
  void lees() {
    const auto nummer = static_cast<int32_t>(kans() % 150);
    const auto het = model.find(nummer);
    BepRec r = bep_rec(nummer);
    ASSERT_EQ(IXREAD(lezer, &r), het != model.end()) << nummer;
    if (het != model.end()) {
      ASSERT_TRUE(bep_gelijk(r, het->second)) << bep_toon(r);
    }
    ASSERT_EQ(blok_fout(lezer), "");
    std::string nu(512, 0);
    ASSERT_EQ(pread(lezer->index_fd, nu.data(), 512, int64_t{lezer->block_no} * 512), 512);
    ASSERT_EQ(memcmp(&lezer->block, nu.data(), 512), 0) << "block " << lezer->block_no;
  }
  void wandel(int sleutel) {
    IXSWITCH(lezer, sleutel);
    BepRec r{};
    size_t stap = 0;
    for (bool er = IXFIRSTR(lezer, &r); er; er = IXNEXT(lezer, &r), ++stap)
      ASSERT_TRUE(bep_gelijk(r, model.at(r.nummer))) << bep_toon(r);
    ASSERT_EQ(stap, model.size()) << "along key " << sleutel;
    IXSWITCH(lezer, 1);
  }
};

TEST_F(Scheuren, ATornImageReachesNoSearch) {
  const uint32_t zaad = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(zaad));
  kans.seed(zaad);
  Scheur::begin(zaad);
  for (int n = 0; n < 2500 && !HasFailure(); ++n) {
    verander();
    Scheur::aan(static_cast<uint32_t>(10 + n % 50));
    for (int k = 0; k < 4 && !HasFatalFailure(); ++k) lees();
    if (n % 25 == 0) wandel(1 + n / 25 % 3);
    Scheur::aan(0);
  }
  EXPECT_GT(Scheur::gescheurd, 1000);
}

TEST_F(Scheuren, ThoughNearlyAllOfThemAreTorn) {
  for (int n = 0; n < 100; ++n) verander();
  Scheur::begin(1);
  for (int n = 0; n < 50; ++n) verander();
  Scheur::aan(95);
  for (int k = 0; k < 100 && !HasFatalFailure(); ++k) lees();
  for (int k = 1; k <= 3 && !HasFatalFailure(); ++k) wandel(k);
  EXPECT_GT(Scheur::gescheurd, 200);
}

const BepRec* over_rec;

/// Kept from going on at the border of a page: the half that is done can be read for a while.
void over_de_grens(int fd, int64_t offset, size_t n) {
  const int64_t grens = (offset / 4096 + 1) * 4096;
  if (n != sizeof(BepRec) || grens >= offset + static_cast<int64_t>(n)) return;
  const void* rec = over_rec;
  if (pwrite(fd, rec, static_cast<size_t>(grens - offset), offset) > 0) usleep(1000);
}

/// Beside a writer on whatever file system the tests stand, as fast as both can.
TEST(ScheurenEcht, AReaderBesideAWriter) {
  TempDir map;
  InMap in(map.pad);
  IXCLOSE(bep_tabel("TAB", IX_EXCLUSIEF));
  const int seconden = std::max(2, beproeving_seconden() / 4);
  Samen<std::atomic<long>> gelezen;
  Kind schrijver([seconden] {
    ICB* icb = IXOPEN("TAB", IX_GEDEELD);
    const time_t einde = time(nullptr) + seconden + 1;
    for (int n = 0; n % 64 != 0 || time(nullptr) < einde; ++n) {
      BepRec r = bep_rec(n % 40, n / 40 % 997, n);
      if (n % 7 == 6 && IXREADL(icb, &r))
        IXDELETE(icb, &r);
      else
        IXWRITE(icb, &r);
      if (n % 7 == 6) r = bep_rec(n % 40, 1), IXWRITE(icb, &r);
    }
    IXCLOSE(icb);
    return std::string();
  });
  Kind lezer([&gelezen, seconden] {
    ICB* icb = IXOPEN("TAB", IX_LEES);
    const time_t einde = time(nullptr) + seconden;
    std::string fout;
    for (int n = 0; fout.empty() && (n % 64 != 0 || time(nullptr) < einde); ++n) {
      IXSWITCH(icb, 1 + n % 3);
      BepRec r = bep_rec(n % 40, n % 997);
      const bool er = n % 3 == 0 ? IXREAD(icb, &r) : IXFIRSTR(icb, &r);
      if (er && !bep_heel(r)) fout = "read " + bep_toon(r);
      for (int k = n % 5 * 10; er && k > 0 && fout.empty() && IXNEXT(icb, &r); --k)
        if (!bep_heel(r)) fout = "walked to " + bep_toon(r);
      if (fout.empty()) fout = blok_fout(icb);
      *gelezen += er ? 1 : 0;
    }
    return fout;
  });
  EXPECT_EQ(lezer.einde(seconden + 20), "");
  EXPECT_EQ(schrijver.einde(20), "");
  EXPECT_GT(gelezen->load(), 1000);
  EXPECT_EQ(tabel_fouten("TAB"), "");
}

bool ix_over(const ICB* icb) {
  const int64_t plaats = int64_t{icb->record_no} * icb->record_length;
  return icb->record_no >= 0 && plaats / 4096 != (plaats + icb->record_length - 1) / 4096;
}

TEST(ScheurenEcht, AWriterKeptAtTheBorderOfAPage) {
  TempDir map;
  InMap in(map.pad);
  IXCLOSE(bep_tabel("TAB", IX_EXCLUSIEF));
  ICB* icb = IXOPEN("TAB", IX_GEDEELD);
  for (int n = 0; n < 60; ++n) {
    BepRec r = bep_rec(n);
    ASSERT_TRUE(IXWRITE(icb, &r));
  }
  BepRec r = bep_rec(0);
  while (!ix_over(icb)) {
    r = bep_rec(r.nummer + 1);
    ASSERT_TRUE(IXREAD(icb, &r));
  }
  const int nummer = r.nummer;
  IXCLOSE(icb);
  Kind schrijver([nummer] {
    ICB* tab = IXOPEN("TAB", IX_GEDEELD);
    io_proef.voor_schrijf = over_de_grens;
    for (int n = 0; n < 300; ++n) {
      BepRec was = bep_rec(nummer), nieuw = bep_rec(nummer, 0, n);
      over_rec = &nieuw;
      IXREADL(tab, &was);
      if (n % 2 == 0)
        IXWRITE(tab, &nieuw);
      else
        IXPUTREC(tab, &nieuw);
      usleep(300);
    }
    IXCLOSE(tab);
    return std::string();
  });
  Samen<std::atomic<long>> gelezen;
  Kind lezer([nummer, &gelezen] {
    ICB* tab = IXOPEN("TAB", IX_LEES);
    std::string fout;
    for (BepRec w{}; w.versie < 290 && fout.empty(); ++*gelezen) {
      w = bep_rec(nummer);
      if (!IXREAD(tab, &w)) fout = "not there";
      if (!bep_heel(w)) fout = "read " + bep_toon(w);
      while (fout.empty() && IXSEQ(tab, &w))
        if (!bep_heel(w)) fout = "scanned " + bep_toon(w);
      w = bep_rec(nummer);
      IXREAD(tab, &w);
    }
    return fout;
  });
  EXPECT_EQ(lezer.einde(60), "");
  EXPECT_EQ(schrijver.einde(60), "");
  EXPECT_GT(gelezen->load(), 10);
}

}  // namespace
