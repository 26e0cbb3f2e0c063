// The open tables of a run: one global handle and one record buffer each, the work arrays, and the
// current selection records. main/work opens and frees them; everybody in sub/ and main/ uses them.
#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "isam/ix.h"
#include "sub/records.h"

extern ICB *dtart, *dtean, *dtgo, *dtfin, *dtio, *dtlev, *dtkoers;
extern ICB *dtmaat, *dtmerk, *dtmtom, *dtpick, *dtser, *dtaanv;
extern ICB *dtser_a, *dtser_o;  // private indexes DTSER.Ann, DTSER.Onn; null while closed
extern ICB* dtser_opzoek;       // through which series are looked up: dtser or dtser_o
extern ICB *tpck, *tmpgo;

extern DtSer ser_rec;
extern DtArt art_rec;
extern DtMerk merk_rec;
extern DtLev lev_rec;
extern DtPick pick_rec;
extern DtGo go_rec;
extern DtFin fin_rec;
extern DtIo io_rec;
extern DtAanv aanv_rec;
extern DtKoers koers_rec;
extern SysRec20 sys_rec20;

/// A size matrix: rows of 96 cells, one a branch, row B the chain's total; cell 0 the row's sum.
using Maatrij = std::array<int32_t, MATEN>;
using MaatMatrix = std::vector<Maatrij>;
/// Work arrays by the number that the out-of-memory message names: 1-4, 8, 9, 10, 11, 16, 17.
extern MaatMatrix werk1, werk2, werk3, werk4, werk8, werk9, werk10, werk11, werk16, werk17;
using Vijfrij = std::array<int32_t, 5>;
extern std::vector<Vijfrij> werk5;
/// Price work tables, 384 bytes each.
extern std::array<Maatrij, 4> prijswerk;

void matrix_wis(MaatMatrix& m);
/// Overwrites the branch's row with 96 quantities, adds them to the total row, sums in cell 0.
void matrix_add(MaatMatrix& m, int filiaal, std::span<const uint32_t, MATEN> rij);

extern AdvRec adv_rec;  // the current criteria
extern std::array<AdvRec, 7> adv_sets;

/// Names of this terminal's private files: "DTSER.V07", "DTSER.O07", ..., "TP07", "DTMERK.07".
struct PrivateNamen {
  char v[16], o[16], a[16], r[16], s[16], merk[16], tp[16], tpck[16], tmpgo[16], browse[16];
  char tpdtse[16], advset[16];
};
extern PrivateNamen privaat;
void privaat_maak(int terminal);

/// "%05ld%03hu%04hu"
std::string serie_sleutel(const Serienr&);
/// "%ld.%hu.%hu"
std::string serie_tekst(const Serienr&);
