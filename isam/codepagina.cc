// Code page 850 to Unicode and back. Inside every text is one byte a character; only the terminal,
// the tools and some printers see anything else.
#include "isam/base.h"

namespace {

constexpr char16_t HOOG[128] = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF,
    0x00EE, 0x00EC, 0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9,
    0x00FF, 0x00D6, 0x00DC, 0x00F8, 0x00A3, 0x00D8, 0x00D7, 0x0192, 0x00E1, 0x00ED, 0x00F3, 0x00FA,
    0x00F1, 0x00D1, 0x00AA, 0x00BA, 0x00BF, 0x00AE, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB,
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x00C1, 0x00C2, 0x00C0, 0x00A9, 0x2563, 0x2551, 0x2557,
    0x255D, 0x00A2, 0x00A5, 0x2510, 0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x00E3, 0x00C3,
    0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x00A4, 0x00F0, 0x00D0, 0x00CA, 0x00CB,
    0x00C8, 0x0131, 0x00CD, 0x00CE, 0x00CF, 0x2518, 0x250C, 0x2588, 0x2584, 0x00A6, 0x00CC, 0x2580,
    0x00D3, 0x00DF, 0x00D4, 0x00D2, 0x00F5, 0x00D5, 0x00B5, 0x00FE, 0x00DE, 0x00DA, 0x00DB, 0x00D9,
    0x00FD, 0x00DD, 0x00AF, 0x00B4, 0x00AD, 0x00B1, 0x2017, 0x00BE, 0x00B6, 0x00A7, 0x00F7, 0x00B8,
    0x00B0, 0x00A8, 0x00B7, 0x00B9, 0x00B3, 0x00B2, 0x25A0, 0x00A0,
};

constexpr char32_t GEEN = 0xFFFFFFFF;

void utf8_bij(std::string& uit, char32_t punt) {
  if (punt < 0x80) {
    uit.push_back(static_cast<char>(punt));
  } else if (punt < 0x800) {
    uit.push_back(static_cast<char>(0xC0 | (punt >> 6)));
    uit.push_back(static_cast<char>(0x80 | (punt & 0x3F)));
  } else {
    uit.push_back(static_cast<char>(0xE0 | (punt >> 12)));
    uit.push_back(static_cast<char>(0x80 | ((punt >> 6) & 0x3F)));
    uit.push_back(static_cast<char>(0x80 | (punt & 0x3F)));
  }
}

// Takes one character off the front; GEEN for bytes that are none, of which one is taken.
char32_t utf8_volgende(std::string_view& rest) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(rest[i]); };
  const uint8_t kop = byte(0);
  const size_t n = kop < 0x80   ? 1
                   : kop < 0xC2 ? 0
                   : kop < 0xE0 ? 2
                   : kop < 0xF0 ? 3
                   : kop < 0xF5 ? 4
                                : 0;
  if (n == 0 || n > rest.size()) {
    rest.remove_prefix(1);
    return GEEN;
  }
  char32_t punt = n == 1 ? kop : kop & (0x7Fu >> n);
  for (size_t i = 1; i < n; ++i) {
    if ((byte(i) & 0xC0) != 0x80) {
      rest.remove_prefix(1);
      return GEEN;
    }
    punt = punt << 6 | (byte(i) & 0x3F);
  }
  rest.remove_prefix(n);
  return punt;
}

}  // namespace

char32_t cp850_punt(uint8_t teken) noexcept { return teken < 0x80 ? teken : HOOG[teken - 0x80]; }

uint8_t cp850_byte(char32_t punt) noexcept {
  if (punt < 0x80) return static_cast<uint8_t>(punt);
  for (size_t i = 0; i < 128; ++i)
    if (HOOG[i] == punt) return static_cast<uint8_t>(0x80 + i);
  return 0;
}

std::string cp850_utf8(std::string_view bytes) {
  std::string uit;
  uit.reserve(bytes.size());
  for (const char c : bytes) utf8_bij(uit, cp850_punt(static_cast<uint8_t>(c)));
  return uit;
}

std::string utf8_cp850(std::string_view utf8, bool* geheel) {
  std::string uit;
  uit.reserve(utf8.size());
  while (!utf8.empty()) {
    const char32_t punt = utf8_volgende(utf8);
    const uint8_t teken = punt == GEEN ? uint8_t{0} : cp850_byte(punt);
    if (teken == 0 && punt != 0) {
      if (geheel != nullptr) *geheel = false;
      uit.push_back('?');
    } else {
      uit.push_back(static_cast<char>(teken));
    }
  }
  return uit;
}
