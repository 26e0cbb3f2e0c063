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

// In ----------------------------------------------------------------------------------------------

namespace {

/// Cells of a text, record by record.
struct Lezer {
  std::string_view rest;
  char scheiding = ';';
  int regel = 1;      // of what comes next
  bool open = false;  // a quote was never closed

  char neem() {
    const char c = rest.front();
    rest.remove_prefix(1);
    if (c == '\n') ++regel;
    return c;
  }
  std::string tussen_aanhaling() {
    std::string uit;
    neem();
    while (!rest.empty()) {
      const char c = neem();
      if (c != '"')
        uit += c;
      else if (rest.starts_with('"'))
        uit += neem();
      else
        return uit;
    }
    open = true;
    return uit;
  }
  /// One record; false at the end of the text.
  bool rij(std::vector<std::string>* cellen) {
    cellen->clear();
    if (rest.empty()) return false;
    std::string nu;
    while (!rest.empty()) {
      if (rest.front() == '"' && nu.empty()) {
        nu = tussen_aanhaling();
        continue;
      }
      const char c = neem();
      if (c == '\n') break;
      if (c == '\r' && (rest.empty() || rest.front() == '\n')) continue;
      if (c == scheiding) {
        cellen->push_back(std::move(nu));
        nu.clear();
      } else {
        nu += c;
      }
    }
    cellen->push_back(std::move(nu));
    return true;
  }
};

CsvTekst fout(CsvTekst uit, int regel, std::string tekst) {
  uit.regel = regel;
  uit.fout = std::move(tekst);
  return uit;
}

CsvTekst lees_cellen(std::string_view tekst) {
  CsvTekst uit;
  Lezer l{tekst};
  const std::string_view eerste = tekst.substr(0, tekst.find('\n'));
  for (const char c : {';', '\t', ','})
    if (eerste.find(c) != eerste.npos) {
      l.scheiding = c;
      break;
    }
  std::vector<std::string> kop, cellen;
  if (!l.rij(&kop)) return fout(std::move(uit), 1, "er staat niets in");
  for (int regel = l.regel; l.rij(&cellen); regel = l.regel) {
    if (l.open) return fout(std::move(uit), regel, "een aanhalingsteken wordt niet gesloten");
    if (cellen.size() == 1 && cellen[0].empty()) continue;  // an empty line
    if (cellen.size() != kop.size())
      return fout(std::move(uit), regel,
                  fmt::format("{} velden onder {} kolommen", cellen.size(), kop.size()));
    CsvRij rij{regel, {}};
    for (size_t i = 0; i < kop.size(); ++i) rij.waarden.emplace_back(kop[i], std::move(cellen[i]));
    uit.rijen.push_back(std::move(rij));
  }
  return uit;
}

/// A value of JSON as the text of a cell; false for what is none.
bool json_cel(const ordered_json& j, std::string* uit) {
  if (j.is_string())
    *uit = j.get<std::string>();
  else if (j.is_number_integer())
    *uit = j.dump();
  else if (j.is_null())
    uit->clear();
  else
    return false;
  return true;
}

std::string neem_object(const ordered_json& j, CsvRij* rij) {
  std::string tekst;
  for (const auto& [naam, waarde] : j.items()) {
    if (!waarde.is_structured()) {
      if (!json_cel(waarde, &tekst))
        return fmt::format("veld {}: geen tekst of geheel getal", naam);
      rij->waarden.emplace_back(naam, tekst);
      continue;
    }
    size_t i = 0;
    for (const auto& [sleutel, deel] : waarde.items()) {
      const std::string plek = waarde.is_object() ? sleutel : std::to_string(i++);
      if (!json_cel(deel, &tekst))
        return fmt::format("veld {}.{}: geen tekst of geheel getal", naam, plek);
      rij->waarden.emplace_back(naam + "." + plek, tekst);
    }
  }
  return "";
}

/// The next object of a list, or of lines of them: its bytes, cut off `rest`. Empty when there is
/// no whole one.
std::string_view volgend_object(std::string_view* rest) {
  int diep = 0;
  bool tekst = false;
  for (size_t i = 0; i < rest->size(); ++i) {
    const char c = (*rest)[i];
    if (tekst) {
      if (c == '\\')
        ++i;
      else if (c == '"')
        tekst = false;
      continue;
    }
    tekst = c == '"';
    diep += c == '{' ? 1 : c == '}' ? -1 : 0;
    if (c != '}' || diep != 0) continue;
    const std::string_view object = rest->substr(0, i + 1);
    rest->remove_prefix(i + 1);
    return object;
  }
  return {};
}

CsvTekst lees_json(std::string_view tekst) {
  CsvTekst uit;
  std::string_view rest = tekst;
  const auto hier = [&](std::string_view r) {
    const std::string_view voor = tekst.substr(0, tekst.size() - r.size());
    return 1 + static_cast<int>(std::count(voor.begin(), voor.end(), '\n'));
  };
  int regel = 1;
  for (;;) {
    const size_t begin = std::min(rest.find_first_not_of(" \t\r\n,[]"), rest.size());
    regel += static_cast<int>(
        std::count(rest.begin(), rest.begin() + static_cast<ptrdiff_t>(begin), '\n'));
    rest.remove_prefix(begin);
    if (rest.empty()) return uit;
    const std::string_view object = volgend_object(&rest);
    const ordered_json j = ordered_json::parse(object, nullptr, false);
    if (object.empty() || !j.is_object())
      return fout(std::move(uit), object.empty() ? hier(rest) : regel, "geen object in JSON");
    CsvRij rij{regel, {}};
    const std::string bezwaar = neem_object(j, &rij);
    if (!bezwaar.empty()) return fout(std::move(uit), regel, bezwaar);
    uit.rijen.push_back(std::move(rij));
    regel += static_cast<int>(std::count(object.begin(), object.end(), '\n'));
  }
}

}  // namespace

CsvTekst csv_lees(std::string_view tekst) {
  if (tekst.starts_with("\xEF\xBB\xBF")) tekst.remove_prefix(3);
  const size_t begin = tekst.find_first_not_of(" \t\r\n");
  if (begin == tekst.npos) return fout({}, 1, "er staat niets in");
  const bool json = tekst[begin] == '[' || tekst[begin] == '{';
  return json ? lees_json(tekst) : lees_cellen(tekst);
}
