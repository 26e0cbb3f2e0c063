#include "bench/advies_meet.h"

#include <cstring>
#include <ctime>

#include "bench/gegevens.h"
#include "bench/partij.h"
#include "sub/advies.h"

namespace {

constexpr uint32_t FILIALEN = 100, SERIES = 16;
constexpr uint8_t MAAT_EERST = 11, MAAT_LAATST = 30;
constexpr double SECONDEN = 1;

uint8_t alle[32], geen[32];
AdvRec krit;

int32_t stuks(Toeval& t, uint32_t kans, uint32_t meest) {
  return t.tot(kans) == 0 ? static_cast<int32_t>(1 + t.tot(meest)) : 0;
}

/// A series that goes round: a warehouse with stock, branches that sell; every fourth one is down
/// to its remainders, every eighth has just come in.
void vul(Advies& a, uint32_t nr) {
  Toeval t{nr};
  adv_maak(a, FILIALEN);
  a.groep.magazijn = 0;
  a.groep.pure_magazijn = true;
  a.groep.minimum = 1;
  for (uint32_t b = 1; b < FILIALEN; ++b) a.groep.streef[b] = static_cast<uint8_t>(1 + t.tot(4));
  memcpy(a.model, &nr, sizeof nr);
  const bool nieuw = nr % 8 == 0, rest = nr % 4 == 1;
  for (uint8_t s = MAAT_EERST; s <= MAAT_LAATST; ++s) {
    a.maten.push_back(s);
    if (!rest) a.m_voorraad[0][s] = static_cast<int32_t>(nieuw ? 300 : 20 + t.tot(40));
    for (uint32_t b = 1; b < FILIALEN && !nieuw; ++b) {
      a.m_voorraad[b][s] = rest ? stuks(t, 4, 1) : stuks(t, 2, 5);
      a.m_verkocht[b][s] = static_cast<int32_t>(rest ? 1 + t.tot(4) : t.tot(5));
      a.m_vrk_periode[b][s] = static_cast<int32_t>(t.tot(3));
      a.m_aanvul[b][s] = stuks(t, 2, 2);
      a.m_uit[b][s] = rest ? 0 : stuks(t, 20, 1);
      a.m_in[b][s] = rest ? 0 : stuks(t, 20, 1);
    }
    for (uint32_t b = 0; b < FILIALEN; ++b)
      a.m_ontvangen[b][s] = a.m_voorraad[b][s] + a.m_verkocht[b][s];
  }
}

/// The processor's time: a calculation that waits for nothing is not slower for busy neighbours.
double seconden_rekentijd() {
  timespec t;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

uint8_t een(Advies& a) {
  adv_totalen(a);
  adv_verzamelingen(a, alle, alle, geen);
  adv_bereken(a, krit, a.m_vrk_periode);
  return a.adv_kenmerk;
}

double tempo() {
  memset(alle, 0xFF, sizeof alle);
  std::vector<Advies> series(SERIES);
  uint8_t gezien = 0;
  for (uint32_t i = 0; i < SERIES; ++i) {
    vul(series[i], i);
    gezien |= een(series[i]);
  }
  if ((gezien & (ADV_AANVUL | ADV_SWITCH | ADV_RESTANT | ADV_DISTRIBUTIE)) !=
      (ADV_AANVUL | ADV_SWITCH | ADV_RESTANT | ADV_DISTRIBUTIE))
    meet_fout("advice", "a kind is missing");
  uint32_t klaar = 0;
  const double begin = seconden_rekentijd();
  double nu = begin;
  for (; nu - begin < SECONDEN; nu = seconden_rekentijd())
    for (Advies& a : series) {
      een(a);
      ++klaar;
    }
  return klaar / (nu - begin);
}

}  // namespace

double advies_series(uint32_t n) {
  memset(alle, 0xFF, sizeof alle);
  double som = 0;
  for (uint32_t i = 0; i < n; ++i) {
    Advies a;
    vul(a, i);
    const double begin = seconden_rekentijd();
    een(a);
    som += seconden_rekentijd() - begin;
  }
  return som;
}

Rij advies_rij() {
  return {"12", "advice of a series, 100 branches, 20 sizes", "1/s", {{tempo()}}};
}
