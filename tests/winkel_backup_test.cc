// The back-up of a chain in which others write: the copy is sound, tells itself when a byte of it
// changes, and is there whole or not at all.
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <functional>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/iotab.h"
#include "sub/ioeti.h"
#include "sub/ioink.h"
#include "tests/support/agent.h"
#include "tests/support/bestand.h"
#include "tests/support/draai.h"
#include "tests/support/keten.h"

namespace {

namespace fs = std::filesystem;

uint16_t datum_in(const std::string& map) {
  uint16_t datum = 0;
  const std::string b = bytes_van(map + "/DTSYS.TXT");
  std::memcpy(&datum, b.data() + 18 * 64 + 36, sizeof datum);
  return datum;
}

DtSer nieuwe_serie(uint16_t n) {
  DtSer ser = Keten::serie({10100u + n / 900, static_cast<uint16_t>(1 + n % 900), 1});
  Etiket e = proef_etiket(ser.nr, ETI_VOORRAAD);
  int32_t nummer = 0;
  ioeti('W', &nummer, &e);
  ser.blok1 = eti_blok(nummer);
  Keten::voeg(dtser, ser);
  return ser;
}

/// Series come and go with their labels, order lines with them, and price sets, until "klaar".
std::string werk() {
  uint16_t n = 0;
  for (; !fs::exists("klaar"); usleep(1000)) {
    DtSer ser = nieuwe_serie(n);
    DtPick regel{};
    regel.naarfil = static_cast<uint8_t>(n % 7);
    regel.nr = ser.nr;
    Keten::voeg(dtpick, regel);
    DtIpa set{};
    set.nr = ser.nr;
    set.begin = 45000;
    set.eind = 45100;
    set.groep1 = -1;
    prijsgroepen = {{-1, {}}};
    ipa_schrijf(&set);
    if (n++ % 3 == 0) {
      eti_vrijgeven(&ser);
      Keten::voeg(dtser, ser);
      if (IXREADL(dtpick, &regel)) IXDELETE(dtpick, &regel);
    }
  }
  return std::to_string(n);
}

TEST(WinkelBackup, IsSoundWhileOthersWork) {
  Keten keten;
  TempDir naar;
  Agent schrijver([&](const std::string&) {
    keten.open();
    return werk();
  });
  schrijver.send("werk");
  ASSERT_TRUE(wacht_tot([] { return fs::file_size("DTETI.TXT") > 376 * 20; }));
  for (const char* naam : {"/een", "/twee", "/drie"}) {
    const std::string kopie = naar.pad + naam;
    const Gedraaid u = draai_winkel("backup " + kopie);
    ASSERT_EQ(u.status, 0) << u.tekst;
    const Gedraaid v = draai_winkel("backup --verify " + kopie);
    EXPECT_EQ(v.status, 0) << v.tekst;
    const Gedraaid keur = draai_ixtool("check -C " + kopie);
    EXPECT_EQ(keur.status, 0) << keur.tekst;
    EXPECT_EQ(draai("cd " + kopie + " && sha256sum --quiet --strict -c SHA256SUMS").status, 0);
    EXPECT_EQ(datum_in("."), date_today());
    EXPECT_EQ(datum_in(kopie), date_today());
    EXPECT_FALSE(fs::exists(kopie + ".tmp"));
    // One who met the lock of a system record pauses for seconds.
    EXPECT_TRUE(wacht_tot([&] {
      return bytes_van("DTSER.TXT").size() > fs::file_size(kopie + "/DTSER.TXT") + 50 * 200;
    })) << "nobody wrote: the test tries nothing";
  }
  zet_bytes("klaar", "");
  EXPECT_GT(std::stoi(schrijver.answer()), 100);
}

TEST(WinkelBackup, EveryChangeIsTold) {
  Keten keten;
  TempDir naar;
  const std::string kopie = naar / "k";
  ASSERT_EQ(draai_winkel("backup " + kopie).status, 0);
  const std::string dtsys = bytes_van(kopie + "/DTSYS.TXT"),
                    lijst = bytes_van(kopie + "/SHA256SUMS");
  const auto verwacht = [&](const std::string& regel) {
    const Gedraaid u = draai_winkel("backup --verify " + kopie);
    EXPECT_EQ(u.status, 1);
    EXPECT_NE(u.tekst.find(regel + "\n"), std::string::npos) << regel << "\n" << u.tekst;
    zet_bytes(kopie + "/DTSYS.TXT", dtsys);
    zet_bytes(kopie + "/SHA256SUMS", lijst);
    EXPECT_EQ(draai_winkel("backup --verify " + kopie).status, 0);
  };
  std::string anders = dtsys;
  anders[60000] = static_cast<char>(anders[60000] ^ 1);
  zet_bytes(kopie + "/DTSYS.TXT", anders);
  verwacht("DTSYS.TXT: wijkt af");
  zet_bytes(kopie + "/DTSYS.TXT", dtsys.substr(0, dtsys.size() - 1));
  verwacht("DTSYS.TXT: wijkt af");
  fs::remove(kopie + "/DTSYS.TXT");
  verwacht("DTSYS.TXT: No such file or directory");
  zet_bytes(kopie + "/SHA256SUMS", lijst.substr(lijst.find('\n') + 1));
  verwacht(lijst.substr(66, lijst.find('\n') - 66) + ": staat niet in de lijst");
  zet_bytes(kopie + "/SHA256SUMS", lijst + std::string(64, '0') + "  ../DTSYS.TXT\n");
  verwacht("SHA256SUMS: regel " + std::to_string(1 + std::count(lijst.begin(), lijst.end(), '\n')) +
           " is niet te lezen");
  zet_bytes(kopie + "/SHA256SUMS", "");
  verwacht("SHA256SUMS: is leeg");
}

TEST(WinkelBackup, AllOrNothing) {
  Keten keten;
  TempDir naar;
  Agent ander([&](const std::string&) {
    ICB* icb = IXOPEN("DTPICK", IX_EXCLUSIEF);
    return icb != nullptr ? "ja" : "nee";
  });
  ASSERT_EQ(ander.ask("houd vast"), "ja");
  const Gedraaid u = draai_winkel("backup --wacht 0 " + (naar / "k"));
  EXPECT_EQ(u.status, 1);
  EXPECT_EQ(u.tekst, "winkel: DTPICK.INX is in gebruik door proces " + std::to_string(ander.pid) +
                         "; er is geen reservekopie gemaakt\n");
  EXPECT_TRUE(fs::is_empty(naar.pad));
  EXPECT_EQ(datum_in("."), 0);
  ander.kill_now();

  fs::create_directory(naar / "k.tmp");  // of a run that died
  zet_bytes(naar / "k.tmp/DTSER.TXT", "half");
  EXPECT_EQ(draai_winkel("backup " + (naar / "k")).status, 0);
  const Gedraaid weer = draai_winkel("backup " + (naar / "k"));
  EXPECT_EQ(weer.status, 1);
  EXPECT_EQ(weer.tekst, "winkel: " + (naar / "k") + ": bestaat al\n");
  EXPECT_EQ(draai_winkel("backup --verify " + (naar / "k")).status, 0);
}

TEST(WinkelBackup, AFaultyChainIsCopiedAndTold) {
  Keten keten;
  TempDir naar;
  Agent schrijver([&](const std::string&) {
    keten.open();
    nieuwe_serie(0);
    keten.sluit();
    return "ja";
  });
  ASSERT_EQ(schrijver.ask("serie"), "ja");
  std::string eti = bytes_van("DTETI.TXT");
  eti[12] = 9;  // on to a block that is not there
  std::memset(&eti[13], 0, 3);
  zet_bytes("DTETI.TXT", eti);
  const Gedraaid u = draai_winkel("backup " + (naar / "k"));
  EXPECT_EQ(u.status, 1);
  EXPECT_NE(u.tekst.find("serie 10100.1.1: blok 9 ligt buiten het bestand"), std::string::npos)
      << u.tekst;
  EXPECT_EQ(bytes_van(naar / "k/DTETI.TXT"), eti);
  EXPECT_EQ(draai_winkel("backup --verify " + (naar / "k")).status, 0);
  EXPECT_EQ(datum_in("."), 0);
}

/// A session that stands at a critical place now is not broken off in the copy; a dead one stays.
TEST(WinkelBackup, SessionsAtACriticalPlace) {
  Keten keten;
  TempDir naar;
  const auto plaats = [](int n) {
    return static_cast<size_t>(SYS_TERMINALS.basis + (n - 1) * SYS_TERMINALS.lengte);
  };
  std::string dtsys = bytes_van("DTSYS.TXT");
  dtsys[plaats(4) + 38] = dtsys[plaats(5) + 38] = 10;
  zet_bytes("DTSYS.TXT", dtsys);
  Agent sessie([&](const std::string&) {
    int32_t n = 4;
    TerminalRec rec;
    iotab('O', &n, nullptr, SYS_TERMINALS);
    n = 4;
    return iotab('X', &n, &rec, SYS_TERMINALS) ? "ja" : "nee";
  });
  ASSERT_EQ(sessie.ask("werk"), "ja");
  ASSERT_EQ(draai_winkel("backup " + (naar / "k")).status, 0);
  const std::string kopie = bytes_van(naar / "k/DTSYS.TXT");
  EXPECT_EQ(kopie[plaats(4) + 38], 0);
  EXPECT_EQ(kopie[plaats(5) + 38], 10);
}

}  // namespace
