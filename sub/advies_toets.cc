// Whether a series calls for a kind of advice, and what a step has against a branch.
#include <algorithm>

#include "sub/advies_intern.h"

namespace {

bool iemand_onder_minimum(const Advies& a, const MaatMatrix& vraag, int s) {
  return std::any_of(a.adv_volgorde.begin(), a.adv_volgorde.end(),
                     [&](int b) { return bezwaar_minimum(a, vraag, 0, b, s) == AdvReden::geen; });
}

/// A position below zero counts as a large one, as it does in every place that compares it here.
uint16_t kort(int32_t n) { return static_cast<uint16_t>(n); }

int64_t tekort(const Advies& a, const MaatMatrix& vraag, int s) {
  int64_t som = 0;
  for (const int b : a.adv_volgorde) {
    if (cel(vraag, b, s) <= 0 || streef(a, b) == 0) continue;
    const int32_t heeft = eigen(a, b, s);
    if (kort(heeft) < a.groep.minimum) som += int64_t{a.groep.minimum} - heeft;
  }
  return som;
}

/// The first branch that seems to have more than the minimum decides, also when it turns out to be
/// short itself.
bool gever_is_er(const Advies& a, int s) {
  for (int b = 0; b < a.filialen(); ++b) {
    if (!in_set(a.bron, b) || b == magazijn(a)) continue;
    const int32_t kan = vrij(a, b, s);
    if (kort(kan) > a.groep.minimum) return kan > a.groep.minimum;
  }
  return false;
}

/// Branches that ever had anything of the series, a pure warehouse left out.
int ontvangers(const Advies& a) {
  int n = 0;
  for (int b = 0; b < a.filialen(); ++b)
    if (cel(a.m_ontvangen, b, 0) > 0 && !(a.groep.pure_magazijn && b == magazijn(a))) ++n;
  return n;
}

}  // namespace

bool toets_nieuw(const Advies& a) {
  if (keten(a.m_verkocht, 0) != 0 || keten(a.m_uit, 0) != 0) return false;
  const int b = enig_filiaal(a.m_ontvangen);
  return b >= 0 && in_set(a.bron, b);
}

bool toets_aanvul(const Advies& a, const MaatMatrix& vraag) {
  const int mag = magazijn(a);
  if (mag < 0) return false;
  return std::any_of(a.maten.begin(), a.maten.end(), [&](int s) {
    if (vrij_magazijn(a, s) <= 0) return false;
    const int32_t aanvul = keten(a.m_aanvul, s);
    if (aanvul >= 1) return cel(a.m_aanvul, mag, s) != aanvul;
    return keten(vraag, s) > 0 && iemand_onder_minimum(a, vraag, s);
  });
}

bool toets_switch(const Advies& a, const MaatMatrix& vraag) {
  if (keten(a.m_besteld, 0) > 0) return false;
  return std::any_of(a.maten.begin(), a.maten.end(), [&](int s) {
    return keten(vraag, s) > 0 && tekort(a, vraag, s) > vrij_magazijn(a, s) && gever_is_er(a, s);
  });
}

bool toets_restant(const Advies& a) {
  if (keten(a.m_besteld, 0) > 0 || keten(a.m_voorraad, 0) <= 0) return false;
  const int n = ontvangers(a);
  const bool ruim = std::any_of(a.maten.begin(), a.maten.end(), [&](int s) {
    return int64_t{keten(a.m_voorraad, s)} + keten(a.m_besteld, s) >= n;
  });
  return !ruim && std::any_of(a.maten.begin(), a.maten.end(), [&](int s) {
    return keten(a.m_ontvangen, s) >= a.groep.minimum * n;
  });
}

int32_t aanvul_wens(const Advies& a, int b, int s) {
  const int32_t vraag = cel(a.m_aanvul, b, s);
  if (streef(a, b) == 0 || vraag <= 0) return 0;
  if (!a.groep.alleen_onder) return vraag;
  const int32_t heeft = eigen(a, b, s);
  if (heeft > a.groep.minimum) return 0;
  return op_aantal(a) ? krap(int64_t{streef(a, b)} - heeft) : vraag;
}

AdvReden bezwaar_aanvul(const Advies& a, const MaatMatrix& r, int b, int s) {
  if (b == magazijn(a)) return AdvReden::aan_zichzelf;
  if (streef(a, b) == 0) return AdvReden::geen_streef;
  if (cel(a.m_aanvul, b, s) <= 0) return AdvReden::geen_vraag;
  return cel(r, b, s) < aanvul_wens(a, b, s) ? AdvReden::geen : AdvReden::genoeg;
}

AdvReden bezwaar_verdeel(const Advies& a, const MaatMatrix& r, int b, int s) {
  if (!in_set(a.doel, b)) return AdvReden::geen_ontvanger;
  if (streef(a, b) == 0) return AdvReden::geen_streef;
  return op_aantal(a) && cel(r, b, s) >= streef(a, b) ? AdvReden::genoeg : AdvReden::geen;
}
