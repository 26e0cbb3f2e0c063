// The stack of windows: each with its colours, its border and the terminal it lies on.
//
// win_base is the first window of the terminal in hand; what lies below it belongs to another one,
// or to the same one as it was before it was opened again, and is not drawn until that is back.
#include <algorithm>

#include "scr/scr_curses.h"
#include "scr/teksten.h"

namespace {

struct KleurSet {
  short achter, voor, accent;
};
constexpr KleurSet KLEUREN[] = {{4, 7, 6}, {7, 4, 1}, {0, 6, 7}, {0, 3, 1},
                                {0, 7, 6}, {4, 7, 6}, {7, 4, 1}, {7, 0, 1}};
constexpr int KLEURSETS = sizeof KLEUREN / sizeof *KLEUREN;

/// Four pairs by place on the stack. From the eighth window on the reverse pair would be the accent
/// of a window that still stands below; nothing is drawn in the reverse pairs, so it is left out.
void kleuren_zet(int plaats, int kleurset) {
  if (!has_colors()) return;
  const KleurSet& k = KLEUREN[std::clamp(kleurset, 0, KLEURSETS - 1)];
  const auto paar = [](int nummer, short voor, short achter) {
    if (nummer < COLOR_PAIRS) init_pair(static_cast<short>(nummer), voor, achter);
  };
  paar(plaats + 1, k.voor, k.achter);
  if (plaats < 7) paar(plaats + 8, k.achter, k.voor);
  paar(plaats + 15, k.accent, k.achter);
  paar(plaats + 22, k.accent, k.voor);
}

void van_de_stapel(WINDOW* win) {
  if (win == stdscr)
    werase(win);  // a stdscr that is deleted takes the first screen's with it
  else
    delwin(win);
  --scr_ctx->win_count;
  scr_ctx->win_cur = scr_ctx->win_count - 1;
  if (scr_ctx->win_cur >= 0) scr_ctx->colour_next = scr_ctx->windows[scr_ctx->win_cur].colour;
}

/// All windows from the base up, to be drawn over one another again.
void herteken() {
  for (int i = scr_ctx->win_base; i < scr_ctx->win_count; ++i) {
    touchwin(venster_op(i));
    wnoutrefresh(venster_op(i));
  }
}

}  // namespace

void* win_nu() {
  if (scr_ctx == nullptr || scr_ctx->win_cur < 0) return nullptr;
  return scr_ctx->windows[scr_ctx->win_cur].win;
}

void win_stapel(WINDOW* win, int colour_set) {
  const int plaats = scr_ctx->win_count++;
  scr_ctx->windows[plaats] = {win, scr_ctx->term_cur, scr_ctx->win_base, colour_set, 0};
  scr_ctx->win_cur = plaats;
  scr_ctx->colour_next = colour_set;
  keypad(win, TRUE);
  kleuren_zet(plaats, colour_set);
  scr_attr(A_WAARDE);
  werase(win);
}

void win_open(int row, int col, int height, int width, int colour_set) {
  if (scr_ctx == nullptr) return;
  if (scr_ctx->win_count >= SCR_VENSTERS) scr_abort("win_open : %s", txt(T_TEVEEL_VENSTERS));
  if (WINDOW* const onder = venster_nu()) wnoutrefresh(onder);
  // A window that does not fit would lose its border, or not come at all.
  height = std::clamp(height, 1, scr_ctx->lines);
  width = std::clamp(width, 1, scr_ctx->cols);
  row = std::clamp(row, 1, scr_ctx->lines - height + 1);
  col = std::clamp(col, 1, scr_ctx->cols - width + 1);
  WINDOW* const win = newwin(height, width, row - 1, col - 1);
  if (win == nullptr) scr_abort("win_open : %s", txt(T_GEEN_GEHEUGEN));
  win_stapel(win, colour_set);
}

void win_close() {
  if (scr_ctx == nullptr || scr_ctx->win_count == 0) return;
  const int top = scr_ctx->win_count - 1;
  const int32_t terminal = scr_ctx->windows[top].terminal;
  van_de_stapel(venster_op(top));
  if (top == 0) return;
  const ScrVenster& onder = scr_ctx->windows[top - 1];
  const bool ander = onder.terminal != terminal;
  if (ander) {
    term_verlaat();
    term_neem(onder.terminal);
  } else if (onder.base != scr_ctx->win_base) {
    clearok(curscr, TRUE);
  }
  scr_ctx->win_base = onder.base;
  herteken();
}

void win_title_tekst(const char* tekst) {
  if (scr_stil()) return;
  ScrVenster& v = scr_ctx->windows[scr_ctx->win_cur];
  WINDOW* const win = static_cast<WINDOW*>(v.win);
  v.bordered = 0;
  scr_attr(A_WAARDE);
  wborder(win, 0, 0, 0, 0, 0, 0, 0, 0);
  if (tekst != nullptr && *tekst != 0) {
    const int ruimte = getmaxx(win);
    const int lengte = static_cast<int>(std::string_view(tekst).size());
    scr_print_tekst(A_WAARDE, 1, std::max((ruimte - lengte) / 2 + 1, 1), tekst);
  }
  v.bordered = 1;
}

int win_height() {
  WINDOW* const win = venster_nu();
  return win == nullptr ? 0 : getmaxy(win) - 2 * scr_ctx->windows[scr_ctx->win_cur].bordered;
}

int win_width() {
  WINDOW* const win = venster_nu();
  return win == nullptr ? 0 : getmaxx(win) - 2 * scr_ctx->windows[scr_ctx->win_cur].bordered;
}

void win_hoek(int* row, int* col) {
  *row = *col = 1;
  WINDOW* const win = venster_nu();
  if (win == nullptr) return;
  const int rand = scr_ctx->windows[scr_ctx->win_cur].bordered;
  *row = getbegy(win) + 1 + rand;
  *col = getbegx(win) + 1 + rand;
}

void scr_waar(int* row, int* col) {
  *row = *col = 1;
  WINDOW* const win = venster_nu();
  if (win == nullptr) return;
  const int rand = scr_ctx->windows[scr_ctx->win_cur].bordered;
  *row = getcury(win) + 1 - rand;
  *col = getcurx(win) + 1 - rand;
}
