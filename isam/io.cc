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
  rijen.push_back({st.st_dev, st.st_ino, fd, 1, {}});
  return fd;
}

void io_close(int fd) noexcept {
  for (size_t i = 0; i < rijen.size(); ++i) {
    Rij& r = rijen[i];
    if (r.fd != fd) continue;
    if (--r.gebruik > 0) return;
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

int64_t io_lees(int fd, void* buffer, size_t n, int64_t offset) noexcept {
  auto* doel = static_cast<uint8_t*>(buffer);
  size_t klaar = 0;
  while (klaar < n) {
    const ssize_t deel = pread(fd, doel + klaar, n - klaar, offset + static_cast<int64_t>(klaar));
    ++io_proef.gelezen;
    if (deel < 0 && errno == EINTR) continue;
    if (deel < 0) return klaar > 0 ? static_cast<int64_t>(klaar) : -1;
    if (deel == 0) break;
    klaar += static_cast<size_t>(deel);
  }
  io_proef.bytes_gelezen += klaar;
  if (io_proef.na_lees != nullptr) io_proef.na_lees(fd, buffer, klaar, offset);
  return static_cast<int64_t>(klaar);
}

namespace {

constexpr int GEDULD = 100;  // rounds for a header that somebody holds
constexpr timespec EVEN{0, 50 * 1000};

/// Nobody else is writing: no other process holds the header.
bool kop_vrij(int kop_fd) noexcept {
  struct flock slot {};
  slot.l_type = F_RDLCK;
  slot.l_whence = SEEK_SET;
  slot.l_len = 512;
  return fcntl(kop_fd, F_GETLK, &slot) != 0 || slot.l_type == F_UNLCK;
}

}  // namespace

int64_t io_lees_heel(int fd, void* buffer, size_t n, int64_t offset, const void* oud,
                     int kop_fd) noexcept {
  if (n > STUK) return io_lees(fd, buffer, n, offset);
  uint8_t* nu = lezing_a;
  uint8_t* straks = lezing_b;
  int64_t lengte = io_lees(fd, nu, n, offset);
  if (oud != nullptr && lengte == static_cast<int64_t>(n) && memcmp(nu, oud, n) == 0) {
    if (oud != buffer) memcpy(buffer, nu, n);
    return lengte;
  }
  const uint64_t plaats = plaatscode(fd, offset, n);
  uint64_t& bekend = afdrukken[plaats % AFDRUKKEN];
  if (lengte == static_cast<int64_t>(n) && afdruk(nu, n, plaats) == bekend) {
    memcpy(buffer, nu, n);
    return lengte;
  }
  for (int keer = 1; lengte > 0; ++keer) {
    const bool rust = kop_fd < 0 || keer > GEDULD || kop_vrij(kop_fd);
    const int64_t weer = io_lees(fd, straks, n, offset);
    if (rust && weer == lengte && memcmp(nu, straks, static_cast<size_t>(lengte)) == 0) break;
    std::swap(nu, straks);
    lengte = weer;
    if (!rust)
      nanosleep(&EVEN, nullptr);
    else if (keer % 16 == 0)
      sched_yield();  // let the writer finish
  }
  if (lengte > 0) memcpy(buffer, nu, static_cast<size_t>(lengte));
  if (lengte == static_cast<int64_t>(n)) bekend = afdruk(nu, n, plaats);
  return lengte;
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

bool io_kap(int fd, int64_t grootte) noexcept {
  if (io_proef.voor_schrijf != nullptr) io_proef.voor_schrijf(fd, grootte, 0);
  ++io_proef.geschreven;
  int uit;
  do {
    uit = ftruncate(fd, grootte);
  } while (uit != 0 && errno == EINTR);
  return uit == 0;
}
