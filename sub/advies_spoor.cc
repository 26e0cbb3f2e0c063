// The trail: what each step moved, and what kept the other branches from it.
#include <algorithm>

#include "sub/advies_intern.h"

namespace {

int plaats(const Advies& a, int b) {
  const auto p = std::find(a.adv_volgorde.begin(), a.adv_volgorde.end(), b);
  return p == a.adv_volgorde.end() ? -1 : static_cast<int>(p - a.adv_volgorde.begin());
}

/// Why b, and not who got it, when nothing else stood in its way.
AdvReden achter(const Advies& a, const Zet& zet, int b) {
  switch (zet.regel) {
    case AdvRegel::aanvul_minimum:
    case AdvRegel::switch_minimum:
      return AdvReden::later;
    case AdvRegel::restant:
    case AdvRegel::gespreid:
      if (plaats(a, b) > zet.beurt) return AdvReden::later;
      return zet.regel == AdvRegel::restant ? AdvReden::genoeg : AdvReden::lagere_stand;
    default:
      return AdvReden::lagere_stand;
  }
}

/// A giver that had more than the minimum too.
bool kon_ook(const Advies& a, const Zet& zet, int b) {
  return zet.regel == AdvRegel::switch_minimum && in_set(a.bron, b) &&
         int64_t{vrij(a, b, zet.maat)} + cel(zet.r, b, zet.maat) > a.groep.minimum;
}

std::vector<AdvGepasseerd> gepasseerd(const Advies& a, const Zet& zet) {
  std::vector<AdvGepasseerd> uit;
  for (int b = 0; b < a.filialen(); ++b) {
    if (b == zet.naar || b == zet.van) continue;
    AdvReden reden = bezwaar(a, zet.regel, zet.vraag, zet.r, b, zet.maat);
    if (reden == AdvReden::geen) reden = achter(a, zet, b);
    if (kon_ook(a, zet, b)) reden = AdvReden::minder_vrij;
    uit.push_back({static_cast<uint8_t>(b), reden});
  }
  return uit;
}

}  // namespace

AdvReden bezwaar(const Advies& a, AdvRegel regel, const MaatMatrix* vraag, const MaatMatrix& r,
                 int b, int s) {
  switch (regel) {
    case AdvRegel::verdeel_vast:
    case AdvRegel::verdeel_minimum:
    case AdvRegel::verdeel_eerlijk:
      return bezwaar_verdeel(a, r, b, s);
    case AdvRegel::verdeel_rest:
      return AdvReden::geen_ontvanger;
    default:
      break;
  }
  if (plaats(a, b) < 0) return AdvReden::geen_ontvanger;
  if (regel == AdvRegel::aanvul_verkocht) return bezwaar_aanvul(a, r, b, s);
  if (vraag == nullptr) return AdvReden::geen;
  return bezwaar_minimum(a, *vraag, cel(r, b, s), b, s);
}

void spoor_noteer(Advies& a, const Zet& zet) {
  AdvStap stap{&zet.r,
               zet.regel,
               static_cast<uint8_t>(zet.maat),
               static_cast<uint8_t>(zet.van),
               static_cast<uint8_t>(zet.naar),
               zet.stuks,
               gepasseerd(a, zet)};
  a.spoor->push_back(std::move(stap));
}
