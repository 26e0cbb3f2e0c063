// What every table is: its name, the description in its header, its record length and its keys, in
// the engine's own definition strings. Whoever makes, checks, exports or describes a table reads
// these rows.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

struct TabelDef {
  const char* name;          // of the pair NAME.TXT and NAME.INX; of a temporary table its kind
  const char* omschrijving;  // at most 19 characters, no comma
  int16_t lengte;            // bytes of a record
  std::array<const char*, 5> sleutels;  // null behind the last
};

/// The chain's tables, in order of name.
std::span<const TabelDef> tabel_alle() noexcept;
/// The definition of a name such as "DTSER"; null when there is none. Case counts.
const TabelDef* tabel_zoek(std::string_view naam) noexcept;

/// IXOPEN of a table or of a private index over one: its records have the length of the definition,
/// or the run ends. Names without a definition open as they are.
struct ICB* tabel_open(const char* naam, int mode);

// Tables of one terminal; their file names are in `privaat`.
extern const TabelDef TABEL_TPCK;        // provisional lines of a series, per pair and size
extern const TabelDef TABEL_TMPGO;       // order lines by number
extern const TabelDef TABEL_TMP_BROWSE;  // orders to choose from

/// Makes the table empty under `naam` (a path without a point in its last part) and closes it. A
/// pair left over under that name is removed first: its records may be of another length. False
/// when the left-over cannot be removed or the empty index cannot be written.
bool tabel_maak(const TabelDef& def, const char* naam);
