// The four small code tables: action, correction, purchase code and part season. Ten codes each, 0
// to 9, code c in record c + 1; one window shows them all.
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/records.h"
#include "sub/teksten.h"
#include "sub/zoek.h"
#include "sub/zoek_lijst.h"

namespace {

constexpr int CODES = 10;

struct Codetabel {
  const SysTabel& tabel;
  const Tekst& label;  // of the field
  const Tekst& naam;   // in titles
};
const Codetabel TABELLEN[] = {
    {SYS_CODES_ACTIE, T_ZOEK_ACTIECODE, T_ZOEK_NAAM_ACTIECODE},
    {SYS_CODES_CORRECTIE, T_ZOEK_CORRECTIECODE, T_ZOEK_NAAM_CORRECTIECODE},
    {SYS_CODES_INKOOP, T_ZOEK_INKOOPCODE, T_ZOEK_NAAM_INKOOPCODE},
    {SYS_CODES_SEIZOEN, T_ZOEK_DEELSEIZOEN, T_ZOEK_NAAM_DEELSEIZOEN}};

const Codetabel* codetabel(int nummer) {
  return nummer >= 1 && nummer <= 4 ? &TABELLEN[nummer - 1] : nullptr;
}

bool lees_code(const Codetabel& t, int code, Codetekst* rec) {
  int32_t nummer = code + 1;
  *rec = {};
  return iotab('R', &nummer, rec, t.tabel);
}

enum Keuze { SELECTEREN, WIJZIGEN, VERWIJDEREN };
const char* keuze_tekst(int i) {
  static const Tekst* const TEKSTEN[] = {&T_PG_SELECTEREN, &T_PG_WIJZIGEN, &T_PG_VERWIJDEREN};
  return i >= 0 && i < 3 ? txt(*TEKSTEN[i]) : "";
}

void toon_codes(const Codetabel& t) {
  scr_print(A_LABEL, 1, 2, "%-2.2s %-20.20s", txt(T_ZOEK_NR), txt(T_ZOEK_KOP_OMS));
  for (int c = 0; c < CODES; ++c) {
    Codetekst rec;
    scr_clreol(c + 2, 1);
    if (lees_code(t, c, &rec)) {
      scr_print(A_WAARDE, c + 2, 2, "%1d %-20.20s", c, veld_tekst(rec.tekst, sizeof rec.tekst));
    }
  }
}

/// Asks for one of the ten; -1 when it is left. A code that is not in use is refused, but for a
/// change.
int vraag_code(const Codetabel& t, bool ook_leeg) {
  for (;;) {
    char teken[1] = {0};
    scr_clreol(CODES + 3, 1);
    const int kol = 3 + scr_print(A_LABEL, CODES + 3, 2, "%s", txt(t.label));
    INGAVE(CODES + 3, kol, "1c[0123456789],IA", &K_CANCEL, teken);
    if (weg_toets() || teken[0] < '0' || teken[0] > '9') return -1;
    Codetekst rec;
    const int code = teken[0] - '0';
    if (ook_leeg || lees_code(t, code, &rec)) return code;
    scr_error("<%c> %s", teken[0], txt(T_PG_INGAVE));
  }
}

void wijzig(const Codetabel& t, int code) {
  if (!ctl_has_rights()) return;
  int32_t nummer = code + 1;
  Codetekst rec{};
  iotab('X', &nummer, &rec, t.tabel);  // an empty slot reads as false, with its lock
  Venster venster(10, 20, 5, 40, 2);
  win_title(" %s %s ", txt(T_ZOEK_WIJZIGEN), txt(t.naam));
  scr_print(A_LABEL, 2, 2, "%d", code);
  INGAVE(2, 5, "20c", &K_CANCEL, rec.tekst);
  if (weg_toets()) {
    iotab('U', &nummer, &rec, t.tabel);
  } else {
    iotab('W', &nummer, &rec, t.tabel);
  }
}

void wis(const Codetabel& t, int code) {
  if (!ctl_has_rights()) return;
  bool ja;
  {
    Venster venster(10, 20, 5, 46, 2);
    win_title(" %s %s ", txt(T_PG_WEG), txt(t.naam));
    ja = scr_confirm(2, 2, "[-]%s", txt(T_PG_WEG));
  }
  int32_t nummer = code + 1;
  Codetekst rec{};
  if (ja) iotab('D', &nummer, &rec, t.tabel);
}

/// The list with its choice line: select, change, delete.
int onderhoud_codes(const Codetabel& t) {
  for (;;) {
    toon_codes(t);
    popup_begin(keuze_tekst);
    for (const int i : {SELECTEREN, WIJZIGEN, VERWIJDEREN}) popup_add(i);
    key_allow(K_CANCEL);
    const int keuze = popup_run(CODES + 3, 1);
    if (keuze < 0) return -1;
    const int code = vraag_code(t, keuze == WIJZIGEN);
    if (code < 0) continue;
    if (keuze == SELECTEREN) return code;
    if (keuze == WIJZIGEN) {
      wijzig(t, code);
    } else {
      wis(t, code);
    }
  }
}

}  // namespace

int code_pick(int tabel, bool onderhoud) {
  const Codetabel* t = codetabel(tabel);
  if (t == nullptr) return -1;
  IngBewaar bewaar;
  Venster venster(3, 48, 15, 30, 2);
  win_title(" %s ", str_format("%s %s", txt(T_ZOEK_RAADPLEGEN), txt(t->naam)));
  if (onderhoud) return onderhoud_codes(*t);
  toon_codes(*t);
  return vraag_code(*t, false);
}

bool ing_code(int row, int col, const char* opties, int tabel, uint8_t* code) {
  const uint8_t oud = *code;
  const VeldToetsen toetsen;
  for (;;) {
    toetsen.terug();
    char teken[1] = {static_cast<char>(*code <= 9 ? '0' + *code : 0)};
    INGAVE(row, col, str_format("1c[0123456789],%s", opties).c_str(), &K_CANCEL, &K_F5, teken);
    if (weg_toets()) return false;
    if (scr_ctx->last_key == K_F5) {
      const int keus = code_pick(tabel, false);
      if (keus < 0) continue;
      *code = static_cast<uint8_t>(keus);
      scr_print(A_WAARDE, row, col, "%hu", *code);
      return *code != oud;
    }
    if (teken[0] == 0) return false;
    if (*code_tekst(tabel, teken[0] - '0') != 0) {
      *code = static_cast<uint8_t>(teken[0] - '0');
      return *code != oud;
    }
    scr_error("<%c> %s", teken[0], txt(T_PG_INGAVE));
  }
}

const char* code_tekst(int tabel, int code) {
  static char tekst[21];
  Codetekst rec{};
  const Codetabel* t = codetabel(tabel);
  const bool er = t != nullptr && code >= 0 && code < CODES && lees_code(*t, code, &rec);
  str_printf(tekst, sizeof tekst, "%s",
             er ? veld_tekst(rec.tekst, sizeof rec.tekst) : std::string());
  return tekst;
}
