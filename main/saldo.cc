// The command that the top menu binds: series are selected, and their provisional order lines are
// summed per branch, going out and coming in. DTPICK is not changed.
#include "main/saldo.h"

#include <cstring>

#include "isam/base.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "main/saldo_pas.h"
#include "main/teksten.h"
#include "main/verzamel.h"
#include "main/werktabel.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/opdrnr.h"
#include "sub/pghdl.h"
#include "sub/sel_krit.h"
#include "sub/serie.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"

uint32_t saldo_opdrachtnr = 0;
bool saldo_splits = true;
char saldo_sort[11] = "AKV";

namespace {

constexpr int FUNCTIE = 10;  // work function of order lines

/// Both criteria maps all ones, so that a branch limit of the screen has no effect here.
void stel_lijst_in() {
  pg_fill(adv_rec.aanvul_filialen);
  pg_fill(adv_rec.vanuit_filialen);
  str_printf(saldo_sort, sizeof saldo_sort, "%s", "AKV");
  saldo_splits = true;
}

}  // namespace

void overlay_maak() {
  if (dtser_o != nullptr) IXCLOSE(dtser_o);
  dtser_o = nullptr;
  serie_selecteer(privaat.o, "AKV");
  dtser_o = tabel_open(privaat.o, IX_LEES);
  dtser_opzoek = dtser_o;
}

void selecteer_series() {
  memset(&ser_rec, 0, sizeof ser_rec);
  sel_scherm();  // however it is left, the last selection is used
  stel_lijst_in();
  overlay_maak();
}

void saldo_bouw(int mode) {
  verzamel_maak(privaat.tp, saldo_sort, saldo_splits);
  saldo_pass(mode);
  saldo_totalen();
}

void saldo_afdrukken() {
  hdr_line('C', "%s", txt(T_AFDRUKKEN_VOORLOPIG));
  if (!vw_claim(FUNCTIE, true)) return;
  Werkclaim claim(FUNCTIE);
  adv_rec = adv_sets[ADV_SALDO];
  saldo_opdrachtnr = 0;
  selecteer_series();
  adv_sets[ADV_SALDO] = adv_rec;
  saldo_bouw(1);
}

void top_menu() {
  werktabellen_open();
  const bool rechten = !alleen_raadplegen();
  int gedaan;
  do {
    const int soorten = dtpick_soorten();
    menu_begin(0);
    hdr_line('E', "%s", txt(T_ADVIEZEN_EN_OPDRACHTEN));
    menu_rubric(rechten, txt(T_SALDO_RUBRIEK));
    menu_item(rechten, (soorten & 1) != 0, txt(T_SELECTIE_EN_AFDRUKKEN), saldo_afdrukken);
    gedaan = menu_run();
  } while (gedaan != 0);
  werktabellen_sluit();
}
