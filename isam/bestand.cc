// Helpers for files: tests, delete, move, copy, fresh names, lines.
//
// A file that the engine has open is only read through the engine's own descriptor: closing a
// second one would drop every record lock of this process on it.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix.h"

namespace {

constexpr int64_t KOPIESLOT = 2147483646;  // bytes locked from the position of reading or writing
constexpr size_t KLEINSTE = 256, GROOTSTE = 32768;

bool zelfde_bestand(const char* een, const char* ander) {
  struct stat a, b;
  return stat(een, &a) == 0 && stat(ander, &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

struct Bron {
  int fd = -1;
  bool gedeeld = false;  // the engine's descriptor: its locks stay, so none is taken here
  bool op_slot = false;

  explicit Bron(const char* pad) {
    if (io_bekend(pad, &fd)) {
      fd = io_open(pad, false);
      gedeeld = true;
      return;
    }
    fd = open(pad, O_RDWR | O_CLOEXEC);
    if (fd >= 0)
      op_slot = region_lock(fd, 3, KOPIESLOT);
    else
      fd = open(pad, O_RDONLY | O_CLOEXEC);
  }
  ~Bron() {
    if (fd < 0) return;
    if (gedeeld) {
      io_close(fd);
      return;
    }
    if (op_slot && lseek(fd, 0, SEEK_SET) == 0) region_lock(fd, 13, KOPIESLOT);
    close(fd);
  }
  Bron(const Bron&) = delete;
  Bron& operator=(const Bron&) = delete;
};

bool schrijf_alles(int fd, const uint8_t* p, size_t n) {
  while (n > 0) {
    const ssize_t m = write(fd, p, n);
    if (m < 0 && errno == EINTR) continue;
    if (m <= 0) return false;
    p += m;
    n -= static_cast<size_t>(m);
  }
  return true;
}

bool stroom(int van, int naar) {
  uint8_t klein[KLEINSTE];
  void* ruim = nullptr;
  size_t grootte = buf_alloc(&ruim, KLEINSTE, GROOTSTE);
  auto* buffer = static_cast<uint8_t*>(ruim);
  if (grootte == 0) {
    buffer = klein;
    grootte = sizeof klein;
  }
  int64_t plaats = 0, n;
  bool goed = true;
  while ((n = io_lees(van, buffer, grootte, plaats)) > 0) {
    goed = schrijf_alles(naar, buffer, static_cast<size_t>(n));
    if (!goed) break;
    plaats += n;
  }
  std::free(ruim);
  return goed && n == 0;
}

// Copies into an open, still unlocked target; *leeg tells whether it began without content.
bool kopieer_in(int van, int naar, int hoe, bool* leeg) {
  int64_t begin = hoe > 0 ? lseek(naar, 0, SEEK_END) : 0;
  if (begin < 0) return false;
  region_lock(naar, 3, KOPIESLOT - begin);
  const int64_t slot = begin;
  if (hoe > 0) begin = lseek(naar, 0, SEEK_END);  // another may have appended while we waited
  *leeg = begin == 0;
  const bool goed = (hoe > 0 || ftruncate(naar, 0) == 0) && stroom(van, naar);
  if (lseek(naar, slot, SEEK_SET) == slot) region_lock(naar, 13, KOPIESLOT - slot);
  return goed;
}

}  // namespace

bool file_exists(const char* pad) {
  struct stat st;
  return stat(pad, &st) == 0;
}

int64_t file_size(const char* pad) {
  struct stat st;
  return stat(pad, &st) == 0 ? int64_t{st.st_size} : -1;
}

bool file_isdir(const char* pad) {
  struct stat st;
  return stat(pad, &st) == 0 && S_ISDIR(st.st_mode);
}

bool file_delete(const char* pad) { return unlink(pad) == 0 || errno == ENOENT; }

bool file_move(const char* van, const char* naar, bool vervang) {
  if (std::strcmp(van, naar) == 0) return file_exists(van);
  if (!file_exists(van)) return false;
  if (vervang && !file_delete(naar)) return false;
  if (link(van, naar) == 0) return file_delete(van);
  if (errno == EEXIST) return false;
  return file_copy(van, naar, -1) && file_delete(van);
}

bool file_copy(const char* van, const char* naar, int hoe) {
  if (zelfde_bestand(van, naar)) return false;
  int in_gebruik = -1;
  if (io_bekend(naar, &in_gebruik)) return false;
  const Bron bron(van);
  if (bron.fd < 0) return false;
  const int wijze = O_RDWR | O_CREAT | O_CLOEXEC | (hoe > 0 ? O_APPEND : hoe < 0 ? O_EXCL : 0);
  const int fd = open(naar, wijze, 0660);
  if (fd < 0) return false;
  bool leeg = false;
  bool goed = kopieer_in(bron.fd, fd, hoe, &leeg);
  struct stat st;
  const bool gewoon = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);  // a device is never removed
  if (close(fd) != 0) goed = false;
  if (!goed && leeg && gewoon) unlink(naar);
  return goed;
}

const char* file_temp(const char* map, const char* prefix, int start) {
  static char naam[16];
  const int eerste = start < 0 ? static_cast<int>(-int64_t{start} % 100) : getpid() % 100;
  const std::string voor = map == nullptr || *map == 0 ? std::string() : std::string(map) + '/';
  for (int ronde = 0; ronde < 100; ++ronde) {
    for (int letters = 0; letters < 26 * 26; ++letters) {
      str_printf(naam, sizeof naam, "%.4s%c%c%02d", prefix, static_cast<char>('A' + letters / 26),
                 static_cast<char>('A' + letters % 26), (eerste + ronde) % 100);
      const std::string pad = voor + naam;
      const int fd = open(pad.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0660);
      if (fd >= 0) {
        close(fd);
        unlink(pad.c_str());
        return naam;
      }
      if (errno != EEXIST) return naam[0] = 0, naam;
    }
  }
  naam[0] = 0;
  return naam;
}

size_t buf_alloc(void** buffer, size_t laag, size_t hoog) {
  for (size_t n = hoog; n >= laag && n > 0; n /= 2) {
    *buffer = std::malloc(n);
    if (*buffer != nullptr) return n;
  }
  *buffer = nullptr;
  return 0;
}

bool file_line(FILE* bestand, char* buffer, int grootte) {
  if (grootte < 1) return false;
  int n = 0;
  int c = std::fgetc(bestand);
  if (c == EOF) {
    buffer[0] = 0;
    return false;
  }
  bool gekort = false;
  for (; c != EOF && c != '\n'; c = std::fgetc(bestand)) {
    if (n < grootte - 1)
      buffer[n++] = static_cast<char>(c);
    else
      gekort = true;
  }
  buffer[n] = 0;
  return gekort || n < grootte - 1;
}
