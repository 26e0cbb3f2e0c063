// The live job: the balance of a million order lines of 50,000 series in 100 branches, beside the
// same pass in SQLite through a temporary keyed table and beside SQLite's one query.
#pragma once

#include <cstdint>
#include <vector>

#include "bench/tabel.h"
#include "sub/records.h"

/// Makes the chain in the current directory and gives the rows of it.
std::vector<Rij> saldo_meet(uint32_t regels);
/// Ours alone: seconds of a run with each reader.
Paar saldo_groei(uint32_t regels);

/// The one argument of a process that runs the unattended balance in the current directory, and
/// nothing else: its memory is the run's alone.
inline constexpr const char* SALDO_KIND = "--saldo-kind";
int saldo_kind();

/// The totals of one run, by branch.
struct SaldoTotalen {
  std::vector<uint64_t> uit = std::vector<uint64_t>(256), in = std::vector<uint64_t>(256);
  bool operator==(const SaldoTotalen&) const = default;
};

inline constexpr int KETEN_FILIALEN = 100, KETEN_ARTIKELEN = 900, KETEN_MERKEN = 220,
                     KETEN_LEVERANCIERS = 80, KETEN_MAATSOORTEN = 8;
/// Order line `i` of `regels`, twenty to a series, in the order in which they were entered.
DtPick meet_regel(uint32_t i, uint32_t regels);

/// A chain of `series` series and `regels` lines in the current directory.
void keten_maak(uint32_t series, uint32_t regels);
void saldo_sqlite_maak(uint32_t series, uint32_t regels);
SaldoTotalen saldo_sqlite_pas();
SaldoTotalen saldo_sqlite_vraag();
