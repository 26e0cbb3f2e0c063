// Between the rooms of moves entered by hand: pieces, refusals, and what the operator is shown and
// asked.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "isam/tekst.h"
#include "sub/ioeti.h"
#include "sub/mut_ingave.h"
#include "sub/muteren.h"

/// A piece: a label as it was read under the lock of its series.
struct MutStuk {
  int32_t nummer;
  Etiket etiket;
};

// Refusals and warnings (mut_reden) ---------------------------------------------------------------

enum MutReden : uint8_t {
  REDEN_ETIKET = 1,
  REDEN_SERIE,
  REDEN_INVENTARISATIE,
  REDEN_STATUS,
  REDEN_VERKOCHT,
  REDEN_GECORRIGEERD,
  REDEN_ANDER_FILIAAL,
  REDEN_REEDS_AANWEZIG,
  REDEN_ONDERWEG,
  REDEN_REEDS_ONDERWEG,
  REDEN_DOCUMENT_FOUT,
  REDEN_DOCUMENT_GEEN,
  REDEN_NIET_ONDERWEG,
  REDEN_MAATREGISTRATIE,
  REDEN_MAAT_GEEN_EAN,
  REDEN_TEKORT,
  REDEN_GEEN_MAATREGISTRATIE,
  REDEN_EAN,
  REDEN_MAATNUMMER,
  REDEN_KLEIN_ARTIKEL,
};
inline constexpr int MUT_REDENEN = 20;

/// What a reason speaks of; what it does not name may be left zero.
struct MutFeit {
  Serienr nr;
  uint8_t status, filiaal, doel;
  uint16_t datum;
  std::string maat;
  int32_t stuks;
};
/// The text of a reason; empty for a number that is none.
std::string mut_reden(int reden, const MutFeit&);
MutFeit mut_feit(const Etiket&);
/// On the message line: "<prefix> <text>".
void mut_weiger(const std::string& voor, int reden, const MutFeit&);
/// "<label number>", or "<code>" of a size code.
std::string mut_voor(const MutIngang&);
/// The text of a size as its type has it, without blanks; the index when the type is not there.
std::string mut_maattekst(uint8_t maatsoort, uint8_t maat);

// Asking (mut_code) -------------------------------------------------------------------------------

/// A label or size code, or a foreign EAN, into code, soort and nummer. False when the operator
/// left.
bool mut_code(int row, int col, MutIngang*);
/// "Akkoord? (J/N)": yes also when the same code is entered again. `wijzig` answers the tab key.
/// Says "Niet akkoord" when it is not.
bool mut_akkoord(const MutIngang&, const std::function<void()>& wijzig = {});
inline constexpr int MUT_RIJ_ARTIKEL = 3, MUT_RIJ_VRAAG = 2;  // counted from below

// Pieces ------------------------------------------------------------------------------------------

Zending mut_zending(const MutIngang&);
/// A series whose lock outlived a refusal is let go.
void mut_los();
/// The label of a code, its series locked and the piece shown; otherwise the refusal.
bool mut_neem(const MutIngang&, MutStuk*);
/// The code of the size of a piece, after the warning that its series has size registration.
bool mut_maatcode(const MutIngang&, const Etiket&, std::string* ean);
/// "Maatnummer <ean> ..." without a piece for it.
void mut_geen_stuk(const std::string& ean, const Tekst& tekst);
/// The send of a piece, or a receipt that nobody sent.
void mut_verplaats(const MutIngang&, int mode, MutStuk*);
/// The receipt of a piece that is on its way, or was sold or corrected since it left: its transit
/// and financial lines, and the label.
void mut_ontvang(const MutIngang&, MutStuk*);

/// The pieces of a size of the series in ser_rec: in stock at the sender; on their way between the
/// branches, followed by what was sold or corrected today and is not received yet. False with a
/// message when the chain of labels is not that of the series.
bool mut_voorraad(const MutIngang&, uint8_t maat, std::vector<MutStuk>*);
bool mut_onderweg(const MutIngang&, uint8_t maat, std::vector<MutStuk>*);
/// The label's transit record is of these branches and not finished; it is then in go_rec.
bool mut_go_loopt(const MutIngang&, int32_t nummer);
