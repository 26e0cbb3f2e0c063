// Formats of report lines, with arguments of every kind.
#include <cstdio>

#include "fuzzing/fuzz.h"
#include "prt/prt.h"

std::vector<std::string> fuzz_zaden() {
  std::vector<std::string> zaden;
  for (const char* f :
       {"Filiaal %2d    %4hu   %4hu stuks", "%5d%5d", "%5d %5d", "%-20.20s|%3c", "%8.2lf%%",
        "%05ld%03hu%04hu", "%*d%-*.*s", "%e%g%G%E", "%Lf", "%x%X%o%u%i", "a\nb\n", "%350d%s"})
    zaden.push_back(std::string("\x01\x22\x33\x80\x84\x40", 6) + f);
  return zaden;
}

namespace {

Arg argument(Bron& bron, const std::string& tekst) {
  switch (bron.byte() % 6) {
    case 0:
      return Arg(static_cast<int32_t>(bron.getal(4)));
    case 1:
      return Arg(bron.getal(4));
    case 2:
      return Arg(static_cast<double>(bron.getal(4)) / 7.0);
    case 3:
      return Arg(static_cast<char>(bron.byte()));
    case 4:
      return Arg(1e300 * bron.byte());
    default:
      return Arg(tekst);
  }
}

}  // namespace

void fuzz_een(const uint8_t* data, size_t n) {
  static FILE* const niets = fopen("/dev/null", "w");
  Bron bron{data, n};
  const int breedte = bron.byte();
  const std::string tekst = Bron(bron).tekst(400);
  std::vector<Arg> args;
  for (int i = bron.byte() % 8; i > 0; --i) args.push_back(argument(bron, tekst));
  const std::string formaat = bron.tekst(2000);
  prt_open_stil(niets, breedte, 64);
  try {
    print_f_kern(formaat.c_str(), args);
    print_f_kern(formaat.c_str(), args);
    print_nl();
    print_head("links", "%s", tekst);
  } catch (const Einde&) {
  }
  print_clear();
  print_close("");
}
