// Recording: the operator names a key and what the macro is for, and types it.
#include <string>

#include "isam/base.h"
#include "scr/macro.h"
#include "scr/teksten.h"

namespace {

constexpr int RIJ = 5, KOL = 10, HOOG = 11, BREED = 62;
constexpr int RIJ_OPNAME = RIJ + HOOG + 1;
constexpr int IN_BEELD = 10, NAAM = 5;  // the last keys typed, columns a key
constexpr int OMSCHRIJVING = 30;

bool weg(int key) { return key == K_ESC || key == K_CANCEL; }

/// The key that the macro will stand under; 0 when the operator left.
uint16_t vraag_toets(int kol) {
  scr_move(3, kol);
  for (;;) {
    const int key = key_read(win_nu());
    scr_error("");
    if (weg(key)) return 0;
    if (const uint16_t naam = macro_activerend(key); naam != 0) return naam;
    scr_error("%s", txt(T_ONGELDIGE_TOETS));
  }
}

bool vraag_omschrijving(int kol, MacRec* rec) {
  char tekst[OMSCHRIJVING + 1] = "";
  INGAVE(5, kol, "30s", &K_CANCEL, tekst);
  if (weg_toets()) return false;
  veld_zet(rec->description, sizeof rec->description, tekst);
  return true;
}

void toon_toetsen(const MacRec& rec) {
  char naam[8];
  std::string regel;
  for (int i = rec.count > IN_BEELD ? rec.count - IN_BEELD : 0; i < rec.count; ++i)
    regel += str_format("%-*.*s", NAAM, NAAM, key_name(rec.keys[i], naam));
  scr_clreol(3, 2);
  scr_print(A_WAARDE, 3, 2, "%s", regel);
}

/// False when the operator gave the recording up.
bool neem_op(MacRec* rec) {
  const Venster venster(RIJ_OPNAME, KOL, 5, BREED, 2);
  win_title(" %s ", txt(T_MACRO_OPNAME));
  scr_print(A_LABEL, 1, 2, "%s", txt(T_MACRO_TOETSEN));
  rec->count = 0;
  while (rec->count < MACRO_TOETSEN) {
    toon_toetsen(*rec);
    scr_flush(0);
    const int key = key_read(win_nu());
    if (key == TOETS_CANCEL || key < 0) return false;
    if (key == TOETS_F2) break;
    if (key == 0) {
      scr_beep();
    } else {
      rec->keys[rec->count++] = static_cast<uint16_t>(key);
    }
  }
  return true;
}

/// F2 records, and again when it went wrong; Escape stops.
void opnemen(MacRec rec) {
  for (;;) {
    key_allow(K_CANCEL);
    key_allow(TOETS_F2);
    scr_getkey("");
    if (weg_toets()) return;
    if (neem_op(&rec)) macro_schrijf(rec);
  }
}

}  // namespace

void macro_record(int key) {
  const MacroUit uit;
  MacRec rec{};
  rec.user = macro_staat.gebruiker;
  rec.key = macro_activerend(key);
  const Venster venster(RIJ, KOL, HOOG, BREED, 2);
  win_title(" %s ", txt(T_MACRO_OPNEMEN));
  const int kol = scr_print(A_LABEL, 3, 2, "%s", txt(T_MACRO_ACTIVEREND)) + 3;
  scr_print(A_LABEL, 5, 2, "%s", txt(T_MACRO_OMSCHRIJVING));
  scr_print(A_LABEL, 7, 2, "%s", txt(T_MACRO_DRUK_F2));
  scr_print(A_LABEL, 9, 2, "%s", txt(T_MACRO_DRUK_ESC));
  if (rec.key == 0) rec.key = vraag_toets(kol);
  if (rec.key == 0) return;
  scr_print(A_WAARDE, 3, kol, "%c", static_cast<char>(rec.key));
  if (vraag_omschrijving(kol, &rec)) opnemen(rec);
}
