// What tills and hand terminals report: the flat file DTDCIF.TXT, its checks, its processing, its
// correction by hand.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "sub/records.h"

inline constexpr const char* DC_BESTAND = "DTDCIF.TXT";
inline constexpr uint32_t DC_GEEN_AANTAL = UINT32_MAX;
inline constexpr uint8_t DC_ZENDEN = 0, DC_ONTVANGEN = 1;

#pragma pack(push, 1)
struct DcRegel {  // 28 bytes; a deleted line is all zero
  uint8_t vanfil, naarfil;
  uint16_t datum;
  char code[13];  // not terminated
  uint8_t soort;
  uint8_t leeg18[2];
  uint32_t stuks;
  uint32_t nummer;  // order or document, 0 none
};
#pragma pack(pop)
static_assert(sizeof(DcRegel) == 28 && offsetof(DcRegel, code) == 4);
static_assert(offsetof(DcRegel, stuks) == 20 && offsetof(DcRegel, nummer) == 24);

/// The code as it may be printed: up to its NUL, a control byte as a point.
std::string dc_code_tekst(const char (&code)[13]);
/// There are transactions: the file holds more than nothing.
bool dc_aanwezig();
/// The whole run into an open report: checks, moves when `schrijven`, the signal list. With
/// `schrijven` and no interrupt the file is removed. No screen is needed.
void dc_loop(bool schrijven);

// Commands.
void dc_signaal();    // "Signaallijst datacom"
void dc_verwerken();  // "Verwerken datacom"
void dc_wijzigen();   // "Wijzigen datacom"
void dc_wissen();     // "Verwijderen datacom"
