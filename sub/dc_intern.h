// What the three phases of the datacom run share: one kind of work record for both routes, the
// signal list, and the moves of one label.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "isam/ix.h"
#include "sub/datacom.h"
#include "sub/ioeti.h"
#include "sub/muteren.h"

inline constexpr const char* DC_MODULE = "vwdcif";
inline constexpr uint32_t DC_RANG_LAATST = 99999999;  // order rank of what has no document

#pragma pack(push, 1)
/*   OFFSET SIZE FIELD     one transaction that passed the checks, 48 bytes. tmpe_if holds labels,
 *                         tmpm_if pieces by size; what a route does not use is zero.
 *        0    8 nr        series
 *        8    2 datum
 *       10    1 vanfil
 *       11    1 naarfil
 *       12    4 stuks     1 for a label; by size the sum of equal lines
 *       16    4 nummer    order or document, 0 none
 *       20    4 rang      by size: the number of a receive that has one, else 99999999
 *       24    4 etiket    label number; 0 by size
 *       28    4 regel     line of the file, from 1; 0 for a sum of several lines
 *       32    1 maat      size index
 *       33    1 soort     DC_ZENDEN, DC_ONTVANGEN
 *       34   13 code      not terminated                                                      */
struct DcTrans {
  Serienr nr;
  uint16_t datum;
  uint8_t vanfil, naarfil;
  uint32_t stuks, nummer, rang, etiket, regel;
  uint8_t maat, soort;
  char code[13];
  uint8_t leeg47;
};
#pragma pack(pop)
static_assert(sizeof(DcTrans) == 48 && offsetof(DcTrans, etiket) == 24);
static_assert(offsetof(DcTrans, stuks) == 12 && offsetof(DcTrans, code) == 34);

/// The run in hand.
struct DcRun {
  bool schrijven = false;
  ICB *etiketten = nullptr, *maten = nullptr;  // tmpe_if, tmpm_if
};
extern DcRun dc;

// The signal list (dc_lijst.cc) -------------------------------------------------------------------

/// Remarks by their codes; behind 19 what stands on no list of codes.
enum class DcOpm : uint8_t {
  filiaal = 1,
  geen_etiket,
  status,
  verkocht,
  gecorrigeerd,
  afwijkend,
  aanwezig,
  reeds_onderweg,
  onderweg,
  geen_serie,
  inventarisatie,
  maat_geen_ean,
  maat_ean,
  niet_onderweg,
  niet_voorraad,
  te_weinig,
  geen_maat,
  geen_ean,
  klein_artikel,
  ketting,
};
/// What stands behind or before the words of a remark.
struct DcBij {
  const Etiket* etiket = nullptr;  // its status, branches and date
  uint8_t maat = 0;                // size index of the series in ser_rec
  uint32_t aantal = 0;
  std::string code{};
};
void dc_lijst_begin();
/// A line of the list; a further remark on the same label line only repeats the last columns.
void dc_meld(DcOpm, const DcTrans&, const DcBij& = {});
/// Lines were printed.
bool dc_lijst_gedrukt();
void dc_lijst_einde();

// The phases --------------------------------------------------------------------------------------

void dc_lees();       // DTDCIF.TXT into tmpe_if and tmpm_if
void dc_etiketten();  // tmpe_if
void dc_maten();      // tmpm_if

/// The series of the records, locked in ser_rec and given back at the end of the scope: rewritten
/// when the run writes. `vast` is false when it cannot be had.
struct DcSerie {
  explicit DcSerie(const Serienr& nr) : vast(serie_probeer(nr)) {}
  ~DcSerie();
  DcSerie(const DcSerie&) = delete;
  DcSerie& operator=(const DcSerie&) = delete;
  bool vast;
};
/// A series that could not be locked: its records are passed over, with a remark when it does not
/// exist any more. `t` holds the first; in the end the first of the next series, false when none.
bool dc_sla_over(ICB* tabel, DcTrans* t);
/// Raises the date of the series' last movement.
void dc_datum(uint16_t datum);
inline Zending dc_zending(const DcTrans& t) { return {t.vanfil, t.naarfil, t.nummer, t.datum, 0}; }

/// A label with its transit record, as far as it lives; both follow the run when nothing is
/// written.
struct DcEtiket {
  int32_t nummer = 0;
  Etiket e{};
  bool bekend = false;  // there is a transit record that is not finished
  DtGo go{};
};
/// The label and its transit record as they stand on disk; false when the number holds no label of
/// this series.
bool dc_lees_etiket(const Serienr& nr, int32_t nummer, DcEtiket* l);
// Moves of one label, in memory and, when the run writes, on disk.
void dc_zend(DcEtiket&, const DcTrans&);
void dc_ontvang_los(DcEtiket&, const DcTrans&);       // nobody sent it
void dc_ontvang_onderweg(DcEtiket&, const DcTrans&);  // it was on its way
void dc_ontvang_weg(DcEtiket&, const DcTrans&);       // it is sold or corrected there already

// The order of a label's transactions of one day (dc_volgorde.cc) ---------------------------------

inline constexpr size_t DC_DAG = 10;  // more than these keep the order of the file
/// Where the label is, and what would come next.
struct DcStand {
  bool onderweg;  // with the transit administration on
  uint8_t plaats, doel;
  bool bekend;  // with a live transit record, of this number
  uint32_t nummer;
  bool wens;  // a receive of this pair comes before all others
  uint8_t wens_van, wens_naar;
};
/// The transaction that comes next: `gedaan` has a place for each. dag.size() when all are done.
size_t dc_volgende(std::span<const DcTrans> dag, std::span<const bool> gedaan, const DcStand&);
