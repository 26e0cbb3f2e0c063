// What the steps of the advice share: counting that wraps instead of overflowing on broken input,
// the objections that a step has to a branch, fair share, and the trail.
#pragma once

#include <algorithm>
#include <array>
#include <span>

#include "sub/advies.h"

inline int32_t krap(int64_t v) { return static_cast<int32_t>(v); }

/// Counts pieces in a row: the size and the sum.
inline void tel(Maatrij& rij, int s, int32_t n) {
  int32_t& cel = rij[static_cast<size_t>(s)];
  cel = krap(int64_t{cel} + n);
  rij[0] = krap(int64_t{rij[0]} + n);
}

inline int32_t cel(const MaatMatrix& m, int b, int s) {
  return m[static_cast<size_t>(b)][static_cast<size_t>(s)];
}
inline int32_t keten(const MaatMatrix& m, int s) { return m.back()[static_cast<size_t>(s)]; }
inline bool in_set(const std::bitset<256>& set, int b) { return set[static_cast<size_t>(b)]; }
inline int streef(const Advies& a, int b) { return a.groep.streef[static_cast<size_t>(b)]; }
/// Aims by quantity; any letter but 'P'.
inline bool op_aantal(const Advies& a) { return a.groep.verdeelsoort != 'P'; }

/// The warehouse, -1 without one.
inline int magazijn(const Advies& a) {
  return a.groep.magazijn < a.filialen() ? a.groep.magazijn : -1;
}
inline bool magazijn_geeft(const Advies& a) {
  return magazijn(a) >= 0 && in_set(a.bron, magazijn(a));
}
/// What the warehouse keeps of each size before it gives.
inline int magazijn_houdt(const Advies& a) { return a.groep.pure_magazijn ? 0 : a.groep.minimum; }
/// The one branch that holds all pieces of a matrix; -1 when there is none or nothing.
int enig_filiaal(const MaatMatrix& m);

// What a step has against giving branch b of the service order a piece of size s. -----------------

/// The warehouse replaces sold pieces: how many a branch may get.
int32_t aanvul_wens(const Advies& a, int b, int s);
AdvReden bezwaar_aanvul(const Advies& a, const MaatMatrix& r, int b, int s);
/// `gekregen`: what the result gives it already.
inline AdvReden bezwaar_minimum(const Advies& a, const MaatMatrix& vraag, int32_t gekregen, int b,
                                int s) {
  if (streef(a, b) == 0) return AdvReden::geen_streef;
  if (cel(vraag, b, s) <= 0) return AdvReden::geen_vraag;
  const int64_t straks = int64_t{eigen(a, b, s)} + gekregen;
  return straks < a.groep.minimum ? AdvReden::geen : AdvReden::genoeg;
}
AdvReden bezwaar_verdeel(const Advies& a, const MaatMatrix& r, int b, int s);
/// The objection of any rule, a branch outside the service order included.
AdvReden bezwaar(const Advies& a, AdvRegel regel, const MaatMatrix* vraag, const MaatMatrix& r,
                 int b, int s);

// Fair share --------------------------------------------------------------------------------------

struct Kandidaat {
  int filiaal;
  int32_t ruimte;  // pieces that it may still get
  // eerlijk_verdeel fills these; the score wraps
  uint32_t gewicht = 0, stand = 0;
};

/// Pieces given, a branch.
using Giften = std::array<int32_t, 256>;

/// Begins for the series' model: the score of another model is cleared, the weights are made.
void eerlijk_begin(Advies& a);
/// Every piece given adds each branch's own weight to its score, and takes the sum of all weights
/// from the score of who got it. Counts of 0 or less are nothing.
void eerlijk_boek(Advies& a, int s, const Giften& giften);
/// Gives pieces one by one to the candidate with the highest score, the first of equals, until
/// `stuks` or the candidates run out; `geef(b)` is called for each. Returns what is left.
template <class Geef>
int32_t eerlijk_verdeel(Advies& a, int s, std::span<Kandidaat> wie, int32_t stuks, Geef geef);

// The trail ---------------------------------------------------------------------------------------

struct Zet {
  const MaatMatrix& r;
  AdvRegel regel;
  const MaatMatrix* vraag;
  int maat, van, naar;  // 255 none
  int32_t stuks;
  int beurt = 0;  // place in the service order of who had its turn, for remainders
};
void spoor_noteer(Advies& a, const Zet& zet);
inline void noteer(Advies& a, const Zet& zet) {
  if (a.spoor != nullptr) spoor_noteer(a, zet);
}

// -------------------------------------------------------------------------------------------------

template <class Geef>
int32_t eerlijk_verdeel(Advies& a, int s, std::span<Kandidaat> wie, int32_t stuks, Geef geef) {
  const Verdeelstand& v = a.verdeel;
  const size_t kolom = v.per_maat ? static_cast<size_t>(s) : 0;
  for (Kandidaat& k : wie) {
    const auto b = static_cast<size_t>(k.filiaal);
    k.stand = static_cast<uint32_t>(v.verdeel_stand[b][kolom]);
    k.gewicht = static_cast<uint32_t>(v.verdeel_gewicht[b]);
  }
  const auto som = static_cast<uint32_t>(v.verdeel_gewicht.back());
  // Only the candidates' scores are kept up piece by piece; everybody's follows in one go below.
  Giften giften{};
  size_t over = wie.size();
  for (; stuks > 0 && over > 0; --stuks) {
    size_t beste = 0;
    auto hoogste = static_cast<int32_t>(wie[0].stand);
    for (size_t i = 0; i < over; ++i) {
      const auto stand = static_cast<int32_t>(wie[i].stand);
      wie[i].stand += wie[i].gewicht;
      if (stand <= hoogste) continue;
      beste = i;
      hoogste = stand;
    }
    Kandidaat& k = wie[beste];
    k.stand -= som;
    ++giften[static_cast<size_t>(k.filiaal)];
    geef(k.filiaal);
    if (--k.ruimte > 0) continue;
    const auto eerste = wie.begin() + static_cast<ptrdiff_t>(beste);
    std::copy(eerste + 1, wie.begin() + static_cast<ptrdiff_t>(over), eerste);
    --over;
  }
  eerlijk_boek(a, s, giften);
  return stuks;
}
