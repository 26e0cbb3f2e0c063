// Which of a label's transactions of one day comes next.
//
// Tills and hand terminals report a day's send and receive in any order. The chain is followed from
// where the label is: on its way it waits for its receive, at rest it leaves from its branch. What
// fits nothing keeps the order of the file, and a refusal changes nothing for those behind it.
#include <algorithm>

#include "sub/dc_intern.h"

namespace {

bool is(const DcTrans& t, uint8_t soort, uint8_t van, uint8_t naar) {
  return t.soort == soort && t.vanfil == van && t.naarfil == naar;
}

bool past(const DcTrans& t, const DcStand& s, int rang) {
  switch (rang) {
    case 0:
      return s.wens && is(t, DC_ONTVANGEN, s.wens_van, s.wens_naar);
    case 1:
      return s.onderweg && is(t, DC_ONTVANGEN, s.plaats, s.doel) &&
             (!s.bekend || t.nummer == s.nummer);
    case 2:
      return !s.onderweg && t.soort == DC_ZENDEN && t.vanfil == s.plaats;
    case 3:
      return !s.onderweg && t.soort == DC_ONTVANGEN && t.vanfil == s.plaats;
    default:
      return true;
  }
}

}  // namespace

size_t dc_volgende(std::span<const DcTrans> dag, std::span<const bool> gedaan, const DcStand& s) {
  constexpr int RANGEN = 5;
  for (int rang = 0; rang < RANGEN; ++rang)
    for (size_t i = 0; i < dag.size(); ++i)
      if (!gedaan[i] && past(dag[i], s, rang)) return i;
  return dag.size();
}
