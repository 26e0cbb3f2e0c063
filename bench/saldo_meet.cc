#include "bench/saldo_meet.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "bench/lezer.h"
#include "bench/machine.h"
#include "bench/partij.h"
#include "main/saldo.h"

namespace {

constexpr uint32_t SERIES = 50000;
constexpr const char* LIJST = "saldo.lst";

/// Kilobytes of memory of a process's own (not of files), 0 when it is gone.
long eigen_kb(pid_t kind) {
  const std::string pad = "/proc/" + std::to_string(kind) + "/status";
  FILE* f = fopen(pad.c_str(), "r");
  if (f == nullptr) return 0;
  char regel[256];
  long kb = 0;
  while (fgets(regel, sizeof regel, f) != nullptr)
    if (sscanf(regel, "RssAnon: %ld", &kb) == 1) break;
  fclose(f);
  return kb;
}

struct Loop {
  double tijd;
  long hoogste_kb;
};

/// The unattended balance in a process of its own, as a scheduled job runs it.
Loop draai(bool kaart) {
  if (!kaart) setenv(LEZER_VAR, LEZER_GEWOON, 1);
  const double begin = seconden_nu();
  // Spawned, not forked: a fork is for a moment as large as we are, and its memory is what we ask.
  pid_t kind = -1;
  char naam[] = "meet", soort[] = "--saldo-kind";
  char* argv[] = {naam, soort, nullptr};
  if (posix_spawn(&kind, "/proc/self/exe", nullptr, nullptr, argv, environ) != 0)
    meet_fout("balance", "spawn");
  unsetenv(LEZER_VAR);
  Loop loop{0, 0};
  int status = 0;
  while (waitpid(kind, &status, WNOHANG) == 0) {
    loop.hoogste_kb = std::max(loop.hoogste_kb, eigen_kb(kind));
    usleep(2000);
  }
  if (status != 0) meet_fout("balance", "the run failed");
  loop.tijd = seconden_nu() - begin;
  return loop;
}

SaldoTotalen lees_lijst() {
  SaldoTotalen t;
  FILE* f = fopen(LIJST, "r");
  if (f == nullptr) meet_fout("balance", LIJST);
  char regel[512];
  while (fgets(regel, sizeof regel, f) != nullptr) {
    unsigned fil, uit, in;
    if (sscanf(regel, "Filiaal %u %u %u", &fil, &uit, &in) != 3 || fil > 255) continue;
    t.uit[fil] = uit;
    t.in[fil] = in;
  }
  fclose(f);
  return t;
}

/// The list prints its counts in 16 bits.
SaldoTotalen in_16_bits(SaldoTotalen t) {
  for (auto* rij : {&t.uit, &t.in})
    for (uint64_t& n : *rij) n &= 0xFFFF;
  return t;
}

}  // namespace

int saldo_kind() {
  FILE* uit = fopen(LIJST, "w");
  const bool goed = uit != nullptr && saldo_onbewaakt(uit);
  if (uit != nullptr) fclose(uit);
  return goed ? 0 : 1;
}

Paar saldo_groei(uint32_t regels) {
  keten_maak(std::min(SERIES, regels / 20), regels);
  std::vector<double> kaart, gewoon;
  for (int ronde = 0; ronde < 3; ++ronde) {
    kaart.push_back(draai(true).tijd);
    gewoon.push_back(draai(false).tijd);
  }
  return {mediaan(kaart), mediaan(gewoon)};
}

std::vector<Rij> saldo_meet(uint32_t regels) {
  const uint32_t series = std::min(SERIES, regels / 20);
  keten_maak(series, regels);
  saldo_sqlite_maak(series, regels);
  std::vector<double> ons, gewoon, pas, vraag;
  long kb = 0, kb_gewoon = 0;
  // Three rounds, or as many as a patient minute allows on a slow machine.
  const double begin = seconden_nu();
  for (int ronde = 0; ronde < 3 && (ronde == 0 || seconden_nu() - begin < 60); ++ronde) {
    const Loop zonder = draai(false);
    gewoon.push_back(zonder.tijd);
    kb_gewoon = std::max(kb_gewoon, zonder.hoogste_kb);
    const SaldoTotalen plat = lees_lijst();
    const Loop loop = draai(true);
    ons.push_back(loop.tijd);
    kb = std::max(kb, loop.hoogste_kb);
    SaldoTotalen a, b;
    pas.push_back(tijd_van([&] { a = saldo_sqlite_pas(); }));
    vraag.push_back(tijd_van([&] { b = saldo_sqlite_vraag(); }));
    if (!(a == b)) meet_fout("balance", "pass and query differ");
    if (!(in_16_bits(a) == lees_lijst()) || !(plat == lees_lijst()))
      meet_fout("balance", "our totals differ from SQLite's");
  }
  const double zelf = mediaan(ons), plat = mediaan(gewoon);
  const auto mb = [](long n) { return static_cast<double>(n) / 1024; };
  Rij r{"7",
        "balance: pass and totals, 1,000,000 lines, a temporary table",
        "s",
        {{zelf}, {plat}, {mediaan(pas)}}};
  r.machine = tijd_van([&] { machine_pas(regels); });
  const Rij q{"7b", "the same, SQLite's one query", "s", {{zelf}, {plat}, {mediaan(vraag)}}};
  const Rij m{"8", "balance: memory of its own", "MB", {{mb(kb)}, {mb(kb_gewoon)}}};
  return {r, q, m};
}
