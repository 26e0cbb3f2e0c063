// Reading records and keys. Nothing is locked here but by IXREADL; what a reader sees is whole, and
// may be a moment old. "Not found" is an answer and leaves record_no -1.

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "isam/io.h"
#include "isam/ix_intern.h"

namespace {

IxHandvat* handvat(ICB* icb) { return reinterpret_cast<IxHandvat*>(icb); }

int32_t zoek(ICB* icb, char op, int lengte) { return icb->record_no = IXSEARCH(icb, op, lengte); }

/// On from key_buf; a walk mostly stays in its leaf.
int32_t zoek_verder(ICB* icb, int lengte) {
  icb->record_no = ix_stap(icb, '>', lengte);
  return icb->record_no >= 0 ? icb->record_no : zoek(icb, '>', lengte);
}

/// Back from the entry that a search for '=' stopped at.
int32_t zoek_terug(ICB* icb, int lengte) {
  icb->record_no = ix_stap(icb, '<', lengte);
  if (icb->record_no >= 0) return icb->record_no;
  IXSEARCH(icb, '=', lengte);
  // Inside the leaf that was just read no second look at the file is needed.
  const int32_t p = icb->block.level == 1 ? IXFINDBLK(icb, '<', lengte) : -1;
  icb->record_no = p >= 0 ? p : IXSEARCH(icb, '<', lengte);
  return icb->record_no;
}

IxGrens grens_van(const ICB* icb, int velden) {
  IxGrens uit;
  uit.lengte = velden > 0 ? ix_lengte(ix_sleutel(icb), velden) : 0;
  memcpy(uit.sleutel, icb->key_buf, sizeof uit.sleutel);
  return uit;
}

bool binnen(const ICB* icb, const IxGrens& grens) {
  const uint8_t* ingang = ix_gevonden(icb);
  return ingang != nullptr &&
         ix_vergelijk(ix_sleutel(icb), grens.sleutel, ingang, grens.lengte) == 0;
}

/// Notes a record that is no longer what its entry says.
void onthoud_scheef(ICB* icb, const void* rec) {
  IxHandvat* h = handvat(icb);
  const IxSleutel& s = ix_sleutel(icb);
  h->scheef_no = 0;
  ix_beeld(icb, s, rec, s.key_length, icb->record_no, h->beeld);
  if (ix_vergelijk(s, h->beeld, h->ingang, s.key_length) == 0) return;
  h->scheef_no = icb->record_no + 1;
  h->scheef_key = ix_huidig(icb);
}

/// Builds the whole key of the record that the caller stands on.
void sleutel_van(ICB* icb, const void* rec) {
  IxHandvat* h = handvat(icb);
  const int lengte = ix_sleutel(icb).key_length;
  IXBLDKEY(icb, rec, lengte);
  const bool zelfde = h->scheef_no == icb->record_no + 1 && h->scheef_no != 0 &&
                      h->scheef_key == ix_huidig(icb) &&
                      memcmp(h->beeld, icb->key_buf, static_cast<size_t>(lengte)) == 0;
  if (zelfde) memcpy(icb->key_buf, h->ingang, static_cast<size_t>(lengte));
}

bool lees_stap(ICB* icb, void* rec, char op, const IxGrens& grens) {
  if (!ix_vooruit(icb, rec, op, grens)) return IXRDDAT(icb, rec);
  return ix_levend(static_cast<const uint8_t*>(rec), icb->record_length);
}

/// From the entry found on, in the direction of `op`, to the first live record inside the limit.
bool eerste_levende(ICB* icb, void* rec, char op, const IxGrens& grens) {
  const int lengte = ix_sleutel(icb).key_length;
  IxHandvat* h = handvat(icb);
  while (icb->record_no >= 0 && binnen(icb, grens)) {
    memcpy(h->ingang, ix_gevonden(icb), static_cast<size_t>(lengte));
    if (lees_stap(icb, rec, op, grens)) {
      onthoud_scheef(icb, rec);
      return true;
    }
    // The buffer is all 0xFF now: on from the entry's own key.
    memcpy(icb->key_buf, h->ingang, static_cast<size_t>(lengte));
    if (op == '>')
      zoek_verder(icb, lengte);
    else
      zoek_terug(icb, lengte);
  }
  icb->record_no = -1;
  return false;
}

/// What the reads of keys have in common: the entry found, inside the limit, goes into the record.
bool geef_sleutel(ICB* icb, void* rec, const IxGrens& grens) {
  if (icb->record_no < 0 || !binnen(icb, grens)) {
    icb->record_no = -1;
    return false;
  }
  IXKEYTOREC(icb, rec);
  return true;
}

/// How long to wait for a moment at which nobody writes. A record may stay locked through
/// somebody's lunch, and whoever holds the whole file keeps the header too: then two readings that
/// agree have to do.
int64_t geduld_us(const ICB* icb) {
  if (icb->is_private != 0) return 2000;
  return file_lock('T', icb->data_fd, INT64_MAX / 2, 1) ? 200000 : 0;
}

/// The locks to tell a writer by: the header, which every change of a table holds, or sooner free,
/// the record's own. Of the table of a private index only the latter is known.
IoSloten sloten_van(const ICB* icb) {
  return {icb->data_fd, icb->is_private != 0 ? -1 : icb->index_fd};
}

/// A write that runs from one page of the file into the next can be seen half done for as long as
/// its writer is kept from going on. It is waited for longer than one within a page, and where the
/// header is known nothing else will do: it also tells of a writer that never locked the record.
int64_t lees_over_pagina(const ICB* icb, void* buffer, size_t n, int64_t plaats) {
  int64_t gewacht = 0, geduld = -1;
  IoSloten sloten = sloten_van(icb);
  if (sloten.kop_fd >= 0) sloten.stuk_fd = -1;
  for (int64_t pauze = 20;; pauze = std::min<int64_t>(pauze * 2, 1000)) {
    bool zeker = false;
    const int64_t uit = io_lees_heel(icb->data_fd, buffer, n, plaats, nullptr, sloten, &zeker);
    if (zeker || uit != static_cast<int64_t>(n)) return uit;
    if (geduld < 0) geduld = geduld_us(icb);
    if (gewacht >= geduld) return uit;
    const timespec even{0, pauze * 1000};
    nanosleep(&even, nullptr);
    gewacht += pauze;
  }
}

int64_t lees_slots(const ICB* icb, void* buffer, size_t n, int64_t plaats) {
  if (icb->cached != 0) ix_aanhang_uit(icb);
  if (ix_alleen(icb)) return io_lees(icb->data_fd, buffer, n, plaats);
  if (ix_over_pagina(plaats, n)) return lees_over_pagina(icb, buffer, n, plaats);
  const IoSloten sloten = icb->is_private != 0 ? IoSloten{} : sloten_van(icb);
  return io_lees_heel(icb->data_fd, buffer, n, plaats, nullptr, sloten);
}

}  // namespace

bool ix_levend(const uint8_t* rec, int lengte) {
  if (rec[0] < 255) return true;
  for (int i = 5; i < lengte; ++i)
    if (rec[i] < 255) return true;
  return false;
}

int64_t IXSEEKDAT(const ICB* icb) {
  ix_test(icb, "IXSEEKDAT");
  const int64_t plaats = static_cast<int64_t>(icb->record_no) * icb->record_length;
  if (plaats >= 0) return plaats;
  const std::string naam(icb->name, strnlen(icb->name, sizeof icb->name));
  ix_fataal(str_format("TQISAM(%d): %s(if=%d,df=%d,file=%d,start=%ld,len=%u)", EINVAL, naam,
                       icb->index_fd, icb->data_fd, icb->data_fd, plaats,
                       static_cast<unsigned>(icb->record_length))
                .c_str());
}

namespace {

bool levend_of_weg(const ICB* icb, void* rec, int64_t gelezen) {
  if (gelezen != icb->record_length) {
    memset(rec, 0xFF, static_cast<size_t>(icb->record_length));
    return false;
  }
  return ix_levend(static_cast<const uint8_t*>(rec), icb->record_length);
}

}  // namespace

bool IXRDDAT(const ICB* icb, void* rec) {
  const auto lengte = static_cast<size_t>(icb->record_length);
  return levend_of_weg(icb, rec, lees_slots(icb, rec, lengte, IXSEEKDAT(icb)));
}

bool ix_lees_eigen(const ICB* icb, void* rec) {
  const auto lengte = static_cast<size_t>(icb->record_length);
  return levend_of_weg(icb, rec, io_lees_heel(icb->data_fd, rec, lengte, IXSEEKDAT(icb), nullptr));
}

void IXWRDAT(const ICB* icb, const void* rec) {
  if (icb->cached != 0 && ix_aanhang(icb, rec)) return;
  io_schrijf(icb->data_fd, rec, static_cast<size_t>(icb->record_length), IXSEEKDAT(icb));
}

uint8_t* ix_werk(int nr) {
  alignas(64) static uint8_t werk[2][INT16_MAX + 1];
  return werk[nr & 1];
}

bool IXEXISTS(ICB* icb, void* rec) {
  const int lengte = IXKEYLEN(icb, 0);
  IXBLDKEY(icb, rec, lengte);
  return zoek(icb, '=', lengte) >= 0;
}

bool IXREAD(ICB* icb, void* rec) {
  if (!IXEXISTS(icb, rec)) return false;
  memcpy(handvat(icb)->ingang, ix_gevonden(icb), static_cast<size_t>(IXKEYLEN(icb, 0)));
  if (IXRDDAT(icb, rec)) {
    onthoud_scheef(icb, rec);
    return true;
  }
  icb->record_no = -1;
  return false;
}

bool IXFIRSTR(ICB* icb, void* rec, int n) {
  ix_test(icb, "IXFIRSTR");
  const int lengte = IXKEYLEN(icb, 0);
  icb->record_no = 0;  // a key with duplicates starts at its lowest number
  IXBLDKEY(icb, rec, lengte);
  const IxGrens grens = grens_van(icb, n);
  if (zoek(icb, '=', lengte) < 0) zoek(icb, '>', lengte);
  return eerste_levende(icb, rec, '>', grens);
}

bool IXNEXT(ICB* icb, void* rec, int n) {
  ix_test(icb, "IXBLDKEY");
  sleutel_van(icb, rec);
  const IxGrens grens = grens_van(icb, n);
  zoek_verder(icb, IXKEYLEN(icb, 0));
  return eerste_levende(icb, rec, '>', grens);
}

bool IXPREV(ICB* icb, void* rec, int n) {
  ix_test(icb, "IXBLDKEY");
  sleutel_van(icb, rec);
  const IxGrens grens = grens_van(icb, n);
  zoek_terug(icb, IXKEYLEN(icb, 0));
  return eerste_levende(icb, rec, '<', grens);
}

bool IXFIRSTK(ICB* icb, void* rec, int n) {
  const int lengte = IXKEYLEN(icb, n);
  IXBLDKEY(icb, rec, lengte);
  const IxGrens grens = grens_van(icb, n - 1);
  if (zoek(icb, '=', lengte) < 0) zoek(icb, '>', lengte);
  return geef_sleutel(icb, rec, grens);
}

bool IXNEXTK(ICB* icb, void* rec, int n) {
  const int lengte = IXKEYLEN(icb, n);
  IXBLDKEY(icb, rec, lengte);
  const IxGrens grens = grens_van(icb, n - 1);
  zoek_verder(icb, lengte);
  return geef_sleutel(icb, rec, grens);
}

bool IXPREVK(ICB* icb, void* rec, int n) {
  const int lengte = IXKEYLEN(icb, n);
  IXBLDKEY(icb, rec, lengte);
  const IxGrens grens = grens_van(icb, n - 1);
  zoek_terug(icb, lengte);
  return geef_sleutel(icb, rec, grens);
}

bool IXFINDK(ICB* icb, void* rec, int n) {
  const int lengte = IXKEYLEN(icb, n);
  IXBLDKEY(icb, rec, lengte);
  return zoek(icb, '=', lengte) >= 0;
}

int IXGET(ICB* icb, void* rec, int32_t number) {
  ix_test(icb, "IXGET");
  if (number < 0 || number >= icb->record_count) return -1;
  icb->record_no = number;
  return IXRDDAT(icb, rec) ? 1 : 0;
}

bool IXSKIP(ICB* icb, void* rec, int n, int steps, int32_t* number) {
  ix_test(icb, "IXSKIP");
  const auto lengte = static_cast<size_t>(icb->record_length);
  uint8_t* eerst = ix_werk(0);
  memcpy(eerst, rec, lengte);
  icb->record_no = *number;
  if (*number < 0 || !IXRDDAT(icb, rec)) {
    memcpy(rec, eerst, lengte);
    if (steps == 0) steps = 1;
  }
  bool goed = true;
  for (int64_t stap = steps < 0 ? -static_cast<int64_t>(steps) : steps; goed && stap > 0; --stap) {
    goed = steps < 0 ? IXPREVK(icb, rec, n) : IXNEXTK(icb, rec, n);
    if (goed) *number = icb->record_no;
  }
  icb->record_no = *number;
  if (*number < 0) return false;
  return IXRDDAT(icb, rec) && goed;
}

bool IXUNIQK(ICB* icb, void* rec, int fields) {
  ix_test(icb, "IXUNIQK");
  const IxSleutel& s = ix_sleutel(icb);
  const int voor = fields > 1 ? ix_lengte(s, fields - 1) : 0;
  int lengte = ix_lengte(s, fields);
  if (s.dup == 'J' && lengte == s.key_length - 4) lengte = s.key_length;
  if (fields <= 1)
    memset(icb->key_buf, 0, sizeof icb->key_buf);
  else
    IXBLDKEY(icb, rec, voor);
  const IxGrens grens = grens_van(icb, fields - 1);
  if (zoek(icb, '=', lengte) < 0) zoek(icb, '>', lengte);
  if (!geef_sleutel(icb, rec, grens)) return false;
  IXBLDKEY(icb, rec, lengte);
  if (zoek(icb, '>', lengte) >= 0 && binnen(icb, grens)) {
    icb->record_no = -1;
    return false;
  }
  return zoek(icb, '=', lengte) >= 0;
}

// The scan in slot order --------------------------------------------------------------------------

namespace {

struct {
  ICB* van = nullptr;  // the handle that scans, null none
  uint8_t* buffer = nullptr;
  size_t grootte = 0;  // whole records
  size_t gevuld = 0, plaats = 0;
  int32_t recno = -1;  // last slot given
} seq;

bool seq_begin(ICB* icb) {
  IXSEQ_STOP();
  ix_hooks.afbreken_aan();
  const auto lengte = static_cast<size_t>(icb->record_length);
  if (lengte == 0) return false;
  size_t n = std::max<size_t>(16384, lengte);
  for (; n >= lengte; n /= 2)
    if ((seq.buffer = static_cast<uint8_t*>(malloc(n))) != nullptr) break;
  if (seq.buffer == nullptr) return false;
  seq.van = icb;
  icb->record_no = -1;
  seq.grootte = n / lengte * lengte;
  // A session keeps its handle all day; the table has grown since.
  int32_t aantal;
  if (icb->mode != IX_EXCLUSIEF && icb->is_private == 0 &&
      io_lees(icb->index_fd, &aantal, sizeof aantal, offsetof(ICB, record_count)) == sizeof aantal)
    icb->record_count = aantal;
  return true;
}

bool seq_vul(ICB* icb) {
  if (ix_hooks.afgebroken()) return false;
  const int64_t plaats = (static_cast<int64_t>(seq.recno) + 1) * icb->record_length;
  const int64_t over = (static_cast<int64_t>(icb->record_count) - seq.recno - 1) *
                       static_cast<int64_t>(icb->record_length);
  const auto wens = static_cast<size_t>(std::min(static_cast<int64_t>(seq.grootte), over));
  const int64_t n = lees_slots(icb, seq.buffer, wens, plaats);
  const auto heel = static_cast<size_t>(std::max<int64_t>(n, 0));
  memset(seq.buffer + heel, 0xFF, seq.grootte - heel);  // a short file reads as deleted slots
  seq.gevuld = wens;
  seq.plaats = 0;
  return n > 0;
}

}  // namespace

void IXSEQ_STOP() noexcept {
  free(seq.buffer);
  seq = {};
}

void ix_seq_los(const ICB* icb) noexcept {
  if (seq.van == icb) IXSEQ_STOP();
}

bool IXSEQ(ICB* icb, void* rec) {
  ix_test(icb, "IXSEQ");
  if (seq.van != icb && !seq_begin(icb)) return false;
  const auto lengte = static_cast<size_t>(icb->record_length);
  while (seq.recno < icb->record_count - 1) {
    if (seq.plaats >= seq.gevuld && !seq_vul(icb)) break;
    memcpy(rec, seq.buffer + seq.plaats, lengte);
    seq.plaats += lengte;
    icb->record_no = ++seq.recno;
    if (ix_levend(static_cast<const uint8_t*>(rec), icb->record_length)) return true;
  }
  IXSEQ_STOP();
  return false;
}
