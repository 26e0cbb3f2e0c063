// Keys: from what the terminal sends to one code a key.
//
// Codes up to 255 are bytes of code page 850, assembled here from what is typed; from 256 on they
// are function keys; 0 is a key that means nothing here. Reads go through wgetch, never wget_wch:
// one byte that is no UTF-8 would make that swallow the keys behind it.
#include <langinfo.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <cwchar>
#include <utility>
#include <vector>

#include "isam/base.h"
#include "scr/macro.h"
#include "scr/scr_curses.h"

namespace {

constexpr int GEEN = -1;
constexpr int VERVOLG_MS = 50;       // between the bytes of one character
constexpr size_t STAPEL_MAX = 1024;  // callers push a few; a runaway loop is cut off
constexpr int FOUTEN_MAX = 3;

std::vector<int> stapel;
int vooruit = GEEN;  // read one too far

/// One read: a key of a signal handler goes before everything.
int lees_een(WINDOW* win, int ms) {
  if (scr_ctx->pending_key == 0) {
    if (vooruit != GEEN) return std::exchange(vooruit, GEEN);
    wtimeout(win, ms);
    errno = 0;
    const int key = wgetch(win);
    if (scr_ctx->pending_key == 0) return key;
  }
  const int key = scr_ctx->pending_key;
  scr_ctx->pending_key = 0;
  return key;
}

/// The rest of a character of several bytes; a byte that does not belong to it is kept for later.
int lees_teken(WINDOW* win, int eerste) {
  const int vervolg = eerste < 0xE0 ? 1 : eerste < 0xF0 ? 2 : 3;
  char32_t punt = static_cast<char32_t>(eerste & (0x3F >> vervolg));
  for (int i = 0; i < vervolg; ++i) {
    const int key = lees_een(win, VERVOLG_MS);
    if (key < 0x80 || key > 0xBF) {
      vooruit = key;
      return 0;
    }
    punt = punt << 6 | static_cast<char32_t>(key & 0x3F);
  }
  return cp850_byte(punt);
}

int lees_accent(WINDOW* win, int byte) {
  if (std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0)
    return byte >= 0xC2 && byte <= 0xF4 ? lees_teken(win, byte) : 0;
  const wint_t teken = btowc(byte);
  return teken == WEOF ? 0 : cp850_byte(static_cast<char32_t>(teken));
}

/// Behind an Escape: a sequence that no key is known for is taken in whole. Its letters would be
/// typed into the next field.
int lees_escape(WINDOW* win) {
  const int soort = lees_een(win, 0);
  if (soort != '[' && soort != 'O') {
    vooruit = soort;
    return TOETS_ESC;
  }
  for (int i = 0; i < 32; ++i) {
    const int key = lees_een(win, VERVOLG_MS);
    if (key == GEEN && i == 0) {
      vooruit = soort;
      return TOETS_ESC;
    }
    if (key < 0x20 || key > 0x7E) {
      vooruit = key;
      return 0;
    }
    if (soort == 'O' || (key >= 0x40 && !(i == 0 && key == '['))) return 0;
  }
  return 0;
}

int ontcijfer(WINDOW* win, int key) {
  if (key == TOETS_ESC) return lees_escape(win);
  if (key == 127) return TOETS_BACK;
  if (key == KEY_ENTER) return TOETS_ENTER;
  return key >= 0x80 && key <= 0xFF ? lees_accent(win, key) : key;
}

bool valt_weg(int key) { return key == 17 || key == 19 || key == KEY_RESIZE || key < -1; }

struct KeyNaam {
  int key;
  const char* naam;
};
constexpr KeyNaam NAMEN[] = {{10, "RTRN"},          {27, "ESC"},          {9, "TAB"},
                             {32, "SPACE"},         {8, "BACK"},          {TOETS_BACK, "BACK"},
                             {TOETS_DOWN, "DOWN"},  {TOETS_UP, "UP"},     {TOETS_LEFT, "LEFT"},
                             {TOETS_RIGHT, "RGHT"}, {TOETS_HOME, "HOME"}, {TOETS_DEL, "DEL"},
                             {TOETS_INS, "INS"},    {TOETS_PGDN, "PGDN"}, {TOETS_PGUP, "PGUP"},
                             {353, "SH_TAB"},       {TOETS_END, "END"}};

struct Volgorde {
  const char* tekst;
  int key;
};
constexpr Volgorde VOLGORDEN[] = {
    {"\033[A", KEY_UP},     {"\033OA", KEY_UP},    {"\033[B", KEY_DOWN},   {"\033OB", KEY_DOWN},
    {"\033[C", KEY_RIGHT},  {"\033OC", KEY_RIGHT}, {"\033[D", KEY_LEFT},   {"\033OD", KEY_LEFT},
    {"\033[H", KEY_HOME},   {"\033OH", KEY_HOME},  {"\033[1~", KEY_HOME},  {"\033[F", KEY_END},
    {"\033OF", KEY_END},    {"\033[4~", KEY_END},  {"\033OP", KEY_F(1)},   {"\033OQ", KEY_F(2)},
    {"\033OR", KEY_F(3)},   {"\033OS", KEY_F(4)},  {"\033[11~", KEY_F(1)}, {"\033[12~", KEY_F(2)},
    {"\033[13~", KEY_F(3)}, {"\033[14~", KEY_F(4)}};

}  // namespace

void toets_begin() {
  stapel.clear();
  vooruit = GEEN;
}

bool toets_in_stapel() { return !stapel.empty(); }

void toets_leer() {
  for (const Volgorde& v : VOLGORDEN) define_key(v.tekst, v.key);
}

int toets_lees(void* window, int ms) {
  WINDOW* const win = window == nullptr ? venster_nu() : static_cast<WINDOW*>(window);
  if (scr_ctx == nullptr || win == nullptr) return GEEN;
  if (ms < 0) scr_toon();
  for (int fouten = 0;;) {
    const int key = lees_een(win, ms);
    if (key == ERR) {
      if (ms >= 0) return GEEN;
      if (errno != EINTR && ++fouten >= FOUTEN_MAX) scr_exit(1);  // the line is gone
      continue;
    }
    fouten = 0;
    if (!valt_weg(key)) return ontcijfer(win, key);
  }
}

int key_read_raw(bool wachten) { return toets_lees(nullptr, wachten ? -1 : 0); }

bool key_pending() {
  if (!stapel.empty()) return true;
  const int key = toets_lees(nullptr, 0);
  if (key == GEEN) return false;
  stapel.push_back(key);
  return true;
}

void key_push(int key) {
  if (!macro_duw(key) && stapel.size() < STAPEL_MAX) stapel.push_back(key);
}

int key_read(void* window) {
  while (scr_ctx != nullptr) {
    key_pending();
    int key;
    if (!stapel.empty()) {
      key = stapel.back();
      stapel.pop_back();
      if (macro_is_playing() && (key == TOETS_CANCEL || key == TOETS_ESC)) {
        macro_stop();
        return key;
      }
    } else if (key = macro_toets(); key == GEEN) {
      key = toets_lees(window, -1);
    }
    if (scr_ctx->pending_key != 0) {
      key = scr_ctx->pending_key;
      scr_ctx->pending_key = 0;
    }
    if (key == TOETS_F2 && macro_staat.aan && !key_allowed(TOETS_F2)) key = macro_prefix();
    if (!valt_weg(key)) return key;
  }
  return GEEN;
}

bool key_wait(int ms) {
  if (!stapel.empty()) return true;
  scr_toon();
  const int key = toets_lees(nullptr, std::max(ms, 0));
  if (key == GEEN) return false;
  stapel.push_back(key);
  return true;
}

const char* key_name(int key, char* buffer) {
  buffer[0] = 0;
  if (key >= KEY_F(1) && key <= KEY_F(12)) {
    if (key != KEY_F(2)) str_printf(buffer, 8, "F%-2d", key - KEY_F(0));
    return buffer;
  }
  const auto* rij = std::find_if(std::begin(NAMEN), std::end(NAMEN),
                                 [key](const KeyNaam& n) { return n.key == key; });
  if (rij != std::end(NAMEN)) return std::strcpy(buffer, rij->naam);
  buffer[0] = static_cast<char>(key);
  buffer[1] = 0;
  return buffer;
}

int toets_eerste_byte(int key) {
  const char* naam = key == TOETS_CANCEL ? "kcan" : key == TOETS_EXIT ? "kext" : "khlp";
  const char* s = scr_ctx == nullptr ? nullptr : tigetstr(naam);
  return s == nullptr ? 0 : static_cast<uint8_t>(*s);
}
