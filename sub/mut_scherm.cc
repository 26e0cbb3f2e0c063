// The screens of moves entered by hand: the branches and the order or document, then pieces one
// after another, with the list of what moved. A command holds its work claims from its first field
// to its last piece.
#include "isam/base.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/mut_intern.h"
#include "sub/opdr_intern.h"
#include "sub/opdr_kies.h"
#include "sub/opdrnr.h"
#include "sub/pghdl.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/zoek_lijst.h"

namespace {

constexpr int RIJ_FILIALEN = 3, RIJ_NUMMER = 4, RIJ_KOPPEN = 5, RIJ_LIJST = 6, RIJ_EINDE = 20;
constexpr int KOL = 1, KOL_TWEEDE = 30, KOLOM_BREED = 28, SCHERM_BREED = 80;
constexpr int BEVESTIGEN = 3;  // beside the two modes of entry

/// What a field makes the step counter do; a field that is passed over keeps its direction.
enum class Stap { verder, terug, over };

struct Scherm {
  int mode;
  MutIngang in;
  int rij, kolom;  // of the next piece in the list
};

// Fields ------------------------------------------------------------------------------------------

/// One branch with its label; the row is cleared from the label on.
Stap veld_filiaal(int col, const Tekst& label, uint8_t* filiaal) {
  scr_clreol(RIJ_FILIALEN, col);
  const int veld = col + scr_print(A_LABEL, RIJ_FILIALEN, col, "%s", txt(label));
  key_allow(K_CANCEL);
  fil_field(RIJ_FILIALEN, veld, "IEZP", filiaal);
  return weg_toets() ? Stap::terug : Stap::verder;
}

/// The second branch: never the first.
Stap veld_ander(const Tekst& label, uint8_t* filiaal, uint8_t eerste) {
  const VeldToetsen toetsen;
  for (;;) {
    toetsen.terug();
    if (veld_filiaal(KOL_TWEEDE, label, filiaal) == Stap::terug) return Stap::terug;
    if (*filiaal != eerste) return Stap::verder;
    scr_error("%s", txt(T_PG_INGAVE));
  }
}

int toon_label(const Tekst& label) {
  scr_clreol(RIJ_NUMMER, KOL);
  return KOL + 1 + scr_print(A_LABEL, RIJ_NUMMER, KOL, "%s", txt(label));
}

void toon_nummer(int col, uint32_t nummer) {
  if (nummer == 0)
    scr_print(A_WAARDE, RIJ_NUMMER, col, "%s", txt(T_MUT_NIET_INGEGEVEN));
  else
    scr_print(A_WAARDE, RIJ_NUMMER, col, "%8lu", nummer);
}

Stap veld_nummer(const Tekst& label, uint32_t* nummer) {
  *nummer = 0;
  const int col = toon_label(label);
  const bool goed = opdrnr_ingave(RIJ_NUMMER, col, nummer);
  if (goed) toon_nummer(col, *nummer);
  return goed ? Stap::verder : Stap::terug;
}

/// An order of the sending branch, when it has any. True when it names the receiver as well.
bool kies_opdracht(MutIngang* in) {
  in->opdrachtnr = 0;
  OpdrGrens grens;
  grens.vanfil = in->vanfil;
  if (opdr_verzamel(grens, 0).empty()) return false;
  scr_clreol(RIJ_FILIALEN, KOL_TWEEDE);
  const int col = toon_label(T_MUT_OPDRACHTNR), hint = scr_ctx->lines - 1;
  scr_print(A_LABEL, hint, KOL, "%s", txt(T_MUT_OPDRACHT_TOETSEN));
  OpdrKeuze keuze{};
  const bool gekozen = opdr_kies(RIJ_NUMMER, col, grens, &keuze) && keuze.nummer != 0;
  scr_clreol(hint, KOL);
  if (!gekozen) return false;
  in->opdrachtnr = keuze.nummer;
  if (keuze.naarfil >= filialen() || keuze.naarfil == in->vanfil) return false;
  in->naarfil = keuze.naarfil;
  return true;
}

Stap eerste_filiaal(const Tekst& label, uint8_t* filiaal) {
  scr_clreol(RIJ_NUMMER, KOL);
  return veld_filiaal(KOL, label, filiaal);
}

Stap stap_van(Scherm& s) { return eerste_filiaal(T_MUT_VAN_EERST, &s.in.vanfil); }
Stap stap_naar(Scherm& s) { return veld_ander(T_MUT_NAAR, &s.in.naarfil, s.in.vanfil); }
Stap stap_opdracht_naar(Scherm& s) {
  const bool heel = kies_opdracht(&s.in);
  toon_nummer(toon_label(T_MUT_OPDRACHTNR), s.in.opdrachtnr);
  if (!heel) return stap_naar(s);
  const int col = KOL_TWEEDE + scr_print(A_LABEL, RIJ_FILIALEN, KOL_TWEEDE, "%s", txt(T_MUT_NAAR));
  scr_print(A_WAARDE, RIJ_FILIALEN, col, "%d", s.in.naarfil);
  return Stap::verder;
}
Stap stap_opdracht(Scherm& s) { return veld_nummer(T_MUT_OPDRACHTNR, &s.in.opdrachtnr); }
Stap stap_naar_eerst(Scherm& s) { return eerste_filiaal(T_MUT_NAAR_EERST, &s.in.naarfil); }
Stap stap_van_tweede(Scherm& s) { return veld_ander(T_MUT_VAN, &s.in.vanfil, s.in.naarfil); }

/// Whether anything that was sent carries a number.
bool go_met_nummer() {
  const int sleutel = dtgo->block.key_number;
  IXSWITCH(dtgo, 1);
  DtGo rec{};
  bool er = IXFIRSTR(dtgo, &rec);
  while (er && rec.opdrachtnr == 0) er = IXNEXT(dtgo, &rec);
  IXSWITCH(dtgo, sleutel);
  return er;
}

Stap stap_document(Scherm& s) {
  s.in.opdrachtnr = 0;
  if (!go_met_nummer()) return Stap::over;
  return veld_nummer(T_MUT_DOCUMENT, &s.in.opdrachtnr);
}

// Pieces ------------------------------------------------------------------------------------------

void wis_rijen(int van, int tm) {
  for (int rij = van; rij <= tm; ++rij) scr_clreol(rij, KOL);
}

void begin_lijst(Scherm& s) {
  wis_rijen(RIJ_KOPPEN, RIJ_EINDE);
  for (int kolom = KOL; kolom <= SCHERM_BREED; kolom += KOLOM_BREED)
    scr_print(A_LABEL, RIJ_KOPPEN, kolom, "%-13.13s %-5.5s", txt(T_MUT_K_ARTIKEL),
              txt(T_MUT_K_STUKS));
  s.rij = RIJ_LIJST;
  s.kolom = KOL;
}

void zet_in_lijst(Scherm& s) {
  scr_print(A_WAARDE, s.rij, s.kolom, "%-13.13s %5ld", s.in.code, s.in.stuks);
  s.kolom += KOLOM_BREED;
  if (s.kolom <= SCHERM_BREED) return;
  s.kolom = KOL;
  if (++s.rij <= RIJ_EINDE) return;
  wis_rijen(RIJ_LIJST, RIJ_EINDE);
  s.rij = RIJ_LIJST;
}

bool neem_stuk(Scherm& s) {
  const bool per_maat = s.in.soort != 0;
  if (s.mode == BEVESTIGEN) return per_maat ? mut_ontv_maat(&s.in) : mut_ontv_etiket(&s.in);
  return per_maat ? mut_maat(&s.in, s.mode) : mut_etiket(&s.in, s.mode);
}

Stap stap_stukken(Scherm& s) {
  begin_lijst(s);
  const int rij = scr_ctx->lines - MUT_RIJ_ARTIKEL;
  for (;;) {
    wis_rijen(rij, scr_ctx->lines - 1);
    const int col = KOL + 1 + scr_print(A_LABEL, rij, KOL, "%s", txt(T_MUT_ARTIKEL));
    if (!mut_code(rij, col, &s.in)) break;
    if (neem_stuk(s)) zet_in_lijst(s);
  }
  mut_los();
  wis_rijen(rij, scr_ctx->lines - 1);
  return Stap::terug;
}

// The commands ------------------------------------------------------------------------------------

using Doe = Stap (*)(Scherm&);
constexpr Doe ZENDEN[] = {stap_van, stap_opdracht_naar, stap_stukken};
constexpr Doe ONTVANGEN[] = {stap_van, stap_naar, stap_opdracht, stap_stukken};
constexpr Doe BEVESTIGING[] = {stap_naar_eerst, stap_van_tweede, stap_document, stap_stukken};

/// From field to field, forward and back; past the first field backwards it ends.
void doorloop(Scherm& s, std::span<const Doe> stappen) {
  const VeldToetsen toetsen;
  Stap richting = Stap::verder;
  for (size_t i = 0; i < stappen.size();) {
    toetsen.terug();
    const Stap stap = stappen[i](s);
    if (stap != Stap::over) richting = stap;
    if (richting == Stap::verder) {
      ++i;
    } else if (i-- == 0) {
      return;
    }
  }
}

void begin(const std::string& titel) { hdr_line('C', "%s", titel); }

/// The claims of a command, in their order, around its screen.
void met_claims(int eerste, int tweede, Scherm& s, std::span<const Doe> stappen) {
  if (!vw_claim(eerste, true)) return;
  const Werkclaim claim1(eerste);
  if (!vw_claim(tweede, true)) return;
  const Werkclaim claim2(tweede);
  doorloop(s, stappen);
}

}  // namespace

void ing_mutatie(int mode) {
  const bool zenden = mode == MUT_ZENDEN;
  begin(str_format("%s - %s", txt(zenden ? T_MUT_VERZENDEN : T_MUT_ONTVANGEN),
                   txt(T_MUT_PER_NUMMER)));
  Scherm s{mode, {}, 0, 0};
  if (zenden)
    met_claims(11, 12, s, ZENDEN);
  else
    met_claims(13, 12, s, ONTVANGEN);
}

void ing_ontvangst() {
  begin(txt(T_MUT_BEVESTIGEN));
  Scherm s{BEVESTIGEN, {}, 0, 0};
  met_claims(11, 13, s, BEVESTIGING);
}

void verz_ingave() { ing_mutatie(MUT_ZENDEN); }
void ontv_ingave() { ing_mutatie(MUT_ONTVANGEN); }
