// Sizes of a size type: the handle and the steps through it, by size index, by order position, by
// text and by rank within a series' map. Indexes and positions from files are bounded when a handle
// is filled; a size type that does not exist gives a handle without sizes.
#include "sub/iomaat.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "main/controle.h"
#include "scr/scr.h"
#include "sub/bitarr.h"
#include "sub/iomaat_intern.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr const char* MODULE = "iomaat";
constexpr int BREEDTE = 3;

/// The handles watched: more open at once than these, or a close of another, is a leak somewhere.
std::array<const MaatHandle*, 3> bewaakt;

bool bewaak(const MaatHandle* oud, const MaatHandle* nieuw) {
  const auto plaats = std::ranges::find(bewaakt, oud);
  if (plaats == bewaakt.end()) return false;
  *plaats = nieuw;
  return true;
}

void meld_lek(const char* aanroep) {
  const std::string kop = str_format("%s-%s", aanroep, txt(T_MAAT_FOUT));
  if (scr_ctx != nullptr)
    msg_fout(kop.c_str(), txt(T_MAAT_SUPPORT));
  else
    std::fprintf(stderr, "%s\n%s\n", kop.c_str(), txt(T_MAAT_SUPPORT));
}

/// Reads the record without moving the run's handle from the key or the record it stands on.
bool lees_record(uint8_t land, uint8_t maatsoort, DtMaat* rec) {
  *rec = DtMaat{};
  rec->land = land;
  rec->maatsoort = maatsoort;
  return IXREAD(dtmaat, rec);
}

void vertaal(const MaatHandle* h, MaatRec* rec) {
  std::memset(rec->vertaling, 0, sizeof rec->vertaling);
  if (!h->vertaald) return;
  if (dtmtom == nullptr) ctl_fault(MODULE, MAAT_GEEN_MTOM);
  DtMtom oms{h->land, h->maatsoort, rec->maat, {}, {}};
  if (IXREAD(dtmtom, &oms)) std::memcpy(rec->vertaling, oms.tekst, sizeof rec->vertaling);
}

// Each order answers with a size index, 0 for none ------------------------------------------------

int stap_index(const MaatHandle* h, char actie, int van) {
  const auto is_er = [h](int i) { return maat_mogelijk(i) && maat_gevuld(h->index[size_t(i)]); };
  if (actie == 'R') return is_er(van) ? van : 0;
  if (actie == 'P') {
    for (int i = std::min(van, MATEN) - 1; i >= 1; --i) {
      if (is_er(i)) return i;
    }
    return 0;
  }
  for (int i = actie == 'F' ? std::max(van, 1) : van + 1; i <= MAAT_MAX; ++i) {
    if (is_er(i)) return i;
  }
  return 0;
}

int stap_positie(const MaatHandle* h, char actie, int van) {
  const auto maat = [h](int p) { return maat_mogelijk(p) ? int{h->volgorde[size_t(p)].ander} : 0; };
  if (actie == 'R') return maat(van);
  if (actie == 'F' && maat(van) != 0) return maat(van);
  if (actie == 'P') {
    // Below the first position the bar goes on at its end.
    int p = std::min(van, MATEN);
    for (int stappen = 0; stappen < MAAT_MAX; ++stappen) {
      p = p <= 1 ? MAAT_MAX : p - 1;
      if (maat(p) != 0) return maat(p);
    }
    return 0;
  }
  for (int p = van + 1; p <= MAAT_MAX; ++p) {
    if (maat(p) != 0) return maat(p);
  }
  return 0;
}

int stap_tekst(const MaatHandle* h, char actie, const char* tekst) {
  const MaatIngang* beste = nullptr;
  for (int p = 1; p <= MAAT_MAX && maat_gevuld(h->volgorde[size_t(p)]); ++p) {
    const MaatIngang& ingang = h->volgorde[size_t(p)];
    const int ligging = std::memcmp(ingang.tekst, tekst, sizeof ingang.tekst);
    if (ligging == 0 && (actie == 'R' || actie == 'F')) return ingang.ander;
    const bool kandidaat = actie == 'P' ? ligging < 0 : actie != 'R' && ligging > 0;
    if (!kandidaat) continue;
    const int beter =
        beste == nullptr ? -1 : std::memcmp(ingang.tekst, beste->tekst, sizeof ingang.tekst);
    if (beste == nullptr || (actie == 'P' ? beter > 0 : beter < 0)) beste = &ingang;
  }
  return beste == nullptr ? 0 : beste->ander;
}

int stap_rang(const MaatHandle* h, char actie, int van, int* rang) {
  const int doel = actie == 'F' ? 1 : actie == 'N' ? van + 1 : actie == 'P' ? van - 1 : van;
  if (doel < 1) return 0;
  int geteld = 0;
  int laatste = 0;
  for (int p = 1; p <= MAAT_MAX && geteld < doel; ++p) {
    const MaatIngang& ingang = h->volgorde[size_t(p)];
    if (!maat_gevuld(ingang) || !bit_test(h->bits, ingang.ander)) continue;
    ++geteld;
    laatste = ingang.ander;
  }
  *rang = geteld;
  return geteld == doel || actie == 'P' ? laatste : 0;
}

int zoek_maat(const MaatHandle* h, char actie, const MaatRec* rec, int sleutel, int* rang) {
  switch (sleutel) {
    case 1:
      return stap_index(h, actie, rec->maat);
    case 2:
      return stap_positie(h, actie, rec->positie);
    case 3:
      return stap_tekst(h, actie, rec->tekst);
    case 4:
      return stap_rang(h, actie, rec->rang, rang);
    default:
      scr_abort("mtread(%c,%d) %s", actie, sleutel, txt(T_MAAT_KEYNR));
  }
}

}  // namespace

void maat_uit_record(MaatHandle* h, const DtMaat& rec) {
  auto& dit = rec.land == maat_land() ? h->index : h->volgorde;
  auto& ander = rec.land == maat_land() ? h->volgorde : h->index;
  for (size_t i = 1; i < MATEN; ++i) {
    const MaatIngang& ingang = rec.ingang[i];
    if (!maat_gevuld(ingang) || maat_gevuld(ander[ingang.ander])) continue;
    dit[i] = ingang;
    ander[ingang.ander] = ingang;
    ander[ingang.ander].ander = static_cast<uint8_t>(i);
  }
  std::memcpy(h->kaart, rec.maten, sizeof h->kaart);
  std::memcpy(h->bits, rec.maten, sizeof h->bits);
}

MaatHandle* mtopen(uint8_t land, uint8_t maatsoort, int vlaggen) {
  if (dtmaat == nullptr) ctl_fault(MODULE, MAAT_GEEN_BESTAND);
  if (land == 0) ctl_fault(MODULE, MAAT_GEEN_LAND);
  if (maatsoort == 0) ctl_fault(MODULE, MAAT_GEEN_SOORT);
  auto* h = new (std::nothrow) MaatHandle{};
  if (h == nullptr) ctl_nomem(MODULE, 1);
  h->land = land;
  h->maatsoort = maatsoort;
  h->vertaald = (vlaggen & MT_VERTAALD) != 0;
  h->wijzigbaar = (vlaggen & MT_WIJZIG) != 0;
  if (h->wijzigbaar) maat_vergrendel(h);
  DtMaat rec;
  if (lees_record(land, maatsoort, &rec)) maat_uit_record(h, rec);
  if (!bewaak(nullptr, h)) meld_lek("mtopen");
  return h;
}

void mtclose(MaatHandle* h) {
  if (h == nullptr) ctl_fault(MODULE, MAAT_GEEN_HANDLE);
  if (!bewaak(h, nullptr)) meld_lek("mtclose");
  if (h->wijzigbaar) maat_schrijf_terug(h);
  delete h;
}

void mtbits(MaatHandle* h, const uint8_t bits[12]) {
  if (h == nullptr) ctl_fault(MODULE, MAAT_GEEN_HANDLE);
  std::memcpy(h->bits, bits, sizeof h->bits);
}

MaatHandle* mtkeep(MaatHandle** slot, uint8_t land, uint8_t maatsoort, const uint8_t bits[12]) {
  if (*slot != nullptr && ((*slot)->land != land || (*slot)->maatsoort != maatsoort)) {
    mtclose(*slot);
    *slot = nullptr;
  }
  if (*slot == nullptr) *slot = mtopen(land, maatsoort, 0);
  if (bits != nullptr) mtbits(*slot, bits);
  return *slot;
}

MaatHandle* mtserie(MaatHandle** slot, const DtSer& serie) {
  if (maat_land() != 0 && serie.maatsoort != 0)
    return mtkeep(slot, maat_land(), serie.maatsoort, serie.maten);
  mtlos(slot);
  return nullptr;
}

void mtlos(MaatHandle** slot) {
  if (*slot != nullptr) mtclose(*slot);
  *slot = nullptr;
}

std::vector<MaatRec> mtlijst(MaatHandle* h) {
  std::vector<MaatRec> uit;
  MaatRec rec{};
  for (bool er = h != nullptr && mtread(h, 'F', &rec, 4); er; er = mtread(h, 'N', &rec, 4))
    uit.push_back(rec);
  return uit;
}

bool mtzoek(MaatHandle* h, uint8_t maat, MaatRec* rec) {
  *rec = {};
  rec->maat = maat;
  return h != nullptr && mtread(h, 'R', rec, 1);
}

bool mtread(MaatHandle* h, char actie, MaatRec* rec, int sleutel) {
  if (h == nullptr) ctl_fault(MODULE, MAAT_GEEN_HANDLE);
  if (std::strchr("FNPR", actie) == nullptr || actie == 0) {
    scr_abort("mtread(%c,%d) %s", actie, sleutel, txt(T_MAAT_AKTIE));
  }
  int rang = 0;
  const int maat = zoek_maat(h, actie, rec, sleutel, &rang);
  if (!maat_mogelijk(maat)) return false;
  const MaatIngang& ingang = h->index[size_t(maat)];
  rec->land = h->land;
  rec->maatsoort = h->maatsoort;
  rec->maat = static_cast<uint8_t>(maat);
  rec->positie = ingang.ander;
  if (sleutel == 4) rec->rang = static_cast<uint8_t>(rang);
  std::memcpy(rec->tekst, ingang.tekst, sizeof rec->tekst);
  vertaal(h, rec);
  return true;
}

uint8_t maat_land() { return sys_rec1.land; }

int maat_breedte(const int32_t* cellen) {
  const int32_t hoogste = *std::max_element(cellen + 1, cellen + MATEN);
  if (hoogste > 9999) return 5;
  if (hoogste > 999) return 4;
  return sys_rec20.kolombreedte != 0 ? sys_rec20.kolombreedte : BREEDTE;
}

int maat_kolommen(int schermbreedte, int kolombreedte) {
  return kolombreedte < 0 ? 0 : schermbreedte / (kolombreedte + 1);
}
