// What holds for the advice of any series: ten thousand random small chains. A failure prints its
// seed.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "tests/support/advies_proef.h"

namespace {

constexpr int FILIALEN = 6, MATEN_MAX = 5;
constexpr unsigned KETENS = 10000;

struct Dobbel {
  std::mt19937 r;
  int tot(int n) { return static_cast<int>(r() % static_cast<unsigned>(n)); }
  bool een_op(int n) { return tot(n) == 0; }
  /// Mostly nothing, seldom much.
  int stuks(int kans, int meest) { return een_op(kans) ? 1 + tot(meest) : 0; }
};

void werp_groep(Dobbel& d, AdvProef& p) {
  AdvGroep& g = p.a.groep;
  g.magazijn = d.een_op(3) ? FILIAAL_GEEN : static_cast<uint8_t>(d.tot(FILIALEN));
  g.pure_magazijn = d.een_op(2);
  g.alleen_onder = d.een_op(2);
  g.verdeelsoort = d.een_op(2) ? 'A' : 'P';
  g.minimum = static_cast<uint8_t>(d.tot(4));
  g.magazijn_pct = static_cast<uint8_t>(d.tot(120));
  for (int b = 0; b < FILIALEN; ++b)
    g.streef[static_cast<size_t>(b)] = static_cast<uint8_t>(d.stuks(2, 5));
  p.a.bron_soort = static_cast<uint8_t>(1 + d.tot(3));
  p.a.verdeel.per_maat = d.een_op(2);
  p.a.model[0] = static_cast<char>('A' + d.tot(3));
  for (int b = 0; b < FILIALEN; ++b) {
    if (d.een_op(8)) pg_remove(p.vanuit, b);
    if (d.een_op(8)) pg_remove(p.aanvul, b);
    if (d.een_op(2)) pg_add(p.merk, b);
  }
}

void werp_stuks(Dobbel& d, AdvProef& p) {
  Advies& a = p.a;
  const int nieuw_in = d.een_op(4) ? d.tot(FILIALEN) : -1;
  const bool orders = d.een_op(2), kaal = d.een_op(2);
  for (int b = 0; b < FILIALEN; ++b)
    for (const uint8_t s : a.maten) {
      const auto rij = static_cast<size_t>(b);
      if (nieuw_in >= 0 && b != nieuw_in) continue;
      a.m_voorraad[rij][s] = nieuw_in >= 0 ? d.tot(20) : d.stuks(2, kaal ? 1 : 6);
      if (nieuw_in >= 0) continue;
      a.m_verkocht[rij][s] = d.stuks(2, 5);
      a.m_vrk_periode[rij][s] = d.tot(a.m_verkocht[rij][s] + 1);
      a.m_aanvul[rij][s] = d.stuks(2, 3);
      a.m_correctie[rij][s] = d.stuks(9, 1);
      if (!orders) continue;
      a.m_uit[rij][s] = d.stuks(4, 3);
      a.m_in[rij][s] = d.stuks(4, 3);
      a.m_besteld[rij][s] = d.stuks(40, 3);
    }
}

AdvProef werp(unsigned zaad) {
  Dobbel d{std::mt19937(zaad)};
  AdvProef p(FILIALEN, 1 + d.tot(MATEN_MAX));
  std::shuffle(p.a.maten.begin(), p.a.maten.end(), d.r);  // the bar's order is not the index's
  werp_groep(d, p);
  werp_stuks(d, p);
  p.klaar();
  return p;
}

/// The same series into matrices that served others before.
void neem_over(Advies& a, const AdvProef& p) {
  adv_wis(a);
  for (const auto m : {&Advies::m_ontvangen, &Advies::m_voorraad, &Advies::m_verkocht,
                       &Advies::m_correctie, &Advies::m_vrk_periode, &Advies::m_uit, &Advies::m_in,
                       &Advies::m_besteld, &Advies::m_aanvul})
    a.*m = p.a.*m;
  a.groep = p.a.groep;
  a.bron_soort = p.a.bron_soort;
  a.maten = p.a.maten;
  memcpy(a.model, p.a.model, sizeof a.model);
  a.verdeel.per_maat = p.a.verdeel.per_maat;
  adv_totalen(a);
  adv_verzamelingen(a, p.vanuit, p.aanvul, p.merk);
}

int64_t kolomsom(const Advies& a, const MaatMatrix& r, int s) {
  int64_t som = 0;
  for (int b = 0; b < a.filialen(); ++b) som += cel(r, b, s);
  return som;
}

bool blijft_gelijk(const Advies& a, const MaatMatrix& r) {
  for (int b = 0; b < a.filialen(); ++b) {
    int64_t som = 0;
    for (const uint8_t s : a.maten) som += cel(r, b, s);
    if (som != cel(r, b, 0)) return false;
  }
  return std::all_of(a.maten.begin(), a.maten.end(), [&](int s) { return kolomsom(a, r, s) == 0; });
}

bool gever_houdt_minimum(const Advies& a, const MaatMatrix& r) {
  for (int b = 0; b < a.filialen(); ++b) {
    const int houdt = b == magazijn(a) ? magazijn_houdt(a) : a.groep.minimum;
    for (const uint8_t s : a.maten)
      if (cel(r, b, s) < 0 && vrij(a, b, s) + cel(r, b, s) < houdt) return false;
  }
  return true;
}

bool alleen_ontvangers(const Advies& a, const MaatMatrix& r) {
  for (int b = 0; b < a.filialen(); ++b) {
    const bool mag =
        streef(a, b) != 0 && std::count(a.adv_volgorde.begin(), a.adv_volgorde.end(), b) == 1;
    for (const uint8_t s : a.maten)
      if ((cel(r, b, s) > 0 && !mag) || (cel(r, b, s) < 0 && !in_set(a.bron, b))) return false;
  }
  return true;
}

TEST(Eigenschap, WhatOneGivesAnotherGetsAndGiversKeepTheirMinimum) {
  std::array<int, 5> gezien{};
  for (unsigned zaad = 0; zaad < KETENS; ++zaad) {
    AdvProef p = werp(zaad);
    p.bereken();
    for (size_t i = 0; i < gezien.size(); ++i) gezien[i] += p.a.adv_kenmerk >> i & 1;
    const bool nieuw = p.a.adv_kenmerk == ADV_DISTRIBUTIE;
    ASSERT_TRUE(blijft_gelijk(p.a, p.a.r_aanvul)) << zaad;
    ASSERT_TRUE(blijft_gelijk(p.a, p.a.r_switch)) << zaad;
    for (const MaatMatrix* r : {&p.a.r_aanvul, &p.a.r_switch, &p.a.r_herverdeel}) {
      if ((nieuw && r == &p.a.r_aanvul) ||
          (r == &p.a.r_herverdeel && (p.a.adv_kenmerk & ADV_RESTANT) != 0))
        continue;
      ASSERT_TRUE(blijft_gelijk(p.a, *r)) << zaad;
      ASSERT_TRUE(gever_houdt_minimum(p.a, *r)) << zaad;
      ASSERT_TRUE(alleen_ontvangers(p.a, *r)) << zaad;
    }
    adv_automatisch(p.a);
    ASSERT_TRUE(blijft_gelijk(p.a, p.a.r_aanvul)) << zaad;
    ASSERT_TRUE(gever_houdt_minimum(p.a, p.a.r_aanvul)) << zaad;
  }
  for (const int n : gezien) EXPECT_GT(n, 100);
}

int langste_reeks(const Advies& a, const MaatMatrix& bij) {
  int langste = 0;
  for (int b = 0; b < a.filialen(); ++b) {
    int lengte = 0;
    for (const uint8_t s : a.maten) {
      lengte = cel(a.m_voorraad, b, s) + cel(bij, b, s) > 0 ? lengte + 1 : 0;
      langste = std::max(langste, lengte);
    }
  }
  return langste;
}

/// Every branch gives and receives, and nothing is on its way.
AdvProef vrije_keten(unsigned zaad) {
  Dobbel d{std::mt19937(zaad)};
  AdvProef p(FILIALEN, 1 + d.tot(MATEN_MAX));
  const int meest = 1 + d.tot(3);
  for (int b = 0; b < FILIALEN; ++b) {
    p.a.m_correctie[static_cast<size_t>(b)][1] = 1;
    for (const uint8_t s : p.a.maten) {
      p.a.m_voorraad[static_cast<size_t>(b)][s] = d.stuks(3, meest);
      p.a.m_verkocht[static_cast<size_t>(b)][s] = d.stuks(2, 5);
    }
  }
  p.klaar();
  return p;
}

TEST(Eigenschap, RemaindersMakeRowsThatAreNeverShorter) {
  int langer = 0;
  for (unsigned zaad = 0; zaad < KETENS; ++zaad) {
    AdvProef p = vrije_keten(zaad);
    const int voor = langste_reeks(p.a, p.a.r_herverdeel);
    restanten(p.a);
    const int na = langste_reeks(p.a, p.a.r_herverdeel);
    ASSERT_GE(na, voor) << zaad;
    langer += na > voor ? 1 : 0;
  }
  EXPECT_GT(langer, 1000);
}

/// No giver owes pieces, and no pool is larger than the list of receivers.
bool restant_sluit(const Advies& a) {
  for (const uint8_t s : a.maten) {
    int64_t pot = 0;
    for (int b = 0; b < a.filialen(); ++b) {
      if (!in_set(a.bron, b)) continue;
      if (vrij(a, b, s) < 0) return false;
      pot += vrij(a, b, s);
    }
    if (pot > static_cast<int64_t>(a.adv_volgorde.size())) return false;
  }
  return true;
}

TEST(Eigenschap, RemaindersAreGivenAwayWholeWhereNothingIsOwedAndTheListIsLongEnough) {
  int gezien = 0;
  for (unsigned zaad = 0; zaad < KETENS; ++zaad) {
    AdvProef p = zaad % 2 == 0 ? werp(zaad) : vrije_keten(zaad);
    if (!restant_sluit(p.a)) continue;
    matrix_wis(p.a.r_herverdeel);
    restanten(p.a);
    ASSERT_TRUE(blijft_gelijk(p.a, p.a.r_herverdeel)) << zaad;
    ++gezien;
  }
  EXPECT_GT(gezien, 1000);
}

TEST(Eigenschap, NothingIsLeftOfTheSeriesBefore) {
  AdvProef lang(FILIALEN, MATEN_MAX);
  for (unsigned zaad = 0; zaad < KETENS / 2; ++zaad) {
    AdvProef vers = werp(zaad);
    const bool soll = vers.bereken();
    neem_over(lang.a, vers);
    lang.a.verdeel.begonnen = false;
    ASSERT_EQ(adv_bereken(lang.a, vers.krit, lang.a.m_vrk_periode), soll) << zaad;
    ASSERT_EQ(lang.a.adv_kenmerk, vers.a.adv_kenmerk) << zaad;
    for (const auto r : {&Advies::r_aanvul, &Advies::r_switch, &Advies::r_herverdeel})
      ASSERT_TRUE(lang.a.*r == vers.a.*r) << zaad;
  }
}

/// The rule told plainly, piece by piece, over all branches.
struct Telraam {
  Advies& a;
  MaatMatrix r;
  size_t kolom(int s) const { return a.verdeel.per_maat ? static_cast<size_t>(s) : 0; }
  int gewicht(int b) const { return in_set(a.doel, b) ? streef(a, b) : 0; }
  int32_t& stand(int b, int s) { return a.verdeel.verdeel_stand[static_cast<size_t>(b)][kolom(s)]; }
  void geef(int b, int s) {
    for (int x = 0; x < a.filialen(); ++x) {
      stand(x, s) += gewicht(x);
      stand(b, s) -= gewicht(x);
    }
  }
  int kies(int s) {
    int beste = -1;
    for (const int b : a.adv_volgorde) {
      if (b == magazijn(a) || cel(r, b, s) >= aanvul_wens(a, b, s)) continue;
      if (beste < 0 || stand(b, s) > stand(beste, s)) beste = b;
    }
    return beste;
  }
  void maat(int s) {
    for (const int b : a.adv_volgorde)
      for (int32_t n = eigen(a, b, s); n > 0; --n) geef(b, s);
    for (int32_t n = vrij_magazijn(a, s); keten(a.m_aanvul, s) > 0 && n > 0; --n) {
      const int b = kies(s);
      if (b < 0) return;
      tel(r[static_cast<size_t>(b)], s, 1);
      tel(r[static_cast<size_t>(magazijn(a))], s, -1);
      geef(b, s);
    }
  }
};

TEST(Eigenschap, FairShareInOneGoIsFairSharePieceByPiece) {
  int gezien = 0;
  for (unsigned zaad = 0; zaad < KETENS / 4; ++zaad) {
    AdvProef p = werp(zaad), q = werp(zaad);
    if (!magazijn_geeft(p.a)) continue;
    aanvul_magazijn(p.a, p.a.r_aanvul);
    aanvul_magazijn(p.a, p.a.r_switch);  // on from there
    Telraam telraam{q.a, q.a.r_aanvul};
    for (const uint8_t s : q.a.maten) telraam.maat(s);
    ASSERT_EQ(p.tabel(p.a.r_aanvul), q.tabel(telraam.r)) << zaad;
    matrix_wis(telraam.r);
    for (const uint8_t s : q.a.maten) telraam.maat(s);
    ASSERT_EQ(p.tabel(p.a.r_switch), q.tabel(telraam.r)) << zaad;
    ASSERT_TRUE(p.a.verdeel.verdeel_stand == q.a.verdeel.verdeel_stand) << zaad;
    gezien += adv_leeg(p.a, p.a.r_aanvul) ? 0 : 1;
  }
  EXPECT_GT(gezien, 200);
}

/// The switch told plainly: the first taker of the order, and of all givers the best, each time.
void wissel_stuk_voor_stuk(Advies& a, const MaatMatrix& vraag, MaatMatrix& r, int s) {
  for (;;) {
    int nemer = -1, gever = -1;
    int64_t meest = -1;
    for (const int b : a.adv_volgorde)
      if (nemer < 0 && bezwaar_minimum(a, vraag, cel(r, b, s), b, s) == AdvReden::geen) nemer = b;
    for (int b = 0; b < a.filialen() && nemer >= 0; ++b) {
      const int64_t kan = int64_t{vrij(a, b, s)} + cel(r, b, s);
      if (b == nemer || !in_set(a.bron, b) || kan < meest || kan < 0) continue;
      if (kan == meest && cel(a.m_verkocht, b, 0) >= cel(a.m_verkocht, gever, 0)) continue;
      gever = b;
      meest = kan;
    }
    if (nemer < 0 || gever < 0 || meest <= a.groep.minimum) return;
    tel(r[static_cast<size_t>(gever)], s, -1);
    tel(r[static_cast<size_t>(nemer)], s, 1);
  }
}

TEST(Eigenschap, TheSwitchChoosesAsIfEachPieceWereTheFirst) {
  int gezien = 0;
  for (unsigned zaad = 0; zaad < KETENS / 4; ++zaad) {
    AdvProef p = werp(zaad);
    MaatMatrix plat = p.a.r_switch;
    switch_(p.a, p.a.m_verkocht, p.a.r_switch);
    for (const uint8_t s : p.a.maten) wissel_stuk_voor_stuk(p.a, p.a.m_verkocht, plat, s);
    ASSERT_EQ(p.tabel(p.a.r_switch), p.tabel(plat)) << zaad;
    gezien += adv_leeg(p.a, plat) ? 0 : 1;
  }
  EXPECT_GT(gezien, 200);
}

/// A result put together from the trail.
MaatMatrix uit_spoor(const Advies& a, const MaatMatrix& r, const std::vector<AdvStap>& spoor) {
  MaatMatrix som(r.size());
  for (const AdvStap& stap : spoor) {
    if (stap.uitkomst != &r) continue;
    tel(som[stap.naar], stap.maat, stap.stuks);
    if (stap.van != FILIAAL_GEEN) tel(som[stap.van], stap.maat, -stap.stuks);
  }
  // What is gathered comes from all that givers have.
  if (&r == &a.r_herverdeel && toets_restant(a) && !toets_nieuw(a))
    for (int b = 0; b < FILIALEN; ++b)
      for (const uint8_t s : a.maten)
        if (in_set(a.bron, b)) tel(som[static_cast<size_t>(b)], s, -vrij(a, b, s));
  return som;
}

TEST(Eigenschap, TheTrailTellsTheWholeResultAndChangesNothing) {
  for (unsigned zaad = 0; zaad < KETENS / 4; ++zaad) {
    AdvProef p = werp(zaad), q = werp(zaad);
    p.bereken();
    std::vector<AdvStap> spoor;
    q.a.spoor = &spoor;
    q.bereken();
    for (const auto r : {&Advies::r_aanvul, &Advies::r_switch, &Advies::r_herverdeel}) {
      ASSERT_TRUE(p.a.*r == q.a.*r) << zaad;
      ASSERT_EQ(p.tabel(uit_spoor(q.a, q.a.*r, spoor)), p.tabel(p.a.*r)) << zaad;
    }
  }
}

/// Broken files: quantities of any size where orders and sales are counted.
TEST(Eigenschap, AbsurdQuantitiesEnd) {
  constexpr int32_t ABSURD[] = {INT32_MIN, INT32_MIN + 1, -70000, -1, 65536, INT32_MAX};
  for (unsigned zaad = 0; zaad < KETENS / 20; ++zaad) {
    AdvProef p = werp(zaad);
    Dobbel d{std::mt19937(zaad)};
    for (const auto m : {&Advies::m_uit, &Advies::m_in, &Advies::m_besteld, &Advies::m_verkocht,
                         &Advies::m_vrk_periode})
      for (int keer = d.tot(4); keer > 0; --keer)
        (p.a.*m)[static_cast<size_t>(d.tot(FILIALEN))][p.a.maten[0]] = ABSURD[d.tot(6)];
    p.klaar();
    p.bereken();
    for (const uint8_t s : p.a.maten) {
      ASSERT_EQ(kolomsom(p.a, p.a.r_aanvul, s), 0) << zaad;
      ASSERT_EQ(kolomsom(p.a, p.a.r_switch, s), 0) << zaad;
    }
    for (int b = 0; b < FILIALEN; ++b)
      EXPECT_FALSE(adv_uitleg(p.a, p.a.r_herverdeel, p.krit, p.a.m_vrk_periode, b, 1, 60).empty());
    restanten(p.a);
    distributie(p.a);
    adv_automatisch(p.a);
  }
}

}  // namespace
