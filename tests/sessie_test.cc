// The session modules without a screen: bytes and locks of the system file, branch records, tills,
// status, back-up result.
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <ctime>

#include "isam/io.h"
#include "main/controle_intern.h"
#include "tests/support/agent.h"
#include "tests/support/proefsysteem.h"

namespace {

struct Sessie : testing::Test {
  ProefSysteem systeem;
  ~Sessie() override {
    ProefSysteem::sluit();
    session_terminal = 0;
    terminal_rec = {};
    sys_rec1 = {};
  }
};

// An agent is a terminal of its own: "X 7" locks record 7 of the terminals, "S 4" of the system.
std::string doe(const std::string& opdracht) {
  const SysTabel& tabel = opdracht.size() > 1 && opdracht[1] == 's' ? SYS_RECORDS : SYS_TERMINALS;
  int32_t nummer = 0;
  uint8_t rec[64];
  iotab('O', &nummer, rec, tabel);
  nummer = std::atoi(opdracht.c_str() + 2);
  return iotab(opdracht[0], &nummer, rec, tabel) ? "ja" : "nee";
}

// The system file ---------------------------------------------------------------------------------

TEST_F(Sessie, RecordsLieWhereTheTablesSay) {
  ProefSysteem::open();
  struct {
    SysTabel tabel;
    int32_t nummer;
    int64_t offset;
  } const plaatsen[] = {{SYS_RECORDS, 25, 1536},         {SYS_TERMINALS, 99, 8912},
                        {SYS_FILIAALREEKSEN, 99, 14464}, {SYS_VALUTA, 99, 18408},
                        {SYS_KLEUREN, 999, 38404},       {SYS_CODES_ACTIE, 10, 38694},
                        {SYS_CODES_SEIZOEN, 10, 39594},  {SYS_ACTIES, 99, 48256},
                        {SYS_SUB20, 100, 67440},         {SYS_SUB52, 100, 72608}};
  for (const auto& p : plaatsen) {
    const size_t n = static_cast<size_t>(p.tabel.lengte);
    std::string rec(n, 'q');
    int32_t nummer = p.nummer;
    EXPECT_TRUE(iotab('W', &nummer, rec.data(), p.tabel));
    EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", p.offset, n), rec) << p.offset;
    ++nummer;
    EXPECT_FALSE(iotab('R', &nummer, rec.data(), p.tabel));
    iotab('W', &nummer, rec.data(), p.tabel);  // does nothing
  }
  EXPECT_EQ(file_size("DTSYS.TXT"), SYS_GROOTTE);
}

TEST_F(Sessie, WalkingATable) {
  ProefSysteem::terminal(99, "eva", "", "");
  ProefSysteem::open();
  uint8_t rec[64];
  int32_t nummer = 1;
  EXPECT_FALSE(iotab('R', &nummer, rec, SYS_TERMINALS));
  EXPECT_TRUE(iotab('F', &nummer, rec, SYS_TERMINALS));
  EXPECT_EQ(nummer, 7);
  EXPECT_TRUE(iotab('F', &nummer, rec, SYS_TERMINALS));
  EXPECT_EQ(nummer, 7);
  EXPECT_TRUE(iotab('N', &nummer, rec, SYS_TERMINALS));
  EXPECT_EQ(nummer, 99);
  EXPECT_FALSE(iotab('N', &nummer, rec, SYS_TERMINALS));
  EXPECT_EQ(nummer, 100);
  EXPECT_TRUE(iotab('P', &nummer, rec, SYS_TERMINALS));
  EXPECT_TRUE(iotab('P', &nummer, rec, SYS_TERMINALS));
  EXPECT_EQ(nummer, 7);
  EXPECT_TRUE(iotab('D', &nummer, rec, SYS_TERMINALS));
  EXPECT_FALSE(iotab('P', &nummer, rec, SYS_TERMINALS));
  EXPECT_EQ(nummer, 0);
  for (const char actie : {'R', 'X', 'T'})
    for (int32_t buiten : {-50, 0, 100, INT32_MAX, INT32_MIN})
      EXPECT_FALSE(iotab(actie, &buiten, rec, SYS_TERMINALS)) << actie << buiten;
  EXPECT_FALSE(iotab('?', &nummer, rec, SYS_TERMINALS));
}

// The users of such records look at the bytes, not at the answer.
TEST_F(Sessie, RecordOfZerosIsReadAndLockedThoughTheAnswerIsNo) {
  Agent ander(doe);
  ProefSysteem::open();
  uint8_t rec[64];
  memset(rec, 'x', sizeof rec);
  int32_t nummer = 18;
  EXPECT_FALSE(iotab('X', &nummer, rec, SYS_RECORDS));
  EXPECT_EQ(rec[0] | rec[63], 0);
  EXPECT_EQ(ander.ask("Ts18"), "nee");
  iotab('U', &nummer, rec, SYS_RECORDS);
  EXPECT_EQ(ander.ask("Ts18"), "ja");
}

TEST_F(Sessie, LockIsTheRecordsOwnAndLastsToTheLastWrite) {
  Agent ander(doe);
  ProefSysteem::open();
  TerminalRec rec;
  int32_t nummer = 7;
  EXPECT_TRUE(iotab('X', &nummer, &rec, SYS_TERMINALS));
  EXPECT_EQ(ander.ask("Tt7"), "nee");
  EXPECT_EQ(ander.ask("Tt6"), "ja");
  EXPECT_EQ(ander.ask("Tt8"), "ja");
  iotab('w', &nummer, &rec, SYS_TERMINALS);
  EXPECT_EQ(ander.ask("Tt7"), "nee");
  iotab('W', &nummer, &rec, SYS_TERMINALS);
  EXPECT_EQ(ander.ask("Tt7"), "ja");

  EXPECT_EQ(ander.ask("Xt7"), "ja");
  EXPECT_FALSE(iotab('T', &nummer, &rec, SYS_TERMINALS));
  ander.kill_now();
  EXPECT_TRUE(iotab('T', &nummer, &rec, SYS_TERMINALS));
}

// Opening and closing the file once more would drop the sign of life.
TEST_F(Sessie, CopyOfTheSystemFileKeepsItsLocks) {
  Agent ander(doe);
  ProefSysteem::open();
  TerminalRec rec;
  int32_t nummer = 7;
  iotab('X', &nummer, &rec, SYS_TERMINALS);
  EXPECT_TRUE(file_copy("DTSYS.TXT", "kopie", 0));
  EXPECT_EQ(file_size("kopie"), SYS_GROOTTE);
  EXPECT_EQ(ander.ask("Tt7"), "nee");
  EXPECT_FALSE(file_copy("kopie", "DTSYS.TXT", 0));
  EXPECT_EQ(ander.ask("Tt7"), "nee");
}

TEST_F(Sessie, TablesOfTheTerminalsGroup) {
  ProefSysteem::zet(SYS_SUB20.basis + 22 * 20, "drie", 4);    // record 23
  ProefSysteem::zet(SYS_SUB20.basis + 29 * 20, "dertig", 6);  // record 30: of group 3
  ProefSysteem::zet(SYS_SUB52.basis + 20 * 52, "nul", 3);     // record 21
  ProefSysteem::open();
  terminal_rec.groep = 2;
  char rec[52];
  int32_t nummer = 3;
  EXPECT_TRUE(sys_sub20('R', &nummer, rec));
  EXPECT_STREQ(rec, "drie");
  EXPECT_EQ(nummer, 3);
  EXPECT_FALSE(sys_sub20('N', &nummer, rec));  // the next one is another group's
  nummer = 0;
  EXPECT_TRUE(sys_sub20('F', &nummer, rec));
  EXPECT_EQ(nummer, 3);
  nummer = 0;
  EXPECT_TRUE(sys_sub52('R', &nummer, rec));
  EXPECT_EQ(nummer, 0);
  EXPECT_STREQ(rec, "nul");
  terminal_rec.groep = 9;
  nummer = 9;
  memset(rec, 'z', sizeof rec);
  EXPECT_TRUE(sys_sub52('W', &nummer, rec));
  EXPECT_EQ(nummer, 9);
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 72608, 60), std::string(52, 'z'));
  terminal_rec.groep = 255;
  EXPECT_FALSE(sys_sub20('R', &nummer, rec));
}

TEST_F(Sessie, WhoHoldsALock) {
  Agent jan(doe), vreemd(doe);
  ProefSysteem::open();
  const int fd = iotab_fd();
  const char* onbekend = "Informatie in gebruik op ander scherm";
  EXPECT_EQ(ctl_lockholder("PROG", fd, 192, 64), onbekend);
  jan.ask("Xt7");
  jan.ask("Xs4");
  EXPECT_EQ(ctl_lockholder("PROG", fd, 192, 64), "Programma in gebruik door jan (tty3)");
  EXPECT_EQ(ctl_lockholder("~DTSER", fd, 192, 64), "DTSER: in gebruik door jan (tty3)");
  EXPECT_EQ(ctl_lockholder("", fd, 192, 64), "Informatie in gebruik door jan (tty3)");
  vreemd.ask("Xs5");
  EXPECT_EQ(ctl_lockholder("", fd, 256, 64), onbekend);
}

// Branches and tills ------------------------------------------------------------------------------

TEST_F(Sessie, BranchRecords) {
  ProefSysteem::open();
  iofil('O', 0, nullptr);
  FiliaalRec rec{};
  veld_zet(rec.naam, sizeof rec.naam, "Utrecht");
  rec.extern_nummer = 200;
  EXPECT_TRUE(iofil('W', 2, &rec));
  EXPECT_STREQ(rec.naam, "Utrecht");
  std::string schijf = ProefSysteem::bytes("DTFILGEG.TXT", 3 * 612, 612);
  EXPECT_EQ(schijf[8], 0);
  EXPECT_EQ(schijf.find("Utrecht"), std::string::npos);
  EXPECT_EQ(unscramble_veld(schijf.data(), 32), "Utrecht");
  EXPECT_EQ(static_cast<uint8_t>(schijf[599]), 200);

  // The longest name that leaves room for its key and its end.
  veld_zet(rec.naam, sizeof rec.naam, std::string(32, 'w'));
  rec.extern_nummer = 1;
  iofil('W', 1, &rec);
  iofil('R', 1, &rec);
  EXPECT_EQ(veld_tekst(rec.naam, 32), std::string(30, 'w'));

  veld_zet(rec.naam, sizeof rec.naam, "Hoofdkantoor");
  rec.extern_nummer = 3;
  iofil('W', 3, &rec);
  EXPECT_EQ(ProefSysteem::bytes("DTFILGEG.TXT", 0, 32), std::string(32, '\0'));
  iofil('R', 3, &rec);
  EXPECT_STREQ(rec.naam, "De Ketting BV");

  uint8_t filiaal = 77;
  EXPECT_TRUE(branch_by_number(200, &rec, &filiaal));
  EXPECT_EQ(filiaal, 2);
  EXPECT_TRUE(branch_by_number(3, &rec, &filiaal));
  EXPECT_EQ(filiaal, 3);
  filiaal = 77;
  EXPECT_FALSE(branch_by_number(199, &rec, &filiaal));
  EXPECT_FALSE(branch_by_number(-1, &rec, &filiaal));
  EXPECT_EQ(filiaal, 77);
  EXPECT_FALSE(iofil('?', 0, &rec));
  iofil('C', 0, nullptr);
}

TEST_F(Sessie, Tills) {
  for (const char* naam :
       {"KAS0103.SYS", "KAS0104.SYS", "KAS0201.SYS", "KAS01030.SYS", "KASXX01.SYS", "KASMUT.TXT"})
    ProefSysteem::maak(naam, 0);
  ProefSysteem::open();
  pairs_load();
  EXPECT_FALSE(pairs_any());
  EXPECT_FALSE(pairs_send_all(255, 255, 'A', "niemand"));
  sys_rec1.opties = 4;
  pairs_load();
  EXPECT_EQ(pairs_count(), 3);
  EXPECT_TRUE(pair_exists(1, 3));
  EXPECT_FALSE(pair_exists(2, 3));
  EXPECT_FALSE(pair_exists(255, 3));
  EXPECT_TRUE(pairs_of_branch(1));
  EXPECT_FALSE(pairs_of_branch(0));
  EXPECT_TRUE(pairs_of_branch(255));
  EXPECT_TRUE(pairs_send_all(1, 255, 'S', "een"));
  EXPECT_TRUE(pairs_send_all(255, 3, 'X', "twee"));
  EXPECT_FALSE(pairs_send_all(2, 9, 'X', "drie"));
  EXPECT_EQ(ProefSysteem::bytes("DCMU0103.TXT", 0, 99), std::string("Seen\n\0Xtwee\n\0", 13));
  EXPECT_EQ(ProefSysteem::bytes("DCMU0104.TXT", 0, 99), std::string("Seen\n\0", 6));
  EXPECT_FALSE(file_exists("DCMU0201.TXT"));
  pairs_free();
}

// Status ------------------------------------------------------------------------------------------

TEST_F(Sessie, StatusTexts) {
  EXPECT_EQ(ctl_status_text("vrije tekst"), "vrije tekst");
  EXPECT_EQ(ctl_status_text("@1"), "Er wordt een back-up gemaakt");
  EXPECT_EQ(ctl_status_text("@9"), "Laatste back-up is niet gelukt!");
  EXPECT_EQ(ctl_status_text("@14 of zo"), "Lindgar afgesloten voor migratie");
  for (const char* leeg : {"@", "@0", "@12", "@15", "@-1", "@x", ""})
    EXPECT_EQ(ctl_status_text(leeg), "");
}

TEST_F(Sessie, SystemStatusOnDisk) {
  ProefSysteem::open();
  ctl_system_text("Dit is een vrije tekst van meer dan negenenveertig tekens");
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 584, 50),
            std::string("Dit is een vrije tekst van meer dan negenenveertig").substr(0, 49) + '\0');
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 634, 6), "8.70 \x09");
  ctl_system_status(2);
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 584, 3), std::string("@7\0", 3));
  EXPECT_FALSE(ctl_critical_test());
  ctl_system_status(0);
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 639, 1), std::string(1, '\0'));
  EXPECT_TRUE(ctl_critical_test());
}

// Only a dead program behind a critical status is a fault.
TEST_F(Sessie, CriticalPlace) {
  ProefSysteem::terminal(42, "eva", "", "voorraad", 11);
  Agent eva(doe);
  ProefSysteem::open();
  terminal_rec.status = 1;
  eva.ask("Xt42");
  EXPECT_TRUE(ctl_critical_test());
  eva.kill_now();
  EXPECT_FALSE(ctl_critical_test());
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 584, 3), std::string("@8\0", 3));
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 639, 1), "\x03");
  EXPECT_EQ(terminal_rec.status, 1);
}

TEST_F(Sessie, StatusOfTheTerminalKeepsTheLock) {
  Agent ander(doe);
  ProefSysteem::open();
  ctl_set_status(9);  // no session: nothing is written
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 2640, 64), std::string(64, '\0'));
  session_terminal = 7;
  int32_t nummer = 7;
  iotab('X', &nummer, &terminal_rec, SYS_TERMINALS);
  ctl_set_status(10);
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 2640 + 6 * 64 + 38, 1), "\x0a");
  // The bytes() above opened and closed the file, which drops this process's locks: take it anew.
  iotab('X', &nummer, &terminal_rec, SYS_TERMINALS);
  ctl_set_status(1);
  EXPECT_EQ(ander.ask("Tt7"), "nee");
}

// Back-up, log ------------------------------------------------------------------------------------

std::string datumregel(int dagen_geleden) {
  static const char* maanden[] = {"jan",  "feb", "maart", "april", "mei", "juni",
                                  "juli", "aug", "sept",  "okt",   "nov", "dec"};
  const time_t toen = time(nullptr) - dagen_geleden * 86400;
  tm d{};
  localtime_r(&toen, &d);
  return str_format("%02d %d 23:15 %s", d.tm_mday, d.tm_year + 1900, maanden[d.tm_mon]);
}

TEST_F(Sessie, BackupResult) {
  const std::string map = systeem.map.pad + "/";
  const std::string oud = datumregel(40) + "\nbackup gemaakt\nok\n";
  const std::string jong = datumregel(3) + "\nbackup gemaakt\nok\n";
  ProefSysteem::zet(18 * 64 + 40, "afgelopen", 9);
  ProefSysteem::open();
  EXPECT_FALSE(ctl_backup_uit(map.c_str()));  // no file

  std::ofstream("result.bu") << oud << jong;
  EXPECT_TRUE(ctl_backup_uit(map.c_str()));
  EXPECT_EQ(ProefSysteem::bytes("result.bu", 0, 500), jong);
  EXPECT_FALSE(file_exists("result.new"));
  EXPECT_EQ(ProefSysteem::bytes("DTSYS.TXT", 584, 49), std::string(49, '\0'));
  const std::string rec19 = ProefSysteem::bytes("DTSYS.TXT", 18 * 64, 64);
  EXPECT_EQ(static_cast<uint8_t>(rec19[36]) | static_cast<uint8_t>(rec19[37]) << 8, date_today());
  EXPECT_EQ(rec19.substr(40), std::string(24, '\0'));

  std::ofstream("result.bu") << jong << datumregel(0) << "\nGeen tape\nfout\n";
  EXPECT_FALSE(ctl_backup_uit(map.c_str()));
  EXPECT_STREQ(ProefSysteem::bytes("DTSYS.TXT", 584, 50).c_str(),
               "Back-up niet gelukt, geen tape in tapestreamer");
  std::ofstream("result.bu") << jong << datumregel(0) << "\nafgebroken\n";
  EXPECT_FALSE(ctl_backup_uit(map.c_str()));
  EXPECT_STREQ(ProefSysteem::bytes("DTSYS.TXT", 584, 50).c_str(),
               "Back-up niet gelukt, gebruikers actief geweest");
}

TEST_F(Sessie, LogLines) {
  ctl_log("PROEF.LOG", 2, "een");
  ctl_log("PROEF.LOG", 0, "twee");
  const std::string log = ProefSysteem::bytes("PROEF.LOG", 0, 500);
  EXPECT_EQ(log.substr(14, 6), "   een");
  EXPECT_EQ(log.size(), 21 + 20u);
  EXPECT_EQ(log.substr(2, 1) + log[5] + log[11], "--:");
}

}  // namespace
