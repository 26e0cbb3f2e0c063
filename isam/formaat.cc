// The one core behind every formatted text: it walks the format, never the argument list of C.
//
// Guarantees: no read past the arguments or past a text's bound, no write past the buffer, and a
// width or precision from a catalogue that is out of all reason is cut.
#include "isam/formaat.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr int HOOGSTE_MAAT = 32000;  // widest field and longest precision that is honoured

constexpr bool een_van(char c, std::string_view tekens) {
  return tekens.find(c) != std::string_view::npos;
}

struct Maat {
  bool links = false, plus = false, blank = false, hekje = false, nul = false;
  int breedte = 0;
  int precisie = -1;  // -1: none given
};

bool maat_argument(std::span<const Arg>& args, int& waarde) {
  if (args.empty()) return false;
  const Arg& a = args.front();
  int64_t v = 0;
  if (a.soort == Arg::Soort::getal || a.soort == Arg::Soort::natuurlijk) v = a.i;
  waarde = static_cast<int>(std::clamp<int64_t>(v, -HOOGSTE_MAAT, HOOGSTE_MAAT));
  args = args.subspan(1);
  return true;
}

int cijfers(std::string_view& rest) {
  int v = 0;
  while (!rest.empty() && rest[0] >= '0' && rest[0] <= '9') {
    v = std::min(v * 10 + (rest[0] - '0'), HOOGSTE_MAAT);
    rest.remove_prefix(1);
  }
  return v;
}

// Reads flags, width and precision; false when a "*" finds no argument.
bool maat_lees(std::string_view stuk, std::span<const Arg>& args, Maat& maat) {
  stuk.remove_prefix(1);
  for (; !stuk.empty() && een_van(stuk[0], "-+ #0"); stuk.remove_prefix(1)) {
    switch (stuk[0]) {
      case '-':
        maat.links = true;
        break;
      case '+':
        maat.plus = true;
        break;
      case ' ':
        maat.blank = true;
        break;
      case '#':
        maat.hekje = true;
        break;
      default:
        maat.nul = true;
        break;
    }
  }
  if (!stuk.empty() && stuk[0] == '*') {
    stuk.remove_prefix(1);
    if (!maat_argument(args, maat.breedte)) return false;
    if (maat.breedte < 0) {
      maat.links = true;
      maat.breedte = -maat.breedte;
    }
  } else {
    maat.breedte = cijfers(stuk);
  }
  if (stuk.empty() || stuk[0] != '.') return true;
  stuk.remove_prefix(1);
  if (!stuk.empty() && stuk[0] == '*') {
    if (!maat_argument(args, maat.precisie)) return false;
    if (maat.precisie < 0) maat.precisie = -1;
  } else {
    maat.precisie = cijfers(stuk);
  }
  return true;
}

void vul_aan(std::string& uit, std::string_view tekst, const Maat& maat) {
  const size_t breedte = static_cast<size_t>(maat.breedte);
  const size_t vul = breedte > tekst.size() ? breedte - tekst.size() : 0;
  if (!maat.links) uit.append(vul, ' ');
  uit.append(tekst);
  if (maat.links) uit.append(vul, ' ');
}

std::string_view tekst_van(const Arg& a, int precisie) {
  size_t grens = a.n;
  if (precisie >= 0) grens = std::min(grens, static_cast<size_t>(precisie));
  if (a.s == nullptr || grens == 0) return {};
  const size_t n = grens == SIZE_MAX ? std::strlen(a.s) : strnlen(a.s, grens);
  return {a.s, n};
}

// What a signed conversion prints. A 32-bit unsigned value turns over as it would in a 32-bit word.
int64_t getal_van(const Arg& a) {
  switch (a.soort) {
    case Arg::Soort::getal:
    case Arg::Soort::teken:
      return a.i;
    case Arg::Soort::natuurlijk:
      if (a.u > INT32_MAX && a.u <= UINT32_MAX) return static_cast<int32_t>(a.u);
      return static_cast<int64_t>(a.u);
    case Arg::Soort::breuk:
      if (!(std::fabs(a.f) < 9e18)) return 0;
      return static_cast<int64_t>(a.f);
    case Arg::Soort::tekst:
      break;
  }
  return 0;
}

uint64_t natuurlijk_van(const Arg& a) {
  if (a.soort == Arg::Soort::natuurlijk) return a.u;
  const int64_t v = getal_van(a);
  if (v < 0 && v >= INT32_MIN) return static_cast<uint32_t>(v);
  return static_cast<uint64_t>(v);
}

double breuk_van(const Arg& a) {
  switch (a.soort) {
    case Arg::Soort::breuk:
      return a.f;
    case Arg::Soort::natuurlijk:
      return static_cast<double>(a.u);
    case Arg::Soort::tekst:
      return 0;
    default:
      return static_cast<double>(a.i);
  }
}

// The conversion as C knows it, with width and precision as arguments.
template <class V>
void druk(std::string& uit, const Maat& maat, const char* soort, V waarde) {
  char fmt[16];
  char* p = fmt;
  *p++ = '%';
  if (maat.links) *p++ = '-';
  if (maat.plus) *p++ = '+';
  if (maat.blank) *p++ = ' ';
  if (maat.hekje) *p++ = '#';
  if (maat.nul) *p++ = '0';
  std::memcpy(p, "*.*", 3);
  std::strcpy(p + 3, soort);
  char klein[128];
  const int n = std::snprintf(klein, sizeof klein, fmt, maat.breedte, maat.precisie, waarde);
  if (n < 0) return;
  const size_t lengte = static_cast<size_t>(n);
  if (lengte < sizeof klein) {
    uit.append(klein, lengte);
    return;
  }
  const size_t oud = uit.size();
  uit.resize(oud + lengte + 1);
  std::snprintf(uit.data() + oud, lengte + 1, fmt, maat.breedte, maat.precisie, waarde);
  uit.resize(oud + lengte);
}

void druk_geheel(std::string& uit, const Conversie& stuk, const Maat& maat, const Arg& a) {
  const bool bytes = stuk.voor == 'h' && stuk.tekst.find("hh") != std::string_view::npos;
  if (stuk.letter == 'd' || stuk.letter == 'i') {
    int64_t v = getal_van(a);
    if (stuk.voor == 'h') v = bytes ? static_cast<int8_t>(v) : static_cast<int16_t>(v);
    druk(uit, maat, "lld", static_cast<long long>(v));
    return;
  }
  uint64_t v = natuurlijk_van(a);
  if (stuk.voor == 'h') v &= bytes ? 0xFFu : 0xFFFFu;
  const char soort[4] = {'l', 'l', stuk.letter, 0};
  druk(uit, maat, soort, static_cast<unsigned long long>(v));
}

void druk_tekst(std::string& uit, const Maat& maat, const Arg& a) {
  if (a.soort == Arg::Soort::tekst) {
    vul_aan(uit, tekst_van(a, maat.precisie), maat);
    return;
  }
  // A number or a character where a text is asked: its own plain form.
  std::string plat;
  if (a.soort == Arg::Soort::teken)
    plat.push_back(static_cast<char>(a.i));
  else if (a.soort == Arg::Soort::breuk)
    druk(plat, Maat{}, "g", a.f);
  else if (a.soort == Arg::Soort::getal)
    plat = std::to_string(a.i);
  else
    plat = std::to_string(a.u);
  vul_aan(uit, tekst_van(Arg(std::string_view(plat)), maat.precisie), maat);
}

void druk_teken(std::string& uit, const Maat& maat, const Arg& a) {
  char teken = 0;
  if (a.soort == Arg::Soort::tekst) {
    const std::string_view t = tekst_van(a, 1);
    if (!t.empty()) teken = t[0];
  } else {
    teken = static_cast<char>(getal_van(a));
  }
  vul_aan(uit, std::string_view(&teken, 1), maat);
}

}  // namespace

bool formaat_volgende(std::string_view& formaat, Conversie& stuk) noexcept {
  stuk = Conversie{};
  if (formaat.empty()) return false;
  if (formaat[0] != '%') {
    const size_t n = std::min(formaat.find('%'), formaat.size());
    stuk.tekst = formaat.substr(0, n);
    formaat.remove_prefix(n);
    return true;
  }
  if (formaat.size() > 1 && formaat[1] == '%') {
    stuk.tekst = formaat.substr(0, 1);
    formaat.remove_prefix(2);
    return true;
  }
  size_t n = 1;
  while (n < formaat.size() && een_van(formaat[n], "-+ #0123456789.*hlLzjt")) ++n;
  if (n == formaat.size()) {  // no letter follows: nothing but text
    stuk.tekst = formaat;
    formaat = {};
    return true;
  }
  stuk.tekst = formaat.substr(0, n + 1);
  stuk.letter = formaat[n];
  if (een_van(formaat[n - 1], "hlL")) stuk.voor = formaat[n - 1];
  formaat.remove_prefix(n + 1);
  return true;
}

void formaat_een(std::string& uit, const Conversie& stuk, std::span<const Arg>& args) {
  if (stuk.letter == 0 || !een_van(stuk.letter, "sdiouxXefgEGc")) {
    uit.append(stuk.tekst);
    return;
  }
  Maat maat;
  if (!maat_lees(stuk.tekst, args, maat) || args.empty()) return;
  const Arg& a = args.front();
  args = args.subspan(1);
  const char breuk[2] = {stuk.letter, 0};
  switch (stuk.letter) {
    case 's':
      druk_tekst(uit, maat, a);
      break;
    case 'c':
      druk_teken(uit, maat, a);
      break;
    case 'e':
    case 'f':
    case 'g':
    case 'E':
    case 'G':
      druk(uit, maat, breuk, breuk_van(a));
      break;
    default:
      druk_geheel(uit, stuk, maat, a);
      break;
  }
}

std::string formaat_tekst(const char* formaat, std::span<const Arg> args) {
  std::string uit;
  if (formaat == nullptr) return uit;
  std::string_view rest(formaat);
  Conversie stuk;
  while (formaat_volgende(rest, stuk)) formaat_een(uit, stuk, args);
  return uit;
}

size_t formaat_in(char* buffer, size_t grootte, const char* formaat, std::span<const Arg> args) {
  if (buffer == nullptr || grootte == 0) return 0;
  const std::string tekst = formaat_tekst(formaat, args);
  const size_t n = std::min(tekst.size(), grootte - 1);
  std::memcpy(buffer, tekst.data(), n);
  buffer[n] = 0;
  return n;
}
