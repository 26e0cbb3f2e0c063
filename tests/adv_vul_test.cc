// Loading a series for advice: what each label, order line and transit record counts for, what is
// read how often, and which series the walk stops at.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <set>

#include "isam/base.h"
#include "isam/io.h"
#include "main/werktabel.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/adv_vul.h"
#include "sub/adv_vul_intern.h"
#include "sub/ioeti.h"
#include "sub/ioeti_intern.h"
#include "sub/leesstam.h"
#include "sub/muteren.h"
#include "sub/pghdl.h"
#include "tests/support/agent.h"
#include "tests/support/beproeving.h"
#include "tests/support/stukken.h"

namespace {
int geheugen_over = -1;  // large allocations until one fails, -1 never
}

void* operator new(size_t n) {
  if (n >= 1024 && geheugen_over >= 0 && geheugen_over-- == 0) throw std::bad_alloc();
  void* p = malloc(n);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}
void* operator new(size_t n, const std::nothrow_t&) noexcept { return malloc(n); }
void operator delete(void* p) noexcept { free(p); }
void operator delete(void* p, size_t) noexcept { free(p); }

namespace {

constexpr Serienr BLOUSE{10100, 10, 1}, BROEK{10200, 310, 4}, JAS{10300, 5, 2};
constexpr uint32_t ORDER = 20000011, ANDERE_ORDER = 20000028;

struct AdvVul : ::testing::Test {
  Keten keten;
  const uint16_t vandaag = date_today();

  void SetUp() override { begin(); }
  void begin() {
    keten.open();
    werktabellen_open();
    DtMaat maat{};
    maat.land = maat.maatsoort = 1;
    // By size index; the bar shows 3, 1, 2, 4, 95.
    for (const auto& [index, positie] : {std::pair{1, 2}, {2, 3}, {3, 1}, {4, 4}, {95, 5}})
      proef_maat(maat, index, str_format("%3d", index), positie);
    Keten::voeg(dtmaat, maat);
    for (const Serienr& nr : {BLOUSE, BROEK, JAS}) {
      Keten::serie(nr);
      proef_artikel(nr.artgroep, "Groep", [](DtArt& art) {
        art.magazijn = 0;
        art.vlaggen = 1;
        art.soort = 'A';
        art.minimum = 1;
        std::fill_n(art.streef, 250, uint8_t{2});
      });
    }
    proef_merk(1);
    adv_rec = adv_standaard();
    adv_open();
  }
  void TearDown() override {
    adv_sluit();
    werktabellen_sluit();
  }

  static bool vul(const Serienr& nr) {
    ser_rec = proef_serie(nr);
    return adv_vul();
  }
  static uint32_t etiket(const Etiket& e) { return static_cast<uint32_t>(proef_stuk(e)); }
  static uint32_t etiket(const Serienr& nr, uint8_t status, uint8_t maat, uint8_t filiaal,
                         uint16_t datum = 0) {
    Etiket e = proef_etiket(nr, status, maat, filiaal);
    if (datum != 0) (status == ETI_NOTA ? e.ontdat : e.vrkdat) = datum;
    return etiket(e);
  }
  static void onderweg(const Serienr& nr, uint32_t label, uint8_t van, uint8_t naar,
                       uint32_t opdracht, uint8_t afgewerkt = 0) {
    Keten::voeg(dtgo, DtGo{van, naar, 0, 0, label, nr, opdracht, 1, {}, afgewerkt, 0, 0});
  }
  /// The cells that are not zero, "branch/size=pieces", T the chain and the sum.
  static std::string toon(const MaatMatrix& m) {
    std::string uit;
    for (size_t b = 0; b < m.size(); ++b)
      for (size_t s = 0; s < MATEN; ++s) {
        if (m[b][s] == 0) continue;
        const bool keten_rij = b + 1 == m.size();
        uit += (keten_rij ? "T" : std::to_string(b)) + "/" + (s == 0 ? "T" : std::to_string(s)) +
               "=" + std::to_string(m[b][s]) + " ";
      }
    return uit;
  }
  static std::string toon_tpck() {
    std::string uit;
    for (const TpckRec& r : proef_inhoud<TpckRec>(tpck))
      uit += str_format("%d>%d/%d=%d ", r.vanfil, r.naarfil, r.maat, r.aantal);
    return uit;
  }
};

TEST_F(AdvVul, EachLabelCountsWhereItsStatusSays) {
  sys_rec1.datumlimiet = 45000;
  etiket(BLOUSE, ETI_NOTA, 1, 2, 44999);
  etiket(BLOUSE, ETI_NOTA, 1, 3, 45000);
  etiket(BLOUSE, ETI_VOORRAAD, 1, 4);
  etiket(BLOUSE, ETI_VOORRAAD, 2, 4);
  Etiket reis = proef_etiket(BLOUSE, ETI_VOORRAAD, 95, 5);
  reis.onderweg = 1;
  reis.doel = 6;
  etiket(reis);
  adv_rec.vrk_dagen = 14;
  for (const int dagen : {-1, 0, 13, 14})
    etiket(BLOUSE, ETI_VERKOPEN, 3, 7, static_cast<uint16_t>(vandaag - dagen));
  etiket(BLOUSE, ETI_CORRECTIES, 4, 8);
  etiket(BROEK, ETI_VOORRAAD, 1, 1);  // another series
  ASSERT_TRUE(vul(BLOUSE));
  EXPECT_EQ(toon(advies.m_order), "2/T=1 2/1=1 3/T=1 3/1=1 T/T=2 T/1=2 ");
  EXPECT_EQ(toon(advies.m_besteld), "3/T=1 3/1=1 T/T=1 T/1=1 ");
  EXPECT_EQ(toon(advies.m_voorraad), "4/T=2 4/1=1 4/2=1 5/T=1 5/95=1 T/T=3 T/1=1 T/2=1 T/95=1 ");
  EXPECT_EQ(toon(advies.m_uit), "5/T=1 5/95=1 T/T=1 T/95=1 ");
  EXPECT_EQ(toon(advies.m_in), "6/T=1 6/95=1 T/T=1 T/95=1 ");
  EXPECT_EQ(toon(advies.m_verkocht), "7/T=4 7/3=4 T/T=4 T/3=4 ");
  EXPECT_EQ(toon(advies.m_vrk_periode), "7/T=2 7/3=2 T/T=2 T/3=2 ") << "today and 13 days ago";
  EXPECT_EQ(toon(advies.m_correctie), "8/T=1 8/4=1 T/T=1 T/4=1 ");
  EXPECT_EQ(advies.m_ontvangen.back()[0], 8) << "all but those on order";
  sys_rec1.datumlimiet = 0;
  ASSERT_TRUE(vul(BLOUSE));
  EXPECT_EQ(advies.m_besteld.back()[0], 2) << "without a limit each ordered label counts";
}

TEST_F(AdvVul, OrdersCountByWhatIsStillToGo) {
  const uint32_t een = etiket(BLOUSE, ETI_VOORRAAD, 1, 3),
                 twee = etiket(BLOUSE, ETI_VOORRAAD, 1, 3);
  const uint32_t drie = etiket(BLOUSE, ETI_VOORRAAD, 2, 3);
  const uint32_t vier = etiket(BLOUSE, ETI_VOORRAAD, 4, 3),
                 vijf = etiket(BLOUSE, ETI_VOORRAAD, 1, 3);
  proef_regel(0, 3, BLOUSE, {{1, 5}, {2, 1}, {95, 4}}, ORDER);
  proef_regel(0, 3, BLOUSE, {{1, 7}}, ANDERE_ORDER);
  proef_regel(2, 4, BLOUSE, {{1, 3}, {95, 2}});
  proef_regel(4, 2, BLOUSE, {{1, 1}});
  proef_regel(2, 4, BROEK, {{1, 9}});
  onderweg(BLOUSE, een, 0, 3, ORDER);
  onderweg(BLOUSE, twee, 0, 3, ORDER, 1);  // finished
  onderweg(BLOUSE, drie, 0, 3, ORDER);
  onderweg(BLOUSE, vier, 0, 3, ORDER);  // more than was ordered
  onderweg(BLOUSE, vijf, 0, 3, 0);      // no order
  onderweg(BLOUSE, 9999, 0, 3, ORDER);  // no such label
  ASSERT_TRUE(vul(BLOUSE));
  EXPECT_EQ(toon(advies.m_uit), "0/T=15 0/1=11 0/95=4 T/T=15 T/1=11 T/95=4 ");
  EXPECT_EQ(toon(advies.m_in), "3/T=15 3/1=11 3/95=4 T/T=15 T/1=11 T/95=4 ");
  EXPECT_EQ(toon(advies.m_voorlopig), "2/T=-4 2/1=-2 2/95=-2 4/T=4 4/1=2 4/95=2 ");
  EXPECT_EQ(toon_tpck(), "2>4/1=3 2>4/95=2 4>2/1=1 ");
  const auto geteld = proef_inhoud<DtPick>(tmpgo);
  ASSERT_EQ(geteld.size(), 1u);
  const DtPick& g = geteld[0];
  EXPECT_TRUE(g.opdrachtnr == ORDER && g.vanfil == 0 && g.naarfil == 3);
  EXPECT_TRUE(g.aantal[1] == 1 && g.aantal[2] == 1 && g.aantal[4] == 1);
  EXPECT_EQ(dtpick->block.key_number * 10 + dtgo->block.key_number, 23) << "as adv_open left them";

  // The next series has none of that, and the one after it writes nothing at all.
  ASSERT_TRUE(vul(BROEK));
  EXPECT_EQ(toon_tpck(), "2>4/1=9 ");
  EXPECT_TRUE(proef_inhoud<DtPick>(tmpgo).empty());
  ASSERT_TRUE(vul(JAS));
  EXPECT_EQ(toon_tpck() + toon(advies.m_uit) + toon(advies.m_voorlopig), "");
  const uint64_t geschreven = io_proef.geschreven;
  ASSERT_TRUE(vul(JAS));
  EXPECT_EQ(io_proef.geschreven, geschreven);
}

/// Memory that runs out while the rows are made names what there was no room for.
TEST_F(AdvVul, NoMemoryEndsTheProgramWithItsNumber) {
  std::set<std::string> gemeld;
  for (int n = 0; n < 100; ++n) {
    const std::string einde = Kind([n] {
                                adv_sluit();
                                scr_hooks.kaal = [](const char* tekst) {
                                  geheugen_over = -1;
                                  ix_hooks.fataal(tekst);
                                };
                                geheugen_over = n;
                                adv_open();
                                geheugen_over = -1;
                                return std::string("open");
                              }).einde(20);
    if (einde == "open") break;
    ASSERT_TRUE(einde.find("VRDBSUB1: ") != std::string::npos) << einde;
    gemeld.insert(einde.substr(einde.rfind('(')));
  }
  EXPECT_EQ(gemeld, (std::set<std::string>{"(nr=1)", "(nr=2)", "(nr=3)", "(nr=4)", "(nr=5)",
                                           "(nr=7)", "(nr=8)", "(nr=11)", "(nr=12)", "(nr=13)"}));
}

int eti_gelezen;

TEST_F(AdvVul, TheChainIsReadOnceWhateverRefersToIt) {
  for (int n = 0; n < 200; ++n) {
    const uint32_t label = etiket(BLOUSE, ETI_VERKOPEN, 1, static_cast<uint8_t>(n % 4), vandaag);
    Keten::voeg(dtaanv, DtAanv{BLOUSE, label});
    onderweg(BLOUSE, label, 0, 3, ORDER);
  }
  Keten::voeg(dtaanv, DtAanv{BLOUSE, 9999});
  Keten::voeg(dtaanv, DtAanv{BLOUSE, etiket(BROEK, ETI_VERKOPEN, 1, 2)});  // changed hands
  ser_rec = proef_serie(BLOUSE);
  eti_gelezen = 0;
  io_proef.na_lees = [](int fd, void*, size_t, int64_t) { eti_gelezen += fd == eti.fd ? 1 : 0; };
  const bool geheel = adv_vul();
  io_proef.na_lees = nullptr;
  ASSERT_TRUE(geheel);
  EXPECT_EQ(eti_gelezen, 20);
  EXPECT_EQ(toon(advies.m_aanvul),
            "0/T=50 0/1=50 1/T=50 1/1=50 2/T=50 2/1=50 3/T=50 3/1=50 T/T=200 T/1=200 ");
  EXPECT_EQ(proef_inhoud<DtPick>(tmpgo).at(0).aantal[1], 200u);
}

TEST_F(AdvVul, MastersComeWithTheSeries) {
  DtArt art{};
  ASSERT_TRUE(lees_artikel(dtart, &art, BROEK.artgroep));
  art.vlaggen = 2;
  art.soort = 'P';
  art.minimum = 3;
  art.magazijn_pct = 40;
  art.streef[249] = 9;
  Keten::voeg(dtart, art);
  ser_rec = proef_serie(BROEK);
  memset(ser_rec.maten, 0, sizeof ser_rec.maten);
  ser_rec.maten[0] = 0b00001110;  // 1, 2 and 3
  memcpy(ser_rec.model, "MODEL VAN 15 TE", 15);
  ASSERT_TRUE(adv_vul());
  EXPECT_EQ(advies.maten, (std::vector<uint8_t>{3, 1, 2})) << "in the order of the bar";
  EXPECT_EQ(memcmp(advies.model, "MODEL VAN 15 TE", 15), 0);
  const AdvGroep& g = advies.groep;
  EXPECT_EQ(g.magazijn, 0);
  EXPECT_TRUE(g.alleen_onder && !g.pure_magazijn && g.verdeelsoort == 'P');
  EXPECT_EQ(g.minimum * 10000 + g.magazijn_pct * 100 + g.streef[249], 34009);

  ser_rec.nr.artgroep = 77777;  // no such article group, no such size type
  ser_rec.maatsoort = 9;
  ASSERT_TRUE(adv_vul());
  EXPECT_EQ(advies.groep.magazijn, FILIAAL_GEEN);
  EXPECT_EQ(advies.groep.streef[5], 0);
  EXPECT_TRUE(advies.maten.empty());
  ser_rec.maatsoort = 1;
  sys_rec1.land = 0;  // a damaged system record
  ASSERT_TRUE(adv_vul());
  EXPECT_TRUE(advies.maten.empty());
}

TEST_F(AdvVul, AChainThatPointsWrongIsNotWhole) {
  for (int n = 0; n < 25; ++n) etiket(BLOUSE, ETI_VOORRAAD, 1, 1);
  const uint32_t vreemd = etiket(BROEK, ETI_VOORRAAD, 1, 1);
  ASSERT_TRUE(vul(BLOUSE));
  EXPECT_EQ(advies.m_voorraad.back()[0], 25);
  for (const int32_t doel : {0, 1, 2, eti_blok(static_cast<int32_t>(vreemd))}) {
    proef_ketting(2, doel);
    EXPECT_FALSE(vul(BLOUSE)) << "to block " << doel;
  }
  proef_ketting(2, -1);
  EXPECT_TRUE(vul(BLOUSE));
  // A block that was given back: no labels in it, but not the end of this series either.
  const std::string nullen(376, '\0');
  io_schrijf(eti.fd, nullen.data(), nullen.size(), int64_t{2} * 376);
  proef_ketting(2, -1);
  EXPECT_FALSE(vul(BLOUSE));
}

TEST_F(AdvVul, NumbersOutOfBoundsTouchNothing) {
  for (const uint8_t filiaal : {uint8_t{12}, uint8_t{250}, uint8_t{255}}) {
    etiket(BLOUSE, ETI_VOORRAAD, 1, filiaal);
    proef_regel(1, filiaal, BLOUSE, {{1, 1}});
    proef_regel(filiaal, 1, BLOUSE, {{1, 1}}, ORDER);
  }
  etiket(BLOUSE, ETI_VOORRAAD, 0, 1);
  const uint32_t label = etiket(BLOUSE, ETI_VOORRAAD, 1, 1);
  const uint16_t maat_200 = 200 * 100;
  io_schrijf(eti.fd, &maat_200, sizeof maat_200, 16 + int64_t{label - 1} * 36 + 5 * 4);
  Etiket reis = proef_etiket(BLOUSE, ETI_VOORRAAD, 1, 3);
  reis.onderweg = 1;
  reis.doel = 200;
  etiket(reis);
  proef_regel(1, 2, BLOUSE, {{1, UINT32_MAX}});
  ASSERT_TRUE(vul(BLOUSE));
  EXPECT_EQ(toon(advies.m_voorraad), "3/T=1 3/1=1 T/T=1 T/1=1 ");
  EXPECT_EQ(toon(advies.m_uit), "3/T=1 3/1=1 T/T=1 T/1=1 ");
  EXPECT_EQ(toon(advies.m_in), "");
}

TEST_F(AdvVul, StockAndSalesOfTheChosenBranches) {
  for (int n = 0; n < 6; ++n) etiket(BLOUSE, ETI_VOORRAAD, 1, static_cast<uint8_t>(n % 2));
  for (int n = 0; n < 3; ++n) etiket(BLOUSE, ETI_VERKOPEN, 1, 1, vandaag);
  etiket(BLOUSE, ETI_CORRECTIES, 1, 1);
  ASSERT_TRUE(vul(BLOUSE));
  const auto past = [](int32_t vrd_van, int32_t vrd_tm, char soort, int32_t van, int32_t tm) {
    adv_rec.vrd_van = vrd_van;
    adv_rec.vrd_tm = vrd_tm;
    adv_rec.vrk_soort = soort;
    adv_rec.vrk_van = van;
    adv_rec.vrk_tm = tm;
    return adv_selectie();
  };
  EXPECT_TRUE(past(6, 6, 'A', 3, 3));
  EXPECT_FALSE(past(7, 99999, 'A', 0, 99999));
  EXPECT_FALSE(past(0, 5, 'A', 0, 99999));
  EXPECT_FALSE(past(0, 99999, 'A', 4, 99999));
  EXPECT_FALSE(past(0, 99999, 'A', 0, 2));
  EXPECT_TRUE(past(0, 99999, 'P', 33, 33)) << "3 of 9, cut off";
  EXPECT_FALSE(past(0, 99999, 'P', 34, 100));
  pg_remove(adv_rec.filialen, 1);
  EXPECT_TRUE(past(3, 3, 'A', 0, 0)) << "without the branch that sold";
  ASSERT_TRUE(vul(BROEK));
  EXPECT_FALSE(past(0, 99999, 'A', 0, 99999)) << "nothing was ever received";
  etiket(BROEK, ETI_CORRECTIES, 1, 1);
  ASSERT_TRUE(vul(BROEK));
  EXPECT_TRUE(past(0, 99999, 'P', 0, 0)) << "all of it corrected";
}

struct AdvLoopTest : AdvVul {
  Agent agent{[](const std::string& wat) -> std::string {
    static ICB* tabel = nullptr;
    if (wat == "open") tabel = IXOPEN("DTSER", IX_GEDEELD);
    if (wat == "open") return "";
    std::string vast;
    for (const Serienr& nr : {BLOUSE, BROEK, JAS}) {
      DtSer rec{};
      rec.nr = nr;
      if (!IXREAD(tabel, &rec)) continue;
      const int64_t plaats = int64_t{tabel->record_no} * int64_t{sizeof rec};
      if (!file_lock('T', tabel->data_fd, plaats, sizeof rec)) vast += serie_tekst(nr) + " ";
    }
    return vast;
  }};
  void SetUp() override {
    agent.ask("open");
    begin();
    for (const Serienr& nr : {BLOUSE, BROEK, JAS}) etiket(nr, ETI_VOORRAAD, 1, 1);
  }
  static std::string stap(const AdvLoop& loop, int richting = ADV_VERDER) {
    return adv_volgende(loop, richting) ? serie_tekst(ser_rec.nr) : "";
  }
};

TEST_F(AdvLoopTest, StopsAtWhatPassesAndHoldsOnlyThat) {
  etiket(BROEK, ETI_NOTA, 1, 1);
  proef_regel(1, 2, JAS, {{1, 1}}, ORDER);
  proef_regel(1, 2, JAS, {{1, 1}});
  const AdvLoop loop{dtser, ADV_MUTATIES};
  ser_rec = {};
  EXPECT_EQ(stap(loop), "10100.10.1");
  EXPECT_EQ(agent.ask("?"), "10100.10.1 ");
  EXPECT_EQ(advies.m_voorraad[1][1], 1);
  serie_los();
  EXPECT_EQ(stap(loop), "10200.310.4");
  serie_los();
  EXPECT_EQ(stap(loop), "10300.5.2");
  serie_los();
  EXPECT_EQ(stap(loop), "") << "the end";
  EXPECT_EQ(serie_tekst(ser_rec.nr), "10300.5.2") << "stays where it was";
  EXPECT_EQ(agent.ask("?"), "") << "and holds nothing";
  EXPECT_EQ(stap(loop, ADV_TERUG), "10200.310.4");
  serie_los();

  adv_rec.met_opdracht = 0;
  EXPECT_EQ(stap(loop), "") << "the third has a provisional order";
  adv_rec.met_opdracht = 1;
  adv_rec.zonder_opdracht = 0;
  ser_rec = {};
  EXPECT_EQ(stap(loop), "10300.5.2");
  serie_los();
  EXPECT_EQ(agent.ask("?"), "");
  adv_rec.zonder_opdracht = 1;
  adv_rec.vrd_van = 2;
  ser_rec = {};
  EXPECT_EQ(stap(loop), "") << "none has so much stock";
}

TEST_F(AdvLoopTest, ByHandOnlyWhatHasReplenishmentInformation) {
  const uint32_t label = etiket(BROEK, ETI_VERKOPEN, 1, 2, vandaag);
  Keten::voeg(dtaanv, DtAanv{BROEK, label});
  const AdvLoop loop{dtser, ADV_HANDMATIG};
  ser_rec = {};
  EXPECT_EQ(stap(loop), "10200.310.4");
  serie_los();
  EXPECT_EQ(stap(loop), "");
  // A series that only stands on order, and one that is gone.
  constexpr Serienr NIEUW{10400, 1, 1}, WEG{10500, 1, 1};
  Keten::serie(NIEUW);
  Keten::voeg(dtaanv, DtAanv{NIEUW, etiket(NIEUW, ETI_NOTA, 1, 1)});
  Keten::voeg(dtaanv, DtAanv{WEG, 5});
  Keten::voeg(dtaanv, DtAanv{WEG, 6});
  ser_rec.nr = NIEUW;
  EXPECT_FALSE(adv_neem(ADV_HANDMATIG, true));
  ser_rec.nr = NIEUW;
  EXPECT_TRUE(adv_neem(ADV_HANDMATIG, false)) << "asked for by number";
  serie_los();
  EXPECT_EQ(proef_inhoud<DtAanv>(dtaanv).size(), 4u);
  ser_rec = {};
  ser_rec.nr = WEG;
  EXPECT_FALSE(adv_neem(ADV_HANDMATIG, true));
  EXPECT_EQ(proef_inhoud<DtAanv>(dtaanv).size(), 2u) << "its information goes with it";
}

TEST_F(AdvLoopTest, WhatCannotBeReadWholeIsPassedOver) {
  proef_ketting(1, 2);  // the second series into the third
  static std::string gemeld;
  gemeld.clear();
  const auto regel_was = ix_hooks.regel;
  ix_hooks.regel = [](const char* tekst, int) { gemeld += tekst; };
  const AdvLoop loop{dtser, ADV_MUTATIES};
  ser_rec = {};
  EXPECT_EQ(stap(loop), "10100.10.1");
  serie_los();
  EXPECT_EQ(stap(loop), "10300.5.2");
  serie_los();
  EXPECT_TRUE(gemeld.starts_with("10200.310.4 ")) << gemeld;
  ser_rec.nr = BROEK;
  EXPECT_FALSE(adv_neem(ADV_MUTATIES, false));
  EXPECT_EQ(agent.ask("?"), "");
  ix_hooks.regel = regel_was;
}

}  // namespace
