// The signal list as whole text: one line, or a move, for each transaction, whatever its bytes.
#include "tests/support/dc_proef.h"

namespace {

struct DcLijst : DcProef {
  int32_t gone = 0;

  /// Labels 1 to 14 and pieces of JAS, one for each code.
  std::vector<DcRegel> alle_codes() {
    std::vector<DcRegel> r;
    met([&] {
      serie(WEG, "WEG", "verdwenen");
      gone = leg(WEG, ETI_VOORRAAD, 1);
      proef_weg(dtser, proef_serie(WEG));
      proef_ean("8712345678906", 'M', ROK, 2);
      proef_ean("8700000000013", 'A', ROK, 2);
      proef_ean("8711111111119", 'M', JAS, 1);
      proef_ean("8722222222228", 'M', JAS, 2);

      r.push_back(zend(1, 9, code(1)));
      r.push_back(zend(1, 2, code(9999)));
      r.push_back(zend(1, 2, code(leg(ROK, ETI_NOTA, 1))));
      r.push_back(ontvang(1, 2, code(leg(ROK, ETI_VERKOPEN, 2))));
      r.push_back(ontvang(1, 2, code(weg(ROK, ETI_VERKOPEN, 1, 2, DAG))));
      r.push_back(ontvang(1, 2, code(weg(ROK, ETI_CORRECTIES, 1, 2, DAG + 9))));
      r.push_back(zend(1, 2, code(leg(ROK, ETI_VOORRAAD, 3)), DC_GEEN_AANTAL, 21234569));
      r.push_back(zend(1, 2, code(leg(ROK, ETI_VOORRAAD, 2))));
      if (transit) {
        r.push_back(zend(1, 2, code(onderweg(ROK, 1, 3))));
        r.push_back(zend(1, 2, code(onderweg(ROK, 1, 2))));
        r.push_back(ontvang(1, 2, code(onderweg(ROK, 1, 3))));
      }
      r.push_back(zend(1, 2, code(gone)));
      // Missed at stocktaking in branch 3: two remarks on one line.
      const auto inventaris = [](Etiket& e) { e.vrkdat = 45001; };
      r.push_back(zend(1, 2, code(leg(ROK, ETI_CORRECTIES, 3, 1, inventaris))));
      r.push_back(zend(1, 2, code(leg(JAS, ETI_VOORRAAD, 1, 3))));
      r.push_back(zend(1, 2, code(leg(JAS, ETI_VOORRAAD, 1, 2))));
      weg(JAS, ETI_VERKOPEN, 1, 2, DAG, 0, 1);
      r.push_back(ontvang(1, 2, "8711111111119", 2));
      r.push_back(ontvang(1, 2, "8711111111119", 3, 21234569));
      r.push_back(zend(1, 2, "8711111111119", 4));
      r.push_back(zend(1, 2, "8711111111119", 5));
      r.push_back(zend(1, 2, "8712345678906", 1));
      r.push_back(zend(1, 2, "8799999999995", 1));
      r.push_back(zend(1, 2, "8700000000013", 1));
    });
    return r;
  }
};

/// Without the line that holds company, date and page.
std::string onder_kop(const std::string& lijst) { return lijst.substr(lijst.find('\n') + 1); }

TEST_F(DcLijst, EveryCodeWithTransit) {
  bestand(alle_codes());
  const std::string lijst = loop(false);
  EXPECT_NE(lijst.find(" SIGNAALLIJST TE VERWERKEN DC-TRANSACTIES (VOORRAADBEHEER) "),
            std::string::npos);
  EXPECT_EQ(onder_kop(lijst), R"(
fil --> fil      datum      nummer  artikel        serienummer   stk  opmerking
------------------------------------------------------------------------------------------------------------------------------------
  1       9 verz 24-04-23           00000001                          AFK  Ongeldig filiaalnummer
  1       2 verz 24-04-23           00009999       ???????            AFK  Onbekend etiketnummer
  1       2 verz 24-04-23           00000001       10100.30.3         AFK  Serie onbekend (check!)
  1       2 verz 24-04-23           00000021       10100.20.2         AFK  Maat L   Serie met maatregistratie, geen EAN-code gevonde
  1       2 verz 24-04-23           8722222222228  10100.20.2         SGN  Etiket 00000022 Serie met maatregistratie
  1       2 verz 24-04-23           8712345678906  10100.10.1      1  AFK  Geen maatregistratie. Maat M   niet verplaatst
  1       2 verz 24-04-23           8799999999995                  1  AFK  EAN-code onbekend
  1       2 verz 24-04-23           8700000000013                  1  AFK  EAN-code van klein artikel
  1       2 verz 24-04-23           00000011       10100.10.1      1  AFK  Ongeldige status NOT fil 1
  1       2 ontv 24-04-23           00000012       10100.10.1      1  AFK  Ongeldige status VRK fil 2 04-05-23
  1       2 ontv 24-04-23           00000013       10100.10.1      1  SGN  Verkocht in filiaal 2 d.d. 24-04-23
  1       2 ontv 24-04-23           00000014       10100.10.1      1  SGN  Gecorrigeerd in filiaal 2 d.d. 03-05-23
  1       2 verz 24-04-23 21234569  00000015       10100.10.1      1  SGN  Afwijkend verzend-filiaal (3)
  1       2 verz 24-04-23           00000016       10100.10.1      1  AFK  Reeds aanwezig in filiaal
  1       2 verz 24-04-23           00000017       10100.10.1      1  AFK  Reeds onderweg van 1 naar 3
  1       2 verz 24-04-23           00000018       10100.10.1      1  AFK  Onderweg van 1 naar 2
  1       2 ontv 24-04-23           00000019       10100.10.1      1  SGN  Onderweg van 1 naar 3
  1       2 verz 24-04-23           00000020       10100.10.1      1  SGN  Inventarisatie fil 3 16-03-23
                                                                   1  SGN  Afwijkend verzend-filiaal (3)
  1       2 ontv 24-04-23 21234569  8711111111119  10100.20.2      3  AFK  Maat S   3 stuks niet onderweg met dit documentnummer
  1       2 ontv 24-04-23           8711111111119  10100.20.2      2  SGN  Maat S   1 stuks niet meer op voorraad
  1       2 ontv 24-04-23           8711111111119  10100.20.2      2  AFK  Maat S   1 stuks niet onderweg zonder documentnummer
  1       2 verz 24-04-23           8711111111119  10100.20.2         AFK  Maat S   9 stuks te weinig voorraad
)");
}

TEST_F(DcLijst, EveryCodeWithoutTransit) {
  transit = false;
  bestand(alle_codes());
  const std::string lijst = loop(true);
  EXPECT_NE(lijst.find(" SIGNAALLIJST VERWERKTE DC-TRANSACTIES (VOORRAADBEHEER) "),
            std::string::npos);
  // Above these stands what does not depend on it.
  EXPECT_EQ(lijst.substr(lijst.find("00000011")),
            R"(00000011       10100.10.1      1  AFK  Ongeldige status NOT fil 1
  1       2 ontv 24-04-23           00000012       10100.10.1      1  AFK  Ongeldige status VRK fil 2 04-05-23
  1       2 ontv 24-04-23           00000013       10100.10.1      1  AFK  Ongeldige status VRK fil 2 24-04-23
  1       2 ontv 24-04-23           00000014       10100.10.1      1  AFK  Ongeldige status COR fil 2 03-05-23
  1       2 verz 24-04-23 21234569  00000015       10100.10.1      1  SGN  Afwijkend verzend-filiaal (3)
  1       2 verz 24-04-23           00000016       10100.10.1      1  AFK  Reeds aanwezig in filiaal
  1       2 verz 24-04-23           00000017       10100.10.1      1  SGN  Inventarisatie fil 3 16-03-23
                                                                   1  SGN  Afwijkend verzend-filiaal (3)
  1       2 verz 24-04-23           8711111111119  10100.20.2         AFK  Maat S   9 stuks te weinig voorraad
  1       2 ontv 24-04-23           8711111111119  10100.20.2         AFK  Maat S   5 stuks te weinig voorraad
)");
}

TEST_F(DcLijst, AListOnlyRunChangesNoFile) {
  for (const bool aan : {true, false}) {
    transit = aan;
    std::vector<DcRegel> regels = alle_codes();
    // A chain that only works out when each step is seen by the next.
    int32_t reiziger = 0;
    met([&] { reiziger = leg(ROK, ETI_VOORRAAD, 0); });
    const std::string c = code(reiziger);
    for (const DcRegel& r : {zend(0, 1, c), ontvang(0, 1, c), zend(1, 4, c), ontvang(1, 4, c)})
      regels.push_back(r);
    bestand(regels);
    const auto voor = bestanden();
    const std::string eerste = loop(false);
    EXPECT_TRUE(bestanden() == voor) << "transit " << aan;
    EXPECT_EQ(loop(false), eerste);
    // With the administration off the label is there at once, and each receive says so.
    EXPECT_EQ(eerste.find(c + "       10100.10.1      1  AFK  Reeds aanwezig") == std::string::npos,
              aan);
    EXPECT_EQ(regels_van(loop(true)), regels_van(eerste)) << "the same remarks when it writes";
    EXPECT_EQ(staat(reiziger), "4");
    EXPECT_FALSE(dc_aanwezig());
  }
}

TEST_F(DcLijst, AnyBytesAreALineOfTheList) {
  std::string bytes(28, '\0');  // a deleted line
  DcRegel r = zend(1, 2, "");
  memcpy(r.code, "\x1b[2J\n\f\x7fGr\x81n\r", 12);
  r.nummer = UINT32_MAX;
  r.soort = 77;
  for (const DcRegel& een : {r, zend(5, 6, "8712345678906", 0), zend(0, 5, "00000000", 70000)})
    bytes.append(reinterpret_cast<const char*>(&een), sizeof een);
  bytes += std::string(27, 'x');  // a line that is not whole is none
  zet_bytes(DC_BESTAND, bytes);
  EXPECT_EQ(regels_van(loop(false)),
            "  0       0 verz   -  -                                            0  AFK  EAN-code "
            "onbekend\n"
            "  1       2 ontv 24-04-23       -1  .[2J...Gr\x81n.                      AFK  "
            "EAN-code onbekend\n"
            "  5       6 verz 24-04-23           8712345678906                  0  AFK  Ongeldig "
            "filiaalnummer\n"
            "  0       5 verz 24-04-23           00000000                   70000  AFK  EAN-code "
            "onbekend\n");
  for (const size_t n : {size_t{1}, size_t{27}}) {
    zet_bytes(DC_BESTAND, std::string(n, 'x'));
    EXPECT_EQ(loop(false), "");
  }
}

TEST_F(DcLijst, PagesAndEndlessPaper) {
  bestand(std::vector<DcRegel>(12, zend(0, 9, "1")));
  const auto koppen = [this](int bladzij) {
    const std::string lijst = loop(false, bladzij);
    int n = 0;
    for (size_t p = 0; (p = lijst.find("fil --> fil", p)) != std::string::npos; ++p) ++n;
    return n;
  };
  EXPECT_EQ(koppen(10), 2) << "six lines under four of head";
  EXPECT_EQ(koppen(0), 1);
  EXPECT_EQ(koppen(9999), 1);
}

}  // namespace
