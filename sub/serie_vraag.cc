// Asking for one series. The fields narrow the series down along a key of DTSER, or of a private
// index over the series of one brand; what then still is not one series is shown to choose from.
// What was typed stands in the fields again at the next question.
#include "sub/serie_vraag.h"

#include <cstdlib>
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/leesstam.h"
#include "sub/serie.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/zoek.h"
#include "sub/zoek_lijst.h"

namespace {

constexpr int RIJ = 3, K_LABEL = 2, K_VELD = 16, VELDEN = 3;
constexpr int KEY_NUMMER = 1, KEY_MERK = 2;  // of DTSER

/// What the operator typed; its zero and empty fields were left open.
struct Gevraagd {
  uint16_t merk;
  uint32_t artgroep;
  uint16_t kleur;
  int16_t volgnr;
  char model[16];
};
Gevraagd gevraagd;

// The series to choose from -----------------------------------------------------------------------

/// Series that equal `groep` in the first `velden` fields of the key of `icb`.
struct Groep {
  ICB* icb;
  int velden;
  DtSer groep;
  DtSer rec;      // the one under the cursor
  bool op_model;  // searched by model, else by colour
};
Groep& groep_van(BrwRec* b) { return *static_cast<Groep*>(b->data); }

bool ga_naar(Groep& g, BrwRec* b, DtSer plaats) {
  if (!IXFIRSTR(g.icb, &plaats, g.velden)) return false;
  g.rec = plaats;
  b->current = static_cast<uint32_t>(g.icb->record_no);
  return true;
}

bool stap(BrwRec* b, int n) {
  Groep& g = groep_van(b);
  if (b->current == UINT32_MAX) {
    if (!ga_naar(g, b, g.groep)) return false;
  } else if (IXGET(dtser, &g.rec, static_cast<int32_t>(b->current)) != 1) {
    return false;
  }
  for (int i = n; i != 0; i += i < 0 ? 1 : -1) {
    DtSer rec = g.rec;
    if (!(n < 0 ? IXPREV(g.icb, &rec, g.velden) : IXNEXT(g.icb, &rec, g.velden))) return false;
    g.rec = rec;
    b->current = static_cast<uint32_t>(g.icb->record_no);
  }
  return true;
}

void zoek(BrwRec* b) {
  Groep& g = groep_van(b);
  const int rij = brw_search_row();
  char tekst[16] = "";
  const char* label = txt(g.op_model ? T_ZOEK_MODEL : T_ZOEK_KLEURNUMMER);
  const int kol = 3 + scr_print(A_LABEL, rij, 2, "%s", label);
  INGAVE(rij, kol, g.op_model ? "15s,IU" : "3s[0123456789],I", tekst);
  if (scr_ctx->last_key == K_F3) scr_ctx->ing_result |= ING_LEEG;
  if (weg_toets() || (scr_ctx->ing_result & ING_LEEG) != 0) return;
  DtSer plaats = g.groep;
  if (g.op_model)
    veld_zet(plaats.model, sizeof plaats.model, tekst);
  else
    plaats.nr.kleur = static_cast<uint16_t>(atoi(tekst));
  ga_naar(g, b, plaats);
}

void kop(BrwRec*) {
  scr_print(A_LABEL, 1, 2, "%-14s %-15s %-20s %s", txt(T_VRAAG_KOP_SERIE), txt(T_VRAAG_KOP_MODEL),
            txt(T_ZOEK_KOP_OMS), txt(T_ZOEK_KLEUR));
}

const char* regel(BrwRec* b) {
  const DtSer& s = groep_van(b).rec;
  Kleur kleur{};
  lees_kleur(&kleur, s.nr.kleur);
  str_printf(scr_klad, sizeof scr_klad, "%-14s %-15.15s %-20.20s %-15.15s", serie_tekst(s.nr),
             veld_tekst(s.model, sizeof s.model), veld_tekst(s.omschrijving, sizeof s.omschrijving),
             veld_tekst(kleur.naam, sizeof kleur.naam));
  return scr_klad;
}

/// 0 none, 1 one, which then stands in g.rec, 2 several.
int tel(Groep& g) {
  g.rec = g.groep;
  if (!IXFIRSTR(g.icb, &g.rec, g.velden)) return 0;
  DtSer rec = g.rec;
  return IXNEXT(g.icb, &rec, g.velden) ? 2 : 1;
}

/// The series of the group, chosen when there are several, or when what was typed is none of them.
bool kies_uit(Groep& g, Serienr* nr, bool onbekend = false) {
  const int aantal = tel(g);
  if (aantal == 0) {
    scr_error("%s", txt(T_VRAAG_ONBEKEND));
    return false;
  }
  if (aantal > 1 || onbekend) {
    BrwRec* b = brw_new(stap, zoek, kop, regel);
    if (b == nullptr) return false;
    b->data = &g;
    if (!lijst_kies(b, txt(T_VRAAG_SELECTEREN), T_ZOEK_GEEN)) return false;
  }
  *nr = g.rec.nr;
  return true;
}

// Finding them ------------------------------------------------------------------------------------

/// The series of one brand by model, for this search and for who goes on from the series found.
/// False when the operator broke off.
bool vul_modelindex(uint16_t merk) {
  const EigenTabel series("DTSER", KEY_MERK);
  ICB* models = sort_maak(privaat.r, "MAKV");
  DtSer rec{};
  rec.merk = merk;
  for (bool er = IXFIRSTR(series.icb, &rec, 1); er && !scr_interrupted();
       er = IXNEXT(series.icb, &rec, 1)) {
    models->record_no = series.icb->record_no;
    IXADDKEYS(models, &rec);
  }
  IXCLOSE(models);
  return !scr_interrupted();
}

DtSer gevraagde_serie() {
  DtSer rec{};
  rec.nr.artgroep = gevraagd.artgroep;
  rec.nr.kleur = gevraagd.kleur;
  rec.nr.volgnr = static_cast<uint16_t>(gevraagd.volgnr);
  rec.merk = gevraagd.merk;
  veld_zet(rec.model, sizeof rec.model, gevraagd.model);
  return rec;
}

bool zoek_nummer(Serienr* nr) {
  const EigenTabel index("DTSER", KEY_NUMMER);
  const int velden = gevraagd.kleur == 0 ? 1 : gevraagd.volgnr == 0 ? 2 : 3;
  Groep g{index.icb, velden, gevraagde_serie(), {}, false};
  return kies_uit(g, nr);
}

/// By model: an unknown model shows the list of all from where it would stand.
bool zoek_model(ICB* icb, int velden, Serienr* nr) {
  DtSer rec = gevraagde_serie();
  rec.nr.kleur = rec.nr.volgnr = 0;
  Groep g{icb, velden, rec, {}, false};
  const bool leeg = gevraagd.model[0] == 0;
  const bool onbekend = !leeg && tel(g) == 0;
  if (leeg || onbekend) {
    g.velden = velden - 1;
    g.op_model = true;
    if (tel(g) == 0) memset(g.groep.model, 0, sizeof g.groep.model);
  }
  return kies_uit(g, nr, onbekend);
}

bool zoek_artg_model(Serienr* nr) {
  const EigenTabel index("DTSER", KEY_MERK);
  return zoek_model(index.icb, 3, nr);
}

bool zoek_merk_model(Serienr* nr) {
  gevraagd.artgroep = 0;
  if (!vul_modelindex(gevraagd.merk)) return false;
  const EigenTabel index(privaat.r, KEY_NUMMER);
  return zoek_model(index.icb, 1, nr);
}

// The fields: false when the operator left --------------------------------------------------------

/// The field takes its choice in an index of its own: DTMERK.nn belongs to the selection.
struct Merkkeuze {
  std::string naam = str_format("DTMERK.Q%02ld", session_terminal);
  ICB* icb = IXCREATE(naam.c_str(), IX_EXCLUSIEF);
  Merkkeuze() {
    IXUPDFCB(icb, 0, str_format("merktmp,%d", static_cast<int>(sizeof(DtMerk))).c_str());
    IXUPDFCB(icb, 1, "merknr,NODUPS,I,1,2");
    IXINITIX(icb);
  }
  ~Merkkeuze() {
    IXCLOSE(icb);
    IXREMOVE(naam.c_str());
  }
  Merkkeuze(const Merkkeuze&) = delete;
  Merkkeuze& operator=(const Merkkeuze&) = delete;
};

/// Of several brands that were marked the first counts; all of them are no brand, and asked again.
bool veld_merk(int rij) {
  const Merkkeuze keuze;
  do {
    key_allow(K_CANCEL);
    ing_merk(rij, K_VELD, "E", &gevraagd.merk, keuze.icb);
    if (weg_toets()) return false;
  } while (gevraagd.merk == 0);
  DtMerk merk{};
  lees_merk(dtmerk, &merk, gevraagd.merk);
  scr_print(A_WAARDE, rij, K_VELD + 6, "%-20.20s", veld_tekst(merk.naam, sizeof merk.naam));
  return true;
}
bool veld_artikel(int rij) {
  ing_artikel(rij, K_VELD, "E", &gevraagd.artgroep);
  if (weg_toets()) return false;
  DtArt art{};
  lees_artikel(dtart, &art, gevraagd.artgroep);
  scr_print(A_WAARDE, rij, K_VELD + 7, "%-20.20s", veld_tekst(art.naam, sizeof art.naam));
  return true;
}
bool veld_kleur(int rij) {
  ing_kleur(rij, K_VELD, "", &gevraagd.kleur);
  return !weg_toets();
}
bool veld_volgnr(int rij) {
  if (gevraagd.kleur == 0) {
    gevraagd.volgnr = 0;
    return true;
  }
  INGAVE(rij, K_VELD, "4d,P", &K_CANCEL, &gevraagd.volgnr);
  return !weg_toets();
}
bool veld_model(int rij) {
  for (;;) {
    INGAVE(rij, K_VELD, "15s,U", &K_CANCEL, &K_F5, gevraagd.model);
    if (scr_ctx->last_key != K_F5) return !weg_toets();
    char model[15] = {};
    if (!model_pick(gevraagd.merk, model)) continue;
    str_printf(gevraagd.model, sizeof gevraagd.model, "%s", veld_tekst(model, sizeof model));
    scr_print(A_WAARDE, rij, K_VELD, "%-15s", gevraagd.model);
    return true;
  }
}

struct Veld {
  const Tekst* label;
  bool (*voer_in)(int rij);
};
constexpr Veld MERK{&T_ZOEK_KOP_MERK, veld_merk}, ARTIKEL{&T_VRAAG_ARTIKELGROEP, veld_artikel},
    KLEUR{&T_ZOEK_KLEURNUMMER, veld_kleur}, VOLGNR{&T_VRAAG_VOLGNUMMER, veld_volgnr},
    MODEL{&T_ZOEK_MODEL, veld_model}, GEEN{nullptr, nullptr};

struct Manier {
  const Tekst* titel;
  Veld velden[VELDEN];
  bool (*zoek)(Serienr*);
};
constexpr Manier MANIEREN[] = {
    {&T_VRAAG_NUMMER, {ARTIKEL, KLEUR, VOLGNR}, zoek_nummer},
    {&T_VRAAG_ARTG_MODEL, {MERK, ARTIKEL, MODEL}, zoek_artg_model},
    {&T_VRAAG_MODEL, {MERK, MODEL, GEEN}, zoek_merk_model},
};

/// All fields in turn; leaving one goes back to the field before it.
bool voer_velden_in(const Manier& m) {
  for (int i = 0; i < VELDEN && m.velden[i].label != nullptr;) {
    if (m.velden[i].voer_in(RIJ + i))
      ++i;
    else if (--i < 0)
      return false;
  }
  return true;
}

}  // namespace

bool serie_vraag(SerieVraag vraag, Serienr* nr) {
  if (scr_ctx == nullptr) return false;
  const Manier& m = MANIEREN[static_cast<size_t>(vraag)];
  hdr_line('C', "%s", txt(*m.titel));
  for (int i = 0; i < VELDEN && m.velden[i].label != nullptr; ++i)
    scr_print(A_LABEL, RIJ + i, K_LABEL, "%s", txt(*m.velden[i].label));
  scr_print(A_LABEL, scr_ctx->lines - 1, K_LABEL, "%s", txt(T_VRAAG_LEEG));
  do {
    scr_intr_reset();  // what was broken off before does not count here
    if (!voer_velden_in(m)) return false;
  } while (!m.zoek(nr));
  return true;
}
