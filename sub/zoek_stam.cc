// Lookups of colour, article group, target group and action: a field, a list, a pick each.
#include <cstdlib>
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/leesstam.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/zoek.h"
#include "sub/zoek_lijst.h"

namespace {

// Colours: 999 numbered slots ---------------------------------------------------------------------

Kleur kleur_rec;

void kleur_kop(BrwRec*) {
  scr_print(A_LABEL, 1, 1, " %-4.4s %-15.15s", txt(T_ZOEK_KLR), txt(T_ZOEK_KLEUR));
}
const char* kleur_regel(BrwRec* b) {
  str_printf(scr_klad, sizeof scr_klad, "%4u %-15.15s", b->current,
             veld_tekst(kleur_rec.naam, sizeof kleur_rec.naam));
  return scr_klad;
}

// Article groups: by number, name, turnover group -------------------------------------------------

DtArt artikel_rec;
int artikel_orde = 0;

void zet_artg(const char* t) { artikel_rec.nummer = static_cast<uint32_t>(atol(t)); }
void zet_oms(const char* t) { veld_zet(artikel_rec.naam, sizeof artikel_rec.naam, t); }
void zet_omzg(const char* t) { artikel_rec.omzetgroep = static_cast<uint16_t>(atoi(t)); }
const ZoekOrde ARTIKEL_ORDES[] = {{1, T_ZOEK_ARTIKELGROEP, "5s[0123456789],I", zet_artg},
                                  {2, T_ZOEK_KOP_OMS, "20s,I", zet_oms},
                                  {3, T_ZOEK_OMZETGROEP, "5s[0123456789],I", zet_omzg}};

void artikel_kop(BrwRec*) {
  scr_print(A_LABEL, 1, 1, " %-5.5s %-20.20s %5.5s", txt(T_ZOEK_ARTG), txt(T_ZOEK_KOP_OMS),
            txt(T_ZOEK_OMZG));
}
const char* artikel_regel(BrwRec*) {
  str_printf(scr_klad, sizeof scr_klad, "%5lu %-20.20s %5hu", artikel_rec.nummer,
             veld_tekst(artikel_rec.naam, sizeof artikel_rec.naam), artikel_rec.omzetgroep);
  return scr_klad;
}

// Target groups: a small keyed table with maintenance in its list ---------------------------------

DtDoelgr doelgroep_rec;
KeyLijst* doelgroep_open = nullptr;
int doelgroep_orde = 0;
void zet_letter(const char* t) { doelgroep_rec.letter = t[0]; }
const ZoekOrde DOELGROEP_ORDES[] = {{1, T_ZOEK_DOELGROEP, "1s,UI", zet_letter}};

enum Keuze { SELECTEREN, WIJZIGEN, VERWIJDEREN };
const char* keuze_tekst(int i) {
  static const Tekst* const TEKSTEN[] = {&T_PG_SELECTEREN, &T_PG_WIJZIGEN, &T_PG_VERWIJDEREN};
  return i >= 0 && i < 3 ? txt(*TEKSTEN[i]) : "";
}

void doelgroep_kop(BrwRec*) {
  scr_print(A_LABEL, 1, 1, " %-6.6s %-20.20s", txt(T_ZOEK_DGR), txt(T_ZOEK_KOP_OMS));
}
const char* doelgroep_regel(BrwRec*) {
  str_printf(scr_klad, sizeof scr_klad, "  %c    %-20.20s", doelgroep_rec.letter,
             veld_tekst(doelgroep_rec.tekst, sizeof doelgroep_rec.tekst));
  return scr_klad;
}

void doelgroep_wijzig() {
  DtDoelgr rec = doelgroep_rec;
  if (!ctl_has_rights()) return;
  IngBewaar bewaar;
  if (!IXREADL(doelgroep_open->icb, &rec)) {
    IXRELEASE(doelgroep_open->icb, &rec);
    return;
  }
  Venster venster(10, 20, 5, 48, 2);
  win_title(" %s ", txt(T_ZOEK_WIJZIG_DOELGROEP));
  const int kol = 2 + scr_print(A_LABEL, 2, 1, "%s", txt(T_ZOEK_OMS_DOELGROEP));
  INGAVE(2, kol, "20c,E", &K_CANCEL, rec.tekst);
  if (weg_toets()) {
    IXRELEASE(doelgroep_open->icb, &rec);
  } else {
    IXWRITE(doelgroep_open->icb, &rec);
  }
}

void doelgroep_wis() {
  DtDoelgr rec = doelgroep_rec;
  if (!ctl_has_rights()) return;
  IngBewaar bewaar;
  bool ja;
  {
    Venster venster(10, 10, 5, 66, 2);
    win_title(nullptr);
    ja = scr_confirm(2, 2, "[-]%s", txt(T_ZOEK_DOELGROEP_WEG));
  }
  if (!ja) return;
  if (IXREADL(doelgroep_open->icb, &rec)) {
    IXDELETE(doelgroep_open->icb, &rec);
  } else {
    IXRELEASE(doelgroep_open->icb, &rec);
  }
}

/// The choice line of a list that is also kept up: select, change, delete.
void doelgroep_zoek(BrwRec* b) {
  popup_begin(keuze_tekst);
  for (const int i : {SELECTEREN, WIJZIGEN, VERWIJDEREN}) popup_add(i);
  const int keuze = popup_run(brw_search_row(), 2);
  if (weg_toets()) return;
  if (keuze == SELECTEREN) {
    scr_ctx->last_key = K_F3;
  } else if (keuze == WIJZIGEN || keuze == VERWIJDEREN) {
    const DtDoelgr stond = doelgroep_rec;
    if (keuze == WIJZIGEN) {
      doelgroep_wijzig();
    } else {
      doelgroep_wis();
    }
    if (!key_lijst_stap(b, 0)) {
      doelgroep_rec = stond;
      key_lijst_positie(b);
    }
    scr_ctx->last_key = TOETS_ENTER;
    scr_ctx->ing_result = 0;  // the page comes anew from here
    return;
  }
  scr_ctx->ing_result |= ING_LEEG;
}

// Actions: 99 numbered slots ----------------------------------------------------------------------

Actie actie_rec;
void actie_kop(BrwRec*) {
  scr_print(A_LABEL, 1, 1, " %-3.3s %-13.13s %-2.2s  %-27.27s", txt(T_ZOEK_AN), txt(T_ZOEK_PERIODE),
            txt(T_ZOEK_AC), txt(T_ZOEK_KOP_ACTIE));
}
const char* actie_regel(BrwRec* b) {
  char van[8], tm[8];
  date_text(van, actie_rec.van, false);
  date_text(tm, actie_rec.tm, false);
  str_printf(scr_klad, sizeof scr_klad, "%2ld  %6.6s-%6.6s  %1d  %-27.27s", b->current, van, tm,
             actie_rec.code, veld_tekst(actie_rec.tekst, sizeof actie_rec.tekst));
  return scr_klad;
}

}  // namespace

uint16_t kleur_pick(uint16_t vanaf) {
  SysLijst lijst{SYS_KLEUREN, &kleur_rec, T_ZOEK_KLEURNUMMER, "3s[0123456789],I"};
  BrwRec* b = brw_new(sys_lijst_stap, sys_lijst_zoek, kleur_kop, kleur_regel);
  if (b == nullptr) return 0;
  b->data = &lijst;
  int32_t nummer = vanaf == 0 ? 1 : vanaf;
  if (iotab('F', &nummer, &kleur_rec, SYS_KLEUREN)) b->current = static_cast<uint32_t>(nummer);
  uint32_t gekozen = 0;  // the slot: it is what series mean by a number
  const bool keus = lijst_kies(b, txt(T_ZOEK_SEL_KLEUR), T_ZOEK_GEEN, &gekozen);
  return keus ? static_cast<uint16_t>(gekozen) : uint16_t{0};
}

bool ing_kleur(int row, int col, const char* opties, uint16_t* nummer) {
  const uint16_t oud = *nummer;
  const VeldToetsen toetsen;
  for (;;) {
    toetsen.terug();
    INGAVE(row, col, str_format("3d,P%s", opties).c_str(), &K_CANCEL, &K_F5, nummer);
    if (weg_toets()) *nummer = oud;
    if (scr_ctx->last_key != K_F5) return *nummer != oud;
    const uint16_t keus = kleur_pick(*nummer);
    if (keus == 0) continue;
    *nummer = keus;
    scr_print(A_WAARDE, row, col, "%3hu", *nummer);
    return *nummer != oud;
  }
}

uint32_t artikel_pick(uint32_t vanaf) {
  KeyLijst lijst{dtart, &artikel_rec, sizeof artikel_rec, ARTIKEL_ORDES, &artikel_orde};
  BrwRec* b = brw_new(key_lijst_stap, key_lijst_zoek, artikel_kop, artikel_regel);
  if (b == nullptr) return 0;
  b->data = &lijst;
  artikel_rec = {};
  artikel_rec.nummer = vanaf;
  IXSWITCH(dtart, 1);
  if (IXFIRSTR(dtart, &artikel_rec) || IXPREV(dtart, &artikel_rec)) {
    b->current = static_cast<uint32_t>(dtart->record_no);  // whatever the order of the list
  }
  const bool gekozen = lijst_kies(b, txt(T_ZOEK_SEL_ARTIKEL), T_ZOEK_GEEN);
  IXSWITCH(dtart, 1);
  return gekozen ? artikel_rec.nummer : 0;
}

bool ing_artikel(int row, int col, const char* opties, uint32_t* nummer) {
  const uint32_t oud = *nummer;
  const VeldToetsen toetsen;
  for (;;) {
    toetsen.terug();
    INGAVE(row, col, str_format("5l,P%s", opties).c_str(), &K_CANCEL, &K_F5, nummer);
    if (weg_toets()) *nummer = oud;
    if (scr_ctx->last_key != K_F5) return *nummer != oud;
    const uint32_t keus = artikel_pick(*nummer);
    if (keus == 0) continue;
    *nummer = keus;
    scr_print(A_WAARDE, row, col, "%5lu", *nummer);
    return *nummer != oud;
  }
}

char doelgroep_pick() {
  KeyLijst lijst{tabel_open("DTDOELGR", IX_GEDEELD), &doelgroep_rec, sizeof doelgroep_rec,
                 DOELGROEP_ORDES, &doelgroep_orde};
  doelgroep_open = &lijst;
  BrwRec* b = brw_new(key_lijst_stap, doelgroep_zoek, doelgroep_kop, doelgroep_regel);
  if (b != nullptr) b->data = &lijst;
  const bool gekozen = lijst_kies(b, txt(T_ZOEK_DOELGROEP), T_ZOEK_GEEN_DOELGROEPEN);
  IXCLOSE(lijst.icb);
  doelgroep_open = nullptr;
  return gekozen ? doelgroep_rec.letter : '\0';
}

const char* doelgroep_tekst(char letter) {
  static char tekst[sizeof doelgroep_rec.tekst + 1];
  DtDoelgr rec{};
  rec.letter = letter;
  ICB* icb = tabel_open("DTDOELGR", IX_LEES);
  const bool er = IXREAD(icb, &rec);
  IXCLOSE(icb);
  str_printf(tekst, sizeof tekst, "%s",
             er ? veld_tekst(rec.tekst, sizeof rec.tekst) : std::string());
  return tekst;
}

bool ing_doelgroep(int row, int col, const char* opties, char* letter) {
  const char oud = *letter;
  const VeldToetsen toetsen;
  for (;;) {
    toetsen.terug();
    INGAVE(row, col, str_format("1c,%s", opties).c_str(), &K_CANCEL, &K_F5, letter);
    if (weg_toets()) {
      *letter = oud;
      return false;
    }
    if (scr_ctx->last_key == K_F5) {
      const char keus = doelgroep_pick();
      if (keus == 0) continue;
      *letter = keus;
      scr_print(A_WAARDE, row, col, "%1c", *letter);
      return *letter != oud;
    }
    if (*letter == 0 || *doelgroep_tekst(*letter) != 0) return *letter != oud;
    scr_error("<%c> %s", *letter, txt(T_ZOEK_DOELGROEP_FOUT));
  }
}

int actie_pick(int vanaf) {
  SysLijst lijst{SYS_ACTIES, &actie_rec, T_ZOEK_ACTIENUMMER, "2s[0123456789],I"};
  BrwRec* b = brw_new(sys_lijst_stap, sys_lijst_zoek, actie_kop, actie_regel);
  if (b == nullptr) return 0;
  b->data = &lijst;
  int32_t nummer = vanaf < 1 ? 1 : vanaf;
  if (iotab('F', &nummer, &actie_rec, SYS_ACTIES)) b->current = static_cast<uint32_t>(nummer);
  uint32_t gekozen = 0;
  return lijst_kies(b, txt(T_ZOEK_KOP_ACTIE), T_ZOEK_GEEN, &gekozen) ? static_cast<int>(gekozen)
                                                                     : 0;
}

bool ing_actie(int row, int col, const char* opties, uint8_t* nummer) {
  const uint8_t oud = *nummer;
  const VeldToetsen toetsen;
  for (;;) {
    toetsen.terug();
    INGAVE(row, col, str_format("2U,P%s", opties).c_str(), &K_CANCEL, &K_F5, nummer);
    if (weg_toets()) {
      *nummer = oud;
      return false;
    }
    if (scr_ctx->last_key == K_F5) {
      const int keus = actie_pick(*nummer);
      if (keus == 0) continue;
      *nummer = static_cast<uint8_t>(keus);
      scr_print(A_WAARDE, row, col, "%2hu", *nummer);
      return *nummer != oud;
    }
    int32_t record = *nummer;
    if (record == 0 || iotab('R', &record, &actie_rec, SYS_ACTIES)) return *nummer != oud;
    scr_error("<%ld> %s", record, txt(T_ZOEK_ACTIE_FOUT));
  }
}
