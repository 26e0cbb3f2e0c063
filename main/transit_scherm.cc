// The selection screens of the two commands: fields from row 3 on, what was entered beside its
// label.
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "main/saldo.h"
#include "main/teksten.h"
#include "main/transit_in.h"
#include "scr/scr.h"
#include "sub/opdr_kies.h"
#include "sub/pghdl.h"
#include "sub/sel_krit.h"
#include "sub/tabellen.h"

namespace {

constexpr int KOL = 24;

void label(int rij, const Tekst& tekst) { scr_print(A_LABEL, rij, 1, "%-20.20s:", txt(tekst)); }
void waarde(int rij, const std::string& tekst) {
  scr_clreol(rij, KOL);
  scr_print(A_WAARDE, rij, KOL, "%s", tekst);
}
bool leeg() { return (scr_ctx->ing_result & ING_LEEG) != 0; }

/// Help on the row above the last for as long as a field is asked.
struct Hint {
  explicit Hint(const Tekst& tekst) {
    scr_print(A_LABEL, scr_ctx->lines - 1, 1, "%s", txt(tekst));
    key_allow(K_CANCEL);
  }
  ~Hint() { scr_clreol(scr_ctx->lines - 1, 1); }
  Hint(const Hint&) = delete;
  Hint& operator=(const Hint&) = delete;
};

/// A menu beside its label; 0 when the operator left.
int vraag_keuze(int rij, std::initializer_list<const Tekst*> punten) {
  TrMenu* menu = tr_menu_new(TR_BOX, rij, KOL, 0, nullptr);
  if (menu == nullptr) return 0;
  int id = 0;
  for (const Tekst* punt : punten) tr_menu_add(menu, -1, txt(*punt), ++id, TR_AAN, 0, nullptr);
  const int keuze = tr_menu_run(menu, 1);
  tr_menu_free(menu);
  if (keuze < 1 || keuze > static_cast<int>(punten.size())) return 0;
  // Without the "&" and number in front, by which it was picked.
  const std::string tekst = txt(**(punten.begin() + (keuze - 1)));
  waarde(rij, tekst.substr(tekst.find(' ') + 1));
  return keuze;
}

bool vraag_filialen(int rij, uint8_t* map) {
  const Hint hint(T_TRANSIT_HINT_FILIALEN);
  key_allow(K_F5);
  pg_field(rij, KOL, str_format("%ds,I", scr_ctx->cols - KOL).c_str(), map);
  if (weg_toets()) return false;
  if (leeg()) pg_fill(map);
  waarde(rij, pg_is_all(map) ? txt(T_TRANSIT_ALLE) : pg_show('F', map, scr_ctx->cols - KOL));
  return true;
}

/// A date; nothing entered gives `leeg_datum`, which shows as a word.
bool vraag_datum(int rij, const Tekst& woord, uint16_t leeg_datum, uint16_t* datum) {
  key_allow(K_CANCEL);
  uint16_t d = 0;
  INGAVE(rij, KOL, "D, ", &d);
  if (weg_toets()) return false;
  *datum = leeg() || d == 0 ? leeg_datum : d;
  waarde(rij, *datum == leeg_datum ? txt(woord) : date_plain(*datum));
  return true;
}

/// A number; nothing entered gives 0: any.
bool vraag_getal(int rij, const char* formaat, int32_t* getal) {
  const Hint hint(T_TRANSIT_HINT_ALLE);
  *getal = 0;
  INGAVE(rij, KOL, formaat, getal);
  if (weg_toets()) return false;
  if (leeg()) *getal = 0;
  waarde(rij, *getal == 0 ? std::string(txt(T_TRANSIT_ALLE)) : str_format("%ld", *getal));
  return true;
}

bool vraag_maat(int rij, std::string* maat) {
  const Hint hint(T_TRANSIT_HINT_ALLE);
  char tekst[4] = "";
  INGAVE(rij, KOL, "3s,IU", tekst);
  if (weg_toets()) return false;
  str_trim(tekst);
  *maat = leeg() ? "" : tekst;
  waarde(rij, maat->empty() ? txt(T_TRANSIT_ALLE) : *maat);
  return true;
}

bool vraag_filiaal(int rij, uint8_t* filiaal) {
  key_allow(K_CANCEL);
  fil_field(rij, KOL, "EIZP", filiaal);
  if (weg_toets()) return false;
  waarde(rij, str_format("%d", *filiaal));
  return true;
}

enum RijAnnul : uint8_t {
  HERKOMST = 3,
  VAN,
  NAAR,
  DATUM,
  ARTGROEP,
  KLEUR,
  VOLGNR,
  MAAT,
  AKKOORD = 12
};

bool vraag_serie(AnnulGrens* g) {
  int32_t artgroep, kleur, volgnr;
  if (!vraag_getal(ARTGROEP, "5l,IZP", &artgroep) || !vraag_getal(KLEUR, "3l,IZP", &kleur) ||
      !vraag_getal(VOLGNR, "4l,IZP", &volgnr))
    return false;
  g->artgroep = static_cast<uint32_t>(artgroep);
  g->kleur = static_cast<uint16_t>(kleur);
  g->volgnr = static_cast<uint16_t>(volgnr);
  return true;
}

enum RijNontv : uint8_t { VIA = 3, VANFIL = 5, NAARFIL, NUMMER = 6, VANAF, TM };

/// By send date: both sets of branches. By document: the sending ones, and the number.
bool vraag_waarvan(NontvGrens* g) {
  label(VANFIL, T_TRANSIT_VANFIL);
  label(NAARFIL, g->document ? T_TRANSIT_NUMMER : T_TRANSIT_NAARFIL);
  label(VANAF, g->document ? T_TRANSIT_PRINT_VANAF : T_TRANSIT_ZEND_VANAF);
  label(TM, g->document ? T_TRANSIT_PRINT_TM : T_TRANSIT_ZEND_TM);
  if (!vraag_filialen(VANFIL, g->van)) return false;
  if (!g->document) return vraag_filialen(NAARFIL, g->naar);
  OpdrGrens grens;
  grens.opdrachten = false;
  grens.onderweg = true;
  OpdrKeuze gekozen{};
  if (!opdr_kies(NUMMER, KOL, grens, &gekozen)) return false;
  g->nummer = gekozen.nummer;
  return gekozen.nummer != 0;
}

}  // namespace

bool annul_scherm(AnnulGrens* g) {
  label(HERKOMST, T_TRANSIT_HERKOMST);
  label(VAN, T_TRANSIT_VANFIL);
  label(NAAR, T_TRANSIT_NAARFIL);
  label(DATUM, T_TRANSIT_ZENDDATUM);
  label(ARTGROEP, T_TRANSIT_ARTIKELGROEP);
  label(KLEUR, T_TRANSIT_KLEUR);
  label(VOLGNR, T_TRANSIT_VOLGNR);
  label(MAAT, T_TRANSIT_MAAT);
  g->soort = static_cast<uint8_t>(vraag_keuze(HERKOMST, {&T_TRANSIT_VERZENDEN}));
  return g->soort != 0 && vraag_filiaal(VAN, &g->vanfil) && vraag_filialen(NAAR, g->naar) &&
         vraag_datum(DATUM, T_TRANSIT_ALLE, 0, &g->zenddatum) && vraag_serie(g) &&
         vraag_maat(MAAT, &g->maat) && scr_confirm(AKKOORD, 1, "");
}

bool nontv_scherm(NontvGrens* g) {
  label(VIA, T_TRANSIT_VIA);
  const int via = vraag_keuze(VIA, {&T_TRANSIT_VERZENDEN, &T_TRANSIT_DOCUMENT});
  if (via == 0) return false;
  g->document = via == 2;
  if (!vraag_waarvan(g) || !vraag_datum(VANAF, T_TRANSIT_EERSTE, 0, &g->vanaf) ||
      !vraag_datum(TM, T_TRANSIT_LAATSTE, DATUM_LAATSTE, &g->tm))
    return false;
  memset(&ser_rec, 0, sizeof ser_rec);
  sel_scherm();  // however it is left, the last selection is used
  overlay_maak();
  return true;
}
