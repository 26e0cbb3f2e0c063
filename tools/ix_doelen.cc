// Which tables, private indexes and chained files a command is about.
#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>
#include <string_view>

#include "isam/base.h"
#include "sub/tabeldef.h"
#include "tools/ix_verbs.h"

namespace {

namespace fs = std::filesystem;

constexpr std::string_view PLAT[] = {"DTETI", "DTIPG"};

bool is_plat(std::string_view stam) { return std::ranges::find(PLAT, stam) != std::end(PLAT); }

bool is_naam(std::string_view s) {
  return !s.empty() && std::ranges::all_of(s, [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-';
  });
}

bool is_cijfer(char c) { return c >= '0' && c <= '9'; }

/// DTSER.V07, DTMERK.07: the private indexes that sessions leave in the directory.
bool is_privaat(std::string_view naam) {
  if (naam.starts_with("DTMERK.") && naam.size() == 9)
    return is_cijfer(naam[7]) && is_cijfer(naam[8]);
  return naam.starts_with("DTSER.") && naam.size() == 9 && naam[6] >= 'A' && naam[6] <= 'Z' &&
         is_cijfer(naam[7]) && is_cijfer(naam[8]);
}

std::optional<Doel> doel_van(std::string_view naam) {
  const size_t punt = naam.find('.');
  const std::string_view stam = naam.substr(0, punt);
  const std::string_view achter = punt == std::string_view::npos ? "" : naam.substr(punt + 1);
  if (!is_naam(stam) || (punt != std::string_view::npos && !is_naam(achter))) return std::nullopt;
  const bool eigen = achter.empty() || achter == "TXT" || achter == "INX";
  if (!eigen) return Doel{std::string(naam), DoelSoort::privaat, true};
  if (is_plat(stam)) return Doel{std::string(stam) + ".TXT", DoelSoort::plat, true};
  return Doel{std::string(stam), DoelSoort::tabel, true};
}

std::vector<Doel> alles() {
  std::set<std::string> tabellen, privaat, plat;
  std::error_code fout;
  for (const fs::directory_entry& e : fs::directory_iterator(".", fout)) {
    const std::string naam = e.path().filename().string(), stam = e.path().stem().string();
    const bool data = e.path().extension() == ".TXT";
    if (e.path().extension() == ".INX" && is_naam(stam)) tabellen.insert(stam);
    if (data && tabel_zoek(stam) != nullptr) tabellen.insert(stam);
    if (data && is_plat(stam)) plat.insert(naam);
    if (is_privaat(naam)) privaat.insert(naam);
  }
  std::vector<Doel> uit;
  uit.reserve(tabellen.size() + privaat.size() + plat.size());
  for (const std::string& n : tabellen) uit.push_back({n, DoelSoort::tabel, false});
  for (const std::string& n : privaat) uit.push_back({n, DoelSoort::privaat, false});
  for (const std::string& n : plat) uit.push_back({n, DoelSoort::plat, false});
  return uit;
}

}  // namespace

std::optional<std::vector<Doel>> ix_doelen(const std::vector<std::string>& namen) {
  std::vector<Doel> uit;
  if (namen.empty()) {
    uit = alles();
    if (!uit.empty()) return uit;
    fmt::print(stderr, "ixtool: hier staan geen tabellen\n");
    return std::nullopt;
  }
  for (const std::string& naam : namen) {
    std::optional<Doel> doel = doel_van(naam);
    if (!doel) {
      fmt::print(stderr, "ixtool: \"{}\" is geen naam van een tabel\n", naam);
      return std::nullopt;
    }
    uit.push_back(*std::move(doel));
  }
  return uit;
}
