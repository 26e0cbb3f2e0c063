// The order document: a page head for each order, its series with their size grids, and the pieces
// of each pair. Reads temp_verzamel and the master data, changes nothing; a series, branch or size
// type that has gone leaves blanks where it would have been told.
#include "main/opdruk.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string>

#include "isam/base.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/opdruk_in.h"
#include "main/saldo.h"
#include "main/teksten.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/tabellen.h"

OpdrukGroep opdruk_groep;

namespace {

constexpr int BREEDTE = 132;
constexpr int RECHTS = 52;  // columns behind the titles, where the order's number ends

/// Set when the next group begins a page; also on paper without pages.
bool nieuw_blad = false;

void streep() {
  print_rep(BREEDTE, '-');
  print_nl();
}

FiliaalRec lees_filiaal(uint8_t nummer) {
  FiliaalRec rec{};
  if (nummer <= filialen()) iofil('R', nummer, &rec);
  return rec;
}

/// One format, the text in front: a branch of three digits then takes the blank before it.
void filiaalregel(const Tekst& woord, uint8_t nummer) {
  const FiliaalRec rec = lees_filiaal(nummer);
  print_f("%-5.5s%2hu  %-32.32s %-30.30s %-25.25s", txt(woord), nummer,
          veld_tekst(rec.naam, sizeof rec.naam), veld_tekst(rec.adres, sizeof rec.adres),
          veld_tekst(rec.plaats, sizeof rec.plaats));
  print_nl();
}

struct Kolomtitel {
  const Tekst& tekst;
  int breedte;  // negative: to the left
  int achter;   // blanks behind it
};
constexpr Kolomtitel TITELS_SERIE[] = {{T_OPDRUK_SERIE, -5, 1},
                                       {T_OPDRUK_MERK, -14, 2},
                                       {T_OPDRUK_OMSCHRIJVING, -21, 1},
                                       {T_OPDRUK_LOCATIE, -7, 8},
                                       {T_OPDRUK_MAATSPEC, -20, 1}};
constexpr Kolomtitel TITELS_MODEL[] = {{T_OPDRUK_MODEL, -15, 1}, {T_OPDRUK_MATERIAAL, -12, 1},
                                       {T_OPDRUK_DESSIN, -8, 0}, {T_OPDRUK_ADVPR, 8, 1},
                                       {T_OPDRUK_FN, 2, 1},      {T_OPDRUK_TOT, 3, 1}};

std::string titels(std::span<const Kolomtitel> rij) {
  std::string uit;
  for (const Kolomtitel& t : rij)
    uit += str_format("%*s%*s", t.breedte, txt(t.tekst), t.achter, "");
  return uit;
}

/// The order's number and date at the right of the two title lines; the longer one ends the line.
struct Rechts {
  std::string boven, onder;
};
Rechts rechts(OpdrachtSoort soort) {
  const OpdrukGroep& g = opdruk_groep;
  Rechts r;
  if (soort == OpdrachtSoort::nieuw) {
    r.boven = str_format("%s: %8ld", txt(T_OPDRUK_NUMMER), g.opdrachtnr);
  } else if (soort == OpdrachtSoort::bestaand) {
    r.boven = str_format("%-10.10s: %8ld (%s)", txt(T_OPDRUK_NUMMER), g.opdrachtnr,
                         txt(T_OPDRUK_HERHAALD));
    r.onder = str_format("%-10.10s: %s", txt(T_OPDRUK_PRINTDATUM), date_show_long(g.orderdatum));
  } else {
    return r;
  }
  const int inspring = RECHTS - static_cast<int>(std::max(r.boven.size(), r.onder.size()));
  r.boven.insert(0, static_cast<size_t>(std::max(inspring, 0)), ' ');
  if (!r.onder.empty()) r.onder.insert(0, static_cast<size_t>(std::max(inspring, 0)), ' ');
  return r;
}

bool zelfde_groep(const Verzamel& a, const Verzamel& b) {
  return a.vanfil == b.vanfil && (!saldo_splits || a.naarfil == b.naarfil);
}

/// One series of a group. Leaves the first record behind it in `buf`; *meer tells whether there was
/// one. Returns its pieces.
int32_t neem_serie(OpdrachtSoort soort, ICB* tabel, Verzamel& buf, bool* meer) {
  const Verzamel eerste = buf;
  matrix_wis(werk8);
  do {
    uint32_t rij[MATEN];  // the record is packed
    memcpy(rij, buf.aantal, sizeof rij);
    matrix_add(werk8, buf.naarfil, std::span<const uint32_t, MATEN>(rij));
    *meer = IXNEXT(tabel, &buf);
  } while (*meer && buf.nr == eerste.nr && zelfde_groep(buf, eerste));
  opdruk_lees(eerste);
  if (nieuw_blad) opdruk_kop(soort);
  opdruk_serie(soort);
  return werk8.back()[0];
}

/// The pieces of a pair, under its last series.
void voet(OpdrachtSoort soort, int32_t stuks) {
  if (print_vol(2)) opdruk_kop(soort);
  streep();
  const uint8_t naar = opdruk_groep.naarfil;
  const FiliaalRec rec = lees_filiaal(naar);
  print_f("%-12.12s %2hu  %-32.32s %3s ", txt(T_OPDRUK_VOOR_FILIAAL), naar,
          veld_tekst(rec.naam, sizeof rec.naam), txt(T_OPDRUK_GROEP_TOT));
  print_f("%4d", stuks);
  print_nl();
}

/// All series of the group that begins in `buf`; the operator may break the document off.
void neem_groep(OpdrachtSoort soort, ICB* tabel, Verzamel& buf, bool* meer) {
  const Verzamel groep = buf;
  opdruk_groep = {groep.vanfil, groep.naarfil, groep.opdrachtnr, groep.orderdatum};
  uint32_t stuks = 0;
  do {
    stuks += static_cast<uint32_t>(neem_serie(soort, tabel, buf, meer));
    if (scr_interrupted()) {
      *meer = false;
      return;
    }
  } while (*meer && zelfde_groep(buf, groep));
  if (saldo_splits) voet(soort, static_cast<int32_t>(stuks));
  if (soort != OpdrachtSoort::bestaand) nieuw_blad = true;
}

bool iets_verzameld() {
  ICB* tabel = IXOPEN_LENGTE(privaat.tp, IX_EXCLUSIEF, sizeof(Verzamel));
  Verzamel buf{};
  const bool er = IXFIRSTR(tabel, &buf);
  IXCLOSE(tabel);
  return er;
}

}  // namespace

void opdruk_kop(OpdrachtSoort soort) {
  nieuw_blad = false;
  std::string titel = str_format("%s %d", txt(T_OPDRUK_TITEL), opdruk_groep.vanfil);
  if (soort == OpdrachtSoort::voorlopig) titel += str_format(" (%s)", txt(T_OPDRUK_VOORLOPIG));
  print_head(prt_links, "%s", titel);
  if (saldo_splits) {
    filiaalregel(T_OPDRUK_VAN, opdruk_groep.vanfil);
    filiaalregel(T_OPDRUK_VOOR, opdruk_groep.naarfil);
    print_nl();
  }
  const Rechts r = rechts(soort);
  print_f("%s", titels(TITELS_SERIE) + r.boven);
  print_nl();
  print_f("%s", str_format("%6s", "") + titels(TITELS_MODEL) +
                    str_format("%-20.20s ", txt(T_OPDRUK_MAATAANTALLEN)) + r.onder);
  print_nl();
  streep();
}

void opdruk_druk(OpdrachtSoort soort) {
  // Nobody else has it: its blocks are read once.
  ICB* tabel = IXOPEN_LENGTE(privaat.tp, IX_EXCLUSIEF, sizeof(Verzamel));
  nieuw_blad = true;
  Verzamel buf{};
  bool meer = IXFIRSTR(tabel, &buf);
  while (meer) neem_groep(soort, tabel, buf, &meer);
  opdruk_einde();
  IXCLOSE(tabel);
}

bool opdruk(OpdrachtSoort soort) {
  if (!iets_verzameld()) {
    // The balance behind the other kinds says so itself.
    if (soort == OpdrachtSoort::voorlopig) msg_info(txt(T_OPDRUK_GEEN));
    return true;
  }
  if (!XPRT_OPEN(PRT_SCHERM, PRT_132, nullptr)) return false;
  opdruk_druk(soort);
  print_close("");
  return true;
}
