// The texts that an operator reads, fetched from the message catalogues.
//
// Every text is one row of the table in nls/: its name in the code, its number, and the Dutch text
// that stands when no catalogue is open. The catalogue sources are made from the same rows, so that
// code and catalogue cannot differ. A room reads its own section only, through <room>/teksten.h.
#pragma once

#include <cstdint>

enum class Catalogus : uint8_t { kba351, winkel };  // toolkit and engine; programs

struct Tekst {
  Catalogus catalogus;
  uint8_t set;
  uint16_t nummer;
  const char* standaard;  // the Dutch default
};

/// The text of a row: the catalogue's when one is open and holds it, else the Dutch default.
/// The pointer stays valid until the catalogue is closed (XPG: catgets).
const char* txt(const Tekst& rij) noexcept;

/// Opens "KBA351" and "WINKEL" with catopen(name, 0); a catalogue that is missing changes nothing.
void teksten_open() noexcept;
void teksten_sluit() noexcept;
