// ixtool check and rebuild: each fault in a file is told by one line that names its place, a sound
// file passes whatever others do in it, and no bytes at all bring the check down.
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <random>

#include "isam/io.h"
#include "sub/records.h"
#include "sub/tabeldef.h"
#include "tests/support/agent.h"
#include "tests/support/ixtool_proef.h"
#include "tests/support/proefsysteem.h"
#include "tools/ix_keur.h"

namespace {

constexpr int RECORDS = 700;
constexpr int BREED1 = 8;  // entry of key 1: number and pointer

/// A sound table PROEF of 700 records, some deleted; its bytes are the ground of every fault.
struct Tabel {
  TempDir map;
  InMap in{map.pad};
  std::string index, data;

  Tabel() {
    ICB* icb = proef_tabel("PROEF", IX_EXCLUSIEF);
    for (int i = 0; i < RECORDS; ++i) {
      ProefRec r = proef_rec(i, ("naam" + std::to_string(i * 7 % 101)).c_str(), i % 13);
      IXWRITE(icb, &r);
    }
    for (int i : {5, 300, 301, 699}) {
      ProefRec r = proef_rec(i);
      EXPECT_TRUE(IXREAD(icb, &r));
      IXDELETE(icb, &r);
    }
    IXCLOSE(icb);
    index = bytes_van("PROEF.INX");
    data = bytes_van("PROEF.TXT");
  }
  IndexBytes bytes() const { return {index}; }
  /// Leaf of key 1 under entry i of its root.
  int32_t blad(int i) const { return bytes().wijzer(1, i, BREED1); }
  int32_t laatste_blad() const { return blad(bytes().aantal(1) - 1); }
  Uitkomst check(const IndexBytes& i) const { return check(i.b, data); }
  static Uitkomst check(const std::string& index, const std::string& data) {
    zet_bytes("PROEF.INX", index);
    zet_bytes("PROEF.TXT", data);
    return ixtool("check PROEF");
  }
};

std::string regel(const std::string& plek, const std::string& wat) {
  return "PROEF" + plek + ": " + wat + "\n";
}
std::string in_blok(int sleutel, int32_t blok) {
  return ", sleutel " + std::to_string(sleutel) + ", blok " + std::to_string(blok);
}
std::string record(int32_t nr) { return ", record " + std::to_string(nr); }

void verwacht(const Uitkomst& u, const std::string& regels) {
  EXPECT_EQ(u.uit, regels);
  EXPECT_EQ(u.fout, "");
  EXPECT_EQ(u.status, 1);
}

TEST(IxtoolCheck, ASoundTablePasses) {
  const Tabel t;
  const Uitkomst u = t.check(t.bytes());
  EXPECT_EQ(u.uit, "PROEF: in orde, 696 records, 4 verwijderd\n");
  EXPECT_EQ(u.fout, "");
  EXPECT_EQ(u.status, 0);
  EXPECT_EQ(bytes_van("PROEF.INX"), t.index);
}

TEST(IxtoolCheck, FaultsOfABlock) {
  const Tabel t;
  const int32_t blok = t.blad(2);
  IndexBytes i = t.bytes();
  i.op(blok, 1) = 3;
  verwacht(t.check(i), regel(in_blok(1, blok), "niveau 3, verwacht 1"));
  i = t.bytes();
  ASSERT_EQ(i.op(1, 1), 2);
  i.op(1, 1) = 3;
  verwacht(t.check(i), regel(in_blok(1, 1), "niveau 3, verwacht 2"));
  i.op(1, 1) = 1;
  verwacht(t.check(i), regel(in_blok(1, 1), "niveau 1, verwacht 2"));
  i = t.bytes();
  i.op(blok, 0) = 2;
  verwacht(t.check(i), regel(in_blok(1, blok), "blok van sleutel 2"));
  i = t.bytes();
  i.op(blok, 511) = 1;
  verwacht(t.check(i), regel(in_blok(1, blok), "ongebruikte bytes zijn niet nul"));
  i = t.bytes();
  const int aantal = i.aantal(blok);
  i.op(blok, 4) = 120;
  verwacht(t.check(i),
           regel(in_blok(1, blok), "120 ingangen") +
               regel(", sleutel 1: let op", std::to_string(aantal) + " records zijn niet bereikt"));
}

TEST(IxtoolCheck, FaultsOfTheOrder) {
  const Tabel t;
  const int32_t blok = t.blad(2);
  IndexBytes i = t.bytes();
  const std::string twee = i.ingang(blok, 2, BREED1), drie = i.ingang(blok, 3, BREED1);
  i.zet_ingang(blok, 2, drie);
  i.zet_ingang(blok, 3, twee);
  const int32_t nr = i.wijzer(blok, 3, BREED1);
  verwacht(t.check(i), regel(in_blok(1, blok) + record(nr), "ingang 3 staat niet op volgorde"));
  i = t.bytes();
  i.op(1, 5 + 2 * BREED1 + 3) = static_cast<char>(i.op(1, 5 + 2 * BREED1 + 3) - 1);
  verwacht(t.check(i), regel(in_blok(1, 1), "ingang 2 is niet de hoogste sleutel van blok " +
                                                std::to_string(blok)));
  // Across two leaves: the first key of a leaf below the last of the one before it.
  i = t.bytes();
  i.zet_ingang(blok, 0, std::string(8, '\0'));
  const Uitkomst u = t.check(i);
  EXPECT_NE(u.uit.find(regel(in_blok(1, blok) + record(0), "ingang 0 staat niet op volgorde")),
            std::string::npos)
      << u.uit;
}

TEST(IxtoolCheck, SentinelsOnEveryLevel) {
  const Tabel t;
  const int32_t blok = t.laatste_blad();
  IndexBytes i = t.bytes();
  i.weg(blok, i.aantal(blok) - 1, BREED1);
  verwacht(t.check(i), regel(in_blok(1, blok), "de eindsleutel ontbreekt"));
  i = t.bytes();
  const int einde = i.aantal(1) - 1;
  i.op(1, 5 + einde * BREED1 + 3) = 0;
  verwacht(t.check(i), regel(in_blok(1, 1), "de eindsleutel ontbreekt"));
  i = t.bytes();
  i.zet_wijzer(blok, i.aantal(blok) - 1, BREED1, 7);
  verwacht(t.check(i), regel(in_blok(1, blok), "de eindsleutel leidt naar record 7"));
}

TEST(IxtoolCheck, EachRecordOnceInEachKey) {
  const Tabel t;
  const int32_t blok = t.blad(2);
  IndexBytes i = t.bytes();
  const int32_t nr = i.wijzer(blok, 4, BREED1), ander = i.wijzer(blok, 5, BREED1);
  i.weg(blok, 4, BREED1);
  verwacht(t.check(i), regel(", sleutel 1" + record(nr), "het record ontbreekt in de sleutel"));
  i = t.bytes();
  i.zet_ingang(blok, 5, i.ingang(blok, 4, BREED1));
  verwacht(t.check(i),
           regel(", sleutel 1" + record(nr), "het record staat meer dan eens in de sleutel") +
               regel(", sleutel 1" + record(ander), "het record ontbreekt in de sleutel"));
  i = t.bytes();
  i.zet_wijzer(blok, 4, BREED1, 5);  // a deleted one
  verwacht(t.check(i),
           regel(in_blok(1, blok) + record(5), "ingang 4 leidt naar een verwijderd record") +
               regel(", sleutel 1" + record(nr), "het record ontbreekt in de sleutel"));
  i.zet_wijzer(blok, 4, BREED1, RECORDS);
  verwacht(t.check(i), regel(in_blok(1, blok), "ingang 4 leidt naar record 700") +
                           regel(", sleutel 1" + record(nr), "het record ontbreekt in de sleutel"));
  // The key is not the record's.
  std::string data = t.data;
  data[static_cast<size_t>(nr) * sizeof(ProefRec) + offsetof(ProefRec, groep)] ^= 1;
  const std::string uit = Tabel::check(t.index, data).uit;
  EXPECT_NE(uit.find("PROEF, sleutel 2, blok "), std::string::npos);
  EXPECT_NE(uit.find(record(nr) + ": ingang "), std::string::npos);
  EXPECT_NE(uit.find(" is niet de sleutel van het record\n"), std::string::npos);
  EXPECT_EQ(std::count(uit.begin(), uit.end(), '\n'), 1);
}

TEST(IxtoolCheck, PointersThatLeadAstray) {
  const Tabel t;
  for (const int32_t waarheen : {-7, 0, 1, 4, 99999, INT32_MAX}) {
    IndexBytes i = t.bytes();
    i.zet_wijzer(1, 2, BREED1, waarheen);
    const Uitkomst u = t.check(i);
    const std::string eerste = u.uit.substr(0, u.uit.find('\n') + 1);
    EXPECT_EQ(eerste, regel(in_blok(1, 1), "ingang 2 leidt naar blok " + std::to_string(waarheen)));
    EXPECT_EQ(u.status, 1);
  }
  IndexBytes i = t.bytes();
  i.zet_wijzer(1, 2, BREED1, t.blad(1));
  EXPECT_EQ(t.check(i).uit.find(regel(
                in_blok(1, 1),
                "ingang 2 leidt naar blok " + std::to_string(t.blad(1)) + ", dat al bereikt is")),
            0u);
}

TEST(IxtoolCheck, HeaderAndSizes) {
  const Tabel t;
  IndexBytes i = t.bytes();
  const int32_t blokken = static_cast<int32_t>(i.b.size() / 512);
  const std::string maat = ", volgens de kop " + std::to_string(blokken) + " blokken van 512";
  i.b[45] = 1;
  verwacht(t.check(i), regel("", "Niet consistent (bezig 1)"));
  i = t.bytes();
  i.b[258] = 94;  // 350
  verwacht(t.check(i), regel("", "versie 350, verwacht 351"));
  i = t.bytes();
  i.b[2] = 'X';
  verwacht(t.check(i), regel("", "de kop noemt \"PRXEF\""));
  i = t.bytes();
  i.b += std::string(512, '\0');
  verwacht(t.check(i), regel("", "index van " + std::to_string(i.b.size()) + " bytes" + maat));
  i = t.bytes();
  i.b.resize(i.b.size() - 512);
  EXPECT_EQ(
      t.check(i).uit.find(regel("", "index van " + std::to_string(i.b.size()) + " bytes" + maat)),
      0u);
  i.b.resize(200);
  verwacht(t.check(i), regel("", "index van 200 bytes, te kort voor een kop"));
  i = t.bytes();
  i.b[48 + 42 + 31] = 90;  // key 2 ends behind the record
  const std::string uit = t.check(i).uit;
  EXPECT_EQ(uit.find("PROEF, sleutel 2: veld 1 ligt op byte 15 tot 90\n"), 0u) << uit;
  const std::string kort = t.data.substr(0, t.data.size() - 64);
  verwacht(Tabel::check(t.index, kort), regel("", "databestand van " + std::to_string(kort.size()) +
                                                      " bytes, volgens de kop 700 records van 64") +
                                            regel("", "vrije keten leidt naar record 699"));
}

TEST(IxtoolCheck, TheFreeChain) {
  const Tabel t;
  const auto met = [&](int32_t slot, int32_t volgende) {
    std::string data = t.data;
    memcpy(data.data() + static_cast<size_t>(slot) * 64 + 1, &volgende, 4);
    return Tabel::check(t.index, data);
  };
  verwacht(met(5, 301), regel(record(5), "vrije keten komt terug bij record 301"));
  verwacht(met(5, 6), regel(record(5), "vrije keten leidt naar record 6, dat in gebruik is"));
  verwacht(met(301, 5), regel(record(300), "verwijderd, maar niet in de vrije keten"));
  verwacht(met(5, -9), regel(record(5), "vrije keten leidt naar record -9"));
}

TEST(IxtoolCheck, TheLockQueue) {
  const Tabel t;
  IndexBytes i = t.bytes();
  i.op(4, 0) = 2;
  verwacht(t.check(i), regel(", blok 4", "dit is geen wachtrij"));
  i.op(4, 0) = 1;
  i.op(4, 4) = static_cast<char>(200);
  verwacht(t.check(i), regel(", blok 4", "wachtrij van 200 sleutels"));
  i.op(4, 4) = 1;
  i.op(4, 90) = 1;
  i.op(4, 8) = 77;
  EXPECT_EQ(t.check(i).uit.find("PROEF, blok 4: ongebruikte bytes zijn niet nul\n"), 0u);
  i.op(4, 90) = 0;
  const Uitkomst u = t.check(i);
  EXPECT_EQ(u.uit.find("PROEF, blok 4: let op: in de wachtrij: bytes 1-4=77\n"), 0u) << u.uit;
  EXPECT_EQ(u.status, 0);
}

/// An update that changed only the case of a letter keeps the old image, and that is sound.
TEST(IxtoolCheck, ImagesAreComparedAsTheKeyCompares) {
  const Tabel t;
  ICB* icb = IXOPEN("PROEF", IX_GEDEELD);
  ProefRec r = proef_rec(8);
  ASSERT_TRUE(IXREAD(icb, &r));
  r.naam[0] = 'N';
  IXWRITE(icb, &r);
  for (int i = 200; i < 290; ++i) {  // empties whole leaves
    ProefRec weg = proef_rec(i);
    IXREAD(icb, &weg);
    IXDELETE(icb, &weg);
  }
  IXCLOSE(icb);
  const Uitkomst u = ixtool("check PROEF");
  EXPECT_EQ(u.status, 0);
  EXPECT_NE(u.uit.find(" geleegde blokken\n"), std::string::npos) << u.uit;
  EXPECT_NE(u.uit.find("PROEF: in orde, 606 records"), std::string::npos) << u.uit;
}

TEST(IxtoolCheck, JsonNamesThePlace) {
  const Tabel t;
  IndexBytes i = t.bytes();
  const int32_t nr = i.wijzer(t.blad(2), 4, BREED1);
  i.weg(t.blad(2), 4, BREED1);
  t.check(i);
  const Uitkomst u = ixtool("check --json PROEF");
  EXPECT_EQ(u.status, 1);
  EXPECT_NE(u.uit.find("\"sleutel\": 1"), std::string::npos) << u.uit;
  EXPECT_NE(u.uit.find("\"record\": " + std::to_string(nr)), std::string::npos);
  EXPECT_NE(u.uit.find("\"fouten\": 1"), std::string::npos);
}

/// Whatever the bytes: findings, no memory fault, an end.
TEST(IxtoolCheck, AnyBytes) {
  const Tabel t;
  std::mt19937 gok(20240611);
  for (int ronde = 0; ronde < 1500; ++ronde) {
    TabelKopie kopie;
    kopie.index.assign(t.index.begin(), t.index.end());
    kopie.data.assign(t.data.begin(), t.data.end());
    for (int n = 1 + static_cast<int>(gok() % 20); n > 0; --n) {
      // Half of it in header, roots and queue, where most hangs on a byte.
      const size_t grens = gok() % 2 == 0 ? 2560 : kopie.index.size();
      kopie.index[gok() % grens] = static_cast<uint8_t>(gok());
    }
    if (ronde % 3 == 0) kopie.index.resize(gok() % kopie.index.size());
    if (ronde % 5 == 0) kopie.data.resize(gok() % kopie.data.size());
    Verslag v;
    v.tabel = ronde % 2 == 0 ? "PROEF" : "DTPICK";
    const Keuring k = keur_tabel(v.tabel, kopie, false, &v);
    ASSERT_TRUE(!v.in_orde() || k.kop.busy == 0) << ronde;
    Keuring weer;
    weer.index = kopie.index;
    weer.data = kopie.data;
    weer.verslag = &v;
    int64_t ingangen = 0;
    const int sleutels = keur_kop(weer, v.tabel) ? weer.kop.key_count : 0;
    for (int s = 1; s <= sleutels; ++s)
      loop_bladeren(weer, s, [&](const uint8_t*, int32_t) { return ++ingangen < 100000; });
    ASSERT_LT(ingangen, 100000) << ronde;
  }
}

// Beside others -----------------------------------------------------------------------------------

TEST(IxtoolCheck, BesideAProcessThatWrites) {
  const TempDir map;
  const InMap in(map.pad);
  Agent schrijver([](const std::string&) -> std::string {
    ix_hooks.wacht = [](ICB*) { usleep(1000); };
    ICB* icb = IXOPEN("PROEF", IX_GEDEELD);
    int n = 0;
    for (; access("stop", F_OK) != 0 && n < 1000000; ++n) {
      ProefRec r = proef_rec(n * 37 % 900, "schrijft", n % 5);
      const bool er = IXREADL(icb, &r);
      r.groep = static_cast<int16_t>(n % 7);
      IXWRITE(icb, &r);
      if (er && n % 3 == 0 && IXREADL(icb, &r)) IXDELETE(icb, &r);
    }
    IXCLOSE(icb);
    return std::to_string(n);
  });
  IXCLOSE(proef_tabel("PROEF", IX_EXCLUSIEF));
  schrijver.send("schrijf");
  for (int i = 0; i < 25; ++i) {
    const Uitkomst u = ixtool("check PROEF");
    EXPECT_EQ(u.status, 0) << u.uit << u.fout;
  }
  zet_bytes("stop", "");
  EXPECT_GT(std::stoi(schrijver.answer()), 100);
  EXPECT_EQ(tabel_fouten("PROEF"), "");
}

TEST(IxtoolCheck, ATableThatSomebodyKeepsIsNamed) {
  const Tabel t;
  const int fd = io_open("PROEF.INX", false);
  ASSERT_TRUE(file_lock('E', fd, 0, 512));
  const Uitkomst u = ixtool("check --wacht 0 PROEF");
  EXPECT_EQ(u.uit, "PROEF: PROEF.INX is in gebruik door proces " + std::to_string(getpid()) +
                       ", niet gekeurd\n");
  EXPECT_EQ(u.status, 1);
  io_close(fd);
  EXPECT_EQ(ixtool("check --wacht 0 PROEF").status, 0);
}

TEST(IxtoolCheck, PrivateIndexes) {
  const TempDir map;
  const InMap in(map.pad);
  tabel_maak(*tabel_zoek("DTSER"), "DTSER");
  ICB* ser = IXOPEN("DTSER", IX_GEDEELD);
  ICB* eigen = IXCREATE("DTSER.V07", IX_EXCLUSIEF);
  IXUPDFCB(eigen, 0, "RAKV,200");
  IXUPDFCB(eigen, 1, "key-1,NODUPS,I,9,10,I,1,4,I,5,6,I,7,8");
  IXINITIX(eigen);
  for (uint16_t i = 0; i < 100; ++i) {
    DtSer r{};
    r.nr = {1, 2, i};
    r.merk = i % 7;
    r.blok1 = -1;
    IXWRITE(ser, &r);
    eigen->record_no = ser->record_no;
    IXADDKEYS(eigen, &r);
  }
  const Uitkomst bezet = ixtool("check --wacht 0 DTSER.V07");
  EXPECT_EQ(bezet.uit, "DTSER.V07: let op: DTSER.V07 is in gebruik door proces " +
                           std::to_string(getpid()) + ", niet gekeurd\n");
  EXPECT_EQ(bezet.status, 0);
  IXCLOSE(eigen);
  Uitkomst u = ixtool("check");
  EXPECT_EQ(u.uit,
            "DTSER: in orde, 100 records, 0 verwijderd\nDTSER.V07: in orde, index van 8 blokken\n");
  EXPECT_EQ(u.status, 0);
  DtSer r{};
  r.nr = {1, 2, 30};
  ASSERT_TRUE(IXREAD(ser, &r));
  r.merk = 999;
  IXWRITE(ser, &r);
  r.nr.volgnr = 40;
  ASSERT_TRUE(IXREAD(ser, &r));
  IXDELETE(ser, &r);
  IXCLOSE(ser);
  u = ixtool("check DTSER.V07");
  EXPECT_EQ(u.status, 1);
  EXPECT_NE(u.uit.find(", record 30: ingang"), std::string::npos) << u.uit;
  EXPECT_NE(u.uit.find("is niet de sleutel van het record\n"), std::string::npos);
  EXPECT_NE(u.uit.find("leidt naar een verwijderd record\n"), std::string::npos);
  EXPECT_EQ(ixtool("check --verouderd DTSER.V07").status, 0);
  u = ixtool("rebuild DTSER.V07");
  EXPECT_EQ(u.status, 2);
  EXPECT_NE(u.fout.find("DTSER.V07 kan niet herbouwd worden"), std::string::npos);
}

/// Whatever others write until the lock is held, the copy is the file as it stands then.
TEST(Tabelkopie, IsTheFileAsItStandsUnderTheLock) {
  const TempDir map;
  const InMap in(map.pad);
  std::mt19937 gok(7);
  std::string bytes(300000, '\0');
  for (char& c : bytes) c = static_cast<char>(gok());
  zet_bytes("een", bytes);
  zet_bytes("twee", bytes);
  const int een = io_open("een", false), twee = io_open("twee", false);
  for (const int64_t grootte : {0, 65536, 299999, 400000}) {
    std::vector<uint8_t> kopie_een, kopie_twee;
    const KopieBron bronnen[] = {{een, &kopie_een}, {twee, &kopie_twee}};
    int tries = 0, los = 0;
    KopieSlot slot;
    slot.neem = [&] {
      if (++tries < 4) return false;
      io_schrijf(een, "nieuw", 5, 131070);  // across two pieces
      io_kap(twee, grootte);
      return true;
    };
    slot.los = [&] { ++los; };
    slot.binnen = [&] { EXPECT_EQ(los, 0); };
    EXPECT_EQ(kopieer_onder_slot(bronnen, slot, 5).uit, KopieUit::goed);
    EXPECT_EQ(los, 1);
    EXPECT_EQ(std::string(kopie_een.begin(), kopie_een.end()), bytes_van("een"));
    EXPECT_EQ(std::string(kopie_twee.begin(), kopie_twee.end()), bytes_van("twee"));
  }
  io_close(een);
  io_close(twee);
}

// Rebuild -----------------------------------------------------------------------------------------

TEST(IxtoolRebuild, MakesABrokenIndexSound) {
  const Tabel t;
  IndexBytes i = t.bytes();
  i.b[45] = 1;
  i.op(t.blad(1), 4) = 99;
  EXPECT_EQ(t.check(i).status, 1);
  const Uitkomst u = ixtool("rebuild PROEF");
  EXPECT_EQ(u.uit, "PROEF: in orde, 696 records, 4 verwijderd\n");
  EXPECT_EQ(u.status, 0);
  EXPECT_EQ(tabel_fouten("PROEF"), "");
}

TEST(IxtoolRebuild, AKnownTableNeedsNoIndexAtAll) {
  const TempDir map;
  const InMap in(map.pad);
  tabel_maak(*tabel_zoek("DTMERK"), "DTMERK");
  ICB* icb = IXOPEN("DTMERK", IX_GEDEELD);
  for (uint16_t i = 1; i <= 60; ++i) {
    DtMerk m{};
    m.nummer = i;
    m.naam[0] = static_cast<char>('A' + i % 20);
    IXWRITE(icb, &m);
  }
  IXCLOSE(icb);
  const std::string goed = bytes_van("DTMERK.INX"), kop = goed.substr(0, 512);
  std::string scheef = goed;
  scheef[48 + 9] = 60;  // a key that is not this table's
  for (const std::string& stuk : {std::string(), kop.substr(0, 100), scheef}) {
    zet_bytes("DTMERK.INX", stuk);
    EXPECT_EQ(ixtool("check DTMERK").status, 1);
    const Uitkomst u = ixtool("rebuild DTMERK");
    EXPECT_EQ(u.uit, "DTMERK: in orde, 60 records, 0 verwijderd\n") << u.fout;
    EXPECT_EQ(bytes_van("DTMERK.INX").substr(0, 260), kop.substr(0, 260));
  }
  unlink("DTMERK.INX");
  EXPECT_EQ(ixtool("check").uit, "DTMERK: DTMERK.INX ontbreekt\n");
  EXPECT_EQ(ixtool("rebuild").status, 0);
  // Half a record: the records behind it are not to be guessed at.
  zet_bytes("DTMERK.TXT", bytes_van("DTMERK.TXT") + "x");
  EXPECT_EQ(ixtool("rebuild DTMERK").uit,
            "DTMERK: databestand van 4561 bytes, geen veelvoud van 76\n");
  zet_bytes("VREEMD.TXT", "");
  zet_bytes("VREEMD.INX", "");
  EXPECT_EQ(ixtool("rebuild VREEMD").uit,
            "VREEMD: VREEMD.INX is niet te lezen en de tabel is niet bekend\n");
}

// The chained files -------------------------------------------------------------------------------

/// Two series with labels in blocks 0 -> 2 and 1, block 3 free.
struct Etiketten {
  ProefSysteem systeem;
  std::string blokken;

  Etiketten() {
    tabel_maak(*tabel_zoek("DTSER"), "DTSER");
    ICB* ser = IXOPEN("DTSER", IX_GEDEELD);
    for (uint16_t i = 0; i < 2; ++i) {
      DtSer r{};
      r.nr = {1, 2, static_cast<uint16_t>(i + 1)};
      r.blok1 = i;
      IXWRITE(ser, &r);
    }
    IXCLOSE(ser);
    blokken.resize(4 * 376);
    blok(0, 1, 2);
    blok(1, 2, -1);
    blok(2, 1, -1);
    zet(3, 12, 4);
    zet(0, 16 + 8, 20002);      // a label in stock,
    zet(0, 16 + 20, 12 * 100);  // size 12
    control(3, 4, 1);
    schrijf();
  }
  void zet(int nr, int plaats, int32_t v) { memcpy(blokken.data() + nr * 376 + plaats, &v, 4); }
  void blok(int nr, uint16_t volgnr, int32_t volgende) {
    zet(nr, 0, 1);
    zet(nr, 4, 2 | volgnr << 16);
    zet(nr, 12, volgende);
  }
  static void control(int32_t hoofd, int32_t hoogste, int32_t aantal) {
    SysRec4 rec{hoofd, hoogste, aantal, 7, {}};
    ProefSysteem::zet(3 * 64, &rec, sizeof rec);
  }
  void schrijf() const { zet_bytes("DTETI.TXT", blokken); }
  std::string check() const {
    schrijf();
    return ixtool("check DTETI").uit;
  }
};

TEST(IxtoolCheck, LabelChains) {
  Etiketten e;
  EXPECT_EQ(e.check(), "DTETI.TXT: in orde, 4 blokken, 1 vrij\n");
  e.zet(0, 16 + 8, 20007);
  EXPECT_EQ(e.check(), "DTETI.TXT, blok 0: etiket 1: status 7\n");
  e.zet(0, 16 + 8, 20002);
  e.zet(0, 16 + 20, 99 * 100);
  EXPECT_EQ(e.check(), "DTETI.TXT, blok 0: etiket 1: maat 99\n");
  e.zet(0, 16 + 20, 12 * 100);
  e.zet(2, 12, 0);
  EXPECT_EQ(e.check(), "DTETI.TXT, blok 2: serie 1.2.1: komt terug bij blok 0\n");
  e.zet(2, 12, 1);
  EXPECT_EQ(e.check(), "DTETI.TXT, blok 2: serie 1.2.1: blok 1 is van serie 1.2.2\n");
  e.zet(2, 12, 77);
  EXPECT_EQ(e.check(), "DTETI.TXT, blok 2: serie 1.2.1: blok 77 ligt buiten het bestand\n");
  e.blok(0, 1, -1);
  EXPECT_EQ(e.check(), "DTETI.TXT, blok 2: staat in geen keten\n");
  e.blok(0, 1, 2);
  e.blok(2, 1, -1);
  Etiketten::control(3, 4, 2);
  EXPECT_EQ(e.check(), "DTETI.TXT: vrije lijst van 1 blokken, volgens het systeembestand 2\n");
  Etiketten::control(4, 4, 0);
  EXPECT_EQ(e.check(), "DTETI.TXT, blok 3: staat in geen keten\n");
  Etiketten::control(3, 4, 1);
  e.zet(3, 12, 3);
  EXPECT_NE(e.check().find("DTETI.TXT, blok 3: vrije lijst: komt terug bij blok 3\n"),
            std::string::npos);
  e.zet(3, 12, 1);
  EXPECT_NE(e.check().find("vrije lijst: blok 1 staat al in een andere keten\n"),
            std::string::npos);
}

TEST(IxtoolCheck, PriceGroupChains) {
  const ProefSysteem systeem;
  tabel_maak(*tabel_zoek("DTIPA"), "DTIPA");
  ICB* icb = IXOPEN("DTIPA", IX_GEDEELD);
  DtIpa set{};
  set.nr = {9, 8, 7};
  set.nummer = 3;
  set.eind = 500;
  set.groep1 = 0;
  IXWRITE(icb, &set);
  IXCLOSE(icb);
  DtIpg groep[3] = {};
  for (int i : {0, 2}) {
    groep[i].nr = set.nr;
    groep[i].nummer = 3;
    groep[i].eind = 500;
  }
  groep[0].volgende = 2;
  groep[1].volgende = 3;
  groep[2].volgende = -1;
  SysRec9 rec{1, 3, {}};
  ProefSysteem::zet(8 * 64, &rec, sizeof rec);
  const auto check = [&] {
    zet_bytes("DTIPG.TXT", std::string(reinterpret_cast<const char*>(groep), sizeof groep));
    return ixtool("check DTIPG").uit;
  };
  EXPECT_EQ(check(), "DTIPG.TXT: in orde, 3 groepen, 1 vrij\n");
  groep[2].eind = 499;
  EXPECT_NE(check().find("DTIPG.TXT, blok 0: prijsset 9.8.7 3: groep 2 is van prijsset 9.8.7 3\n"),
            std::string::npos);
  groep[2].eind = 500;
  groep[2].volgende = 0;
  EXPECT_EQ(check(), "DTIPG.TXT, blok 2: prijsset 9.8.7 3: komt terug bij groep 0\n");
}

}  // namespace
