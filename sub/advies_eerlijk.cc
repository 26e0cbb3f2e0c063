// Fair share: a score a branch that rises with every piece that the chain gives, by the branch's
// aim, and falls with every piece that it gets. The scores live on over the series of one model.
#include <cstring>

#include "sub/advies_intern.h"

void eerlijk_begin(Advies& a) {
  Verdeelstand& v = a.verdeel;
  if (!v.begonnen || memcmp(v.model, a.model, sizeof v.model) != 0) {
    matrix_wis(v.verdeel_stand);
    memcpy(v.model, a.model, sizeof v.model);
    v.begonnen = true;
  }
  int32_t som = 0;
  for (int b = 0; b < a.filialen(); ++b) {
    const int32_t gewicht = in_set(a.doel, b) ? streef(a, b) : 0;
    v.verdeel_gewicht[static_cast<size_t>(b)] = gewicht;
    som += gewicht;
  }
  v.verdeel_gewicht.back() = som;
}

void eerlijk_boek(Advies& a, int s, const Giften& giften) {
  const auto filialen = static_cast<size_t>(a.filialen());
  const auto stuks = [&](size_t b) { return int64_t{std::max(giften[b], 0)}; };
  int64_t samen = 0;
  for (size_t b = 0; b < filialen; ++b) samen += stuks(b);
  if (samen == 0) return;
  const auto& gewicht = a.verdeel.verdeel_gewicht;
  const size_t kolom = a.verdeel.per_maat ? static_cast<size_t>(s) : 0;
  for (size_t b = 0; b < filialen; ++b) {
    int32_t& stand = a.verdeel.verdeel_stand[b][kolom];
    stand = krap(stand + samen * gewicht[b] - stuks(b) * gewicht.back());
  }
}
