// Measures the engine beside its peers on one machine in one run, then what an operator waits for,
// and prints one table. Absolute times say little from machine to machine; the ratios and the
// floors are what counts. With --groei it measures what our work costs as it grows instead.
//   meet_prog [--dir DIR] [--snel] [--alleen N,N...] [--groei] [--md]
#include <sys/utsname.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

#include "bench/advies_helling.h"
#include "bench/advies_meet.h"
#include "bench/dc_meet.h"
#include "bench/export_meet.h"
#include "bench/grenzen.h"
#include "bench/groei.h"
#include "bench/last_meet.h"
#include "bench/machine.h"
#include "bench/opslag_meet.h"
#include "bench/partij.h"
#include "bench/programma.h"
#include "bench/saldo_meet.h"
#include "bench/scherm_meet.h"

namespace {

constexpr int TERMINALRONDES = 21, LASTPAREN = 5;

struct Opzet {
  std::string dir;
  OpslagMaat opslag;
  uint32_t saldo = 1000000;
  std::set<int> alleen;
  bool snel = false, groei = false, md = false;
  double begin = seconden_nu();
  bool doen(int nr) const { return alleen.empty() || alleen.contains(nr); }
};
Opzet opzet;

}  // namespace

void meet_fout(const char* wie, const char* wat) {
  fprintf(stderr, "%s: %s (%s)\n", wie, wat, strerror(errno));
  _exit(1);
}

void zeg(const std::string& wat) {
  fprintf(stderr, "%4.0f s %s\n", seconden_nu() - opzet.begin, wat.c_str());
}

void naar(const std::string& naam) {
  const std::filesystem::path pad = std::filesystem::path(opzet.dir) / naam;
  std::filesystem::create_directories(pad);
  std::filesystem::current_path(pad);
}

namespace {

void neem(std::vector<Rij>* uit, const std::vector<Rij>& rijen) {
  uit->insert(uit->end(), rijen.begin(), rijen.end());
}

/// What works on a demo chain.
void op_demo(std::vector<Rij>* rijen) {
  if (opzet.doen(9) || opzet.doen(10) || opzet.doen(15)) {
    zeg("a terminal");
    naar("demo");
    demo_keten(false);
    neem(rijen, scherm_meet(TERMINALRONDES));
  }
  if (opzet.doen(16)) {
    zeg("a check and a backup under load");
    naar("last");
    demo_keten(false);
    neem(rijen, last_meet(opzet.snel ? 2 : LASTPAREN));
  }
  if (!opzet.doen(13) && !opzet.doen(17)) return;
  naar("keten");
  demo_keten(!opzet.snel);
  if (opzet.doen(13)) {
    zeg("the advice over a chain");
    neem(rijen, advies_helling(opzet.snel));
  }
  if (opzet.doen(17)) {
    zeg("export of a chain");
    rijen->push_back(export_meet());
  }
}

std::vector<Rij> alles() {
  std::vector<Rij> rijen = opslag_meet(opzet.opslag, "", [](int nr) { return opzet.doen(nr); });
  if (opzet.doen(7)) {
    zeg("the balance's pass");
    naar("saldo");
    neem(&rijen, saldo_meet(opzet.saldo));
  }
  if (opzet.doen(11)) {
    zeg("one brand");
    naar("merk");
    rijen.push_back(merk_meet(opzet.saldo / 20));
  }
  if (opzet.doen(12)) {
    zeg("the advice calculated");
    rijen.push_back(advies_rij());
  }
  if (opzet.doen(14)) {
    zeg("datacom");
    naar("datacom");
    rijen.push_back(dc_meet(1000000 / opzet.saldo));
  }
  op_demo(&rijen);
  std::ranges::stable_sort(rijen, {}, [](const Rij& r) { return atoi(r.nr.c_str()); });
  return rijen;
}

std::string processor() {
  std::ifstream f("/proc/cpuinfo");
  for (std::string regel; std::getline(f, regel);)
    if (regel.starts_with("model name")) return regel.substr(regel.find(": ") + 2);
  return "processor of unknown make";
}

void machine_druk(FILE* uit) {
  utsname u{};
  uname(&u);
  const MachineKosten k = machine_kosten();
  fprintf(uit, "%u x %s, Linux %s.\n", std::thread::hardware_concurrency(), processor().c_str(),
          u.release);
  fprintf(uit,
          "Microseconds with the files in memory: pread of 512 bytes %s, pwrite of 512 bytes %s, "
          "lock and unlock %s, F_GETLK %s, copy of 512 bytes from a mapping %s.\n\n",
          getal(k.lees).c_str(), getal(k.schrijf).c_str(), getal(k.slot).c_str(),
          getal(k.vraag).c_str(), getal(k.kopie).c_str());
}

bool opties(int argc, char** argv, int* uit) {
  CLI::App app{"Measures the indexed files beside other stores"};
  opzet.dir = std::filesystem::current_path().string();
  std::vector<int> alleen;
  app.add_option("--dir", opzet.dir, "folder on a real disk for the files");
  app.add_flag("--snel", opzet.snel, "a tenth of the work");
  app.add_option("--alleen", alleen, "only these numbers")->delimiter(',');
  app.add_flag("--groei", opzet.groei, "ours at 1/16, 1/4 and all of the data, with the slope");
  app.add_flag("--md", opzet.md, "the table as Markdown");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& fout) {
    *uit = app.exit(fout);
    return false;
  }
  opzet.alleen.insert(alleen.begin(), alleen.end());
  if (!opzet.snel) return true;
  OpslagMaat& o = opzet.opslag;
  o.rondes = 3;
  for (uint32_t* n : {&o.lezen, &o.invoegen, &o.wijzigen, &o.samen, &o.bouw, &opzet.saldo})
    *n /= 10;
  return true;
}

/// The tables; false when a floor was missed.
bool meet() {
  naar("machine");
  machine_open();
  machine_druk(stdout);
  fflush(stdout);  // nothing is left for the children to print again
  bool goed = true;
  if (opzet.groei) {
    tekst_druk(stdout, groei_meet(opzet.snel, [](int nr) { return opzet.doen(nr); }), opzet.md);
  } else {
    const std::vector<Rij> rijen = alles();
    tabel_druk(stdout, rijen, opzet.md);
    goed = std::ranges::all_of(rijen,
                               [](const Rij& r) { return oordeel(r, Soort::VLOER).gehaald != 0; });
  }
  naar("machine");
  machine_sluit();
  zeg("done");
  return goed;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && strcmp(argv[1], SALDO_KIND) == 0) return saldo_kind();
  int uit = 0;
  if (!opties(argc, argv, &uit)) return uit;
  // A folder of our own in it: what is emptied at the end is never the caller's.
  opzet.dir = (std::filesystem::absolute(opzet.dir) / "opdsaldo-meet").string();
  std::filesystem::remove_all(opzet.dir);
  const bool goed = meet();
  std::filesystem::current_path("/");
  std::filesystem::remove_all(opzet.dir);
  return goed ? 0 : 1;
}
