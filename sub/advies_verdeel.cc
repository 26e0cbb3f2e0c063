// The first distribution of a new series: from the one branch where it came in to all that aim at
// it; what is left stays with the keeper.
#include <algorithm>

#include "sub/advies_intern.h"

namespace {

/// One size of a distribution.
struct Deling {
  Advies& a;
  int bron, bewaarder, maat;
  int64_t over;  // pieces not yet given
  Giften giften{};

  int32_t heeft(int b) const { return cel(a.r_aanvul, b, maat); }

  void beweeg(int b, int64_t stuks, AdvRegel regel) {
    if (stuks <= 0) return;
    noteer(a, {a.r_aanvul, regel, nullptr, maat, bron, b, krap(stuks)});
    tel(a.r_aanvul[static_cast<size_t>(b)], maat, krap(stuks));
    over -= stuks;
  }
  void geef(int b, int64_t stuks, AdvRegel regel) {
    beweeg(b, stuks, regel);
    giften[static_cast<size_t>(b)] += krap(stuks);
  }
  template <class F>
  void ieder_doel(F doe) {
    for (int b = 0; b < a.filialen(); ++b)
      if (in_set(a.doel, b) && streef(a, b) != 0) doe(b);
  }

  /// By percentage: the minimum for all, when it goes round, and the keeper's share of the whole.
  void vast_percentage() {
    const int64_t alles = over;
    int64_t nodig = 0;
    ieder_doel([&](int) { nodig += a.groep.minimum; });
    if (alles < nodig) return;
    ieder_doel([&](int b) { geef(b, a.groep.minimum, AdvRegel::verdeel_vast); });
    const int64_t apart = (alles * a.groep.magazijn_pct + 50) / 100;
    beweeg(bewaarder, std::min(apart, over), AdvRegel::verdeel_rest);
  }

  /// By quantity: the aim for all, when it goes round, and the rest for the keeper.
  void vast_aantal() {
    int64_t nodig = 0;
    ieder_doel([&](int b) { nodig += streef(a, b); });
    if (over < nodig) return;
    ieder_doel([&](int b) {
      if (b != magazijn(a) || !a.groep.pure_magazijn) geef(b, streef(a, b), AdvRegel::verdeel_vast);
    });
    beweeg(bewaarder, over, AdvRegel::verdeel_rest);
  }

  /// A piece each for who stands below the minimum, as long as it goes round.
  void rondes() {
    for (;;) {
      int64_t onder = 0;
      ieder_doel([&](int b) { onder += heeft(b) < a.groep.minimum ? 1 : 0; });
      if (onder == 0 || over < onder) return;
      ieder_doel([&](int b) {
        if (heeft(b) < a.groep.minimum) geef(b, 1, AdvRegel::verdeel_minimum);
      });
    }
  }

  void eerlijk() {
    eerlijk_boek(a, maat, giften);
    std::array<Kandidaat, 256> wie;
    size_t n = 0;
    for (int b = 0; b < a.filialen(); ++b)
      if (bezwaar_verdeel(a, a.r_aanvul, b, maat) == AdvReden::geen)
        wie[n++] = {b, op_aantal(a) ? streef(a, b) - heeft(b) : INT32_MAX};
    eerlijk_verdeel(a, maat, std::span(wie).first(n), krap(over),
                    [&](int b) { beweeg(b, 1, AdvRegel::verdeel_eerlijk); });
    beweeg(bewaarder, over, AdvRegel::verdeel_rest);
  }
};

}  // namespace

void distributie(Advies& a) {
  const int enige = enig_filiaal(a.m_voorraad);
  const int bron = enige >= 0 ? enige : magazijn(a);
  if (bron < 0) return;
  const int bewaarder = magazijn(a) >= 0 ? magazijn(a) : bron;
  eerlijk_begin(a);
  for (const int s : a.maten) {
    const int32_t voorraad = cel(a.m_voorraad, bron, s);
    Deling deling{a, bron, bewaarder, s, voorraad};
    if (op_aantal(a))
      deling.vast_aantal();
    else
      deling.vast_percentage();
    deling.rondes();
    deling.eerlijk();
    tel(a.r_aanvul[static_cast<size_t>(bron)], s, krap(-int64_t{voorraad}));
  }
}
