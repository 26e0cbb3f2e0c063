// The selection record, its defaults and its fills. Nothing here needs a screen, so that a run
// without an operator can take a default selection.
#include "sub/sel_krit.h"

#include <algorithm>
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/bitarr.h"
#include "sub/sel_intern.h"
#include "sub/tabellen.h"

SelRec sel_rec{}, sel_vorig{};
int sel_soort;
char sel_letters[27];
uint8_t sel_default[256], sel_status[256];
uint16_t sel_datums[8];
int32_t merk_aantal;
bool merk_een;

SelWijze sel_wijze = SelWijze::scherm;
bool sel_actief;
const char* sel_titel = "";

namespace {

constexpr uint32_t ARTGROEP_ALLE = 100000;
constexpr uint16_t KLEUR_ALLE = 1000, JAAR_ALLE = 29990, JAAR_MODISCH = 10;
constexpr int32_t AANTAL_ALLE = 99999;
constexpr uint8_t PRIJZEN_ALLE = 7, PRICAT = 4;

void vul_leeg_eind(char letter) {
  SelPeriode p;
  if (!sel_periode(letter, &sel_rec, &p) || p.tm == nullptr) return;
  if (*p.van == 0) *p.van = sel_datum(p.van_code);
  if (*p.tm == 0) *p.tm = sel_datum(p.tm_code);
}

void vul_datums(char letter) {
  SelPeriode p;
  if (!sel_periode(letter, &sel_rec, &p)) return;
  if (p.tm == nullptr) {
    *p.van = sel_datum(sel_stand(letter));
    return;
  }
  *p.van = sel_datum(p.van_code);
  *p.tm = sel_datum(p.tm_code);
}

/// The value that a field at its default stands for in the tests of a series.
void vul(char letter) {
  switch (letter) {
    case 'C':
      sel_rec.verwijderen = 0;
      break;
    case 'F':
      memset(sel_rec.inkoopcode, 1, sizeof sel_rec.inkoopcode);
      break;
    case 'G':
      memset(sel_rec.deelseizoen, 1, sizeof sel_rec.deelseizoen);
      break;
    case 'J':
      sel_rec.prijzen = PRIJZEN_ALLE;
      break;
    case 'U':
      sel_rec.ontvangen_tm = AANTAL_ALLE;
      break;
    case 'c':
      sel_rec.artgroep_tm = ARTGROEP_ALLE;
      break;
    case 'e':
      sel_rec.kleur_tm = KLEUR_ALLE;
      break;
    case 'h':
      sel_rec.stdmod = 0;
      break;
    case 'i':
      sel_rec.jaar_van = sel_rec.stdmod == 2 ? JAAR_MODISCH : uint16_t{0};
      break;
    case 'j':
      sel_rec.jaar_tm = sel_rec.stdmod == 1 ? uint16_t{0} : JAAR_ALLE;
      break;
    case 'l':
      memset(sel_rec.filialen, 0xFF, sizeof sel_rec.filialen);
      break;
    case 'z':
      sel_rec.voorraad_tm = AANTAL_ALLE;
      break;
    default:
      vul_datums(letter);
  }
}

}  // namespace

void sel_velden() {
  const SelSoort* rij = sel_soort_rij(sel_soort);
  if (rij == nullptr) ctl_fault(SEL_MODULE, sel_soort);
  sel_titel = txt(*rij->titel);
  memset(sel_default, 0, sizeof sel_default);
  memset(sel_letters, 0, sizeof sel_letters);
  int n = 0;
  const auto voeg = [&n](char letter, char code) {
    if (letter == 'l' && filialen() < 2) return;
    sel_letters[n++] = letter;
    const auto waarde = static_cast<uint8_t>(code - '0');
    sel_default[static_cast<uint8_t>(letter)] = waarde == CODE_LEEG ? SEL_INGEVOERD : waarde;
  };
  for (int i = 0; rij->letters[i] != 0; ++i) voeg(rij->letters[i], rij->codes[i]);
  if (rij->pricat && (sys_rec1.opties2 & PRICAT) != 0) voeg('Y', '0');

  memset(sel_datums, 0, sizeof sel_datums);
  sel_datums[CODE_EERSTE] = sel_datums[CODE_GEEN] = date_number(DATUM_EERSTE);
  sel_datums[CODE_LAATSTE] = DATUM_LAATSTE;
  sel_datums[CODE_VANDAAG] = date_today();
}

void sel_leeg() {
  sel_rec = {};
  memcpy(sel_status, sel_default, sizeof sel_status);
  merk_aantal = 0;
  merk_een = false;
}

void sel_standaard(int soort) {
  sel_soort = soort;
  sel_velden();
  sel_leeg();
}

void sel_start(int soort) {
  if (soort == 0) {
    sel_rec = sel_vorig;
    return;
  }
  file_delete(privaat.merk);
  sel_soort = soort;
  sel_velden();
  sel_lees(0);
  sel_vorig = sel_rec;
  merk_aantal = 0;
  merk_een = false;
}

void sel_aanvullen() {
  if (filialen() < 2) memset(sel_rec.filialen, 0xFF, sizeof sel_rec.filialen);
  for (const char* p = sel_letters; *p != 0; ++p) {
    if (sel_gezet(*p))
      vul_leeg_eind(*p);
    else
      vul(*p);
  }
}

void sel_filialen(const uint8_t map[32]) {
  memcpy(sel_rec.filialen, map, sizeof sel_rec.filialen);
  sel_zet('l', !bit_leeg(map, 32) && !bit_vol(map, 32));
}

int sel_rij(char letter) {
  const char* p = strchr(sel_letters, letter);
  return letter == 0 || p == nullptr ? 0 : SEL_BASIS + static_cast<int>(p - sel_letters) + 1;
}

// Years are entered behind field h and take no number of their own where h stands before them.
namespace {
bool jaar_onder_h() { return sel_heeft('h') && sel_heeft('i') && sel_heeft('j'); }
}  // namespace

int sel_nummer(char letter) {
  const int rij = sel_rij(letter);
  if (rij == 0) return 0;
  const int plaats = rij - SEL_BASIS - 1;
  if (!jaar_onder_h()) return 11 + plaats;
  if (letter == 'i' || letter == 'j') return 0;
  return 11 + plaats - (rij > sel_rij('h') ? 2 : 0);
}

char sel_letter(int nummer) {
  const char* einde = sel_letters + strlen(sel_letters);
  const char* p = std::find_if(static_cast<const char*>(sel_letters), einde,
                               [nummer](char l) { return nummer > 0 && sel_nummer(l) == nummer; });
  return p == einde ? '\0' : *p;
}

int sel_laatste_nummer() {
  return static_cast<int>(strlen(sel_letters)) + (jaar_onder_h() ? 8 : 10);
}
