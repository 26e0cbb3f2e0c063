// Work exclusion between terminals: byte-range locks on DTSYS.TXT, gone with the process.
#pragma once

#include <cstdint>

/// 'S' shared and sole, 'T' test, 'U' unlock, 'E' exclusive; never waits.
bool vw_lock(char op, int fd, int64_t offset, int64_t lengte);
/// The whole function; false when the operator gives up, or in session 99 when it is held.
bool vw_claim_excl(int functie);
void vw_free_excl(int functie);
/// The session's own byte; without `ask` it loops until it is granted.
bool vw_claim(int functie, bool ask);
void vw_free(int functie);

/// Frees its claim at the end of the scope (freeing what was not claimed is harmless).
struct Werkclaim {
  explicit Werkclaim(int f) : functie(f) {}
  ~Werkclaim() { vw_free(functie); }
  Werkclaim(const Werkclaim&) = delete;
  Werkclaim& operator=(const Werkclaim&) = delete;
  int functie;
};
/// The same for a claim on the whole function.
struct Werkclaim_excl {
  explicit Werkclaim_excl(int f) : functie(f) {}
  ~Werkclaim_excl() { vw_free_excl(functie); }
  Werkclaim_excl(const Werkclaim_excl&) = delete;
  Werkclaim_excl& operator=(const Werkclaim_excl&) = delete;
  int functie;
};
