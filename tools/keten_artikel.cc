// Article groups and size types of a demo chain.
#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include "isam/base.h"
#include "tools/keten.h"
#include "tools/keten_bron.h"

namespace {

struct Groep {
  uint32_t nummer;
  const char* naam;
  uint16_t omzet;
  char doel;
  uint8_t maatsoort;
  int van, tm;  // selling price in euro
  char soort;   // 'A' or 'P'
  bool magazijn, puur, alleen_onder, per_maat;
  uint8_t kenmerk;
  uint8_t minimum;
  int gewicht;
  const char *omschrijving, *model;
};
constexpr Groep GROEPEN[] = {
    {10100, "Damesblouses", 1, 'D', 1, 30, 80, 'A', true, true, false, false, 2, 2, 8, "Blouse",
     "Bel"},
    {10200, "Damesshirts", 1, 'D', 2, 15, 45, 'A', true, true, false, false, 2, 2, 8, "Shirt",
     "Sol"},
    {10300, "Damespantalons", 1, 'D', 1, 40, 110, 'A', true, true, false, false, 3, 2, 6,
     "Pantalon", "Par"},
    {10400, "Damesjeans", 1, 'D', 5, 50, 120, 'A', true, true, true, false, 3, 2, 5, "Jeans", "Jo"},
    {10500, "Rokken", 1, 'D', 1, 35, 90, 'A', true, true, false, false, 0, 2, 5, "Rok", "Ro"},
    {10600, "Jurken", 1, 'D', 1, 50, 160, 'A', true, true, false, false, 2, 2, 6, "Jurk", "Ju"},
    {10700, "Damesvesten", 1, 'D', 2, 40, 100, 'A', true, true, false, false, 0, 2, 5, "Vest",
     "Ve"},
    {10800, "Damesjassen", 1, 'D', 1, 90, 280, 'P', true, true, false, false, 1, 2, 4, "Jas", "Ja"},
    {10900, "Lingerie", 2, 'D', 10, 20, 60, 'A', true, false, true, false, 0, 2, 4, "Bh", "Li"},
    {11000, "Kousen", 2, 'D', 2, 5, 20, 'A', true, true, false, true, 0, 2, 5, "Panty", "Ko"},
    {20100, "Overhemden", 3, 'H', 4, 35, 90, 'A', true, true, false, false, 2, 2, 7, "Overhemd",
     "Ov"},
    {20200, "Herenshirts", 3, 'H', 2, 15, 50, 'A', true, true, false, false, 2, 2, 6, "T-shirt",
     "He"},
    {20300, "Herenjeans", 3, 'H', 5, 60, 130, 'A', true, true, true, false, 0, 2, 5, "Jeans",
     "Har"},
    {20400, "Colberts", 3, 'H', 3, 120, 300, 'P', false, false, false, false, 0, 2, 3, "Colbert",
     "Col"},
    {20500, "Herenjassen", 3, 'H', 3, 100, 300, 'P', false, false, false, false, 0, 2, 3, "Jas",
     "Hel"},
    {20600, "Ondergoed", 4, 'H', 2, 8, 30, 'A', true, true, true, true, 0, 2, 4, "Slip", "On"},
    {20700, "Sokken", 4, 'H', 7, 4, 15, 'A', true, true, true, true, 0, 2, 5, "Sok", "So"},
    {30100, "Damesschoenen", 5, 'D', 6, 50, 150, 'A', true, false, false, false, 1, 1, 4, "Pump",
     "Da"},
    {30200, "Herenschoenen", 5, 'H', 7, 70, 180, 'A', true, false, false, false, 0, 1, 3,
     "Veterschoen", "Her"},
    {30300, "Kinderschoenen", 5, 'J', 8, 30, 70, 'A', true, false, false, false, 0, 1, 2,
     "Gymschoen", "Ki"},
    {40100, "Meisjes", 6, 'M', 9, 15, 60, 'A', true, true, false, false, 0, 2, 4, "Jurkje", "Mei"},
    {40200, "Jongens", 6, 'J', 9, 15, 60, 'A', true, true, false, false, 0, 2, 4, "Broek", "Jon"},
    {40300, "Baby", 6, 'B', 9, 10, 40, 'A', true, true, false, false, 0, 2, 2, "Pakje", "Ba"},
    {50100, "Riemen", 7, 'H', 12, 20, 50, 'P', false, false, false, false, 0, 2, 2, "Riem", "Ri"},
    {50150, "Sjaals", 7, 'D', 11, 15, 60, 'P', false, false, false, false, 0, 2, 2, "Sjaal", "Sja"},
    {50200, "Handschoenen", 8, 'D', 2, 15, 60, 'P', true, true, false, false, 0, 2, 1, "Handschoen",
     "Ha"},
};

DtArt artikel(const Keten& k, const Groep& g, Bron& b) {
  DtArt rec{};
  rec.omzetgroep = g.omzet;
  rec.kenmerk_nr = g.kenmerk;
  rec.tariefcode = 1;
  rec.magazijn = g.magazijn ? 0 : FILIAAL_GEEN;
  rec.vlaggen = static_cast<uint8_t>((g.puur ? 1 : 0) | (g.alleen_onder ? 2 : 0));
  rec.soort = g.soort;
  rec.minimum = g.minimum;
  rec.magazijn_pct = static_cast<uint8_t>(b.tussen(10, 30));
  rec.serie_nummer = static_cast<uint8_t>(b.tussen(1, 3));
  rec.serie_maatsoort = g.maatsoort;
  for (size_t f = 0; f + 1 < k.gewicht.size(); ++f)  // the last branch is the outlet
    rec.streef[f] = static_cast<uint8_t>((k.gewicht[f] * 2 + 5) / 10);
  return rec;
}

// Size types -------------------------------------------------------------------------------------

using Maten = std::vector<std::string>;

Maten reeks(int van, int tm, int stap) {
  Maten maten;
  for (int m = van; m <= tm; m += stap) maten.push_back(std::to_string(m));
  return maten;
}

struct Maatsoort {
  int nummer;
  Maten maten;                    // in order of size index, as they were created
  std::vector<uint8_t> volgorde;  // size indexes along the bar; empty: as created
  int breedte;
};

Maten bh_maten() {
  Maten maten;
  for (int omvang = 70; omvang <= 90; omvang += 5)
    for (char cup = 'A'; cup <= 'E'; ++cup) maten.push_back(std::to_string(omvang) + cup);
  return maten;
}

Maten kindermaten() {
  return {"56",  "62",  "68",  "74",  "80",  "86",  "92",  "98",  "104", "110",
          "116", "122", "128", "134", "140", "146", "152", "164", "176"};
}

Maten alle_95() {
  Maten maten;
  for (int i = 1; i <= 95; ++i) maten.push_back("T" + std::to_string(i));
  return maten;
}

/// Whole sizes first; the halves came later and went between them.
Maatsoort damesschoen() {
  Maatsoort m{6, reeks(36, 42, 1), {}, 10};
  for (int i = 36; i <= 41; ++i) m.maten.push_back(std::to_string(i) + "+");
  for (uint8_t i = 1; i <= 7; ++i) {
    m.volgorde.push_back(i);
    if (i < 7) m.volgorde.push_back(static_cast<uint8_t>(7 + i));
  }
  return m;
}

std::vector<Maatsoort> maatsoorten() {
  return {{1, reeks(34, 48, 2), {}, 7},
          {2, {"S", "M", "L", "XL", "XXL", "3XL", "XS"}, {7, 1, 2, 3, 4, 5, 6}, 6},
          {3, reeks(44, 58, 2), {}, 7},
          {4, reeks(37, 46, 1), {}, 8},
          {5, reeks(25, 36, 1), {}, 9},
          damesschoen(),
          {7, reeks(40, 47, 1), {}, 7},
          {8, reeks(20, 35, 1), {}, 10},
          {9, kindermaten(), {}, 9},
          {10, bh_maten(), {}, 15},
          {11, {"UNI"}, {}, 1},
          {12, reeks(75, 120, 5), {}, 8},
          {99, alle_95(), {}, 20}};
}

void tekst_rechts(char (&veld)[3], const std::string& tekst) {
  const std::string wit(tekst.size() < 3 ? 3 - tekst.size() : 0, ' ');
  std::memcpy(veld, (wit + tekst).data(), sizeof veld);
}

/// The own country's record goes by size index, another country's by order position.
DtMaat maatrecord(const Maatsoort& m, uint8_t land, bool eigen) {
  DtMaat rec{};
  rec.land = land;
  rec.maatsoort = static_cast<uint8_t>(m.nummer);
  for (size_t p = 1; p <= m.volgorde.size(); ++p) {
    const uint8_t index = m.volgorde[p - 1];
    rec.maten[index / 8] = static_cast<uint8_t>(rec.maten[index / 8] | 1 << index % 8);
    MaatIngang& ingang = rec.ingang[eigen ? index : p];
    tekst_rechts(ingang.tekst, m.maten[index - 1u]);
    ingang.ander = eigen ? static_cast<uint8_t>(p) : index;
  }
  return rec;
}

void maatnamen(Keten* k) {
  constexpr const char* NAMEN[] = {"Small",   "Medium",  "Large", "XLarge",
                                   "XXLarge", "3XLarge", "XSmall"};
  for (size_t i = 0; i < std::size(NAMEN); ++i) {
    DtMtom rec{1, 2, static_cast<uint8_t>(i + 1), {}, {}};
    veld_zet(rec.tekst, sizeof rec.tekst, NAMEN[i]);
    k->maatnamen.push_back(rec);
  }
}

}  // namespace

void keten_artikelen(Keten* k) {
  constexpr int EIGEN = static_cast<int>(std::size(GROEPEN));
  for (int i = 0; i < k->maat.artikelgroepen; ++i) {
    const Groep& g = GROEPEN[i % EIGEN];
    Bron b(k->maat.zaad, uint64_t{200} << 32 | static_cast<uint32_t>(i));
    KetenArtikel a{artikel(*k, g, b), g.doel,    g.maatsoort,    g.van,  g.tm,
                   g.per_maat,        g.gewicht, g.omschrijving, g.model};
    const int ronde = i / EIGEN;
    a.rec.nummer = g.nummer + static_cast<uint32_t>(ronde);
    std::string naam = g.naam;
    if (ronde > 0) naam += " " + std::to_string(ronde + 1);
    veld_zet(a.rec.naam, sizeof a.rec.naam, naam);
    k->artikelen.push_back(a);
  }
}

void keten_maten(Keten* k) {
  k->maatsoorten.resize(100);
  uint16_t stempel = 0;
  for (Maatsoort& m : maatsoorten()) {
    if (m.volgorde.empty())
      for (size_t i = 1; i <= m.maten.size(); ++i) m.volgorde.push_back(static_cast<uint8_t>(i));
    k->maatsoorten[static_cast<size_t>(m.nummer)] = {m.volgorde, m.breedte};
    k->maatrecords.push_back(maatrecord(m, 1, true));
    k->maatrecords.back().stempel = ++stempel;
    if (m.nummer != 1) continue;
    k->maatrecords.push_back(maatrecord(m, 2, false));
    k->maatrecords.back().stempel = stempel;
  }
  maatnamen(k);
}
