// What the trials of the engine under load, death and damage share: a record that proves itself
// whole, a process with a verdict, the contents of a table judged from its bytes.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <new>
#include <random>
#include <string>

#include "isam/io.h"
#include "isam/ix.h"
#include "tests/support/ix_proef.h"

/// How long a trial under load lasts: OPDSALDO_BEPROEVING, else 20 seconds.
inline int beproeving_seconden() {
  const char* wens = getenv("OPDSALDO_BEPROEVING");
  return wens != nullptr && atoi(wens) > 0 ? atoi(wens) : 20;
}

/// 152 bytes, so that records lie across the borders of pages. Key 1 number and code, key 2 the
/// group (duplicates), key 3 the name; the first and last are wide: nine entries a block, so that
/// their trees have many levels and split all the time.
struct BepRec {
  int32_t nummer;
  int16_t groep;
  char naam[50];
  char code[44];  // follows from the number
  int32_t versie;
  char vulling[44];
  uint32_t som;
};
static_assert(sizeof(BepRec) == 152 && offsetof(BepRec, code) == 56);

inline uint32_t bep_som(const BepRec& r) {
  uint32_t som = 2166136261U;
  const auto* p = reinterpret_cast<const uint8_t*>(&r);
  for (size_t i = 0; i < offsetof(BepRec, som); ++i) som = (som ^ p[i]) * 16777619U;
  return som;
}

inline bool bep_heel(const BepRec& r) { return r.som == bep_som(r); }

/// `smaak` chooses group and name, `versie` only fills the rest.
inline BepRec bep_rec(int32_t nummer, int smaak = 0, int32_t versie = 0) {
  BepRec r{};
  r.nummer = nummer;
  r.groep = static_cast<int16_t>((nummer + smaak) % 23);
  // The changing part comes first, so that another name is at another place in the tree.
  const uint32_t mengsel =
      (static_cast<uint32_t>(nummer) * 31 + static_cast<uint32_t>(smaak)) * 2654435761U;
  snprintf(r.naam, sizeof r.naam, "%08X %08d lange naam in smal blok", mengsel, nummer);
  snprintf(r.code, sizeof r.code, "artikel %d", nummer);
  r.versie = versie;
  for (size_t i = 0; i < sizeof r.vulling; ++i)
    r.vulling[i] = static_cast<char>('a' + (static_cast<uint32_t>(nummer + versie * 7) + i) % 26);
  r.som = bep_som(r);
  return r;
}

inline bool bep_gelijk(const BepRec& a, const BepRec& b) { return memcmp(&a, &b, sizeof a) == 0; }

inline std::string bep_toon(const BepRec& r) {
  return std::to_string(r.nummer) + "/" + std::to_string(r.groep) + "/" + std::string(r.naam, 8) +
         "/v" + std::to_string(r.versie) + (bep_heel(r) ? "" : " TORN");
}

inline ICB* bep_tabel(const char* naam, int mode) {
  ICB* icb = IXCREATE(naam, mode);
  IXUPDFCB(icb, 0, "Beproeving,152");
  IXUPDFCB(icb, 1, "nummer,I,1,4,C,57,100");
  IXUPDFCB(icb, 2, "groep,I,5,6");
  IXUPDFCB(icb, 3, "naam,NODUPS,C,7,56");
  IXINITIX(icb);
  return icb;
}

/// The live records of a table by number, from its bytes; a torn one is a fault.
inline std::map<int32_t, BepRec> bep_inhoud(const std::string& naam, std::string* fout) {
  const std::string data = bytes_van(naam + ".TXT");
  std::map<int32_t, BepRec> uit;
  for (size_t p = 0; p + sizeof(BepRec) <= data.size(); p += sizeof(BepRec)) {
    BepRec r;
    memcpy(&r, data.data() + p, sizeof r);
    if (data[p] == '\xFF' && data.find_first_not_of('\xFF', p + 5) >= p + sizeof r) continue;
    if (!bep_heel(r)) *fout += "slot " + std::to_string(p / sizeof r) + " is not whole; ";
    if (!uit.emplace(r.nummer, r).second) *fout += std::to_string(r.nummer) + " is there twice; ";
  }
  return uit;
}

/// A table's two files, to put back as they were.
struct BepKopie {
  std::string naam, index, data;
  explicit BepKopie(const std::string& n)
      : naam(n), index(bytes_van(n + ".INX")), data(bytes_van(n + ".TXT")) {}
  void terug() const {
    zet_bytes(naam + ".INX", index);
    zet_bytes(naam + ".TXT", data);
  }
};

/// Memory that the processes of a trial see together.
template <class T>
struct Samen {
  Samen() {
    void* p = mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) std::abort();
    t = new (p) T();
  }
  ~Samen() { munmap(t, sizeof(T)); }
  Samen(const Samen&) = delete;
  Samen& operator=(const Samen&) = delete;
  T* operator->() const { return t; }
  T& operator*() const { return *t; }
  T* t;
};

/// A process of its own with a verdict: what `doe` returns, "" is good. Locks belong to processes,
/// so none may be forked while its parent has a table open.
struct Kind {
  explicit Kind(const std::function<std::string()>& doe) {
    int pijp[2];
    if (pipe2(pijp, O_CLOEXEC) != 0) std::abort();
    fflush(nullptr);
    pid = fork();
    if (pid == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      naar = pijp[1];
      ix_hooks.fataal = [](const char* tekst) { zeg("fatal: " + std::string(tekst), 3); };
      zeg(doe(), 0);
    }
    close(pijp[1]);
    van = pijp[0];
  }
  ~Kind() {
    if (pid > 0) {
      kill(pid, SIGKILL);
      waitpid(pid, nullptr, 0);
    }
    close(van);
  }
  Kind(const Kind&) = delete;
  Kind& operator=(const Kind&) = delete;

  /// Waits for the verdict; one that does not come in time is killed.
  std::string einde(int seconden = 60) {
    std::string uit;
    const auto tot = std::chrono::steady_clock::now() + std::chrono::seconds(seconden);
    for (;;) {
      const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(
          tot - std::chrono::steady_clock::now());
      pollfd p{van, POLLIN, 0};
      if (rest.count() <= 0 || poll(&p, 1, static_cast<int>(rest.count())) == 0) {
        kill(pid, SIGKILL);
        uit += "does not end";
        break;
      }
      char stuk[512];
      const ssize_t n = read(van, stuk, sizeof stuk);
      if (n <= 0) break;
      uit.append(stuk, static_cast<size_t>(n));
    }
    waitpid(pid, &status, 0);
    pid = -1;
    if (WIFSIGNALED(status) && uit.empty()) uit = "signal " + std::to_string(WTERMSIG(status));
    if (WIFEXITED(status) && WEXITSTATUS(status) != 0 && uit.empty())
      uit = "exit " + std::to_string(WEXITSTATUS(status));
    return uit;
  }

  pid_t pid = -1;
  int van = -1, status = 0;

 private:
  [[noreturn]] static void zeg(const std::string& tekst, int uitgang) {
    if (write(naar, tekst.data(), tekst.size()) < 0) uitgang = 9;
    _exit(uitgang);
  }
  static inline int naar = -1;
};
