// Records that a filling of a temporary table adds at its end go out in pieces. Guarantees the same
// file bytes as writing each at once; whatever else the handle does with its data sends them out
// first.

#include "isam/io.h"
#include "isam/ix_intern.h"

namespace {

constexpr size_t STUK = 32768;

struct {
  const ICB* eigenaar = nullptr;
  int64_t begin = 0;  // place in the file
  size_t gevuld = 0;
  alignas(64) uint8_t bytes[STUK];
} a;

}  // namespace

void ix_aanhang_begin(const ICB* icb) { a.eigenaar = icb; }

void ix_aanhang_uit(const ICB* icb) {
  if (a.eigenaar != icb || a.gevuld == 0) return;
  io_schrijf(icb->data_fd, a.bytes, a.gevuld, a.begin);
  a.gevuld = 0;
}

void ix_aanhang_einde(const ICB* icb) {
  ix_aanhang_uit(icb);
  if (a.eigenaar == icb) a.eigenaar = nullptr;
}

bool ix_aanhang(const ICB* icb, const void* rec) {
  const auto lengte = static_cast<size_t>(icb->record_length);
  if (a.eigenaar != icb || lengte > STUK) return false;
  const int64_t plaats = IXSEEKDAT(icb);
  const bool sluit_aan = plaats == a.begin + static_cast<int64_t>(a.gevuld);
  if (a.gevuld > 0 && (!sluit_aan || a.gevuld + lengte > STUK)) ix_aanhang_uit(icb);
  if (icb->record_no != icb->record_count - 1) return false;
  if (a.gevuld == 0) a.begin = plaats;
  memcpy(a.bytes + a.gevuld, rec, lengte);
  a.gevuld += lengte;
  return true;
}
