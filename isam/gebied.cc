// Locks of a region of a plain file, for whole-file copies and appended logs, and what a process
// can tell about its open files.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <vector>

#include "isam/base.h"
#include "isam/ix_intern.h"
#include "isam/teksten.h"

namespace {

void meld_bezet() { FFLASH(1, 1, 0, "", txt(T_IX_IN_GEBRUIK)); }

/// Locks from the end of the file on; the end may move between looking and locking.
bool slot_aan_einde(int fd, int64_t length) {
  for (;;) {
    const off_t einde = lseek(fd, 0, SEEK_END);
    if (lockf(fd, F_TLOCK, length) != 0) return false;
    if (lseek(fd, 0, SEEK_END) == einde) return true;
    lseek(fd, einde, SEEK_SET);
    static_cast<void>(lockf(fd, F_ULOCK, length));
  }
}

}  // namespace

bool region_lock(int fd, int code, int64_t length) {
  if (length < 1) return false;
  if (code == 13 || code == 14) {
    if (code == 14) lseek(fd, 0, SEEK_END);
    static_cast<void>(lockf(fd, F_ULOCK, length));
    return true;
  }
  if (code != 3 && code != 4) return false;
  while (code == 3 ? lockf(fd, F_TLOCK, length) != 0 : !slot_aan_einde(fd, length)) meld_bezet();
  return true;
}

int64_t locked_read(int fd, void* buffer, size_t length) {
  region_lock(fd, 3, static_cast<int64_t>(length));
  return read(fd, buffer, length);
}

int64_t retry_read(int fd, void* buffer, size_t length) {
  for (;;) {
    const ssize_t n = read(fd, buffer, length);
    if (n >= 0) return n;
    meld_bezet();
  }
}

int64_t locked_write(int fd, const void* buffer, size_t length) {
  const off_t plaats = lseek(fd, 0, SEEK_CUR);
  const ssize_t n = write(fd, buffer, length);
  const off_t na = lseek(fd, 0, SEEK_CUR);
  lseek(fd, plaats, SEEK_SET);
  region_lock(fd, 13, static_cast<int64_t>(length));
  lseek(fd, na, SEEK_SET);
  return n;
}

int64_t locked_append(int fd, const char* formaat, std::span<const Arg> args) {
  char regel[884];
  const size_t n = formaat_in(regel, sizeof regel, formaat, args);
  if (!region_lock(fd, 4, static_cast<int64_t>(n))) return 0;
  return locked_write(fd, regel, n);
}

int files_open_limit() {
  std::vector<int> open_nu;
  while (open_nu.size() < 200) {
    const int fd = open("OPENFILE", O_RDWR | O_CREAT | O_CLOEXEC, 0660);
    if (fd < 0) break;
    open_nu.push_back(fd);
  }
  for (int fd : open_nu) close(fd);
  unlink("OPENFILE");
  return static_cast<int>(open_nu.size());
}

int FILES_PRESENT(const char* pattern) {
  if (DIRECTORY('O', pattern, false) == nullptr) return 0;
  int aantal = 0;
  while (DIRECTORY('N', pattern, false) != nullptr) ++aantal;
  DIRECTORY('C', pattern, false);
  return aantal;
}

void files_left() {
  std::vector<ino_t> over;
  for (int fd = 3; fd < 40; ++fd) {
    struct stat st;
    if (fstat(fd, &st) != 0) continue;
    if (!S_ISDIR(st.st_mode)) over.push_back(st.st_ino);
    close(fd);
  }
  if (over.empty()) return;
  printf("%s\n", str_format(txt(T_IX_NOG_OPEN), over.size()).c_str());
  if (DIR* map = opendir(".")) {
    while (const dirent* e = readdir(map))
      for (ino_t inode : over)
        if (e->d_ino == inode) printf("%s\n", e->d_name);
    closedir(map);
  }
  printf("%s", txt(T_IX_VERVOLG));
  fflush(stdout);
  for (int c = getchar(); c != '\n' && c != EOF; c = getchar()) {
  }
}
