// Print tables of a test's own, and a folder first in PATH with stand-ins for the programs that
// printing runs.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "isam/base.h"
#include "isam/ix.h"
#include "prt/intern.h"
#include "prt/tabellen.h"
#include "tests/support/bestand.h"
#include "tests/support/tijdelijk.h"

template <class R>
void prt_voeg(const char* tabel, R rec) {
  ICB* icb = IXOPEN(tabel, IX_GEDEELD);
  EXPECT_TRUE(IXWRITE(icb, &rec));
  IXCLOSE(icb);
}

/// A printer with one connection and one configuration, in the tables of the current directory.
inline void prt_printer(uint16_t nr, const char* naam, const char* device, uint8_t to_dir,
                        const PtrpRec& vorm) {
  PtrgRec g{nr, 0, ""};
  veld_zet(g.name, sizeof g.name, naam);
  PtrcRec c{nr, 1, to_dir, "", "kabel"};
  veld_zet(c.device, sizeof c.device, device);
  prt_voeg(TR_PTRG, g);
  prt_voeg(TR_PTRC, c);
  PtrpRec p = vorm;
  p.tr_code = nr;
  prt_voeg(TR_PTRP, p);
}

/// Spool files in a folder.
inline int prt_spools(const std::string& map = ".") {
  int n = 0;
  for (const auto& e : std::filesystem::directory_iterator(map))
    n += e.path().filename().string().starts_with("PR") ? 1 : 0;
  return n;
}

/// The current directory is a data directory; each stand-in tells "log" what it was given. lpstat
/// knows no queue but LASER.
struct PrintMap : testing::Test {
  TempDir basis;
  InMap in{(std::filesystem::create_directories(basis / "werk"), basis / "werk")};
  std::string oud_pad = std::getenv("PATH");

  PrintMap() {
    std::filesystem::create_directory(basis / "bin");
    setenv("PATH", ((basis / "bin") + ":" + oud_pad).c_str(), 1);
    script("lpstat", "test \"$2\" = LASER");
    for (const char* weg : {"KOBPRT", "KOBPRTCODE"}) unsetenv(weg);
  }
  ~PrintMap() override { setenv("PATH", oud_pad.c_str(), 1); }
  void script(const std::string& naam, const std::string& rest) const {
    const std::string pad = basis / ("bin/" + naam);
    zet_bytes(pad,
              "#!/bin/sh\necho " + naam + " \"$@\" >> " + (basis / "log") + "\n" + rest + "\n");
    std::filesystem::permissions(pad, std::filesystem::perms::owner_all);
  }
  std::string log() const { return bytes_van(basis / "log"); }
};
