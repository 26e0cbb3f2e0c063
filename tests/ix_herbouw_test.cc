// Checking a table, building its index anew, and filling a private index in bulk.
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <numeric>
#include <random>
#include <utility>

#include "isam/ix.h"
#include "isam/ix_intern.h"
#include "tests/support/ix_proef.h"

namespace {

struct Herbouw : testing::Test {
  TempDir map;
  InMap in{map.pad};

  static void vul(const char* naam, int aantal, int sleutels, int weg_elke = 0) {
    IXCLOSE(proef_tabel(naam, IX_EXCLUSIEF, sleutels));
    ICB* icb = IXOPEN(naam, IX_GEDEELD);
    for (int n = 0; n < aantal; ++n) {
      ProefRec r = proef_rec(n * 7919 % aantal, ("n" + std::to_string(n % 97)).c_str(), n % 13);
      ASSERT_TRUE(IXWRITE(icb, &r));
    }
    for (int n = 0; weg_elke > 0 && n < aantal; n += weg_elke) {
      ProefRec r = proef_rec(n * 7919 % aantal);
      ASSERT_TRUE(IXREADL(icb, &r));
      IXDELETE(icb, &r);
    }
    IXCLOSE(icb);
  }
  static void zet(const std::string& pad, size_t plaats, const std::string& wat) {
    std::string b = bytes_van(pad);
    b.replace(plaats, wat.size(), wat);
    std::ofstream(pad, std::ios::binary) << b;
  }
};

TEST_F(Herbouw, CheckCountsTheChainAndRepairsNothing) {
  vul("TAB", 20, 2, 5);
  EXPECT_EQ(IXCHECK("TAB"), 4);
  EXPECT_EQ(IXCHECK("GEEN"), -1);
  const std::string heel = bytes_van("TAB.INX"), data = bytes_van("TAB.TXT");
  zet("TAB.TXT", 15 * 64 + 1, std::string("\x0F\0\0\0", 4));  // a slot that follows itself
  EXPECT_EQ(IXCHECK("TAB"), -1);
  zet("TAB.TXT", 15 * 64 + 1, std::string("\x03\0\0\0", 4));  // into a record in use
  EXPECT_EQ(IXCHECK("TAB"), -1);
  zet("TAB.TXT", 15 * 64 + 1, std::string("\0\0\0\x7F", 4));  // past the end
  EXPECT_EQ(IXCHECK("TAB"), -1);
  IXCHECK_DIEP(false);
  EXPECT_EQ(IXCHECK("TAB"), 0);
  IXCHECK_DIEP(true);
  std::ofstream("TAB.TXT", std::ios::binary) << data << "x";
  EXPECT_EQ(IXCHECK("TAB"), -1);
  std::ofstream("TAB.TXT", std::ios::binary) << data;
  zet("TAB.INX", 45, "\1");
  EXPECT_EQ(IXCHECK("TAB"), -1);
  std::ofstream("TAB.INX", std::ios::binary) << heel << std::string(512, 0);
  EXPECT_EQ(IXCHECK("TAB"), -1);
  std::ofstream("TAB.INX", std::ios::binary) << heel << "half";
  EXPECT_EQ(IXCHECK("TAB"), -1);
  std::ofstream("TAB.INX", std::ios::binary) << heel;
  zet("TAB.INX", 258, "\1");
  EXPECT_EQ(IXCHECK("TAB"), 4);
  EXPECT_EQ(bytes_van("TAB.INX"), heel) << "an older version is promoted, nothing else written";
  zet("TAB.INX", 258, "\x5E");
  EXPECT_EXIT(IXCHECK("TAB"), testing::ExitedWithCode(1), "IXREMAKE.EXE");
}

TEST_F(Herbouw, CheckOfAPrivateIndexAsksNothingOfTheData) {
  vul("TAB", 9, 1);
  IXCLOSE([] {
    ICB* icb = IXCREATE("TAB.V01", IX_EXCLUSIEF);
    IXUPDFCB(icb, 0, "p,64");
    IXUPDFCB(icb, 1, "k,I,1,4");
    IXINITIX(icb);
    return icb;
  }());
  EXPECT_EQ(IXCHECK("TAB.V01"), 0);
  zet("TAB.V01", 258, "\x5E");
  EXPECT_EQ(IXCHECK("TAB.V01"), -1);
  EXPECT_EQ(IXBLDIX("TAB.V01"), 0) << "nothing records its selection";
  zet("TAB.INX", 20, std::string("\xF7\xFF\xFF\x7F", 4));  // nearly at the limit, and far too short
  EXPECT_EQ(IXCHECK("TAB"), -1);
}

TEST_F(Herbouw, OneKeyInSlotOrderGivesTheBytesOfInserting) {
  // Inserts leave slot order; entering them again in that order must give the same file.
  vul("TAB", 1000, 1);
  const std::string gegroeid = bytes_van("TAB.INX");
  ASSERT_EQ(IXBLDIX("TAB"), 1);
  EXPECT_EQ(bytes_van("TAB.INX"), gegroeid);
}

TEST_F(Herbouw, AllKeysAndTheFreeChainComeBack) {
  vul("TAB", 3000, 3, 4);
  const std::string data = bytes_van("TAB.TXT");
  zet("TAB.INX", 45, "\5");
  zet("TAB.INX", 2048, "\1\0\0\0\1wees");  // a key that a dead process left in the queue
  truncate("TAB.INX", 4096);
  ASSERT_EQ(IXBLDIX("TAB"), 1);
  EXPECT_EQ(tabel_fouten("TAB"), "");
  EXPECT_EQ(IXCHECK("TAB"), 750);
  EXPECT_EQ(bytes_van("TAB.INX").substr(2048, 512), '\1' + std::string(511, 0));
  ICB* icb = IXOPEN("TAB", IX_LEES);
  EXPECT_EQ(icb->free_head, 2996) << "from the highest slot down";
  EXPECT_EQ(std::string(icb->description), "Proeftabel");
  ProefRec r{};
  EXPECT_EQ(IXGET(icb, &r, icb->free_head), 0);
  int32_t volgende;
  memcpy(&volgende, reinterpret_cast<char*>(&r) + 1, 4);
  EXPECT_EQ(volgende, 2992);
  IXCLOSE(icb);
}

TEST_F(Herbouw, AFullCacheGivesTheSameBytes) {
  vul("TAB", 4000, 3, 7);
  ix_snel_bouwen = false;
  ASSERT_EQ(IXBLDIX("TAB"), 1);
  const std::string ruim = bytes_van("TAB.INX");
  const size_t was = std::exchange(ix_cache_plaatsen, 50);
  ASSERT_EQ(IXBLDIX("TAB"), 1);
  ix_cache_plaatsen = was;
  ix_snel_bouwen = true;
  EXPECT_EQ(bytes_van("TAB.INX"), ruim);
  EXPECT_EQ(tabel_fouten("TAB"), "");
}

TEST_F(Herbouw, WhatCannotBeBuiltIsNotStarted) {
  EXPECT_EQ(IXBLDIX("GEEN"), 0);
  vul("TAB", 5, 2);
  const std::string index = bytes_van("TAB.INX"), data = bytes_van("TAB.TXT");
  std::ofstream("TAB.TXT", std::ios::binary) << data << "rest";
  EXPECT_EQ(IXBLDIX("TAB"), 0);
  std::ofstream("TAB.TXT", std::ios::binary) << data;
  zet("TAB.INX", 24, std::string(2, 0));
  EXPECT_EQ(IXBLDIX("TAB"), 0);
  std::ofstream("TAB.INX", std::ios::binary) << index.substr(0, 200);
  EXPECT_EQ(IXBLDIX("TAB"), 0);
  EXPECT_EQ(bytes_van("TAB.INX").size(), 200U) << "and the old one is left";

  // Without data it is an empty table; a key count beyond the table's place is cut.
  std::ofstream("TAB.INX", std::ios::binary) << index;
  unlink("TAB.TXT");
  ASSERT_EQ(IXBLDIX("TAB"), 1);
  EXPECT_EQ(tabel_fouten("TAB"), "");
  EXPECT_EQ(bytes_van("TAB.INX").size(), 4U * 512);
  ICB* vijf = IXCREATE("VIJF", IX_EXCLUSIEF);
  IXUPDFCB(vijf, 0, "v,64");
  for (int k = 1; k <= 5; ++k) IXUPDFCB(vijf, k, "k,I,1,4");
  IXINITIX(vijf);
  ProefRec r = proef_rec(1);
  IXWRITE(vijf, &r);
  IXCLOSE(vijf);
  zet("VIJF.INX", 11, "\7");
  ASSERT_EQ(IXBLDIX("VIJF"), 1);
  EXPECT_EQ(tabel_fouten("VIJF"), "");
  EXPECT_EQ(bytes_van("VIJF.INX")[11], 5);
}

TEST_F(Herbouw, AnIndexMadeForSurvivingRecords) {
  vul("TAB", 300, 3, 10);
  const std::string data = bytes_van("TAB.TXT");
  IXREMOVE("TAB.niet");
  unlink("TAB.INX");
  IXCLOSE(proef_tabel("TAB", IX_EXCLUSIEF));
  EXPECT_EQ(bytes_van("TAB.TXT"), data);
  static std::string balk;
  static int64_t ver;
  ix_hooks.voortgang = [](const char* titel, int64_t deel, int64_t geheel) {
    if (titel == nullptr && geheel != 0) {
      EXPECT_TRUE(deel >= ver && deel <= geheel) << deel;
      ver = deel;
      return;
    }
    balk += titel != nullptr ? titel + std::to_string(geheel) : " " + std::to_string(ver) + ".";
  };
  for (bool snel : {true, false}) {
    balk.clear();
    ver = 0;
    ix_snel_bouwen = snel;
    ASSERT_EQ(IXBLDIX("TAB"), 1);
    EXPECT_EQ(balk, " KOB - TQ-ISAM  >>> IXBLDIX <<< TAB 300 300.");
    EXPECT_EQ(tabel_fouten("TAB"), "");
  }
  ix_snel_bouwen = true;
  ix_hooks = IX_HOOKS_KAAL;
}

/// Rebuilds TAB along both roads; an empty text when index and data have the same bytes.
std::string verschil_van_wegen() {
  const std::string data = bytes_van("TAB.TXT");
  EXPECT_EQ(IXBLDIX("TAB"), 1);
  const std::string snel = bytes_van("TAB.INX"), keten = bytes_van("TAB.TXT");
  std::ofstream("TAB.TXT", std::ios::binary) << data;
  ix_snel_bouwen = false;
  EXPECT_EQ(IXBLDIX("TAB"), 1);
  ix_snel_bouwen = true;
  const std::string plat = bytes_van("TAB.INX");
  if (keten != bytes_van("TAB.TXT")) return "the chain";
  if (snel.size() != plat.size()) return "length";
  for (size_t i = 0; i < snel.size(); ++i)
    if (snel[i] != plat[i]) return "block " + std::to_string(i / 512);
  return snel.size() > 10 * 512 ? "" : "too small to tell";
}

/// Five keys that between them have all kinds of fields, and records of `soort` in some order.
void vijf_sleutels(int aantal, const std::function<ProefRec(int)>& soort) {
  ICB* icb = IXCREATE("TAB", IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, "wegen,64");
  IXUPDFCB(icb, 1, "nr,NODUPS,I,1,4");
  IXUPDFCB(icb, 2, "naam,C,5,14,I,15,16");
  IXUPDFCB(icb, 3, "lang,NODUPS,I,15,16,C,17,66,I,1,4");
  IXUPDFCB(icb, 4, "byte,I,17,17");
  IXUPDFCB(icb, 5, "drie,NODUPS,I,1,3,I,15,16,I,3,4,I,1,2");
  icb->keys[2].field_end[1] = 64;
  icb->keys[2].key_length = 54;
  icb->keys[2].max_entries = 505 / 58;
  IXINITIX(icb);
  IXCLOSE(icb);
  std::ofstream uit("TAB.TXT", std::ios::binary);
  for (int i = 0; i < aantal; ++i) {
    ProefRec r = soort(i);
    if (i % 11 == 3 && i % 7 < 3) memset(static_cast<void*>(&r), 0xFF, sizeof r);
    uit.write(reinterpret_cast<char*>(&r), sizeof r);
  }
}

TEST_F(Herbouw, BothRoadsGiveTheSameBytes) {
  std::mt19937 toeval(99);
  const auto los = [&](int i) {
    // Letters, accents, letters that expand, bytes that are passed over, and zeros at the end.
    static constexpr char TEKENS[] = "abcABC \x82\x90\x91\xE1\x07\xFFzZ";
    ProefRec r = proef_rec(i * 7919 % 8192 * 3, "", static_cast<int>(toeval() % 40) * 700 - 9000);
    for (size_t c = toeval() % 5; c < 10 && toeval() % 8 != 0; ++c)
      r.naam[c] = TEKENS[toeval() % (sizeof TEKENS - 1)];
    for (char& c : r.tekst) c = TEKENS[toeval() % 3];
    return r;
  };
  vijf_sleutels(8000, los);
  EXPECT_EQ(verschil_van_wegen(), "") << "at random";
  vijf_sleutels(6000, [](int i) { return proef_rec(i, "een", i / 50); });
  EXPECT_EQ(verschil_van_wegen(), "") << "rising";
  vijf_sleutels(6000, [](int i) { return proef_rec(100000 - i, "een", -i); });
  EXPECT_EQ(verschil_van_wegen(), "") << "falling";
  vijf_sleutels(9000, [](int i) { return proef_rec(i % 3 * 1000000 + i, "", i % 5); });
  EXPECT_EQ(verschil_van_wegen(), "") << "rising in groups";
  vijf_sleutels(3000, [&](int i) {
    ProefRec r = los(i);
    r.nummer = i / 2;
    r.naam[0] = 'x';
    return r;
  });
  EXPECT_EQ(verschil_van_wegen(), "") << "equal keys: the plain road";
  vijf_sleutels(1, [](int) { return proef_rec(1); });
  EXPECT_EQ(verschil_van_wegen(), "too small to tell");
}

TEST_F(Herbouw, BulkGivesTheBytesOfAddingOneByOne) {
  vul("TAB", 2000, 1);
  std::vector<int32_t> volgorde(2000);
  std::iota(volgorde.begin(), volgorde.end(), 0);
  std::shuffle(volgorde.begin() + 700, volgorde.end(), std::mt19937(4711));
  ICB* tabel = IXOPEN("TAB", IX_LEES);
  const auto maak = [&](const char* naam, int mode, bool bulk) {
    ICB* icb = IXCREATE(naam, mode);
    IXUPDFCB(icb, 0, "MAKV,64");
    IXUPDFCB(icb, 1, "k,NODUPS,C,5,14,I,1,4");
    IXINITIX(icb);
    if (bulk) {
      EXPECT_TRUE(IXBULK('O', icb, nullptr));
    }
    for (int32_t n : volgorde) {
      ProefRec r;
      EXPECT_EQ(IXGET(tabel, &r, n), 1);
      icb->record_no = n;
      if (bulk)
        IXBULK('W', icb, &r);
      else
        IXADDKEYS(icb, &r);
    }
    if (bulk) IXBULK('C', icb, nullptr);
    EXPECT_EQ(icb->record_count, bulk ? 2000 : 0);
    icb->record_count = 0;
    memset(icb->name, 0, sizeof icb->name);
    IXCLOSE(icb);
    return bytes_van(naam);
  };
  const std::string los = maak("TAB.V01", IX_EXCLUSIEF, false);
  EXPECT_EQ(maak("TAB.V02", IX_EXCLUSIEF, true), los);
  // In shared mode block 0 follows by itself.
  EXPECT_EQ(maak("TAB.A01", IX_GEDEELD, false).substr(11), los.substr(11));
  const std::string gedeeld = maak("TAB.A02", IX_GEDEELD, true);
  EXPECT_EQ(gedeeld.substr(20), los.substr(20));
  EXPECT_EQ(gedeeld.substr(16, 4), std::string("\xD0\7\0\0", 4));
  EXPECT_EQ(Inspecteur::fouten("TAB.A02", "TAB.TXT"), std::vector<std::string>());
  IXCLOSE(tabel);
}

}  // namespace
