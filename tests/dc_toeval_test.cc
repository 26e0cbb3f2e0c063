// Days reported in any order, and long runs of anything at all. A seed is printed with a failure;
// OPDSALDO_DATACOM_STAPPEN sets the number of transactions of the long run.
#include <algorithm>
#include <map>
#include <numeric>
#include <random>

#include "tests/support/dc_proef.h"

namespace {

constexpr uint32_t ZAAD = 20260731;

struct Toeval {
  std::mt19937 bron;
  int tot(int n) { return static_cast<int>(bron() % static_cast<uint32_t>(n)); }
};

struct DcToeval : DcProef {
  static constexpr const char *S = "8711111111119", *M = "8722222222228";

  template <class Rec>
  static void voeg_toe(std::string& uit, ICB* tabel) {
    for (const Rec& rec : proef_inhoud<Rec>(tabel))
      uit.append(reinterpret_cast<const char*>(&rec), sizeof rec);
  }
  /// All labels, and all records of moves in the order of their keys.
  std::string stand() {
    std::string uit;
    met([&] {
      for (const Serienr& nr : {ROK, JAS})
        elk(nr, [&](int32_t, const Etiket& e) { uit += staat(e) + " "; });
      voeg_toe<DtGo>(uit, dtgo);
      voeg_toe<DtFin>(uit, dtfin);
      voeg_toe<DtIo>(uit, dtio);
    });
    return uit;
  }

  /// A label's way past branches that it sees once, each step reported by a send, a receive or
  /// both, over two days.
  static void reis(Toeval& t, int32_t etiket, const std::vector<int>& plaatsen,
                   std::vector<DcRegel>& uit) {
    uint16_t dag = DAG;
    const size_t stappen = 1 + static_cast<size_t>(t.tot(static_cast<int>(plaatsen.size()) - 1));
    for (size_t i = 0; i < stappen; ++i) {
      if (dag == DAG && t.tot(4) == 0) ++dag;
      const int hoe = i + 1 == stappen ? t.tot(3) : t.tot(2);
      const uint32_t nummer = t.tot(2) == 0 ? 0 : 20000000u + static_cast<uint32_t>(t.tot(9));
      DcRegel r = zend(plaatsen[i], plaatsen[i + 1], code(etiket), 1, nummer);
      r.datum = dag;
      if (hoe != 0) uit.push_back(r);
      r.soort = DC_ONTVANGEN;
      if (hoe != 2) uit.push_back(r);
    }
  }
};

TEST_F(DcToeval, TheOrderWithinADayDoesNotMatter) {
  for (const bool aan : {true, false}) {
    transit = aan;
    for (uint32_t keer = 0; keer < 8; ++keer) {
      SCOPED_TRACE("seed " + std::to_string(ZAAD + keer) + (aan ? " with" : " without") +
                   " transit");
      Toeval t{std::mt19937(ZAAD + keer)};
      std::vector<DcRegel> regels;
      met([&] {
        for (int i = 0; i < 20; ++i) {
          std::vector<int> plaatsen(FILIALEN);
          std::iota(plaatsen.begin(), plaatsen.end(), 0);
          std::ranges::shuffle(plaatsen, t.bron);
          reis(t, leg(ROK, ETI_VOORRAAD, static_cast<uint8_t>(plaatsen[0])), plaatsen, regels);
        }
      });
      const auto begin = bestanden();
      verwerk(regels);
      const std::string soll = stand();
      for (int keer2 = 0; keer2 < 3; ++keer2) {
        zet_bestanden(begin);
        std::ranges::shuffle(regels, t.bron);
        verwerk(regels);
        EXPECT_TRUE(stand() == soll);
      }
    }
  }
}

struct DcLang : DcToeval {
  std::map<std::string, int> begin;

  void vul(Toeval& t) {
    met([&] {
      proef_ean(S, 'M', JAS, 1);
      proef_ean(M, 'M', JAS, 2);
      for (int i = 0; i < 150; ++i) {
        const auto filiaal = static_cast<uint8_t>(t.tot(FILIALEN));
        const uint8_t status = t.tot(12) == 0  ? ETI_VERKOPEN
                               : t.tot(8) == 0 ? ETI_CORRECTIES
                                               : ETI_VOORRAAD;
        const int reden = t.tot(2);
        leg(ROK, status, filiaal, 1, [&](Etiket& e) {
          e.vrkdat = status == ETI_VOORRAAD ? uint16_t{0} : uint16_t(DAG + t.tot(6));
          e.reden = status == ETI_CORRECTIES ? static_cast<uint8_t>(reden) : uint8_t{0};
        });
        leg(JAS, t.tot(9) == 0 ? ETI_VERKOPEN : ETI_VOORRAAD, filiaal,
            static_cast<uint8_t>(1 + t.tot(2)));
      }
      for (const Serienr& nr : {ROK, JAS}) zet_tellers(nr);
    });
  }
  static void tel(const Serienr& nr, uint32_t aantal[5]) {
    elk(nr, [&](int32_t, const Etiket& e) { ++aantal[e.status]; });
  }
  static void zet_tellers(const Serienr& nr) {
    uint32_t n[5] = {};
    tel(nr, n);
    DtSer rec = proef_serie(nr);
    rec.besteld = n[ETI_NOTA];
    rec.voorraad = n[ETI_VOORRAAD];
    rec.verkocht = n[ETI_VERKOPEN];
    rec.correcties = n[ETI_CORRECTIES];
    IXWRITE(dtser, &rec);
  }
  DcRegel iets(Toeval& t) {
    const int soort = t.tot(10);
    std::string wat = soort < 6 ? code(1 + t.tot(320)) : soort < 8 ? S : M;
    if (t.tot(60) == 0) wat = t.tot(2) == 0 ? "" : "8799999999995";
    const uint32_t nummer = t.tot(3) == 0 ? 20000000u + static_cast<uint32_t>(t.tot(4)) : 0;
    const uint32_t stuks =
        t.tot(30) == 0 ? (t.tot(2) == 0 ? 40 : DC_GEEN_AANTAL) : static_cast<uint32_t>(t.tot(5));
    const int van = t.tot(40) == 0 ? t.tot(256) : t.tot(FILIALEN);
    return regel(static_cast<uint8_t>(t.tot(2)), van, t.tot(FILIALEN), wat, stuks, nummer,
                 static_cast<uint16_t>(DAG + t.tot(4)));
  }
  /// What must hold after any run: nothing lost or made, each label somewhere, counters right.
  void keur() {
    met([&] {
      std::map<std::string, int> nu;
      for (const Serienr& nr : {ROK, JAS}) {
        uint32_t n[5] = {};
        tel(nr, n);
        const DtSer rec = proef_serie(nr);
        EXPECT_EQ(uint32_t{rec.voorraad}, n[ETI_VOORRAAD]);
        EXPECT_EQ(uint32_t{rec.correcties}, n[ETI_CORRECTIES]);
        elk(nr, [&](int32_t nummer, const Etiket& e) {
          EXPECT_LT(e.filiaal, FILIALEN);
          const bool weer = e.status == ETI_CORRECTIES && e.reden == 0;
          ++nu[str_format("%s %d %d", serie_tekst(nr), e.maat,
                          weer ? int{ETI_VOORRAAD} : int{e.status})];
          if (!transit) {
            EXPECT_EQ(e.onderweg, 0);
            return;
          }
          const bool leeft = go_lees(nummer) && go_rec.afgewerkt == 0;
          EXPECT_EQ(leeft, e.onderweg != 0) << nummer;
          if (leeft) {
            EXPECT_EQ(go_rec.vanfil, e.filiaal);
            EXPECT_EQ(go_rec.naarfil, e.doel);
          }
        });
      }
      if (begin.empty()) begin = nu;
      EXPECT_EQ(nu, begin);
    });
  }
};

TEST_F(DcLang, NothingIsLostOrMade) {
  const char* wens = getenv("OPDSALDO_DATACOM_STAPPEN");
  const int stappen = wens != nullptr && atoi(wens) > 0 ? atoi(wens) : 20000;
  Toeval t{std::mt19937(ZAAD)};
  vul(t);
  keur();
  constexpr int BESTAND = 250;
  for (int n = 0; n < stappen; n += BESTAND) {
    SCOPED_TRACE("seed " + std::to_string(ZAAD) + " transaction " + std::to_string(n));
    std::vector<DcRegel> regels;
    for (int i = 0; i < BESTAND; ++i) regels.push_back(iets(t));
    bestand(regels);
    const std::string eerst = n % 2000 == 0 ? loop(false) : "";
    const std::string lijst = loop(true);
    EXPECT_TRUE(eerst.empty() || regels_van(eerst) == regels_van(lijst));
    keur();
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_TRUE(tabellen_heel());
}

}  // namespace
