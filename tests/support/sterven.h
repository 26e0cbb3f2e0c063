// A run in a process of its own that dies at one of its writes.
#pragma once

#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "isam/io.h"
#include "tests/support/beproeving.h"
#include "tests/support/bestand.h"

inline int sterf_te_gaan;

/// Dies at write `n` of `doe`; true when it ran through.
template <class Doe>
bool sterft_bij(int n, const Doe& doe) {
  const std::string einde = Kind([&] {
                              sterf_te_gaan = n;
                              io_proef.voor_schrijf = [](int, int64_t, size_t) {
                                if (sterf_te_gaan-- == 0) raise(SIGKILL);
                              };
                              doe();
                              return std::string();
                            }).einde(30);
  EXPECT_TRUE(einde.empty() || einde == "signal 9") << einde;
  return einde.empty();
}

/// Tables and other files as they were before the first death.
struct SterfBegin {
  SterfBegin(const std::vector<const char*>& tabellen, const std::vector<const char*>& bestanden)
      : namen(tabellen) {
    for (const char* naam : tabellen) kopieen.push_back(std::make_unique<BepKopie>(naam));
    for (const char* naam : bestanden) bytes.emplace_back(naam, bytes_van(naam));
  }
  void terug() const {
    for (const auto& kopie : kopieen) kopie->terug();
    for (const auto& [naam, inhoud] : bytes) zet_bytes(naam, inhoud);
  }
  /// What a death left marked is rebuilt.
  void herbouw() const {
    for (const char* naam : namen) EXPECT_TRUE(IXCHECK(naam) >= 0 || IXBLDIX(naam) == 1) << naam;
  }

  std::vector<const char*> namen;
  std::vector<std::unique_ptr<BepKopie>> kopieen;
  std::vector<std::pair<std::string, std::string>> bytes;
};
