// The master data that the trade itself makes up: branches, brands, suppliers, customers.
#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <string>
#include <string_view>

#include "isam/base.h"
#include "sub/pghdl.h"
#include "tools/keten.h"
#include "tools/keten_bron.h"

namespace {

enum Stroom : uint64_t { FILIALEN = 100, MERKEN, LEVERANCIERS, KLANTEN, KOERSEN };

constexpr std::string_view PLAATSEN[] = {
    "Utrecht",    "Arnhem",       "Ede",        "Veenendaal",    "Amersfoort", "Nijmegen",
    "Culemborg",  "Geldermalsen", "Zaltbommel", "Oss",           "Roermond",   "Deventer",
    "Zutphen",    "Apeldoorn",    "Zwolle",     "Hoogeveen",     "Assen",      "Emmen",
    "Leeuwarden", "Sneek",        "Drachten",   "Hoorn",         "Alkmaar",    "Haarlem",
    "Leiden",     "Gouda",        "Delft",      "Dordrecht",     "Breda",      "Tilburg",
    "Eindhoven",  "Helmond",      "Venlo",      "Weert",         "Sittard",    "Heerlen",
    "Goes",       "Terneuzen",    "Middelburg", "Bergen op Zoom"};
constexpr std::string_view STRATEN[] = {"Kerkstraat",  "Hoogstraat", "Markt",       "Langestraat",
                                        "Stationsweg", "Marktplein", "Grotestraat", "Waterstraat"};

struct Merknaam {
  std::string_view naam, zoek;
};
constexpr Merknaam MERKEN_EIGEN[] = {
    {"Duinroos", "DUIN"},       {"Stadsmus", "STAD"},      {"Zilt", "ZILT"},
    {"Tamarind", "TAMA"},       {"Wollegras", "WOLL"},     {"Éclat Noord", "ÉCLA"},
    {"Kaap Veertig", "KAAP"},   {"Duinzand", "DUIZ"},      {"Brém & Zoon", "BRÉM"},
    {"Zuiderlucht", "ZUID"},    {"Noorderlicht", "NOOR"},  {"Blauwe Uur", "BLAU"},
    {"Café Crème", "CAFÉ"},     {"Linnenkast", "LINN"},    {"Rozenbottel", "ROZE"},
    {"Tweede Adem", "TWEE"},    {"Garenklos", "GARE"},     {"Mölle", "MÖLL"},
    {"Hofdame", "HOFD"},        {"Jan Steekvast", "JANS"}, {"Lentezon", "LENT"},
    {"Oeverzwaluw", "OEVE"},    {"Ponteneur", "PONT"},     {"Rietkraag", "RIET"},
    {"Schippersknoop", "SCHI"}, {"Velours", "VELO"},       {"Weefgetouw", "WEEF"},
    {"Zonnedauw", "ZONN"}};
constexpr std::string_view LETTERGREEP[] = {"ba", "bel", "co", "da",  "do",  "fa",  "fjor", "ga",
                                            "il", "ka",  "la", "li",  "lou", "ma",  "mi",   "mo",
                                            "na", "nel", "no", "ola", "pa",  "ra",  "rie",  "ro",
                                            "sa", "si",  "ta", "ti",  "va",  "vel", "vi",   "zo"};
constexpr std::string_view ACHTERNAMEN[] = {
    "Bakker", "Blom",   "De Boer",  "Van Dalen", "Dekker", "Van Dijk", "Hendriks", "Jacobs",
    "Jansen", "Koster", "Kuipers",  "De Lange",  "Maas",   "Mulder",   "Peters",   "Postma",
    "Smeets", "Smit",   "Verhagen", "Vermeer",   "Vink",   "Visser",   "De Vries", "De Wit"};
constexpr std::string_view SOORTEN[] = {"Confectie BV", "Modeagenturen", "Textiel BV",
                                        "Schoenen BV", "Import BV"};

template <size_t N>
void zet(char (&veld)[N], std::string_view utf8) {
  veld_zet(veld, N, utf8_cp850(utf8));
}

std::string adres(Bron& b) {
  return std::string(b.een(std::span<const std::string_view>(STRATEN))) + " " +
         std::to_string(b.tussen(1, 180));
}

/// Tier of a shop: large, common, small; the last branch is the outlet.
int32_t gewicht_van(int filiaal, int laatste) {
  if (filiaal == 0) return 0;
  if (filiaal == laatste) return 3;
  constexpr int32_t TIEN[] = {6, 16, 16, 10, 10, 6, 6, 10, 10, 16};  // by last digit
  return TIEN[filiaal % 10];
}

FiliaalRec filiaal(const KetenMaat& maat, int n) {
  Bron b(maat.zaad, uint64_t{FILIALEN} << 32 | static_cast<uint32_t>(n));
  const size_t steden = std::size(PLAATSEN);
  FiliaalRec rec{};
  const std::string plaats =
      n == 0 ? "Tiel" : std::string(PLAATSEN[static_cast<size_t>(n - 1) % steden]);
  std::string naam = (n == 0 ? "Magazijn " : n == maat.filialen - 1 ? "Outlet " : "") + plaats;
  if (static_cast<size_t>(n) > steden)
    naam += " " + std::to_string(1 + (static_cast<size_t>(n) - 1) / steden);
  zet(rec.naam, naam);
  zet(rec.adres, adres(b));
  zet(rec.plaats, plaats);
  rec.extern_nummer = static_cast<uint8_t>(n);
  return rec;
}

std::string verzonnen_naam(Bron& b, int delen) {
  std::string naam;
  for (int i = 0; i < delen; ++i) naam += b.een(std::span<const std::string_view>(LETTERGREEP));
  naam[0] = static_cast<char>(naam[0] - 'a' + 'A');
  return naam;
}

/// A search name that no brand has yet.
std::string zoeknaam(const std::string& naam, std::set<std::string>& gebruikt) {
  std::string zoek = naam.substr(0, 4);
  for (char& c : zoek) c = static_cast<char>(chr_upper(static_cast<uint8_t>(c)));
  for (char c = 'A'; !gebruikt.insert(zoek).second; ++c) zoek[3] = c;
  return zoek;
}

void merken(Keten* k) {
  Bron b(k->maat.zaad, MERKEN);
  const int n = k->maat.merken, stap = 999 / n;
  std::set<std::string> zoeknamen;
  for (int i = 0; i < n; ++i) {
    DtMerk rec{};
    rec.nummer = static_cast<uint16_t>(1 + i * stap + b.tot(stap));
    const auto eigen = static_cast<size_t>(i);
    if (eigen < std::size(MERKEN_EIGEN)) {
      zet(rec.naam, MERKEN_EIGEN[eigen].naam);
      zet(rec.zoeknaam, MERKEN_EIGEN[eigen].zoek);
      zoeknamen.insert(utf8_cp850(MERKEN_EIGEN[eigen].zoek));
    } else {
      const std::string naam = verzonnen_naam(b, b.tussen(2, 4));
      zet(rec.naam, naam);
      veld_zet(rec.zoeknaam, sizeof rec.zoeknaam, zoeknaam(naam + "X", zoeknamen));
    }
    k->merken.push_back(rec);
  }
  // One brand is the large shops' own: its map holds the others.
  DtMerk& eigen = k->merken[4];
  for (int f = 1; f < k->maat.filialen; ++f)
    if (k->gewicht[static_cast<size_t>(f)] < 16) pg_add(eigen.filialen, f);
}

void leveranciers(Keten* k) {
  Bron b(k->maat.zaad, LEVERANCIERS);
  for (int i = 0; i < k->maat.leveranciers; ++i) {
    DtLev rec{};
    rec.nummer = static_cast<uint16_t>(100 + i * 7);
    zet(rec.naam, std::string(b.een(std::span<const std::string_view>(ACHTERNAMEN))) + " " +
                      std::string(b.een(std::span<const std::string_view>(SOORTEN))));
    zet(rec.adres, adres(b));
    zet(rec.plaats, b.een(std::span<const std::string_view>(PLAATSEN)));
    k->leveranciers.push_back(rec);
  }
}

void klanten(Keten* k) {
  Bron b(k->maat.zaad, KLANTEN);
  for (int i = 0; i < k->maat.klanten; ++i) {
    DtKlt rec{};
    rec.nummer = static_cast<uint32_t>(1000 + i);
    zet(rec.naam, std::string(b.een(std::span<const std::string_view>(ACHTERNAMEN))));
    zet(rec.adres, adres(b));
    zet(rec.plaats, b.een(std::span<const std::string_view>(PLAATSEN)));
    k->klanten.push_back(rec);
  }
}

void koersen(Keten* k) {
  Bron b(k->maat.zaad, KOERSEN);
  constexpr std::pair<const char*, int32_t> VREEMD[] = {{"USD", 920000}, {"GBP", 1160000}};
  for (const auto& [code, koers] : VREEMD) {
    for (int maand = 6; maand >= 0; --maand) {
      DtKoers rec{};
      std::memcpy(rec.valuta, code, sizeof rec.valuta);
      rec.datum = static_cast<uint16_t>(k->maat.vandaag - 1 - 30 * maand);
      rec.koers = koers + b.tussen(-25000, 25000);
      k->koersen.push_back(rec);
    }
  }
}

void kleine_tabellen(Keten* k) {
  constexpr std::pair<char, std::string_view> DOELGROEPEN[] = {
      {'B', "Baby"}, {'D', "Dames"}, {'H', "Heren"}, {'J', "Jongens"}, {'M', "Meisjes"}};
  for (const auto& [letter, tekst] : DOELGROEPEN) {
    DtDoelgr rec{};
    rec.letter = letter;
    zet(rec.tekst, tekst);
    k->doelgroepen.push_back(rec);
  }
}

}  // namespace

void keten_stam(Keten* k) {
  for (int n = 0; n < k->maat.filialen; ++n) {
    k->gewicht.push_back(gewicht_van(n, k->maat.filialen - 1));
    k->filialen.push_back(filiaal(k->maat, n));
  }
  FiliaalRec kantoor{};  // its name is the company's
  zet(kantoor.adres, "Industrieweg 1");
  zet(kantoor.plaats, "Tiel");
  k->filialen.insert(k->filialen.begin(), kantoor);
  merken(k);
  leveranciers(k);
  klanten(k);
  koersen(k);
  kleine_tabellen(k);
}
