#include "bench/programma.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/partij.h"

namespace {

/// The first processor that we may use.
void op_een_kern() {
  cpu_set_t mag;
  if (sched_getaffinity(0, sizeof mag, &mag) != 0) return;
  for (size_t n = 0; n < CPU_SETSIZE; ++n)
    if (CPU_ISSET(n, &mag)) {
      CPU_ZERO(&mag);
      CPU_SET(n, &mag);
      sched_setaffinity(0, sizeof mag, &mag);
      return;
    }
}

[[noreturn]] void wordt(const std::vector<std::string>& woorden, int uitgang, bool een_kern) {
  if (een_kern) op_een_kern();
  dup2(uitgang, STDOUT_FILENO);
  std::vector<char*> argv;
  argv.reserve(woorden.size() + 1);
  for (const std::string& w : woorden) argv.push_back(const_cast<char*>(w.c_str()));
  argv.push_back(nullptr);
  execv((std::string(BUILD_DIR "/") + woorden[0]).c_str(), argv.data());
  _exit(127);
}

double seconden(const timeval& t) {
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
}

}  // namespace

Gelopen programma(const std::vector<std::string>& woorden, bool een_kern) {
  Gelopen uit{};
  int pijp[2];
  if (pipe2(pijp, O_CLOEXEC) != 0) meet_fout("meet", "pipe");
  const double begin = seconden_nu();
  const pid_t kind = fork();
  if (kind == 0) wordt(woorden, pijp[1], een_kern);
  close(pijp[1]);
  char stuk[4096];
  for (ssize_t n; (n = read(pijp[0], stuk, sizeof stuk)) > 0;)
    uit.uitvoer.append(stuk, static_cast<size_t>(n));
  close(pijp[0]);
  int status = 0;
  rusage gebruik{};
  wait4(kind, &status, 0, &gebruik);
  uit.duur = seconden_nu() - begin;
  uit.rekentijd = seconden(gebruik.ru_utime) + seconden(gebruik.ru_stime);
  if (status != 0) meet_fout(woorden[0].c_str(), uit.uitvoer.c_str());
  return uit;
}

void demo_keten(bool groot) {
  std::vector<std::string> woorden = {"tools/winkel", "demo", "--seed", "7"};
  if (groot) woorden.push_back("--large");
  programma(woorden);
}
