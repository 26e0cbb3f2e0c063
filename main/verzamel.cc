// See verzamel.h.
#include "main/verzamel.h"

#include <cstring>
#include <string>

#include "isam/formaat.h"

namespace {

struct Sortveld {
  char letter;
  const char* sleutel;  // its part of the key
};
constexpr Sortveld VELDEN[] = {{'A', ",I,21,24"}, {'K', ",I,25,26"}, {'V', ",I,27,28"},
                               {'L', ",C,41,46"}, {'M', ",C,3,17"},  {'R', ",C,29,32"}};

}  // namespace

void verzamel_maak(const char* naam, const char* sortering, bool splits) {
  IXREMOVE(naam);
  std::string sleutel = "key1,NODUPS,I,1,1";
  if (splits) sleutel += ",I,2,2";
  for (const char* p = sortering; *p != 0; ++p) {
    for (const Sortveld& v : VELDEN) {
      if (v.letter == *p) sleutel += v.sleutel;
    }
  }
  if (!splits) sleutel += ",I,2,2";
  ICB* icb = IXCREATE(naam, IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, str_format("verzamel,%d", static_cast<int>(sizeof(Verzamel))).c_str());
  IXUPDFCB(icb, 1, sleutel.c_str());
  IXINITIX(icb);
  IXCLOSE(icb);
}

Verzamel verzamel_regel(const DtPick& regel, const DtSer& serie, const DtMerk& merk) {
  Verzamel v{};
  v.vanfil = regel.vanfil;
  v.naarfil = regel.naarfil;
  v.nr = regel.nr;
  v.opdrachtnr = regel.opdrachtnr;
  v.orderdatum = regel.orderdatum;
  memcpy(v.model, serie.model, sizeof v.model);
  memcpy(v.locatie, serie.locatie, sizeof v.locatie);
  memcpy(v.merk, merk.zoeknaam, sizeof v.merk);
  memcpy(v.aantal, regel.aantal, sizeof v.aantal);
  return v;
}
