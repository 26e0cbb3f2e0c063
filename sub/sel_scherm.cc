// The criteria screen: fields from row 3 down, the options on the prompt row.
#include <cstring>

#include "isam/base.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/sel_intern.h"
#include "sub/sel_stroom.h"

namespace {

// Kinds with something of their own.
constexpr int ETI_ORDERS = 9, ETI_VOORRAAD = 11, INVENTARISLIJSTEN = 20, ZONDER_BEWAREN = 22;
constexpr int EERSTE_NUMMER = 11;
constexpr uint8_t PRIJS_AANKOOP = 1, PRIJS_VERKOOP = 2, PRIJS_ACTIE = 4, PRIJS_ALLE = 7;
constexpr int K_HINT = 13, K_KEUZE = 10;

enum Optie { INITIALISEREN, WIJZIGEN, BEWAREN, OPVRAGEN, AFDRUKKEN, VELDNUMMER };
constexpr const Tekst* OPTIES[] = {&T_SEL_KEUZE_INIT, &T_SEL_KEUZE_WIJZIGEN, &T_SEL_KEUZE_BEWAREN,
                                   &T_SEL_KEUZE_OPVRAGEN, &T_SEL_KEUZE_AFDRUKKEN};

const char* optie_tekst(int item) { return item < 0 || item > AFDRUKKEN ? "" : txt(*OPTIES[item]); }
bool met_kop() { return sel_soort != ETI_ORDERS && sel_soort != ETI_VOORRAAD; }
bool met_afdruk() { return met_kop(); }
bool met_bewaren() { return sel_soort != ZONDER_BEWAREN; }
int promptrij() { return scr_ctx->lines - 1; }

/// The options of the kind; -1 when another key ended the line. A field's number goes to *nummer.
int sel_menu(uint16_t* nummer) {
  popup_begin(optie_tekst);
  popup_add(INITIALISEREN);
  popup_add(WIJZIGEN);
  if (met_bewaren()) popup_add(BEWAREN);
  if (met_bewaren()) popup_add(OPVRAGEN);
  if (met_afdruk()) popup_add(AFDRUKKEN);
  popup_number(VELDNUMMER, nummer, EERSTE_NUMMER, sel_laatste_nummer());
  key_allow(K_CANCEL);
  return popup_run(promptrij(), 1);
}

void toon() {
  if (met_kop()) hdr_line('E', "%s", txt(T_SEL_KOP));
  sel_toon_alles();
}

void initialiseren() {
  const uint8_t actie = sel_rec.actie;
  sel_leeg();
  sel_rec.actie = actie;
  if (sel_heeft('a')) merklijst_leeg();
  toon();
}

void veld_van_nummer(int nummer) {
  const char letter = sel_letter(nummer);
  if (letter == 0)
    scr_error("<%d> %s", nummer, txt(T_SEL_ONGELDIG));
  else
    sel_voer_in(letter);
}

/// Every field in order until the operator leaves one; the years come with their kind.
void alle_velden() {
  for (const char* p = sel_letters; *p != 0; ++p) {
    if (sel_nummer(*p) == 0) continue;
    if (!sel_voer_in(*p)) return;
  }
}

void wijzigen() {
  for (;;) {
    const int rij = promptrij();
    scr_clreol(rij, 1);
    scr_print(A_LABEL, rij, 1, "%s", txt(T_SEL_UW_KEUZE));
    scr_print(A_LABEL, rij, K_HINT, "11-%-2d  %s", sel_laatste_nummer(), txt(T_SEL_ENTER_ALLE));
    int16_t nummer = 0;
    INGAVE(rij, K_KEUZE, "2d[0123456789],AIP", &K_CANCEL, &nummer);
    if (weg_toets()) return;
    if ((scr_ctx->ing_result & ING_LEEG) != 0)
      alle_velden();
    else
      veld_van_nummer(nummer);
  }
}

void opvragen() {
  for (;;) {
    const int slot = sel_kies();
    if (slot == 0) return;
    if (file_exists(stroom_naam(sel_soort, slot).c_str())) {
      sel_lees(slot);
      toon();
      return;
    }
    scr_error("%s", txt(T_SEL_OPGEVRAAGD_LEEG));
  }
}

void afdrukken() {
  if (XPRT_OPEN(PRT_SCHERM, PRT_80 | PRT_132, nullptr) != 0) {
    sel_druk();
    print_close("");
  }
  toon();
}

void vraag_prijzen() {
  const int rij = promptrij();
  uint8_t keuze = 0;
  if (scr_confirm(rij, 1, "[+]%s", txt(T_SEL_AANKOOPPRIJZEN))) keuze |= PRIJS_AANKOOP;
  if (scr_confirm(rij, 1, "[+]%s", txt(T_SEL_VERKOOPPRIJZEN))) {
    keuze |= PRIJS_VERKOOP;
    if (scr_confirm(rij, 1, "[+]%s", txt(T_SEL_ACTIEPRIJZEN))) keuze |= PRIJS_ACTIE;
  }
  sel_rec.prijzen = keuze;
  sel_zet('J', keuze != PRIJS_ALLE);
}

void voer_uit(int keuze, uint16_t nummer) {
  switch (keuze) {
    case INITIALISEREN:
      initialiseren();
      break;
    case WIJZIGEN:
      wijzigen();
      break;
    case BEWAREN:
      sel_bewaar();
      toon();
      break;
    case OPVRAGEN:
      opvragen();
      break;
    case AFDRUKKEN:
      afdrukken();
      break;
    case VELDNUMMER:
      veld_van_nummer(nummer);
      break;
    default:
      break;
  }
}

void laad() {
  if (sel_soort == ZONDER_BEWAREN) {
    sel_rec = sel_vorig;
    return;
  }
  if (sel_heeft('a')) merklijst_leeg();
  sel_lees(0);
}

}  // namespace

void sel_scherm() {
  if (scr_ctx == nullptr) return;
  sel_actief = true;
  if (met_kop()) hdr_line('C', "%s", txt(T_SEL_KOP));
  laad();
  toon();
  for (;;) {
    uint16_t nummer = 0;
    const int keuze = sel_menu(&nummer);
    if (keuze >= 0)
      voer_uit(keuze, nummer);
    else if (weg_toets())
      break;
  }
  memset(sel_rec.sel_oms, 0, sizeof sel_rec.sel_oms);
  if (sel_soort == INVENTARISLIJSTEN) vraag_prijzen();
  sel_schrijf(0);
  sel_vorig = sel_rec;
  sel_actief = false;
  scr_clreol(promptrij(), 1);
}
