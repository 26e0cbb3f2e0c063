// What other rooms ask of the terminal itself: its colours, and its printer port.
#include <cstdio>

#include "scr/scr.h"
#include "scr/scr_curses.h"

bool scr_kleuren() { return scr_ctx != nullptr && has_colors(); }

bool scr_poort(bool aan) {
  if (scr_ctx == nullptr) return false;
  const char* reeks = tigetstr(aan ? "mc5" : "mc4");
  if (reeks == nullptr) return false;
  // Whatever curses still holds must be out before the port takes the bytes.
  if (aan) scr_flush(0);
  putp(reeks);
  fflush(stdout);
  scr_ctx->output_off = aan ? 1 : 0;
  return true;
}
