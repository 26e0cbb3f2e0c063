// Fields of several letters or digits as the operator types them: with commas between, and back.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "isam/formaat.h"
#include "sub/sel_intern.h"

namespace {

constexpr size_t VELD = 19;  // width of these fields
constexpr size_t DOELGROEPEN = 10;
constexpr const char* SEIZOENEN = "ZWK";

bool scheiding(char c) { return c == '.' || c == ','; }

}  // namespace

std::string doelgroep_naar_tekst(const char doelgroep[11]) {
  std::string uit;
  for (size_t i = 0; i < DOELGROEPEN && doelgroep[i] != 0; ++i) {
    if (i > 0) uit += ',';
    uit += doelgroep[i];
  }
  // The field drops blanks at its end; behind a comma they stay.
  if (!uit.empty() && uit.back() == ' ' && uit.size() < VELD) uit += ',';
  return uit;
}

const Tekst* doelgroep_uit_tekst(const char* tekst, char doelgroep[11], char* teken) {
  char uit[11] = {};
  size_t n = 0;
  const auto fout = [teken](char c, const Tekst& t) {
    *teken = c;
    return &t;
  };
  for (const char* p = tekst; *p != 0; ++p) {
    if (scheiding(*p)) return fout(*p, T_SEL_ONGELDIG);
    if (memchr(uit, *p, n) != nullptr) return fout(*p, T_SEL_DUBBEL_DOELGROEP);
    if (n == DOELGROEPEN) return fout(*p, T_SEL_ONGELDIG);
    uit[n++] = *p;
    if (p[1] == 0) break;
    if (!scheiding(*++p)) return fout(*p, T_SEL_KOMMA);
  }
  memcpy(doelgroep, uit, sizeof uit);
  return nullptr;
}

std::string vlaggen_naar_tekst(const uint8_t vlaggen[10]) {
  std::string uit;
  for (int i = 0; i < 10; ++i) {
    if (vlaggen[i] != 0) uit += str_format("%hu,", i);
  }
  if (uit.size() > VELD) uit.pop_back();
  return uit;
}

const Tekst* vlaggen_uit_tekst(const char* tekst, uint8_t vlaggen[10], char* teken) {
  uint8_t uit[10] = {};
  for (const char* p = tekst; *p != 0; ++p) {
    *teken = *p;
    if (*p < '0' || *p > '9') return &T_SEL_ONGELDIG;
    uit[*p - '0'] = 1;
    if (p[1] == 0) break;
    *teken = *++p;
    if (!scheiding(*p)) return &T_SEL_KOMMA;
  }
  memcpy(vlaggen, uit, sizeof uit);
  return nullptr;
}

void seizoen_vertaal(char seizoen[3], bool naar_scherm) {
  const char* van = naar_scherm ? SEIZOENEN : txt(T_SEL_LETTERS_SEIZOEN);
  const char* naar = naar_scherm ? txt(T_SEL_LETTERS_SEIZOEN) : SEIZOENEN;
  const size_t lengte = std::min(strlen(van), strlen(naar));
  for (int i = 0; i < 2 && seizoen[i] != 0; ++i) {
    const size_t p = std::string_view(van, lengte).find(seizoen[i]);
    if (p != std::string_view::npos) seizoen[i] = naar[p];
  }
  if (seizoen[0] == seizoen[1]) seizoen[1] = 0;
  seizoen[2] = 0;
}
