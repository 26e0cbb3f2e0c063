// Six processes change one table at random while two others read it. Each keeps what was
// acknowledged: of its own numbers alone, of the contended ones under the lock of IXREADL. What is
// read under a lock must be what was last acknowledged, what is read without one must be whole, and
// at the end the files must hold exactly what was acknowledged. Each process may have a directory
// of its own to see the table through.
#pragma once

#include <gtest/gtest.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

#include "tests/support/beproeving.h"

inline constexpr int SCHRIJVERS = 6, LEZERS = 2;
inline constexpr int GEDEELD = SCHRIJVERS;  // the range that all of them change
inline constexpr int PER_REEKS = 300;
inline constexpr int32_t AFSTAND = 100000;

struct Vak {
  bool leeft;
  BepRec rec;
};

struct Stand {
  Vak vak[SCHRIJVERS + 1][PER_REEKS];
  std::atomic<long> gedaan[SCHRIJVERS + LEZERS];
};

inline std::string verschil(const char* wat, int32_t nummer, const Vak& v, bool er,
                            const BepRec& r) {
  return std::string(wat) + " " + std::to_string(nummer) + ": " +
         (er ? "read " + bep_toon(r) : "not there") + ", acknowledged " +
         (v.leeft ? bep_toon(v.rec) : "nothing");
}

struct Werker {
  Stand& stand;
  int ik;
  std::minstd_rand kans;
  ICB* icb = nullptr;
  std::string fout{};

  int tot(int n) { return static_cast<int>(kans() % static_cast<uint32_t>(n)); }

  bool hetzelfde(const char* wat, int32_t nummer, const Vak& v, bool er, const BepRec& r) {
    if (er == v.leeft && (!er || bep_gelijk(r, v.rec))) return true;
    fout = verschil(wat, nummer, v, er, r);
    return false;
  }

  /// Reads without a lock may miss a record that another process's split is moving.
  bool lees(int32_t nummer, const Vak& v) {
    BepRec r = bep_rec(nummer);
    bool er = IXREAD(icb, &r);
    for (int n = 0; n < 2000 && er != v.leeft; ++n) {
      sched_yield();
      r = bep_rec(nummer);
      er = IXREAD(icb, &r);
    }
    return hetzelfde("read", nummer, v, er, r);
  }

  /// Acknowledged before the lock goes: whoever gets it next must find this.
  void schrijf(Vak& v, const BepRec& nieuw) {
    v.rec = nieuw;
    v.leeft = true;
    BepRec r = nieuw;
    const int hoe = tot(8);
    if (hoe == 0) {
      if (!IXWRITEKEEP(icb, &r)) fout = "not written " + bep_toon(nieuw);
      IXRELEASE(icb, &r);
    } else if (hoe == 1) {
      if (!IXWRITEKEEP(icb, &r)) fout = "not written " + bep_toon(nieuw);
      r = bep_rec(nieuw.nummer);
      if (!IXREAD(icb, &r) && !IXREAD(icb, &r)) return void(IXRELEASE(icb, &r));
      IXPUTREC(icb, &r);
    } else if (!IXWRITE(icb, &r)) {
      fout = "not written " + bep_toon(nieuw);
    }
  }

  /// One change under the lock; key 1 is current, as it is for whoever may insert.
  void onder_slot(int32_t nummer, Vak& v) {
    BepRec r = bep_rec(nummer);
    const bool er = IXREADL(icb, &r);
    if (!hetzelfde("locked", nummer, v, er, r)) return;
    const int wat = tot(10);
    if (wat == 0) {
      r = bep_rec(nummer);
      return IXRELEASE(icb, &r);
    }
    if (!er) return schrijf(v, bep_rec(nummer, tot(1000), tot(1000)));
    if (wat < 4) {
      v.leeft = false;
      IXDELETE(icb, &r);
    } else if (wat < 7) {
      schrijf(v, bep_rec(nummer, tot(1000), r.versie + 1));
    } else {
      BepRec nieuw = r;
      ++nieuw.versie;
      nieuw.som = bep_som(nieuw);
      schrijf(v, nieuw);
    }
  }

  void wandel() {
    IXSWITCH(icb, 1 + tot(3));
    const int velden = tot(2);
    BepRec r = bep_rec(tot(SCHRIJVERS + 1) * AFSTAND + tot(PER_REEKS), tot(1000));
    bool er = IXFIRSTR(icb, &r);
    for (int n = 0; er && n < 30; ++n) {
      if (!bep_heel(r)) fout = "walked into " + bep_toon(r);
      er = n % 7 == 6 ? IXPREV(icb, &r) : IXNEXT(icb, &r, velden);
    }
    IXSWITCH(icb, 1);
  }

  void plaatsen() {
    BepRec r;
    for (int n = 0; n < 40 && IXSEQ(icb, &r); ++n)
      if (!bep_heel(r)) fout = "scanned " + bep_toon(r);
    IXSEQ_STOP();
    for (int n = 0; n < 5; ++n)
      if (IXGET(icb, &r, tot(2000)) == 1 && !bep_heel(r)) fout = "got " + bep_toon(r);
  }

  void stap_schrijver() {
    const int wat = tot(100);
    const int nr = tot(PER_REEKS);
    const int32_t eigen = ik * AFSTAND + nr, samen = GEDEELD * AFSTAND + nr % 25;
    Vak& v = stand.vak[ik][nr];
    if (wat < 25)
      onder_slot(samen, stand.vak[GEDEELD][nr % 25]);
    else if (wat < 55)
      onder_slot(eigen, v);
    else if (wat < 70)
      schrijf(v, bep_rec(eigen, tot(1000), tot(1000)));  // nobody else has a use for it
    else if (wat < 85)
      lees(eigen, v);
    else if (wat < 93)
      wandel();
    else if (wat < 98)
      plaatsen();
    else if (wat == 98 && IXCHECK("TAB") < 0)
      fout = "IXCHECK under the header lock";
    else if (wat == 99) {
      IXCLOSE(icb);
      icb = IXOPEN("TAB", IX_GEDEELD);
    }
  }

  /// Others get their turn in the middle of an operation, more often than a scheduler gives it.
  static void stoor() {
    static uint32_t teller = static_cast<uint32_t>(getpid());
    teller = teller * 1664525U + 1013904223U;
    if (teller >> 24 < 8) usleep(teller >> 8 & 255);
  }

  std::string loop(int seconden) {
    ix_hooks.wacht = [](ICB*) { usleep(300); };
    io_proef.voor_schrijf = [](int, int64_t, size_t) { stoor(); };
    io_proef.na_lees = [](int, void*, size_t, int64_t) { stoor(); };
    const bool lezer = ik >= SCHRIJVERS;
    icb = IXOPEN("TAB", lezer ? IX_LEES : IX_GEDEELD);
    const time_t einde = time(nullptr) + seconden;
    while (fout.empty() && time(nullptr) < einde) {
      if (!lezer)
        stap_schrijver();
      else if (tot(4) > 0)
        wandel();
      else
        plaatsen();
      ++stand.gedaan[ik];
    }
    if (fout.empty() || lezer) IXCLOSE(icb);
    return fout;
  }
};

using ZesKinderen = std::vector<std::unique_ptr<Kind>>;

/// Starts the eight, the n-th in the n-th of `mappen` and round again.
inline ZesKinderen zes_start(Samen<Stand>& stand, int seconden,
                             const std::vector<std::string>& mappen) {
  const uint32_t zaad = std::random_device{}();
  printf("seed %u\n", zaad);
  ZesKinderen kinderen;
  for (int n = 0; n < SCHRIJVERS + LEZERS; ++n)
    kinderen.push_back(std::make_unique<Kind>([&stand, n, zaad, seconden, mappen] {
      const std::string& map = mappen[static_cast<size_t>(n) % mappen.size()];
      if (chdir(map.c_str()) != 0) return "cannot go into " + map;
      return Werker{*stand, n, std::minstd_rand(zaad + static_cast<uint32_t>(n))}.loop(seconden);
    }));
  return kinderen;
}

/// Everything that was acknowledged stands in the table, and nothing else.
inline void zes_keur(const Stand& stand) {
  EXPECT_EQ(tabel_fouten("TAB"), "");
  EXPECT_GE(IXCHECK("TAB"), 0);
  std::string fout;
  const auto inhoud = bep_inhoud("TAB", &fout);
  EXPECT_EQ(fout, "");
  size_t levend = 0;
  for (int reeks = 0; reeks <= SCHRIJVERS; ++reeks)
    for (int nr = 0; nr < PER_REEKS; ++nr) {
      const Vak& v = stand.vak[reeks][nr];
      const int32_t nummer = reeks * AFSTAND + nr;
      const auto het = inhoud.find(nummer);
      levend += v.leeft ? 1 : 0;
      ASSERT_EQ(het != inhoud.end(), v.leeft) << nummer;
      ASSERT_TRUE(!v.leeft || bep_gelijk(het->second, v.rec)) << nummer;
    }
  EXPECT_EQ(levend, inhoud.size());
  EXPECT_EQ(bytes_van("TAB.INX")[4 * 512 + 4], '\0') << "the queue is empty";
}

inline long zes_gedaan(const Stand& stand) {
  long gedaan = 0;
  for (const auto& n : stand.gedaan) gedaan += n;
  return gedaan;
}

/// All eight end well, after `minstens` operations each; `rest` is how long that may take.
inline void zes_einde(ZesKinderen& kinderen, const Stand& stand, int rest, int minstens = 50) {
  const time_t uiterlijk = time(nullptr) + rest;
  for (int n = 0; n < SCHRIJVERS + LEZERS; ++n) {
    const int nog = std::max(1, static_cast<int>(uiterlijk - time(nullptr)));
    EXPECT_EQ(kinderen[static_cast<size_t>(n)]->einde(nog), "") << "process " << n;
    EXPECT_GT(stand.gedaan[n], minstens) << "process " << n;
  }
}
