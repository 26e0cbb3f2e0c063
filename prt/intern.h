// What the rooms of the print engine share among themselves.
#pragma once

#include <string>
#include <string_view>

#include "prt/prt.h"
#include "prt/zigzag.h"

extern PrtFmt* prt_fmt;          // the report's line pair, null while none is open
extern int32_t prt_tekst_eind;   // offset in the spool file where the stop string begins
extern bool prt_layout_te_lang;  // a line of a layout did not fit; no layout of ours sets it

/// The unattended report in hand.
struct PrtStil {
  bool aan, utf8;
};
extern PrtStil prt_stil;

// prt/formaat
void start_zigzag_printen();
void stop_zigzag_printen();
void prt_paar_uit();  // the pair to the file, even when it is empty
bool prt_paar_bezet();

// prt/kop
void prt_schrijf(std::string_view tekst);  // to the report's file, as UTF-8 where that was asked
void prt_blad_sluit();                     // the form feed behind the last page

// prt/einde
bool prt_onderbroken();  // polls; false without a screen

// prt/bestemming
/// Makes a fresh file of the report's own and opens it for appending; its bare name in `naam`.
FILE* prt_spool_nieuw(char* naam, size_t grootte);
/// The name of a device or file that a report may be written to.
bool prt_device_mag(std::string_view device);

// prt/kopieen: the file to the destination in the record; each leaves no file behind.
extern int prt_wacht_ms;  // how long the operator waits for a copy at most
void prt_naar_lp(const char* lp_opties);
void prt_naar_device();
void prt_naar_map();
void prt_naar_poort();

// prt/platen and prt/omzet: the file written anew, through a ".tmp" name.
void prt_platen_plaats();
void prt_platen_weg();
void prt_omzet();
/// Rewrites the spool file: `schrijf` gets the old one from its start. False leaves it as it was.
bool prt_herschrijf(bool (*schrijf)(FILE* van, FILE* naar));
