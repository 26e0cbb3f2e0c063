// The fields of every table's records, by name: what dumps, walks, imports and exports go by.
// Text comes out as UTF-8; bytes without a name are in no field.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "isam/ix.h"
#include "sub/tabeldef.h"

enum class VeldSoort : uint8_t {
  tekst,    // code page 850, NULs behind it
  verhuld,  // text, scrambled
  u8,
  u16,
  u32,
  i32,
  bits,  // a set: bit n of the bytes, lowest first
};

/// What a number says; dumps show it as it stands, imports and exports as people write it.
enum class VeldVorm : uint8_t {
  getal,
  dag,     // u16, a date number: DD-MM-JJJJ, empty for none
  centen,  // i32, hundredths: "12.50"
  koers,   // i32, millionths: "1.234567"
  stuks,   // u32, all ones without a count: empty
};

struct Veld {
  const char* naam;
  int offset;
  VeldSoort soort;
  int breedte = 0;   // bytes of a text or a set; 0 for a number
  int aantal = 1;    // values in a row
  int stap = 0;      // bytes from value to value; 0: they touch
  bool som = false;  // a row of quantities: only those not 0 are shown, and their sum
  VeldVorm vorm = VeldVorm::getal;
};
using Velden = std::span<const Veld>;

/// Bytes of one value.
int veld_breedte(const Veld&);
/// Fields of a table by name ("DTPICK", "DTSER.V07", "TP07P", or the flat file "DTDCIF"); empty
/// when nothing is known of it.
Velden velden_van(std::string_view naam) noexcept;
/// The same; a name that says nothing may have a description in its header that does.
Velden velden_van(const ICB& kop, std::string_view naam) noexcept;

/// The fields of a record, or those named in `keuze` when it is not empty. A record without a field
/// table gives its bytes in hexadecimal.
nlohmann::ordered_json record_json(Velden, std::span<const uint8_t> rec,
                                   std::span<const std::string> keuze = {});
/// "naam=waarde naam=waarde ..."
std::string velden_tekst(const nlohmann::ordered_json&);
/// The parts of a key image by field; with a 'J' key the record number behind them.
nlohmann::ordered_json sleutel_json(const IxSleutel&, const uint8_t* beeld, Velden);
std::string sleutel_tekst(const IxSleutel&, const uint8_t* beeld, Velden);
/// Key image of the values of its first fields, as text. Bytes used, -1 when one does not fit.
int sleutel_uit_tekst(const IxSleutel&, std::span<const std::string> waarden, Velden,
                      uint8_t* beeld);
/// Name of the field at these bytes (from 0) of the record; "bytes 5-8" when it has none.
std::string veld_naam(Velden, int offset, int breedte);

/// Bytes of code page 850 as UTF-8, what is no character as ".".
std::string cp850_toon(std::string_view bytes);
/// True when a header has the record length and keys of a definition; names do not count.
bool kop_is_van(const ICB& kop, const TabelDef& def);
