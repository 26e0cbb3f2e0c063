// Text editing in place. Positions count from 0; what would reach past the text does nothing.
#include <cstring>

#include "isam/base.h"

namespace {

// Opens a gap of n bytes; the buffer has the room. False for a place outside the text.
bool maak_gat(char* tekst, size_t n, int positie) {
  const size_t lengte = std::strlen(tekst);
  if (positie < 0 || static_cast<size_t>(positie) > lengte) return false;
  char* p = tekst + positie;
  std::memmove(p + n, p, lengte - static_cast<size_t>(positie) + 1);
  return true;
}

int hexcijfer(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

struct Paar {
  uint8_t klein, groot;
};
// The accented letters that have a capital, each with it.
constexpr Paar ACCENTEN[] = {
    {0x84, 0x8E}, {0x85, 0xB7}, {0x86, 0x8F}, {0x83, 0xB6}, {0xA0, 0xB5}, {0xC6, 0xC7},
    {0x87, 0x80}, {0x89, 0xD3}, {0x8A, 0xD4}, {0x88, 0xD2}, {0x82, 0x90}, {0x8B, 0xD8},
    {0x8D, 0xDE}, {0x8C, 0xD7}, {0xA1, 0xD6}, {0xA4, 0xA5}, {0x94, 0x99}, {0x95, 0xE3},
    {0x9B, 0x9D}, {0x93, 0xE2}, {0xA2, 0xE0}, {0xE4, 0xE5}, {0x81, 0x9A}, {0x97, 0xEB},
    {0x96, 0xEA}, {0xA3, 0xE9}, {0xEC, 0xED}, {0x91, 0x92},
};

struct Hoofdletters {
  uint8_t van[256];
};
constexpr Hoofdletters maak_hoofdletters() {
  Hoofdletters h{};
  for (int i = 0; i < 256; ++i)
    h.van[i] = static_cast<uint8_t>(i >= 'a' && i <= 'z' ? i - 'a' + 'A' : i);
  for (const Paar& p : ACCENTEN) h.van[p.klein] = p.groot;
  return h;
}
constexpr Hoofdletters HOOFD = maak_hoofdletters();

}  // namespace

void str_cut(char* tekst, int positie, int aantal) {
  const size_t lengte = std::strlen(tekst);
  if (positie < 0 || aantal <= 0) return;
  const size_t p = static_cast<size_t>(positie), n = static_cast<size_t>(aantal);
  if (p + n > lengte) return;
  std::memmove(tekst + p, tekst + p + n, lengte - p - n);
  std::memset(tekst + lengte - n, 0, n);
}

void str_put(char* tekst, char teken, int positie) {
  if (maak_gat(tekst, 1, positie)) tekst[positie] = teken;
}

void str_ins(char* tekst, const char* invoeg, int positie) {
  const std::string_view stuk(invoeg);
  if (maak_gat(tekst, stuk.size(), positie)) stuk.copy(tekst + positie, stuk.size());
}

int str_chr(char teken, const char* tekst) {
  if (teken == 0) return -1;
  const char* p = std::strchr(tekst, teken);
  return p == nullptr ? -1 : static_cast<int>(p - tekst);
}

int str_pos(const char* patroon, const char* tekst) {
  const char* p = std::strstr(tekst, patroon);
  return p == nullptr ? -1 : static_cast<int>(p - tekst);
}

char* str_rtrim(char* tekst) {
  size_t n = std::strlen(tekst);
  while (n > 0 && tekst[n - 1] == ' ') tekst[--n] = 0;
  return tekst;
}

char* str_ltrim(char* tekst) {
  const size_t n = std::strspn(tekst, " ");
  if (n > 0) std::memmove(tekst, tekst + n, std::strlen(tekst + n) + 1);
  return tekst;
}

char* str_trim(char* tekst) { return str_ltrim(str_rtrim(tekst)); }

uint8_t chr_upper(uint8_t teken) noexcept { return HOOFD.van[teken]; }

char* str_upper(char* tekst) {
  for (char* p = tekst; *p != 0; ++p) *p = static_cast<char>(chr_upper(static_cast<uint8_t>(*p)));
  return tekst;
}

int mem_cmp(const void* a, const void* b, size_t n) {
  const auto* x = static_cast<const uint8_t*>(a);
  const auto* y = static_cast<const uint8_t*>(b);
  for (size_t i = 0; i < n; ++i)
    if (x[i] != y[i]) return x[i] - y[i];
  return 0;
}

void str_unescape(char* tekst) {
  char* uit = tekst;
  for (const char* p = tekst; *p != 0;) {
    if (p[0] == '\\' && p[1] == '\\') {
      *uit++ = '\\';
      p += 2;
    } else if (p[0] == '\\' && hexcijfer(p[1]) >= 0 && hexcijfer(p[2]) >= 0) {
      *uit++ = static_cast<char>(hexcijfer(p[1]) * 16 + hexcijfer(p[2]));
      p += 3;
    } else {
      *uit++ = *p++;
    }
  }
  *uit = 0;
}

std::string veld_tekst(const char* veld, size_t n) { return {veld, strnlen(veld, n)}; }

void veld_zet(char* veld, size_t n, std::string_view tekst) {
  const size_t lengte = tekst.size() < n ? tekst.size() : n;
  if (lengte > 0) std::memmove(veld, tekst.data(), lengte);
  std::memset(veld + lengte, 0, n - lengte);
}
