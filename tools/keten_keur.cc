// The self-check of a chain: what the tables say of each other, read back from the files.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"
#include "tools/keten.h"
#include "tools/winkel.h"

namespace {

constexpr size_t MELDINGEN_MEEST = 20;

struct NrHash {
  size_t operator()(const Serienr& n) const noexcept {
    const uint64_t een = n.artgroep * 0x9E3779B97F4A7C15u;
    return static_cast<size_t>(een ^ (uint64_t{n.kleur} << 40 | uint64_t{n.volgnr} << 20));
  }
};
struct Telling {
  std::array<uint32_t, 5> boek{}, geteld{};
  int32_t eerste = -1, blokken = 0, laatsten = 0;
  bool eerste_gezien = false;
};
using Series = std::unordered_map<Serienr, Telling, NrHash>;

struct Keur {
  Series series;
  std::unordered_set<uint32_t> onderweg;  // labels of DTGO not met yet
  int32_t vrij = 0;
  std::vector<std::string> fouten;

  void fout(std::string tekst) {
    if (fouten.size() < MELDINGEN_MEEST) fouten.push_back(std::move(tekst));
  }
};

/// Live records in slot order.
template <class R, class Doe>
void elk(const char* naam, const Doe& doe) {
  ICB* icb = IXOPEN(naam, IX_LEES);
  R rec{};
  while (IXSEQ(icb, &rec)) doe(rec);
  IXCLOSE(icb);
}

void lees_series(Keur* k) {
  elk<DtSer>("DTSER", [k](const DtSer& s) {
    Telling& t = k->series[s.nr];
    t.boek = {0, s.besteld, s.voorraad, s.verkocht, s.correcties};
    t.eerste = s.blok1;
  });
  elk<DtGo>("DTGO", [k](const DtGo& g) { k->onderweg.insert(g.etiket); });
}

void keur_blok(Keur* k, int32_t nummer, const EtiBlok& blok) {
  if (blok.nr == Serienr{}) {
    ++k->vrij;
    return;
  }
  const auto gevonden = k->series.find(blok.nr);
  if (gevonden == k->series.end()) {
    k->fout(fmt::format("DTETI.TXT: blok {} is van geen serie", nummer));
    return;
  }
  Telling& t = gevonden->second;
  ++t.blokken;
  t.laatsten += blok.volgende == -1 ? 1 : 0;
  t.eerste_gezien = t.eerste_gezien || nummer == t.eerste;
  for (int slot = 0; slot < ETI_SLOTS; ++slot) {
    const uint32_t status = blok.woord[slot][2] % 10;
    if (status == ETI_VRIJ) continue;
    ++t.geteld[std::min<uint32_t>(status, 4)];
    k->onderweg.erase(static_cast<uint32_t>(nummer) * ETI_SLOTS + static_cast<uint32_t>(slot) + 1);
  }
}

void lees_etiketten(Keur* k) {
  constexpr size_t PER = 170;
  std::vector<EtiBlok> stuk(PER);
  const int fd = io_open("DTETI.TXT", false);
  if (fd < 0) winkel_fout_errno("DTETI.TXT");
  const int64_t grootte = io_grootte(fd);
  for (int64_t plaats = 0; plaats < grootte;) {
    const int64_t n = io_lees(fd, stuk.data(), PER * sizeof(EtiBlok), plaats);
    if (n <= 0) winkel_fout_errno("DTETI.TXT");
    for (int64_t i = 0; i < n / static_cast<int64_t>(sizeof(EtiBlok)); ++i)
      keur_blok(k, static_cast<int32_t>(plaats / static_cast<int64_t>(sizeof(EtiBlok)) + i),
                stuk[static_cast<size_t>(i)]);
    plaats += n;
  }
  io_close(fd);
}

void vergelijk(Keur* k) {
  for (const auto& [nr, t] : k->series) {
    if (t.boek != t.geteld)
      k->fout(fmt::format("DTSER: {} heeft andere tellers dan etiketten", serie_tekst(nr)));
    const bool keten = t.eerste == -1 ? t.blokken == 0 : t.eerste_gezien && t.laatsten == 1;
    if (!keten) k->fout(fmt::format("DTETI.TXT: de ketting van {} is niet heel", serie_tekst(nr)));
  }
  for (const uint32_t etiket : k->onderweg)
    k->fout(fmt::format("DTGO: etiket {} bestaat niet", etiket));
}

void keur_tabellen(Keur* k) {
  for (const TabelDef& def : tabel_alle()) {
    const int vrij = IXCHECK(def.name);
    if (vrij < 0) k->fout(fmt::format("{}: index en records passen niet bij elkaar", def.name));
    if (vrij > 0) k->fout(fmt::format("{}: {} vrije records", def.name, vrij));
  }
}

void keur_vrij(Keur* k) {
  uint8_t bytes[4 * 64] = {};
  const int fd = io_open("DTSYS.TXT", false);
  if (fd < 0 || io_lees(fd, bytes, sizeof bytes, 0) != static_cast<int64_t>(sizeof bytes))
    winkel_fout_errno("DTSYS.TXT");
  io_close(fd);
  SysRec4 vier;
  std::copy_n(bytes + 3 * 64, sizeof vier, reinterpret_cast<uint8_t*>(&vier));
  if (vier.vrij_aantal != k->vrij)
    k->fout(fmt::format("DTETI.TXT: {} vrije blokken, {} geteld", vier.vrij_aantal, k->vrij));
}

}  // namespace

std::vector<std::string> keten_keur() {
  Keur k;
  lees_series(&k);
  lees_etiketten(&k);
  vergelijk(&k);
  keur_tabellen(&k);
  keur_vrij(&k);
  return k.fouten;
}
