// "Uitvoeren adviezen": what the provisional order lines of selected series ask for is sent
// straight from stock, and the search lists tell the branches which labels to look for.
//
// The run may be broken off between any two writes. A label leaves by itself (see sub/muteren), and
// right behind it the line on disk asks for one piece less: whoever runs the command again finishes
// the label in hand first, since it is still the first in stock, and sends what is left. The line
// goes last.
#include <cstring>

#include "isam/base.h"
#include "main/batchvw.h"
#include "main/saldo.h"
#include "main/saldo_pas.h"
#include "main/teksten.h"
#include "main/zoeklijst.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/bitarr.h"
#include "sub/ioeti.h"
#include "sub/muteren.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/voortgang.h"

namespace {

constexpr int KEY_SERIE = 2;  // DTPICK by series, sending and receiving branch
constexpr int SERIEVELDEN = 3;

struct Pas {
  OrderParen paren;  // the orders of the run
  SerieVoortgang voortgang{};
  bool gezocht = false, gevonden = false;  // of the group's series
};

struct Stuk {
  int32_t nummer;
  Etiket etiket;
};

/// Whether the group's series is selected; looked up once.
bool serie_gekozen(Pas& pas) {
  if (pas.gezocht) return pas.gevonden;
  pas.gezocht = true;
  DtSer rec{};
  rec.nr = pick_rec.nr;
  pas.gevonden = IXREAD(dtser_opzoek, &rec);
  if (pas.gevonden) pas.voortgang.toon(pick_rec.nr);
  return pas.gevonden;
}

/// A line between two branches of the chain; others are passed over.
bool paar_bestaat(const DtPick& regel) {
  const size_t b = werk8.size() - 1;
  return regel.vanfil < b && regel.naarfil < b && regel.vanfil != regel.naarfil;
}

/// The labels in stock that serve a line, first to last. The whole chain is read before anything
/// is written: false when it leads astray.
bool zoek_stukken(const DtPick& regel, std::vector<Stuk>* uit) {
  uint32_t wens[MATEN];
  memcpy(wens, regel.aantal, sizeof wens);
  EtiReeks reeks(ser_rec);
  while (reeks.volgende()) {
    const Etiket& e = reeks.etiket;
    const bool past = e.status == ETI_VOORRAAD && e.onderweg == 0 && e.filiaal == regel.vanfil;
    if (!past || e.maat == 0 || e.maat >= MATEN || wens[e.maat] == 0) continue;
    --wens[e.maat];
    uit->push_back({reeks.nummer, e});
  }
  return reeks.geheel;
}

/// The line in pick_rec again, locked; false when it went away meanwhile.
bool regel_vast() {
  const DtPick gezocht = pick_rec;
  if (IXREADL(dtpick, &pick_rec)) return true;
  pick_rec = gezocht;
  IXRELEASE(dtpick, &pick_rec);
  return false;
}

void verzend(const Stuk& stuk, const Zending& z) {
  Etiket e = stuk.etiket;
  zend_etiket(stuk.nummer, &e, z, ser_rec.maatregistratie == 0);
  --pick_rec.aantal[stuk.etiket.maat];
  IXPUTREC(dtpick, &pick_rec);
  IXLOCK(dtpick, 3);
}

/// One provisional line of a selected series: sends, and takes the line away. False when there was
/// nothing to do it with.
bool voer_uit(Pas& pas) {
  pas.gevonden = serie_wacht(pick_rec.nr);
  if (!pas.gevonden) return false;
  if (!regel_vast()) {
    serie_los();
    return false;
  }
  std::vector<Stuk> stukken;
  if (!zoek_stukken(pick_rec, &stukken)) {
    pas.voortgang.onleesbaar(pick_rec.nr);
    pas.gevonden = false;
    IXRELEASE(dtpick, &pick_rec);
    serie_los();
    return false;
  }
  uint32_t gevraagd[MATEN];
  memcpy(gevraagd, pick_rec.aantal, sizeof gevraagd);
  const Zending z{pick_rec.vanfil, pick_rec.naarfil, order_nummer(pas.paren, pick_rec),
                  date_today(), 1};
  for (const Stuk& stuk : stukken) verzend(stuk, z);
  if (stukken.empty())
    serie_los();
  else
    serie_schrijf();
  matrix_add(werk8, pick_rec.naarfil, std::span<const uint32_t, MATEN>(gevraagd));
  IXDELETE(dtpick, &pick_rec);
  return true;
}

/// All lines of the series whose first line stands in pick_rec.
void neem_groep(Pas& pas) {
  const Serienr nr = pick_rec.nr;
  bool iets = false;
  matrix_wis(werk8);
  pas.gezocht = pas.gevonden = false;
  do {
    if (!bit_test(adv_rec.vanuit_filialen, pick_rec.vanfil)) {
      pick_rec.naarfil = voorbij_zender(pick_rec.naarfil);
    } else if (bit_test(adv_rec.aanvul_filialen, pick_rec.naarfil) && pick_rec.opdrachtnr == 0 &&
               paar_bestaat(pick_rec) && serie_gekozen(pas)) {
      iets = voer_uit(pas) || iets;
    }
  } while (!scr_interrupted() && IXNEXT(dtpick, &pick_rec, SERIEVELDEN));
  if (iets) aanv_afboek(nr);
}

}  // namespace

std::vector<Uitvoering> uitvoer_pas() {
  Pas pas;
  const OpSleutel sleutel(dtpick, KEY_SERIE);
  memset(&pick_rec, 0, sizeof pick_rec);
  while (!scr_interrupted() && IXNEXT(dtpick, &pick_rec)) neem_groep(pas);
  pas.voortgang.einde();
  std::vector<Uitvoering> uit;
  for (const auto& [paar, nummer] : pas.paren) {
    uit.push_back({paar.first, saldo_splits ? int{paar.second} : -1, nummer});
  }
  return uit;
}

void uitvoer_lijsten(const std::vector<Uitvoering>& orders) {
  for (const Uitvoering& order : orders) {
    zoek_maak(ZoekTabel::zoek, saldo_sort);
    zoek_vul(order.van, order.naar, order.nummer);
    zoeklijst(OpdrachtSoort::zoeklijst, order.nummer);
  }
  IXREMOVE(privaat.tp);
}

void adviezen_uitvoeren() {
  hdr_line('C', "%s", txt(T_MENU_UITVOEREN));
  if (!vw_claim_excl(9)) return;
  const Werkclaim_excl claim9(9);
  if (!vw_claim_excl(10)) return;
  const Werkclaim_excl claim10(10);
  if (!vw_claim(11, true)) return;
  const Werkclaim claim11(11);
  if (!vw_claim(12, true)) return;
  const Werkclaim claim12(12);
  adv_rec = adv_sets[ADV_SALDO];
  saldo_opdrachtnr = 0;
  selecteer_series();
  adv_sets[ADV_SALDO] = adv_rec;
  hdr_line('C', "%s", txt(T_MENU_UITVOEREN));
  const std::vector<Uitvoering> orders = uitvoer_pas();
  if (orders.empty()) return msg_info(txt(T_OPDRUK_GEEN));
  if (!XPRT_OPEN(PRT_SCHERM, PRT_132, nullptr)) return;
  uitvoer_lijsten(orders);
  print_close("");
}
