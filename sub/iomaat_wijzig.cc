// Changes of a size type, and how they reach the files. The list has one structure (which size
// stands where) and a text per country: the record of our own country is a table by size index,
// that of another country the inverse, a table by order position. So a change of one is a change of
// all: every record of the size type is locked for as long as the handle is open, in order of
// country.
#include <algorithm>
#include <cstring>

#include "main/controle.h"
#include "sub/bitarr.h"
#include "sub/iomaat_intern.h"
#include "sub/tabellen.h"

namespace {

constexpr const char* MODULE = "iomaat";

void moet_wijzigbaar(const MaatHandle* h) {
  if (h == nullptr) ctl_fault(MODULE, MAAT_GEEN_HANDLE);
  if (!h->wijzigbaar) ctl_fault(MODULE, MAAT_NIET_WIJZIGBAAR);
}

/// The position behind the last size.
int eerste_lege(const MaatHandle* h) {
  int p = 1;
  while (p <= MAAT_MAX && maat_gevuld(h->volgorde[size_t(p)])) ++p;
  return p;
}

int vrije_index(const MaatHandle* h) {
  int i = 1;
  while (i <= MAAT_MAX && maat_gevuld(h->index[size_t(i)])) ++i;
  return i;
}

/// Stands a size on a position, in both tables.
void plaats(MaatHandle* h, int positie, int maat, const char tekst[3]) {
  MaatIngang& op_index = h->index[size_t(maat)];
  MaatIngang& op_plaats = h->volgorde[size_t(positie)];
  std::memmove(op_index.tekst, tekst, sizeof op_index.tekst);
  op_index.ander = static_cast<uint8_t>(positie);
  op_plaats = op_index;
  op_plaats.ander = static_cast<uint8_t>(maat);
}

void verplaats(MaatHandle* h, int van, int naar) {
  const MaatIngang ingang = h->volgorde[size_t(van)];
  plaats(h, naar, ingang.ander, ingang.tekst);
}

/// The translation follows its size; an empty one has no record.
void schrijf_vertaling(const MaatHandle* h, uint8_t maat, const char vertaling[7]) {
  if (!h->vertaald) return;
  if (dtmtom == nullptr) ctl_fault(MODULE, MAAT_GEEN_MTOM);
  DtMtom oms{h->land, h->maatsoort, maat, {}, {}};
  const bool er = IXREADL(dtmtom, &oms);
  if (vertaling != nullptr && vertaling[0] != 0) {
    oms.land = h->land;
    oms.maatsoort = h->maatsoort;
    oms.maat = maat;
    std::memcpy(oms.tekst, vertaling, sizeof oms.tekst);
    IXWRITE(dtmtom, &oms);
  } else if (er) {
    IXDELETE(dtmtom, &oms);
  } else {
    IXRELEASE(dtmtom, &oms);
  }
}

uint16_t nieuw_stempel() {
  struct {
    uint16_t stempel;
    uint8_t rest[62];
  } rec{};
  static_assert(sizeof rec == 64);
  int32_t nummer = 8;
  iotab('X', &nummer, &rec, SYS_RECORDS);  // all zero before the first change: false, but locked
  if (++rec.stempel == 0) rec.stempel = 1;
  iotab('W', &nummer, &rec, SYS_RECORDS);
  return rec.stempel;
}

/// One country's record as the handle's list has it; a country keeps its own texts.
void bouw_record(const MaatHandle* h, uint8_t land, uint16_t stempel, DtMaat* rec) {
  MaatHandle oud{};
  if (land != h->land) maat_uit_record(&oud, *rec);
  std::memset(rec->ingang, 0, sizeof rec->ingang);
  for (size_t p = 1; p < MATEN && maat_gevuld(h->volgorde[p]); ++p) {
    const MaatIngang& ingang = h->volgorde[p];
    const size_t maat = ingang.ander;
    const bool eigen_tekst = land != h->land && maat_gevuld(oud.index[maat]);
    const char* tekst = eigen_tekst ? oud.index[maat].tekst : ingang.tekst;
    MaatIngang& doel = rec->ingang[land == maat_land() ? maat : p];
    std::memcpy(doel.tekst, tekst, sizeof doel.tekst);
    doel.ander = static_cast<uint8_t>(land == maat_land() ? p : maat);
  }
  std::memcpy(rec->maten, h->kaart, sizeof rec->maten);
  rec->stempel = stempel;
}

}  // namespace

void maat_vergrendel(MaatHandle* h) {
  h->landen = {h->land};
  if (maat_land() != 0 && maat_land() != h->land) h->landen.push_back(maat_land());
  DtMaat rec{};
  for (bool er = IXFIRSTR(dtmaat, &rec); er; er = IXNEXT(dtmaat, &rec)) {
    if (rec.maatsoort == h->maatsoort && std::ranges::count(h->landen, rec.land) == 0) {
      h->landen.push_back(rec.land);
    }
  }
  std::ranges::sort(h->landen);
  for (const uint8_t land : h->landen) {
    DtMaat slot{};
    slot.land = land;
    slot.maatsoort = h->maatsoort;
    IXREADL(dtmaat, &slot);
  }
}

void maat_schrijf_terug(MaatHandle* h) {
  const uint16_t stempel = h->gewijzigd ? nieuw_stempel() : uint16_t{0};
  for (const uint8_t land : h->landen) {
    DtMaat rec{};
    rec.land = land;
    rec.maatsoort = h->maatsoort;
    const bool er = IXREAD(dtmaat, &rec);
    if (!er) {
      rec = DtMaat{};
      rec.land = land;
      rec.maatsoort = h->maatsoort;
    }
    const bool leeg = eerste_lege(h) == 1;
    if (!h->gewijzigd || (leeg && !er)) {
      IXRELEASE(dtmaat, &rec);
    } else if (leeg) {
      IXDELETE(dtmaat, &rec);
    } else {
      bouw_record(h, land, stempel, &rec);
      IXWRITE(dtmaat, &rec);
    }
  }
}

bool mtwijzig(MaatHandle* h, const MaatRec* rec) {
  moet_wijzigbaar(h);
  if (!maat_mogelijk(rec->maat) || !maat_gevuld(h->index[rec->maat])) return false;
  if (h->index[rec->maat].ander != rec->positie) return false;
  plaats(h, rec->positie, rec->maat, rec->tekst);
  h->gewijzigd = true;
  schrijf_vertaling(h, rec->maat, rec->vertaling);
  return true;
}

bool mtvoegtoe(MaatHandle* h, MaatRec* rec) {
  moet_wijzigbaar(h);
  const int einde = eerste_lege(h);
  const int maat = rec->maat == 0 ? vrije_index(h) : rec->maat;
  if (einde > MAAT_MAX || rec->positie < 1 || rec->positie > einde) return false;
  if (!maat_mogelijk(maat) || maat_gevuld(h->index[size_t(maat)])) return false;
  for (int p = einde; p > rec->positie; --p) verplaats(h, p - 1, p);
  plaats(h, rec->positie, maat, rec->tekst);
  bit_zet(h->kaart, maat);
  bit_zet(h->bits, maat);
  rec->land = h->land;
  rec->maatsoort = h->maatsoort;
  rec->maat = static_cast<uint8_t>(maat);
  h->gewijzigd = true;
  schrijf_vertaling(h, rec->maat, rec->vertaling);
  return true;
}

bool mtverwijder(MaatHandle* h, uint8_t maat) {
  moet_wijzigbaar(h);
  if (!maat_mogelijk(maat) || !maat_gevuld(h->index[maat])) return false;
  const int einde = eerste_lege(h);
  const int positie = h->index[maat].ander;
  h->index[maat] = MaatIngang{};
  h->volgorde[size_t(positie)] = MaatIngang{};
  for (int p = positie; p + 1 < einde; ++p) verplaats(h, p + 1, p);
  if (einde - 1 >= positie) h->volgorde[size_t(einde - 1)] = MaatIngang{};
  bit_wis(h->kaart, maat);
  bit_wis(h->bits, maat);
  h->gewijzigd = true;
  schrijf_vertaling(h, maat, nullptr);
  return true;
}
