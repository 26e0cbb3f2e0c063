// One key in a field: a character that is stored, or one that moves or edits. A date of length 8 or
// 10 keeps its separators in place through all of it: the cursor never stands on one, and day and
// month keep their two places.
#include <algorithm>
#include <cstring>

#include "isam/base.h"
#include "scr/veld_intern.h"

namespace {

constexpr int CTRL_W = 23;
constexpr char GAT = '_';  // an emptied place of day or month

bool cijfer(char c) { return c >= '0' && c <= '9'; }
bool op_streep(int plaats) { return veld_werk.formaat.sjabloon() && (plaats == 2 || plaats == 5); }
int eind_van_inhoud() {
  return std::min(static_cast<int>(veld_inhoud().size()), veld_werk.formaat.lengte);
}
void niet_meer_vervangen() { scr_ctx->ing_result &= ~ING_VERVANG; }

/// Puts the cursor at a place, past a separator that stands there.
void ga_naar(int plaats) { veld_werk.cursor = op_streep(plaats) ? plaats + 1 : plaats; }

// Storing -----------------------------------------------------------------------------------------

void zet_over(int plaats, char c) {
  std::string tekst(veld_inhoud());
  while (static_cast<int>(tekst.size()) < plaats) {
    tekst += op_streep(static_cast<int>(tekst.size())) ? '-' : ' ';
  }
  const auto i = static_cast<size_t>(plaats);
  if (i < tekst.size()) {
    tekst[i] = c;
  } else {
    tekst += c;
  }
  veld_zet_tekst(tekst);
}

void voeg_in(int plaats, char c) {
  const VeldFormaat& f = veld_werk.formaat;
  std::string tekst(veld_inhoud());
  auto i = static_cast<size_t>(plaats);
  auto lengte = static_cast<size_t>(f.lengte);
  if (f.sjabloon()) {
    tekst = datum_zonder_streep(tekst);
    i -= plaats > 5 ? 2 : plaats > 2 ? 1 : 0;
    lengte -= 2;
  }
  tekst.insert(std::min(i, tekst.size()), 1, c);
  if (tekst.size() > lengte) tekst.resize(lengte);
  veld_zet_tekst(f.sjabloon() ? datum_met_streep(tekst) : tekst);
}

void bewaar(char c) {
  if (scr_ctx->insert_mode != 0) {
    voeg_in(veld_werk.cursor, c);
  } else {
    zet_over(veld_werk.cursor, c);
  }
  ga_naar(veld_werk.cursor + 1);
}

/// The first character over an untouched content replaces it. A date and hexadecimal text are typed
/// over in place, unless a date is to be counted from.
void begin_opnieuw(char c) {
  if ((scr_ctx->ing_result & ING_VERVANG) == 0) return;
  niet_meer_vervangen();
  const char letter = veld_werk.formaat.letter;
  const bool tellen = veld_werk.cursor == 0 && (c == '+' || c == '-');
  if ((letter != 'D' && letter != 'x' && letter != 'X') || tellen) veld_zet_tekst({});
}

/// "1-" is "01" in day and month; a "-" typed behind a separator that already stands is that one.
bool streep_in_datum() {
  const int p = veld_werk.cursor;
  if (p == 3 || p == 6) return true;
  if (p != 1 && p != 4) return false;
  const char eerste = veld_werk.tekst[p - 1];
  if (!cijfer(eerste)) return false;
  zet_over(p - 1, '0');
  zet_over(p, eerste);
  ga_naar(p + 1);
  return true;
}

/// A backslash in hexadecimal text: the next key stands in its two digits. False: nothing to store.
bool hexa_van_toets(char& c) {
  const int toets = veld_lees_toets();
  if (toets < 0 || toets > 255) {
    scr_error("%s", txt(T_ONGELDIGE_TOETS));
    return false;
  }
  const std::string cijfers = str_format("%02X", toets);
  c = cijfers[0];
  key_push(static_cast<unsigned char>(cijfers[1]));
  return true;
}

void teken(int code) {
  const VeldFormaat& f = veld_werk.formaat;
  if (veld_werk.cursor >= f.lengte) {
    scr_error("%s", txt(T_TIK_ENTER));
    return;
  }
  if (f.optie('U')) code = chr_upper(static_cast<uint8_t>(code));
  if (f.letter == 'x' && code == '\\') {
    if (veld_werk.cursor % 2 == 0) {
      key_allow(code);
    } else {
      key_deny(code);
    }
  }
  auto c = static_cast<char>(code);
  if (!key_allowed(code)) {
    scr_error("<%c> %s", c, txt(T_ONGELDIG_TEKEN));
    return;
  }
  if ((f.letter == 'x' || f.letter == 'X') && c == '\\' && !hexa_van_toets(c)) return;
  begin_opnieuw(c);
  if (f.letter == 'b' && c == '+') c = txt(T_JA)[0];
  if (f.letter == 'b' && c == '-') c = txt(T_NEE)[0];
  if (f.sjabloon() && c == '-' && streep_in_datum()) return;
  bewaar(c);
}

// Editing -----------------------------------------------------------------------------------------

/// Day and month close up inside their own two places; behind them the date is plain text.
void verwijder_uit_datum(std::string& tekst, int plaats) {
  const auto p = static_cast<size_t>(plaats);
  const size_t eind = p < 2 ? 2 : p < 5 ? 5 : 0;
  if (eind == 0 || tekst.size() < eind) {
    tekst.erase(p, 1);
  } else {
    tekst.erase(p, 1);
    tekst.insert(eind - 1, 1, GAT);
  }
  while (!tekst.empty() &&
         (tekst.back() == GAT ||
          (tekst.back() == '-' && op_streep(static_cast<int>(tekst.size()) - 1)))) {
    tekst.pop_back();
  }
}

void verwijder(int plaats) {
  if (plaats < 0 || plaats >= static_cast<int>(veld_inhoud().size())) return;
  std::string tekst(veld_inhoud());
  if (veld_werk.formaat.sjabloon()) {
    verwijder_uit_datum(tekst, plaats);
  } else {
    tekst.erase(static_cast<size_t>(plaats), 1);
  }
  veld_zet_tekst(tekst);
  niet_meer_vervangen();
}

void t_home() {
  if (veld_werk.cursor == 0) {
    veld_herstel();
    scr_ctx->ing_result = 0;
    return;
  }
  veld_werk.cursor = 0;
  veld_werk.schuif = 0;
  niet_meer_vervangen();
}

void t_eind() {
  if (veld_werk.cursor != eind_van_inhoud()) niet_meer_vervangen();
  ga_naar(eind_van_inhoud());
}

void t_links() {
  if (veld_werk.cursor == 0) return;
  --veld_werk.cursor;
  if (op_streep(veld_werk.cursor)) --veld_werk.cursor;
  niet_meer_vervangen();
}

void t_rechts() {
  if (veld_werk.cursor >= eind_van_inhoud()) return;
  ga_naar(veld_werk.cursor + 1);
  niet_meer_vervangen();
}

void t_invoegen() { scr_ctx->insert_mode = scr_ctx->insert_mode == 0 ? 1 : 0; }

void t_verwijder() { verwijder(veld_werk.cursor); }

void t_terug() {
  if (veld_werk.cursor == 0) {
    veld_zet_tekst({});
    niet_meer_vervangen();
    return;
  }
  --veld_werk.cursor;
  if (op_streep(veld_werk.cursor)) --veld_werk.cursor;
  verwijder(veld_werk.cursor);
}

void t_niets() {}

/// Keys that move and edit. `nodig` must be allowed in the field (a field of one place has no
/// cursor to move); 0: the key always works.
struct Bewerking {
  int toets, nodig;
  void (*doe)();
};
constexpr Bewerking BEWERKINGEN[] = {
    {TOETS_HOME, TOETS_HOME, t_home},
    {TOETS_END, 0, t_eind},
    {TOETS_LEFT, TOETS_LEFT, t_links},
    {TOETS_RIGHT, TOETS_RIGHT, t_rechts},
    {TOETS_INS, TOETS_INS, t_invoegen},
    {TOETS_DEL, TOETS_DEL, t_verwijder},
    {TOETS_BACK, TOETS_BACK, t_terug},
    {8, TOETS_BACK, t_terug},
    {CTRL_W, 0, t_niets},
};

void bewerk(int toets) {
  for (const Bewerking& b : BEWERKINGEN) {
    if (b.toets != toets) continue;
    if (b.nodig != 0 && !key_allowed(b.nodig)) break;
    b.doe();
    return;
  }
  scr_error("%s", txt(T_ONGELDIGE_TOETS));
}

}  // namespace

void veld_herstel() {
  veld_zet_tekst(veld_werk.oud_tekst);
  veld_werk.waarde = veld_werk.oud_waarde;
}

void veld_toets(int toets) {
  if (toets >= 32 && toets <= 255) {
    teken(toets);
  } else {
    bewerk(toets);
  }
  if (veld_werk.cursor >= veld_werk.formaat.lengte && veld_werk.formaat.optie('A')) {
    veld_werk.enter_gepland = true;
  }
}
