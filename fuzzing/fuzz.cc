// See fuzz.h; and the entry points of libFuzzer.
#include "fuzzing/fuzz.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "isam/ix.h"
#include "scr/scr.h"

namespace {

std::string map;

[[noreturn]] void werp_tekst(const char*) { throw Einde{}; }

}  // namespace

void fuzz_haken() {
  ix_hooks.regel = [](const char*, int) { throw Einde{}; };
  ix_hooks.doos = [](int, int, const char*, const char*) -> int { throw Einde{}; };
  ix_hooks.wacht = [](ICB*) { throw Einde{}; };
  ix_hooks.fataal = [](const char* tekst) { werp_tekst(tekst); };
  scr_hooks.kaal = [](const char* tekst) { werp_tekst(tekst); };
}

void fuzz_map() {
  const char* basis = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
  map = std::string(basis) + "/fuzz-XXXXXX";
  if (mkdtemp(map.data()) == nullptr || chdir(map.c_str()) != 0) abort();
  atexit([] {
    std::error_code fout;
    std::filesystem::remove_all(map, fout);
  });
}

void fuzz_schrijf(const char* naam, const void* bytes, size_t n) {
  // The same inode each time: the engine may still hold a descriptor of an earlier input.
  const int fd = open(naam, O_RDWR | O_CREAT | O_CLOEXEC, 0660);
  if (fd < 0 || ftruncate(fd, 0) != 0 || pwrite(fd, bytes, n, 0) != static_cast<ssize_t>(n))
    abort();
  close(fd);
}

std::string fuzz_lees(const char* naam) {
  std::string uit;
  FILE* f = fopen(naam, "rb");
  if (f == nullptr) return uit;
  char deel[4096];
  for (size_t m; (m = fread(deel, 1, sizeof deel, f)) > 0;) uit.append(deel, m);
  fclose(f);
  return uit;
}

extern "C" int LLVMFuzzerInitialize(int*, char***);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n);

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_haken();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n) {
  try {
    fuzz_een(data, n);
  } catch (const Einde&) {
  }
  return 0;
}
