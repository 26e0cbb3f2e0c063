// The print engine: lines of a report through print_f into a spool file, its destination, its
// preview.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "isam/formaat.h"

inline constexpr int PRT_SCHERM = 1 << 16;   // flags byte of `selection`: to screen allowed
inline constexpr int PRT_BESTAND = 2 << 16;  // to file
inline constexpr int PRT_40 = 1, PRT_80 = 2, PRT_132 = 4, PRT_LANG = 16,
                     PRT_KORT = 32;  // width mask
inline constexpr int PRT_ALLES = 65535;

/// What all of the engine shares about the report in hand.
struct PrtRec {
  uint8_t to_screen, is_lp, is_aux;
  int32_t page_lines;        // rows of a page; endless is 9999
  int32_t width;             // columns
  int32_t page_no, line_no;  // line_no: number of the line now being written; 10000 at start
  int32_t page_count;
  int32_t to_dir;
  int32_t text_start;  // offset in the spool file behind the start string
  char start_str[122], stop_str[122];
  char device[50];
  char spool_name[80];
  FILE* spool;
  int32_t copies;
};
extern PrtRec prt_rec;
/// Left text of the page heads: the company's name, set by the program.
extern char prt_links[31];

/// Asks for a destination and opens the spool file. `selection` is printer, flags << 16 and
/// connection << 24; `widths` the mask of columns that will do; `file` the path with PRT_BESTAND.
int XPRT_OPEN(uint32_t selection, int widths, const char* file);
/// The unattended road: the report goes to `uit`, which stays the caller's. No screen, no question,
/// no spool file; print_close writes what is pending and flushes. `utf8`: the lines leave as UTF-8,
/// else as the bytes they are. Returns 1.
int prt_open_stil(FILE* uit, int width, int page_lines, bool utf8 = true);
void print_f_kern(const char* fmt, std::span<const Arg> args);
template <class... A>
void print_f(const char* fmt, A... a) {
  const Arg args[sizeof...(A) + 1] = {Arg(a)..., Arg(0)};
  print_f_kern(fmt, std::span<const Arg>(args, sizeof...(A)));
}
/// Ends the line in hand: one line in the file, or two where a number stepped down.
void print_nl();
/// Fewer than `regels` lines remain on the page. Never on endless paper.
bool print_vol(int regels = 1);
/// Starts a page. print_head does so itself: a report calls print_head only.
void print_ff();
void print_head_tekst(const char* links, const char* titel);
template <class... A>
void print_head(const char* links, const char* fmt, A... a) {
  print_head_tekst(links, str_format(fmt, a...).c_str());
}
void print_rep(int aantal, char teken);
/// As print_f with one value; what shows no digit but zeros becomes blanks. Integer conversions
/// too.
void print_blank_amount(const char* fmt, double waarde);
void zero_blank(char* buffer, const char* fmt, double waarde);
/// Two decimals where the value has a fraction, none where it has not.
void print_amount(double waarde, int breedte);
/// Ends the report: preview, then the printing system. `lp_opties` goes to lp as it is.
void print_close(const char* lp_opties);
void print_clear();    // drops the line in hand
void print_newline();  // a bare line end, past the line pair

/// prt/bestemming: fills the record and opens its spool file; 1 when a destination stands.
int prt_choose(PrtRec* rec, uint32_t selection, int widths, const char* file);
/// `naam` in the directory of KOBPRT; the buffer is overwritten by the next call.
const char* prt_path(const char* naam);
/// False: the list of destinations comes back until the operator picks one. True at the start.
extern bool prt_annuleren_mag;
int prt_width_menu(int widths);  // 40, 80 or 132; 0 on cancel
/// Makes the four print tables when missing, with the screen as printer 1. False when that fails.
bool prt_tabellen_maak();
/// prt/einde and prt/voorbeeld.
void print_end(const char* lp_opties);
int prt_preview();

/// Pictures: a report names them while it prints, and a routine writes their printer codes into the
/// finished file. `volgorde` false: behind the form feed that starts their page; true: at the next
/// "PCXTEC" in the text. Without a routine nothing is placed.
using PrtPlaatRoutine = bool (*)(FILE* uit, const char* naam);
void prt_plaat_zet(PrtPlaatRoutine routine, bool volgorde);
void prt_plaat(int blad, const char* naam);
