// The choice line "Uw keuze" with a few lettered items, and the "&" that marks a hot letter.
//
// Items are bits of one word; what an item is called comes from the caller. The keys that the
// caller allowed before popup_run hold for every read of the line, since a field uses them up.
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "isam/base.h"
#include "scr/scr.h"
#include "scr/teksten.h"

namespace {

constexpr int ITEMS = 32;

struct PopupKeuze {
  const char* (*text_of)(int item);
  uint32_t items;
  int standaard;  // -1: none
  bool getal;     // a number may be typed too
  int resultaat;
  uint16_t* variabele;
  int laag, hoog;
};
PopupKeuze popup{};

/// A line being asked: where the field stands and how far a number has come.
struct PopupRegel {
  int row, kolom;
  bool kort;  // letters only, the items on request
  std::string formaat;
  int getal = 0, plaats = 0;
};

bool bit(int item) { return item >= 0 && item < ITEMS && (popup.items >> item & 1U) != 0; }

std::string item_tekst(int item) {
  const char* const tekst = popup.text_of == nullptr ? nullptr : popup.text_of(item);
  return tekst == nullptr ? "" : tekst;
}

/// The hot letter of an item; 0 for none. A ']' would end the character set of the field.
char item_letter(int item) {
  const std::string tekst = item_tekst(item);
  const size_t en = tekst.find('&');
  if (en == std::string::npos || en + 1 >= tekst.size()) return 0;
  const auto letter = static_cast<char>(chr_upper(static_cast<uint8_t>(tekst[en + 1])));
  return letter == ']' ? '\0' : letter;
}

int item_van_letter(char letter) {
  for (int i = 0; i < ITEMS; ++i) {
    if (bit(i) && item_letter(i) == letter) return i;
  }
  return -1;
}

/// The letters of all items, '^' last: in front it would turn the set into what is denied.
std::string alle_letters() {
  std::string letters;
  bool dakje = false;
  for (int i = 0; i < ITEMS; ++i) {
    const char letter = bit(i) ? item_letter(i) : '\0';
    if (letter == '^')
      dakje = true;
    else if (letter != 0 && letters.find(letter) == std::string::npos)
      letters += letter;
  }
  if (popup.getal) letters += "0123456789";
  if (dakje) letters += '^';
  return letters;
}

std::string lijst(bool kort) {
  std::string uit;
  for (int i = 0; i < ITEMS; ++i) {
    if (!bit(i)) continue;
    const char letter = item_letter(i);
    if (kort && letter == 0) continue;
    if (!uit.empty()) uit += ", ";
    uit += kort ? str_format("&%c", letter) : item_tekst(i);
  }
  return uit;
}

/// The items as a list to pick from: the item, or -1 after a cancel.
int popup_lijst() {
  int hoogte = 2, breedte = 0;
  for (int i = 0; i < ITEMS; ++i) {
    if (!bit(i)) continue;
    ++hoogte;
    breedte = std::max(breedte, static_cast<int>(item_tekst(i).size()));
  }
  TrMenu* const menu = tr_menu_new(TR_BOX, scr_ctx->lines - hoogte - 1, scr_ctx->cols - breedte - 3,
                                   breedte, str_format(" %s ", txt(T_MENU_MOGELIJK)).c_str());
  if (menu == nullptr) return -1;
  for (int i = 0; i < ITEMS; ++i) {
    if (bit(i)) tr_menu_add(menu, -1, item_tekst(i).c_str(), i + 1, TR_AAN, 0, nullptr);
  }
  const int gekozen = tr_menu_run(menu, popup.standaard + 1);
  tr_menu_free(menu);
  if (gekozen <= 0) return -1;
  scr_ctx->last_key = TOETS_ENTER;  // callers see a choice as they see a typed letter
  scr_ctx->ing_result &= ~ING_LEEG;
  return gekozen - 1;
}

void getal_wis(PopupRegel& r) {
  r.getal = r.plaats = 0;
  scr_print(A_LABEL, r.row, r.kolom, "  ");
}

/// Takes a digit into the number; true when the number is one of the range.
bool cijfer_neem(PopupRegel& r, int cijfer) {
  r.getal = r.getal * 10 + cijfer;
  if (r.getal >= popup.laag && r.getal <= popup.hoog) {
    if (popup.variabele != nullptr) *popup.variabele = static_cast<uint16_t>(r.getal);
    return true;
  }
  if (r.getal < popup.laag && r.getal * 10 <= popup.hoog) {
    if (r.getal != 0) ++r.plaats;
    return false;
  }
  scr_error("<%d> %s", r.getal, txt(T_POPUP_ONGELDIG));
  getal_wis(r);
  return false;
}

PopupRegel regel_toon(int row, int col) {
  PopupRegel r{};
  r.row = row;
  scr_clreol(row, col);
  scr_print(A_LABEL, row, col, "%s", txt(T_UW_KEUZE));
  r.kolom = col + static_cast<int>(strlen(txt(T_UW_KEUZE))) + 1;
  std::string tekst = lijst(false);
  const auto merken = std::count(tekst.begin(), tekst.end(), '&');
  const int einde = r.kolom + 2 + static_cast<int>(tekst.size()) - static_cast<int>(merken) - 1;
  r.kort = einde > win_width();
  if (r.kort) tekst = lijst(true);
  scr_amp_print(row, r.kolom + 2, tekst.c_str());
  r.formaat = str_format("1c[%s],UA", alle_letters());
  return r;
}

/// Reads the line until it has a result; -1 with another key than Enter.
int regel_vraag(PopupRegel& r, const IngRec* toetsen) {
  char keuze = bit(popup.standaard) ? item_letter(popup.standaard) : '\0';
  for (;;) {
    ing_restore(toetsen);
    if (r.kort) key_allow(K_HELP);
    INGAVE(r.row, r.kolom + r.plaats, r.formaat.c_str(), &keuze);
    const int toets = scr_ctx->last_key;
    if (toets == K_HELP || toets == K_F1) {
      const int item = popup_lijst();
      if (item >= 0) return item;
      getal_wis(r);
      continue;
    }
    if (toets != TOETS_ENTER) return -1;
    if ((scr_ctx->ing_result & ING_LEEG) != 0 || keuze == '\0' || keuze == ' ') continue;
    if (const int item = item_van_letter(keuze); item >= 0) return item;
    if (popup.getal && keuze >= '0' && keuze <= '9' && cijfer_neem(r, keuze - '0')) {
      return popup.resultaat;
    }
    keuze = '\0';
  }
}

/// True when the piece begins with the name of a key, as on "&F4" or "&TAB".
bool begint_met_toets(std::string_view stuk) {
  static constexpr int TOETSEN[] = {
      TOETS_ENTER, TOETS_ESC,   9,          32,        8,         TOETS_DOWN, TOETS_UP,
      TOETS_LEFT,  TOETS_RIGHT, TOETS_HOME, TOETS_DEL, TOETS_INS, TOETS_PGDN, TOETS_PGUP,
      TOETS_END,   353,         265,        267,       268,       269,        270,
      271,         272,         273,        274,       275,       276};  // F2 has no name
  const auto is_naam = [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
  };
  for (const int toets : TOETSEN) {
    char buffer[32] = "";
    std::string_view naam = key_name(toets, buffer);
    while (!naam.empty() && naam.back() == ' ') naam.remove_suffix(1);
    if (naam.size() < 2 || !stuk.starts_with(naam)) continue;
    if (stuk.size() == naam.size() || !is_naam(stuk[naam.size()])) return true;
  }
  return false;
}

}  // namespace

void scr_amp_print(int row, int col, const char* tekst) {
  std::string_view rest(tekst);
  for (bool eerste = true; eerste || !rest.empty(); eerste = false) {
    std::string_view stuk = rest.substr(0, rest.find('&'));
    rest.remove_prefix(std::min(rest.size(), stuk.size() + 1));
    if (stuk.empty()) continue;
    if (eerste) {
      col += scr_print(A_LABEL, row, col, "%s", stuk);
    } else if (stuk.size() == 1 || begint_met_toets(stuk)) {
      col += scr_print(A_WAARDE, row, col, "%s", stuk);
    } else {
      col += scr_print(A_MERK, row, col, "%s", stuk.substr(0, 1));
      col += scr_print(A_LABEL, row, col, "%s", stuk.substr(1));
    }
  }
}

void popup_begin(const char* (*text_of)(int item)) {
  popup = PopupKeuze{};
  popup.text_of = text_of;
  popup.standaard = -1;
}

void popup_add(int item) {
  if (item >= 0 && item < ITEMS) popup.items |= 1U << item;
}

void popup_remove(int item) {
  if (item >= 0 && item < ITEMS) popup.items &= ~(1U << item);
}

bool popup_has(int item) { return bit(item); }

bool popup_only(int item) { return bit(item) && popup.items == 1U << item; }

void popup_default(int item) { popup.standaard = item; }

void popup_number(int result, uint16_t* variabele, int low, int high) {
  popup.getal = true;
  popup.resultaat = result;
  popup.variabele = variabele;
  popup.laag = low;
  popup.hoog = std::min(high, 65535);
}

int popup_run(int row, int col) {
  IngRec* const toetsen = ing_new();
  PopupRegel regel = regel_toon(row, col);
  const int gekozen = regel_vraag(regel, toetsen);
  ing_free(toetsen);
  return gekozen;
}
