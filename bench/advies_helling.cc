#include "bench/advies_helling.h"

#include <algorithm>
#include <span>
#include <string>

#include "bench/lezer.h"
#include "bench/partij.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/iotab.h"
#include "main/werktabel.h"
#include "main/work.h"
#include "sub/adv_krit.h"
#include "sub/adv_vul.h"
#include "sub/tabellen.h"

namespace {

constexpr int TERMINAL = 98;
constexpr int KEY_SERIE = 2;
constexpr int RONDES = 3;

void sessie_open() {
  session_terminal = TERMINAL;
  int32_t nummer = 1;
  iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
  iotab('R', &nummer, &sys_rec1, SYS_RECORDS);
  iofil('O', 0, nullptr);
  work_open();
  werktabellen_open();
}

void sessie_sluit() {
  werktabellen_sluit();
  work_close();
  iofil('C', 0, nullptr);
  int32_t nummer = 1;
  iotab('C', &nummer, nullptr, SYS_RECORDS);
}

/// Series with provisional lines, in order; of the small chain, which has few, all.
std::vector<Serienr> series(bool alle) {
  std::vector<Serienr> uit;
  if (alle) {
    DtSer rec{};
    for (bool er = IXFIRSTR(dtser, &rec); er; er = IXNEXT(dtser, &rec)) uit.push_back(rec.nr);
    return uit;
  }
  IXSWITCH(dtpick, KEY_SERIE);
  DtPick rec{};
  for (bool er = IXFIRSTR(dtpick, &rec); er; er = IXNEXT(dtpick, &rec))
    if (rec.opdrachtnr == 0 && (uit.empty() || !(uit.back() == rec.nr))) uit.push_back(rec.nr);
  IXSWITCH(dtpick, 1);
  return uit;
}

/// The labels of the series in hand, by what the load counted.
int64_t etiketten() { return int64_t{advies.m_ontvangen.back()[0]} + advies.m_order.back()[0]; }

struct Loop {
  double tijd = 0;
  int64_t labels = 0, met_advies = 0;
};
Loop doorloop(std::span<const Serienr> nrs) {
  Loop uit;
  const AdvOpen open;
  uit.tijd = tijd_van([&] {
    for (const Serienr& nr : nrs) {
      ser_rec = {};
      ser_rec.nr = nr;
      if (!IXREAD(dtser, &ser_rec) || !adv_vul()) meet_fout("advice", "a series cannot be read");
      adv_bereken(advies, adv_rec, advies.m_vrk_periode);
      uit.labels += etiketten();
      uit.met_advies += advies.adv_kenmerk != 0 ? 1 : 0;
    }
  });
  return uit;
}

/// Adds the microseconds a label of one run; gives the seconds.
double meet_deel(std::span<const Serienr> deel, bool kaart, std::vector<double>* uit) {
  lezer_kies(kaart);
  const Loop loop = doorloop(deel);
  lezer_kies(true);
  if (loop.labels == 0 || loop.met_advies == 0) meet_fout("advice", "nothing to work out");
  uit->push_back(loop.tijd / static_cast<double>(loop.labels) * 1e6);
  return loop.tijd;
}

}  // namespace

AdviesGroei advies_groei(bool snel, const std::vector<uint32_t>& delen) {
  sessie_open();
  adv_rec = adv_standaard();
  const std::vector<Serienr> alle = series(snel);
  const std::span lijst(alle);
  doorloop(lijst);  // from here on the tables are in memory
  AdviesGroei uit{alle.size(), {}, {}};
  std::vector<std::vector<double>> kaart(delen.size()), gewoon(delen.size());
  for (int ronde = 0; ronde < RONDES; ++ronde)
    for (size_t i = 0; i < delen.size(); ++i) {
      const auto deel = lijst.first(alle.size() / delen[i]);
      uit.alles.kaart = meet_deel(deel, true, &kaart[i]);
      uit.alles.gewoon = meet_deel(deel, false, &gewoon[i]);
    }
  sessie_sluit();
  for (size_t i = 0; i < delen.size(); ++i)
    uit.label.push_back({mediaan(kaart[i]), mediaan(gewoon[i])});
  return uit;
}

std::vector<Rij> advies_helling(bool snel) {
  const AdviesGroei g = advies_groei(snel, {4, 2, 1});
  const auto helling = [&](double Paar::*lezer) {
    return std::max(g.label[1].*lezer, g.label[2].*lezer) / g.label[0].*lezer;
  };
  const std::string wat = std::to_string(g.series) + " series";
  return {{"13",
           "advice of " + wat + ", a label: 4x or 2x against 1x",
           "x",
           {{helling(&Paar::kaart)}, {helling(&Paar::gewoon)}}},
          {"13b", "the same, all of them", "s", {{g.alles.kaart}, {g.alles.gewoon}}}};
}
