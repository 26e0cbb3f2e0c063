// The shared steps of every move of a piece between branches: locking its series, transit records,
// financial lines, receipts, and the lines for the tills. All of them work on one label that the
// caller has read; the series stands locked in ser_rec.
#pragma once

#include <cstdint>

#include "sub/ioeti.h"
#include "sub/records.h"

/// Reads a series into ser_rec under its record lock: serie_wacht waits for who holds it,
/// serie_probeer tries once. False: unknown (or held, with serie_probeer) and nothing is locked.
bool serie_wacht(const Serienr&);
bool serie_probeer(const Serienr&);
void serie_schrijf();  // rewrites ser_rec, which unlocks
void serie_los();      // unlocks without a change

/// One move.
struct Zending {
  uint8_t van, naar;
  uint32_t opdrachtnr;  // order or document number, 0 none
  uint16_t datum;
  uint8_t verzamel;  // 1 straight from stock, 0 a transfer entry
};

/// DTGO: the label on its way; the record of an earlier trip is replaced. It is in go_rec too.
void go_nieuw(int32_t etiket, const Zending&);
/// True when the label has a transit record, which is then in go_rec.
bool go_lees(int32_t etiket);
/// Sets the finished mark of the label's record, or deletes it; nothing when it went meanwhile.
void go_afwerken(int32_t etiket);
void go_verwijder(int32_t etiket);
/// DTFIN: a line, numbered per label and date, from the branch that holds the label (`houder`);
/// none when the holder is the destination already.
void fin_nieuw(int32_t etiket, uint8_t houder, const Zending&);
/// Reverses the last line of the label when it is of this pair: a settled one gets a counter-line
/// of `datum`, another is deleted. The branch where the label stands now: the line's holder, or
/// `van` when nothing was reversed.
uint8_t fin_terug(int32_t etiket, uint8_t van, uint8_t naar, uint16_t datum);
/// DTIO: a receipt; `onderweg` is its in-transit mark. Registered today.
void io_nieuw(int32_t etiket, const Zending&, uint8_t onderweg);

/// Lines of KASMUT.TXT for the tills; none while the till link is off. kasmut_f: the label moved,
/// one line for each branch; kasmut_d: a corrected label of ser_rec is stock again, with the series
/// link only.
void kasmut_f(int32_t etiket, uint8_t van, uint8_t naar);
void kasmut_d();

/// A label as a send and as a receipt leave it, in memory only.
void etiket_gezonden(Etiket*, const Zending&);
void etiket_ontvangen(Etiket*, uint8_t naar);

/// The send of a label in stock: DTGO, DTFIN, KASMUT.TXT (when `kassa`); the label in transit, or
/// at its destination with the transit administration off; label written, ser_rec's date of the
/// last movement raised to the send's. ser_rec is not written.
void zend_etiket(int32_t nummer, Etiket*, const Zending&, bool kassa);
/// A receipt nobody sent: DTFIN, DTIO, KASMUT.TXT; the label at its destination, written; the date
/// as in a send.
void ontvang_etiket(int32_t nummer, Etiket*, const Zending&);
/// A corrected label (status 4, reason 0) is stock again: label in memory, counters of ser_rec,
/// KASMUT.TXT (when `kassa`). The caller writes the label, then the series.
void etiket_terug_voorraad(Etiket*, bool kassa = true);
