// The spool file written anew before it leaves: through a ".tmp" name, and in the letters that a
// queue of lp reads. KOBPRTCODE names those letters, UTF-8 when absent; CP850 sends the bytes as
// they are.
#include <iconv.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "isam/base.h"
#include "prt/intern.h"

namespace {

iconv_t omzetter = nullptr;

// Copies bytes up to the offset, as they are; false at an early end.
bool kopieer(FILE* van, FILE* naar, long aantal) {
  for (long n = 0; n < aantal; ++n) {
    const int teken = std::getc(van);
    if (teken == EOF) return false;
    std::putc(teken, naar);
  }
  return true;
}

// A byte at a time is plain and cannot stop half-way in a character; stdio does the buffering.
void zet_om(FILE* van, FILE* naar, long aantal) {
  for (long n = 0; n < aantal; ++n) {
    const int teken = std::getc(van);
    if (teken == EOF) return;
    char in[1] = {static_cast<char>(teken)}, uit[16];
    char *p = in, *q = uit;
    size_t rest = 1, ruimte = sizeof uit;
    if (teken < 128 || iconv(omzetter, &p, &rest, &q, &ruimte) == static_cast<size_t>(-1)) {
      std::putc(teken < 128 ? teken : '?', naar);
      continue;
    }
    std::fwrite(uit, 1, sizeof uit - ruimte, naar);
  }
}

// The printer's own start and stop strings are codes, no letters: they stay.
bool schrijf_letters(FILE* van, FILE* naar) {
  if (!kopieer(van, naar, prt_rec.text_start)) return false;
  zet_om(van, naar, prt_tekst_eind - prt_rec.text_start);
  for (int teken = std::getc(van); teken != EOF; teken = std::getc(van)) std::putc(teken, naar);
  return true;
}

}  // namespace

bool prt_herschrijf(bool (*schrijf)(FILE* van, FILE* naar)) {
  const std::string tijdelijk = std::string(prt_rec.spool_name) + ".tmp";
  FILE* van = std::fopen(prt_rec.spool_name, "rb");
  FILE* naar = van == nullptr ? nullptr : std::fopen(tijdelijk.c_str(), "wb");
  bool goed = naar != nullptr && schrijf(van, naar) && std::ferror(naar) == 0;
  if (van != nullptr) std::fclose(van);
  if (naar != nullptr) goed = std::fclose(naar) == 0 && goed;
  if (goed) goed = std::rename(tijdelijk.c_str(), prt_rec.spool_name) == 0;
  if (!goed) file_delete(tijdelijk.c_str());
  return goed;
}

void prt_omzet() {
  const char* code = std::getenv("KOBPRTCODE");
  if (code == nullptr || *code == 0) code = "UTF-8";
  if (std::strcmp(code, "CP850") == 0) return;
  omzetter = iconv_open((std::string(code) + "//TRANSLIT").c_str(), "CP850");
  if (reinterpret_cast<intptr_t>(omzetter) == -1) return;
  prt_herschrijf(schrijf_letters);
  iconv_close(omzetter);
}
