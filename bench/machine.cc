#include "bench/machine.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <vector>

#include "bench/gegevens.h"
#include "bench/partij.h"

namespace {

constexpr int64_t BLOKKEN = 40000;
int f_index = -1, f_data = -1;

int maak(const char* naam, int64_t grootte) {
  const int fd = open(naam, O_RDWR | O_CREAT | O_TRUNC, 0660);
  if (fd < 0) meet_fout("machine", naam);
  const std::vector<uint8_t> stuk(32768, 1);
  for (int64_t n = 0; n < grootte; n += static_cast<int64_t>(stuk.size()))
    if (write(fd, stuk.data(), stuk.size()) < 0) meet_fout("machine", "write");
  return fd;
}

void slot(int fd, short soort) {
  struct flock fl = {};
  fl.l_type = soort;
  fl.l_whence = SEEK_SET;
  fl.l_len = 512;
  if (fcntl(fd, F_SETLK, &fl) != 0 && soort != F_UNLCK) sched_yield();
}

int64_t plaats(uint64_t toeval, int64_t aantal, int64_t breed) {
  return static_cast<int64_t>(toeval % static_cast<uint64_t>(aantal)) * breed;
}

void lees(int fd, void* p, size_t n, int64_t waar) {
  if (pread(fd, p, n, waar) < 0) meet_fout("machine", "pread");
}
void schrijf(int fd, const void* p, size_t n, int64_t waar) {
  if (pwrite(fd, p, n, waar) < 0) meet_fout("machine", "pwrite");
}

}  // namespace

void machine_open() {
  f_index = maak("machine.inx", BLOKKEN * 512);
  f_data = maak("machine.txt", int64_t{MEET_RECORDS} * 200);
}
void machine_sluit() {
  close(f_index);
  close(f_data);
  unlink("machine.inx");
  unlink("machine.txt");
}

void machine_lees(uint64_t toeval) {
  uint8_t blok[512];
  lees(f_index, blok, 512, plaats(toeval, BLOKKEN, 512));
  lees(f_data, blok, 200, plaats(toeval >> 20, MEET_RECORDS, 200));
}

void machine_schrijf(uint64_t toeval, int blokken) {
  uint8_t blok[512] = {};
  slot(f_index, F_WRLCK);
  lees(f_index, blok, 260, 0);
  schrijf(f_index, blok, 512, 0);
  for (int i = 0; i < blokken; ++i)
    schrijf(f_index, blok, 512, plaats(toeval >> (8 * i), BLOKKEN, 512));
  schrijf(f_data, blok, 200, plaats(toeval >> 20, MEET_RECORDS, 200));
  schrijf(f_index, blok, 512, 0);
  slot(f_index, F_UNLCK);
}

void machine_stroom(int64_t gelezen, int64_t geschreven) {
  std::vector<uint8_t> stuk(32768);
  for (int64_t n = 0; n < gelezen; n += 32768)
    lees(f_data, stuk.data(), stuk.size(), n % (int64_t{MEET_RECORDS} * 200));
  for (int64_t n = 0; n < geschreven; n += 32768) schrijf(f_index, stuk.data(), stuk.size(), n);
}

void machine_pas(uint32_t n) {
  uint8_t rec[512] = {};
  Toeval t{7};
  const int fd = open("machine.pas", O_RDWR | O_CREAT | O_TRUNC, 0660);
  if (fd < 0) meet_fout("machine", "open");
  for (uint32_t i = 0; i < n; ++i) {
    lees(f_data, rec, 404, plaats(t.volgend(), MEET_RECORDS - 4, 200));
    schrijf(fd, rec, 432, int64_t{i} * 432);
  }
  for (uint32_t i = 0; i < n; ++i) lees(fd, rec, 432, plaats(t.volgend(), n, 432));
  close(fd);
  unlink("machine.pas");
}

namespace {

/// Microseconds a step: the middle one of five series.
template <class F>
double stap_kosten(F stap) {
  constexpr int STAPPEN = 20000;
  Toeval t{9};
  std::vector<double> uit(5);
  for (double& tijd : uit)
    tijd = tijd_van([&] {
      for (int i = 0; i < STAPPEN; ++i) stap(t.volgend());
    });
  return mediaan(uit) / STAPPEN * 1e6;
}

void vraag_slot() {
  struct flock fl = {};
  fl.l_type = F_RDLCK;
  fl.l_whence = SEEK_SET;
  fl.l_len = 512;
  if (fcntl(f_index, F_GETLK, &fl) != 0) meet_fout("machine", "F_GETLK");
}

}  // namespace

MachineKosten machine_kosten() {
  constexpr auto BREED = static_cast<size_t>(BLOKKEN) * 512;
  void* kaart = mmap(nullptr, BREED, PROT_READ, MAP_SHARED | MAP_POPULATE, f_index, 0);
  if (kaart == MAP_FAILED) meet_fout("machine", "mmap");
  uint8_t blok[512] = {};
  MachineKosten k{};
  k.lees = stap_kosten([&](uint64_t n) { lees(f_index, blok, 512, plaats(n, BLOKKEN, 512)); });
  k.schrijf =
      stap_kosten([&](uint64_t n) { schrijf(f_index, blok, 512, plaats(n, BLOKKEN, 512)); });
  k.slot = stap_kosten([](uint64_t) {
    slot(f_index, F_WRLCK);
    slot(f_index, F_UNLCK);
  });
  k.vraag = stap_kosten([](uint64_t) { vraag_slot(); });
  k.kopie = stap_kosten([&](uint64_t n) {
    memcpy(blok, static_cast<const uint8_t*>(kaart) + plaats(n, BLOKKEN, 512), sizeof blok);
    asm volatile("" : : "r"(blok) : "memory");  // the copy is made although nobody looks
  });
  munmap(kaart, BREED);
  return k;
}
