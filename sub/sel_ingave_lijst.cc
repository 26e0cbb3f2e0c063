// Fields of several letters or digits with commas between: target groups, part seasons and purchase
// codes. F5 shows what they mean and adds the one picked.
#include <cstring>

#include "isam/formaat.h"
#include "scr/scr.h"
#include "sub/sel_intern.h"
#include "sub/zoek.h"

namespace {

constexpr size_t VELD = 19;
constexpr int TABEL_INKOOP = 3, TABEL_SEIZOEN = 4;

/// Adds a picked item behind the text, with its comma, if there is room.
void voeg_toe(char (&tekst)[32], char item) {
  std::string t = tekst;
  if (!t.empty() && t.back() != ',' && t.back() != '.') t += ',';
  t += item;
  if (t.size() <= VELD) memcpy(tekst, t.c_str(), t.size() + 1);
}

/// Edits the text until `neem` accepts it; `kies` gives the item of the list, 0 none.
template <class Neem, class Kies>
bool bewerk(int rij, const char* formaat, const std::string& tekst, Neem neem, Kies kies) {
  char buffer[32] = {};
  str_printf(buffer, VELD + 1, "%s", tekst);
  for (;;) {
    INGAVE(rij, SEL_K_EEN, formaat, &K_CANCEL, &K_F5, &buffer[0]);
    if (weg_toets()) return false;
    if (scr_ctx->last_key == K_F5) {
      const char item = kies();
      if (item != 0) voeg_toe(buffer, item);
      continue;
    }
    char teken = 0;
    const Tekst* fout = neem(buffer, &teken);
    if (fout == nullptr) return true;
    scr_error("<%c> %s", teken, txt(*fout));
  }
}

char cijfer(int code) { return code >= 0 && code <= 9 ? static_cast<char>('0' + code) : '\0'; }

}  // namespace

bool ingave_doelgroep(char letter, int rij) {
  const SelHint hint(str_format("%s; %s", txt(T_SEL_HINT_DOELGROEP), txt(T_SEL_HINT_OVERZICHT)));
  char letters[11] = {};
  if (sel_gezet(letter)) memcpy(letters, sel_rec.doelgroep, sizeof letters);
  const auto neem = [&](const char* t, char* c) { return doelgroep_uit_tekst(t, letters, c); };
  const auto kies = [] { return doelgroep_pick(); };
  if (!bewerk(rij, "19s,", doelgroep_naar_tekst(letters), neem, kies)) return false;
  memcpy(sel_rec.doelgroep, letters, sizeof letters);
  sel_zet(letter, letters[0] != 0);
  return true;
}

bool ingave_vlaggen(char letter, int rij) {
  const bool seizoen = letter == 'G';
  uint8_t(&doel)[10] = seizoen ? sel_rec.deelseizoen : sel_rec.inkoopcode;
  const SelHint hint(
      seizoen ? str_format("%s; %s", txt(T_SEL_HINT_DEELSEIZOEN), txt(T_SEL_HINT_OMSCHRIJVINGEN))
              : std::string(txt(T_SEL_HINT_INKOOPCODE)));
  uint8_t vlaggen[10] = {};
  if (sel_gezet(letter)) memcpy(vlaggen, doel, sizeof vlaggen);
  const auto neem = [&](const char* t, char* c) { return vlaggen_uit_tekst(t, vlaggen, c); };
  const auto kies = [&] {
    return cijfer(code_pick(seizoen ? TABEL_SEIZOEN : TABEL_INKOOP, false));
  };
  if (!bewerk(rij, "19s[0123456789,.],", vlaggen_naar_tekst(vlaggen), neem, kies)) return false;
  memcpy(doel, vlaggen, sizeof vlaggen);
  sel_zet(letter, memchr(vlaggen, 1, sizeof vlaggen) != nullptr);
  return true;
}
