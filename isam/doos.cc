// How the engine speaks to an operator: the hooks that a screen fills in, what they do without one,
// and the message box's text cut to what fits.

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "isam/ix_intern.h"
#include "isam/teksten.h"

namespace {

void slaap(int seconden) {
  timespec rest{seconden, 0};
  while (seconden > 0 && nanosleep(&rest, &rest) != 0) {
  }
}

void kaal_regel(const char*, int seconden) { slaap(seconden); }

int kaal_doos(int optie, int, const char* titel, const char* tekst) {
  if (optie > 0)
    slaap(optie);
  else
    fprintf(stderr, "%s: %s\n", titel, tekst);
  return 0;
}

void kaal_wacht(ICB* icb) {
  ix_hooks.regel(ix_melding(icb, txt(T_IX_IN_GEBRUIK)).c_str(), 2);
  ix_hooks.regel("", 0);
}

void kaal_afbreken_aan() {}
bool kaal_afgebroken() { return false; }
void kaal_voortgang(const char*, int64_t, int64_t) {}

void kaal_fataal(const char* tekst) {
  fprintf(stderr, "%s\n", tekst);
  exit(1);
}

constexpr IxHooks KAAL = {kaal_regel,      kaal_doos,      kaal_wacht, kaal_afbreken_aan,
                          kaal_afgebroken, kaal_voortgang, kaal_fataal};

constexpr size_t TEKST_LANGST = 1024;

}  // namespace

const IxHooks IX_HOOKS_KAAL = KAAL;
IxHooks ix_hooks = KAAL;

void ix_fataal(const char* tekst) {
  ix_hooks.fataal(tekst);
  exit(1);
}

void ix_leeg(const char* naam) { ix_fataal(str_format("%s : ICB == NULL", naam).c_str()); }

std::string ix_melding(const ICB* icb, const char* tekst, bool punt) {
  const std::string naam(icb->name, strnlen(icb->name, sizeof icb->name));
  const std::string tabel(icb->description, strnlen(icb->description, sizeof icb->description));
  return str_format(punt ? "%-11.11s: %-19.19s --> %s." : "%-11.11s: %-19.19s --> %s", naam, tabel,
                    tekst);
}

void ix_kapot(const ICB* icb) { ix_fataal(ix_melding(icb, txt(T_IX_NIET_CONSISTENT)).c_str()); }

void ix_open_fout(int fout, const std::string& pad) {
  ix_fataal(str_format("TQISAM(%d): %s ", fout, pad).c_str());
}

FlashVorm fflash_vorm(int option, const char* title, const char* text) noexcept {
  FlashVorm vorm{};
  const size_t titel = title == nullptr ? 0 : strlen(title);
  if (titel >= 1 && titel < sizeof vorm.titel) memcpy(vorm.titel, title, titel);
  const size_t einde = text == nullptr ? 0 : strnlen(text, TEKST_LANGST);
  size_t kolom = 0;
  int langst = 0;
  for (size_t i = 0; i < einde && vorm.aantal < 20; ++i) {
    char* regel = vorm.regels[vorm.aantal];
    if (text[i] == '\n') {
      ++vorm.aantal;
      kolom = 0;
    } else if (kolom < sizeof vorm.regels[0] - 1) {
      regel[kolom++] = text[i] == '\t' ? ' ' : text[i];
      langst = std::max(langst, static_cast<int>(kolom));
    }
  }
  if (kolom > 0 && vorm.aantal < 20) ++vorm.aantal;
  const int kop = static_cast<int>(strlen(vorm.titel));
  vorm.breedte = langst + 4;
  if (vorm.breedte <= (kop + 1) / 2 * 2) vorm.breedte = 14;
  if (option == -1) vorm.breedte = std::max(vorm.breedte, 32);
  vorm.breedte = std::max(vorm.breedte, kop + 2);
  return vorm;
}

int FFLASH(int option, int kind, int attribute, const char* title, const char* text) {
  static_cast<void>(attribute);  // the colour sets of a kind say it all
  if (option < -2) ix_fataal(str_format("FFLASH invalid option [%d]", option).c_str());
  const FlashVorm vorm = fflash_vorm(option, title, text);
  std::string tekst;
  for (int i = 0; i < vorm.aantal; ++i) {
    if (i > 0) tekst += '\n';
    tekst += vorm.regels[i];
  }
  return ix_hooks.doos(option, kind, vorm.titel, tekst.c_str());
}
