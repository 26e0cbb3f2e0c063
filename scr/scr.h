// The terminal toolkit: one screen context, windows, fields, menus, record browser.
//
// Rows and columns are 1-based in the current window, inside the border when it has one. Attributes
// are ncurses bits. Text is code page 850, one byte a cell; scr/uit turns it into what the terminal
// shows and scr/toets turns what is typed back into bytes. Nobody else calls ncurses.
#pragma once

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <span>
#include <string>

#include "isam/formaat.h"

// Attributes and keys -----------------------------------------------------------------------------

inline constexpr int A_LABEL = 0x100000;   // dim: labels and prompts
inline constexpr int A_WAARDE = 0x200000;  // bold: values, the default
inline constexpr int A_BALK = 0x40000;     // reverse: bars
inline constexpr int A_STREEP = 0x20000;   // underline
inline constexpr int A_MERK = 0x220000;    // bold underlined: the marked letter of a choice
inline constexpr int A_LIJN = 0x400000;    // line drawing characters

inline constexpr int TOETS_ENTER = 10;
inline constexpr int TOETS_ESC = 27;
inline constexpr int TOETS_DOWN = 258, TOETS_UP = 259, TOETS_LEFT = 260, TOETS_RIGHT = 261;
inline constexpr int TOETS_HOME = 262, TOETS_BACK = 263, TOETS_DEL = 330, TOETS_INS = 331;
inline constexpr int TOETS_PGDN = 338, TOETS_PGUP = 339, TOETS_CANCEL = 355, TOETS_END = 360;
inline constexpr int TOETS_EXIT = 361, TOETS_HELP = 363;
inline constexpr int TOETS_F1 = 265, TOETS_F2 = 266, TOETS_F11 = 275;
inline constexpr int SCR_TOETSEN = 30;  // entries of key_table
inline constexpr int SCR_VENSTERS = 15;

/// The input record: what the next field accepts. Callers set it before INGAVE; it counts once.
struct IngRec {
  uint8_t allowed[64];  // one bit per key code 0 to 511
  double min, max;      // min above max: no range given
  char* text;
  uint32_t validate;  // one bit per key_table index: keys that must pass the checks
  int text_size;
};

/// The working state of the field in hand (scr/veld_*).
struct IngVeld {
  int row, col, length, precision;
  char letter;
  char opties[21];
  bool numeriek, verborgen, scrollt;
  int zichtbaar;
  void* variabele;
};

struct ScrTerminal {
  char name[4];
  void* scherm;  // SCREEN*
};
struct ScrVenster {
  void* win;  // WINDOW*
  int32_t terminal, base, colour;
  uint8_t bordered;
};

/// The one screen context. The screen counts as open while scr_ctx is not null.
struct ScrCtx {
  int32_t lines, cols;
  time_t last_refresh;
  int32_t output_off;  // not zero: every output call returns at once
  int32_t insert_mode;
  volatile int32_t pending_key;  // planted by a signal handler; 0 none
  int32_t key_table[SCR_TOETSEN];
  ScrTerminal terminals[5];
  int32_t term_count, term_cur;
  ScrVenster windows[SCR_VENSTERS];
  int32_t win_count, win_cur, win_base, colour_next;
  IngRec* ing;
  int32_t ing_result;  // bits of the last field, see ING_*
  int32_t last_key;    // the key that ended the last field or read
  int32_t money_decimals;
  IngVeld veld;
  char message[136];  // what stands on the bottom line
};
extern ScrCtx* scr_ctx;

#define K_CANCEL (scr_ctx->key_table[0])
#define K_TAB (scr_ctx->key_table[1])
#define K_HELP (scr_ctx->key_table[2])
#define K_UP (scr_ctx->key_table[3])
#define K_DOWN (scr_ctx->key_table[4])
#define K_PGUP (scr_ctx->key_table[5])
#define K_PGDN (scr_ctx->key_table[6])
#define K_ESC (scr_ctx->key_table[7])
#define K_BTAB (scr_ctx->key_table[8])
#define K_F1 (scr_ctx->key_table[12])
#define K_F2 (scr_ctx->key_table[13])
#define K_F3 (scr_ctx->key_table[14])
#define K_F4 (scr_ctx->key_table[15])
#define K_F5 (scr_ctx->key_table[16])
#define K_F6 (scr_ctx->key_table[17])
#define K_F7 (scr_ctx->key_table[18])
#define K_F8 (scr_ctx->key_table[19])
#define K_F9 (scr_ctx->key_table[20])
#define K_F10 (scr_ctx->key_table[21])
#define K_F11 (scr_ctx->key_table[22])
#define K_F12 (scr_ctx->key_table[23])

inline constexpr int ING_VERVANG = 0x01;  // the next typed character replaces the content
inline constexpr int ING_ANDERS = 0x04;   // the value has changed
inline constexpr int ING_LEEG = 0x08;     // the field is empty at the end
inline constexpr int ING_FOUT = 0x80;     // refused; editing goes on

/// True when the last field or read ended on cancel or escape.
inline bool weg_toets() { return scr_ctx->last_key == K_CANCEL || scr_ctx->last_key == K_ESC; }

// Set-up and stop ---------------------------------------------------------------------------------

void SCRINIT();
void scr_close();
[[noreturn]] void scr_exit(int status);
/// Makes the terminal "" (25x80), "-w" (25x132) or "-l" (43x80) current, opening it when new; a
/// terminal that cannot be had falls back on "".
void scr_term_open(const char* naam);

// Hooks upward ------------------------------------------------------------------------------------

struct ScrHooks {
  void (*afbreken)();               // called by scr_abort before the report
  void (*programma_info)();         // K_F10 in a menu: the program-information window
  void (*kaal)(const char* tekst);  // scr_abort without a screen: replaces report and wait
};
extern ScrHooks scr_hooks;

// Windows -----------------------------------------------------------------------------------------

void win_open(int row, int col, int height, int width, int colour_set);
inline void win_open1(int r, int c, int h, int w) { win_open(r, c, h, w, 1); }  // work windows
inline void win_open2(int r, int c, int h, int w) { win_open(r, c, h, w, 2); }  // small lists
inline void win_open3(int r, int c, int h, int w) { win_open(r, c, h, w, 3); }  // abort, interrupt
inline void win_open4(int r, int c, int h, int w) { win_open(r, c, h, w, 4); }  // help
inline void win_open5(int r, int c, int h, int w) { win_open(r, c, h, w, 5); }
inline void win_open6(int r, int c, int h, int w) { win_open(r, c, h, w, 6); }
inline void win_open7(int r, int c, int h, int w) { win_open(r, c, h, w, 7); }
void win_close();
void win_title_tekst(const char* tekst);  // null: the border only
inline void win_title(std::nullptr_t) { win_title_tekst(nullptr); }
template <class... A>
void win_title(const char* fmt, A... a) {
  win_title_tekst(str_format(fmt, a...).c_str());
}
/// Closes its window at the end of the scope.
struct Venster {
  explicit Venster(int r, int c, int h, int w, int set = 1) { win_open(r, c, h, w, set); }
  ~Venster() { win_close(); }
  Venster(const Venster&) = delete;
  Venster& operator=(const Venster&) = delete;
};
int win_height();  // usable rows and columns of the current window
int win_width();

// Output; all return at once while output_off is set ----------------------------------------------

void scr_move(int row, int col);
void scr_attr(int attr);
/// Prints cut at the right edge; returns the length printed, 0 outside the window.
int scr_print_tekst(int attr, int row, int col, const char* tekst);
template <class... A>
int scr_print(int attr, int row, int col, const char* fmt, A... a) {
  return scr_print_tekst(attr, row, col, str_format(fmt, a...).c_str());
}
void scr_puts_tekst(const char* tekst);  // at the cursor, no cut
template <class... A>
void scr_puts(const char* fmt, A... a) {
  scr_puts_tekst(str_format(fmt, a...).c_str());
}
void scr_clreol(int row, int col);
void scr_clrbot(int row, int col);
int scr_print_all_tekst(int attr, int row, int col, const char* tekst);
template <class... A>
int scr_print_all(int attr, int row, int col, const char* fmt, A... a) {
  return scr_print_all_tekst(attr, row, col, str_format(fmt, a...).c_str());
}
/// One line drawing character ('>' or '<' arrow) with an attribute, at a place.
void scr_pijl(int attr, int row, int col, bool rechts);
void scr_error_tekst(const char* tekst);  // the message line; beeps unless empty
template <class... A>
void scr_error(const char* fmt, A... a) {
  scr_error_tekst(str_format(fmt, a...).c_str());
}
void scr_flush(int seconds);
void scr_refresh_set(int n);
int scr_refresh_get();
void scr_busy_on();
void scr_busy_off();
void scr_busy_suppress();
void scr_busy_allow();
void scr_beep();
void scr_cursor(bool aan);
bool scr_kleuren();  // the current terminal has colours
/// Switches the terminal's printer port: what goes to standard output while it is on is printed,
/// and output calls draw nothing. False when the terminal has none.
bool scr_poort(bool aan);
/// The shared scratch line: what a report head shows as its centre when nobody writes it.
extern char scr_kladregel[256];
/// The shared scratch buffer of line formatters (browser callbacks).
extern char scr_klad[32768];

// Header bar and messages -------------------------------------------------------------------------

/// Mode 'C' clears the whole screen first, 'E' row 1 only.
void hdr_line_tekst(char mode, const char* tekst);
template <class... A>
void hdr_line(char mode, const char* fmt, A... a) {
  hdr_line_tekst(mode, str_format(fmt, a...).c_str());
}
void hdr_title(const char* tekst);
void hdr_repaint();  // the bar as it last stood
void msg_box(int kind, const char* t1, const char* t2, const char* t3);
inline void msg_info(const char* a, const char* b = nullptr, const char* c = nullptr) {
  msg_box(1, a, b, c);
}
inline void msg_fout(const char* a, const char* b = nullptr, const char* c = nullptr) {
  msg_box(2, a, b, c);
}
inline void msg_waarschuw(const char* a, const char* b = nullptr, const char* c = nullptr) {
  msg_box(3, a, b, c);
}
void scr_enter(int row, int col);  // "<ENTER> voor vervolg", waits for Enter
/// FFLASH on this screen (isam's box hook).
int scr_doos(int optie, int soort, const char* titel, const char* tekst);
[[noreturn]] void scr_abort_tekst(const char* tekst);
template <class... A>
[[noreturn]] void scr_abort(const char* fmt, A... a) {
  scr_abort_tekst(str_format(fmt, a...).c_str());
}

// Keys --------------------------------------------------------------------------------------------

int key_read_raw(bool wachten);  // one decoded key; -1 when none and not waiting
int key_read(void* window);      // push-back stack, then macro, then the terminal
bool key_pending();
void key_push(int key);
const char* key_name(int key, char* buffer);
/// A key within `ms` milliseconds, or 0; the key is pushed back.
bool key_wait(int ms);

bool scr_interrupted();  // polls for cancel, asks, remembers the answer
void scr_intr_on();
void scr_intr_off();
void scr_intr_reset();
bool scr_intr_state();

// Macros: keys recorded under a letter or digit, played behind F2 in any field that has no use for
// F2 itself. They lie in the table MACRO, in the directory of the variable MACRO or the current
// one.
void macro_user(int nummer);  // whose macros; a replay of another user's ends
void macro_on_set();          // both forget where the table is
void macro_off_set();
bool macro_is_playing();
void macro_stop();
/// Plays the macro of a key: the first of its keys, 0 when macros are off or this key carries none,
/// -2 when nothing came of it (an unknown macro is asked about, and recorded).
int macro_run(int key);
void macro_record(int key);  // 0: asks for the key first
int macro_menu();            // 0 none, TOETS_DEL delete, TOETS_INS record, else the macro to run
void macro_delete();

// Fields ------------------------------------------------------------------------------------------

void key_allow(int code);
void key_deny(int code);
bool key_allowed(int code);
bool key_is_exit(int code);
bool key_validates(int code);
void key_validate_on(int code);
void key_validate_off(int code);
IngRec* ing_new(int grootte = 81);  // a record that copies the current one
void ing_restore(const IngRec* bewaard);
void ing_free(IngRec*);
/// Protects the field set-up (and its work areas) of the caller over a screen of one's own.
struct IngBewaar {
  IngBewaar();
  ~IngBewaar();
  IngBewaar(const IngBewaar&) = delete;
  IngBewaar& operator=(const IngBewaar&) = delete;
  void* staat;
};

/// One argument behind the format of INGAVE: a key inside scr_ctx, or the variable.
struct IngArg {
  void* adres;
  uint8_t breedte;  // bytes of an integer or double; 1 for characters
  char soort;       // 'i' integer, 'f' double, 'c' characters
};
inline IngArg ing_arg(int32_t* p) { return {p, 4, 'i'}; }
inline IngArg ing_arg(uint32_t* p) { return {p, 4, 'i'}; }
inline IngArg ing_arg(int16_t* p) { return {p, 2, 'i'}; }
inline IngArg ing_arg(uint16_t* p) { return {p, 2, 'i'}; }
inline IngArg ing_arg(int8_t* p) { return {p, 1, 'i'}; }
inline IngArg ing_arg(uint8_t* p) { return {p, 1, 'i'}; }
inline IngArg ing_arg(double* p) { return {p, 8, 'f'}; }
inline IngArg ing_arg(char* p) { return {p, 1, 'c'}; }

bool ingave_kern(int row, int col, const char* fmt, std::span<const IngArg> args);
/// INGAVE(row, col, format, &K_CANCEL, &K_F5, &variable): one field. Non-zero when the value
/// changed; the key that ended it stands in last_key. See scr/veld_formaat.h for the format
/// language.
template <class... A>
bool INGAVE(int row, int col, const char* fmt, A*... args) {
  const IngArg lijst[] = {ing_arg(args)...};
  return ingave_kern(row, col, fmt, lijst);
}
int scr_getkey_kern(std::span<int32_t* const> toetsen, const char* tekens);
/// Waits for one of the keys, or one of the characters of the last argument.
inline int scr_getkey(const char* tekens) { return scr_getkey_kern({}, tekens); }
template <class... K>
int scr_getkey(const char* tekens, int32_t* eerste, K*... rest) {
  int32_t* const lijst[] = {eerste, rest...};
  return scr_getkey_kern(lijst, tekens);
}
/// Yes or no: the text may begin with "[+]" or "[-]" for a default; empty asks "Akkoord". 0 on
/// cancel.
bool scr_confirm_tekst(int row, int col, const char* tekst);
template <class... A>
bool scr_confirm(int row, int col, const char* fmt, A... a) {
  return scr_confirm_tekst(row, col, str_format(fmt, a...).c_str());
}

// Menus -------------------------------------------------------------------------------------------

void menu_begin(int level);
void menu_width(int breedte);  // 35 (default) or 20
void menu_default(void (*op)());
void menu_rubric(bool rights, const char* title);
void menu_item(bool rights, bool available, const char* title, void (*op)());
void menu_gap();
void menu_column();
int menu_run();                                           // 1 when an operation was run
void scr_amp_print(int row, int col, const char* tekst);  // "&" marks the hot letter

void popup_begin(const char* (*text_of)(int item));
void popup_add(int item);  // 0 to 31
void popup_remove(int item);
bool popup_has(int item);
bool popup_only(int item);
void popup_default(int item);
void popup_number(int result, uint16_t* variabele, int low, int high);
int popup_run(int row, int col);  // the item, or -1: look at last_key

// Pull-down menus (scr/tr_menu) -------------------------------------------------------------------

struct TrMenu;
inline constexpr int TR_BOX = 1, TR_BAR = 2, TR_TIJD = 32;  // menu flags
inline constexpr int TR_AAN = 1, TR_GROEP = 2;              // item flags
TrMenu* tr_menu_new(int flags, int row, int col, int width, const char* title);
void tr_menu_timeout(int n);
bool tr_menu_add(TrMenu*, int parent_id, const char* text, int id, int item_flags, int key2,
                 void* data);
bool tr_menu_enable(TrMenu*, int id, int state);  // 0 off, 1 on, 3 toggle
void tr_menu_rename(TrMenu*, int id, const char* text);
int tr_menu_flags(TrMenu*, int id);  // menu flags + 256 * item flags; 65535 unknown
/// Id of the item whose hot letter or second key this is, 0 none (headings and disabled items too).
int tr_menu_toets(TrMenu*, int key);
int tr_menu_run(TrMenu*, int first_id);  // the id chosen, -1 none
void tr_menu_size(TrMenu*, int rows, int cols);
void tr_menu_free(TrMenu*);

// Record browser ----------------------------------------------------------------------------------

/// One browse. The callbacks do all the reading; `current` identifies a record by any 32-bit value.
struct BrwRec {
  bool (*move)(BrwRec*, int n);  // to `current`, then n on; `current` follows each step
  void (*search)(BrwRec*);       // prompt and INGAVE on the bottom row, positions on a value
  void (*heading)(BrwRec*);      // column headings in row 1; may be null
  const char* (*line)(BrwRec*);  // text of the record now read
  uint32_t current;              // -1 at creation
  uint8_t no_cursor, multi, inverted;
  int32_t phase;                    // 0 before the run; then results are being delivered
  int32_t row, col, height, width;  // 0: work out
  int32_t line_row;
  int32_t draw_mode;  // 0 move only, 1 redraw one back, 2 redraw; 4, 8, 16 the same
  std::string title;
  uint32_t* marks;  // in marking order
  int32_t mark_count, mark_size;
  void* data;  // the caller's own
};
BrwRec* brw_new(bool (*move)(BrwRec*, int), void (*search)(BrwRec*), void (*heading)(BrwRec*),
                const char* (*line)(BrwRec*));
/// First call runs the screen; each call gives the next chosen record in `current`, 0 at the end.
int brw_run(BrwRec*, int option);
void brw_free(BrwRec*);
bool brw_marked(const BrwRec*, uint32_t id);
int brw_mark_add(BrwRec*, uint32_t id);  // false and a message without memory
/// Row of the search field, the last inside the border but for one blank row above it.
int brw_search_row();
/// "%*s%-20.20s%*s" formats of columns: `before` blanks, a text `width` wide (negative: left),
/// `after`.
std::string fmt_col(int before, int width, int after);
