// Chains of label blocks: a block taken from the free list or from behind the last one, and a chain
// given back. Both happen under the lock of the control record, with the terminal marked as
// standing at a critical place: the record is written after the blocks that it speaks of are
// linked.
#include <algorithm>

#include "main/controle.h"
#include "sub/ioeti_intern.h"
#include "sub/leesstam.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"

namespace {

constexpr uint8_t STATUS_LOOPT = 1, STATUS_ETIKETTEN = 10;

/// Tables of our own: reads through the run's handles would move a caller's walk.
ICB *eigen_dtser, *eigen_dtart;
uint32_t tarief_artgroep;
uint8_t tarief_code;  // 0: not read yet

ICB* eigen(ICB** icb, const char* naam) {
  if (*icb == nullptr) *icb = tabel_open(naam, IX_LEES);
  return *icb;
}

/// The control record, locked until it is written; the terminal stands at a critical place as long.
struct Control {
  Control() {
    iotab('X', &nummer, &rec, SYS_RECORDS);  // false for a fresh store, but locked all the same
    ctl_set_status(STATUS_ETIKETTEN);
  }
  ~Control() { ctl_set_status(STATUS_LOOPT); }
  void schrijf() { iotab('W', &nummer, &rec, SYS_RECORDS); }
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  int32_t nummer = 4;
  SysRec4 rec{};
};

bool van_reeks(int32_t blok, const Serienr& nr) {
  EtiBlok buffer;
  return blok >= 0 && eti_lees_rauw(blok, &buffer) == EtiLees::goed && buffer.nr == nr;
}

bool is_vrij(int32_t blok) { return van_reeks(blok, Serienr{}); }

/// Stands on the last block of the chain that the current block belongs to.
void ga_naar_einde() {
  eti_ga(eti.blok);
  for (int32_t stappen = 0; eti.buffer.volgende != -1; ++stappen) {
    if (stappen > eti_hoogste_blok()) eti_fataal(EtiLees::buiten, eti.buffer.volgende);
    eti_ga(eti.buffer.volgende);
  }
}

/// One on, but not past what a number holds: a broken control record only gives wrong numbers.
int32_t een_verder(int32_t n) { return n == INT32_MAX ? n : n + 1; }

int32_t neem_blok(SysRec4* rec) {
  const int32_t nieuw = rec->vrij_hoofd;
  if (nieuw == rec->hoogste) {
    rec->vrij_hoofd = rec->hoogste = een_verder(nieuw);
    rec->vrij_aantal = 0;
    return nieuw;
  }
  EtiBlok vrij;
  const EtiLees gelezen = eti_lees_rauw(nieuw, &vrij);
  if (gelezen != EtiLees::goed) eti_fataal(gelezen, nieuw);
  rec->vrij_hoofd = vrij.volgende;
  if (rec->vrij_aantal > 0) --rec->vrij_aantal;
  return nieuw;
}

/// Puts a block in front of the free list; it becomes the current block of the store.
void geef_blok(int32_t blok, SysRec4* rec) {
  eti.buffer = EtiBlok{};
  eti.buffer.volgende = rec->vrij_hoofd;
  eti.blok = blok;
  eti_schrijf();
  rec->vrij_hoofd = blok;
  rec->vrij_aantal = een_verder(rec->vrij_aantal);
}

}  // namespace

/// The label in hand was met before. The mark is set at ever longer distances.
bool EtiReeks::terug() {
  const int32_t toen = vorige, daar = blok;
  vorige = nummer;
  blok = eti_blok(nummer);
  if (blok == daar) return nummer <= toen;
  if (blok == merk) return true;
  if (++stap < tot) return false;
  merk = blok;
  stap = 0;
  tot *= 2;
  return false;
}

bool EtiReeks::volgende() {
  if (!geheel || (!begonnen && nummer < 0)) return false;
  const char actie = begonnen ? 'N' : 'F';
  begonnen = true;
  const bool er = ioeti(actie, &nummer, &etiket);
  geheel = eti.buffer.nr == nr && !(er && terug());  // blocks without labels go by unseen
  return er && geheel;
}

void eti_blok_erbij(const Serienr& nr, uint8_t maatsoort) {
  Control control;
  const bool aansluiten = eti.blok >= 0 && van_reeks(eti.blok, nr);
  if (aansluiten) {
    ga_naar_einde();
    eti.buffer.volgende = control.rec.vrij_hoofd;
    eti_schrijf();
  }
  eti.blok = neem_blok(&control.rec);
  if (!aansluiten) eti.eerste = eti.blok;
  eti.reeks = nr;
  eti.slot = 0;
  eti.buffer = EtiBlok{};
  eti.buffer.nr = nr;
  eti.buffer.maatsoort = maatsoort;
  eti.buffer.volgende = -1;
  control.schrijf();
  eti_schrijf();
}

bool eti_vrijgeven(DtSer* serie) {
  if (serie->blok1 < 0) {
    serie->blok1 = -1;
    return true;
  }
  eti.actie = 'V';
  bool geheel = true;
  Control control;
  for (int32_t blok = serie->blok1; blok != -1 && geheel;) {
    EtiBlok oud;
    const EtiLees gelezen = eti_lees_rauw(blok, &oud);
    if (gelezen != EtiLees::goed) eti_fataal(gelezen, blok);
    geheel = oud.nr == serie->nr;
    if (geheel) geef_blok(blok, &control.rec);
    blok = oud.volgende;
  }
  control.schrijf();
  eti.blok = -1;  // what the buffer held is no label any more
  eti.eerste = -1;
  serie->blok1 = -1;
  return geheel;
}

int32_t eti_eerste_blok(const Serienr& nr) {
  DtSer serie{};
  if (lees_serie(eigen(&eigen_dtser, "DTSER"), &serie, nr) && serie.blok1 >= 0 &&
      !is_vrij(serie.blok1)) {
    return serie.blok1;
  }
  // The caller has not stored a new first block yet: what was walked or made last is the chain.
  if (eti.reeks == nr && van_reeks(eti.eerste, nr)) return eti.eerste;
  return van_reeks(eti.blok, nr) ? eti.blok : -1;
}

uint16_t eti_tarief(uint32_t artgroep) {
  const bool bekend = tarief_code != 0 && tarief_artgroep == artgroep;
  if (!bekend) {
    DtArt artikel{};
    const bool er = lees_artikel(eigen(&eigen_dtart, "DTART"), &artikel, artgroep);
    const bool geldig = er && artikel.tariefcode >= 1 && artikel.tariefcode <= 10;
    tarief_code = geldig ? artikel.tariefcode : uint8_t{1};
    tarief_artgroep = artgroep;
  }
  return sys_rec1.tarief[tarief_code - 1];
}

void eti_tabellen_dicht() {
  for (ICB** icb : {&eigen_dtser, &eigen_dtart}) {
    if (*icb != nullptr) IXCLOSE(*icb);
    *icb = nullptr;
  }
  tarief_code = 0;
}
