// See hoofdmenu.h. A program needs its slot in DTREL; a custom program, slots 501 to 599, the right
// to their chapter too. The suite's menus come in variants; system record 11 tells which one
// counts.
#include "main/hoofdmenu.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/controle.h"
#include "main/gebruikers.h"
#include "main/teksten.h"
#include "scr/scr.h"
#include "sub/records.h"
#include "sub/tabeldef.h"

namespace {

constexpr uint16_t HOOFDSTUK_MAATWERK = 244 + (1 << 8);
constexpr uint16_t MAATWERK_EERSTE = 501, MAATWERK_LAATSTE = 599;
constexpr int REGELS = 20;  // items a column
constexpr int PROGRAMMAS = 2 * REGELS;

struct Programma {
  std::string titel, naam;
};
std::vector<Programma> programmas;
int gekozen = -1;

template <int N>
void kies() {
  gekozen = N;
}
/// A menu item calls an operation without arguments: one for each place on the screen.
template <size_t... N>
constexpr auto kiezers(std::index_sequence<N...>) {
  return std::array<void (*)(), sizeof...(N)>{kies<static_cast<int>(N)>...};
}
constexpr auto KIEZERS = kiezers(std::make_index_sequence<PROGRAMMAS>());

bool heeft_recht(ICB* dtrel, uint16_t slot) {
  DtRel rec{static_cast<uint16_t>(session_terminal), slot, 0, 0};
  return IXFIRSTR(dtrel, &rec, 2);
}
bool mag(ICB* dtrel, uint16_t slot) {
  const bool maatwerk = slot >= MAATWERK_EERSTE && slot <= MAATWERK_LAATSTE;
  return heeft_recht(dtrel, slot) && (!maatwerk || heeft_recht(dtrel, HOOFDSTUK_MAATWERK));
}

uint8_t menuvariant() {
  uint8_t rec[64]{};
  int32_t nummer = 11;
  iotab('R', &nummer, rec, SYS_RECORDS);
  return rec[2];
}

/// Rights may have changed since the menu was last shown.
void laad() {
  programmas.clear();
  ICB* dthmnu = tabel_open("DTHMNU", IX_LEES);
  ICB* dtrel = tabel_open("DTREL", IX_LEES);
  DtHmnu rec{};
  rec.variant = menuvariant();
  for (bool er = IXFIRSTR(dthmnu, &rec, 1); er && programmas.size() < PROGRAMMAS;
       er = IXNEXT(dthmnu, &rec, 1)) {
    if (!mag(dtrel, rec.slot)) continue;
    programmas.push_back({unscramble_veld(rec.titel, sizeof rec.titel),
                          unscramble_veld(rec.programma, sizeof rec.programma)});
  }
  IXCLOSE(dtrel);
  IXCLOSE(dthmnu);
}

}  // namespace

const char* hoofdmenu() {
  std::string komt_van = session_caller;  // it gets the cursor the first time
  for (;;) {
    laad();
    gekozen = -1;
    menu_begin(0);
    hdr_line('E', "%s", txt(T_HOOFDMENU));
    for (size_t i = 0; i < programmas.size(); ++i) {
      if (i == REGELS) menu_column();
      menu_item(true, true, programmas[i].titel.c_str(), KIEZERS[i]);
      if (komt_van != programmas[i].naam) continue;
      menu_default(KIEZERS[i]);
      komt_van.clear();
    }
    komt_van.clear();
    if (terminal_rec.rechten == 'S') {
      menu_gap();
      menu_item(true, true, txt(T_GEBRUIKERS), gebruikers_lijst);
    }
    if (menu_run() == 0) return nullptr;
    if (gekozen >= 0) return programmas[static_cast<size_t>(gekozen)].naam.c_str();
  }
}
