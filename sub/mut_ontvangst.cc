// What is on its way is received: checked against the transit record and its document, and booked.
//
// A receipt that is broken off may be entered again. The transit record of a piece on its way is
// finished first and its label written last: until then the label says that it is on its way, and
// nothing but the label is asked for. A piece that was sold on arrival has no other sign than its
// transit record, which therefore goes last.
#include "isam/base.h"
#include "scr/scr.h"
#include "sub/mut_intern.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

bool weg_of_verkocht(const Etiket& e) {
  return (e.status == ETI_VERKOPEN || e.status == ETI_CORRECTIES) && e.vrkdat >= date_today();
}

/// The document that was given, or none, against that of the transit record in go_rec.
int toets_document(const MutIngang& in) {
  if (in.opdrachtnr == 0) return go_rec.printdatum != 0 ? REDEN_DOCUMENT_GEEN : 0;
  const bool juist = go_rec.printdatum != 0 && go_rec.opdrachtnr == in.opdrachtnr;
  return juist ? 0 : REDEN_DOCUMENT_FOUT;
}

int toets_onderweg(const MutIngang& in, const MutStuk& stuk) {
  if (stuk.etiket.doel != in.naarfil) return REDEN_ONDERWEG;
  return mut_go_loopt(in, stuk.nummer) ? toets_document(in) : 0;
}

int toets_weg(const MutIngang& in, const MutStuk& stuk) {
  const Etiket& e = stuk.etiket;
  if (!weg_of_verkocht(e) || e.filiaal != in.naarfil || !mut_go_loopt(in, stuk.nummer))
    return REDEN_NIET_ONDERWEG;
  return toets_document(in);
}

int waarschuwing(const MutIngang& in, const Etiket& e) {
  if (e.onderweg != 0) return e.filiaal != in.vanfil ? REDEN_ANDER_FILIAAL : 0;
  return e.status == ETI_VERKOPEN ? REDEN_VERKOCHT : REDEN_GECORRIGEERD;
}

bool keur(const MutIngang& in, const MutStuk& stuk) {
  const Etiket& e = stuk.etiket;
  const bool telling = e.status == ETI_CORRECTIES && e.reden == 0;
  const int reden = telling           ? REDEN_INVENTARISATIE
                    : e.onderweg != 0 ? toets_onderweg(in, stuk)
                                      : toets_weg(in, stuk);
  const int melding = reden != 0 ? reden : waarschuwing(in, e);
  if (melding != 0) mut_weiger(mut_voor(in), melding, mut_feit(e));
  return reden == 0;
}

bool kies_stuk(const MutIngang& in, MutStuk* stuk) {
  std::string ean;
  std::vector<MutStuk> stukken;
  if (stuk->etiket.status == ETI_CORRECTIES && stuk->etiket.reden == 0) return keur(in, *stuk);
  if (!mut_maatcode(in, stuk->etiket, &ean)) return false;
  if (!mut_onderweg(in, stuk->etiket.maat, &stukken)) return false;
  if (stukken.empty()) {
    mut_geen_stuk(ean, T_MUT_GEEN_ONDERWEG);
    return false;
  }
  *stuk = stukken.front();
  return true;
}

/// The piece left from another branch than was said: its trip is undone, this pair's takes its
/// place.
void ander_paar(const MutIngang& in, MutStuk* stuk) {
  Etiket& e = stuk->etiket;
  go_verwijder(stuk->nummer);
  e.filiaal = fin_terug(stuk->nummer, e.filiaal, in.naarfil, date_today());
  fin_nieuw(stuk->nummer, e.filiaal, mut_zending(in));
}

/// The label at its destination; a piece that an inventory missed is stock again.
void label_binnen(const MutIngang& in, MutStuk* stuk) {
  Etiket& e = stuk->etiket;
  if (e.status == ETI_CORRECTIES && e.reden == 0) etiket_terug_voorraad(&e);
  e.filiaal = in.naarfil;
  e.onderweg = e.doel = 0;
  int32_t nummer = stuk->nummer;
  ioeti('W', &nummer, &e);
}

/// A single label that was sold or corrected stays as it is.
void boek_weg(const MutIngang& in, const MutStuk& stuk) {
  io_nieuw(stuk.nummer, mut_zending(in), 1);
  go_afwerken(stuk.nummer);
}

}  // namespace

bool mut_go_loopt(const MutIngang& in, int32_t nummer) {
  return go_lees(nummer) && go_rec.afgewerkt == 0 && go_rec.vanfil == in.vanfil &&
         go_rec.naarfil == in.naarfil;
}

void mut_ontvang(const MutIngang& in, MutStuk* stuk) {
  const bool onderweg = stuk->etiket.onderweg != 0;
  if (onderweg && stuk->etiket.filiaal != in.vanfil)
    ander_paar(in, stuk);
  else if (onderweg && mut_go_loopt(in, stuk->nummer))
    go_afwerken(stuk->nummer);
  io_nieuw(stuk->nummer, mut_zending(in), 1);
  label_binnen(in, stuk);
  if (!onderweg && mut_go_loopt(in, stuk->nummer)) go_afwerken(stuk->nummer);
}

bool mut_ontv_etiket(MutIngang* in) {
  MutStuk stuk{};
  in->stuks = 1;
  if (!mut_neem(*in, &stuk)) return false;
  const bool per_maat = ser_rec.maatregistratie != 0;
  const bool goed = per_maat ? kies_stuk(*in, &stuk) : keur(*in, stuk);
  if (!goed || !mut_akkoord(*in)) {
    serie_los();
    return false;
  }
  if (per_maat || stuk.etiket.onderweg != 0)
    mut_ontvang(*in, &stuk);
  else
    boek_weg(*in, stuk);
  serie_schrijf();
  return true;
}
