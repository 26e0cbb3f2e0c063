// The label store DTETI.TXT: blocks of ten labels, chained per series; and label codes.
#pragma once

#include <string_view>

#include "sub/records.h"

inline constexpr uint8_t ETI_VRIJ = 0, ETI_NOTA = 1, ETI_VOORRAAD = 2, ETI_VERKOPEN = 3,
                         ETI_CORRECTIES = 4;

/// A label in memory.
struct Etiket {
  Serienr nr;
  uint8_t status, maatsoort, maat, filiaal;
  uint16_t lvnr, orddat;
  uint16_t levertermijn;        // start, status 1
  uint16_t ontdat;              // or end of the term in status 1
  uint16_t vrkdat;              // or cordat in status 4
  uint16_t tarief;              // permille
  int32_t inkpr, advpr, vrkpr;  // cents
  uint8_t p, reden, actie,
      cijfer;  // flag P; digit of word 1: correction reason; action; digit of word 0
  int32_t klant, bedrag;
  uint16_t nummer3;
  uint8_t onderweg, doel;      // in transit, target branch
  int32_t ordernr;             // purchase order
  uint8_t besteller, besteld;  // ordering branch and its flag (status 1)
};

/// The nine packed words of a slot; pure. Values that do not fit are clamped.
void etiket_pak(const Etiket&, uint32_t woord[9], bool transit);
/// False for a free slot. Rates of statuses 1 and 2 are left 0: ioeti fills them from the table.
bool etiket_uitpak(const uint32_t woord[9], Etiket*, bool transit);

/// 'O' open, 'C' close, 'R' read, 'F' first of a series (*nummer: its first block), 'N' next,
/// 'W' write (number 0: first free slot of the chain, or a new block; the number comes back),
/// 'D' delete the current one, 'I' add a block. Label numbers from 1: block * 10 + slot + 1.
bool ioeti(char actie, int32_t* nummer, Etiket*);
/// The labels of one series, first to last: `while (reeks.volgende())` with the number and the
/// label beside it. Ends, with `geheel` false, where the chain leads into another series or back
/// into itself. Between two steps the store may be written at this label only.
struct EtiReeks {
  explicit EtiReeks(const DtSer& serie) : nummer(serie.blok1), nr(serie.nr) {}
  bool volgende();
  int32_t nummer;
  Etiket etiket{};
  bool geheel = true;

 private:
  bool terug();
  Serienr nr;
  bool begonnen = false;
  // A block to meet again: the label would never be the last one.
  int32_t blok = -1, vorige = 0, merk = -1;
  int64_t stap = 0, tot = 1;
};
bool eti_filter(char actie, int32_t* nummer, Etiket*, uint8_t status);
/// From now on each block read must belong to this series; null turns the check off.
void eti_eigenaar(const Serienr*);
/// Gives the chain of a series back to the free list; blok1 becomes -1. False when it met a block
/// of another series.
bool eti_vrijgeven(DtSer*);
int eti_cijfers();           // the configured number of label digits: 6, 7 or 8
int32_t eti_hoogste_blok();  // by those digits
/// Where a series' chain lives after a 'W' with number 0: block of the label.
inline int32_t eti_blok(int32_t nummer) { return (nummer - 1) / 10; }

/// Kinds of a typed or scanned code.
struct Etiketcode {
  char letter;  // 0 a label; 'M' size code, 'E' EAN, 'A' and 'O' other
  int32_t nummer;
};
/// Internal code "2cLLnnnnnnnnn" of a letter (0 or 'A'-'Z') and number, 13 digits.
void etikode_maak(char letter, int32_t nummer, char* code14);
/// False when the text is no code at all; a foreign EAN gives letter 'E'.
bool etikode_lees(std::string_view tekst, Etiketcode*);
/// The running serial of size codes (1000 to 9999999).
int32_t maatcode_nieuw();
