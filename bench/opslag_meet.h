// Rows 1 to 6: the same work on a table of series in every store, one store after the other in
// turns, so that what the machine does meanwhile meets all of them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/gegevens.h"
#include "bench/tabel.h"

struct OpslagMaat {
  int rondes = 5;
  uint32_t records = MEET_RECORDS, lezen = 100000, invoegen = 10000, wijzigen = 20000,
           samen = 20000, bouw = MEET_BOUW;
  bool alleen_ons = false;  // with both readers, without peers and machine
};

/// Goes into the folder of that name under the run's own, and makes it.
void naar(const std::string& naam);
void zeg(const std::string& wat);

/// Leaves out what `doen` says no to, by the row's number. `map` names the folders of this size.
std::vector<Rij> opslag_meet(const OpslagMaat& maat, const std::string& map,
                             const std::function<bool(int)>& doen);
