#include "bench/advies_helling.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>
#include <string>

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
constexpr double MEEST = 1.25;  // dearer per label than the smallest run
constexpr int RONDES = 3;

void keten(bool snel) {
  const std::string maak =
      std::string(BUILD_DIR "/tools/winkel demo") + (snel ? "" : " --large") + " >/dev/null";
  if (std::system(maak.c_str()) != 0) meet_fout("advice", "no chain");
}

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

}  // namespace

std::vector<Rij> advies_helling(bool snel) {
  keten(snel);
  sessie_open();
  adv_rec = adv_standaard();
  const std::vector<Serienr> alle = series(snel);
  const std::span lijst(alle);
  doorloop(lijst);  // from here on the tables are in memory
  constexpr std::array<size_t, 3> DELEN = {4, 2, 1};
  std::array<std::vector<double>, DELEN.size()> per_label;
  Loop heel;
  for (int ronde = 0; ronde < RONDES; ++ronde)
    for (size_t i = 0; i < DELEN.size(); ++i) {
      heel = doorloop(lijst.first(alle.size() / DELEN[i]));
      if (heel.labels == 0 || heel.met_advies == 0) meet_fout("advice", "nothing to work out");
      per_label[i].push_back(heel.tijd / static_cast<double>(heel.labels));
    }
  sessie_sluit();
  const double een = mediaan(per_label[0]);
  const double dubbel = mediaan(per_label[1]), vier = mediaan(per_label[2]);
  const std::string wat = std::to_string(alle.size()) + " series";
  Rij helling{
      "13 advice of " + wat + ", a label: 4x or 2x against 1x", "x", {}, -1, "1.25 at most", -1};
  helling.cellen = {{std::max(dubbel, vier) / een}};
  helling.gehaald = helling.cellen[0].waarde <= MEEST ? 1 : 0;
  Rij tempo{"13 the same, all of them", "s", {{heel.tijd}}, -1, "", -1};
  return {helling, tempo};
}
