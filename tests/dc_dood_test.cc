// The run with a process that dies at each of its writes, and the same command again: it ends where
// the first would have.
#include <algorithm>
#include <map>

#include "tests/support/dc_proef.h"
#include "tests/support/sterven.h"

namespace {

constexpr const char* TABELLEN[] = {"DTGO", "DTFIN", "DTIO", "DTSER"};

struct DcDood : DcProef {
  std::vector<int32_t> etiketten;
  std::map<std::string, std::string> begin;

  void vul() {
    std::vector<DcRegel> r;
    met([&] {
      const auto meld = [&](DcRegel regel, int32_t n) {
        veld_zet(regel.code, sizeof regel.code, code(n));
        r.push_back(regel);
        etiketten.push_back(n);
      };
      meld(zend(1, 2, ""), leg(ROK, ETI_VOORRAAD, 1));
      meld(zend(1, 2, ""), leg(ROK, ETI_VOORRAAD, 3));
      if (transit) {
        meld(ontvang(1, 2, ""), onderweg(ROK, 1, 2));
        meld(ontvang(1, 2, ""), onderweg(ROK, 1, 3));
        meld(ontvang(1, 2, ""), weg(ROK, ETI_VERKOPEN, 1, 2, DAG));
      }
      meld(ontvang(1, 4, ""), leg(ROK, ETI_VOORRAAD, 1));
      meld(zend(1, 2, ""), leg(ROK, ETI_CORRECTIES, 1));
      proef_ean("8711111111119", 'M', JAS, 1);
      for (int i = 0; i < 6; ++i) leg(JAS, ETI_VOORRAAD, 1);
      if (transit) {
        for (int i = 0; i < 3; ++i) onderweg(JAS, 1, 3);
        weg(JAS, ETI_VERKOPEN, 1, 3, DAG);
        r.push_back(ontvang(1, 3, "8711111111119", 4));
      }
      r.push_back(zend(1, 2, "8711111111119", 2));
      r.push_back(ontvang(1, 4, "8711111111119", 1));
    });
    bestand(r);
    begin = bestanden();
  }
  template <class Rec>
  void voeg_toe(std::string& uit, ICB* tabel) {
    for (const Rec& rec : proef_inhoud<Rec>(tabel))
      if (std::ranges::count(etiketten, static_cast<int32_t>(rec.etiket)) != 0)
        uit.append(reinterpret_cast<const char*>(&rec), sizeof rec);
  }
  /// The labels and their records, and where the pieces of JAS are with all that was booked of
  /// them: one piece is as good as another.
  std::string stand() {
    std::string uit;
    met([&] {
      for (const int32_t n : etiketten) uit += staat(proef_lees(n)) + " ";
      voeg_toe<DtGo>(uit, dtgo);
      voeg_toe<DtFin>(uit, dtfin);
      voeg_toe<DtIo>(uit, dtio);
      uit += str_format(" %d", proef_serie(ROK).datum_mutatie);
      std::map<std::string, int> stuks;
      elk(JAS, [&](int32_t, const Etiket& e) { ++stuks[staat(e)]; });
      for (const auto& [waar, n] : stuks) uit += str_format(" %s: %d", waar, n);
      uit += str_format(" go %d fin %d io %d", dtgo->record_count, dtfin->record_count,
                        dtio->record_count);
    });
    return uit;
  }
  void op_elke_schrijfbeurt() {
    vul();
    loop(true);
    const std::string soll = stand();
    for (int n = 0;; ++n) {
      SCOPED_TRACE("dies at write " + std::to_string(n));
      ASSERT_LT(n, 2000);
      zet_bestanden(begin);
      const bool heel = sterft_bij(n, [this] { loop(true); });
      EXPECT_EQ(dc_aanwezig(), !heel);
      for (const char* naam : TABELLEN)
        EXPECT_TRUE(bytes_van(std::string(naam) + ".INX")[45] == 0 || IXBLDIX(naam) == 1);
      loop(true);
      EXPECT_TRUE(stand() == soll);
      EXPECT_TRUE(tabellen_heel());
      EXPECT_FALSE(dc_aanwezig() || file_exists("TP07E.INX") || file_exists("TP07M.TXT"));
      ASSERT_FALSE(HasFailure());
      if (heel) break;
    }
  }
};

TEST_F(DcDood, AtEachWrite) { op_elke_schrijfbeurt(); }

TEST_F(DcDood, AtEachWriteWithoutTransit) {
  transit = false;
  op_elke_schrijfbeurt();
}

}  // namespace
