// The pieces of a series that counts by size, and which of them a transaction may take.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "sub/dc_intern.h"

/// A piece as the run knows it: what is needed of its label and its transit record.
struct DcStuk {
  int32_t nummer;
  uint16_t datum;  // of its status
  uint8_t status, maat, filiaal, onderweg, doel;
  bool gelezen, leeft, ongedrukt;  // its transit record, read when it is first asked for
  uint8_t go_van, go_naar;
  uint32_t go_nummer;
};
/// All pieces of the series in ser_rec that were received, by size and in the order of its chain.
/// False when the chain cannot be read to its end.
bool dc_stukken_lees(std::vector<DcStuk>*);

using DcPaar = std::pair<uint8_t, uint8_t>;

/// The pieces of one size, sorted by what a transaction of a day may do with them.
struct DcVak {
  /// `pieces`: of one size. Sold pieces count when they were not sold before `datum`.
  DcVak(std::span<DcStuk> pieces, uint16_t datum);

  /// Each takes one piece along its road and keeps it where it then is; false when none is left.
  bool zend(const DcTrans&);         // from stock
  bool ontvang_los(const DcTrans&);  // from stock, nobody sent it
  bool ontvang(const DcTrans&);      // from its way
  bool ontvang_verkocht(const DcTrans&);
  /// The same two for a piece that travels under the transaction's own number.
  bool ontvang_nummer(const DcTrans&);
  bool ontvang_nummer_verkocht(const DcTrans&);

 private:
  using Rij = std::deque<DcStuk*>;
  DcStuk* uit_voorraad(uint8_t filiaal);
  bool neem_aan(DcStuk*, const DcTrans&);
  bool neem_aan_weg(DcStuk*, const DcTrans&);
  DcStuk* op_nummer(const DcTrans&, bool verkocht);

  std::map<uint8_t, Rij> voorraad;
  std::map<DcPaar, Rij> onderweg, verkocht;
  std::multimap<std::pair<uint32_t, DcPaar>, DcStuk*> nummers;
};
