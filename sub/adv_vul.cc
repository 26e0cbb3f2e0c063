// Loading the advice of one series. The label chain is read once: what DTAANV and DTGO say of
// labels is gathered before, and looked up as each label comes by. So the time of a load is linear
// in the labels of the series, whatever else refers to them.
#include "sub/adv_vul.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <tuple>
#include <vector>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/adv_vul_intern.h"
#include "sub/bitarr.h"
#include "sub/ioeti.h"
#include "sub/leesstam.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"

Kleur adv_kleur;
DtDoelgr adv_doelgroep;
MaatHandle* adv_maten;

namespace {

constexpr uint8_t GO_SOORT = 1;
constexpr uint8_t OPTIE_PER_MAAT = 4;  // of the system record: fair share kept per size
constexpr uint8_t ART_PUUR = 1, ART_ALLEEN_ONDER = 2;

ICB* doelgroepen;
int pick_sleutel, go_sleutel;  // to give back

/// An order's pair of branches.
using Opdrachtpaar = std::tuple<uint32_t, uint8_t, uint8_t>;
using Aantallen = std::array<uint32_t, MATEN>;

/// A label that is said to be on its way for an order.
struct Onderweg {
  uint32_t etiket;
  Opdrachtpaar opdracht;
};

/// What the load of a series gathers beside the matrices.
struct Lading {
  std::vector<uint32_t> aanvul;    // labels of DTAANV, in order
  std::vector<Onderweg> onderweg;  // in order of label
  std::map<Opdrachtpaar, Aantallen> uitgevoerd;
  int vandaag = date_today();
};

/// Sums wrap like the records' own 32 bits: broken files give wrong numbers and nothing else.
void tel(MaatMatrix& m, int filiaal, int maat, uint32_t aantal) {
  int32_t& cel = m[static_cast<size_t>(filiaal)][static_cast<size_t>(maat)];
  cel = static_cast<int32_t>(static_cast<uint32_t>(cel) + aantal);
}
bool is_filiaal(int f) { return f < advies.filialen(); }
bool is_maat(int m) { return m >= 1 && m < MATEN; }

// What refers to the labels -----------------------------------------------------------------------

void lees_aanvul(Lading& l) {
  DtAanv rec{ser_rec.nr, 0};
  for (bool er = IXFIRSTR(dtaanv, &rec, SERIEVELDEN); er; er = IXNEXT(dtaanv, &rec, SERIEVELDEN))
    l.aanvul.push_back(rec.etiket);
  std::ranges::sort(l.aanvul);
}

void lees_onderweg(Lading& l) {
  const OpSleutel sleutel(dtgo, KEY_GO_SERIE);
  DtGo rec{};
  rec.nr = ser_rec.nr;
  for (bool er = IXFIRSTR(dtgo, &rec, SERIEVELDEN); er; er = IXNEXT(dtgo, &rec, SERIEVELDEN)) {
    if (rec.opdrachtnr == 0 || rec.soort != GO_SOORT || rec.afgewerkt != 0) continue;
    l.onderweg.push_back({rec.etiket, {rec.opdrachtnr, rec.vanfil, rec.naarfil}});
  }
  std::ranges::sort(l.onderweg, {}, &Onderweg::etiket);
}

// The labels --------------------------------------------------------------------------------------

bool in_periode(const Lading& l, uint16_t datum) {
  return datum > l.vandaag - adv_rec.vrk_dagen && datum <= l.vandaag;
}

void boek_status(const Lading& l, const Etiket& e) {
  const auto plus = [&e](MaatMatrix& m) { tel(m, e.filiaal, e.maat, 1); };
  switch (e.status) {
    case ETI_NOTA:
      plus(advies.m_order);
      if (e.ontdat >= sys_rec1.datumlimiet) plus(advies.m_besteld);
      return;
    case ETI_VOORRAAD:
      plus(advies.m_voorraad);
      if (e.onderweg == 0) break;
      plus(advies.m_uit);
      if (is_filiaal(e.doel)) tel(advies.m_in, e.doel, e.maat, 1);
      break;
    case ETI_VERKOPEN:
      plus(advies.m_verkocht);
      if (in_periode(l, e.vrkdat)) plus(advies.m_vrk_periode);
      break;
    case ETI_CORRECTIES:
      plus(advies.m_correctie);
      break;
    default:
      return;
  }
  plus(advies.m_ontvangen);
}

void boek_etiket(Lading& l, uint32_t nummer, const Etiket& e) {
  if (!is_maat(e.maat)) return;
  const auto o = std::ranges::lower_bound(l.onderweg, nummer, {}, &Onderweg::etiket);
  if (o != l.onderweg.end() && o->etiket == nummer) ++l.uitgevoerd[o->opdracht][e.maat];
  if (!is_filiaal(e.filiaal)) return;
  boek_status(l, e);
  if (std::ranges::binary_search(l.aanvul, nummer)) tel(advies.m_aanvul, e.filiaal, e.maat, 1);
}

/// One walk of the chain. False when it leads into another series or back into itself; a block that
/// cannot be read ends the program.
bool lees_etiketten(Lading& l) {
  EtiReeks reeks(ser_rec);
  while (reeks.volgende()) boek_etiket(l, static_cast<uint32_t>(reeks.nummer), reeks.etiket);
  return reeks.geheel;
}

// The order lines ---------------------------------------------------------------------------------

void bewaar_uitgevoerd(const Lading& l) {
  for (const auto& [opdracht, aantallen] : l.uitgevoerd) {
    DtPick rec{};
    rec.nr = ser_rec.nr;
    std::tie(rec.opdrachtnr, rec.vanfil, rec.naarfil) =
        std::tuple<uint32_t, uint8_t, uint8_t>(opdracht);
    memcpy(rec.aantal, aantallen.data(), sizeof rec.aantal);
    IXWRITE(tmpgo, &rec);
  }
}

/// What a definitive line has still to go.
void boek_definitief(const Lading& l, const DtPick& rec) {
  const auto gedaan = l.uitgevoerd.find({rec.opdrachtnr, rec.vanfil, rec.naarfil});
  for (int m = 1; m < MATEN; ++m) {
    const uint32_t besteld = rec.aantal[m];
    const uint32_t weg = gedaan == l.uitgevoerd.end() ? 0 : gedaan->second[static_cast<size_t>(m)];
    if (besteld <= weg) continue;
    tel(advies.m_uit, rec.vanfil, m, besteld - weg);
    tel(advies.m_in, rec.naarfil, m, besteld - weg);
  }
}

void boek_voorlopig(const DtPick& rec) {
  for (int m = 1; m < MATEN; ++m) {
    const uint32_t aantal = rec.aantal[m];
    if (aantal == 0) continue;
    tel(advies.m_voorlopig, rec.vanfil, m, 0 - aantal);
    tel(advies.m_voorlopig, rec.naarfil, m, aantal);
    TpckRec regel{rec.vanfil, rec.naarfil, static_cast<uint8_t>(m), 0,
                  static_cast<int32_t>(std::min<uint32_t>(aantal, INT32_MAX))};
    IXWRITE(tpck, &regel);
  }
}

void lees_opdrachten(const Lading& l) {
  const OpSleutel sleutel(dtpick, KEY_PICK_SERIE);
  DtPick rec{};
  rec.nr = ser_rec.nr;
  for (bool er = IXFIRSTR(dtpick, &rec, SERIEVELDEN); er; er = IXNEXT(dtpick, &rec, SERIEVELDEN)) {
    if (!is_filiaal(rec.vanfil) || !is_filiaal(rec.naarfil)) continue;
    if (rec.opdrachtnr == 0)
      boek_voorlopig(rec);
    else
      boek_definitief(l, rec);
  }
}

// The masters -------------------------------------------------------------------------------------

void lees_doelgroep() {
  if (adv_doelgroep.letter == ser_rec.doelgroep && ser_rec.doelgroep != 0) return;
  adv_doelgroep = DtDoelgr{};
  adv_doelgroep.letter = ser_rec.doelgroep;
  if (!IXREAD(doelgroepen, &adv_doelgroep)) adv_doelgroep = DtDoelgr{};
}

/// An article group that is not there has no warehouse and no aims.
void neem_groep(bool bekend) {
  AdvGroep& g = advies.groep;
  g = AdvGroep{};
  if (!bekend) return;
  if (is_filiaal(art_rec.magazijn)) g.magazijn = art_rec.magazijn;
  g.pure_magazijn = (art_rec.vlaggen & ART_PUUR) != 0;
  g.alleen_onder = (art_rec.vlaggen & ART_ALLEEN_ONDER) != 0;
  g.verdeelsoort = art_rec.soort;
  g.minimum = art_rec.minimum;
  g.magazijn_pct = art_rec.magazijn_pct;
  std::copy_n(art_rec.streef, g.streef.size(), g.streef.begin());
}

void neem_maten() {
  advies.maten.clear();
  for (const MaatRec& m : mtlijst(mtserie(&adv_maten, ser_rec))) advies.maten.push_back(m.maat);
}

void lees_stam() {
  neem_groep(lees_artikel(dtart, &art_rec, ser_rec.nr.artgroep));
  lees_merk(dtmerk, &merk_rec, ser_rec.merk);
  lees_lev(dtlev, &lev_rec, ser_rec.leverancier);
  lees_kleur(&adv_kleur, ser_rec.nr.kleur);
  lees_doelgroep();
  neem_maten();
  advies.bron_soort = adv_rec.bron_soort;
  memcpy(advies.model, ser_rec.model, sizeof advies.model);
}

// The matrices of a command -----------------------------------------------------------------------

struct Rijen {
  int nummer;  // named when memory runs out
  MaatMatrix Advies::*matrix;
};
constexpr Rijen RIJEN[] = {
    {1, &Advies::m_ontvangen}, {1, &Advies::m_order},      {2, &Advies::m_voorraad},
    {2, &Advies::m_verkocht},  {7, &Advies::m_correctie},  {7, &Advies::m_vrk_periode},
    {8, &Advies::m_uit},       {8, &Advies::m_in},         {12, &Advies::m_besteld},
    {12, &Advies::m_aanvul},   {13, &Advies::m_voorlopig}, {3, &Advies::r_aanvul},
    {4, &Advies::r_switch},    {5, &Advies::r_herverdeel},
};
constexpr int NR_AANDEEL = 11, NR_LIJST = 13;

void rijen_maak() {
  try {
    adv_maak(advies, filialen());
  } catch (const std::bad_alloc&) {
    const auto* r =
        std::ranges::find_if(RIJEN, [](const Rijen& rij) { return (advies.*rij.matrix).empty(); });
    ctl_nomem(ADV_MODULE, r == std::end(RIJEN) ? NR_AANDEEL : r->nummer);
  }
}

bool vul() {
  adv_wis(advies);
  adv_maak_leeg(tpck);
  adv_maak_leeg(tmpgo);
  lees_stam();
  Lading lading;
  lees_aanvul(lading);
  lees_onderweg(lading);
  const bool geheel = lees_etiketten(lading);
  bewaar_uitgevoerd(lading);
  lees_opdrachten(lading);
  adv_totalen(advies);
  adv_verzamelingen(advies, adv_rec.vanuit_filialen, adv_rec.aanvul_filialen, merk_rec.filialen);
  return geheel;
}

}  // namespace

void adv_open() {
  advies = Advies{};
  advies.verdeel.per_maat = (sys_rec1.opties3 & OPTIE_PER_MAAT) != 0;
  rijen_maak();
  pick_sleutel = dtpick->block.key_number;
  go_sleutel = dtgo->block.key_number;
  IXSWITCH(dtpick, KEY_PICK_SERIE);
  IXSWITCH(dtgo, KEY_GO_SERIE);
  doelgroepen = tabel_open("DTDOELGR", IX_LEES);
  tmpgo = IXOPEN_LENGTE(privaat.tmpgo, IX_GEDEELD, TABEL_TMPGO.lengte);
}

void adv_sluit() {
  IXSWITCH(dtpick, pick_sleutel);
  IXSWITCH(dtgo, go_sleutel);
  for (ICB** icb : {&tmpgo, &doelgroepen}) {
    IXCLOSE(*icb);
    *icb = nullptr;
  }
  mtlos(&adv_maten);
  advies = Advies{};
}

bool adv_vul() {
  try {
    return vul();
  } catch (const std::bad_alloc&) {
    ctl_nomem(ADV_MODULE, NR_LIJST);
  }
}
