// The steps of working off what is on its way: gathering it into a private table, the list with the
// operator's marks, what he wants done, and doing it. The table stands under privaat.tp, closed
// between the steps.
#pragma once

#include <cstdint>
#include <string>

#include "main/zoeklijst.h"
#include "sub/records.h"

struct BrwRec;

/// What a cancellation is limited to; 0 and empty: any.
struct AnnulGrens {
  uint8_t vanfil = 0;
  uint8_t naar[32] = {};
  uint8_t soort = 1;
  uint16_t zenddatum = 0;
  uint32_t artgroep = 0;
  uint16_t kleur = 0, volgnr = 0;
  std::string maat;  // text of the size
};
/// What finishing is limited to, besides the series behind dtser_opzoek.
struct NontvGrens {
  bool document = false;  // by document number; else by send date
  uint8_t van[32] = {}, naar[32] = {};
  uint32_t nummer = 0;
  uint16_t vanaf = 0, tm = UINT16_MAX;  // send dates, or print dates of a document
};
/// Fill the table anew; the rows it has, -1 when the operator broke off.
int annul_vul(const AnnulGrens&);
int nontv_vul(const NontvGrens&);

/// True when the label travels from the one branch to the other.
bool onderweg_op(const Etiket&, uint8_t van, uint8_t naar);

enum class TransitActie : uint8_t { geen, annuleren, corrigeren, ontvangen, terug };
struct TransitKeuze {
  TransitActie actie;
  uint8_t code;  // of a correction
};
/// The rows as a list. What the operator marked, or else the row under the cursor, is marked in the
/// table; `gemarkeerd` tells which, and the marks that stood are shown again when it is set. False
/// when he left, or when there are no rows.
bool transit_lijst(bool status, bool* gemarkeerd);
/// One row of the list as text, in scr_klad.
const char* transit_regel(const Zoekregel&, bool status);
void transit_kop(int rij, int kolom, bool status);
/// Asks what happens to the marked rows and shows them above it; `alles`: not cancelling alone.
TransitKeuze transit_keuze(bool alles, bool gemarkeerd);

/// Cancels the sends of the marked rows. Rows of a series that somebody else holds stay; the others
/// leave the table.
void annul_werk();
/// Finishes them by cancelling, correcting or receiving; corrections go to the open log.
void nontv_werk(const TransitKeuze&, int log_fd);
/// The log of corrections of this session, opened for appending.
int correctielog_open();

/// The screens. False when the operator left.
bool annul_scherm(AnnulGrens*);
bool nontv_scherm(NontvGrens*);
