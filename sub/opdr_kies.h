// The browser of orders: gathered from the order lines, or from what is on its way, into a private
// table, and picked by the operator.
#pragma once

#include <cstdint>
#include <vector>

/// What the list is limited to.
struct OpdrGrens {
  int vanfil = -1;                    // sending branch, -1 all
  uint16_t van = 0, tm = UINT16_MAX;  // order date
  bool opdrachten = true;             // definitive lines of DTPICK
  bool onderweg = false;              // numbers of DTGO
};
struct OpdrKeuze {
  uint32_t nummer;
  uint8_t vanfil, naarfil;  // naarfil B: several receivers
  uint16_t datum;
  uint32_t stuks, regels;
};
/// The field "8l" of an order number at row, col: a typed number must exist within the limits;
/// K_F5, or Enter on an empty field, opens the browser. False when the operator left; nummer 0 when
/// there is nothing to choose.
bool opdr_kies(int row, int col, const OpdrGrens&, OpdrKeuze*);
/// The browser in marking mode: the orders that were kept, none when the operator left.
std::vector<OpdrKeuze> opdr_kies_meer(const OpdrGrens&);
/// Looks one number up without a screen.
bool opdr_zoek(uint32_t nummer, const OpdrGrens&, OpdrKeuze*);
/// "Afdrukvolgorde", or another question: the menu of the three print orders at row, col; "AKV",
/// "LAKV", "RMAKV" into `letters` (11 bytes). False when the operator left.
bool volgorde_kies(int row, int col, char* letters, const char* vraag = nullptr);
