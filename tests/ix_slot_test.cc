// Locks between real processes, operation by operation. The agent is the second terminal. Death,
// torn reads and trees under load are the trials of beproeving_*.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <functional>

#include "isam/io.h"
#include "isam/ix.h"
#include "tests/support/agent.h"
#include "tests/support/ix_proef.h"

namespace {

/// Lock waits so far of a process, where the other can see them: [0] the test, [1] the agent.
std::atomic<int>* wachten;
int ik = 0;

void wacht_even(ICB*) {
  ++wachten[ik];
  usleep(2000);
}

ICB* agent_tabel = nullptr;

std::string agent_record(const std::string& doe, int nummer, int groep) {
  ProefRec r = proef_rec(nummer, "agent", groep);
  if (doe == "readl") {
    const bool er = IXREADL(agent_tabel, &r);
    return er ? "ja " + std::to_string(r.groep) : "nee";
  }
  if (doe == "read") return IXREAD(agent_tabel, &r) ? "ja " + std::to_string(r.groep) : "nee";
  if (doe == "write") return IXWRITE(agent_tabel, &r) ? "ja" : "nee";
  if (doe == "release") IXRELEASE(agent_tabel, &r);
  if (doe == "delete") {
    if (!IXREADL(agent_tabel, &r)) {
      IXRELEASE(agent_tabel, &r);
      return "nee";
    }
    IXDELETE(agent_tabel, &r);
  }
  if (doe == "vervang") {  // deletes a record and puts another into its slot
    agent_record("delete", nummer, 0);
    return agent_record("insert", groep, 1);
  }
  if (doe == "insert") {  // as a program does it
    if (!IXREADL(agent_tabel, &r)) r = proef_rec(nummer, "agent", groep);
    IXWRITE(agent_tabel, &r);
  }
  return "klaar";
}

std::string agent_doe(const std::string& opdracht) {
  ik = 1;
  ix_hooks.wacht = wacht_even;
  char doe[20] = {};
  int a = 0, b = 0, fd;
  sscanf(opdracht.c_str(), "%19s %d %d", doe, &a, &b);
  const std::string d = doe;
  if (d == "open") agent_tabel = IXOPEN("TAB", a);
  if (d == "sluit") IXCLOSE(agent_tabel);
  if (d == "slot" && io_bekend("TAB.TXT", &fd))
    return file_lock(static_cast<char>(a), fd, b, 1) ? "ja" : "nee";
  if (d == "schrijf") {
    const int log = open("log", O_RDWR | O_CREAT, 0660);
    for (int n = 0; n < a; ++n) locked_printf(log, "%s %5d\n", "agent", n);
    close(log);
  }
  if (d == "open" || d == "sluit" || d == "schrijf") return "klaar";
  return agent_record(d, a, b);
}

struct Slot : testing::Test {
  TempDir map;
  InMap in{map.pad};
  ICB* icb = nullptr;
  std::unique_ptr<Agent> agent;

  void SetUp() override {
    wachten = static_cast<std::atomic<int>*>(
        mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    ix_hooks.wacht = wacht_even;
    agent = std::make_unique<Agent>(agent_doe);
  }
  void TearDown() override {
    io_proef = IoProef{};
    ix_hooks = IX_HOOKS_KAAL;
    agent.reset();
    if (icb != nullptr) IXCLOSE(icb);
    munmap(wachten, 4096);
  }
  void vul(int aantal, int sleutels = 3) {
    IXCLOSE(proef_tabel("TAB", IX_EXCLUSIEF, sleutels));
    icb = IXOPEN("TAB", IX_GEDEELD);
    for (int n = 0; n < aantal; ++n) schrijf(n, n % 10);
    agent->ask("open 2");
  }
  void schrijf(int nummer, int groep) {
    ProefRec r = proef_rec(nummer, "test", groep);
    ASSERT_TRUE(IXWRITE(icb, &r));
  }
  /// Until the agent has been refused a lock once more.
  void agent_wacht() {
    const int was = wachten[1];
    for (int n = 0; n < 5000 && wachten[1] == was; ++n) usleep(1000);
    ASSERT_GT(wachten[1], was);
    ASSERT_FALSE(agent->answered());
  }
  size_t rij() { return static_cast<uint8_t>(bytes_blok(icb->key_count + 1)[4]); }
  std::string bytes_blok(int nr) {
    std::string b(512, 0);
    io_lees(icb->index_fd, b.data(), 512, nr * 512);
    return b;
  }
  void sluit_en_keur() {
    agent->ask("sluit");
    IXCLOSE(icb);
    icb = nullptr;
    EXPECT_EQ(tabel_fouten("TAB"), "");
  }
};

TEST_F(Slot, TheFourLetters) {
  vul(1);
  const int fd = icb->data_fd;
  EXPECT_TRUE(file_lock('S', fd, 10, 1));
  EXPECT_TRUE(file_lock('S', fd, 10, 1)) << "a process is never in its own way";
  EXPECT_TRUE(file_lock('E', fd, 10, 1));
  EXPECT_TRUE(file_lock('S', fd, 10, 1));
  EXPECT_EQ(agent->ask("slot " + std::to_string('S') + " 10"), "nee") << "sole, though a read lock";
  EXPECT_EQ(agent->ask("slot " + std::to_string('T') + " 10"), "nee");
  EXPECT_TRUE(file_lock('T', fd, 10, 1)) << "the refused one left nothing";
  EXPECT_EQ(agent->ask("slot " + std::to_string('E') + " 11"), "ja");
  EXPECT_FALSE(file_lock('S', fd, 0, 0)) << "length 0 is all of the file";
  EXPECT_FALSE(file_lock('E', fd, 11, 1));
  EXPECT_TRUE(file_lock('U', fd, 10, 1));
  EXPECT_EQ(agent->ask("slot " + std::to_string('S') + " 10"), "ja");
  agent->kill_now();
  EXPECT_TRUE(file_lock('S', fd, 0, 0)) << "the locks of a dead process are gone";
}

TEST_F(Slot, ARecordWaitsForItsHolder) {
  vul(5);
  ProefRec r = proef_rec(3);
  ASSERT_TRUE(IXREADL(icb, &r));
  EXPECT_EQ(agent->ask("readl 2"), "ja 2") << "another record is free";
  EXPECT_EQ(agent->ask("read 3"), "ja 3") << "reading takes no lock";
  agent->send("readl 3");
  agent_wacht();
  r.groep = 77;
  ASSERT_TRUE(IXWRITE(icb, &r));
  EXPECT_EQ(agent->answer(), "ja 77");
  r = proef_rec(3);
  EXPECT_EQ(agent->ask("release 3"), "klaar");
  ASSERT_TRUE(IXREADL(icb, &r));
  agent->send("readl 3");
  agent_wacht();
  IXRELEASE(icb, &r);
  EXPECT_EQ(agent->answer(), "ja 77");
  agent->ask("release 3");
  ASSERT_TRUE(IXREADL(icb, &r));
  ASSERT_TRUE(IXWRITEKEEP(icb, &r));
  agent->send("readl 3");
  agent_wacht();
  IXPUTREC(icb, &r);
  agent->answer();
}

TEST_F(Slot, AKeyYetToComeWaitsInTheQueue) {
  vul(5);
  ProefRec r = proef_rec(50, "nieuw", 5);
  IXSWITCH(icb, 2);
  EXPECT_FALSE(IXREADL(icb, &r)) << "whatever key is current, the queue holds key 1";
  EXPECT_EQ(rij(), 1U);
  EXPECT_EQ(bytes_blok(4).substr(5, 4), std::string("\0\0\0\x32", 4));
  EXPECT_EQ(icb->block.key_number, 2);
  agent->send("readl 50");
  agent_wacht();
  ASSERT_TRUE(IXWRITE(icb, &r));
  EXPECT_EQ(agent->answer(), "ja 5") << "the one who waited finds the record";
  EXPECT_EQ(rij(), 0U);
  EXPECT_EQ(bytes_blok(4), '\1' + std::string(511, '\0'));

  EXPECT_EQ(agent->ask("readl 60"), "nee");
  EXPECT_EQ(agent->ask("readl 61"), "nee");
  EXPECT_EQ(rij(), 2U);
  EXPECT_EQ(agent->ask("release 60"), "klaar");
  EXPECT_EQ(bytes_blok(4).substr(4, 9), std::string("\1\0\0\0\x3D\0\0\0\0", 9))
      << "the last fills the gap";
  const std::string voor = bytes_blok(4);
  r = proef_rec(99);
  IXRELEASE(icb, &r);
  EXPECT_EQ(bytes_blok(4), voor) << "a key that is not queued";
  agent->kill_now();
  EXPECT_EQ(rij(), 1U) << "the queue is on disk: a dead process leaves its key";
  IXCLOSE(icb);
  icb = nullptr;
  ASSERT_EQ(IXBLDIX("TAB"), 1);
  icb = IXOPEN("TAB", IX_GEDEELD);
  EXPECT_EQ(rij(), 0U);
}

TEST_F(Slot, TheQueueIsBounded) {
  ICB* breed = IXCREATE("BREED", IX_EXCLUSIEF);
  IXUPDFCB(breed, 0, "x,64");
  IXUPDFCB(breed, 1, "k,C,1,60");
  IXINITIX(breed);
  IXCLOSE(breed);
  icb = IXOPEN("BREED", IX_GEDEELD);
  std::string rec(64, 0);
  for (int n = 0; n < 8; ++n) {
    rec[0] = static_cast<char>('a' + n);
    EXPECT_FALSE(IXREADL(icb, rec.data()));
  }
  rec[0] = 'z';
  EXPECT_EXIT(IXREADL(icb, rec.data()), testing::ExitedWithCode(1),
              "BREED      : x  .*Lock queue vol\\.");
}

/// Has the agent act in the middle of what we do: right after our n-th read.
struct Storing {
  Storing(Agent& a, int na, std::string opdracht) {
    over = na;
    gedaan = false;
    ander = &a;
    doe = std::move(opdracht);
    io_proef.na_lees = [](int, void*, size_t, int64_t) {
      if (--over != 0) return;
      gedaan = true;
      ander->send(doe);
      // It may need a lock of ours: go on once it has been refused.
      const int was = wachten[1];
      for (int n = 0; n < 20000 && !ander->answered() && wachten[1] == was; ++n) usleep(100);
    };
  }
  void klaar() { io_proef.na_lees = nullptr; }

  static inline int over;
  static inline bool gedaan;
  static inline Agent* ander;
  static inline std::string doe;
};

TEST_F(Slot, ARecordDeletedBetweenSearchAndLock) {
  vul(40, 1);
  int na = 1, weg = 0;
  for (bool doorgegaan = true; doorgegaan && na < 40; ++na) {
    SCOPED_TRACE("after read " + std::to_string(na));
    // Deleted, and its slot used for another record before we look.
    Storing storing(*agent, na, "vervang 7 " + std::to_string(100 + na));
    ProefRec r = proef_rec(7);
    const bool er = IXREADL(icb, &r);
    storing.klaar();
    EXPECT_EQ(r.nummer, 7);
    ProefRec nu = proef_rec(7);
    EXPECT_EQ(IXREAD(icb, &nu), er);
    IXRELEASE(icb, &nu);
    doorgegaan = Storing::gedaan;
    if (doorgegaan) {
      EXPECT_EQ(agent->answer(), "klaar");
    }
    EXPECT_EQ(rij(), 0U);
    EXPECT_EQ(agent->ask("slot " + std::to_string('T') + " " + std::to_string(7 * 64)), "ja")
        << "nothing is left locked";
    weg += er ? 0 : 1;
    agent->ask("insert 7 7");
  }
  EXPECT_GT(weg, 0);
  EXPECT_LT(na, 40);
  sluit_en_keur();
}

TEST_F(Slot, ARecordEnteredBetweenSearchAndQueue) {
  vul(40, 1);
  int na = 1, ons = 0;
  for (bool doorgegaan = true; doorgegaan && na < 40; ++na) {
    SCOPED_TRACE("after read " + std::to_string(na));
    Storing storing(*agent, na, "insert " + std::to_string(100 + na) + " 5");
    ProefRec r = proef_rec(100 + na, "test", 9);
    const bool er = IXREADL(icb, &r);
    storing.klaar();
    ProefRec nu = proef_rec(100 + na);
    EXPECT_EQ(IXREAD(icb, &nu), er) << "with the key in hand nobody else enters it";
    if (er)
      IXRELEASE(icb, &r);
    else
      ASSERT_TRUE(IXWRITE(icb, &r));
    doorgegaan = Storing::gedaan;
    if (doorgegaan) agent->answer();
    EXPECT_EQ(rij(), 0U);
    ons += er ? 0 : 1;
  }
  EXPECT_GT(ons, 1);
  EXPECT_LT(na, 40);
  sluit_en_keur();
}

TEST_F(Slot, AnEmptiedLeafIsLeftForItsParent) {
  vul(200, 1);
  ASSERT_EQ(agent->ask("read 70"), "ja 0");
  for (int n = 40; n < 140; ++n) {
    ProefRec r = proef_rec(n);
    ASSERT_TRUE(IXREADL(icb, &r));
    IXDELETE(icb, &r);
  }
  EXPECT_EQ(agent->ask("read 70"), "nee");
  EXPECT_EQ(agent->ask("write 70 3"), "ja");
  schrijf(71, 4);
  EXPECT_EQ(agent->ask("read 71"), "ja 4");
  sluit_en_keur();
}

TEST_F(Slot, ExclusiveWaitsForEverybodyAndKeepsThemOut) {
  vul(5);
  agent->ask("sluit");
  ProefRec r = proef_rec(3);
  ASSERT_TRUE(IXREADL(icb, &r));
  agent->send("open 1");
  agent_wacht();
  schrijf(100, 1);  // the waiting one keeps nothing: an insert goes through
  IXRELEASE(icb, &r);
  EXPECT_EQ(agent->answer(), "klaar");
  EXPECT_EQ(agent->ask("write 101"), "ja") << "with the header of after the wait";
  r = proef_rec(3);
  EXPECT_TRUE(IXREAD(icb, &r)) << "readers go on";
  EXPECT_FALSE(IXLOCK(icb, 3));
  agent->ask("sluit");
  EXPECT_TRUE(IXLOCK(icb, 3));
  IXCLOSE(icb);
  icb = nullptr;
  EXPECT_EQ(tabel_fouten("TAB"), "");
}

TEST_F(Slot, LinesOfALogStayWhole) {
  agent->send("schrijf 200");
  const int log = open("log", O_RDWR | O_CREAT, 0660);
  ix_hooks.doos = [](int, int, const char*, const char*) { return static_cast<int>(usleep(500)); };
  for (int n = 0; n < 200; ++n) locked_printf(log, "%s %5d\n", "tests", n);
  EXPECT_EQ(agent->answer(), "klaar");
  close(log);
  const std::string b = bytes_van("log");
  ASSERT_EQ(b.size(), 400U * 12);
  int van_agent = 0;
  for (size_t p = 0; p < b.size(); p += 12) {
    ASSERT_EQ(b[p + 11], '\n');
    van_agent += b.substr(p, 5) == "agent" ? 1 : 0;
  }
  EXPECT_EQ(van_agent, 200);
}

}  // namespace
