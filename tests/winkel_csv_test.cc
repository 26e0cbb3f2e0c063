// Tables as text and back, by the real program: what goes out comes in again byte for byte, and a
// line that is not good changes nothing.
#include <cstdio>
#include <cstring>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "main/iotab.h"
#include "sub/datacom.h"
#include "sub/tabeldef.h"
#include "tests/support/agent.h"
#include "tests/support/bestand.h"
#include "tests/support/ix_proef.h"
#include "tests/support/tijdelijk.h"
#include "tools/winkel_csv.h"

namespace {

namespace fs = std::filesystem;

struct Uitkomst {
  int status;
  std::string tekst;
};
Uitkomst winkel(const std::string& argumenten) {
  FILE* pijp = popen((BUILD_DIR "/tools/winkel " + argumenten + " 2>&1 </dev/null").c_str(), "r");
  Uitkomst u{-1, ""};
  char stuk[4096];
  while (const size_t n = fread(stuk, 1, sizeof stuk, pijp)) u.tekst.append(stuk, n);
  const int status = pclose(pijp);
  if (WIFEXITED(status)) u.status = WEXITSTATUS(status);
  return u;
}

struct Csv : ::testing::Test {
  TempDir map;
  std::string keten = map / "k", tekst = map / "t.csv";

  Csv() {
    static const TempDir moeder;
    const std::string bron = moeder / "k";
    if (!fs::exists(bron)) {
      const Uitkomst u = winkel("demo --seed 3 --today 15032026 -C " + bron);
      EXPECT_EQ(u.status, 0) << u.tekst;
    }
    fs::copy(bron, keten);
  }
  std::string pad(const std::string& naam) const { return keten + "/" + naam; }
  Uitkomst uit(const std::string& tabel, const std::string& meer = "") const {
    return winkel("export -C " + keten + " " + meer + " " + tabel + " " + tekst);
  }
  Uitkomst in(const std::string& tabel) const {
    return winkel("import -C " + keten + " " + tabel + " " + tekst);
  }
  Uitkomst in_tekst(const std::string& tabel, const std::string& inhoud) const {
    zet_bytes(tekst, inhoud);
    return in(tabel);
  }
  void leeg(const char* tabel) const {
    const InMap hier(keten);
    ICB* icb = IXOPEN(tabel, IX_EXCLUSIEF);
    IXINIT(icb);
    IXCLOSE(icb);
  }
};

TEST_F(Csv, EveryTableGoesOutAndInAgain) {
  for (const TabelDef& def : tabel_alle()) {
    SCOPED_TRACE(def.name);
    const std::string txt = pad(std::string(def.name) + ".TXT"), was = bytes_van(txt);
    ASSERT_GT(was.size(), 0u);
    for (const char* vorm : {"", "--json"}) {
      ASSERT_EQ(uit(def.name, vorm).status, 0);
      const std::string stond = bytes_van(tekst);
      if (*vorm == 0) {
        const Uitkomst over = in(def.name);
        EXPECT_EQ(over.status, 0) << over.tekst;
        EXPECT_NE(over.tekst.find(": 0 toegevoegd, 0 gewijzigd"), std::string::npos) << over.tekst;
        EXPECT_TRUE(bytes_van(txt) == was);
      }
      leeg(def.name);
      const Uitkomst nieuw = in(def.name);
      EXPECT_EQ(nieuw.status, 0) << nieuw.tekst;
      // Hidden text is hidden anew, with another key; it reads the same.
      EXPECT_TRUE(bytes_van(txt) == was || std::string(def.name) == "DTHMNU");
      ASSERT_EQ(uit(def.name, vorm).status, 0);
      EXPECT_TRUE(bytes_van(tekst) == stond);
      zet_bytes(txt, was);
    }
    const InMap hier(keten);
    EXPECT_EQ(IXCHECK(def.name), 0);
  }
}

TEST_F(Csv, ChangesWhatIsNamedAndKeepsTheRest) {
  std::string bytes = bytes_van(pad("DTLEV.TXT"));
  bytes[200] = '\x42';  // nobody's
  zet_bytes(pad("DTLEV.TXT"), bytes);
  uint16_t nummer;
  memcpy(&nummer, bytes.data(), 2);
  const Uitkomst u = in_tekst("DTLEV", "\xEF\xBB\xBFnaam,nummer\r\n\"Smit, \"\"Één\"\"\"," +
                                           std::to_string(nummer) + "\r\n\r\nNieuw,64000\r\n");
  EXPECT_EQ(u.tekst, "DTLEV: 1 toegevoegd, 1 gewijzigd, 0 gelijk\n");
  const std::string nu = bytes_van(pad("DTLEV.TXT"));
  EXPECT_EQ(nu.substr(2, 12), std::string("Smit, \"\x90\x82n\"\0", 12));
  EXPECT_TRUE(nu.substr(32, 300) == bytes.substr(32, 300));
  ASSERT_EQ(nu.size(), bytes.size() + 332);
  EXPECT_EQ(nu.substr(bytes.size() + 2, 30), "Nieuw" + std::string(25, '\0'));

  // A new series owns no labels unless it is told to.
  EXPECT_EQ(in_tekst("DTSER", "artgroep;kleur;volgnr;verkoopprijs\n10100;1;99;12.50\n").status, 0);
  ASSERT_EQ(winkel("export --json -C " + keten + " DTSER " + tekst).status, 0);
  EXPECT_NE(bytes_van(tekst).find("\"volgnr\":99,"), std::string::npos);
  const std::string ser =
      bytes_van(pad("DTSER.TXT")).substr(bytes_van(pad("DTSER.TXT")).size() - 200);
  EXPECT_EQ(ser.substr(176, 4), "\xFF\xFF\xFF\xFF");
  EXPECT_EQ(ser.substr(108, 4), std::string("\xE2\x04\0\0", 4));
}

TEST_F(Csv, OneBadLineAndNothingIsWritten) {
  struct Geval {
    const char *tabel, *tekst, *soll;
  };
  const std::string ser = "artgroep;kleur;volgnr;";
  const Geval GEVALLEN[] = {
      {"DTLEV", "nummer;naam\n1;Goed\n2;Goed\n70000;Te hoog\n",
       "regel 4: veld nummer: niet van 0 tot 65535: \"70000\""},
      {"DTLEV", "nummer;naam\n1;\"twee\nregels\"\n2;dertig tekens is het meeste wat er in gaat\n",
       "regel 4: veld naam: langer dan 30 tekens"},
      {"DTLEV", "nummer;naam\n1;\xE4\xB8\xAD\n", "veld naam: tekens buiten codetabel 850"},
      {"DTLEV", "nummer;naam\n1;a\n1;b\n",
       "regel 3: veld sleutel lvnr: staat al op een eerdere regel"},
      {"DTLEV", "nummer;nam\n1;a\n", "regel 2: veld nam: DTLEV heeft dat veld niet"},
      {"DTLEV", "naam\na\n", "veld nummer: ontbreekt"},
      {"DTLEV", "nummer;naam\n1\n", "regel 2: 1 velden onder 2 kolommen"},
      {"DTLEV", "nummer;naam\n1;\"open\n", "aanhalingsteken wordt niet gesloten"},
      {"DTLEV", "", "er staat niets in"},
      {"DTSER", "artgroep;kleur;volgnr;datum_creatie\n1;1;1;31-02-2026\n",
       "veld datum_creatie: geen datum DD-MM-JJJJ: \"31-02-2026\""},
      {"DTSER", "artgroep;kleur;volgnr;verkoopprijs\n1;1;1;12.5\n",
       "veld verkoopprijs: geen getal met 2 cijfers achter de punt"},
      {"DTSER", "artgroep;kleur;volgnr;maten\n1;1;1;0-96\n",
       "veld maten: nummers lopen van 0 tot 95"},
      {"DTSER", "artgroep;kleur;volgnr;blok1\n1;1;1;0\n", "veld blok1: is van een andere serie"},
      {"DTLEV", "[{\"nummer\":1,\"naam\":\"a\"},\n {\"nummer\":2,\n  \"naam\":3.5}]",
       "regel 2: veld naam: geen tekst of geheel getal"},
      {"DTLEV", "[{\"nummer\":1,\"naam\":\"a\"},\n{\"nummer\":", "regel 2: geen object in JSON"},
      {"DTDCIF", "vanfil;naarfil;datum;code;soort\n1;2;15-03-2026;;0\n", "veld code: is leeg"},
      {"DTDCIF", "vanfil;naarfil;datum;code;soort\n1;2;15-03-2026;1;2\n",
       "veld soort: 0 verzenden, 1 ontvangen"},
      {"DTDCIF", "vanfil;naarfil;code;soort\n1;2;1;0\n", "veld datum: ontbreekt"},
  };
  const std::string lev = bytes_van(pad("DTLEV.TXT")), serie = bytes_van(pad("DTSER.TXT"));
  const std::string dc = bytes_van(pad(DC_BESTAND));
  for (const Geval& g : GEVALLEN) {
    const Uitkomst u = in_tekst(g.tabel, g.tekst);
    EXPECT_EQ(u.status, 1) << g.tekst;
    EXPECT_NE(u.tekst.find("winkel: " + tekst + ": regel "), std::string::npos) << u.tekst;
    EXPECT_NE(u.tekst.find(g.soll), std::string::npos) << u.tekst;
  }
  EXPECT_TRUE(lev == bytes_van(pad("DTLEV.TXT")) && serie == bytes_van(pad("DTSER.TXT")));
  EXPECT_TRUE(dc == bytes_van(pad(DC_BESTAND)));
  EXPECT_EQ(winkel("export -C " + keten + " DTSYS").tekst, "winkel: DTSYS: is geen tabel\n");
}

/// A key that another record has would make two of one.
TEST_F(Csv, ASecondKeyOfAnotherRecord) {
  const std::string kop = "vanfil;naarfil;datum;etiket;regel;artgroep\n";
  leeg("DTFIN");
  ASSERT_EQ(in_tekst("DTFIN", kop + "0;1;15-03-2026;4711;0;10100\n").status, 0);
  const std::string was = bytes_van(pad("DTFIN.TXT"));
  const Uitkomst u = in_tekst("DTFIN", kop + "0;1;15-03-2026;4712;0;1\n2;3;15-03-2026;4711;0;1\n");
  EXPECT_NE(u.tekst.find("regel 3: veld sleutel key2: is van een ander record"), std::string::npos)
      << u.tekst;
  EXPECT_EQ(bytes_van(pad("DTFIN.TXT")), was);
}

TEST_F(Csv, TransactionsGoBehindWhatStandsThere) {
  const std::string was = bytes_van(pad(DC_BESTAND));
  ASSERT_GT(was.size(), 40u * 28);
  for (const char* vorm : {"", "--json"}) {
    ASSERT_EQ(uit("DTDCIF", vorm).status, 0);
    fs::remove(pad(DC_BESTAND));
    EXPECT_EQ(in("DTDCIF").status, 0);
    EXPECT_TRUE(bytes_van(pad(DC_BESTAND)) == was);
  }
  const std::string een =
      "vanfil;naarfil;datum;code;soort;stuks;nummer\n1;2;15-03-2026;2000000000015;1;;20000011\n";
  zet_bytes(pad(DC_BESTAND), std::string(28, '\1') + std::string(28, '\0') + "half");
  EXPECT_EQ(in_tekst("DTDCIF", een).tekst, "DTDCIF: 1 toegevoegd\n");
  const std::string nu = bytes_van(pad(DC_BESTAND));
  ASSERT_EQ(nu.size(), 3u * 28);
  DcRegel r;
  memcpy(&r, nu.data() + 56, sizeof r);
  EXPECT_EQ(r.vanfil, 1);
  EXPECT_EQ(r.datum, date_number("15032026"));
  EXPECT_EQ(std::string(r.code, 13), "2000000000015");
  EXPECT_EQ(r.soort, DC_ONTVANGEN);
  EXPECT_EQ(r.stuks, DC_GEEN_AANTAL);
  EXPECT_EQ(r.nummer, 20000011u);
  zet_bytes(pad(DC_BESTAND), nu.substr(28));  // a line that was deleted, and the new one
  ASSERT_EQ(uit("DTDCIF").status, 0);
  EXPECT_EQ(bytes_van(tekst), een);

  Agent ander([this](const std::string&) {
    fs::current_path(keten);
    session_terminal = 5;
    int32_t n = 1;
    iotab('O', &n, nullptr, SYS_RECORDS);
    return std::string(vw_claim(2, false) ? "ja" : "nee");
  });
  ASSERT_EQ(ander.ask("claim"), "ja");
  EXPECT_EQ(in_tekst("DTDCIF", een).status, 3);
  EXPECT_EQ(bytes_van(pad(DC_BESTAND)), nu.substr(28));
}

/// Any bytes of a field come back, by the forms alone.
TEST(CsvVorm, EveryValueOfEveryField) {
  for (const TabelDef& def : tabel_alle()) {
    const std::vector<CsvKolom> kolommen = csv_kolommen(velden_van(def.name));
    for (int vul : {0, 1, 65, 127, 255}) {
      const std::vector<uint8_t> rec(static_cast<size_t>(def.lengte), static_cast<uint8_t>(vul));
      for (const CsvKolom& k : kolommen) {
        if (k.veld->soort == VeldSoort::verhuld) continue;
        std::vector<uint8_t> terug(rec.size(), static_cast<uint8_t>(vul == 0 ? 9 : 0));
        EXPECT_EQ(csv_zet(k, csv_waarde(k, rec), terug), "") << def.name << " " << k.naam;
        EXPECT_TRUE(std::equal(rec.begin() + static_cast<ptrdiff_t>(k.plaats()),
                               rec.begin() + static_cast<ptrdiff_t>(k.plaats() + k.breedte()),
                               terug.begin() + static_cast<ptrdiff_t>(k.plaats())))
            << def.name << " " << k.naam << " " << vul;
      }
    }
  }
}

}  // namespace
