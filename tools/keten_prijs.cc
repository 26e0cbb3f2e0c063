// Price sets and EAN codes of one series.
#include <algorithm>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "tools/keten.h"
#include "tools/keten_bron.h"

namespace {

enum Stroom : uint64_t { PRIJZEN = 700 };
constexpr uint32_t MAATCODE_EERSTE = 1000;

void zet_bit(uint8_t (&kaart)[12], uint8_t index) {
  kaart[index / 8] = static_cast<uint8_t>(kaart[index / 8] | 1 << index % 8);
}

/// Free groups of a set that is gone.
void spookgroepen(const SerieTaak& t, KetenStand* stand, SerieInhoud* uit) {
  for (int i = 0; i < t.spookgroepen; ++i) {
    DtIpg leeg{};
    leeg.volgende = stand->vrije_groep;
    stand->vrije_groep = stand->groep++;
    uit->groepen.push_back(leeg);
  }
}

/// The sizes fall into runs along the bar; each run is five in a hundred dearer than the last.
void groepen(const DtIpa& set, const DtSer& serie, std::span<const uint8_t> maten, size_t aantal,
             KetenStand* stand, SerieInhoud* uit) {
  for (size_t g = 0; g < aantal; ++g) {
    DtIpg rec{};
    rec.nr = set.nr;
    rec.nummer = set.nummer;
    rec.eind = set.eind;
    rec.groepnummer = set.groepnummer;
    rec.code = set.code;
    rec.soort = set.soort;
    for (size_t p = maten.size() * g / aantal; p < maten.size() * (g + 1) / aantal; ++p)
      zet_bit(rec.maten, maten[p]);
    const auto duurder = static_cast<int32_t>(100 + 5 * g);
    rec.verkoopprijs = serie.verkoopprijs * duurder / 100;
    rec.inkoopprijs = serie.inkoopprijs * duurder / 100;
    ++stand->groep;
    rec.volgende = g + 1 < aantal ? stand->groep : -1;
    uit->groepen.push_back(rec);
  }
}

DtEan ean(const DtSer& serie, char soort, uint8_t maat, const std::string& code) {
  DtEan rec{};
  veld_zet(rec.code, sizeof rec.code, code);
  rec.soort = soort;
  rec.kleur = serie.nr.kleur;
  rec.artgroep = serie.nr.artgroep;
  rec.volgnr = serie.nr.volgnr;
  rec.maat = maat;
  return rec;
}

/// A code of a maker: thirteen digits, now and then one of twelve, whose leading zero is not kept.
std::string vreemde_code(uint32_t nummer) {
  const bool kort = nummer % 50 == 7;
  std::string code = str_format(kort ? "04%010lu" : "871%09lu", nummer);
  code += '0';
  while (!ean_goed(code) && code.back() < '9') ++code.back();
  return kort ? code.substr(1) : code;
}

}  // namespace

void keten_prijzen(const Keten& k, size_t i, KetenStand* stand, SerieInhoud* uit) {
  const SerieTaak& t = k.taken[i];
  Bron b(k.maat.zaad, uint64_t{PRIJZEN} << 32 | i);
  spookgroepen(t, stand, uit);
  const std::vector<uint8_t> maten = keten_maten_van(k, uit->serie);
  uint16_t begin = std::max<uint16_t>(t.ontvangen, 1);
  for (int s = 0; s < t.sets; ++s) {
    DtIpa set{};
    set.nr = uit->serie.nr;
    set.nummer = 1;
    set.begin = begin;
    set.eind = s + 1 < t.sets ? static_cast<uint16_t>(begin + b.tussen(20, 60)) : DATUM_LAATSTE;
    begin = static_cast<uint16_t>(set.eind + 1);
    set.soort = static_cast<uint8_t>(b.tussen(1, 2));
    set.groep1 = stand->groep;
    groepen(set, uit->serie, maten, t.groepen[s], stand, uit);
    std::memcpy(set.maten, uit->serie.maten, sizeof set.maten);
    uit->sets.push_back(set);
  }
}

void keten_eans(const Keten& k, size_t i, KetenStand* stand, SerieInhoud* uit) {
  const bool per_maat = uit->serie.maatregistratie != 0;
  if (!per_maat && !k.taken[i].met_ean) return;
  for (const uint8_t maat : keten_maten_van(k, uit->serie)) {
    if (!per_maat) {
      if (stand->eans++ >= static_cast<uint32_t>(k.maat.ean_meest)) return;
      uit->eans.push_back(ean(uit->serie, 'E', maat, vreemde_code(++stand->eancode)));
      continue;
    }
    stand->maatcode = stand->maatcode == 0 ? MAATCODE_EERSTE : stand->maatcode + 1;
    char code[14];
    etikode_maak('M', static_cast<int32_t>(stand->maatcode), code);
    uit->eans.push_back(ean(uit->serie, 'M', maat, code));
  }
}
