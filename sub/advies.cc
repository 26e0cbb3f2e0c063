// One series' advice: its matrices, who may give and who may receive in which order, and the order
// of the steps.
#include "sub/advies.h"

#include <algorithm>

#include "sub/advies_intern.h"
#include "sub/pghdl.h"

Advies advies;

namespace {

constexpr MaatMatrix Advies::*INVOER[] = {
    &Advies::m_ontvangen, &Advies::m_order,       &Advies::m_voorraad, &Advies::m_verkocht,
    &Advies::m_correctie, &Advies::m_vrk_periode, &Advies::m_uit,      &Advies::m_in,
    &Advies::m_besteld,   &Advies::m_aanvul,      &Advies::m_voorlopig};
constexpr MaatMatrix Advies::*UITKOMST[] = {&Advies::r_aanvul, &Advies::r_switch,
                                            &Advies::r_herverdeel};

void wis_uitkomst(Advies& a) {
  for (const auto r : UITKOMST) matrix_wis(a.*r);
  a.adv_kenmerk = 0;
}

/// Counts that wrap: a broken file's quantities must not stop the program.
void tel_rijen(MaatMatrix& m) {
  uint32_t samen[MATEN] = {};
  for (size_t b = 0; b + 1 < m.size(); ++b) {
    int32_t* const rij = m[b].data();
    uint32_t som = 0;
    rij[0] = 0;  // all 96 cells are walked: the compiler then takes several at a time
    for (size_t s = 0; s < MATEN; ++s) {
      som += static_cast<uint32_t>(rij[s]);
      samen[s] += static_cast<uint32_t>(rij[s]);
    }
    rij[0] = static_cast<int32_t>(som);
    samen[0] += som;
  }
  for (size_t s = 0; s < MATEN; ++s) m.back()[s] = static_cast<int32_t>(samen[s]);
}

void maak_bron(Advies& a, const uint8_t* vanuit) {
  const int mag = magazijn(a);
  a.bron.reset();
  for (int b = 0; b < a.filialen(); ++b) {
    const bool soort = a.bron_soort == 3 || (a.bron_soort == 1) == (b == mag);
    if (soort && pg_test(vanuit, b)) a.bron.set(static_cast<size_t>(b));
  }
}

void maak_volgorde(Advies& a) {
  a.adv_volgorde.clear();
  for (int b = 0; b < a.filialen(); ++b) {
    const bool puur = a.groep.pure_magazijn && b == magazijn(a);
    if (in_set(a.doel, b) && cel(a.m_ontvangen, b, 0) > 0 && !puur)
      a.adv_volgorde.push_back(static_cast<uint8_t>(b));
  }
  std::sort(a.adv_volgorde.begin(), a.adv_volgorde.end(), [&](int x, int y) {
    const int32_t vx = cel(a.m_verkocht, x, 0), vy = cel(a.m_verkocht, y, 0);
    if (vx != vy) return vx > vy;
    const int32_t ex = eigen(a, x, 0), ey = eigen(a, y, 0);
    return ex != ey ? ex < ey : x < y;
  });
}

/// The kinds that a series shows against those that are asked for.
bool gevraagd(uint8_t kenmerk, const AdvRec& krit) {
  const auto heeft = [kenmerk](uint8_t soort) { return (kenmerk & soort) != 0; };
  return (krit.adv_overig != 0 && (kenmerk == 0 || heeft(ADV_OVERIG))) ||
         (krit.adv_aanvul != 0 && heeft(ADV_AANVUL)) ||
         (krit.adv_switch != 0 && heeft(ADV_SWITCH)) ||
         (krit.adv_restant != 0 && heeft(ADV_RESTANT)) ||
         (krit.adv_distributie != 0 && heeft(ADV_DISTRIBUTIE));
}

void merk_aan(Advies& a, const MaatMatrix& r, uint8_t soort) {
  if (!adv_leeg(a, r)) a.adv_kenmerk = static_cast<uint8_t>(a.adv_kenmerk | soort);
}

void uit_magazijn(Advies& a, const MaatMatrix& vraag, MaatMatrix& r) {
  aanvul_magazijn(a, r);
  aanvul_minimum(a, vraag, r);
}

void bestaande_serie(Advies& a, const MaatMatrix& vraag) {
  if (toets_aanvul(a, vraag)) {
    uit_magazijn(a, vraag, a.r_aanvul);
    merk_aan(a, a.r_aanvul, ADV_AANVUL);
  }
  if (toets_switch(a, vraag)) {
    uit_magazijn(a, vraag, a.r_switch);
    switch_(a, vraag, a.r_switch);
    merk_aan(a, a.r_switch, ADV_SWITCH);
  }
  if (toets_restant(a)) {
    restanten(a);
    merk_aan(a, a.r_herverdeel, ADV_RESTANT);
  } else if (toets_switch(a, a.m_verkocht)) {
    switch_(a, a.m_verkocht, a.r_herverdeel);
    merk_aan(a, a.r_herverdeel, ADV_OVERIG);
  }
}

}  // namespace

void adv_maak(Advies& a, int filialen) {
  const auto rijen = static_cast<size_t>(std::clamp(filialen, 0, FILIALEN_MAX + 1)) + 1;
  for (const auto m : INVOER) (a.*m).assign(rijen, Maatrij{});
  for (const auto r : UITKOMST) (a.*r).assign(rijen, Maatrij{});
  a.verdeel.begonnen = false;
  a.verdeel.verdeel_stand.assign(rijen, Maatrij{});
  a.verdeel.verdeel_gewicht.assign(rijen, 0);
  a.verdeel_voor = a.verdeel;
}

void adv_wis(Advies& a) {
  for (const auto m : INVOER) matrix_wis(a.*m);
  wis_uitkomst(a);
  a.bron.reset();
  a.doel.reset();
  a.adv_volgorde.clear();
  a.maten.clear();
}

void adv_totalen(Advies& a) {
  for (const auto m : INVOER) tel_rijen(a.*m);
}

void adv_verzamelingen(Advies& a, const uint8_t* vanuit, const uint8_t* aanvul,
                       const uint8_t* merkkaart) {
  std::erase_if(a.maten, [](uint8_t s) { return s == 0 || s >= MATEN; });
  maak_bron(a, vanuit);
  a.doel.reset();
  for (int b = 0; b < a.filialen(); ++b) {
    const bool van_merk = pg_test(merkkaart, b) && cel(a.m_ontvangen, b, 0) == 0;
    if (pg_test(aanvul, b) && !van_merk) a.doel.set(static_cast<size_t>(b));
  }
  maak_volgorde(a);
}

int enig_filiaal(const MaatMatrix& m) {
  if (keten(m, 0) <= 0) return -1;
  for (size_t b = 0; b + 1 < m.size(); ++b)
    if (m[b][0] == keten(m, 0)) return static_cast<int>(b);
  return -1;
}

namespace {

/// A broken order line may have made it negative: a branch would seem to have millions to give, and
/// the steps go piece by piece.
int32_t gaat_uit(const Advies& a, int b, int s) { return std::max(cel(a.m_uit, b, s), 0); }

}  // namespace

int32_t eigen(const Advies& a, int b, int s) {
  return krap(int64_t{cel(a.m_voorraad, b, s)} + cel(a.m_in, b, s) - gaat_uit(a, b, s));
}

int32_t vrij(const Advies& a, int b, int s) {
  return krap(int64_t{cel(a.m_voorraad, b, s)} - gaat_uit(a, b, s));
}

int32_t vrij_magazijn(const Advies& a, int s) {
  const int mag = magazijn(a);
  return mag < 0 ? 0 : krap(int64_t{vrij(a, mag, s)} - magazijn_houdt(a));
}

bool adv_leeg(const Advies& a, const MaatMatrix& m) {
  return std::all_of(a.maten.begin(), a.maten.end(), [&](uint8_t s) {
    for (int b = 0; b < a.filialen(); ++b)
      if (cel(m, b, s) != 0) return false;
    return true;
  });
}

void adv_automatisch(Advies& a) {
  a.verdeel_voor = a.verdeel;
  wis_uitkomst(a);
  uit_magazijn(a, a.m_aanvul, a.r_aanvul);
  if (a.bron_soort == 2 || a.bron_soort == 3) switch_(a, a.m_aanvul, a.r_aanvul);
}

bool adv_bereken(Advies& a, const AdvRec& krit, const MaatMatrix& vraag) {
  a.verdeel_voor = a.verdeel;
  wis_uitkomst(a);
  if (toets_nieuw(a)) {
    distributie(a);
    merk_aan(a, a.r_aanvul, ADV_DISTRIBUTIE);
  } else {
    bestaande_serie(a, vraag);
  }
  return gevraagd(a.adv_kenmerk, krit);
}
