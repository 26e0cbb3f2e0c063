// Keys: definition strings, the image of a record's key, and the order of two images. Fields stand
// in an image in the order of the definition, each at its full width; integers big-endian, text up
// to its first NUL; a key with duplicates carries the record number behind its fields.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "isam/base.h"
#include "isam/ix_intern.h"

namespace {

constexpr size_t WOORD = 25;       // characters of a token
constexpr size_t DEFINITIE = 132;  // characters of a definition string that is built

/// Takes the next token off the string; false at its end.
bool volgend_woord(std::string_view& rest, bool& einde, std::string& woord) {
  if (einde) return false;
  const size_t komma = rest.find(',');
  std::string_view w = rest.substr(0, std::min(komma, WOORD));
  einde = komma == std::string_view::npos;
  rest = einde ? std::string_view() : rest.substr(komma + 1);
  while (!w.empty() && w.front() == ' ') w.remove_prefix(1);
  while (!w.empty() && w.back() == ' ') w.remove_suffix(1);
  woord = w;
  return true;
}

uint8_t plaats_in_record(const std::string& woord) {
  return static_cast<uint8_t>(std::clamp(atoi(woord.c_str()), 0, 255));
}

void tabel_definitie(ICB* icb, std::string_view rest) {
  bool einde = false;
  std::string woord;
  if (volgend_woord(rest, einde, woord) && !woord.empty())
    veld_zet(icb->description, sizeof icb->description, woord);
  if (volgend_woord(rest, einde, woord) && atoi(woord.c_str()) > 0)
    icb->record_length = static_cast<int16_t>(std::min(atoi(woord.c_str()), INT16_MAX + 0));
}

void sleutel_definitie(IxSleutel& s, std::string_view rest, bool eerste) {
  s = IxSleutel{};
  s.dup = 'J';
  bool einde = false;
  int velden = 0, lengte = 0;
  std::string woord;
  while (volgend_woord(rest, einde, woord)) {
    if (woord == "NODUPS") {
      s.dup = 'N';
    } else if (woord == "C" || woord == "I") {
      if (velden == IX_VELDEN) break;
      std::string van, tot;
      volgend_woord(rest, einde, van);
      volgend_woord(rest, einde, tot);
      s.field_type[velden] = woord[0];
      s.field_start[velden] = plaats_in_record(van);
      s.field_end[velden] = plaats_in_record(tot);
      lengte += s.field_end[velden] - s.field_start[velden] + 1;
      ++velden;
    } else {
      veld_zet(s.key_name, sizeof s.key_name, woord);
    }
  }
  if (eerste) s.dup = 'N';
  if (s.dup == 'J') lengte += 4;
  s.key_length = static_cast<uint8_t>(std::clamp(lengte, 0, 255));
  s.max_entries = static_cast<int8_t>(std::min(IX_INGANGEN / ix_ingang(s), 127));
}

/// Bytes of field i of a key; 0 when there is no such field.
int breedte(const IxSleutel& s, int i) {
  if (i >= IX_VELDEN || s.field_type[i] == 0) return 0;
  return std::max(0, s.field_end[i] - s.field_start[i] + 1);
}

bool omkeren(int n) { return n == 1 || n == 2 || n == 4; }

void veld_beeld(const ICB* icb, const IxSleutel& s, int i, const uint8_t* rec, uint8_t* uit,
                int n) {
  memset(uit, 0, static_cast<size_t>(n));
  const int van = s.field_start[i] - 1;
  if (van < 0 || van + n > icb->record_length) return;
  if (s.field_type[i] == 'C')
    memccpy(uit, rec + van, 0, static_cast<size_t>(n));
  else if (omkeren(n))
    std::reverse_copy(rec + van, rec + van + n, uit);
}

/// The definition string that UPDFCB_* build.
struct {
  std::string tekst;
  const char* basis = nullptr;
  int nummer = -1;
} bouw;

void bouw_bij(const std::string& tekst) {
  bouw.tekst += tekst;
  if (bouw.tekst.size() > DEFINITIE) bouw.tekst.resize(DEFINITIE);
}

}  // namespace

int32_t ix_i32(const uint8_t* p) {
  int32_t v;
  memcpy(&v, p, sizeof v);
  return v;
}

void ix_zet_i32(uint8_t* p, int32_t v) { memcpy(p, &v, sizeof v); }

void IXUPDFCB(ICB* icb, int key_number, const char* definition) {
  ix_test(icb, "IXUPDFCB");
  if (definition == nullptr || key_number < 0 || key_number > IX_SLEUTELS) return;
  if (key_number == 0) {
    tabel_definitie(icb, definition);
    return;
  }
  sleutel_definitie(icb->keys[key_number - 1], definition, key_number == 1);
  icb->key_count = static_cast<int8_t>(std::max<int>(icb->key_count, key_number));
}

void UPDFCB_INX(const char* description, const void* record, int length) {
  bouw.basis = static_cast<const char*>(record);
  bouw.nummer = 0;
  bouw.tekst = str_format("%-.19s,%d", description, length);
}

void UPDFCB_KEY(int key_number, const char* name, bool duplicates) {
  bouw.nummer = key_number;
  bouw.tekst = str_format("%-.8s", name);
  if (!duplicates) bouw_bij(",NODUPS");
}

void UPDFCB_FLD(char type, const void* field, int length) {
  const auto start = static_cast<int>(static_cast<const char*>(field) - bouw.basis) + 1;
  bouw_bij(str_format(",%c,%d,%d", type, start, start + length - 1));
}

void UPDFCB_END(ICB* icb) {
  if (bouw.nummer >= 0) IXUPDFCB(icb, bouw.nummer, bouw.tekst.c_str());
  bouw.tekst.clear();
  bouw.nummer = -1;
}

void ix_beeld(const ICB* icb, const IxSleutel& s, const void* rec, int lengte, int32_t recno,
              uint8_t* uit) {
  const auto* bron = static_cast<const uint8_t*>(rec);
  const int heel = std::min<int>(s.key_length, IX_SLEUTELBYTES);
  const bool nummer = s.dup == 'J' && lengte == s.key_length && heel >= 4;
  if (nummer) lengte -= 4;
  int klaar = 0;
  for (int i = 0; i < IX_VELDEN && klaar < lengte; ++i) {
    const int n = breedte(s, i);
    if (n == 0 || klaar + n > heel) break;
    veld_beeld(icb, s, i, bron, uit + klaar, n);
    klaar += n;
  }
  if (nummer && klaar + 4 <= heel) {
    for (int i = 0; i < 4; ++i)
      uit[klaar++] = static_cast<uint8_t>(static_cast<uint32_t>(recno) >> (24 - 8 * i));
  }
  memset(uit + klaar, 0, static_cast<size_t>(heel - klaar));
}

void IXBLDKEY(ICB* icb, const void* rec, int length) {
  ix_test(icb, "IXBLDKEY");
  ix_beeld(icb, ix_sleutel(icb), rec, length, icb->record_no, icb->key_buf);
}

int ix_lengte(const IxSleutel& s, int velden) {
  if (velden <= 0) return s.key_length;
  int lengte = 0;
  for (int i = 0; i < velden && breedte(s, i) > 0; ++i) lengte += breedte(s, i);
  return lengte;
}

int IXKEYLEN(ICB* icb, int fields) {
  ix_test(icb, "IXKEYLEN");
  return ix_lengte(ix_sleutel(icb), fields);
}

void IXKEYTOREC(ICB* icb, void* rec) {
  ix_test(icb, "IXKEYTOREC");
  const uint8_t* sleutel = ix_gevonden(icb);
  if (sleutel == nullptr) return;
  const IxSleutel& s = ix_sleutel(icb);
  auto* doel = static_cast<uint8_t*>(rec);
  int klaar = 0;
  for (int i = 0; i < IX_VELDEN; ++i) {
    const int n = breedte(s, i), van = s.field_start[i] - 1;
    if (n == 0 || klaar + n > s.key_length || van < 0 || van + n > icb->record_length) return;
    if (s.field_type[i] == 'I')
      std::reverse_copy(sleutel + klaar, sleutel + klaar + n, doel + van);
    else
      memcpy(doel + van, sleutel + klaar, static_cast<size_t>(n));
    klaar += n;
  }
}

int ix_vergelijk_velden(const IxSleutel& s, const uint8_t* a, const uint8_t* b, int lengte) {
  lengte = std::min(lengte, IX_SLEUTELBYTES);
  if (lengte <= 0) return 0;
  int eerste = 0;
  while (eerste < IX_VELDEN && s.field_type[eerste] == 'I') ++eerste;
  if (eerste == IX_VELDEN || s.field_type[eerste] == 0) return ix_woorden(a, b, lengte);
  int rest = lengte, plaats = 0;
  for (int i = 0; i < IX_VELDEN && rest > 0; ++i) {
    const int n = breedte(s, i);
    if (n == 0 || plaats + n > IX_SLEUTELBYTES) break;
    const int uit = s.field_type[i] == 'C' ? ix_collatie(a + plaats, b + plaats, n)
                                           : ix_woorden(a + plaats, b + plaats, n);
    if (uit != 0) return uit;
    plaats += n;
    rest -= n;
  }
  if (s.dup == 'J' && lengte == s.key_length && plaats + 4 <= IX_SLEUTELBYTES)
    return ix_woorden(a + plaats, b + plaats, 4);
  return 0;
}

int IXCOMP(ICB* icb, const void* key_a, const void* key_b, int length) {
  ix_test(icb, "IXCOMP");
  return ix_vergelijk(ix_sleutel(icb), static_cast<const uint8_t*>(key_a),
                      static_cast<const uint8_t*>(key_b), length);
}
