// One process of the proof, and the talk with it.
#include "tools/winkel_sloten_agent.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace {

int echt_slot(int fd, int opdracht, struct flock* f) { return fcntl(fd, opdracht, f); }
int echt_open(const char* naam, int wijze) { return open(naam, wijze | O_CLOEXEC, 0660); }

}  // namespace

SlotAanroep slot_aanroep{echt_slot, pread, pwrite, fstat, echt_open, std::rename};

namespace {

constexpr int ANTWOORD_MS = 60000;
using Blok = std::array<int64_t, SLOT_BLOK / sizeof(int64_t)>;

void even(long us) {
  const timespec t{0, us * 1000};
  nanosleep(&t, nullptr);
}

bool schrijf(int fd, int64_t getal, int64_t van) {
  Blok b;
  b.fill(getal);
  return slot_aanroep.schrijf(fd, b.data(), sizeof b, van) == static_cast<ssize_t>(sizeof b);
}

int64_t lees(int fd, int64_t van) {
  Blok b;
  const ssize_t n = slot_aanroep.lees(fd, b.data(), sizeof b, van);
  if (n < 0) return -1;
  const bool heel = n == static_cast<ssize_t>(sizeof b) &&
                    std::all_of(b.begin(), b.end(), [&](int64_t x) { return x == b[0]; });
  errno = EILSEQ;
  return heel ? b[0] : -1;
}

int64_t slot(int fd, int opdracht, const SlotVraag& v, struct flock* f) {
  *f = {};
  f->l_type = v.soort;
  f->l_whence = SEEK_SET;
  f->l_start = v.van;
  f->l_len = v.lengte;
  return slot_aanroep.slot(fd, opdracht, f);
}

int64_t wissel(int64_t getal) {
  const int fd = slot_aanroep.open(SLOT_NIEUW, O_WRONLY | O_CREAT | O_TRUNC);
  if (fd < 0) return -1;
  const bool goed = schrijf(fd, getal, 0);
  close(fd);
  return goed ? slot_aanroep.hernoem(SLOT_NIEUW, SLOT_NAAM) : -1;
}

int64_t toon() {
  const int fd = slot_aanroep.open(SLOT_NAAM, O_RDONLY);
  if (fd < 0) return -1;
  const int64_t uit = lees(fd, 0);
  const int fout = errno;
  close(fd);
  errno = fout;
  return uit;
}

int64_t is_er() {
  const int fd = slot_aanroep.open(SLOT_NAAM, O_RDONLY);
  if (fd < 0) return errno == ENOENT ? 0 : -1;
  close(fd);
  return 1;
}

/// The lock is tried and never waited for, as the engine does it.
int64_t tel(int fd, const SlotVraag& v) {
  SlotVraag slot_v = v;
  struct flock f;
  for (int64_t n = 0; n < v.getal; ++n) {
    slot_v.soort = F_WRLCK;
    while (slot(fd, F_SETLK, slot_v, &f) != 0) {
      if (errno != EAGAIN && errno != EACCES) return -1;
      even(20);
    }
    const int64_t stand = lees(fd, v.van);
    const bool goed = stand >= 0 && schrijf(fd, stand + 1, v.van);
    const int fout = errno;
    slot_v.soort = F_UNLCK;
    if (slot(fd, F_SETLK, slot_v, &f) != 0) return -1;
    errno = fout;
    if (!goed) return -1;
    even(10);  // or one would be through before the other has begun
  }
  return v.getal;
}

int64_t wissels(int64_t tot) {
  for (int64_t n = 1; n <= tot; ++n)
    if (wissel(n) != 0) return -1;
  return tot;
}

int64_t kijk(int64_t tot) {
  for (int64_t laatst = 0; laatst < tot;) {
    const int64_t nu = toon();
    if (nu < 0) return -1;
    errno = ESTALE;
    if (nu < laatst) return -1;
    laatst = nu;
  }
  return tot;
}

int64_t map_weg(const char* naam) {
  for (const char* bestand : {SLOT_BESTAND, SLOT_NAAM, SLOT_NIEUW}) unlink(bestand);
  return chdir("..") == 0 ? rmdir(naam) : -1;
}

struct Werk {
  int fd = -1;

  int64_t doe(const SlotVraag& v, SlotAntwoord* a) {
    struct stat st {};
    switch (v.doe) {
      case SlotDoe::map_maak:
        return mkdir(v.naam, 0770) == 0 ? chdir(v.naam) : -1;
      case SlotDoe::map_in:
        return chdir(v.naam);
      case SlotDoe::map_weg:
        return map_weg(v.naam);
      case SlotDoe::open:
        fd = slot_aanroep.open(SLOT_BESTAND, O_RDWR | O_CREAT);
        return fd < 0 ? -1 : 0;
      case SlotDoe::slot:
        return slot(fd, F_SETLK, v, &a->slot);
      case SlotDoe::wie:
        return slot(fd, F_GETLK, v, &a->slot);
      case SlotDoe::schrijf:
        return schrijf(fd, v.getal, v.van) ? 0 : -1;
      case SlotDoe::lees:
        return lees(fd, v.van);
      case SlotDoe::maat:
        return slot_aanroep.maat(fd, &st) == 0 ? st.st_size : -1;
      case SlotDoe::kap:
        return ftruncate(fd, v.van);
      case SlotDoe::is_er:
        return is_er();
      case SlotDoe::wis:
        return unlink(SLOT_NAAM);
      case SlotDoe::wissel:
        return wissel(v.getal);
      case SlotDoe::toon:
        return toon();
      case SlotDoe::tel:
        return tel(fd, v);
      case SlotDoe::wissels:
        return wissels(v.getal);
      case SlotDoe::kijk:
        return kijk(v.getal);
    }
    return -1;
  }
};

[[noreturn]] void werk(int fd, const std::string& map) {
  Werk w;
  const int ingang = chdir(map.c_str()) == 0 ? 0 : errno;
  SlotVraag v;
  while (recv(fd, &v, sizeof v, 0) == static_cast<ssize_t>(sizeof v)) {
    SlotAntwoord a{-1, ingang, {}};
    if (ingang == 0) {
      a.uit = w.doe(v, &a);
      a.fout = errno;
    }
    if (send(fd, &a, sizeof a, MSG_NOSIGNAL) != static_cast<ssize_t>(sizeof a)) break;
  }
  _exit(0);
}

}  // namespace

SlotAgent::SlotAgent(const std::string& map) {
  int paar[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, paar) != 0) return;
  pid = fork();
  if (pid == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    close(paar[0]);
    werk(paar[1], map);
  }
  close(paar[1]);
  fd = paar[0];
}

void SlotAgent::zeg(const SlotVraag& v) { send(fd, &v, sizeof v, MSG_NOSIGNAL); }

SlotAntwoord SlotAgent::hoor() {
  SlotAntwoord a{-1, ETIMEDOUT, {}};
  pollfd p{fd, POLLIN, 0};
  int klaar;
  do {
    klaar = poll(&p, 1, ANTWOORD_MS);
  } while (klaar < 0 && errno == EINTR);
  if (klaar <= 0 || recv(fd, &a, sizeof a, 0) != static_cast<ssize_t>(sizeof a))
    a = {-1, ETIMEDOUT, {}};
  return a;
}

void SlotAgent::dood() {
  if (fd >= 0) close(fd);
  fd = -1;
  if (pid <= 0) return;
  kill(pid, SIGKILL);
  // One that is stuck in a directory that hangs cannot be waited for without an end.
  for (int n = 0; n < 5000 && waitpid(pid, nullptr, WNOHANG) == 0; ++n) even(1000);
  pid = -1;
}
