// Gathers orders from their lines: DTPICK by branch pair and number, and the labels on their way
// from DTGO. Both tables get their key back. A search for one number reads two keys a branch pair.
#include <algorithm>
#include <map>
#include <utility>

#include "main/controle.h"
#include "sub/opdr_intern.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"

namespace {

constexpr int PICK_PAREN = 3;  // DTPICK by branch pair and order number
constexpr int GO_PAREN = 2;    // DTGO by branch pair

struct Loop {
  const OpdrGrens& grens;
  uint32_t nummer;  // the only one wanted, 0 all
  std::map<std::pair<uint32_t, uint8_t>, OpdrRij> rijen{};
};

/// Adds a line of `stuks` pieces to its order.
void tel(Loop& l, const OpdrRij& regel) {
  if (regel.datum < l.grens.van || regel.datum > l.grens.tm) return;
  const auto [plaats, nieuw] = l.rijen.try_emplace({regel.nummer, regel.vanfil}, regel);
  if (nieuw) return;
  OpdrRij& rij = plaats->second;
  if (rij.naarfil != regel.naarfil) rij.naarfil = static_cast<uint8_t>(filialen());
  rij.stuks += regel.stuks;
  ++rij.regels;
}

OpdrRij rij_van(const DtPick& r) {
  uint32_t stuks = 0;
  for (int m = 1; m < MATEN; ++m) stuks += r.aantal[m];
  return {r.opdrachtnr, r.vanfil, r.naarfil, r.orderdatum, stuks, 1, BRON_PICK, {}};
}

OpdrRij rij_van(const DtGo& r) {
  return {r.opdrachtnr, r.vanfil, r.naarfil, r.zenddatum, 1, 1, BRON_GO, {}};
}

/// Puts the key of a line that isn't wanted right before the next that may be.
void spring(const Loop& l, DtPick& r) {
  r.nr = {UINT32_MAX, UINT16_MAX, UINT16_MAX};
  if (l.nummer == 0) return;
  r.opdrachtnr = r.opdrachtnr < l.nummer ? l.nummer - 1 : UINT32_MAX;
}

void tel_opdrachten(Loop& l) {
  const OpSleutel sleutel(dtpick, PICK_PAREN);
  const int velden = l.grens.vanfil >= 0 ? 1 : 0;
  DtPick r{};
  if (velden != 0) r.vanfil = static_cast<uint8_t>(l.grens.vanfil);
  for (bool er = IXFIRSTR(dtpick, &r, velden); er; er = IXNEXT(dtpick, &r, velden)) {
    if (r.opdrachtnr == 0 || (l.nummer != 0 && r.opdrachtnr != l.nummer))
      spring(l, r);
    else
      tel(l, rij_van(r));
  }
}

void tel_onderweg(Loop& l) {
  const OpSleutel sleutel(dtgo, GO_PAREN);
  const int velden = l.grens.vanfil >= 0 ? 1 : 0;
  DtGo r{};
  if (velden != 0) r.vanfil = static_cast<uint8_t>(l.grens.vanfil);
  for (bool er = IXFIRSTR(dtgo, &r, velden); er; er = IXNEXT(dtgo, &r, velden)) {
    if (r.opdrachtnr != 0 && (l.nummer == 0 || r.opdrachtnr == l.nummer)) tel(l, rij_van(r));
  }
}

}  // namespace

std::vector<OpdrRij> opdr_verzamel(const OpdrGrens& grens, uint32_t nummer) {
  std::vector<OpdrRij> uit;
  if (grens.vanfil > UINT8_MAX) return uit;
  Loop l{grens, nummer};
  if (grens.opdrachten) tel_opdrachten(l);
  if (grens.onderweg) tel_onderweg(l);
  uit.reserve(l.rijen.size());
  for (const auto& [sleutel, rij] : l.rijen) uit.push_back(rij);
  return uit;
}

bool opdr_zoek(uint32_t nummer, const OpdrGrens& grens, OpdrKeuze* keuze) {
  if (nummer == 0) return false;
  const std::vector<OpdrRij> rijen = opdr_verzamel(grens, nummer);
  if (rijen.empty()) return false;
  const OpdrRij& r = rijen.front();
  *keuze = {r.nummer, r.vanfil, r.naarfil, r.datum, r.stuks, r.regels};
  return true;
}
