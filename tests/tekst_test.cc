// The message catalogues: made from the rows of the code, found at run time, never in the way.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "isam/tekst.h"

// Rooms may use one name for texts of their own, so each header stands in a namespace.
namespace van_isam {
#include "isam/teksten.h"
}
namespace van_scr {
#include "scr/teksten.h"
}
namespace van_prt {
#include "prt/teksten.h"
}
namespace van_sessie {
#include "main/teksten_sessie.h"
}
namespace van_stam {
#include "sub/teksten.h"
}
namespace van_sel {
#include "sub/teksten_sel.h"
}
namespace van_main {
#include "main/teksten.h"
}

namespace {

struct Rij {
  Tekst tekst;
  std::string naam;
};

std::vector<Rij> rijen_van_de_code() {
  std::vector<Rij> rijen;
#define TEKST(naam, nummer, tekst) rijen.push_back({van_isam::naam, "isam " #naam});
#include "nls/isam.def"
#undef TEKST
#define TEKST(naam, nummer, tekst) rijen.push_back({van_scr::naam, "scr " #naam});
#include "nls/scr.def"
#undef TEKST
#define TEKST(naam, nummer, tekst) rijen.push_back({van_prt::naam, "prt " #naam});
#include "nls/prt.def"
#undef TEKST
#define TEKST(naam, nummer, tekst) rijen.push_back({van_sessie::naam, "sessie " #naam});
#include "nls/sessie.def"
#undef TEKST
#define TEKST(naam, nummer, tekst) rijen.push_back({van_stam::naam, "stam " #naam});
#include "nls/stam.def"
#undef TEKST
#define TEKST(naam, nummer, tekst) rijen.push_back({van_sel::naam, "sel " #naam});
#include "nls/sel.def"
#undef TEKST
#define TEKST(naam, nummer, tekst) rijen.push_back({van_main::naam, "main " #naam});
#include "nls/main.def"
#undef TEKST
  return rijen;
}

size_t rijen_van_de_catalogus() {
  size_t n = 0;
#define SECTIE(catalogus, set)
#define TEKST(naam, nummer, tekst) ++n;
#include "nls/teksten.def"
#undef TEKST
#undef SECTIE
  return n;
}

void wijs_naar(const std::string& map) { setenv("NLSPATH", (map + "/%N.cat").c_str(), 1); }

TEST(Teksten, NoNumberTwiceInASetAndNoSectionLeftOut) {
  std::set<std::tuple<Catalogus, int, int>> gezien;
  const std::vector<Rij> rijen = rijen_van_de_code();
  for (const Rij& r : rijen) {
    EXPECT_GT(r.tekst.nummer, 0) << r.naam;
    EXPECT_TRUE(gezien.insert({r.tekst.catalogus, r.tekst.set, r.tekst.nummer}).second)
        << r.naam << " has number " << r.tekst.nummer << " of another text";
  }
  EXPECT_EQ(rijen.size(), rijen_van_de_catalogus());
}

// Asked with a default of its own, so that only the catalogue can give the right answer.
TEST(Teksten, BuiltCataloguesHoldTheDefaultsByteForByte) {
  wijs_naar(BUILD_DIR "/nls");
  teksten_open();
  for (const Rij& r : rijen_van_de_code()) {
    const Tekst zonder{r.tekst.catalogus, r.tekst.set, r.tekst.nummer, "\x01niet gevonden"};
    EXPECT_STREQ(txt(zonder), r.tekst.standaard) << r.naam;
  }
  teksten_sluit();
}

TEST(Teksten, AnotherCatalogueSpeaksAndAMissingOneChangesNothing) {
  const Tekst ja{Catalogus::kba351, 1, 74, "J"}, geen{Catalogus::kba351, 1, 75, "N"};
  const std::filesystem::path map =
      std::filesystem::path(testing::TempDir()) / ("nls" + std::to_string(getpid()));
  std::filesystem::create_directory(map);
  std::ofstream(map / "k.msg") << "$quote \"\n$set 1\n74 \"Y\"\n";
  const std::string gencat =
      "gencat " + (map / "KBA351.cat").string() + " " + (map / "k.msg").string();
  ASSERT_EQ(std::system(gencat.c_str()), 0);

  EXPECT_STREQ(txt(ja), "J");
  wijs_naar(map.string());
  teksten_open();
  EXPECT_STREQ(txt(ja), "Y");
  EXPECT_STREQ(txt(geen), "N");
  EXPECT_STREQ(txt(Tekst{Catalogus::winkel, 1, 74, "W"}), "W");
  teksten_sluit();
  EXPECT_STREQ(txt(ja), "J");
  std::filesystem::remove_all(map);
}

}  // namespace
