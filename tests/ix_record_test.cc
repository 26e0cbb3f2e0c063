// Operations on records: what they answer, where the handle stands afterwards, and what is on disk.
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "isam/io.h"
#include "isam/ix.h"
#include "tests/support/ix_proef.h"

namespace {

struct Records : testing::Test {
  TempDir map;
  InMap in{map.pad};
  ICB* icb = nullptr;

  /// Numbers 0 to aantal - 1, in groups of four, written in shared mode.
  void vul(int aantal) {
    IXCLOSE(proef_tabel("TAB", IX_EXCLUSIEF));
    icb = IXOPEN("TAB", IX_GEDEELD);
    for (int n = 0; n < aantal; ++n) {
      ProefRec r = proef_rec(n, ("naam" + std::to_string(n % 3)).c_str(), n / 4);
      ASSERT_FALSE(IXREADL(icb, &r));
      ASSERT_TRUE(IXWRITE(icb, &r));
    }
  }
  void wis(int nummer) {
    ProefRec r = proef_rec(nummer);
    ASSERT_TRUE(IXREADL(icb, &r));
    ASSERT_FALSE(IXDELETE(icb, &r));
  }
  void TearDown() override {
    if (icb != nullptr) IXCLOSE(icb);
    if (icb != nullptr) {
      EXPECT_EQ(tabel_fouten("TAB"), "");
    }
  }
};

TEST_F(Records, UpdateMovesTheEntryAndKeepsTheSlot) {
  vul(12);
  ProefRec r = proef_rec(5, "anders", 99);
  ASSERT_TRUE(IXREADL(icb, &r));
  EXPECT_EQ(r.groep, 1);
  r.groep = 99;
  ASSERT_TRUE(IXWRITE(icb, &r));
  EXPECT_EQ(icb->record_no, 5);
  IXSWITCH(icb, 2);
  r = proef_rec(0, "", 99);
  ASSERT_TRUE(IXFIRSTR(icb, &r, 1));
  EXPECT_EQ(r.nummer, 5);
  r = proef_rec(0, "", 1);
  int aantal = 0;
  for (bool g = IXFIRSTR(icb, &r, 1); g; g = IXNEXT(icb, &r, 1)) ++aantal;
  EXPECT_EQ(aantal, 3);
  EXPECT_EQ(icb->record_no, -1);
  // An unchanged record costs no tree: the record itself, and the header twice.
  r = proef_rec(5);
  IXSWITCH(icb, 1);
  ASSERT_TRUE(IXREADL(icb, &r));
  const uint64_t voor = io_proef.geschreven;
  ASSERT_TRUE(IXWRITE(icb, &r));
  EXPECT_EQ(io_proef.geschreven - voor, 3U);
}

TEST_F(Records, DeletedSlotsChainAndComeBackLastFirst) {
  vul(6);
  for (int n : {2, 4}) wis(n);
  const std::string data = bytes_van("TAB.TXT");
  EXPECT_EQ(data.substr(2 * 64, 64), std::string(64, '\xFF'));
  EXPECT_EQ(data.substr(4 * 64, 64), std::string("\xFF\2\0\0\0", 5) + std::string(59, '\xFF'));
  ProefRec r;
  EXPECT_EQ(IXGET(icb, &r, 4), 0);
  EXPECT_EQ(memcmp(&r, data.data() + 256, 64), 0);
  EXPECT_EQ(IXGET(icb, &r, 3), 1);
  const uint64_t voor = io_proef.gelezen;
  EXPECT_EQ(IXGET(icb, &r, 6), -1);
  EXPECT_EQ(IXGET(icb, &r, -1), -1);
  EXPECT_EQ(io_proef.gelezen, voor) << "refused without a look at the file";
  for (int32_t verwacht : {4, 2, 6}) {
    r = proef_rec(100 + verwacht);
    ASSERT_TRUE(IXWRITE(icb, &r));
    EXPECT_EQ(icb->record_no, verwacht);
  }
  // Deleting what is not there any more leaves table and chain alone.
  wis(100 + 2);
  r = proef_rec(100 + 2);
  icb->record_no = 2;
  EXPECT_FALSE(IXDELETE(icb, &r));
  r = proef_rec(55);
  ASSERT_TRUE(IXWRITE(icb, &r));
  EXPECT_EQ(icb->record_no, 2);
  EXPECT_EQ(icb->free_head, -1);
}

TEST_F(Records, AByteBehindTheChainKeepsARecordAlive) {
  vul(1);
  ProefRec r = proef_rec(255);  // starts 0xFF
  memcpy(r.naam,
         "\xFF"
         "A",
         2);
  ASSERT_TRUE(IXWRITE(icb, &r));
  ASSERT_TRUE(IXREAD(icb, &r));
  EXPECT_EQ(r.naam[1], 'A');
}

TEST_F(Records, ReadOnlyWritesNothingAndSaysSo) {
  vul(2);
  const std::string index = bytes_van("TAB.INX");
  ICB* lees = IXOPEN("TAB", IX_LEES);
  static std::string gezegd;
  ix_hooks.doos = [](int optie, int soort, const char* titel, const char* tekst) {
    gezegd = std::to_string(optie) + std::to_string(soort) + titel + "|" + tekst;
    return 0;
  };
  ProefRec r = proef_rec(77);
  EXPECT_FALSE(IXREADL(lees, &r));
  EXPECT_TRUE(IXWRITE(lees, &r));
  ix_hooks = IX_HOOKS_KAAL;
  EXPECT_EQ(gezegd, "-12Waarschuwing|IXWRITE op een bestand dat READ-ONLY geopend is");
  IXCLOSE(lees);
  EXPECT_EQ(bytes_van("TAB.INX"), index);
}

TEST_F(Records, LimitsAndPartialKeys) {
  vul(20);
  wis(8);
  wis(9);
  wis(10);
  wis(11);
  IXSWITCH(icb, 2);
  ProefRec r = proef_rec(0, "", 2);
  EXPECT_FALSE(IXFIRSTR(icb, &r, 1)) << "a group without records";
  EXPECT_EQ(icb->record_no, -1);
  r = proef_rec(0, "", 2);
  ASSERT_TRUE(IXFIRSTR(icb, &r));
  EXPECT_EQ(r.groep, 3);
  // Keys without records: one step a group.
  r = proef_rec(0, "", 0);
  int groepen = 0;
  for (bool g = IXFIRSTK(icb, &r, 1); g; g = IXNEXTK(icb, &r, 1)) ++groepen;
  EXPECT_EQ(groepen, 4);
  EXPECT_EQ(r.groep, 4) << "the last key found stands in the record";
  ASSERT_TRUE(IXPREVK(icb, &r, 1));
  EXPECT_EQ(r.groep, 3);
  ASSERT_TRUE(IXPREVK(icb, &r, 1));
  EXPECT_EQ(r.groep, 1);
  r = proef_rec(7, "blijft", 3);
  EXPECT_TRUE(IXFINDK(icb, &r, 1));
  EXPECT_EQ(r.nummer, 7);
  r.groep = 2;
  EXPECT_FALSE(IXFINDK(icb, &r, 1));
}

TEST_F(Records, SkippingAlongAKey) {
  vul(10);
  ProefRec r{};
  int32_t nummer = 4;
  ASSERT_TRUE(IXSKIP(icb, &r, 1, 0, &nummer));
  EXPECT_EQ(r.nummer, 4);
  ASSERT_TRUE(IXSKIP(icb, &r, 1, 3, &nummer));
  EXPECT_EQ(nummer, 7);
  ASSERT_TRUE(IXSKIP(icb, &r, 1, -5, &nummer));
  EXPECT_EQ(r.nummer, 2);
  EXPECT_FALSE(IXSKIP(icb, &r, 1, 30, &nummer)) << "past the last key";
  EXPECT_EQ(nummer, 9);
  wis(5);
  r = proef_rec(4);
  nummer = 5;
  ASSERT_TRUE(IXSKIP(icb, &r, 1, 0, &nummer)) << "a deleted slot: the next key from the buffer";
  EXPECT_EQ(r.nummer, 6);
}

TEST_F(Records, ScanInSlotOrder) {
  vul(700);  // three buffers
  wis(3);
  wis(699);
  ProefRec r;
  int aantal = 0;
  while (IXSEQ(icb, &r)) {
    EXPECT_EQ(r.nummer, icb->record_no);
    ++aantal;
  }
  EXPECT_EQ(aantal, 698);
  // Another handle starts anew; this one too once its scan has ended.
  ASSERT_TRUE(IXSEQ(icb, &r));
  ASSERT_TRUE(IXSEQ(icb, &r));
  ICB* ander = IXOPEN("TAB", IX_LEES);
  ASSERT_TRUE(IXSEQ(ander, &r));
  EXPECT_EQ(r.nummer, 0);
  ProefRec nieuw = proef_rec(9000);
  for (int n = 0; n < 5; ++n, ++nieuw.nummer) ASSERT_TRUE(IXWRITE(icb, &nieuw));
  while (IXSEQ(ander, &r)) {
  }
  aantal = 0;
  while (IXSEQ(ander, &r)) ++aantal;
  EXPECT_EQ(aantal, 703) << "a handle of this morning sees what was added since";
  ASSERT_TRUE(IXSEQ(ander, &r));
  IXCLOSE(ander);
  ASSERT_TRUE(IXSEQ(icb, &r));
  EXPECT_EQ(r.nummer, 0);
  ix_hooks.afgebroken = [] { return true; };
  while (IXSEQ(icb, &r)) {
  }
  EXPECT_LT(icb->record_no, 300) << "cancel is asked at each buffer";
  ix_hooks = IX_HOOKS_KAAL;
}

TEST_F(Records, ExclusiveHandleMayInsertAndDelete) {
  icb = proef_tabel("TAB", IX_EXCLUSIEF);
  for (int n = 0; n < 300; ++n) {
    ProefRec r = proef_rec(n, "x", n % 7);
    ASSERT_TRUE(IXWRITE(icb, &r));
    if (n % 5 == 4) wis(n - 2);
  }
  ProefRec r{};
  int aantal = 0;
  for (bool g = IXFIRSTR(icb, &r); g; g = IXNEXT(icb, &r)) ++aantal;
  EXPECT_EQ(aantal, 240);
}

TEST_F(Records, PrivateIndexOverATableAtWork) {
  vul(30);
  ICB* prive = IXCREATE("TAB.V07", IX_EXCLUSIEF);
  EXPECT_EQ(prive->data_fd, icb->data_fd) << "a second descriptor would drop locks at its close";
  IXUPDFCB(prive, 0, "AKV,64");
  IXUPDFCB(prive, 1, "g,NODUPS,I,15,16,I,1,4");
  ASSERT_TRUE(IXINITIX(prive));
  for (int n = 0; n < 30; n += 2) {
    ProefRec r = proef_rec(n);
    ASSERT_TRUE(IXREAD(icb, &r));
    prive->record_no = icb->record_no;
    IXADDKEYS(prive, &r);
  }
  IXCLOSE(prive);
  EXPECT_EQ(bytes_van("TAB.V07").size(), 1536U);
  // Rows are deleted and moved meanwhile; a walk passes them and ends.
  wis(4);
  wis(28);
  ProefRec r = proef_rec(20);
  ASSERT_TRUE(IXREADL(icb, &r));
  r.groep = 0;
  ASSERT_TRUE(IXWRITE(icb, &r));
  prive = IXOPEN("TAB.V07", IX_GEDEELD);
  std::vector<int> gezien;
  r = ProefRec{};
  for (bool g = IXFIRSTR(prive, &r); g && gezien.size() < 99; g = IXNEXT(prive, &r))
    gezien.push_back(r.nummer);
  EXPECT_EQ(gezien, (std::vector<int>{0, 2, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26}));
  gezien.clear();
  r = proef_rec(0, "", 999);
  for (bool g = IXPREV(prive, &r); g && gezien.size() < 99; g = IXPREV(prive, &r))
    gezien.push_back(r.nummer);
  EXPECT_EQ(gezien.size(), 13U);
  EXPECT_TRUE(IXINIT(prive));
  EXPECT_EQ(bytes_van("TAB.TXT").size(), 30U * 64) << "emptying the index leaves the table";
  IXCLOSE(prive);
  EXPECT_TRUE(IXREMOVE("TAB.V07"));
  EXPECT_TRUE(IXREMOVE("TAB.V07"));
  EXPECT_EQ(bytes_van("TAB.TXT").size(), 30U * 64);
}

// Opening and making ------------------------------------------------------------------------------

using Openen = Records;

TEST_F(Openen, FailuresNameTheFile) {
  IXCLOSE(proef_tabel("DICHT", IX_EXCLUSIEF));
  EXPECT_EXIT(IXOPEN("GEEN", 2), testing::ExitedWithCode(1), "TQISAM\\(2\\): GEEN.TXT ");
  truncate("DICHT.INX", 511);
  EXPECT_EXIT(IXOPEN("DICHT", 2), testing::ExitedWithCode(1), "TQISAM\\([0-9]+\\): DICHT.INX ");
  EXPECT_EXIT(IXCREATE("GEEN.V01", 1), testing::ExitedWithCode(1), "TQISAM\\(2\\): GEEN.TXT ");
  EXPECT_EXIT(IXCREATE("geen/map", 2), testing::ExitedWithCode(1),
              "File create mislukt : geen/map.INX");
  EXPECT_EXIT(IXGET(nullptr, nullptr, 0), testing::ExitedWithCode(1), "IXGET : ICB == NULL");
  EXPECT_EXIT(IXFIRSTR(nullptr, nullptr), testing::ExitedWithCode(1), "IXFIRSTR : ICB == NULL");
}

TEST_F(Openen, NamesWithPoints) {
  mkdir("kob.d", 0770);
  IXCLOSE(proef_tabel("kob.d/TR", IX_EXCLUSIEF));
  ICB* h = IXOPEN("kob.d/TR", 2);
  EXPECT_EQ(h->is_private, 0);
  EXPECT_STREQ(h->name, "TR");
  EXPECT_STREQ(h->path, "kob.d/TR");
  EXPECT_EQ(bytes_van("kob.d/TR.INX").size(), 5U * 512);
  IXCLOSE(h);
}

TEST_F(Openen, VersionsAndUnfinishedUpdates) {
  IXCLOSE(proef_tabel("OUD", IX_EXCLUSIEF));
  const auto zet = [](const char* pad, size_t plaats, char waarde) {
    std::string b = bytes_van(pad);
    b[plaats] = waarde;
    std::ofstream(pad, std::ios::binary) << b;
  };
  zet("OUD.INX", 258, 0);
  IXCLOSE(IXOPEN("OUD", 2));
  EXPECT_EQ(bytes_van("OUD.INX").substr(258, 2), "\x5F\x01") << "an older version is promoted";
  zet("OUD.INX", 258, '\x5E');
  EXPECT_EXIT(IXOPEN("OUD", 2), testing::ExitedWithCode(1),
              "Versie van het bestand is onjuist.*350");
  std::ofstream("OUD.V01", std::ios::binary) << bytes_van("OUD.INX");
  EXPECT_EXIT(IXOPEN("OUD.V01", 2), testing::ExitedWithCode(1), "Programma is beeindigd");
  EXPECT_EXIT(IXOPEN("OUD.V01", 2), testing::ExitedWithCode(1), "tijdelijke bestand is onjuist");
  zet("OUD.INX", 258, '\x5F');
  zet("OUD.INX", 45, 1);
  EXPECT_EXIT(IXOPEN("OUD", 2), testing::ExitedWithCode(1),
              "OUD        : Proeftabel          --> Niet consistent");
}

TEST_F(Openen, EmptyingATable) {
  vul(9);
  EXPECT_TRUE(IXINIT(icb));
  EXPECT_EQ(bytes_van("TAB.TXT"), "");
  EXPECT_EQ(bytes_van("TAB.INX").size(), 5U * 512);
  ProefRec r = proef_rec(3);
  EXPECT_FALSE(IXREAD(icb, &r));
  EXPECT_TRUE(IXWRITE(icb, &r));
  EXPECT_EQ(icb->record_no, 0);
}

TEST_F(Openen, CutKeepsTheRegistryAndTheLimit) {
  const int eerst = files_open_limit();
  EXPECT_GT(eerst, 50);
  vul(1);
  ICB* meer[20];
  for (ICB*& h : meer) h = IXOPEN("TAB", IX_LEES);
  EXPECT_GE(files_open_limit(), std::min(eerst, 198)) << "handles share two descriptors";
  for (ICB* h : meer) IXCLOSE(h);
  EXPECT_EQ(FILES_PRESENT("TAB.*"), 2);
  EXPECT_EQ(FILES_PRESENT("OPENFILE"), 0);
}

TEST_F(Openen, MessageBoxIsCutToFit) {
  const FlashVorm v = fflash_vorm(-1, "Titel", "een\ttwee\n\nvier");
  EXPECT_EQ(v.aantal, 3);
  EXPECT_STREQ(v.regels[0], "een twee");
  EXPECT_EQ(v.breedte, 32);
  EXPECT_EQ(fflash_vorm(2, "Een lange titel", "kort").breedte, 17);
  EXPECT_EQ(fflash_vorm(2, "", std::string(90, 'x').c_str()).breedte, 80);
  EXPECT_EQ(fflash_vorm(2, std::string(66, 't').c_str(), "a").titel[0], 0);
  EXPECT_EXIT(FFLASH(-3, 1, 0, "t", "x"), testing::ExitedWithCode(1),
              "FFLASH invalid option \\[-3\\]");
}

}  // namespace
