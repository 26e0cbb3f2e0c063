// Measures the engine beside its peers on one machine in one run, then what an operator waits for,
// and prints one table. Absolute times say little from machine to machine; the ratios and the
// floors are what counts.
//   meet_prog [--dir DIR] [--snel] [--alleen N,N...]
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>

#include "bench/advies_helling.h"
#include "bench/advies_meet.h"
#include "bench/dc_meet.h"
#include "bench/gegevens.h"
#include "bench/machine.h"
#include "bench/partij.h"
#include "bench/saldo_meet.h"
#include "bench/scherm_meet.h"
#include "bench/tabel.h"

void meet_fout(const char* wie, const char* wat) {
  fprintf(stderr, "%s: %s (%s)\n", wie, wat, strerror(errno));
  _exit(1);
}

namespace {

constexpr const Partij* PARTIJEN[] = {&PARTIJ_ONS,  &PARTIJ_SQLITE_WAL, &PARTIJ_SQLITE_ROL,
                                      &PARTIJ_LMDB, &PARTIJ_BDB_CDB,    &PARTIJ_BDB_TDS,
                                      &PARTIJ_TDB};
constexpr size_t AANTAL = std::size(PARTIJEN);
constexpr size_t WAL = 1;  // the peer that the floors speak of
constexpr int PROCESSEN = 4, TERMINALRONDES = 21;

struct Opzet {
  std::string dir;
  int rondes = 5;
  uint32_t lezen = 100000, invoegen = 10000, wijzigen = 20000, samen = 20000;
  uint32_t bouw = MEET_BOUW, saldo = 1000000;
  std::set<int> alleen;
  bool snel = false;
  bool doen(int nr) const { return alleen.empty() || alleen.contains(nr); }
};
Opzet opzet;

void zeg(const char* wat) { fprintf(stderr, "... %s\n", wat); }

/// In the folder of a store.
void naar(const char* naam) {
  const std::filesystem::path pad = std::filesystem::path(opzet.dir) / naam;
  std::filesystem::create_directories(pad);
  std::filesystem::current_path(pad);
}

Serienr een_nr(Toeval& t) { return meet_serie(t.tot(MEET_RECORDS)).nr; }

std::vector<Serienr> nummers(uint32_t n, uint64_t zaad) {
  Toeval t{zaad};
  std::vector<Serienr> uit(n);
  for (Serienr& nr : uit) nr = een_nr(t);
  return uit;
}

/// Runs `een` for every store that it applies to, in turns, and gives the medians.
template <class F>
std::vector<Cel> in_rondes(int rondes, double deler, F een) {
  std::vector<std::vector<double>> tijden(AANTAL);
  for (int r = 0; r < rondes; ++r)
    for (size_t i = 0; i < AANTAL; ++i) {
      naar(PARTIJEN[i]->naam);
      const double t = een(*PARTIJEN[i], r);
      if (t >= 0) tijden[i].push_back(t / deler);
    }
  std::vector<Cel> uit(AANTAL);
  for (size_t i = 0; i < AANTAL; ++i) uit[i].waarde = mediaan(tijden[i]);
  return uit;
}

/// "at least `keer` times as fast as SQLite WAL" on a row of times.
void drempel(Rij& r, double keer, const char* tekst) {
  r.drempel = tekst;
  if (r.cellen.size() > WAL && r.cellen[WAL].waarde > 0)
    r.gehaald = r.cellen[WAL].waarde >= keer * r.cellen[0].waarde ? 1 : 0;
}

constexpr const char* GELIJK = "level with WAL";
constexpr double MICRO = 1e-6;

Rij meet_lezen() {
  zeg("keyed read");
  Rij r{"1 keyed read, 200 bytes of 200,000", "us", {}, -1, "", -1};
  r.cellen = in_rondes(opzet.rondes, opzet.lezen * MICRO, [](const Partij& p, int ronde) {
    p.open(false);
    DtSer rec{};
    const auto nrs = nummers(opzet.lezen, 11 + static_cast<uint64_t>(ronde));
    const double t = tijd_van([&] {
      for (const Serienr& nr : nrs)
        if (!p.lees(nr, &rec) || !(rec.nr == nr)) meet_fout(p.naam, "a record is missing");
    });
    p.sluit();
    return t;
  });
  drempel(r, 1, GELIJK);
  naar("machine");
  Toeval t{3};
  r.machine = tijd_van([&] {
                for (uint32_t i = 0; i < opzet.lezen; ++i) machine_lees(t.volgend());
              }) /
              opzet.lezen / MICRO;
  return r;
}

/// Every store must end with the same contents.
uint64_t som_van_eerste = 0;

Rij meet_loop() {
  zeg("walk");
  Rij r{"2 walk in key order, a record", "us", {}, -1, "", -1};
  bool eerste = true;
  r.cellen = in_rondes(3, MEET_RECORDS * MICRO, [&](const Partij& p, int) {
    if (p.loop == nullptr) return -1.0;
    p.open(false);
    uint64_t som = 0;
    const double t = tijd_van([&] { som = p.loop(); });
    if (!eerste && som != som_van_eerste) meet_fout(p.naam, "another sum than ours");
    som_van_eerste = som;
    eerste = false;
    p.sluit();
    return t;
  });
  return r;
}

Rij meet_invoegen() {
  zeg("insert");
  Rij r{"3 insert with three keys", "us", {}, -1, "", -1};
  r.cellen = in_rondes(3, opzet.invoegen * MICRO, [](const Partij& p, int ronde) {
    p.open(false);
    const auto nieuw =
        meet_series(MEET_RECORDS + static_cast<uint32_t>(ronde) * opzet.invoegen, opzet.invoegen);
    const double t = tijd_van([&] {
      for (const DtSer& s : nieuw)
        if (!p.voeg(s)) meet_fout(p.naam, "insert");
    });
    p.sluit();
    return t;
  });
  drempel(r, 1, GELIJK);
  naar("machine");
  Toeval t{4};
  r.machine = tijd_van([&] {
                for (uint32_t i = 0; i < opzet.invoegen; ++i) machine_schrijf(t.volgend(), 3);
              }) /
              opzet.invoegen / MICRO;
  return r;
}

Rij meet_wijzigen() {
  zeg("update");
  Rij r{"4 update of a non-key field", "us", {}, -1, "", -1};
  r.cellen = in_rondes(3, opzet.wijzigen * MICRO, [](const Partij& p, int ronde) {
    p.open(false);
    const auto nrs = nummers(opzet.wijzigen, 21 + static_cast<uint64_t>(ronde));
    const double t = tijd_van([&] {
      for (const Serienr& nr : nrs)
        if (!p.wijzig(nr)) meet_fout(p.naam, "update");
    });
    p.sluit();
    return t;
  });
  drempel(r, 1, GELIJK);
  naar("machine");
  Toeval t{5};
  r.machine = tijd_van([&] {
                for (uint32_t i = 0; i < opzet.wijzigen; ++i) machine_schrijf(t.volgend(), 0);
              }) /
              opzet.wijzigen / MICRO;
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

Rij meet_samen() {
  zeg("four processes");
  Rij r{"6 four processes, 90% reads 10% updates", "us", {}, -1, "", -1};
  const double deler = PROCESSEN * opzet.samen * MICRO;
  r.cellen = in_rondes(3, deler, [](const Partij& p, int ronde) {
    return met_vieren([&](int k, auto wacht) {
      p.open(false);
      Toeval t{100 + static_cast<uint64_t>(ronde) * PROCESSEN + static_cast<uint64_t>(k)};
      DtSer rec{};
      wacht();
      for (uint32_t i = 0; i < opzet.samen; ++i) {
        const Serienr nr = een_nr(t);
        if (!(t.tot(10) == 0 ? p.wijzig(nr) : p.lees(nr, &rec))) meet_fout(p.naam, "gone");
      }
      p.sluit();
    });
  });
  drempel(r, 1, GELIJK);
  naar("machine");
  r.machine = met_vieren([&](int k, auto wacht) {
                Toeval t{static_cast<uint64_t>(k)};
                wacht();
                for (uint32_t i = 0; i < opzet.samen; ++i) {
                  if (t.tot(10) == 0)
                    machine_schrijf(t.volgend(), 0);
                  else
                    machine_lees(t.volgend());
                }
              }) /
              deler;
  return r;
}

Rij meet_bouw() {
  zeg("build of three indexes");
  Rij r{"5 build of three indexes, 1,000,000 records", "s", {}, -1, "", -1};
  r.cellen = in_rondes(1, 1, [](const Partij& p, int) {
    if (p.bouw == nullptr) return -1.0;
    p.open(false);
    p.bouw_klaar(opzet.bouw);
    std::vector<double> tijden;
    const bool traag = &p != &PARTIJ_ONS && &p != &PARTIJ_SQLITE_WAL;
    for (int i = 0; i < (traag ? 1 : 3); ++i) tijden.push_back(tijd_van(p.bouw));
    p.sluit();
    return mediaan(tijden);
  });
  drempel(r, 4, "4x SQLite WAL");
  naar("ons");
  const auto index = static_cast<int64_t>(std::filesystem::file_size("BOUW.INX"));
  naar("machine");
  r.machine = tijd_van([&] { machine_stroom(int64_t{opzet.bouw} * 200, index); });
  return r;
}

void vul_alle() {
  zeg("filling the stores");
  const auto records = meet_series(0, MEET_RECORDS);
  for (const Partij* p : PARTIJEN) {
    naar(p->naam);
    p->open(true);
    p->vul(records);
    p->sluit();
  }
}

std::vector<Rij> alles() {
  std::vector<Rij> rijen;
  naar("machine");
  machine_open();
  const bool winkel = opzet.doen(1) || opzet.doen(2) || opzet.doen(3) || opzet.doen(4) ||
                      opzet.doen(5) || opzet.doen(6);
  if (winkel) vul_alle();
  if (opzet.doen(1)) rijen.push_back(meet_lezen());
  if (opzet.doen(2)) rijen.push_back(meet_loop());
  if (opzet.doen(3)) rijen.push_back(meet_invoegen());
  if (opzet.doen(4)) rijen.push_back(meet_wijzigen());
  if (opzet.doen(6)) rijen.push_back(meet_samen());
  if (winkel && opzet.doen(2)) meet_loop();  // the same sums after all changes
  if (opzet.doen(5)) rijen.push_back(meet_bouw());
  std::sort(rijen.begin(), rijen.end(), [](const Rij& a, const Rij& b) { return a.naam < b.naam; });
  if (opzet.doen(7)) {
    naar("saldo");
    zeg("the balance's pass");
    for (Rij& r : saldo_meet(opzet.saldo)) rijen.push_back(r);
  }
  if (opzet.doen(9) || opzet.doen(10)) {
    naar("demo");
    zeg("a terminal");
    for (Rij& r : scherm_meet(TERMINALRONDES)) rijen.push_back(r);
  }
  if (opzet.doen(11)) {
    naar("merk");
    zeg("one brand");
    rijen.push_back(merk_meet(opzet.saldo / 20));
  }
  if (opzet.doen(12)) rijen.push_back(advies_rij());
  if (opzet.doen(14)) {
    naar("datacom");
    zeg("datacom");
    rijen.push_back(dc_meet(1000000 / opzet.saldo));
  }
  if (opzet.doen(13)) {
    naar("helling");
    zeg("the advice over a chain");
    for (Rij& r : advies_helling(opzet.snel)) rijen.push_back(r);
  }
  naar("machine");
  machine_sluit();
  return rijen;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && strcmp(argv[1], SALDO_KIND) == 0) return saldo_kind();
  CLI::App app{"Measures the indexed files beside other stores"};
  opzet.dir = std::filesystem::current_path().string();
  std::vector<int> alleen;
  app.add_option("--dir", opzet.dir, "folder on a real disk for the files");
  app.add_flag("--snel", opzet.snel, "a tenth of the work");
  app.add_option("--alleen", alleen, "only these numbers")->delimiter(',');
  CLI11_PARSE(app, argc, argv);
  opzet.alleen.insert(alleen.begin(), alleen.end());
  if (opzet.snel) {
    opzet.rondes = 3;
    for (uint32_t* n :
         {&opzet.lezen, &opzet.invoegen, &opzet.wijzigen, &opzet.samen, &opzet.bouw, &opzet.saldo})
      *n /= 10;
  }
  // A folder of our own in it: what is emptied at the end is never the caller's.
  opzet.dir = (std::filesystem::absolute(opzet.dir) / "opdsaldo-meet").string();
  std::filesystem::remove_all(opzet.dir);
  const std::vector<Rij> rijen = alles();
  std::filesystem::current_path("/");
  std::filesystem::remove_all(opzet.dir);
  std::vector<const char*> kolommen;
  for (const Partij* p : PARTIJEN) kolommen.push_back(p->naam);
  tabel_druk(stdout, kolommen, rijen);
  const bool goed =
      std::all_of(rijen.begin(), rijen.end(), [](const Rij& r) { return r.gehaald != 0; });
  return goed ? 0 : 1;
}
