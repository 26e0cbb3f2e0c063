// Keyboard macros, inside the toolkit: the state of a replay and the file of recorded keys.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "scr/scr_intern.h"

inline constexpr int MACRO_TOETSEN = 100;
inline constexpr int MACRO_GEEN_TOETS = -2;  // key_read goes on waiting

#pragma pack(push, 1)
struct MacRec {  // 236 bytes, as in MACRO.TXT
  uint16_t key;  // letter in upper case or digit
  uint16_t user;
  int16_t count;
  uint16_t keys[MACRO_TOETSEN];
  char description[30];
};
#pragma pack(pop)
static_assert(sizeof(MacRec) == 236 && offsetof(MacRec, description) == 206);

struct MacroStaat {
  bool aan, speelt;
  uint16_t gebruiker;
  MacRec rec;     // while it plays: the keys left, the next one last
  char map[160];  // directory of the file with its "/"; empty: not looked up yet
};
extern MacroStaat macro_staat;

/// Fresh state at the opening of the screen; a replay that the program before left is taken over.
void macro_begin();
/// Leaves the keys that have not been played to the next program on this terminal.
void macro_draag_over();

/// Keeps macros off for the length of a scope.
struct MacroUit {
  MacroUit() : was(macro_staat.aan) { macro_staat.aan = false; }
  ~MacroUit() { macro_staat.aan = was; }
  MacroUit(const MacroUit&) = delete;
  MacroUit& operator=(const MacroUit&) = delete;
  bool was;
};

/// The next key of the replay, -1 when none plays.
int macro_toets();
/// Takes a pushed-back key on top of the keys of a replay; false when none plays or it is full.
bool macro_duw(int key);
/// F2 in a field: the key that comes of it.
int macro_prefix();

/// Upper case of a letter, or a digit; 0 for a key that cannot carry a macro.
uint16_t macro_activerend(int key);

// The file (scr/macro_bestand). It is opened for each of these and closed behind it; one that
// cannot be used is named on the message line.
enum class MacroGelezen { ja, nee, mislukt };
MacroGelezen macro_lees(uint16_t key, MacRec* rec);  // of the user in hand
bool macro_schrijf(MacRec rec);
bool macro_wis(uint16_t key);
/// All macros of the user in hand, in order of key.
std::vector<MacRec> macro_alle();
