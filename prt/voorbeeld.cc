// The preview of a report before it is printed: its menu, and what each item does.
//
// Every item has a hot letter and a second key that work without the menu; a key that is none of
// these shows it.
#include "prt/voorbeeld.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "prt/intern.h"
#include "prt/teksten.h"
#include "scr/scr.h"

namespace {

int scroll_step = 52;
int head_lines = 1;

enum Item : int {
  VORIG = 1001,
  VOLGEND = 1002,
  SCHERM = 1003,
  SPRING = 1004,
  KOP_SCROLLEN = 1005,
  AANTAL = 1006,
  KOPREGELS = 1007,
  LINKS = 1008,
  RECHTS = 1009,
  EERSTE = 1011,
  LAATSTE = 1012,
  INSTELLEN = 1013,
  PRINTEN = 1015,
  NIET_PRINTEN = 1016,
  KOP_EINDE = 1017,
};

struct Rij {
  int id;
  int toets;  // second key
  const Tekst* tekst;
  const int* waarde;  // shown behind the text
};
constexpr int F4 = TOETS_F1 + 3, F6 = TOETS_F1 + 5;
const Rij RIJEN[] = {
    {VORIG, TOETS_PGUP, &T_PRT_VORIG, nullptr},
    {VOLGEND, TOETS_PGDN, &T_PRT_VOLGEND, nullptr},
    {SCHERM, TOETS_ENTER, &T_PRT_SCHERM, nullptr},
    {SPRING, F6, &T_PRT_SPRING, nullptr},
    {KOP_SCROLLEN, 0, &T_PRT_SCROLLEN, nullptr},
    {EERSTE, TOETS_HOME, &T_PRT_EERSTE, nullptr},
    {LAATSTE, TOETS_END, &T_PRT_LAATSTE, nullptr},
    {LINKS, TOETS_LEFT, &T_PRT_LINKS, nullptr},
    {RECHTS, TOETS_RIGHT, &T_PRT_RECHTS, nullptr},
    {INSTELLEN, 0, &T_PRT_INSTELLEN, &scroll_step},
    {AANTAL, F4, &T_PRT_AANTAL, nullptr},
    {KOPREGELS, 0, &T_PRT_KOPREGELS, &head_lines},
    {KOP_EINDE, 0, &T_PRT_EINDE, nullptr},
    {PRINTEN, 0, &T_PRT_PRINTEN, nullptr},
    {NIET_PRINTEN, 0, &T_PRT_NIET_PRINTEN, nullptr},
};
static_assert(std::size(RIJEN) <= 22);

bool is_kop(int id) { return id == KOP_SCROLLEN || id == KOP_EINDE; }

std::string rij_tekst(const Rij& r) {
  return r.waarde == nullptr ? txt(*r.tekst) : str_format("%-.20s (%d)", txt(*r.tekst), *r.waarde);
}

int hete_letter(const Rij& r) {
  const char* en = std::strchr(txt(*r.tekst), '&');
  return en == nullptr ? 0 : chr_upper(static_cast<uint8_t>(en[1]));
}

// The item of a key; a letter must be a capital, as typed or made so.
int item_van(int toets) {
  for (const Rij& r : RIJEN) {
    if (toets != 0 && !is_kop(r.id) && (toets == r.toets || toets == hete_letter(r))) return r.id;
  }
  return 0;
}

TrMenu* menu_maak() {
  size_t breed = 0;
  for (const Rij& r : RIJEN) breed = std::max(breed, rij_tekst(r).size());
  const int rij = scr_ctx->lines - static_cast<int>(std::size(RIJEN)) - 6;
  const int kolom = scr_ctx->cols - static_cast<int>(breed) - 3;
  TrMenu* menu = tr_menu_new(TR_BOX, std::max(rij, 1), std::max(kolom, 1), static_cast<int>(breed),
                             txt(T_PRT_MENU));
  if (menu == nullptr) return nullptr;
  for (const Rij& r : RIJEN) {
    tr_menu_add(menu, -1, rij_tekst(r).c_str(), r.id, is_kop(r.id) ? 0 : TR_AAN, r.toets, nullptr);
  }
  return menu;
}

void menu_hernoem(TrMenu* menu, int id) {
  for (const Rij& r : RIJEN) {
    if (r.id == id) tr_menu_rename(menu, id, rij_tekst(r).c_str());
  }
}

bool kan_printen() {
  return prt_rec.device[0] != 0 && std::strcmp(prt_rec.device, "/dev/null") != 0;
}

bool item_mag(const Voorbeeld& v, int id) {
  const bool later = v.bladen.blad < v.bladen.bladen;
  switch (id) {
    case VOLGEND:
    case LAATSTE:
      return later;
    case SCHERM:
      return later || v.meer;
    case VORIG:
    case EERSTE:
      return v.bladen.blad > 1 || !v.eerste;
    case SPRING:
      return v.bladen.bladen > 1;
    case LINKS:
      return v.kolom > 0;
    case RECHTS:
      return v.kolom < voorbeeld_over(v);
    case INSTELLEN:
      return voorbeeld_over(v) > 0;
    case PRINTEN:
      return kan_printen();
    default:
      return !is_kop(id);
  }
}

void menu_stel(TrMenu* menu, const Voorbeeld& v) {
  for (const Rij& r : RIJEN) tr_menu_enable(menu, r.id, item_mag(v, r.id) ? 1 : 0);
}

void blad_begin(Voorbeeld& v) {
  v.eerste = true;
  v.scherm_plek = v.bladen.blad_plek;
}

void spring(Voorbeeld& v) {
  const int blad = voorbeeld_vraag(txt(T_PRT_GA_NAAR), "", 4, 0);
  if (blad < 1) return;
  bladen_naar(v.bladen, blad);
  blad_begin(v);
}

void voer_aantal() {
  const int n =
      voorbeeld_vraag(txt(T_PRT_AANTAL_TITEL), txt(T_PRT_AANTAL_LABEL), 4, prt_rec.copies);
  if (n > 0) prt_rec.copies = n;
}

void voer_kopregels(Voorbeeld& v, TrMenu* menu) {
  const int n = voorbeeld_vraag(txt(T_PRT_KOP_TITEL), "", 4, head_lines);
  if (n < 1) return;
  head_lines = n;
  menu_hernoem(menu, KOPREGELS);
  blad_begin(v);
}

void voer_scroll(TrMenu* menu) {
  const int n = voorbeeld_vraag(txt(T_PRT_SCROLL_TITEL), txt(T_PRT_SCROLL_LABEL), 3, scroll_step);
  if (n < 1) return;
  scroll_step = n;
  menu_hernoem(menu, INSTELLEN);
}

void voer_uit(Voorbeeld& v, TrMenu* menu, int id) {
  switch (id) {
    case VORIG:
      bladen_terug(v.bladen);
      blad_begin(v);
      break;
    case VOLGEND:
      bladen_verder(v.bladen);
      blad_begin(v);
      break;
    case SCHERM:
      voorbeeld_verder(v);
      break;
    case SPRING:
      spring(v);
      break;
    case EERSTE:
    case LAATSTE:
      bladen_naar(v.bladen, id == EERSTE ? 1 : v.bladen.bladen);
      blad_begin(v);
      break;
    case LINKS:
      v.kolom = std::max(0, v.kolom - scroll_step);
      break;
    case RECHTS:
      v.kolom = std::min(voorbeeld_over(v), v.kolom + scroll_step);
      break;
    case INSTELLEN:
      voer_scroll(menu);
      break;
    case AANTAL:
      voer_aantal();
      break;
    case KOPREGELS:
      voer_kopregels(v, menu);
      break;
    default:
      break;
  }
}

// The item that the operator wants; 0 none.
int item_lees(TrMenu* menu) {
  scr_busy_off();
  scr_flush(0);
  int toets = key_read(scr_ctx->windows[scr_ctx->win_cur].win);
  if (toets == K_ESC || toets == K_CANCEL) return NIET_PRINTEN;
  if (toets >= 'b' && toets <= 'y') toets -= 'b' - 'B';
  const int id = item_van(toets);
  return id != 0 ? id : std::max(0, tr_menu_run(menu, VOLGEND));
}

int kijk(Voorbeeld& v) {
  TrMenu* menu = menu_maak();
  if (menu == nullptr) {
    scr_error(txt(T_PRT_VOORBEELD), txt(T_PRT_GEHEUGEN));
    return 0;
  }
  // Drawn once, and left at once.
  key_push(TOETS_ESC);
  tr_menu_run(menu, VOLGEND);
  int id = 0;
  while (id != PRINTEN && id != NIET_PRINTEN) {
    voorbeeld_teken(v, head_lines);
    menu_stel(menu, v);
    id = item_lees(menu);
    if (!item_mag(v, id)) id = 0;
    voer_uit(v, menu, id);
  }
  tr_menu_free(menu);
  return id == PRINTEN ? 1 : 0;
}

}  // namespace

int prt_preview() {
  Voorbeeld v;
  v.breedte = prt_rec.width;
  if (!bladen_open(v.bladen, prt_rec.spool_name, prt_rec.text_start, prt_tekst_eind, prt_rec.width,
                   prt_rec.page_count)) {
    scr_error_tekst(txt(T_PRT_TIJDELIJK));
    return 0;
  }
  const IngBewaar bewaar;
  const int vensters = scr_ctx->win_count;
  scr_term_open(prt_rec.width <= 80 ? "" : "-w");
  const int antwoord = kijk(v);
  bladen_sluit(v.bladen);
  while (scr_ctx->win_count > vensters) win_close();
  return antwoord;
}
