// The processes of the proof: each does what it is asked in one folder and answers. A process that
// does not answer in time is given up, so that a directory that hangs cannot hang the proof.
#pragma once

#include <sys/types.h>

#include <string>

#include "tools/winkel_sloten.h"

inline constexpr int SLOT_BLOK = 512;
inline constexpr const char *SLOT_BESTAND = "proef", *SLOT_NAAM = "naam", *SLOT_NIEUW = "nieuw";

enum class SlotDoe : uint8_t {
  map_maak,  // makes the folder `naam` and works in it
  map_in,    // works in it
  map_weg,   // takes it away with its files
  open,      // SLOT_BESTAND, made when absent
  slot,      // F_SETLK of `soort` on van, lengte
  wie,       // F_GETLK; the answer in .slot
  schrijf,   // a block that holds `getal`, at van
  lees,      // uit: the number of the block at van
  maat,      // uit: the size
  kap,       // cuts at van
  is_er,     // uit: 1 when SLOT_NAAM can be opened, else 0
  wis,       // SLOT_NAAM
  wissel,    // SLOT_NAAM becomes, in one rename, a file that holds `getal`
  toon,      // uit: the number that SLOT_NAAM holds
  tel,       // `getal` times: one more in the block at van, under its lock
  wissels,   // wissel with 1 to `getal`
  kijk,      // toon, until it is `getal`; no number may be less than the one before
};

struct SlotVraag {
  SlotDoe doe;
  short soort;
  int64_t van, lengte, getal;
  char naam[40];
};

/// uit -1: it failed, with errno in `fout`; EILSEQ where a block was not whole.
struct SlotAntwoord {
  int64_t uit;
  int fout;
  struct flock slot;
};

struct SlotAgent {
  explicit SlotAgent(const std::string& map);
  ~SlotAgent() { dood(); }
  SlotAgent(const SlotAgent&) = delete;
  SlotAgent& operator=(const SlotAgent&) = delete;

  SlotAntwoord vraag(const SlotVraag& v) {
    zeg(v);
    return hoor();
  }
  void zeg(const SlotVraag& v);
  SlotAntwoord hoor();
  /// Killed, and gone when this returns, unless the system cannot let go of it.
  void dood();

  pid_t pid = -1;
  int fd = -1;
};
