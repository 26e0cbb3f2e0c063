// Pull-down menus: building the tree, and asking and changing its items by id.
#include "scr/tr_menu.h"

#include <algorithm>
#include <new>

#include "isam/base.h"
#include "scr/teksten.h"

namespace {

constexpr int BALK_RIJ = 2;
constexpr int SOORT_BITS = 4 | 8 | 16 | 32;
constexpr int FLAGS_ONBEKEND = 65535;
int limiet = TR_GEEN_LIMIET;

struct Vindplaats {
  TrMenu* menu = nullptr;
  TrItem* item = nullptr;
};

Vindplaats zoek(TrMenu& menu, int id) {
  for (const auto& item : menu.items) {
    if (item->id == id) return {&menu, item.get()};
    if (item->submenu == nullptr) continue;
    if (const Vindplaats v = zoek(*item->submenu, id); v.item != nullptr) return v;
  }
  return {};
}

/// The same, with a message when there is no such item.
Vindplaats vind(TrMenu* menu, int id) {
  const Vindplaats v = menu == nullptr ? Vindplaats{} : zoek(*menu, id);
  if (v.item == nullptr) scr_error(txt(T_TR_ITEM_ONBEKEND), id);
  return v;
}

void tekst_zet(TrItem& item, const char* text) {
  item.text = std::string(" ") + (text == nullptr ? "" : text);
  const size_t en = item.text.find('&');
  item.hot = en == std::string::npos || en + 1 >= item.text.size()
                 ? 0
                 : chr_upper(static_cast<uint8_t>(item.text[en + 1]));
}

/// The menu under an item, made when it has none yet.
TrMenu* submenu_van(TrItem& item) {
  if (item.submenu == nullptr) {
    item.submenu.reset(new (std::nothrow) TrMenu);
    if (item.submenu == nullptr) scr_abort("%s", txt(T_TR_GEEN_GEHEUGEN));
    item.submenu->boxed = true;
  }
  return item.submenu.get();
}

}  // namespace

int tr_breedte(const std::string& tekst) {
  return static_cast<int>(tekst.size() -
                          static_cast<size_t>(std::count(tekst.begin(), tekst.end(), '&')));
}

const TrItem* tr_item_van_toets(const TrMenu& menu, int key) {
  if (key <= 0) return nullptr;
  for (const auto& item : menu.items) {
    if (item->submenu != nullptr) {
      if (const TrItem* diep = tr_item_van_toets(*item->submenu, key)) return diep;
    } else if (item->enabled && !item->is_group && (item->hot == key || item->key2 == key)) {
      return item.get();
    }
  }
  return nullptr;
}

int tr_limiet(const TrMenu& menu) { return (menu.style & TR_TIJD) != 0 ? limiet : TR_GEEN_LIMIET; }

TrMenu* tr_menu_new(int flags, int row, int col, int width, const char* title) {
  auto* const menu = new (std::nothrow) TrMenu;
  if (menu == nullptr) return nullptr;
  menu->is_bar = (flags & TR_BAR) != 0;
  menu->boxed = !menu->is_bar && (flags & TR_BOX) != 0;
  menu->style = flags & 255 & ~(TR_BAR | TR_BOX);
  menu->title = title == nullptr ? "" : title;
  menu->row = menu->is_bar ? BALK_RIJ : row;
  menu->col = menu->is_bar ? 1 : col;
  menu->col_width = menu->boxed ? static_cast<int>(menu->title.size()) : std::max(0, width);
  menu->vak_row = BALK_RIJ + 1;
  menu->vak_col = 1;
  return menu;
}

void tr_menu_timeout(int n) { limiet = n >= 0 ? n : TR_GEEN_LIMIET; }

bool tr_menu_add(TrMenu* menu, int parent_id, const char* text, int id, int item_flags, int key2,
                 void* data) {
  if (menu == nullptr) return false;
  const bool leeg = text == nullptr || *text == '\0';
  TrMenu* bij = menu;
  if (parent_id != -1) {
    const Vindplaats ouder = vind(menu, parent_id);
    if (ouder.item == nullptr) return false;
    bij = submenu_van(*ouder.item);
  }
  const bool groep = (item_flags & TR_GROEP) != 0;
  if (groep && bij->is_bar && leeg) return false;
  std::unique_ptr<TrItem> item(new (std::nothrow) TrItem);
  if (item == nullptr) scr_abort("%s", txt(T_TR_GEEN_GEHEUGEN));
  item->id = id;
  item->key2 = key2;
  item->enabled = (item_flags & TR_AAN) != 0;
  item->is_group = groep;
  item->kind = item_flags & SOORT_BITS;
  item->data = data;
  tekst_zet(*item, text);
  bij->items.push_back(std::move(item));
  return true;
}

bool tr_menu_enable(TrMenu* menu, int id, int state) {
  TrItem* const item = vind(menu, id).item;
  if (item == nullptr) return false;
  item->enabled = state == 3 ? !item->enabled : state != 0;
  return true;
}

void tr_menu_rename(TrMenu* menu, int id, const char* text) {
  if (TrItem* const item = vind(menu, id).item; item != nullptr) tekst_zet(*item, text);
}

int tr_menu_flags(TrMenu* menu, int id) {
  const Vindplaats v = vind(menu, id);
  if (v.item == nullptr) return FLAGS_ONBEKEND;
  const int item =
      (v.item->enabled ? TR_AAN : 0) | (v.item->is_group ? TR_GROEP : 0) | v.item->kind;
  return v.menu->flags() + 256 * item;
}

int tr_menu_toets(TrMenu* menu, int key) {
  const TrItem* const item = menu == nullptr ? nullptr : tr_item_van_toets(*menu, key);
  return item == nullptr ? 0 : item->id;
}

void tr_menu_size(TrMenu* menu, int rows, int cols) {
  if (menu == nullptr) return;
  (menu->is_bar ? menu->vak_row : menu->row) = rows;
  (menu->is_bar ? menu->vak_col : menu->col) = cols;
}

void tr_menu_free(TrMenu* menu) { delete menu; }
