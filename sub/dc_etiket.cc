// The second phase: the transactions of labels, a series at a time under its record lock.
//
// A run may be broken off between any two writes, and the operator then starts it again with the
// same file. So a move writes what it would write again unchanged before what makes it a done one:
// the date of the series first, a receipt before its transit record is finished, the reversal of a
// financial line before the transit record goes, and the label itself last. What was done shows in
// the second run as a remark that the label is there or on its way already.
#include <array>
#include <vector>

#include "isam/base.h"
#include "scr/scr.h"
#include "sub/dc_intern.h"
#include "sub/leesstam.h"
#include "sub/tabellen.h"

namespace {

bool transit_aan() { return sys_rec20.transit != 0; }

/// In stock, or missed at the last stocktaking and now reported all the same.
bool inboekbaar(const Etiket& e) {
  return e.status == ETI_VOORRAAD || (e.status == ETI_CORRECTIES && e.reden == 0);
}

void schrijf(DcEtiket& l) {
  if (dc.schrijven) ioeti('W', &l.nummer, &l.e);
}

bool paar(const DtGo& go, const DcTrans& t) {
  return go.vanfil == t.vanfil && go.naarfil == t.naarfil;
}
/// On its way by this transaction's pair.
bool op_weg(const Etiket& e, const DcTrans& t) {
  return e.onderweg != 0 && e.filiaal == t.vanfil && e.doel == t.naarfil;
}

/// The counters follow at once: they are right again one write later.
void terug_in_voorraad(DcEtiket& l, const DcTrans& t) {
  dc_meld(DcOpm::inventarisatie, t, {.etiket = &l.e});
  etiket_terug_voorraad(&l.e, dc.schrijven);
  schrijf(l);
  if (dc.schrijven) IXWRITEKEEP(dtser, &ser_rec);
}

/// True when the label may leave or enter: it stands where the transaction says, or elsewhere with
/// a remark. It is refused when it stands at the destination.
bool plaats_mag(const DcEtiket& l, const DcTrans& t) {
  if (l.e.filiaal == t.naarfil) {
    dc_meld(DcOpm::aanwezig, t);
    return false;
  }
  if (l.e.filiaal != t.vanfil) dc_meld(DcOpm::afwijkend, t, {.etiket = &l.e});
  return true;
}

/// On its way elsewhere: that trip is undone, and the label rests where it came from.
void keer_om(DcEtiket& l, const DcTrans& t) {
  dc_meld(DcOpm::onderweg, t, {.etiket = &l.e});
  uint8_t plaats = l.e.filiaal;
  if (dc.schrijven && l.bekend) {
    plaats = fin_terug(l.nummer, l.go.vanfil, l.go.naarfil, t.datum);
    go_verwijder(l.nummer);
  }
  etiket_ontvangen(&l.e, plaats);
}

bool zend(DcEtiket& l, const DcTrans& t) {
  if (!inboekbaar(l.e)) {
    dc_meld(DcOpm::status, t, {.etiket = &l.e});
    return false;
  }
  if (l.e.status == ETI_CORRECTIES) terug_in_voorraad(l, t);
  if (l.e.onderweg != 0) {
    dc_meld(op_weg(l.e, t) ? DcOpm::onderweg : DcOpm::reeds_onderweg, t, {.etiket = &l.e});
    return false;
  }
  if (!plaats_mag(l, t)) return false;
  dc_zend(l, t);
  return true;
}

bool ontvang_weg(DcEtiket& l, const DcTrans& t) {
  const bool weg = l.e.status == ETI_VERKOPEN || l.e.status == ETI_CORRECTIES;
  if (!transit_aan() || !weg || l.e.vrkdat < t.datum || l.e.filiaal != t.naarfil || !l.bekend ||
      !paar(l.go, t)) {
    dc_meld(DcOpm::status, t, {.etiket = &l.e});
    return false;
  }
  dc_meld(l.e.status == ETI_VERKOPEN ? DcOpm::verkocht : DcOpm::gecorrigeerd, t, {.etiket = &l.e});
  dc_ontvang_weg(l, t);
  return true;
}

bool ontvang(DcEtiket& l, const DcTrans& t) {
  if (!inboekbaar(l.e)) return ontvang_weg(l, t);
  if (op_weg(l.e, t)) {
    if (l.e.status == ETI_CORRECTIES) terug_in_voorraad(l, t);
    dc_ontvang_onderweg(l, t);
    return true;
  }
  if (l.e.onderweg != 0) {
    keer_om(l, t);
  } else {
    if (l.e.status == ETI_CORRECTIES) terug_in_voorraad(l, t);
    if (!plaats_mag(l, t)) return false;
  }
  dc_ontvang_los(l, t);
  return true;
}

}  // namespace

// Moves -------------------------------------------------------------------------------------------

void dc_datum(uint16_t datum) {
  if (ser_rec.datum_mutatie >= datum) return;
  ser_rec.datum_mutatie = datum;
  if (dc.schrijven) IXWRITEKEEP(dtser, &ser_rec);
}

void dc_zend(DcEtiket& l, const DcTrans& t) {
  const Zending z = dc_zending(t);
  dc_datum(t.datum);
  if (dc.schrijven)
    zend_etiket(l.nummer, &l.e, z, true);
  else
    etiket_gezonden(&l.e, z);
  l.bekend = true;
  l.go = DtGo{};
  l.go.vanfil = z.van;
  l.go.naarfil = z.naar;
  l.go.opdrachtnr = z.opdrachtnr;
}

void dc_ontvang_los(DcEtiket& l, const DcTrans& t) {
  dc_datum(t.datum);
  if (dc.schrijven)
    ontvang_etiket(l.nummer, &l.e, dc_zending(t));
  else
    etiket_ontvangen(&l.e, t.naarfil);
  l.bekend = false;
}

void dc_ontvang_onderweg(DcEtiket& l, const DcTrans& t) {
  dc_datum(t.datum);
  if (dc.schrijven) {
    io_nieuw(l.nummer, dc_zending(t), 1);
    if (l.bekend && paar(l.go, t)) go_afwerken(l.nummer);
    if (l.bekend && !paar(l.go, t)) go_verwijder(l.nummer);
  }
  l.bekend = false;
  etiket_ontvangen(&l.e, t.naarfil);
  schrijf(l);
}

void dc_ontvang_weg(DcEtiket& l, const DcTrans& t) {
  if (dc.schrijven) {
    io_nieuw(l.nummer, dc_zending(t), 1);
    go_afwerken(l.nummer);
  }
  l.bekend = false;
}

bool dc_lees_etiket(const Serienr& nr, int32_t nummer, DcEtiket* l) {
  *l = DcEtiket{};
  l->nummer = nummer;
  if (!ioeti('R', &nummer, &l->e) || !(l->e.nr == nr)) return false;
  l->bekend = go_lees(nummer) && go_rec.afgewerkt == 0;
  l->go = go_rec;
  return true;
}

// The walk ----------------------------------------------------------------------------------------

DcSerie::~DcSerie() {
  if (!vast) return;
  if (dc.schrijven)
    serie_schrijf();
  else
    serie_los();
}

bool dc_sla_over(ICB* tabel, DcTrans* t) {
  const Serienr nr = t->nr;
  DtSer serie{};
  const bool er = lees_serie(dtser, &serie, nr);
  bool meer = true;
  while (meer && t->nr == nr) {
    if (!er) dc_meld(DcOpm::geen_serie, *t);
    meer = IXNEXT(tabel, t);
  }
  return meer;
}

namespace {

/// The label, and what its chain of the day waits for: with the transit administration off a send
/// arrives at once, and its receive, which says the same, comes before anything else.
struct Keten {
  DcEtiket l;
  bool wens = false;
  uint8_t wens_van = 0, wens_naar = 0;

  DcStand stand() const {
    return {transit_aan() && l.e.onderweg != 0,
            l.e.filiaal,
            l.e.doel,
            l.bekend,
            l.go.opdrachtnr,
            wens,
            wens_van,
            wens_naar};
  }
  void voer_uit(const DcTrans& t) {
    const bool gedaan = t.soort == DC_ZENDEN ? zend(l, t) : ontvang(l, t);
    if (!gedaan) return;
    wens = t.soort == DC_ZENDEN && !transit_aan();
    wens_van = t.vanfil;
    wens_naar = t.naarfil;
  }
};

void in_volgorde(Keten& k, std::span<const DcTrans> dag) {
  std::array<bool, DC_DAG> gedaan{};
  k.wens = false;
  for (size_t keer = 0; keer < dag.size(); ++keer) {
    const size_t i = dc_volgende(dag, std::span(gedaan).first(dag.size()), k.stand());
    gedaan[i] = true;
    k.voer_uit(dag[i]);
  }
}

/// The transactions of one label on one day; `t` holds the first. In the end `t` holds the first
/// behind them; false when there is none.
bool doe_dag(Keten& k, DcTrans* t) {
  const uint32_t etiket = t->etiket;
  const uint16_t datum = t->datum;
  const Serienr nr = t->nr;
  std::array<DcTrans, DC_DAG> dag;
  size_t n = 0;
  bool meer = true;
  const auto hoort = [&] {
    return meer && t->nr == nr && t->etiket == etiket && t->datum == datum;
  };
  for (; hoort() && n < DC_DAG; meer = IXNEXT(dc.etiketten, t)) dag[n++] = *t;
  if (!hoort()) {
    in_volgorde(k, std::span(dag).first(n));
    return meer;
  }
  for (const DcTrans& een : dag) k.voer_uit(een);
  for (; hoort(); meer = IXNEXT(dc.etiketten, t)) k.voer_uit(*t);
  return meer;
}

bool doe_etiket(DcTrans* t) {
  const uint32_t etiket = t->etiket;
  const Serienr nr = t->nr;
  Keten k;
  const bool er = dc_lees_etiket(nr, static_cast<int32_t>(etiket), &k.l);
  bool meer = true;
  while (meer && t->nr == nr && t->etiket == etiket) {
    if (er) {
      meer = doe_dag(k, t);
    } else {
      dc_meld(DcOpm::geen_etiket, *t);
      meer = IXNEXT(dc.etiketten, t);
    }
  }
  return meer;
}

bool doe_serie(DcTrans* t) {
  const DcSerie serie(t->nr);
  if (!serie.vast) return dc_sla_over(dc.etiketten, t);
  const Serienr nr = t->nr;
  bool meer = true;
  while (meer && t->nr == nr && !scr_interrupted()) meer = doe_etiket(t);
  return meer;
}

}  // namespace

void dc_etiketten() {
  IXSWITCH(dc.etiketten, 2);
  DcTrans t{};
  bool meer = IXFIRSTR(dc.etiketten, &t);
  while (meer && !scr_interrupted()) meer = doe_serie(&t);
}
