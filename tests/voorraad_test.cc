// The program voorraad as an operator has it: its menu on the demo chain, who may choose what and
// when, and the commands against each other on two terminals.
#include <cstdlib>
#include <fstream>

#include "isam/ix.h"
#include "sub/records.h"
#include "tests/support/terminal.h"
#include "tests/support/tijdelijk.h"

namespace {

/// A demo chain of its own for each test; the files are made once.
struct DemoKeten {
  TempDir map;
  DemoKeten() {
    static const TempDir moeder;
    if (!std::filesystem::exists(moeder / "DTSYS.TXT")) {
      const std::string maak =
          BUILD_DIR "/tools/winkel demo --seed 1 --today 22112026 -C " + moeder.pad;
      EXPECT_EQ(std::system((maak + " >/dev/null").c_str()), 0);
    }
    std::filesystem::copy(moeder.pad, map.pad,
                          std::filesystem::copy_options::recursive |
                              std::filesystem::copy_options::overwrite_existing);
  }
  std::string operator/(const char* naam) const { return map.pad + "/" + naam; }

  Terminal launcher(const char* gebruiker) const {
    TerminalOpties opties;
    opties.dir = map.pad;
    opties.env = {"BIN=" BUILD_DIR, "KOBPRT=" + map.pad, "TMUX"};
    Terminal t = start({BUILD_DIR "/hoofdmnu"}, opties);
    t.type(toets::in(gebruiker), toets::in(gebruiker));
    return t;
  }
  Terminal voorraad(const char* gebruiker = "DEMO") const {
    Terminal t = launcher(gebruiker);
    t.type("2");
    return t;
  }
  void leeg(const char* tabel) const {
    InMap in(map.pad);
    ICB* icb = IXOPEN(tabel, IX_GEDEELD);
    IXINIT(icb);
    IXCLOSE(icb);
  }
  void datacom() const { std::ofstream(*this / "DTDCIF.TXT") << std::string(28, '\1'); }
};

/// Whether the number of an entry stands bold: it can be chosen. Not for the one in the bar.
bool kan(Terminal& t, int nummer) {
  constexpr int RIJ[] = {0, 4, 7, 16, 4, 9, 13, 19};  // of the first entry of each rubric
  const int rubriek = nummer / 10;
  return t.bold(RIJ[rubriek] + nummer % 10 - 1, rubriek < 4 ? 3 : 43);
}

TEST(VoorraadMenu, TheWholePicture) {
  const DemoKeten keten;
  Terminal l = keten.launcher("DEMO");
  EXPECT_SHOWS(l, " 1 Voorraadbeheer", " 2 Voorraad en opdrachten");
  l.type("2");
  EXPECT_SHOWS(l, "Adviezen en opdrachten * Voorraadbeheer");
  EXPECT_ROWS(l, 3, R"(
 SALDO VOORLOPIGE OPDRACHTEN             VERZENDMUTATIES
 11 Selectie en afdrukken                41 Ingave per nummer
                                         42 Annuleren verzendmutaties
 ADVIEZEN                                43 Afwerken via selectie
 21 Selecteren series
 22 Automatisch aanmaken                 ONTVANGSTMUTATIES
 23 Handmatig aanmaken                   51 Ingave per nummer
 24 Ingeven mutaties                     52 Ontvangstbevestiging per nummer
 25 Afdrukken adviezen per serie
 26 Afdrukken per artikel                DATACOM
 27 Verkopen tbv filiaalverkeer          61 Signaallijst datacom
                                         62 Verwerken datacom
 VERZAMELOPDRACHTEN                      63 Wijzigen datacom
 31 Afdrukken voorlopige opdracht
 32 Afdrukken nieuwe opdracht            VERWIJDEREN EN INSTELLEN
 33 Afdrukken bestaande opdracht         71 Verwijderen voorlopige opdracht
 34 Uitvoeren adviezen                   72 Verwijderen verzamelopdrachten
 35 Controle uitvoering opdracht         73 Verwijderen aanvulinformatie
 36 Magazijnlocaties                     74 Bewaren aanvulinformatie
 37 Locatie per serie                    75 Instellen contr. verzamelopdrachten
 38 Uitgevoerde mutaties
Uw keuze 11
)");
  l.type(toets::Esc);
  EXPECT_SHOWS(l, "Hoofdmenu");
  for (const char* weg : {"TP01P.TXT", "TP01P.INX", "TP01G.TXT", "TP01G.INX", "DTSER.A01"})
    EXPECT_FALSE(std::filesystem::exists(keten / weg)) << weg;
}

TEST(VoorraadMenu, RightsAndWhatThereIs) {
  const DemoKeten keten;
  Terminal t = keten.voorraad();
  t.type(toets::Up);  // to the last entry
  for (const int n : {11, 21}) EXPECT_TRUE(kan(t, n)) << n;
  for (const int n : {61, 62, 63}) EXPECT_FALSE(kan(t, n)) << n;
  t.type("61");
  EXPECT_SHOWS(t, "Keuze niet beschikbaar");
  t.type(toets::Esc, toets::Esc);
  EXPECT_EQ(t.exit_status(), 0);

  keten.leeg("DTPICK");
  keten.datacom();
  Terminal s = keten.voorraad("BEHEER");
  s.type(toets::Up);
  EXPECT_SHOWS(s, "64 Verwijderen datacom");  // the manager's only
  for (const int n : {11, 31, 32, 33, 34, 35, 71, 72}) EXPECT_FALSE(kan(s, n)) << n;

  Terminal i = keten.voorraad("KIJK");
  EXPECT_SHOWS(i, "Geen menubevoegdheden");
  EXPECT_FALSE(i.shows("ADVIEZEN"));
  i.type(toets::Enter);
  EXPECT_SHOWS(i, "Hoofdmenu");
}

}  // namespace
