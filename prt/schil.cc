// Shell commands: quoting, and running them where they cannot touch the screen.
#include "prt/schil.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>

extern char** environ;

namespace {

constexpr int STAP_MS = 20;

bool plat(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
         c == '_' || c == '/' || c == '-';
}

struct Spawn {
  posix_spawn_file_actions_t acties;
  posix_spawnattr_t attr;
  Spawn() {
    posix_spawn_file_actions_init(&acties);
    posix_spawnattr_init(&attr);
  }
  ~Spawn() {
    posix_spawn_file_actions_destroy(&acties);
    posix_spawnattr_destroy(&attr);
  }
  Spawn(const Spawn&) = delete;
  Spawn& operator=(const Spawn&) = delete;
};

int wacht_kind(pid_t kind) {
  int status = 0;
  while (waitpid(kind, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void slaap() {
  const timespec stap{0, STAP_MS * 1000000L};
  nanosleep(&stap, nullptr);
}

// Own session, and the signals that the screen catches back to their defaults.
void stel_in(Spawn& s, int schrijf) {
  for (int fd = 0; fd < 3; ++fd) {
    posix_spawn_file_actions_addopen(&s.acties, fd, "/dev/null", fd == 0 ? O_RDONLY : O_WRONLY, 0);
  }
  if (schrijf >= 0) posix_spawn_file_actions_adddup2(&s.acties, schrijf, 3);
  posix_spawn_file_actions_addclosefrom_np(&s.acties, schrijf >= 0 ? 4 : 3);
  sigset_t standaard;
  sigemptyset(&standaard);
  for (const int sig : {SIGINT, SIGQUIT, SIGTSTP, SIGPIPE}) sigaddset(&standaard, sig);
  posix_spawnattr_setsigdefault(&s.attr, &standaard);
  posix_spawnattr_setflags(&s.attr, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
}

}  // namespace

std::string sh_quote(std::string_view woord) {
  bool kaal = !woord.empty();
  for (const char c : woord) kaal = kaal && plat(c);
  if (kaal) return std::string(woord);
  std::string uit = "'";
  for (const char c : woord) {
    if (c == '\'')
      uit += "'\\''";
    else if (c != 0)
      uit += c;
  }
  return uit + "'";
}

int sh_systeem(const std::string& opdracht, int* klaar) {
  int pijp[2] = {-1, -1};
  if (klaar != nullptr) {
    *klaar = -1;
    if (pipe2(pijp, O_CLOEXEC) != 0) return -1;
  }
  int status = -1;
  {
    Spawn s;
    stel_in(s, pijp[1]);
    char sh[] = "sh", c[] = "-c";
    std::string tekst = opdracht;
    char* const argv[] = {sh, c, tekst.data(), nullptr};
    pid_t kind = -1;
    if (posix_spawn(&kind, "/bin/sh", &s.acties, &s.attr, argv, environ) == 0)
      status = wacht_kind(kind);
  }
  if (klaar != nullptr) {
    close(pijp[1]);
    *klaar = pijp[0];
  }
  return status;
}

bool sh_wacht_weg(const char* pad, int ms, bool (*stop)()) {
  for (int voorbij = 0; access(pad, F_OK) == 0; voorbij += STAP_MS) {
    if (voorbij >= ms || (stop != nullptr && stop())) return false;
    slaap();
  }
  return true;
}

bool sh_wacht_klaar(int klaar, int ms, bool (*stop)()) {
  if (klaar < 0) return true;
  bool af = false;
  for (int voorbij = 0; !af && voorbij < ms; voorbij += STAP_MS) {
    pollfd p{klaar, POLLIN, 0};
    af = poll(&p, 1, STAP_MS) > 0;
    if (!af && stop != nullptr && stop()) break;
  }
  close(klaar);
  return af;
}
