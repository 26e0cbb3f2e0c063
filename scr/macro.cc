// Replaying recorded keys, and handing a replay on to the next program of the chain.
//
// A replay belongs to one user on one terminal: it ends when the operator types, when another user
// takes the session, and nothing of a state file is used unless all of it is sound.
#include "scr/macro.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "scr/teksten.h"
#include "scr/veld_intern.h"

MacroStaat macro_staat{true, false, 0, {}, {}};

namespace {

constexpr int POLLS = 3, POLL_MS = 1000;
constexpr int VENSTERS_NODIG = 4;  // of a macro screen, its box, a message and an abort
constexpr size_t MAP_LANGST = 64;

#pragma pack(push, 1)
struct StaatBestand {
  char map[160];
  int32_t speelt, aan;
  uint16_t gebruiker;
  MacRec rec;
};
#pragma pack(pop)
static_assert(sizeof(StaatBestand) == 406);

/// Empty when standard output is no terminal.
std::string staat_pad() {
  char tty[128];
  if (isatty(STDOUT_FILENO) == 0 || ttyname_r(STDOUT_FILENO, tty, sizeof tty) != 0) return {};
  const char* const streep = strrchr(tty, '/');
  return std::string("MAC") + (streep == nullptr ? tty : streep + 1) + ".TMP";
}

bool gaaf(const StaatBestand& s) {
  return strnlen(s.map, sizeof s.map) <= MAP_LANGST && s.speelt == 1 && s.aan == 1 &&
         s.rec.count > 0 && s.rec.count <= MACRO_TOETSEN && s.rec.user == s.gebruiker &&
         macro_activerend(s.rec.key) == s.rec.key;
}

void neem_over() {
  const std::string pad = staat_pad();
  if (pad.empty()) return;
  const int fd = open(pad.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return;
  StaatBestand s[2];  // the second one only tells a file that is too long
  const ssize_t gelezen = read(fd, s, sizeof s);
  close(fd);
  file_delete(pad.c_str());
  if (gelezen != static_cast<ssize_t>(sizeof *s) || !gaaf(*s))
    return scr_error(txt(T_MACRO_KAPOT), pad);
  macro_staat.gebruiker = s->gebruiker;
  macro_staat.rec = s->rec;
  memcpy(macro_staat.map, s->map, sizeof s->map);
  macro_staat.speelt = true;
}

/// Turns the record's keys round into a stack; Return is Enter.
void laad(const MacRec& rec) {
  macro_staat.rec = rec;
  uint16_t* const keys = macro_staat.rec.keys;
  std::reverse(keys, keys + rec.count);
  std::replace(keys, keys + rec.count, uint16_t{13}, static_cast<uint16_t>(TOETS_ENTER));
  macro_staat.speelt = true;
}

bool vraag_toevoegen(uint16_t key) {
  char naam[8];
  const std::string kop = str_format(txt(T_MACRO_NIET), key_name(key, naam));
  const std::string vraag = txt(T_MACRO_TOEVOEGEN);
  const int breed = static_cast<int>(std::max(kop.size(), vraag.size() + 2)) + 4;
  const MacroUit uit;
  const Venster venster(10, (scr_ctx->cols - breed) / 2 + 1, 4, breed, 2);
  win_title(nullptr);
  scr_print(A_WAARDE, 1, 2, "%s", kop);
  scr_print(A_LABEL, 2, 2, "%s", vraag);
  uint8_t ja = 0;
  INGAVE(2, 3 + static_cast<int>(vraag.size()), "b,/EI", &K_CANCEL, &ja);
  return !weg_toets() && ja != 0;
}

/// The key behind F2, -1 when none comes.
int tweede_toets() {
  scr_toon();
  int key = -1;
  for (int i = 0; key == -1 && i < POLLS; ++i) key = toets_lees(nullptr, POLL_MS);
  return key;
}

int voer_uit(int key) {
  if (key == TOETS_INS) {
    macro_record(0);
    return MACRO_GEEN_TOETS;
  }
  if (key == TOETS_DEL) {
    macro_delete();
    return MACRO_GEEN_TOETS;
  }
  return macro_run(key);
}

}  // namespace

void macro_begin() {
  macro_staat = {true, false, macro_staat.gebruiker, {}, {}};
  neem_over();
}

void macro_draag_over() {
  if (!macro_staat.speelt || macro_staat.rec.count <= 0) return;
  const std::string pad = staat_pad();
  if (pad.empty()) return;
  StaatBestand s{};
  memcpy(s.map, macro_staat.map, sizeof s.map);
  s.speelt = s.aan = 1;
  s.gebruiker = macro_staat.gebruiker;
  s.rec = macro_staat.rec;
  file_delete(pad.c_str());
  const int fd = open(pad.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd < 0) return;
  if (write(fd, &s, sizeof s) != static_cast<ssize_t>(sizeof s)) file_delete(pad.c_str());
  close(fd);
}

uint16_t macro_activerend(int key) {
  if (key >= 'a' && key <= 'z') key += 'A' - 'a';
  return (key >= 'A' && key <= 'Z') || (key >= '0' && key <= '9') ? static_cast<uint16_t>(key) : 0;
}

int macro_toets() {
  MacRec& rec = macro_staat.rec;
  if (!macro_is_playing() || rec.count <= 0) {
    macro_stop();
    rec.count = 0;
    return -1;
  }
  return rec.keys[--rec.count];
}

bool macro_duw(int key) {
  MacRec& rec = macro_staat.rec;
  if (!macro_is_playing() || rec.count >= MACRO_TOETSEN || key < 0) return false;
  rec.keys[rec.count++] = static_cast<uint16_t>(key);
  return true;
}

int macro_prefix() {
  if (scr_ctx->win_count + VENSTERS_NODIG > SCR_VENSTERS) {
    scr_error("%s", txt(T_TEVEEL_VENSTERS));
    return MACRO_GEEN_TOETS;
  }
  int rij, kol;
  scr_waar(&rij, &kol);
  int key;
  {
    const IngBewaar bewaar;
    key = tweede_toets();
    if (key == -1) key = macro_menu();
    key = key == 0 ? MACRO_GEEN_TOETS : voer_uit(key);
    scr_busy_off();
  }
  if (!veld_werk.bezig) {  // whoever waits without a field waits without a cursor
    scr_move(rij, kol);
    scr_cursor(false);
  }
  return key;
}

int macro_run(int key) {
  const uint16_t naam = macro_activerend(key);
  if (!macro_staat.aan || naam == 0) return 0;
  MacRec rec;
  MacroGelezen gelezen;
  {
    const MacroUit uit;
    gelezen = macro_lees(naam, &rec);
  }
  if (gelezen == MacroGelezen::ja) {
    laad(rec);
    const int eerste = macro_toets();
    return eerste == -1 ? MACRO_GEEN_TOETS : eerste;
  }
  if (gelezen == MacroGelezen::nee && vraag_toevoegen(naam)) macro_record(naam);
  return MACRO_GEEN_TOETS;
}

bool macro_is_playing() { return macro_staat.aan && macro_staat.speelt; }
void macro_stop() { macro_staat.speelt = false; }

void macro_user(int nummer) {
  const auto gebruiker = static_cast<uint16_t>(nummer);
  if (gebruiker != macro_staat.gebruiker) macro_stop();
  macro_staat.gebruiker = gebruiker;
}

void macro_on_set() {
  macro_staat.aan = true;
  macro_staat.map[0] = 0;
}

void macro_off_set() {
  macro_staat.aan = false;
  macro_staat.map[0] = 0;
}
