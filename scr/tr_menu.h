// The tree of a pull-down menu and its run. Inside tr_menu only; callers see scr/scr.h.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "scr/scr.h"

inline constexpr int TR_GEEN_LIMIET = -2;

struct TrItem {
  int id = 0;
  int hot = 0;  // the letter behind "&", upper case; 0 none
  int key2 = 0;
  bool enabled = false;
  bool is_group = false;  // a heading that opens a submenu; a title on a bar
  int kind = 0;           // bits 4 to 32 of the item flags
  std::string text;       // a blank, then the text with its "&"
  void* data = nullptr;
  std::unique_ptr<TrMenu> submenu;
};

struct TrMenu {
  bool is_bar = false, boxed = false;
  bool enabled = true, visible = true;
  int style = 0;      // the other bits of the flags
  int col_width = 0;  // least width of the texts
  int row = 0, col = 0;
  int vak_row = 0,
      vak_col = 0;  // where the boxes of a bar stand, the column added to their title's
  std::string title;
  std::vector<std::unique_ptr<TrItem>> items;

  int flags() const { return style | (boxed ? TR_BOX : 0) | (is_bar ? TR_BAR : 0); }
};

/// Cells that a text takes on the screen: its "&" takes none.
int tr_breedte(const std::string& tekst);
/// The item that a key picks at once anywhere in the tree: enabled, without a submenu, no heading.
const TrItem* tr_item_van_toets(const TrMenu& menu, int key);
/// The limit of this menu: polls of a second, TR_GEEN_LIMIET for none.
int tr_limiet(const TrMenu& menu);
