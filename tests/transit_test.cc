// Working off what is on its way: what is gathered, what each action leaves in the files for each
// state of a label, a series that somebody holds, a process that dies at each of its writes, and
// the commands as an operator sees them.
#include <algorithm>
#include <regex>

#include "main/transit.h"
#include "main/transit_in.h"
#include "sub/muteren.h"
#include "sub/pghdl.h"
#include "sub/sel_krit.h"
#include "tests/support/adv_keten.h"
#include "tests/support/agent.h"
#include "tests/support/sterven.h"

namespace {

using namespace toets;
constexpr uint16_t DAG = 46001;  // of most sends: 10-12-25

struct Transit : AdvKeten {
  void SetUp() override {
    AdvKeten::SetUp();
    keten.open();
  }

  /// A label sent by hand: on its way, with its money line from `houder`.
  static int32_t gezonden(const Serienr& nr, uint8_t maat, uint8_t van, uint8_t naar,
                          int houder = -1, uint32_t opdracht = 0, uint16_t dag = DAG) {
    int32_t nummer = stuk(nr, ETI_VOORRAAD, maat, houder < 0 ? van : static_cast<uint8_t>(houder));
    EXPECT_TRUE(serie_wacht(nr));
    Etiket e = proef_lees(nummer);
    zend_etiket(nummer, &e, {van, naar, opdracht, dag, 0}, false);
    ++ser_rec.voorraad;
    serie_schrijf();
    return nummer;
  }
  static void verkoop(int32_t nummer, uint8_t filiaal) {
    proef_wijzig(nummer, [filiaal](Etiket& e) {
      e.status = ETI_VERKOPEN;
      e.filiaal = filiaal;
      e.onderweg = e.doel = 0;
      e.vrkdat = DAG + 2;
    });
  }
  static void reken_af(int32_t nummer) {
    IXSWITCH(dtfin, 2);
    DtFin f{};
    f.etiket = static_cast<uint32_t>(nummer);
    ASSERT_TRUE(IXFIRSTR(dtfin, &f, 1));
    f.afgerekend = 1;
    f.afrekening[0] = 9;
    IXWRITE(dtfin, &f);
  }

  static AnnulGrens annul(uint8_t van) {
    AnnulGrens g;
    g.vanfil = van;
    pg_fill(g.naar);
    return g;
  }
  static NontvGrens nontv() {
    NontvGrens g;
    pg_fill(g.van);
    pg_fill(g.naar);
    return g;
  }
  static void elke_rij(const std::function<void(Zoekregel&)>& doe) {
    ICB* tabel = IXOPEN(privaat.tp, IX_EXCLUSIEF);
    for (Zoekregel r : proef_inhoud<Zoekregel>(tabel)) {
      doe(r);
      IXWRITE(tabel, &r);
    }
    IXCLOSE(tabel);
  }
  /// The rows of the list as its lines; a star in front of a marked one.
  static std::string lijst(bool status) {
    std::string uit;
    elke_rij([&](Zoekregel& r) {
      std::string regel = transit_regel(r, status);
      regel.resize(regel.find_last_not_of(' ') + 1);
      uit += (r.gemarkeerd != 0 ? "*" : "") + regel + "\n";
    });
    return uit;
  }
  static void merk_alles() {
    elke_rij([](Zoekregel& r) { r.gemarkeerd = 1; });
  }

  template <class Rec, class Tekst>
  static std::string alles(ICB* tabel, int sleutel, Tekst tekst) {
    std::string uit;
    for (const Rec& r : proef_inhoud<Rec>(tabel, sleutel)) uit += tekst(r) + "\n";
    return uit;
  }
  /// All that is booked of the labels, one line a record.
  static std::string boeken() {
    std::string uit = alles<DtGo>(dtgo, 1, [](const DtGo& r) {
      return str_format("GO %lu %d>%d", r.etiket, r.vanfil, r.naarfil) +
             (r.afgewerkt != 0 ? " af" : "");
    });
    uit += alles<DtFin>(dtfin, 2, [](const DtFin& r) {
      return str_format("FIN %lu %d:%d>%d", r.etiket, r.houder, r.vanfil, r.naarfil) +
             (r.datum == date_today() ? " vandaag" : "") + str_format(" %lu", r.regel) +
             (r.afgerekend != 0 ? " afgerekend" : "") + (r.afrekening[0] != 0 ? "!" : "");
    });
    uit += alles<DtIo>(dtio, 1, [](const DtIo& r) {
      return str_format("IO %lu %d>%d nr %lu %d", r.etiket, r.vanfil, r.naarfil, r.opdrachtnr,
                        r.onderweg) +
             (r.datum == date_today() && r.registratie == date_today() ? " vandaag" : "");
    });
    return uit;
  }
  static std::string label(int32_t nummer) {
    const Etiket e = proef_lees(nummer);
    std::string uit = str_format("%d in %d", e.status, e.filiaal);
    if (e.onderweg != 0 || e.doel != 0) uit += str_format(" > %d", e.doel);
    if (e.reden != 0) uit += str_format(" reden %d dag %d", e.reden, e.vrkdat - DAG);
    return uit;
  }
  static std::string tellers(const Serienr& nr) {
    EXPECT_TRUE(serie_probeer(nr)) << "held";
    serie_los();
    return str_format("VRD %lu COR %lu", ser_rec.voorraad, ser_rec.correcties);
  }
};

// Gathering ---------------------------------------------------------------------------------------

TEST_F(Transit, WhatCanBeCancelled) {
  const int32_t gewoon = gezonden(ROK, 2, 1, 3, -1, 20000011);
  const int32_t verkocht = gezonden(JAS, 1, 1, 3);
  verkoop(verkocht, 3);
  const int32_t ander_doel = gezonden(ROK, 3, 1, 4, -1, 0, DAG + 1);
  gezonden(ROK, 1, 2, 3);  // of another branch
  reken_af(gezonden(ROK, 1, 1, 3));
  zet_go(gezonden(ROK, 1, 1, 3), [](DtGo& r) { r.printdatum = DAG; });
  zet_go(gezonden(ROK, 1, 1, 3), [](DtGo& r) { r.afgewerkt = 1; });
  zet_go(gezonden(ROK, 1, 1, 3), [](DtGo& r) { r.soort = 2; });
  proef_wijzig(gezonden(ROK, 1, 1, 3), [](Etiket& e) { e.doel = 5; });  // went elsewhere
  proef_wijzig(gezonden(ROK, 1, 1, 3), [](Etiket& e) { e.onderweg = e.doel = 0; });  // never left
  ProefKeten::voeg(dtgo, DtGo{1, 3, 0, 0, 987654, ROK, 0, 1, {}, 0, DAG, 0});  // no such label
  ProefKeten::voeg(dtgo, DtGo{1, 252, 0, 0, UINT32_MAX, ROK, 0, 1, {}, 0, DAG, 0});  // damaged

  const std::string rok = str_format("10100.10.1     %-13ld   M  1  3 20000011 10-12-25\n", gewoon);
  const std::string jas =
      str_format("10100.20.2     %-13ld   S  1  3          10-12-25\n", verkocht);
  const std::string vier =
      str_format("10100.10.1     %-13ld   L  1  4          11-12-25\n", ander_doel);
  IXSWITCH(dtgo, 1);
  IXSWITCH(dtfin, 2);
  EXPECT_EQ(annul_vul(annul(1)), 3);
  EXPECT_EQ(lijst(false), rok + jas + vier);
  EXPECT_EQ(dtgo->block.key_number, 1);
  EXPECT_EQ(dtfin->block.key_number, 2);

  AnnulGrens g = annul(1);
  pg_remove(g.naar, 3);
  EXPECT_EQ(annul_vul(g), 1);
  EXPECT_EQ(lijst(false), vier);
  const auto met = [](const std::function<void(AnnulGrens&)>& zet) {
    AnnulGrens grens = annul(1);
    zet(grens);
    annul_vul(grens);
    return lijst(false);
  };
  EXPECT_EQ(met([](AnnulGrens& a) { a.zenddatum = DAG + 1; }), vier);
  EXPECT_EQ(met([](AnnulGrens& a) { a.kleur = JAS.kleur; }), jas);
  EXPECT_EQ(met([](AnnulGrens& a) { a.volgnr = ROK.volgnr; }), rok + vier);
  EXPECT_EQ(met([](AnnulGrens& a) { a.maat = "M"; }), rok);
  EXPECT_EQ(met([](AnnulGrens& a) { a.artgroep = 10200; }), "");
}

/// With nothing travelling in the books a send can be cancelled while the piece is where it went.
TEST_F(Transit, CancellingWithoutTransit) {
  sys_rec20.transit = 0;
  const int32_t daar = gezonden(ROK, 1, 1, 3, 2);
  const int32_t verder = gezonden(ROK, 1, 1, 3);
  proef_wijzig(verder, [](Etiket& e) { e.filiaal = 4; });
  EXPECT_EQ(label(daar), "2 in 3");
  EXPECT_EQ(annul_vul(annul(1)), 1);
  merk_alles();
  annul_werk();
  EXPECT_EQ(label(daar), "2 in 2") << "with whom the books had it";
  EXPECT_EQ(label(verder), "2 in 4");
  EXPECT_EQ(boeken(), str_format("GO %ld 1>3\nFIN %ld 1:1>3 0\n", verder, verder));
}

TEST_F(Transit, WhatIsLeftToFinish) {
  const int32_t weg = gezonden(ROK, 1, 1, 3);
  const int32_t verkocht = gezonden(ROK, 2, 1, 3);
  verkoop(verkocht, 3);
  const int32_t elders = gezonden(ROK, 3, 1, 4);
  proef_wijzig(elders, [](Etiket& e) {
    e.onderweg = e.doel = 0;
    e.filiaal = 5;
  });
  zet_go(gezonden(ROK, 1, 1, 3), [](DtGo& r) { r.afgewerkt = 1; });
  const int32_t laat = gezonden(JAS, 1, 2, 3, -1, 4711, DAG + 9);
  zet_go(laat, [](DtGo& r) { r.printdatum = DAG + 10; });
  zet_go(gezonden(JAS, 1, 2, 4, -1, 4711, DAG + 9), [](DtGo& r) { r.printdatum = 0; });

  NontvGrens g = nontv();
  g.tm = DAG + 8;
  EXPECT_EQ(nontv_vul(g), 3);
  EXPECT_EQ(
      lijst(true),
      str_format("10100.10.1     %-13ld   S  1  3          10-12-25\n"
                 "10100.10.1     %-13ld   M  1  3          10-12-25 VRK 12-12-25  3\n",
                 weg, verkocht) +
          str_format("10100.10.1     %-13ld   L  1  4          10-12-25 VRD         5\n", elders));
  pg_remove(g.naar, 3);
  EXPECT_EQ(nontv_vul(g), 1);
  g = nontv();
  pg_remove(g.van, 1);
  EXPECT_EQ(nontv_vul(g), 2);

  // By document only what was printed in the range, whoever receives it.
  NontvGrens d = nontv();
  d.document = true;
  d.nummer = 4711;
  pg_clear(d.naar);
  EXPECT_EQ(nontv_vul(d), 1);
  EXPECT_EQ(lijst(true), str_format("10100.20.2     %-13ld   S  2  3     4711 19-12-25\n", laat));
  d.tm = DAG + 9;
  EXPECT_EQ(nontv_vul(d), 0);
}

// Finishing ---------------------------------------------------------------------------------------

/// One label in a state, and what each action makes of it and of its books.
struct Uitkomst {
  const char *staat, *na[3];  // cancelled, corrected, received
};

TEST_F(Transit, EachActionForEachStateOfALabel) {
  // State: label; books behind it. N is the label's number.
  const Uitkomst UITKOMSTEN[] = {
      {"onderweg",
       {"2 in 2|", "4 in 2 reden 7 dag 0|",
        "2 in 3|GO N 1>3 af|FIN N 2:1>3 0|IO N 1>3 nr 88 1 vandaag|"}},
      {"afgerekend",
       {"2 in 2|FIN N 2:1>3 0 afgerekend!|FIN N 3:3>2 vandaag 0|",
        "4 in 2 reden 7 dag 0|FIN N 2:1>3 0 afgerekend!|FIN N 3:3>2 vandaag 0|",
        "2 in 3|GO N 1>3 af|FIN N 2:1>3 0 afgerekend!|IO N 1>3 nr 88 1 vandaag|"}},
      {"aangekomen",
       {"2 in 2|", "2 in 2|", "2 in 3|GO N 1>3 af|FIN N 2:1>3 0|IO N 1>3 nr 88 1 vandaag|"}},
      {"verder",
       {"2 in 4|FIN N 2:1>3 0|FIN N 3:3>4 1|", "2 in 4|FIN N 2:1>3 0|FIN N 3:3>4 1|",
        "2 in 4|GO N 1>3 af|FIN N 2:1>3 0|FIN N 3:3>4 1|IO N 1>3 nr 88 1 vandaag|"}},
      {"verkocht",
       {"3 in 3|", nullptr, "3 in 3|GO N 1>3 af|FIN N 2:1>3 0|IO N 1>3 nr 88 1 vandaag|"}},
  };
  const int log = correctielog_open();
  for (const Uitkomst& u : UITKOMSTEN) {
    const std::string staat = u.staat;
    for (int i = 0; i < 3; ++i) {
      if (u.na[i] == nullptr) continue;  // the screen refuses it
      const auto actie = static_cast<TransitActie>(static_cast<int>(TransitActie::annuleren) + i);
      SCOPED_TRACE(staat + " " + std::to_string(i));
      for (ICB* tabel : {dtgo, dtfin, dtio}) IXINIT(tabel);
      const int32_t nummer = gezonden(ROK, 1, 1, 3, 2, 88);
      if (staat == "afgerekend") reken_af(nummer);
      if (staat == "verkocht") verkoop(nummer, 3);
      if (staat == "aangekomen" || staat == "verder") {
        proef_wijzig(nummer, [](Etiket& e) {
          e.onderweg = e.doel = 0;
          e.filiaal = 3;
        });
      }
      if (staat == "verder") {
        proef_wijzig(nummer, [](Etiket& e) { e.filiaal = 4; });
        ASSERT_TRUE(serie_wacht(ROK));
        fin_nieuw(nummer, 3, {3, 4, 0, DAG, 0});
        serie_los();
      }
      ASSERT_EQ(nontv_vul(nontv()), 1);
      merk_alles();
      nontv_werk({actie, 7}, log);
      std::string ist = label(nummer) + "\n" + boeken();
      std::ranges::replace(ist, '\n', '|');
      ist = std::regex_replace(ist, std::regex("(GO|FIN|IO) \\d+ "), "$1 N ");
      EXPECT_EQ(ist, u.na[i]);
      EXPECT_EQ(lijst(true), "") << "the row is done";
    }
  }
  close(log);
  // Two corrections of labels on their way, each with a piece less in stock.
  EXPECT_EQ(tellers(ROK), "VRD 12 COR 2");
  EXPECT_EQ(file_size("DTCOR07.LOG"), 88);
}

TEST_F(Transit, TheLogOfCorrections) {
  const int32_t nummer = gezonden(ROK, 2, 1, 3);
  proef_wijzig(nummer, [](Etiket& e) {
    e.lvnr = 0x0102;
    e.inkpr = 0x010203;
    e.vrkpr = 4495;
    e.ontdat = 45020;
  });
  nontv_vul(nontv());
  merk_alles();
  zet_bytes("DTCOR07.LOG", std::string(44, 'x'));
  const int log = correctielog_open();
  nontv_werk({TransitActie::corrigeren, 4}, log);
  close(log);
  const std::string bytes = bytes_van("DTCOR07.LOG");
  ASSERT_EQ(bytes.size(), 88u) << "behind what stood there";
  std::string soll("V \0\0", 4);
  const auto voeg = [&soll](uint32_t waarde, size_t n) {
    for (; n > 0; --n, waarde >>= 8) soll += static_cast<char>(waarde & 255);
  };
  voeg(static_cast<uint32_t>(nummer), 4);
  voeg(10100, 4);
  voeg(10, 2);
  voeg(1, 2);
  voeg(45020, 2);
  voeg(DAG, 2);
  voeg(0x010203, 4);
  voeg(4495, 4);
  voeg(0x0102, 2);
  voeg(2, 1);  // size
  voeg(4, 1);  // reason
  voeg(1, 1);  // branch
  soll.resize(44);
  EXPECT_EQ(bytes.substr(44), soll);
}

/// Rows that were not marked stay; those that were worked off meanwhile go without a change.
TEST_F(Transit, OnlyWhatIsMarkedAndStillThere) {
  const int32_t een = gezonden(ROK, 1, 1, 3), twee = gezonden(ROK, 1, 1, 3),
                drie = gezonden(JAS, 1, 1, 3);
  ASSERT_EQ(annul_vul(annul(1)), 3);
  elke_rij([een](Zoekregel& r) { r.gemarkeerd = r.etiket != static_cast<uint32_t>(een); });
  go_afwerken(drie);
  annul_werk();
  EXPECT_EQ(label(een), "2 in 1 > 3");
  EXPECT_EQ(label(twee), "2 in 1");
  EXPECT_EQ(label(drie), "2 in 1 > 3");
  EXPECT_TRUE(go_lees(drie));
  EXPECT_FALSE(go_lees(twee));
  EXPECT_EQ(std::ranges::count(lijst(false), '\n'), 1);
  EXPECT_EQ(tellers(ROK), "VRD 2 COR 0");
}

TEST_F(Transit, ASeriesThatSomebodyHoldsIsPassedOver) {
  const int32_t rok = gezonden(ROK, 1, 1, 3), jas = gezonden(JAS, 1, 1, 3);
  keten.sluit();
  Agent ander([&](const std::string& wat) -> std::string {
    if (!keten.is_open) keten.open();
    if (wat == "los") return serie_los(), "los";
    return serie_wacht(ROK) ? "vast" : "weg";
  });
  ASSERT_EQ(ander.ask("neem"), "vast");
  keten.open();
  ASSERT_EQ(annul_vul(annul(1)), 2);
  merk_alles();
  annul_werk();
  EXPECT_EQ(label(rok), "2 in 1 > 3");
  EXPECT_EQ(label(jas), "2 in 1");
  EXPECT_EQ(lijst(false).substr(0, 11), "*10100.10.1") << "its row stays, marked";
  EXPECT_EQ(ander.ask("los"), "los");
  annul_werk();
  EXPECT_EQ(label(rok), "2 in 1");
  EXPECT_EQ(lijst(false), "");
}

/// A process that dies at each of its writes, and another that does it again: no label stays on its
/// way without a record, and in the end all is as if nobody had died.
TEST_F(Transit, DyingAtEachWrite) {
  std::vector<int32_t> nummers;
  for (int i = 0; i < 3; ++i) nummers.push_back(gezonden(ROK, 1, 1, 3));
  keten.sluit();
  const SterfBegin begin({"DTGO", "DTFIN", "DTIO", "DTSER"}, {"DTETI.TXT"});
  TransitActie actie = TransitActie::geen;
  const char* na_actie[] = {"", "2 in 1", "4 in 1 reden 7 dag 0", "2 in 3"};
  const auto werk = [&] {
    const int log = correctielog_open();
    if (nontv_vul(nontv()) > 0) {
      merk_alles();
      nontv_werk({actie, 7}, log);
    }
    close(log);
  };
  for (actie = TransitActie::annuleren; actie != TransitActie::terug;
       actie = static_cast<TransitActie>(static_cast<int>(actie) + 1)) {
    for (int n = 0;; ++n) {
      SCOPED_TRACE(str_format("%d dies at write %d", static_cast<int>(actie), n));
      ASSERT_LT(n, 500);
      begin.terug();
      file_delete("DTCOR07.LOG");
      const bool heel = sterft_bij(n, [&] {
        keten.open();
        werk();
      });
      begin.herbouw();
      keten.open();
      for (const int32_t nummer : nummers) {
        EXPECT_TRUE(proef_lees(nummer).onderweg == 0 || go_lees(nummer)) << nummer;
      }
      werk();
      for (const int32_t nummer : nummers) {
        EXPECT_EQ(label(nummer), na_actie[static_cast<size_t>(actie)]);
      }
      const std::string rest = boeken();
      EXPECT_EQ(std::ranges::count(rest, '\n'), actie == TransitActie::ontvangen ? 9 : 0) << rest;
      EXPECT_GE(file_size("DTCOR07.LOG"), actie == TransitActie::corrigeren ? 3 * 44 : 0);
      keten.sluit();
      ASSERT_FALSE(HasFailure());
      if (heel) break;
    }
  }
}

// On a screen -------------------------------------------------------------------------------------

struct TransitScherm : Transit {
  Terminal commando(void (*doe)()) {
    keten.sluit();
    return draai(
        [doe] {
          sel_start(13);
          doe();
          hdr_line('C', "");
        },
        [] { return std::string(file_exists("TP07.TXT") ? "rest" : ""); });
  }
};

TEST_F(TransitScherm, MarkedSendsAreCancelled) {
  const int32_t een = gezonden(ROK, 1, 1, 3, -1, 20000011), twee = gezonden(ROK, 2, 1, 3),
                drie = gezonden(JAS, 1, 1, 4);
  Terminal t = commando(verz_annuleren);
  EXPECT_SHOWS(t, "Herkomst            :", "│ 1 Verzendmutaties │");
  t.type(Enter, in("1"), Enter, Enter, Enter, Enter, Enter, Enter);
  EXPECT_SHOWS(t, "Verzendfiliaal      :  1\nBestemmingsfilialen :  alle\n", "Akkoord? (J/N) _");
  t.type(in("J"));
  EXPECT_SHOWS(t, " serienummer    etiket         mt vf bf opdracht verzdat",
               " 10100.20.2     11              S  1  4          10-12-25");
  t.type(F7, F7, F3);
  EXPECT_ROWS(t, 3, R"(
┌────────────────────────────── verzendmutaties ───────────────────────────────┐
│ serienummer    etiket         mt vf bf opdracht verzdat                      │
│ 10100.10.1     1               S  1  3 20000011 10-12-25                     │
│ 10100.10.1     2               M  1  3          10-12-25                     │
│                                                                              │
)");
  EXPECT_SHOWS(t, "┌ Gemarkeerde ┐", "│ Annuleren   │");
  EXPECT_FALSE(t.shows("Corrigeren"));
  EXPECT_SHOWS(t.type(Enter), "Gemarkeerde mutaties worden geannuleerd, akkoord? (J/N)");
  EXPECT_SHOWS(t.type(in("N")), "Etiketnummer", "10100.20.2");
  t.type(F3, Enter, in("J"));  // the marks stand
  EXPECT_SHOWS(t, " -> FILIAAL 3", "10100.10.1        S          1*", "Totaal        2");
  EXPECT_FALSE(t.shows("11*"));
  EXPECT_SHOWS(t.type(Esc), "10100.20.2");
  EXPECT_FALSE(t.shows("10100.10.1"));
  EXPECT_SHOWS(t.type(in("11"), F3), "┌ Geselecteerde ┐");
  EXPECT_SHOWS(t.type(Enter), "Geselecteerde mutatie wordt geannuleerd, akkoord? (J/N)");
  EXPECT_EQ(t.type(in("J"), Esc).row(20), "KLAAR");
  keten.open();
  EXPECT_EQ(label(een) + label(twee) + label(drie), "2 in 12 in 12 in 1");
  EXPECT_EQ(boeken(), "");
}

TEST_F(TransitScherm, NothingToCancel) {
  Terminal t = commando(verz_annuleren);
  t.type(Enter, in("1"), in("3"), in("101225"), in("10100"), in("10"), in("1"), in("M"));
  EXPECT_ROWS(t, 5, R"(
Bestemmingsfilialen :  3
Verzenddatum        :  101225
Artikelgroep        :  10100
Kleurnummer         :  10
Volgnummer          :  1
Maat                :  M
)");
  EXPECT_SHOWS(t.type(in("J")), "Geen informatie");
  EXPECT_EQ(t.type(Enter).row(20), "KLAAR");
}

TEST_F(TransitScherm, ASelectionIsFinished) {
  const int32_t weg = gezonden(ROK, 1, 1, 3), verkocht = gezonden(ROK, 2, 1, 3),
                jas = gezonden(JAS, 1, 2, 4);
  verkoop(verkocht, 3);
  Terminal t = commando(mut_afwerken);
  EXPECT_SHOWS(t, "Afwerken via selectie", "Selectie via", "1 Verzendmutaties",
               "2 Geleidedocumentnummer");
  t.type("1", Enter, Enter, Enter, Enter);
  t.type(Esc);  // all series
  EXPECT_SHOWS(t, "verzdat  status", " M  1  3          10-12-25 VRK 12-12-25  3 ");
  // What was sold is not the sender's to correct.
  t.type(in(std::to_string(verkocht)), F3, "C");
  EXPECT_SHOWS(t, "Geselecteerd artikel kan niet worden gecorrigeerd",
               "Afwerken via Annuleren of Ontvangen");
  EXPECT_SHOWS(t.type(Enter), "Etiketnummer");
  t.type(in(std::to_string(verkocht)), F3, "O");
  EXPECT_SHOWS(t, "Geselecteerd artikel ontvangen? (J/N)");
  t.type(in("J"));
  EXPECT_FALSE(t.shows("VRK"));
  EXPECT_SHOWS(t.type(F7, F7, F3, "C"), "Gemarkeerde artikelen corrigeren", "Correctiecode");
  EXPECT_SHOWS(t.type(Esc), "Etiketnummer");
  EXPECT_EQ(t.type(F3, "C", in("5")).row(20), "KLAAR");
  keten.open();
  EXPECT_EQ(label(weg), "4 in 1 reden 5 dag 0");
  EXPECT_EQ(label(jas), "4 in 2 reden 5 dag 0");
  EXPECT_EQ(label(verkocht), "3 in 3");
  EXPECT_EQ(file_size("DTCOR07.LOG"), 88);
  EXPECT_EQ(tellers(JAS), "VRD 0 COR 1");
}

TEST_F(TransitScherm, ADocumentIsFinished) {
  const int32_t nummer = gezonden(ROK, 1, 1, 3, -1, 4711);
  gezonden(ROK, 1, 1, 3, -1, 4712);
  zet_go(nummer, [](DtGo& r) { r.printdatum = DAG + 1; });
  Terminal t = commando(mut_afwerken);
  t.type("2", Enter, in("4711"), Enter, Enter);
  EXPECT_SHOWS(t.type(Esc), "10100.10.1     1               S  1  3     4711 10-12-25");
  EXPECT_EQ(t.type(Enter, "A", in("J")).row(20), "KLAAR");
  keten.open();
  EXPECT_EQ(label(nummer), "2 in 1");
}

TEST_F(TransitScherm, WhatWasDoneOnAnOrder) {
  regel(1, 3, JAS, 4, 20000011);
  regel(1, 3, ROK, 2, 20000011);
  regel(1, 4, ROK, 9, 20000028);
  gezonden(ROK, 1, 1, 3, -1, 20000011);
  zet_go(gezonden(ROK, 2, 1, 3, -1, 20000011), [](DtGo& r) { r.afgewerkt = 1; });
  Terminal t = commando(mut_uitgevoerd);
  EXPECT_SHOWS(t.type(in("20000011")), "Opdrachtnummer", "Volgorde", "3 merk - model");
  EXPECT_SHOWS(t.type("3"), " opdracht 20000011 ");
  EXPECT_ROWS(t, 4, R"(
Opdrachtnummer 20000011

Volgorde 3 merk - model

                   ┌──────────────────── opdracht 20000011 ────────────────────┐
                   │ serienummer     vf  bf  stuks   etiket verzdat            │
                   │ 10100.10.1       1   3      2                             │
                   │ 10100.10.1       1   3               1 10-12-25 open      │
                   │ 10100.10.1       1   3               2 10-12-25 afgewerkt │
                   │ 10100.20.2       1   3      4                             │
)");
  EXPECT_SHOWS(t.type(Esc), "Opdrachtnummer");
  EXPECT_EQ(t.type(Esc).row(20), "KLAAR");
}

}  // namespace
