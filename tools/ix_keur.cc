// Header, sizes, lock queue and free chain of a table.
#include "tools/ix_keur.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "isam/base.h"
#include "sub/tabeldef.h"
#include "tools/velden.h"

namespace {

std::string naam_van(const char* veld, size_t n) { return cp850_toon(veld_tekst(veld, n)); }

bool keur_sleutel(const ICB& kop, int nr, Verslag* v) {
  const IxSleutel& s = kop.keys[nr - 1];
  const size_t voor = v->fouten;
  const Plek plek{.sleutel = nr};
  if (s.dup != 'N' && s.dup != 'J')
    v->fout(plek, fmt::format("merk voor dubbelen {}", static_cast<int>(s.dup)));
  if (nr == 1 && s.dup == 'J') v->fout(plek, "de eerste sleutel laat dubbelen toe");
  int lengte = s.dup == 'J' ? 4 : 0, velden = 0;
  for (; velden < IX_VELDEN && s.field_type[velden] != 0; ++velden) {
    const int van = s.field_start[velden], tot = s.field_end[velden];
    if (s.field_type[velden] != 'C' && s.field_type[velden] != 'I')
      v->fout(plek, fmt::format("veld {} heeft soort {}", velden + 1,
                                static_cast<int>(s.field_type[velden])));
    if (van < 1 || tot < van || tot > kop.record_length)
      v->fout(plek, fmt::format("veld {} ligt op byte {} tot {}", velden + 1, van, tot));
    lengte += std::max(tot - van + 1, 0);
  }
  if (velden == 0) v->fout(plek, "geen velden");
  const bool past = lengte >= 1 && lengte <= IX_SLEUTELBYTES;
  if (!past) v->fout(plek, fmt::format("velden van samen {} bytes", lengte));
  if (past && s.key_length != lengte)
    v->fout(plek, fmt::format("sleutellengte {}, de velden geven {}", s.key_length, lengte));
  else if (past && s.max_entries != std::min(IX_INGANGEN / (lengte + 4), 127))
    v->fout(plek, fmt::format("{} ingangen per blok, verwacht {}", s.max_entries,
                              IX_INGANGEN / (lengte + 4)));
  return v->fouten == voor;
}

/// A table that all programs know must have the keys that they count on.
void keur_definitie(const Keuring& k, const std::string& naam) {
  const TabelDef* def = tabel_zoek(naam);
  if (def == nullptr) return;
  if (!kop_is_van(k.kop, *def))
    k.verslag->fout({}, "recordlengte of sleutels wijken af van de definitie van de tabel");
}

/// Bytes that mean nothing are written zero; the engine never looks at them.
void keur_ongebruikt(const Keuring& k) {
  const uint8_t* eerste = reinterpret_cast<const uint8_t*>(k.kop.keys + k.kop.key_count);
  const uint8_t* einde = reinterpret_cast<const uint8_t*>(&k.kop.version);
  const bool nul = std::all_of(eerste, einde, [](uint8_t b) { return b == 0; });
  if (!nul || k.kop.nul[0] != 0 || k.kop.nul[1] != 0)
    k.verslag->noot({}, "ongebruikte bytes van de kop zijn niet nul");
}

void keur_maten(Keuring& k) {
  Verslag* v = k.verslag;
  k.blokken = static_cast<int64_t>(k.index.size()) / IX_BLOK;
  if (k.index.size() % IX_BLOK != 0 || k.kop.next_block != k.blokken)
    v->fout({}, fmt::format("index van {} bytes, volgens de kop {} blokken van {}", k.index.size(),
                            k.kop.next_block, IX_BLOK));
  const auto lengte = static_cast<size_t>(k.kop.record_length);
  k.slots = static_cast<int64_t>(k.data.size() / lengte);
  const bool geheel = k.data.size() % lengte == 0;
  if (!geheel || (!k.privaat && k.kop.record_count != k.slots))
    v->fout({}, fmt::format("databestand van {} bytes, volgens de kop {} records van {}",
                            k.data.size(), k.kop.record_count, lengte));
  if (k.privaat && (k.kop.record_count < 0 || k.kop.record_count > k.slots))
    v->fout({}, fmt::format("hoogste record {} in een tabel van {} records", k.kop.record_count,
                            k.slots));
  k.levend.resize(static_cast<size_t>(k.slots));
  for (int64_t i = 0; i < k.slots; ++i) {
    k.levend[static_cast<size_t>(i)] = ix_levend(k.slot(i), k.kop.record_length);
    k.verwijderd += k.levend[static_cast<size_t>(i)] ? 0 : 1;
  }
}

}  // namespace

bool kop_is_van(const ICB& kop, const TabelDef& def) {
  ICB soll{};
  int sleutels = 0;
  for (const char* definitie : def.sleutels)
    if (definitie != nullptr) IXUPDFCB(&soll, ++sleutels, definitie);
  if (kop.record_length != def.lengte || kop.key_count != sleutels) return false;
  // Names are for people; all else decides what a key is.
  constexpr size_t VAN = offsetof(IxSleutel, dup);
  for (int i = 0; i < sleutels; ++i)
    if (memcmp(&kop.keys[i].dup, &soll.keys[i].dup, sizeof(IxSleutel) - VAN - 1) != 0) return false;
  return true;
}

bool keur_kop(Keuring& k, const std::string& naam) {
  Verslag* v = k.verslag;
  if (k.index.size() < IX_KOP) {
    v->fout({}, fmt::format("index van {} bytes, te kort voor een kop", k.index.size()));
    return false;
  }
  memcpy(static_cast<void*>(&k.kop), k.index.data(), IX_KOP);
  if (k.kop.version != IX_VERSIE)
    v->fout({}, fmt::format("versie {}, verwacht {}", k.kop.version, IX_VERSIE));
  if (k.kop.busy != 0) v->fout({}, fmt::format("Niet consistent (bezig {})", k.kop.busy));
  if (naam_van(k.kop.name, sizeof k.kop.name) != naam.substr(0, sizeof k.kop.name))
    v->fout({}, fmt::format("de kop noemt \"{}\"", naam_van(k.kop.name, sizeof k.kop.name)));
  if (k.kop.key_count < 1 || k.kop.key_count > IX_SLEUTELS || k.kop.record_length < 5) {
    v->fout({}, fmt::format("{} sleutels, recordlengte {}", k.kop.key_count, k.kop.record_length));
    return false;
  }
  bool goed = true;
  for (int i = 1; i <= k.kop.key_count; ++i) goed = keur_sleutel(k.kop, i, v) && goed;
  keur_maten(k);
  keur_ongebruikt(k);
  if (goed) keur_definitie(k, naam);
  if (goed && k.blokken < k.kop.key_count + 2) {
    v->fout({}, "de wortels en de wachtrij staan niet in de index");
    goed = false;
  }
  return goed;
}

int rij_aantal(const uint8_t* blok, int breed) {
  return std::min<int>(blok[offsetof(IxBlok, count)], IX_INGANGEN / std::max(breed, 1));
}

void keur_rij(Keuring& k) {
  const int64_t nr = k.kop.key_count + 1;
  const uint8_t* blok = k.blok(nr);
  const IxSleutel& s = k.kop.keys[0];
  const int aantal = blok[offsetof(IxBlok, count)];
  k.rij = rij_aantal(blok, s.key_length);
  if (blok[0] != 1 || blok[1] != 0 || blok[2] != 0 || blok[3] != 0)
    k.verslag->fout({.blok = nr}, "dit is geen wachtrij");
  if (aantal != k.rij) {
    k.verslag->fout({.blok = nr}, fmt::format("wachtrij van {} sleutels", aantal));
    return;
  }
  const uint8_t* rest = blok + offsetof(IxBlok, entries) + k.rij * s.key_length;
  if (!std::all_of(rest, blok + IX_BLOK, [](uint8_t b) { return b == 0; }))
    k.verslag->fout({.blok = nr}, "ongebruikte bytes zijn niet nul");
  const Velden velden = velden_van(k.kop, k.verslag->tabel);
  for (int i = 0; i < k.rij; ++i) {
    const uint8_t* beeld = blok + offsetof(IxBlok, entries) + i * s.key_length;
    k.verslag->noot({.blok = nr}, "in de wachtrij: " + sleutel_tekst(s, beeld, velden));
  }
}

void keur_vrij(Keuring& k) {
  Verslag* v = k.verslag;
  if (k.privaat) {
    if (k.kop.free_head != -1)
      v->fout({}, fmt::format("een vrije keten vanaf record {}", k.kop.free_head));
    return;
  }
  std::vector<bool> gezien(k.levend.size());
  int32_t vorig = -1;
  for (int32_t nr = k.kop.free_head; nr != -1; nr = ix_i32(k.slot(nr) + 1)) {
    const Plek plek{.record = vorig};
    const auto i = static_cast<size_t>(nr);
    if (nr < 0 || nr >= k.slots) {
      v->fout(plek, fmt::format("vrije keten leidt naar record {}", nr));
      return;
    }
    if (k.levend[i]) {
      v->fout(plek, fmt::format("vrije keten leidt naar record {}, dat in gebruik is", nr));
      break;
    }
    if (gezien[i]) {
      v->fout(plek, fmt::format("vrije keten komt terug bij record {}", nr));
      break;
    }
    gezien[i] = true;
    vorig = nr;
  }
  for (size_t i = 0; i < gezien.size(); ++i)
    if (!k.levend[i] && !gezien[i])
      v->fout({.record = static_cast<int64_t>(i)}, "verwijderd, maar niet in de vrije keten");
}

Keuring keur_tabel(const std::string& naam, const TabelKopie& kopie, bool verouderd_mag,
                   Verslag* v) {
  Keuring k;
  k.index = kopie.index;
  k.data = kopie.data;
  k.privaat = naam.find('.') != std::string::npos;
  k.verouderd_mag = verouderd_mag;
  k.verslag = v;
  if (!keur_kop(k, naam)) return k;
  keur_bomen(k);
  keur_rij(k);
  keur_vrij(k);
  if (k.leeg > 0) v->noot({}, fmt::format("{} geleegde blokken", k.leeg));
  v->stand = k.privaat
                 ? fmt::format("index van {} blokken", k.blokken)
                 : fmt::format("{} records, {} verwijderd", k.slots - k.verwijderd, k.verwijderd);
  return k;
}
