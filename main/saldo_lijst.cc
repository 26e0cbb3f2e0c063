// The list of the balance: sums temp_verzamel per branch and prints one line a branch. The literals
// of this list are fixed and pass no catalogue; the counts print modulo 65536 as the columns were
// laid out.
#include <array>
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/saldo.h"
#include "main/saldo_pas.h"
#include "main/verzamel.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/iomaat.h"
#include "sub/leesstam.h"
#include "sub/tabellen.h"
#include "sub/zoek.h"

namespace {

constexpr int TELLERS = 251;
using Tellers = std::array<int32_t, TELLERS>;

struct Saldo {
  Tellers uit{}, in{};
};

void tel_op(int32_t& teller, int32_t aantal) {
  teller = static_cast<int32_t>(static_cast<uint32_t>(teller) + static_cast<uint32_t>(aantal));
}
void boek(Saldo& saldo, uint8_t van, uint8_t naar, int32_t aantal) {
  if (van < TELLERS) tel_op(saldo.uit[van], aantal);
  if (naar < TELLERS) tel_op(saldo.in[naar], aantal);
}

MaatHandle* maten = nullptr;  // of the series last read

/// The master data that stands beside a series on the documents of this chain of steps.
void lees_serie_gegevens(const Serienr& nr) {
  static Kleur kleur;
  if (!lees_serie(dtser, &ser_rec, nr)) return;
  lees_artikel(dtart, &art_rec, nr.artgroep);
  lees_merk(dtmerk, &merk_rec, ser_rec.merk);
  lees_lev(dtlev, &lev_rec, ser_rec.leverancier);
  lees_kleur(&kleur, nr.kleur);
  mtserie(&maten, ser_rec);
}

bool zelfde_groep(const Verzamel& a, const Verzamel& b) {
  return a.vanfil == b.vanfil && (!saldo_splits || a.naarfil == b.naarfil);
}

/// One series of a group: its records lie together. Leaves the first record behind it in `buf` and
/// tells whether there was one. The pieces come back in *aantal.
bool tel_serie(ICB* tabel, Verzamel& buf, Saldo& saldo, int32_t* aantal) {
  const Verzamel eerste = buf;
  lees_serie_gegevens(buf.nr);
  bool meer = true;
  do {
    const int32_t voor = werk8.back()[0];
    uint32_t rij[MATEN];  // the record is packed
    memcpy(rij, buf.aantal, sizeof rij);
    matrix_add(werk8, buf.naarfil, std::span<const uint32_t, MATEN>(rij));
    // A list that is not split has several receivers in a group: each record counts by itself.
    if (!saldo_splits) boek(saldo, buf.vanfil, buf.naarfil, werk8.back()[0] - voor);
    const Verzamel vorige = buf;
    meer = IXNEXT(tabel, &buf);
    if (vorige.naarfil + size_t{1} < werk8.size()) werk8[vorige.naarfil] = {};
  } while (meer && buf.nr == eerste.nr && zelfde_groep(buf, eerste));
  *aantal = werk8.back()[0];
  werk8.back() = {};
  return meer;
}

/// Sums the whole table.
void tel(ICB* tabel, Saldo& saldo) {
  Verzamel buf{};
  matrix_wis(werk8);
  bool meer = IXNEXT(tabel, &buf);
  while (meer) {
    const Verzamel groep = buf;
    int32_t totaal = 0;
    do {
      int32_t aantal = 0;
      meer = tel_serie(tabel, buf, saldo, &aantal);
      tel_op(totaal, aantal);
    } while (meer && zelfde_groep(buf, groep));
    if (saldo_splits) {
      boek(saldo, groep.vanfil, groep.naarfil, totaal);
      if (groep.naarfil <= filialen()) iofil('R', groep.naarfil, &filiaal_rec);
    }
  }
}

void saldo_kop() {
  print_head(prt_links, "%s", scr_kladregel);
  print_rep(15, ' ');
  print_f("UIT     IN");
  print_nl();
  print_rep(132, '-');
  print_nl();
}

bool druk_filialen(const Saldo& saldo) {
  bool gedrukt = false;
  int32_t totaal = 0;
  for (int f = 0; f < TELLERS; ++f) {
    const int32_t uit = saldo.uit[static_cast<size_t>(f)], in = saldo.in[static_cast<size_t>(f)];
    if (uit < 1 && in < 1) continue;
    gedrukt = true;
    if (print_vol()) saldo_kop();
    print_f("Filiaal %2d    %4hu   %4hu stuks", f, uit, in);
    print_nl();
    tel_op(totaal, in);
  }
  if (totaal > 0) {
    print_rep(31, '-');
    print_nl();
    print_f("TOTAAL               %4hu stuks", totaal);
    print_nl();
  }
  return gedrukt;
}

void meld_geen() {
  scr_clrbot(2, 1);
  scr_beep();
  scr_print(A_WAARDE, 2, 1, "SALDO VOORLOPIGE OPDRACHTEN");
  scr_print(A_WAARDE, 4, 1, "Geen aantallen geselecteerd");
  scr_enter(5, 1);
}

}  // namespace

bool saldo_druk() {
  Saldo saldo;
  // Nobody else has it: its blocks are read once.
  ICB* tabel = IXOPEN_LENGTE(privaat.tp, IX_EXCLUSIEF, sizeof(Verzamel));
  tel(tabel, saldo);
  prt_rec.line_no =
      99;  // forces a head on every page shorter than this; the 132-column screen has 64
  const bool gedrukt = druk_filialen(saldo);
  IXCLOSE(tabel);
  mtlos(&maten);
  return gedrukt;
}

void saldo_totalen() {
  if (!XPRT_OPEN(PRT_SCHERM, PRT_132, nullptr)) return;
  if (!saldo_druk()) meld_geen();
  print_close("");
  IXREMOVE(privaat.tp);
}
