// What happens to the marked rows: they stand above the menu as far as there is room, then the
// question of the action that was picked. Leaving any of it goes back to the list.
#include <algorithm>
#include <cstring>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/teksten.h"
#include "main/transit_in.h"
#include "scr/scr.h"
#include "sub/ioeti.h"
#include "sub/tabellen.h"

namespace {

constexpr int RIJ = 3;     // of the window with the marked rows
constexpr int ONDER = 11;  // rows below that window
constexpr TransitKeuze TERUG{TransitActie::terug, 0};

/// The marked rows in the current window, and whether one of them can't be corrected.
bool toon_gemarkeerde(bool status, bool* verkocht) {
  ICB* tabel = IXOPEN_LENGTE(privaat.tp, IX_EXCLUSIEF, sizeof(Zoekregel));
  transit_kop(1, 2, status);
  uint32_t aantal = 0;
  const auto ruimte = static_cast<uint32_t>(std::max(win_height() - 2, 1));
  Zoekregel r{};
  for (bool er = IXFIRSTR(tabel, &r); er; er = IXNEXT(tabel, &r)) {
    if (r.gemarkeerd == 0) continue;
    if (r.status > ETI_VOORRAAD) *verkocht = true;
    if (aantal < ruimte) {
      scr_print(A_WAARDE, 2 + static_cast<int>(aantal), 2, "%s", transit_regel(r, status));
    }
    ++aantal;
  }
  IXCLOSE(tabel);
  if (aantal > ruimte) scr_print(A_LABEL, win_height(), 2, txt(T_TRANSIT_AANTAL), aantal);
  return aantal > 0;
}

TransitActie vraag_actie(bool alles, bool gemarkeerd) {
  const char* woord = txt(gemarkeerd ? T_TRANSIT_GEMARKEERDE : T_TRANSIT_GESELECTEERDE);
  TrMenu* menu =
      tr_menu_new(TR_BOX, scr_ctx->lines - ONDER + 2, 4, 0, str_format(" %s ", woord).c_str());
  if (menu == nullptr) return TransitActie::terug;
  struct Punt {
    const Tekst& tekst;
    TransitActie actie;
  };
  static constexpr Punt PUNTEN[] = {{T_TRANSIT_ANNULEREN, TransitActie::annuleren},
                                    {T_TRANSIT_CORRIGEREN, TransitActie::corrigeren},
                                    {T_TRANSIT_ONTVANGEN, TransitActie::ontvangen}};
  for (const Punt& p : PUNTEN) {
    if (!alles && p.actie != TransitActie::annuleren) continue;
    tr_menu_add(menu, -1, txt(p.tekst), static_cast<int>(p.actie), TR_AAN, 0, nullptr);
  }
  const int keuze = tr_menu_run(menu, 1);
  tr_menu_free(menu);
  return keuze < 1 ? TransitActie::terug : static_cast<TransitActie>(keuze);
}

bool vraag(const Tekst& een, const Tekst& meer, bool gemarkeerd) {
  return scr_confirm(2, 4, "%s", txt(gemarkeerd ? meer : een));
}

bool vraag_code(bool gemarkeerd, uint8_t* code) {
  const Venster venster(scr_ctx->lines - 6, 21, 5, 40);
  win_title(nullptr);
  scr_print(A_WAARDE, 1, 2, "%s", txt(gemarkeerd ? T_TRANSIT_COR_MEER : T_TRANSIT_COR_EEN));
  const int kol = 3 + scr_print(A_LABEL, 3, 2, "%s", txt(T_TRANSIT_CORRECTIECODE));
  int8_t getypt = 0;
  key_allow(K_CANCEL);
  INGAVE(3, kol, "1n,EP", &getypt);
  *code = static_cast<uint8_t>(getypt);
  return !weg_toets() && getypt > 0;
}

void meld_niet_corrigeren() {
  const IngBewaar bewaar;
  const Venster venster(scr_ctx->lines - 6, 14, 5, 54);
  win_title(nullptr);
  scr_print(A_WAARDE, 1, 2, "%s", txt(T_TRANSIT_NIET_COR));
  scr_print(A_WAARDE, 2, 2, "%s", txt(T_TRANSIT_NIET_COR_VIA));
  scr_enter(3, 2);
}

/// The question of an action.
TransitKeuze bevestig(TransitActie actie, bool gemarkeerd, bool verkocht) {
  TransitKeuze keuze{actie, 0};
  bool akkoord = false;
  switch (actie) {
    case TransitActie::annuleren:
      akkoord = vraag(T_TRANSIT_VRAAG_ANNUL, T_TRANSIT_VRAAG_ANNUL_M, gemarkeerd);
      break;
    case TransitActie::corrigeren:
      // What was sold or corrected already is no longer the sender's to correct.
      if (verkocht)
        meld_niet_corrigeren();
      else
        akkoord = vraag_code(gemarkeerd, &keuze.code);
      break;
    case TransitActie::ontvangen:
      akkoord = vraag(T_TRANSIT_ONTV_EEN, T_TRANSIT_ONTV_MEER, gemarkeerd);
      break;
    default:
      break;
  }
  return akkoord ? keuze : TERUG;
}

}  // namespace

TransitKeuze transit_keuze(bool alles, bool gemarkeerd) {
  const IngBewaar bewaar;
  bool verkocht = false;
  const Venster venster(RIJ, 1, scr_ctx->lines - RIJ - ONDER + 1, scr_ctx->cols);
  win_title(" %s ", txt(T_TRANSIT_VERZENDMUTATIES));
  if (!toon_gemarkeerde(alles, &verkocht)) return TERUG;
  // The menu and its questions stand on the screen under this window.
  const Venster onder(scr_ctx->lines - ONDER + 1, 1, ONDER - 1, scr_ctx->cols);
  return bevestig(vraag_actie(alles, gemarkeerd), gemarkeerd, verkocht);
}
