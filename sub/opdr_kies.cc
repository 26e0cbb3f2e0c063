// The field of an order number and the browser behind it. The browser runs over the private table
// tmp_browse, which is made for it and removed after it: what others do to the orders meanwhile
// never moves the page.
#include "sub/opdr_kies.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/opdr_intern.h"
#include "sub/opdrnr.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/zoek_lijst.h"

namespace {

OpdrRij lijst_rec;
int opdr_orde = 0;  // by number, until the operator changes it

void zet_nummer(const char* tekst) {
  lijst_rec.nummer = static_cast<uint32_t>(strtoul(tekst, nullptr, 10));
}
void zet_vanfil(const char* tekst) {
  lijst_rec.vanfil = static_cast<uint8_t>(std::min(atoi(tekst), 255));
}
void zet_datum(const char* tekst) { lijst_rec.datum = date_number(tekst); }

const ZoekOrde ORDES[] = {{1, T_OPDR_NUMMER, "8s[0123456789],I", zet_nummer},
                          {2, T_OPDR_VANFIL, "3s[0123456789],I", zet_vanfil},
                          {3, T_OPDR_DATUM, "6s[0123456789],I", zet_datum}};

/// The columns of a row, those that the list is sorted on in front.
std::string rij(const std::string& nummer, const std::string& paar, const std::string& datum,
                const std::string& rest) {
  switch (opdr_orde) {
    case 0:
      return nummer + " " + paar + " " + datum + " " + rest;
    case 1:
      return paar + " " + nummer + " " + datum + " " + rest;
    default:
      return datum + " " + nummer + " " + paar + " " + rest;
  }
}

void kop(BrwRec*) {
  const std::string tekst =
      rij(str_format("%-8.8s", txt(T_OPDR_KOP_NUMMER)),
          str_format("%3.3s %4.4s", txt(T_OPDR_KOP_VAN), txt(T_OPDR_KOP_NAAR)),
          str_format("%-8.8s", txt(T_OPDR_KOP_DATUM)),
          str_format("%6.6s %6.6s", txt(T_OPDR_KOP_STUKS), txt(T_OPDR_KOP_REGELS)));
  scr_print(A_LABEL, 1, 1, " %s", tekst);
}

const char* regel(BrwRec*) {
  const OpdrRij r = lijst_rec;
  const std::string naar =
      r.naarfil == filialen() ? std::string(txt(T_OPDR_ALLE)) : str_format("%d", r.naarfil);
  const std::string tekst =
      rij(str_format("%8lu", r.nummer), str_format("%3d %4.4s", r.vanfil, naar),
          str_format("%8.8s", date_show(r.datum)), str_format("%6lu %6lu", r.stuks, r.regels));
  str_printf(scr_klad, sizeof scr_klad, "%s", tekst);
  return scr_klad;
}

/// The table of the browser, filled and open for as long as this lives.
struct Browse {
  explicit Browse(const OpdrGrens& grens) {
    const std::vector<OpdrRij> rijen = opdr_verzamel(grens, 0);
    if (rijen.empty() || !tabel_maak(TABEL_TMP_BROWSE, privaat.browse)) return;
    icb = IXOPEN_LENGTE(privaat.browse, IX_EXCLUSIEF, sizeof(OpdrRij));
    for (OpdrRij r : rijen) IXWRITE(icb, &r);
  }
  ~Browse() {
    if (icb == nullptr) return;
    IXCLOSE(icb);
    IXREMOVE(privaat.browse);
  }
  Browse(const Browse&) = delete;
  Browse& operator=(const Browse&) = delete;
  ICB* icb = nullptr;
};

OpdrKeuze keuze_van(const OpdrRij& r) {
  return {r.nummer, r.vanfil, r.naarfil, r.datum, r.stuks, r.regels};
}

enum class Uitkomst { gekozen, weg, leeg };

/// The browser for one order, at the number `vanaf` or the next.
Uitkomst kies_een(const OpdrGrens& grens, uint32_t vanaf, OpdrKeuze* keuze) {
  const Browse browse(grens);
  if (browse.icb == nullptr) {
    const IngBewaar bewaar;
    msg_info(txt(T_ZOEK_GEEN));
    return Uitkomst::leeg;
  }
  KeyLijst lijst{browse.icb, &lijst_rec, sizeof lijst_rec, ORDES, &opdr_orde};
  BrwRec* b = brw_new(key_lijst_stap, key_lijst_zoek, kop, regel);
  if (b != nullptr) {
    b->data = &lijst;
    lijst_rec = {};
    lijst_rec.nummer = vanaf;
    if (opdr_orde == 0 && vanaf != 0) key_lijst_positie(b);
  }
  if (!lijst_kies(b, txt(T_OPDR_SELECTEREN), T_ZOEK_GEEN)) return Uitkomst::weg;
  *keuze = keuze_van(lijst_rec);
  return Uitkomst::gekozen;
}

/// A typed number in its full form, or as it stands: not every document is an order.
bool zoek_getypt(uint32_t getypt, const OpdrGrens& grens, OpdrKeuze* keuze) {
  char tekst[16];
  str_printf(tekst, sizeof tekst, "%lu", getypt);
  const bool goed = opdrnr_norm(tekst);
  if (goed && opdr_zoek(static_cast<uint32_t>(strtoul(tekst, nullptr, 10)), grens, keuze))
    return true;
  if (opdr_zoek(getypt, grens, keuze)) return true;
  scr_error("%s", txt(goed ? T_OPDR_ONBEKEND : T_OPDRNR_ONGELDIG));
  return false;
}

}  // namespace

bool opdr_kies(int row, int col, const OpdrGrens& grens, OpdrKeuze* keuze) {
  const VeldToetsen toetsen;
  int32_t nummer = 0;
  *keuze = {};
  for (;;) {
    toetsen.terug();
    INGAVE(row, col, nummer == 0 ? "8l,IZP" : "8l,ZP", &K_CANCEL, &K_F5, &nummer);
    if (weg_toets()) return false;
    if ((scr_ctx->ing_result & ING_LEEG) != 0) nummer = 0;
    if (scr_ctx->last_key == K_F5 || nummer == 0) {
      const Uitkomst uitkomst = kies_een(grens, static_cast<uint32_t>(nummer), keuze);
      if (uitkomst == Uitkomst::leeg) return true;
      if (uitkomst == Uitkomst::weg) continue;
    } else if (!zoek_getypt(static_cast<uint32_t>(nummer), grens, keuze)) {
      continue;
    }
    scr_print(A_WAARDE, row, col, "%8lu", keuze->nummer);
    return true;
  }
}

std::vector<OpdrKeuze> opdr_kies_meer(const OpdrGrens& grens) {
  std::vector<OpdrKeuze> gekozen;
  const IngBewaar bewaar;
  const Browse browse(grens);
  if (browse.icb == nullptr) {
    msg_info(txt(T_ZOEK_GEEN));
    return gekozen;
  }
  KeyLijst lijst{browse.icb, &lijst_rec, sizeof lijst_rec, ORDES, &opdr_orde};
  BrwRec* b = brw_new(key_lijst_stap, key_lijst_zoek, kop, regel);
  if (b == nullptr) return gekozen;
  b->data = &lijst;
  b->multi = 1;
  b->title = str_format(" %s ", txt(T_OPDR_SELECTEREN_MEER));
  while (brw_run(b, 0) == 1) gekozen.push_back(keuze_van(lijst_rec));
  brw_free(b);
  return gekozen;
}

bool volgorde_kies(int row, int col, char* letters, const char* vraag) {
  struct Volgorde {
    const Tekst& tekst;
    const char* letters;
  };
  static constexpr Volgorde VOLGORDES[] = {
      {T_OPDR_ORDE_SERIE, "AKV"}, {T_OPDR_ORDE_LOCATIE, "LAKV"}, {T_OPDR_ORDE_MODEL, "RMAKV"}};
  if (vraag == nullptr) vraag = txt(T_OPDR_ORDE_VRAAG);
  const int kol = col + 1 + scr_print(A_LABEL, row, col, "%s", vraag);
  TrMenu* const menu = tr_menu_new(TR_BOX, row, kol, 0, nullptr);
  if (menu == nullptr) return false;
  int nu = 1;
  for (int i = 0; i < static_cast<int>(std::size(VOLGORDES)); ++i) {
    tr_menu_add(menu, -1, txt(VOLGORDES[i].tekst), i + 1, TR_AAN, 0, nullptr);
    if (strcmp(letters, VOLGORDES[i].letters) == 0) nu = i + 1;
  }
  const int keuze = tr_menu_run(menu, nu);
  tr_menu_free(menu);
  if (keuze < 1) return false;
  const Volgorde& v = VOLGORDES[keuze - 1];
  std::string tekst = txt(v.tekst);
  std::erase(tekst, '&');
  scr_print(A_WAARDE, row, kol, "%s", tekst);
  str_printf(letters, 11, "%s", v.letters);
  return true;
}
