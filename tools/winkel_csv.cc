// See winkel_csv.h.
#include "tools/winkel_csv.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <nlohmann/json.hpp>

#include "isam/base.h"

namespace {

using nlohmann::ordered_json;

int64_t getal(const uint8_t* p, size_t n) {
  uint64_t uit = 0;
  for (size_t i = n; i-- > 0;) uit = uit << 8 | p[i];
  return static_cast<int64_t>(uit);
}
void zet_getal(int64_t waarde, uint8_t* p, size_t n) {
  for (size_t i = 0; i < n; ++i)
    p[i] = static_cast<uint8_t>(static_cast<uint64_t>(waarde) >> 8 * i);
}

bool heel_getal(std::string_view t, int64_t* uit) {
  const auto [tot, fout] = std::from_chars(t.data(), t.data() + t.size(), *uit);
  return fout == std::errc() && tot == t.data() + t.size();
}

// Forms of a number: the text of a value, and the value of a text or why it is none ---------------

std::string dag_tekst(int64_t n) {
  if (n == 0) return "";
  const std::string tekst = date_show_long(static_cast<uint16_t>(n));
  std::string kaal = tekst;
  std::erase(kaal, '-');
  // What is no day that reads back is given as its number.
  return date_valid(kaal.c_str()) && date_number(kaal.c_str()) == n ? tekst : std::to_string(n);
}
std::string lees_dag(std::string_view t, int64_t* uit) {
  *uit = 0;
  if (t.empty()) return "";
  if (t.find('-') == t.npos && t.size() <= 5 && heel_getal(t, uit)) return "";
  std::string kaal(t);
  if (t.size() == 10 && t[2] == '-' && t[5] == '-') std::erase(kaal, '-');
  const bool goed = kaal.size() == 8 && date_valid(kaal.c_str());
  *uit = goed ? date_number(kaal.c_str()) : 0;
  return *uit == 0 ? "geen datum DD-MM-JJJJ" : "";
}

std::string decimaal_tekst(int64_t n, int cijfers) {
  int64_t deler = 1;
  for (int i = 0; i < cijfers; ++i) deler *= 10;
  const int64_t abs = n < 0 ? -n : n;
  return fmt::format("{}{}.{:0{}}", n < 0 ? "-" : "", abs / deler, abs % deler, cijfers);
}
std::string lees_decimaal(std::string_view t, int cijfers, int64_t* uit) {
  *uit = 0;
  if (t.empty()) return "";
  const std::string bezwaar = fmt::format("geen getal met {} cijfers achter de punt", cijfers);
  const bool min = t.front() == '-';
  std::string kaal(t.substr(min ? 1 : 0));
  const size_t punt = kaal.find_first_of(".,");
  if (punt == kaal.npos || punt == 0 || kaal.size() - punt - 1 != static_cast<size_t>(cijfers))
    return bezwaar;
  kaal.erase(punt, 1);
  if (kaal.size() > 15 || kaal.find_first_not_of("0123456789") != kaal.npos) return bezwaar;
  heel_getal(kaal, uit);
  if (min) *uit = -*uit;
  return "";
}

std::string getal_tekst(const Veld& v, int64_t n) {
  switch (v.vorm) {
    case VeldVorm::dag:
      return dag_tekst(n);
    case VeldVorm::centen:
      return decimaal_tekst(n, 2);
    case VeldVorm::koers:
      return decimaal_tekst(n, 6);
    case VeldVorm::stuks:
      return n == UINT32_MAX ? "" : std::to_string(n);
    default:
      return v.som && n == 0 ? "" : std::to_string(n);
  }
}
std::string lees_getal(const Veld& v, std::string_view t, int64_t* uit) {
  switch (v.vorm) {
    case VeldVorm::dag:
      return lees_dag(t, uit);
    case VeldVorm::centen:
      return lees_decimaal(t, 2, uit);
    case VeldVorm::koers:
      return lees_decimaal(t, 6, uit);
    default:
      *uit = v.vorm == VeldVorm::stuks ? int64_t{UINT32_MAX} : 0;
      return t.empty() || heel_getal(t, uit) ? "" : "geen geheel getal";
  }
}
std::string zet_grens(const Veld& v, std::string_view t, uint8_t* p, size_t n) {
  int64_t waarde = 0;
  const std::string bezwaar = lees_getal(v, t, &waarde);
  if (!bezwaar.empty()) return bezwaar;
  const bool min = v.soort == VeldSoort::i32;
  const int64_t laag = min ? INT32_MIN : 0;
  const int64_t hoog = min ? INT32_MAX : (int64_t{1} << 8 * n) - 1;
  if (waarde < laag || waarde > hoog) return fmt::format("niet van {} tot {}", laag, hoog);
  zet_getal(waarde, p, n);
  return "";
}

// Sets --------------------------------------------------------------------------------------------

bool bit(const uint8_t* p, int i) { return (p[i / 8] >> (i % 8) & 1) != 0; }

std::string set_tekst(const uint8_t* p, int bits) {
  std::string uit;
  for (int i = 0; i < bits; ++i) {
    if (!bit(p, i)) continue;
    int tot = i;
    while (tot + 1 < bits && bit(p, tot + 1)) ++tot;
    uit += fmt::format("{}{}", uit.empty() ? "" : ",", i);
    if (tot > i) uit += fmt::format("-{}", tot);
    i = tot;
  }
  return uit;
}
std::string zet_set(std::string_view t, uint8_t* p, int bits) {
  std::fill_n(p, bits / 8, uint8_t{0});
  while (!t.empty()) {
    const std::string_view stuk = t.substr(0, t.find(','));
    t.remove_prefix(std::min(t.size(), stuk.size() + 1));
    const size_t streep = stuk.find('-');
    int64_t van = -1, tot = -1;
    bool goed = heel_getal(stuk.substr(0, streep), &van);
    tot = van;
    if (streep != stuk.npos) goed = goed && heel_getal(stuk.substr(streep + 1), &tot);
    if (!goed) return "geen lijst van nummers als 0-3,7";
    if (van < 0 || tot < van || tot >= bits)
      return fmt::format("nummers lopen van 0 tot {}", bits - 1);
    for (int64_t i = van; i <= tot; ++i) p[i / 8] = static_cast<uint8_t>(p[i / 8] | 1 << (i % 8));
  }
  return "";
}

std::string zet_tekst(std::string_view t, uint8_t* p, size_t n) {
  bool geheel = true;
  const std::string bytes = utf8_cp850(t, &geheel);
  if (!geheel) return "tekens buiten codetabel 850";
  if (bytes.size() > n) return fmt::format("langer dan {} tekens", n);
  if (bytes.find('\0') != bytes.npos) return "een nulteken";
  // What stands behind the end of a text that does not change is left alone.
  auto* veld = reinterpret_cast<char*>(p);
  if (veld_tekst(veld, n) != bytes) veld_zet(veld, n, bytes);
  return "";
}

}  // namespace

size_t CsvKolom::breedte() const { return static_cast<size_t>(veld_breedte(*veld)); }
size_t CsvKolom::plaats() const {
  const int stap = veld->stap == 0 ? veld_breedte(*veld) : veld->stap;
  return static_cast<size_t>(veld->offset + index * stap);
}

std::vector<CsvKolom> csv_kolommen(Velden velden) {
  std::vector<CsvKolom> uit;
  for (const Veld& v : velden)
    for (int i = 0; i < v.aantal; ++i)
      uit.push_back({&v, i, v.aantal == 1 ? v.naam : fmt::format("{}.{}", v.naam, i)});
  return uit;
}

std::string csv_waarde(const CsvKolom& k, std::span<const uint8_t> rec) {
  const uint8_t* p = rec.data() + k.plaats();
  const auto* tekst = reinterpret_cast<const char*>(p);
  switch (k.veld->soort) {
    case VeldSoort::tekst:
      return cp850_utf8(veld_tekst(tekst, k.breedte()));
    case VeldSoort::verhuld:
      return cp850_utf8(unscramble_veld(tekst, k.breedte()));
    case VeldSoort::bits:
      return set_tekst(p, static_cast<int>(k.breedte()) * 8);
    case VeldSoort::i32:
      return getal_tekst(*k.veld, static_cast<int32_t>(getal(p, 4)));
    default:
      return getal_tekst(*k.veld, getal(p, k.breedte()));
  }
}

std::string csv_zet(const CsvKolom& k, std::string_view tekst, std::span<uint8_t> rec) {
  uint8_t* p = rec.data() + k.plaats();
  switch (k.veld->soort) {
    case VeldSoort::tekst:
    case VeldSoort::verhuld:
      return zet_tekst(tekst, p, k.breedte());
    case VeldSoort::bits:
      return zet_set(tekst, p, static_cast<int>(k.breedte()) * 8);
    default:
      return zet_grens(*k.veld, tekst, p, k.breedte());
  }
}

// Out ---------------------------------------------------------------------------------------------

namespace {

std::string cel(const std::string& t) {
  const bool kaal =
      t.find_first_of("\";,\t\r\n") == t.npos && !t.starts_with(' ') && !t.ends_with(' ');
  if (kaal) return t;
  std::string uit = "\"";
  for (const char c : t) uit += c == '"' ? std::string("\"\"") : std::string(1, c);
  return uit + "\"";
}

template <class Doe>
std::string tussen(std::span<const CsvKolom> kolommen, const Doe& doe) {
  std::string uit;
  for (size_t i = 0; i < kolommen.size(); ++i) uit += (i == 0 ? "" : ";") + cel(doe(kolommen[i]));
  return uit;
}

}  // namespace

std::string csv_kop(std::span<const CsvKolom> kolommen) {
  return tussen(kolommen, [](const CsvKolom& k) { return k.naam; });
}

std::string csv_regel(std::span<const CsvKolom> kolommen, std::span<const uint8_t> rec) {
  return tussen(kolommen, [&](const CsvKolom& k) { return csv_waarde(k, rec); });
}

std::string csv_json(std::span<const CsvKolom> kolommen, std::span<const uint8_t> rec) {
  auto uit = ordered_json::object();
  for (const CsvKolom& k : kolommen) {
    const std::string tekst = csv_waarde(k, rec);
    const bool in_cijfers = k.veld->vorm == VeldVorm::getal && k.veld->soort != VeldSoort::tekst &&
                            k.veld->soort != VeldSoort::verhuld && k.veld->soort != VeldSoort::bits;
    int64_t n = 0;
    const bool getallen = in_cijfers && (tekst.empty() || heel_getal(tekst, &n));
    const ordered_json waarde = getallen ? ordered_json(n) : ordered_json(tekst);
    if (k.veld->aantal == 1)
      uit[k.naam] = waarde;
    else
      uit[k.veld->naam].push_back(waarde);
  }
  return uit.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}
