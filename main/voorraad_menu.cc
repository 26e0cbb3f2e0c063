// The menu of voorraad as one table. A row whose condition does not hold stands there dim; an
// inquiry user gets no rows at all. What the conditions ask is looked up once each time that the
// menu is shown.
#include "main/voorraad_menu.h"

#include "isam/base.h"
#include "main/bewaren.h"
#include "main/controle.h"
#include "main/magazijn.h"
#include "main/opdracht_controle.h"
#include "main/opdruk.h"
#include "main/saldo.h"
#include "main/teksten.h"
#include "main/transit.h"
#include "main/werktabel.h"
#include "main/zoeklijst.h"
#include "scr/scr.h"
#include "sub/adv_opdracht.h"
#include "sub/datacom.h"
#include "sub/mut_ingave.h"
#include "sub/opdrnr.h"
#include "sub/serie_keuze.h"

namespace {

/// What must be there for a command to make sense.
enum Nodig : uint8_t { VOORLOPIG = 1, DEFINITIEF = 2, DATACOM = 4, NIETS = 8 };
enum class Recht : uint8_t { gewoon, beheer };

struct Rij {
  const Tekst* tekst;
  uint8_t kolom;  // of a rubric; 0: a command
  Nodig nodig;
  void (*doe)();  // null of a rubric
  Recht recht;
};
constexpr Rij rubriek(uint8_t kolom, const Tekst& t) {
  return {&t, kolom, NIETS, nullptr, Recht::gewoon};
}
constexpr Rij keuze(const Tekst& t, void (*doe)(), Nodig nodig = NIETS,
                    Recht recht = Recht::gewoon) {
  return {&t, 0, nodig, doe, recht};
}

constexpr Rij MENU[] = {
    rubriek(1, T_SALDO_RUBRIEK),
    keuze(T_SELECTIE_EN_AFDRUKKEN, saldo_afdrukken, VOORLOPIG),

    rubriek(1, T_MENU_ADVIEZEN),
    keuze(T_MENU_SERIE_SELECTIE, serie_selectie),
    keuze(T_MENU_AUTOMATISCH, opdracht_automatisch),
    keuze(T_MENU_HANDMATIG, opdracht_handmatig),
    keuze(T_MENU_INGEVEN, mutaties_ingeven),
    keuze(T_MENU_DRUK_SERIE, adv_druk_serie),
    keuze(T_MENU_DRUK_ARTIKEL, adv_druk_stuk),
    keuze(T_MENU_VERKOPEN, vrk_verkeer),

    rubriek(1, T_MENU_OPDRACHTEN),
    keuze(T_AFDRUKKEN_VOORLOPIG, opdracht_voorlopig, VOORLOPIG),
    keuze(T_MENU_NIEUWE, opdracht_nieuw, VOORLOPIG),
    keuze(T_MENU_BESTAANDE, opdracht_bestaand, DEFINITIEF),
    keuze(T_MENU_UITVOEREN, adviezen_uitvoeren, VOORLOPIG),
    keuze(T_MENU_CONTROLE, opdracht_controle, DEFINITIEF),
    keuze(T_MENU_LOCATIES, mag_locaties),
    keuze(T_MENU_LOCATIE_SERIE, serie_locatie),
    keuze(T_MENU_UITGEVOERDE, mut_uitgevoerd),

    rubriek(2, T_MENU_VERZENDEN),
    keuze(T_MENU_PER_NUMMER, verz_ingave),
    keuze(T_MENU_ANNULEREN, verz_annuleren),
    keuze(T_MENU_AFWERKEN, mut_afwerken),

    rubriek(2, T_MENU_ONTVANGEN),
    keuze(T_MENU_PER_NUMMER, ontv_ingave),
    keuze(T_MENU_BEVESTIGING, ing_ontvangst),

    rubriek(2, T_MENU_DATACOM),
    keuze(T_MENU_DC_SIGNAAL, dc_signaal, DATACOM),
    keuze(T_MENU_DC_VERWERKEN, dc_verwerken, DATACOM),
    keuze(T_MENU_DC_WIJZIGEN, dc_wijzigen, DATACOM),
    keuze(T_MENU_DC_WISSEN, dc_wissen, DATACOM, Recht::beheer),

    rubriek(2, T_MENU_INSTELLEN),
    keuze(T_MENU_WIS_VOORLOPIG, voorl_wissen, VOORLOPIG),
    keuze(T_MENU_WIS_VERZAMEL, verzamel_wissen, DEFINITIEF),
    keuze(T_MENU_WIS_AANVUL, aanvulinfo_wissen),
    keuze(T_MENU_BEWAAR_AANVUL, aanvulinfo_bewaren),
    keuze(T_MENU_STEL_CONTROLE, controle_instellen),
};

uint8_t aanwezig() {
  const int datacom = file_size(DC_BESTAND) > 0 ? DATACOM : 0;
  return static_cast<uint8_t>(dtpick_soorten() | datacom | NIETS);
}

bool mag(Recht recht) {
  return !alleen_raadplegen() && (recht == Recht::gewoon || terminal_rec.rechten == 'S');
}

void toon(const Rij& rij, int* kolom, uint8_t er) {
  if (rij.kolom > *kolom) {
    if (*kolom > 0) menu_column();
    *kolom = rij.kolom;
  }
  if (rij.kolom != 0) return menu_rubric(mag(rij.recht), txt(*rij.tekst));
  menu_item(mag(rij.recht), (er & rij.nodig) != 0, txt(*rij.tekst), rij.doe);
}

}  // namespace

void voorraad_menu() {
  werktabellen_open();
  int gedaan;
  do {
    const uint8_t er = aanwezig();
    menu_begin(0);
    hdr_line('E', "%s", txt(T_ADVIEZEN_EN_OPDRACHTEN));
    int kolom = 0;
    for (const Rij& rij : MENU) toon(rij, &kolom, er);
    gedaan = menu_run();
  } while (gedaan != 0);
  werktabellen_sluit();
}
