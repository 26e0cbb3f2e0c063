// "Automatisch aanmaken": the provisional orders of a chain straight from the information on sold
// labels. It has the order lines to itself; series are locked one at a time.
#include "isam/ix.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_reeks.h"
#include "sub/adv_vul.h"
#include "sub/muteren.h"
#include "sub/opdrnr.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/voortgang.h"

namespace {

constexpr int F_ADVIES = 9, F_OPDRACHT = 10;  // work functions
constexpr int KEY_PAREN = 3;                  // DTPICK by branch pair and order number
constexpr Serienr VOORBIJ{UINT32_MAX, UINT16_MAX, UINT16_MAX};

/// Deletes the provisional lines of all series. The bar follows the sending branch: how many lines
/// are to come is not known.
void voorlopige_weg() {
  const OpSleutel sleutel(dtpick, KEY_PAREN);
  ix_hooks.voortgang(txt(T_ADVO_BEZIG_VERWIJDEREN), 0, filialen());
  DtPick regel{};
  for (bool er = IXFIRSTR(dtpick, &regel); er; er = IXNEXT(dtpick, &regel)) {
    ix_hooks.voortgang(nullptr, regel.vanfil, filialen());
    if (regel.opdrachtnr != 0) {
      regel.opdrachtnr = UINT32_MAX;  // on to the next pair
      regel.nr = VOORBIJ;
    } else {
      verwijder(dtpick, regel);
    }
  }
  ix_hooks.voortgang(nullptr, 0, 0);
}

bool vraag(const Tekst& feit, const Tekst& vraagtekst) {
  return FFLASH(-2, 1, 0, "", str_format("%s\n%s", txt(feit), txt(vraagtekst)).c_str()) != 0;
}

/// What stands of earlier orders: gone, or accepted by the operator. False ends the command.
bool opdrachten_akkoord() {
  const int soorten = dtpick_soorten();
  if ((soorten & OPDR_VOORLOPIG) != 0) {
    if (!vraag(T_ADVO_NOG_VOORLOPIG, T_ADVO_VERWIJDEREN)) return false;
    voorlopige_weg();
  }
  return (soorten & OPDR_DEFINITIEF) == 0 || vraag(T_ADVO_NOG_DEFINITIEF, T_ADVO_TOCH);
}

/// One series, locked while it is worked on.
bool maak_opdracht(const Serienr& nr) {
  if (!serie_wacht(nr)) return true;  // unknown: its information stays for who cleans up
  const bool geheel = adv_vul();
  if (geheel) {
    adv_automatisch(advies);
    if (!adv_leeg(advies, advies.r_aanvul)) {
      advies.m_voorlopig = advies.r_aanvul;
      opdracht_schrijven();
    }
  }
  serie_los();
  return geheel;
}

}  // namespace

void adv_aanv_reeks(bool (*doe)(const Serienr&)) {
  SerieVoortgang voortgang;
  DtAanv regel{};
  for (bool er = IXFIRSTR(dtaanv, &regel); er; er = IXNEXT(dtaanv, &regel)) {
    if (scr_ctx != nullptr && scr_interrupted()) break;
    voortgang.toon(regel.nr);
    const Serienr nr = regel.nr;
    if (!doe(nr)) voortgang.onleesbaar(nr);
    regel.etiket = UINT32_MAX;  // past the series' other labels
  }
  voortgang.einde();
}

void opdracht_automatisch() {
  hdr_line('C', "%s", txt(T_ADVO_AUTOMATISCH));
  if (!vw_claim(F_ADVIES, true)) return;
  const Werkclaim claim(F_ADVIES);
  const bool alleen = vw_claim_excl(F_OPDRACHT);
  if (alleen && opdrachten_akkoord() && adv_dialoog_slot()) {
    scr_intr_reset();
    const AdvOpen open;
    adv_aanv_reeks(maak_opdracht);
  }
  vw_free_excl(F_OPDRACHT);
}
