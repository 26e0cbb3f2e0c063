// A report as text, by the unattended road.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <regex>
#include <string>

#include "prt/prt.h"

/// The pages that `druk` prints; one date and time stands for all days.
inline std::string rapport(const std::function<void()>& druk, int bladregels = 64) {
  char* bytes = nullptr;
  size_t n = 0;
  FILE* uit = open_memstream(&bytes, &n);
  prt_open_stil(uit, 132, bladregels);
  druk();
  print_close("");
  fclose(uit);
  const std::string tekst(bytes, n);
  free(bytes);
  return std::regex_replace(tekst, std::regex("\\d\\d-\\d\\d-\\d{4} \\d\\d:\\d\\d"),
                            "DD-MM-JJJJ UU:MM");
}
