// The why of an advice, and that the examples in the operators' guide are what the program says.
#include <gtest/gtest.h>

#include <fstream>
#include <map>

#include "tests/support/advies_proef.h"

namespace {

using Regels = std::vector<std::string>;

Regels uitleg(const AdvProef& p, MaatMatrix Advies::*r, int filiaal, int maat = 1,
              int breedte = 76) {
  return adv_uitleg(p.a, p.a.*r, p.krit, p.a.m_vrk_periode, filiaal, maat, breedte);
}

std::string samen(const Regels& r) {
  std::string uit;
  for (const std::string& s : r) uit += s + "\n";
  return uit;
}

bool staat(const Regels& r, const std::string& tekst) {
  return samen(r).find(tekst) != std::string::npos;
}

// The guide ---------------------------------------------------------------------------------------

/// One chapter with a table: the rows by branch, and the explanation under it.
struct Hoofdstuk {
  std::map<std::string, std::map<int, std::string>> kolom;
  int filialen = 0, maten = 0, filiaal = -1, maat = 1;
  Regels uitleg;
};

std::vector<std::string> cellen(const std::string& rij) {
  std::vector<std::string> uit;
  std::istringstream in(rij.substr(1));
  std::string cel;
  while (std::getline(in, cel, '|')) {
    const size_t van = cel.find_first_not_of(' ');
    uit.push_back(van == std::string::npos ? ""
                                           : cel.substr(van, cel.find_last_not_of(' ') + 1 - van));
  }
  return uit;
}

std::map<std::string, Hoofdstuk> lees_gids() {
  std::ifstream in(std::string(SOURCE_DIR) + "/docs/adviezen.md");
  std::map<std::string, Hoofdstuk> gids;
  std::vector<std::string> koppen;
  std::string regel, naam;
  while (std::getline(in, regel)) {
    Hoofdstuk& h = gids[naam];
    if (regel.starts_with("## ")) {
      naam = regel.substr(3);
      koppen.clear();
    } else if (regel.starts_with("| filiaal")) {
      koppen = cellen(regel);
    } else if (regel.starts_with("| ") && !koppen.empty()) {
      const auto rij = cellen(regel);
      const int b = std::stoi(rij[0]);
      h.filialen = b + 1;
      h.maten = static_cast<int>(std::count(rij[2].begin(), rij[2].end(), ' ')) + 1;
      for (size_t i = 1; i < rij.size(); ++i) h.kolom[koppen[i]][b] = rij[i];
    } else if (sscanf(regel.c_str(), "Uitleg van filiaal %d, maat %d", &h.filiaal, &h.maat) > 0) {
      continue;
    } else if (regel.starts_with("    ") && h.filiaal >= 0) {
      h.uitleg.push_back(regel.substr(4));
    }
  }
  std::erase_if(gids, [](const auto& h) { return h.second.kolom.empty(); });
  return gids;
}

std::string tabel_van(const Hoofdstuk& h, const char* kolom) {
  std::string uit;
  for (int b = 0; b < h.filialen; ++b) {
    const auto& rijen = h.kolom.at(kolom);
    std::string leeg = ".";
    for (int s = 1; s < h.maten; ++s) leeg += " .";
    uit += (b > 0 ? " / " : "") + (rijen.contains(b) ? rijen.at(b) : leeg);
  }
  return uit;
}

TEST(Gids, TheExamplesAreWhatTheProgramSays) {
  struct Soort {
    uint8_t kenmerk;
    MaatMatrix Advies::*uitkomst;
  };
  const std::map<std::string, Soort> soorten = {
      {"Aanvuladvies", {ADV_AANVUL, &Advies::r_aanvul}},
      {"Switchadvies", {ADV_SWITCH, &Advies::r_switch}},
      {"Herverdeling van restanten", {ADV_RESTANT, &Advies::r_herverdeel}},
      {"Overige herverdeling", {ADV_OVERIG, &Advies::r_herverdeel}},
      {"Distributie-advies", {ADV_DISTRIBUTIE, &Advies::r_aanvul}}};
  const auto gids = lees_gids();
  ASSERT_EQ(gids.size(), soorten.size());
  for (const auto& [naam, h] : gids) {
    const Soort& soort = soorten.at(naam);
    AdvProef p(h.filialen, h.maten);
    p.magazijn(0).streef({});
    for (const auto& [b, tekst] : h.kolom.at("streef"))
      p.a.groep.streef.at(static_cast<size_t>(b)) = static_cast<uint8_t>(std::stoi(tekst));
    p.voorraad(tabel_van(h, "voorraad")).verkocht(tabel_van(h, "verkocht"));
    p.vraag(tabel_van(h, "vraag")).klaar();
    p.bereken();
    EXPECT_TRUE((p.a.adv_kenmerk & soort.kenmerk) != 0) << naam << int{p.a.adv_kenmerk};
    EXPECT_EQ(p.tabel(p.a.*soort.uitkomst), tabel_van(h, "advies")) << naam;
    EXPECT_EQ(samen(h.uitleg), samen(uitleg(p, soort.uitkomst, h.filiaal, h.maat))) << naam;
  }
}

// One branch and size -----------------------------------------------------------------------------

constexpr const char* MAGAZIJN = "Krijgt niets (magazijn vult verkopen aan): ";
constexpr const char* MINIMUM = "Krijgt niets (magazijn vult aan tot het minimum): ";
constexpr const char* WISSEL =
    "Krijgt niets (filiaal met het meeste over vult aan tot het minimum): ";

TEST(Uitleg, WhoGetsNothingHearsWhichRuleKeepsIt) {
  AdvProef p(7, 1);
  p.magazijn(0).streef({0, 1, 0, 1, 1, 1, 1});
  p.voorraad("1 / . / . / . / 2 / . / 1").verkocht(". / 9 / 8 / 7 / 6 / 5");
  p.vraag(". / 1 / 1 / . / 1 / 1");
  pg_remove(p.aanvul, 6);
  p.klaar().bereken();
  const auto zegt = [&](int b, const std::string& tekst) {
    const Regels r = uitleg(p, &Advies::r_aanvul, b, 1, 200);
    EXPECT_TRUE(staat(r, tekst)) << b << "\n" << samen(r);
  };
  zegt(1,
       "Krijgt 1 van filiaal 0: magazijn vult verkopen aan\n  Filiaal 6: krijgt niet van deze "
       "serie\n  Filiaal 2: streef 0\n  Filiaal 3: geen vraag\n  Filiaal 4, 5: lagere aanspraak");
  zegt(2, std::string(MAGAZIJN) + "streef 0");
  zegt(3, std::string(MAGAZIJN) + "geen vraag");
  zegt(4, std::string(MINIMUM) + "heeft genoeg");
  zegt(4, std::string(MAGAZIJN) + "lagere aanspraak");
  zegt(5, std::string(MINIMUM) + "niemand kan een stuk missen");
  zegt(6, std::string(MAGAZIJN) + "krijgt niet van deze serie");
  zegt(0, "Geeft 1 aan filiaal 1: magazijn vult verkopen aan");
}

TEST(Uitleg, ASwitchNamesLaterTakersOtherGiversAndWhatBlocksIt) {
  AdvProef p(5, 1);
  p.verkocht("9 / 8 / 7").vraag("1 / 1 / 1").voorraad(". / . / 1 / 2 / 3").klaar();
  p.a.m_ontvangen[2][1] += 5;
  p.bereken();
  const Regels eerste = uitleg(p, &Advies::r_switch, 0);
  EXPECT_TRUE(staat(eerste, "Krijgt 1 van filiaal 4")) << samen(eerste);
  EXPECT_TRUE(staat(eerste, "  Filiaal 2: heeft genoeg\n  Filiaal 3: kan minder missen"));
  EXPECT_TRUE(staat(uitleg(p, &Advies::r_switch, 4), "Geeft 1 aan filiaal 0"));
  AdvProef krap(3, 1);
  krap.verkocht("9 / 8").vraag("1 / 1").voorraad(". / . / 2").klaar().bereken();
  EXPECT_TRUE(staat(uitleg(krap, &Advies::r_switch, 1, 1, 120), std::string(WISSEL) + "later"));
  AdvProef niemand(3, 1);
  niemand.verkocht("9").vraag("1").voorraad(". / 1 / 1").klaar().bereken();
  EXPECT_TRUE(staat(uitleg(niemand, &Advies::r_switch, 0, 1, 120), "niemand kan een stuk missen"));
  AdvProef hoeft_niet(3, 1);  // the warehouse can
  hoeft_niet.magazijn(2).verkocht("9").vraag("1").voorraad(". / 5 / 5").klaar().bereken();
  EXPECT_TRUE(staat(uitleg(hoeft_niet, &Advies::r_switch, 0, 1, 120),
                    std::string(WISSEL) + "geen aanleiding voor dit advies"));
  AdvProef dicht(3, 1);
  dicht.verkocht("9").vraag("1").voorraad(". / . / 5");
  dicht.a.m_besteld[0][1] = 1;
  dicht.klaar().bereken();
  EXPECT_TRUE(staat(uitleg(dicht, &Advies::r_switch, 0, 1, 120),
                    std::string(WISSEL) + "er loopt nog een bestelling"));
}

TEST(Uitleg, ANewSeriesHasNothingToSayOfOtherKinds) {
  AdvProef p(4, 1);
  p.magazijn(0).streef({0, 1, 0, 1}).voorraad("1").klaar().bereken();
  EXPECT_TRUE(staat(uitleg(p, &Advies::r_switch, 1), "geen aanleiding voor dit advies"));
  EXPECT_TRUE(staat(uitleg(p, &Advies::r_aanvul, 2), "(distributie naar streef): streef 0"));
  EXPECT_TRUE(
      staat(uitleg(p, &Advies::r_aanvul, 3), "(distributie naar streef): lagere aanspraak"));
  AdvProef houdt(2, 1);
  houdt.streef({1, 1}).voorraad("5").klaar().bereken();
  EXPECT_TRUE(staat(uitleg(houdt, &Advies::r_aanvul, 0), "Houdt 3: rest van de distributie"));
}

/// The score as it stood before the series, not as the series left it.
TEST(Uitleg, ALaterSeriesOfTheModelIsExplainedAsItWasCalculated) {
  AdvProef p(3, 1);
  p.magazijn(0).streef({0, 1, 1}).voorraad("1").verkocht(". / 9 / 8").vraag(". / 5 / 5").klaar();
  for (const int kreeg : {1, 2, 1}) {
    p.bereken();
    EXPECT_EQ(cel(p.a.r_aanvul, kreeg, 1), 1);
    for (int keer = 0; keer < 2; ++keer)
      EXPECT_TRUE(staat(uitleg(p, &Advies::r_aanvul, kreeg), "Krijgt 1 van filiaal 0"));
  }
}

TEST(Uitleg, LinesFitAndBranchesAreRanges) {
  AdvProef p(60, 2);
  p.magazijn(0).voorraad("9 9");
  for (size_t b = 1; b < 60; b += b % 5 == 0 ? 2 : 1) p.a.m_verkocht[b] = {0, 1, 1};
  p.a.m_vrk_periode[1] = p.a.m_aanvul[1] = {0, 1, 1};
  p.klaar().bereken();
  const Regels r = uitleg(p, &Advies::r_aanvul, 1, 1, 40);
  for (const std::string& regel : r) EXPECT_LE(regel.size(), 40u) << regel;
  EXPECT_TRUE(staat(r, "Filiaal 2-5, 7-10, 12-15")) << samen(r);
  EXPECT_TRUE(staat(uitleg(p, &Advies::r_aanvul, 1, 0), "Krijgt 2 van filiaal 0"));
  for (const int b : {-1, 60}) EXPECT_TRUE(uitleg(p, &Advies::r_aanvul, b).empty());
  EXPECT_TRUE(uitleg(p, &Advies::r_aanvul, 1, 96).empty());
}

}  // namespace
