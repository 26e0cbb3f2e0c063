// A chain with a series of labels and one that counts by size, the file of what tills report, and a
// run over it without a screen.
#pragma once

#include <cstring>
#include <filesystem>
#include <map>
#include <vector>

#include "isam/ix.h"
#include "prt/prt.h"
#include "sub/datacom.h"
#include "sub/muteren.h"
#include "tests/support/adv_keten.h"
#include "tests/support/bestand.h"

struct DcProef : AdvKeten {
  static constexpr uint16_t DAG = 45040;
  bool transit = true;

  void SetUp() override {
    AdvKeten::SetUp();
    met([] { met_maten(JAS); });
  }
  /// Work in the open chain; the transit administration and the till link as the test has them.
  void met(const std::function<void()>& doe) {
    met_keten([&] {
      sys_rec20.transit = transit ? 1 : 0;
      sys_rec1.opties = sys_rec1.seriekoppeling = 1;
      doe();
    });
  }

  // What there is --------------------------------------------------------------------------------

  static int32_t leg(
      const Serienr& nr, uint8_t status, uint8_t filiaal, uint8_t maat = 1,
      const std::function<void(Etiket&)>& anders = [](Etiket&) {}) {
    const int32_t nummer = stuk(nr, status, maat, filiaal);
    proef_wijzig(nummer, anders);
    return nummer;
  }
  /// On its way, with the records of its send.
  static int32_t onderweg(const Serienr& nr, uint8_t van, uint8_t naar, uint32_t opdracht = 0,
                          uint8_t maat = 1) {
    const int32_t nummer = leg(nr, ETI_VOORRAAD, van, maat);
    Etiket e = proef_lees(nummer);
    EXPECT_TRUE(serie_wacht(nr));
    zend_etiket(nummer, &e, {van, naar, opdracht, DAG - 5, 0}, false);
    serie_los();
    return nummer;
  }
  /// Left one branch and is sold (or corrected) in the other, its transit still open.
  static int32_t weg(const Serienr& nr, uint8_t status, uint8_t van, uint8_t naar, uint16_t datum,
                     uint32_t opdracht = 0, uint8_t maat = 1) {
    const int32_t nummer = leg(nr, status, naar, maat, [&](Etiket& e) {
      e.vrkdat = datum;
      e.reden = status == ETI_CORRECTIES ? 3 : 0;
    });
    EXPECT_TRUE(serie_wacht(nr));
    go_nieuw(nummer, {van, naar, opdracht, DAG - 5, 0});
    serie_los();
    return nummer;
  }

  // What is reported -----------------------------------------------------------------------------

  static std::string code(int32_t etiket) { return str_format("%08ld", etiket); }
  static DcRegel regel(uint8_t soort, int van, int naar, const std::string& code,
                       uint32_t stuks = DC_GEEN_AANTAL, uint32_t nummer = 0, uint16_t datum = DAG) {
    DcRegel r{};
    r.vanfil = static_cast<uint8_t>(van);
    r.naarfil = static_cast<uint8_t>(naar);
    r.datum = datum;
    veld_zet(r.code, sizeof r.code, code);
    r.soort = soort;
    r.stuks = stuks;
    r.nummer = nummer;
    return r;
  }
  static DcRegel zend(int van, int naar, const std::string& code, uint32_t stuks = DC_GEEN_AANTAL,
                      uint32_t nummer = 0) {
    return regel(DC_ZENDEN, van, naar, code, stuks, nummer);
  }
  static DcRegel ontvang(int van, int naar, const std::string& code,
                         uint32_t stuks = DC_GEEN_AANTAL, uint32_t nummer = 0) {
    return regel(DC_ONTVANGEN, van, naar, code, stuks, nummer);
  }
  static void bestand(const std::vector<DcRegel>& regels) {
    zet_bytes(DC_BESTAND, std::string(reinterpret_cast<const char*>(regels.data()),
                                      regels.size() * sizeof(DcRegel)));
  }

  // The run --------------------------------------------------------------------------------------

  /// In the open chain; the list without the line of the company, date and page.
  static std::string lijst_van(bool schrijven, int bladzij = 0) {
    FILE* f = tmpfile();
    prt_open_stil(f, 132, bladzij, false);
    dc_loop(schrijven);
    print_close("");
    rewind(f);
    std::string uit(1 << 22, '\0');
    uit.resize(fread(uit.data(), 1, uit.size(), f));
    fclose(f);
    return uit;
  }
  std::string loop(bool schrijven, int bladzij = 0) {
    std::string uit;
    met([&] { uit = lijst_van(schrijven, bladzij); });
    return uit;
  }
  /// The lines behind the rule.
  static std::string regels_van(const std::string& lijst) {
    const size_t streep = lijst.find("-----\n");
    return streep == std::string::npos ? lijst : lijst.substr(streep + 6);
  }
  std::string verwerk(const std::vector<DcRegel>& regels) {
    bestand(regels);
    return regels_van(loop(true));
  }

  // What it came to ------------------------------------------------------------------------------

  /// "2", or "1>2" on its way; "V", "C", "N" behind the branch when it is not in stock.
  static std::string staat(const Etiket& e) {
    std::string uit = str_format("%d", e.filiaal);
    if (e.onderweg != 0) uit += str_format(">%d", e.doel);
    if (e.status != ETI_VOORRAAD) uit += "?N?VC"[e.status];
    return uit;
  }
  std::string staat(int32_t nummer) {
    std::string uit;
    met([&] { uit = staat(proef_lees(nummer)); });
    return uit;
  }
  template <class Rec>
  std::vector<Rec> alles(ICB*& tabel) {
    std::vector<Rec> uit;
    met([&] { uit = proef_inhoud<Rec>(tabel); });
    return uit;
  }
  /// All labels of a series.
  static void elk(const Serienr& nr, const std::function<void(int32_t, const Etiket&)>& doe) {
    int32_t nummer = proef_serie(nr).blok1;
    Etiket e{};
    for (bool er = nummer >= 0 && ioeti('F', &nummer, &e); er; er = ioeti('N', &nummer, &e))
      doe(nummer, e);
  }
  /// All files of the chain by name.
  static std::map<std::string, std::string> bestanden() {
    std::map<std::string, std::string> uit;
    for (const auto& e : std::filesystem::directory_iterator("."))
      uit[e.path().filename().string()] = bytes_van(e.path().string());
    return uit;
  }
  static void zet_bestanden(const std::map<std::string, std::string>& alle) {
    for (const auto& e : std::filesystem::directory_iterator(".")) std::filesystem::remove(e);
    for (const auto& [naam, bytes] : alle) zet_bytes(naam, bytes);
  }
  static bool tabellen_heel() {
    for (const char* naam : {"DTGO", "DTFIN", "DTIO", "DTSER"})
      if (IXCHECK(naam) < 0) return false;
    return true;
  }
};
