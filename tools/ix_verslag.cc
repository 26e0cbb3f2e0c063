// Findings of a check as lines and as JSON.
#include "tools/ix_verslag.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <utility>

namespace {

constexpr size_t FOUTEN_MEEST = 200, NOTEN_MEEST = 200;

size_t fouten_getoond(const Verslag& v) {
  size_t n = 0;
  for (const Bevinding& b : v.rijen) n += b.fout ? 1 : 0;
  return n;
}

}  // namespace

void Verslag::fout(const Plek& plek, std::string wat) {
  if (++fouten <= FOUTEN_MEEST) rijen.push_back({true, plek, std::move(wat)});
}

void Verslag::noot(const Plek& plek, std::string wat) {
  if (++noten <= NOTEN_MEEST) rijen.push_back({false, plek, std::move(wat)});
}

std::string verslag_regel(const Verslag& v, const Bevinding& b) {
  std::string regel = v.tabel;
  if (b.plek.sleutel > 0) regel += fmt::format(", sleutel {}", b.plek.sleutel);
  if (b.plek.blok >= 0) regel += fmt::format(", blok {}", b.plek.blok);
  if (b.plek.record >= 0) regel += fmt::format(", record {}", b.plek.record);
  return regel + (b.fout ? ": " : ": let op: ") + b.wat;
}

void verslag_toon(const Verslag& v) {
  for (const Bevinding& b : v.rijen) fmt::print("{}\n", verslag_regel(v, b));
  const size_t over = v.fouten - fouten_getoond(v);
  if (over > 0) fmt::print("{}: nog {} fouten\n", v.tabel, over);
  if (v.in_orde() && v.stand.empty()) return;
  if (v.in_orde()) fmt::print("{}: in orde, {}\n", v.tabel, v.stand);
}

nlohmann::ordered_json verslag_json(const Verslag& v) {
  nlohmann::ordered_json uit = {{"tabel", v.tabel}, {"in_orde", v.in_orde()}, {"fouten", v.fouten}};
  auto rijen = nlohmann::ordered_json::array();
  for (const Bevinding& b : v.rijen) {
    nlohmann::ordered_json rij = {{"soort", b.fout ? "fout" : "noot"}, {"tabel", v.tabel}};
    if (b.plek.sleutel > 0) rij["sleutel"] = b.plek.sleutel;
    if (b.plek.blok >= 0) rij["blok"] = b.plek.blok;
    if (b.plek.record >= 0) rij["record"] = b.plek.record;
    rij["wat"] = b.wat;
    rijen.push_back(std::move(rij));
  }
  uit["bevindingen"] = std::move(rijen);
  return uit;
}

void json_toon(const nlohmann::ordered_json& j) {
  fmt::print("{}\n", j.dump(1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}
