// Lookup fields and lists of the codes that series carry.
#pragma once

#include <cstdint>

#include "isam/ix.h"
#include "sub/records.h"

/// Brand field. Options I and E; `gekozen` (an open private index over DTMERK) holds the choice.
/// Returns the number of codes chosen; *nummer the first.
int ing_merk(int row, int col, const char* opties, uint16_t* nummer, ICB* gekozen);
uint16_t ing_merk_pick();  // one brand from the list, 0 none
int ing_merk_multi(ICB* gekozen);

/// Lists: the code picked, 0 (or -1 where 0 is a code) when left.
uint16_t kleur_pick(uint16_t vanaf);
uint32_t artikel_pick(uint32_t vanaf);
char doelgroep_pick();
int actie_pick(int vanaf);
/// Code tables 1 action, 2 correction, 3 purchase, 4 part season: 0-9, -1 when left.
int code_pick(int tabel, bool onderhoud);
/// Year field: two digits expand; 1980-2079 unless narrowed. K_F5 picks year and season.
bool ing_jaar(int row, int col, const char* opties, uint16_t laag, uint16_t hoog, uint16_t* jaar,
              char* seizoen);
/// Season field: one of the three main seasons, as the operator knows their letters; required.
bool ing_seizoen(int row, int col, char* seizoen);
/// Model list of one brand through the private index DTSER.Snn; false when left.
bool model_pick(uint16_t merk, char model[15]);
/// Size field on an open size type; false when left.
struct MaatHandle;
bool ing_maat(int row, int col, const char* opties, MaatHandle*, uint8_t* maat);
int maatsoort_pick(uint8_t land);

// Fields of the same codes, with their message for a code that does not exist.
bool ing_kleur(int row, int col, const char* opties, uint16_t* nummer);
bool ing_artikel(int row, int col, const char* opties, uint32_t* nummer);
bool ing_doelgroep(int row, int col, const char* opties, char* letter);
bool ing_actie(int row, int col, const char* opties, uint8_t* nummer);
bool ing_code(int row, int col, const char* opties, int tabel, uint8_t* code);
/// Name of a target group letter, code or characteristic; empty when unknown.
const char* doelgroep_tekst(char letter);
const char* code_tekst(int tabel, int code);
