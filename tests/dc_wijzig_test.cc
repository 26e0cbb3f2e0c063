// Correcting the transactions of tills and hand terminals, as an operator does it: keys in, the
// screen and the bytes of DTDCIF.TXT out.
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <vector>

#include "isam/io.h"
#include "sub/dc_wijzig.h"
#include "tests/support/dc_proef.h"

namespace {

using namespace toets;

struct DcWijzig : DcProef {
  std::vector<std::string> codes;  // of labels 1 to 3 of ROK, then the size code, then a gone one

  void SetUp() override {
    DcProef::SetUp();
    met_keten([&] {
      for (uint8_t maat = 1; maat <= 3; ++maat) {
        char code[14];
        etikode_maak(0, stuk(ROK, ETI_VOORRAAD, maat, 1), code);
        codes.emplace_back(code);
      }
      char code[14];
      etikode_maak('M', 1000, code);
      proef_ean(code, 'M', JAS, 2);
      codes.emplace_back(code);
      etikode_maak(0, 8888, code);
      codes.emplace_back(code);
    });
  }
  static DcRegel regel(int van, int naar, const std::string& code, uint8_t soort = DC_ZENDEN,
                       uint32_t stuks = DC_GEEN_AANTAL, uint32_t nummer = 0) {
    DcRegel r = DcProef::regel(soort, van, naar, code, stuks, nummer, date_number("12032026"));
    r.leeg18[0] = 7;  // what nobody knows stays
    return r;
  }
  static std::vector<DcRegel> gelezen() {
    const std::string b = bytes_van(DC_BESTAND);
    EXPECT_EQ(b.size() % sizeof(DcRegel), 0u);
    std::vector<DcRegel> uit(b.size() / sizeof(DcRegel));
    if (!uit.empty()) memcpy(uit.data(), b.data(), b.size());
    return uit;
  }
  static bool zelfde(const std::vector<DcRegel>& a, const std::vector<DcRegel>& b) {
    return a.size() == b.size() && memcmp(a.data(), b.data(), a.size() * sizeof(DcRegel)) == 0;
  }
  /// The selection up to its list: the kind, then what is typed in the eight fields.
  static void selecteer(Terminal& t, const char* soort, std::initializer_list<const char*> velden) {
    t.type("1", soort);
    for (const char* v : velden) t.type(in(v));
    for (size_t n = velden.size(); n < 8; ++n) t.type(Enter);
  }
};

TEST_F(DcWijzig, ChangesOneLineInPlace) {
  const std::vector<DcRegel> was = {regel(1, 2, codes[1]), regel(1, 3, codes[0]),
                                    regel(1, 2, codes[3], DC_ZENDEN, 4, 20000011),
                                    regel(2, 1, codes[0], DC_ONTVANGEN)};
  bestand(was);
  Terminal t = draai(dc_wijzigen);
  EXPECT_SHOWS(t, "Wijzigen datacom", "1 Per selectie", "2 Per artikelnummer");
  selecteer(t, "1", {"1", "2"});
  EXPECT_SHOWS(t, " verzendingen ", "artikelnummer serienummer", "stuks opdrachtnr   vrzdat",
               codes[1] + " 10100.10.1       M", "4   20000011 12-03-26", "Wijzigen, Verwijderen");
  EXPECT_FALSE(t.shows(codes[0]));  // goes to another branch
  t.type("W");
  EXPECT_SHOWS(t, "VERZENDING", "10100.10.1", "Huidig", "1  Verzenddatum           12-03-26",
               "3  Bestemmingsfiliaal     2", "4  Opdrachtnummer");
  EXPECT_FALSE(t.shows("Aantal"));  // a label is one piece
  EXPECT_SHOWS(t.type("3", in("1")), "Verzendfiliaal is gelijk aan bestemmingsfiliaal");
  EXPECT_SHOWS(t.type(Back, in("5"), "4", in("12")), "Ongeldig nummer");
  t.type(Esc, "1", in("140326"), Esc);
  EXPECT_SHOWS(t.type(Down, "W"), codes[3], "10100.20.2", "5  Aantal                 4");
  t.type("5", in("25"), "4", in("1234569"));
  EXPECT_SHOWS(t.type(Esc, Esc, Esc, Esc), "KLAAR");
  std::vector<DcRegel> soll = was;
  soll[0].naarfil = 5;
  soll[0].datum = date_number("14032026");
  soll[2].stuks = 25;
  soll[2].nummer = 21234569;
  EXPECT_TRUE(zelfde(gelezen(), soll));
  EXPECT_FALSE(file_exists("TP07K.TXT") || file_exists("TP07K.INX"));
}

TEST_F(DcWijzig, AllLinesOfTheListAtOnce) {
  std::vector<DcRegel> was;
  for (int i = 0; i < 30; ++i) was.push_back(regel(1, 2 + i % 2, codes[3], DC_ONTVANGEN, 1));
  was.push_back(regel(1, 2, codes[3]));
  bestand(was);
  Terminal t = draai(dc_wijzigen);
  selecteer(t, "2", {});
  EXPECT_SHOWS(t, " ontvangsten ", "documentnr   ontdat");
  t.type("A");
  EXPECT_SHOWS(t, "ONTVANGST", "30 transacties", "1  Ontvangstdatum         12-03-26",
               "2  Verzendfiliaal         1");
  t.type("2", in("3"));  // half of them go there
  EXPECT_SHOWS(t, "Verzendfiliaal is gelijk aan ontvangstfiliaal");
  t.type(Esc, "4", in("20000011"), "3", in("0"));
  EXPECT_SHOWS(t.type(Esc, Esc, Esc, Esc), "KLAAR");
  std::vector<DcRegel> soll = was;
  for (int i = 0; i < 30; ++i) {
    soll[static_cast<size_t>(i)].nummer = 20000011;
    soll[static_cast<size_t>(i)].naarfil = 0;
  }
  EXPECT_TRUE(zelfde(gelezen(), soll));
}

TEST_F(DcWijzig, DeletedLinesStayZeroUntilTheEnd) {
  const std::vector<DcRegel> was = {regel(1, 2, codes[0]), regel(1, 2, codes[1]),
                                    regel(1, 2, codes[4]), regel(1, 2, "123456789012")};
  bestand(was);
  Terminal t = draai(dc_wijzigen);
  selecteer(t, "1", {});
  t.type("W");  // gone: no series, so it is the first of the list
  EXPECT_SHOWS(t, "*** etiket is verwijderd ***");
  EXPECT_SHOWS(t.type(Esc, Down, "W"), "*** serie is verwijderd ***");
  EXPECT_SHOWS(t.type(Esc, Down, "V"), "Dit artikelnummer wordt verwijderd. Akkoord? (J/N)");
  t.type(in("N"));
  EXPECT_TRUE(t.ready());
  EXPECT_TRUE(zelfde(gelezen(), was));
  t.type("V", in("J"));
  EXPECT_TRUE(t.ready());
  std::vector<DcRegel> soll = was;
  soll[1] = DcRegel{};  // the list goes by size text: M stands before S
  EXPECT_TRUE(zelfde(gelezen(), soll));
  t.type("V", in("J"), "V", in("J"), "V", in("J"));
  EXPECT_SHOWS(t, "Verzenddatum");  // the list is empty and ends
  for (int i = 0; i < 8; ++i) t.type(Enter);
  EXPECT_TRUE(t.ready());
  t.type(Esc, Esc);
  EXPECT_EQ(file_size(DC_BESTAND), 4 * 28);
}

TEST_F(DcWijzig, ByArticleNumber) {
  bestand({regel(1, 2, codes[0]), regel(1, 2, codes[1]), regel(3, 1, codes[0])});
  Terminal t = draai(dc_wijzigen);
  EXPECT_SHOWS(t.type("2", "1", in("4711")), "<4711> Artikelnummer niet aanwezig");
  EXPECT_SHOWS(t.type(in(codes[0])), " verzendingen ");
  EXPECT_FALSE(t.shows(codes[1]));
  EXPECT_SHOWS(t.type("V", in("J"), Esc, Esc, Esc, Esc), "KLAAR");
  EXPECT_TRUE(zelfde(gelezen(), {regel(1, 2, codes[1]), regel(3, 1, codes[0])}));
  EXPECT_FALSE(file_exists("DTDCIF.TMP"));
}

/// Whoever dies while the file is shortened leaves all live lines, the deleted ones zero or gone.
TEST_F(DcWijzig, DeathWhileShortening) {
  static int over;
  std::vector<DcRegel> leven, was;
  for (int i = 0; i < 5000; ++i) {
    was.push_back(regel(1, 2, codes[0], DC_ZENDEN, DC_GEEN_AANTAL, static_cast<uint32_t>(i)));
    if (i % 3 != 0) leven.push_back(was.back());
  }
  for (int n = 0; n < 20; ++n) {
    bestand(was);
    const pid_t kind = fork();
    if (kind == 0) {
      keten.open();
      {
        Dcw d;
        for (uint32_t i = 0; i < 5000; i += 3) dcw_schrijf(d, i, DcRegel{});
        d.gewist = true;
        over = n;
        io_proef.voor_schrijf = [](int, int64_t, size_t) {
          if (over-- == 0) _exit(3);
        };
      }
      _exit(0);
    }
    int status = 0;
    waitpid(kind, &status, 0);
    std::vector<DcRegel> nu = gelezen();
    std::erase_if(nu, [](const DcRegel& r) { return r.code[0] == 0; });
    EXPECT_TRUE(zelfde(nu, leven)) << n;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
      EXPECT_GT(n, 1);
      EXPECT_EQ(gelezen().size(), leven.size());
      return;
    }
  }
  FAIL() << "never ran through";
}

}  // namespace
