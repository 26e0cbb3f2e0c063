// One series of an order document: its description in the left 52 columns, one part a line, and its
// size bar beside it in steps of 18 sizes, with the quantities of each receiving branch.
#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "isam/base.h"
#include "main/controle.h"
#include "main/opdruk_in.h"
#include "main/saldo.h"
#include "main/teksten.h"
#include "prt/prt.h"
#include "sub/iomaat.h"
#include "sub/leesstam.h"
#include "sub/tabellen.h"

namespace {

constexpr int STAP = 18;        // sizes of a report line
constexpr int BLOKREGELS = 5;   // a series takes at least as many lines
constexpr int LINKERDEEL = 52;  // columns

bool bekend = false;  // the series could be read
Kleur kleur;
MaatHandle* maten = nullptr;

/// The columns of the series: size indexes with their texts, in the order of the size bar.
struct Kolom {
  uint8_t maat;
  std::string tekst;
};
std::vector<Kolom> balk;

template <size_t N>
std::string veld(const char (&v)[N]) {
  return veld_tekst(v, N);
}

std::string linkerdeel(int regel) {
  switch (regel) {
    case 0:
      return str_format("%-14.14s%8s%-20.20s%3s%-6.6s ", serie_tekst(ser_rec.nr), "",
                        veld(art_rec.naam), "", veld(ser_rec.locatie));
    case 1:
      return str_format("%6s%-15.15s %-20.20s %8s ", "", veld(kleur.naam),
                        veld(ser_rec.omschrijving),
                        bekend ? money_show(ser_rec.adviesprijs, 8) : "");
    case 2:
      return str_format("%6s%-4.4s %4s%7s%-20.20s%10s", "", veld(merk_rec.zoeknaam),
                        bekend ? str_format("%hu", ser_rec.merk) : "", "", veld(merk_rec.naam), "");
    case 3:
      return str_format("%6s%-15.15s %-12.12s %-12.12s%5s", "", veld(ser_rec.model),
                        veld(ser_rec.materiaal), veld(ser_rec.dessin), "");
    default:
      return std::string(LINKERDEEL, ' ');
  }
}

void lees_balk() {
  balk.clear();
  mtserie(&maten, ser_rec);
  for (const MaatRec& m : mtlijst(maten)) balk.push_back({m.maat, veld(m.tekst)});
  // Pieces of sizes that the series does not have, or no longer, are not hidden.
  for (uint8_t i = 1; i < MATEN; ++i) {
    const bool staat = std::ranges::any_of(balk, [i](const Kolom& k) { return k.maat == i; });
    if (werk8.back()[i] == 0 || staat) continue;
    MaatRec m;
    balk.push_back({i, mtzoek(maten, i, &m) ? veld(m.tekst) : ""});
  }
}

/// The lines of one series; the left parts go along with them.
struct Blok {
  OpdrachtSoort soort;
  int regel = 0;

  void links() { print_f("%s", linkerdeel(regel++)); }
  std::span<const Kolom> kolommen(int stap) const {
    const size_t begin = std::min(static_cast<size_t>(stap) * STAP, balk.size());
    return std::span<const Kolom>(balk).subspan(begin, std::min<size_t>(STAP, balk.size() - begin));
  }
  void maatregel(int stap) {
    links();
    std::string tekst = str_format("%4s%-2.2s ", "", veld(ser_rec.kenmerk));
    for (const Kolom& k : kolommen(stap)) tekst += str_format(" %3.3s", k.tekst);
    print_f("%s", tekst);
    print_nl();
  }
  /// The sizes come again where the page ends between them and their quantities.
  void ruimte(int stap) {
    if (!print_vol(1)) return;
    opdruk_kop(soort);
    maatregel(stap);
  }
  void aantallen(const Maatrij& rij, int stap) {
    if (stap == 0)
      print_f("%4d ", rij[0]);
    else
      print_f("%5s", "");
    for (const Kolom& k : kolommen(stap)) print_blank_amount("%4d", rij[k.maat]);
    print_nl();
  }
  void filiaal(size_t f, int stap) {
    ruimte(stap);
    links();
    print_f("%2d", static_cast<int>(f));
    aantallen(werk8[f], stap);
  }
  void stappen(int aantal) {
    for (int stap = 0; stap < aantal; ++stap) {
      if (print_vol(2)) opdruk_kop(soort);
      maatregel(stap);
      if (saldo_splits) {
        const size_t naar = opdruk_groep.naarfil;
        if (naar + 1 < werk8.size()) filiaal(naar, stap);
        continue;
      }
      for (size_t f = 0; f + 1 < werk8.size(); ++f) {
        if (werk8[f][0] != 0) filiaal(f, stap);
      }
    }
  }
  void vul_aan() {
    while (regel < BLOKREGELS) {
      if (print_vol(1)) opdruk_kop(soort);
      links();
      print_nl();
    }
  }
  /// Under a bar of several lines the sizes stand above their totals again.
  void totalen(int aantal) {
    for (int stap = 0; stap < aantal; ++stap) {
      if (aantal > 1) {
        if (print_vol(2)) opdruk_kop(soort);
        maatregel(stap);
      }
      ruimte(stap);
      print_f("%51s   ", stap == 0 ? txt(T_OPDRUK_TOTAAL) : "");
      aantallen(werk8.back(), stap);
    }
  }
};

}  // namespace

void opdruk_lees(const Verzamel& v) {
  bekend = lees_serie(dtser, &ser_rec, v.nr);
  if (!bekend) {
    ser_rec = {};
    ser_rec.nr = v.nr;
    std::copy_n(v.model, sizeof v.model, ser_rec.model);
    std::copy_n(v.locatie, sizeof v.locatie, ser_rec.locatie);
  }
  lees_artikel(dtart, &art_rec, ser_rec.nr.artgroep);
  if (!lees_merk(dtmerk, &merk_rec, ser_rec.merk))
    std::copy_n(v.merk, sizeof v.merk, merk_rec.zoeknaam);
  lees_kleur(&kleur, ser_rec.nr.kleur);
  lees_balk();
}

void opdruk_serie(OpdrachtSoort soort) {
  if (print_vol(BLOKREGELS)) opdruk_kop(soort);
  Blok blok{soort};
  const int stappen = std::max(1, static_cast<int>(balk.size() + STAP - 1) / STAP);
  blok.stappen(stappen);
  blok.vul_aan();
  if (!saldo_splits) blok.totalen(stappen);
}

void opdruk_einde() { mtlos(&maten); }
