// The tables of print destinations as bytes, which combinations suit a report, and what is chosen.
#include "prt/lijst.h"
#include "tests/support/print_proef.h"

namespace fs = std::filesystem;

namespace {

class Bestemming : public PrintMap {
 protected:
  static void printer(uint16_t nr, const char* device, uint8_t to_dir, uint16_t kolommen,
                      uint16_t rijen) {
    prt_printer(nr, "LASER", device, to_dir,
                {0, 1, 1, kolommen, rijen, "gewoon", "\\1B(s\\\\", "\\1BE"});
  }
  /// A choice, undone again.
  static bool kies(uint32_t selectie, int widths) {
    PrtRec rec{};
    const bool goed = prt_choose(&rec, selectie, widths, nullptr) != 0;
    if (goed) {
      std::fclose(rec.spool);
      spool = bytes_van(rec.spool_name);
      file_delete(rec.spool_name);
      rec.spool = nullptr;
    }
    gekozen = rec;
    return goed;
  }
  static inline PrtRec gekozen;
  static inline std::string spool;
};

constexpr uint32_t SCHERM = static_cast<uint32_t>(PRT_SCHERM);

}  // namespace

TEST(Masker, ColumnsAndPageLengthsOfTheReport) {
  EXPECT_TRUE(prt_past(PRT_132, 132, 64));
  EXPECT_FALSE(prt_past(PRT_132, 80, 64));
  EXPECT_TRUE(prt_past(PRT_132 | PRT_80, 80, 66));
  EXPECT_FALSE(prt_past(PRT_132, 132, 67));  // without a word about length: up to 66 rows
  EXPECT_TRUE(prt_past(PRT_132 | PRT_LANG, 132, 67));
  EXPECT_FALSE(prt_past(PRT_132 | PRT_LANG, 132, 66));
  EXPECT_TRUE(prt_past(PRT_132 | PRT_LANG | PRT_KORT, 132, 66));
  EXPECT_TRUE(prt_past(PRT_40 | PRT_LANG, 40, 9999));  // endless suits all
  EXPECT_TRUE(prt_past(PRT_40 | PRT_LANG, 40, 0));
  EXPECT_FALSE(prt_past(PRT_40 | PRT_80 | PRT_132, 96, 64));
  EXPECT_TRUE(prt_past(PRT_ALLES, 96, 500));
}

TEST_F(Bestemming, NewTablesKnowTheScreen) {
  ASSERT_TRUE(prt_tabellen_maak());
  EXPECT_EQ(bytes_van("TR_PTRG.TXT"), std::string("\1\0\0\0SCR\0\0\0\0\0\0\0\0\0", 16));
  const std::string c = bytes_van("TR_PTRC.TXT");
  ASSERT_EQ(c.size(), 64u);
  EXPECT_EQ(c.substr(0, 4), std::string("\1\0\1\0", 4));
  EXPECT_EQ(c.substr(4, 40), std::string(40, '\0'));
  EXPECT_STREQ(c.c_str() + 44, "SCR");
  const std::string p = bytes_van("TR_PTRP.TXT");
  ASSERT_EQ(p.size(), 3u * 284u);
  EXPECT_EQ(p.substr(0, 8), std::string("\1\0\1\0\x28\0\x0F\x27", 8));
  EXPECT_STREQ(p.c_str() + 8, "SCR-40");
  EXPECT_EQ(p.substr(284, 8), std::string("\1\0\2\0\x50\0\x40\0", 8));
  EXPECT_EQ(p.substr(568, 8), std::string("\1\0\3\0\x84\0\x40\0", 8));
  EXPECT_STREQ(p.c_str() + 568 + 8, "SCR-132");
  EXPECT_EQ(bytes_van("TR_PTRCA.TXT"), "");
  EXPECT_EQ(fs::file_size("TR_PTRG.INX") % 512, 0u);
  for (const char* naam : {TR_PTRG, TR_PTRC, TR_PTRP, TR_PTRCA})
    EXPECT_EQ(IXCHECK(naam), 0) << naam;
  EXPECT_NE(bytes_van("TR_PTRP.INX").find("TR_PTR_properties"), std::string::npos);
}

TEST_F(Bestemming, ALostIndexIsBuiltAgainAndTheRecordsStay) {
  ASSERT_TRUE(prt_tabellen_maak());
  printer(7, "LASER", 0, 132, 64);
  fs::remove("TR_PTRC.INX");
  fs::resize_file("TR_PTRP.INX", 512);
  ASSERT_TRUE(prt_tabellen_maak());
  EXPECT_EQ(prt_lijst_alles(PRT_ALLES).size(), 4u);
  fs::remove("TR_PTRG.TXT");  // this one is new: its printer is gone with it
  ASSERT_TRUE(prt_tabellen_maak());
  EXPECT_EQ(prt_lijst_alles(PRT_ALLES).size(), 3u);
}

TEST_F(Bestemming, TheOnlyCombinationIsTakenWithoutAList) {
  ASSERT_TRUE(kies(SCHERM, PRT_132));
  EXPECT_EQ(gekozen.to_screen, 1);
  EXPECT_EQ(gekozen.width, 132);
  EXPECT_EQ(gekozen.page_lines, 64);
  EXPECT_STREQ(gekozen.device, "/dev/null");
  EXPECT_EQ(gekozen.is_lp, 0);
  EXPECT_EQ(gekozen.line_no, 10000);
  EXPECT_EQ(gekozen.page_no, 0);
}

TEST_F(Bestemming, APrinterOfTheProgramsChoice) {
  ASSERT_TRUE(prt_tabellen_maak());
  printer(7, "LASER", 0, 132, 0);
  ASSERT_TRUE(kies(7, PRT_132));
  EXPECT_STREQ(gekozen.device, "LASER");
  EXPECT_EQ(gekozen.is_lp, 1);
  EXPECT_EQ(gekozen.to_screen, 0);
  EXPECT_EQ(gekozen.page_lines, 9999);  // endless
  EXPECT_EQ(spool, "\x1B(s\\");
  EXPECT_EQ(gekozen.text_start, 4);
  EXPECT_STREQ(gekozen.stop_str,
               "\x1B"
               "E");
  // No configuration of 80 columns: the screen, with the printer's device kept for the print.
  EXPECT_FALSE(kies(7, PRT_80));
  ASSERT_TRUE(kies(7 | SCHERM, PRT_80 | PRT_40));
  EXPECT_EQ(gekozen.to_screen, 1);
  EXPECT_EQ(gekozen.width, 80);
  EXPECT_EQ(gekozen.page_lines, 64);
  EXPECT_STREQ(gekozen.device, "LASER");
}

TEST_F(Bestemming, ADirectoryGetsTheSpoolsName) {
  ASSERT_TRUE(prt_tabellen_maak());
  printer(7, "afdruk", 1, 80, 64);
  ASSERT_TRUE(kies(7 | 1u << 24, PRT_80));
  EXPECT_EQ(std::string(gekozen.device), std::string("afdruk/") + gekozen.spool_name);
  EXPECT_EQ(std::string(gekozen.spool_name).substr(0, 2), "PR");
  EXPECT_EQ(gekozen.to_dir, 1);
}

TEST_F(Bestemming, DevicesThatWouldDoHarmAreRefused) {
  ASSERT_TRUE(prt_tabellen_maak());
  for (const char* device : {"-x", "DTSER.TXT", "../d/DTSER.INX"}) {
    printer(7, device, 0, 80, 64);
    EXPECT_FALSE(kies(7, PRT_80)) << device;
  }
  EXPECT_EQ(prt_spools(), 0);
}

TEST_F(Bestemming, NamesOfFiles) {
  PrtRec rec{};
  const uint32_t bestand = static_cast<uint32_t>(PRT_BESTAND);
  const std::string lang(40, 'x');
  for (const char* naam :
       {static_cast<const char*>(nullptr), "", lang.c_str(), "DTSER.TXT", "-n"}) {
    EXPECT_EQ(prt_choose(&rec, bestand, PRT_80, naam), 0);
  }
  ASSERT_EQ(prt_choose(&rec, bestand, PRT_132, lang.substr(1).c_str()), 1);
  EXPECT_EQ(rec.width, 132);
  EXPECT_EQ(rec.device, lang.substr(1));
  std::fclose(rec.spool);
  // Not exactly one width: there is nobody to ask here.
  EXPECT_EQ(prt_choose(&rec, bestand, PRT_80 | PRT_KORT, "x"), 0);
}

// The directory is read once in a program's life: each case is a process of its own.
TEST(BestemmingDeathTest, TheDirectoryOfTheTables) {
  const auto pad_is = [](const char* kob, const std::string& soll) {
    setenv("KOBPRT", kob, 1);
    std::_Exit(prt_path("TR_PTRG") == soll ? 0 : 1);
  };
  TempDir map;
  const std::string diep = map / std::string(80, 'd');
  fs::create_directory(diep);
  for (const auto& [kob, soll] :
       std::initializer_list<std::pair<std::string, std::string>>{{map.pad, map / "TR_PTRG"},
                                                                  {map.pad + "/", map / "TR_PTRG"},
                                                                  {map / "weg", "TR_PTRG"},
                                                                  {diep, "TR_PTRG"},
                                                                  {"", "TR_PTRG"}})
    EXPECT_EXIT(pad_is(kob.c_str(), soll), testing::ExitedWithCode(0), "") << kob;
}
