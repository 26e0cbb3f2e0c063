// Locks as other processes see them: none is lost to something the holder opens and closes on the
// side; a waiter goes on when the lock goes, whoever lets go of it or dies; nobody mistakes a tree
// in the middle of a split for one that lacks the record; parents remembered from before another's
// splits do no harm.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <set>
#include <vector>

#include "isam/base.h"
#include "tests/support/agent.h"
#include "tests/support/beproeving.h"

namespace {

/// Lock tries that were refused, by process: 0 the test, then the agents.
std::atomic<int>* geweigerd;
int ik = 0;

void wacht_even(ICB*) {
  ++geweigerd[ik];
  usleep(1000);
}

int te_gaan = 0;

/// Another terminal: "open 2", "readl 17", "write 17 3", "stil 4" (stops before its 4th write).
struct Terminal {
  explicit Terminal(int nummer) {
    agent = std::make_unique<Agent>([nummer](const std::string& wat) { return doe(nummer, wat); });
  }

  static std::string wie(const char* pad, int64_t van, int64_t lengte) {
    const int fd = open(pad, O_RDWR);
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_start = van;
    fl.l_len = lengte;
    const bool goed = fcntl(fd, F_GETLK, &fl) == 0;
    close(fd);
    if (!goed) return "?";
    return fl.l_type == F_UNLCK ? "niemand" : std::to_string(fl.l_pid);
  }

  static std::string doe(int nummer, const std::string& opdracht) {
    static ICB* icb = nullptr;
    ik = nummer;
    ix_hooks.wacht = wacht_even;
    char d[20] = {};
    int a = 0, b = 0;
    sscanf(opdracht.c_str(), "%19s %d %d", d, &a, &b);
    const std::string wat = d;
    BepRec r = bep_rec(a, b, b);
    if (wat == "open") icb = IXOPEN("TAB", a);
    if (wat == "sluit") IXCLOSE(icb);
    if (wat == "sleutel") IXSWITCH(icb, a);
    if (wat == "data") return wie("TAB.TXT", a, b);
    if (wat == "index") return wie("TAB.INX", a, b);
    if (wat == "readl") return IXREADL(icb, &r) ? "ja" : "nee";
    if (wat == "read") return IXREAD(icb, &r) ? "ja" : "nee";
    if (wat == "release") IXRELEASE(icb, &r);
    if (wat == "write") return IXWRITE(icb, &r) ? "ja" : "nee";
    if (wat == "schrijf") {  // lock, look, write
      BepRec was = bep_rec(a);
      const bool er = IXREADL(icb, &was);
      return IXWRITE(icb, &r) ? (er ? "ja" : "nee") : "fout";
    }
    if (wat == "delete") {
      const bool er = IXREADL(icb, &r);
      er ? void(IXDELETE(icb, &r)) : IXRELEASE(icb, &r);
      return er ? "ja" : "nee";
    }
    if (wat == "stil") {
      te_gaan = a;
      io_proef.voor_schrijf = [](int, int64_t, size_t) {
        if (--te_gaan == 0) raise(SIGSTOP);
      };
    }
    return "klaar";
  }

  std::string vraag(const std::string& wat) { return agent->ask(wat); }
  std::unique_ptr<Agent> agent;
};

struct Sloten : testing::Test {
  TempDir map;
  InMap in{map.pad};
  struct Tellers {
    std::atomic<int> geweigerd[3];
  };
  Samen<Tellers> tellers;
  ICB* icb = nullptr;
  std::unique_ptr<Terminal> een, twee;

  void SetUp() override {
    geweigerd = tellers->geweigerd;
    ix_hooks.wacht = wacht_even;
    een = std::make_unique<Terminal>(1);
    twee = std::make_unique<Terminal>(2);
    IXCLOSE(bep_tabel("TAB", IX_EXCLUSIEF));
  }
  void TearDown() override {
    een.reset();
    twee.reset();
    if (icb != nullptr) IXCLOSE(icb);
    ix_hooks = IX_HOOKS_KAAL;
  }
  void vul(int aantal, int stap = 10) {
    icb = IXOPEN("TAB", IX_GEDEELD);
    for (int n = 0; n < aantal; ++n) {
      BepRec r = bep_rec(n * stap);
      ASSERT_TRUE(IXWRITE(icb, &r));
    }
    een->vraag("open 2");
    twee->vraag("open 2");
  }
  /// Until the terminal has answered or been refused a lock.
  static bool antwoordt(Terminal& t, int nummer) {
    const int was = geweigerd[nummer];
    for (int n = 0; n < 10000 && !t.agent->answered() && geweigerd[nummer] < was + 2; ++n)
      usleep(1000);
    return t.agent->answered();
  }
  void sluit() {
    een->vraag("sluit");
    twee->vraag("sluit");
    IXCLOSE(icb);
    icb = nullptr;
    EXPECT_EQ(tabel_fouten("TAB"), "");
    std::string fout;
    bep_inhoud("TAB", &fout);
    EXPECT_EQ(fout, "");
  }
};

// Nothing that is closed on the side drops a lock -------------------------------------------------

struct Zijweg {
  const char* naam;
  void (*doe)();
};

void maak_prive() {
  ICB* p = IXCREATE("TAB.V01", IX_EXCLUSIEF);
  IXUPDFCB(p, 0, "prive,152");
  IXUPDFCB(p, 1, "groep,I,5,6");
  IXINITIX(p);
  IXBULK('O', p, nullptr);
  p->record_no = 3;
  BepRec r = bep_rec(30);
  IXBULK('W', p, &r);
  IXBULK('C', p, nullptr);
  IXCLOSE(p);
}

void tweede(const char* naam, int mode) {
  ICB* t = IXOPEN(naam, mode);
  BepRec r = bep_rec(50);
  IXREAD(t, &r);
  IXNEXT(t, &r);
  IXSEQ(t, &r);
  IXGET(t, &r, 2);
  IXCLOSE(t);
}

void los_bestand() {
  const int fd = open("logboek", O_RDWR | O_CREAT, 0660);
  locked_printf(fd, "%s\n", "regel");
  close(fd);
}

const Zijweg ZIJWEGEN[] = {
    {"a private index made, filled and closed", maak_prive},
    {"a private index opened alone", [] { IXCLOSE(IXOPEN("TAB.V01", IX_EXCLUSIEF)); }},
    {"a private index changed in shared mode",
     [] {
       ICB* p = IXOPEN("TAB.V01", IX_GEDEELD);
       p->record_no = 5;
       BepRec r = bep_rec(50);
       IXADDKEYS(p, &r);
       IXNEXT(p, &r);
       IXCLOSE(p);
     }},
    {"IXCHECK of the table", [] { EXPECT_GE(IXCHECK("TAB"), 0); }},
    {"IXCHECK of the private index", [] { EXPECT_GE(IXCHECK("TAB.V01"), 0); }},
    {"IXCHECK of what is not there", [] { EXPECT_EQ(IXCHECK("WEG"), -1); }},
    {"IXBLDIX of the private index", [] { EXPECT_EQ(IXBLDIX("TAB.V01"), 0); }},
    {"a private index removed", [] { EXPECT_TRUE(IXREMOVE("TAB.V01")); }},
    {"a second handle to read", [] { tweede("TAB", IX_LEES); }},
    {"a second handle to write", [] { tweede("TAB", IX_GEDEELD); }},
    {"by another path", [] { tweede("./TAB", IX_LEES); }},
    {"by a symbolic link", [] { tweede("ANDERS", IX_LEES); }},
    {"by a hard link", [] { tweede("HARD", IX_LEES); }},
    {"a copy of the data", [] { EXPECT_TRUE(file_copy("TAB.TXT", "kopie", 0)); }},
    {"a copy by its hard link", [] { EXPECT_TRUE(file_copy("HARD.TXT", "kopie", 0)); }},
    {"an appended copy", [] { EXPECT_TRUE(file_copy("TAB.TXT", "kopie", 1)); }},
    {"a copy of the index", [] { EXPECT_TRUE(file_copy("TAB.INX", "kopie2", 0)); }},
    {"a copy over the data", [] { EXPECT_FALSE(file_copy("kopie", "TAB.TXT", 0)); }},
    {"a copy behind the data", [] { EXPECT_FALSE(file_copy("kopie", "TAB.TXT", 1)); }},
    {"a copy over its link", [] { EXPECT_FALSE(file_copy("kopie", "HARD.TXT", 0)); }},
    {"a copy onto itself", [] { EXPECT_FALSE(file_copy("TAB.TXT", "HARD.TXT", 0)); }},
    {"questions about files",
     [] {
       EXPECT_TRUE(file_exists("TAB.TXT"));
       EXPECT_GT(file_size("TAB.TXT"), 0);
       EXPECT_GE(FILES_PRESENT("*"), 4);
       EXPECT_GT(files_open_limit(), 0);
       file_temp("", "XX", 0);
     }},
    {"a log", los_bestand},
    {"another table made, rebuilt and removed",
     [] {
       IXCLOSE(bep_tabel("ANDER", IX_EXCLUSIEF));
       EXPECT_EQ(IXBLDIX("ANDER"), 1);
       EXPECT_TRUE(IXREMOVE("ANDER"));
     }},
};

TEST_F(Sloten, NothingClosedOnTheSideDropsOne) {
  maak_prive();
  ICB* eerst = IXOPEN("TAB.V01", IX_LEES);  // the table's data, opened by another first
  vul(30);
  ASSERT_EQ(symlink("TAB.TXT", "ANDERS.TXT") + symlink("TAB.INX", "ANDERS.INX"), 0);
  ASSERT_EQ(link("TAB.TXT", "HARD.TXT") + link("TAB.INX", "HARD.INX"), 0);
  BepRec r = bep_rec(70), rest = bep_rec(71);
  ASSERT_TRUE(IXREADL(icb, &r));
  const std::string plek = std::to_string(icb->record_no * icb->record_length) + " 152";
  const std::string wij = std::to_string(getpid());
  ASSERT_EQ(een->vraag("data " + plek), wij);
  IXCLOSE(eerst);
  EXPECT_EQ(een->vraag("data " + plek), wij) << "the one that opened it first is closed";
  for (const Zijweg& z : ZIJWEGEN) {
    z.doe();
    EXPECT_EQ(een->vraag("data " + plek), wij) << z.naam;
  }
  // Nor does work on other records of the same handle.
  ICB* ander = IXOPEN("TAB", IX_GEDEELD);
  EXPECT_FALSE(IXREADL(ander, &rest));
  EXPECT_TRUE(IXWRITE(ander, &rest));
  EXPECT_EQ(een->vraag("data " + plek), wij) << "a record entered";
  EXPECT_TRUE(IXREADL(ander, &rest));
  IXDELETE(ander, &rest);
  EXPECT_EQ(een->vraag("data " + plek), wij) << "a record deleted";
  EXPECT_TRUE(IXWRITE(ander, &rest));
  EXPECT_EQ(een->vraag("data " + plek), wij) << "into a freed slot";
  IXCLOSE(ander);
  EXPECT_EQ(een->vraag("data " + plek), wij);
  IXRELEASE(icb, &r);
  EXPECT_EQ(een->vraag("data 0 0"), "niemand") << "and nothing else was ever left locked";
  EXPECT_EQ(een->vraag("index 0 0"), "niemand");
  sluit();
}

TEST_F(Sloten, TheWholeFileStaysHeldToo) {
  vul(30);
  een->vraag("sluit");
  twee->vraag("sluit");
  IXCLOSE(icb);
  maak_prive();
  icb = IXOPEN("TAB", IX_EXCLUSIEF);
  const std::string wij = std::to_string(getpid());
  const auto houdt = [&] {
    return een->vraag("data 0 0") == wij && een->vraag("index 0 512") == wij;
  };
  ASSERT_TRUE(houdt());
  maak_prive();
  EXPECT_TRUE(houdt());
  EXPECT_GE(IXCHECK("TAB.V01"), 0);
  EXPECT_TRUE(houdt());
  EXPECT_TRUE(file_copy("TAB.INX", "kopie", 0) && file_copy("TAB.TXT", "kopie", 1));
  EXPECT_TRUE(houdt());
  BepRec r = bep_rec(20, 1);
  EXPECT_TRUE(IXREADL(icb, &r) && IXWRITE(icb, &r));
  r = bep_rec(30);
  IXREADL(icb, &r);
  IXDELETE(icb, &r);
  EXPECT_TRUE(houdt());
  IXCLOSE(icb);
  EXPECT_EQ(een->vraag("data 0 0") + een->vraag("index 0 0"), "niemandniemand");
  icb = IXOPEN("TAB", IX_LEES);
  een->vraag("open 2");
  twee->vraag("open 2");
  sluit();
}

// Waiting -----------------------------------------------------------------------------------------

TEST_F(Sloten, AWaiterGoesOnWhenTheHolderDies) {
  vul(30);
  EXPECT_EQ(een->vraag("readl 50"), "ja");
  twee->agent->send("readl 50");
  EXPECT_FALSE(antwoordt(*twee, 2));
  een->agent->kill_now();
  EXPECT_EQ(twee->agent->answer(), "ja") << "a record lock dies with its holder";
  EXPECT_EQ(twee->vraag("write 50 7"), "ja");

  een = std::make_unique<Terminal>(1);
  een->vraag("open 2");
  EXPECT_EQ(een->vraag("readl 51"), "nee");
  twee->agent->send("schrijf 51 2");
  EXPECT_FALSE(antwoordt(*twee, 2));
  EXPECT_EQ(een->vraag("write 51 1"), "ja");
  EXPECT_EQ(twee->agent->answer(), "ja") << "whoever waited for the key finds the record";

  EXPECT_EQ(een->vraag("readl 52"), "nee");
  een->agent->kill_now();
  twee->agent->send("readl 52");
  EXPECT_FALSE(antwoordt(*twee, 2)) << "a queued key outlives its owner";
  twee->agent->kill_now();
  IXCLOSE(icb);
  ASSERT_EQ(IXBLDIX("TAB"), 1);
  icb = IXOPEN("TAB", IX_GEDEELD);
  BepRec r = bep_rec(52);
  EXPECT_FALSE(IXREADL(icb, &r)) << "until a rebuild";
  r = bep_rec(52, 2);
  EXPECT_TRUE(IXWRITE(icb, &r));
  een = std::make_unique<Terminal>(1);
  twee = std::make_unique<Terminal>(2);
  een->vraag("open 2");
  twee->vraag("open 2");
  sluit();
}

// A tree in the middle of a change ----------------------------------------------------------------

/// One enters `nieuw` and stands still before each of its writes in turn; meanwhile the other does
/// `wat`, of which the answer is known.
struct Midden : Sloten {
  void elke_stand(int32_t nieuw, const std::string& wat, const std::string& soll) {
    een->vraag("sluit");
    twee->vraag("sluit");
    IXCLOSE(icb);
    icb = nullptr;
    const BepKopie begin("TAB");
    for (int n = 1;; ++n) {
      SCOPED_TRACE(wat + ", the other before write " + std::to_string(n));
      ASSERT_LT(n, 60);
      begin.terug();
      een->vraag("open 2");
      twee->vraag("open 2");
      twee->vraag("read 0");
      een->vraag("stil " + std::to_string(n));
      een->agent->send("write " + std::to_string(nieuw));
      int status = 0;
      while (!een->agent->answered() && waitpid(een->agent->pid, &status, WUNTRACED | WNOHANG) == 0)
        usleep(200);
      const bool heel = een->agent->answered();
      twee->agent->send(wat);
      antwoordt(*twee, 2);
      kill(een->agent->pid, SIGCONT);
      EXPECT_EQ(een->agent->answer(), "ja");
      EXPECT_EQ(twee->agent->answer(), soll);
      EXPECT_EQ(een->vraag("stil 0"), "klaar");
      if (wat.starts_with("readl")) twee->vraag("release" + wat.substr(5));
      EXPECT_EQ(een->vraag("data 0 0"), "niemand") << "a lock is left";
      een->vraag("sluit");
      twee->vraag("sluit");
      ASSERT_EQ(tabel_fouten("TAB"), "");
      std::string fout;
      bep_inhoud("TAB", &fout);
      ASSERT_EQ(fout, "");
      if (heel) break;
    }
    een->vraag("open 2");
    twee->vraag("open 2");
    icb = IXOPEN("TAB", IX_LEES);
  }
};

TEST_F(Midden, ARecordThatMovesIsNotMissing) {
  vul(40);
  // Until the first leaf is full: the next one sends 0, 1, 2 ... to a new lower leaf.
  int32_t n = 0, was = 0;
  std::unique_ptr<BepKopie> vol;
  do {
    vol = std::make_unique<BepKopie>("TAB");
    was = icb->next_block;
    BepRec r = bep_rec(++n);
    ASSERT_TRUE(IXWRITE(icb, &r));
  } while (icb->next_block == was);
  vol->terug();
  elke_stand(n, "readl 0", "ja");
  elke_stand(n, "schrijf 0 5", "ja");
  elke_stand(n, "readl 777", "nee");
  sluit();
}

// Parents from before another's splits ------------------------------------------------------------

struct Ouders : Sloten {
  int niveau(int sleutel) {
    char b[512];
    EXPECT_EQ(io_lees(icb->index_fd, b, 512, sleutel * 512), 512);
    return b[1];
  }
};

/// The first change after another's splits starts from the leaf that the handle stands on: it must
/// be one that goes up to the parent.
TEST_F(Ouders, TheRootGrowsWhileOneStandsOnALeaf) {
  for (int diepte = 2; diepte <= 4; ++diepte)
    for (const int sleutel : {1, 3}) {  // enters into a full leaf; deletes the last of a leaf
      SCOPED_TRACE("key " + std::to_string(sleutel) + " level " + std::to_string(diepte));
      ASSERT_TRUE(IXREMOVE("TAB"));
      IXCLOSE(bep_tabel("TAB", IX_EXCLUSIEF));
      icb = IXOPEN("TAB", IX_GEDEELD);
      std::set<int32_t> er;
      BepRec r{};
      const auto schrijf = [&](int32_t n) {
        r = bep_rec(n);
        ASSERT_TRUE(IXWRITE(icb, &r));
        er.insert(n);
      };
      /// Reads along the key, so that the handle stands on the leaf; the place of the entry there.
      const auto sta_op = [&](int32_t n) {
        IXSWITCH(icb, 1);
        r = bep_rec(n);
        EXPECT_TRUE(IXREAD(icb, &r));
        IXSWITCH(icb, sleutel);
        EXPECT_TRUE(IXREAD(icb, &r));
        EXPECT_EQ(icb->block.level, 1);
        return (icb->entry - 5) / (icb->keys[sleutel - 1].key_length + 4);
      };
      for (int32_t n = 0; niveau(sleutel) < diepte || n < 30; ++n) schrijf(100000 + n * 100);
      een->vraag("open 2");
      twee->vraag("open 2");
      auto plek = std::next(er.begin(), sleutel == 1 ? static_cast<long>(er.size() / 2) : 0);
      if (sleutel == 1)
        while (sta_op(*plek) == 0 || icb->entry + 100 > 5 + icb->block.count * 52) ++plek;
      else
        while (sta_op(*plek) != icb->block.count - 1 || icb->block.count < 3) ++plek;
      const int32_t hier = *plek;
      for (int32_t n = 50; sleutel == 1 && icb->block.count < 8; ++n) {
        schrijf(hier + n);
        sta_op(hier);
      }
      // The other splits what is above: left of us, then right, until the root has grown.
      const int was = niveau(sleutel);
      for (int32_t n = 0; niveau(sleutel) == was || n % 10 != 0; ++n) {
        const int32_t nieuw = (n % 2 == 0 ? 1 : 900000) + n * 7;
        ASSERT_EQ(een->vraag("write " + std::to_string(nieuw)), "ja");
        er.insert(nieuw);
      }
      if (sleutel == 1) {
        schrijf(hier + 1);
      } else {
        ASSERT_TRUE(IXREADL(icb, &r));
        IXDELETE(icb, &r);
        er.erase(hier);
      }
      IXSWITCH(icb, 1);
      for (int32_t n : er) ASSERT_EQ(een->vraag("read " + std::to_string(n)), "ja") << n;
      sluit();
      std::string fout;
      ASSERT_EQ(bep_inhoud("TAB", &fout).size(), er.size());
      ASSERT_FALSE(HasFailure());
    }
}

/// Two take turns at random, each from wherever its last operation left it.
TEST_F(Ouders, TurnsAtRandom) {
  const uint32_t zaad = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(zaad));
  std::minstd_rand kans(zaad);
  vul(0);
  Terminal* beide[] = {een.get(), twee.get()};
  std::set<int32_t> er;
  for (int ronde = 0; ronde < 150 && !HasFailure(); ++ronde) {
    Terminal& t = *beide[kans() % 2];
    t.vraag("sleutel " + std::to_string(1 + kans() % 3));
    const auto rond = static_cast<int32_t>(kans() % 3000);
    for (int n = static_cast<int>(kans() % 25); n >= 0; --n) {
      const int32_t nummer = rond + static_cast<int32_t>(kans() % 30);
      if (kans() % 3 > 0) {
        ASSERT_EQ(t.vraag("write " + std::to_string(nummer) + " " + std::to_string(kans() % 500)),
                  "ja");
        er.insert(nummer);
      } else {
        t.vraag("sleutel 1");
        ASSERT_EQ(t.vraag("delete " + std::to_string(nummer)), er.erase(nummer) > 0 ? "ja" : "nee");
      }
    }
  }
  sluit();
  std::string fout;
  EXPECT_EQ(bep_inhoud("TAB", &fout).size(), er.size());
}

}  // namespace
