// A data directory on two machines, as far as one machine can show it: one brick, two mounts, and
// the load of six writers and two readers spread over both. Skipped where no cluster can be had.
#include <algorithm>
#include <chrono>

#include "tests/support/gluster.h"
#include "tests/support/zes.h"
#include "tools/winkel_sloten.h"

namespace {

#define ALLEEN_MET_GLUSTER()                                       \
  if (const std::string mist = gluster_ontbreekt(); !mist.empty()) \
  GTEST_SKIP() << "no cluster file system can be tried here: " << mist

/// A table in a directory that two mounts show.
struct Keten {
  Gluster g{true};
  std::string a = g.koppel(), b = g.koppel();

  void tabel() const {
    InMap in(a);
    IXCLOSE(bep_tabel("TAB", IX_EXCLUSIEF));
  }
};

TEST(Cluster, VolumeFilesSayWhatWasChosen) {
  const std::string brick = volfile_brick("/srv/x y", 4711), los = volfile_koppel(4711, false);
  EXPECT_NE(brick.find("option directory /srv/x y\n"), std::string::npos);
  EXPECT_NE(brick.find("listen-port 4711\n"), std::string::npos);
  EXPECT_LT(brick.find("type storage/posix"), brick.find("type features/locks"));
  EXPECT_LT(brick.find("type features/locks"), brick.find("type protocol/server"));
  EXPECT_NE(los.find("remote-port 4711\n"), std::string::npos);
  EXPECT_EQ(los.find("strict-locks"), std::string::npos);
  EXPECT_NE(volfile_koppel(4711, true).find("option strict-locks on\n"), std::string::npos);
  EXPECT_EQ(std::count(brick.begin(), brick.end(), '\n'), 16);
}

TEST(Cluster, TheProofTakesTwoMountsWithoutCachesAndRefusesOthers) {
  ALLEEN_MET_GLUSTER();
  Keten k;
  ASSERT_NE(k.a, "");
  ASSERT_NE(k.b, "");
  EXPECT_EQ(sloten_proef(k.a, k.b, SLOT_KORT), "");
  EXPECT_EQ(sloten_proef(k.b, k.a, SLOT_KORT), "");
  const std::string c = k.g.koppel({}), d = k.g.koppel({});
  ASSERT_NE(d, "");
  EXPECT_NE(sloten_proef(c, d, SLOT_KORT), "") << "caches of one second";
}

TEST(Cluster, SixProcessesThroughTwoMounts) {
  ALLEEN_MET_GLUSTER();
  Keten k;
  ASSERT_NE(k.a, "");
  ASSERT_NE(k.b, "");
  k.tabel();
  Samen<Stand> stand;
  const int seconden = beproeving_seconden();
  ZesKinderen kinderen = zes_start(stand, seconden, {k.a, k.b});
  zes_einde(kinderen, *stand, seconden + 60, 5);
  for (const std::string& map : {k.a, k.b, k.g.brick()}) {
    InMap in(map);
    SCOPED_TRACE(map);
    zes_keur(*stand);
  }
  printf("%ld operations\n", zes_gedaan(*stand));
}

/// Operations in a second of one process alone: reads, and changes under the lock.
std::pair<double, double> tempo(const std::string& map) {
  InMap in(map);
  ICB* icb = bep_tabel("TEMPO", IX_GEDEELD);
  const auto meet = [](int n, const std::function<void(int)>& doe) {
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < n; ++i) doe(i);
    return n / std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  const double schrijft = meet(300, [&](int i) {
    BepRec r = bep_rec(i * 37 % 300);
    IXREADL(icb, &r);
    r = bep_rec(i * 37 % 300, i);
    IXWRITE(icb, &r);
  });
  const double leest = meet(1000, [&](int i) {
    BepRec r = bep_rec(i * 37 % 300);
    IXREAD(icb, &r);
  });
  IXCLOSE(icb);
  return {leest, schrijft};
}

TEST(Cluster, WhatItCosts) {
  ALLEEN_MET_GLUSTER();
  Keten k;
  ASSERT_NE(k.a, "");
  TempDir hier;
  for (int keer = 0; keer < 3; ++keer) {
    const auto [leest, schrijft] = tempo(hier.pad);
    const auto [leest_c, schrijft_c] = tempo(k.a);
    printf("read %.0f/s here, %.0f/s there: 1 in %.0f; changed %.0f/s, %.0f/s: 1 in %.0f\n", leest,
           leest_c, leest / leest_c, schrijft, schrijft_c, schrijft / schrijft_c);
    for (const std::string& map : {hier.pad, k.a})
      for (const char* deel : {"/TEMPO.TXT", "/TEMPO.INX"}) unlink((map + deel).c_str());
  }
}

/// What stood acknowledged well before the brick fell, was not changed since, and is not there now.
int zes_verloren(const Stand& toen, const Stand& nu, const std::map<int32_t, BepRec>& inhoud) {
  int verloren = 0;
  for (int reeks = 0; reeks <= SCHRIJVERS; ++reeks)
    for (int nr = 0; nr < PER_REEKS; ++nr) {
      const Vak &v = toen.vak[reeks][nr], &w = nu.vak[reeks][nr];
      if (!v.leeft || !w.leeft || !bep_gelijk(v.rec, w.rec)) continue;
      const auto het = inhoud.find(reeks * AFSTAND + nr);
      verloren += het == inhoud.end() || !bep_gelijk(het->second, v.rec) ? 1 : 0;
    }
  return verloren;
}

/// Who had a lock when the connection went, waits until he is ended; others are told that the table
/// is inconsistent, or miss the change that was under way. How each ends is only told.
void einde_na_val(ZesKinderen& kinderen, int rest) {
  const time_t uiterlijk = time(nullptr) + rest;
  for (auto& kind : kinderen) {
    const std::string e = kind->einde(std::max(1, static_cast<int>(uiterlijk - time(nullptr))));
    printf("%s\n", e.empty() ? "went on" : e.c_str());
  }
  kinderen.clear();
}

TEST(Cluster, ABrickThatFallsTakesOnlyWhatWasUnderWay) {
  ALLEEN_MET_GLUSTER();
  Keten k;
  ASSERT_NE(k.a, "");
  ASSERT_NE(k.b, "");
  k.tabel();
  Samen<Stand> stand, toen;
  const int half = std::max(4, beproeving_seconden() / 2);
  ZesKinderen kinderen = zes_start(stand, 2 * half, {k.a, k.b});
  sleep(static_cast<unsigned>(half - 2));
  memcpy(toen->vak, stand->vak, sizeof toen->vak);
  sleep(2);  // what was under way at that moment is through
  k.g.stop_brick();
  sleep(1);
  k.g.start_brick();
  einde_na_val(kinderen, half + 5);
  ASSERT_TRUE(k.g.wacht_op(k.a)) << "the mounts come back by themselves";
  ASSERT_TRUE(k.g.wacht_op(k.b));
  // The mounts know old names for a moment after they came back.
  std::string proef = sloten_proef(k.a, k.b, SLOT_KORT);
  for (int keer = 0; keer < 5 && !proef.empty(); ++keer) {
    printf("%s\n", proef.c_str());
    sleep(1);
    proef = sloten_proef(k.a, k.b, SLOT_KORT);
  }
  EXPECT_EQ(proef, "");
  InMap in(k.b);
  printf("IXCHECK %d\n", IXCHECK("TAB"));
  ASSERT_EQ(IXBLDIX("TAB"), 1);
  EXPECT_GE(IXCHECK("TAB"), 0);
  EXPECT_EQ(tabel_fouten("TAB"), "");
  std::string fout;
  const auto inhoud = bep_inhoud("TAB", &fout);
  // Under way was one write a process, and one across two pages may have been done by half.
  printf("%s\n", fout.c_str());
  EXPECT_EQ(fout.find("twice"), std::string::npos) << fout;
  EXPECT_LE(std::count(fout.begin(), fout.end(), ';'), 6) << fout;
  EXPECT_EQ(zes_verloren(*toen, *stand, inhoud), 0);
  printf("%zu records after %ld operations\n", inhoud.size(), zes_gedaan(*stand));
}

bool neem_kop(const std::string& map) {
  const int fd = open((map + "/TAB.INX").c_str(), O_RDWR | O_CLOEXEC);
  return fd >= 0 && file_lock('E', fd, 0, IX_BLOK);  // stays open: a close would give it up
}

TEST(Cluster, AMachineThatFallsLeavesNoLock) {
  ALLEEN_MET_GLUSTER();
  Keten k;
  ASSERT_NE(k.a, "");
  ASSERT_NE(k.b, "");
  k.tabel();
  Samen<std::atomic<bool>> heeft;
  Kind houder([&] {
    *heeft = neem_kop(k.a);
    for (;;) pause();
    return std::string();
  });
  for (int n = 0; n < 1000 && !*heeft; ++n) usleep(10000);
  ASSERT_TRUE(*heeft);
  ASSERT_FALSE(neem_kop(k.b));
  kill(k.g.koppels[0].pid, SIGKILL);  // the machine's mount, with its holder still there
  const auto begin = std::chrono::steady_clock::now();
  bool vrij = false;
  for (int n = 0; n < 6000 && !(vrij = neem_kop(k.b)); ++n) usleep(10000);
  EXPECT_TRUE(vrij);
  const std::chrono::duration<double, std::milli> ms = std::chrono::steady_clock::now() - begin;
  printf("free after %.0f ms\n", ms.count());
}

}  // namespace
