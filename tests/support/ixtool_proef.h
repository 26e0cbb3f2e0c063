// Running ixtool as an administrator does, and reaching into the bytes of an index to break it.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "tests/support/ix_proef.h"
#include "tests/support/tijdelijk.h"

struct Uitkomst {
  int status;
  std::string uit, fout;
};

/// Runs `ixtool <argumenten>` in the current directory.
inline Uitkomst ixtool(const std::string& argumenten) {
  const std::string opdracht = std::string(BUILD_DIR "/tools/ixtool ") + argumenten + " 2>.ixtool";
  Uitkomst u{-1, {}, {}};
  FILE* pijp = popen(opdracht.c_str(), "r");
  if (pijp == nullptr) return u;
  char stuk[4096];
  for (size_t n; (n = fread(stuk, 1, sizeof stuk, pijp)) > 0;) u.uit.append(stuk, n);
  const int status = pclose(pijp);
  u.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  u.fout = bytes_van(".ixtool");
  return u;
}

/// The bytes of an index, by block and entry. `breed` is an entry with its pointer.
struct IndexBytes {
  std::string b;

  char& op(int32_t blok, int plaats) {
    return b.at(static_cast<size_t>(blok) * 512 + static_cast<size_t>(plaats));
  }
  int aantal(int32_t blok) { return op(blok, 4); }
  std::string ingang(int32_t blok, int i, int breed) {
    return b.substr(static_cast<size_t>(blok) * 512 + 5 + static_cast<size_t>(i * breed),
                    static_cast<size_t>(breed));
  }
  void zet_ingang(int32_t blok, int i, const std::string& bytes) {
    b.replace(static_cast<size_t>(blok) * 512 + 5 + static_cast<size_t>(i) * bytes.size(),
              bytes.size(), bytes);
  }
  int32_t wijzer(int32_t blok, int i, int breed) {
    int32_t p;
    memcpy(&p, ingang(blok, i, breed).data() + breed - 4, 4);
    return p;
  }
  void zet_wijzer(int32_t blok, int i, int breed, int32_t p) {
    std::string in = ingang(blok, i, breed);
    memcpy(in.data() + breed - 4, &p, 4);
    zet_ingang(blok, i, in);
  }
  /// Takes an entry out, as if it had never been there.
  void weg(int32_t blok, int i, int breed) {
    for (int n = aantal(blok); i + 1 < n; ++i) zet_ingang(blok, i, ingang(blok, i + 1, breed));
    zet_ingang(blok, aantal(blok) - 1, std::string(static_cast<size_t>(breed), '\0'));
    --op(blok, 4);
  }
  void zet_i32(size_t plaats, int32_t v) { memcpy(b.data() + plaats, &v, 4); }
};
