// The one access to labels: read, step along a chain, write, delete. One current block and slot a
// process; a change reaches the file at once, made in a block that was read just before.
#include "sub/ioeti.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "isam/io.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/ioeti_intern.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

EtiStand eti;

namespace {

constexpr const char* MODULE = "ioeti";
constexpr const char* BESTAND = "DTETI.TXT";
enum Etifout { DICHT = 1, REEDS_OPEN = 2, AKTIE_X = 3, FILTER_AKTIE = 4, ONDERWEG = 5 };

bool transit() { return sys_rec20.transit != 0; }

SysRec4 lees_control() {
  SysRec4 rec{};
  int32_t nr = 4;
  iotab('R', &nr, &rec, SYS_RECORDS);  // all zero, so false, in a fresh store: still what counts
  return rec;
}

void moet_zijn_van(const Serienr& nr) {
  if (eti.buffer.nr == nr) return;
  scr_abort("%s %s", txt(T_ETI_NIET_VAN), serie_tekst(nr));
}

void controleer_eigenaar() {
  if (eti.bewaakt) moet_zijn_van(eti.eigenaar);
}

/// Block and slot of a label number that is at least 1.
void plaats_van(int32_t nummer, int32_t* blok, int* slot) {
  *blok = eti_blok(nummer);
  *slot = (nummer - 1) % ETI_SLOTS;
}

int32_t huidig_nummer() {
  if (eti.blok < 0 || eti.blok >= INT32_MAX / ETI_SLOTS) return 0;
  return eti.blok * ETI_SLOTS + eti.slot + 1;
}

bool lever(int32_t* nummer, Etiket* label) {
  if (!etiket_uitpak(eti.buffer.woord[eti.slot], label, transit())) return false;
  label->nr = eti.buffer.nr;
  label->maatsoort = static_cast<uint8_t>(eti.buffer.maatsoort);
  if (label->status == ETI_NOTA || label->status == ETI_VOORRAAD) {
    label->tarief = eti_tarief(label->nr.artgroep);
  }
  *nummer = huidig_nummer();
  return true;
}

bool lees(int32_t* nummer, Etiket* label) {
  if (*nummer <= 0) return false;
  int32_t blok;
  int slot;
  plaats_van(*nummer, &blok, &slot);
  EtiBlok buffer;
  if (eti_lees_rauw(blok, &buffer) != EtiLees::goed) return false;
  eti.buffer = buffer;
  eti.blok = blok;
  eti.slot = slot;
  eti.stappen = 0;
  controleer_eigenaar();
  return lever(nummer, label);
}

bool volgende(int32_t* nummer, Etiket* label) {
  if (eti.blok < 0) return false;
  for (;;) {
    if (eti.slot + 1 < ETI_SLOTS) {
      ++eti.slot;
    } else {
      if (eti.buffer.volgende == -1) return false;
      if (++eti.stappen > eti_hoogste_blok()) eti_fataal(EtiLees::buiten, eti.buffer.volgende);
      eti_ga(eti.buffer.volgende);
    }
    if (lever(nummer, label)) return true;
  }
}

bool eerste(int32_t* nummer, Etiket* label) {
  if (*nummer < 0) return false;
  eti_ga(*nummer);
  eti.reeks = eti.buffer.nr;
  eti.eerste = *nummer;
  eti.stappen = 0;
  return lever(nummer, label) || volgende(nummer, label);
}

/// Stands on the first free slot of the chain, on a new block if there is none.
void zoek_vrij(const Etiket& label) {
  const int32_t begin = eti_eerste_blok(label.nr);
  eti.stappen = 0;
  eti.blok = -1;
  for (int32_t blok = begin; blok >= 0; blok = eti.buffer.volgende) {
    if (++eti.stappen > eti_hoogste_blok() + 1) eti_fataal(EtiLees::buiten, blok);
    eti_ga(blok);
    moet_zijn_van(label.nr);
    for (eti.slot = 0; eti.slot < ETI_SLOTS; ++eti.slot) {
      if (eti.buffer.woord[eti.slot][2] % 10 == ETI_VRIJ) return;
    }
  }
  eti_blok_erbij(label.nr, label.maatsoort);
}

bool schrijf(int32_t* nummer, const Etiket& label) {
  if (label.onderweg != 0 && label.status >= ETI_VOORRAAD && !transit() &&
      std::getenv("KOB_INTERN") != nullptr) {
    ctl_fault(MODULE, ONDERWEG);
  }
  if (*nummer > 0) {
    int32_t blok;
    int slot;
    plaats_van(*nummer, &blok, &slot);
    eti_ga(blok);
    eti.slot = slot;
  } else {
    zoek_vrij(label);
  }
  uint32_t woord[9];
  etiket_pak(label, woord, transit());
  std::memcpy(eti.buffer.woord[eti.slot], woord, sizeof woord);
  eti_schrijf();
  *nummer = huidig_nummer();
  return true;
}

bool verwijder(int32_t nummer) {
  if (nummer <= 0 || nummer != huidig_nummer()) return false;
  const int slot = eti.slot;
  eti_ga(eti.blok);
  eti.slot = slot;
  std::memset(eti.buffer.woord[slot], 0, sizeof eti.buffer.woord[slot]);
  eti_schrijf();
  return true;
}

bool open() {
  if (eti.fd >= 0) ctl_fault(MODULE, REEDS_OPEN);
  eti.fd = io_open(BESTAND, false);
  if (eti.fd < 0) ctl_noopen(MODULE, BESTAND);
  eti.cijfers = lees_control().cijfers;
  eti.blok = -1;
  eti.eerste = -1;
  return true;
}

bool sluit() {
  if (eti.fd >= 0) io_close(eti.fd);
  eti_tabellen_dicht();
  eti = EtiStand{};
  return true;
}

}  // namespace

int eti_cijfers() { return eti.fd >= 0 ? eti.cijfers : lees_control().cijfers; }

int32_t eti_hoogste_blok() {
  switch (eti_cijfers()) {
    case 6:
      return 99999;
    case 8:
      return 2999999;
    default:
      return 999999;
  }
}

EtiLees eti_lees_rauw(int32_t blok, EtiBlok* buffer) {
  if (blok > eti_hoogste_blok()) return EtiLees::buiten;
  if (blok < 0) return EtiLees::zoekfout;
  const int64_t n =
      io_lees(eti.fd, buffer, sizeof *buffer, int64_t{blok} * static_cast<int64_t>(sizeof *buffer));
  if (n < 0) return EtiLees::zoekfout;
  return n == static_cast<int64_t>(sizeof *buffer) ? EtiLees::goed : EtiLees::kort;
}

void eti_ga(int32_t blok) {
  errno = 0;
  const EtiLees gelezen = eti_lees_rauw(blok, &eti.buffer);
  if (gelezen != EtiLees::goed) eti_fataal(gelezen, blok);
  eti.blok = blok;
  eti.slot = 0;
  controleer_eigenaar();
}

void eti_schrijf() {
  if (eti.blok < 0 || eti.blok > eti_hoogste_blok()) return;
  io_schrijf(eti.fd, &eti.buffer, sizeof eti.buffer,
             int64_t{eti.blok} * static_cast<int64_t>(sizeof eti.buffer));
}

void eti_fataal(EtiLees soort, int32_t blok) {
  const Tekst& tekst = soort == EtiLees::buiten     ? T_ETI_ONGELDIGE_KETTING
                       : soort == EtiLees::zoekfout ? T_ETI_FOUTIEVE_KETTING
                                                    : T_BUITEN_BESTAND;
  scr_abort("%s(%d): a=%c,f=%d,r=%ld -> %s", MODULE, errno, eti.actie, eti.fd, blok, txt(tekst));
}

void eti_eigenaar(const Serienr* nr) {
  eti.bewaakt = nr != nullptr;
  if (nr != nullptr) eti.eigenaar = *nr;
}

bool ioeti(char actie, int32_t* nummer, Etiket* label) {
  if (actie == 'O') return open();
  if (actie == 'C') return sluit();
  if (actie == 'X') ctl_fault(MODULE, AKTIE_X);
  if (eti.fd < 0) ctl_fault(MODULE, DICHT);
  eti.actie = actie;
  switch (actie) {
    case 'R':
      return lees(nummer, label);
    case 'F':
      return eerste(nummer, label);
    case 'N':
      return volgende(nummer, label);
    case 'W':
      return schrijf(nummer, *label);
    case 'D':
      return verwijder(*nummer);
    case 'I':
      eti_blok_erbij(label->nr, label->maatsoort);
      *nummer = huidig_nummer();
      return true;
    default:
      return false;
  }
}

bool eti_filter(char actie, int32_t* nummer, Etiket* label, uint8_t status) {
  if (actie != 'F' && actie != 'R' && actie != 'N') ctl_fault(MODULE, FILTER_AKTIE);
  for (bool gevonden = ioeti(actie, nummer, label); gevonden;
       gevonden = ioeti('N', nummer, label)) {
    if (label->status == status) return true;
  }
  return false;
}
