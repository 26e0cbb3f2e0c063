// Writing a demo chain: each table is made empty by the engine, its records are appended in bulk,
// and its index is built over them. One series is in memory at a time.
#include <cstring>
#include <type_traits>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix.h"
#include "main/iotab.h"
#include "sub/tabeldef.h"
#include "tools/keten.h"
#include "tools/winkel.h"

namespace {

constexpr size_t STUK = 65536;  // larger writes make later ones of a block dearer

/// Appends to a file in pieces.
struct Schrijver {
  explicit Schrijver(const char* n) : naam(n), fd(io_open(n, true)) {
    if (fd < 0) winkel_fout_errno(naam);
    stuk.reserve(STUK + 1024);
  }
  ~Schrijver() {
    schrijf();
    io_close(fd);
  }
  Schrijver(const Schrijver&) = delete;
  Schrijver& operator=(const Schrijver&) = delete;

  template <class R>
  void zet(const R& rec) {
    static_assert(std::is_trivially_copyable_v<R>);
    const auto* bytes = reinterpret_cast<const uint8_t*>(&rec);
    stuk.insert(stuk.end(), bytes, bytes + sizeof rec);
    if (stuk.size() >= STUK) schrijf();
    ++aantal;
  }
  template <class R>
  void zet_alle(const std::vector<R>& rijen) {
    for (const R& r : rijen) zet(r);
  }
  void schrijf() {
    if (io_schrijf(fd, stuk.data(), stuk.size(), plaats) != static_cast<int64_t>(stuk.size()))
      winkel_fout_errno(naam);
    plaats += static_cast<int64_t>(stuk.size());
    stuk.clear();
  }

  std::string naam;
  int fd;
  int64_t plaats = 0, aantal = 0;
  std::vector<uint8_t> stuk;
};

template <class R>
void tabel(const char* naam, const std::vector<R>& rijen) {
  Schrijver(str_format("%s.TXT", naam).c_str()).zet_alle(rijen);
}

struct Stromen {
  Schrijver ser{"DTSER.TXT"}, eti{"DTETI.TXT"}, pick{"DTPICK.TXT"}, go{"DTGO.TXT"},
      fin{"DTFIN.TXT"}, io{"DTIO.TXT"}, aanv{"DTAANV.TXT"}, ean{"DTEAN.TXT"}, ipa{"DTIPA.TXT"},
      ipg{"DTIPG.TXT"};

  void zet(const SerieInhoud& s) {
    ser.zet(s.serie);
    for (const KetenBlok& b : s.blokken) eti.zet(b.blok);
    pick.zet_alle(s.regels);
    go.zet_alle(s.onderweg);
    fin.zet_alle(s.financieel);
    io.zet_alle(s.ontvangsten);
    aanv.zet_alle(s.aanvul);
    ean.zet_alle(s.eans);
    ipa.zet_alle(s.sets);
    ipg.zet_alle(s.groepen);
  }
};

KetenTelling schrijf_series(const Keten& k, KetenStand* stand) {
  Stromen uit;
  SerieInhoud inhoud;
  KetenTelling t{};
  for (size_t i = 0; i < k.series.size(); ++i) {
    keten_serie(k, i, stand, &inhoud);
    uit.zet(inhoud);
    t.etiketten += static_cast<int64_t>(inhoud.etiketten.size());
  }
  t.series = uit.ser.aantal;
  t.blokken = uit.eti.aantal;
  t.regels = uit.pick.aantal;
  t.onderweg = uit.go.aantal;
  t.financieel = uit.fin.aantal;
  t.ontvangsten = uit.io.aantal;
  t.aanvul = uit.aanv.aantal;
  t.eans = uit.ean.aantal;
  t.sets = uit.ipa.aantal;
  return t;
}

void schrijf_stam(const Keten& k) {
  tabel("DTMERK", k.merken);
  tabel("DTLEV", k.leveranciers);
  tabel("DTKLT", k.klanten);
  tabel("DTMAAT", k.maatrecords);
  tabel("DTMTOM", k.maatnamen);
  tabel("DTKOERS", k.koersen);
  tabel("DTDOELGR", k.doelgroepen);
  tabel("INKSYS", k.inksys);
  tabel("DTHMNU", keten_menu(k));
  tabel("DTREL", keten_rechten());
  tabel("DTFILGEG", keten_filialen(k));
  std::vector<DtArt> artikelen;
  for (const KetenArtikel& a : k.artikelen) artikelen.push_back(a.rec);
  tabel("DTART", artikelen);
}

/// The system file comes last: without it the directory is no chain.
void schrijf_systeem(const Keten& k, const KetenStand& stand) {
  std::vector<uint8_t> dtsys = keten_dtsys(k);
  SysRec4 vier{};
  vier.vrij_hoofd = stand.vrij_blok;
  vier.hoogste = stand.blok;
  vier.vrij_aantal = stand.vrije_blokken;
  vier.cijfers = 8;
  std::memcpy(dtsys.data() + 3 * 64, &vier, sizeof vier);
  std::memcpy(dtsys.data() + 4 * 64, &stand.maatcode, sizeof stand.maatcode);
  SysRec9 negen{};
  negen.vrij_hoofd = stand.vrije_groep;
  negen.hoogste = stand.groep;
  std::memcpy(dtsys.data() + 8 * 64, &negen, sizeof negen);
  schrijf_bestand("DTSYS.TXT", dtsys.data(), dtsys.size());
}

}  // namespace

KetenTelling keten_schrijf(const Keten& k) {
  maak_lege_tabellen();
  schrijf_stam(k);
  KetenStand stand;
  const KetenTelling telling = schrijf_series(k, &stand);
  for (const TabelDef& def : tabel_alle())
    if (IXBLDIX(def.name) != 1) winkel_fout(def.name, "de index kan niet gebouwd worden");
  keten_datacom(k);
  schrijf_systeem(k, stand);
  return telling;
}
