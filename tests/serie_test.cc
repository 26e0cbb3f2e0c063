// The test of a series, the three ways to walk, and the private index that comes out of them.
#include "sub/serie.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <random>
#include <tuple>

#include "isam/io.h"
#include "scr/scr.h"
#include "sub/sel_krit.h"
#include "sub/sel_merken.h"
#include "sub/serie_keuze.h"
#include "tests/support/stukken.h"
#include "tests/support/terminal.h"

namespace {

using Sleutel = std::tuple<uint32_t, uint16_t, uint16_t>;
Sleutel sleutel(const DtSer& s) { return {s.nr.artgroep, s.nr.kleur, s.nr.volgnr}; }

/// The records of DTSER.TXT in a random order, its index built from them.
void maak_series(const std::vector<DtSer>& series) {
  std::ofstream("DTSER.TXT", std::ios::binary)
      .write(reinterpret_cast<const char*>(series.data()),
             static_cast<std::streamsize>(series.size() * sizeof(DtSer)));
  ASSERT_EQ(IXBLDIX("DTSER"), 1);
}

std::vector<DtSer> willekeurig(std::mt19937& rng, int aantal) {
  std::vector<DtSer> uit;
  std::vector<Sleutel> gezien;
  while (static_cast<int>(uit.size()) < aantal) {
    DtSer s{};
    s.nr = {static_cast<uint32_t>(10000 + rng() % 12 * 500), static_cast<uint16_t>(1 + rng() % 40),
            static_cast<uint16_t>(rng() % 6)};
    if (std::ranges::find(gezien, sleutel(s)) != gezien.end()) continue;
    gezien.push_back(sleutel(s));
    s.merk = static_cast<uint16_t>(1 + rng() % 8);
    s.jaar = rng() % 4 == 0 ? uint16_t{0} : static_cast<uint16_t>(2022 + rng() % 4);
    s.hoofdseizoen = "KZWX"[rng() % 4];
    s.deelseizoen = static_cast<uint8_t>(rng() % 10);
    s.doelgroep = rng() % 6 == 0 ? '\0' : "DHM"[rng() % 3];
    memcpy(s.model, rng() % 2 ? "ANNA" : "BOB-LANG-MODEL!", 4);
    s.kenmerk[0] = "AB"[rng() % 2];
    s.blok1 = -1;
    uit.push_back(s);
  }
  return uit;
}

/// The rules once more, as plainly as they can be said.
bool past(const DtSer& s, const SelRec& r, const std::vector<uint16_t>& merken) {
  const auto heeft = [](const char* lijst, char c) {
    return lijst[0] == 0 || (c != 0 && strchr(lijst, c) != nullptr);
  };
  if (!merken.empty() && std::ranges::find(merken, s.merk) == merken.end()) return false;
  if (s.nr.artgroep < r.artgroep_van || s.nr.artgroep > r.artgroep_tm) return false;
  if (s.nr.kleur < r.kleur_van || s.nr.kleur > r.kleur_tm) return false;
  if (s.jaar == 0 && r.stdmod == 2) return false;
  if (s.jaar != 0) {
    if (r.stdmod == 1) return false;
    const int v = s.jaar * 10 + (s.hoofdseizoen == 'K'   ? 1
                                 : s.hoofdseizoen == 'Z' ? 2
                                 : s.hoofdseizoen == 'W' ? 3
                                                         : 9);
    if (v < r.jaar_van || v > r.jaar_tm) return false;
  }
  if (r.model[0] != 0 && memcmp(r.model, s.model, 15) != 0) return false;
  // Even article groups of the fixture carry characteristic 2.
  if (r.kenmerk_nr != 0) {
    if ((s.nr.artgroep / 500 % 2 == 0 ? 2 : 1) != r.kenmerk_nr) return false;
    if (r.kenmerk_waarde[0] != 0 && memcmp(r.kenmerk_waarde, s.kenmerk, 2) != 0) return false;
  }
  return heeft(r.doelgroep, s.doelgroep) && heeft(r.seizoen, s.hoofdseizoen) &&
         r.deelseizoen[s.deelseizoen] != 0;
}

void zet(char letter) { sel_status[static_cast<uint8_t>(letter)] = SEL_INGEVOERD; }

/// Enters some fields at random; the brands chosen come back.
std::vector<uint16_t> kies_criteria(std::mt19937& rng) {
  sel_standaard(13);
  merklijst_leeg();
  const auto soms = [&rng] { return rng() % 4 == 0; };
  std::vector<uint16_t> merken;
  if (soms() || soms()) {
    for (uint16_t m = 1; m <= 8; ++m) {
      if (soms()) merken.push_back(m);
    }
    merklijst_neem(merken, true);
    if (!merken.empty()) sel_status['a'] = SEL_LIJST;
  }
  if (soms() || soms())
    sel_rec.artgroep_van = static_cast<uint32_t>(10000 + rng() % 6000), zet('b');
  if (soms() || soms()) sel_rec.artgroep_tm = static_cast<uint32_t>(10000 + rng() % 6000), zet('c');
  if (soms()) sel_rec.kleur_van = static_cast<uint16_t>(rng() % 40), zet('d');
  if (soms()) sel_rec.kleur_tm = static_cast<uint16_t>(1 + rng() % 40), zet('e');
  if (soms()) strcpy(sel_rec.doelgroep, "DH"), zet('f');
  if (soms()) strcpy(sel_rec.seizoen, "ZX"), zet('g');
  if (soms()) sel_rec.stdmod = static_cast<uint8_t>(1 + rng() % 2), zet('h');
  if (soms()) sel_rec.jaar_van = static_cast<uint16_t>(20220 + rng() % 4 * 10), zet('i');
  if (soms()) sel_rec.jaar_tm = static_cast<uint16_t>(20220 + rng() % 40), zet('j');
  if (soms()) sel_rec.deelseizoen[rng() % 10] = sel_rec.deelseizoen[3] = 1, zet('G');
  if (soms()) memcpy(sel_rec.model, "ANNA", 4), zet('S');
  if (soms()) {
    sel_rec.kenmerk_nr = static_cast<uint8_t>(1 + rng() % 2);
    if (soms()) sel_rec.kenmerk_waarde[0] = 'A';
    zet('T');
  }
  return merken;
}

void maak_artikelen() {
  for (uint32_t g = 10000; g < 16000; g += 500) {
    proef_artikel(g, "", [g](DtArt& a) { a.kenmerk_nr = g / 500 % 2 == 0 ? 2 : 1; });
  }
  for (uint16_t m = 1; m <= 8; ++m) proef_merk(m);
}

std::vector<Sleutel> inhoud(const char* naam) {
  ICB* icb = IXOPEN(naam, IX_LEES);
  std::vector<Sleutel> uit;
  for (const DtSer& rec : proef_inhoud<DtSer>(icb)) uit.push_back(sleutel(rec));
  IXCLOSE(icb);
  return uit;
}

TEST(Serie, EveryWalkFindsWhatTheRulesSayAndTheIndexStandsInOrder) {
  const unsigned zaad = std::random_device{}();
  SCOPED_TRACE(zaad);
  printf("seed %u\n", zaad);
  std::mt19937 rng(zaad);
  Keten k;
  const auto series = willekeurig(rng, 900);
  maak_series(series);
  k.open();
  maak_artikelen();
  int per_methode[3] = {};
  for (int ronde = 0; ronde < 120; ++ronde) {
    const auto merken = kies_criteria(rng);
    ASSERT_TRUE(serie_selecteer(privaat.o, "AKV"));
    ++per_methode[serie_methode()];
    std::vector<Sleutel> soll;
    for (const DtSer& s : series) {
      if (past(s, sel_rec, merken)) soll.push_back(sleutel(s));
    }
    std::ranges::sort(soll);
    ASSERT_EQ(inhoud(privaat.o), soll) << "round " << ronde;

    // The same along the key of the target groups.
    if (serie_methode() != 1) continue;
    IXSWITCH(dtser, 3);
    std::vector<Sleutel> derde;
    for (bool er = serie_eerste(); er; er = serie_volgende()) derde.push_back(sleutel(ser_rec));
    serie_einde();
    IXSWITCH(dtser, 1);
    EXPECT_EQ(ser_rec.nr.artgroep, 200000u);
    std::ranges::sort(derde);
    ASSERT_EQ(derde, soll) << "round " << ronde;
  }
  for (const int n : per_methode) EXPECT_GT(n, 0);
}

TEST(Serie, TheIndexIsAPrivateOneThatPointsAtTheSlotsOfTheTable) {
  Keten k;
  k.open();
  maak_artikelen();
  for (uint16_t kleur = 30; kleur > 0; --kleur) {
    Keten::serie({10500, kleur, 1}, 1, static_cast<uint16_t>(kleur % 3));
  }
  sel_standaard(13);
  ASSERT_TRUE(serie_selecteer(privaat.v, "RAKV"));
  ICB* icb = IXOPEN(privaat.v, IX_LEES);
  EXPECT_STREQ(icb->description, "RAKV");
  EXPECT_TRUE(icb->record_length == 200 && icb->record_count == 30 && icb->busy == 0);
  EXPECT_EQ(static_cast<int64_t>(icb->next_block) * IX_BLOK, file_size(privaat.v));
  DtSer rec{};
  ASSERT_TRUE(IXFIRSTR(icb, &rec));
  EXPECT_EQ(rec.nr.kleur, 3);  // the first of brand 0
  EXPECT_EQ(icb->record_no, 27);
  IXCLOSE(icb);

  // Into a file as it stands: what it holds is passed over, in bulk or one by one.
  sel_standaard(13);
  EXPECT_TRUE(serie_vul(privaat.v, "RAKV", false));
  EXPECT_EQ(inhoud(privaat.v).size(), 30u);
  Keten::serie({10000, 1, 1});
  sel_standaard(13);
  EXPECT_TRUE(serie_vul(privaat.v, "RAKV", false));
  EXPECT_EQ(inhoud(privaat.v).size(), 31u);
  EXPECT_FALSE(serie_selecteer(privaat.o, "AKVRMDJSENZ"));
}

TEST(Serie, NumbersOfADamagedTableEndTheWalkAllTheSame) {
  Keten k;
  k.open();
  maak_artikelen();
  for (const uint32_t groep : {10500u, 100000u, 100001u, 250000u, 4000000000u}) {
    for (const uint16_t kleur : {uint16_t{5}, uint16_t{1000}, uint16_t{65535}}) {
      Keten::serie({groep, kleur, 1}, 1, 2);
    }
  }
  sel_standaard(13);
  merklijst_neem(std::vector<uint16_t>{2}, true);
  sel_status['a'] = SEL_LIJST;
  sel_rec.artgroep_tm = 20000;
  zet('c');
  sel_rec.kleur_tm = 10;
  zet('e');
  ASSERT_TRUE(serie_selecteer(privaat.o, "AKV"));
  EXPECT_EQ(inhoud(privaat.o), (std::vector<Sleutel>{{10500, 5, 1}}));
}

bool alleen_kleur_zeven() { return ser_rec.nr.kleur == 7; }

TEST(Serie, ACommandsOwnTestIsAskedLast) {
  Keten k;
  k.open();
  for (uint16_t kleur = 1; kleur < 10; ++kleur) Keten::serie({10500, kleur, 1});
  sel_standaard(13);
  serie_haak = alleen_kleur_zeven;
  EXPECT_TRUE(serie_selecteer(privaat.o, "AKV"));
  serie_haak = nullptr;
  EXPECT_EQ(inhoud(privaat.o), (std::vector<Sleutel>{{10500, 7, 1}}));
}

uint64_t gelezen_uit_dtser;
void tel(int fd, void*, size_t n, int64_t) {
  if (dtser != nullptr && fd == dtser->data_fd) gelezen_uit_dtser += n;
}

TEST(Serie, OneBrandOfManyReadsAFractionOfTheTable) {
  constexpr int AANTAL = 24000, MERKEN = 220;
  Keten k;
  std::vector<DtSer> series(AANTAL);
  for (int i = 0; i < AANTAL; ++i) {
    series[static_cast<size_t>(i)].nr = {static_cast<uint32_t>(10000 + i % 180 * 10),
                                         static_cast<uint16_t>(1 + i / 180 % 60),
                                         static_cast<uint16_t>(1 + i / 10800)};
    series[static_cast<size_t>(i)].merk = static_cast<uint16_t>(1 + i % MERKEN);
  }
  std::shuffle(series.begin(), series.end(), std::mt19937(1));
  maak_series(series);
  k.open();
  maak_artikelen();
  sel_standaard(13);
  merklijst_neem(std::vector<uint16_t>{7}, true);
  sel_status['a'] = SEL_LIJST;
  gelezen_uit_dtser = 0;
  io_proef.na_lees = tel;
  const bool goed = serie_selecteer(privaat.o, "AKV");
  io_proef.na_lees = nullptr;
  ASSERT_TRUE(goed);
  EXPECT_EQ(inhoud(privaat.o).size(), static_cast<size_t>(AANTAL / MERKEN + 1));
  EXPECT_GT(gelezen_uit_dtser, 0u);
  EXPECT_LT(gelezen_uit_dtser, static_cast<uint64_t>(AANTAL) * sizeof(DtSer) / 10);
}

/// An operator who cancels in the middle: the question is asked at most once a second.
bool breek_af_bij_vijf() {
  static int geteld = 0;
  if (++geteld == 5) {
    for (const time_t nu = time(nullptr); time(nullptr) == nu;) {
    }
    key_push(K_CANCEL);
  }
  return true;
}

TEST(Serie, AWalkThatTheOperatorStopsLeavesAnEmptySelection) {
  Keten k;
  k.open();
  for (uint16_t kleur = 1; kleur < 60; ++kleur) Keten::serie({10500, kleur, 1});
  k.sluit();
  for (const uint32_t vanaf : {0u, 10000u}) {
    Terminal t = start_in_child([&] {
      k.open();
      SCRINIT();
      sel_standaard(13);
      sel_rec.artgroep_van = vanaf;
      if (vanaf != 0) zet('b');
      serie_haak = breek_af_bij_vijf;
      const bool heel = serie_selecteer(privaat.o, "AKVR");
      ICB* icb = IXOPEN(privaat.o, IX_LEES);
      const std::string letters = veld_tekst(icb->description, sizeof icb->description);
      IXCLOSE(icb);
      scr_clrbot(2, 1);
      scr_print(A_WAARDE, 2, 1, "%d %d %s.", heel, static_cast<int>(inhoud(privaat.o).size()),
                letters);
      scr_enter(22, 1);
      scr_exit(0);
    });
    EXPECT_TRUE(t.shows("Onderbreken")) << vanaf;
    EXPECT_TRUE(t.row(21).starts_with(vanaf == 0 ? "Verwerkt " : "Serienr ")) << t.row(21);
    EXPECT_EQ(t.type(toets::Enter).row(2), "0 0 AKVR.") << vanaf;
  }
}

/// The advice commands' selection on a terminal, with what it holds on row 2 behind each run.
Terminal start_keuze(Keten& k) {
  return start_in_child([&k] {
    k.open();
    SCRINIT();
    IXCLOSE(sort_maak(privaat.v, "AKV"));
    sel_start(13);
    for (int i = 0; i < 4; ++i) {
      serie_selectie();
      scr_clrbot(2, 1);
      scr_print(A_WAARDE, 2, 1, "%d %s %d.", static_cast<int>(inhoud(privaat.v).size()),
                serie_sortering, serie_gevuld);
      scr_enter(22, 1);
    }
    scr_exit(0);
  });
}

TEST(SerieKeuze, KeepsAddsReordersAndEmptiesTheSelection) {
  Keten k;
  k.open();
  for (uint16_t kleur = 1; kleur < 10; ++kleur) Keten::serie({10500, kleur, 1});
  k.sluit();
  Terminal t = start_keuze(k);
  EXPECT_SHOWS(t, "Sorteervolgorde AKV");
  t.type(toets::Enter);
  t.type("16");  // the first colour
  EXPECT_EQ(t.type(toets::in("8"), toets::Esc).row(2), "2 AKV 1.");
  t.type(toets::Enter);

  EXPECT_SHOWS(t.type("s", toets::Enter), "Huidige selectie eerst leegmaken? (J/N)");
  t.type(toets::Enter);  // no: what comes is added
  EXPECT_EQ(t.type("16", toets::in("5"), toets::Esc).row(2), "5 AKV 1.");
  t.type(toets::Enter);

  t.type("s");
  t.type(toets::in("K"));                            // another order, so an empty file
  EXPECT_EQ(t.type(toets::Esc).row(2), "5 KAV 1.");  // slot 0 still asks for colour 5 and up
  t.type(toets::Enter);

  EXPECT_SHOWS(t.type("v"), "De selectie wordt verwijderd. Akkoord? (J/N)");
  EXPECT_EQ(t.type(toets::in("J")).row(2), "0 KAV 0.");
}

}  // namespace
