// Records and keys by field, to JSON and text, and the values of a key back into its image.
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <nlohmann/json.hpp>

#include "isam/base.h"
#include "isam/ix_intern.h"
#include "tools/velden.h"

using nlohmann::ordered_json;

namespace {

int64_t getal(const uint8_t* p, int n) {
  uint64_t uit = 0;
  for (int i = n - 1; i >= 0; --i) uit = uit << 8 | p[i];
  return static_cast<int64_t>(uit);
}

ordered_json verzameling(const uint8_t* p, int n) {
  auto uit = ordered_json::array();
  for (int i = 0; i < n * 8; ++i)
    if ((p[i / 8] >> (i % 8) & 1) != 0) uit.push_back(i);
  return uit;
}

ordered_json waarde(const Veld& v, const uint8_t* p) {
  const auto* tekst = reinterpret_cast<const char*>(p);
  const auto n = static_cast<size_t>(veld_breedte(v));
  switch (v.soort) {
    case VeldSoort::tekst:
      return cp850_toon(veld_tekst(tekst, n));
    case VeldSoort::verhuld:
      return cp850_toon(unscramble_veld(tekst, n));
    case VeldSoort::bits:
      return verzameling(p, v.breedte);
    case VeldSoort::i32:
      return ix_i32(p);
    default:
      return getal(p, veld_breedte(v));
  }
}

/// Quantities by index, those that are not 0.
ordered_json aantallen(const Veld& v, const uint8_t* rec, int64_t* som) {
  auto uit = ordered_json::object();
  for (int i = 0; i < v.aantal; ++i) {
    const int64_t n = getal(rec + v.offset + i * veld_breedte(v), veld_breedte(v));
    if (n != 0) uit[std::to_string(i)] = n;
    *som += n;
  }
  return uit;
}

void voeg_veld(ordered_json* uit, const Veld& v, const uint8_t* rec) {
  if (v.som) {
    int64_t som = 0;
    (*uit)[v.naam] = aantallen(v, rec, &som);
    (*uit)[std::string(v.naam) + "_som"] = som;
    return;
  }
  if (v.aantal == 1) {
    (*uit)[v.naam] = waarde(v, rec + v.offset);
    return;
  }
  auto rij = ordered_json::array();
  const int stap = v.stap == 0 ? veld_breedte(v) : v.stap;
  for (int i = 0; i < v.aantal; ++i) rij.push_back(waarde(v, rec + v.offset + i * stap));
  (*uit)[v.naam] = std::move(rij);
}

std::string hex(std::span<const uint8_t> bytes) {
  std::string uit;
  for (uint8_t b : bytes) uit += fmt::format("{:02x}", b);
  return uit;
}

std::string kort(const ordered_json& j) {
  if (j.is_string()) return "\"" + j.get<std::string>() + "\"";
  if (!j.is_structured()) return j.dump();
  std::string uit;
  for (const auto& [naam, deel] : j.items()) {
    if (!uit.empty()) uit += ",";
    uit += j.is_object() ? naam + ":" + kort(deel) : kort(deel);
  }
  return (j.is_object() ? "{" : "[") + uit + (j.is_object() ? "}" : "]");
}

struct SleutelDeel {
  char soort;
  int offset, breedte;  // in the record
};

std::vector<SleutelDeel> delen(const IxSleutel& s) {
  std::vector<SleutelDeel> uit;
  int klaar = 0;
  for (int i = 0; i < IX_VELDEN && s.field_type[i] != 0; ++i) {
    const int n = s.field_end[i] - s.field_start[i] + 1;
    if (n < 1 || s.field_start[i] < 1 || klaar + n > IX_SLEUTELBYTES) break;
    uit.push_back({s.field_type[i], s.field_start[i] - 1, n});
    klaar += n;
  }
  return uit;
}

const Veld* veld_op(Velden velden, int offset, int breedte) {
  for (const Veld& v : velden)
    if (v.offset == offset && v.aantal == 1 && veld_breedte(v) == breedte) return &v;
  return nullptr;
}

ordered_json deel_waarde(const SleutelDeel& d, const uint8_t* beeld, Velden velden) {
  const auto n = static_cast<size_t>(d.breedte);
  if (d.soort == 'C') return cp850_toon(veld_tekst(reinterpret_cast<const char*>(beeld), n));
  uint8_t om[IX_SLEUTELBYTES];
  std::reverse_copy(beeld, beeld + n, om);
  if (const Veld* v = veld_op(velden, d.offset, d.breedte)) return waarde(*v, om);
  if (d.breedte > 4) return hex({beeld, n});
  return getal(om, d.breedte);
}

bool lees_getal(const std::string& tekst, int breedte, uint8_t* beeld) {
  int64_t waarde = 0;
  const char* einde = tekst.data() + tekst.size();
  const auto [tot, fout] = std::from_chars(tekst.data(), einde, waarde);
  if (fout != std::errc() || tot != einde || breedte > 4) return false;
  const int64_t grens = int64_t{1} << (8 * breedte);
  if (waarde >= grens || waarde < -grens / 2) return false;
  for (int i = breedte - 1; i >= 0; --i, waarde >>= 8)
    beeld[i] = static_cast<uint8_t>(waarde & 255);
  return true;
}

}  // namespace

std::string cp850_toon(std::string_view bytes) {
  std::string schoon(bytes);
  for (char& c : schoon)
    if (static_cast<uint8_t>(c) < 32 || c == 127) c = '.';
  return cp850_utf8(schoon);
}

ordered_json record_json(Velden velden, std::span<const uint8_t> rec,
                         std::span<const std::string> keuze) {
  auto uit = ordered_json::object();
  if (velden.empty()) uit["hex"] = hex(rec);
  for (const Veld& v : velden) {
    const bool gewenst = keuze.empty() || std::ranges::find(keuze, v.naam) != keuze.end();
    if (gewenst) voeg_veld(&uit, v, rec.data());
  }
  return uit;
}

std::string velden_tekst(const ordered_json& j) {
  std::string uit;
  for (const auto& [naam, deel] : j.items()) {
    if (!uit.empty()) uit += " ";
    uit += naam + "=" + kort(deel);
  }
  return uit;
}

std::string veld_naam(Velden velden, int offset, int breedte) {
  if (const Veld* v = veld_op(velden, offset, breedte)) return v->naam;
  return breedte == 1 ? fmt::format("byte {}", offset + 1)
                      : fmt::format("bytes {}-{}", offset + 1, offset + breedte);
}

ordered_json sleutel_json(const IxSleutel& s, const uint8_t* beeld, Velden velden) {
  auto uit = ordered_json::object();
  int klaar = 0;
  for (const SleutelDeel& d : delen(s)) {
    uit[veld_naam(velden, d.offset, d.breedte)] = deel_waarde(d, beeld + klaar, velden);
    klaar += d.breedte;
  }
  if (s.dup == 'J' && klaar + 4 <= IX_SLEUTELBYTES) {
    uint8_t om[4];
    std::reverse_copy(beeld + klaar, beeld + klaar + 4, om);
    uit["record"] = ix_i32(om);
  }
  return uit;
}

std::string sleutel_tekst(const IxSleutel& s, const uint8_t* beeld, Velden velden) {
  return velden_tekst(sleutel_json(s, beeld, velden));
}

int sleutel_uit_tekst(const IxSleutel& s, std::span<const std::string> waarden, Velden velden,
                      uint8_t* beeld) {
  const std::vector<SleutelDeel> alle = delen(s);
  if (waarden.size() > alle.size()) return -1;
  std::fill_n(beeld, IX_SLEUTELBYTES, uint8_t{0});
  int klaar = 0;
  for (size_t i = 0; i < waarden.size(); ++i) {
    const SleutelDeel& d = alle[i];
    const Veld* v = veld_op(velden, d.offset, d.breedte);
    const bool tekst = d.soort == 'C' || (v != nullptr && v->soort == VeldSoort::tekst);
    if (tekst) {
      const std::string bytes = utf8_cp850(waarden[i]);
      if (bytes.size() > static_cast<size_t>(d.breedte)) return -1;
      memcpy(beeld + klaar, bytes.data(), bytes.size());
    } else if (!lees_getal(waarden[i], d.breedte, beeld + klaar)) {
      return -1;
    }
    klaar += d.breedte;
  }
  return klaar;
}
