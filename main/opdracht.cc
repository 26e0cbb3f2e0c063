// The three commands that print orders: a look at the provisional lines, the run that makes them
// definitive, and one definitive order again. All go through the pass of the balance; the document
// comes before the balance, and each asks for its own destination.
#include "isam/base.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "main/opdruk.h"
#include "main/saldo.h"
#include "main/saldo_pas.h"
#include "main/teksten.h"
#include "main/verzamel.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/opdr_kies.h"
#include "sub/pghdl.h"
#include "sub/tabellen.h"

namespace {

constexpr int FUNCTIE_AANVUL = 9;  // work functions
constexpr int FUNCTIE = 10;
constexpr int RIJ_NUMMER = 4, RIJ_VOLGORDE = 6, KOLOM_NUMMER = 16;

/// The series and branches of the balance, in its own set of criteria.
void selecteer() {
  adv_rec = adv_sets[ADV_SALDO];
  saldo_opdrachtnr = 0;
  selecteer_series();
  adv_sets[ADV_SALDO] = adv_rec;
}

void verzamel(int mode) {
  verzamel_maak(privaat.tp, saldo_sort, saldo_splits);
  saldo_pass(mode);
}

/// The branches, the split and the lookup of one order.
void stel_in(const OpdrKeuze& opdracht) {
  const bool een = opdracht.naarfil < filialen();
  adv_rec = AdvRec{};
  pg_add(adv_rec.vanuit_filialen, opdracht.vanfil);
  if (een)
    pg_add(adv_rec.aanvul_filialen, opdracht.naarfil);
  else
    pg_fill(adv_rec.aanvul_filialen);
  saldo_splits = een;
  saldo_opdrachtnr = opdracht.nummer;
  dtser_opzoek = dtser;
}

}  // namespace

void opdracht_voorlopig() {
  hdr_line('C', "%s", txt(T_AFDRUKKEN_VOORLOPIG));
  if (!vw_claim(FUNCTIE, true)) return;
  const Werkclaim claim(FUNCTIE);
  selecteer();
  hdr_line('C', "%s", txt(T_AFDRUKKEN_VOORLOPIG));
  if (!volgorde_kies(RIJ_VOLGORDE, 1, saldo_sort)) return;
  verzamel(1);
  if (opdruk(OpdrachtSoort::voorlopig)) IXREMOVE(privaat.tp);
}

void opdracht_nieuw() {
  hdr_line('C', "%s", txt(T_MENU_NIEUWE));
  // Both are given back whatever comes of them, the second first.
  const Werkclaim_excl aanvul(FUNCTIE_AANVUL), opdrachten(FUNCTIE);
  if (!vw_claim_excl(FUNCTIE_AANVUL) || !vw_claim_excl(FUNCTIE)) return;
  selecteer();
  hdr_line('C', "%s", txt(T_MENU_NIEUWE));
  verzamel(2);
  opdruk(OpdrachtSoort::nieuw);
  saldo_totalen();
}

void opdracht_bestaand() {
  hdr_line('C', "%s", txt(T_MENU_BESTAANDE));
  if (!vw_claim(FUNCTIE, true)) return;
  const Werkclaim claim(FUNCTIE);
  scr_print(A_LABEL, RIJ_NUMMER, 1, "%s", txt(T_OPDRACHTNUMMER));
  OpdrKeuze opdracht{};
  if (!opdr_kies(RIJ_NUMMER, KOLOM_NUMMER, OpdrGrens{}, &opdracht) || opdracht.nummer == 0) return;
  stel_in(opdracht);
  str_printf(saldo_sort, sizeof saldo_sort, "%s", "AKV");
  if (!volgorde_kies(RIJ_VOLGORDE, 1, saldo_sort)) return;
  verzamel(5);
  opdruk(OpdrachtSoort::bestaand);
  saldo_totalen();
}
