// What is printed on a label and typed or scanned at a field: internal EAN-13 codes, plain label
// numbers, a letter with a number, and everything else, which is a foreign EAN.
#include <algorithm>
#include <cstring>

#include "isam/base.h"
#include "main/iotab.h"
#include "sub/ioeti.h"
#include "sub/teksten.h"

namespace {

constexpr size_t LENGTE = 13;
constexpr int32_t NUMMER_MAX = 999999999;
constexpr uint32_t MAATCODE_EERSTE = 1000, MAATCODE_LAATSTE = 9999999;
constexpr std::string_view LETTERS = "MAOE";

struct SysRec2 {
  uint16_t voorvoegsel[9];  // four-digit prefixes that other codes have, 0 unused
  uint8_t rest[46];
};
static_assert(sizeof(SysRec2) == 64);
struct SysRec5 {
  uint32_t maatcode;
  uint8_t rest[60];
};
static_assert(sizeof(SysRec5) == 64);

bool cijfers(std::string_view t) {
  return !t.empty() && std::ranges::all_of(t, [](char c) { return c >= '0' && c <= '9'; });
}

/// The value of up to 18 digits.
int64_t waarde(std::string_view t) {
  int64_t w = 0;
  for (const char c : t) w = w * 10 + (c - '0');
  return w;
}

bool gereserveerd(std::string_view code) {
  SysRec2 rec{};
  int32_t nummer = 2;
  if (!iotab('R', &nummer, &rec, SYS_RECORDS)) return false;
  const int64_t voor = waarde(code.substr(0, 4));
  return std::ranges::any_of(rec.voorvoegsel, [&](uint16_t v) { return v != 0 && v == voor; });
}

bool hele_nummer(std::string_view t, Etiketcode* code) {
  if (t.size() != 8 || t.front() > '2' || !cijfers(t) || eti_cijfers() != 8) return false;
  *code = {0, static_cast<int32_t>(waarde(t))};
  return true;
}

bool interne_code(std::string_view t, Etiketcode* code) {
  if (t.size() != LENGTE || t.front() != '2' || !ean_goed(t) || gereserveerd(t)) return false;
  const int64_t letter = waarde(t.substr(2, 2));
  const auto nummer = static_cast<int32_t>(waarde(t.substr(4)));
  if (letter > 26) return false;
  if (letter == 0 && nummer > eti_hoogste_blok() * 10 + 10) return false;
  *code = {letter == 0 ? '\0' : static_cast<char>('A' + letter - 1), nummer};
  return true;
}

bool letter_nummer(std::string_view t, Etiketcode* code) {
  const std::string_view vertaald = txt(T_ETIKODE_LETTERS);
  const size_t plaats = vertaald.find(t.front());
  const std::string_view rest = t.substr(1);
  if (plaats >= LETTERS.size() || !cijfers(rest) || rest.size() > 18) return false;
  const int64_t nummer = waarde(rest);
  if (nummer > NUMMER_MAX) return false;
  *code = {LETTERS[plaats], static_cast<int32_t>(nummer)};
  return true;
}

}  // namespace

void etikode_maak(char letter, int32_t nummer, char* code14) {
  const int plaats = letter >= 'A' && letter <= 'Z' ? letter - 'A' + 1 : 0;
  str_printf(code14, LENGTE + 1, "20%02d%09ld", plaats, std::clamp(nummer, 0, NUMMER_MAX));
  while (!ean_goed(code14) && code14[1] < '9') ++code14[1];
}

bool etikode_lees(std::string_view tekst, Etiketcode* code) {
  tekst = tekst.substr(0, tekst.find('\0'));
  while (!tekst.empty() && tekst.back() == ' ') tekst.remove_suffix(1);
  if (tekst.empty()) return false;
  if (hele_nummer(tekst, code) || interne_code(tekst, code) || letter_nummer(tekst, code)) {
    return true;
  }
  *code = {'E', 0};
  return true;
}

int32_t maatcode_nieuw() {
  SysRec5 rec{};
  int32_t nummer = 5;
  iotab('X', &nummer, &rec, SYS_RECORDS);  // a record never used is all zero: false, but locked
  const bool begin = rec.maatcode < MAATCODE_EERSTE || rec.maatcode >= MAATCODE_LAATSTE;
  rec.maatcode = begin ? MAATCODE_EERSTE : rec.maatcode + 1;
  iotab('W', &nummer, &rec, SYS_RECORDS);
  return static_cast<int32_t>(rec.maatcode);
}
