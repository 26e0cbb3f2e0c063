// Pieces without a number that anybody sees: labels all the same, of which one is as good as
// another. A piece that was taken by its number may still stand in the row of its pair: rows are
// looked at again when a piece is taken from them.
#include "sub/dc_stuk.h"

#include <algorithm>

#include "main/controle.h"
#include "sub/dc_spoor.h"
#include "sub/ioeti_intern.h"
#include "sub/tabellen.h"

namespace {

bool transit_aan() { return sys_rec20.transit != 0; }
bool verkocht_of_weg(const DcStuk& s) {
  return s.status == ETI_VERKOPEN || s.status == ETI_CORRECTIES;
}

void lees_transit(DcStuk& s) {
  if (s.gelezen) return;
  s.gelezen = true;
  s.leeft = go_lees(s.nummer) && go_rec.afgewerkt == 0;
  if (!s.leeft) return;
  s.ongedrukt = go_rec.printdatum == 0;
  s.go_van = go_rec.vanfil;
  s.go_naar = go_rec.naarfil;
  s.go_nummer = go_rec.opdrachtnr;
}

bool reist(const DcStuk& s, const DcPaar& p) {
  return s.status == ETI_VOORRAAD && s.onderweg != 0 && s.leeft && s.filiaal == p.first &&
         s.doel == p.second;
}

DcPaar paar_van(const DcTrans& t) { return {t.vanfil, t.naarfil}; }

/// The label of a piece for a change; false when it is not what was read.
bool label_van(const DcStuk& s, DcEtiket* l) {
  if (!dc_lees_etiket(ser_rec.nr, s.nummer, l)) return false;
  return l->e.status == s.status && l->e.filiaal == s.filiaal && l->e.onderweg == s.onderweg;
}

/// Moves the label of a piece; without writing, what was read stands in for it.
bool verplaats(DcStuk& s, const DcTrans& t, DcWeg weg) {
  DcEtiket l;
  if (dc.schrijven) {
    if (!label_van(s, &l)) return false;
    dc_spoor_noteer(weg, t, s.nummer, l.e);
  } else {
    l.e.status = s.status;
    l.e.filiaal = s.filiaal;
  }
  dc_ga(weg, l, t);
  s.filiaal = l.e.filiaal;
  s.onderweg = l.e.onderweg;
  s.doel = l.e.doel;
  s.gelezen = true;
  s.leeft = l.bekend;
  s.ongedrukt = true;
  s.go_van = l.go.vanfil;
  s.go_naar = l.go.naarfil;
  s.go_nummer = l.go.opdrachtnr;
  return true;
}

/// A label's slot as a piece; false for what was never received.
bool stuk_van(const EtiBlok& blok, int32_t nummer, DcStuk* s) {
  Etiket e{};
  const int slot = (nummer - 1) % ETI_SLOTS;
  if (!etiket_uitpak(blok.woord[slot], &e, transit_aan()) || e.status == ETI_NOTA) return false;
  *s = DcStuk{};
  s->nummer = nummer;
  s->datum = e.vrkdat;
  s->status = e.status;
  s->maat = e.maat;
  s->filiaal = e.filiaal;
  s->onderweg = e.onderweg;
  s->doel = e.doel;
  return true;
}

}  // namespace

bool dc_stukken_lees(std::vector<DcStuk>* uit) {
  uit->clear();
  int32_t stappen = 0;
  for (int32_t blok = ser_rec.blok1; blok != -1;) {
    EtiBlok buffer;
    // No chain has more blocks than the store: one that has runs back into itself.
    if (stappen++ > eti_hoogste_blok() || eti_lees_rauw(blok, &buffer) != EtiLees::goed ||
        !(buffer.nr == ser_rec.nr))
      return false;
    for (int slot = 0; slot < ETI_SLOTS; ++slot) {
      DcStuk s;
      if (stuk_van(buffer, blok * ETI_SLOTS + slot + 1, &s)) uit->push_back(s);
    }
    blok = buffer.volgende;
  }
  std::ranges::stable_sort(*uit, {}, &DcStuk::maat);
  return true;
}

DcVak::DcVak(std::span<DcStuk> stukken, uint16_t datum) {
  for (DcStuk& s : stukken) {
    const bool weg = transit_aan() && verkocht_of_weg(s) && s.datum >= datum;
    if (s.status == ETI_VOORRAAD && s.onderweg == 0) voorraad[s.filiaal].push_back(&s);
    if (!weg && (s.status != ETI_VOORRAAD || s.onderweg == 0)) continue;
    lees_transit(s);
    if (!s.leeft || (weg && s.filiaal != s.go_naar)) continue;
    const DcPaar paar = weg ? DcPaar{s.go_van, s.go_naar} : DcPaar{s.filiaal, s.doel};
    if (s.go_nummer != 0) nummers.insert({{s.go_nummer, paar}, &s});
    if (s.ongedrukt) (weg ? verkocht : onderweg)[paar].push_back(&s);
  }
}

DcStuk* DcVak::uit_voorraad(uint8_t filiaal) {
  Rij& rij = voorraad[filiaal];
  if (rij.empty()) return nullptr;
  DcStuk* s = rij.front();
  rij.pop_front();
  return s;
}

bool DcVak::zend(const DcTrans& t) {
  while (DcStuk* s = uit_voorraad(t.vanfil)) {
    if (!verplaats(*s, t, DcWeg::zenden)) continue;
    if (s->onderweg != 0)
      onderweg[paar_van(t)].push_back(s);
    else
      voorraad[t.naarfil].push_back(s);
    return true;
  }
  return false;
}

bool DcVak::ontvang_los(const DcTrans& t) {
  while (DcStuk* s = uit_voorraad(t.vanfil)) {
    if (!verplaats(*s, t, DcWeg::los)) continue;
    voorraad[t.naarfil].push_back(s);
    return true;
  }
  return false;
}

bool DcVak::neem_aan(DcStuk* s, const DcTrans& t) {
  if (!verplaats(*s, t, DcWeg::onderweg)) return false;
  voorraad[t.naarfil].push_back(s);
  return true;
}

bool DcVak::neem_aan_weg(DcStuk* s, const DcTrans& t) { return verplaats(*s, t, DcWeg::verkocht); }

bool DcVak::ontvang(const DcTrans& t) {
  Rij& rij = onderweg[paar_van(t)];
  while (!rij.empty()) {
    DcStuk* s = rij.front();
    rij.pop_front();
    if (reist(*s, paar_van(t)) && neem_aan(s, t)) return true;
  }
  return false;
}

bool DcVak::ontvang_verkocht(const DcTrans& t) {
  Rij& rij = verkocht[paar_van(t)];
  while (!rij.empty()) {
    DcStuk* s = rij.front();
    rij.pop_front();
    if (s->leeft && neem_aan_weg(s, t)) return true;
  }
  return false;
}

/// Takes it out of the numbers; null when none is left.
DcStuk* DcVak::op_nummer(const DcTrans& t, bool weg) {
  auto [van, tot] = nummers.equal_range({t.nummer, paar_van(t)});
  for (; van != tot; ++van) {
    DcStuk* s = van->second;
    if (verkocht_of_weg(*s) != weg || !s->leeft) continue;
    if (!weg && !reist(*s, paar_van(t))) continue;
    nummers.erase(van);
    return s;
  }
  return nullptr;
}

bool DcVak::ontvang_nummer(const DcTrans& t) {
  while (DcStuk* s = op_nummer(t, false))
    if (neem_aan(s, t)) return true;
  return false;
}

bool DcVak::ontvang_nummer_verkocht(const DcTrans& t) {
  while (DcStuk* s = op_nummer(t, true))
    if (neem_aan_weg(s, t)) return true;
  return false;
}
