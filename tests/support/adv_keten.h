// A small chain with pieces in it, for the advice commands: branch 0 the warehouse of article group
// 10100, brand 5, sizes S M L, and the commands on a screen of their own.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "isam/base.h"
#include "main/iofil.h"
#include "main/werktabel.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/ioeti.h"
#include "sub/iomaat.h"
#include "sub/muteren.h"
#include "tests/support/stukken.h"
#include "tests/support/terminal.h"

struct AdvKeten : testing::Test {
  static constexpr Serienr ROK{10100, 10, 1}, JAS{10100, 20, 2}, WEG{10100, 30, 3};
  static constexpr int FILIALEN = 6;
  ProefKeten keten{FILIALEN};

  void SetUp() override {
    keten.open();
    proef_artikel(ROK.artgroep, "Rokken", [](DtArt& art) {
      art.magazijn = 0;
      art.vlaggen = 1;  // the warehouse sells nothing
      art.soort = 'A';
      art.minimum = 1;
      for (int b = 1; b < FILIALEN; ++b) art.streef[b] = 1;
    });
    proef_merk(5, "Duinroos", "DUIN");
    maten();
    serie(ROK, "ANNA", "Rok geplooid");
    serie(JAS, "BEA", "Jas lang");
    keten.sluit();
  }

  static void maten() {
    DtMaat rec{};
    rec.land = rec.maatsoort = 1;
    IXWRITE(dtmaat, &rec);
    MaatHandle* h = mtopen(1, 1, MT_WIJZIG);
    for (const char* tekst : {"  S", "  M", "  L"}) {
      MaatRec m{};
      m.positie = static_cast<uint8_t>(tekst[2] == 'S' ? 1 : tekst[2] == 'M' ? 2 : 3);
      memcpy(m.tekst, tekst, sizeof m.tekst);
      EXPECT_TRUE(mtvoegtoe(h, &m));
    }
    mtclose(h);
  }
  static void serie(const Serienr& nr, const char* model, const char* omschrijving) {
    DtSer rec{};
    rec.nr = nr;
    rec.merk = 5;
    rec.maatsoort = 1;
    rec.maten[0] = 0x0E;
    rec.blok1 = -1;
    rec.verkoopprijs = 4995;
    veld_zet(rec.model, sizeof rec.model, model);
    veld_zet(rec.omschrijving, sizeof rec.omschrijving, omschrijving);
    ProefKeten::voeg(dtser, rec);
  }
  /// A label; the chain of its series follows. Its number.
  static int32_t stuk(const Serienr& nr, uint8_t status, uint8_t maat, uint8_t filiaal) {
    Etiket e = proef_etiket(nr, status, maat, filiaal);
    e.bedrag = status == ETI_VERKOPEN ? 4495 : 0;
    return proef_stuk(e);
  }
  /// A piece sold in a branch, that asks for another.
  static int32_t verkocht(const Serienr& nr, uint8_t maat, uint8_t filiaal) {
    const int32_t nummer = stuk(nr, ETI_VERKOPEN, maat, filiaal);
    ProefKeten::voeg(dtaanv, DtAanv{nr, static_cast<uint32_t>(nummer)});
    return nummer;
  }
  /// The series counts its pieces by size.
  static void met_maten(const Serienr& nr) {
    DtSer rec = proef_serie(nr);
    rec.maatregistratie = 1;
    IXWRITE(dtser, &rec);
  }
  static void regel(int van, int naar, const Serienr& nr, uint32_t stuks, uint32_t opdracht = 0) {
    proef_regel(van, naar, nr, {{1, stuks}}, opdracht, "");
  }
  static void zet_go(int32_t nummer, const std::function<void(DtGo&)>& doe) {
    ASSERT_TRUE(go_lees(nummer));
    doe(go_rec);
    IXWRITE(dtgo, &go_rec);
  }
  /// Changes the chain's files as a program of its own would.
  void met_keten(const std::function<void()>& doe) {
    keten.open();
    doe();
    keten.sluit();
  }
  /// All order lines: "van>naar serie nummer: maat x stuks, ...".
  std::string regels() {
    std::string uit;
    keten.open();
    for (const DtPick& rec : proef_inhoud<DtPick>(dtpick)) {
      uit += str_format("%d>%d %s", rec.vanfil, rec.naarfil, serie_tekst(rec.nr));
      if (rec.opdrachtnr != 0) uit += str_format(" nr %lu", rec.opdrachtnr);
      for (int m = 0; m < MATEN; ++m)
        if (rec.aantal[m] != 0) uit += str_format(" %dx%lu", m, rec.aantal[m]);
      uit += "\n";
    }
    keten.sluit();
    return uit;
  }
  int aanvul_regels() {
    keten.open();
    const auto n = static_cast<int>(proef_inhoud<DtAanv>(dtaanv).size());
    keten.sluit();
    return n;
  }
  /// A command on a screen; behind it "KLAAR" and `na` stand on row 20.
  Terminal draai(
      const std::function<void()>& doe,
      const std::function<std::string()>& na = [] { return std::string(); }) {
    return start_in_child([this, doe, na] {
      keten.open();
      iofil('O', 0, &filiaal_rec);
      werktabellen_open();
      adv_sets.fill(adv_standaard());
      SCRINIT();
      doe();
      scr_print(A_WAARDE, 20, 1, "KLAAR %s", na());
      scr_enter(21, 1);
      werktabellen_sluit();
      keten.sluit();
      scr_exit(0);
    });
  }
};
