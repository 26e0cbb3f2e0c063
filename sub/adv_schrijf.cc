// Accepted movements of one series as provisional order lines. Lines that stood before are kept as
// far as they still fit, so that an order that was gathered by hand is not shuffled; what is left
// is filled pair by pair in order of branch. What no other branch gives or wants writes nothing.
#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "main/controle.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_vul_intern.h"
#include "sub/advies.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"

namespace {

constexpr int NR_KOPIE = 9;  // named when memory runs out

using Rij = std::array<uint32_t, MATEN>;

int32_t& cel(MaatMatrix& m, int filiaal, int maat) {
  return m[static_cast<size_t>(filiaal)][static_cast<size_t>(maat)];
}

/// Moves what one branch has to give and the other wants, at most `hoogst`; counts it in the row.
void verplaats(MaatMatrix& m, int van, int naar, int maat, int32_t hoogst, Rij& rij) {
  const int64_t geeft = -int64_t{cel(m, van, maat)}, wil = cel(m, naar, maat);
  const auto n = static_cast<int32_t>(std::min({int64_t{hoogst}, geeft, wil}));
  if (n <= 0) return;
  cel(m, van, maat) += n;
  cel(m, naar, maat) -= n;
  rij[static_cast<size_t>(maat)] += static_cast<uint32_t>(n);
}

/// Writes the row of a pair if it holds anything, and clears it.
void schrijf_rij(int van, int naar, Rij& rij) {
  if (std::ranges::any_of(rij, [](uint32_t n) { return n != 0; })) opdracht_regel(van, naar, rij);
  rij.fill(0);
}

void houd_regels(MaatMatrix& m) {
  const int filialen = static_cast<int>(m.size()) - 1;
  Rij rij{};
  TpckRec regel{};
  uint8_t van = 0, naar = 0;
  for (bool er = IXFIRSTR(tpck, &regel); er; er = IXNEXT(tpck, &regel)) {
    if (regel.vanfil >= filialen || regel.naarfil >= filialen) continue;
    if (regel.maat < 1 || regel.maat >= MATEN) continue;
    if (regel.vanfil != van || regel.naarfil != naar) schrijf_rij(van, naar, rij);
    van = regel.vanfil;
    naar = regel.naarfil;
    verplaats(m, van, naar, regel.maat, regel.aantal, rij);
  }
  schrijf_rij(van, naar, rij);
}

bool geeft_nog(MaatMatrix& m, int filiaal) {
  return std::ranges::any_of(advies.maten, [&](uint8_t maat) { return cel(m, filiaal, maat) < 0; });
}

void vul_aan(MaatMatrix& m) {
  const int filialen = static_cast<int>(m.size()) - 1;
  Rij rij{};
  for (int van = 0; van < filialen; ++van) {
    for (int naar = 0; naar < filialen && geeft_nog(m, van); ++naar) {
      for (const uint8_t maat : advies.maten) verplaats(m, van, naar, maat, INT32_MAX, rij);
      schrijf_rij(van, naar, rij);
    }
  }
}

MaatMatrix kopie() {
  try {
    return advies.m_voorlopig;
  } catch (const std::bad_alloc&) {
    ctl_nomem(ADV_MODULE, NR_KOPIE);
  }
}

}  // namespace

void opdracht_schrijven() {
  MaatMatrix m = kopie();
  houd_regels(m);
  vul_aan(m);
  adv_maak_leeg(tpck);
}

void opdracht_regel(int van, int naar, std::span<const uint32_t, MATEN> aantallen) {
  DtPick rec{};
  rec.vanfil = static_cast<uint8_t>(van);
  rec.naarfil = static_cast<uint8_t>(naar);
  rec.nr = ser_rec.nr;
  const DtPick leeg = rec;
  if (!IXREADL(dtpick, &rec)) rec = leeg;
  for (size_t i = 0; i < aantallen.size(); ++i) rec.aantal[i] += aantallen[i];
  IXWRITE(dtpick, &rec);
}

void opdrachten_wissen(const Serienr& nr) {
  const OpSleutel sleutel(dtpick, KEY_PICK_SERIE);
  DtPick rec{};
  rec.nr = nr;
  for (bool er = IXFIRSTR(dtpick, &rec, SERIEVELDEN); er; er = IXNEXT(dtpick, &rec, SERIEVELDEN)) {
    if (rec.opdrachtnr != 0)
      rec.opdrachtnr = UINT32_MAX;  // on to the next pair: its provisional line stands first
    else
      verwijder(dtpick, rec);
  }
}

void aanvul_wissen(const Serienr& nr) {
  DtAanv rec{nr, 0};
  for (bool er = IXFIRSTR(dtaanv, &rec, SERIEVELDEN); er; er = IXNEXT(dtaanv, &rec, SERIEVELDEN))
    verwijder(dtaanv, rec);
}
