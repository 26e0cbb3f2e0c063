// What the operator may choose in a view of the advice matrix: a table of options, built for each
// series and view, shown as letters on the prompt line and in full behind Enter.
#include <cstring>
#include <vector>

#include "isam/base.h"
#include "scr/scr.h"
#include "sub/servrd_intern.h"
#include "sub/teksten.h"

namespace {

bool altijd(const Svd&, int) { return true; }
bool voorraadzicht(const Svd& s) { return s.zicht <= SVD_MUTATIES; }
bool ander_zicht(const Svd& s, int code) { return s.zicht != code; }
bool advies_aanwezig(const Svd& s, int code) { return s.zicht != code && svd_heeft(code); }
bool op_advies(const Svd& s, int) { return svd_uitkomst(s.zicht) != nullptr && s.leeg.empty(); }
bool info_zicht(const Svd& s, int code) {
  return s.zicht != code && !voorraadzicht(s) && svd_heeft_info();
}
bool info_scherm(const Svd& s, int) { return voorraadzicht(s) && svd_heeft_info(); }
bool info_aanwezig(const Svd&, int) { return svd_heeft_info(); }
bool mutaties(const Svd& s, int) { return voorraadzicht(s) && s.zicht != SVD_MUTATIES; }
bool actueel(const Svd& s, int) { return !voorraadzicht(s); }
bool heeft_maten(const Svd&, int) { return svd_maten() > 0; }
bool met_verkopen(const Svd& s, int) { return !s.verkopen; }
bool zonder_verkopen(const Svd& s, int) { return s.verkopen; }
bool kaal(const Svd& s, int code) {
  return s.sub != code && (op_advies(s, code) || s.zicht == SVD_VOORRAAD);
}
bool verwerkt(const Svd& s, int code) {
  return s.sub != code && (op_advies(s, code) || (s.zicht == SVD_VOORRAAD && svd_muteert()));
}

struct Optie {
  int code;
  const Tekst* tekst;
  bool (*kan)(const Svd&, int code);
};
constexpr Optie OPTIES[] = {
    {SVD_OVERNEMEN, &T_SVD_O_OVERNEMEN, op_advies},
    {SVD_AANVUL, &T_SVD_O_AANVUL, advies_aanwezig},
    {SVD_SWITCH, &T_SVD_O_SWITCH, advies_aanwezig},
    {SVD_HERVERDEEL, &T_SVD_O_HERVERDEEL, advies_aanwezig},
    {SVD_DISTRIBUTIE, &T_SVD_O_DISTRIBUTIE, advies_aanwezig},
    {SVD_AANVULINFO, &T_SVD_O_AANVULINFO, info_zicht},
    {SVD_INFO, &T_SVD_O_AANVULINFO, info_scherm},
    {SVD_WISINFO, &T_SVD_O_WISINFO, info_aanwezig},
    {SVD_WIJZIGEN, &T_SVD_O_WIJZIGEN, heeft_maten},
    {SVD_CRITERIA, &T_SVD_O_CRITERIA, altijd},
    {SVD_ACTUEEL, &T_SVD_O_ACTUEEL, actueel},
    {SVD_VOORRAAD, &T_SVD_O_VOORRAAD, ander_zicht},
    {SVD_BESCHIKBAAR, &T_SVD_O_BESCHIKBAAR, ander_zicht},
    {SVD_MUTATIES, &T_SVD_O_MUTATIES, mutaties},
    {SVD_KAAL, &T_SVD_O_KAAL, kaal},
    {SVD_VERWERKT, &T_SVD_O_VERWERKT, verwerkt},
    {SVD_VERKOPEN, &T_SVD_O_VERKOPEN, met_verkopen},
    {SVD_ZONDER, &T_SVD_O_ZONDER, zonder_verkopen},
    {SVD_EAN, &T_SVD_O_EAN, altijd},
    {SVD_SERIE, &T_SVD_O_SERIE, altijd},
    {SVD_OMHOOG, &T_SVD_O_OMHOOG, svd_loopt_door},
    {SVD_LINKS, &T_SVD_O_LINKS, svd_loopt_door},
    {SVD_OMLAAG, &T_SVD_O_OMLAAG, svd_loopt_door},
    {SVD_RECHTS, &T_SVD_O_RECHTS, svd_loopt_door},
    {SVD_VERDER, &T_SVD_O_VOLGENDE, altijd},
    {SVD_TERUG, &T_SVD_O_VORIGE, altijd},
    {SVD_ANDER, &T_SVD_O_ANDERE, altijd},
    {SVD_UITLEG, &T_SVD_O_UITLEG, op_advies},
};

/// The hot letter of an option, upper case; a translation may lack it.
char letter(const Optie& o) {
  const char* const en = strchr(txt(*o.tekst), '&');
  return en == nullptr ? '\0' : static_cast<char>(chr_upper(static_cast<uint8_t>(en[1])));
}

std::vector<const Optie*> opties_van(const Svd& s) {
  std::vector<const Optie*> lijst;
  for (const Optie& o : OPTIES) {
    if (o.kan(s, o.code)) lijst.push_back(&o);
  }
  return lijst;
}

void toon_regels(const std::vector<const Optie*>& lijst) {
  const int rij = scr_ctx->lines - 1;
  std::string regel;
  std::string uitleg;
  for (const Optie* o : lijst) {
    if (o->code == SVD_UITLEG) {
      uitleg = std::string("   ") + txt(*o->tekst);
    } else if (letter(*o) != '\0') {
      regel += str_format("%s&%c", regel.empty() ? "" : " ", letter(*o));
    }
  }
  scr_clreol(rij, 1);
  const int kol = 1 + scr_print(A_LABEL, rij, 1, "%s", txt(T_SVD_UW_KEUZE));
  scr_amp_print(rij, kol + 2, regel.c_str());
  if (scr_ctx->message[0] != 0) return;  // a message stands there until the next key
  scr_clreol(scr_ctx->lines, 1);
  scr_amp_print(scr_ctx->lines, 1, (txt(T_SVD_TOETSEN) + uitleg).c_str());
}

/// All options in full; the code of the one chosen, or -1.
int keuzelijst(const std::vector<const Optie*>& lijst) {
  TrMenu* const menu = tr_menu_new(TR_BOX, 3, scr_ctx->cols - 40, 0, nullptr);
  for (const Optie* o : lijst) tr_menu_add(menu, -1, txt(*o->tekst), o->code, TR_AAN, 0, nullptr);
  const int code = tr_menu_run(menu, -1);
  tr_menu_free(menu);
  return code;
}

int van_letter(const std::vector<const Optie*>& lijst, int toets) {
  if (toets <= 0 || toets > 255) return -1;
  const auto groot = static_cast<char>(chr_upper(static_cast<uint8_t>(toets)));
  for (const Optie* o : lijst) {
    if (letter(*o) == groot) return o->code;
  }
  return -1;
}

int lees_toets(const std::vector<const Optie*>& lijst) {
  for (const Optie* o : lijst) {
    const auto groot = static_cast<unsigned char>(letter(*o));
    if (groot == 0) continue;
    key_allow(groot);
    if (groot >= 'A' && groot <= 'Z') key_allow(groot + 'a' - 'A');
  }
  for (const int toets : {TOETS_ENTER, TOETS_LEFT, TOETS_RIGHT}) key_allow(toets);
  const int toets = scr_getkey("", &K_CANCEL, &K_UP, &K_DOWN, &K_PGUP, &K_PGDN);
  scr_error("");
  return toets;
}

}  // namespace

const char* svd_kale_tekst(const char* optie) {
  const char* p = strchr(optie, ' ');
  while (p != nullptr && *p == ' ') ++p;
  return p == nullptr ? optie : p;
}

int svd_kies(Svd& s) {
  for (;;) {
    svd_teken(s);
    const std::vector<const Optie*> lijst = opties_van(s);
    toon_regels(lijst);
    const int toets = lees_toets(lijst);
    if (weg_toets()) return SVD_EINDE;
    if (svd_stap(s, toets, advies.filialen() - 1)) continue;
    const int code = toets == TOETS_ENTER ? keuzelijst(lijst) : van_letter(lijst, toets);
    if (code > 0) return code;
  }
}
