// Orders and their lines: provisional ones over the chosen series, definitive ones under numbers.
#include <algorithm>
#include <set>

#include "sub/opdrnr.h"
#include "tools/keten.h"
#include "tools/keten_bron.h"

namespace {

enum Stroom : uint64_t { OPDRACHTEN = 600, REGELS };
constexpr uint32_t TELLER_MAX = 999999;
constexpr size_t REGEL_MIN = 8;

/// Pieces in stock per branch and size.
using Voorraad = std::vector<std::array<int32_t, MATEN>>;

Voorraad voorraad_van(const Keten& k, const SerieInhoud& uit) {
  Voorraad v(static_cast<size_t>(k.maat.filialen));
  for (const Etiket& e : uit.etiketten)
    if (e.status == ETI_VOORRAAD && e.onderweg == 0 && e.filiaal < v.size()) ++v[e.filiaal][e.maat];
  return v;
}

struct Loop {
  const Keten& k;
  SerieInhoud* uit;
  Bron b;
  Voorraad voorraad;
  std::vector<uint8_t> maten;
  std::vector<int32_t> gewicht;
};

/// One to twelve pieces, from what the sender has; an old advice may ask for what is gone.
void vul(Loop& l, DtPick* rec) {
  auto& heeft = l.voorraad[rec->vanfil];
  int32_t stuks = std::min(l.b.tussen(1, 12), l.b.tussen(1, 12));
  bool iets = false;
  for (int poging = 0; stuks > 0 && poging < 40; ++poging) {
    const uint8_t maat = l.maten[l.b.gewogen(l.gewicht)];
    if (heeft[maat] <= 0) continue;
    --heeft[maat];
    --stuks;
    ++rec->aantal[maat];
    iets = true;
  }
  if (!iets) rec->aantal[l.maten[l.maten.size() / 2]] = 1;
}

DtPick regel(Loop& l, uint8_t van, uint8_t naar) {
  DtPick rec{};
  rec.vanfil = van;
  rec.naarfil = naar;
  rec.nr = l.uit->serie.nr;
  vul(l, &rec);
  return rec;
}

/// A shop other than the sender, common ones and small ones alike.
uint8_t ontvanger(const Keten& k, Bron& b, uint8_t van) {
  const int n = b.tussen(1, k.maat.filialen - 2);
  return static_cast<uint8_t>(n >= van && van != 0 ? n + 1 : n);
}

uint8_t volgende_ontvanger(const Keten& k, uint8_t van, uint8_t naar) {
  do {
    naar = static_cast<uint8_t>(naar + 1 < k.maat.filialen ? naar + 1 : 1);
  } while (naar == van);
  return naar;
}

uint8_t verzender(const Keten& k, Bron& b) {
  return b.kans(800) ? uint8_t{0} : static_cast<uint8_t>(b.tussen(1, k.maat.filialen - 1));
}

void voorlopige(Loop& l, int aantal) {
  std::set<std::pair<uint8_t, uint8_t>> paren;
  for (; aantal > 0; --aantal) {
    const uint8_t van = verzender(l.k, l.b);
    uint8_t naar = ontvanger(l.k, l.b, van);
    // A pair stands in a series once; another receiver is sought, so that senders keep their share.
    for (int poging = 1; paren.contains({van, naar}) && poging < l.k.maat.filialen; ++poging)
      naar = volgende_ontvanger(l.k, van, naar);
    if (paren.insert({van, naar}).second) l.uit->regels.push_back(regel(l, van, naar));
  }
}

}  // namespace

void keten_opdrachten(Keten* k) {
  Bron b(k->maat.zaad, OPDRACHTEN);
  const auto n = static_cast<uint32_t>(k->maat.opdrachten);
  if (n == 0) return;
  const int gemiddeld = k->maat.definitief / k->maat.opdrachten;
  std::vector<int> aantallen;
  int rest = k->maat.definitief;
  for (uint32_t o = 0; o < n; ++o) {
    const int open = static_cast<int>(n - o - 1);
    const int deel = open == 0 ? rest : gemiddeld + b.tussen(-gemiddeld / 3, gemiddeld / 3);
    // What is left must fit the orders to come.
    aantallen.push_back(std::clamp(deel, rest - open * (gemiddeld + gemiddeld / 3),
                                   rest - open * static_cast<int>(REGEL_MIN)));
    rest -= aantallen.back();
    // The counter comes round: the last orders bear the lowest numbers.
    const uint32_t teller = (k->maat.teller + TELLER_MAX - 1 - (n - 1 - o)) % TELLER_MAX + 1;
    const uint8_t van = verzender(*k, b);
    const auto datum =
        static_cast<uint16_t>(k->maat.vandaag - static_cast<int>((n - 1 - o) / 4 % 20));
    k->opdrachten.push_back({van, ontvanger(*k, b, van), opdrnr_cijfer(teller), datum});
  }
  for (size_t o = 0; o < aantallen.size(); ++o) {
    std::set<int32_t> gekozen;
    while (static_cast<int>(gekozen.size()) < aantallen[o])
      gekozen.insert(b.tot(static_cast<int32_t>(k->series.size())));
    for (const int32_t s : gekozen) k->definitief.emplace_back(s, static_cast<int32_t>(o));
  }
  std::ranges::sort(k->definitief);
}

void keten_regels(const Keten& k, size_t i, KetenStand* stand, SerieInhoud* uit) {
  const bool definitief = stand->definitief < k.definitief.size() &&
                          k.definitief[stand->definitief].first == static_cast<int32_t>(i);
  if (k.taken[i].voorlopig == 0 && !definitief) return;
  Loop l{k,
         uit,
         Bron(k.maat.zaad, uint64_t{REGELS} << 32 | i),
         voorraad_van(k, *uit),
         keten_maten_van(k, uit->serie),
         {}};
  const auto breed = static_cast<int32_t>(l.maten.size());
  for (int32_t p = 0; p < breed; ++p) l.gewicht.push_back(1 + 2 * std::min(p, breed - 1 - p));
  for (; stand->definitief < k.definitief.size() &&
         k.definitief[stand->definitief].first == static_cast<int32_t>(i);
       ++stand->definitief) {
    const Opdracht& o = k.opdrachten[static_cast<size_t>(k.definitief[stand->definitief].second)];
    DtPick rec = regel(l, o.van, o.naar);
    rec.opdrachtnr = o.nummer;
    rec.orderdatum = o.datum;
    uit->regels.push_back(rec);
  }
  voorlopige(l, k.taken[i].voorlopig);
}
