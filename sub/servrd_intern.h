// The rooms of the advice matrix: what stands on the screen, and who draws, asks and changes it.
// Inside servrd* only; callers see sub/servrd.h.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "isam/tekst.h"
#include "sub/advies.h"

/// What an operator may choose: the views, and what is done to them.
enum SvdCode : int {
  SVD_EINDE = 0,
  SVD_VOORRAAD = 1,
  SVD_BESCHIKBAAR = 2,
  SVD_MUTATIES = 3,
  SVD_EAN = 4,
  SVD_SERIE = 5,
  SVD_KAAL = 11,      // the table of the view alone
  SVD_VERWERKT = 12,  // worked into the stock
  SVD_VERKOPEN = 13,  // with the sales matrix
  SVD_ZONDER = 14,
  SVD_UITLEG = 15,
  SVD_INFO = 16,  // from the stock views; goes on with SVD_AANVULINFO
  SVD_VERDER = 19,
  SVD_TERUG = 20,
  SVD_ANDER = 21,
  SVD_AANVUL = 37,
  SVD_SWITCH = 38,
  SVD_HERVERDEEL = 39,
  SVD_DISTRIBUTIE = 40,
  SVD_OVERNEMEN = 41,
  SVD_AANVULINFO = 42,
  SVD_WISINFO = 43,
  SVD_CRITERIA = 44,
  SVD_ACTUEEL = 45,
  SVD_WIJZIGEN = 46,
  SVD_OMHOOG = 51,
  SVD_LINKS,
  SVD_OMLAAG,
  SVD_RECHTS
};

inline constexpr int SVD_BREEDTE = 3;  // of a column, at least

/// The display record: the view, its table, and where the operator is in it.
struct Svd {
  const char* titel = "";
  const char* naam = "";  // of the view
  int slot = 0;
  int zicht = SVD_VOORRAAD, sub = SVD_KAAL;
  bool verkopen = false;          // the sales matrix is on
  bool breed = false;             // another terminal lies over the command's
  bool vers = true;               // nothing of this picture stands on the screen yet
  uint16_t ontdat = 0;            // last receipt
  MaatMatrix tabel;               // what the cells show
  MaatMatrix beweging;            // the moves behind "+/-" and the marks
  std::string bodem;              // what the bottom row says meanwhile
  std::string kop, leeg;          // title of the matrix; what stands there instead of it
  int fil = 0, maat = 0;          // cell cursor: row (B: the chain's), place in advies.maten
  bool cursor = true;             // shown
  int van_fil = 0, van_maat = 0;  // first in sight
  int minstens = SVD_BREEDTE;     // width of a column
  int breedte = 3, tot_breedte = 3, kolommen = 0, rijen = 0;
  std::map<std::pair<int, int>, std::pair<int, std::string>> getoond;  // by place: what was painted
};

// Drawing (servrd_beeld) --------------------------------------------------------------------------

/// Takes the wide terminal when the branches do not fit beside it, and gives it back.
void svd_terminal(Svd&);
/// Brings the picture up to date: all of it when `vers`, else what differs from what stands there.
void svd_teken(Svd&);
/// Row and column of a cell in sight; `fil` B is the chain's row.
bool svd_plaats(const Svd&, int fil, int maat, int* rij, int* kol);
/// A message on the bottom row, which is cleared for it.
void svd_meld(const Tekst&);
/// A field was drawn over this cell.
void svd_vergeet(Svd&, int rij, int kol);
/// Moves the cell cursor by a key, at most to row `laatste`; false when the key moves nothing.
bool svd_stap(Svd&, int toets, int laatste);
/// The matrix runs past the window in the direction of this scroll code.
bool svd_loopt_door(const Svd&, int code);
void svd_schuif(Svd&, int code);

// The tables of the views (servrd_zicht) ----------------------------------------------------------

/// Fills `tabel`, `beweging`, `kop` and `leeg` from the view and its sub-view.
void svd_tabel(Svd&);
/// The same for any table; sums are made.
void svd_zet(Svd&, std::string kop, const MaatMatrix& tabel, const MaatMatrix* beweging);
void svd_tel(MaatMatrix&);  // cell 0 of the rows and the chain's row
/// The result that an advice view shows; null for other views.
MaatMatrix* svd_uitkomst(int zicht);
bool svd_heeft(int zicht);  // the series has this kind of advice
bool svd_muteert();         // m_voorlopig holds something
bool svd_heeft_info();      // replenishment information
const MaatMatrix& svd_vraag(int slot);
const MaatMatrix& svd_verkocht(int slot);
/// Sums out of broken files may not fit; they wrap.
inline int32_t svd_plus(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
inline int32_t svd_min(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
inline int svd_maten() { return static_cast<int>(advies.maten.size()); }
/// Cell of a size in its row, by its place in advies.maten; 0 for a place that is none.
inline size_t svd_cel(int maat) {
  if (maat < 0 || maat >= svd_maten()) return 0;
  const size_t s = advies.maten[static_cast<size_t>(maat)];
  return s < MATEN ? s : 0;
}
/// Text of a size by its place in advies.maten, three characters.
std::string svd_maattekst(int maat);

// Asking (servrd_opties) --------------------------------------------------------------------------

/// Waits for what the operator chooses in this view; SVD_EINDE when he leaves.
int svd_kies(Svd&);
const char* svd_kale_tekst(const char* optie);  // without its hot letter

// Changing (servrd_mutatie), explaining (servrd_uitleg) -------------------------------------------

/// False when the operator chose none of the ways.
bool svd_wijzig(Svd&);
void svd_uitleg(Svd&);
