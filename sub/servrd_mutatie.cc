// The three ways in which an operator changes the division of a series by hand: from the warehouse,
// branch by branch, a whole branch at once. Only advies.m_voorlopig changes, and an entry that
// cannot be placed changes nothing.
#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

#include "scr/scr.h"
#include "sub/pghdl.h"
#include "sub/servrd_intern.h"
#include "sub/teksten.h"

namespace {

constexpr int32_t NIEUW_MAX = 9999;
constexpr int TOETS_PLAATS = 24;  // free entries of the key table

/// Makes the left and right arrows leave a field, as up and down do.
struct Pijlen {
  int32_t &links = scr_ctx->key_table[TOETS_PLAATS], &rechts = scr_ctx->key_table[TOETS_PLAATS + 1];
  Pijlen() {
    links = TOETS_LEFT;
    rechts = TOETS_RIGHT;
  }
  ~Pijlen() { links = rechts = 0; }
  Pijlen(const Pijlen&) = delete;
  Pijlen& operator=(const Pijlen&) = delete;
};

int promptrij() { return scr_ctx->lines - 1; }
int32_t& voorlopig(int fil, size_t cel) {
  return advies.m_voorlopig[static_cast<size_t>(fil)][cel];
}
void verplaats(int van, int naar, size_t cel, int32_t stuks) {
  voorlopig(van, cel) = svd_min(voorlopig(van, cel), stuks);
  voorlopig(naar, cel) = svd_plus(voorlopig(naar, cel), stuks);
}
bool heeft_magazijn() { return advies.groep.magazijn < advies.filialen(); }

/// The stock as it will be, with the moves made up to now.
void toon_nieuw(Svd& s) {
  if (s.zicht != SVD_VOORRAAD) {  // the head names what is shown
    s.naam = svd_kale_tekst(txt(T_SVD_O_VOORRAAD));
    s.vers = true;
  }
  s.zicht = SVD_VOORRAAD;
  s.sub = SVD_VERWERKT;
  svd_tel(advies.m_voorlopig);
  svd_tabel(s);
}

// Fields ------------------------------------------------------------------------------------------

/// One cell, with its own limits set before; true when the value differs.
bool voer_cel_in(const Svd& s, int rij, int kol, const char* opties, int32_t* waarde) {
  int32_t* const tabel = scr_ctx->key_table;
  for (const int toets : {TOETS_LEFT, TOETS_RIGHT}) {
    key_allow(toets);
    key_validate_on(toets);
  }
  return INGAVE(rij, kol, str_format("%dl,%s", s.breedte, opties).c_str(), &K_CANCEL, &K_UP,
                &K_DOWN, tabel + TOETS_PLAATS, tabel + TOETS_PLAATS + 1, waarde);
}

/// What the operator goes over: rows and sizes, in the order of the screen.
struct Keuze {
  std::vector<int> filialen, maten;
};

/// What happened in a cell.
enum class Cel : uint8_t { goed, geweigerd };

/// Goes over the cells by arrows and Enter. `doe` enters one cell at a row and column; `klaar` says
/// whether the operator may leave. Enter on the last cell leaves when `eindigt`.
template <class Doe, class Klaar>
void loop_cellen(Svd& s, const Keuze& k, bool eindigt, Doe doe, Klaar klaar) {
  const Pijlen pijlen;
  const int rijen = static_cast<int>(k.filialen.size()), maten = static_cast<int>(k.maten.size());
  s.cursor = false;
  for (int plek = 0; rijen > 0 && maten > 0;) {
    s.fil = k.filialen[static_cast<size_t>(plek / maten)];
    s.maat = k.maten[static_cast<size_t>(plek % maten)];
    svd_teken(s);
    int rij = 0, kol = 0;
    if (!svd_plaats(s, s.fil, s.maat, &rij, &kol)) break;
    const Cel uitslag = doe(s.fil, s.maat, rij, kol);
    svd_vergeet(s, rij, kol);
    const int toets = scr_ctx->last_key;
    if (uitslag == Cel::geweigerd) continue;
    if (weg_toets()) {
      if (klaar()) break;
      continue;
    }
    const int stap = toets == K_UP          ? -maten
                     : toets == K_DOWN      ? maten
                     : toets == TOETS_LEFT  ? -1
                     : toets == TOETS_RIGHT ? 1
                                            : 0;
    const int naar = plek + (stap != 0 ? stap : 1);
    if (stap == 0 && naar == rijen * maten) {
      if (eindigt) break;
      plek = 0;
    } else if (naar >= 0 && naar < rijen * maten) {
      plek = naar;
    }
  }
  s.cursor = true;
}

// From the warehouse ------------------------------------------------------------------------------

/// What of the pieces that a branch gets comes from the warehouse.
int32_t uit_magazijn(int fil, size_t cel) {
  const int32_t geeft = svd_min(0, std::min(voorlopig(advies.groep.magazijn, cel), 0));
  return std::min(std::max(voorlopig(fil, cel), 0), geeft);
}

Cel voer_magazijn_in(Svd& s, int fil, int maat, int rij, int kol) {
  const size_t cel = svd_cel(maat);
  const int magazijn = advies.groep.magazijn;
  const int32_t oud = uit_magazijn(fil, cel);
  int32_t nieuw = oud;
  if (!voer_cel_in(s, rij, kol, "JZPE", &nieuw)) return Cel::goed;
  const int64_t ruimte =
      int64_t{vrij(advies, magazijn, static_cast<int>(cel))} + voorlopig(magazijn, cel);
  if (int64_t{nieuw} - oud > ruimte) {
    svd_meld(T_SVD_MAG_TEVEEL);
    return Cel::geweigerd;
  }
  verplaats(magazijn, fil, cel, nieuw - oud);
  toon_nieuw(s);
  return Cel::goed;
}

/// Asks for a branch, or all; false when the operator left.
bool vraag_filiaal(Keuze& k, int* kol) {
  const int magazijn = advies.groep.magazijn;
  for (;;) {
    uint8_t fil = 0;
    scr_clreol(promptrij(), 1);
    const int veld = 1 + scr_print(A_LABEL, promptrij(), 1, "%s", txt(T_SVD_FILIAAL));
    scr_print(A_LABEL, promptrij(), veld + 5, "%s", txt(T_SVD_ENTER_ALLE));
    key_allow(K_CANCEL);
    fil_field(promptrij(), veld, "IPZ", &fil);
    if (weg_toets()) return false;
    k.filialen.clear();
    const bool alle = (scr_ctx->ing_result & ING_LEEG) != 0;
    for (int b = 0; b < advies.filialen(); ++b) {
      if (b != magazijn && (alle || b == fil)) k.filialen.push_back(b);
    }
    scr_clreol(promptrij(), veld);
    *kol = veld + scr_print(A_WAARDE, promptrij(), veld, "%s",
                            alle ? std::string(txt(T_SVD_ALLE)) : str_format("%d", fil));
    if (!k.filialen.empty()) return true;
    svd_meld(T_SVD_MAG_NIET);
  }
}

bool vraag_maat(Keuze& k, int kol) {
  for (;;) {
    char maat[3] = {};
    scr_clreol(promptrij(), kol);
    const int veld = kol + scr_print(A_LABEL, promptrij(), kol, "%s", txt(T_SVD_MAAT));
    scr_print(A_LABEL, promptrij(), veld, "%s", txt(T_SVD_STREEP_ALLE));
    INGAVE(promptrij(), veld, "3c,JI", &K_CANCEL, maat);
    if (weg_toets()) return false;
    const bool alle = (scr_ctx->ing_result & ING_LEEG) != 0;
    k.maten.clear();
    for (int m = 0; m < svd_maten(); ++m) {
      const std::string tekst = str_format("%*s", 3, svd_maattekst(m));
      if (alle || memcmp(tekst.data(), maat, sizeof maat) == 0) k.maten.push_back(m);
    }
    if (!k.maten.empty()) return true;
    svd_meld(T_ZOEK_MAAT_FOUT);
  }
}

void magazijnmutaties(Svd& s) {
  toon_nieuw(s);
  svd_teken(s);
  Keuze k;
  int kol = 1;
  while (vraag_filiaal(k, &kol)) {
    if (!vraag_maat(k, kol)) continue;
    loop_cellen(
        s, k, true,
        [&s](int fil, int maat, int rij, int kolom) {
          return voer_magazijn_in(s, fil, maat, rij, kolom);
        },
        [] { return true; });
    svd_teken(s);
  }
}

// Branch by branch --------------------------------------------------------------------------------

/// What of a size is in no branch yet, in the chain's row of the table.
void tel_over(Svd& s, size_t cel, int32_t erbij) {
  for (int32_t* const c : {&s.tabel.back()[cel], &s.tabel.back()[0]}) *c = svd_plus(*c, erbij);
}

/// The new stock of one cell: its moves are what it differs from the stock.
void zet_cel(Svd& s, int fil, size_t cel, int32_t nieuw) {
  const auto b = static_cast<size_t>(fil);
  const int32_t meer = svd_min(nieuw, s.tabel[b][cel]);
  s.tabel[b][cel] = nieuw;
  s.tabel[b][0] = svd_plus(s.tabel[b][0], meer);
  tel_over(s, cel, svd_min(0, meer));
  s.beweging[b][cel] = svd_plus(s.beweging[b][cel], meer);
  svd_tel(s.beweging);
}

Cel voer_keten_in(const Svd& s, size_t cel, int rij, int kol) {
  int32_t waarde = s.tabel.back()[cel];
  if (!voer_cel_in(s, rij, kol, "E", &waarde)) return Cel::goed;
  svd_meld(T_SVD_KETEN_VAST);
  return Cel::geweigerd;
}

Cel voer_filiaal_in(Svd& s, int fil, int maat, int rij, int kol) {
  const size_t cel = svd_cel(maat);
  if (fil == advies.filialen()) return voer_keten_in(s, cel, rij, kol);
  const int32_t oud = s.tabel[static_cast<size_t>(fil)][cel], over = s.tabel.back()[cel];
  int32_t nieuw = oud;
  scr_ctx->ing->min = std::min(oud, 0);
  scr_ctx->ing->max = over < 0 ? oud : std::max(oud, NIEUW_MAX);
  if (!voer_cel_in(s, rij, kol, "E", &nieuw)) return Cel::goed;
  if (over >= 0 && int64_t{over} + oud < nieuw) {
    svd_meld(T_SVD_TOT_TEVEEL);
    return Cel::geweigerd;
  }
  zet_cel(s, fil, cel, nieuw);
  return Cel::goed;
}

bool alles_verdeeld(const Svd& s) {
  const bool verdeeld = std::ranges::all_of(
      advies.maten, [&s](uint8_t m) { return m >= MATEN || s.tabel.back()[m] == 0; });
  if (!verdeeld) svd_meld(T_SVD_NIET_VERDEELD);
  return verdeeld;
}

void filiaalmutaties(Svd& s) {
  toon_nieuw(s);
  svd_teken(s);
  s.beweging = advies.m_voorlopig;
  const MaatMatrix begin = s.beweging;
  s.tabel.back().fill(0);
  for (const uint8_t m : advies.maten) {
    if (m < MATEN) tel_over(s, m, svd_min(0, advies.m_voorlopig.back()[m]));
  }
  s.minstens = s.breedte;  // a size may come together in one branch
  scr_clreol(promptrij(), 1);
  Keuze k;
  k.filialen.resize(static_cast<size_t>(advies.filialen()) + 1);
  k.maten.resize(advies.maten.size());
  std::iota(k.filialen.begin(), k.filialen.end(), 0);
  std::iota(k.maten.begin(), k.maten.end(), 0);
  loop_cellen(
      s, k, false,
      [&s](int fil, int maat, int rij, int kol) { return voer_filiaal_in(s, fil, maat, rij, kol); },
      [&s, &begin] { return s.beweging == begin || alles_verdeeld(s); });
  advies.m_voorlopig = s.beweging;
}

// A whole branch ----------------------------------------------------------------------------------

/// Source (or all) and target; false when the operator left.
bool vraag_verplaatsing(bool* alle, uint8_t* van, uint8_t* naar) {
  const int rij = promptrij();
  scr_clreol(rij, 1);
  const int veld = 2 + scr_print(A_LABEL, rij, 1, "%s", txt(T_SVD_ALLES_VAN));
  const int tweede = veld + 5 + scr_print(A_LABEL, rij, veld + 4, "%s", txt(T_SVD_ALLES_NAAR));
  key_allow(K_CANCEL);
  fil_field(rij, veld, "IZP", van);
  if (weg_toets()) return false;
  *alle = (scr_ctx->ing_result & ING_LEEG) != 0;
  key_allow(K_CANCEL);
  fil_field(rij, tweede, "IEZP", naar);
  return !weg_toets() && *naar < advies.filialen();
}

void compleet_verplaatsen(Svd& s) {
  toon_nieuw(s);
  svd_teken(s);
  bool alle = false;
  uint8_t van = 0, naar = 0;
  if (!vraag_verplaatsing(&alle, &van, &naar)) return;
  for (int b = 0; b < advies.filialen(); ++b) {
    if (b == naar || (!alle && b != van)) continue;
    for (int m = 0; m < svd_maten(); ++m) {
      const size_t cel = svd_cel(m);
      if (cel == 0) continue;
      const int32_t stuks = s.tabel[static_cast<size_t>(b)][cel];
      verplaats(b, naar, cel, stuks);
    }
  }
  svd_tel(advies.m_voorlopig);
}

struct Wijze {
  const Tekst* tekst;
  void (*doe)(Svd&);
};
constexpr Wijze WIJZEN[] = {{&T_SVD_MAGAZIJN, magazijnmutaties},
                            {&T_SVD_FILIALEN, filiaalmutaties},
                            {&T_SVD_COMPLEET, compleet_verplaatsen}};
constexpr const char* NUMMERS[] = {"&1 %s", "&2 %s", "&3 %s"};

}  // namespace

bool svd_wijzig(Svd& s) {
  s.bodem = svd_kale_tekst(txt(T_SVD_O_WIJZIGEN));
  scr_clreol(scr_ctx->lines, 1);
  svd_teken(s);
  const size_t eerste = heeft_magazijn() ? 0 : 1;
  TrMenu* const menu = tr_menu_new(TR_BOX, scr_ctx->lines - 6, 3, 0, nullptr);
  for (size_t i = eerste; i < std::size(WIJZEN); ++i) {
    tr_menu_add(menu, -1, str_format(NUMMERS[i - eerste], txt(*WIJZEN[i].tekst)).c_str(),
                static_cast<int>(i) + 1, TR_AAN, 0, nullptr);
  }
  const int keuze = tr_menu_run(menu, -1);
  tr_menu_free(menu);
  if (keuze >= 1) WIJZEN[keuze - 1].doe(s);
  s.bodem.clear();
  s.minstens = SVD_BREEDTE;
  return keuze >= 1;
}
