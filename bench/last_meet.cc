#include "bench/last_meet.h"

#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <functional>
#include <new>

#include "bench/gegevens.h"
#include "bench/partij.h"
#include "bench/programma.h"

namespace {

constexpr const char* TABEL = "LAST";
constexpr int SCHRIJVERS = 6, WERKERS = 8;
constexpr uint32_t PER_REEKS = 2000, GEDEELD = SCHRIJVERS, DRUK = 25;  // the range of all of them
constexpr double VENSTER = 1.5;                                        // seconds

struct Stand {
  std::atomic<bool> klaar;
  std::atomic<uint64_t> gedaan[WERKERS];
};

void eis(bool goed, const char* wat) {
  if (!goed) meet_fout("load", wat);
}

// The workers: the mix of a shop's terminals at their busiest ----------------------------------

void onder_slot(ICB* icb, uint32_t i, Toeval& t) {
  DtSer r = meet_serie(i);
  const Serienr nr = r.nr;
  if (!IXREADL(icb, &r)) r = meet_serie(i);
  eis(r.nr == nr, "another record than was asked for");
  const uint32_t wat = t.tot(10);
  if (wat == 0) return IXRELEASE(icb, &r);
  if (wat < 4 && icb->record_no >= 0) {
    IXDELETE(icb, &r);
    return;
  }
  if (wat < 7) r.model[0] = static_cast<char>('A' + t.tot(26));  // moves in the second key
  ++r.voorraad;
  eis(IXWRITE(icb, &r), "not written");
}

void wandel(ICB* icb, Toeval& t) {
  IXSWITCH(icb, static_cast<int>(1 + t.tot(3)));
  DtSer r = meet_serie(t.tot((SCHRIJVERS + 1) * PER_REEKS));
  bool er = IXREAD(icb, &r);
  for (int n = 0; er && n < 30; ++n) er = n % 7 == 6 ? IXPREV(icb, &r) : IXNEXT(icb, &r);
  IXSWITCH(icb, 1);
}

void plaatsen(ICB* icb, Toeval& t) {
  DtSer r;
  for (int n = 0; n < 40 && IXSEQ(icb, &r);) ++n;
  IXSEQ_STOP();
  for (int n = 0; n < 5; ++n) IXGET(icb, &r, static_cast<int32_t>(t.tot(PER_REEKS)));
}

void stap(ICB* icb, int ik, Toeval& t) {
  if (ik >= SCHRIJVERS) return t.tot(4) > 0 ? wandel(icb, t) : plaatsen(icb, t);
  const uint32_t wat = t.tot(100), nr = t.tot(PER_REEKS);
  const uint32_t eigen = static_cast<uint32_t>(ik) * PER_REEKS + nr;
  if (wat < 25) return onder_slot(icb, GEDEELD * PER_REEKS + nr % DRUK, t);
  if (wat < 70) return onder_slot(icb, eigen, t);
  if (wat < 93) return wandel(icb, t);
  plaatsen(icb, t);
}

[[noreturn]] void werk(Stand* stand, int ik) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  ix_hooks.wacht = [](ICB*) { usleep(300); };
  ICB* icb = IXOPEN(TABEL, ik < SCHRIJVERS ? IX_GEDEELD : IX_LEES);
  Toeval t{static_cast<uint64_t>(ik) + 1};
  for (; !stand->klaar; ++stand->gedaan[ik]) stap(icb, ik, t);
  IXCLOSE(icb);
  _exit(0);
}

void maak_tabel() {
  ICB* icb = IXCREATE(TABEL, IX_EXCLUSIEF);
  meet_definitie(icb);
  for (DtSer r : meet_series(0, (SCHRIJVERS + 1) * PER_REEKS)) IXWRITE(icb, &r);
  IXCLOSE(icb);
}

// The windows -----------------------------------------------------------------------------------

uint64_t gedaan(const Stand& s) {
  uint64_t som = 0;
  for (const auto& n : s.gedaan) som += n;
  return som;
}

double processors() {
  cpu_set_t mag;
  return sched_getaffinity(0, sizeof mag, &mag) == 0 ? CPU_COUNT(&mag) : 1;
}

struct Venster {
  double tempo, aandeel;  // operations a second; the part of the processors that the tool took
};
/// `tool` is run again and again and gives its seconds of the processor; without one, a wait.
Venster venster(const Stand& s, const std::function<double()>& tool) {
  const uint64_t voor = gedaan(s);
  const double begin = seconden_nu();
  double rekentijd = 0, duur = 0;
  while ((duur = seconden_nu() - begin) < VENSTER)
    if (tool)
      rekentijd += tool();
    else
      usleep(static_cast<useconds_t>((VENSTER - duur) * 1e6) + 1000);
  return {static_cast<double>(gedaan(s) - voor) / duur, rekentijd / duur / processors()};
}

/// What the workers lose beyond the tool's share of the processor: each window with it against the
/// two beside it without.
Rij meet(const Stand& s, const char* nr, const std::string& wat, int paren,
         const std::function<double()>& tool) {
  std::vector<double> verlies, aandeel;
  Venster zonder = venster(s, {});
  for (int n = 0; n < paren; ++n) {
    const Venster met = venster(s, tool), erna = venster(s, {});
    const double gewoonlijk = (zonder.tempo + erna.tempo) / 2;
    verlies.push_back(100 * (1 - met.tempo / gewoonlijk - met.aandeel));
    aandeel.push_back(100 * met.aandeel);
    zonder = erna;
  }
  const std::string deel = getal(mediaan(aandeel));
  return {nr,
          wat + ": six writers' loss beyond its " + deel + "% of the processors",
          "%",
          {{std::max(0.0, mediaan(verlies))}}};
}

double check() { return programma({"tools/ixtool", "check", TABEL}).rekentijd; }

double backup() {
  static int teller = 0;
  const std::string naar = "../last-kopie" + std::to_string(teller++);
  const double t = programma({"tools/winkel", "backup", naar}).rekentijd;
  std::filesystem::remove_all(naar);
  return t;
}

}  // namespace

std::vector<Rij> last_meet(int paren) {
  maak_tabel();
  void* p = mmap(nullptr, sizeof(Stand), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  eis(p != MAP_FAILED, "mmap");
  auto* stand = new (p) Stand{};
  std::vector<pid_t> werkers;
  for (int ik = 0; ik < WERKERS; ++ik) {
    werkers.push_back(fork());
    if (werkers.back() == 0) werk(stand, ik);
  }
  usleep(200000);
  std::vector<Rij> uit = {meet(*stand, "16", "check", paren, check),
                          meet(*stand, "16b", "backup", paren, backup)};
  stand->klaar = true;
  for (const pid_t kind : werkers) {
    int status = 0;
    waitpid(kind, &status, 0);
    eis(status == 0, "a worker failed");
  }
  eis(IXCHECK(TABEL) >= 0, "the table is damaged");
  munmap(p, sizeof(Stand));
  return uit;
}
