// The search list and the list of cancelled mutations on paper: per pair of branches and series one
// line a label, or a line a size where pieces have no labels; beside the first two lines of a
// series what one looks for it by.
#include "main/zoeklijst.h"

#include <string>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/teksten.h"
#include "prt/prt.h"
#include "sub/leesstam.h"
#include "sub/tabellen.h"

namespace {

struct Lijst {
  OpdrachtSoort soort;
  uint32_t opdrachtnr;
  ICB* tabel;
  Zoekregel regel{};                 // the next row to print
  int32_t etiketten = 0, stuks = 0;  // of the pair
};

/// What a line of a series shows in front of the bar.
struct Links {
  std::string serie, maat, stuk;
  uint32_t prijs;
};

bool volgende(Lijst& l) {
  while (IXNEXT(l.tabel, &l.regel)) {
    if (l.soort != OpdrachtSoort::geannuleerd || l.regel.gemarkeerd != 0) return true;
  }
  return false;
}

bool zelfde_paar(const Zoekregel& a, const Zoekregel& b) {
  return a.vanfil == b.vanfil && a.naarfil == b.naarfil;
}
bool zelfde_serie(const Zoekregel& a, const Zoekregel& b) {
  return zelfde_paar(a, b) && a.nr == b.nr;
}

void filiaalregel(const char* woord, uint8_t filiaal) {
  FiliaalRec rec{};
  if (filiaal <= filialen()) iofil('R', filiaal, &rec);
  print_f("%-5.5s", woord);
  print_f("%2d %-32.32s %-30.30s %-25.25s", filiaal, veld_tekst(rec.naam, sizeof rec.naam),
          veld_tekst(rec.adres, sizeof rec.adres), veld_tekst(rec.plaats, sizeof rec.plaats));
  print_nl();
}

std::string koptekst(OpdrachtSoort soort, const Zoekregel& r) {
  // Of the cancelled mutations the head names the receiver only; the sender stands below it.
  if (soort == OpdrachtSoort::geannuleerd)
    return str_format("%s %d", txt(T_GEANNULEERD_FILIAAL), r.naarfil);
  return str_format("%s %d ", txt(T_ZOEKLIJST_FILIAAL), r.vanfil) +
         str_format("-> %s %d", txt(T_ZOEKLIJST_NAAR_FILIAAL), r.naarfil);
}

void kop(const Lijst& l, const Zoekregel& r) {
  print_head(prt_links, "%s", koptekst(l.soort, r));
  if (l.opdrachtnr != 0) {
    print_f("%s ", txt(T_OPDRACHTNUMMER));
    print_f("%lu", l.opdrachtnr);
    print_nl();
  }
  filiaalregel(txt(T_OPDRUK_VAN), r.vanfil);
  filiaalregel(txt(T_ZOEKLIJST_NAAR), r.naarfil);
}

/// A new page when fewer than `regels` lines remain on this one.
void ruimte(const Lijst& l, const Zoekregel& r, int regels) {
  if (print_vol(regels)) kop(l, r);
}

/// The two lines by which a series is found: place and brand, description and colour.
std::string rechterdeel(int nummer) {
  static Kleur kleur;
  if (nummer == 0) {
    return str_format(" %-6.6s  %-4.4s %4hu %-20.20s %-15.15s %-12.12s %-12.12s",
                      veld_tekst(ser_rec.locatie, sizeof ser_rec.locatie),
                      veld_tekst(merk_rec.zoeknaam, sizeof merk_rec.zoeknaam), ser_rec.merk,
                      veld_tekst(merk_rec.naam, sizeof merk_rec.naam),
                      veld_tekst(ser_rec.model, sizeof ser_rec.model),
                      veld_tekst(ser_rec.materiaal, sizeof ser_rec.materiaal),
                      veld_tekst(ser_rec.dessin, sizeof ser_rec.dessin));
  }
  if (nummer > 1) return "";
  lees_kleur(&kleur, ser_rec.nr.kleur);
  return str_format("%9s%-20.20s%11s%-20.20s%9s%-15.15s", "",
                    veld_tekst(ser_rec.omschrijving, sizeof ser_rec.omschrijving), "",
                    veld_tekst(art_rec.naam, sizeof art_rec.naam), "",
                    veld_tekst(kleur.naam, sizeof kleur.naam));
}

void druk(const Links& links, const std::string& rechts) {
  print_f("%-14.14s  ", links.serie);
  print_f("%-6.6s", links.maat);
  print_f("%-15.15s", links.stuk);
  print_f("%8s |", money_show(static_cast<int32_t>(links.prijs), 8));
  print_f("%s", rechts);
  print_nl();
}

/// One label, or the pieces of one size; leaves the first row behind them and tells whether there
/// is one.
bool neem_stuk(Lijst& l, std::string* stuk) {
  const Zoekregel eerste = l.regel;
  const char* ster = eerste.verzamel == 0 ? "*" : " ";
  if (eerste.per_maat == 0) {
    ++l.etiketten;
    *stuk = str_format("%8ld%1s", eerste.etiket, ster);
    return volgende(l);
  }
  int32_t aantal = 0;
  bool meer = true;
  while (meer && zelfde_serie(l.regel, eerste) && l.regel.maat == eerste.maat) {
    ++aantal;
    meer = volgende(l);
  }
  l.stuks += aantal;
  *stuk = str_format("%11s%3d%1s", "", aantal, ster);
  return meer;
}

void lees_stam(const Zoekregel& r) {
  if (!lees_serie(dtser, &ser_rec, r.nr)) ser_rec.nr = r.nr;
  lees_artikel(dtart, &art_rec, ser_rec.nr.artgroep);
  lees_merk(dtmerk, &merk_rec, ser_rec.merk);
}

bool druk_serie(Lijst& l) {
  const Zoekregel eerste = l.regel;
  lees_stam(eerste);
  ruimte(l, eerste, 2);
  const std::string code = veld_tekst(ser_rec.kenmerk, sizeof ser_rec.kenmerk);
  int vorige_maat = -1;
  int nummer = 0;
  bool meer = true;
  for (; meer && zelfde_serie(l.regel, eerste); ++nummer) {
    Links links{nummer == 0 ? serie_tekst(eerste.nr) : "", "", "", l.regel.prijs};
    if (l.regel.maat != vorige_maat) {
      const std::string maat = veld_tekst(l.regel.maattekst, sizeof l.regel.maattekst);
      links.maat = str_format("%3.3s %-2.2s", maat, code);
    }
    vorige_maat = l.regel.maat;
    meer = neem_stuk(l, &links.stuk);
    ruimte(l, eerste, 1);
    druk(links, rechterdeel(nummer));
  }
  if (nummer < 2) {
    print_f("%46s|", "");
    print_f("%s", rechterdeel(1));
    print_nl();
  }
  return meer;
}

void druk_totaal(const Lijst& l, const Zoekregel& paar) {
  ruimte(l, paar, 2);
  print_rep(23, ' ');
  print_rep(109, '-');
  print_nl();
  print_rep(15, ' ');
  print_f("%-9.9s", txt(T_OPDRUK_TOTAAL));
  print_f("%6s", l.etiketten == 0 ? std::string() : str_format("%d", l.etiketten));
  if (l.stuks != 0) print_f("%6s", str_format("%d", l.stuks));
  print_nl();
}

}  // namespace

void zoeklijst(OpdrachtSoort soort, uint32_t opdrachtnr) {
  Lijst l{soort, opdrachtnr, IXOPEN_LENGTE(privaat.tp, IX_EXCLUSIEF, sizeof(Zoekregel))};
  bool meer = volgende(l);
  while (meer) {
    const Zoekregel paar = l.regel;
    l.etiketten = l.stuks = 0;
    kop(l, paar);
    while (meer && zelfde_paar(l.regel, paar)) meer = druk_serie(l);
    druk_totaal(l, paar);
  }
  IXCLOSE(l.tabel);
}
