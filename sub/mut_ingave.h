// Moves of pieces entered by hand: sends, receipts nobody sent, and confirmations of what is on its
// way; by label, or by size for a series with size registration.
#pragma once

#include <cstdint>
#include <string>

#include "sub/records.h"

inline constexpr int MUT_ZENDEN = 1, MUT_ONTVANGEN = 2;

/// One piece as the operator entered it.
struct MutIngang {
  uint8_t vanfil, naarfil;
  char code[14];   // as typed or scanned, terminated
  char soort;      // 0 a label, 'M' size code, 'E' EAN
  int32_t nummer;  // label number, or the value of the size code
  int32_t stuks;
  uint32_t opdrachtnr;  // order or document, 0 none
};

/// The screens.
void ing_mutatie(int mode);
void ing_ontvangst();  // "Ontvangstbevestiging per nummer"
void verz_ingave();    // ing_mutatie(MUT_ZENDEN)
void ontv_ingave();    // ing_mutatie(MUT_ONTVANGEN)

/// The routes of one piece: true when it moved. Refusals stand on the message line.
bool mut_etiket(MutIngang*, int mode);
bool mut_ontv_etiket(MutIngang*);
bool mut_maat(MutIngang*, int mode);
bool mut_ontv_maat(MutIngang*);
