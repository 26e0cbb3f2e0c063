#include "bench/groei.h"

#include <array>

#include "bench/advies_helling.h"
#include "bench/advies_meet.h"
#include "bench/dc_meet.h"
#include "bench/opslag_meet.h"
#include "bench/programma.h"
#include "bench/saldo_meet.h"

namespace {

constexpr std::array<uint32_t, 3> DELEN = {16, 4, 1};
constexpr uint32_t REGELS = 1000000, ADVIES_SERIES = 1000;
constexpr double MICRO = 1e-6;

struct Groei {
  std::string nr, naam;
  std::array<Paar, DELEN.size()> kosten;  // microseconds a unit
};

Paar maal(const Paar& p, double factor) { return {p.kaart * factor, p.gewoon * factor}; }

/// Rows of the store at one size, next to those of the sizes before.
void neem(std::vector<Groei>* uit, size_t deel, const std::vector<Rij>& rijen, double bouw) {
  for (size_t i = 0; i < rijen.size(); ++i) {
    const Rij& r = rijen[i];
    if (deel == 0) uit->push_back({r.nr, r.naam, {}});
    const Paar p = {r.cellen[ONS].waarde, r.cellen[GEWOON].waarde};
    (*uit)[i].kosten[deel] = r.nr == "5" ? maal(p, 1 / bouw / MICRO) : p;
  }
}

std::vector<Groei> groei_opslag(uint32_t schaal, const std::function<bool(int)>& doen) {
  std::vector<Groei> uit;
  for (size_t i = 0; i < DELEN.size(); ++i) {
    OpslagMaat maat;
    maat.alleen_ons = true;
    maat.records /= DELEN[i] * schaal;
    maat.invoegen /= DELEN[i] * schaal;
    maat.bouw /= DELEN[i] * schaal;
    for (uint32_t* n : {&maat.lezen, &maat.wijzigen, &maat.samen}) *n /= schaal;
    zeg("1/" + std::to_string(DELEN[i]));
    neem(&uit, i, opslag_meet(maat, "groei" + std::to_string(DELEN[i]) + "-", doen), maat.bouw);
  }
  return uit;
}

/// A measurement of its own folder and its own number of units.
template <class F>
Groei groei_van(const char* nr, const char* naam, uint32_t eenheden, F meet) {
  Groei uit{nr, naam, {}};
  for (size_t i = 0; i < DELEN.size(); ++i) {
    zeg(std::string(naam) + ", 1/" + std::to_string(DELEN[i]));
    naar("groei" + std::to_string(DELEN[i]) + "-" + nr);
    const uint32_t n = eenheden / DELEN[i];
    uit.kosten[i] = maal(meet(DELEN[i]), 1 / (n * MICRO));
  }
  return uit;
}

Groei groei_advies(bool snel) {
  zeg("advice over a chain");
  naar("groei-keten");
  demo_keten(!snel);
  const AdviesGroei g = advies_groei(snel, {DELEN.begin(), DELEN.end()});
  Groei uit{"13", "advice of " + std::to_string(g.series) + " series, a label", {}};
  for (size_t i = 0; i < DELEN.size(); ++i) uit.kosten[i] = g.label[i];
  return uit;
}

std::vector<std::string> tekst_van(const Groei& g) {
  std::vector<std::string> uit = {g.nr, g.naam, "us"};
  for (double Paar::*lezer : {&Paar::kaart, &Paar::gewoon}) {
    for (const Paar& p : g.kosten) uit.push_back(getal(p.*lezer));
    uit.push_back(getal(g.kosten.back().*lezer / g.kosten.front().*lezer));
  }
  return uit;
}

}  // namespace

Tekstrijen groei_meet(bool snel, const std::function<bool(int)>& doen) {
  const uint32_t schaal = snel ? 10 : 1;
  std::vector<Groei> alle = groei_opslag(schaal, doen);
  if (doen(7))
    alle.push_back(groei_van("7", "balance, a line", REGELS / schaal, [schaal](uint32_t deel) {
      return saldo_groei(REGELS / schaal / deel);
    }));
  if (doen(12))
    alle.push_back(groei_van("12", "advice calculated, a series", ADVIES_SERIES, [](uint32_t deel) {
      const double t = advies_series(ADVIES_SERIES / deel);
      return Paar{t, t};
    }));
  if (doen(13)) alle.push_back(groei_advies(snel));
  if (doen(14))
    alle.push_back(groei_van("14", "datacom, a line", DC_REGELS / schaal,
                             [schaal](uint32_t deel) { return dc_groei(deel * schaal); }));
  Tekstrijen t = {{"row", "measurement", "unit", "ons 1/16", "1/4", "1", "slope", "ons gewoon 1/16",
                   "1/4", "1", "slope"}};
  for (const Groei& g : alle) t.push_back(tekst_van(g));
  return t;
}
