// Pull-down menus: drawing the levels and running them.
//
// A level that must close and move on queues the keys that do it; the levels above read the queue
// before the keyboard. All windows of a run are closed when it returns.
#include <algorithm>
#include <cstdlib>

#include "isam/base.h"
#include "scr/scr_intern.h"
#include "scr/teksten.h"
#include "scr/tr_menu.h"

namespace {

constexpr int NIETS = -1;
constexpr int KLEUR = 7;
constexpr int RIJ_BEGIN = 60, RIJ_ERBIJ = 10;
constexpr int VENSTERS_VRIJ = 2;  // left for a message and an abort over the deepest box

/// The keys that a level has queued for those above it, first in, first out.
struct Wachtrij {
  int* toetsen = nullptr;
  int ruimte = 0, begin = 0, einde = 0;

  Wachtrij() { groei(RIJ_BEGIN); }
  ~Wachtrij() { free(toetsen); }
  Wachtrij(const Wachtrij&) = delete;
  Wachtrij& operator=(const Wachtrij&) = delete;

  void groei(int erbij) {
    const auto nodig = static_cast<size_t>(ruimte + erbij) * sizeof *toetsen;
    void* const nieuw = realloc(toetsen, nodig);
    if (nieuw == nullptr) scr_abort("%s", txt(T_TR_GEEN_GEHEUGEN));
    toetsen = static_cast<int*>(nieuw);
    ruimte += erbij;
  }
  void zet(int toets) {
    if (begin == einde) begin = einde = 0;
    if (einde == ruimte) groei(RIJ_ERBIJ);
    toetsen[einde++] = toets;
  }
  bool neem(int* toets) {
    if (begin == einde) return false;
    *toets = toetsen[begin++];
    return true;
  }
};

/// One level being run: a bar or a box.
struct Niveau {
  TrMenu& menu;
  Wachtrij& rij;
  bool onder_balk = false;
  int dozen = 0;         // boxes open above this level
  int row = 0, col = 0;  // of the window
  int hoogte = 0, breedte = 0;
  int keus = -1;  // selected item, -1 none
  int boven = 0;  // first item in sight

  int aantal() const { return static_cast<int>(menu.items.size()); }
  TrItem& item(int i) const { return *menu.items[static_cast<size_t>(i)]; }
};

int niveau_run(Niveau& n);

// Selecting ---------------------------------------------------------------------------------------

bool kiesbaar(const TrItem& item) {
  return item.enabled && (!item.is_group || item.submenu != nullptr);
}

/// The next item that can be chosen, in steps of 1 or -1, around the end.
int volgende(const Niveau& n, int van, int stap) {
  for (int i = 0, plek = van; i < n.aantal(); ++i) {
    plek = (plek + stap + n.aantal()) % n.aantal();
    if (kiesbaar(n.item(plek))) return plek;
  }
  return van;
}

void keus_begin(Niveau& n, int first_id) {
  for (int i = 0; i < n.aantal(); ++i) {
    if (!kiesbaar(n.item(i))) continue;
    if (n.keus < 0) n.keus = i;
    if (n.item(i).id == first_id) n.keus = i;
  }
}

/// The item of this level that a key picks: by second key, else by hot letter.
int keus_van_toets(const Niveau& n, int toets) {
  const int letter = toets > 0 && toets < 256 ? chr_upper(static_cast<uint8_t>(toets)) : 0;
  for (int i = 0; i < n.aantal(); ++i) {
    const TrItem& item = n.item(i);
    if (!kiesbaar(item)) continue;
    if (item.key2 > 0 && item.key2 == toets) return i;
    if (item.hot > 0 && item.hot == letter) return i;
  }
  return -1;
}

// Drawing -----------------------------------------------------------------------------------------

std::string zonder_merk(const std::string& tekst) {
  std::string uit(tekst);
  std::erase(uit, '&');
  return uit;
}

void item_teken(const TrItem& item, bool gekozen, int row, int col, int breedte) {
  const int attr = gekozen ? A_BALK : item.enabled ? A_WAARDE : A_LABEL;
  const std::string tekst = zonder_merk(item.text);
  scr_print(attr, row, col, "%-*.*s", breedte, breedte, tekst);
  const size_t en = item.text.find('&');
  if (gekozen || !item.enabled || item.hot == 0 || static_cast<int>(en) >= breedte) return;
  scr_print(A_MERK, row, col + static_cast<int>(en), "%c", tekst[en]);
}

int balk_breedte(const Niveau& n, int i) {
  return std::max(n.menu.col_width, tr_breedte(n.item(i).text)) + 1;
}

int balk_kolom(const Niveau& n, int tot) {
  int kolom = 1;
  for (int i = 0; i < tot; ++i) kolom += balk_breedte(n, i);
  return kolom;
}

void niveau_teken(Niveau& n) {
  if (n.menu.is_bar) {
    for (int i = 0; i < n.aantal(); ++i) {
      item_teken(n.item(i), i == n.keus, 1, balk_kolom(n, i), balk_breedte(n, i));
    }
    return;
  }
  const int zicht = n.hoogte - 2;
  if (n.keus >= 0) n.boven = std::clamp(n.boven, std::max(0, n.keus - zicht + 1), n.keus);
  for (int r = 0; r < zicht && n.boven + r < n.aantal(); ++r) {
    const int i = n.boven + r;
    item_teken(n.item(i), i == n.keus, r + 1, 1, n.breedte - 2);
  }
}

/// The size of a box, and its place moved to where it fits above the message line.
void doos_maten(Niveau& n) {
  int breed = n.menu.col_width;
  for (int i = 0; i < n.aantal(); ++i) breed = std::max(breed, tr_breedte(n.item(i).text) + 1);
  n.hoogte = std::min(std::max(1, n.aantal()) + 2, scr_ctx->lines - 1);
  n.breedte = std::min(std::max(1, breed) + 2, scr_ctx->cols);
  n.row = std::clamp(n.row, 1, scr_ctx->lines - n.hoogte);
  n.col = std::clamp(n.col, 1, scr_ctx->cols - n.breedte + 1);
}

void niveau_open(Niveau& n) {
  if (n.menu.is_bar) {
    win_open(n.menu.row, n.menu.col, 1, scr_ctx->cols, KLEUR);
  } else {
    doos_maten(n);
    win_open(n.row, n.col, n.hoogte, n.breedte, KLEUR);
    win_title_tekst(n.menu.title.empty() ? nullptr : n.menu.title.c_str());
  }
  niveau_teken(n);
}

// Keys --------------------------------------------------------------------------------------------

/// The next key of a level; Escape when its time is up.
int niveau_toets(const Niveau& n) {
  int toets = 0;
  if (n.rij.neem(&toets)) return toets;
  scr_flush(0);
  const int limiet = tr_limiet(n.menu);
  if (limiet >= 0 && !key_pending()) {
    int poll = 0;
    while (poll < limiet && !key_wait(1000)) ++poll;
    if (poll == limiet) return K_ESC;
  }
  toets = key_read(win_nu());
  scr_error("");
  scr_ctx->last_key = toets;
  return toets;
}

/// Runs the box under an item; its choice, or NIETS.
int submenu_run(Niveau& n, int i) {
  if (scr_ctx->win_count >= SCR_VENSTERS - VENSTERS_VRIJ) {
    scr_error("%s", txt(T_TR_TE_DIEP));
    return NIETS;
  }
  Niveau onder{*n.item(i).submenu, n.rij};
  onder.onder_balk = n.menu.is_bar || n.onder_balk;
  onder.dozen = n.menu.is_bar ? 0 : n.dozen + 1;
  if (n.menu.is_bar) {
    onder.row = n.menu.vak_row;
    onder.col = n.menu.vak_col - 1 + balk_kolom(n, i);
  } else {
    onder.row = n.row + 1 + i - n.boven;
    onder.col = n.col + n.breedte - 2;
  }
  keus_begin(onder, NIETS);
  niveau_open(onder);
  const int gekozen = niveau_run(onder);
  win_close();
  return gekozen;
}

/// Left or Right in a box: everything up to the bar closes, and the neighbour opens.
void naar_buur(Niveau& n, int toets) {
  for (int i = 0; i < n.dozen; ++i) n.rij.zet(K_ESC);
  n.rij.zet(toets);
  n.rij.zet(TOETS_DOWN);
}

/// Steps of a movement key on this level, 0 when the key is none.
int beweging(const Niveau& n, int toets) {
  const int vooruit = n.menu.is_bar ? TOETS_RIGHT : TOETS_DOWN;
  const int terug = n.menu.is_bar ? TOETS_LEFT : TOETS_UP;
  if (toets == vooruit || toets == ' ' || toets == ',') return 1;
  return toets == terug ? -1 : 0;
}

/// The item that a key takes: the selected one on Enter, and on Down on a bar when it has a box.
int genomen(const Niveau& n, int toets) {
  if (toets == TOETS_ENTER) return n.keus;
  if (n.menu.is_bar && toets == TOETS_DOWN) {
    return n.keus >= 0 && n.item(n.keus).submenu != nullptr ? n.keus : -1;
  }
  return keus_van_toets(n, toets);
}

int niveau_run(Niveau& n) {
  for (;;) {
    const int toets = niveau_toets(n);
    if (toets == K_ESC || toets == K_CANCEL) return NIETS;
    if (const int stap = beweging(n, toets); stap != 0) {
      if (n.keus >= 0) n.keus = volgende(n, n.keus, stap);
      niveau_teken(n);
      continue;
    }
    if (n.onder_balk && (toets == TOETS_LEFT || toets == TOETS_RIGHT)) {
      naar_buur(n, toets);
      return NIETS;
    }
    const int i = genomen(n, toets);
    if (i < 0) {
      if (toets != TOETS_DOWN) scr_beep();  // Down may have been queued by a box that closed
      continue;
    }
    n.keus = i;
    niveau_teken(n);
    if (n.item(i).submenu == nullptr) return n.item(i).id;
    if (const int gekozen = submenu_run(n, i); gekozen != NIETS) return gekozen;
  }
}

/// A key that was typed before the menu stood, when it picks an item; any other is pushed back.
const TrItem* wachtende_keus(const TrMenu& menu) {
  if (!key_pending()) return nullptr;
  const int toets = key_read(win_nu());
  const bool letter = toets > 0 && toets < 256;
  const int groot = letter ? chr_upper(static_cast<uint8_t>(toets)) : toets;
  const TrItem* const item = tr_item_van_toets(menu, groot);
  if (item == nullptr) {
    key_push(toets);
  } else {
    scr_ctx->last_key = toets;
  }
  return item;
}

}  // namespace

int tr_menu_run(TrMenu* menu, int first_id) {
  if (menu == nullptr || !menu->enabled || !menu->visible) return NIETS;
  scr_busy_off();
  Wachtrij rij;
  Niveau n{*menu, rij};
  n.row = menu->row;
  n.col = menu->col;
  keus_begin(n, first_id);
  if (menu->is_bar) niveau_open(n);
  const TrItem* const gewacht = wachtende_keus(*menu);
  int gekozen = gewacht == nullptr ? NIETS : gewacht->id;
  if (gewacht == nullptr) {
    if (!menu->is_bar) niveau_open(n);
    scr_cursor(false);
    gekozen = niveau_run(n);
    scr_cursor(true);
    if (!menu->is_bar) win_close();
  }
  if (menu->is_bar) win_close();
  return gekozen;
}
