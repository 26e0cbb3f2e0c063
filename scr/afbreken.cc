// Breaking off: by the operator between two steps of a long run, by a signal as a key, and by the
// program itself, once and for all.
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "scr/macro.h"
#include "scr/scr_curses.h"
#include "scr/teksten.h"

namespace {

bool onderbreken_aan = true, onderbroken = false;
time_t laatste_blik = 0;

struct sigaction int_bewaard, quit_bewaard;
bool gevangen = false;
bool in_afbreken = false;

void op_signaal(int signaal) {
  if (scr_ctx != nullptr) scr_ctx->pending_key = signaal == SIGINT ? TOETS_DEL : TOETS_EXIT;
}

bool vraag_onderbreken() {
  const IngBewaar bewaar;
  scr_error("");
  const int breed = std::max(static_cast<int>(std::strlen(txt(T_AKKOORD))) + 17, 24);
  const Venster venster(scr_ctx->lines - 7, 11, 5, breed, 3);
  win_title(" %s ", txt(T_ONDERBREKEN));
  return scr_confirm(2, 4, "[+]");
}

/// A screen that can still be drawn on; the memory is tried first, a window needs some.
bool scherm_bruikbaar() {
  void* volatile proef = std::malloc(1000);
  std::free(proef);
  return proef != nullptr && scr_ctx != nullptr && scr_ctx->win_count > 0;
}

void meld_op_scherm(const char* tekst) {
  scr_ctx->output_off = 0;
  if (scr_ctx->win_count >= SCR_VENSTERS) win_close();
  const char* const hulp = txt(T_SUPPORT);
  const int breed = static_cast<int>(std::max(std::strlen(tekst), std::strlen(hulp))) + 4;
  // A long message takes its room on the left, where column 10 would cut it.
  win_open3(18, std::clamp(scr_ctx->cols - breed + 1, 1, 10), 5, breed);
  win_title_tekst(txt(T_PROGRAMMA_AFGEBROKEN));
  scr_print_tekst(A_WAARDE, 1, 2, tekst);
  scr_print_tekst(A_WAARDE, 2, 2, hulp);
  scr_print_tekst(A_LABEL, 3, 2, txt(T_ENTER_VERVOLG));
  scr_flush(0);
  keypad(stdscr, TRUE);
  while (toets_lees(stdscr, -1) != TOETS_ENTER) {
  }
}

void meld_op_uitvoer(const char* tekst) {
  std::printf("%s\r\n%s\r\n%s\r\n%s\r\n", cp850_utf8(txt(T_PROGRAMMA_AFGEBROKEN)).c_str(),
              cp850_utf8(tekst).c_str(), cp850_utf8(txt(T_SUPPORT)).c_str(),
              cp850_utf8(txt(T_ENTER_VERVOLG)).c_str());
  std::fflush(stdout);
  for (int c = 0; c != '\n' && c != EOF;) c = std::getchar();
}

}  // namespace

void afbreken_begin() {
  onderbreken_aan = true;
  onderbroken = false;
  laatste_blik = 0;
}

void signalen_vang() {
  if (gevangen) return;
  struct sigaction vang {};
  vang.sa_handler = op_signaal;
  sigemptyset(&vang.sa_mask);
  sigaction(SIGINT, &vang, &int_bewaard);
  sigaction(SIGQUIT, &vang, &quit_bewaard);
  gevangen = true;
}

void signalen_terug() {
  if (!gevangen) return;
  sigaction(SIGINT, &int_bewaard, nullptr);
  sigaction(SIGQUIT, &quit_bewaard, nullptr);
  gevangen = false;
}

void scr_intr_on() { onderbreken_aan = true; }
void scr_intr_off() { onderbreken_aan = false; }
bool scr_intr_state() { return onderbreken_aan; }
void scr_intr_reset() {
  onderbroken = false;
  onderbreken_aan = true;
}

bool scr_interrupted() {
  if (!onderbreken_aan || onderbroken || scr_stil()) return onderbroken;
  const time_t nu = time(nullptr);
  if (nu == laatste_blik) return onderbroken;
  laatste_blik = nu;
  const MacroStaat macro = macro_staat;
  macro_staat.aan = macro_staat.speelt = false;  // F2 too is a key like any other here
  int key = -1;
  while (key != K_CANCEL && key != K_ESC && key_pending()) key = key_read(nullptr);
  if (key == K_CANCEL || key == K_ESC)
    onderbroken = vraag_onderbreken();
  else if (key != -1)
    scr_error_tekst(txt(T_ALLEEN_CANCEL));
  macro_staat = macro;
  if (onderbroken) macro_stop();
  return onderbroken;
}

void scr_abort_tekst(const char* tekst) {
  const std::string melding = tekst;  // may lie in what is about to be freed
  if (in_afbreken) scr_exit(1);
  in_afbreken = true;
  if (scr_hooks.afbreken != nullptr) scr_hooks.afbreken();
  if (scherm_bruikbaar()) {
    meld_op_scherm(melding.c_str());
  } else if (scr_hooks.kaal != nullptr) {
    in_afbreken = false;  // the hook may leave by a road of its own
    scr_hooks.kaal(melding.c_str());
  } else {
    meld_op_uitvoer(melding.c_str());
  }
  while (scr_ctx != nullptr && scr_ctx->win_count > 1) win_close();
  scr_exit(1);
}
