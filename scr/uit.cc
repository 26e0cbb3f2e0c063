// Text on the screen: bytes of code page 850 in, cells out, one a byte.
//
// Output goes into the windows of ncurses at once and to the terminal at most once a second, or
// when asked, or before a key is awaited. All windows are then laid over one another from the base
// up: text put on the base under a window neither hides it nor stays behind.
#include "scr/scr_curses.h"

#include <array>
#include <string>

#include "isam/base.h"
#include "scr/teksten.h"

char scr_kladregel[256];
char scr_klad[32768];

namespace {

int ververs_regel = 1;
bool bezig_toegestaan = true, bezig_staat = false;
int bezig_breedte = 15;

/// What each byte looks like; control bytes as a point, for record text may hold anything.
const std::array<wchar_t, 256> TEKENS = [] {
  std::array<wchar_t, 256> t{};
  for (size_t i = 0; i < t.size(); ++i)
    t[i] = i < 32 || i == 127 ? L'.' : static_cast<wchar_t>(cp850_punt(static_cast<uint8_t>(i)));
  return t;
}();

/// Before the screen is open and after it is closed, text goes to standard output.
void naar_uitvoer(const char* tekst, const char* erna) {
  std::fputs((cp850_utf8(tekst) + erna).c_str(), stdout);
  std::fflush(stdout);
}

void bezig_toon(const char* tekst) {
  scr_print_all_tekst(A_WAARDE, scr_ctx->lines, scr_ctx->cols - bezig_breedte + 1, tekst);
  scr_flush(0);
}

}  // namespace

void uit_begin() {
  ververs_regel = 1;
  bezig_toegestaan = true;
  bezig_staat = false;
}

bool scr_stil() { return scr_ctx == nullptr || scr_ctx->output_off != 0 || scr_ctx->win_cur < 0; }

OpBasis::OpBasis() : bewaard(scr_ctx == nullptr ? -1 : scr_ctx->win_cur) {
  if (scr_ctx != nullptr && scr_ctx->win_count > 0) scr_ctx->win_cur = scr_ctx->win_base;
}
OpBasis::~OpBasis() {
  if (scr_ctx != nullptr) scr_ctx->win_cur = bewaard;
}

void scr_out(void* window, std::string_view bytes) {
  std::wstring breed;
  breed.reserve(bytes.size());
  for (const char b : bytes) breed += TEKENS[static_cast<uint8_t>(b)];
  waddnwstr(static_cast<WINDOW*>(window), breed.c_str(), static_cast<int>(breed.size()));
}

void scr_toon() {
  if (scr_stil()) return;
  bool boven = false;
  for (int i = scr_ctx->win_base; i < scr_ctx->win_count; ++i) {
    WINDOW* const win = venster_op(i);
    if (boven) touchwin(win);
    if (!is_wintouched(win)) continue;
    wnoutrefresh(win);
    boven = true;
  }
  wnoutrefresh(venster_nu());  // the cursor
  doupdate();
}

void scr_ververs() {
  if (ververs_regel < 0) return;
  const time_t nu = time(nullptr);
  if (ververs_regel > 0 && nu - scr_ctx->last_refresh < ververs_regel) return;
  scr_toon();
  scr_ctx->last_refresh = nu;
}

void scr_refresh_set(int n) {
  ververs_regel = n < 0 ? -1 : n;
  if (scr_ctx != nullptr) scr_ctx->last_refresh = time(nullptr);
}

int scr_refresh_get() { return ververs_regel; }

void scr_flush(int seconds) {
  if (scr_ctx != nullptr) scr_toon();
  const timespec duur{seconds, 0};
  if (seconds > 0) nanosleep(&duur, nullptr);
}

void scr_move(int row, int col) {
  if (scr_stil() || row < 1 || col < 1 || row > win_height() || col > win_width()) return;
  const int rand = scr_ctx->windows[scr_ctx->win_cur].bordered;
  wmove(venster_nu(), row - 1 + rand, col - 1 + rand);
}

void scr_attr(int attr) {
  if (scr_stil()) return;
  WINDOW* const win = venster_nu();
  if (has_colors()) {
    const bool accent = (attr & A_STREEP) != 0 && (attr & A_BALK) == 0;
    const int paar = scr_ctx->win_cur + (accent ? 15 : 1);
    wbkgdset(win, static_cast<chtype>(COLOR_PAIR(paar)) | ' ');
  }
  wattrset(win, attr);
}

int scr_print_tekst(int attr, int row, int col, const char* tekst) {
  if (scr_ctx == nullptr) return naar_uitvoer(tekst, "\n"), 0;
  if (scr_stil() || row < 1 || col < 1 || row > win_height() || col > win_width()) return 0;
  const int ruimte = win_width() - col + 1;
  const std::string_view stuk = std::string_view(tekst).substr(0, static_cast<size_t>(ruimte));
  scr_attr(attr);
  scr_move(row, col);
  scr_out(venster_nu(), stuk);
  scr_ververs();
  scr_attr(A_WAARDE);
  return static_cast<int>(stuk.size());
}

void scr_puts_tekst(const char* tekst) {
  if (scr_ctx == nullptr) return naar_uitvoer(tekst, "");
  if (scr_stil()) return;
  scr_out(venster_nu(), tekst);
  scr_ververs();
}

void scr_clreol(int row, int col) {
  if (scr_stil() || row < 1 || col < 1 || row > win_height() || col > win_width()) return;
  WINDOW* const win = venster_nu();
  scr_move(row, col);
  scr_attr(A_LABEL);
  wclrtoeol(win);
  if (scr_ctx->windows[scr_ctx->win_cur].bordered == 0) return;
  scr_attr(A_WAARDE);
  mvwaddch(win, row, getmaxx(win) - 1, ACS_VLINE);
  scr_attr(A_LABEL);
  scr_move(row, col);
}

void scr_clrbot(int row, int col) {
  if (scr_stil() || row < 1 || col < 1 || row > win_height() || col > win_width()) return;
  WINDOW* const win = venster_nu();
  scr_move(row, col);
  if (getcury(win) == 0 && getcurx(win) == 0) {
    scr_attr(A_LABEL);
    werase(win);
  } else {
    scr_clreol(row, col);
    for (int r = row + 1; r <= win_height(); ++r) scr_clreol(r, 1);
  }
  scr_print_tekst(A_LABEL, win_height(), win_width(), " ");
  scr_attr(A_WAARDE);
  scr_move(row, col);
}

int scr_print_all_tekst(int attr, int row, int col, const char* tekst) {
  int lengte;
  {
    const OpBasis basis;
    lengte = scr_print_tekst(attr, row, col, tekst);
  }
  if (scr_ctx != nullptr) scr_toon();
  return lengte;
}

void scr_pijl(int attr, int row, int col, bool rechts) {
  if (scr_stil() || row < 1 || col < 1 || row > win_height() || col > win_width()) return;
  scr_attr(attr & ~A_LIJN);
  scr_move(row, col);
  waddch(venster_nu(), rechts ? ACS_RARROW : ACS_LARROW);
  scr_ververs();
  scr_attr(A_WAARDE);
}

void scr_busy_on() {
  if (scr_stil() || !bezig_toegestaan) return;
  const char* const tekst = txt(T_EVEN_GEDULD);
  bezig_breedte = static_cast<int>(std::string_view(tekst).size());
  bezig_toon(tekst);
  bezig_staat = true;
}

void scr_busy_off() {
  if (scr_stil() || !bezig_toegestaan || !bezig_staat) return;
  bezig_toon(std::string(static_cast<size_t>(bezig_breedte), ' ').c_str());
  bezig_staat = false;
}

void scr_busy_suppress() {
  scr_busy_off();
  bezig_toegestaan = false;
}

void scr_busy_allow() {
  scr_busy_off();
  bezig_toegestaan = true;
}

void scr_beep() {
  if (!scr_stil()) beep();
}

void scr_cursor(bool aan) {
  if (!scr_stil()) curs_set(aan ? 1 : 0);
}
