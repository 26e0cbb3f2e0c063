// A writer that dies after its n-th write, for every n until the operation runs through. The next
// user finds a sound table or is told "Niet consistent"; after a rebuild everything that was
// acknowledged is there, whole, and what was under way is there as before or as it was to become.
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "tests/support/agent.h"
#include "tests/support/beproeving.h"

namespace {

int te_gaan;

void sterf_na(int schrijfbeurten) {
  te_gaan = schrijfbeurten;
  io_proef.voor_schrijf = [](int, int64_t, size_t) {
    if (te_gaan-- == 0) raise(SIGKILL);
  };
}

/// As a program does it: lock, look, change.
void schrijf(ICB* icb, const BepRec& nieuw) {
  BepRec r = bep_rec(nieuw.nummer);
  IXREADL(icb, &r);
  r = nieuw;
  IXWRITE(icb, &r);
}

void verwijder(ICB* icb, int32_t nummer) {
  BepRec r = bep_rec(nummer);
  if (IXREADL(icb, &r))
    IXDELETE(icb, &r);
  else
    IXRELEASE(icb, &r);
}

/// Somebody who has had the table open all along.
struct Getuige {
  Agent agent{[](const std::string& wat) -> std::string {
    static ICB* icb = nullptr;
    if (wat == "open") icb = IXOPEN("TAB", IX_GEDEELD);
    if (wat == "lees") {
      for (int k = 1; k <= 3; ++k) {
        IXSWITCH(icb, k);
        BepRec r{};
        int stap = 0;
        for (bool er = IXFIRSTR(icb, &r); er; er = IXNEXT(icb, &r)) {
          if (!bep_heel(r)) return "read " + bep_toon(r);
          if (++stap > 2000) return "a walk without end";
        }
      }
    }
    if (wat == "schrijf")  // in a child: it may well be the end of it
      return Kind([] {
               schrijf(icb, bep_rec(777777, 7));
               return std::string();
             })
          .einde(20);
    return "";
  }};
};

struct Dood : testing::Test {
  TempDir map;
  InMap in{map.pad};

  void tabel(int aantal, int stap = 10) {
    IXCLOSE(bep_tabel("TAB", IX_EXCLUSIEF));
    ICB* icb = IXOPEN("TAB", IX_GEDEELD);
    for (int n = 0; n < aantal; ++n) schrijf(icb, bep_rec(n * stap % 997, n));
    IXCLOSE(icb);
  }

  void na_de_dood(Getuige& getuige) {
    const bool bezig = bytes_van("TAB.INX").substr(45, 1) != std::string(1, '\0');
    gemerkt += bezig ? 1 : 0;
    EXPECT_EQ(getuige.agent.ask("lees"), "") << "one who had it open";
    if (bezig) {
      EXPECT_EQ(IXCHECK("TAB"), -1);
      EXPECT_EQ(opent(), "fatal: TAB        : Beproeving          --> Niet consistent");
      EXPECT_EQ(getuige.agent.ask("schrijf"),
                "fatal: TAB        : Beproeving          --> Niet consistent");
    } else {
      EXPECT_EQ(tabel_fouten("TAB"), "");
      EXPECT_EQ(opent(), "");
    }
  }

  static std::string opent() {
    return Kind([] {
             ICB* icb = IXOPEN("TAB", IX_GEDEELD);
             BepRec r{};
             IXFIRSTR(icb, &r);
             return std::string();
           })
        .einde(20);
  }

  /// `was` and `wordt`: the record that the operation is about, before and after it.
  void overal(int32_t nummer, const std::optional<BepRec>& wordt,
              const std::function<void(ICB*)>& doe) {
    const BepKopie begin("TAB");
    std::string fout;
    const auto voor = bep_inhoud("TAB", &fout);
    auto na = voor;
    na.erase(nummer);
    if (wordt) na[nummer] = *wordt;
    for (int n = 0;; ++n) {
      SCOPED_TRACE("dies after write " + std::to_string(n));
      ASSERT_LT(n, 200);
      begin.terug();
      Getuige getuige;
      getuige.agent.ask("open");
      getuige.agent.ask("lees");
      const std::string einde = Kind([&] {
                                  sterf_na(n);
                                  ICB* icb = IXOPEN("TAB", IX_GEDEELD);
                                  doe(icb);
                                  IXCLOSE(icb);
                                  return std::string();
                                }).einde(20);
      const bool heel = einde.empty();
      ASSERT_TRUE(heel || einde == "signal 9") << einde;
      if (!heel) na_de_dood(getuige);
      getuige.agent.kill_now();
      ASSERT_EQ(IXBLDIX("TAB"), 1);
      ASSERT_EQ(tabel_fouten("TAB"), "");
      const auto nu = bep_inhoud("TAB", &fout);
      ASSERT_EQ(fout, "");
      ASSERT_TRUE(zelfde(nu, na) || (!heel && zelfde(nu, voor)));
      als_na += !heel && zelfde(nu, na) ? 1 : 0;
      // What died can be done again, by anybody.
      ICB* icb = IXOPEN("TAB", IX_GEDEELD);
      doe(icb);
      IXCLOSE(icb);
      ASSERT_TRUE(zelfde(bep_inhoud("TAB", &fout), na));
      ASSERT_EQ(tabel_fouten("TAB"), "");
      if (heel) break;
      ++doden;
    }
    EXPECT_GE(gemerkt, 2);
    EXPECT_GT(als_na, 0) << "at least the last death was after all the work";
  }

  static bool zelfde(const std::map<int32_t, BepRec>& a, const std::map<int32_t, BepRec>& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](const auto& x, const auto& y) {
             return x.first == y.first && bep_gelijk(x.second, y.second);
           });
  }

  /// Goes on entering records until one does what `ja` asks of the index, and takes it back.
  template <class F>
  int32_t tot(const F& ja) {
    for (int32_t nummer = 1001; nummer < 3000; ++nummer) {
      const BepKopie voor("TAB");
      ICB* icb = IXOPEN("TAB", IX_GEDEELD);
      schrijf(icb, bep_rec(nummer));
      IXCLOSE(icb);
      if (!ja(voor.index, bytes_van("TAB.INX"))) continue;
      voor.terug();
      return nummer;
    }
    ADD_FAILURE() << "no such record";
    return 0;
  }

  static int niveau(const std::string& index, int sleutel) {
    return index[static_cast<size_t>(sleutel) * 512 + 1];
  }

  int doden = 0, gemerkt = 0, als_na = 0;
};

TEST_F(Dood, WhileEnteringARecord) {
  tabel(60);
  const BepRec r = bep_rec(5000, 3);
  overal(r.nummer, r, [&](ICB* icb) { schrijf(icb, r); });
  EXPECT_GE(doden, 8);  // queue, mark, three keys, record, queue, header
}

TEST_F(Dood, WhileEnteringIntoAFreedSlot) {
  tabel(60);
  ICB* icb = IXOPEN("TAB", IX_GEDEELD);
  verwijder(icb, 100);
  verwijder(icb, 200);
  IXCLOSE(icb);
  const BepRec r = bep_rec(5000, 3);
  const size_t was = bytes_van("TAB.TXT").size();
  overal(r.nummer, r, [&](ICB* i) { schrijf(i, r); });
  EXPECT_EQ(bytes_van("TAB.TXT").size(), was);
}

TEST_F(Dood, WhileChangingARecord) {
  tabel(60);
  std::string fout;
  BepRec r = bep_inhoud("TAB", &fout).at(100);
  ++r.versie;
  r.som = bep_som(r);
  overal(100, r, [&](ICB* icb) { schrijf(icb, r); });
}

TEST_F(Dood, WhileChangingItsKeys) {
  tabel(60);
  const BepRec r = bep_rec(100, 4321, 1);
  overal(100, r, [&](ICB* icb) { schrijf(icb, r); });
  EXPECT_GE(doden, 7);  // mark, out of two keys, into two keys, record, header
}

TEST_F(Dood, WhileDeletingARecord) {
  tabel(60);
  overal(100, std::nullopt, [](ICB* icb) { verwijder(icb, 100); });
  EXPECT_GE(doden, 5);
}

TEST_F(Dood, WhileALeafRunsEmpty) {
  tabel(60);
  const BepKopie voor("TAB");
  const auto lege = [](const std::string& index) {
    int n = 0;
    for (size_t b = 5; b * 512 < index.size(); ++b) n += index[b * 512 + 4] == 0 ? 1 : 0;
    return n;
  };
  int32_t nummer = 0;
  for (; nummer < 600; nummer += 10) {
    const BepKopie nu("TAB");
    ICB* icb = IXOPEN("TAB", IX_GEDEELD);
    verwijder(icb, nummer);
    IXCLOSE(icb);
    if (lege(bytes_van("TAB.INX")) == lege(nu.index)) continue;
    nu.terug();
    break;
  }
  ASSERT_LT(nummer, 600);
  overal(nummer, std::nullopt, [&](ICB* icb) { verwijder(icb, nummer); });
}

TEST_F(Dood, WhileARootSplits) {
  tabel(3);
  const int32_t nummer = tot([](const std::string& voor, const std::string& na) {
    return niveau(voor, 1) == 1 && niveau(na, 1) == 2;
  });
  overal(nummer, bep_rec(nummer), [&](ICB* icb) { schrijf(icb, bep_rec(nummer)); });
}

TEST_F(Dood, WhileSeveralLevelsSplit) {
  tabel(3);
  const int32_t nummer = tot([](const std::string& voor, const std::string& na) {
    return niveau(voor, 1) == 2 && niveau(na, 1) == 3;
  });
  overal(nummer, bep_rec(nummer), [&](ICB* icb) { schrijf(icb, bep_rec(nummer)); });
  EXPECT_GE(doden, 12);
}

/// Work on the whole index: whoever dies leaves a table that is sound or says that it is not, and a
/// rebuild brings everything back. `mag`: what may be there then, told whether the work was done.
struct HeleIndex : Dood {
  void overal(const std::function<std::string()>& doe,
              const std::function<bool(const std::map<int32_t, BepRec>& nu, bool klaar)>& mag) {
    const BepKopie begin("TAB");
    std::string einde, fout;
    for (int n = 0; n == 0 || !einde.empty(); ++n) {
      SCOPED_TRACE("dies after write " + std::to_string(n));
      ASSERT_LT(n, 500);
      begin.terug();
      einde = Kind([&] {
                sterf_na(n);
                return doe();
              }).einde(20);
      ASSERT_TRUE(einde.empty() || einde == "signal 9") << einde;
      const std::string open = opent();
      ASSERT_TRUE(open.empty() || open.ends_with("Niet consistent")) << open;
      ASSERT_EQ(IXCHECK("TAB") >= 0, open.empty());
      ASSERT_TRUE(!open.empty() || tabel_fouten("TAB").empty());
      ASSERT_EQ(IXBLDIX("TAB"), 1) << "the definitions are gone";
      ASSERT_EQ(tabel_fouten("TAB"), "");
      ASSERT_TRUE(mag(bep_inhoud("TAB", &fout), einde.empty()));
      ASSERT_EQ(fout, "");
    }
  }
};

TEST_F(HeleIndex, WhileItIsRebuilt) {
  tabel(300, 7);
  ICB* icb = IXOPEN("TAB", IX_GEDEELD);
  for (int n = 0; n < 40; ++n) verwijder(icb, n * 21);
  IXCLOSE(icb);
  std::string fout;
  const auto voor = bep_inhoud("TAB", &fout);
  overal([] { return std::string(IXBLDIX("TAB") == 1 ? "" : "not built"); },
         [&](const auto& nu, bool) { return zelfde(nu, voor); });
}

TEST_F(HeleIndex, WhileATableIsEmptied) {
  tabel(30);
  std::string fout;
  const auto voor = bep_inhoud("TAB", &fout);
  overal(
      [] {
        ICB* icb = IXOPEN("TAB", IX_GEDEELD);
        IXINIT(icb);
        IXCLOSE(icb);
        return std::string();
      },
      [&](const auto& nu, bool klaar) { return nu.empty() || (!klaar && zelfde(nu, voor)); });
}

}  // namespace
