// What was gathered as a list. The operator's marks live in the browser while he looks and in the
// rows afterwards, so that the list that is printed, the work and the next look all know them.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/controle.h"
#include "main/teksten.h"
#include "main/transit_in.h"
#include "scr/scr.h"
#include "sub/ioeti.h"
#include "sub/tabellen.h"
#include "sub/zoek_lijst.h"

namespace {

Zoekregel lijst_rec;
int lijst_orde = 0;

void zet_niets(const char*) {}
const ZoekOrde ORDES[] = {{1, T_TRANSIT_ZOEK_ETIKET, "9s[0123456789],I", zet_niets}};

/// The browser and what it hands back.
struct Lijst {
  KeyLijst rijen;  // first: the steps of a keyed list take it from here
  bool status;
  bool gemarkeerd;  // the operator has marks of his own
};
Lijst& lijst_van(BrwRec* b) { return *static_cast<Lijst*>(b->data); }

bool stap(BrwRec* b, int n) {
  Lijst& l = lijst_van(b);
  b->data = &l.rijen;
  const bool er = key_lijst_stap(b, n);
  b->data = &l;
  return er;
}

/// Goes to the row of a label.
void zoek_etiket(BrwRec* b, uint32_t nummer) {
  ICB* tabel = lijst_van(b).rijen.icb;
  Zoekregel r{};
  for (bool er = IXFIRSTR(tabel, &r); er; er = IXNEXT(tabel, &r)) {
    if (r.etiket != nummer) continue;
    b->current = static_cast<uint32_t>(tabel->record_no);
    return;
  }
  scr_beep();
}

void zoek(BrwRec* b) {
  char tekst[16] = "";
  const int rij = brw_search_row();
  const int kol = 3 + scr_print(A_LABEL, rij, 2, "%s", txt(T_TRANSIT_ZOEK_ETIKET));
  INGAVE(rij, kol, ORDES[0].formaat, tekst);
  if (scr_ctx->last_key == K_F3) scr_ctx->ing_result |= ING_LEEG;
  if (!weg_toets() && (scr_ctx->ing_result & ING_LEEG) == 0) {
    zoek_etiket(b, static_cast<uint32_t>(strtoul(tekst, nullptr, 10)));
  }
  lijst_van(b).gemarkeerd = b->mark_count != 0 || b->inverted != 0;
}

void kop(BrwRec* b) { transit_kop(1, 2, lijst_van(b).status); }
const char* regel(BrwRec* b) { return transit_regel(lijst_rec, lijst_van(b).status); }

/// What became of a label that is not on its way.
std::string staat(const Zoekregel& r) {
  if (r.status == ETI_VERKOPEN || r.status == ETI_CORRECTIES) {
    const char* woord = txt(r.status == ETI_VERKOPEN ? T_TRANSIT_VRK : T_TRANSIT_COR);
    return str_format(" %-3.3s", woord) + str_format(" %s", date_show(r.datum)) +
           str_format(" %2hu", r.filiaal);
  }
  if (r.status != ETI_VOORRAAD || r.filiaal == r.naarfil) return "";
  return str_format(" %-3.3s", txt(T_TRANSIT_VRD)) + str_format("        %2hu", r.filiaal);
}

void merk_vooraf(BrwRec* b, ICB* tabel) {
  Zoekregel r{};
  for (bool er = IXFIRSTR(tabel, &r); er; er = IXNEXT(tabel, &r)) {
    if (r.gemarkeerd != 0) brw_mark_add(b, static_cast<uint32_t>(tabel->record_no));
  }
}

void zet_merken(ICB* tabel, std::vector<uint32_t>& gekozen) {
  std::ranges::sort(gekozen);
  Zoekregel r{};
  for (bool er = IXFIRSTR(tabel, &r); er; er = IXNEXT(tabel, &r)) {
    const auto plaats = static_cast<uint32_t>(tabel->record_no);
    const uint8_t merk = std::ranges::binary_search(gekozen, plaats) ? 1 : 0;
    if (r.gemarkeerd == merk) continue;
    r.gemarkeerd = merk;
    IXWRITE(tabel, &r);
  }
}

}  // namespace

void transit_kop(int rij, int kolom, bool status) {
  const std::string staart = status ? str_format(" %s", txt(T_TRANSIT_KOP_STATUS)) : "";
  scr_print(A_LABEL, rij, kolom, "%-15.15s%-13.13s %3.3s %2.2s %2.2s %8.8s %-8.8s%s",
            txt(T_TRANSIT_KOP_SERIE), txt(T_TRANSIT_KOP_ETIKET), txt(T_TRANSIT_KOP_MAAT),
            txt(T_TRANSIT_KOP_VAN), txt(T_TRANSIT_KOP_NAAR), txt(T_TRANSIT_KOP_OPDRACHT),
            txt(T_TRANSIT_KOP_DATUM), staart);
}

const char* transit_regel(const Zoekregel& r, bool status) {
  const std::string stuk = r.per_maat != 0 && r.ean[0] != 0 ? veld_tekst(r.ean, sizeof r.ean)
                                                            : str_format("%lu", r.etiket);
  const bool alle = r.naarfil >= filialen();
  const std::string naar = alle ? "" : str_format("%2hu", r.naarfil);
  const std::string opdracht = r.opdrachtnr == 0 ? "" : str_format("%8lu", r.opdrachtnr);
  str_printf(scr_klad, sizeof scr_klad, "%-15.15s%-13.13s %3.3s %2hu %2.2s %8.8s %s%s",
             serie_tekst(r.nr), stuk, veld_tekst(r.maattekst, sizeof r.maattekst), r.vanfil, naar,
             opdracht, std::string(date_show(r.zenddatum)),
             status ? str_format("%-17.17s", staat(r)) : std::string());
  return scr_klad;
}

bool transit_lijst(bool status, bool* gemarkeerd) {
  ICB* tabel = IXOPEN_LENGTE(privaat.tp, IX_EXCLUSIEF, sizeof(Zoekregel));
  Lijst lijst{{tabel, &lijst_rec, sizeof lijst_rec, ORDES, &lijst_orde}, status, false};
  BrwRec* b = brw_new(stap, zoek, kop, regel);
  std::vector<uint32_t> gekozen;
  if (b != nullptr) {
    const IngBewaar bewaar;
    b->data = &lijst;
    b->multi = 1;
    b->title = str_format(" %s ", txt(T_TRANSIT_VERZENDMUTATIES));
    if (*gemarkeerd) merk_vooraf(b, tabel);
    while (brw_run(b, 0) == 1) gekozen.push_back(b->current);
    brw_free(b);
  }
  zet_merken(tabel, gekozen);
  IXCLOSE(tabel);
  *gemarkeerd = lijst.gemarkeerd;
  return !gekozen.empty();
}
