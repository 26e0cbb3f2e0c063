// ixtool dump, walk, stat and queue: what an administrator reads, and calls that cannot be.
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "sub/records.h"
#include "sub/tabeldef.h"
#include "tests/support/agent.h"
#include "tests/support/ixtool_proef.h"
#include "tools/velden.h"

namespace {

using nlohmann::json;

/// Four lines of orders, the first two of them provisional, and a deleted one between.
struct Opdrachten {
  TempDir map;
  InMap in{map.pad};

  Opdrachten() {
    tabel_maak(*tabel_zoek("DTPICK"), "DTPICK");
    ICB* icb = IXOPEN("DTPICK", IX_GEDEELD);
    voeg(icb, 3, 5, 0, 12, 4);
    voeg(icb, 2, 7, 0, 12, 1);
    voeg(icb, 9, 9, 0, 1, 1);
    voeg(icb, 2, 5, 1234, 95, 70000);
    DtPick weg = regel(9, 9, 0);
    IXREAD(icb, &weg);
    IXDELETE(icb, &weg);
    IXCLOSE(icb);
  }
  static DtPick regel(uint8_t van, uint8_t naar, uint32_t opdracht) {
    DtPick r{};
    r.vanfil = van;
    r.naarfil = naar;
    r.nr = {100, 12, 3};
    r.opdrachtnr = opdracht;
    return r;
  }
  static void voeg(ICB* icb, uint8_t van, uint8_t naar, uint32_t opdracht, int maat,
                   uint32_t aantal) {
    DtPick r = regel(van, naar, opdracht);
    r.aantal[maat] = aantal;
    r.aantal[13] = 2;
    IXWRITE(icb, &r);
  }
};

TEST(IxtoolDump, RecordsByField) {
  const Opdrachten o;
  const Uitkomst u = ixtool("dump DTPICK --records");
  EXPECT_EQ(u.uit,
            "0: vanfil=3 naarfil=5 artgroep=100 kleur=12 volgnr=3 opdrachtnr=0 "
            "aantal={12:4,13:2} aantal_som=6 orderdatum=0\n"
            "1: vanfil=2 naarfil=7 artgroep=100 kleur=12 volgnr=3 opdrachtnr=0 "
            "aantal={12:1,13:2} aantal_som=3 orderdatum=0\n"
            "2: verwijderd=true volgende=-1\n"
            "3: vanfil=2 naarfil=5 artgroep=100 kleur=12 volgnr=3 opdrachtnr=1234 "
            "aantal={13:2,95:70000} aantal_som=70002 orderdatum=0\n");
  EXPECT_EQ(u.status, 0);
  EXPECT_EQ(ixtool("dump --records --van 1 --aantal 1 --velden naarfil,aantal DTPICK").uit,
            "1: naarfil=7 aantal={12:1,13:2} aantal_som=3\n");
  // The provisional lines counted by hand.
  int64_t som = 0;
  const json alle = json::parse(ixtool("dump DTPICK --records --json").uit);
  for (const json& r : alle[0]["records"])
    if (r.contains("opdrachtnr") && r["opdrachtnr"] == 0) som += r["aantal_som"].get<int64_t>();
  EXPECT_EQ(som, 9);
}

TEST(IxtoolDump, HeaderAndBlocks) {
  const Opdrachten o;
  const std::string kop = ixtool("dump DTPICK").uit;
  EXPECT_NE(kop.find("free_head: 2\n"), std::string::npos) << kop;
  EXPECT_NE(kop.find("description: Verzamelopdrachten\n"), std::string::npos);
  EXPECT_NE(kop.find("sleutel 3 key3 N lengte 14 ingangen 28: I,2,2(vanfil) I,3,3(naarfil) "
                     "I,13,16(opdrachtnr) I,5,8(artgroep) I,9,10(kleur) I,11,12(volgnr)\n"),
            std::string::npos)
      << kop;
  const std::string blok = ixtool("dump DTPICK --blok 2").uit;
  EXPECT_NE(blok.find("blok 2 (boom): key_number 2 level 1 count 4\n"
                      "  0: artgroep=100 kleur=12 volgnr=3 vanfil=2 naarfil=5 opdrachtnr=1234"
                      " -> record 3\n"),
            std::string::npos)
      << blok;
  EXPECT_NE(blok.find("  3: einde -> record -1\n"), std::string::npos);
  EXPECT_EQ(ixtool("dump DTPICK --blok 99").status, 2);
}

TEST(IxtoolWalk, OrderOfAKeyAndPrefix) {
  const Opdrachten o;
  const std::string velden = " --velden vanfil,naarfil";
  EXPECT_EQ(ixtool("walk DTPICK" + velden).uit,
            "3: vanfil=2 naarfil=5\n1: vanfil=2 naarfil=7\n0: vanfil=3 naarfil=5\n");
  EXPECT_EQ(ixtool("walk DTPICK --sleutel 3" + velden + " --prefix 2,7").uit,
            "1: vanfil=2 naarfil=7\n");
  const json j = json::parse(ixtool("walk --json DTPICK --prefix 3").uit);
  EXPECT_EQ(j[0]["records"].size(), 1u);
  EXPECT_EQ(j[0]["records"][0]["aantal"]["12"], 4);
  for (const char* fout :
       {"walk DTPICK --sleutel 4", "walk DTPICK --sleutel 9", "walk DTPICK --velden bestaatniet",
        "walk DTPICK --prefix 300", "walk DTPICK --prefix 1,2,3,4,5,6,7", "walk DTPICK --prefix x"})
    EXPECT_EQ(ixtool(fout).status, 2) << fout;
}

TEST(IxtoolWalk, TextIsUtf8AndComparedAsTheKeyDoes) {
  const TempDir map;
  const InMap in(map.pad);
  tabel_maak(*tabel_zoek("DTKLT"), "DTKLT");
  ICB* icb = IXOPEN("DTKLT", IX_GEDEELD);
  uint32_t nr = 0;
  for (const char* naam : {"Zee", "Andr\x82", "andre", "A\x07 B"}) {
    DtKlt k{};
    k.nummer = ++nr;
    strncpy(k.naam, naam, sizeof k.naam);
    IXWRITE(icb, &k);
  }
  IXCLOSE(icb);
  EXPECT_EQ(ixtool("walk DTKLT --sleutel 2 --velden naam").uit,
            "3: naam=\"A. B\"\n2: naam=\"andre\"\n1: naam=\"André\"\n0: naam=\"Zee\"\n");
  EXPECT_EQ(ixtool("walk DTKLT --sleutel 2 --velden nummer --prefix ANDRé").uit, "1: nummer=2\n");
}

TEST(IxtoolStat, CountsByLevel) {
  const TempDir map;
  const InMap in(map.pad);
  ICB* icb = proef_tabel("PROEF", IX_EXCLUSIEF, 1);
  for (int i = 0; i < 63; ++i) {
    ProefRec r = proef_rec(i);
    IXWRITE(icb, &r);
  }
  IXCLOSE(icb);
  EXPECT_EQ(ixtool("stat").uit,
            "PROEF: 63 records van 64 bytes, 0 verwijderd; data 4032 bytes, index 2560 bytes, "
            "0 geleegde blokken, 0 in de wachtrij\n"
            "  sleutel 1 nummer: 4 bytes, 2 niveaus\n"
            "    niveau 1: 2 blokken, 64 ingangen, 51% gevuld\n"
            "    niveau 2: 1 blokken, 2 ingangen, 3% gevuld\n");
}

/// A key that a dead process left in the queue blocks its record; clearing it needs no rebuild.
TEST(IxtoolQueue, ListsAndClears) {
  const TempDir map;
  const InMap in(map.pad);
  Agent ander([](const std::string&) -> std::string {
    ICB* icb = IXOPEN("DTPICK", IX_GEDEELD);
    DtPick r = Opdrachten::regel(4, 6, 77);
    return IXREADL(icb, &r) ? "ja" : "nee";
  });
  tabel_maak(*tabel_zoek("DTPICK"), "DTPICK");
  const std::string leeg = bytes_van("DTPICK.INX");
  EXPECT_EQ(ander.ask("wacht op een record"), "nee");
  ander.kill_now();
  const std::string sleutel = "vanfil=4 artgroep=100 kleur=12 volgnr=3 naarfil=6 opdrachtnr=77\n";
  EXPECT_EQ(ixtool("queue DTPICK").uit, "DTPICK: in de wachtrij: " + sleutel);
  EXPECT_EQ(ixtool("check DTPICK").status, 0);
  const json j = json::parse(ixtool("queue --json").uit);
  EXPECT_EQ(j[0]["sleutels"][0]["opdrachtnr"], 77);
  EXPECT_EQ(ixtool("queue --wis DTPICK").uit, "DTPICK: gewist: " + sleutel);
  EXPECT_EQ(ixtool("queue DTPICK").uit, "");
  EXPECT_EQ(bytes_van("DTPICK.INX"), leeg);
}

TEST(Ixtool, CallsThatCannotBe) {
  const TempDir map;
  const InMap in(map.pad);
  for (const char* fout : {"", "bestaatniet", "check --nee", "check a/b", "check ''",
                           "check -C weg", "dump --blok x", "check", "queue --wis --records"}) {
    const Uitkomst u = ixtool(fout);
    EXPECT_EQ(u.status, 2) << fout;
    EXPECT_EQ(u.fout.find("ixtool: "), 0u) << fout << u.fout;
    EXPECT_EQ(u.uit, "");
  }
  EXPECT_EQ(ixtool("--help").status, 0);
  const Uitkomst u = ixtool("check WEG");
  EXPECT_EQ(u.uit, "WEG: WEG.INX ontbreekt\n");
  EXPECT_EQ(u.status, 1);
}

/// A field table for every table, whose keys it names without a gap.
TEST(Ixtool, EveryKeyFieldHasAName) {
  for (const TabelDef& def : tabel_alle()) {
    ICB kop{};
    IXUPDFCB(&kop, 0, (std::string("x,") + std::to_string(def.lengte)).c_str());
    int nr = 0;
    for (const char* sleutel : def.sleutels)
      if (sleutel != nullptr) IXUPDFCB(&kop, ++nr, sleutel);
    const Velden velden = velden_van(kop, def.name);
    EXPECT_FALSE(velden.empty()) << def.name;
    const uint8_t beeld[IX_SLEUTELBYTES] = {};
    for (int k = 0; k < nr; ++k) {
      const std::string tekst = sleutel_json(kop.keys[k], beeld, velden).dump();
      const bool bekend =
          std::string(def.name) == "DTMERK" || tekst.find("byte") == std::string::npos;
      EXPECT_TRUE(bekend) << def.name << " " << tekst;
    }
  }
}

}  // namespace
