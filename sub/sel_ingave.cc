// Entry of one field: every letter has its row here. A rejected input leaves the field as it was;
// a field that ends empty or at its reference value returns to its default.
#include <cstring>

#include "isam/formaat.h"
#include "scr/scr.h"
#include "sub/sel_intern.h"
#include "sub/zoek.h"

namespace {

struct Invoer {
  char letter;
  bool (*voer_in)(char letter, int rij);
};
constexpr Invoer INVOER[] = {
    {'a', ingave_merk},        {'b', ingave_artgroep},    {'c', ingave_artgroep},
    {'d', ingave_kleur},       {'e', ingave_kleur},       {'f', ingave_doelgroep},
    {'g', ingave_seizoen},     {'h', ingave_stdmod},      {'i', ingave_jaar},
    {'j', ingave_jaar},        {'k', ingave_actie_nr},    {'l', ingave_filialen},
    {'m', ingave_periode},     {'o', ingave_periode},     {'q', ingave_periode},
    {'s', ingave_periode},     {'u', ingave_datum},       {'v', ingave_datum},
    {'w', ingave_datum},       {'x', ingave_datum},       {'y', ingave_voorraad},
    {'z', ingave_voorraad},    {'A', ingave_datum},       {'B', ingave_datum},
    {'C', ingave_verwijderen}, {'D', ingave_leverancier}, {'F', ingave_vlaggen},
    {'G', ingave_vlaggen},     {'H', ingave_periode},     {'K', ingave_datum},
    {'M', ingave_periode},     {'O', ingave_periode},     {'Q', ingave_periode},
    {'S', ingave_model},       {'T', ingave_kenmerk},     {'U', ingave_ontvangen},
    {'W', ingave_periode},     {'Y', ingave_edi},
};

constexpr uint16_t JAAR_EERSTE = 1980, JAAR_LAATSTE = 2079, JAAR_TM_LAATSTE = 2999;
constexpr int K_SEIZOEN = 31;

bool jaren_bij_stdmod() { return sel_heeft('i') && sel_heeft('j'); }

/// Years have no meaning for standard series; their fields say so until that changes.
void zet_jaren(uint8_t stdmod) {
  if (!jaren_bij_stdmod()) return;
  if (stdmod == 1) {
    sel_rec.jaar_van = sel_rec.jaar_tm = 0;
    sel_stand('i') = sel_stand('j') = CODE_GEEN;
    return;
  }
  for (const char letter : {'i', 'j'}) {
    if (sel_stand(letter) == CODE_GEEN) sel_op_default(letter);
  }
}

/// The season of the year to, asked unless the year came out of the list with its season.
bool vraag_seizoen(int rij, int code, char* seizoen) {
  static constexpr char BEKEND[] = {0, 'K', 'Z', 'W'};
  char letters[3] = {code >= 0 && code < 4 ? BEKEND[code] : '\0', 0, 0};
  if (letters[0] != 0) seizoen_vertaal(letters, true);
  INGAVE(rij, K_SEIZOEN, str_format("1c[%s],U", txt(T_SEL_LETTERS_SEIZOEN)).c_str(), &K_CANCEL,
         &letters[0]);
  if (weg_toets()) return false;
  if (letters[0] == ' ') letters[0] = 0;
  if (letters[0] != 0) seizoen_vertaal(letters, false);
  *seizoen = letters[0];
  return true;
}

bool ingave_jaar_van(int rij) {
  uint16_t jaar = sel_gezet('i') ? static_cast<uint16_t>(sel_rec.jaar_van / 10) : uint16_t{0};
  char seizoen = 0;
  key_allow(K_CANCEL);
  ing_jaar(rij, SEL_K_EEN, "", JAAR_EERSTE, JAAR_LAATSTE, &jaar, &seizoen);
  if (weg_toets()) return false;
  sel_rec.jaar_van = static_cast<uint16_t>(jaar * 10);
  sel_zet('i', jaar != 0);
  sel_toon('i');
  if (jaar != 0 && sel_gezet('j') && jaar > sel_rec.jaar_tm / 10) {
    scr_error("%s", txt(T_SEL_FOUT_JAAR));
  }
  return true;
}

bool ingave_jaar_tm(int rij) {
  const auto laag = static_cast<uint16_t>(
      sel_gezet('i') && sel_rec.jaar_van / 10 > JAAR_EERSTE ? sel_rec.jaar_van / 10 : JAAR_EERSTE);
  for (;;) {
    uint16_t jaar = sel_gezet('j') ? static_cast<uint16_t>(sel_rec.jaar_tm / 10) : uint16_t{0};
    const int code = sel_gezet('j') ? sel_rec.jaar_tm % 10 : 0;
    char seizoen = 0;
    key_allow(K_CANCEL);
    ing_jaar(rij, SEL_K_EEN, "", laag, JAAR_TM_LAATSTE, &jaar, &seizoen);
    if (weg_toets()) return false;
    if (jaar != 0 && seizoen == 0 && !vraag_seizoen(rij, code, &seizoen)) return false;
    if (jaar != 0 && jaar < laag) {
      scr_error("%s", txt(T_SEL_FOUT_JAAR));
      continue;
    }
    const int einde = seizoen == 0 ? 0 : seizoen_code(seizoen);
    sel_rec.jaar_tm = static_cast<uint16_t>(jaar == 0 ? 0 : jaar * 10 + einde);
    sel_zet('j', jaar != 0);
    return true;
  }
}

}  // namespace

bool ingave_seizoen(char letter, int rij) {
  char tekst[3] = {};
  if (sel_gezet(letter)) memcpy(tekst, sel_rec.seizoen, sizeof tekst);
  seizoen_vertaal(tekst, true);
  INGAVE(rij, SEL_K_EEN, str_format("2s[%s],U", txt(T_SEL_LETTERS_SEIZOEN)).c_str(), &K_CANCEL,
         &tekst[0]);
  if (weg_toets()) return false;
  seizoen_vertaal(tekst, false);
  memcpy(sel_rec.seizoen, tekst, sizeof tekst);
  sel_zet(letter, tekst[0] != 0);
  return true;
}

bool ingave_stdmod(char letter, int rij) {
  const char* letters = txt(T_SEL_LETTERS_STDMOD);
  char c = sel_gezet(letter) && sel_rec.stdmod > 0 && strlen(letters) >= 2
               ? letters[sel_rec.stdmod - 1]
               : '\0';
  INGAVE(rij, SEL_K_EEN, str_format("c[%s],U", letters).c_str(), &K_CANCEL, &c);
  if (weg_toets()) return false;
  const char* p = c == 0 || c == ' ' ? nullptr : strchr(letters, c);
  sel_rec.stdmod = static_cast<uint8_t>(p == nullptr ? 0 : p - letters + 1);
  sel_zet(letter, sel_rec.stdmod != 0);
  zet_jaren(sel_rec.stdmod);
  sel_toon(letter);
  if (!jaren_bij_stdmod()) return true;
  sel_toon('i');
  sel_toon('j');
  return sel_rec.stdmod == 1 || (sel_voer_in('i') && sel_voer_in('j'));
}

bool ingave_jaar(char letter, int rij) {
  return letter == 'i' ? ingave_jaar_van(rij) : ingave_jaar_tm(rij);
}

void sel_wis_waarde(int rij, int kolom) { scr_clreol(rij, kolom); }

SelHint::SelHint(const std::string& tekst) {
  scr_clreol(scr_ctx->lines - 1, 1);
  scr_print(A_LABEL, scr_ctx->lines - 1, 1, "%s", tekst);
}
SelHint::~SelHint() { scr_clreol(scr_ctx->lines - 1, 1); }

bool sel_voer_in(char letter) {
  const int rij = sel_rij(letter);
  if (rij == 0 || scr_ctx == nullptr) return true;
  for (const Invoer& i : INVOER) {
    if (i.letter != letter) continue;
    sel_wis_waarde(rij);
    const bool gebleven = i.voer_in(letter, rij);
    sel_toon(letter);
    return gebleven;
  }
  return true;  // a letter without entry
}

void sel_ingave(char letter) { sel_voer_in(letter); }
