// Asking for a series as an operator sees it: by number, by brand and model, with a list when what
// was typed is more than one series.
#include "sub/serie_vraag.h"

#include "sub/serie.h"
#include "tests/support/adv_keten.h"

namespace {

using namespace toets;

struct Vraag : AdvKeten {
  void SetUp() override {
    AdvKeten::SetUp();
    met_keten([] {
      proef_artikel(10200, "Broeken");
      proef_artikel(10300, "Broeken");
      serie({10300, 10, 1}, "ELLA", "Jurk");
      serie({10100, 20, 5}, "ANNA", "Rok wijd");
      serie({10100, 20, 1}, "ANNA", "Rok smal");
      serie({10200, 10, 1}, "ANNA", "Broek");
      serie({10200, 10, 2}, "DORA", "Broek kort");
    });
  }
  Terminal vraag(SerieVraag hoe, int keer = 1) {
    static std::string uit;
    uit.clear();
    return draai(
        [hoe, keer] {
          IXCLOSE(sort_maak(privaat.r, "MAKV"));
          for (int i = 0; i < keer; ++i) {
            Serienr nr{};
            uit += serie_vraag(hoe, &nr) ? serie_tekst(nr) + " " : "weg ";
          }
        },
        [] { return uit; });
  }
};

TEST_F(Vraag, ByNumberWholeOrFromTheList) {
  Terminal t = vraag(SerieVraag::nummer, 3);
  EXPECT_SHOWS(t, "Ingave serienummer", "Artikelgroep", "Kleurnummer", "Volgnummer");
  EXPECT_SHOWS(t.type("10100", Enter, "20", Enter, "7", Enter), "Serie onbekend", "Rokken");
  t.type(Enter, Enter, "5", Enter);
  // The next question starts with what was typed; an empty colour is all of the group.
  t.type(Enter, std::string(Back) + Enter);
  EXPECT_SHOWS(t, " selecteren serie ", "10100.10.1", "10100.20.1     ANNA            Rok smal",
               "10100.20.2     BEA             Jas lang");
  t.type("20", Enter);
  EXPECT_SHOWS(t.type(Down, Enter), "Ingave serienummer");
  EXPECT_SHOWS(t.type(Enter, "10", Esc, Esc), "KLAAR 10100.20.5 10100.20.2 weg");
}

TEST_F(Vraag, ByBrandArticleAndModel) {
  Terminal t = vraag(SerieVraag::merk_artikel_model, 3);
  EXPECT_SHOWS(t, "Ingave merk-artg-model");
  EXPECT_SHOWS(t.type("5", Enter), "Duinroos");
  t.type("10200", Enter, "dora", Enter);  // one series: taken at once
  t.type(Enter, "10100", Enter, "anna", Enter);
  EXPECT_SHOWS(t, " selecteren serie ", "10100.20.5     ANNA            Rok wijd");
  EXPECT_FALSE(t.shows("BEA"));
  t.type(Esc);  // nothing chosen: the fields again
  t.type(Enter, Enter, Enter);
  t.type(Down, Down, Enter);
  t.type(Enter, "10300", Enter, "zoe", Enter);  // one series, but not the model that was typed
  EXPECT_SHOWS(t, " selecteren serie ", "10300.10.1     ELLA");
  EXPECT_SHOWS(t.type(Esc, Esc, Esc, Esc), "KLAAR 10200.10.2 10100.20.5 weg");
}

TEST_F(Vraag, ByBrandAndModelOverAllArticleGroups) {
  Terminal t = vraag(SerieVraag::merk_model, 3);
  EXPECT_SHOWS(t, "Ingave merk-model");
  EXPECT_SHOWS(t.type("duin", Enter, F5), " selecteren model ", "ANNA", "BEA", "DORA");
  t.type(Down, Enter);  // one series only: taken at once
  // An unknown model shows what comes behind it, an empty one all.
  EXPECT_SHOWS(t.type(Enter, "B", Enter), " selecteren serie ", "10100.20.2     BEA");
  EXPECT_FALSE(t.shows("Rok smal"));
  t.type("d", Enter, Enter);
  EXPECT_SHOWS(t.type(Enter, Back, Enter), "10100.10.1     ANNA", "10200.10.2     DORA");
  EXPECT_SHOWS(t.type(Esc, Esc, Esc), "KLAAR 10100.20.2 10200.10.2 weg");
}

TEST_F(Vraag, ABrandWithoutSeriesIsTold) {
  met_keten([] { proef_merk(9); });
  Terminal t = vraag(SerieVraag::merk_model);
  EXPECT_SHOWS(t.type("9", Enter, Enter), "Serie onbekend");
  t.type(F5, F10, F6, F3);  // all brands marked: the field again
  EXPECT_SHOWS(t, "Ingave merk-model");
  EXPECT_SHOWS(t.type(F5, Down, Enter, Esc, Esc), "KLAAR weg");
  EXPECT_FALSE(std::filesystem::exists("DTMERK.Q07"));
}

}  // namespace
