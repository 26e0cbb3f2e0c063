// Transfers and descriptors of the engine's files. Guarantees: one descriptor a file a process, so
// that a close never drops locks that another handle still counts on; no half-written block reaches
// a caller of io_lees_heel; interrupted and short transfers are finished here.

#include "isam/io.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <utility>
#include <vector>

#include "isam/kaart.h"

IoProef io_proef;

namespace {

struct Rij {
  dev_t apparaat;
  ino_t inode;
  int fd;
  int gebruik;
  std::vector<int>
      reserve;  // other descriptors of the file: they close with the last use, not before
};

std::vector<Rij> rijen;

Rij* rij_van(const struct stat& st) {
  for (Rij& r : rijen)
    if (r.apparaat == st.st_dev && r.inode == st.st_ino) return &r;
  return nullptr;
}

constexpr size_t STUK =
    32768;  // the longest transfer that is guarded; a record's limit is below it
alignas(64) uint8_t lezing_a[STUK];
alignas(64) uint8_t lezing_b[STUK];

// Fingerprints of what was read whole, by place. A piece that looks as it did at an earlier whole
// reading is whole by what it says, however many writes lie between, and needs no second reading.
// The 64 bits stand for the bytes, their place and their file; a new file under an old descriptor
// starts without any. A place that another takes over only costs its next reader one more read.
constexpr size_t AFDRUKKEN = size_t{1} << 17, BESTANDEN = 256;
uint64_t afdrukken[AFDRUKKEN];
uint32_t opening[BESTANDEN];  // by descriptor: the count of opens when it was opened
uint32_t openingen;

uint64_t meng(uint64_t a, uint64_t b) {
  __extension__ using u128 = unsigned __int128;
  const u128 m = static_cast<u128>(a) * b;
  return static_cast<uint64_t>(m) ^ static_cast<uint64_t>(m >> 64);
}

uint64_t woord(const uint8_t* p) {
  uint64_t v;
  memcpy(&v, p, sizeof v);
  return v;
}

constexpr uint64_t ZOUT[] = {0xA0761D6478BD642Fu, 0xE7037ED1A0B428DBu, 0x8EBC6AF09C88C6E3u,
                             0x589965CC75374CC3u};

uint64_t plaatscode(int fd, int64_t offset, size_t n) {
  const uint64_t bestand = uint64_t{io_opening(fd)} << 32 ^ static_cast<uint64_t>(fd) << 20 ^ n;
  return meng(static_cast<uint64_t>(offset) ^ ZOUT[0], bestand ^ ZOUT[1]);
}

/// Never zero, so that an unused place fits nothing.
uint64_t afdruk(const uint8_t* p, size_t n, uint64_t plaats) {
  uint64_t a = plaats, b = plaats ^ ZOUT[2];
  // Two rows of multiplications, so that one does not wait for the other.
  for (; n >= 32; n -= 32, p += 32) {
    a = meng(woord(p) ^ ZOUT[1], woord(p + 8) ^ a);
    b = meng(woord(p + 16) ^ ZOUT[2], woord(p + 24) ^ b);
  }
  for (; n >= 8; n -= 8, p += 8) a = meng(woord(p) ^ ZOUT[3], a ^ ZOUT[1]);
  uint64_t rest = 0;
  memcpy(&rest, p, n);
  a = meng(rest ^ ZOUT[0], a ^ ZOUT[3]);
  return meng(a ^ ZOUT[1], b ^ ZOUT[0]) | 1;
}

}  // namespace

int io_open(const char* pad, bool maken) {
  struct stat st;
  if (stat(pad, &st) == 0) {
    // A second open() of a known file is avoided altogether: its close would drop our locks.
    if (Rij* r = rij_van(st)) {
      ++r->gebruik;
      return r->fd;
    }
  }
  int fd;
  do {
    fd = open(pad, O_RDWR | O_CLOEXEC | (maken ? O_CREAT : 0), 0660);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) return -1;
  if (fstat(fd, &st) != 0) {
    const int fout = errno;
    close(fd);
    errno = fout;
    return -1;
  }
  // The name was moved onto a file of ours between stat and open.
  if (Rij* r = rij_van(st)) {
    r->reserve.push_back(fd);
    ++r->gebruik;
    return r->fd;
  }
  opening[static_cast<size_t>(fd) % BESTANDEN] = ++openingen;
  kaart_open(fd);
  rijen.push_back({st.st_dev, st.st_ino, fd, 1, {}});
  return fd;
}

void io_close(int fd) noexcept {
  for (size_t i = 0; i < rijen.size(); ++i) {
    Rij& r = rijen[i];
    if (r.fd != fd) continue;
    if (--r.gebruik > 0) return;
    kaart_sluit(r.fd);
    close(r.fd);
    for (int ander : r.reserve) close(ander);
    if (i + 1 < rijen.size()) r = std::move(rijen.back());
    rijen.pop_back();
    return;
  }
}

bool io_bekend(const char* pad, int* fd) noexcept {
  struct stat st;
  if (stat(pad, &st) != 0) return false;
  const Rij* r = rij_van(st);
  if (r == nullptr) return false;
  if (fd != nullptr) *fd = r->fd;
  return true;
}

uint32_t io_opening(int fd) noexcept { return opening[static_cast<size_t>(fd) % BESTANDEN]; }

namespace {

int64_t lees_gewoon(int fd, uint8_t* doel, size_t n, int64_t offset) {
  size_t klaar = 0;
  while (klaar < n) {
    const ssize_t deel = pread(fd, doel + klaar, n - klaar, offset + static_cast<int64_t>(klaar));
    ++io_proef.gelezen;
    if (deel < 0 && errno == EINTR) continue;
    if (deel < 0) return klaar > 0 ? static_cast<int64_t>(klaar) : -1;
    if (deel == 0) break;
    klaar += static_cast<size_t>(deel);
  }
  return static_cast<int64_t>(klaar);
}

bool nullen(const uint8_t* p, size_t n) { return p[0] == 0 && memcmp(p, p + 1, n - 1) == 0; }

/// From the mapping, when there is one and it leaves no doubt: zeros may stand behind the end of a
/// file that was cut short.
bool lees_kaart(int fd, uint8_t* doel, size_t n, int64_t offset) {
  const uint8_t* stuk = n > 0 ? kaart_stuk(fd, offset, n) : nullptr;
  if (stuk == nullptr) return false;
  memcpy(doel, stuk, n);
  if (!kaart_heel(fd) || nullen(doel, n)) return false;
  ++io_proef.gelezen;
  return true;
}

/// The file still holds what it held; nothing is copied.
bool zelfde_als(int fd, const void* oud, size_t n, int64_t offset) {
  if (oud == nullptr || io_proef.na_lees != nullptr) return false;
  const uint8_t* stuk = n > 0 ? kaart_stuk(fd, offset, n) : nullptr;
  if (stuk == nullptr || memcmp(stuk, oud, n) != 0 || !kaart_heel(fd)) return false;
  if (nullen(static_cast<const uint8_t*>(oud), n)) return false;
  ++io_proef.gelezen;
  io_proef.bytes_gelezen += n;
  return true;
}

}  // namespace

int64_t io_lees(int fd, void* buffer, size_t n, int64_t offset) noexcept {
  auto* doel = static_cast<uint8_t*>(buffer);
  const int64_t uit =
      lees_kaart(fd, doel, n, offset) ? static_cast<int64_t>(n) : lees_gewoon(fd, doel, n, offset);
  if (uit < 0) return uit;
  io_proef.bytes_gelezen += static_cast<uint64_t>(uit);
  if (io_proef.na_lees != nullptr) io_proef.na_lees(fd, buffer, static_cast<size_t>(uit), offset);
  return uit;
}

namespace {

constexpr int GEDULD = 100, VLUG = 20;  // rounds for a writer; the first of them without sleeping
constexpr timespec EVEN{0, 50 * 1000};

bool vrij(int fd, int64_t offset, size_t n) noexcept {
  struct flock slot {};
  slot.l_type = F_WRLCK;
  slot.l_whence = SEEK_SET;
  slot.l_start = offset;
  slot.l_len = static_cast<off_t>(n);
  return fcntl(fd, F_GETLK, &slot) != 0 || slot.l_type == F_UNLCK;
}

/// Nobody else is writing the piece now.
bool in_rust(const IoSloten& sloten, size_t n, int64_t offset) noexcept {
  return (sloten.stuk_fd >= 0 && vrij(sloten.stuk_fd, offset, n)) ||
         (sloten.kop_fd >= 0 && vrij(sloten.kop_fd, 0, 512));
}

/// A piece as it was read, with room to read it again.
struct Lezing {
  uint8_t *nu, *weer;
  int64_t lengte;
};

/// Reads again until two readings agree that had between them a moment at which nobody was writing.
/// False when there was no such moment for as long as that is waited for, or nothing to tell it by.
bool lees_tot_gelijk(Lezing& l, int fd, size_t n, int64_t offset, const IoSloten& sloten) {
  const bool blind = sloten.stuk_fd < 0 && sloten.kop_fd < 0;
  for (int keer = 1; l.lengte > 0; ++keer) {
    const bool rust = !blind && in_rust(sloten, n, offset);
    const int64_t uit = io_lees(fd, l.weer, n, offset);
    const bool gelijk = uit == l.lengte && memcmp(l.nu, l.weer, static_cast<size_t>(uit)) == 0;
    if (gelijk && (rust || blind || keer > GEDULD)) return rust;
    std::swap(l.nu, l.weer);
    l.lengte = uit;
    if (rust || keer <= VLUG)
      sched_yield();  // let the writer finish
    else
      nanosleep(&EVEN, nullptr);
  }
  return false;
}

}  // namespace

bool io_raak_aan(int fd, int64_t offset, size_t n) noexcept {
  const uint8_t* stuk = kaart_stuk(fd, offset, n);
  if (stuk == nullptr) return false;
  for (size_t i = 0; i < n; i += 64) __builtin_prefetch(stuk + i);
  return true;
}

bool io_zelfde(int fd, const void* oud, size_t n, int64_t offset) noexcept {
  if (n > STUK) return false;
  if (io_proef.na_lees == nullptr && zelfde_als(fd, oud, n, offset)) return true;
  return io_lees(fd, lezing_a, n, offset) == static_cast<int64_t>(n) &&
         memcmp(lezing_a, oud, n) == 0;
}

int64_t io_lees_heel(int fd, void* buffer, size_t n, int64_t offset, const void* oud,
                     IoSloten sloten, bool* zeker) noexcept {
  bool kwijt;
  bool& gewis = zeker != nullptr ? *zeker : kwijt;
  gewis = n <= STUK;
  if (n > STUK) return io_lees(fd, buffer, n, offset);
  if (zelfde_als(fd, oud, n, offset)) {
    if (oud != buffer) memcpy(buffer, oud, n);
    return static_cast<int64_t>(n);
  }
  const auto heel = static_cast<int64_t>(n);
  // What the caller last saw may stand where the answer comes.
  uint8_t* doel = oud != nullptr && oud == buffer ? lezing_a : static_cast<uint8_t*>(buffer);
  Lezing l{doel, lezing_b, io_lees(fd, doel, n, offset)};
  if (oud == nullptr || l.lengte != heel || memcmp(doel, oud, n) != 0) {
    const uint64_t plaats = plaatscode(fd, offset, n);
    uint64_t& bekend = afdrukken[plaats % AFDRUKKEN];
    if (l.lengte != heel || afdruk(doel, n, plaats) != bekend) {
      gewis = lees_tot_gelijk(l, fd, n, offset, sloten);
      const bool een_pagina = offset / 4096 == (offset + heel - 1) / 4096;
      if (l.lengte == heel && (gewis || een_pagina)) bekend = afdruk(l.nu, n, plaats);
    }
  }
  if (l.nu != buffer && l.lengte > 0) memcpy(buffer, l.nu, static_cast<size_t>(l.lengte));
  return l.lengte;
}

int64_t io_schrijf(int fd, const void* buffer, size_t n, int64_t offset) noexcept {
  if (io_proef.voor_schrijf != nullptr) io_proef.voor_schrijf(fd, offset, n);
  ++io_proef.geschreven;
  const auto* bron = static_cast<const uint8_t*>(buffer);
  size_t klaar = 0;
  while (klaar < n) {
    const ssize_t deel = pwrite(fd, bron + klaar, n - klaar, offset + static_cast<int64_t>(klaar));
    if (deel < 0 && errno == EINTR) continue;
    if (deel <= 0) return klaar > 0 ? static_cast<int64_t>(klaar) : -1;
    klaar += static_cast<size_t>(deel);
  }
  return static_cast<int64_t>(klaar);
}

int64_t io_grootte(int fd) noexcept {
  struct stat st;
  return fstat(fd, &st) == 0 ? static_cast<int64_t>(st.st_size) : -1;
}

void io_kaarten(bool aan) noexcept { kaart_zet(aan); }

bool io_kap(int fd, int64_t grootte) noexcept {
  if (io_proef.voor_schrijf != nullptr) io_proef.voor_schrijf(fd, grootte, 0);
  ++io_proef.geschreven;
  int uit;
  do {
    uit = ftruncate(fd, grootte);
  } while (uit != 0 && errno == EINTR);
  kaart_vergeet(fd);
  return uit == 0;
}
