// The database of winkel export --sqlite against what ixtool counts and the generator wrote.
#include <sqlite3.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "isam/base.h"
#include "sub/records.h"
#include "sub/tabeldef.h"
#include "tests/support/bestand.h"
#include "tests/support/draai.h"
#include "tests/support/tijdelijk.h"

namespace {

namespace fs = std::filesystem;

struct Demo : testing::Test {
  TempDir map;
  std::string keten = map / "keten", bestand = map / "keten.db";
  sqlite3* db = nullptr;

  Demo() {
    const Gedraaid u = draai_winkel("demo -C " + keten + " --today 15032026 --seed 7");
    EXPECT_EQ(u.status, 0) << u.tekst;
  }
  ~Demo() override { sqlite3_close(db); }
  void maak() {
    const Gedraaid u = draai_winkel("export --sqlite " + bestand + " -C " + keten);
    ASSERT_EQ(u.status, 0) << u.tekst;
    ASSERT_EQ(sqlite3_open(bestand.c_str(), &db), SQLITE_OK);
  }
  /// The values of the first row, with bars between them.
  std::string vraag(const std::string& sql) {
    sqlite3_stmt* st = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(db, sql.c_str(), -1, &st, nullptr), SQLITE_OK)
        << sqlite3_errmsg(db);
    std::string uit;
    if (sqlite3_step(st) == SQLITE_ROW)
      for (int i = 0; i < sqlite3_column_count(st); ++i) {
        const auto* t = reinterpret_cast<const char*>(sqlite3_column_text(st, i));
        uit += (i > 0 ? "|" : "") + std::string(t == nullptr ? "-" : t);
      }
    sqlite3_finalize(st);
    return uit;
  }
};

TEST_F(Demo, RowsEqualTheRecordsOfEachTable) {
  maak();
  const Gedraaid u = draai_ixtool("stat --json -C " + keten);
  const auto stat = nlohmann::json::parse(u.tekst);
  EXPECT_GT(stat.size(), tabel_alle().size());
  for (const auto& t : stat) {
    const auto naam = t.at("tabel").get<std::string>();
    EXPECT_EQ(vraag("select count(*) from " + naam), std::to_string(t.at("records").get<int>()))
        << naam;
  }
  EXPECT_EQ(vraag("pragma integrity_check"), "ok");
}

TEST_F(Demo, LabelsAgreeWithTheCountsOfTheirSeries) {
  maak();
  EXPECT_GT(std::stoi(vraag("select count(*) from etiket")), 10000);
  EXPECT_EQ(vraag("select count(*) from DTSER s left join (select artgroep a, kleur k, volgnr v,"
                  " sum(status=1) b, sum(status=2) w, sum(status=3) f, sum(status=4) c from etiket"
                  " group by 1, 2, 3) on a=artgroep and k=kleur and v=volgnr where"
                  " ifnull(b,0)<>besteld or ifnull(w,0)<>voorraad or ifnull(f,0)<>verkocht or"
                  " ifnull(c,0)<>correcties"),
            "0");
  EXPECT_GT(std::stoi(vraag("select count(*) from etiket where naarfil is not null")), 100);
  EXPECT_EQ(vraag("select count(*) from etiket e where naarfil is not null and not exists (select 1"
                  " from DTGO g where g.etiket=e.nummer and g.naarfil=e.naarfil and"
                  " g.vanfil=e.filiaal and afgewerkt=0)"),
            "0");
}

TEST_F(Demo, ValuesAreAsPeopleReadThem) {
  maak();
  DtSer ser{};
  const std::string dtser = bytes_van(keten + "/DTSER.TXT");
  std::memcpy(&ser, dtser.data(), sizeof ser);
  char dag[9];
  date_text(dag, ser.datum_creatie, true);
  const std::string iso =
      std::string(dag + 4) + "-" + std::string(dag + 2, 2) + "-" + std::string(dag, 2);
  EXPECT_EQ(vraag("select artgroep, verkoopprijs, datum_creatie, typeof(verkoopprijs) from DTSER"
                  " where record=0"),
            std::to_string(ser.nr.artgroep) + "|" + std::to_string(ser.verkoopprijs) + "|" + iso +
                "|integer");
  EXPECT_EQ(vraag("select count(*) from DTMERK where naam='Éclat Noord'"), "1");
  EXPECT_EQ(vraag("select naam, plaats from DTFILGEG where filiaal=0"), "Magazijn Tiel|Tiel");
  EXPECT_EQ(vraag("select gebruiker, rechten from terminal where gebruiker='BEHEER'"), "BEHEER|S");
  EXPECT_EQ(vraag("select count(*) from DTPICK where orderdatum is null and opdrachtnr<>0"), "0");
  EXPECT_EQ(vraag("select count(*) from DTPICK p where aantal_som <> (select sum(waarde) from"
                  " DTPICK_aantal a where a.record=p.record)"),
            "0");
}

TEST_F(Demo, AFileIsThereWholeOrAsItWas) {
  zet_bytes(bestand, "van gisteren");
  fs::rename(keten + "/DTREL.INX", keten + "/weg");
  const Gedraaid u = draai_winkel("export --sqlite " + bestand + " -C " + keten);
  EXPECT_EQ(u.status, 1);
  EXPECT_NE(u.tekst.find("DTREL.INX ontbreekt"), std::string::npos) << u.tekst;
  EXPECT_EQ(bytes_van(bestand), "van gisteren");
  EXPECT_FALSE(fs::exists(bestand + ".tmp"));
  EXPECT_EQ(draai_winkel("export --sqlite " + (map / "geen/x.db") + " -C " + keten).status, 1);
  EXPECT_EQ(draai_winkel("export -C " + keten).status, 2);
  EXPECT_EQ(draai_winkel("export DTSER --sqlite x -C " + keten).status, 2);
}

}  // namespace
