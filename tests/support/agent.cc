#include "tests/support/agent.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

bool lees_alles(int fd, void* naar, size_t n) {
  for (char* p = static_cast<char*>(naar); n > 0;) {
    const ssize_t k = read(fd, p, n);
    if (k < 0 && errno == EINTR) continue;
    if (k <= 0) return false;
    p += k;
    n -= static_cast<size_t>(k);
  }
  return true;
}

bool schrijf_alles(int fd, const void* van, size_t n) {
  for (const char* p = static_cast<const char*>(van); n > 0;) {
    const ssize_t k = write(fd, p, n);
    if (k < 0 && errno == EINTR) continue;
    if (k <= 0) return false;
    p += k;
    n -= static_cast<size_t>(k);
  }
  return true;
}

bool stuur_tekst(int fd, const std::string& tekst) {
  const uint32_t n = static_cast<uint32_t>(tekst.size());
  return schrijf_alles(fd, &n, sizeof n) && schrijf_alles(fd, tekst.data(), n);
}

bool lees_tekst(int fd, std::string& tekst) {
  uint32_t n = 0;
  if (!lees_alles(fd, &n, sizeof n)) return false;
  tekst.resize(n);
  return lees_alles(fd, tekst.data(), n);
}

}  // namespace

Agent::Agent(const std::function<std::string(const std::string&)>& doe) {
  int heen[2], terug[2];
  if (pipe2(heen, O_CLOEXEC) != 0 || pipe2(terug, O_CLOEXEC) != 0) std::abort();
  std::fflush(nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  pid = fork();
  if (pid == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    close(heen[1]);
    close(terug[0]);
    std::string opdracht;
    while (lees_tekst(heen[0], opdracht) && stuur_tekst(terug[1], doe(opdracht))) {
    }
    _exit(0);
  }
  close(heen[0]);
  close(terug[1]);
  naar = heen[1];
  van = terug[0];
}

Agent::~Agent() {
  kill_now();
  close(naar);
  close(van);
}

void Agent::send(const std::string& opdracht) {
  if (!stuur_tekst(naar, opdracht)) ADD_FAILURE() << "the agent is gone before " << opdracht;
}

bool Agent::answered() {
  pollfd p{van, POLLIN, 0};
  return poll(&p, 1, 0) > 0 && (p.revents & POLLIN) != 0;
}

std::string Agent::answer() {
  pollfd p{van, POLLIN, 0};
  std::string tekst;
  if (poll(&p, 1, 20000) > 0 && lees_tekst(van, tekst)) return tekst;
  ADD_FAILURE() << "the agent does not answer";
  return {};
}

std::string Agent::ask(const std::string& opdracht) {
  send(opdracht);
  return answer();
}

void Agent::kill_now() {
  if (pid <= 0) return;
  kill(pid, SIGKILL);
  waitpid(pid, nullptr, 0);
  pid = -1;
}

void Agent::stop(bool stil) {
  if (pid <= 0) return;
  kill(pid, stil ? SIGSTOP : SIGCONT);
  int status = 0;
  if (stil) waitpid(pid, &status, WUNTRACED);
}
