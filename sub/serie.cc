// From criteria to series: the test of one series and the walk that jumps with the key. One brand
// or a range of article groups is found without reading the rest of the table.
#include "sub/serie.h"

#include <algorithm>
#include <cstring>

#include "scr/scr.h"
#include "sub/leesstam.h"
#include "sub/sel_krit.h"
#include "sub/sel_tabel.h"
#include "sub/tabellen.h"

int serie_rij = 21;
bool (*serie_haak)() = nullptr;

namespace {

// Beyond every article group and colour that exists; the last marks a walk that has ended.
constexpr uint32_t ARTGROEP_VOORBIJ = 100000, ARTGROEP_EINDE = 200000;
constexpr uint16_t KLEUR_VOORBIJ = 1000;
constexpr int K_VOORTGANG = 9;

struct Wandeling {
  ICB* lijst = nullptr;  // the brand list
  DtMerk merk{};         // the brand in hand
  bool per_merk = false;
  bool sprong = false;  // the buffer holds a place to begin at, not a series that was read
};
Wandeling gang;

ICB* merkenlijst() {
  if (gang.lijst == nullptr) gang.lijst = merklijst_open(IX_LEES);
  return gang.lijst;
}

bool afgebroken() { return scr_ctx != nullptr && scr_interrupted(); }

/// Everything in the three keys behind the article group, or behind the colour.
void wis_achter_artgroep() {
  ser_rec.doelgroep = 0;
  memset(ser_rec.model, 0, sizeof ser_rec.model);
  ser_rec.nr.kleur = ser_rec.nr.volgnr = 0;
}

/// Moves the place in the buffer on to where the limits begin again. It never moves back: numbers
/// beyond the usual ones, as a damaged table may hold, stay where they are.
void spring() {
  const Serienr oud = ser_rec.nr;
  if (ser_rec.nr.artgroep < sel_rec.artgroep_van) {
    ser_rec.nr.artgroep = sel_rec.artgroep_van;
    wis_achter_artgroep();
  }
  if (ser_rec.nr.artgroep > sel_rec.artgroep_tm && ser_rec.nr.artgroep < ARTGROEP_VOORBIJ) {
    ser_rec.nr.artgroep = ARTGROEP_VOORBIJ;
    wis_achter_artgroep();
  }
  if (ser_rec.nr.kleur < sel_rec.kleur_van) {
    ser_rec.nr.kleur = sel_rec.kleur_van;
    ser_rec.nr.volgnr = 0;
  }
  if (ser_rec.nr.kleur > sel_rec.kleur_tm && ser_rec.nr.kleur < KLEUR_VOORBIJ) {
    ser_rec.nr.kleur = KLEUR_VOORBIJ;
    ser_rec.nr.volgnr = 0;
  }
  if (!(ser_rec.nr == oud)) gang.sprong = true;
}

/// The next series at or behind the place; within the brand when walking by brand.
bool lees_verder() {
  const int velden = gang.per_merk ? 1 : 0;
  const bool begin = gang.sprong;
  gang.sprong = false;
  return begin ? IXFIRSTR(dtser, &ser_rec, velden) : IXNEXT(dtser, &ser_rec, velden);
}

bool volgend_merk() {
  if (!IXNEXT(merkenlijst(), &gang.merk)) return false;
  memset(&ser_rec, 0, sizeof ser_rec);
  ser_rec.merk = gang.merk.nummer;
  gang.sprong = true;
  return true;
}

void toon_voortgang() {
  if (scr_ctx == nullptr) return;
  scr_print(A_WAARDE, serie_rij, K_VOORTGANG, "%-14.14s", serie_tekst(ser_rec.nr));
}

bool einde() {
  ser_rec.nr.artgroep = ARTGROEP_EINDE;
  return false;
}

// The tests ---------------------------------------------------------------------------------------

bool merk_past() {
  if (sel_rec.merk == 0 || gang.per_merk) return true;
  DtMerk merk{};
  merk.nummer = ser_rec.merk;
  return IXEXISTS(merkenlijst(), &merk);
}

bool jaar_past() {
  const bool modisch = ser_rec.jaar != 0;
  if (sel_rec.stdmod == 1) return !modisch;
  if (!modisch) return sel_rec.stdmod != 2;
  const int waarde = ser_rec.jaar * 10 + seizoen_code(ser_rec.hoofdseizoen);
  return waarde >= sel_rec.jaar_van && waarde <= sel_rec.jaar_tm;
}

bool kenmerk_past() {
  if (sel_rec.kenmerk_nr == 0) return true;
  if (art_rec.kenmerk_nr != sel_rec.kenmerk_nr) return false;
  return sel_rec.kenmerk_waarde[0] == 0 ||
         memcmp(sel_rec.kenmerk_waarde, ser_rec.kenmerk, sizeof ser_rec.kenmerk) == 0;
}

/// An empty list holds every letter; no list holds the letter zero.
template <size_t N>
bool in_lijst(const char (&lijst)[N], char letter) {
  if (lijst[0] == 0) return true;
  return letter != 0 && memchr(lijst, letter, strnlen(lijst, N)) != nullptr;
}

template <class T>
bool binnen(T waarde, T van, T tm) {
  return waarde >= van && waarde <= tm;
}

}  // namespace

int serie_methode() {
  if (sel_rec.merk != 0) return 2;
  return sel_rec.artgroep_van != 0 || sel_rec.artgroep_tm != ARTGROEP_VOORBIJ ? 1 : 0;
}

bool serie_test() {
  if (!merk_past()) return false;
  if (dtart != nullptr) lees_artikel(dtart, &art_rec, ser_rec.nr.artgroep);
  if (!binnen(ser_rec.nr.artgroep, sel_rec.artgroep_van, sel_rec.artgroep_tm)) return false;
  if (!binnen(ser_rec.nr.kleur, sel_rec.kleur_van, sel_rec.kleur_tm)) return false;
  if (!jaar_past()) return false;
  if (sel_rec.model[0] != 0 && memcmp(sel_rec.model, ser_rec.model, sizeof ser_rec.model) != 0) {
    return false;
  }
  if (!kenmerk_past()) return false;
  if (!in_lijst(sel_rec.doelgroep, ser_rec.doelgroep)) return false;
  if (!in_lijst(sel_rec.seizoen, ser_rec.hoofdseizoen)) return false;
  if (ser_rec.deelseizoen > 9 || sel_rec.deelseizoen[ser_rec.deelseizoen] == 0) return false;
  return serie_haak == nullptr || serie_haak();
}

bool serie_volgende() {
  for (;;) {
    if (afgebroken()) return einde();
    spring();
    if (!lees_verder()) {
      if (!gang.per_merk || !volgend_merk()) return einde();
      continue;
    }
    if (!gang.per_merk && ser_rec.nr.artgroep > sel_rec.artgroep_tm) return einde();
    toon_voortgang();
    if (serie_test()) return true;
  }
}

bool serie_eerste() {
  if (scr_ctx != nullptr) {
    scr_clreol(serie_rij, 1);
    scr_print(A_LABEL, serie_rij, 1, "%s", txt(T_SERIE_SERIENR));
  }
  memset(&ser_rec, 0, sizeof ser_rec);
  memset(&gang.merk, 0, sizeof gang.merk);
  gang.per_merk = sel_rec.merk != 0;
  gang.sprong = true;
  if (gang.per_merk && !IXFIRSTR(merkenlijst(), &gang.merk)) return einde();
  ser_rec.nr.artgroep = sel_rec.artgroep_van;
  ser_rec.merk = gang.per_merk ? gang.merk.nummer : sel_rec.merk;
  return serie_volgende();
}

void serie_einde() {
  if (gang.lijst != nullptr) IXCLOSE(gang.lijst);
  gang = {};
}
