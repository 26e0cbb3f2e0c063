// Writes the seeds of a target as files: zaai FOLDER.
#include <cstdio>

#include "fuzzing/fuzz.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string map = argv[1];
  fuzz_haken();
  int nummer = 0;
  for (const std::string& zaad : fuzz_zaden()) {
    FILE* f = fopen((map + "/zaad" + std::to_string(nummer++)).c_str(), "wb");
    if (f == nullptr) return 1;
    fwrite(zaad.data(), 1, zaad.size(), f);
    fclose(f);
  }
  return 0;
}
