// Dated price sets: opening, reading and stepping. A set's price groups stand in a chain of
// DTIPG.TXT; loading one fills the working list, and whatever fails leaves that list empty or cut
// short.
#include "sub/ioink.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "isam/base.h"
#include "isam/io.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/ioink_intern.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

InkStand ink;
std::vector<Prijsgroep> prijsgroepen;

namespace {

constexpr const char* MODULE = "ioink";
constexpr const char* TABEL = "DTIPA";
constexpr const char* GROEPEN = "DTIPG.TXT";
constexpr uint8_t GEDEELD_WERK = 1;  // in the options of system record 1

enum class Groepfout { goed = 0, plaats = 1, lezen = 2, vreemd = 3 };

int64_t plaats(int32_t nummer) { return int64_t{nummer} * static_cast<int64_t>(sizeof(DtIpg)); }

Groepfout lees_rauw(int32_t nummer, DtIpg* groep, const DtIpa* set) {
  errno = 0;
  if (nummer < 0) return Groepfout::plaats;
  const int64_t n = io_lees(ink.fd, groep, sizeof *groep, plaats(nummer));
  if (n < 0) return Groepfout::plaats;
  if (n != static_cast<int64_t>(sizeof *groep)) return Groepfout::lezen;
  const bool eigen = set == nullptr || (groep->nr == set->nr && groep->eind == set->eind);
  return eigen ? Groepfout::goed : Groepfout::vreemd;
}

void meld(int32_t nummer, Niveau niveau, Groepfout fout) {
  if (niveau == Niveau::stil) return;
  if (niveau == Niveau::fataal) {
    const Tekst& tekst = fout == Groepfout::lezen ? T_BUITEN_BESTAND : T_PRIJZEN_INCONSISTENT;
    scr_abort("IOINK(%d): %s(a=%c,f=%d,r=%ld) -> %s", errno, GROEPEN, ink.actie, ink.fd, nummer,
              txt(tekst));
  }
  FFLASH(-1, 2, 0, txt(T_INK_WAARSCHUWING),
         str_format("%s (%d)", txt(T_PRIJZEN_NIET_CONSISTENT), static_cast<int>(fout)).c_str());
}

/// A set whose map is not the sum of its groups' maps stays as it was read; the operator is told.
void vergelijk_maten(const DtIpa& set) {
  uint8_t som[sizeof set.maten] = {};
  for (const Prijsgroep& groep : prijsgroepen) {
    for (size_t i = 0; i < sizeof som; ++i) {
      som[i] = static_cast<uint8_t>(som[i] | groep.rec.maten[i]);
    }
  }
  if (std::memcmp(som, set.maten, sizeof som) == 0) return;
  const char* tekst = txt(T_PRIJS_MAATBITS);
  if (scr_ctx == nullptr) {
    std::fprintf(stderr, "%s\n", tekst);
    return;
  }
  const Venster venster(10, 10, 4, static_cast<int>(std::strlen(tekst)) + 4, 2);
  scr_print(A_WAARDE, 1, 2, "%s", tekst);
  scr_enter(2, 2);
}

void laad(const DtIpa& set) {
  prijsgroepen = ink_keten(set, Niveau::waarschuw);
  const bool geheel = !prijsgroepen.empty() && prijsgroepen.back().rec.volgende == -1;
  if (geheel) vergelijk_maten(set);
}

bool uit_lijst() {
  prijsgroepen.clear();
  return false;
}

}  // namespace

void ink_moet_open() {
  if (ink.dtipa == nullptr) ctl_fault(MODULE, INK_DICHT);
}

void ipa_open(int mode) {
  if (ink.dtipa != nullptr) ctl_fault(MODULE, INK_REEDS_OPEN);
  ink.fd = io_open(GROEPEN, false);
  if (ink.fd < 0) ctl_noopen(MODULE, GROEPEN);
  ink.dtipa = tabel_open(TABEL, mode);
  ink.mode = mode;
}

void ipa_close() {
  if (ink.dtipa == nullptr) return;
  IXCLOSE(ink.dtipa);
  io_close(ink.fd);
  ink = InkStand{};
  prijsgroepen.clear();
}

void ink_heropen() {
  if ((sys_rec1.opties2 & GEDEELD_WERK) == 0 || ink.mode == IX_LEES) return;
  IXCLOSE(ink.dtipa);
  ink.dtipa = tabel_open(TABEL, ink.mode);
}

bool ink_lees_groep(int32_t nummer, Niveau niveau, DtIpg* groep, const DtIpa* set) {
  const Groepfout fout = lees_rauw(nummer, groep, set);
  if (fout != Groepfout::goed) meld(nummer, niveau, fout);
  return fout == Groepfout::goed;
}

void ink_schrijf_groep(int32_t nummer, const DtIpg& groep) {
  if (nummer >= 0) io_schrijf(ink.fd, &groep, sizeof groep, plaats(nummer));
}

std::vector<Prijsgroep> ink_keten(const DtIpa& set, Niveau niveau) {
  std::vector<Prijsgroep> keten;
  const auto hoogstens = static_cast<size_t>(io_grootte(ink.fd)) / sizeof(DtIpg);
  for (int32_t nummer = set.groep1; nummer != -1;) {
    Prijsgroep groep{};
    if (!ink_lees_groep(nummer, niveau, &groep.rec, &set)) break;
    groep.nummer = nummer;
    // More groups than the file has records: the chain bites its tail.
    if (keten.size() >= hoogstens) {
      meld(nummer, niveau, Groepfout::vreemd);
      break;
    }
    keten.push_back(groep);
    nummer = groep.rec.volgende;
  }
  return keten;
}

void ink_moet_er_zijn(DtIpa* rec) {
  const DtIpa gezocht = *rec;
  IXSWITCH(ink.dtipa, 1);
  if (IXREAD(ink.dtipa, rec)) return;
  const uint16_t nummer = gezocht.nummer;
  scr_abort("%s: %s  %hu  %s %s", MODULE, serie_tekst(gezocht.nr), nummer, date_show(gezocht.eind),
            txt(T_PRIJSSET_WEG));
}

bool ipa_lees(DtIpa* rec) {
  ink_moet_open();
  ink.actie = 'R';
  IXSWITCH(ink.dtipa, 1);
  if (!IXREAD(ink.dtipa, rec)) return uit_lijst();
  laad(*rec);
  return true;
}

bool ipa_geldig(const Serienr& nr, uint16_t nummer, uint16_t datum, DtIpa* rec) {
  *rec = DtIpa{};
  rec->nr = nr;
  rec->nummer = nummer;
  rec->eind = datum;
  if (!ipa_stap('F', rec, 4, 4) || rec->begin > datum) return uit_lijst();
  laad(*rec);
  return true;
}

bool ipa_stap(char actie, DtIpa* rec, int sleutel, int velden) {
  ink_moet_open();
  ink.actie = actie;
  if (sleutel < 1 || sleutel > ink.dtipa->key_count) ctl_badkey(MODULE, ink.dtipa, sleutel);
  IXSWITCH(ink.dtipa, sleutel);
  switch (actie) {
    case 'F':
      return IXFIRSTR(ink.dtipa, rec, velden);
    case 'N':
      return IXNEXT(ink.dtipa, rec, velden);
    case 'P':
      return IXPREV(ink.dtipa, rec, velden);
    default:
      return false;
  }
}
