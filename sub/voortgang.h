// The series in hand of a walk, on the bottom row.
#pragma once

#include <string>

#include "sub/records.h"

struct SerieVoortgang {
  /// Clears the row for the label: "Serienummer", with what is going on in front of it.
  explicit SerieVoortgang(const std::string& bezig = "");
  void toon(const Serienr&) const;
  /// The labels of this series could not be read whole, so it was passed over: on the row above,
  /// where it can be read until the end.
  void onleesbaar(const Serienr&);
  /// Tells how many series were passed over, if any, and waits.
  void einde() const;

  int kolom = 1, overgeslagen = 0;
};
