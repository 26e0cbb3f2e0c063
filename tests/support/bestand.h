// Files as bytes, and waiting for what other processes write.
#pragma once

#include <unistd.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <string>

/// Everything in a file; empty when there is none.
inline std::string bytes_van(const std::string& pad) {
  std::ifstream f(pad, std::ios::binary);
  return {std::istreambuf_iterator<char>(f), {}};
}

inline void zet_bytes(const std::string& pad, const std::string& bytes) {
  std::ofstream(pad, std::ios::binary | std::ios::trunc)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

/// False when it does not come true within 20 seconds.
inline bool wacht_tot(const std::function<bool()>& klaar) {
  for (int i = 0; i < 1000; ++i) {
    if (klaar()) return true;
    usleep(20000);
  }
  return false;
}
