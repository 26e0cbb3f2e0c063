// The labels of one series, and the blocks that hold them.
//
// What became of a label goes by the age of its series: of a new one all stock still stands in the
// warehouse, an old one is mostly sold.
#include <algorithm>
#include <array>

#include "tools/keten.h"
#include "tools/keten_bron.h"

namespace {

enum Stroom : uint64_t { ETIKETTEN = 400 };

/// Chances in thousandths of ordered, stock, sold, corrected.
constexpr std::array<std::array<int32_t, 4>, 4> LOT = {
    {{300, 700, 0, 0}, {130, 557, 280, 33}, {120, 497, 350, 33}, {0, 457, 510, 33}}};
/// Everything that was ordered has come: who waits for a delivery moves nothing between shops.
constexpr std::array<int32_t, 4> LOT_SCHEEF = {0, 580, 387, 33};
constexpr uint16_t TARIEF = 210;
constexpr int VERS = 14;  // days in which a sale asks for another piece

struct Maker {
  const Keten& k;
  const DtSer& serie;
  const SerieTaak& taak;
  bool magazijn;         // its article group has one
  uint8_t volle_winkel;  // where most of a skewed series stands
  std::vector<uint8_t> maten;
  std::vector<int32_t> maatgewicht;
  Bron b;
};

/// Most pieces in the middle of the bar.
std::vector<int32_t> klok(size_t n) {
  std::vector<int32_t> gewicht;
  const auto breed = static_cast<int32_t>(n);
  for (int32_t i = 0; i < breed; ++i) {
    const int32_t rand = std::min(i, breed - 1 - i);
    gewicht.push_back(2 + 3 * std::min(rand, 3));
  }
  return gewicht;
}

uint8_t winkel(Maker& m) { return static_cast<uint8_t>(m.b.gewogen(m.k.gewicht)); }

uint8_t waar_voorraad(Maker& m) {
  if (m.taak.scheef) return m.b.kans(900) ? m.volle_winkel : winkel(m);
  if (!m.magazijn) return winkel(m);
  return m.taak.leeftijd == Leeftijd::nieuw || m.b.kans(230) ? uint8_t{0} : winkel(m);
}

void besteld(Maker& m, Etiket* e) {
  const int vandaag = m.k.maat.vandaag;
  e->orddat = static_cast<uint16_t>(std::max<int>(m.taak.besteld, vandaag - m.b.tussen(5, 60)));
  e->levertermijn = static_cast<uint16_t>(vandaag + m.b.tussen(-5, 20));
  e->ontdat = static_cast<uint16_t>(e->levertermijn + 14);  // end of the term
  e->filiaal = m.magazijn ? uint8_t{0} : winkel(m);
  if (m.b.kans(100)) {
    e->besteld = 1;
    e->besteller = winkel(m);
  }
}

void ontvangen(Maker& m, Etiket* e) {
  const int vandaag = m.k.maat.vandaag;
  e->orddat = m.taak.besteld;
  const int laat = m.taak.leeftijd == Leeftijd::doorlopend
                       ? m.b.tot(std::max(vandaag - m.taak.ontvangen, 1))
                       : m.b.tot(8);
  e->ontdat = static_cast<uint16_t>(std::min(m.taak.ontvangen + laat, vandaag));
}

/// A day between receipt and today, for old series soon after the receipt.
uint16_t weg(Maker& m, const Etiket& e) {
  const int dagen = m.k.maat.vandaag - e.ontdat;
  if (m.taak.scheef && m.b.kans(500))
    return static_cast<uint16_t>(e.ontdat + dagen - m.b.tot(std::min(dagen, VERS)));
  const int duur = m.taak.leeftijd == Leeftijd::oud && m.b.kans(950) ? std::min(dagen, 150) : dagen;
  return static_cast<uint16_t>(e.ontdat + m.b.tot(duur + 1));
}

void verkocht(Maker& m, Etiket* e) {
  ontvangen(m, e);
  e->filiaal = winkel(m);
  e->vrkdat = weg(m, *e);
  e->tarief = TARIEF;
  e->bedrag = m.b.kans(100) ? e->vrkpr * 9 / 10 : e->vrkpr;
  if (m.b.kans(50) && !m.k.klanten.empty())
    e->klant = static_cast<int32_t>(m.b.een(std::span(m.k.klanten)).nummer);
}

void correctie(Maker& m, Etiket* e) {
  ontvangen(m, e);
  e->filiaal = waar_voorraad(m);
  e->vrkdat = weg(m, *e);
  e->tarief = TARIEF;
  e->reden = m.b.kans(333) ? uint8_t{0} : static_cast<uint8_t>(m.b.tussen(1, 9));
}

Etiket etiket(Maker& m) {
  Etiket e{};
  e.nr = m.serie.nr;
  e.maatsoort = m.serie.maatsoort;
  e.maat = m.maten[m.b.gewogen(m.maatgewicht)];
  e.lvnr = m.serie.leverancier;
  e.inkpr = m.serie.inkoopprijs;
  e.advpr = m.serie.adviesprijs;
  e.vrkpr = m.serie.verkoopprijs;
  e.ordernr = 100000 + m.taak.besteld;
  const auto& lot = m.taak.scheef ? LOT_SCHEEF : LOT[static_cast<size_t>(m.taak.leeftijd)];
  e.status = static_cast<uint8_t>(1 + m.b.gewogen(lot));
  switch (e.status) {
    case ETI_NOTA:
      besteld(m, &e);
      break;
    case ETI_VOORRAAD:
      ontvangen(m, &e);
      e.filiaal = waar_voorraad(m);
      break;
    case ETI_VERKOPEN:
      verkocht(m, &e);
      break;
    default:
      correctie(m, &e);
  }
  return e;
}

bool heeft_magazijn(const Keten& k, uint32_t artgroep) {
  const auto a = std::ranges::find_if(
      k.artikelen, [&](const KetenArtikel& x) { return x.rec.nummer == artgroep; });
  return a != k.artikelen.end() && a->rec.magazijn != FILIAAL_GEEN;
}

/// Gives the labels their numbers; blocks of a series that is gone lie ahead of its own.
void plaats(const SerieTaak& taak, KetenStand* stand, SerieInhoud* uit) {
  for (int32_t i = 0; i < taak.spookblokken; ++i) {
    EtiBlok leeg{};
    leeg.volgende = stand->vrij_blok;
    stand->vrij_blok = stand->blok++;
    ++stand->vrije_blokken;
    uit->blokken.push_back({stand->vrij_blok, leeg});
  }
  for (size_t i = 0; i < uit->etiketten.size(); ++i) {
    if (i % ETI_SLOTS == 0) {
      EtiBlok blok{};
      blok.nr = uit->serie.nr;
      blok.maatsoort = uit->serie.maatsoort;
      blok.volgende = i + ETI_SLOTS < uit->etiketten.size() ? stand->blok + 1 : -1;
      uit->blokken.push_back({stand->blok++, blok});
    }
    uit->nummers.push_back((stand->blok - 1) * ETI_SLOTS + static_cast<int32_t>(i % ETI_SLOTS) + 1);
  }
  uit->serie.blok1 = (uit->nummers.front() - 1) / ETI_SLOTS;
}

void tel(DtSer* s, const Etiket& e) {
  ++(e.status == ETI_NOTA       ? s->besteld
     : e.status == ETI_VOORRAAD ? s->voorraad
     : e.status == ETI_VERKOPEN ? s->verkocht
                                : s->correcties);
  if (e.status != ETI_NOTA) s->datum_mutatie = std::max({s->datum_mutatie, e.ontdat, e.vrkdat});
}

void pak(const Keten& k, SerieInhoud* uit) {
  const size_t eigen = uit->blokken.size() - (uit->etiketten.size() + ETI_SLOTS - 1) / ETI_SLOTS;
  for (size_t i = 0; i < uit->etiketten.size(); ++i) {
    uint32_t woord[9];
    etiket_pak(uit->etiketten[i], woord, k.maat.transit);
    std::copy_n(woord, 9, uit->blokken[eigen + i / ETI_SLOTS].blok.woord[i % ETI_SLOTS]);
    tel(&uit->serie, uit->etiketten[i]);
  }
}

}  // namespace

void keten_etiketten(const Keten& k, size_t i, SerieInhoud* uit) {
  const DtSer& serie = k.series[i];
  Maker m{k,          serie,
          k.taken[i], heeft_magazijn(k, serie.nr.artgroep),
          0,          keten_maten_van(k, serie),
          {},         Bron(k.maat.zaad, uint64_t{ETIKETTEN} << 32 | i)};
  m.maatgewicht = klok(m.maten.size());
  if (m.taak.scheef) m.volle_winkel = winkel(m);
  for (int32_t n = 0; n < m.taak.etiketten; ++n) uit->etiketten.push_back(etiket(m));
}

void keten_serie(const Keten& k, size_t i, KetenStand* stand, SerieInhoud* uit) {
  *uit = {};
  uit->serie = k.series[i];
  uit->serie.datum_wijziging = uit->serie.datum_creatie;
  // The free chain starts at the end: a chain's last free block points at the first never used.
  if (i == 0) stand->vrij_blok = k.blokken;
  if (i == 0) stand->vrije_groep = k.prijsgroepen;
  keten_etiketten(k, i, uit);
  plaats(k.taken[i], stand, uit);
  keten_bewegingen(k, i, stand, uit);
  pak(k, uit);
  keten_regels(k, i, stand, uit);
  keten_prijzen(k, i, stand, uit);
  keten_eans(k, i, stand, uit);
}
