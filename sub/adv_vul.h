// From the tables to the matrices of one series' advice, and the walk over series that have one.
#pragma once

#include "sub/advies.h"
#include "sub/iomaat.h"

/// Master data of the series in hand, beside ser_rec, art_rec, merk_rec and lev_rec.
extern Kleur adv_kleur;
extern DtDoelgr adv_doelgroep;
extern MaatHandle* adv_maten;  // its sizes, limited to its map; may be empty

/// Rows for all matrices, the fair-share score begun anew, tmpgo open and the tables' keys as the
/// steps need them; tpck is open and the pair of tmpgo stands (main/werktabel.h). Memory that
/// cannot be had ends the program ("vrdbsub1"). adv_sluit gives all back.
void adv_open();
void adv_sluit();
struct AdvOpen {
  AdvOpen() { adv_open(); }
  ~AdvOpen() { adv_sluit(); }
  AdvOpen(const AdvOpen&) = delete;
  AdvOpen& operator=(const AdvOpen&) = delete;
};

/// Loads `advies` for the series in ser_rec by the criteria in adv_rec: master data, matrices,
/// tpck and tmpgo emptied and filled, sets, service order. The label chain is read once. False when
/// it leads into another series or back into itself: nothing may then be written for this series.
bool adv_vul();

/// Where series come from: an open private index over DTSER (or DTSER itself), at its current key.
struct AdvLoop {
  ICB* bron = nullptr;
  int slot = 2;
};
inline constexpr int ADV_VERDER = 19, ADV_TERUG = 20, ADV_ANDER = 21;
/// The next series (ADV_VERDER) or the one before (ADV_TERUG) from the series in ser_rec that has
/// an advice the criteria ask for: it stands in ser_rec, locked, with `advies` filled and
/// calculated. False at the end or when the operator breaks off; nothing is locked then and ser_rec
/// is as it was.
bool adv_volgende(const AdvLoop&, int richting);
/// The test of one series whose number stands in ser_rec: locks, loads, calculates. False: not
/// locked. Without `toets` the series is taken whatever its advice.
bool adv_neem(int slot, bool toets);
bool adv_selectie();  // stock and sales of the criteria, of slot 6
