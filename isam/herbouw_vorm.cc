// The shape of the trees that entering all keys in slot order would give, worked out without
// entering them.
//
// A leaf is a range of ranks. It is cut when it holds `vol` entries, between those it holds at that
// moment: the first so many of its range in order of entering. So the cuts follow from the lists of
// ranks alone, range by range, and only the cuts themselves (one for some twenty records) are
// entered in the branches, in the order in which they came about over all keys: a new block takes
// the next number of the file.

#include <algorithm>
#include <climits>
#include <cstring>
#include <map>

#include "isam/herbouw_snel.h"

namespace {

/// Rank of the last entry of the lower part of a full leaf of `m` ranks.
uint32_t snijrang(const uint32_t* rang, size_t m, size_t laag) {
  uint32_t vol[TAK_MAX];
  std::copy_n(rang, m, vol);
  std::nth_element(vol, vol + laag - 1, vol + m);
  return vol[laag - 1];
}

struct Snijder {
  std::vector<Blad>& bladen;
  uint32_t* hulp;
  size_t vol, laag;
  const uint64_t* volgorde;
  uint64_t nummers;
  uint32_t gedaan = 0;  // ranks of the leaves so far

  uint32_t slot_van(uint32_t rang) const { return static_cast<uint32_t>(volgorde[rang] & nummers); }
  void klaar(size_t aantal, uint32_t slot) {
    gedaan += static_cast<uint32_t>(aantal);
    bladen.push_back({gedaan, slot, 0});
  }

  /// Keeps the ranks up to `grens` in front, all in their order; how many those are.
  size_t verdeel(uint32_t* rang, size_t n, uint32_t grens) const {
    size_t onder = 0, boven = 0;
    for (size_t i = 0; i < n; ++i) {
      const uint32_t r = rang[i];
      const bool hoog = r > grens;
      rang[onder] = r;
      hulp[boven] = r;
      onder += hoog ? 0 : 1;
      boven += hoog ? 1 : 0;
    }
    memcpy(rang + onder, hulp, boven * sizeof *hulp);
    return onder;
  }

  /// The range that `n` ranks make up: `slot` cut it off, `laatste` tells that the end lies in it.
  /// A list is gone through once a cut, which is cheap as long as cuts leave both parts large.
  void snij(uint32_t* rang, size_t n, bool laatste, uint32_t slot, int scheef) {
    for (;;) {
      const size_t m = laatste ? vol - 1 : vol;
      if (n < m) return klaar(n, slot);
      if (scheef > 4) return stap_voor_stap(rang, n, laatste, slot);
      const uint32_t grens = snijrang(rang, m, laag), door = slot_van(rang[m - 1]);
      const size_t onder = verdeel(rang, n, grens);
      constexpr size_t KLEIN = 1024;  // where it does not matter
      const auto oordeel = [&](size_t deel) {
        return n > KLEIN && deel > n - n / 8 ? scheef + 1 : 0;
      };
      snij(rang, onder, false, door, oordeel(onder));
      scheef = oordeel(n - onder);
      rang += onder;
      n -= onder;
    }
  }

  struct Open {
    uint32_t slot;
    std::vector<uint32_t> rang;
  };

  /// The same one by one, for lists that grow at one end: there each cut takes off only a few.
  void stap_voor_stap(const uint32_t* rang, size_t n, bool laatste, uint32_t slot) {
    std::map<uint32_t, Open> open;  // by the highest rank of the range
    auto hier = open.emplace(EINDWACHT, Open{slot, {}}).first;
    for (size_t i = 0; i < n; ++i) {
      const uint32_t r = rang[i];
      // Neighbours mostly follow each other.
      if (r > hier->first || (hier != open.begin() && r <= std::prev(hier)->first))
        hier = open.lower_bound(r);
      std::vector<uint32_t>& blad = hier->second.rang;
      blad.push_back(r);
      if (blad.size() < (laatste && hier->first == EINDWACHT ? vol - 1 : vol)) continue;
      std::sort(blad.begin(), blad.end());
      const auto knip = blad.begin() + static_cast<std::ptrdiff_t>(laag);
      open.emplace_hint(hier, *(knip - 1), Open{slot_van(r), {blad.begin(), knip}});
      blad.erase(blad.begin(), knip);
    }
    for (const auto& [hoogste, o] : open) klaar(o.rang.size(), o.slot);
  }
};

/// Enters the cuts of one key into its branches.
struct Enter {
  ICB* icb;
  BoomBouw& boom;
  int k, vol;
  size_t gedaan = 0;
  std::vector<uint64_t> sneden;  // slot and leaf, in order of slots

  int32_t nieuw_blok() const { return icb->next_block++; }

  void in_tak(Tak& t, uint32_t rang, int32_t kind) const {
    const auto plaats = std::lower_bound(t.hoogste, t.hoogste + t.aantal, rang) - t.hoogste;
    const auto rest = static_cast<size_t>(t.aantal - plaats);
    memmove(t.hoogste + plaats + 1, t.hoogste + plaats, rest * sizeof *t.hoogste);
    memmove(t.kind + plaats + 1, t.kind + plaats, rest * sizeof *t.kind);
    t.hoogste[plaats] = rang;
    t.kind[plaats] = kind;
    ++t.aantal;
  }

  /// `aantal` entries from `van` on, as a branch of their own.
  int32_t deel(const Tak& heel, int van, int aantal, int32_t blok) {
    Tak t{};
    t.blok = blok;
    t.niveau = heel.niveau;
    t.aantal = static_cast<int8_t>(aantal);
    std::copy_n(heel.hoogste + van, aantal, t.hoogste);
    std::copy_n(heel.kind + van, aantal, t.kind);
    boom.takken.push_back(t);
    return static_cast<int32_t>(boom.takken.size()) - 1;
  }

  void wortel(int niveau, uint32_t rang, int32_t onder, int32_t boven) {
    Tak& w = boom.takken[0];
    w.blok = k;
    w.niveau = static_cast<int8_t>(niveau);
    w.aantal = 2;
    w.hoogste[0] = rang;
    w.kind[0] = onder;
    w.hoogste[1] = EINDWACHT;
    w.kind[1] = boven;
  }

  void splits(const int32_t* pad, int diepte) {
    const int laag = vol * 7 / 10;
    const int32_t nr = pad[diepte];
    const Tak heel = boom.takken[static_cast<size_t>(nr)];
    if (heel.niveau >= IX_DIEPTE || icb->next_block > INT_MAX - 2) ix_kapot(icb);
    const uint32_t rang = heel.hoogste[laag - 1];
    const int32_t onder = deel(heel, 0, laag, nieuw_blok());
    if (diepte == 0) {
      const int32_t boven = deel(heel, laag, vol - laag, nieuw_blok());
      return wortel(heel.niveau + 1, rang, onder, boven);
    }
    Tak& t = boom.takken[static_cast<size_t>(nr)];
    t.aantal = static_cast<int8_t>(vol - laag);
    std::copy_n(heel.hoogste + laag, t.aantal, t.hoogste);
    std::copy_n(heel.kind + laag, t.aantal, t.kind);
    zet(pad, diepte - 1, rang, onder);
  }

  void zet(const int32_t* pad, int diepte, uint32_t rang, int32_t kind) {
    Tak& t = boom.takken[static_cast<size_t>(pad[diepte])];
    in_tak(t, rang, kind);
    if (t.aantal == vol) splits(pad, diepte);
  }

  void snede(Blad& blad) {
    if (icb->next_block > INT_MAX - 2) ix_kapot(icb);
    const uint32_t rang = blad.einde - 1;
    blad.blok = nieuw_blok();
    if (boom.takken.empty()) {
      boom.bladen.back().blok = nieuw_blok();
      boom.takken.emplace_back();
      return wortel(2, rang, blad.blok, boom.bladen.back().blok);
    }
    int32_t pad[IX_DIEPTE + 1] = {};
    int diepte = 0;
    for (const Tak* t = &boom.takken[0]; t->niveau > 2;
         t = &boom.takken[static_cast<size_t>(pad[diepte])])
      pad[++diepte] =
          t->kind[std::lower_bound(t->hoogste, t->hoogste + t->aantal, rang) - t->hoogste];
    zet(pad, diepte, rang, blad.blok);
  }

  void tot_slot(int64_t grens) {
    for (; gedaan < sneden.size() && static_cast<int64_t>(sneden[gedaan] >> 32) < grens; ++gedaan)
      snede(boom.bladen[sneden[gedaan] & UINT32_MAX]);
  }
};

}  // namespace

void vorm_bladen(BoomBouw& boom, uint32_t* rang, uint32_t* hulp, size_t aantal, int vol,
                 const uint64_t* volgorde, int nummerbits) {
  boom.bladen.reserve(aantal / static_cast<size_t>(vol) * 2 + 1);
  Snijder s{boom.bladen,
            hulp,
            static_cast<size_t>(vol),
            static_cast<size_t>(vol * 7 / 10),
            volgorde,
            (uint64_t{1} << nummerbits) - 1};
  s.snij(rang, aantal, true, 0, 0);
}

void vorm_takken(ICB* icb, BoomBouw* bomen, int32_t per) {
  std::vector<Enter> enters;
  uint64_t laatste = 0;
  for (int k = 1; k <= icb->key_count; ++k) {
    BoomBouw& boom = bomen[k - 1];
    enters.push_back({icb, boom, k, icb->keys[k - 1].max_entries, 0, {}});
    std::vector<uint64_t>& sneden = enters.back().sneden;
    for (size_t i = 0; i + 1 < boom.bladen.size(); ++i)
      sneden.push_back(uint64_t{boom.bladen[i].slot} << 32 | i);
    std::sort(sneden.begin(), sneden.end());
    if (!sneden.empty()) laatste = std::max(laatste, sneden.back() >> 32);
    boom.bladen.back().blok = k;  // until it is cut, the root is the leaf
  }
  for (int64_t grens = per; grens - per <= static_cast<int64_t>(laatste); grens += per)
    for (Enter& e : enters) e.tot_slot(grens);
}
