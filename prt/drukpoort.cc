// The printer port of the operator's own terminal: what is written while it is on goes to the
// printer.
#include <unistd.h>

#include <cstring>

#include "prt/intern.h"
#include "scr/scr.h"

// Two calls of terminfo; its header would make macros of words as plain as "lines".
extern "C" {
char* tigetstr(const char* naam);
int putp(const char* reeks);
}

bool prt_poort_eigen(const char* device) {
  const char* tty = ttyname(0);
  return tty != nullptr && std::strcmp(tty, device) == 0;
}

bool prt_poort(bool aan) {
  if (scr_ctx == nullptr) return false;
  char naam[] = "mc5";
  if (!aan) naam[2] = '4';
  const char* reeks = tigetstr(naam);
  if (reeks == nullptr || reeks == reinterpret_cast<const char*>(-1)) return false;
  // Whatever curses still holds must be out before the port takes the bytes.
  if (aan) scr_flush(0);
  putp(reeks);
  std::fflush(stdout);
  scr_ctx->output_off = aan ? 1 : 0;
  return true;
}
