// Correcting DTDCIF.TXT by hand: the open file, the list of lines in hand, and the screens on it.
// Inside the command only.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "isam/ix.h"
#include "sub/datacom.h"
#include "sub/iomaat.h"

inline constexpr const char* DCW_MODULE = "vwdcif";
inline constexpr uint32_t DCW_ALLE_NUMMERS = 100000000;

#pragma pack(push, 1)
struct DcwRij {  // tmpcor, 40 bytes: one line of the list
  Serienr nr;
  char maat[3];
  uint8_t leeg11;
  uint32_t regel;  // from 0: the line stands at regel * 28
  char code[13];
  uint8_t leeg29[11];
};
#pragma pack(pop)
static_assert(sizeof(DcwRij) == 40 && offsetof(DcwRij, regel) == 12 &&
              offsetof(DcwRij, code) == 16);

/// What a list is limited to; each limit has a value that means any.
struct DcwGrens {
  uint8_t soort = DC_ZENDEN;
  uint8_t vanfil, naarfil;             // B any
  uint16_t datum = 0;                  // 0 any
  uint32_t nummer = DCW_ALLE_NUMMERS;  // that value any
  Serienr nr{};                        // each field 0: any
  char maat[3] = {};                   // empty any
  char code[14] = "";                  // empty any
};

/// What a line is about.
enum class DcwStand : uint8_t { goed, serie_weg, etiket_weg };
struct DcwArtikel {
  DcwStand stand;
  Serienr nr;
  char maat[3];
  bool per_stuk;  // a label of a series with label registration: always one piece
};

/// The file and the list, open for as long as the command runs. A line that was deleted is zero
/// until the end, when the others move up.
struct Dcw {
  Dcw();   // a file that does not open ends the run
  ~Dcw();  // removes the list, closes the file, and takes deleted lines out of it
  Dcw(const Dcw&) = delete;
  Dcw& operator=(const Dcw&) = delete;

  int fd;
  ICB* lijst;
  DcwRij rij{};                 // the row of the list in hand
  MaatHandle* maten = nullptr;  // of the size type read last
  bool gewist = false;
};

bool dcw_lees(const Dcw&, uint32_t regel, DcRegel*);
void dcw_schrijf(const Dcw&, uint32_t regel, const DcRegel&);
DcwArtikel dcw_artikel(Dcw&, const DcRegel&);
/// Fills the list anew; rows in it, -1 when the operator broke off.
int dcw_verzamel(Dcw&, const DcwGrens&);
/// Zeroes the line of the row in hand and takes the row off the list.
void dcw_wis(Dcw&);
/// The numbers of all lines of the list.
std::vector<uint32_t> dcw_regels(Dcw&);

// Screens.
void dcw_selectie(Dcw&);
void dcw_artikelnummer(Dcw&);
void dcw_lijst(Dcw&, uint8_t soort);
/// Changes the fields of these lines, all to the same values; one line shows what it is about.
void dcw_wijzig(Dcw&, std::span<const uint32_t> regels);
