// The handle on one size type, shared by the reads and the changes.
#pragma once

#include <array>
#include <vector>

#include "sub/iomaat.h"

inline constexpr int MAAT_MAX = MATEN - 1;

struct MaatHandle {
  uint8_t land, maatsoort;
  bool wijzigbaar, vertaald;
  uint8_t bits[12];                        // sizes that count under key 4
  uint8_t kaart[12];                       // the map kept with the list
  std::array<MaatIngang, MATEN> index;     // by size index; `ander` is the order position
  std::array<MaatIngang, MATEN> volgorde;  // by order position; `ander` is the size index
  bool gewijzigd;
  std::vector<uint8_t> landen;  // countries whose records are locked by this handle
};

enum Maatfout {
  MAAT_GEEN_BESTAND = 1,
  MAAT_GEEN_HANDLE,
  MAAT_GEEN_LAND,
  MAAT_GEEN_SOORT,
  MAAT_GEEN_MTOM,
  MAAT_NIET_WIJZIGBAAR
};

/// An entry holds a size when it names its other number.
inline bool maat_gevuld(const MaatIngang& ingang) {
  return ingang.ander >= 1 && ingang.ander <= MAAT_MAX;
}
inline bool maat_mogelijk(int n) { return n >= 1 && n <= MAAT_MAX; }

/// Fills the handle's tables from a record of DTMAAT, own or of another country.
void maat_uit_record(MaatHandle*, const DtMaat& rec);
/// Locks the records of the size type, of all countries in order of number; fills the handle's
/// `landen`.
void maat_vergrendel(MaatHandle*);
/// Writes the changes to every locked record and gives the locks up.
void maat_schrijf_terug(MaatHandle*);
