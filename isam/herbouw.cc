// Building an index anew: IXBLDIX from the data file and the definitions in the old header, IXBULK
// for a private index from the records that its caller chooses. Both give the very bytes that
// entering the same keys one by one would give. A rebuild takes the fast road of herbouw_snel.cc
// where that can be taken; else, like a bulk fill, it enters keys through the cache.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix_intern.h"
#include "isam/teksten.h"

namespace {

struct Vrij {
  void operator()(void* p) const { free(p); }
};

struct Buffer {
  std::unique_ptr<uint8_t, Vrij> bytes;
  size_t grootte = 0;
};

Buffer neem_buffer(size_t record_length) {
  for (size_t n = 16384; n >= 1024; n /= 2) {
    const size_t heel = (std::max(n, record_length) + 63) / 64 * 64;
    if (auto* p = static_cast<uint8_t*>(aligned_alloc(64, heel)))
      return {std::unique_ptr<uint8_t, Vrij>(p), n};
  }
  return {};
}

/// Old definitions, fit for a new index; false when there is nothing to build from.
bool lees_definities(int fd, ICB* kop) {
  if (io_lees(fd, kop, IX_KOP, 0) != IX_KOP || kop->record_length <= 0) return false;
  kop->key_count = std::min<int8_t>(kop->key_count, IX_SLEUTELS);
  for (int k = 0; k < kop->key_count; ++k) {
    IxSleutel& s = kop->keys[k];
    s.max_entries = static_cast<int8_t>(std::min(IX_INGANGEN / ix_ingang(s), 127));
  }
  kop->record_count = 0;
  kop->next_block = IX_SLEUTELS + 2;
  return ix_kop_geldig(kop);
}

bool hele_records(int64_t grootte, int record_length) {
  return grootte <= 0 || grootte % record_length == 0;
}

/// One key over the records of a buffer; the pass over key 1 chains the deleted slots.
void sleutel_over_buffer(ICB* icb, int k, uint8_t* buffer, int32_t eerste, int32_t aantal) {
  if (ix_huidig(icb) != k) {
    for (int32_t& t : icb->trail) t = -1;
    IXSWITCH(icb, k);
  }
  for (int32_t i = 0; i < aantal; ++i) {
    uint8_t* rec = buffer + static_cast<size_t>(i) * static_cast<size_t>(icb->record_length);
    if (ix_levend(rec, icb->record_length)) {
      ix_schuif_in(icb, rec, eerste + i);
    } else if (k == 1) {
      icb->record_no = eerste + i;
      ix_zet_i32(rec + 1, icb->free_head);
      IXWRDAT(icb, rec);
      icb->free_head = icb->record_no;
    }
  }
}

/// Slots that are read at a time, and so entered key by key.
int32_t per_buffer(const ICB* icb, const Buffer& buffer) {
  return std::max(static_cast<int32_t>(buffer.grootte) / icb->record_length, 1);
}

void bouw(ICB* icb, const Buffer& buffer) {
  const int64_t lengte = icb->record_length;
  const auto records =
      static_cast<int32_t>(std::min<int64_t>(io_grootte(icb->data_fd) / lengte, INT32_MAX));
  const int32_t per = per_buffer(icb, buffer);
  const std::string naam(icb->name, strnlen(icb->name, sizeof icb->name));
  if (records > 0) ix_hooks.voortgang(str_format(txt(T_IX_HERBOUW), naam).c_str(), 0, records);
  int32_t aantal;
  for (int32_t eerste = 0; eerste < records; eerste += aantal) {
    aantal = std::min(per, records - eerste);
    const int64_t n = io_lees(icb->data_fd, buffer.bytes.get(),
                              static_cast<size_t>(aantal * lengte), eerste * lengte);
    if (n != aantal * lengte) ix_kapot(icb);
    for (int k = 1; k <= icb->key_count; ++k)
      sleutel_over_buffer(icb, k, buffer.bytes.get(), eerste, aantal);
    ix_hooks.voortgang(nullptr, eerste + aantal, records);
  }
  icb->record_count = records;
  icb->busy = 0;
  if (records > 0) ix_hooks.voortgang(nullptr, 0, 0);
}

}  // namespace

int IXBLDIX(const char* name) {
  if (name == nullptr) ix_leeg("IXBLDIX");
  const IxPaden paden = ix_paden(name);
  if (paden.privaat || file_size(paden.index.c_str()) < IX_KOP) return 0;
  ICB kop{};
  const int fd = io_open(paden.index.c_str(), false);
  if (fd < 0) return 0;
  const bool goed = lees_definities(fd, &kop);
  io_close(fd);
  if (!goed || !hele_records(file_size(paden.data.c_str()), kop.record_length)) return 0;
  const Buffer buffer = neem_buffer(static_cast<size_t>(kop.record_length));
  if (buffer.grootte == 0) return 0;
  // The old index stays as it is until nobody else is in the table.
  ICB* icb = ix_maak(name, IX_EXCLUSIEF | IX_VRAAG, true);
  if (!lees_definities(icb->index_fd, &kop) ||
      !hele_records(io_grootte(icb->data_fd), kop.record_length)) {
    IXLOCK(icb, 11);
    ix_vrij(icb);
    return 0;
  }
  memcpy(static_cast<void*>(icb), &kop, IX_KOP);
  ix_kap_index(icb);
  icb->free_head = -1;
  icb->next_block = icb->key_count + 2;
  icb->version = IX_VERSIE;
  if (!ix_bouw_snel(icb, per_buffer(icb, buffer))) {
    if (IOCACHE('I', icb, 0) == 0) ix_fataal(txt(T_IX_GEEN_GEHEUGEN_BOUW));
    IXINITIX(icb);
    bouw(icb, buffer);
    IOCACHE('F', icb, 0);
  }
  IXCLOSE(icb);
  return 1;
}

namespace {

constexpr int32_t VULBLOKKEN =
    32768;  // 16 MB: a table of half a million records stays in memory whole

/// The filling of a table by IXWRITE, for whoever holds it whole.
bool vul_begin(ICB* icb) {
  if (icb->mode != IX_EXCLUSIEF || IOCACHE('I', icb, VULBLOKKEN) == 0) return false;
  ix_aanhang_begin(icb);
  IXRDIX(icb, 1);
  return true;
}

}  // namespace

bool IXBULK(char action, ICB* icb, void* rec) {
  ix_test(icb, "IXBULK");
  switch (action) {
    case 'O':
      if (icb->is_private == 0) return vul_begin(icb);
      // An index that others may open keeps its header locked and marked until the end.
      if (!ix_alleen(icb)) ix_kop_open(icb);
      if (icb->key_count == 1 && IOCACHE('I', icb, 0) != 0) {
        icb->busy = 0;
        IXRDIX(icb, 1);
      }
      return icb->cached != 0;
    case 'W':
      if (icb->cached != 0)
        ix_schuif_in(icb, rec, icb->record_no);
      else
        IXADDKEYS(icb, rec);
      if (icb->record_count <= icb->record_no && icb->record_no < INT32_MAX)
        icb->record_count = icb->record_no + 1;
      return true;
    case 'C':
      ix_aanhang_einde(icb);
      if (icb->cached != 0) {
        icb->busy = 0;
        IOCACHE('F', icb, 0);
      }
      if (icb->kop_slot != 0) ix_kop_dicht(icb);
      return true;
    default:
      return false;
  }
}
