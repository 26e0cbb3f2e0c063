// Formats of input fields: parsing, limits, accepted characters.
#include "fuzzing/fuzz.h"
#include "scr/veld_formaat.h"

std::vector<std::string> fuzz_zaden() {
  return {"5l,EZP",  "1c[1234],IEA",
          "8.4f,EP", "6.2f,EJNPZ",
          "D,I",     "b,E",
          "8B,JEP",  "10D,F",
          "1c[^.,]", "20c,E",
          "c,AIU",   "40.12C,EI",
          "8x,U",    "255.60C[0123456789-.,],I",
          "3d,PZ",   "0l",
          "300c",    "5q",
          "5c[abc",  "  2U,EP,,/  "};
}

void fuzz_een(const uint8_t* data, size_t n) {
  Bron bron{data, n};
  const int geld = bron.byte() & 2;
  double min = bron.byte() - 100.0, max = bron.byte() - 100.0;
  const std::string formaat = bron.tekst(600);
  VeldFormaat f;
  if (veld_ontleed(formaat, geld, f) != VeldFout::geen) return;
  const VeldGrenzen grenzen = veld_grenzen(f, geld);
  veld_bereik(f, grenzen, min, max);
  uint8_t tekens[64] = {};
  veld_tekens(f, 'J', 'N', VeldTekens(tekens));
}
