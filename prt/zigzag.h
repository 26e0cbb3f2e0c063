// The line pair of a report: where each formatted value goes, and when a wide number steps down.
//
// Columns of a report have fixed widths, and a number may need more. Rather than shift what
// follows, such a number goes to a second line under the first; a pair whose second line stays
// blank prints as one line. No file, no terminal: finished pairs go to a function of the caller. A
// call allocates nothing once the buffers have grown to the report's widest line.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "isam/formaat.h"

inline constexpr int32_t ZZ_HOOGSTE = 32000;  // longest line there can be
inline constexpr int32_t ZZ_REGEL = 300;      // first size of a line, unless SYSBUF says otherwise
inline constexpr int32_t ZZ_FORMAAT = 350;    // size of the format buffers, unless MAXFMT does

enum class ZzFout : uint8_t {
  geen,
  letter,   // a conversion that does not exist: `teken`
  maximum,  // the line needs `nodig` bytes, more than MAXSYSBUF allows
  te_lang,  // more than ZZ_HOOGSTE
  geheugen,
};
struct ZzUitslag {
  ZzFout fout = ZzFout::geen;
  int32_t nodig = 0;
  char teken = 0;
};

struct PrtFmt {
  int32_t buf_size = ZZ_REGEL;    // room of each line
  int32_t buf_max = 0;            // limit of its growth, 0 none
  int32_t fmt_size = ZZ_FORMAAT;  // values are cut at one less
  bool started = false;
  bool zigzag_on = false;
  int32_t last_pos = -1;  // last character on the pair, -1 empty; both lines are as long
  std::string line[2];
  std::string val_buf;    // the value in hand
  std::string ref_buf;    // the same conversion of a zero: the room its column has
  std::string piece_buf;  // the conversion with its "*" filled in
};

/// Takes a finished pair; the views hold until the call returns.
struct ZzUit {
  void (*paar)(void* wie, std::string_view regel0, std::string_view regel1);
  void* wie;
};

/// Reads the three settings; null is a variable that is absent. Empty when all is well, else the
/// text to abort with.
std::string zz_instellen(PrtFmt& f, const char* maxfmt, const char* sysbuf, const char* maxsysbuf);
/// Takes the buffers; false without memory.
bool zz_begin(PrtFmt& f) noexcept;
/// Formats into the pair. On a fault what was placed before it stays.
ZzUitslag zz_print(PrtFmt& f, std::string_view formaat, std::span<const Arg> args,
                   const ZzUit& uit);
/// Hands the pair over and empties it.
void zz_flush(PrtFmt& f, const ZzUit& uit);
void zz_leeg(PrtFmt& f) noexcept;
/// True when a line holds more than blanks and line ends, so must be printed as a second line.
bool zz_zichtbaar(std::string_view regel) noexcept;
