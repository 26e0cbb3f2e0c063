// The signal list: what every line that did not simply pass came to, and whether it went on (SGN)
// or not (AFK).
//
// A code is what a till sent: it may hold any byte, and none of them may steer a printer or a
// screen. Numbers go to the print engine as numbers, so that one that outgrows its column steps
// down instead of pushing the others aside.
#include <algorithm>
#include <array>

#include "isam/base.h"
#include "main/controle.h"
#include "prt/prt.h"
#include "sub/dc_intern.h"
#include "sub/iomaat.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int LINKS = 65, BREEDTE = 132;

/// Where the words of a remark stand, and what else.
enum class Vorm : uint8_t {
  kaal,
  status,         // words, kind, branch, date when it has one
  plaats_datum,   // words, branch, date
  houder,         // words, holding branch
  paar,           // words, from and to
  fil_datum,      // words, branch, date
  maat_voor,      // size, words
  etiket_voor,    // code, words
  aantal,         // size, count, words
  aantal_nummer,  // the same, and by which kind of receive
  maat_achter,    // words, size, "not moved"
};
struct Opmerking {
  const Tekst* woorden;
  bool weigert;
  Vorm vorm;
};
constexpr bool SGN = false, AFK = true;
constexpr Opmerking OPMERKINGEN[] = {
    {&T_DC_FILIAAL, AFK, Vorm::kaal},
    {&T_DC_GEEN_ETIKET, AFK, Vorm::kaal},
    {&T_DC_STATUS, AFK, Vorm::status},
    {&T_DC_VERKOCHT, SGN, Vorm::plaats_datum},
    {&T_DC_GECORRIGEERD, SGN, Vorm::plaats_datum},
    {&T_DC_AFWIJKEND, SGN, Vorm::houder},
    {&T_DC_AANWEZIG, AFK, Vorm::kaal},
    {&T_DC_REEDS_ONDERWEG, AFK, Vorm::paar},
    {&T_DC_ONDERWEG, AFK, Vorm::paar},  // of a send; a receive goes on
    {&T_DC_GEEN_SERIE, AFK, Vorm::kaal},
    {&T_DC_INVENTARISATIE, SGN, Vorm::fil_datum},
    {&T_DC_MAAT_GEEN_EAN, AFK, Vorm::maat_voor},
    {&T_DC_MAATREGISTRATIE, SGN, Vorm::etiket_voor},
    {&T_DC_NIET_ONDERWEG, AFK, Vorm::aantal_nummer},
    {&T_DC_NIET_VOORRAAD, SGN, Vorm::aantal},
    {&T_DC_TE_WEINIG, AFK, Vorm::aantal},
    {&T_DC_GEEN_MAAT, AFK, Vorm::maat_achter},
    {&T_DC_GEEN_EAN, AFK, Vorm::kaal},
    {&T_DC_KLEIN_ARTIKEL, AFK, Vorm::kaal},
    {&T_DC_KETTING, AFK, Vorm::kaal},
};
static_assert(std::size(OPMERKINGEN) == static_cast<size_t>(DcOpm::ketting));

struct Lijst {
  const Tekst* titel;
  bool gedrukt;
  uint32_t vorige;  // label line printed last, 0 none
  MaatHandle* maten;
};
Lijst lijst;

std::string maattekst(uint8_t maat) {
  MaatRec rec{};
  rec.maat = maat;
  if (ser_rec.maatsoort != 0 && maat_land() != 0) {
    mtkeep(&lijst.maten, maat_land(), ser_rec.maatsoort, nullptr);
    if (mtread(lijst.maten, 'R', &rec, 1)) {
      std::string tekst = veld_tekst(rec.tekst, sizeof rec.tekst);
      return str_format("%-3.3s", str_trim(tekst.data()));
    }
  }
  return "???";
}

std::string statuswoord(uint8_t status) {
  switch (status) {
    case ETI_VERKOPEN:
      return txt(T_DC_VRK);
    case ETI_CORRECTIES:
      return txt(T_DC_COR);
    case ETI_NOTA:
      return txt(T_DC_NOT);
    default:
      return "???";
  }
}

std::string status_tekst(const char* woorden, const Etiket& e) {
  std::string uit =
      str_format("%s %s %s %hu", woorden, statuswoord(e.status), txt(T_DC_FIL), e.filiaal);
  if (e.status == ETI_VERKOPEN || e.status == ETI_CORRECTIES)
    uit += str_format(" %s", date_show(e.vrkdat));
  return uit;
}

std::string aantal_tekst(const char* woorden, const DcBij& bij) {
  return str_format("%s %s %lu %s", txt(T_DC_MAAT), maattekst(bij.maat), bij.aantal, woorden);
}

std::string tekst_van(const Opmerking& o, const DcTrans& t, const DcBij& bij) {
  const char* woorden = txt(*o.woorden);
  const Etiket geen{};
  const Etiket& e = bij.etiket != nullptr ? *bij.etiket : geen;
  switch (o.vorm) {
    case Vorm::status:
      return status_tekst(woorden, e);
    case Vorm::plaats_datum:
      return str_format("%s %hu %s %s", woorden, e.filiaal, txt(T_DC_DD), date_show(e.vrkdat));
    case Vorm::houder:
      return str_format("%s (%d)", woorden, e.filiaal);
    case Vorm::paar:
      return str_format("%s %s %d %s %d", woorden, txt(T_DC_VAN), e.filiaal, txt(T_DC_NAAR),
                        e.doel);
    case Vorm::fil_datum:
      return str_format("%s %s %hu %s", woorden, txt(T_DC_FIL), e.filiaal, date_show(e.vrkdat));
    case Vorm::maat_voor:
      return str_format("%s %s %s", txt(T_DC_MAAT), maattekst(bij.maat), woorden);
    case Vorm::etiket_voor:
      return str_format("%s %s %s", txt(T_DC_ETIKET), bij.code, woorden);
    case Vorm::aantal:
      return aantal_tekst(woorden, bij);
    case Vorm::aantal_nummer:
      return aantal_tekst(woorden, bij) + " " +
             txt(t.nummer != 0 ? T_DC_MET_NUMMER : T_DC_ZONDER_NUMMER);
    case Vorm::maat_achter:
      return str_format("%s %s %s", woorden, maattekst(bij.maat), txt(T_DC_NIET_VERPLAATST));
    default:
      return woorden;
  }
}

void kop() {
  print_head(prt_links, "%s", txt(*lijst.titel));
  print_f("%3.3s %-3.3s %3.3s      %-8s %8s  %-13s  %-14s%3s  %s", txt(T_DC_K_FIL),
          txt(T_DC_K_PIJL), txt(T_DC_K_FIL), txt(T_DC_K_DATUM), txt(T_DC_K_NUMMER),
          txt(T_DC_K_ARTIKEL), txt(T_DC_K_SERIE), txt(T_DC_K_STK), txt(T_DC_K_OPMERKING));
  print_nl();
  print_rep(BREEDTE, '-');
  print_nl();
}

std::string serie_kolom(DcOpm opm, const DcTrans& t) {
  if (opm == DcOpm::geen_etiket) return "???????";
  const bool bekend =
      opm != DcOpm::filiaal && opm != DcOpm::geen_ean && opm != DcOpm::klein_artikel;
  return bekend ? serie_tekst(t.nr) : std::string();
}

void druk_links(DcOpm opm, const DcTrans& t) {
  print_f("%3d     %3d", t.vanfil, t.naarfil);
  print_f(" %-4.4s %s ", txt(t.soort == DC_ZENDEN ? T_DC_VERZ : T_DC_ONTV), date_show(t.datum));
  if (t.nummer != 0)
    print_f("%8ld  ", uint32_t{t.nummer});
  else
    print_rep(10, ' ');
  print_f("%-13s  %-14s", dc_code_tekst(t.code), serie_kolom(opm, t));
}

}  // namespace

std::string dc_code_tekst(const char (&code)[13]) {
  std::string uit = veld_tekst(code, sizeof code);
  for (char& c : uit)
    if (static_cast<uint8_t>(c) < ' ' || c == 0x7F) c = '.';
  return uit;
}

void dc_lijst_begin() {
  lijst = Lijst{dc.schrijven ? &T_DC_KOP_VERWERKT : &T_DC_KOP_LIJST, false, 0, nullptr};
}

void dc_lijst_einde() {
  if (lijst.maten != nullptr) mtclose(lijst.maten);
  lijst.maten = nullptr;
}

bool dc_lijst_gedrukt() { return lijst.gedrukt; }

void dc_meld(DcOpm opm, const DcTrans& t, const DcBij& bij) {
  const Opmerking& o = OPMERKINGEN[static_cast<size_t>(opm) - 1];
  const bool weigert = o.weigert && !(opm == DcOpm::onderweg && t.soort == DC_ONTVANGEN);
  if (print_vol()) kop();
  const bool verder = t.etiket != 0 && t.regel == lijst.vorige;
  if (verder)
    print_rep(LINKS, ' ');
  else
    druk_links(opm, t);
  if (t.stuks != DC_GEEN_AANTAL)
    print_f("%3lu  ", uint32_t{t.stuks});
  else
    print_rep(5, ' ');
  print_f("%-4.4s %s", txt(weigert ? T_DC_AFK : T_DC_SGN), tekst_van(o, t, bij));
  print_nl();
  lijst.vorige = t.etiket != 0 ? t.regel : 0;
  lijst.gedrukt = true;
}
