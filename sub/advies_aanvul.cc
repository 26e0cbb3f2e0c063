// Replenishment from the warehouse, and the switch between branches. Every piece that one branch
// gets another one gives.
#include <algorithm>

#include "sub/advies_intern.h"

namespace {

void verplaats(Advies& a, MaatMatrix& r, const Zet& zet) {
  noteer(a, zet);
  tel(r[static_cast<size_t>(zet.van)], zet.maat, -zet.stuks);
  tel(r[static_cast<size_t>(zet.naar)], zet.maat, zet.stuks);
}

void vul_maat(Advies& a, MaatMatrix& r, int s) {
  Giften heeft{};
  for (const int b : a.adv_volgorde) heeft[static_cast<size_t>(b)] = eigen(a, b, s);
  eerlijk_boek(a, s, heeft);
  const int32_t voorraad = vrij_magazijn(a, s);
  if (keten(a.m_aanvul, s) <= 0 || voorraad <= 0) return;
  std::array<Kandidaat, 256> wie;
  size_t n = 0;
  for (const int b : a.adv_volgorde)
    if (bezwaar_aanvul(a, r, b, s) == AdvReden::geen)
      wie[n++] = {b, krap(int64_t{aanvul_wens(a, b, s)} - cel(r, b, s))};
  eerlijk_verdeel(a, s, std::span(wie).first(n), voorraad, [&](int b) {
    verplaats(a, r, {r, AdvRegel::aanvul_verkocht, nullptr, s, magazijn(a), b, 1});
  });
}

/// Who may give a piece of one size in a switch.
struct Gever {
  int filiaal;
  int32_t kan, verkocht;
};

/// True when x gives after y: who can give most goes first, of equals who sells least, and of those
/// the first branch.
bool na(const Gever& x, const Gever& y) {
  if (x.kan != y.kan) return x.kan < y.kan;
  return x.verkocht != y.verkocht ? x.verkocht > y.verkocht : x.filiaal > y.filiaal;
}

/// The branches that have more than the minimum, as a heap. A taker stands below it, and is not
/// brought above it, so none has to be added on the way.
struct Gevers {
  std::array<Gever, 256> wie;
  ptrdiff_t n = 0;
  int32_t minimum;

  Gevers(const Advies& a, const MaatMatrix& r, int s) : minimum(a.groep.minimum) {
    for (int b = 0; b < a.filialen(); ++b) {
      if (!in_set(a.bron, b)) continue;
      const int32_t kan = krap(int64_t{vrij(a, b, s)} + cel(r, b, s));
      if (kan > minimum) wie[static_cast<size_t>(n++)] = {b, kan, cel(a.m_verkocht, b, 0)};
    }
    std::make_heap(wie.begin(), wie.begin() + n, na);
  }
  /// Takes a piece from the one whose turn it is; -1 when nobody can.
  int neem(int nemer) {
    while (n > 0) {
      std::pop_heap(wie.begin(), wie.begin() + n, na);
      Gever& g = wie[static_cast<size_t>(n - 1)];
      const int b = g.filiaal;
      if (b == nemer || --g.kan <= minimum)
        --n;
      else
        std::push_heap(wie.begin(), wie.begin() + n, na);
      if (b != nemer) return b;
    }
    return -1;
  }
};

void switch_maat(Advies& a, const MaatMatrix& vraag, MaatMatrix& r, int s) {
  Gevers gevers(a, r, s);
  // A giver keeps its minimum and so never comes to need a piece: one walk over the takers does.
  for (const int nemer : a.adv_volgorde) {
    while (bezwaar_minimum(a, vraag, cel(r, nemer, s), nemer, s) == AdvReden::geen) {
      const int gever = gevers.neem(nemer);
      if (gever < 0) return;
      verplaats(a, r, {r, AdvRegel::switch_minimum, &vraag, s, gever, nemer, 1});
    }
  }
}

}  // namespace

void aanvul_magazijn(Advies& a, MaatMatrix& r) {
  if (!magazijn_geeft(a)) return;
  eerlijk_begin(a);
  for (const int s : a.maten) vul_maat(a, r, s);
}

void aanvul_minimum(Advies& a, const MaatMatrix& vraag, MaatMatrix& r) {
  if (!magazijn_geeft(a)) return;
  const int mag = magazijn(a);
  for (const int s : a.maten) {
    int64_t voorraad = int64_t{vrij_magazijn(a, s)} + cel(r, mag, s);
    for (const int b : a.adv_volgorde) {
      if (voorraad <= 0) break;
      const int32_t gekregen = cel(r, b, s);
      if (b == mag || bezwaar_minimum(a, vraag, gekregen, b, s) != AdvReden::geen) continue;
      const int64_t nodig = int64_t{a.groep.minimum} - eigen(a, b, s) - gekregen;
      const auto n = krap(std::min(voorraad, nodig));
      verplaats(a, r, {r, AdvRegel::aanvul_minimum, &vraag, s, mag, b, n});
      voorraad -= n;
    }
  }
}

void switch_(Advies& a, const MaatMatrix& vraag, MaatMatrix& r) {
  for (const int s : a.maten) switch_maat(a, vraag, r, s);
}
