// The picture of the advice matrix: a head, one or two blocks of branches against sizes, rows of
// totals.
//
//   narrow              16 branches in one block; with sales 6 branches, the sales below the stock
//   wide (132 columns)  two blocks of 16 branches side by side; with sales, those in the second
//
// A cell is its number and one place for a mark. What was painted is remembered by place, so that a
// change repaints the cells, totals and marks that differ and nothing else.
#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include "isam/base.h"
#include "scr/scr.h"
#include "sub/iomaat.h"
#include "sub/servrd_intern.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int RIJ_SERIE = 2, RIJ_TITEL = 3, RIJ_MATEN = 4;
constexpr int LABEL = 4;  // "%-3.3s "
constexpr int BREED = 132;
constexpr int GRENS = 16, GRENS_VERKOPEN = 6;  // branches that the narrow terminal shows
constexpr int REST_ONDER = 2;                  // prompt and message line

/// One block: where its head of sizes stands, and what it shows.
struct Vak {
  int rij, kol;
  int eerste;     // rows of branches that stand in the block before it
  bool verkopen;  // the sales matrix
};
struct Indeling {
  Vak vak[2];
  int vakken;
};
bool naast_elkaar(const Svd& s) { return s.breed && scr_ctx->cols >= BREED; }

int laatste_rij() { return scr_ctx->lines - REST_ONDER; }

Indeling indeling(const Svd& s) {
  const int midden = scr_ctx->cols / 2 + 1;
  if (naast_elkaar(s)) {
    return {{{RIJ_MATEN, 1, 0, false}, {RIJ_MATEN, midden, s.verkopen ? 0 : s.rijen, s.verkopen}},
            2};
  }
  if (!s.verkopen) return {{{RIJ_MATEN, 1, 0, false}, {}}, 1};
  return {{{RIJ_MATEN, 1, 0, false}, {RIJ_MATEN + s.rijen + 3, 1, 0, true}}, 2};
}

int in_zicht(const Svd& s) { return naast_elkaar(s) && !s.verkopen ? 2 * s.rijen : s.rijen; }

// Measures ----------------------------------------------------------------------------------------

/// A negative number takes one place more.
int32_t als_breedte(int32_t v) { return v >= 0 ? v : v < -100000000 ? 1000000000 : -v * 10; }

void neem_hoogste(Maatrij& hoogste, std::span<const Maatrij> rijen) {
  for (const Maatrij& rij : rijen) {
    for (size_t s = 0; s < MATEN; ++s) hoogste[s] = std::max(hoogste[s], als_breedte(rij[s]));
  }
}

void meet(Svd& s) {
  Maatrij hoogste{};
  neem_hoogste(hoogste, s.tabel);
  neem_hoogste(hoogste, s.beweging);
  for (const Maatrij* keten : {&svd_verkocht(s.slot).back(), &std::as_const(advies.m_order).back(),
                               &std::as_const(advies.m_uit).back()}) {
    neem_hoogste(hoogste, {keten, 1});
  }
  const int was[] = {s.breedte, s.tot_breedte, s.kolommen, s.rijen};
  s.breedte = std::clamp(maat_breedte(hoogste.data()), s.minstens, 9);
  Maatrij totaal{};
  totaal[1] = hoogste[0];
  s.tot_breedte = std::max(s.breedte, std::clamp(maat_breedte(totaal.data()), 3, 9));
  const int vak = naast_elkaar(s) ? scr_ctx->cols / 2 : scr_ctx->cols;
  s.kolommen =
      std::clamp(maat_kolommen(vak - LABEL - s.tot_breedte - 1, s.breedte), 0, svd_maten());
  const bool gestapeld = s.verkopen && !naast_elkaar(s);
  const int ruimte = scr_ctx->lines - (gestapeld ? 13 : 9);
  s.rijen = std::clamp(gestapeld ? ruimte / 2 : ruimte, 1, advies.filialen());
  const int is[] = {s.breedte, s.tot_breedte, s.kolommen, s.rijen};
  if (!std::equal(std::begin(was), std::end(was), std::begin(is))) s.vers = true;
}

/// The window follows the cell cursor; a window that moved is a new picture.
void volg(Svd& s) {
  const int was[] = {s.van_fil, s.van_maat};
  const int B = advies.filialen();
  s.maat = std::clamp(s.maat, 0, std::max(svd_maten() - 1, 0));
  s.fil = std::clamp(s.fil, 0, B);
  if (s.fil < B) s.van_fil = std::clamp(s.van_fil, s.fil - in_zicht(s) + 1, s.fil);
  s.van_fil = std::clamp(s.van_fil, 0, std::max(B - in_zicht(s), 0));
  s.van_maat = std::clamp(s.van_maat, std::max(s.maat - std::max(s.kolommen, 1) + 1, 0), s.maat);
  s.van_maat = std::clamp(s.van_maat, 0, std::max(svd_maten() - s.kolommen, 0));
  if (was[0] != s.van_fil || was[1] != s.van_maat) s.vers = true;
}

// Painting ----------------------------------------------------------------------------------------

void verf(Svd& s, int attr, int rij, int kol, const std::string& tekst) {
  auto& oud = s.getoond[{rij, kol}];
  if (oud.first == attr && oud.second == tekst) return;
  oud = {attr, tekst};
  scr_print(attr, rij, kol, "%s", tekst);
}

/// A number that even the place of the mark cannot hold is not shown in part.
std::string getal(int32_t v, int breedte, char merk) {
  std::string t = str_format("%*ld", breedte, v);
  const auto plaats = static_cast<size_t>(breedte);
  if (t.size() > plaats + 1) return std::string(plaats, '#') + " ";
  if (t.size() == plaats) t += merk;
  return t;
}

char merk(const Svd& s, int fil, size_t cel) {
  const auto b = static_cast<size_t>(fil);
  const int32_t v = s.beweging[b][cel];
  const int32_t voorlopig = advies.m_voorlopig[b][cel];
  if (v < 0 && int64_t{advies.m_voorraad[b][cel]} + v < 0) return 'X';
  if (svd_uitkomst(s.zicht) != nullptr && voorlopig != 0 && voorlopig != v) return '*';
  return v > 0 ? '>' : v < 0 ? '<' : ' ';
}

int kolom(const Svd& s, const Vak& v, int maat) {
  return v.kol + LABEL + (maat - s.van_maat) * (s.breedte + 1);
}

/// A row of numbers of a block: its label, the sizes in sight, its total.
struct Rij {
  int rij;
  std::string label;
  const Maatrij* cellen;
  int fil = -1;  // marks and cell cursor, -1 neither
  bool merken = false;
};

void verf_rij(Svd& s, const Vak& v, const Rij& r) {
  const bool magazijn = r.fil >= 0 && r.fil == advies.groep.magazijn;
  verf(s, magazijn ? A_STREEP : A_LABEL, r.rij, v.kol, str_format("%-3.3s ", r.label));
  for (int i = 0; i < s.kolommen; ++i) {
    const int maat = s.van_maat + i;
    const size_t cel = svd_cel(maat);
    const int32_t waarde = (*r.cellen)[cel];
    const bool hier = s.cursor && r.fil == s.fil && maat == s.maat;
    verf(s,
         hier          ? A_BALK
         : waarde == 0 ? A_LABEL
                       : A_WAARDE,
         r.rij, kolom(s, v, maat), getal(waarde, s.breedte, r.merken ? merk(s, r.fil, cel) : ' '));
  }
  const int32_t som = (*r.cellen)[0];
  verf(s, A_WAARDE, r.rij, kolom(s, v, s.van_maat + s.kolommen), getal(som, s.tot_breedte, ' '));
}

void verf_maten(Svd& s, const Vak& v) {
  verf(s, A_LABEL, v.rij, v.kol, str_format("%-3.3s ", txt(v.verkopen ? T_SVD_R_VRK : T_SVD_FIL)));
  for (int i = 0; i < s.kolommen; ++i) {
    const int maat = s.van_maat + i;
    verf(s, A_LABEL, v.rij, kolom(s, v, maat), str_format("%*s", s.breedte, svd_maattekst(maat)));
  }
  const int tot = kolom(s, v, s.van_maat + s.kolommen);
  verf(s, A_LABEL, v.rij, tot, str_format("%*s", s.tot_breedte, txt(T_SVD_TOT)));
}

void verf_filialen(Svd& s, const Vak& v) {
  const MaatMatrix& m = v.verkopen ? svd_verkocht(s.slot) : s.tabel;
  for (int r = 0; r < s.rijen; ++r) {
    const int fil = s.van_fil + v.eerste + r;
    if (fil >= advies.filialen()) return;
    const auto b = static_cast<size_t>(fil);
    verf_rij(s, v,
             {v.rij + 1 + r, str_format("%d", fil), &m[b], v.verkopen ? -1 : fil, !v.verkopen});
  }
}

struct Totaal {
  const Tekst* label;
  const Maatrij* cellen;
  bool cursor;
};

void verf_totalen(Svd& s, const Vak& v, const std::vector<Totaal>& rijen) {
  int rij = v.rij + 1 + s.rijen;
  for (const Totaal& t : rijen) {
    if (rij > laatste_rij()) return;
    verf_rij(s, v, {rij++, txt(*t.label), t.cellen, t.cursor ? advies.filialen() : -1});
  }
}

void verf_matrix(Svd& s) {
  const Totaal tot{&T_SVD_R_TOT, &s.tabel.back(), true};
  const Totaal netto{&T_SVD_R_NETTO, &s.beweging.back(), false};
  const Totaal besteld{&T_SVD_R_NOT, &advies.m_order.back(), false};
  const Totaal vrk{&T_SVD_R_VRK, &svd_verkocht(s.slot).back(), false};
  const Totaal go{&T_SVD_R_GO, &advies.m_uit.back(), false};
  const Indeling ind = indeling(s);
  for (int i = 0; i < ind.vakken; ++i) {
    verf_maten(s, ind.vak[i]);
    verf_filialen(s, ind.vak[i]);
  }
  if (ind.vakken == 1) {
    verf_totalen(s, ind.vak[0], {tot, netto, besteld, vrk, go});
  } else if (!s.verkopen) {
    verf_totalen(s, ind.vak[0], {tot, netto, besteld});
    verf_totalen(s, ind.vak[1], {vrk, go});
  } else if (naast_elkaar(s)) {
    verf_totalen(s, ind.vak[0], {tot, netto, besteld, go});
    verf_totalen(s, ind.vak[1], {vrk});
  } else {
    verf_totalen(s, ind.vak[0], {tot, netto});
    verf_totalen(s, ind.vak[1], {vrk, besteld, go});
  }
}

void verf_kop(Svd& s) {
  const std::string serie =
      str_format("%-14s %-20.20s %-20.20s %-15.15s", serie_tekst(ser_rec.nr),
                 veld_tekst(ser_rec.omschrijving, sizeof ser_rec.omschrijving),
                 veld_tekst(merk_rec.naam, sizeof merk_rec.naam),
                 veld_tekst(ser_rec.model, sizeof ser_rec.model));
  const int rechts = scr_ctx->cols;
  const std::string locatie = veld_tekst(ser_rec.locatie, sizeof ser_rec.locatie);
  const bool loc = locatie.find_first_not_of(' ') != std::string::npos;
  verf(s, A_WAARDE, RIJ_SERIE, 1, serie.substr(0, static_cast<size_t>(rechts - (loc ? 12 : 1))));
  if (loc) verf(s, A_LABEL, RIJ_SERIE, rechts - 10, str_format(txt(T_SVD_LOC), locatie));
  verf(s, A_STREEP, RIJ_TITEL, 1, str_format("%-50s", s.kop));
  if (s.ontdat != 0) {
    const std::string datum = str_format("%-6.6s: %s", txt(T_SVD_ONTDAT), date_show(s.ontdat));
    verf(s, A_LABEL, RIJ_TITEL, rechts - static_cast<int>(datum.size()) + 1, datum);
  }
}

}  // namespace

void svd_terminal(Svd& s) {
  const bool nodig = advies.filialen() > (s.verkopen ? GRENS_VERKOPEN : GRENS);
  if (nodig == s.breed) return;
  if (nodig) {
    scr_term_open("-w");
  } else {
    win_close();
  }
  s.breed = nodig;
  s.vers = true;
}

void svd_teken(Svd& s) {
  meet(s);
  volg(s);
  if (s.vers) {
    hdr_line('C', "%s  %s", s.titel, s.naam);
    s.getoond.clear();
    s.vers = false;
  }
  if (!s.bodem.empty() && scr_ctx->message[0] == 0) {
    const int kol = scr_ctx->cols - static_cast<int>(s.bodem.size());  // messages begin at the left
    scr_print(A_LABEL, scr_ctx->lines, kol, "%s", s.bodem);
  }
  verf_kop(s);
  if (!s.leeg.empty()) {
    verf(s, A_WAARDE, RIJ_MATEN + 2, 3, s.leeg);
  } else {
    verf_matrix(s);
  }
}

bool svd_plaats(const Svd& s, int fil, int maat, int* rij, int* kol) {
  if (maat < s.van_maat || maat >= s.van_maat + s.kolommen) return false;
  const Indeling ind = indeling(s);
  for (int i = 0; i < ind.vakken; ++i) {
    const Vak& v = ind.vak[i];
    if (v.verkopen) continue;
    const int r = fil == advies.filialen() ? s.rijen : fil - s.van_fil - v.eerste;
    if (r < 0 || (r >= s.rijen && fil < advies.filialen())) continue;
    *rij = v.rij + 1 + r;
    *kol = kolom(s, v, maat);
    return true;
  }
  return false;
}

void svd_meld(const Tekst& melding) {
  scr_clreol(scr_ctx->lines, 1);
  scr_error("%s", txt(melding));
}

void svd_vergeet(Svd& s, int rij, int kol) { s.getoond.erase({rij, kol}); }

// Moving ------------------------------------------------------------------------------------------

bool svd_stap(Svd& s, int toets, int laatste) {
  const int blad = std::max(s.rijen, 1);
  if (toets == K_UP) {
    --s.fil;
  } else if (toets == K_DOWN) {
    ++s.fil;
  } else if (toets == TOETS_LEFT) {
    --s.maat;
  } else if (toets == TOETS_RIGHT) {
    ++s.maat;
  } else if (toets == K_PGUP) {
    s.fil -= blad;
  } else if (toets == K_PGDN) {
    s.fil += blad;
  } else {
    return false;
  }
  s.fil = std::clamp(s.fil, 0, laatste);
  s.maat = std::clamp(s.maat, 0, std::max(svd_maten() - 1, 0));
  return true;
}

bool svd_loopt_door(const Svd& s, int code) {
  if (!s.leeg.empty()) return false;
  switch (code) {
    case SVD_OMHOOG:
      return s.van_fil > 0;
    case SVD_OMLAAG:
      return s.van_fil + in_zicht(s) < advies.filialen();
    case SVD_LINKS:
      return s.van_maat > 0;
    default:
      return s.van_maat + s.kolommen < svd_maten();
  }
}

/// By a window full; the cell cursor goes along, for the window follows it.
void svd_schuif(Svd& s, int code) {
  const int rijen = std::max(in_zicht(s), 1), kolommen = std::max(s.kolommen, 1);
  if (code == SVD_OMHOOG || code == SVD_OMLAAG) {
    const int stap = code == SVD_OMHOOG ? -rijen : rijen;
    s.van_fil += stap;
    s.fil = std::clamp(s.fil + stap, 0, advies.filialen() - 1);
  } else {
    const int stap = code == SVD_LINKS ? -kolommen : kolommen;
    s.van_maat += stap;
    s.maat = std::clamp(s.maat + stap, 0, std::max(svd_maten() - 1, 0));
  }
  s.vers = true;
}
