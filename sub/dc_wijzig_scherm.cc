// What the operator asks to correct: the fields of a selection, the number of one article, and the
// list of the lines found with its three actions.
#include <algorithm>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/dc_wijzig.h"
#include "sub/opdrnr.h"
#include "sub/pghdl.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/zoek.h"
#include "sub/zoek_lijst.h"

namespace {

constexpr int RIJ = 3, K_VELD = 24;

bool leeg() { return (scr_ctx->ing_result & ING_LEEG) != 0; }

void toon(int rij, const std::string& waarde) {
  scr_clreol(rij, K_VELD);
  scr_print(A_WAARDE, rij, K_VELD, "%s", waarde);
}
std::string of_alle(bool alle, const std::string& waarde) {
  return alle ? txt(T_OPDR_ALLE) : waarde;
}

// The fields: false when the operator left --------------------------------------------------------

bool veld_soort(DcwGrens& g, int rij) {
  const Tekst* const SOORTEN[] = {&T_DCW_VERZENDTRANS, &T_DCW_ONTVANGSTTRANS};
  TrMenu* const menu = tr_menu_new(TR_BOX, rij, K_VELD, 0, nullptr);
  if (menu == nullptr) return false;
  for (int i = 0; i < 2; ++i)
    tr_menu_add(menu, -1, str_format(i == 0 ? "&1 %s" : "&2 %s", txt(*SOORTEN[i])).c_str(), i + 1,
                TR_AAN, 0, nullptr);
  const int keuze = tr_menu_run(menu, g.soort + 1);
  tr_menu_free(menu);
  if (keuze < 1) return false;
  g.soort = keuze == 1 ? DC_ZENDEN : DC_ONTVANGEN;
  toon(rij, str_format("%d %s", keuze, txt(*SOORTEN[keuze - 1])));
  return true;
}

bool veld_filiaal(uint8_t* filiaal, int rij) {
  scr_clreol(rij, K_VELD);
  if (!fil_of_alle(rij, K_VELD, filiaal)) return false;
  toon(rij, of_alle(*filiaal >= filialen(), str_format("%d", *filiaal)));
  return true;
}
bool veld_van(DcwGrens& g, int rij) { return veld_filiaal(&g.vanfil, rij); }
bool veld_naar(DcwGrens& g, int rij) { return veld_filiaal(&g.naarfil, rij); }

bool veld_datum(DcwGrens& g, int rij) {
  scr_clreol(rij, K_VELD);
  INGAVE(rij, K_VELD, "D,", &K_CANCEL, &g.datum);
  if (weg_toets()) return false;
  if (leeg()) g.datum = 0;
  toon(rij, of_alle(g.datum == 0, date_plain(g.datum)));
  return true;
}

bool veld_nummer(DcwGrens& g, int rij) {
  char tekst[12] = "";
  if (g.nummer != DCW_ALLE_NUMMERS) str_printf(tekst, sizeof tekst, "%lu", g.nummer);
  scr_clreol(rij, K_VELD);
  for (;;) {
    INGAVE(rij, K_VELD, "8s[0123456789],", &K_CANCEL, tekst);
    if (weg_toets()) return false;
    if (tekst[0] == 0 || strcmp(tekst, "0") == 0 || opdrnr_norm(tekst)) break;
    scr_error("%s", txt(T_OPDRNR_ONGELDIG));
  }
  g.nummer = tekst[0] == 0 ? DCW_ALLE_NUMMERS : static_cast<uint32_t>(strtoul(tekst, nullptr, 10));
  toon(rij, of_alle(tekst[0] == 0, tekst));
  return true;
}

bool veld_artikel(DcwGrens& g, int rij) {
  uint32_t nummer = g.nr.artgroep;
  scr_clreol(rij, K_VELD);
  ing_artikel(rij, K_VELD, "", &nummer);
  if (weg_toets()) return false;
  g.nr.artgroep = nummer;
  toon(rij, of_alle(nummer == 0, str_format("%lu", nummer)));
  return true;
}
bool veld_kleur(DcwGrens& g, int rij) {
  uint16_t nummer = g.nr.kleur;
  scr_clreol(rij, K_VELD);
  ing_kleur(rij, K_VELD, "", &nummer);
  if (weg_toets()) return false;
  g.nr.kleur = nummer;
  toon(rij, of_alle(nummer == 0, str_format("%hu", nummer)));
  return true;
}
bool veld_volgnr(DcwGrens& g, int rij) {
  uint16_t nummer = g.nr.volgnr;
  scr_clreol(rij, K_VELD);
  INGAVE(rij, K_VELD, "4u,P", &K_CANCEL, &nummer);
  if (weg_toets()) return false;
  g.nr.volgnr = nummer;
  toon(rij, of_alle(nummer == 0, str_format("%hu", nummer)));
  return true;
}
bool veld_maat(DcwGrens& g, int rij) {
  scr_clreol(rij, K_VELD);
  INGAVE(rij, K_VELD, "3c,J", &K_CANCEL, g.maat);
  if (weg_toets()) return false;
  if (leeg()) memset(g.maat, 0, sizeof g.maat);
  toon(rij, of_alle(leeg(), veld_tekst(g.maat, sizeof g.maat)));
  return true;
}

struct Veld {
  const Tekst* bij_zenden;
  const Tekst* bij_ontvangen;
  bool (*voer_in)(DcwGrens&, int rij);
};
constexpr Veld VELDEN[] = {
    {&T_DCW_SOORT, &T_DCW_SOORT, veld_soort},
    {&T_DCW_VERZENDFILIAAL, &T_DCW_VERZENDFILIAAL, veld_van},
    {&T_DCW_BESTEMMING, &T_DCW_ONTVANGSTFILIAAL, veld_naar},
    {&T_DCW_VERZENDDATUM, &T_DCW_ONTVANGSTDATUM, veld_datum},
    {&T_DCW_OPDRACHTNUMMER, &T_DCW_DOCUMENTNUMMER, veld_nummer},
    {&T_VRAAG_ARTIKELGROEP, &T_VRAAG_ARTIKELGROEP, veld_artikel},
    {&T_ZOEK_KLEURNUMMER, &T_ZOEK_KLEURNUMMER, veld_kleur},
    {&T_VRAAG_VOLGNUMMER, &T_VRAAG_VOLGNUMMER, veld_volgnr},
    {&T_ZOEK_MAAT, &T_ZOEK_MAAT, veld_maat},
};
constexpr int AANTAL = static_cast<int>(std::size(VELDEN));

void labels(uint8_t soort, int van) {
  for (int i = van; i < AANTAL; ++i) {
    const Tekst* const t = soort == DC_ZENDEN ? VELDEN[i].bij_zenden : VELDEN[i].bij_ontvangen;
    scr_print(A_LABEL, RIJ + i, 2, "%-20.20s", txt(*t));
  }
}

/// All fields in turn; leaving one goes back to the field before it.
bool voer_velden_in(DcwGrens& g) {
  for (int i = 0; i < AANTAL;) {
    if (!VELDEN[i].voer_in(g, RIJ + i)) {
      if (--i < 0) return false;
      continue;
    }
    if (i++ == 0) labels(g.soort, 1);
  }
  return true;
}

// The list ----------------------------------------------------------------------------------------

struct Lijst : KeyLijst {
  Dcw* d;
  uint8_t soort;
};
Lijst& lijst_van(BrwRec* b) { return *static_cast<Lijst*>(static_cast<KeyLijst*>(b->data)); }

void zet_niets(const char*) {}
const ZoekOrde ORDES[] = {{1, T_DCW_ARTIKELNUMMER, "13s,I", zet_niets}};
int lijst_orde = 0;

void kop(BrwRec* b) {
  const bool zenden = lijst_van(b).soort == DC_ZENDEN;
  scr_print(A_LABEL, 1, 2, "%-13.13s %-14.14s %-3.3s %5.5s %10.10s %8.8s", txt(T_DCW_K_ARTIKEL),
            txt(T_DCW_K_SERIE), "", txt(T_DCW_K_STUKS),
            txt(zenden ? T_DCW_K_OPDRACHT : T_DCW_K_DOCUMENT),
            txt(zenden ? T_DCW_K_VRZDAT : T_DCW_K_ONTDAT));
}

const char* regel(BrwRec* b) {
  const Dcw& d = *lijst_van(b).d;
  const DcwRij& rij = d.rij;
  DcRegel r{};
  dcw_lees(d, rij.regel, &r);
  const std::string stuks = r.stuks == DC_GEEN_AANTAL ? "" : str_format("%lu", r.stuks);
  const std::string nummer = r.nummer == 0 ? "" : str_format("%lu", r.nummer);
  const bool serie = !(Serienr{rij.nr} == Serienr{});
  str_printf(scr_klad, sizeof scr_klad, "%-13.13s %-14.14s %-3.3s %5.5s %10.10s %8.8s",
             veld_tekst(rij.code, sizeof rij.code), serie ? serie_tekst(rij.nr) : std::string(),
             veld_tekst(rij.maat, sizeof rij.maat), stuks, nummer, date_show(r.datum));
  return scr_klad;
}

enum Actie { WIJZIGEN, VERWIJDEREN, ALLES };
const char* actie_tekst(int i) {
  static const Tekst* const TEKSTEN[] = {&T_DCW_WIJZIGEN, &T_DCW_VERWIJDEREN, &T_DCW_ALLES};
  return i >= 0 && i < 3 ? txt(*TEKSTEN[i]) : "";
}

void verwijder(Dcw& d) {
  const IngBewaar bewaar;
  bool ja;
  {
    const Venster venster(10, 6, 5, 70, 2);
    win_title(nullptr);
    ja = scr_confirm(2, 2, "%s", txt(T_DCW_WEG_AKKOORD));
  }
  if (ja) dcw_wis(d);
}

void doe(Dcw& d, int actie) {
  if (actie == VERWIJDEREN) return verwijder(d);
  const uint32_t een[] = {d.rij.regel};
  if (actie == WIJZIGEN) return dcw_wijzig(d, een);
  dcw_wijzig(d, dcw_regels(d));
}

/// The line of actions takes the place of a search.
void kies_actie(BrwRec* b) {
  Dcw& d = *lijst_van(b).d;
  popup_begin(actie_tekst);
  for (const int i : {WIJZIGEN, VERWIJDEREN, ALLES}) popup_add(i);
  const int actie = popup_run(brw_search_row(), 2);
  if (actie < 0) {
    if (scr_ctx->last_key == K_F3) key_push(K_ESC);  // there is nothing to pick
    scr_ctx->ing_result |= ING_LEEG;
    return;
  }
  const DcwRij stond = d.rij;
  doe(d, actie);
  d.rij = stond;
  if (!key_lijst_stap(b, 0)) key_lijst_positie(b);
  scr_ctx->last_key = TOETS_ENTER;
  scr_ctx->ing_result = 0;  // the page comes anew from here
}

DcwGrens ruim() {
  DcwGrens g{};
  g.vanfil = g.naarfil = static_cast<uint8_t>(filialen());
  return g;
}

}  // namespace

void dcw_lijst(Dcw& d, uint8_t soort) {
  Lijst lijst{{d.lijst, &d.rij, sizeof d.rij, ORDES, &lijst_orde}, &d, soort};
  BrwRec* b = brw_new(key_lijst_stap, kies_actie, kop, regel);
  if (b == nullptr) return;
  b->data = static_cast<KeyLijst*>(&lijst);
  lijst_kies(b, txt(soort == DC_ZENDEN ? T_DCW_VERZENDINGEN : T_DCW_ONTVANGSTEN), T_DCW_GEEN);
}

void dcw_selectie(Dcw& d) {
  DcwGrens g = ruim();
  for (;;) {
    hdr_line('C', "%s", txt(T_DCW_PER_SELECTIE));
    labels(g.soort, 0);
    if (!voer_velden_in(g)) return;
    const int aantal = dcw_verzamel(d, g);
    if (aantal > 0) dcw_lijst(d, g.soort);
    if (aantal == 0) msg_info(txt(T_DCW_GEEN));
  }
}

void dcw_artikelnummer(Dcw& d) {
  DcwGrens g = ruim();
  hdr_line('C', "%s", txt(T_DCW_PER_ARTIKEL));
  scr_print(A_LABEL, RIJ, 2, "%s", txt(T_DCW_SOORT));
  scr_print(A_LABEL, RIJ + 1, 2, "%s", txt(T_DCW_ARTIKELNUMMER));
  while (veld_soort(g, RIJ)) {
    for (;;) {
      INGAVE(RIJ + 1, K_VELD, "13s,EI", &K_CANCEL, g.code);
      if (weg_toets()) break;
      const int aantal = dcw_verzamel(d, g);
      if (aantal > 0) dcw_lijst(d, g.soort);
      if (aantal == 0) scr_error("<%-.13s> %s", g.code, txt(T_DCW_NIET_AANWEZIG));
    }
  }
}
