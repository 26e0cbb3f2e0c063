// Files that change their size under a mapping, and both readers under load: whatever other
// processes do to a file, a read gives what a plain read would.
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/mman.h>

#include "isam/kaart.h"
#include "tests/support/beproeving.h"

namespace {

class Kaarten : public testing::Test {
 protected:
  Kaarten() {
    ix_hooks.regel = [](const char*, int) {};
  }
  ~Kaarten() override { ix_hooks = IX_HOOKS_KAAL; }

  void vul(int van, int tot) {
    Kind kind([=] {
      ICB* icb = IXOPEN("TAB", IX_EXCLUSIEF);
      for (int n = van; n < tot; ++n) {
        ProefRec r = proef_rec(n, "naam", n % 9);
        IXWRITE(icb, &r);
      }
      IXCLOSE(icb);
      return std::string();
    });
    ASSERT_EQ(kind.einde(60), "");
  }
  int lees_alle(int van, int tot) {
    int gevonden = 0;
    for (int n = van; n < tot; ++n) {
      ProefRec r = proef_rec(n);
      gevonden += IXREAD(icb, &r) && r.groep == n % 9 ? 1 : 0;
    }
    return gevonden;
  }

  TempDir map;
  InMap in{map.pad};
  ICB* icb = nullptr;
};

TEST_F(Kaarten, AFileThatGrowsPastItsMapping) {
  IXCLOSE(proef_tabel("TAB", IX_EXCLUSIEF));
  vul(0, 10);
  icb = IXOPEN("TAB", IX_LEES);
  EXPECT_EQ(lees_alle(0, 10), 10);
  if (kaart_stuk(icb->data_fd, 0, 64) == nullptr) GTEST_SKIP() << "no mappings on this file system";
  vul(10, 30000);  // above the megabyte that a small file is mapped with
  EXPECT_EQ(lees_alle(0, 30000), 30000);
  int stappen = 0;
  ProefRec r{};
  for (bool er = IXFIRSTR(icb, &r); er; er = IXNEXT(icb, &r)) ++stappen;
  EXPECT_EQ(stappen, 30000);
  IXCLOSE(icb);
}

TEST_F(Kaarten, AFileThatIsCutShortUnderIt) {
  IXCLOSE(proef_tabel("TAB", IX_EXCLUSIEF));
  vul(0, 5000);
  icb = IXOPEN("TAB", IX_LEES);
  EXPECT_EQ(lees_alle(0, 5000), 5000);
  Kind kind([] {
    ICB* tab = IXOPEN("TAB", IX_GEDEELD);
    IXINIT(tab);
    IXCLOSE(tab);
    return std::string();
  });
  ASSERT_EQ(kind.einde(20), "");
  EXPECT_EQ(lees_alle(0, 300), 0);
  // What is gone reads as gone: whole pages, and the end of the page that the file ends in.
  std::string slot(64, 'x');
  EXPECT_EQ(io_lees(icb->data_fd, slot.data(), 64, 4096 * 20), 0);
  EXPECT_EQ(io_lees(icb->index_fd, slot.data(), 64, 4096 * 20), 0);
  vul(0, 50);
  ASSERT_EQ(truncate("TAB.TXT", 64 * 3), 0);
  EXPECT_EQ(lees_alle(0, 50), 3);
  vul(50, 6000);
  EXPECT_EQ(lees_alle(50, 6000), 5950);
  IXCLOSE(icb);
}

TEST_F(Kaarten, AFaultOfSomebodyElseStaysOne) {
  IXCLOSE(proef_tabel("TAB", IX_EXCLUSIEF));
  vul(0, 10);
  icb = IXOPEN("TAB", IX_LEES);
  EXPECT_EQ(lees_alle(0, 10), 10);
  const auto fout = [] {
    const int fd = memfd_create("leeg", 0);
    const void* p = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, fd, 0);
    _exit(*static_cast<const volatile char*>(p));
  };
  EXPECT_EXIT(fout(), testing::KilledBySignal(SIGBUS), "");
  IXCLOSE(icb);
}

/// Runs a test program; what it said, each line marked, so that nobody takes its sums for ours.
std::string draai_stil(const std::string& pad, int* status) {
  TempDir map;
  const std::string log = map / "log";
  posix_spawn_file_actions_t acties;
  posix_spawn_file_actions_init(&acties);
  posix_spawn_file_actions_addopen(&acties, 1, log.c_str(), O_CREAT | O_WRONLY, 0600);
  posix_spawn_file_actions_adddup2(&acties, 1, 2);
  char* argv[] = {const_cast<char*>(pad.c_str()), nullptr};
  pid_t kind = -1;
  *status = posix_spawn(&kind, pad.c_str(), &acties, nullptr, argv, environ);
  if (*status == 0) waitpid(kind, status, 0);
  posix_spawn_file_actions_destroy(&acties);
  std::string uit = "| ";
  for (const char c : bytes_van(log)) uit += c == '\n' ? "\n| " : std::string(1, c);
  return uit;
}

/// The trials of the engine once more, without mappings.
TEST(Gewoon, HoldsTheSameTrials) {
  setenv("OPDSALDO_KAART", "nee", 1);
  if (getenv("OPDSALDO_BEPROEVING") == nullptr) setenv("OPDSALDO_BEPROEVING", "8", 1);
  for (const char* soort : {"scheur", "zes", "dood", "slot"}) {
    int status = -1;
    const std::string uit =
        draai_stil(std::string(BUILD_DIR) + "/tests/beproeving_" + soort + "_test", &status);
    EXPECT_EQ(status, 0) << soort << "\n" << uit;
  }
  unsetenv("OPDSALDO_KAART");
}

}  // namespace
