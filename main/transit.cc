// The commands that work off what left one branch and did not arrive.
#include "main/transit.h"

#include <unistd.h>

#include "isam/ix.h"
#include "main/batchvw.h"
#include "main/teksten.h"
#include "main/transit_in.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/tabellen.h"
#include "sub/zoek_lijst.h"

namespace {

/// Work functions.
constexpr int ONDERWEG = 11, MUTATIES = 12, ONTVANGST = 13;

/// The list again and again until it is empty or left. `doe` works the marked rows off.
template <class Doe>
void werk_lijst_af(const Tekst& titel, bool alles, Doe doe) {
  bool gemarkeerd = false;
  for (;;) {
    hdr_line('C', "%s", txt(titel));
    if (!transit_lijst(alles, &gemarkeerd)) return;
    const TransitKeuze keuze = transit_keuze(alles, gemarkeerd);
    if (keuze.actie != TransitActie::terug) doe(keuze);
  }
}

void druk_geannuleerd() {
  if (!XPRT_OPEN(PRT_SCHERM, PRT_132, nullptr)) return;
  zoeklijst(OpdrachtSoort::geannuleerd, 0);
  print_close("");
}

void annuleren() {
  AnnulGrens grens;
  if (!annul_scherm(&grens)) return;
  dtser_opzoek = dtser;
  const int rijen = annul_vul(grens);
  if (rijen == 0) lijst_geen();
  if (rijen > 0) {
    werk_lijst_af(T_MENU_ANNULEREN, false, [](const TransitKeuze&) {
      druk_geannuleerd();
      annul_werk();
    });
  }
  IXREMOVE(privaat.tp);
}

void afwerken() {
  NontvGrens grens;
  if (!nontv_scherm(&grens)) return;
  hdr_line('C', "%s", txt(T_MENU_AFWERKEN));
  const int rijen = nontv_vul(grens);
  if (rijen == 0) lijst_geen();
  if (rijen > 0) {
    const int log_fd = correctielog_open();
    werk_lijst_af(T_MENU_AFWERKEN, true,
                  [log_fd](const TransitKeuze& keuze) { nontv_werk(keuze, log_fd); });
    close(log_fd);
  }
  IXREMOVE(privaat.tp);
}

}  // namespace

void verz_annuleren() {
  hdr_line('C', "%s", txt(T_MENU_ANNULEREN));
  if (!vw_claim(ONDERWEG, true)) return;
  const Werkclaim onderweg(ONDERWEG);
  if (!vw_claim_excl(MUTATIES)) return;
  const Werkclaim_excl mutaties(MUTATIES);
  annuleren();
}

void mut_afwerken() {
  hdr_line('C', "%s", txt(T_MENU_AFWERKEN));
  if (!vw_claim(ONTVANGST, true)) return;
  const Werkclaim ontvangst(ONTVANGST);
  if (!vw_claim_excl(ONDERWEG)) return;
  const Werkclaim_excl onderweg(ONDERWEG);
  if (!vw_claim_excl(MUTATIES)) return;
  const Werkclaim_excl mutaties(MUTATIES);
  afwerken();
}
