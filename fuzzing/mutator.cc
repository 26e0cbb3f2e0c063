// The driver where the compiler brings no fuzzing runtime: seeded mutations of the seeds for a
// number of seconds. NAME_fuzz [SECONDS [SEED]]; the input in hand stands in crash-NAME until it
// has come back.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "fuzzing/fuzz.h"

extern "C" int LLVMFuzzerInitialize(int*, char***);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n);

namespace {

using Kans = std::mt19937_64;

void muteer(std::string& s, Kans& kans) {
  const auto onder = [&](size_t n) { return n == 0 ? size_t{0} : static_cast<size_t>(kans() % n); };
  static const unsigned char EIGEN[] = {0, 1, 0x7f, 0x80, 0xff, '%', '*', ',', '[', ']'};
  for (size_t keer = 1 + onder(6); keer-- > 0;) {
    const size_t waar = onder(s.size());
    switch (onder(7)) {
      case 0:
        if (!s.empty()) s[waar] = static_cast<char>(kans());
        break;
      case 1:
        if (!s.empty()) s[waar] = static_cast<char>(s[waar] ^ (1 << onder(8)));
        break;
      case 2:
        s.insert(waar, 1, static_cast<char>(EIGEN[onder(sizeof EIGEN)]));
        break;
      case 3:
        if (!s.empty()) s.erase(waar, 1 + onder(8));
        break;
      case 4:
        if (!s.empty()) s[waar] = static_cast<char>(EIGEN[onder(sizeof EIGEN)]);
        break;
      case 5:
        s.insert(waar, s.substr(onder(s.size()), onder(16)));
        break;
      default:
        if (onder(20) == 0) s.resize(waar);
        break;
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int seconden = argc > 1 ? atoi(argv[1]) : 60;
  const uint64_t zaad = argc > 2 ? strtoull(argv[2], nullptr, 10) : std::random_device{}();
  printf("seed %llu\n", static_cast<unsigned long long>(zaad));
  fflush(stdout);
  LLVMFuzzerInitialize(&argc, &argv);
  const std::vector<std::string> zaden = fuzz_zaden();
  Kans kans(zaad);
  uint64_t aantal = 0;
  const auto eind = std::chrono::steady_clock::now() + std::chrono::seconds(seconden);
  while (std::chrono::steady_clock::now() < eind) {
    std::string s = zaden[kans() % zaden.size()];
    muteer(s, kans);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(s.data()), s.size());
    ++aantal;
  }
  printf("%llu inputs, nothing found\n", static_cast<unsigned long long>(aantal));
}
