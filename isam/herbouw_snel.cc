// The fast rebuild: one pass over the data, keys sorted in memory, each block of the index written
// once. Guarantees the very bytes that entering the same keys in slot order gives; a table that it
// cannot do that for is left to the plain road.

#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstring>

#include "isam/herbouw_snel.h"
#include "isam/io.h"
#include "isam/teksten.h"

bool ix_snel_bouwen = true;

namespace {

constexpr size_t LEESSTUK = 131072;
constexpr size_t SCHRIJFSTUK = 64;  // blocks

struct Bouw {
  ICB* icb;
  uint32_t records;   // slots of the data file
  size_t levend = 0;  // of them in use
  int nummerbits;
  SleutelBouw sleutels[IX_SLEUTELS];
  BoomBouw bomen[IX_SLEUTELS];
  Ruimte<uint64_t> hulp;
  Ruimte<uint32_t> rang, lijst;
};

/// All that is taken at once; refused when it would be a large part of the machine's memory.
bool neem_geheugen(Bouw& b) {
  const size_t n = b.records;
  size_t per_record = sizeof(uint64_t) + 2 * sizeof(uint32_t);
  for (int k = 0; k < b.icb->key_count; ++k)
    per_record += b.icb->keys[k].key_length + sizeof(uint64_t);
  const long paginas = sysconf(_SC_PHYS_PAGES), pagina = sysconf(_SC_PAGESIZE);
  if (paginas <= 0 || pagina <= 0 ||
      n * per_record / static_cast<size_t>(pagina) > static_cast<size_t>(paginas) / 4)
    return false;
  bool goed = b.hulp.neem(n) && b.rang.neem(n) && b.lijst.neem(n);
  for (int k = 0; goed && k < b.icb->key_count; ++k)
    goed =
        b.sleutels[k].beelden.neem(n * b.icb->keys[k].key_length) && b.sleutels[k].volgorde.neem(n);
  return goed;
}

/// A deleted slot goes to the head of the chain.
void keten(ICB* icb, uint8_t* rec, uint32_t slot) {
  icb->record_no = static_cast<int32_t>(slot);
  ix_zet_i32(rec + 1, icb->free_head);
  IXWRDAT(icb, rec);
  icb->free_head = icb->record_no;
}

/// Reads the data: images of all keys by slot, and the slots in use in `lijst`.
bool lees(Bouw& b) {
  ICB* icb = b.icb;
  const auto lengte = static_cast<size_t>(icb->record_length);
  const auto per = static_cast<uint32_t>(std::max<size_t>(LEESSTUK / lengte, 1));
  Ruimte<uint8_t> stuk;
  if (!stuk.neem(per * lengte)) return false;
  for (uint32_t eerste = 0; eerste < b.records; eerste += per) {
    const uint32_t aantal = std::min(per, b.records - eerste);
    const size_t bytes = aantal * lengte;
    if (io_lees(icb->data_fd, stuk.p, bytes, static_cast<int64_t>(eerste * lengte)) !=
        static_cast<int64_t>(bytes))
      ix_kapot(icb);
    for (uint32_t i = 0; i < aantal; ++i) {
      uint8_t* rec = stuk.p + i * lengte;
      if (!ix_levend(rec, icb->record_length)) {
        keten(icb, rec, eerste + i);
        continue;
      }
      for (int k = 0; k < icb->key_count; ++k)
        bouw_beeld(b.sleutels[k], rec, eerste + i, b.levend == 0);
      b.lijst.p[b.levend++] = eerste + i;
    }
    ix_hooks.voortgang(nullptr, (eerste + aantal) / 2, b.records);
  }
  return true;
}

/// Order of the key and the leaves of its tree. False when two keys are equal.
bool orden(Bouw& b, int k) {
  SleutelBouw& s = b.sleutels[k];
  uint64_t* volgorde = s.volgorde.p;
  const uint64_t nummers = (uint64_t{1} << b.nummerbits) - 1;
  for (size_t i = 0; i < b.levend; ++i) volgorde[i] = b.lijst.p[i];
  if (!bouw_sorteer(s, b.levend, b.nummerbits, b.hulp.p)) return false;
  // The space of the sort serves twice: ranks by slot, and the list that is being cut.
  uint32_t* op_slot = b.rang.p;
  for (size_t r = 0; r < b.levend; ++r) op_slot[volgorde[r] & nummers] = static_cast<uint32_t>(r);
  auto* rang = reinterpret_cast<uint32_t*>(b.hulp.p);
  for (size_t i = 0; i < b.levend; ++i) rang[i] = op_slot[b.lijst.p[i]];
  vorm_bladen(b.bomen[k], rang, rang + b.levend, b.levend, s.s->max_entries, volgorde,
              b.nummerbits);
  return true;
}

/// Writes the blocks in the order of their numbers.
class Schrijver {
 public:
  explicit Schrijver(Bouw& bouw) : b(bouw), nummers((uint64_t{1} << bouw.nummerbits) - 1) {}

  bool alles() {
    const auto blokken = static_cast<size_t>(b.icb->next_block);
    Ruimte<Bron> bronnen;
    if (!bronnen.neem(blokken)) return false;
    std::fill_n(bronnen.p, blokken, Bron{-1, false, 0});
    vind(bronnen.p);
    for (size_t blok = 1; blok < blokken; blok += SCHRIJFSTUK) {
      const size_t aantal = std::min(SCHRIJFSTUK, blokken - blok);
      for (size_t i = 0; i < aantal; ++i) vul(stuk + i * IX_BLOK, bronnen.p[blok + i]);
      io_schrijf(b.icb->index_fd, stuk, aantal * IX_BLOK,
                 ix_blokplaats(static_cast<int64_t>(blok)));
    }
    return true;
  }

 private:
  struct Bron {
    int8_t k;  // -1 the queue of keys
    bool tak;
    uint32_t nr;
  };

  void vind(Bron* bronnen) const {
    for (int k = 0; k < b.icb->key_count; ++k) {
      const BoomBouw& boom = b.bomen[k];
      const auto sleutel = static_cast<int8_t>(k);
      for (size_t i = 0; i < boom.bladen.size(); ++i)
        bronnen[boom.bladen[i].blok] = {sleutel, false, static_cast<uint32_t>(i)};
      for (size_t i = 0; i < boom.takken.size(); ++i)
        bronnen[boom.takken[i].blok] = {sleutel, true, static_cast<uint32_t>(i)};
    }
  }

  /// An image by the word: up to seven bytes too many, which the next entry or the end overwrites.
  static void kopieer(uint8_t* naar, const uint8_t* van, int n) {
    for (int i = 0; i < n; i += 8) memcpy(naar + i, van + i, 8);
  }

  /// The image of a rank: put together from the bits beside its slot, or else from where it was
  /// stored.
  void beeld(uint8_t* naar, const SleutelBouw& s, uint32_t rang) const {
    const uint64_t v = s.volgorde.p[rang];
    if (!s.volledig)
      return kopieer(naar, s.beeld(static_cast<uint32_t>(v & nummers)), s.s->key_length);
    uint64_t w[WOORDEN];
    const int woorden = (s.s->key_length + 7) / 8;
    std::copy_n(s.eerste, woorden, w);
    uint64_t bits = v >> b.nummerbits;
    for (size_t i = s.reeksen.size(); i-- > 0;) {
      const Bitreeks& r = s.reeksen[i];
      const uint64_t masker = (uint64_t{1} << r.breed) - 1;
      w[r.woord] = (w[r.woord] & ~(masker << r.schuif)) | (bits & masker) << r.schuif;
      bits >>= r.breed;
    }
    for (int i = 0; i < woorden; ++i) {
      const uint64_t om = __builtin_bswap64(w[i]);
      memcpy(naar + 8 * i, &om, sizeof om);
    }
  }

  uint8_t* ingang(uint8_t* p, const SleutelBouw& s, uint32_t rang, int32_t wijzer) const {
    const size_t n = s.s->key_length;
    if (rang == EINDWACHT)
      memset(p, 0xFF, n);
    else
      beeld(p, s, rang);
    ix_zet_i32(p + n, wijzer);
    return p + n + 4;
  }

  void vul(uint8_t* blok, const Bron& bron) const {
    memset(blok, 0, 5);
    blok[0] = 1;
    uint8_t* p = blok + 5;
    if (bron.k >= 0) {
      const SleutelBouw& s = b.sleutels[bron.k];
      const BoomBouw& boom = b.bomen[bron.k];
      blok[0] = static_cast<uint8_t>(bron.k + 1);
      if (bron.tak)
        p = vul_tak(blok, p, s, boom, boom.takken[bron.nr]);
      else
        p = vul_blad(blok, p, s, boom, bron.nr);
    }
    memset(p, 0, static_cast<size_t>(blok + IX_BLOK - p));
  }

  uint8_t* vul_tak(uint8_t* blok, uint8_t* p, const SleutelBouw& s, const BoomBouw& boom,
                   const Tak& t) const {
    blok[1] = static_cast<uint8_t>(t.niveau);
    blok[4] = static_cast<uint8_t>(t.aantal);
    for (int i = 0; i < t.aantal; ++i) {
      const int32_t kind =
          t.niveau > 2 ? boom.takken[static_cast<size_t>(t.kind[i])].blok : t.kind[i];
      p = ingang(p, s, t.hoogste[i], kind);
    }
    return p;
  }

  uint8_t* vul_blad(uint8_t* blok, uint8_t* p, const SleutelBouw& s, const BoomBouw& boom,
                    uint32_t nr) const {
    const uint32_t begin = nr == 0 ? 0 : boom.bladen[nr - 1].einde, einde = boom.bladen[nr].einde;
    const bool laatste = nr + 1 == boom.bladen.size();
    blok[1] = 1;
    blok[4] = static_cast<uint8_t>(einde - begin + (laatste ? 1 : 0));
    if (!s.volledig)  // the images lie anywhere: all of them on their way at once
      for (uint32_t r = begin; r < einde; ++r)
        __builtin_prefetch(s.beeld(static_cast<uint32_t>(s.volgorde.p[r] & nummers)));
    for (uint32_t r = begin; r < einde; ++r)
      p = ingang(p, s, r, static_cast<int32_t>(s.volgorde.p[r] & nummers));
    return laatste ? ingang(p, s, EINDWACHT, -1) : p;
  }

  Bouw& b;
  uint64_t nummers;
  alignas(64) uint8_t stuk[SCHRIJFSTUK * IX_BLOK + 64];
};

bool alles(ICB* icb, uint32_t records, int32_t per) {
  Bouw b{};
  b.icb = icb;
  b.records = records;
  b.nummerbits = std::max(static_cast<int>(std::bit_width(records)), 1);
  for (int k = 1; k <= icb->key_count; ++k) bouw_begin(b.sleutels[k - 1], icb, k);
  if (!neem_geheugen(b) || !lees(b)) return false;
  for (int k = 0; k < icb->key_count; ++k) {
    if (!orden(b, k)) return false;
    const int64_t deel = int64_t{records} * (k + 1) / icb->key_count;
    ix_hooks.voortgang(nullptr, records / 2 + deel / 4, records);
  }
  vorm_takken(icb, b.bomen, per);
  Schrijver schrijver(b);
  return schrijver.alles();
}

}  // namespace

bool ix_bouw_snel(ICB* icb, int32_t per) {
  const int64_t records = io_grootte(icb->data_fd) / icb->record_length;
  if (!ix_snel_bouwen || records <= 0 || records > INT32_MAX) return false;
  const std::string naam(icb->name, strnlen(icb->name, sizeof icb->name));
  ix_hooks.voortgang(str_format(txt(T_IX_HERBOUW), naam).c_str(), 0, records);
  const bool goed = alles(icb, static_cast<uint32_t>(records), per);
  if (goed) ix_hooks.voortgang(nullptr, records, records);
  ix_hooks.voortgang(nullptr, 0, 0);
  if (goed) icb->record_count = static_cast<int32_t>(records);
  return goed;
}
