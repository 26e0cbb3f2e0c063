// The menu behind F2, and the list of a user's macros: to run one, or to delete.
#include <algorithm>
#include <string>

#include "isam/base.h"
#include "scr/macro.h"
#include "scr/teksten.h"

namespace {

enum MenuKeus { INVOEREN = 1, VERWIJDEREN, UITVOEREN, TERUG };
constexpr int MENU_RIJ = 8, MENU_KOL = 28;

/// The browse goes by the activating key.
struct Lijst {
  std::vector<MacRec> macros;
  bool wissen;
};
Lijst& lijst_van(BrwRec* b) { return *static_cast<Lijst*>(b->data); }

bool ga(BrwRec* b, int n) {
  const std::vector<MacRec>& m = lijst_van(b).macros;
  const auto hier = std::lower_bound(m.begin(), m.end(), b->current,
                                     [](const MacRec& r, uint32_t key) { return r.key < key; });
  const bool er = hier != m.end() && hier->key == b->current;
  if (n == 0) return er;
  auto i = hier - m.begin();
  if (!er && n > 0) --i;  // the record in hand has gone: the next one is one step on
  const auto laatste = static_cast<std::ptrdiff_t>(m.size()) - 1;
  const std::ptrdiff_t doel = i + n;
  if (laatste < 0) return false;
  b->current = m[static_cast<size_t>(std::clamp<std::ptrdiff_t>(doel, 0, laatste))].key;
  return doel >= 0 && doel <= laatste;
}

void kop(BrwRec*) {
  scr_print(A_LABEL, 1, 2, "%-6s %-5s %-30s", txt(T_MACRO_USER), txt(T_MACRO_KEY),
            txt(T_MACRO_KOP_OMSCHR));
}

const char* regel(BrwRec* b) {
  static char tekst[64];
  *tekst = 0;
  for (const MacRec& r : lijst_van(b).macros) {
    if (r.key != b->current) continue;
    char naam[8];
    str_printf(tekst, sizeof tekst, "%-6d %-5s %-30s", r.user, key_name(r.key, naam),
               veld_tekst(r.description, sizeof r.description));
  }
  return tekst;
}

void wis(BrwRec* b) {
  std::vector<MacRec>& m = lijst_van(b).macros;
  const auto key = static_cast<uint16_t>(b->current);
  if (macro_wis(key)) std::erase_if(m, [key](const MacRec& r) { return r.key == key; });
  b->draw_mode = 0;  // the page stays where it is
}

/// No field to search in: the keys that work, and which they are.
void wacht_op_toets(BrwRec* b) {
  const bool wissen = lijst_van(b).wissen;
  scr_clreol(brw_search_row(), 1);
  scr_print(A_LABEL, brw_search_row(), 2, "%s", txt(wissen ? T_MACRO_HINT_DEL : T_MACRO_HINT));
  key_allow(wissen ? TOETS_DEL : TOETS_ENTER);
  if (wissen) key_deny(K_F3);
  scr_getkey("");
  if (scr_ctx->last_key == TOETS_DEL) {
    wis(b);
    scr_ctx->ing_result = 0;
  } else {
    scr_ctx->ing_result |= ING_LEEG;
  }
}

/// The macro picked, 0 none.
int blader(bool wissen) {
  const MacroUit uit;
  Lijst lijst{macro_alle(), wissen};
  if (lijst.macros.empty()) {
    if (scr_ctx->message[0] == 0) scr_error("%s", txt(T_MACRO_GEEN));
    return 0;
  }
  BrwRec* b = brw_new(ga, wacht_op_toets, kop, regel);
  if (b == nullptr) scr_abort("%s", txt(T_GEEN_GEHEUGEN));
  b->title = str_format(" %s ", txt(T_MACRO_LIJST));
  b->data = &lijst;
  b->current = lijst.macros.front().key;
  const int gekozen = brw_run(b, 0) != 0 ? static_cast<int>(b->current) : 0;
  brw_free(b);
  return gekozen;
}

int kies() {
  const MacroUit uit;
  TrMenu* menu = tr_menu_new(TR_BOX, MENU_RIJ, MENU_KOL, 0, txt(T_MACRO_MENU));
  if (menu == nullptr) scr_abort("%s", txt(T_GEEN_GEHEUGEN));
  tr_menu_add(menu, -1, txt(T_MACRO_INVOEREN), INVOEREN, TR_AAN, 0, nullptr);
  tr_menu_add(menu, -1, txt(T_MACRO_VERWIJDEREN), VERWIJDEREN, TR_AAN, 0, nullptr);
  tr_menu_add(menu, -1, txt(T_MACRO_UITVOEREN), UITVOEREN, TR_AAN, 0, nullptr);
  tr_menu_add(menu, -1, txt(T_MACRO_TERUG), TERUG, TR_AAN, 0, nullptr);
  const int keus = tr_menu_run(menu, INVOEREN);
  tr_menu_free(menu);
  return keus;
}

}  // namespace

int macro_menu() {
  switch (kies()) {
    case INVOEREN:
      return TOETS_INS;
    case VERWIJDEREN:
      return TOETS_DEL;
    case UITVOEREN:
      return blader(false);
    default:
      return 0;
  }
}

void macro_delete() { blader(true); }
