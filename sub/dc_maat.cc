// The third phase: pieces by size. A transaction says how many pieces of a size went from one
// branch to another, not which: those of one size and day are set against what is in stock and on
// its way, and what cannot be served is told per pair of branches.
#include <algorithm>
#include <new>
#include <vector>

#include "main/controle.h"
#include "scr/scr.h"
#include "sub/dc_spoor.h"
#include "sub/dc_stuk.h"
#include "sub/tabellen.h"

namespace {

constexpr int RONDES = 10000;  // two lines to and fro with huge counts would circle for ever

bool transit_aan() { return sys_rec20.transit != 0; }

struct Post {
  DcTrans t;
  uint32_t rest;
};

/// The posts of one kind and pair, and of one number where that decides.
struct Groep {
  std::span<Post> posten;
  size_t nu = 0;
  uint64_t rest = 0, weg = 0;  // pieces still to go; pieces that were sold there

  explicit Groep(std::span<Post> p) : posten(p) {
    for (const Post& post : posten) rest += post.rest;
  }
  const DcTrans& eerste() const { return posten.front().t; }
  /// What goes next; only while there is a rest.
  Post& volgende() {
    while (posten[nu].rest == 0) ++nu;
    return posten[nu];
  }
  /// Takes pieces by `een` until it answers false or all are there; how many.
  template <class F>
  uint64_t werk(F een) {
    uint64_t gedaan = 0;
    while (rest > 0 && !scr_interrupted()) {
      Post& post = volgende();
      if (!een(post.t)) break;
      --post.rest;
      --rest;
      ++gedaan;
    }
    return gedaan;
  }
};

/// Receives with a document stand apart, the lowest number first; then receives, then sends; each
/// by pair. With the transit administration off a number decides nothing.
uint64_t rang(const DcTrans& t) {
  if (!transit_aan()) return t.soort == DC_ZENDEN ? 0 : 1;
  if (t.soort == DC_ZENDEN) return UINT64_MAX;
  return t.nummer != 0 ? t.nummer : UINT64_MAX - 1;
}
bool eerder(const Post& a, const Post& b) {
  if (rang(a.t) != rang(b.t)) return rang(a.t) < rang(b.t);
  return a.t.vanfil != b.t.vanfil ? a.t.vanfil < b.t.vanfil : a.t.naarfil < b.t.naarfil;
}

std::vector<Groep> groepen_van(std::span<Post> posten) {
  std::ranges::stable_sort(posten, eerder);
  std::vector<Groep> uit;
  for (size_t i = 0; i < posten.size();) {
    size_t j = i + 1;
    while (j < posten.size() && !eerder(posten[i], posten[j])) ++j;
    uit.emplace_back(posten.subspan(i, j - i));
    i = j;
  }
  return uit;
}

/// What the list shows of a group: one line as it came, of several no count, and no number unless
/// it is the same.
DcTrans beeld(const Groep& g) {
  DcTrans t = g.eerste();
  const bool anders =
      std::ranges::any_of(g.posten, [&](const Post& p) { return p.t.nummer != t.nummer; });
  if (g.posten.size() > 1 || t.regel == 0) t.stuks = DC_GEEN_AANTAL;
  if (anders) t.nummer = 0;
  return t;
}

void meld(const Groep& g, DcOpm opm, uint64_t aantal) {
  constexpr uint64_t MEEST = UINT32_MAX;
  dc_meld(opm, beeld(g),
          {.maat = g.eerste().maat, .aantal = static_cast<uint32_t>(std::min(aantal, MEEST))});
}

/// What came of a group. One that asked for nothing got nothing, and says so too.
void besluit(const Groep& g, DcOpm tekort) {
  if (g.weg > 0) meld(g, DcOpm::niet_voorraad, g.weg);
  const bool niets = std::ranges::all_of(g.posten, [](const Post& p) { return p.t.stuks == 0; });
  if (g.rest > 0 || niets) meld(g, tekort, g.rest);
}

bool is_zending(const Groep& g) { return g.eerste().soort == DC_ZENDEN; }
bool op_nummer(const Groep& g) { return transit_aan() && !is_zending(g) && g.eerste().nummer != 0; }

void doe_nummer(DcVak& vak, Groep& g) {
  g.werk([&](const DcTrans& t) { return vak.ontvang_nummer(t); });
  g.weg = g.werk([&](const DcTrans& t) { return vak.ontvang_nummer_verkocht(t); });
}

/// One group in a round; true when a piece moved.
bool doe_groep(DcVak& vak, Groep& g) {
  if (is_zending(g)) return g.werk([&](const DcTrans& t) { return vak.zend(t); }) > 0;
  if (!transit_aan()) return g.werk([&](const DcTrans& t) { return vak.ontvang_los(t); }) > 0;
  const uint64_t binnen = g.werk([&](const DcTrans& t) { return vak.ontvang(t); });
  const uint64_t weg = g.werk([&](const DcTrans& t) { return vak.ontvang_verkocht(t); });
  g.weg += weg;
  return binnen + weg > 0;
}

/// A piece that moves is stock of its new branch, so chains work out in a round or a later one.
void rondes(DcVak& vak, std::span<Groep> groepen) {
  bool bewoog = true;
  for (int ronde = 0; bewoog && ronde < RONDES && !scr_interrupted(); ++ronde) {
    bewoog = false;
    for (Groep& g : groepen)
      if (doe_groep(vak, g)) bewoog = true;
  }
}

/// All transactions of one size and day.
void doe_dag(std::span<DcStuk> stukken, std::vector<Post>& posten) {
  std::vector<Groep> groepen = groepen_van(posten);
  DcVak vak(stukken, posten.front().t.datum);
  // From a branch to itself: the pieces are there.
  std::erase_if(groepen, [](const Groep& g) {
    const bool zelf = g.eerste().vanfil == g.eerste().naarfil;
    if (zelf) dc_meld(DcOpm::aanwezig, beeld(g));
    return zelf;
  });
  const auto rest = std::find_if_not(groepen.begin(), groepen.end(), op_nummer);
  for (auto g = groepen.begin(); g != rest; ++g) doe_nummer(vak, *g);
  rondes(vak, {rest, groepen.end()});
  if (scr_interrupted()) return;
  for (const Groep& g : groepen) {
    const bool onderweg = transit_aan() && !is_zending(g);
    besluit(g, onderweg ? DcOpm::niet_onderweg : DcOpm::te_weinig);
  }
}

/// The transactions of one size and day; `t` holds the first, in the end the first behind them.
bool lees_dag(DcTrans* t, std::vector<Post>* posten) {
  const DcTrans eerste = *t;
  bool meer = true;
  posten->clear();
  for (; meer && t->nr == eerste.nr && t->maat == eerste.maat && t->datum == eerste.datum;
       meer = IXNEXT(dc.maten, t))
    posten->push_back({*t, t->stuks - std::min(t->stuks, dc_spoor_gedaan(*t))});
  return meer;
}

bool doe_serie(DcTrans* t) {
  const DcSerie serie(t->nr);
  if (!serie.vast) return dc_sla_over(dc.maten, t);
  const Serienr nr = t->nr;

  dc_spoor_hervat();
  std::vector<DcStuk> stukken;
  std::vector<Post> posten;
  const bool gelezen = dc_stukken_lees(&stukken);
  bool meer = true;
  while (meer && t->nr == nr && !scr_interrupted()) {
    const uint8_t maat = t->maat;
    meer = lees_dag(t, &posten);
    if (gelezen) {
      const auto kleiner = [](const DcStuk& s, uint8_t m) { return s.maat < m; };
      const auto van = std::lower_bound(stukken.begin(), stukken.end(), maat, kleiner);
      const auto tot =
          std::find_if(van, stukken.end(), [maat](const DcStuk& s) { return s.maat != maat; });
      doe_dag({van, tot}, posten);
    } else {
      for (const Post& p : posten) dc_meld(DcOpm::ketting, p.t);
    }
  }
  return meer;
}

}  // namespace

void dc_maten() {
  IXSWITCH(dc.maten, 2);
  DcTrans t{};
  bool meer = IXFIRSTR(dc.maten, &t);
  try {
    while (meer && !scr_interrupted()) meer = doe_serie(&t);
  } catch (const std::bad_alloc&) {
    ctl_nomem(DC_MODULE, 1);
  }
}
