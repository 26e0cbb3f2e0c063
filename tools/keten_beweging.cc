// What moved of a series: labels on their way, financial lines, receipts, open replenishment.
// What a series has too few labels for is left to the next one.
#include <algorithm>

#include "sub/opdrnr.h"
#include "tools/keten.h"
#include "tools/keten_bron.h"

namespace {

enum Stroom : uint64_t { BEWEGINGEN = 500 };

struct Loop {
  const Keten& k;
  SerieInhoud* uit;
  Bron b;
};

uint8_t andere_winkel(Loop& l, uint8_t dan) {
  for (int poging = 0; poging < 20; ++poging) {
    const auto f = static_cast<uint8_t>(l.b.gewogen(l.k.gewicht));
    if (f != dan) return f;
  }
  return dan == 1 ? uint8_t{2} : uint8_t{1};
}

DtFin financieel(const Etiket& e, int32_t nummer, uint8_t van, uint8_t naar, uint16_t datum) {
  DtFin rec{};
  rec.houder = rec.vanfil = van;
  rec.naarfil = naar;
  rec.soort = 1;
  rec.datum = datum;
  rec.nr = e.nr;
  rec.etiket = static_cast<uint32_t>(nummer);
  return rec;
}

DtGo zending(const Etiket& e, int32_t nummer, uint8_t van, uint8_t naar, uint16_t datum) {
  DtGo rec{};
  rec.vanfil = van;
  rec.naarfil = naar;
  rec.soort = 1;
  rec.nr = e.nr;
  rec.etiket = static_cast<uint32_t>(nummer);
  rec.zenddatum = datum;
  return rec;
}

/// The label goes on its way: with transit administration it stays on the sender's account.
void stuur(Loop& l, size_t i) {
  Etiket& e = l.uit->etiketten[i];
  const uint8_t van = e.filiaal, naar = andere_winkel(l, van);
  const auto datum = static_cast<uint16_t>(std::max<int>(e.ontdat, l.k.maat.vandaag - l.b.tot(10)));
  DtGo rec = zending(e, l.uit->nummers[i], van, naar, datum);
  rec.verzamel = l.b.kans(600) ? 1 : 0;
  if (!l.k.opdrachten.empty() && (rec.verzamel == 1 || l.b.kans(500)))
    rec.opdrachtnr = l.b.een(std::span(l.k.opdrachten)).nummer;
  if (l.b.kans(700)) rec.printdatum = datum;
  l.uit->onderweg.push_back(rec);
  l.uit->financieel.push_back(financieel(e, l.uit->nummers[i], van, naar, datum));
  if (l.k.maat.transit) {
    e.onderweg = 1;
    e.doel = naar;
    return;
  }
  e.filiaal = naar;
}

/// A label that came to its shop from the warehouse, and the day it arrived.
bool kwam_aan(const Loop& l, const Etiket& e, uint16_t* datum) {
  if (e.status != ETI_VOORRAAD && e.status != ETI_VERKOPEN) return false;
  if (e.filiaal == 0 || e.onderweg != 0) return false;
  const uint16_t laatst = e.status == ETI_VERKOPEN ? e.vrkdat : l.k.maat.vandaag;
  *datum = static_cast<uint16_t>(std::min<int>(e.ontdat + 2, laatst));
  return true;
}

/// Walks the labels from a place by chance until `doe` has taken its number, and keeps what is
/// left.
template <class Doe>
void verdeel(Loop& l, int16_t aandeel, int32_t* rest, const Doe& doe) {
  *rest += aandeel;
  const size_t n = l.uit->etiketten.size();
  const auto begin = static_cast<size_t>(l.b.tot(static_cast<int32_t>(n)));
  for (size_t j = 0; j<n&& * rest> 0; ++j)
    if (doe((begin + j) % n)) --*rest;
}

void onderweg(Loop& l, const SerieTaak& t, KetenStand* stand) {
  verdeel(l, t.onderweg, &stand->onderweg, [&](size_t i) {
    const Etiket& e = l.uit->etiketten[i];
    if (e.onderweg != 0 || e.status != ETI_VOORRAAD) return false;
    if (e.filiaal != 0 && !l.b.kans(100)) return false;
    stuur(l, i);
    return true;
  });
  verdeel(l, t.onderweg_klaar, &stand->onderweg_klaar, [&](size_t i) {
    const Etiket& e = l.uit->etiketten[i];
    uint16_t datum;
    const bool staat = std::ranges::any_of(l.uit->onderweg, [&](const DtGo& g) {
      return g.etiket == static_cast<uint32_t>(l.uit->nummers[i]);
    });
    if (staat || !kwam_aan(l, e, &datum)) return false;
    DtGo rec = zending(e, l.uit->nummers[i], 0, e.filiaal,
                       std::max<uint16_t>(e.ontdat, static_cast<uint16_t>(datum - 1)));
    rec.afgewerkt = 1;
    rec.printdatum = rec.zenddatum;
    l.uit->onderweg.push_back(rec);
    return true;
  });
}

void administratie(Loop& l, const SerieTaak& t, KetenStand* stand) {
  const uint16_t vandaag = l.k.maat.vandaag;
  stand->financieel -= static_cast<int32_t>(l.uit->financieel.size());
  const size_t zendingen = l.uit->financieel.size();
  verdeel(l, t.financieel, &stand->financieel, [&](size_t i) {
    const Etiket& e = l.uit->etiketten[i];
    uint16_t datum;
    const auto is_hij = [&](const DtFin& f) {
      return f.etiket == static_cast<uint32_t>(l.uit->nummers[i]);
    };
    if (!kwam_aan(l, e, &datum)) return false;
    if (std::any_of(l.uit->financieel.begin(),
                    l.uit->financieel.begin() + static_cast<ptrdiff_t>(zendingen), is_hij))
      return false;
    DtFin rec = financieel(e, l.uit->nummers[i], 0, e.filiaal, datum);
    rec.afgerekend = vandaag - datum > 30 ? 1 : 0;
    l.uit->financieel.push_back(rec);
    return true;
  });
  verdeel(l, t.ontvangsten, &stand->ontvangsten, [&](size_t i) {
    const Etiket& e = l.uit->etiketten[i];
    DtIo rec{};
    if (!kwam_aan(l, e, &rec.datum)) return false;
    rec.naarfil = e.filiaal;
    rec.etiket = static_cast<uint32_t>(l.uit->nummers[i]);
    rec.registratie = rec.datum;
    rec.onderweg = 1;
    if (!l.k.opdrachten.empty() && l.b.kans(600))
      rec.opdrachtnr = l.b.een(std::span(l.k.opdrachten)).nummer;
    l.uit->ontvangsten.push_back(rec);
    return true;
  });
  verdeel(l, t.aanvul, &stand->aanvul, [&](size_t i) {
    const Etiket& e = l.uit->etiketten[i];
    if (e.status != ETI_VERKOPEN || vandaag - e.vrkdat >= 14) return false;
    l.uit->aanvul.push_back({e.nr, static_cast<uint32_t>(l.uit->nummers[i])});
    return true;
  });
}

}  // namespace

void keten_bewegingen(const Keten& k, size_t i, KetenStand* stand, SerieInhoud* uit) {
  Loop l{k, uit, Bron(k.maat.zaad, uint64_t{BEWEGINGEN} << 32 | i)};
  onderweg(l, k.taken[i], stand);
  administratie(l, k.taken[i], stand);
}
