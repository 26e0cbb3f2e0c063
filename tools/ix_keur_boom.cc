// The trees of an index. Guarantees: every block is entered once at most, no level deeper than the
// root's, every number tested before it is used.
//
// A fault is told where it stands and the walk goes on as if it were not there, so that one wrong
// byte gives one line. Only where a block cannot be read at all its records are not listed as
// missing one by one.
#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <optional>

#include "tools/ix_keur.h"

namespace {

bool alles_ff(const uint8_t* p, int n) {
  return std::all_of(p, p + n, [](uint8_t b) { return b == 0xFF; });
}

bool alles_nul(const uint8_t* p, const uint8_t* einde) {
  return std::all_of(p, einde, [](uint8_t b) { return b == 0; });
}

/// Entries of a block that lie inside it.
struct Ingangen {
  const uint8_t* begin;
  int aantal, breed;

  const uint8_t* beeld(int i) const { return begin + i * breed; }
  int32_t wijzer(int i) const { return ix_i32(beeld(i) + breed - 4); }
};

std::optional<Ingangen> ingangen(const uint8_t* blok, const IxSleutel& s) {
  const int aantal = static_cast<int8_t>(blok[offsetof(IxBlok, count)]);
  if (aantal < 0 || aantal * ix_ingang(s) > IX_INGANGEN) return std::nullopt;
  return Ingangen{blok + offsetof(IxBlok, entries), aantal, ix_ingang(s)};
}

struct Loop {
  Keuring& k;
  std::vector<bool>& bereikt;
  int nr;
  const IxSleutel& s;
  std::vector<uint8_t> keer{};     // how often the key leads to a record: 0, 1, 2 for more
  const uint8_t* vorig = nullptr;  // last entry of the leaves so far
  bool onvolledig = false;         // a block could not be read

  Verslag& v() const { return *k.verslag; }
  int vergelijk(const uint8_t* a, const uint8_t* b) const {
    return ix_vergelijk(s, a, b, s.key_length);
  }

  void volgorde(const Plek& plek, int i, const uint8_t* eerder, const uint8_t* beeld) {
    const int uit = vergelijk(eerder, beeld);
    if (uit > 0) v().fout(plek, fmt::format("ingang {} staat niet op volgorde", i));
    if (uit != 0) return;
    // The same entry twice is told by its record.
    if (plek.record >= 0 && ix_i32(eerder + s.key_length) == plek.record) return;
    if (s.dup == 'J' || (nr == 1 && !k.privaat))
      v().fout(plek, fmt::format("ingang {} heeft dezelfde sleutel als de vorige", i));
    else if (!k.privaat)
      v().noot(plek, fmt::format("ingang {} heeft dezelfde sleutel als de vorige", i));
  }

  void blad_ingang(int64_t blok, int i, const uint8_t* beeld, int32_t record) {
    const Plek plek{.sleutel = nr, .blok = blok, .record = record};
    if (vorig != nullptr) volgorde(plek, i, vorig, beeld);
    vorig = beeld;
    if (record < 0 || record >= k.slots) {
      v().fout({.sleutel = nr, .blok = blok},
               fmt::format("ingang {} leidt naar record {}", i, record));
      return;
    }
    uint8_t& teller = keer[static_cast<size_t>(record)];
    if (teller < 2) ++teller;
    uint8_t soll[IX_SLEUTELBYTES];
    ix_beeld(&k.kop, s, k.slot(record), s.key_length, record, soll);
    std::string wat;
    if (!k.levend[static_cast<size_t>(record)])
      wat = fmt::format("ingang {} leidt naar een verwijderd record", i);
    else if (vergelijk(soll, beeld) != 0)
      wat = fmt::format("ingang {} is niet de sleutel van het record", i);
    if (wat.empty()) return;
    if (k.privaat && k.verouderd_mag)
      v().noot(plek, wat + " (verouderd)");
    else
      v().fout(plek, wat);
  }

  void kind(int64_t blok, int i, const uint8_t* beeld, int32_t wijzer, int niveau, bool rechts) {
    const Plek plek{.sleutel = nr, .blok = blok};
    if (wijzer < k.kop.key_count + 2 || wijzer >= k.blokken) {
      v().fout(plek, fmt::format("ingang {} leidt naar blok {}", i, wijzer));
      onvolledig = true;
    } else if (bereikt[static_cast<size_t>(wijzer)]) {
      v().fout(plek, fmt::format("ingang {} leidt naar blok {}, dat al bereikt is", i, wijzer));
      onvolledig = true;
    } else {
      const uint8_t* hoogste = doorloop(wijzer, niveau, rechts);
      // The rightmost branch ends in the sentinel on each level, which is looked at there.
      if (hoogste != nullptr && !rechts && vergelijk(hoogste, beeld) != 0)
        v().fout(plek, fmt::format("ingang {} is niet de hoogste sleutel van blok {}", i, wijzer));
    }
  }

  void keur_blokkop(int64_t blok, int niveau, const Ingangen& in) {
    const Plek plek{.sleutel = nr, .blok = blok};
    const uint8_t* b = k.blok(blok);
    if (b[0] != nr) v().fout(plek, fmt::format("blok van sleutel {}", b[0]));
    if (b[1] != niveau) v().fout(plek, fmt::format("niveau {}, verwacht {}", b[1], niveau));
    if (in.aantal == 0) v().fout(plek, "leeg blok in de boom");
    if (in.aantal >= s.max_entries)
      v().fout(plek, fmt::format("{} ingangen, hoogstens {}", in.aantal, s.max_entries - 1));
    if (b[2] != 0 || b[3] != 0 || !alles_nul(in.beeld(in.aantal), b + IX_BLOK))
      v().fout(plek, "ongebruikte bytes zijn niet nul");
  }

  /// A block and what lies under it; its highest key, null when it could not be read.
  const uint8_t* doorloop(int64_t blok, int niveau, bool rechts) {
    bereikt[static_cast<size_t>(blok)] = true;
    const Plek plek{.sleutel = nr, .blok = blok};
    const auto in = ingangen(k.blok(blok), s);
    if (!in) {
      v().fout(plek, fmt::format("{} ingangen", static_cast<int8_t>(k.blok(blok)[4])));
      onvolledig = true;
      return nullptr;
    }
    keur_blokkop(blok, niveau, *in);
    KeurNiveau& stand = k.sleutel[static_cast<size_t>(nr - 1)].niveau[static_cast<size_t>(niveau)];
    ++stand.blokken;
    stand.ingangen += in->aantal;
    for (int i = 0; i < in->aantal; ++i) keur_ingang(blok, niveau, *in, i, rechts);
    return in->aantal > 0 ? in->beeld(in->aantal - 1) : nullptr;
  }

  void keur_ingang(int64_t blok, int niveau, const Ingangen& in, int i, bool rechts) {
    const Plek plek{.sleutel = nr, .blok = blok};
    const uint8_t* beeld = in.beeld(i);
    const bool einde = rechts && i == in.aantal - 1, ff = alles_ff(beeld, s.key_length);
    if (einde && !ff) v().fout(plek, "de eindsleutel ontbreekt");
    if (!einde && ff) v().fout(plek, fmt::format("ingang {} is een eindsleutel", i));
    if (niveau > 1) {
      if (i > 0) volgorde(plek, i, in.beeld(i - 1), beeld);
      kind(blok, i, beeld, in.wijzer(i), niveau - 1, einde);
    } else if (!ff) {
      blad_ingang(blok, i, beeld, in.wijzer(i));
    } else if (einde && in.wijzer(i) != -1) {
      v().fout(plek, fmt::format("de eindsleutel leidt naar record {}", in.wijzer(i)));
    }
  }

  /// Level of the root. Its own word counts unless what hangs under it says otherwise.
  int wortelniveau() {
    const uint8_t* b = k.blok(nr);
    const auto in = ingangen(b, s);
    if (!in || in->aantal == 0) return std::clamp<int>(b[1], 1, IX_DIEPTE);
    const int32_t laatste = in->wijzer(in->aantal - 1);
    if (laatste == -1) return 1;
    if (laatste < k.kop.key_count + 2 || laatste >= k.blokken)
      return std::clamp<int>(b[1], 1, IX_DIEPTE);
    const int onder = k.blok(laatste)[1];
    if (b[1] == onder + 1) return b[1] <= IX_DIEPTE ? b[1] : IX_DIEPTE;
    // Root and child disagree: the first child casts the vote.
    const int32_t eerste = in->wijzer(0);
    const bool kan = eerste >= k.kop.key_count + 2 && eerste < k.blokken;
    const int ander = kan ? k.blok(eerste)[1] : onder;
    const int uit = in->aantal > 1 && ander == b[1] - 1 ? b[1] : onder + 1;
    return std::clamp(uit, 2, IX_DIEPTE);
  }

  void records() {
    int64_t weg = 0;
    for (size_t i = 0; i < keer.size(); ++i) {
      const Plek plek{.sleutel = nr, .record = static_cast<int64_t>(i)};
      if (keer[i] > 1) v().fout(plek, "het record staat meer dan eens in de sleutel");
      if (k.privaat || !k.levend[i] || keer[i] > 0) continue;
      ++weg;
      if (!onvolledig) v().fout(plek, "het record ontbreekt in de sleutel");
    }
    if (onvolledig && weg > 0)
      v().noot({.sleutel = nr}, fmt::format("{} records zijn niet bereikt", weg));
  }
};

/// Blocks that no tree holds: emptied ones, if all is well.
void keur_losse(Keuring& k, const std::vector<bool>& bereikt, bool onvolledig) {
  // What the file has too much was told with its size.
  const int64_t einde = std::min<int64_t>(k.blokken, k.kop.next_block);
  for (int64_t blok = k.kop.key_count + 2; blok < einde; ++blok) {
    if (bereikt[static_cast<size_t>(blok)]) continue;
    ++k.leeg;
    if (!onvolledig && k.blok(blok)[offsetof(IxBlok, count)] != 0)
      k.verslag->fout({.blok = blok}, "hoort bij geen boom en is niet leeg");
  }
}

}  // namespace

void keur_bomen(Keuring& k) {
  std::vector<bool> bereikt(static_cast<size_t>(k.blokken));
  bool onvolledig = false;
  for (int nr = 1; nr <= k.kop.key_count; ++nr) {
    Loop loop{k, bereikt, nr, k.kop.keys[nr - 1]};
    loop.keer.resize(static_cast<size_t>(k.slots));
    const int niveau = loop.wortelniveau();
    k.sleutel[static_cast<size_t>(nr - 1)].diepte = niveau;
    loop.doorloop(nr, niveau, true);
    loop.records();
    onvolledig = onvolledig || loop.onvolledig;
  }
  keur_losse(k, bereikt, onvolledig);
}

namespace {

struct Wandeling {
  const Keuring& k;
  const IxSleutel& s;
  const std::function<bool(const uint8_t*, int32_t)>& doe;
  std::vector<bool> bereikt;

  bool blok(int64_t nr, int diepte) {
    if (nr < 1 || nr >= k.blokken || diepte > IX_DIEPTE || bereikt[static_cast<size_t>(nr)])
      return true;
    bereikt[static_cast<size_t>(nr)] = true;
    const auto in = ingangen(k.blok(nr), s);
    if (!in) return true;
    const bool blad = k.blok(nr)[1] == 1;
    for (int i = 0; i < in->aantal; ++i) {
      if (!blad && !blok(in->wijzer(i), diepte + 1)) return false;
      if (blad && in->wijzer(i) >= 0 && !doe(in->beeld(i), in->wijzer(i))) return false;
    }
    return true;
  }
};

}  // namespace

void loop_bladeren(const Keuring& k, int sleutel,
                   const std::function<bool(const uint8_t* beeld, int32_t record)>& doe) {
  if (sleutel < 1 || sleutel > k.kop.key_count) return;
  Wandeling w{k, k.kop.keys[sleutel - 1], doe, std::vector<bool>(static_cast<size_t>(k.blokken))};
  w.blok(sleutel, 1);
}
