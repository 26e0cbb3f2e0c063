// The brand lookup: a field that takes a number or a search name, and a list in three orders in
// which several brands can be marked. The choice lives in a private index over the brand file, so
// that a selection can test a series by one keyed read; an empty index means no restriction.
#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/leesstam.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/zoek.h"
#include "sub/zoek_lijst.h"

namespace {

DtMerk lijst_rec;
int merk_orde = 1;  // by search name, until the operator changes it

void zet_nummer(const char* tekst) { lijst_rec.nummer = static_cast<uint16_t>(atoi(tekst)); }
void zet_zoeknaam(const char* tekst) {
  veld_zet(lijst_rec.zoeknaam, sizeof lijst_rec.zoeknaam, tekst);
}
void zet_naam(const char* tekst) { veld_zet(lijst_rec.naam, sizeof lijst_rec.naam, tekst); }

const ZoekOrde ORDES[] = {{1, T_ZOEK_NUMMER, "4s[0123456789],I", zet_nummer},
                          {2, T_ZOEK_ZOEKNAAM, "4s,UI", zet_zoeknaam},
                          {3, T_ZOEK_NAAM, "10s,UI", zet_naam}};

KeyLijst merk_lijst() { return {dtmerk, &lijst_rec, sizeof lijst_rec, ORDES, &merk_orde}; }

void kop(BrwRec* b) {
  const char *nr = txt(T_ZOEK_MERKNR), *naam = txt(T_ZOEK_MERKNAAM), *kort = txt(T_ZOEK_MKZN);
  switch (merk_orde) {
    case 0:
      scr_print(A_LABEL, 1, 1, " %-6.6s %-20.20s %-4.4s", nr, naam, kort);
      break;
    case 1:
      scr_print(A_LABEL, 1, 1, " %-4.4s %-6.6s %-20.20s", kort, nr, naam);
      break;
    default:
      scr_print(A_LABEL, 1, 1, " %-20.20s %-4.4s %-6.6s", naam, kort, nr);
      break;
  }
  static_cast<void>(b);
}

const char* regel(BrwRec*) {
  const std::string naam = veld_tekst(lijst_rec.naam, sizeof lijst_rec.naam);
  const std::string kort = veld_tekst(lijst_rec.zoeknaam, sizeof lijst_rec.zoeknaam);
  const uint16_t nr = lijst_rec.nummer;
  switch (merk_orde) {
    case 0:
      str_printf(scr_klad, sizeof scr_klad, "%4u   %-20.20s %-4.4s", nr, naam, kort);
      break;
    case 1:
      str_printf(scr_klad, sizeof scr_klad, "%-4.4s %4u   %-20.20s", kort, nr, naam);
      break;
    default:
      str_printf(scr_klad, sizeof scr_klad, "%-20.20s %-4.4s %4u  ", naam, kort, nr);
      break;
  }
  return scr_klad;
}

/// The count of marks at the right of the bottom row, then the search field.
void zoek(BrwRec* b) {
  const int rij = brw_search_row();
  const std::string aantal = b->mark_count > 0 || b->inverted != 0
                                 ? str_format(b->inverted != 0 ? " *-%d" : " %d", b->mark_count)
                                 : std::string();
  const int breed = static_cast<int>(aantal.size()) + 1;
  scr_clreol(rij, 1);
  if (!aantal.empty() && breed < win_width()) {
    scr_pijl(A_WAARDE, rij, win_width() - breed + 1, true);
    scr_print(A_WAARDE, rij, win_width() - breed + 2, "%s", aantal);
  }
  key_lijst_zoek(b);
}

int tel(ICB* gekozen) {
  DtMerk rec{};
  int aantal = 0;
  for (bool er = IXFIRSTK(gekozen, &rec, 1); er; er = IXNEXTK(gekozen, &rec, 1)) ++aantal;
  return aantal;
}

int32_t merken_in_bestand() {
  const int8_t sleutel = dtmerk->block.key_number;
  IXSWITCH(dtmerk, 1);
  const int aantal = tel(dtmerk);
  IXSWITCH(dtmerk, sleutel);
  return aantal;
}

void voeg_toe(ICB* gekozen, int32_t record_no, DtMerk* rec) {
  gekozen->record_no = record_no;
  IXADDKEYS(gekozen, rec);
}

/// Marks in the list what the private index holds, but for brands that have gone since.
void markeer(BrwRec* b, ICB* gekozen) {
  DtMerk rec{};
  for (bool er = IXFIRSTK(gekozen, &rec, 1); er; er = IXNEXTK(gekozen, &rec, 1)) {
    DtMerk merk{};
    if (IXGET(dtmerk, &merk, gekozen->record_no) != 1 || merk.nummer != rec.nummer) continue;
    brw_mark_add(b, static_cast<uint32_t>(gekozen->record_no));
  }
}

struct Keus {
  int32_t record_no;
  DtMerk rec;
};

/// What the operator marked, in the order of marking.
std::vector<Keus> verzamel(BrwRec* b) {
  std::vector<Keus> keuzen;
  while (brw_run(b, 0) == 1) keuzen.push_back({static_cast<int32_t>(b->current), lijst_rec});
  return keuzen;
}

/// The list with marks, opened at the record in lijst_rec. -1 when it was left: nothing changed.
int kies_meer(ICB* gekozen) {
  IngBewaar bewaar;
  KeyLijst lijst = merk_lijst();
  BrwRec* b = brw_new(key_lijst_stap, zoek, kop, regel);
  if (b == nullptr) return -1;
  b->data = &lijst;
  b->multi = 1;
  b->title = str_format(" %s ", txt(T_ZOEK_MERKEN));
  markeer(b, gekozen);
  // By its number: in the other orders brands may be equal.
  IXSWITCH(dtmerk, 1);
  if (DtMerk rec = lijst_rec; rec.nummer != 0 && IXEXISTS(dtmerk, &rec)) {
    b->current = static_cast<uint32_t>(dtmerk->record_no);
  } else {
    key_lijst_positie(b);
  }
  int aantal = -1;
  if (!b->move(b, 0)) {
    lijst_geen();
  } else if (const std::vector<Keus> keuzen = verzamel(b); !keuzen.empty()) {
    IXINIT(gekozen);
    aantal = static_cast<int>(keuzen.size());
    if (aantal == merken_in_bestand()) aantal = 0;  // all of them is no restriction
    for (int i = 0; i < aantal; ++i) {
      Keus k = keuzen[static_cast<size_t>(i)];
      voeg_toe(gekozen, k.record_no, &k.rec);
    }
  }
  brw_free(b);
  IXSWITCH(dtmerk, 1);
  return aantal;
}

/// The one record whose search name starts with the text; false leaves lijst_rec at the nearest.
bool eenduidig(const char* tekst) {
  const size_t n = strlen(tekst);
  const auto begint_met = [&] {
    char naam[sizeof lijst_rec.zoeknaam + 1] = "";
    memcpy(naam, lijst_rec.zoeknaam, sizeof lijst_rec.zoeknaam);
    return strncmp(str_upper(naam), tekst, n) == 0;
  };
  lijst_rec = {};
  zet_zoeknaam(tekst);
  IXSWITCH(dtmerk, 2);
  bool uniek = false;
  if (!IXFIRSTR(dtmerk, &lijst_rec)) {
    IXPREV(dtmerk, &lijst_rec);
  } else if (begint_met()) {
    const DtMerk eerste = lijst_rec;
    uniek = !IXNEXT(dtmerk, &lijst_rec) || !begint_met();
    lijst_rec = eerste;
  }
  IXSWITCH(dtmerk, 1);
  return uniek;
}

/// The first brand of the choice becomes the field's number; 0 without any.
uint16_t eerste_keus(ICB* gekozen) {
  DtMerk rec{};
  return IXFIRSTK(gekozen, &rec, 1) ? rec.nummer : uint16_t{0};
}

void toon(int row, int col, uint16_t nummer, uint16_t oud) {
  if (nummer == 0) {
    scr_print(A_WAARDE, row, col, "%4s", "");
  } else {
    scr_print(A_WAARDE, row, col, "%4d", nummer);
  }
  scr_ctx->ing_result = nummer != oud ? ING_ANDERS : 0;
}

enum class Zoekresultaat { een, lijst };

Zoekresultaat zoek_tekst(const char* tekst) {
  if (scr_ctx->last_key == K_F5) return Zoekresultaat::lijst;
  lijst_rec = {};
  if (alleen_cijfers(tekst) && lees_merk(dtmerk, &lijst_rec, static_cast<uint16_t>(atoi(tekst)))) {
    IXSWITCH(dtmerk, 1);
    return Zoekresultaat::een;
  }
  return eenduidig(tekst) ? Zoekresultaat::een : Zoekresultaat::lijst;
}

/// A single hit replaces the choice.
void neem_een(ICB* gekozen) {
  IXSWITCH(dtmerk, 1);
  DtMerk rec = lijst_rec;
  if (!IXEXISTS(dtmerk, &rec)) return;
  IXINIT(gekozen);
  voeg_toe(gekozen, dtmerk->record_no, &rec);
}

}  // namespace

int ing_merk_multi(ICB* gekozen) {
  lijst_rec = {};
  return kies_meer(gekozen);
}

uint16_t ing_merk_pick() {
  KeyLijst lijst = merk_lijst();
  BrwRec* b = brw_new(key_lijst_stap, key_lijst_zoek, kop, regel);
  if (b != nullptr) b->data = &lijst;
  const bool gekozen = lijst_kies(b, txt(T_ZOEK_MERK), T_ZOEK_GEEN);
  IXSWITCH(dtmerk, 1);
  return gekozen ? lijst_rec.nummer : uint16_t{0};
}

int ing_merk(int row, int col, const char* opties, uint16_t* nummer, ICB* gekozen) {
  if (gekozen == nullptr) ctl_fault("ing_merk", 1);
  key_allow(K_F5);
  IngRec* const toetsen = ing_new();
  const int aantal = tel(gekozen);
  const uint16_t oud = *nummer;
  const char* const formaat = strchr(opties, 'E') != nullptr ? "4s,UE" : "4s,U";
  int uit = -1;
  while (uit < 0) {
    char tekst[5] = "";
    if (*nummer != 0 && strchr(opties, 'I') == nullptr)
      str_printf(tekst, sizeof tekst, "%u", *nummer);
    ing_restore(toetsen);
    INGAVE(row, col, formaat, tekst);
    if (weg_toets()) {
      uit = aantal;
    } else if (tekst[0] == 0 && scr_ctx->last_key != K_F5) {
      merk_rec = {};
      *nummer = 0;
      uit = 0;
    } else {
      if (scr_ctx->last_key == K_F5) {
        lijst_rec = {};
        lees_merk(dtmerk, &lijst_rec, *nummer);
      }
      if (zoek_tekst(tekst) == Zoekresultaat::een) {
        neem_een(gekozen);
        uit = 1;
      } else {
        uit = kies_meer(gekozen);
      }
      if (uit >= 0) {
        *nummer = eerste_keus(gekozen);
        toon(row, col, *nummer, oud);
      }
    }
  }
  ing_free(toetsen);
  return uit;
}
