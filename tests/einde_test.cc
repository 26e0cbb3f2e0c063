// The way of a finished report to a queue, a file, a directory: what arrives, and what is left
// behind.
#include <sstream>

#include "prt/schil.h"
#include "tests/support/print_proef.h"

namespace fs = std::filesystem;

namespace {

/// lp and cat tell what they were given.
class Einde : public PrintMap {
 protected:
  Einde() {
    script("lp", "for last; do :; done; /bin/cat \"$last\" >> " + (basis / "lp.uit"));
    script("cat", "exec /bin/cat \"$@\"");
  }
  void open(const char* naam) {
    ASSERT_EQ(XPRT_OPEN(static_cast<uint32_t>(PRT_BESTAND), PRT_80, naam), 1);
  }
  static void blad(const char* tekst) {
    print_ff();
    print_f("%s", tekst);
    print_nl();
  }
  std::string lp_uit() { return bytes_van(basis / "lp.uit"); }
  static bool leeg() { return prt_spools() == 0; }
  /// A report of these pages on its way, gone when this returns.
  static void stuur(std::initializer_list<const char*> bladen) {
    for (const char* tekst : bladen) blad(tekst);
    print_close("");
    ASSERT_TRUE(wacht_tot(leeg));
  }
  static std::string zoekt_lp(const std::string& s) {
    const size_t p = s.find("lp -d");
    return p == std::string::npos ? "" : s.substr(p, s.find('\n', p) - p);
  }
};

}  // namespace

TEST(Schil, QuotesAllButPlainWords) {
  EXPECT_EQ(sh_quote("/dev/usb/lp0"), "/dev/usb/lp0");
  EXPECT_EQ(sh_quote("PDF-2_a.b"), "PDF-2_a.b");
  EXPECT_EQ(sh_quote(""), "''");
  EXPECT_EQ(sh_quote("x;touch PWNED"), "'x;touch PWNED'");
  EXPECT_EQ(sh_quote("a'b"), "'a'\\''b'");
  EXPECT_EQ(sh_systeem("exit 7"), 7);
}

TEST_F(Einde, AQueueGetsTheFileWithItsOptions) {
  open("LASER");
  EXPECT_EQ(prt_rec.is_lp, 1);
  prt_rec.copies = 2;
  blad("een");
  const std::string naam = prt_rec.spool_name;
  EXPECT_TRUE(fs::exists(naam));
  print_close("-o landscape -o cpi=13");
  ASSERT_TRUE(wacht_tot(leeg));
  EXPECT_EQ(lp_uit(), "een\n\f");
  EXPECT_EQ(zoekt_lp(log()), "lp -dLASER -n2 -c -s -o landscape -o cpi=13 " + naam);
}

TEST_F(Einde, AQueueReadsUtf8ButForThePrintersOwnCodes) {
  open("LASER");
  std::strcpy(prt_rec.stop_str, "\x1b\x82");
  stuur({"caf\x82"});
  EXPECT_EQ(lp_uit(), "caf\xC3\xA9\n\f\x1b\x82");
  setenv("KOBPRTCODE", "CP850", 1);
  open("LASER");
  stuur({"caf\x82"});
  EXPECT_EQ(lp_uit().substr(9), "caf\x82\n\f");
}

TEST_F(Einde, AnEmptyReportLeavesNothingAndSendsNothing) {
  open("LASER");
  print_ff();
  print_clear();
  print_close("");
  EXPECT_TRUE(leeg());
  EXPECT_EQ(zoekt_lp(log()), "");
}

TEST_F(Einde, ThreeCopiesArriveFromThreeFiles) {
  std::ofstream("uit.lst") << "eerder\n";
  open("uit.lst");
  EXPECT_EQ(prt_rec.is_lp, 0);
  EXPECT_EQ(prt_rec.page_lines, 64);
  prt_rec.copies = 3;
  std::strcpy(prt_rec.stop_str, "STOP");
  stuur({"een", "twee"});
  const std::string stuk = "een\n\ftwee\n\fSTOP";
  EXPECT_EQ(bytes_van("uit.lst"), "eerder\n" + stuk + stuk + stuk);
  std::stringstream regels(log());
  std::vector<std::string> namen;
  for (std::string regel; std::getline(regels, regel);) {
    if (regel.starts_with("cat ")) namen.push_back(regel.substr(4));
  }
  ASSERT_EQ(namen.size(), 3u);
  EXPECT_NE(namen[0], namen[1]);
  EXPECT_NE(namen[1], namen[2]);
}

TEST_F(Einde, ADeviceThatKeepsTheProgramWaitingStillGetsAllCopies) {
  // The first command stands still until the test lets it go on.
  script("cat", "test -e \"$1.door\" || while test ! -e " + (basis / "door") +
                    "; do sleep 0.1; done\nexec /bin/cat \"$@\"");
  const int lang = prt_wacht_ms;
  prt_wacht_ms = 40;
  open("uit.lst");
  prt_rec.copies = 3;
  blad("een");
  print_close("");
  prt_wacht_ms = lang;
  EXPECT_EQ(bytes_van("uit.lst"), "");
  std::ofstream(basis / "door") << "";
  ASSERT_TRUE(wacht_tot(leeg));
  EXPECT_EQ(bytes_van("uit.lst"), "een\n\feen\n\feen\n\f");
}

TEST_F(Einde, ADirectoryGetsAFileThatIsComplete) {
  fs::create_directory("map");
  for (int keer = 0; keer < 2; ++keer) {
    open("uit.lst");
    std::strcpy(prt_rec.spool_name, "PRAA07");
    std::fclose(prt_rec.spool);
    prt_rec.spool = std::fopen("PRAA07", "a");
    prt_rec.to_dir = 1;
    std::strcpy(prt_rec.device, "map/PRAA07");
    blad(keer == 0 ? "een" : "twee");
    print_close("");
  }
  EXPECT_EQ(bytes_van("map/TRAA07"), "een\n\f");
  // A file that nobody has collected yet is not written over: the second has a name of its own.
  std::string ander;
  for (const auto& e : fs::directory_iterator("map")) {
    const std::string naam = e.path().filename();
    EXPECT_EQ(naam.substr(0, 2), "TR");
    if (naam != "TRAA07") ander = bytes_van(e.path());
  }
  EXPECT_EQ(ander, "twee\n\f");
  EXPECT_FALSE(fs::exists("PRAA07"));
}

TEST_F(Einde, ThePortOfAnotherTerminalGetsEachCopyWhole) {
  open("uit.lst");
  prt_rec.is_aux = 1;
  std::strcpy(prt_rec.device, "poort");
  prt_rec.copies = 2;
  stuur({"een"});
  EXPECT_EQ(bytes_van("poort"), "een\n\f");
  EXPECT_EQ(log().find("cat"), log().find("cat PR"));
}

TEST_F(Einde, NamesAreNoCommands) {
  open("x;touch PWNED");
  stuur({"een"});
  EXPECT_FALSE(fs::exists("PWNED"));
  EXPECT_EQ(bytes_van("x;touch PWNED"), "een\n\f");
}

TEST_F(Einde, PicturesStandBehindTheFormFeedOfTheirPage) {
  prt_plaat_zet([](FILE* uit, const char* naam) { return std::fprintf(uit, "<%s>", naam) > 0; },
                false);
  open("uit.lst");
  std::fputs("START", prt_rec.spool);
  prt_rec.text_start = 5;
  prt_plaat(2, "b");
  prt_plaat(1, "a");
  prt_plaat(2, "c");
  stuur({"een", "twee"});
  EXPECT_EQ(bytes_van("uit.lst"), "START<a>een\n\f<b><c>twee\n\f");
}

TEST_F(Einde, PicturesTakeThePlaceOfTheirMarks) {
  prt_plaat_zet([](FILE* uit, const char* naam) { return std::fprintf(uit, "<%s>", naam) > 0; },
                true);
  open("uit.lst");
  prt_plaat(0, "a");
  prt_plaat(0, "b");
  stuur({"PCXPCXTECx PCXTEPPCXTEC PCXTEC PCX"});
  EXPECT_EQ(bytes_van("uit.lst"), "PCX<a>x PCXTEP<b> PCXTEC PCX\n\f");
  // The list is gone with its report, and so is the facility with its routine.
  prt_plaat_zet(nullptr, true);
  open("uit2.lst");
  prt_plaat(0, "a");
  stuur({"PCXTEC"});
  EXPECT_EQ(bytes_van("uit2.lst"), "PCXTEC\n\f");
}
