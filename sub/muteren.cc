// The steps of a move of a piece between branches.
//
// A move writes to several files and may be broken off between any two writes. So its transit or
// receipt record comes first, then the financial line, then the lines for the tills, and the label
// last: it is the label that says where the piece is, and its one block is written at once. A send
// that was broken off shows as a transit record that is not finished while its label is not on its
// way; no piece ever stands in another branch without the lines that account for it, and whoever
// makes the move again that day books no second line. The counters of the series follow in its own
// record, under whose lock all of this happens.
#include "sub/muteren.h"

#include <algorithm>

#include "isam/base.h"
#include "main/iotab.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"

namespace {

/// The series whose record is locked; the buffer may be changed or lost before it is let go.
Serienr vaste_serie;

bool transit_aan() { return sys_rec20.transit != 0; }

}  // namespace

// The series --------------------------------------------------------------------------------------

bool serie_wacht(const Serienr& nr) {
  const OpSleutel sleutel(dtser, 1);
  DtSer rec{};
  rec.nr = vaste_serie = nr;
  const bool er = IXREADL(dtser, &rec);
  if (!er) {
    rec = DtSer{};
    rec.nr = nr;
    IXRELEASE(dtser, &rec);  // what is not there stands in the queue of keys
    rec = DtSer{};
  }
  ser_rec = rec;
  return er;
}

bool serie_probeer(const Serienr& nr) {
  const OpSleutel sleutel(dtser, 1);
  DtSer rec{};
  rec.nr = vaste_serie = nr;
  ser_rec = DtSer{};
  if (!IXREAD(dtser, &rec)) return false;
  const int32_t plaats = dtser->record_no;
  if (!IXLOCK(dtser, 3)) return false;
  // Before the lock stood it may have been changed, or deleted and its slot used again.
  rec = DtSer{};
  rec.nr = nr;
  if (!IXREAD(dtser, &rec) || dtser->record_no != plaats) {
    dtser->record_no = plaats;
    IXLOCK(dtser, 13);
    return false;
  }
  ser_rec = rec;
  return true;
}

void serie_schrijf() { IXWRITE(dtser, &ser_rec); }

void serie_los() {
  const OpSleutel sleutel(dtser, 1);
  DtSer rec{};
  rec.nr = vaste_serie;
  IXRELEASE(dtser, &rec);
}

// Transit -----------------------------------------------------------------------------------------

void go_nieuw(int32_t etiket, const Zending& z) {
  DtGo rec{};
  rec.vanfil = z.van;
  rec.naarfil = z.naar;
  rec.verzamel = z.verzamel;
  rec.etiket = static_cast<uint32_t>(etiket);
  rec.nr = ser_rec.nr;
  rec.opdrachtnr = z.opdrachtnr;
  rec.soort = 1;
  rec.zenddatum = z.datum;
  IXWRITE(dtgo, &rec);  // a label has one record: that of an earlier trip gives way
  go_rec = rec;
}

bool go_lees(int32_t etiket) {
  const OpSleutel sleutel(dtgo, 1);
  go_rec = DtGo{};
  go_rec.etiket = static_cast<uint32_t>(etiket);
  if (IXREAD(dtgo, &go_rec)) return true;
  go_rec = DtGo{};
  return false;
}

void go_afwerken(int32_t etiket) {
  const OpSleutel sleutel(dtgo, 1);
  DtGo rec{};
  rec.etiket = static_cast<uint32_t>(etiket);
  const DtGo gezocht = rec;
  if (!IXREADL(dtgo, &rec)) {
    rec = gezocht;
    return IXRELEASE(dtgo, &rec);
  }
  rec.afgewerkt = 1;
  IXWRITE(dtgo, &rec);
}

void go_verwijder(int32_t etiket) {
  const OpSleutel sleutel(dtgo, 1);
  DtGo rec{};
  rec.etiket = static_cast<uint32_t>(etiket);
  verwijder(dtgo, rec);
}

// Financial lines ---------------------------------------------------------------------------------

namespace {

/// The last line of a label, up to and including those of `datum`; true when it has any.
bool fin_laatste(int32_t etiket, uint16_t datum, DtFin* rec) {
  const OpSleutel sleutel(dtfin, 2);
  *rec = DtFin{};
  rec->etiket = static_cast<uint32_t>(etiket);
  rec->datum = datum;
  rec->regel = UINT32_MAX;
  return IXPREV(dtfin, rec, 1);
}

/// Numbers count per label and date, from 0.
uint32_t fin_volgnummer(int32_t etiket, uint16_t datum) {
  DtFin rec;
  return fin_laatste(etiket, datum, &rec) && rec.datum == datum ? rec.regel + 1 : 0;
}

void fin_verwijder(const DtFin& regel) {
  const OpSleutel sleutel(dtfin, 1);
  verwijder(dtfin, regel);
}

}  // namespace

void fin_nieuw(int32_t etiket, uint8_t houder, const Zending& z) {
  if (houder == z.naar) return;
  DtFin rec{};
  rec.houder = houder;
  rec.naarfil = z.naar;
  rec.vanfil = z.van;
  rec.soort = 1;
  rec.datum = z.datum;
  rec.nr = ser_rec.nr;
  rec.etiket = static_cast<uint32_t>(etiket);
  rec.regel = fin_volgnummer(etiket, z.datum);
  IXWRITE(dtfin, &rec);
}

uint8_t fin_terug(int32_t etiket, uint8_t van, uint8_t naar, uint16_t datum) {
  DtFin laatste;
  if (!fin_laatste(etiket, UINT16_MAX, &laatste)) return van;
  if (laatste.vanfil != van || laatste.naarfil != naar) return van;
  const uint8_t houder = laatste.houder;
  if (laatste.afgerekend == 0) {
    fin_verwijder(laatste);
    return houder;
  }
  DtFin tegen{};
  tegen.houder = tegen.vanfil = laatste.naarfil;
  tegen.naarfil = houder;
  tegen.soort = 1;
  tegen.datum = datum;
  tegen.nr = laatste.nr;
  tegen.etiket = laatste.etiket;
  tegen.regel = fin_volgnummer(etiket, datum);
  IXWRITE(dtfin, &tegen);
  return houder;
}

// Receipts ----------------------------------------------------------------------------------------

void io_nieuw(int32_t etiket, const Zending& z, uint8_t onderweg) {
  DtIo rec{};
  rec.naarfil = z.naar;
  rec.vanfil = z.van;
  rec.datum = z.datum;
  rec.etiket = static_cast<uint32_t>(etiket);
  rec.opdrachtnr = z.opdrachtnr;
  rec.registratie = date_today();
  rec.onderweg = onderweg;
  IXWRITE(dtio, &rec);
  io_rec = rec;
}

// Whole moves -------------------------------------------------------------------------------------

namespace {

/// Whether the last line of the label is this very move, from where it stands, not settled.
bool geboekt(int32_t nummer, const Etiket& e, const Zending& z) {
  DtFin f;
  return fin_laatste(nummer, UINT16_MAX, &f) && f.houder == e.filiaal && f.vanfil == z.van &&
         f.naarfil == z.naar && f.datum == z.datum && f.afgerekend == 0;
}
/// A send of the same day that was broken off after its lines and before its label. What it booked
/// is not booked again.
bool zenden_begonnen(int32_t nummer, const Etiket& e, const Zending& z) {
  return go_lees(nummer) && go_rec.afgewerkt == 0 && go_rec.vanfil == z.van &&
         go_rec.naarfil == z.naar && go_rec.zenddatum == z.datum && geboekt(nummer, e, z);
}
bool ontvangen_begonnen(int32_t nummer, const Etiket& e, const Zending& z) {
  io_rec = DtIo{};
  io_rec.naarfil = z.naar;
  io_rec.datum = z.datum;
  io_rec.etiket = static_cast<uint32_t>(nummer);
  return IXREAD(dtio, &io_rec) && io_rec.vanfil == z.van && geboekt(nummer, e, z);
}

/// The label's last write of a move.
void schrijf(int32_t nummer, Etiket* e, uint16_t datum) {
  ioeti('W', &nummer, e);
  ser_rec.datum_mutatie = std::max<uint16_t>(ser_rec.datum_mutatie, datum);
}

}  // namespace

void etiket_gezonden(Etiket* e, const Zending& z) {
  e->filiaal = transit_aan() ? z.van : z.naar;
  e->onderweg = transit_aan() ? 1 : 0;
  e->doel = transit_aan() ? z.naar : uint8_t{0};
}

void etiket_ontvangen(Etiket* e, uint8_t naar) {
  e->filiaal = naar;
  e->onderweg = e->doel = 0;
}

void zend_etiket(int32_t nummer, Etiket* e, const Zending& z, bool kassa) {
  const bool begonnen = zenden_begonnen(nummer, *e, z);
  go_nieuw(nummer, z);
  if (!begonnen) fin_nieuw(nummer, e->filiaal, z);
  if (kassa) kasmut_f(nummer, z.van, z.naar);
  etiket_gezonden(e, z);
  schrijf(nummer, e, z.datum);
}

void ontvang_etiket(int32_t nummer, Etiket* e, const Zending& z) {
  const bool begonnen = ontvangen_begonnen(nummer, *e, z);
  io_nieuw(nummer, z, 0);
  if (!begonnen) fin_nieuw(nummer, e->filiaal, z);
  kasmut_f(nummer, z.van, z.naar);
  etiket_ontvangen(e, z.naar);
  schrijf(nummer, e, z.datum);
}

void etiket_terug_voorraad(Etiket* e, bool kassa) {
  e->status = ETI_VOORRAAD;
  e->vrkdat = 0;
  ++ser_rec.voorraad;
  if (ser_rec.correcties > 0) --ser_rec.correcties;
  if (kassa) kasmut_d();
}
