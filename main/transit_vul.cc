// Gathering what is on its way. DTGO is walked by branch pair; of a pair or a sending branch that
// is not wanted one record is read. A record without its label, or whose label has gone to another
// series, is left out: nothing could be done with it.
#include <algorithm>
#include <cstring>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/transit_in.h"
#include "scr/scr.h"
#include "sub/ioeti.h"
#include "sub/iomaat.h"
#include "sub/leesstam.h"
#include "sub/pghdl.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"

bool onderweg_op(const Etiket& e, uint8_t van, uint8_t naar) {
  return e.onderweg != 0 && e.filiaal == van && e.doel == naar;
}

namespace {

constexpr int GO_PAREN = 2;              // DTGO by branch pair and label
constexpr uint32_t SPRONG = 2147483647;  // a label past all those of a pair
constexpr uint8_t SOORTEN = 1;           // mask of the kinds that can be finished
constexpr const char* SORTERING = "AKV";

/// A gathering at work.
struct Vul {
  explicit Vul(ZoekTabel soort) {
    zoek_maak(soort, SORTERING);
    tabel = IXOPEN_LENGTE(privaat.tp, IX_EXCLUSIEF, sizeof(Zoekregel));
    if (scr_ctx != nullptr) scr_intr_reset();
  }
  ~Vul() { IXCLOSE(tabel); }
  Vul(const Vul&) = delete;
  Vul& operator=(const Vul&) = delete;

  void voeg(Zoekregel r) {
    if (IXWRITE(tabel, &r)) ++rijen;
  }
  int uitkomst() const { return afgebroken ? -1 : rijen; }
  bool breekt_af() { return afgebroken = scr_ctx != nullptr && scr_interrupted(); }

  ICB* tabel;
  ZoekSerie serie{dtser_opzoek};
  int rijen = 0;
  bool afgebroken = false;
};

/// Past what is left of a pair, or of a sending branch; never back, whatever the record says.
void spring_paar(DtGo& go) { go.etiket = std::max(go.etiket, SPRONG); }
void spring_filiaal(DtGo& go) {
  go.naarfil = voorbij_zender(go.naarfil);
  spring_paar(go);
}

bool lees_label(const DtGo& go, int32_t* nummer, Etiket* e) {
  *nummer = static_cast<int32_t>(go.etiket);
  return go.etiket < SPRONG && ioeti('R', nummer, e) && e->nr == go.nr;
}

// Cancelling --------------------------------------------------------------------------------------

bool annul_wil(const AnnulGrens& g, const DtGo& go) {
  if (go.soort != g.soort || go.afgewerkt != 0 || go.printdatum != 0) return false;
  const auto past = [](auto grens, auto waarde) { return grens == 0 || grens == waarde; };
  return past(g.zenddatum, go.zenddatum) && past(g.artgroep, go.nr.artgroep) &&
         past(g.kleur, go.nr.kleur) && past(g.volgnr, go.nr.volgnr);
}

/// True when the branches have settled this send: its last financial line says so.
bool afgerekend(const DtGo& go) {
  const OpSleutel sleutel(dtfin, 1);
  DtFin fin{};
  fin.vanfil = go.vanfil;
  fin.naarfil = go.naarfil;
  fin.datum = go.zenddatum;
  fin.etiket = go.etiket;
  fin.regel = UINT32_MAX;
  return IXPREV(dtfin, &fin, 4) && fin.afgerekend != 0;
}

/// Not at rest somewhere else: on its way, at its destination while nothing travels in the books,
/// or sold or corrected there.
bool annul_staat(const DtGo& go, const Etiket& e) {
  if (onderweg_op(e, go.vanfil, go.naarfil)) return true;
  if (e.status > ETI_VOORRAAD) return true;
  return sys_rec20.transit == 0 && e.status == ETI_VOORRAAD && e.filiaal == go.naarfil;
}

std::string zonder_blanks(const char* veld, size_t n) {
  std::string tekst = veld_tekst(veld, n);
  str_trim(tekst.data());
  tekst.resize(strlen(tekst.c_str()));
  return tekst;
}

void annul_neem(Vul& vul, const AnnulGrens& g, const DtGo& go) {
  int32_t nummer;
  Etiket e{};
  if (!annul_wil(g, go) || !lees_label(go, &nummer, &e) || !annul_staat(go, e)) return;
  if (afgerekend(go) || !vul.serie.lees(go.nr)) return;
  const Zoekregel r = zoek_regel(go, nummer, e, vul.serie.maten);
  if (g.maat.empty() || zonder_blanks(r.maattekst, sizeof r.maattekst) == g.maat) vul.voeg(r);
}

// Finishing ---------------------------------------------------------------------------------------

bool nontv_wil(const NontvGrens& g, const DtGo& go) {
  if (go.afgewerkt != 0) return false;
  if (!g.document) {
    return (go.soort & SOORTEN) != 0 && go.zenddatum >= g.vanaf && go.zenddatum <= g.tm;
  }
  return go.opdrachtnr == g.nummer && go.printdatum != 0 && go.printdatum >= g.vanaf &&
         go.printdatum <= g.tm;
}

void nontv_neem(Vul& vul, const NontvGrens& g, const DtGo& go) {
  int32_t nummer;
  Etiket e{};
  if (!nontv_wil(g, go) || !lees_label(go, &nummer, &e) || !vul.serie.lees(e.nr)) return;
  Zoekregel r = zoek_regel(go, nummer, e, vul.serie.maten);
  if (!onderweg_op(e, go.vanfil, go.naarfil)) {
    r.status = e.status;
    r.filiaal = e.filiaal;
    r.datum = e.vrkdat;
  }
  vul.voeg(r);
}

}  // namespace

int annul_vul(const AnnulGrens& g) {
  Vul vul(ZoekTabel::annul);
  const OpSleutel sleutel(dtgo, GO_PAREN);
  DtGo go{};
  go.vanfil = g.vanfil;
  for (bool er = IXFIRSTR(dtgo, &go, 1); er && !vul.breekt_af(); er = IXNEXT(dtgo, &go, 1)) {
    if (pg_test(g.naar, go.naarfil))
      annul_neem(vul, g, go);
    else
      spring_paar(go);
  }
  return vul.uitkomst();
}

int nontv_vul(const NontvGrens& g) {
  Vul vul(g.document ? ZoekTabel::nontv_document : ZoekTabel::nontv);
  const OpSleutel sleutel(dtgo, GO_PAREN);
  DtGo go{};
  for (bool er = IXFIRSTR(dtgo, &go); er && !vul.breekt_af(); er = IXNEXT(dtgo, &go)) {
    if (!pg_test(g.van, go.vanfil))
      spring_filiaal(go);
    else if (!g.document && !pg_test(g.naar, go.naarfil))
      spring_paar(go);
    else
      nontv_neem(vul, g, go);
  }
  return vul.uitkomst();
}
