// A demo chain of its own for each test; the files are made once a program.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/bestand.h"
#include "tests/support/terminal.h"
#include "tests/support/tijdelijk.h"

struct DemoMap {
  TempDir map;
  explicit DemoMap(int zaad) {
    static const TempDir moeder;
    if (!std::filesystem::exists(moeder / "DTSYS.TXT")) {
      const std::string maak = BUILD_DIR "/tools/winkel demo --seed " + std::to_string(zaad) +
                               " --today 22112026 -C " + moeder.pad;
      EXPECT_EQ(std::system((maak + " >/dev/null").c_str()), 0);
    }
    std::filesystem::copy(moeder.pad, map.pad,
                          std::filesystem::copy_options::recursive |
                              std::filesystem::copy_options::overwrite_existing);
  }
  std::string operator/(const char* naam) const { return map.pad + "/" + naam; }

  /// The launcher in the chain, or in a chain elsewhere.
  Terminal launcher(const std::string& waar = "") const {
    TerminalOpties opties;
    opties.dir = waar.empty() ? map.pad : waar;
    opties.env = {"BIN=" BUILD_DIR, "KOBPRT=" + opties.dir, "TMUX"};
    return start({BUILD_DIR "/hoofdmnu"}, opties);
  }

  /// The records of a table's data file, deleted ones left out.
  template <class Rec>
  std::vector<Rec> records(const char* naam) const {
    const std::string b = bytes_van(*this / naam);
    std::vector<Rec> uit;
    for (size_t p = 0; p + sizeof(Rec) <= b.size(); p += sizeof(Rec)) {
      const bool weg = b[p] == '\xFF' && b.find_first_not_of('\xFF', p + 5) >= p + sizeof(Rec);
      if (weg) continue;
      uit.emplace_back();
      memcpy(static_cast<void*>(&uit.back()), b.data() + p, sizeof(Rec));
    }
    return uit;
  }
};
