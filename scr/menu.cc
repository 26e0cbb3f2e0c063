// Menus: a full screen of numbered entries in rubrics, each bound to an operation.
//
// A menu lives from menu_begin to the choice in menu_run: it is freed before the operation is
// called, so that an operation may show menus of its own. What was chosen last is remembered by
// level for the life of the program and gets the cursor when the menu comes back.
#include <memory>
#include <new>

#include "isam/base.h"
#include "scr/scr.h"
#include "scr/teksten.h"

namespace {

using Operatie = void (*)();

constexpr int NIVEAUS = 10;
constexpr int BOVENSTE_RIJ = 3;
constexpr int BREED = 35, SMAL = 20;              // widths of the entry texts
constexpr int KOLOM_BREED = 40, KOLOM_SMAL = 26;  // from one column of entries to the next
constexpr int FOUT_KOP = 1, FOUT_ITEM = 2, FOUT_TEKST = 3, FOUT_NIVEAU = 101, FOUT_OPERATIE = 102;

struct MenuItem {
  int number, rubric, row, col;
  bool available;
  std::unique_ptr<char[]> text;
  Operatie op;
  MenuItem* next;
};

struct MenuKop {
  int next_number = 1, rubric_count = 0;
  int row = BOVENSTE_RIJ, col = 2;
  int first_number = 0, last_number = 0;
  int level = 0, text_width = BREED;
  Operatie default_op = nullptr;
  MenuItem* first_item = nullptr;
  MenuItem** staart = &first_item;
};

MenuKop* kop;
Operatie laatst_gekozen[NIVEAUS];

[[noreturn]] void menu_fout(int code) { scr_abort("%s: errno=%d", "menuhdl", code); }

void menu_vrij() {
  if (kop == nullptr) return;
  for (MenuItem* i = kop->first_item; i != nullptr;) {
    MenuItem* const volgend = i->next;
    delete i;
    i = volgend;
  }
  delete kop;
  kop = nullptr;
}

void item_toon(const MenuItem& i) {
  scr_print(i.available ? A_WAARDE : A_LABEL, i.row, i.col, "%2d", i.number);
  scr_print(A_LABEL, i.row, i.col + 2, " %s", i.text.get());
}

void item_balk(const MenuItem& i) {
  scr_print(A_BALK, i.row, i.col, "%2d %s", i.number, i.text.get());
}

MenuItem* item_met_op(Operatie op) {
  if (op == nullptr) return nullptr;
  MenuItem* i = kop->first_item;
  while (i != nullptr && i->op != op) i = i->next;
  return i;
}

MenuItem* item_met_nummer(int nummer) {
  MenuItem* i = kop->first_item;
  while (i != nullptr && i->number != nummer) i = i->next;
  return i;
}

MenuItem* item_begin() {
  if (MenuItem* i = item_met_op(kop->default_op)) return i;
  if (MenuItem* i = item_met_op(laatst_gekozen[kop->level])) return i;
  return kop->first_item;
}

MenuItem* item_vorig(const MenuItem* van) {
  MenuItem* i = kop->first_item;
  while (i->next != nullptr && i->next != van) i = i->next;
  return i;  // from the first item this has run on to the last
}

MenuItem* item_volgend(const MenuItem* van) {
  return van->next != nullptr ? van->next : kop->first_item;
}

MenuItem* item_rubriek(const MenuItem* van) {
  for (MenuItem* i = van->next; i != nullptr; i = i->next) {
    if (i->rubric > van->rubric) return i;
  }
  return kop->first_item;
}

void menu_help() {
  struct Regel {
    const char* toets;
    const Tekst* uitleg;
  };
  static constexpr Regel REGELS[] = {
      {"Up", &T_MENU_VORIGE}, {"Dn", &T_MENU_VOLGENDE}, {"Tab", &T_MENU_RUBRIEK}};
  const Venster venster(scr_ctx->lines - 9, 1, 8, 80);
  win_title(" %s ", txt(T_MENU_MOGELIJK));
  int rij = 1;
  scr_print(A_WAARDE, rij, 2, "%d-%d", kop->first_number, kop->last_number);
  scr_print(A_LABEL, rij, 10, "%s", txt(T_MENU_NUMMER));
  for (const Regel& r : REGELS) {
    ++rij;
    scr_print(A_WAARDE, rij, 2, "%s", r.toets);
    scr_print(A_LABEL, rij, 10, "%s", txt(*r.uitleg));
  }
  scr_enter(win_height(), 2);
}

int geen_bevoegdheden() {
  menu_vrij();
  scr_print(A_WAARDE, scr_ctx->lines - 2, 1, "%s", txt(T_MENU_GEEN));
  scr_enter(scr_ctx->lines - 1, 1);
  return 0;
}

/// One read of the choice, the cursor item in reverse meanwhile. The number is the item's own at
/// the start, so that a plain Enter takes it.
int16_t keuze_lees(const MenuItem& cursor, int kolom) {
  auto nummer = static_cast<int16_t>(cursor.number);
  item_balk(cursor);
  INGAVE(scr_ctx->lines - 1, kolom, kop->next_number <= 9 ? "1d,PA" : "2d,PA", &K_CANCEL, &K_HELP,
         &K_F10, &K_UP, &K_DOWN, &K_TAB, &nummer);
  item_toon(cursor);
  return (scr_ctx->ing_result & ING_LEEG) != 0 ? static_cast<int16_t>(cursor.number) : nummer;
}

/// The item where a key that chooses nothing leaves the cursor.
MenuItem* toets_volg(MenuItem* cursor) {
  const int toets = scr_ctx->last_key;
  if (toets == K_UP) return item_vorig(cursor);
  if (toets == K_DOWN) return item_volgend(cursor);
  if (toets == K_TAB) return item_rubriek(cursor);
  if (toets == K_HELP || toets == K_F1) menu_help();
  if (toets == K_F10 && scr_hooks.programma_info != nullptr) scr_hooks.programma_info();
  return cursor;
}

}  // namespace

void menu_begin(int level) {
  if (level < 0 || level >= NIVEAUS) menu_fout(FOUT_NIVEAU);
  menu_vrij();
  kop = new (std::nothrow) MenuKop;
  if (kop == nullptr) menu_fout(FOUT_KOP);
  kop->level = level;
  hdr_line('C', "");
}

void menu_width(int breedte) {
  if (kop != nullptr) kop->text_width = breedte == SMAL ? SMAL : BREED;
}

void menu_default(void (*op)()) {
  if (kop != nullptr) kop->default_op = op;
}

void menu_rubric(bool rights, const char* title) {
  if (kop == nullptr || !rights) return;
  if (kop->row > BOVENSTE_RIJ) ++kop->row;
  char tekst[81];
  str_printf(tekst, sizeof tekst, "%s", title);
  scr_print(A_MERK, kop->row, kop->col, "%.*s", kop->text_width, str_trim(tekst));
  ++kop->rubric_count;
  ++kop->row;
  kop->next_number += 10;
  while (kop->next_number % 10 != 1) --kop->next_number;
}

void menu_item(bool rights, bool available, const char* title, void (*op)()) {
  if (op == nullptr) menu_fout(FOUT_OPERATIE);
  if (kop == nullptr || !rights) return;
  auto* const item = new (std::nothrow)
      MenuItem{kop->next_number, kop->rubric_count, kop->row, kop->col, available, {}, op, nullptr};
  if (item == nullptr) menu_fout(FOUT_ITEM);
  const size_t ruimte = static_cast<size_t>(kop->text_width) + 1;
  item->text.reset(new (std::nothrow) char[ruimte]);
  if (item->text == nullptr) menu_fout(FOUT_TEKST);
  str_printf(item->text.get(), ruimte, "%s", title);
  item->text[0] = static_cast<char>(chr_upper(static_cast<uint8_t>(item->text[0])));

  if (kop->first_item == nullptr) kop->first_number = item->number;
  kop->last_number = item->number;
  *kop->staart = item;
  kop->staart = &item->next;
  item_toon(*item);
  ++kop->next_number;
  ++kop->row;
}

void menu_gap() {
  if (kop != nullptr) ++kop->row;
}

void menu_column() {
  if (kop == nullptr) return;
  kop->row = BOVENSTE_RIJ;
  kop->col += kop->text_width == SMAL ? KOLOM_SMAL : KOLOM_BREED;
}

int menu_run() {
  if (kop == nullptr) return 0;
  if (kop->first_item == nullptr) return geen_bevoegdheden();
  MenuItem* cursor = item_begin();
  const int rij = scr_ctx->lines - 1;
  scr_clreol(rij, 1);
  const int kolom = scr_print(A_LABEL, rij, 1, "%s", txt(T_UW_KEUZE)) + 2;
  for (;;) {
    const int16_t nummer = keuze_lees(*cursor, kolom);
    if (weg_toets()) {
      menu_vrij();
      return 0;
    }
    if (scr_ctx->last_key != TOETS_ENTER) {
      cursor = toets_volg(cursor);
      continue;
    }
    MenuItem* const gekozen = item_met_nummer(nummer);
    if (gekozen == nullptr) {
      scr_error("%s", txt(T_MENU_ONGELDIG));
      continue;
    }
    cursor = gekozen;
    if (cursor->available) break;
    scr_error("%s", txt(T_MENU_NIET_BESCHIKBAAR));
  }
  const Operatie op = cursor->op;
  laatst_gekozen[kop->level] = op;
  menu_vrij();
  op();
  return 1;
}
