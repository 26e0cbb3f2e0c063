// Redistribution of remainders: what the giving branches have left of each size is gathered in the
// branches that sell best, so that one customer finds a row of adjacent sizes; what falls outside
// the longest row is spread by sales.
#include <algorithm>

#include "sub/advies_intern.h"

namespace {

/// A row of adjacent sizes: from and up to (not with) an ordinal of the series' sizes.
struct Reeks {
  size_t van = 0, tot = 0;
  bool bevat(size_t i) const { return i >= van && i < tot; }
};

struct Restant {
  Advies& a;
  std::vector<int32_t> pot;  // pieces by ordinal of the size; 0 not available
  Reeks kaart;               // the sizes in hand; those without pieces do not count

  explicit Restant(Advies& advies) : a(advies), pot(a.maten.size()), kaart{0, pot.size()} {
    for (size_t i = 0; i < pot.size(); ++i) {
      int64_t som = 0;
      for (int b = 0; b < a.filialen(); ++b)
        if (in_set(a.bron, b)) som += vrij(a, b, a.maten[i]);
      pot[i] = krap(std::max<int64_t>(som, 0));
    }
  }

  void geef(size_t i, size_t beurt, size_t wie, AdvRegel regel) {
    const int b = a.adv_volgorde[wie];
    const int s = a.maten[i];
    noteer(a, {a.r_herverdeel, regel, nullptr, s, FILIAAL_GEEN, b, 1, static_cast<int>(beurt)});
    tel(a.r_herverdeel[static_cast<size_t>(b)], s, 1);
    --pot[i];
  }

  /// The row of at least two sizes that holds most; the first of equals. Empty without one.
  Reeks langste() const {
    Reeks beste;
    int64_t meest = 0;
    for (size_t van = kaart.van; van < kaart.tot; ++van) {
      Reeks reeks{van, van};
      int64_t som = 0;
      for (; reeks.tot < kaart.tot && pot[reeks.tot] > 0; ++reeks.tot) som += pot[reeks.tot];
      if (reeks.tot - reeks.van >= 2 && som > meest) {
        beste = reeks;
        meest = som;
      }
      van = std::max(van, reeks.tot);
    }
    return beste;
  }

  /// All that is left of a size, to who claims most of the branches up to position `beurt`.
  void spreiden(size_t beurt, size_t i) {
    if (pot[i] == 0) return;
    const int s = a.maten[i];
    double samen = 0;
    for (size_t p = 0; p <= beurt; ++p) samen += cel(a.m_verkocht, a.adv_volgorde[p], 0);
    if (samen == 0) samen = 1;
    std::array<double, 256> eis;
    for (size_t p = 0; p <= beurt; ++p) {
      const int b = a.adv_volgorde[p];
      eis[p] = static_cast<double>(cel(a.m_verkocht, b, 0)) * keten(a.m_voorraad, s) / samen -
               cel(a.r_herverdeel, b, s);
    }
    while (pot[i] > 0) {
      const auto hoogste =
          std::max_element(eis.begin(), eis.begin() + static_cast<ptrdiff_t>(beurt) + 1);
      --*hoogste;
      geef(i, beurt, static_cast<size_t>(hoogste - eis.begin()), AdvRegel::gespreid);
    }
  }

  /// The one size that is left: a piece each, as far as they go.
  void een_maat(size_t i) {
    for (size_t p = 0; p < a.adv_volgorde.size() && pot[i] > 0; ++p)
      geef(i, p, p, AdvRegel::restant);
  }

  void beurten() {
    for (size_t p = 0; p < a.adv_volgorde.size() && kaart.van < kaart.tot; ++p) {
      for (size_t i = kaart.van; i < kaart.tot; ++i)
        if (pot[i] > 0) geef(i, p, p, AdvRegel::restant);
      const Reeks volgende = p + 1 < a.adv_volgorde.size() ? langste() : Reeks{};
      for (size_t i = 0; i < pot.size(); ++i)
        if (!volgende.bevat(i)) spreiden(p, i);
      kaart = volgende;
    }
  }

  /// From what each branch is to have to what moves.
  void wordt_beweging() {
    for (int b = 0; b < a.filialen(); ++b) {
      if (!in_set(a.bron, b)) continue;
      for (const int s : a.maten) {
        const int32_t had = vrij(a, b, s);
        tel(a.r_herverdeel[static_cast<size_t>(b)], s, krap(-int64_t{had}));
      }
    }
  }
};

}  // namespace

void restanten(Advies& a) {
  Restant rest(a);
  const auto aanwezig = [](int32_t n) { return n > 0; };
  if (std::count_if(rest.pot.begin(), rest.pot.end(), aanwezig) == 1)
    rest.een_maat(static_cast<size_t>(std::find_if(rest.pot.begin(), rest.pot.end(), aanwezig) -
                                      rest.pot.begin()));
  else
    rest.beurten();
  rest.wordt_beweging();
}
