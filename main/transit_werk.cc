// Cancelling and finishing what is on its way.
//
// A row is worked off under the record lock of its series, tried once: a series that somebody else
// holds is passed over with all its rows. The transit record goes last, since it is by that record
// that a label is found: whoever is broken off between two writes leaves a row that comes back in
// the next list, and never a label on its way that no command knows of. What has been worked off
// since the row was gathered is left alone.
#include <fcntl.h>
#include <unistd.h>

#include <cstring>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/controle.h"
#include "main/teksten.h"
#include "main/transit_in.h"
#include "sub/ioeti.h"
#include "sub/muteren.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"

namespace {

constexpr const char* MODULE = "transit";
constexpr int FIN_ETIKET = 2;  // DTFIN by label, date and line

#pragma pack(push, 1)
struct Correctie {  // a record of DTCORnn.LOG, 44 bytes
  char letter = 'V', blank = ' ';
  uint8_t leeg2[2] = {};
  uint32_t etiket = 0;
  Serienr nr{};
  uint16_t ontvangen = 0, verzonden = 0;  // dates
  int32_t inkpr = 0, vrkpr = 0;           // cents
  uint16_t lvnr = 0;
  uint8_t maat = 0, reden = 0;
  uint8_t filiaal = 0;  // where the books had it
  uint8_t leeg33[11] = {};
};
#pragma pack(pop)
static_assert(sizeof(Correctie) == 44 && offsetof(Correctie, ontvangen) == 16);
static_assert(offsetof(Correctie, lvnr) == 28 && offsetof(Correctie, filiaal) == 32);

std::string logbestand() { return str_format("DTCOR%02ld.LOG", session_terminal); }

void log_correctie(int fd, int32_t nummer, const Etiket& e, uint16_t verzonden) {
  Correctie c;
  c.etiket = static_cast<uint32_t>(nummer);
  c.nr = e.nr;
  c.ontvangen = e.ontdat;
  c.verzonden = verzonden;
  c.inkpr = e.inkpr;
  c.vrkpr = e.vrkpr;
  c.lvnr = e.lvnr;
  c.maat = e.maat;
  c.reden = e.reden;
  c.filiaal = e.filiaal;
  if (write(fd, &c, sizeof c) != static_cast<ssize_t>(sizeof c)) {
    ctl_noopen(MODULE, logbestand().c_str());
  }
}

/// A row with its label as it is now, under the lock of its series.
struct Geval {
  const Zoekregel& regel;
  int32_t nummer;
  Etiket etiket{};
  bool onderweg = false;  // between the branches of the row
};

/// Reads the label again. False when the row is not there to be worked off any more.
bool lees_geval(Geval* g) {
  const Zoekregel& r = g->regel;
  if (!go_lees(g->nummer) || go_rec.afgewerkt != 0) return false;
  if (go_rec.vanfil != r.vanfil || go_rec.naarfil != r.naarfil ||
      go_rec.opdrachtnr != r.opdrachtnr || go_rec.zenddatum != r.zenddatum)
    return false;
  if (!ioeti('R', &g->nummer, &g->etiket) || !(g->etiket.nr == r.nr)) return false;
  g->onderweg = onderweg_op(g->etiket, r.vanfil, r.naarfil);
  return true;
}

/// The label at rest in a branch.
void zet_neer(Geval& g, uint8_t filiaal) {
  g.etiket.filiaal = filiaal;
  g.etiket.onderweg = g.etiket.doel = 0;
  ioeti('W', &g.nummer, &g.etiket);
}

/// True when the label's last financial line is that of the send.
bool geboekt(const Geval& g) {
  const OpSleutel sleutel(dtfin, FIN_ETIKET);
  DtFin fin{};
  fin.etiket = g.regel.etiket;
  fin.datum = UINT16_MAX;
  fin.regel = UINT32_MAX;
  return IXPREV(dtfin, &fin, 1) && fin.vanfil == g.regel.vanfil && fin.naarfil == g.regel.naarfil;
}

/// Takes the money of the send back. The branch where the label stands then.
uint8_t keer_om(const Geval& g) {
  return fin_terug(g.nummer, g.regel.vanfil, g.regel.naarfil, date_today());
}

void annuleer(Geval& g) {
  const uint8_t plaats = keer_om(g);
  const Etiket& e = g.etiket;
  const bool aangekomen =
      e.status == ETI_VOORRAAD && e.onderweg == 0 && e.filiaal == g.regel.naarfil;
  if (g.onderweg || aangekomen) zet_neer(g, plaats);
  go_verwijder(g.nummer);
}

/// A label on its way becomes a correction of the day it was sent.
void corrigeer(Geval& g, uint8_t code, int log_fd) {
  g.etiket.status = ETI_CORRECTIES;
  g.etiket.reden = code;
  g.etiket.vrkdat = g.regel.zenddatum;
  log_correctie(log_fd, g.nummer, g.etiket, g.regel.zenddatum);
  if (ser_rec.voorraad > 0) --ser_rec.voorraad;
  ++ser_rec.correcties;
}

/// The send is undone; with a correction the piece is lost on the way.
void haal_terug(Geval& g, const TransitKeuze& keuze, int log_fd) {
  const bool correctie = keuze.actie == TransitActie::corrigeren && g.onderweg;
  if (correctie) corrigeer(g, keuze.code, log_fd);
  const bool gevonden = geboekt(g);
  const uint8_t plaats = keer_om(g);
  const Etiket& e = g.etiket;
  // A piece that went on since, or was sold, is where it is.
  const bool verplaatst =
      gevonden && e.status == ETI_VOORRAAD && e.onderweg == 0 && e.filiaal != plaats;
  if (g.onderweg || verplaatst) zet_neer(g, plaats);
  if (correctie) IXWRITEKEEP(dtser, &ser_rec);
  go_verwijder(g.nummer);
}

void ontvang(Geval& g) {
  const Zoekregel& r = g.regel;
  constexpr uint8_t VERZONDEN = 1;
  io_nieuw(g.nummer, {r.vanfil, r.naarfil, r.opdrachtnr, date_today(), 0}, VERZONDEN);
  if (g.onderweg) zet_neer(g, r.naarfil);
  go_afwerken(g.nummer);
}

/// The marked rows, series by series.
struct Werk {
  TransitKeuze keuze;
  bool geheel;  // the series is written behind its rows
  int log_fd;
  const char* titel;
  ICB* tabel = nullptr;
  bool bezig = false, vast = false;  // a series is in hand, and ours
  Serienr nr{};
};

void laat_los(Werk& w) {
  if (w.vast && w.geheel) serie_schrijf();
  if (w.vast && !w.geheel) serie_los();
  w.bezig = w.vast = false;
}

bool serie_vast(Werk& w, const Serienr& nr) {
  if (w.bezig && w.nr == nr) return w.vast;
  laat_los(w);
  w.bezig = true;
  w.nr = nr;
  w.vast = serie_probeer(nr);
  return w.vast;
}

void werk_rij(Werk& w, const Zoekregel& r) {
  Geval g{r, static_cast<int32_t>(r.etiket)};
  if (!lees_geval(&g)) return;
  if (w.geheel)
    annuleer(g);
  else if (w.keuze.actie == TransitActie::ontvangen)
    ontvang(g);
  else
    haal_terug(g, w.keuze, w.log_fd);
}

void werk(Werk w) {
  w.tabel = IXOPEN_LENGTE(privaat.tp, IX_EXCLUSIEF, sizeof(Zoekregel));
  const int32_t rijen = w.tabel->record_count;
  ix_hooks.voortgang(w.titel, 0, rijen);
  int32_t gedaan = 0;
  Zoekregel r{};
  for (bool er = IXFIRSTR(w.tabel, &r); er; er = IXNEXT(w.tabel, &r)) {
    ix_hooks.voortgang(w.titel, ++gedaan, rijen);
    if (r.gemarkeerd == 0 || !serie_vast(w, r.nr)) continue;
    werk_rij(w, r);
    IXDELETE(w.tabel, &r);
  }
  laat_los(w);
  ix_hooks.voortgang(nullptr, 0, 0);
  IXCLOSE(w.tabel);
}

}  // namespace

int correctielog_open() {
  const int fd = open(logbestand().c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0660);
  if (fd < 0) ctl_noopen(MODULE, logbestand().c_str());
  return fd;
}

void annul_werk() {
  werk({{TransitActie::annuleren, 0}, true, -1, txt(T_TRANSIT_VOORTGANG_ANNUL)});
}

void nontv_werk(const TransitKeuze& keuze, int log_fd) {
  werk({keuze, false, log_fd, txt(T_TRANSIT_VOORTGANG_AF)});
}
