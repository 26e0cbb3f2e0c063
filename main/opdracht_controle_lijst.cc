// The list of what an order asked against what was sent: heads, the walk over the table, totals.
#include <algorithm>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/opdracht_controle_in.h"
#include "main/teksten.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/iomaat.h"
#include "sub/tabellen.h"

namespace {

constexpr int BREEDTE = 132;
constexpr int TOTAAL = 48;  // columns in front of the totals of the extensive list

template <size_t N>
std::string veld(const char (&v)[N]) {
  return veld_tekst(v, N);
}

// Heads -------------------------------------------------------------------------------------------

std::string filiaal_tekst(const Tekst& woord, int nummer) {
  FiliaalRec rec{};
  if (nummer < filialen()) iofil('R', nummer, &rec);
  const std::string wie = nummer < filialen() ? str_format("%2d", nummer) : txt(T_CTR_ALLE);
  return str_format("%-12.12s %-4.4s", txt(woord), wie) + str_format(" %-30.30s", veld(rec.naam)) +
         str_format(" %-25.25s", veld(rec.plaats));
}

void titels_uitgebreid() {
  print_f("%-4.4s %-15.15s %-12.12s %-12.12s %11s%s", txt(T_OPDRUK_MERK), txt(T_OPDRUK_MODEL),
          txt(T_OPDRUK_MATERIAAL), txt(T_OPDRUK_DESSIN), "", txt(T_CTR_MATEN));
  print_nl();
  print_f("%5s%-15.15s %-7.7s %-5.5s%-7.7s%14s%3.3s", "", txt(T_OPDRUK_SERIE), txt(T_CTR_KENMERK),
          "", txt(T_OPDRUK_LOCATIE), "", txt(T_OPDRUK_TOT));
  print_nl();
}

void titels_compact(bool enkel) {
  print_f("%-4.4s %-15.15s %-12.12s %-12.12s ", txt(T_OPDRUK_MERK), txt(T_OPDRUK_MODEL),
          txt(T_OPDRUK_MATERIAAL), txt(T_OPDRUK_DESSIN));
  print_f("%-10.10s %-7.7s %-15.15s ", txt(T_CTR_KENMERK), txt(T_OPDRUK_LOCATIE),
          txt(T_OPDRUK_SERIE));
  print_f("%6.6s %6.6s %8.8s %8.8s", txt(T_CTR_OPDR), txt(T_CTR_VERZ), txt(T_CTR_VERSCHIL),
          txt(T_CTR_MAAT));
  if (!enkel) print_f("  %10.10s", txt(T_CTR_FIL));
  print_nl();
}

void kop(ControleLijst& l) {
  const bool uitgebreid = l.vraag.uitgebreid;
  print_head(prt_links, "%s", txt(uitgebreid ? T_CTR_KOP_UITGEBREID : T_CTR_KOP_COMPACT));
  const int naar = l.enkel ? l.groep.naarfil : filialen();
  print_f("%s  %-14.14s %lu", filiaal_tekst(T_CTR_VAN_FILIAAL, l.groep.vanfil),
          txt(T_OPDRACHTNUMMER), l.vraag.opdracht.nummer);
  print_nl();
  print_f("%s  %-14.14s %s", filiaal_tekst(T_CTR_NAAR_FILIAAL, naar), txt(T_CTR_OPDRACHTDATUM),
          date_show_long(l.vraag.opdracht.datum));
  print_nl();
  print_nl();
  if (uitgebreid)
    titels_uitgebreid();
  else
    titels_compact(l.enkel);
  print_rep(BREEDTE, '-');
  print_nl();
  l.vorige = {};
}

}  // namespace

bool controle_ruimte(ControleLijst& l, int regels) {
  if (!print_vol(regels)) return false;
  kop(l);
  return true;
}

namespace {

// One series --------------------------------------------------------------------------------------

bool zelfde_groep(const ControleLijst& l, const Controle& a, const Controle& b) {
  return a.vanfil == b.vanfil && (!l.enkel || a.naarfil == b.naarfil);
}

/// The rows of one series into the matrices; leaves the first row behind them.
bool neem_serie(ControleLijst& l) {
  const Controle eerste = l.rij;
  matrix_wis(l.opdracht);
  matrix_wis(l.verzonden);
  bool meer;
  do {
    uint32_t aantallen[MATEN];  // the record is packed
    memcpy(aantallen, l.rij.opdracht, sizeof aantallen);
    matrix_add(l.opdracht, l.rij.naarfil, aantallen);
    memcpy(aantallen, l.rij.verzonden, sizeof aantallen);
    matrix_add(l.verzonden, l.rij.naarfil, aantallen);
    meer = IXNEXT(l.tabel, &l.rij);
  } while (meer && l.rij.nr == eerste.nr && zelfde_groep(l, l.rij, eerste));
  return meer;
}

// The whole ---------------------------------------------------------------------------------------

void druk_totaal(ControleLijst& l) {
  const auto opdracht = static_cast<int32_t>(l.stuks_opdracht);
  const auto verzonden = static_cast<int32_t>(l.stuks_verzonden);
  controle_ruimte(l, 2);
  print_f("%*s ", l.vraag.uitgebreid ? 37 : 71, txt(T_CTR_TOTAAL));
  print_f("%-8lu  ", l.vraag.opdracht.nummer);
  if (!l.vraag.uitgebreid) {
    print_f("%6ld %6ld", opdracht, verzonden);
    return print_nl();
  }
  print_f("%-4.4s %5ld", txt(T_CTR_OPDR), opdracht);
  print_nl();
  print_f("%*s%-4.4s %5ld", TOTAAL, "", txt(T_CTR_VERZ), verzonden);
  print_nl();
}

/// One series; tells whether there is another row.
bool druk_serie(ControleLijst& l) {
  const Controle eerste = l.rij;
  const bool meer = neem_serie(l);
  l.stuks_opdracht += l.opdracht.back()[0];
  l.stuks_verzonden += l.verzonden.back()[0];
  if (l.vraag.verschillen && !controle_verschilt(l)) return meer;
  const bool nieuw = !l.gedrukt || !zelfde_groep(l, l.groep, eerste);
  if (nieuw) {
    l.groep = eerste;
    kop(l);
  }
  l.gedrukt = true;
  controle_serie(l, eerste);
  return meer;
}

}  // namespace

bool controle_lijst(const ControleVraag& vraag) {
  ICB* tabel = IXOPEN_LENGTE(controle_bestand().c_str(), IX_EXCLUSIEF, sizeof(Controle));
  IXSWITCH(tabel, 2);
  ControleLijst l{vraag, tabel, controle_enkel(vraag.opdracht)};
  l.opdracht.assign(static_cast<size_t>(filialen()) + 1, {});
  l.verzonden = l.opdracht;
  bool meer = IXFIRSTR(tabel, &l.rij);
  while (meer && !scr_interrupted()) {
    const Controle vorige = l.rij;
    meer = druk_serie(l);
    const bool einde = !meer || !zelfde_groep(l, l.rij, vorige);
    const bool gedrukt = l.gedrukt && zelfde_groep(l, l.groep, vorige);
    if (einde && vraag.uitgebreid && gedrukt && !print_vol()) {  // the foot of a full page will do
      print_rep(BREEDTE, '=');
      print_nl();
    }
  }
  if (l.gedrukt && !vraag.verschillen) druk_totaal(l);
  mtlos(&l.maten);
  IXCLOSE(tabel);
  return l.gedrukt;
}
