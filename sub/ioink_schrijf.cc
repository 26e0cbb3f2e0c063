// Changes of price sets. Every change of the chain file happens under the lock of its control
// record, with the terminal marked as standing at a critical place; the record is written at the
// end.
#include <algorithm>
#include <cstring>

#include "main/controle.h"
#include "sub/ioink_intern.h"

namespace {

constexpr uint8_t STATUS_LOOPT = 1, STATUS_SCHRIJVEN = 11, STATUS_WISSEN = 12;

struct Control {
  explicit Control(char actie) {
    ink_moet_open();
    ink.actie = actie;
    iotab('X', &nummer, &rec, SYS_RECORDS);  // a fresh record is all zero: false, but locked
  }
  ~Control() {
    iotab('W', &nummer, &rec, SYS_RECORDS);
    ctl_set_status(STATUS_LOOPT);
    ink_heropen();
  }
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  /// A record for a group: the head of the free list, or the next one never used.
  int32_t neem() {
    const int32_t nieuw = rec.vrij_hoofd;
    if (nieuw == rec.hoogste) {
      rec.vrij_hoofd = rec.hoogste = nieuw == INT32_MAX ? nieuw : nieuw + 1;
      return nieuw;
    }
    DtIpg vrij;
    ink_lees_groep(nieuw, Niveau::fataal, &vrij, nullptr);
    rec.vrij_hoofd = vrij.volgende;
    return nieuw;
  }
  void geef(int32_t groep) {
    DtIpg vrij{};
    vrij.volgende = rec.vrij_hoofd;
    ink_schrijf_groep(groep, vrij);
    rec.vrij_hoofd = groep;
  }

  int32_t nummer = 9;
  SysRec9 rec{};
};

/// Deletes a set that was just read: its groups to the free list, then its record.
void wis_set(Control& control, DtIpa set) {
  for (const Prijsgroep& groep : ink_keten(set, Niveau::waarschuw)) control.geef(groep.nummer);
  ink_moet_er_zijn(&set);
  IXDELETE(ink.dtipa, &set);
}

/// The sets that equal `rec` in the first `velden` fields of a key, as they stand now.
std::vector<DtIpa> alle_sets(DtIpa rec, int sleutel, int velden) {
  std::vector<DtIpa> sets;
  for (bool er = ipa_stap('F', &rec, sleutel, velden); er;
       er = ipa_stap('N', &rec, sleutel, velden)) {
    sets.push_back(rec);
  }
  return sets;
}

/// Writes groups as the chain of `set`: numbers first, since each needs the next one's.
void schrijf_keten(Control& control, DtIpa* set, std::vector<Prijsgroep>* groepen) {
  for (Prijsgroep& groep : *groepen) groep.nummer = control.neem();
  set->groep1 = groepen->empty() ? -1 : groepen->front().nummer;
  for (size_t i = 0; i < groepen->size(); ++i) {
    DtIpg& rec = (*groepen)[i].rec;
    rec.nr = set->nr;
    rec.nummer = set->nummer;
    rec.eind = set->eind;
    rec.volgende = i + 1 < groepen->size() ? (*groepen)[i + 1].nummer : -1;
    ink_schrijf_groep((*groepen)[i].nummer, rec);
  }
}

void schrijf_set(const DtIpa& set) {
  DtIpa rec = set;
  IXWRITE(ink.dtipa, &rec);
}

/// The period end is part of the key: the groups get it, and the record is deleted and inserted.
void verkort(DtIpa set, uint16_t eind) {
  for (Prijsgroep& groep : ink_keten(set, Niveau::waarschuw)) {
    groep.rec.eind = eind;
    ink_schrijf_groep(groep.nummer, groep.rec);
  }
  DtIpa oud = set;
  ink_moet_er_zijn(&oud);
  IXDELETE(ink.dtipa, &oud);
  set.eind = eind;
  schrijf_set(set);
}

/// The part ahead of the new period gets a copy of the groups, the part behind keeps them.
void splits(Control& control, DtIpa set, uint16_t eind_voor, uint16_t begin_na) {
  DtIpa voor = set;
  voor.eind = eind_voor;
  std::vector<Prijsgroep> kopie = ink_keten(set, Niveau::fataal);
  schrijf_keten(control, &voor, &kopie);
  schrijf_set(voor);
  set.begin = begin_na;
  schrijf_set(set);
}

void maak_ruimte(Control& control, const DtIpa& nieuw) {
  DtIpa vanaf{};
  vanaf.nr = nieuw.nr;
  vanaf.nummer = nieuw.nummer;
  for (DtIpa& set : alle_sets(vanaf, 4, 4)) {
    switch (ink_overlap(set.begin, set.eind, nieuw.begin, nieuw.eind)) {
      case Overlap::geen:
        break;
      case Overlap::wissen:
        wis_set(control, set);
        break;
      case Overlap::begin_later:
        set.begin = static_cast<uint16_t>(nieuw.eind + 1);
        schrijf_set(set);
        break;
      case Overlap::eind_eerder:
        verkort(set, static_cast<uint16_t>(nieuw.begin - 1));
        break;
      case Overlap::splitsen:
        splits(control, set, static_cast<uint16_t>(nieuw.begin - 1),
               static_cast<uint16_t>(nieuw.eind + 1));
        break;
    }
  }
}

/// The set that `nieuw` is an edit of: its groups still have the period end of its key.
DtIpa lees_oude(const DtIpa& nieuw) {
  DtIpg groep;
  ink_lees_groep(nieuw.groep1, Niveau::fataal, &groep, nullptr);
  DtIpa oud = nieuw;
  oud.eind = groep.eind;  // the caller may have changed the record's
  ink_moet_er_zijn(&oud);
  return oud;
}

}  // namespace

void ipa_schrijf(DtIpa* rec) {
  Control control('W');
  const bool wijziging = rec->groep1 != -1;
  const DtIpa oud = wijziging ? lees_oude(*rec) : DtIpa{};
  ctl_set_status(STATUS_SCHRIJVEN);  // what ended the program up to here has changed nothing
  if (wijziging) wis_set(control, oud);
  const bool binnen = wijziging && rec->begin >= oud.begin && rec->eind <= oud.eind;
  if (!binnen) maak_ruimte(control, *rec);
  std::memset(rec->maten, 0, sizeof rec->maten);
  for (Prijsgroep& groep : prijsgroepen) {
    groep.rec.groepnummer = rec->groepnummer;
    groep.rec.code = rec->code;
    groep.rec.soort = rec->soort;
    for (size_t i = 0; i < sizeof rec->maten; ++i) {
      rec->maten[i] = static_cast<uint8_t>(rec->maten[i] | groep.rec.maten[i]);
    }
  }
  schrijf_keten(control, rec, &prijsgroepen);
  if (rec->groep1 != -1) schrijf_set(*rec);
}

void ipa_wis(DtIpa* rec) {
  Control control('D');
  ink_moet_er_zijn(rec);
  ctl_set_status(STATUS_WISSEN);
  wis_set(control, *rec);
}

void ipa_wis_serie(const Serienr& nr) {
  Control control('D');
  ctl_set_status(STATUS_WISSEN);
  DtIpa vanaf{};
  vanaf.nr = nr;
  for (const DtIpa& set : alle_sets(vanaf, 1, 3)) wis_set(control, set);
}
