// The pass over the order lines by series: one lookup a series, and one keyed read past each
// sending branch that is not wanted.
#include "main/saldo_pas.h"

#include <cstring>

#include "isam/base.h"
#include "main/saldo.h"
#include "main/verzamel.h"
#include "scr/scr.h"
#include "sub/bitarr.h"
#include "sub/ioeti.h"
#include "sub/leesstam.h"
#include "sub/opdrnr.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/voortgang.h"

namespace {

constexpr int KEY_SERIE = 2;  // DTPICK by series, sending and receiving branch
constexpr int SERIEVELDEN = 3;

struct Pas {
  int mode;
  ICB* verzamel;
  OrderParen paren{};
  SerieVoortgang voortgang{};
  bool gevonden = false;  // the series of the group is selected
};

bool regel_past(const Pas& pas, const DtPick& regel) {
  switch (pas.mode) {
    case 1:
    case 2:
      return regel.opdrachtnr == 0;
    case 5:
      return regel.opdrachtnr == saldo_opdrachtnr;
    default:
      return false;
  }
}

/// Looks the group's series up once, through the index of the selected series.
void zoek_serie(Pas& pas) {
  ser_rec.nr = pick_rec.nr;
  pas.gevonden = IXREAD(dtser_opzoek, &ser_rec);
  if (!pas.gevonden) return;
  pas.voortgang.toon(pick_rec.nr);
  lees_artikel(dtart, &art_rec, ser_rec.nr.artgroep);
  lees_merk(dtmerk, &merk_rec, ser_rec.merk);
}

/// Gives a provisional line its order number and date; false when it went away meanwhile.
bool maak_definitief(Pas& pas) {
  const uint32_t nummer = order_nummer(pas.paren, pick_rec);
  if (!IXREADL(dtpick, &pick_rec)) {
    IXRELEASE(dtpick, &pick_rec);
    return false;
  }
  const DtPick oud = pick_rec;
  pick_rec.opdrachtnr = nummer;
  pick_rec.orderdatum = date_today();
  if (IXUPDATE(dtpick, &pick_rec)) return true;
  // The counter has come round to an order of long ago that was never dropped: this line takes its
  // place, and only then goes itself.
  IXWRITE(dtpick, &pick_rec);
  verwijder(dtpick, oud);
  return true;
}

/// One line of a group that passed the branch maps.
void neem_regel(Pas& pas) {
  if (!regel_past(pas, pick_rec)) return;
  if (ser_rec.nr.artgroep == 0) zoek_serie(pas);
  if (!pas.gevonden) return;
  if (pas.mode == 2 && !maak_definitief(pas)) return;
  Verzamel regel = verzamel_regel(pick_rec, ser_rec, merk_rec);
  IXWRITE(pas.verzamel, &regel);
  if (pas.mode == 2) {
    uint32_t rij[MATEN];  // the record is packed
    memcpy(rij, regel.aantal, sizeof rij);
    matrix_add(werk8, pick_rec.naarfil, std::span<const uint32_t, MATEN>(rij));
  }
}

/// All lines of the series whose first line stands in pick_rec.
void neem_groep(Pas& pas) {
  if (pas.mode == 2) matrix_wis(werk8);
  memset(&ser_rec, 0, sizeof ser_rec);
  pas.gevonden = false;
  do {
    if (!bit_test(adv_rec.vanuit_filialen, pick_rec.vanfil)) {
      pick_rec.naarfil = voorbij_zender(pick_rec.naarfil);
    } else if (bit_test(adv_rec.aanvul_filialen, pick_rec.naarfil)) {
      neem_regel(pas);
    }
    if (scr_interrupted()) return;
  } while (IXNEXT(dtpick, &pick_rec, SERIEVELDEN));
}

}  // namespace

uint32_t order_nummer(OrderParen& paren, const DtPick& regel) {
  const uint8_t tweede = saldo_splits ? regel.naarfil : static_cast<uint8_t>(werk8.size() - 1);
  const auto [paar, nieuw] = paren.try_emplace({regel.vanfil, tweede}, 0);
  if (nieuw) paar->second = opdrnr_nieuw();
  return paar->second;
}

void saldo_pass(int mode) {
  Pas pas{mode, nullptr};
  // The table carries the terminal's number: nobody else writes it, so no lock is needed per line.
  pas.verzamel = IXOPEN_LENGTE(privaat.tp, IX_EXCLUSIEF, sizeof(Verzamel));
  IXBULK('O', pas.verzamel, nullptr);
  const OpSleutel sleutel(dtpick, KEY_SERIE);
  memset(&pick_rec, 0, sizeof pick_rec);
  while (!scr_interrupted() && IXNEXT(dtpick, &pick_rec)) {
    neem_groep(pas);
    if (mode == 2 && pas.gevonden) aanv_afboek(ser_rec.nr);
  }
  IXBULK('C', pas.verzamel, nullptr);
  IXCLOSE(pas.verzamel);
}

void aanv_afboek(const Serienr& nr) {
  const uint16_t grens = sys_rec20.dagen_bewaard != 0
                             ? static_cast<uint16_t>(date_today() - sys_rec20.dagen_bewaard)
                             : DATUM_LAATSTE;
  const size_t totaal = werk8.size() - 1;
  aanv_rec = DtAanv{nr, 0};
  for (bool er = IXFIRSTR(dtaanv, &aanv_rec, SERIEVELDEN); er;
       er = IXNEXT(dtaanv, &aanv_rec, SERIEVELDEN)) {
    Etiket etiket{};
    int32_t nummer = static_cast<int32_t>(aanv_rec.etiket);
    bool weg = !ioeti('R', &nummer, &etiket);
    if (!weg && etiket.filiaal < totaal && etiket.maat < MATEN &&
        werk8[etiket.filiaal][etiket.maat] >= 1) {
      --werk8[etiket.filiaal][etiket.maat];
      --werk8[etiket.filiaal][0];
      --werk8[totaal][0];
      weg = true;
    } else if (!weg) {
      weg = etiket.vrkdat <= grens && bit_test(adv_rec.aanvul_filialen, etiket.filiaal);
    }
    if (weg) verwijder(dtaanv, aanv_rec);
  }
}
