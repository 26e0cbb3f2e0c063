// Making the tables of print destinations: at first use, and anew when an index is past repair.
//
// A table whose data file survives keeps its records: its index is built again from them. New
// tables know one printer, the screen.
#include "prt/tabellen.h"

#include <unistd.h>

#include <ctime>
#include <string>

#include "isam/base.h"
#include "isam/ix.h"
#include "prt/prt.h"

namespace {

bool vul_ptrg(ICB* tabel) {
  PtrgRec rec{PTR_SCHERM, 0, "SCR"};
  return IXWRITE(tabel, &rec);
}

bool vul_ptrc(ICB* tabel) {
  PtrcRec rec{PTR_SCHERM, 1, 0, "", "SCR"};
  return IXWRITE(tabel, &rec);
}

bool vul_ptrp(ICB* tabel) {
  PtrpRec recs[] = {{PTR_SCHERM, 1, 0, 40, PTR_EINDELOOS, "SCR-40", "", ""},
                    {PTR_SCHERM, 2, 0, 80, 64, "SCR-80", "", ""},
                    {PTR_SCHERM, 3, 0, 132, 64, "SCR-132", "", ""}};
  bool goed = true;
  for (PtrpRec& rec : recs) goed = IXWRITE(tabel, &rec) && goed;
  return goed;
}

struct TabelDef {
  const char* naam;
  const char* definities[4];  // title and record length, then the keys
  bool (*vul)(ICB*);
};
constexpr TabelDef TABELLEN[] = {
    {TR_PTRG, {"TR_PTR_general,16", "tr_code,I,1,2", "name,C,5,16", nullptr}, vul_ptrg},
    {TR_PTRC,
     {"TR_PTR_connections,64", "code-id,I,1,2,I,3,3", "code-dev,I,1,2,C,5,44",
      "cd-name,I,1,2,C,45,64"},
     vul_ptrc},
    {TR_PTRP,
     {"TR_PTR_properties,284", "code-id,I,1,2,I,3,3", "cd-cols,I,1,2,I,5,6,I,4,4",
      "cd-desc,I,1,2,C,9,40"},
     vul_ptrp},
    {TR_PTRCA, {"TR_PTR_codes,126", "code-cap,I,1,2,I,3,3,I,4,4", nullptr, nullptr}, nullptr},
};

// A table that another program is writing may look unsound for a moment.
bool index_gezond(const std::string& naam) {
  if (!file_exists((naam + ".INX").c_str())) return false;
  for (int poging = 0; poging < 3; ++poging) {
    if (poging > 0) {
      const timespec even{0, 200000000L};
      nanosleep(&even, nullptr);
    }
    if (IXCHECK(naam.c_str()) >= 0) return true;
  }
  return false;
}

bool map_schrijfbaar(const std::string& naam) {
  const size_t streep = naam.rfind('/');
  const std::string map = streep == std::string::npos ? "." : naam.substr(0, streep + 1);
  return access(map.c_str(), W_OK | X_OK) == 0;
}

bool tabel_maak(const TabelDef& def, const std::string& naam, bool nieuw) {
  ICB* tabel = IXCREATE(naam.c_str(), IX_EXCLUSIEF);
  for (int k = 0; k < 4 && def.definities[k] != nullptr; ++k) IXUPDFCB(tabel, k, def.definities[k]);
  bool goed = IXINITIX(tabel);
  if (goed && nieuw && def.vul != nullptr) goed = def.vul(tabel);
  IXCLOSE(tabel);
  return goed && (nieuw || IXBLDIX(naam.c_str()) == 1);
}

bool tabel_gereed(const TabelDef& def) {
  const std::string naam = prt_path(def.naam);
  const bool nieuw = !file_exists((naam + ".TXT").c_str());
  if (!nieuw && index_gezond(naam)) return true;
  const std::string inx = naam + ".INX";
  if (!map_schrijfbaar(naam) || !file_delete(inx.c_str()) || file_exists(inx.c_str())) return false;
  return tabel_maak(def, naam, nieuw);
}

}  // namespace

bool prt_tabellen_maak() {
  for (const TabelDef& def : TABELLEN) {
    if (!tabel_gereed(def)) return false;
  }
  return true;
}
