// Sort orders: the letters of a key, private indexes with such a key, and the question for one.
#include <cstring>

#include <algorithm>
#include <string>
#include <string_view>

#include "isam/formaat.h"
#include "scr/scr.h"
#include "sub/records.h"
#include "sub/serie.h"
#include "sub/teksten_sel.h"

bool sort_locatie = true;
bool sort_etiketten = false;

namespace {

constexpr size_t LETTERS_MAX = 10;
constexpr std::string_view ALTIJD = "AKV";  // without them a key would not tell two series apart

struct SortLetter {
  char letter;
  const Tekst* woord;
  char soort;               // of the key field; 0 for a letter that series do not carry
  uint8_t eerste, laatste;  // bytes in the record, from 1
};
constexpr uint8_t vanaf(size_t plaats) { return static_cast<uint8_t>(plaats + 1); }
#define VELD(naam) \
  vanaf(offsetof(DtSer, naam)), static_cast<uint8_t>(offsetof(DtSer, naam) + sizeof(DtSer::naam))
#define NRVELD(naam)              \
  vanaf(offsetof(Serienr, naam)), \
      static_cast<uint8_t>(offsetof(Serienr, naam) + sizeof(Serienr::naam))
constexpr SortLetter LETTERS[] = {
    {'A', &T_SORT_ARTIKELGROEP, 'I', NRVELD(artgroep)},
    {'K', &T_SORT_KLEUR, 'I', NRVELD(kleur)},
    {'V', &T_SORT_VOLGNUMMER, 'I', NRVELD(volgnr)},
    {'R', &T_SORT_MERK, 'I', VELD(merk)},
    {'M', &T_SORT_MODEL, 'C', VELD(model)},
    {'D', &T_SORT_DOELGROEP, 'I', VELD(doelgroep)},
    {'J', &T_SORT_JAAR, 'I', VELD(jaar)},
    {'S', &T_SORT_SEIZOEN, 'C', VELD(hoofdseizoen)},
    {'E', &T_SORT_DESSIN, 'C', VELD(dessin)},
    {'N', &T_SORT_KENMERK, 'C', VELD(kenmerk)},
    {'Z', &T_SORT_DEELSEIZOEN, 'I', VELD(deelseizoen)},
    {'I', &T_SORT_INKOOPCODE, 0, 0, 0},
    {'B', &T_SORT_MAATSOORT, 'I', VELD(maatsoort)},
    {'L', &T_SORT_LEVERANCIER, 'C', VELD(locatie)},
    {'C', &T_SORT_COLLECTIE, 0, 0, 0},
    {'F', &T_SORT_FILIAAL, 0, 0, 0},
    {'T', &T_SORT_MAAT, 0, 0, 0},
    {'U', &T_SORT_NUMMER, 0, 0, 0},
};
#undef VELD
#undef NRVELD

constexpr bool in_volgorde() {
  const std::string_view letters = SORT_LETTERS;
  if (letters.size() != std::size(LETTERS)) return false;
  for (size_t i = 0; i < letters.size(); ++i) {
    if (LETTERS[i].letter != letters[i]) return false;
  }
  return true;
}
static_assert(in_volgorde());

const SortLetter* zoek(char letter) {
  const auto* p = std::ranges::find(LETTERS, letter, &SortLetter::letter);
  return p == std::end(LETTERS) ? nullptr : p;
}

const char* woord(char letter) {
  if (letter == 'L' && sort_locatie) return txt(T_SORT_LOCATIE);
  const SortLetter* s = zoek(letter);
  return s == nullptr ? "" : txt(*s->woord);
}

/// The definition of key 1; empty when no letter names a field of a series.
std::string sleutel(const char* letters) {
  std::string uit = "key-1,NODUPS";
  const size_t kop = uit.size();
  for (const char* p = letters; *p != 0; ++p) {
    const SortLetter* s = zoek(*p);
    if (s == nullptr || s->soort == 0) continue;
    uit += str_format(",%c,%d,%d", s->soort, s->eerste, s->laatste);
  }
  return uit.size() == kop ? std::string() : uit;
}

std::string vertaald(std::string tekst, int richting) {
  sort_vertaal(tekst.data(), richting);
  return tekst;
}

// The dialog --------------------------------------------------------------------------------------

/// The order that stands for the typed letters, or the message that refuses them.
struct Keuze {
  std::string order;
  const Tekst* fout = nullptr;
  char teken = 0;
};

Keuze beoordeel(const std::string& letters, bool aanvullen) {
  Keuze k{letters};
  for (size_t i = 0; i < letters.size(); ++i) {
    if (letters.find(letters[i], i + 1) == std::string::npos) continue;
    k.fout = &T_SORT_ONGELDIG;
    k.teken = letters[i];
    return k;
  }
  std::string erbij;
  for (const char c : ALTIJD) {
    if (letters.find(c) == std::string::npos) erbij += c;
  }
  if (letters.size() + erbij.size() > LETTERS_MAX) {
    k.fout = &T_SORT_TE_VEEL;
    return k;
  }
  if (aanvullen) k.order += erbij;
  return k;
}

void toon_letters(const std::string& letters) {
  int rij = 1;
  for (const char c : letters) {
    if (c == 'U' && !sort_etiketten) continue;
    scr_print(A_WAARDE, rij, 2, "%c", vertaald(std::string(1, c), 0)[0]);
    scr_print(A_LABEL, rij++, 4, "= %-32s", woord(c));
  }
}

/// Asks until an order is accepted; false when the operator left.
bool vraag(int rij, const std::string& allowed, bool aanvullen, char* order) {
  const std::string formaat = str_format("10s[%s],UE", vertaald(allowed, 0));
  char tekst[LETTERS_MAX + 1];
  str_printf(tekst, sizeof tekst, "%s", vertaald(order, 0));
  const int kolom = 3 + static_cast<int>(strlen(txt(T_SORT_VRAAG)));
  scr_print(A_LABEL, rij, 2, "%s", txt(T_SORT_VRAAG));
  for (;;) {
    INGAVE(rij, kolom, formaat.c_str(), &K_CANCEL, &tekst[0]);
    if (weg_toets()) return false;
    const std::string letters = vertaald(tekst, 1);
    if (letters.find('U') != std::string::npos && !sort_etiketten) {
      scr_error("%s", txt(T_SORT_NUMMER_NIET));
      return false;
    }
    const Keuze k = beoordeel(letters, aanvullen);
    if (k.fout == nullptr) {
      memcpy(order, k.order.c_str(), k.order.size() + 1);
      return true;
    }
    if (k.teken != 0)
      scr_error("<%c> %s", vertaald(std::string(1, k.teken), 0)[0], txt(*k.fout));
    else
      scr_error("%s", txt(*k.fout));
  }
}

}  // namespace

void sort_vertaal(char* tekst, int richting) {
  const std::string_view eigen = SORT_LETTERS, ander = txt(T_SORT_LETTERS);
  const std::string_view van = richting == 0 ? eigen : ander, naar = richting == 0 ? ander : eigen;
  for (; *tekst != 0; ++tekst) {
    const size_t i = van.find(*tekst);
    if (i < naar.size()) *tekst = naar[i];
  }
}

ICB* sort_maak(const char* naam, const char* letters) {
  if (strlen(letters) > LETTERS_MAX) return nullptr;
  const std::string definitie = sleutel(letters);
  if (definitie.empty()) return nullptr;
  ICB* icb = IXCREATE(naam, IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, str_format("%s,%d", letters, static_cast<int>(sizeof(DtSer))).c_str());
  IXUPDFCB(icb, 1, definitie.c_str());
  // Of a private index only the index is made anew: its records are those of the table.
  const char* punt = strrchr(naam, '/');
  if (strchr(punt == nullptr ? naam : punt, '.') != nullptr)
    IXINITIX(icb);
  else
    IXINIT(icb);
  return icb;
}

bool sort_kies(int row, int col, const char* allowed, char* order) {
  if (scr_ctx == nullptr) return false;
  std::string letters = allowed;
  const size_t voor = letters.size();
  std::erase(letters, '~');
  const bool aanvullen = letters.size() == voor;
  const int regels = static_cast<int>(
      std::ranges::count_if(letters, [](char c) { return c != 'U' || sort_etiketten; }));
  const Venster venster(row, col, regels + 3, 40, 2);
  win_title(" %s ", txt(T_SORT_KOP));
  toon_letters(letters);
  return vraag(regels + 1, letters, aanvullen, order);
}
