// The bytes that the engine leaves in its files. The same calls give the same files, whatever is
// done to make them quicker: each stage of one long row of changes has the fingerprint of its files
// here. A fingerprint is renewed when a change of what is written is meant and told, never for
// speed.
#include <gtest/gtest.h>

#include <random>

#include "isam/io.h"
#include "tests/support/ix_proef.h"

namespace {

/// FNV-1a over both files, of the header only what is ever read.
class Afdruk {
 public:
  void neem(const std::string& bytes) {
    for (const char c : bytes) som_ = (som_ ^ static_cast<uint8_t>(c)) * 0x100000001B3U;
  }
  void index(const std::string& pad) {
    std::string b = bytes_van(pad);
    if (b.size() > 512) b.erase(260, 252);
    neem(b);
  }
  void tabel(const std::string& naam) {
    index(naam + ".INX");
    neem(bytes_van(naam + ".TXT"));
  }
  uint64_t som() const { return som_; }

 private:
  uint64_t som_ = 0xCBF29CE484222325U;
};

struct Werk {
  ICB* icb = nullptr;
  std::minstd_rand kans{4711};

  int tot(int n) { return static_cast<int>(kans() % static_cast<unsigned>(n)); }
  ProefRec willekeurig() {
    const std::string naam =
        std::string(1, static_cast<char>('a' + tot(26))) + "p" + "\x82" + std::to_string(tot(40));
    ProefRec r = proef_rec(tot(9000), naam.c_str(), tot(60) - 5);
    snprintf(r.tekst, sizeof r.tekst, "tekst %d", tot(1000));
    return r;
  }
  /// Reads under lock, and changes or enters: the way of every program.
  void schrijf(ProefRec r) {
    const ProefRec wens = r;
    IXREADL(icb, &r);
    r = wens;
    IXWRITE(icb, &r);
  }
  bool kies(ProefRec& r) {
    r = proef_rec(tot(9000));
    if (IXREADL(icb, &r)) return true;
    IXRELEASE(icb, &r);
    return false;
  }
};

void nieuw(Werk& w) {
  w.icb = IXCREATE("TAB", IX_EXCLUSIEF);
  IXUPDFCB(w.icb, 0, "Proeftabel,64");
  IXUPDFCB(w.icb, 1, "nummer,I,1,4");
  IXUPDFCB(w.icb, 2, "groep,I,15,16,C,5,14");
  IXUPDFCB(w.icb, 3, "breed,NODUPS,C,17,62,C,5,14,I,1,4");  // 60 bytes: seven entries a block
  IXINITIX(w.icb);
  for (int i = 0; i < 1500; ++i) {
    ProefRec r = w.willekeurig();
    IXWRITE(w.icb, &r);
  }
  IXCLOSE(w.icb);
  w.icb = IXOPEN("TAB", IX_GEDEELD);
}
void invoer(Werk& w) {
  for (int i = 0; i < 2500; ++i) w.schrijf(w.willekeurig());
}
void oplopend(Werk& w) {
  for (int i = 0; i < 400; ++i) w.schrijf(proef_rec(20000 + i, "zz", 7));
}
void andere_velden(Werk& w) {
  ProefRec r;
  for (int i = 0; i < 800; ++i) {
    if (!w.kies(r)) continue;
    r.groep = static_cast<int16_t>(w.tot(60));
    snprintf(r.naam, sizeof r.naam, "n%d", w.tot(50));
    IXWRITE(w.icb, &r);
  }
}
void weg_en_terug(Werk& w) {
  ProefRec r;
  for (int i = 0; i < 1200; ++i)
    if (w.kies(r)) IXDELETE(w.icb, &r);
  for (int i = 0; i < 500; ++i) w.schrijf(w.willekeurig());
}
void ander_nummer(Werk& w) {
  ProefRec r;
  for (int i = 0; i < 300; ++i) {
    if (!w.kies(r)) continue;
    r.nummer += 10000;
    if (!IXUPDATE(w.icb, &r)) IXLOCK(w.icb, 13);
  }
}
void zelfde_plaats(Werk& w) {
  ProefRec r;
  for (int i = 0; i < 200; ++i) {
    if (!w.kies(r)) continue;
    r.tekst[47] = 'x';  // behind the last key
    IXPUTREC(w.icb, &r);
  }
}
void selectie(Werk& w) {
  ICB* p = IXCREATE("TAB.V01", IX_EXCLUSIEF);
  IXUPDFCB(p, 0, "AK,64");
  IXUPDFCB(p, 1, "k,NODUPS,C,5,14,I,1,4");
  IXINITIX(p);
  IXBULK('O', p, nullptr);
  ProefRec r;
  for (int32_t n = 0; n < 4000; n += 1 + w.tot(2))
    if (IXGET(w.icb, &r, n) == 1) {
      p->record_no = n;
      IXBULK('W', p, &r);
    }
  IXBULK('C', p, nullptr);
  for (int32_t n = 0; n < 4000; n += 7)
    if (IXGET(w.icb, &r, n) == 1) {
      p->record_no = n;
      IXDELKEYS(p, &r);
    }
  IXCLOSE(p);
}
void herbouw(Werk& w) {
  IXCLOSE(w.icb);
  IXBLDIX("TAB");
  w.icb = IXOPEN("TAB", IX_GEDEELD);
}
void leeg_en_vol(Werk& w) {
  IXINIT(w.icb);
  for (int i = 0; i < 300; ++i) w.schrijf(w.willekeurig());
}

struct Stap {
  const char* naam;
  void (*doe)(Werk&);
  uint64_t bytes;
};
constexpr Stap STAPPEN[] = {
    {"alone", nieuw, 15278364719942950816U},
    {"shared, at random", invoer, 3649228588067445789U},
    {"shared, at the end", oplopend, 5478592405471455959U},
    {"keys changed", andere_velden, 12728645401523558176U},
    {"deleted, slots used again", weg_en_terug, 13706315313843074584U},
    {"first key changed", ander_nummer, 11030173649513038116U},
    {"in place", zelfde_plaats, 18082281309205172036U},
    {"private index", selectie, 13183073536553032314U},
    {"rebuilt", herbouw, 1039414470606676001U},
    {"emptied", leeg_en_vol, 4286189572024115809U},
};

/// What the walks see, forth along each key and back, within a group and outside.
uint64_t wandelingen(ICB* icb) {
  Afdruk a;
  ProefRec r;
  const auto zie = [&] { a.neem(std::string(reinterpret_cast<char*>(&r), sizeof r)); };
  for (int k = 1; k <= 3; ++k) {
    IXSWITCH(icb, k);
    r = ProefRec{};
    for (bool er = IXFIRSTR(icb, &r); er; er = IXNEXT(icb, &r)) zie();
    r = proef_rec(INT32_MAX, "~", 55);
    for (bool er = IXPREV(icb, &r, k == 2 ? 1 : 0); er; er = IXPREV(icb, &r, k == 2 ? 1 : 0)) zie();
    r = ProefRec{};
    for (bool er = IXFIRSTK(icb, &r, 1); er; er = IXNEXTK(icb, &r, 1)) zie();
  }
  IXSWITCH(icb, 1);
  return a.som();
}

constexpr uint64_t WANDELINGEN = 4061461471914337534U;

/// Parameter: whether reads come from a mapping.
class Bytes : public testing::TestWithParam<bool> {
 protected:
  Bytes() { io_kaarten(GetParam()); }
  ~Bytes() override { io_kaarten(true); }

  TempDir map_;
  InMap in_{map_.pad};
};

TEST_P(Bytes, StayAsTheyWere) {
  Werk w;
  for (const Stap& s : STAPPEN) {
    s.doe(w);
    Afdruk a;
    a.tabel("TAB");
    if (s.doe == selectie) {
      a.index("TAB.V01");
      EXPECT_EQ(wandelingen(w.icb), WANDELINGEN);
    }
    EXPECT_EQ(a.som(), s.bytes) << s.naam;
  }
  IXCLOSE(w.icb);
}

/// A work table is filled in larger pieces; records already entered come by again, and are read.
TEST_P(Bytes, FillingInPiecesGivesTheSameFiles) {
  std::string gevuld[2];
  for (const bool stukken : {false, true}) {
    ICB* icb = proef_tabel("WERK", IX_EXCLUSIEF, 1);
    EXPECT_EQ(stukken && IXBULK('O', icb, nullptr), stukken);
    Werk w;
    for (int i = 0; i < 6000; ++i) {
      ProefRec r = w.willekeurig();
      IXWRITE(icb, &r);
      if (i % 100 != 0) continue;
      const ProefRec zo = r;
      EXPECT_TRUE(IXREAD(icb, &r));
      EXPECT_EQ(memcmp(&r, &zo, sizeof r), 0);
    }
    IXCLOSE(icb);
    EXPECT_EQ(tabel_fouten("WERK"), "");
    gevuld[stukken ? 1 : 0] = bytes_van("WERK.INX") + bytes_van("WERK.TXT");
    IXREMOVE("WERK");
  }
  EXPECT_TRUE(gevuld[0] == gevuld[1]);
}

INSTANTIATE_TEST_SUITE_P(Lezers, Bytes, testing::Bool(),
                         [](const auto& p) { return p.param ? "mapped" : "plain"; });

}  // namespace
