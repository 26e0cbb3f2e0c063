// Lines of text to values by column name: columns with a heading, or JSON. Every value knows its
// line.
#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/winkel_csv.h"

using nlohmann::ordered_json;

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
