// The list of stored branch series: picking one, and their maintenance. Series 1 always exists.
#include <algorithm>
#include <cstring>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/iotab.h"
#include "scr/scr.h"
#include "sub/pghdl_intern.h"
#include "sub/records.h"
#include "sub/teksten.h"

namespace {

constexpr int BREEDTE = 50;  // of the set's text in a line
constexpr const char* NAAM = "%-20.20s";

Filiaalreeks reeks;  // the one in hand

enum Item { SELECTEREN, WIJZIGEN, TOEVOEGEN, VERWIJDEREN, ITEMS };

const char* item_tekst(int item) {
  static const Tekst* const teksten[ITEMS] = {&T_PG_SELECTEREN, &T_PG_WIJZIGEN, &T_PG_TOEVOEGEN,
                                              &T_PG_VERWIJDEREN};
  return item >= 0 && item < ITEMS ? txt(*teksten[item]) : "";
}

bool reeks_io(char actie, int32_t* nummer) {
  return iotab(actie, nummer, &reeks, SYS_FILIAALREEKSEN);
}

/// The first stored series from here; its number, 0 when there is none.
int32_t eerste_reeks() {
  int32_t nummer = 1;
  return reeks_io('F', &nummer) ? nummer : 0;
}

void schrijf_reeks(int32_t nummer) {
  reeks.nummer = nummer;
  reeks_io('W', &nummer);
}

/// Series 1 is made when the table is empty.
int32_t zorg_voor_eerste() {
  const int32_t nummer = eerste_reeks();
  if (nummer != 0) return nummer;
  reeks = Filiaalreeks{};
  pg_fill(reeks.filialen);
  veld_zet(reeks.naam, sizeof reeks.naam, txt(T_PG_ALLE_FILIALEN));
  schrijf_reeks(1);
  return 1;
}

std::string reeks_naam() { return veld_tekst(reeks.naam, sizeof reeks.naam); }

std::string set_tekst(int breedte) {
  return pg_is_all(reeks.filialen) ? txt(T_PG_ALLE) : pg_show('F', reeks.filialen, breedte);
}

// Callbacks of the browser ------------------------------------------------------------------------

bool ga(BrwRec* b, int n) {
  auto nummer = static_cast<int32_t>(b->current);
  if (nummer == -1) nummer = eerste_reeks();
  if (!reeks_io('R', &nummer)) return false;
  b->current = static_cast<uint32_t>(nummer);
  for (; n != 0; n += n > 0 ? -1 : 1) {
    if (!reeks_io(n > 0 ? 'N' : 'P', &nummer)) return false;
    b->current = static_cast<uint32_t>(nummer);
  }
  return true;
}

void kop(BrwRec*) {
  scr_print(A_LABEL, 1, 2, "%-20.20s %s", txt(T_PG_KOP_OMSCHRIJVING), txt(T_PG_KOP_FILIALEN));
}

const char* regel(BrwRec*) {
  str_printf(scr_klad, sizeof scr_klad, "%-20.20s %-*.*s", reeks_naam(), BREEDTE, BREEDTE,
             set_tekst(BREEDTE));
  return scr_klad;
}

// Maintenance -------------------------------------------------------------------------------------

constexpr int RIJ_NAAM = 2, RIJ_SET = 3, KOL_LABEL = 2, KOL_VELD = 15;
constexpr const char* SET_VELD = "60s";

void toon_labels(const Tekst& titel) {
  win_title("%s", txt(titel));
  scr_print(A_LABEL, RIJ_NAAM, KOL_LABEL, "%s", txt(T_PG_OMSCHRIJVING));
  scr_print(A_LABEL, RIJ_SET, KOL_LABEL, "%s", txt(T_PG_FILIALEN));
}

void toon_set() { pg_toon_veld(RIJ_SET, KOL_VELD, SET_VELD, set_tekst(60).c_str()); }

/// Name and set; false when the operator left. An empty set means all branches.
bool vraag_reeks(const char* naam_formaat, const char* set_formaat) {
  INGAVE(RIJ_NAAM, KOL_VELD, naam_formaat, &K_CANCEL, reeks.naam);
  if (weg_toets()) return false;
  // A full set comes up empty: its numbers would not be what "alle" means later.
  if (pg_is_all(reeks.filialen)) pg_clear(reeks.filialen);
  key_allow(K_CANCEL);
  pg_field(RIJ_SET, KOL_VELD, set_formaat, reeks.filialen);
  if (weg_toets()) return false;
  static constexpr uint8_t leeg[32] = {};
  if (std::memcmp(reeks.filialen, leeg, sizeof leeg) == 0) pg_fill(reeks.filialen);
  toon_set();
  return true;
}

int32_t vrij_nummer() {
  Filiaalreeks ander;
  for (int32_t n = 1; n <= SYS_FILIAALREEKSEN.aantal; ++n) {
    int32_t nummer = n;
    if (!iotab('R', &nummer, &ander, SYS_FILIAALREEKSEN)) return n;
  }
  return 0;
}

/// Writes the new series in a slot that is still free under its lock: another terminal may have
/// taken the one that was free before the questions.
int32_t bewaar_nieuw() {
  Filiaalreeks ander;
  for (int32_t n = vrij_nummer(); n != 0; n = vrij_nummer()) {
    int32_t nummer = n;
    if (!iotab('X', &nummer, &ander, SYS_FILIAALREEKSEN)) {
      schrijf_reeks(n);
      return n;
    }
    iotab('U', &nummer, &ander, SYS_FILIAALREEKSEN);
  }
  return 0;
}

void meld_vol() { FFLASH(-1, 1, 0, txt(T_PG_FOUTMELDING), txt(T_PG_GEEN_RUIMTE)); }

/// The number that the browser goes to; 0 when nothing changed.
int32_t toevoegen() {
  if (vrij_nummer() == 0) return meld_vol(), 0;
  const Venster venster(10, 3, 6, 77);
  reeks = Filiaalreeks{};
  toon_labels(T_PG_TITEL_TOEVOEGEN);
  if (!vraag_reeks("20c,EI", "60s,I")) return 0;
  const int32_t nummer = bewaar_nieuw();
  if (nummer == 0) meld_vol();
  return nummer;
}

int32_t wijzigen() {
  const Venster venster(10, 3, 6, 77);
  toon_labels(T_PG_TITEL_WIJZIGEN);
  toon_set();
  if (vraag_reeks("20c,E", SET_VELD)) schrijf_reeks(reeks.nummer);
  return reeks.nummer;
}

int32_t verwijderen() {
  const Venster venster(10, 3, 6, 77);
  toon_labels(T_PG_TITEL_VERWIJDEREN);
  scr_print(A_WAARDE, RIJ_NAAM, KOL_VELD, NAAM, reeks_naam());
  toon_set();
  if (!scr_confirm(4, KOL_LABEL, "%s", txt(T_PG_WEG))) return 0;
  int32_t nummer = reeks.nummer;
  reeks_io('D', &nummer);
  return zorg_voor_eerste();
}

/// The page is drawn anew from this series.
void naar(BrwRec* b, int32_t nummer) {
  scr_ctx->last_key = TOETS_ENTER;
  scr_ctx->ing_result &= ~ING_LEEG;
  b->draw_mode = 2;
  if (nummer != 0) b->current = static_cast<uint32_t>(nummer);
}

void zoek(BrwRec* b) {
  reeks.nummer = static_cast<int32_t>(b->current);
  popup_begin(item_tekst);
  for (int item = 0; item < ITEMS; ++item) popup_add(item);
  const int keuze = popup_run(brw_search_row(), 2);
  switch (keuze) {
    case SELECTEREN:
      scr_ctx->last_key = K_F3;
      scr_ctx->ing_result |= ING_LEEG;
      return;
    case WIJZIGEN:
      return naar(b, wijzigen());
    case TOEVOEGEN:
      return naar(b, toevoegen());
    case VERWIJDEREN:
      return naar(b, verwijderen());
    default:
      scr_ctx->ing_result |= ING_LEEG;  // a key of the browser's own
  }
}

}  // namespace

bool pg_list(uint8_t* set) {
  zorg_voor_eerste();
  BrwRec* const b = brw_new(ga, zoek, kop, regel);
  if (b == nullptr) return false;
  const bool gekozen = brw_run(b, 0) != 0;
  if (gekozen) std::copy_n(reeks.filialen, sizeof reeks.filialen, set);
  brw_free(b);
  return gekozen;
}
