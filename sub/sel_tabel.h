// What the criteria screen is made of: the selection kinds with their fields and default codes, the
// labels, the phrases of the codes, and where a field's value stands in the record.
#pragma once

#include <cstdint>
#include <span>

#include "sub/sel_krit.h"
#include "sub/teksten_sel.h"

inline constexpr int SEL_SOORTEN = 26;
inline constexpr int SEL_VELDEN_MAX = 26;

/// Default codes, as they stand in sel_default and in a status below 254.
inline constexpr uint8_t CODE_ALLE = 0, CODE_EERSTE = 1, CODE_LAATSTE = 2, CODE_HEEL_JAAR = 3,
                         CODE_VANDAAG = 4, CODE_BEIDE = 5, CODE_MEERDERE = 6, CODE_GEEN = 7,
                         CODE_LEEG = 8, CODE_MAXIMUM = 9, CODE_VANDAAG_LAATSTE = 10,
                         CODE_EERSTE_VANDAAG = 11, CODE_GEEN_AANTAL = 12;
inline constexpr int CODES = 13;

struct SelSoort {
  const Tekst* titel;
  const char* letters;  // in screen order
  const char* codes;    // one a letter: the code plus '0'
  bool pricat;          // takes letter Y, code 0, behind them with the Pricat option
};
/// Kind 1 to 26; null for any other number.
const SelSoort* sel_soort_rij(int soort) noexcept;

/// Label of a letter, 19 or 20 characters; null for J and unknown letters.
const Tekst* sel_label(char letter) noexcept;
/// Phrase of a code; empty for a code that has none.
const char* sel_frase(uint8_t code) noexcept;

/// One piece of a field's value: where it stands in SelRec, and its bytes in a saved selection.
struct SelDeel {
  uint16_t plaats;
  uint8_t bytes;
};
/// The pieces of a letter in the order of the stream; empty for 'a' and unknown letters.
std::span<const SelDeel> sel_waarde(char letter) noexcept;

/// A field of one or two dates: its ends in a record and the codes of their reference dates.
struct SelPeriode {
  uint16_t* van;
  uint16_t* tm;  // null for a single date
  uint8_t van_code, tm_code;
};
/// False for a letter that holds no date.
bool sel_periode(char letter, SelRec* rec, SelPeriode* uit) noexcept;
/// Kinds in which the creation date runs to today; in the others it ends at the first date.
bool sel_creatie_tot_vandaag(int soort) noexcept;

/// Season code of a year: K 1, Z 2, W 3, any other letter 9.
constexpr int seizoen_code(char letter) noexcept {
  return letter == 'K' ? 1 : letter == 'Z' ? 2 : letter == 'W' ? 3 : 9;
}
