// Dates and periods. A date that equals its reference is stored as 0, and 0 stands for it again.
#include "isam/base.h"
#include "scr/scr.h"
#include "sub/sel_intern.h"

namespace {

/// One end, starting at what it stands for; the last date of all shows as an empty field.
bool ingave_eind(int rij, int kolom, uint16_t* datum, uint16_t ref, uint16_t hoogste) {
  uint16_t d = *datum != 0 ? *datum : ref == DATUM_LAATSTE ? uint16_t{0} : ref;
  if (hoogste != 0) scr_ctx->ing->max = hoogste;
  INGAVE(rij, kolom, "D,", &K_CANCEL, &d);
  if (weg_toets()) return false;
  *datum = d == ref ? uint16_t{0} : d;
  return true;
}

void toon_van(int rij, uint16_t datum, uint16_t ref) {
  scr_clreol(rij, SEL_K_EEN);
  scr_print(A_WAARDE, rij, SEL_K_EEN, "%s", date_plain(datum == 0 ? ref : datum));
  scr_print(A_LABEL, rij, SEL_K_TM, "%s", txt(T_SEL_TM));
}

}  // namespace

bool ingave_datum(char letter, int rij) {
  SelPeriode p;
  if (!sel_periode(letter, &sel_rec, &p)) return true;
  uint16_t datum = sel_gezet(letter) ? *p.van : uint16_t{0};
  if (!ingave_eind(rij, SEL_K_EEN, &datum, sel_datum(p.van_code), 0)) return false;
  *p.van = datum;
  sel_zet(letter, datum != 0);
  return true;
}

bool ingave_periode(char letter, int rij) {
  SelPeriode p;
  if (!sel_periode(letter, &sel_rec, &p) || p.tm == nullptr) return true;
  const uint16_t van_ref = sel_datum(p.van_code), tm_ref = sel_datum(p.tm_code);
  const uint16_t hoogste = letter == 'W' ? sel_datum(CODE_VANDAAG) : uint16_t{0};
  uint16_t van = sel_gezet(letter) ? *p.van : uint16_t{0};
  uint16_t tm = sel_gezet(letter) ? *p.tm : uint16_t{0};
  for (;;) {
    sel_wis_waarde(rij);
    if (!ingave_eind(rij, SEL_K_EEN, &van, van_ref, 0)) return false;
    toon_van(rij, van, van_ref);
    if (!ingave_eind(rij, SEL_K_TWEE, &tm, tm_ref, hoogste)) return false;
    if ((van == 0 && tm == 0) || periode_geldig(van, tm, van_ref, tm_ref)) break;
    scr_error("%s", txt(T_SEL_FOUT_PERIODE));
  }
  *p.van = van;
  *p.tm = tm;
  sel_zet(letter, van != 0 || tm != 0);
  return true;
}
