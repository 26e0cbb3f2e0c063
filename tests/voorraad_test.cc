// The program voorraad as an operator has it: its menu on the demo chain, who may choose what and
// when, and the commands against each other on two terminals.
#include <array>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>

#include "isam/ix.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "main/iotab.h"
#include "sub/opdrnr.h"
#include "sub/records.h"
#include "sub/tabellen.h"
#include "tests/support/agent.h"
#include "tests/support/demo.h"
#include "tools/keten.h"

namespace {

struct DemoKeten : DemoMap {
  DemoKeten() : DemoMap(1) {}
  Terminal aangemeld(const char* gebruiker, const std::string& waar = "") const {
    Terminal t = launcher(waar);
    t.type(toets::in(gebruiker), toets::in(gebruiker));
    return t;
  }
  Terminal voorraad(const char* gebruiker = "DEMO") const {
    Terminal t = aangemeld(gebruiker);
    t.type("2");
    return t;
  }
  void leeg(const char* tabel) const {
    InMap in(map.pad);
    ICB* icb = IXOPEN(tabel, IX_GEDEELD);
    IXINIT(icb);
    IXCLOSE(icb);
  }
  void datacom() const { zet_bytes(*this / "DTDCIF.TXT", std::string(28, '\1')); }
};

/// Whether the number of an entry stands bold: it can be chosen. Not for the one in the bar.
bool kan(Terminal& t, int nummer) {
  constexpr int RIJ[] = {0, 4, 7, 16, 4, 9, 13, 19};  // of the first entry of each rubric
  const int rubriek = nummer / 10;
  return t.bold(RIJ[rubriek] + nummer % 10 - 1, rubriek < 4 ? 3 : 43);
}

TEST(VoorraadMenu, TheWholePicture) {
  const DemoKeten keten;
  Terminal l = keten.aangemeld("DEMO");
  EXPECT_SHOWS(l, " 1 Voorraadbeheer", " 2 Voorraad en opdrachten");
  EXPECT_SHOWS(l.type("2"), "Adviezen en opdrachten * Voorraadbeheer");
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
  EXPECT_SHOWS(l.type(toets::Esc), "Hoofdmenu");
  for (const char* weg : {"TP01P.TXT", "TP01P.INX", "TP01G.TXT", "TP01G.INX", "DTSER.A01"})
    EXPECT_FALSE(std::filesystem::exists(keten / weg)) << weg;
}

TEST(VoorraadMenu, RightsAndWhatThereIs) {
  const DemoKeten keten;
  std::filesystem::remove(keten / "DTDCIF.TXT");
  Terminal t = keten.voorraad();
  t.type(toets::Up);  // to the last entry
  for (const int n : {11, 21}) EXPECT_TRUE(kan(t, n)) << n;
  for (const int n : {61, 62, 63}) EXPECT_FALSE(kan(t, n)) << n;
  EXPECT_SHOWS(t.type("61"), "Keuze niet beschikbaar");
  EXPECT_EQ(t.type(toets::Esc, toets::Esc).exit_status(), 0);

  keten.leeg("DTPICK");
  keten.datacom();
  Terminal s = keten.voorraad("BEHEER");
  s.type(toets::Up);
  EXPECT_SHOWS(s, "64 Verwijderen datacom");  // the manager's only
  for (const int n : {11, 31, 32, 33, 34, 35, 71, 72}) EXPECT_FALSE(kan(s, n)) << n;
}

TEST(VoorraadMenu, OfferedInANewChainAndToANewUser) {
  const DemoKeten keten;  // the new one is a folder in it
  const std::string map = keten / "nieuw", winkel = BUILD_DIR "/tools/winkel ";
  ASSERT_EQ(std::system((winkel + "init --branches 3 --company Nieuw --wachtwoord BEHEER -C " +
                         map + " >/dev/null && " + winkel +
                         "gebruiker add JAN --wachtwoord JAN -C " + map + " >/dev/null")
                            .c_str()),
            0);
  for (const char* gebruiker : {"BEHEER", "JAN"}) {
    Terminal t = keten.aangemeld(gebruiker, map);
    EXPECT_SHOWS(t, " 1 Voorraadbeheer", " 2 Voorraad en opdrachten");
    EXPECT_SHOWS(t.type("2"), "VERZAMELOPDRACHTEN");
  }
}

// Commands against each other ---------------------------------------------------------------------

/// What a command claims in order, 'S' its session's byte and 'X' the whole function, and the keys
/// that take the operator back from its first question to the menu.
struct Commando {
  const char *nummer, *claims;
  std::vector<const char*> terug;
};
const std::vector<Commando> COMMANDOS = {{"11", "S10", {toets::Esc, toets::Esc, toets::Esc}},
                                         {"22", "S9 X10", {"N", toets::Enter}},
                                         {"23", "S9 S10 S11", {toets::Esc, toets::Esc}},
                                         {"24", "S9 S10 S11", {toets::Esc, toets::Esc}},
                                         {"25", "S9", {toets::Esc}},
                                         {"26", "S9", {toets::Esc}},
                                         {"27", "S9", {toets::Esc}},
                                         {"31", "S10", {toets::Esc, toets::Esc}},
                                         {"33", "S10", {toets::Esc}},
                                         {"41", "S11 S12", {toets::Esc}},
                                         {"51", "S13 S12", {toets::Esc}},
                                         {"52", "S11 S13", {toets::Esc}},
                                         {"35", "S10 S11", {toets::Esc}},
                                         {"38", "S10", {toets::Esc}},
                                         {"42", "S11 X12", {toets::Esc}},
                                         {"43", "S13 X11 X12", {toets::Esc}},
                                         {"63", "X2", {toets::Esc}},
                                         {"71", "X10", {toets::Esc, toets::Esc}},
                                         {"72", "X10", {toets::Esc}},
                                         {"73", "X9", {toets::Esc}},
                                         {"32", "X9 X10", {}},  // would change orders
                                         {"34", "X9 X10 S11 S12", {}}};

struct Claim {
  char soort;
  int functie;
};
std::vector<Claim> claims(const std::string& tekst) {
  std::vector<Claim> lijst;
  std::istringstream in(tekst);
  for (std::string woord; in >> woord;) lijst.push_back({woord[0], std::stoi(woord.substr(1))});
  return lijst;
}

/// How the second of two commands fares: the dialog that it meets, empty when both can go on, and
/// what it has claimed by then in the order of the functions.
struct Verloop {
  std::string dialoog, houdt;
};
Verloop verloop(const std::string& bezet, const std::string& wil) {
  Verloop v;
  std::map<int, char> heeft;
  for (const Claim& w : claims(wil)) {
    for (const Claim& b : claims(bezet))
      if (w.functie == b.functie && (w.soort == 'X' || b.soort == 'X'))
        v.dialoog = w.soort == 'X' ? "Er zijn gebruikers actief die verwerking blokkeren!"
                                   : "Verwerking is actief";
    if (!v.dialoog.empty()) break;
    heeft[w.functie] = w.soort;
  }
  for (const auto& [functie, soort] : heeft)
    v.houdt += (v.houdt.empty() ? "" : " ") + std::string(1, soort) + std::to_string(functie);
  return v;
}

/// Terminal 5, which claims what it is told and tells what terminal 1 has claimed.
struct Buurman {
  explicit Buurman(const std::string& map)
      : agent([map](const std::string& vraag) {
          if (session_terminal != 5) {
            std::filesystem::current_path(map);
            session_terminal = 5;
            int32_t nummer = 1;
            iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
          }
          if (vraag != "?") {
            bool goed = true;
            for (const Claim& c : claims(vraag))
              goed =
                  (c.soort == 'X' ? vw_claim_excl(c.functie) : vw_claim(c.functie, true)) && goed;
            return std::string(goed ? "ja" : "nee");
          }
          std::string uit;
          for (int f = 0; f < 16; ++f) {
            const auto bezet = [f](int sessie) {
              return !vw_lock('T', iotab_fd(), 40084 + 99 * f + sessie, 1);
            };
            if (bezet(1))
              uit +=
                  (uit.empty() ? "" : " ") + std::string(bezet(98) ? "X" : "S") + std::to_string(f);
          }
          return uit;
        }) {}
  Agent agent;
};

TEST(VoorraadClaims, EachCommandAgainstWhatAnotherHolds) {
  const DemoKeten keten;
  for (const char* bezet :
       {"", "S10", "S9 X10", "S9 S10 S11", "S9", "X9 X10", "X9 X10 S11 S12", "S13 X11 X12", "S2"}) {
    Buurman buurman(keten.map.pad);
    ASSERT_EQ(buurman.agent.ask(bezet), "ja");
    Terminal t = keten.voorraad();
    for (const Commando& c : COMMANDOS) {
      SCOPED_TRACE(std::string(c.nummer) + " against " + bezet);
      const Verloop soll = verloop(bezet, c.claims);
      ASSERT_TRUE(t.shows("Adviezen en opdrachten"));
      t.type_now(c.nummer);
      if (!soll.dialoog.empty()) {
        EXPECT_TRUE(t.wait_for(soll.dialoog));
        EXPECT_EQ(buurman.agent.ask("?"), soll.houdt);
        t.type_now(toets::in("N"));
        EXPECT_TRUE(t.wait_for("Adviezen en opdrachten"));
        EXPECT_EQ(buurman.agent.ask("?"), "");
        continue;
      }
      EXPECT_TRUE(t.ready());
      EXPECT_FALSE(t.shows("Wilt u wachten"));
      EXPECT_EQ(buurman.agent.ask("?"), soll.houdt);
      for (const char* toets : c.terug) t.type(toets);
      if (c.terug.empty()) {
        t = Terminal();
        t = keten.voorraad();
      }
    }
  }
}

// The road of one advice --------------------------------------------------------------------------

struct Weg : ::testing::Test {
  static constexpr int FILIALEN = 12;
  DemoKeten keten;

  std::vector<DtPick> regels(const Serienr& nr) const {
    std::vector<DtPick> uit;
    for (const DtPick& r : keten.records<DtPick>("DTPICK.TXT"))
      if (r.nr == nr) uit.push_back(r);
    return uit;
  }
  DtSer serie(const Serienr& nr) const {
    for (const DtSer& s : keten.records<DtSer>("DTSER.TXT"))
      if (s.nr == nr) return s;
    return {};
  }
  size_t voorlopige() const {
    size_t n = 0;
    for (const DtPick& r : keten.records<DtPick>("DTPICK.TXT")) n += r.opdrachtnr == 0;
    return n;
  }
  /// The next report goes to the file; once `kenmerk` stands there the file is taken away. What it
  /// says up to there.
  std::string druk(Terminal& t, const std::string& kenmerk) const {
    const std::string pad = keten / "afdruk.lst";
    std::string lijst;
    EXPECT_SHOWS(t, "Printbestemming");
    t.type(toets::Down, toets::Enter);
    EXPECT_TRUE(wacht_tot([&] {
      lijst = bytes_van(pad);
      return lijst.find(kenmerk) != std::string::npos;
    })) << kenmerk;
    std::filesystem::remove(pad);
    return lijst;
  }
};

/// The series number in the second row of the matrix.
Serienr serie_op_scherm(Terminal& t) {
  unsigned artgroep = 0, kleur = 0, volgnr = 0;
  EXPECT_EQ(sscanf(t.row(2).c_str(), "%u.%u.%u", &artgroep, &kleur, &volgnr), 3) << t.screen();
  return {artgroep, static_cast<uint16_t>(kleur), static_cast<uint16_t>(volgnr)};
}

/// The last column of a branch's row.
int totaal_op_scherm(Terminal& t, int filiaal) {
  std::istringstream rij(t.row(5 + filiaal));
  int waarde = 0;
  for (std::string woord; rij >> woord;) waarde = std::atoi(woord.c_str());
  return waarde;
}

TEST_F(Weg, FromSeriesToBranch) {
  Terminal t = keten.voorraad();
  t.type("21", toets::Enter, toets::Esc);  // all series
  EXPECT_SHOWS(t, "VERZAMELOPDRACHTEN");

  // The first series of which something was sold: its advice is accepted.
  EXPECT_SHOWS(t.type("23", toets::Esc, "14"), "Handmatig aanmaken  Aanvuladvies");
  const Serienr nr = serie_op_scherm(t);
  std::array<int, FILIALEN> advies{};
  for (int f = 0; f < FILIALEN; ++f) advies[static_cast<size_t>(f)] = totaal_op_scherm(t, f);
  EXPECT_LT(advies[0], 0);  // out of the warehouse
  EXPECT_SHOWS(t.type("=", toets::Esc, toets::Esc), "VERZAMELOPDRACHTEN");
  std::array<int, FILIALEN> netto{};
  for (const DtPick& r : regels(nr)) {
    if (r.opdrachtnr != 0) continue;
    for (int m = 1; m < MATEN; ++m) {
      netto[r.vanfil] -= static_cast<int>(r.aantal[m]);
      netto[r.naarfil] += static_cast<int>(r.aantal[m]);
    }
  }
  EXPECT_EQ(netto, advies);

  // On paper; nothing changes.
  const std::string sleutel = serie_tekst(nr);
  const size_t voorlopig = voorlopige();
  std::set<uint32_t> oud;
  for (const DtPick& r : regels(nr)) oud.insert(r.opdrachtnr);
  EXPECT_SHOWS(t.type("31", toets::Esc), "Afdrukvolgorde");
  t.type("1");
  EXPECT_NE(druk(t, sleutel).find("(voorlopig)"), std::string::npos);
  EXPECT_EQ(voorlopige(), voorlopig);

  // Definitive, of its brand only, before anything is printed: document, then balance.
  const uint16_t merk = serie(nr).merk;
  EXPECT_SHOWS(t.type("32", "11", toets::in(std::to_string(merk)), toets::Esc), "Printbestemming");
  uint32_t opdracht = 0;
  for (const DtPick& r : regels(nr)) {
    EXPECT_TRUE(opdrnr_ok(std::to_string(r.opdrachtnr).c_str()));
    if (!oud.contains(r.opdrachtnr)) opdracht = r.opdrachtnr;
  }
  ASSERT_NE(opdracht, 0U);
  druk(t, "Opdrachtnr: " + std::to_string(opdracht));
  druk(t, "TOTAAL");
  EXPECT_LT(voorlopige(), voorlopig);
  EXPECT_GT(voorlopige(), 0U);  // other brands wait

  // Once more on paper.
  EXPECT_SHOWS(t, "VERZAMELOPDRACHTEN");
  t.type("33", toets::in(std::to_string(opdracht)), toets::Enter);
  const std::string nogmaals = druk(t, sleutel);
  EXPECT_NE(nogmaals.find(std::to_string(opdracht)), std::string::npos);
  EXPECT_EQ(nogmaals.find("(voorlopig)"), std::string::npos);
  druk(t, "TOTAAL");

  // What is left goes straight out of stock.
  const size_t onderweg = keten.records<DtGo>("DTGO.TXT").size();
  t.type("34", "I", toets::Esc);
  druk(t, "ZOEKLIJST");
  EXPECT_SHOWS(t, "VERZAMELOPDRACHTEN");
  EXPECT_EQ(voorlopige(), 0U);
  EXPECT_GT(keten.records<DtGo>("DTGO.TXT").size(), onderweg);
  t.type(toets::Esc);
  EXPECT_TRUE(t.reverse(4, 2));  // the launcher stands on the program that it comes from
  EXPECT_EQ(t.type(toets::Esc).exit_status(), 0);
  InMap in(keten.map.pad);
  for (const std::string& fout : keten_keur())
    EXPECT_NE(fout.find("vrije records"), std::string::npos) << fout;  // of deleted lines
}

}  // namespace
