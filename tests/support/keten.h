// A whole data directory of a small chain: the system file, branches, every table empty, the label
// and price files empty. The ground of the tests of stock, orders and transfers.
#pragma once

#include <string>

#include "sub/records.h"
#include "sub/tabellen.h"
#include "tests/support/proefsysteem.h"

/// The current directory is the chain's for as long as it lives. Fork before `open`: record locks
/// and descriptors belong to the process that opened.
struct ProefKeten : ProefSysteem {
  explicit ProefKeten(int aantal_filialen = 12);
  ~ProefKeten();

  /// Opens DTSYS.TXT, the run's tables (masters for writing too), labels and prices, as terminal 7.
  void open();
  void sluit();

  /// Bytes of a system record in the file; while the chain is open through the open descriptor.
  static std::string sysrec(int nummer, size_t n = 64);
  static void sysrec_zet(int nummer, const void* bytes, size_t n);

  /// Adds a record to an open table.
  template <class Rec>
  static void voeg(ICB* tabel, Rec rec) {
    IXWRITE(tabel, &rec);
  }
  /// A series without labels, with all sizes of its type.
  static DtSer serie(const Serienr& nr, uint8_t maatsoort = 1, uint16_t merk = 1);

  bool is_open = false;
};
/// The short name is an alias: the maker of chains in tools/ has a structure of that name, and both
/// are linked into the tests.
using Keten = ProefKeten;

/// A label with sensible prices and dates: what tests change from.
struct Etiket;
Etiket proef_etiket(const Serienr& nr, uint8_t status, uint8_t maat = 1, uint8_t filiaal = 0);
