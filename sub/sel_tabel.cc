// The tables of the criteria screen. Lengths are proved at compile time: a kind has one code a
// letter, a letter has one label, and the labels fill the columns before the values.
#include "sub/sel_tabel.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace {

constexpr const char* BASIS = "abcSTdefhijgG";
constexpr const char* BASIS_CODES = "0120012051230";

constexpr SelSoort SOORTEN[SEL_SOORTEN] = {
    {&T_SEL_TITEL_ORDERS, "abcSTdefhijgGlFDHOQ", "0120012051230000;::", false},
    {&T_SEL_TITEL_ONTVANGSTEN, "abcSTdefhijgGlFDM", "0120012051230000;", false},
    {&T_SEL_TITEL_VOORRAAD, "abcSTdefhijgGlFDu", "01200120512300004", false},
    {&T_SEL_TITEL_VERKOPEN, "abcSTdefhijgGlFDo", "0120012051230000;", false},
    {&T_SEL_TITEL_CORRECTIES, "abcSTdefhijgGlFDq", "0120012051230000;", false},
    {&T_SEL_TITEL_MANAGEMENT, "abcSTdefhijgGlFDsU", "0120012051230000;<", false},
    {&T_SEL_TITEL_AFPRIJZING, "abcSTdefhijgGkyz", "01200120512308<9", false},
    {&T_SEL_TITEL_INVENTARISATIE, "abcSTdefhijgGlv", "012001205123004", false},
    {&T_SEL_TITEL_ETI_ORDERS, "abcSTdefhijgGlFDm", "0120012051230000:", false},
    {&T_SEL_TITEL_SERIES, "abcSTdefhijgGlWyz", "01200120512300;<9", true},
    {&T_SEL_TITEL_ETI_VOORRAAD, "abcSTdefhijgGlFDM", "0120012051230000;", false},
    {&T_SEL_TITEL_INKOOP, "abcSTdefhijgGlFD", "0120012051230000", false},
    {&T_SEL_TITEL_BEHEER, BASIS, BASIS_CODES, false},
    {&T_SEL_TITEL_ONDERHOUD, "abcSTdefhijgGlWwxABKC", "01200120512300;777778", false},
    {&T_SEL_TITEL_SEIZOEN, "abcfGlFD", "01200000", false},
    {&T_SEL_TITEL_ORDERMODULE, "abcdefGFDlH", "0121200000;", false},
    {&T_SEL_TITEL_SERIES, "abcSTdefhijgGWyz", "0120012051230;<9", true},
    {&T_SEL_TITEL_BESTELADVIEZEN, BASIS, BASIS_CODES, false},
    {&T_SEL_TITEL_HERBEREKENEN, "bchijgG", "1251230", false},
    {&T_SEL_TITEL_INVLIJSTEN, "abcSTdefhijgGlFDuJ", "012001205123000040", false},
    {&T_SEL_TITEL_KASSA, BASIS, BASIS_CODES, false},
    {&T_SEL_TITEL_AFB_WEG, BASIS, BASIS_CODES, false},
    {&T_SEL_TITEL_AFB_MET, BASIS, BASIS_CODES, false},
    {&T_SEL_TITEL_SERIES, "abcSTdefhijgGlWyz", "01200120512300;<9", true},
    {&T_SEL_TITEL_AANVULLIJST, "abcSTdefhijgGl", "01200120512300", false},
    {&T_SEL_TITEL_SERIES, "abcSTdefhijgGlWyz", "01200120512300;<9", true},
};

struct Label {
  char letter;
  const Tekst* tekst;
};
constexpr Label LABELS[] = {
    {'a', &T_SEL_VELD_MERK},         {'b', &T_SEL_VELD_ARTGROEP_VAN},
    {'c', &T_SEL_VELD_ARTGROEP_TM},  {'d', &T_SEL_VELD_KLEUR_VAN},
    {'e', &T_SEL_VELD_KLEUR_TM},     {'f', &T_SEL_VELD_DOELGROEP},
    {'g', &T_SEL_VELD_SEIZOEN},      {'h', &T_SEL_VELD_STDMOD},
    {'i', &T_SEL_VELD_JAAR_VAN},     {'j', &T_SEL_VELD_JAAR_TM},
    {'k', &T_SEL_VELD_ACTIE},        {'l', &T_SEL_VELD_FILIAAL},
    {'m', &T_SEL_VELD_LEVERDATUM},   {'o', &T_SEL_VELD_VERKOOPDATUM},
    {'q', &T_SEL_VELD_CORRDATUM},    {'s', &T_SEL_VELD_DATUM},
    {'u', &T_SEL_VELD_PEILDATUM},    {'v', &T_SEL_VELD_INVDATUM},
    {'w', &T_SEL_VELD_NOTA},         {'x', &T_SEL_VELD_VOORRAAD},
    {'y', &T_SEL_VELD_VRD_VAN},      {'z', &T_SEL_VELD_VRD_TM},
    {'A', &T_SEL_VELD_VERKOPEN},     {'B', &T_SEL_VELD_CORRECTIES},
    {'C', &T_SEL_VELD_VERWIJDEREN},  {'D', &T_SEL_VELD_LEVERANCIER},
    {'F', &T_SEL_VELD_INKOOPCODE},   {'G', &T_SEL_VELD_DEELSEIZOEN},
    {'H', &T_SEL_VELD_ORDERDATUM},   {'K', &T_SEL_VELD_INVENT},
    {'M', &T_SEL_VELD_ONTVDATUM},    {'O', &T_SEL_VELD_BEGINLEVERDAT},
    {'Q', &T_SEL_VELD_EINDLEVERDAT}, {'S', &T_SEL_VELD_MODEL},
    {'T', &T_SEL_VELD_KENMERK},      {'U', &T_SEL_VELD_ONTVANGEN},
    {'W', &T_SEL_VELD_CREATIEDATUM}, {'Y', &T_SEL_VELD_EDI},
};

constexpr const Tekst* FRASES[CODES] = {
    &T_SEL_ALLE,    &T_SEL_EERSTE,   &T_SEL_LAATSTE, &T_SEL_HEEL_JAAR, &T_SEL_VANDAAG,
    &T_SEL_BEIDE,   &T_SEL_MEERDERE, &T_SEL_GEEN,    nullptr,          &T_SEL_MAXIMUM,
    &T_SEL_VANDAAG, &T_SEL_EERSTE,   &T_SEL_GEEN,
};

template <class T>
constexpr SelDeel deel(size_t plaats, const T&) {
  static_assert(sizeof(T) <= 32);
  return {static_cast<uint16_t>(plaats), static_cast<uint8_t>(sizeof(T))};
}
#define DEEL(veld) deel(offsetof(SelRec, veld), SelRec{}.veld)

struct Waarde {
  char letter;
  uint8_t delen;
  SelDeel deel[2];
};
constexpr Waarde WAARDEN[] = {
    {'A', 1, {DEEL(vrkdat)}},
    {'B', 1, {DEEL(cordat)}},
    {'C', 2, {DEEL(verwijderen), DEEL(verwijder_soort)}},
    {'D', 1, {DEEL(leverancier)}},
    {'F', 1, {DEEL(inkoopcode)}},
    {'G', 1, {DEEL(deelseizoen)}},
    {'H', 2, {DEEL(dat_van), DEEL(dat_tm)}},
    {'J', 1, {DEEL(prijzen)}},
    {'K', 1, {DEEL(dat_tm)}},
    {'M', 2, {DEEL(dat_van), DEEL(dat_tm)}},
    {'O', 2, {DEEL(begin_van), DEEL(begin_tm)}},
    {'Q', 2, {DEEL(eind_van), DEEL(eind_tm)}},
    {'S', 1, {DEEL(model)}},
    {'T', 2, {DEEL(kenmerk_nr), DEEL(kenmerk_waarde)}},
    {'U', 2, {DEEL(ontvangen_van), DEEL(ontvangen_tm)}},
    {'W', 2, {DEEL(creatie_van), DEEL(creatie_tm)}},
    {'Y', 1, {DEEL(edi)}},
    {'b', 1, {DEEL(artgroep_van)}},
    {'c', 1, {DEEL(artgroep_tm)}},
    {'d', 1, {DEEL(kleur_van)}},
    {'e', 1, {DEEL(kleur_tm)}},
    {'f', 1, {DEEL(doelgroep)}},
    {'g', 1, {DEEL(seizoen)}},
    {'h', 1, {DEEL(stdmod)}},
    {'i', 1, {DEEL(jaar_van)}},
    {'j', 1, {DEEL(jaar_tm)}},
    {'k', 1, {DEEL(actie)}},
    {'l', 1, {DEEL(filialen)}},
    {'m', 2, {DEEL(dat_van), DEEL(dat_tm)}},
    {'o', 2, {DEEL(dat_van), DEEL(dat_tm)}},
    {'q', 2, {DEEL(dat_van), DEEL(dat_tm)}},
    {'s', 2, {DEEL(dat_van), DEEL(dat_tm)}},
    {'u', 1, {DEEL(dat_van)}},
    {'v', 1, {DEEL(dat_van)}},
    {'w', 1, {DEEL(orddat)}},
    {'x', 1, {DEEL(ontdat)}},
    {'y', 1, {DEEL(voorraad_van)}},
    {'z', 1, {DEEL(voorraad_tm)}},
};
#undef DEEL

constexpr bool heeft_label(char letter) {
  for (const Label& l : LABELS) {
    if (l.letter == letter) return true;
  }
  return letter == 'J';  // stands in its kind for a question at the end of the screen
}
constexpr bool heeft_waarde(char letter) {
  for (const Waarde& w : WAARDEN) {
    if (w.letter == letter) return true;
  }
  return letter == 'a';
}
constexpr bool soorten_kloppen() {
  for (const SelSoort& s : SOORTEN) {
    const std::string_view letters = s.letters, codes = s.codes;
    if (letters.size() != codes.size() || letters.size() + s.pricat > SEL_VELDEN_MAX) return false;
    for (size_t i = 0; i < letters.size(); ++i) {
      if (letters.find(letters[i], i + 1) != std::string_view::npos) return false;
      if (codes[i] < '0' || codes[i] >= '0' + CODES) return false;
      if (!heeft_label(letters[i]) || !heeft_waarde(letters[i])) return false;
    }
  }
  return true;
}
constexpr bool labels_kloppen() {
  for (const Label& l : LABELS) {
    const size_t n = std::string_view(l.tekst->standaard).size();
    if (n != 19 && n != 20) return false;
  }
  return true;
}
static_assert(soorten_kloppen() && labels_kloppen());

}  // namespace

const SelSoort* sel_soort_rij(int soort) noexcept {
  return soort < 1 || soort > SEL_SOORTEN ? nullptr : &SOORTEN[soort - 1];
}

const Tekst* sel_label(char letter) noexcept {
  for (const Label& l : LABELS) {
    if (l.letter == letter) return l.tekst;
  }
  return nullptr;
}

const char* sel_frase(uint8_t code) noexcept {
  return code >= CODES || FRASES[code] == nullptr ? "" : txt(*FRASES[code]);
}

std::span<const SelDeel> sel_waarde(char letter) noexcept {
  for (const Waarde& w : WAARDEN) {
    if (w.letter == letter) return {w.deel, w.delen};
  }
  return {};
}

bool sel_creatie_tot_vandaag(int soort) noexcept {
  return soort == 10 || soort == 17 || soort == 24 || soort == 26;
}

bool sel_periode(char letter, SelRec* r, SelPeriode* uit) noexcept {
  switch (letter) {
    case 'H':
    case 'M':
    case 'o':
    case 'q':
    case 's':
      *uit = {&r->dat_van, &r->dat_tm, CODE_EERSTE, CODE_VANDAAG};
      return true;
    case 'm':
      *uit = {&r->dat_van, &r->dat_tm, CODE_VANDAAG, CODE_LAATSTE};
      return true;
    case 'O':
      *uit = {&r->begin_van, &r->begin_tm, CODE_VANDAAG, CODE_LAATSTE};
      return true;
    case 'Q':
      *uit = {&r->eind_van, &r->eind_tm, CODE_VANDAAG, CODE_LAATSTE};
      return true;
    case 'W':
      *uit = {&r->creatie_van, &r->creatie_tm, CODE_EERSTE,
              sel_creatie_tot_vandaag(sel_soort) ? CODE_VANDAAG : CODE_EERSTE};
      return true;
    case 'u':
    case 'v':
      *uit = {&r->dat_van, nullptr, CODE_VANDAAG, 0};
      return true;
    case 'w':
      *uit = {&r->orddat, nullptr, CODE_GEEN, 0};
      return true;
    case 'x':
      *uit = {&r->ontdat, nullptr, CODE_GEEN, 0};
      return true;
    case 'A':
      *uit = {&r->vrkdat, nullptr, CODE_GEEN, 0};
      return true;
    case 'B':
      *uit = {&r->cordat, nullptr, CODE_GEEN, 0};
      return true;
    case 'K':
      *uit = {&r->dat_tm, nullptr, CODE_GEEN, 0};
      return true;
    default:
      return false;
  }
}
