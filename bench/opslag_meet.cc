#include "bench/opslag_meet.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <span>

#include "bench/machine.h"
#include "bench/partij.h"

namespace {

constexpr const Partij* PARTIJEN[] = {&PARTIJ_ONS,        &PARTIJ_ONS_GEWOON, &PARTIJ_SQLITE_WAL,
                                      &PARTIJ_SQLITE_ROL, &PARTIJ_LMDB,       &PARTIJ_BDB_CDB,
                                      &PARTIJ_BDB_TDS,    &PARTIJ_TDB};
static_assert(std::size(PARTIJEN) == KOLOMMEN);
constexpr int PROCESSEN = 4;
constexpr double MICRO = 1e-6;

OpslagMaat maat;
std::string map_van;

std::span<const Partij* const> partijen() {
  return std::span(PARTIJEN).first(maat.alleen_ons ? GEWOON + 1 : KOLOMMEN);
}

void naar_partij(const Partij& p) { naar(map_van + partij_naam(p)); }

Serienr een_nr(Toeval& t) { return meet_serie(t.tot(maat.records)).nr; }

std::vector<Serienr> nummers(uint32_t n, uint64_t zaad) {
  Toeval t{zaad};
  std::vector<Serienr> uit(n);
  for (Serienr& nr : uit) nr = een_nr(t);
  return uit;
}

/// Runs `een` for every store that it applies to, in turns, and gives the medians.
template <class F>
std::vector<Cel> in_rondes(int rondes, double deler, F een) {
  std::vector<std::vector<double>> tijden(KOLOMMEN);
  for (int r = 0; r < rondes; ++r)
    for (const Partij* p : partijen()) {
      naar_partij(*p);
      const double t = een(*p, r);
      if (t >= 0) tijden[p->kolom].push_back(t / deler);
    }
  std::vector<Cel> uit(KOLOMMEN);
  for (size_t i = 0; i < KOLOMMEN; ++i) uit[i].waarde = mediaan(tijden[i]);
  return uit;
}

/// The machine's figure of a row: microseconds a step.
template <class F>
double machine_stappen(uint32_t n, uint64_t zaad, F stap) {
  if (maat.alleen_ons) return -1;
  Toeval t{zaad};
  return tijd_van([&] {
           for (uint32_t i = 0; i < n; ++i) stap(t.volgend());
         }) /
         n / MICRO;
}

Rij meet_lezen() {
  zeg("keyed read");
  Rij r{"1", "keyed read, 200 bytes of 200,000", "us", {}};
  r.cellen = in_rondes(maat.rondes, maat.lezen * MICRO, [](const Partij& p, int ronde) {
    p.open(false);
    DtSer rec{};
    const auto nrs = nummers(maat.lezen, 11 + static_cast<uint64_t>(ronde));
    const double t = tijd_van([&] {
      for (const Serienr& nr : nrs)
        if (!p.lees(nr, &rec) || !(rec.nr == nr)) meet_fout(partij_naam(p), "a record is missing");
    });
    p.sluit();
    return t;
  });
  r.machine = machine_stappen(maat.lezen, 3, machine_lees);
  return r;
}

/// Every store must give the same records in the same order.
std::vector<Cel> loop_in_rondes(int rondes, uint64_t (*Partij::*langs)()) {
  uint64_t eerste = 0;
  bool bekend = false;
  return in_rondes(rondes, maat.records * MICRO, [&](const Partij& p, int) {
    if (p.*langs == nullptr) return -1.0;
    p.open(false);
    uint64_t som = 0;
    const double t = tijd_van([&] { som = (p.*langs)(); });
    if (bekend && som != eerste) meet_fout(partij_naam(p), "another sum than ours");
    eerste = som;
    bekend = true;
    p.sluit();
    return t;
  });
}

std::vector<Rij> meet_loop() {
  zeg("walks");
  return {{"2", "walk by key 2, a record", "us", loop_in_rondes(3, &Partij::loop_tweede)},
          {"2b", "walk by key 1, a record", "us", loop_in_rondes(3, &Partij::loop)}};
}

/// Nothing was lost in all changes, nor is anything in a store that belongs to none of them.
void keur_inhoud() {
  zeg("comparing the stores");
  loop_in_rondes(1, &Partij::loop_tweede);
  loop_in_rondes(1, &Partij::loop);
}

Rij meet_invoegen() {
  zeg("insert");
  Rij r{"3", "insert with three keys", "us", {}};
  r.cellen = in_rondes(3, maat.invoegen * MICRO, [](const Partij& p, int ronde) {
    p.open(false);
    const auto nieuw =
        meet_series(maat.records + static_cast<uint32_t>(ronde) * maat.invoegen, maat.invoegen);
    const double t = tijd_van([&] {
      for (const DtSer& s : nieuw)
        if (!p.voeg(s)) meet_fout(partij_naam(p), "insert");
    });
    p.sluit();
    return t;
  });
  r.machine = machine_stappen(maat.invoegen, 4, [](uint64_t n) { machine_schrijf(n, 3); });
  return r;
}

Rij meet_wijzigen() {
  zeg("update");
  Rij r{"4", "update of a non-key field", "us", {}};
  r.cellen = in_rondes(3, maat.wijzigen * MICRO, [](const Partij& p, int ronde) {
    p.open(false);
    const auto nrs = nummers(maat.wijzigen, 21 + static_cast<uint64_t>(ronde));
    const double t = tijd_van([&] {
      for (const Serienr& nr : nrs)
        if (!p.wijzig(nr)) meet_fout(partij_naam(p), "update");
    });
    p.sluit();
    return t;
  });
  r.machine = machine_stappen(maat.wijzigen, 5, [](uint64_t n) { machine_schrijf(n, 0); });
  return r;
}

/// Four processes at once; seconds from the start sign to the last one's end.
template <class F>
double met_vieren(F doe) {
  int start[2];
  if (pipe(start) != 0) meet_fout("meet", "pipe");
  int kinderen[PROCESSEN];
  for (int k = 0; k < PROCESSEN; ++k) {
    kinderen[k] = fork();
    if (kinderen[k] == 0) {
      close(start[1]);
      doe(k, [&] {
        char c;
        if (read(start[0], &c, 1) < 0) _exit(1);
      });
      _exit(0);
    }
  }
  close(start[0]);
  usleep(200000);  // until all have opened the store
  const double begin = seconden_nu();
  close(start[1]);
  for (const int kind : kinderen) {
    int status = 0;
    waitpid(kind, &status, 0);
    if (status != 0) meet_fout("meet", "a process failed");
  }
  return seconden_nu() - begin;
}

double machine_samen() {
  return met_vieren([](int k, auto wacht) {
    Toeval t{static_cast<uint64_t>(k)};
    wacht();
    for (uint32_t i = 0; i < maat.samen; ++i) {
      if (t.tot(10) == 0)
        machine_schrijf(t.volgend(), 0);
      else
        machine_lees(t.volgend());
    }
  });
}

Rij meet_samen() {
  zeg("four processes");
  Rij r{"6", "four processes, 90% reads 10% updates", "us", {}};
  const double deler = PROCESSEN * maat.samen * MICRO;
  r.cellen = in_rondes(3, deler, [](const Partij& p, int ronde) {
    return met_vieren([&](int k, auto wacht) {
      p.open(false);
      Toeval t{100 + static_cast<uint64_t>(ronde) * PROCESSEN + static_cast<uint64_t>(k)};
      DtSer rec{};
      wacht();
      for (uint32_t i = 0; i < maat.samen; ++i) {
        const Serienr nr = een_nr(t);
        if (!(t.tot(10) == 0 ? p.wijzig(nr) : p.lees(nr, &rec))) meet_fout(partij_naam(p), "gone");
      }
      p.sluit();
    });
  });
  if (!maat.alleen_ons) r.machine = machine_samen() / deler;
  return r;
}

Rij meet_bouw() {
  zeg("build of three indexes");
  Rij r{"5", "build of three indexes, 1,000,000 records", "s", {}};
  r.cellen = in_rondes(1, 1, [](const Partij& p, int) {
    if (p.bouw == nullptr) return -1.0;
    p.open(false);
    p.bouw_klaar(maat.bouw);
    std::vector<double> tijden(p.kolom > SQ_WAL ? 1 : 3);
    for (double& tijd : tijden) tijd = tijd_van(p.bouw);
    p.sluit();
    return mediaan(tijden);
  });
  if (maat.alleen_ons) return r;
  naar_partij(PARTIJ_ONS);
  const auto index = static_cast<int64_t>(std::filesystem::file_size("BOUW.INX"));
  r.machine = tijd_van([&] { machine_stroom(int64_t{maat.bouw} * 200, index); });
  return r;
}

void vul_alle() {
  zeg("filling the stores");
  const auto records = meet_series(0, maat.records);
  for (const Partij* p : partijen()) {
    naar_partij(*p);
    p->open(true);
    p->vul(records);
    p->sluit();
  }
}

}  // namespace

std::vector<Rij> opslag_meet(const OpslagMaat& van, const std::string& map,
                             const std::function<bool(int)>& doen) {
  maat = van;
  map_van = map;
  bool iets = false;
  for (int nr = 1; nr <= 6; ++nr) iets = iets || doen(nr);
  if (!iets) return {};
  std::vector<Rij> rijen;
  vul_alle();
  if (doen(1)) rijen.push_back(meet_lezen());
  if (doen(2))
    for (Rij& r : meet_loop()) rijen.push_back(std::move(r));
  if (doen(3)) rijen.push_back(meet_invoegen());
  if (doen(4)) rijen.push_back(meet_wijzigen());
  if (doen(6)) rijen.push_back(meet_samen());
  if (doen(2)) keur_inhoud();
  if (doen(5)) rijen.push_back(meet_bouw());  // last: the disk is busy after it
  std::ranges::sort(rijen, {}, &Rij::nr);
  return rijen;
}
