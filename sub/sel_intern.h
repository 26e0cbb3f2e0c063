// What the files of the criteria screen share among themselves.
#pragma once

#include <string>

#include "sub/sel_tabel.h"

inline constexpr const char* SEL_MODULE = "sel_krit";

// Layout: title on SEL_BASIS, field p on the row SEL_BASIS + p + 1.
inline constexpr int SEL_BASIS = 2;
inline constexpr int SEL_K_NUMMER = 2, SEL_K_LABEL = 5, SEL_K_EEN = 26, SEL_K_TM = 43,
                     SEL_K_TWEE = 47;

enum class SelWijze : uint8_t { scherm, alles, gezet };  // screen, print all, print what was set
extern SelWijze sel_wijze;
extern bool sel_actief;        // the criteria screen runs
extern const char* sel_titel;  // of the kind

inline bool sel_heeft(char letter) {
  for (const char* p = sel_letters; *p != 0; ++p) {
    if (*p == letter) return true;
  }
  return false;
}
inline uint8_t& sel_stand(char letter) { return sel_status[static_cast<uint8_t>(letter)]; }
inline bool sel_gezet(char letter) { return sel_stand(letter) >= SEL_LIJST; }
inline void sel_op_default(char letter) {
  sel_stand(letter) = sel_default[static_cast<uint8_t>(letter)];
}
/// Entered, or back at its default.
inline void sel_zet(char letter, bool ingevoerd) {
  if (ingevoerd)
    sel_stand(letter) = SEL_INGEVOERD;
  else
    sel_op_default(letter);
}
/// Date of a default code; 0 for a code without one.
inline uint16_t sel_datum(uint8_t code) { return code < 8 ? sel_datums[code] : uint16_t{0}; }

/// Screen row of a letter; 0 when the kind does not have it.
int sel_rij(char letter);
/// Number that the operator types for a letter, 0 none; letter of a number, 0 none; the last
/// number.
int sel_nummer(char letter);
char sel_letter(int nummer);
int sel_laatste_nummer();

/// All the zeroes and defaults of "no selection", by &Initialiseren and by reading.
void sel_leeg();

/// What a field shows: one or two values, "t/m" between them.
struct SelRegel {
  std::string een, twee;
  bool tm = false;
};
SelRegel sel_regel(char letter);
void sel_toon_alles();

// Texts of fields that hold several letters or digits, without screen.
std::string doelgroep_naar_tekst(const char doelgroep[11]);
std::string vlaggen_naar_tekst(const uint8_t vlaggen[10]);
/// The message of a refused entry, null when it is good; the offending character in *teken.
const Tekst* doelgroep_uit_tekst(const char* tekst, char doelgroep[11], char* teken);
const Tekst* vlaggen_uit_tekst(const char* tekst, uint8_t vlaggen[10], char* teken);
/// Main seasons between the operator's letters and the stored ones, in place; equal ones once.
void seizoen_vertaal(char seizoen[3], bool naar_scherm);

/// The rule of periods: 0 stands for the reference date of that end.
constexpr bool periode_geldig(uint16_t van, uint16_t tm, uint16_t van_ref, uint16_t tm_ref) {
  return (van == 0 ? van_ref : van) <= (tm == 0 ? tm_ref : tm);
}

// Entry of one field on its row. False when the operator left the field.
bool ingave_merk(char letter, int rij);
bool ingave_artgroep(char letter, int rij);
bool ingave_kleur(char letter, int rij);
bool ingave_doelgroep(char letter, int rij);
bool ingave_seizoen(char letter, int rij);
bool ingave_stdmod(char letter, int rij);
bool ingave_jaar(char letter, int rij);
bool ingave_actie_nr(char letter, int rij);
bool ingave_filialen(char letter, int rij);
bool ingave_periode(char letter, int rij);
bool ingave_datum(char letter, int rij);
bool ingave_voorraad(char letter, int rij);
bool ingave_ontvangen(char letter, int rij);
bool ingave_leverancier(char letter, int rij);
bool ingave_vlaggen(char letter, int rij);
bool ingave_model(char letter, int rij);
bool ingave_kenmerk(char letter, int rij);
bool ingave_edi(char letter, int rij);
bool ingave_verwijderen(char letter, int rij);

/// Enters a field and all that it carries; false when the operator left.
bool sel_voer_in(char letter);
/// Clears a row from the first value on and puts the cursor's field there.
void sel_wis_waarde(int rij, int kolom = SEL_K_EEN);
/// Hint on the prompt row, cleared again at the end of the scope.
struct SelHint {
  explicit SelHint(const std::string& tekst);
  ~SelHint();
  SelHint(const SelHint&) = delete;
  SelHint& operator=(const SelHint&) = delete;
};
