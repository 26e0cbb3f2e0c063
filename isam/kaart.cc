// Mappings of open files. A file may grow past its mapping: then its size is asked for again, and a
// wider mapping is made. It may be cut short under it: touching what is gone raises SIGBUS, which
// puts a page of zeros in the place and marks the mapping as not to be trusted. Zeros in the last
// page of a file that was cut raise nothing; the caller takes no piece of zeros from here.

#include "isam/kaart.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace {

constexpr size_t BESTANDEN = 256, PAGINA = 4096;
constexpr int64_t RUIMTE = int64_t{1} << 20;  // a file may grow so much before it is mapped anew

enum class Staat : uint8_t { GEEN, MOGELIJK, OPEN };

struct Kaart {
  uint8_t* begin;
  size_t breed;     // bytes mapped, beyond the end of the file
  int64_t grootte;  // bytes of the file when it was last asked for
  Staat staat;
  volatile sig_atomic_t gekapt;
};
Kaart kaarten[BESTANDEN];

enum class Wens : uint8_t { ONBEKEND, NEE, JA };
Wens wens = Wens::ONBEKEND;

bool gewenst() {
  if (wens == Wens::ONBEKEND) {
    const char* s = getenv("OPDSALDO_KAART");
    wens = s != nullptr && strcmp(s, "nee") == 0 ? Wens::NEE : Wens::JA;
  }
  return wens == Wens::JA;
}

/// File systems of this machine alone, where a mapping shows what write() wrote at once.
bool plaatselijk(int fd) {
  constexpr unsigned long EXT4 = 0xEF53, XFS = 0x58465342, BTRFS = 0x9123683E, TMPFS = 0x01021994;
  struct statfs fs;
  if (fstatfs(fd, &fs) != 0) return false;
  const auto soort = static_cast<unsigned long>(fs.f_type);
  return soort == EXT4 || soort == XFS || soort == BTRFS || soort == TMPFS;
}

/// Only calls that a signal may make. A fault that is not ours takes its usual end.
void bij_sigbus(int, siginfo_t* info, void*) {
  auto* plaats = static_cast<uint8_t*>(info->si_addr);
  for (Kaart& k : kaarten) {
    if (k.staat != Staat::OPEN || plaats < k.begin || plaats >= k.begin + k.breed) continue;
    uint8_t* pagina = plaats - static_cast<size_t>(plaats - k.begin) % PAGINA;
    void* uit = mmap(pagina, PAGINA, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    if (uit == MAP_FAILED) break;
    k.gekapt = 1;
    return;
  }
  signal(SIGBUS, SIG_DFL);
}

void vang_sigbus() {
  static bool gevangen = false;
  if (gevangen) return;
  struct sigaction actie = {};
  actie.sa_sigaction = bij_sigbus;
  actie.sa_flags = SA_SIGINFO;
  sigaction(SIGBUS, &actie, nullptr);
  gevangen = true;
}

void los(Kaart& k) {
  if (k.staat != Staat::OPEN) return;
  munmap(k.begin, k.breed);
  k = Kaart{};
  k.staat = Staat::MOGELIJK;
}

int64_t grootte_van(int fd) {
  struct stat st;
  return fstat(fd, &st) == 0 ? static_cast<int64_t>(st.st_size) : 0;
}

void maak(Kaart& k, int fd) {
  const int64_t grootte = grootte_van(fd);
  if (grootte == 0) return;  // nothing to see yet; the next reader asks again
  k.staat = Staat::GEEN;
  if (!plaatselijk(fd)) return;
  const auto breed = static_cast<size_t>(std::max(grootte * 2, RUIMTE));
  void* uit = mmap(nullptr, breed, PROT_READ, MAP_SHARED, fd, 0);
  if (uit == MAP_FAILED) return;
  vang_sigbus();
  k = {static_cast<uint8_t*>(uit), breed, grootte, Staat::OPEN, 0};
}

/// Makes the mapping reach up to `einde` if the file does.
bool reikt(Kaart& k, int fd, int64_t einde) {
  if (k.staat == Staat::MOGELIJK) {
    if (gewenst()) maak(k, fd);
  } else {
    k.grootte = grootte_van(fd);
    if (einde <= k.grootte && k.grootte > static_cast<int64_t>(k.breed)) {
      los(k);
      maak(k, fd);
    }
  }
  return k.staat == Staat::OPEN && einde <= k.grootte && einde <= static_cast<int64_t>(k.breed);
}

}  // namespace

const uint8_t* kaart_stuk(int fd, int64_t offset, size_t n) noexcept {
  if (fd < 0 || static_cast<size_t>(fd) >= BESTANDEN || offset < 0 || n > KAART_STUK)
    return nullptr;
  Kaart& k = kaarten[fd];
  if (k.staat == Staat::GEEN) return nullptr;
  const int64_t einde = offset + static_cast<int64_t>(n);
  if ((k.staat != Staat::OPEN || einde > k.grootte) && !reikt(k, fd, einde)) return nullptr;
  std::atomic_thread_fence(std::memory_order_acquire);
  return k.begin + offset;
}

bool kaart_heel(int fd) noexcept {
  std::atomic_thread_fence(std::memory_order_acquire);
  Kaart& k = kaarten[static_cast<size_t>(fd) % BESTANDEN];
  if (k.gekapt == 0) return k.staat == Staat::OPEN;
  los(k);
  return false;
}

void kaart_open(int fd) noexcept {
  kaart_sluit(fd);
  if (fd >= 0 && static_cast<size_t>(fd) < BESTANDEN) kaarten[fd].staat = Staat::MOGELIJK;
}

void kaart_sluit(int fd) noexcept {
  kaart_vergeet(fd);
  if (fd >= 0 && static_cast<size_t>(fd) < BESTANDEN) kaarten[fd].staat = Staat::GEEN;
}

void kaart_vergeet(int fd) noexcept {
  if (fd >= 0 && static_cast<size_t>(fd) < BESTANDEN) los(kaarten[fd]);
}

void kaart_zet(bool aan) noexcept {
  wens = aan ? Wens::JA : Wens::NEE;
  for (Kaart& k : kaarten) los(k);
}
