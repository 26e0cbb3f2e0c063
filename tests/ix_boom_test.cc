// The tree: bytes of new files and of splits, deletion, and long random walks against an ordered
// map under the same comparison.
#include <cstdlib>
#include <cstring>
#include <map>
#include <random>

#include "isam/io.h"
#include "isam/ix.h"
#include "tests/support/ix_proef.h"

namespace {

struct Boom : testing::Test {
  TempDir map;
  InMap in{map.pad};
};

std::string blok(const std::string& bestand, size_t nr) {
  return bytes_van(bestand).substr(nr * 512, 512);
}

int32_t i32(const std::string& b, size_t plaats) {
  int32_t v;
  memcpy(&v, b.data() + plaats, 4);
  return v;
}

/// A table whose one key is `breed` text bytes.
ICB* tekst_tabel(const char* naam, int breed) {
  ICB* icb = IXCREATE(naam, IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, "Teksten,64");
  IXUPDFCB(icb, 1, ("k,C,1," + std::to_string(breed)).c_str());
  IXINITIX(icb);
  return icb;
}

std::string tekst_rec(int n) {
  std::string rec = "n" + std::to_string(1000 + n);
  rec.resize(64);
  return rec;
}

TEST_F(Boom, NewFilesByteForByte) {
  IXCLOSE(proef_tabel("NIEUW", IX_EXCLUSIEF, 2));
  const std::string b = bytes_van("NIEUW.INX");
  ASSERT_EQ(b.size(), 2048U);
  EXPECT_EQ(b.substr(0, 12), std::string("NIEUW\0\0\0\0\0\0\2", 12));
  EXPECT_EQ(i32(b, 12), -1);
  EXPECT_EQ(i32(b, 16), 0);
  EXPECT_EQ(i32(b, 20), 4);
  EXPECT_EQ(b.substr(24, 24), std::string("\x40\0Proeftabel\0\0\0\0\0\0\0\0\0\0\0\0", 24));
  EXPECT_EQ(b.substr(48, 11), std::string("nummer\0\0N\4\x3F", 11));
  EXPECT_EQ(b.substr(90, 33),
            std::string("groep\0\0\0J\6\x32I\0\0\0\0\0\0\0\0\0\x0F\0\0\0\0\0\0\0\0\0\x10\0", 33));
  EXPECT_EQ(b.substr(258, 2), "\x5F\x01");
  EXPECT_EQ(b.substr(260, 252), std::string(252, '\0'));
  std::string wortel("\1\1\0\0\1\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 13);
  wortel.resize(512);
  EXPECT_EQ(blok("NIEUW.INX", 1), wortel);
  EXPECT_EQ(blok("NIEUW.INX", 2).substr(0, 5), std::string("\2\1\0\0\1", 5));
  EXPECT_EQ(blok("NIEUW.INX", 2).substr(5, 11), std::string(10, '\xFF') + '\0');
  EXPECT_EQ(blok("NIEUW.INX", 3), '\1' + std::string(511, '\0'));
  EXPECT_EQ(bytes_van("NIEUW.TXT"), "");
}

TEST_F(Boom, SplitKeepsTheUpperPartInTheOldBlock) {
  ICB* icb = tekst_tabel("TIEN", 46);  // ten entries a block
  for (int n = 0; n < 8; ++n) ASSERT_TRUE(IXWRITE(icb, tekst_rec(n).data()));
  EXPECT_EQ(icb->next_block, 3);
  ASSERT_TRUE(IXWRITE(icb, tekst_rec(8).data()));  // with the end of the leaf: the tenth entry
  EXPECT_EQ(icb->next_block, 5);
  IXCLOSE(icb);
  const std::string wortel = blok("TIEN.INX", 1), laag = blok("TIEN.INX", 3),
                    hoog = blok("TIEN.INX", 4);
  EXPECT_EQ(wortel.substr(0, 5), std::string("\1\2\0\0\2", 5));
  EXPECT_EQ(wortel.substr(5, 5), "n1006");
  EXPECT_EQ(i32(wortel, 51), 3);
  EXPECT_EQ(wortel.substr(55, 46), std::string(46, '\xFF'));
  EXPECT_EQ(i32(wortel, 101), 4);
  EXPECT_EQ(laag.substr(0, 5), std::string("\1\1\0\0\7", 5));
  EXPECT_EQ(laag.substr(5 + 6 * 50, 5), "n1006");
  EXPECT_EQ(laag.substr(5 + 7 * 50), std::string(512 - 355, '\0'));
  EXPECT_EQ(hoog.substr(0, 5), std::string("\1\1\0\0\3", 5));
  EXPECT_EQ(hoog.substr(5, 5), "n1007");
  EXPECT_EQ(i32(hoog, 5 + 2 * 50 + 46), -1);

  ICB* zestig = tekst_tabel("ZESTIG", 60);
  EXPECT_EQ(zestig->keys[0].max_entries, 7);
  for (int n = 0; n < 6; ++n) ASSERT_TRUE(IXWRITE(zestig, tekst_rec(n).data()));
  IXCLOSE(zestig);
  EXPECT_EQ(blok("ZESTIG.INX", 3)[4], 4);
  EXPECT_EQ(blok("ZESTIG.INX", 4)[4], 3);
  EXPECT_EQ(tabel_fouten("ZESTIG"), "");
}

TEST_F(Boom, EmptiedLeafLeavesItsParent) {
  ICB* icb = tekst_tabel("LEEG", 46);
  for (int n = 0; n < 9; ++n) IXWRITE(icb, tekst_rec(n).data());
  IXCLOSE(icb);
  icb = IXOPEN("LEEG", IX_GEDEELD);
  for (int n = 6; n >= 0; --n) {
    ASSERT_TRUE(IXREADL(icb, tekst_rec(n).data())) << n;
    IXDELETE(icb, tekst_rec(n).data());
    if (n == 6) {
      EXPECT_EQ(blok("LEEG.INX", 1).substr(5, 5), "n1005") << "the separator follows its leaf";
    }
  }
  std::string rec = tekst_rec(0);
  EXPECT_TRUE(IXFIRSTR(icb, rec.data()));
  EXPECT_EQ(rec.substr(0, 5), "n1007");
  EXPECT_FALSE(IXPREV(icb, rec.data()));
  IXCLOSE(icb);
  EXPECT_EQ(blok("LEEG.INX", 1).substr(0, 5), std::string("\1\2\0\0\1", 5));
  EXPECT_EQ(blok("LEEG.INX", 3), std::string("\1\1", 2) + std::string(510, '\0'));
  EXPECT_EQ(tabel_fouten("LEEG"), "");
}

TEST_F(Boom, EqualKeysEnterInFrontAndCountAsOneStep) {
  // A private index may hold a key twice; '>' steps over the whole group.
  ICB* tabel = proef_tabel("DUB", IX_EXCLUSIEF, 1);
  ICB* icb = IXCREATE("DUB.V01", IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, "prive,64");
  IXUPDFCB(icb, 1, "groep,NODUPS,I,15,16");
  IXINITIX(icb);
  int groep = 5;
  for (int n : {0, 1, 2}) {
    ProefRec r = proef_rec(n, "", n == 2 ? 7 : groep);
    IXWRITE(tabel, &r);
    icb->record_no = tabel->record_no;
    IXADDKEYS(icb, &r);
  }
  ProefRec r{};
  ASSERT_TRUE(IXFIRSTR(icb, &r));
  EXPECT_EQ(icb->record_no, 1);
  ASSERT_TRUE(IXNEXT(icb, &r));
  EXPECT_EQ(icb->record_no, 2);
  EXPECT_FALSE(IXNEXT(icb, &r));
  icb->record_no = 0;
  r = proef_rec(0, "", 5);
  IXDELKEYS(icb, &r);  // of the two the one that leads to this record
  ASSERT_TRUE(IXREAD(icb, &r));
  EXPECT_EQ(icb->record_no, 1);
  r = proef_rec(0, "", 6);
  IXDELKEYS(icb, &r);  // not there: nothing happens
  EXPECT_EQ(icb->block.count, 3);
  IXCLOSE(icb);
  IXCLOSE(tabel);
}

// Random walks ------------------------------------------------------------------------------------

struct Orde {
  const ICB* icb;
  int k;
  bool operator()(const std::string& a, const std::string& b) const {
    ICB los = *icb;
    los.block.key_number = static_cast<int8_t>(k);
    return IXCOMP(&los, a.data(), b.data(), los.keys[k - 1].key_length) < 0;
  }
};

struct Wandeling {
  std::mt19937 toeval;
  std::vector<ICB*> handvat;
  ICB vorm;  // definitions only
  std::vector<std::map<std::string, int32_t, Orde>> model;
  std::map<int32_t, ProefRec> records;
  bool dichtbij = false;  // each handle works in a corner of its own
  int32_t hoek[3] = {0, 200, 400};
  size_t beurt = 0;

  Wandeling(unsigned zaad, const std::vector<ICB*>& h) : toeval(zaad), handvat(h), vorm(*h[0]) {
    for (int k = 1; k <= vorm.key_count; ++k) model.emplace_back(Orde{&vorm, k});
  }

  unsigned trek(unsigned n) { return static_cast<unsigned>(toeval()) % n; }

  std::string beeld(int k, const ProefRec& r, int32_t nummer) {
    ICB los = vorm;
    los.block.key_number = static_cast<int8_t>(k);
    los.record_no = nummer;
    IXBLDKEY(&los, &r, los.keys[k - 1].key_length);
    return {reinterpret_cast<const char*>(los.key_buf), los.keys[k - 1].key_length};
  }

  ProefRec maak() {
    static const char* const delen[] = {"A",  "a",    "e", "\x82", "\x8A", "\x91",
                                        "ss", "\xE1", " ", "\t",   "z",    "\xFE"};
    ProefRec r = proef_rec(static_cast<int32_t>(trek(600)), "", static_cast<int>(trek(9)));
    std::string naam, tekst;
    for (unsigned n = trek(4); n > 0; --n) naam += delen[trek(12)];
    for (unsigned n = 1 + trek(5); n > 0; --n) tekst += delen[trek(12)];
    strncpy(r.naam, naam.c_str(), sizeof r.naam);
    strncpy(r.tekst, tekst.c_str(), sizeof r.tekst);
    if (dichtbij) r.nummer = hoek[beurt] += trek(60) == 0 ? 1 : 0;
    return r;
  }

  void vergeet(int32_t nummer) {
    for (int k = 1; k <= vorm.key_count; ++k)
      model[static_cast<size_t>(k) - 1].erase(beeld(k, records[nummer], nummer));
    records.erase(nummer);
  }

  void schrijf(ICB* icb) {
    ProefRec r = maak(), oud = r;
    IXSWITCH(icb, 1);
    const bool bekend = IXREADL(icb, &oud);
    const auto staat = model[0].find(beeld(1, r, 0));
    ASSERT_EQ(bekend, staat != model[0].end());
    ASSERT_TRUE(IXWRITE(icb, &r));
    if (bekend) {
      ASSERT_EQ(icb->record_no, staat->second);
      vergeet(icb->record_no);
    }
    records[icb->record_no] = r;
    for (int k = 1; k <= vorm.key_count; ++k)
      model[static_cast<size_t>(k) - 1][beeld(k, r, icb->record_no)] = icb->record_no;
  }

  void wis(ICB* icb) {
    ProefRec r = maak();
    IXSWITCH(icb, 1);
    if (IXREADL(icb, &r)) {
      ASSERT_TRUE(records.contains(icb->record_no));
      vergeet(icb->record_no);
      IXDELETE(icb, &r);
    } else {
      ASSERT_FALSE(model[0].contains(beeld(1, r, 0)));
      IXRELEASE(icb, &r);
    }
  }

  /// Some steps along a key, from a record that exists or from a key that need not.
  void loop(ICB* icb) {
    const int k = 1 + static_cast<int>(trek(static_cast<unsigned>(vorm.key_count)));
    const auto& m = model[static_cast<size_t>(k) - 1];
    IXSWITCH(icb, k);
    ProefRec r = maak();
    icb->record_no = static_cast<int32_t>(trek(700));
    for (unsigned n = 1 + trek(8); n > 0; --n) {
      const bool vooruit = trek(2) == 0;
      const std::string hier = beeld(k, r, icb->record_no);
      auto wil = vooruit ? m.upper_bound(hier) : m.lower_bound(hier);
      const bool kan = vooruit ? wil != m.end() : wil != m.begin();
      if (!vooruit && kan) --wil;
      ASSERT_EQ(vooruit ? IXNEXT(icb, &r) : IXPREV(icb, &r), kan) << "key " << k;
      if (!kan) {
        ASSERT_EQ(icb->record_no, -1);
        return;
      }
      ASSERT_EQ(icb->record_no, wil->second) << "key " << k;
      ASSERT_EQ(memcmp(&r, &records[icb->record_no], sizeof r), 0);
    }
  }

  void alles(ICB* icb) {
    for (int k = 1; k <= vorm.key_count; ++k) {
      IXSWITCH(icb, k);
      ProefRec r{};
      bool goed = IXFIRSTR(icb, &r);
      for (const auto& [sleutel, nummer] : model[static_cast<size_t>(k) - 1]) {
        ASSERT_TRUE(goed);
        ASSERT_EQ(icb->record_no, nummer);
        goed = IXNEXT(icb, &r);
      }
      ASSERT_FALSE(goed);
    }
  }

  void ga(int stappen) {
    for (int stap = 0; stap < stappen; ++stap) {
      beurt = trek(static_cast<unsigned>(handvat.size()));
      ICB* icb = handvat[beurt];
      const unsigned wat = trek(10);
      // Growing and shrinking by turns, so that blocks split and blocks run empty.
      if (wat < 4)
        (stap / 1500 % 2 == 0 || wat == 0) ? schrijf(icb) : wis(icb);
      else
        loop(icb);
      if (testing::Test::HasFatalFailure()) FAIL() << "step " << stap;
    }
    alles(handvat[0]);
  }
};

void wandel(const char* k1, const char* k2, const char* k3) {
  const char* vast = getenv("ZAAD");
  const unsigned zaad =
      vast != nullptr ? static_cast<unsigned>(atoi(vast)) : std::random_device{}();
  SCOPED_TRACE("ZAAD=" + std::to_string(zaad));
  ICB* icb = IXCREATE("WANDEL", IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, "Wandeling,64");
  IXUPDFCB(icb, 1, k1);
  if (k2 != nullptr) IXUPDFCB(icb, 2, k2);
  if (k3 != nullptr) IXUPDFCB(icb, 3, k3);
  IXINITIX(icb);
  IXCLOSE(icb);
  // Three handles take turns: each stands where the others have changed the tree since.
  Wandeling w(zaad, {IXOPEN("WANDEL", 2), IXOPEN("WANDEL", 2), IXOPEN("WANDEL", 2)});
  w.dichtbij = k2 == nullptr;
  w.ga(9000);
  for (ICB* h : w.handvat) IXCLOSE(h);
  EXPECT_EQ(tabel_fouten("WANDEL"), "");
  EXPECT_EQ(IXBLDIX("WANDEL"), 1);
  EXPECT_EQ(tabel_fouten("WANDEL"), "");
}

TEST_F(Boom, RandomWalkOnIntegers) {
  wandel("nummer,I,1,4,C,17,62", "groep,I,15,16,C,17,54", nullptr);
}
// One key only: a handle stays on its leaf while the others split and empty the blocks above it.
TEST_F(Boom, RandomWalkFromStaleLeaves) { wandel("nummer,I,1,4,C,17,64", nullptr, nullptr); }
TEST_F(Boom, RandomWalkOnText) {
  wandel("naam,C,17,64,I,1,4", "tekst,C,17,60,I,15,16", "kort,C,5,14");
}

}  // namespace
