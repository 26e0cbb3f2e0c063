// The selection record and its criteria screen: which series a command works on.
#pragma once

#include <cstdint>

#include "isam/ix.h"

/// In the order of the record; a stored 0 in a date means that nothing was entered.
struct SelRec {
  uint16_t dat_van, dat_tm;
  uint32_t artgroep_van, artgroep_tm;
  uint16_t merk, leverancier, kleur_van, kleur_tm;
  char doelgroep[11], seizoen[3];
  uint8_t deelseizoen[10], inkoopcode[10];
  int32_t voorraad_van, voorraad_tm, ontvangen_tm, ontvangen_van;
  uint8_t stdmod;
  uint16_t jaar_van, jaar_tm;
  uint8_t filialen[32];
  uint16_t orddat, ontdat, vrkdat, cordat;
  uint8_t verwijderen, verwijder_soort, prijzen, actie;
  uint16_t sel_nr;
  char sel_oms[30];
  uint16_t begin_van, begin_tm, eind_van, eind_tm, creatie_van, creatie_tm;
  char model[15];
  uint8_t kenmerk_nr;
  char kenmerk_waarde[2];
  uint8_t edi;
};
extern SelRec sel_rec, sel_vorig;
extern int sel_soort;         // 1 to 26
extern char sel_letters[27];  // the kind's field letters, in screen order
extern uint8_t sel_default[256],
    sel_status[256];            // by letter; below 254 the field is at its default
extern uint16_t sel_datums[8];  // by default code: 1 first, 2 last, 4 today, 7 first
extern int32_t merk_aantal;     // brands in the list
extern bool merk_een;           // exactly one
inline constexpr uint8_t SEL_LIJST = 254, SEL_INGEVOERD = 255;

/// Starts a kind: brand list removed, fields set up, slot 0 read. 0 takes back the last selection.
void sel_start(int soort);
/// A kind with nothing entered; touches no file.
void sel_standaard(int soort);
void sel_velden();
void sel_scherm();
void sel_aanvullen();
void sel_toon(char letter);
void sel_ingave(char letter);
/// Lines into the report in hand: the whole selection under a head of its own; only what was set.
void sel_druk();
void sel_kop();
void sel_filialen(const uint8_t map[32]);
/// The brand list file DTMERK.nn: open for reading or filling, made when missing.
ICB* merklijst_open(int mode);
void merklijst_leeg();

// Saved selections (sub/sel_bewaar).
void sel_schrijf(int slot);
void sel_lees(int slot);
int sel_kies();
void sel_bewaar();
