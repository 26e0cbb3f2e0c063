// ixtool load: what a dump told comes back byte for byte, and nothing is written of what is not
// right to the last record.
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/support/bestand.h"
#include "tests/support/draai.h"
#include "tests/support/tijdelijk.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// A demo chain, and an empty one beside it.
struct Ketens : testing::Test {
  TempDir map;
  InMap in{map.pad};

  Ketens() {
    EXPECT_EQ(draai_winkel("demo -C vol --today 15032026 --seed 7").status, 0);
    EXPECT_EQ(draai_winkel("init -C leeg --branches 12 --company X --wachtwoord y").status, 0);
  }
  static std::string dump(const std::string& map, const std::string& rest) {
    return draai_ixtool("dump -C " + map + " " + rest).tekst;
  }
  static std::string bytes() { return bytes_van("leeg/DTMERK.INX") + bytes_van("leeg/DTMERK.TXT"); }
};

TEST_F(Ketens, ARawDumpComesBackByteForByte) {
  for (const std::string naam : {"DTSER", "DTMAAT", "DTPICK", "DTHMNU"}) {
    zet_bytes(naam, dump("vol", naam + " --ruw"));
    const Gedraaid u = draai_ixtool("load " + naam + " ../" + naam + " -C leeg");
    ASSERT_EQ(u.status, 0) << u.tekst;
    EXPECT_EQ(draai_ixtool("check -C leeg " + naam).status, 0) << naam;
    EXPECT_EQ(bytes_van("leeg/" + naam + ".TXT"), bytes_van("vol/" + naam + ".TXT")) << naam;
  }
}

TEST_F(Ketens, FieldsComeBackAndKeepTheOthers) {
  zet_bytes("merken", dump("vol", "DTMERK --records --json"));
  ASSERT_EQ(draai_ixtool("load DTMERK ../merken -C leeg").status, 0);
  EXPECT_EQ(bytes_van("leeg/DTMERK.TXT"), bytes_van("vol/DTMERK.TXT"));
  json een = json::parse(bytes_van("merken"))[0]["records"][0];
  const json nieuw = {{{"nummer", een["nummer"]}, {"naam", "Zesde Zin é"}}};
  zet_bytes("merken", nieuw.dump());
  const Gedraaid u = draai_ixtool("load DTMERK - -C leeg <merken");
  ASSERT_EQ(u.status, 0) << u.tekst;
  een["naam"] = "Zesde Zin é";
  EXPECT_EQ(json::parse(dump("leeg", "DTMERK --records --json"))[0]["records"][0], een);
  EXPECT_EQ(draai_ixtool("check -C leeg DTMERK").status, 0);
}

TEST_F(Ketens, NothingIsWrittenOfWhatIsNotRight) {
  zet_bytes("goed", dump("vol", "DTMERK --ruw"));
  ASSERT_EQ(draai_ixtool("load DTMERK ../goed -C leeg").status, 0);
  const std::string voor = bytes();
  const std::pair<const char*, const char*> FOUT[] = {
      {R"([{"nummer": 990, "naam": "A"}, {"nummer": 70000}])", "record 2: \"nummer\" past niet"},
      {R"([{"nummer": 990}, {"nummer": 991, "naam": "langer dan twintig tekens"}])",
       "record 2: \"naam\" past niet"},
      {R"([{"nummer": 990}, {"nummer": 991, "filialen": [256]}])", "\"filialen\" past niet"},
      {R"([{"nummer": 990}, {"nummer": 991, "kleur": 1}])", "\"kleur\" past niet"},
      {R"([{"nummer": 990}, {"nummer": 990}])", "record 2: sleutel 1 staat twee keer"},
      {R"([{"nummer": 990}, 5])", "geen JSON"},
      {R"([{"hex": "00"}])", "geen 76 bytes"},
      {"1: hex=\"zz\"\n", "geen 76 bytes"},
      {"nummer=5\n", "regel 1 is geen record"},
  };
  for (const auto& [tekst, reden] : FOUT) {
    zet_bytes("fout", tekst);
    const Gedraaid u = draai_ixtool("load DTMERK ../fout -C leeg");
    EXPECT_EQ(u.status, 1) << tekst;
    EXPECT_NE(u.tekst.find(reden), std::string::npos) << u.tekst;
    EXPECT_TRUE(bytes() == voor) << tekst;
  }
  EXPECT_EQ(draai_ixtool("load DTETI ../goed -C leeg").status, 2);
  EXPECT_EQ(draai_ixtool("load DTMERK -C leeg").status, 2);
}

}  // namespace
