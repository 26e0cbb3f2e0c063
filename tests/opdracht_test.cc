// An order printed once more, as an operator asks for it.
#include "main/opdruk.h"
#include "tests/support/adv_keten.h"

namespace {

using namespace toets;
using Opdracht = AdvKeten;

TEST_F(Opdracht, OfSeveralReceiversAgainOnOneDocument) {
  met_keten([] {
    proef_regel(2, 3, ROK, {{1, 11}}, 20000011);
    proef_regel(2, 4, JAS, {{2, 13}}, 20000011);
    proef_regel(2, 4, ROK, {{1, 7}}, 20000028);
    proef_regel(1, 4, JAS, {{1, 5}});
  });
  Terminal t = draai([] {
    proef_opdrachten();
    opdracht_bestaand();
  });
  EXPECT_TRUE(t.row(4).starts_with("Opdrachtnummer ________")) << t.screen();
  EXPECT_SHOWS(t.type(Enter), "20000011   2 alle 03-02-26     24      2");
  EXPECT_EQ(t.type(Enter).text(4, 16, 8), "20000011");
  EXPECT_SHOWS(t, "\nAfdrukvolgorde");
  EXPECT_SHOWS(t.type("1"), "VERZAMELOPDRACHT FILIAAL 2", "10100.10.1", "10100.20.2");
  EXPECT_FALSE(t.shows("VOOR FILIAAL"));
  EXPECT_SHOWS(t.type(Esc), "Filiaal  2      24      0 stuks", "Filiaal  3       0     11 stuks");
  EXPECT_SHOWS(t.type(Esc), "KLAAR");
}

}  // namespace
