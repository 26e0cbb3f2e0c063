// Correcting the transactions of tills and hand terminals, as an operator does it: keys in, the
// screen and the bytes of DTDCIF.TXT out.
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <vector>

#include "isam/io.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "sub/dc_wijzig.h"
#include "tests/support/adv_keten.h"
#include "tests/support/agent.h"
#include "tests/support/bestand.h"

namespace {

struct DcWijzig : AdvKeten {
  std::vector<std::string> codes;  // of labels 1 to 3 of ROK, then the size code, then a gone one

  void SetUp() override {
    AdvKeten::SetUp();
    met_keten([&] {
      for (uint8_t maat = 1; maat <= 3; ++maat) {
        char code[14];
        etikode_maak(0, stuk(ROK, ETI_VOORRAAD, maat, 1), code);
        codes.emplace_back(code);
      }
      DtSer jas{};
      jas.nr = JAS;
      ASSERT_TRUE(IXREAD(dtser, &jas));
      jas.maatregistratie = 1;
      IXWRITE(dtser, &jas);
      char code[14];
      etikode_maak('M', 1000, code);
      DtEan ean{};
      memcpy(ean.code, code, sizeof ean.code);
      ean.soort = 'M';
      ean.artgroep = JAS.artgroep;
      ean.kleur = JAS.kleur;
      ean.volgnr = JAS.volgnr;
      ean.maat = 2;
      ProefKeten::voeg(dtean, ean);
      codes.emplace_back(code);
      etikode_maak(0, 8888, code);
      codes.emplace_back(code);
    });
  }
  static DcRegel regel(int van, int naar, const std::string& code, uint8_t soort = DC_ZENDEN,
                       uint32_t stuks = DC_GEEN_AANTAL, uint32_t nummer = 0) {
    DcRegel r{};
    r.vanfil = static_cast<uint8_t>(van);
    r.naarfil = static_cast<uint8_t>(naar);
    r.datum = date_number("12032026");
    veld_zet(r.code, sizeof r.code, code);
    r.soort = soort;
    r.leeg18[0] = 7;  // what nobody knows stays
    r.stuks = stuks;
    r.nummer = nummer;
    return r;
  }
  static std::vector<DcRegel> bestand() {
    const std::string b = bytes_van(DC_BESTAND);
    EXPECT_EQ(b.size() % sizeof(DcRegel), 0u);
    std::vector<DcRegel> uit(b.size() / sizeof(DcRegel));
    if (!uit.empty()) memcpy(uit.data(), b.data(), b.size());
    return uit;
  }
  static void zet(const std::vector<DcRegel>& r) {
    zet_bytes(DC_BESTAND,
              std::string(reinterpret_cast<const char*>(r.data()), r.size() * sizeof(DcRegel)));
  }
  static bool zelfde(const std::vector<DcRegel>& a, const std::vector<DcRegel>& b) {
    return a.size() == b.size() && memcmp(a.data(), b.data(), a.size() * sizeof(DcRegel)) == 0;
  }
  /// The selection up to its list: the kind, then what is typed in the eight fields.
  static void selecteer(Terminal& t, const char* soort, std::initializer_list<const char*> velden) {
    t.type("1", soort);
    int n = 0;
    for (const char* v : velden) {
      t.type(toets::in(v));
      ++n;
    }
    for (; n < 8; ++n) t.type(toets::Enter);
  }
};

TEST_F(DcWijzig, ChangesOneLineInPlace) {
  const std::vector<DcRegel> was = {regel(1, 2, codes[1]), regel(1, 3, codes[0]),
                                    regel(1, 2, codes[3], DC_ZENDEN, 4, 20000011),
                                    regel(2, 1, codes[0], DC_ONTVANGEN)};
  zet(was);
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
  t.type("3", toets::in("1"));
  EXPECT_SHOWS(t, "Verzendfiliaal is gelijk aan bestemmingsfiliaal");
  t.type(toets::Back, toets::in("5"), "4", toets::in("12"));
  EXPECT_SHOWS(t, "Ongeldig nummer");
  t.type(toets::Esc, "1", toets::in("140326"), toets::Esc);
  t.type(toets::Down, "W");
  EXPECT_SHOWS(t, codes[3], "10100.20.2", "5  Aantal                 4");
  t.type("5", toets::in("25"), "4", toets::in("1234569"));
  t.type(toets::Esc, toets::Esc, toets::Esc, toets::Esc);
  EXPECT_SHOWS(t, "KLAAR");
  std::vector<DcRegel> soll = was;
  soll[0].naarfil = 5;
  soll[0].datum = date_number("14032026");
  soll[2].stuks = 25;
  soll[2].nummer = 21234569;
  EXPECT_TRUE(zelfde(bestand(), soll));
  EXPECT_FALSE(file_exists("TP07K.TXT") || file_exists("TP07K.INX"));
}

TEST_F(DcWijzig, AllLinesOfTheListAtOnce) {
  std::vector<DcRegel> was;
  for (int i = 0; i < 30; ++i) was.push_back(regel(1, 2 + i % 2, codes[3], DC_ONTVANGEN, 1));
  was.push_back(regel(1, 2, codes[3]));
  zet(was);
  Terminal t = draai(dc_wijzigen);
  selecteer(t, "2", {});
  EXPECT_SHOWS(t, " ontvangsten ", "documentnr   ontdat");
  t.type("A");
  EXPECT_SHOWS(t, "ONTVANGST", "30 transacties", "1  Ontvangstdatum         12-03-26",
               "2  Verzendfiliaal         1");
  t.type("2", toets::in("3"));  // half of them go there
  EXPECT_SHOWS(t, "Verzendfiliaal is gelijk aan ontvangstfiliaal");
  t.type(toets::Esc, "4", toets::in("20000011"), "3", toets::in("0"));
  t.type(toets::Esc, toets::Esc, toets::Esc, toets::Esc);
  EXPECT_SHOWS(t, "KLAAR");
  std::vector<DcRegel> soll = was;
  for (int i = 0; i < 30; ++i) {
    soll[static_cast<size_t>(i)].nummer = 20000011;
    soll[static_cast<size_t>(i)].naarfil = 0;
  }
  EXPECT_TRUE(zelfde(bestand(), soll));
}

TEST_F(DcWijzig, DeletedLinesStayZeroUntilTheEnd) {
  const std::vector<DcRegel> was = {regel(1, 2, codes[0]), regel(1, 2, codes[1]),
                                    regel(1, 2, codes[4]), regel(1, 2, "123456789012")};
  zet(was);
  Terminal t = draai(dc_wijzigen);
  selecteer(t, "1", {});
  t.type("W");  // gone: no series, so it is the first of the list
  EXPECT_SHOWS(t, "*** etiket is verwijderd ***");
  t.type(toets::Esc, toets::Down, "W");
  EXPECT_SHOWS(t, "*** serie is verwijderd ***");
  t.type(toets::Esc, toets::Down, "V");
  EXPECT_SHOWS(t, "Dit artikelnummer wordt verwijderd. Akkoord? (J/N)");
  t.type(toets::in("N"));
  EXPECT_TRUE(t.ready());
  EXPECT_TRUE(zelfde(bestand(), was));
  t.type("V", toets::in("J"));
  EXPECT_TRUE(t.ready());
  std::vector<DcRegel> soll = was;
  soll[1] = DcRegel{};  // the list goes by size text: M stands before S
  EXPECT_TRUE(zelfde(bestand(), soll));
  t.type("V", toets::in("J"), "V", toets::in("J"), "V", toets::in("J"));
  EXPECT_SHOWS(t, "Verzenddatum");  // the list is empty and ends
  for (int i = 0; i < 8; ++i) t.type(toets::Enter);
  EXPECT_TRUE(t.ready());
  t.type(toets::Esc, toets::Esc);
  EXPECT_EQ(file_size(DC_BESTAND), 4 * 28);
}

TEST_F(DcWijzig, ByArticleNumber) {
  zet({regel(1, 2, codes[0]), regel(1, 2, codes[1]), regel(3, 1, codes[0])});
  Terminal t = draai(dc_wijzigen);
  t.type("2", "1", toets::in("4711"));
  EXPECT_SHOWS(t, "<4711> Artikelnummer niet aanwezig");
  t.type(toets::in(codes[0]));
  EXPECT_SHOWS(t, " verzendingen ");
  EXPECT_FALSE(t.shows(codes[1]));
  t.type("V", toets::in("J"), toets::Esc, toets::Esc, toets::Esc, toets::Esc);
  EXPECT_SHOWS(t, "KLAAR");
  EXPECT_TRUE(zelfde(bestand(), {regel(1, 2, codes[1]), regel(3, 1, codes[0])}));
  EXPECT_FALSE(file_exists("DTDCIF.TMP"));
}

/// Terminal 5 has the transactions: this one does not get them, and the other way round.
TEST_F(DcWijzig, HasTheTransactionsToItself) {
  zet({regel(1, 2, codes[0])});
  Agent ander([](const std::string& wat) {
    if (session_terminal != 5) {
      session_terminal = 5;
      int32_t n = 1;
      iotab('O', &n, nullptr, SYS_RECORDS);
    }
    if (wat == "test")
      return std::string(vw_lock('T', iotab_fd(), 40084 + 99 * 2 + 5, 1) ? "vrij" : "bezet");
    vw_claim(2, true);
    return std::string("ja");
  });
  {
    Terminal t = draai(dc_wijzigen);
    EXPECT_SHOWS(t, "1 Per selectie");
    EXPECT_EQ(ander.ask("test"), "bezet");
    t.type(toets::Esc);
    EXPECT_SHOWS(t, "KLAAR");
    EXPECT_EQ(ander.ask("test"), "vrij");
  }
  ander.ask("claim");
  Terminal t = draai(dc_wijzigen);
  EXPECT_TRUE(t.wait_for("Er zijn gebruikers actief die verwerking blokkeren!"));
  t.type_now(toets::in("N"));
  EXPECT_TRUE(t.wait_for("KLAAR"));
  EXPECT_EQ(file_size(DC_BESTAND), 28);
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
    zet(was);
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
    std::vector<DcRegel> nu = bestand();
    std::erase_if(nu, [](const DcRegel& r) { return r.code[0] == 0; });
    EXPECT_TRUE(zelfde(nu, leven)) << n;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
      EXPECT_GT(n, 1);
      EXPECT_EQ(bestand().size(), leven.size());
      return;
    }
  }
  FAIL() << "never ran through";
}

}  // namespace
