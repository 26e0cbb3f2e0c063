// The chained flat files: labels under system record 4, price groups under system record 9.
//
// A chain and the series that it starts from are two files, and a program writes them one after the
// other. So a fault counts only if a second look, a moment later, finds it again.
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <set>

#include "isam/io.h"
#include "main/iotab.h"
#include "sub/ioeti_intern.h"
#include "sub/records.h"
#include "tools/ix_keur.h"

namespace {

struct Descriptors {
  int plat = -1, data = -1, kop = -1;
  bool systeem = false;
  ~Descriptors() {
    for (int fd : {plat, data, kop})
      if (fd >= 0) io_close(fd);
    int32_t nul = 0;
    if (systeem) iotab('C', &nul, nullptr, SYS_RECORDS);
  }
};

bool open(const std::string& pad, int* fd, Verslag* v) {
  *fd = io_open(pad.c_str(), false);
  if (*fd < 0) v->fout({}, fmt::format("{} is niet te openen: {}", pad, systeemfout(errno)));
  return *fd >= 0;
}

}  // namespace

bool plat_kopieer(const PlatBestand& p, int wacht, bool met_index, PlatKopie* uit, Verslag* v) {
  Descriptors d;
  const std::string tabel = p.tabel;
  if (access("DTSYS.TXT", R_OK | W_OK) != 0) {
    v->fout({}, fmt::format("DTSYS.TXT is niet te openen: {}", systeemfout(errno)));
    return false;
  }
  if (!open(p.bestand, &d.plat, v) || !open(tabel + ".TXT", &d.data, v)) return false;
  if (!open(tabel + ".INX", &d.kop, v)) return false;
  int32_t nr = 1;
  d.systeem = iotab('O', &nr, nullptr, SYS_RECORDS);
  nr = p.systeem;
  KopieSlot slot;
  slot.neem = [&] {
    if (!iotab('T', &nr, uit->control, SYS_RECORDS)) return false;  // 'X' would wait for ever
    iotab('X', &nr, uit->control, SYS_RECORDS);  // all zero, so false, in a fresh file
    if (file_lock('E', d.kop, 0, IX_BLOK)) return true;
    iotab('U', &nr, uit->control, SYS_RECORDS);
    return false;
  };
  slot.los = [&] {
    file_lock('U', d.kop, 0, IX_BLOK);
    iotab('U', &nr, uit->control, SYS_RECORDS);
  };
  slot.houder = [&] {
    const pid_t pid =
        slot_houder(iotab_fd(), int64_t{nr - 1} * SYS_RECORDS.lengte, SYS_RECORDS.lengte);
    return pid != 0 ? pid : slot_houder(d.kop, 0, IX_BLOK);
  };
  const KopieBron bronnen[] = {
      {d.plat, &uit->bestand}, {d.data, &uit->tabel}, {d.kop, &uit->index}};
  slot.binnen = [&] {
    if (met_index) kopie_rij_heel(d.kop, &uit->index);
  };
  const size_t aantal = std::size(bronnen) - (met_index ? 0 : 1);
  KopieStand stand = kopieer_onder_slot(std::span(bronnen, aantal), slot, wacht);
  if (stand.vastgehouden) v->noot({}, "het slot is vastgehouden tot de kopie klaar was");
  if (stand.uit == KopieUit::goed) return true;
  stand.bestand = p.bestand;
  v->fout({}, kopie_tekst(stand) + ", niet gekeurd");
  return false;
}

namespace {

template <class T>
T record(const std::vector<uint8_t>& bytes, int64_t nr) {
  T rec;
  memcpy(&rec, bytes.data() + static_cast<size_t>(nr) * sizeof(T), sizeof(T));
  return rec;
}

/// Live records of the table, with their numbers.
template <class T>
std::vector<std::pair<int64_t, T>> levende(const std::vector<uint8_t>& bytes) {
  std::vector<std::pair<int64_t, T>> uit;
  const auto n = static_cast<int64_t>(bytes.size() / sizeof(T));
  for (int64_t i = 0; i < n; ++i)
    if (ix_levend(bytes.data() + static_cast<size_t>(i) * sizeof(T), sizeof(T)))
      uit.emplace_back(i, record<T>(bytes, i));
  return uit;
}

std::string serie(const Serienr& nr) {
  return fmt::format("{}.{}.{}", nr.artgroep, nr.kleur, nr.volgnr);
}

/// Which blocks are in a chain so far; -1 for the free list.
constexpr int64_t LOS = -2, VRIJ = -1;

struct Ketens {
  std::vector<int64_t> van;  // by block: number of the table's record, VRIJ or LOS
  Verslag* v;
  const char* soort;  // what a block is called

  /// False when the chain must not be followed further.
  bool neem(int64_t eigenaar, int64_t vorig, int64_t blok, const std::string& keten) {
    const Plek plek{.blok = vorig};
    if (blok < 0 || blok >= static_cast<int64_t>(van.size())) {
      v->fout(plek, fmt::format("{}: {} {} ligt buiten het bestand", keten, soort, blok));
      return false;
    }
    int64_t& nu = van[static_cast<size_t>(blok)];
    if (nu == eigenaar)
      v->fout(plek, fmt::format("{}: komt terug bij {} {}", keten, soort, blok));
    else if (nu == VRIJ)
      v->fout(plek, fmt::format("{}: {} {} is vrij", keten, soort, blok));
    else if (nu != LOS)
      v->fout(plek, fmt::format("{}: {} {} staat al in een andere keten", keten, soort, blok));
    if (nu != LOS) return false;
    nu = eigenaar;
    return true;
  }

  /// The free list runs to the first number never used.
  int64_t vrije(int32_t hoofd, int32_t hoogste, const auto& volgende) {
    const auto aantal = static_cast<int64_t>(van.size());
    if (hoogste != aantal)
      v->fout({}, fmt::format("{} {}s in het bestand, volgens het systeembestand {}", aantal, soort,
                              hoogste));
    int64_t n = 0, vorig = -1;
    for (int64_t nr = hoofd; nr != hoogste; nr = volgende(nr)) {
      if (!neem(VRIJ, vorig, nr, "vrije lijst")) break;
      vorig = nr;
      ++n;
    }
    return n;
  }

  void losse() {
    for (size_t i = 0; i < van.size(); ++i)
      if (van[i] == LOS) v->fout({.blok = static_cast<int64_t>(i)}, "staat in geen keten");
  }
};

// Labels ------------------------------------------------------------------------------------------

void keur_slots(int64_t blok, const EtiBlok& b, Verslag* v) {
  for (int i = 0; i < ETI_SLOTS; ++i) {
    uint32_t woord[9];
    memcpy(woord, b.woord[i], sizeof woord);
    const int64_t nummer = blok * ETI_SLOTS + i + 1;
    const uint32_t status = woord[2] % 10, maat = (woord[5] & 0xFFFF) / 100;
    const bool leeg = std::all_of(woord, woord + 9, [](uint32_t w) { return w == 0; });
    if (status > ETI_CORRECTIES)
      v->fout({.blok = blok}, fmt::format("etiket {}: status {}", nummer, status));
    else if (status == ETI_VRIJ && !leeg)
      v->noot({.blok = blok}, fmt::format("etiket {}: een vrije plaats is niet leeg", nummer));
    else if (status != ETI_VRIJ && (maat < 1 || maat >= MATEN))
      v->fout({.blok = blok}, fmt::format("etiket {}: maat {}", nummer, maat));
  }
}

void keten_etiketten(const PlatKopie& k, Ketens& ketens, int64_t eigenaar, const DtSer& ser) {
  const std::string naam = "serie " + serie(ser.nr);
  int64_t vorig = -1;
  for (int32_t nr = ser.blok1; nr != -1;) {
    if (nr >= 0 && nr < static_cast<int64_t>(ketens.van.size())) {
      const auto b = record<EtiBlok>(k.bestand, nr);
      if (!(b.nr == ser.nr)) {
        ketens.v->fout({.blok = vorig},
                       fmt::format("{}: blok {} is van serie {}", naam, nr, serie(b.nr)));
        return;
      }
    }
    if (!ketens.neem(eigenaar, vorig, nr, naam)) return;
    vorig = nr;
    nr = record<EtiBlok>(k.bestand, nr).volgende;
  }
}

}  // namespace

void keur_etiketten(const PlatKopie& k, Verslag* v) {
  if (k.bestand.size() % sizeof(EtiBlok) != 0)
    v->fout({}, fmt::format("{} bytes, geen veelvoud van {}", k.bestand.size(), sizeof(EtiBlok)));
  SysRec4 rec;
  memcpy(&rec, k.control, sizeof rec);
  Ketens ketens{std::vector<int64_t>(k.bestand.size() / sizeof(EtiBlok), LOS), v, "blok"};
  for (const auto& [nr, ser] : levende<DtSer>(k.tabel))
    if (ser.blok1 != -1) keten_etiketten(k, ketens, nr, ser);
  const auto volgende = [&](int64_t nr) {
    const auto b = record<EtiBlok>(k.bestand, nr);
    if (!(b.nr == Serienr{}))
      v->fout({.blok = nr}, "staat in de vrije lijst en is van serie " + serie(b.nr));
    return b.volgende;
  };
  const int64_t vrij = ketens.vrije(rec.vrij_hoofd, rec.hoogste, volgende);
  if (vrij != rec.vrij_aantal)
    v->fout({}, fmt::format("vrije lijst van {} blokken, volgens het systeembestand {}", vrij,
                            rec.vrij_aantal));
  ketens.losse();
  for (size_t i = 0; i < ketens.van.size(); ++i)
    if (ketens.van[i] != VRIJ) {
      const auto nr = static_cast<int64_t>(i);
      keur_slots(nr, record<EtiBlok>(k.bestand, nr), v);
    }
  v->stand = fmt::format("{} blokken, {} vrij", ketens.van.size(), vrij);
}

namespace {

// Price groups ------------------------------------------------------------------------------------

void keten_groepen(const PlatKopie& k, Ketens& ketens, int64_t eigenaar, const DtIpa& set) {
  const std::string naam = fmt::format("prijsset {} {}", serie(set.nr), set.nummer);
  int64_t vorig = -1;
  for (int32_t nr = set.groep1; nr != -1;) {
    if (nr >= 0 && nr < static_cast<int64_t>(ketens.van.size())) {
      const auto g = record<DtIpg>(k.bestand, nr);
      if (!(g.nr == set.nr) || g.nummer != set.nummer || g.eind != set.eind) {
        ketens.v->fout({.blok = vorig}, fmt::format("{}: groep {} is van prijsset {} {}", naam, nr,
                                                    serie(g.nr), g.nummer));
        return;
      }
    }
    if (!ketens.neem(eigenaar, vorig, nr, naam)) return;
    vorig = nr;
    nr = record<DtIpg>(k.bestand, nr).volgende;
  }
}

}  // namespace

void keur_prijsgroepen(const PlatKopie& k, Verslag* v) {
  if (k.bestand.size() % sizeof(DtIpg) != 0)
    v->fout({}, fmt::format("{} bytes, geen veelvoud van {}", k.bestand.size(), sizeof(DtIpg)));
  SysRec9 rec;
  memcpy(&rec, k.control, sizeof rec);
  Ketens ketens{std::vector<int64_t>(k.bestand.size() / sizeof(DtIpg), LOS), v, "groep"};
  for (const auto& [nr, set] : levende<DtIpa>(k.tabel))
    if (set.groep1 != -1) keten_groepen(k, ketens, nr, set);
  const int64_t vrij = ketens.vrije(rec.vrij_hoofd, rec.hoogste, [&](int64_t nr) {
    return record<DtIpg>(k.bestand, nr).volgende;
  });
  ketens.losse();
  v->stand = fmt::format("{} groepen, {} vrij", ketens.van.size(), vrij);
}

namespace {

void keur_een(const PlatBestand& p, int wacht, void (*keur)(const PlatKopie&, Verslag*),
              Verslag* v) {
  PlatKopie k;
  if (plat_kopieer(p, wacht, false, &k, v)) keur(k, v);
}

void met_hertoets(const PlatBestand& p, int wacht, Verslag* v,
                  void (*keur)(const PlatKopie&, Verslag*)) {
  Verslag eerst;
  eerst.tabel = v->tabel;
  keur_een(p, wacht, keur, &eerst);
  if (eerst.in_orde()) {
    *v = std::move(eerst);
    return;
  }
  const timespec even{0, 200000000};
  nanosleep(&even, nullptr);
  std::set<std::string> gezien;
  for (const Bevinding& b : eerst.rijen) gezien.insert(verslag_regel(eerst, b));
  Verslag weer;
  weer.tabel = v->tabel;
  keur_een(p, wacht, keur, &weer);
  size_t weg = 0;
  for (const Bevinding& b : weer.rijen) {
    const bool blijft = gezien.contains(verslag_regel(weer, b));
    if (blijft || !b.fout)
      v->rijen.push_back(b);
    else
      ++weg;
  }
  v->fouten = weer.fouten - weg;
  v->stand = weer.stand;
}

}  // namespace

void keur_etiketten(int wacht, Verslag* v) {
  met_hertoets(PLAT_ETIKETTEN, wacht, v, keur_etiketten);
}
void keur_prijsgroepen(int wacht, Verslag* v) {
  met_hertoets(PLAT_PRIJSGROEPEN, wacht, v, keur_prijsgroepen);
}
