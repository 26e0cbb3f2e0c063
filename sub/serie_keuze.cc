// Changing the series selection of the advice commands. Another order makes the file anew and
// empty: its key is the order.
#include "sub/serie_keuze.h"

#include <cstring>

#include "isam/base.h"
#include "scr/scr.h"
#include "sub/sel_krit.h"
#include "sub/serie.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"
#include "sub/teksten_sel.h"

char serie_sortering[20] = "AKV";
bool serie_gevuld = false;

namespace {

constexpr const char* SERIE_LETTERS = "AKVRMDJSENZBL";  // what a series' record carries
constexpr int SORT_RIJ = 4, SORT_KOL = 35;

enum Optie { SELECTEREN, WISSEN };

const char* optie_tekst(int item) {
  return txt(item == WISSEN ? T_SERIE_WISSEN : T_SERIE_SELECTEER);
}

void maak_leeg() {
  ICB* icb = sort_maak(privaat.v, serie_sortering);
  if (icb == nullptr) {  // an order out of a damaged header
    str_printf(serie_sortering, sizeof serie_sortering, "%s", "AKV");
    icb = sort_maak(privaat.v, serie_sortering);
  }
  if (icb != nullptr) IXCLOSE(icb);
  serie_gevuld = false;
}

bool bevat_series() {
  ICB* icb = tabel_open(privaat.v, IX_LEES);
  memset(&ser_rec, 0, sizeof ser_rec);
  const bool er = IXFIRSTR(icb, &ser_rec);
  IXCLOSE(icb);
  return er;
}

/// False when the operator left.
bool vraag_sortering() {
  char order[20];
  memcpy(order, serie_sortering, sizeof order);
  if (!sort_kies(SORT_RIJ, SORT_KOL, SERIE_LETTERS, order)) return false;
  if (strcmp(order, serie_sortering) == 0) return true;
  memcpy(serie_sortering, order, sizeof order);
  maak_leeg();
  return true;
}

void selecteer() {
  if (!vraag_sortering()) return;
  const int rij = scr_ctx->lines - 1;
  if (serie_gevuld && scr_confirm(rij, 1, "[-]%s", txt(T_SERIE_EERST_LEEG))) maak_leeg();
  memset(&ser_rec, 0, sizeof ser_rec);
  sel_scherm();
  serie_vul(privaat.v, serie_sortering, !serie_gevuld);
  serie_gevuld = bevat_series();
}

}  // namespace

void serie_selectie() {
  if (scr_ctx == nullptr) return;
  hdr_line('C', "%s", txt(T_SERIE_SELECTEREN));
  int keuze = SELECTEREN;
  const int rij = scr_ctx->lines - 1;
  if (serie_gevuld) {
    popup_begin(optie_tekst);
    popup_add(SELECTEREN);
    popup_add(WISSEN);
    popup_default(SELECTEREN);
    key_allow(K_CANCEL);
    keuze = popup_run(rij, 1);
    if (keuze < 0) return;
  }
  if (keuze == SELECTEREN) {
    selecteer();
  } else if (scr_confirm(rij, 1, "[-]%s", txt(T_SERIE_VERWIJDEREN))) {
    maak_leeg();
  }
}
