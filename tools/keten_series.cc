// The series of a demo chain, and what each contributes to the chain's totals. Everything that one
// series draws comes from a stream of its own; totals are dealt out evenly over the series.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "isam/base.h"
#include "tools/keten.h"
#include "tools/keten_bron.h"

namespace {

enum Stroom : uint64_t { MODELLEN = 300, TAKEN };

constexpr std::string_view STAARTEN[] = {"a",    "anne", "dine", "ella", "era",   "etta", "ina",
                                         "inde", "ita",  "iva",  "olle", "onda",  "ora",  "otte",
                                         "ulla", "una",  "ine",  "iek",  "olijn", "ando"};
constexpr std::string_view MIDDEN[] = {"b", "d", "f", "l", "m",  "n",
                                       "r", "s", "t", "v", "rl", "nt"};
constexpr std::string_view DESSINS[] = {"Effen", "Streep", "Ruit",   "Bloem",
                                        "Stip",  "Print",  "Paisley"};
constexpr std::string_view MATERIALEN[] = {"Katoen",    "Wol",   "Linnen", "Viscose",
                                           "Polyester", "Denim", "Leer",   "Mohair"};
constexpr std::string_view VORMEN[] = {"kort", "lang", "recht", "wijd", "smal", "basis"};
constexpr const char* KENMERKEN[3][2] = {{"KN", "RI"}, {"KM", "LM"}, {"SL", "RE"}};

template <size_t N>
void zet(char (&veld)[N], std::string_view utf8) {
  veld_zet(veld, N, utf8_cp850(utf8));
}
template <size_t N>
std::string_view een(Bron& b, const std::string_view (&rij)[N]) {
  return b.een(std::span<const std::string_view>(rij));
}

struct Seizoen {
  uint16_t jaar;
  char letter;
  uint16_t begin;  // date number of its first orders
};

/// The last seasons, the current one first: summer from February, winter from August.
std::vector<Seizoen> seizoenen(uint16_t vandaag) {
  char tekst[16];
  date_text(tekst, vandaag, true);
  int maand = (tekst[2] - '0') * 10 + tekst[3] - '0';
  int jaar = std::atoi(tekst + 4);
  if (maand < 2) {
    --jaar;
    maand = 12;
  }
  bool zomer = maand < 8;
  std::vector<Seizoen> lijst;
  for (int i = 0; i < 5; ++i) {
    const std::string eerste = (zomer ? "0112" : "0106") + std::to_string(zomer ? jaar - 1 : jaar);
    lijst.push_back({static_cast<uint16_t>(jaar), zomer ? 'Z' : 'W', date_number(eerste.c_str())});
    if (zomer) --jaar;
    zomer = !zomer;
  }
  return lijst;
}

std::string modelnaam(const KetenArtikel& a, Bron& b) {
  std::string naam = a.model;
  naam += een(b, MIDDEN);
  naam += een(b, STAARTEN);
  while (naam.size() < 6) naam += "a";
  str_upper(naam.data());  // as the field of the model lets it be typed
  return naam.substr(0, 12);
}

/// What all colours of a model share.
struct Model {
  const KetenArtikel* artikel;
  DtSer serie;
  SerieTaak taak;
  int maat_van, maat_tm;  // positions
};

void dateer(const KetenMaat& maat, const std::vector<Seizoen>& lijst, Model* m, Bron& b) {
  const int vandaag = maat.vandaag;
  const int trek = b.tot(1000);
  int besteld, onderweg = b.tussen(20, 60);
  if (trek < 150) {
    m->taak.leeftijd = Leeftijd::doorlopend;
    besteld = vandaag - b.tussen(200, 1500);
  } else {
    // The current season takes 45 in 100; part of it has only just come in.
    const size_t s = trek < 600 ? 0 : static_cast<size_t>(b.tussen(1, 4));
    m->serie.jaar = lijst[s].jaar;
    m->serie.hoofdseizoen = b.kans(40) ? 'K' : lijst[s].letter;
    m->serie.deelseizoen = static_cast<uint8_t>(b.tot(6));
    m->taak.leeftijd = s > 0 ? Leeftijd::oud : b.kans(178) ? Leeftijd::nieuw : Leeftijd::huidig;
    besteld = lijst[s].begin + b.tot(75);
    if (m->taak.leeftijd == Leeftijd::nieuw) besteld = vandaag - onderweg - b.tot(6);
    if (m->taak.leeftijd == Leeftijd::huidig)
      besteld = std::min(besteld, vandaag - onderweg - b.tussen(15, 90));
  }
  m->taak.besteld = static_cast<uint16_t>(besteld);
  m->taak.ontvangen = static_cast<uint16_t>(std::min(besteld + onderweg, vandaag));
}

void prijs(Model* m, Bron& b) {
  const int euro = b.tussen(m->artikel->prijs_van, m->artikel->prijs_tm);
  const int vol = euro * 100 - (b.kans(700) ? 5 : 0);
  m->serie.adviesprijs = vol;
  m->serie.inkoopprijs = vol * b.tussen(38, 46) / 100;
  const bool afgeprijsd = m->taak.leeftijd == Leeftijd::oud && b.kans(600);
  m->serie.verkoopprijs = afgeprijsd ? vol * b.tussen(50, 80) / 100 : vol;
}

void merk_en_leverancier(const Keten& k, Model* m, Bron& b) {
  // Few brands sell most: the square of a draw leans to the first of the list.
  const auto n = static_cast<int64_t>(k.merken.size());
  const int64_t trek = b.tot(1000);
  const auto merk = static_cast<size_t>(n * trek / 1000 * trek / 1000);
  m->serie.merk = k.merken[merk].nummer;
  const size_t lev = (merk * 7 + static_cast<size_t>(b.tot(2))) % k.leveranciers.size();
  m->serie.leverancier = k.leveranciers[lev].nummer;
}

Model model(const Keten& k, const std::vector<Seizoen>& lijst, Bron& b) {
  std::vector<int32_t> gewicht;
  for (const KetenArtikel& a : k.artikelen) gewicht.push_back(a.gewicht);
  Model m{&k.artikelen[b.gewogen(gewicht)], {}, {}, 0, 0};
  const KetenArtikel& a = *m.artikel;
  m.serie.nr.artgroep = a.rec.nummer;
  m.serie.doelgroep = a.doelgroep;
  m.serie.maatsoort = a.maatsoort;
  m.serie.nummer18 = a.rec.serie_nummer;
  m.serie.maatregistratie = a.per_maat ? 1 : 0;
  m.serie.via_pricat = b.kans(50) ? 1 : 0;
  m.serie.inkoopcode = static_cast<uint8_t>(b.tot(10));
  m.serie.janee = b.kans(100) ? 1 : 0;
  dateer(k.maat, lijst, &m, b);
  merk_en_leverancier(k, &m, b);
  prijs(&m, b);
  zet(m.serie.model, modelnaam(a, b));
  zet(m.serie.omschrijving, std::string(a.omschrijving) + " " + std::string(een(b, VORMEN)));
  zet(m.serie.dessin, een(b, DESSINS));
  zet(m.serie.materiaal, een(b, MATERIALEN));
  if (a.rec.kenmerk_nr != 0) {
    const char* waarde = KENMERKEN[a.rec.kenmerk_nr - 1][b.tot(2)];
    std::memcpy(m.serie.kenmerk, waarde, sizeof m.serie.kenmerk);
  }
  const KetenMaatsoort& soort = k.maatsoorten[a.maatsoort];
  const int alle = static_cast<int>(soort.volgorde.size());
  const int breed = std::clamp(soort.doelbreedte + b.tussen(-1, 1), 1, alle);
  m.maat_van = b.tot(alle - breed + 1);
  m.maat_tm = m.maat_van + breed - 1;
  return m;
}

/// A log-normal spread round the mean, cut on both sides.
int32_t etiketten(const KetenMaat& maat, Bron& b) {
  const double z = b.normaal() / 1000.0;
  const double n = maat.etiketten * std::exp(0.55 * z - 0.15);
  return std::clamp(static_cast<int32_t>(std::lround(n)), maat.etiketten * 12 / 46,
                    maat.etiketten * 140 / 46);
}

void taak(const KetenMaat& maat, const DtSer& serie, int maten, SerieTaak* t, Bron& b) {
  t->etiketten = etiketten(maat, b);
  t->spookblokken = b.kans(50) ? b.tussen(2, 6) : 0;
  t->sets = static_cast<uint8_t>(b.kans(60) ? 0 : b.kans(maat.twee_sets) ? 2 : b.kans(110) ? 3 : 1);
  for (int s = 0; s < t->sets; ++s)
    t->groepen[s] =
        static_cast<uint8_t>(std::min(b.kans(maat.drie_groepen) ? 3 : 1 + b.tot(3), maten));
  t->spookgroepen = b.kans(20) ? 2 : 0;
  t->met_ean = serie.maatregistratie == 0 && b.kans(maat.ean_promille);
}

void kleuren_van(Keten* k, const Model& m, Bron& b,
                 std::map<std::pair<uint32_t, uint16_t>, uint16_t>* volgnr) {
  const int aantal = b.tussen(1, 5);
  const auto begin = static_cast<size_t>(b.tot(static_cast<int32_t>(k->kleuren.size())));
  for (int i = 0; i < aantal && k->series.size() < static_cast<size_t>(k->maat.series); ++i) {
    const Kleur& kleur = k->kleuren[(begin + static_cast<size_t>(i) * 7) % k->kleuren.size()];
    DtSer s = m.serie;
    s.nr.kleur = kleur.nummer;
    s.nr.volgnr = ++(*volgnr)[{s.nr.artgroep, s.nr.kleur}];
    s.datum_creatie = m.taak.besteld;
    s.blok1 = -1;
    if (b.kans(300))
      zet(s.locatie, str_format("%c%02d-%02d", static_cast<char>('A' + b.tot(8)), b.tussen(1, 20),
                                b.tussen(1, 8)));
    const std::vector<uint8_t>& volgorde = k->maatsoorten[s.maatsoort].volgorde;
    for (int p = m.maat_van; p <= m.maat_tm; ++p) {
      const uint8_t index = volgorde[static_cast<size_t>(p)];
      s.maten[index / 8] = static_cast<uint8_t>(s.maten[index / 8] | 1 << index % 8);
    }
    SerieTaak t = m.taak;
    taak(k->maat, s, m.maat_tm - m.maat_van + 1, &t, b);
    k->series.push_back(s);
    k->taken.push_back(t);
  }
}

/// Deals a total out evenly: series i of n gets its share of it, those behind none.
int16_t deel(int64_t totaal, size_t i, size_t n) {
  const auto tot = [&](size_t j) {
    return totaal * static_cast<int64_t>(std::min(j, n)) / static_cast<int64_t>(n);
  };
  return static_cast<int16_t>(tot(i + 1) - tot(i));
}

/// Series that are being spread over the shops have most order lines: of each stretch the one with
/// most to give.
void deel_regels(Keten* k) {
  const auto groepen = static_cast<size_t>(k->maat.voorlopig_series);
  const size_t n = k->series.size();
  const auto voorraad = [](const SerieTaak& t) {
    constexpr int32_t DEEL[] = {9, 4, 3, 2};  // by age
    return t.etiketten * DEEL[static_cast<size_t>(t.leeftijd)];
  };
  for (size_t g = 0; g < groepen; ++g) {
    const auto van = k->taken.begin() + static_cast<ptrdiff_t>(g * n / groepen);
    const auto tot = k->taken.begin() + static_cast<ptrdiff_t>((g + 1) * n / groepen);
    std::max_element(van, tot, [&](const SerieTaak& a, const SerieTaak& b) {
      return voorraad(a) < voorraad(b);
    })->voorlopig = deel(k->maat.voorlopig, g, groepen);
  }
}

void deel_uit(Keten* k) {
  const KetenMaat& m = k->maat;
  const size_t n = k->series.size();
  const size_t meest = n * 9 / 10;  // the last series make up for what those before fell short
  for (size_t i = 0; i < n; ++i) {
    SerieTaak& t = k->taken[i];
    t.onderweg = deel(m.onderweg, i, meest);
    t.onderweg_klaar = deel(m.onderweg_klaar, i, meest);
    t.financieel = deel(m.financieel, i, meest);
    t.ontvangsten = deel(m.ontvangsten, i, meest);
    k->blokken += (t.etiketten + ETI_SLOTS - 1) / ETI_SLOTS + t.spookblokken;
    k->prijsgroepen += t.spookgroepen;
    for (int s = 0; s < t.sets; ++s) k->prijsgroepen += t.groepen[s];
  }
}

/// Few series ask by chance for pieces of another shop; some are made to. Those with order lines
/// are left as they are: what lies ready for them is counted.
void kies_scheve(Keten* k) {
  constexpr size_t STAP = 45;
  const size_t meest = k->taken.size() * 9 / 10;
  for (size_t van = 0; van + STAP <= meest; van += STAP) {
    const std::span stuk = std::span(k->taken).subspan(van, STAP);
    const auto t = std::ranges::find_if(stuk, [](const SerieTaak& taak) {
      return taak.leeftijd == Leeftijd::huidig && taak.voorlopig == 0;
    });
    if (t != stuk.end()) t->scheef = true;
  }
}

/// Open replenishment: evenly, but more of what another shop can bring.
void deel_aanvul(Keten* k) {
  constexpr int16_t SCHEEF = 3;
  const size_t meest = k->taken.size() * 9 / 10;
  const auto scheve = std::ranges::count(k->taken, true, &SerieTaak::scheef);
  const int64_t rest = k->maat.aanvul - SCHEEF * scheve;
  for (size_t i = 0; i < k->taken.size(); ++i) {
    SerieTaak& t = k->taken[i];
    t.aanvul = deel(rest < 0 ? k->maat.aanvul : rest, i, meest);
    if (t.scheef && rest >= 0) t.aanvul = static_cast<int16_t>(t.aanvul + SCHEEF);
  }
}

}  // namespace

void keten_series(Keten* k) {
  const std::vector<Seizoen> lijst = seizoenen(k->maat.vandaag);
  std::map<std::pair<uint32_t, uint16_t>, uint16_t> volgnr;
  for (uint32_t nr = 0; k->series.size() < static_cast<size_t>(k->maat.series); ++nr) {
    Bron b(k->maat.zaad, uint64_t{MODELLEN} << 32 | nr);
    kleuren_van(k, model(*k, lijst, b), b, &volgnr);
  }
  deel_uit(k);
  deel_regels(k);
  kies_scheve(k);
  deel_aanvul(k);
  for (const Seizoen& s : lijst) {
    InkSys rec{};
    rec.jaar = s.jaar;
    rec.seizoen = s.letter;
    zet(rec.tekst, (s.letter == 'Z' ? "Zomer " : "Winter ") + std::to_string(s.jaar));
    k->inksys.push_back(rec);
  }
}

std::vector<uint8_t> keten_maten_van(const Keten& k, const DtSer& s) {
  std::vector<uint8_t> maten;
  for (const uint8_t index : k.maatsoorten[s.maatsoort].volgorde)
    if ((s.maten[index / 8] >> index % 8 & 1) != 0) maten.push_back(index);
  return maten;
}
