// The live job as an operator has it: login, menu, selection, balance on paper, back to the
// launcher; with the numbers held against a hand count of the data file's own bytes.
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <set>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "main/iotab.h"
#include "sub/records.h"
#include "tests/support/agent.h"
#include "tests/support/demo.h"

namespace {

constexpr int FILIALEN = 12;

struct DemoKeten : DemoMap {
  DemoKeten() : DemoMap(7) {}

  /// The balance by hand: pieces out and in of provisional lines, of one brand or of all (0).
  std::string saldo(uint16_t merk = 0) const {
    std::set<std::array<uint32_t, 3>> series;
    for (const DtSer& s : records<DtSer>("DTSER.TXT"))
      if (merk == 0 || s.merk == merk) series.insert({s.nr.artgroep, s.nr.kleur, s.nr.volgnr});
    std::array<uint32_t, FILIALEN> uit{}, in{};
    for (const DtPick& r : records<DtPick>("DTPICK.TXT")) {
      if (r.opdrachtnr != 0 || !series.contains({r.nr.artgroep, r.nr.kleur, r.nr.volgnr})) continue;
      for (int m = 1; m < MATEN; ++m) {
        uit[r.vanfil] += r.aantal[m];
        in[r.naarfil] += r.aantal[m];
      }
    }
    std::string tekst;
    uint32_t totaal = 0;
    for (int f = 0; f < FILIALEN; ++f) {
      const auto i = static_cast<size_t>(f);
      if (uit[i] + in[i] == 0) continue;
      tekst += str_format("Filiaal %2d    %4u   %4u stuks\n", f, uit[i], in[i]);
      totaal += in[i];
    }
    return tekst + std::string(31, '-') + "\n" +
           str_format("TOTAAL               %4u stuks\n", totaal);
  }
};

void meld_aan(Terminal& t, const char* code, const char* wachtwoord) {
  t.type(code, toets::Enter, wachtwoord, toets::Enter);
}
void naar_opdsaldo(Terminal& t) {
  meld_aan(t, "DEMO", "DEMO");
  EXPECT_SHOWS(t, "Voorraadbeheer");
  EXPECT_SHOWS(t.type("1"), "SALDO VOORLOPIGE OPDRACHTEN");
}

/// What stands behind the page head of a printed list.
std::string lijst(const std::string& pad) {
  const std::string alles = bytes_van(pad);
  const size_t streep = alles.find(std::string(132, '-'));
  if (streep == std::string::npos) return "no list in " + pad + ": " + alles;
  std::string uit = alles.substr(alles.find('\n', streep) + 1);
  while (!uit.empty() && (uit.back() == '\f' || uit.back() == '\r')) uit.pop_back();
  return uit;
}

TEST(Live, LoginSelectPrintAndBack) {
  const DemoKeten keten;
  Terminal t = keten.launcher();
  meld_aan(t, "DEMO", "fout");
  EXPECT_TRUE(t.wait_for("Onjuiste gebruikerscode of wachtwoord"));
  EXPECT_FALSE(t.shows("fout"));
  naar_opdsaldo(t);
  EXPECT_SHOWS(t.type("11"), "Selectiecriteria");
  t.type(toets::Esc);
  ASSERT_TRUE(t.shows("Printbestemming"));
  EXPECT_SHOWS(t.type(toets::Down, toets::Enter), "Selectie en afdrukken");
  ASSERT_TRUE(wacht_tot(
      [&] { return bytes_van(keten / "afdruk.lst").find("TOTAAL") != std::string::npos; }));
  EXPECT_EQ(lijst(keten / "afdruk.lst"), keten.saldo());
  EXPECT_SHOWS(t.type(toets::Esc), "Hoofdmenu");
  EXPECT_EQ(t.type(toets::Esc).exit_status(), 0);
  for (const char* weg :
       {"DTSER.O01", "DTSER.A01", "DTSER.R01", "TPDTSE01", "TP01.TXT", "DTMERK.01"})
    EXPECT_FALSE(std::filesystem::exists(keten / weg)) << weg;
  EXPECT_EQ(file_size((keten / "DTSELVRD.001").c_str()), 868);
  EXPECT_TRUE(std::filesystem::exists(keten / "DTSER.V01"));
}

/// The brand of the first provisional line, through criteria and preview to the last line.
TEST(Live, OneBrandAndThePreview) {
  const DemoKeten keten;
  const auto regels = keten.records<DtPick>("DTPICK.TXT");
  const auto regel =
      std::find_if(regels.begin(), regels.end(), [](const DtPick& r) { return r.opdrachtnr == 0; });
  ASSERT_NE(regel, regels.end());
  uint16_t merk = 0;
  for (const DtSer& s : keten.records<DtSer>("DTSER.TXT"))
    if (s.nr == regel->nr) merk = s.merk;
  const std::string soll = keten.saldo(merk);
  ASSERT_NE(soll, keten.saldo());
  Terminal t = keten.launcher();
  naar_opdsaldo(t);
  t.type("11", "1", "1", std::to_string(merk), toets::Enter, toets::Esc);
  ASSERT_TRUE(t.shows("Printbestemming"));
  t.type(toets::Enter);
  ASSERT_TRUE(t.shows("Einde overzicht"));
  EXPECT_SHOWS(t, soll.substr(0, soll.find('\n')));
  EXPECT_SHOWS(t.type(toets::Esc), "Selectie en afdrukken");
}

TEST(Live, AnEmptyTableDisablesTheEntry) {
  const DemoKeten keten;
  {
    InMap in(keten.map.pad);
    ICB* icb = IXOPEN("DTPICK", IX_GEDEELD);
    IXINIT(icb);
    IXCLOSE(icb);
  }
  Terminal t = keten.launcher();
  naar_opdsaldo(t);
  EXPECT_SHOWS(t.type("11"), "Keuze niet beschikbaar");
}

TEST(Live, FiveWrongPasswordsMarkTheRecord) {
  const DemoKeten keten;
  Terminal t = keten.launcher();
  for (int i = 0; i < 5; ++i) meld_aan(t, "DEMO", "mis");
  EXPECT_EQ(t.exit_status(), 0);
  EXPECT_EQ(bytes_van(keten / "DTSYS.TXT")[static_cast<size_t>(SYS_TERMINALS.basis) + 38], 5);
}

TEST(Live, TheExclusiveHolderIsWaitedFor) {
  const DemoKeten keten;
  const std::string map = keten.map.pad;
  Agent ander([map](const std::string&) -> std::string {
    std::filesystem::current_path(map);
    session_terminal = 5;
    int32_t nummer = 1;
    iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
    return vw_claim_excl(10) ? "ja" : "nee";
  });
  ASSERT_EQ(ander.ask("claim"), "ja");
  Terminal t = keten.launcher();
  naar_opdsaldo(t);
  t.type_now("11");
  EXPECT_TRUE(t.wait_for("Verwerking is actief"));
  const std::string los =
      std::string(BUILD_DIR) + "/tools/winkel saldo -C " + map + " >/dev/null 2>&1";
  EXPECT_EQ(WEXITSTATUS(std::system(los.c_str())), 3);
  ander.kill_now();
  EXPECT_TRUE(t.wait_for("Selectiecriteria"));
}

}  // namespace
