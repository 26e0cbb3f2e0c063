// "Handmatig aanmaken" and "Ingeven mutaties": the operator goes through series one by one, sees
// the advice of each and decides. A series that is left has its provisional orders written anew.
#include "main/batchvw.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_vul.h"
#include "sub/muteren.h"
#include "sub/serie_keuze.h"
#include "sub/serie_vraag.h"
#include "sub/servrd.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int F_ADVIES = 9, F_OPDRACHT = 10, F_ONDERWEG = 11;  // work functions
constexpr int KEY_NUMMER = 1, KEY_MERK = 2;                    // of DTSER
constexpr int NIVEAU = 1;

/// The command that runs, for the operations of its menu.
struct Opdracht {
  const char* titel;
  int slot;
};
Opdracht opdracht;

/// Shows the locked series until the operator leaves it, puts its orders down, and unlocks it.
int behandel() {
  const Serienr nr = ser_rec.nr;
  const int code = servrd(opdracht.titel, opdracht.slot);
  opdrachten_wissen(nr);
  if (!adv_leeg(advies, advies.m_voorlopig)) opdracht_schrijven();
  serie_los();
  return code;
}

void meld_geen() {
  if (!scr_interrupted()) msg_info(txt(T_ADVO_GEEN_SERIE));
}

enum class Afloop { klaar, einde, ander };

/// From the locked series on, forward and back, until the operator is done, the series are at an
/// end, or another one is to be asked for.
Afloop doorloop(ICB* bron) {
  const AdvLoop loop{bron, opdracht.slot};
  for (;;) {
    const int code = behandel();
    if (code == ADV_ANDER) return Afloop::ander;
    if (code != ADV_VERDER && code != ADV_TERUG) return Afloop::klaar;
    if (adv_volgende(loop, code)) continue;
    meld_geen();
    return Afloop::einde;
  }
}

bool neem_gevraagde(SerieVraag vraag) {
  for (;;) {
    Serienr nr{};
    if (!serie_vraag(vraag, &nr)) return false;
    ser_rec = {};
    ser_rec.nr = nr;
    if (adv_neem(opdracht.slot, false)) return true;
    msg_waarschuw(serie_tekst(nr).c_str(), txt(T_ADVO_NIET_BESCHIKBAAR));
  }
}

void via_vraag(SerieVraag vraag, const char* naam, int sleutel) {
  while (neem_gevraagde(vraag)) {
    const EigenTabel bron(naam, sleutel);
    if (doorloop(bron.icb) == Afloop::klaar) return;
  }
}

void via_nummer() { via_vraag(SerieVraag::nummer, "DTSER", KEY_NUMMER); }
void via_artg() { via_vraag(SerieVraag::merk_artikel_model, "DTSER", KEY_MERK); }
void via_model() { via_vraag(SerieVraag::merk_model, privaat.r, KEY_NUMMER); }

/// Another series of the selection is its first again.
void via_selectie() {
  const EigenTabel bron(privaat.v, KEY_NUMMER);
  hdr_line('C', "%s", opdracht.titel);
  do {
    ser_rec = {};
    if (!adv_volgende({bron.icb, opdracht.slot}, ADV_VERDER)) return meld_geen();
  } while (doorloop(bron.icb) == Afloop::ander);
}

void kies_series() {
  int gedaan;
  do {
    menu_begin(NIVEAU);
    hdr_line('E', "%s", opdracht.titel);
    menu_rubric(true, txt(T_ADVO_SERIES));
    menu_item(true, true, txt(T_ADVO_VIA_NUMMER), via_nummer);
    menu_item(true, true, txt(T_ADVO_VIA_ARTG), via_artg);
    menu_item(true, true, txt(T_ADVO_VIA_MODEL), via_model);
    menu_item(serie_gevuld, true, txt(T_ADVO_VIA_SELECTIE), via_selectie);
    gedaan = menu_run();
  } while (gedaan != 0);
}

void commando(const Tekst& titel, int slot) {
  opdracht = {txt(titel), slot};
  hdr_line('C', "%s", opdracht.titel);
  if (!vw_claim(F_ADVIES, true)) return;
  const Werkclaim advies_vrij(F_ADVIES);
  if (!vw_claim(F_OPDRACHT, true)) return;
  const Werkclaim opdracht_vrij(F_OPDRACHT);
  if (!vw_claim(F_ONDERWEG, true)) return;
  const Werkclaim onderweg_vrij(F_ONDERWEG);
  const auto index = static_cast<size_t>(slot);
  adv_rec = adv_sets[index];
  adv_scherm(slot);
  adv_sets[index] = adv_rec;
  const AdvOpen open;
  kies_series();
  adv_sets[index] = adv_rec;  // the matrix may change the criteria too
}

}  // namespace

void opdracht_handmatig() { commando(T_ADVO_HANDMATIG, ADV_HANDMATIG); }
void mutaties_ingeven() { commando(T_ADVO_MUTATIES, ADV_MUTATIES); }
