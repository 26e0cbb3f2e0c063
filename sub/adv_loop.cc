// Which series have an advice that the criteria ask for, one after another. What costs little comes
// first: a series is locked only when its replenishment information and order lines let it through.
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_vul.h"
#include "sub/adv_vul_intern.h"
#include "sub/muteren.h"
#include "sub/pghdl.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int RIJ_NUMMER = 2;
constexpr int32_t MAXIMUM = 99999, MAXIMUM_OUD = 32767;  // "maximum" on the screen

bool heeft_aanvul(const Serienr& nr) {
  DtAanv rec{nr, 0};
  return IXFIRSTR(dtaanv, &rec, SERIEVELDEN);
}

bool heeft_voorlopig(const Serienr& nr) {
  const OpSleutel sleutel(dtpick, KEY_PICK_SERIE);
  DtPick rec{};
  rec.nr = nr;
  for (bool er = IXFIRSTR(dtpick, &rec, SERIEVELDEN); er; er = IXNEXT(dtpick, &rec, SERIEVELDEN)) {
    if (rec.opdrachtnr == 0) return true;
    rec.opdrachtnr = UINT32_MAX;  // the provisional line of a pair stands ahead of its others
  }
  return false;
}

bool opdracht_past(const Serienr& nr) {
  const bool met = adv_rec.met_opdracht != 0, zonder = adv_rec.zonder_opdracht != 0;
  if (met == zonder) return met;
  return heeft_voorlopig(nr) == met;
}

int32_t totaal(const MaatMatrix& m) { return m.back()[0]; }

/// Anything but pieces on order.
bool heeft_stukken() {
  return totaal(advies.m_voorraad) != 0 || totaal(advies.m_verkocht) != 0 ||
         totaal(advies.m_correctie) != 0;
}

bool bereken(int slot) {
  const MaatMatrix& vraag = slot == ADV_HANDMATIG ? advies.m_aanvul : advies.m_vrk_periode;
  return adv_bereken(advies, adv_rec, vraag);
}

/// The series in ser_rec is locked: loads and calculates it; true when it is to be had.
bool laad(int slot, bool toets) {
  if (!adv_vul()) {
    const std::string regel = serie_tekst(ser_rec.nr) + "  " + txt(T_ADVO_ONLEESBAAR);
    ix_hooks.regel(regel.c_str(), 2);
    return false;
  }
  if (toets && (!heeft_stukken() || (slot == ADV_MUTATIES && !adv_selectie()))) return false;
  return bereken(slot) || !toets;
}

void toon_nummer() {
  if (scr_ctx != nullptr) scr_print(A_WAARDE, RIJ_NUMMER, 1, "%s", serie_sleutel(ser_rec.nr));
}

}  // namespace

bool adv_selectie() {
  if (totaal(advies.m_ontvangen) == 0) return false;
  int64_t voorraad = 0, verkocht = 0;
  for (int b = 0; b < advies.filialen(); ++b) {
    if (!pg_test(adv_rec.filialen, b)) continue;
    voorraad += advies.m_voorraad[static_cast<size_t>(b)][0];
    verkocht += advies.m_vrk_periode[static_cast<size_t>(b)][0];
  }
  const auto tussen = [](int64_t n, int32_t van, int32_t tm) { return n >= van && n <= tm; };
  const auto einde = [](int32_t tm) { return tm == MAXIMUM ? INT32_MAX : tm; };
  if (!tussen(voorraad, adv_rec.vrd_van, einde(adv_rec.vrd_tm))) return false;
  if (adv_rec.vrk_soort == 'P') {
    const int64_t stukken = int64_t{totaal(advies.m_ontvangen)} - totaal(advies.m_correctie);
    return tussen(stukken == 0 ? 0 : verkocht * 100 / stukken, adv_rec.vrk_van, adv_rec.vrk_tm);
  }
  const int32_t tm = adv_rec.vrk_tm == MAXIMUM_OUD ? MAXIMUM : adv_rec.vrk_tm;
  return tussen(verkocht, adv_rec.vrk_van, einde(tm));
}

bool adv_neem(int slot, bool toets) {
  const Serienr nr = ser_rec.nr;
  if (toets && slot == ADV_HANDMATIG && !heeft_aanvul(nr)) return false;
  if (toets && !opdracht_past(nr)) return false;
  if (!serie_wacht(nr)) {
    aanvul_wissen(nr);  // of a series that is no more
    return false;
  }
  if (laad(slot, toets)) return true;
  serie_los();
  return false;
}

bool adv_volgende(const AdvLoop& loop, int richting) {
  const DtSer begin = ser_rec;
  DtSer plaats = begin;
  if (scr_ctx != nullptr) scr_intr_reset();
  do {
    ser_rec = plaats;
    const bool er =
        richting == ADV_TERUG ? IXPREV(loop.bron, &ser_rec) : IXNEXT(loop.bron, &ser_rec);
    if (!er) break;
    plaats = ser_rec;  // where the walk is, whatever the locked read finds
    toon_nummer();
    if (adv_neem(loop.slot, true)) return true;
  } while (!scr_interrupted());
  ser_rec = begin;
  return false;
}
