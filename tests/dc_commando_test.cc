// The commands on a screen: what they ask, what they claim, and a run that the operator breaks off.
#include "main/batchvw.h"
#include "main/controle.h"
#include "tests/support/agent.h"
#include "tests/support/dc_proef.h"
#include "tests/support/print_proef.h"

namespace {

using namespace toets;

struct DcCommando : DcProef {
  std::vector<int32_t> etiketten;

  void SetUp() override {
    DcProef::SetUp();
    met([&] {
      for (int i = 0; i < 3; ++i) etiketten.push_back(leg(ROK, ETI_VOORRAAD, 1));
      ASSERT_TRUE(prt_tabellen_maak());
    });
    bestand({zend(1, 2, code(etiketten[0])), zend(1, 2, code(etiketten[1])),
             zend(1, 2, code(etiketten[2])), zend(1, 2, "8799999999995")});
  }
  Terminal start(void (*commando)(), char rechten = 0) {
    return draai([commando, rechten] {
      sys_rec1.opties = 1;
      terminal_rec.rechten = rechten;
      commando();
      hdr_line('C', "");
    });
  }
  /// Another terminal's process: "11" tries the whole function, "h1" holds it, "l1" lets it go.
  static std::string ander(const std::string& opdracht) {
    session_terminal = 99;
    if (iotab_fd() < 0) ProefSysteem::open();
    const bool letter = opdracht[0] == 'h' || opdracht[0] == 'l';
    const int f = atoi(opdracht.c_str() + (letter ? 1 : 0));
    const bool ja = opdracht[0] == 'l' || vw_claim_excl(f);
    if (opdracht[0] != 'h') vw_free_excl(f);
    return ja ? "vrij" : "bezet";
  }
  static std::string klassen(Agent& a) {
    std::string uit;
    for (const char* f : {"2", "11", "12", "13"}) uit += a.ask(f) == "vrij" ? "." : f;
    return uit;
  }
};

TEST_F(DcCommando, TheListIsLookedAtAndTheFileStays) {
  Agent agent(ander);
  Terminal t = start(dc_signaal);
  EXPECT_SHOWS(t, "SIGNAALLIJST TE VERWERKEN DC-TRANSACTIES", "8799999999995");
  EXPECT_EQ(klassen(agent), "2...");
  t.type(Esc);
  EXPECT_TRUE(t.row(20).starts_with("KLAAR")) << t.screen();
  EXPECT_EQ(klassen(agent), "....");
  EXPECT_TRUE(dc_aanwezig());
  EXPECT_EQ(staat(etiketten[0]), "1");
}

TEST_F(DcCommando, ProcessingAsksFirstAndClaimsAll) {
  Agent agent(ander);
  {
    Terminal t = start(dc_verwerken);
    EXPECT_SHOWS(t, "Verwerken interfiliaal");
    EXPECT_TRUE(t.row(10).starts_with("Wilt u de transacties verwerken")) << t.screen();
    EXPECT_EQ(klassen(agent), "....");
    t.type("N", Enter);
    EXPECT_TRUE(t.row(20).starts_with("KLAAR")) << t.screen();
  }
  EXPECT_TRUE(dc_aanwezig());
  Terminal t = start(dc_verwerken);
  EXPECT_SHOWS(t.type("J", Enter), "SIGNAALLIJST VERWERKTE DC-TRANSACTIES");
  EXPECT_EQ(klassen(agent), "2111213");
  t.type(Esc);
  EXPECT_TRUE(t.row(20).starts_with("KLAAR")) << t.screen();
  EXPECT_EQ(klassen(agent), "....");
  EXPECT_FALSE(dc_aanwezig());
  EXPECT_EQ(staat(etiketten[2]), "1>2");
}

TEST_F(DcCommando, ARunBrokenOffLeavesTheFileForTheNext) {
  Agent agent(ander);
  ASSERT_EQ(agent.ask("h1"), "vrij");  // the first move waits at the tills' file
  Terminal t = start(dc_verwerken);
  t.type("J", Enter);
  ASSERT_TRUE(t.wait_for("Verwerking is actief")) << t.screen();
  t.type_now(Esc);
  // The program looks for the key once a second.
  for (const time_t begin = time(nullptr); time(nullptr) < begin + 2;) usleep(100000);
  agent.ask("l1");
  ASSERT_TRUE(t.wait_for("Onderbreken")) << t.screen();
  EXPECT_SHOWS(t.type(Enter), "8799999999995");
  t.type(Esc);
  EXPECT_TRUE(t.row(20).starts_with("KLAAR")) << t.screen();
  t = Terminal();
  EXPECT_EQ(file_size(DC_BESTAND), 4 * 28);
  EXPECT_FALSE(file_exists("TP07E.TXT") || file_exists("TP07M.INX"));
  EXPECT_EQ(staat(etiketten[0]) + " " + staat(etiketten[1]), "1>2 1");
  // Nothing stayed locked, and the next run says what was done.
  EXPECT_EQ(regels_van(loop(true)),
            "  1       2 verz 24-04-23           8799999999995                     AFK  EAN-code "
            "onbekend\n"
            "  1       2 verz 24-04-23           " +
                code(etiketten[0]) + "       10100.10.1      1  AFK  Onderweg van 1 naar 2\n");
  EXPECT_EQ(staat(etiketten[2]), "1>2");
}

TEST_F(DcCommando, OnlyTheManagerThrowsThemAway) {
  {
    Terminal t = start(dc_wissen);
    EXPECT_TRUE(t.row(20).starts_with("KLAAR")) << t.screen();
  }
  EXPECT_TRUE(dc_aanwezig());
  Agent agent(ander);
  Terminal t = start(dc_wissen, 'S');
  EXPECT_SHOWS(t, "Verwijderen interfiliaal", "De datacomtransacties worden verwijderd. Akkoord");
  EXPECT_EQ(klassen(agent), "2...");
  t.type("J", Enter);
  EXPECT_TRUE(t.row(20).starts_with("KLAAR")) << t.screen();
  EXPECT_FALSE(dc_aanwezig());
}

}  // namespace
