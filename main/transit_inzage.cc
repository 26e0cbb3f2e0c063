// What an order asked and what left under its number, to look at. Nothing is changed.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <tuple>
#include <vector>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/batchvw.h"
#include "main/teksten.h"
#include "main/transit.h"
#include "main/transit_in.h"
#include "scr/scr.h"
#include "sub/leesstam.h"
#include "sub/opdr_kies.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/zoek_lijst.h"

namespace {

constexpr int FUNCTIE = 10;                // work function of order lines
constexpr int PICK_VAN = 1, GO_PAREN = 2;  // keys that begin with the sending branch
constexpr int RIJ_NUMMER = 4, RIJ_VOLGORDE = 6, KOLOM_NUMMER = 16;

/// A line of the order (etiket 0), or a label that left.
struct Rij {
  std::string sleutel;  // it sorts on
  Serienr nr;
  uint8_t van, naar;
  uint32_t stuks, etiket;
  uint16_t zenddatum;
  bool afgewerkt;
};
struct Inzage {
  OpdrKeuze opdracht;
  const char* volgorde;
  std::vector<Rij> rijen{};
};

/// The fields of a print order as bytes that compare as they sort.
std::string sorteersleutel(const char* letters, const Serienr& nr) {
  if (!lees_serie(dtser, &ser_rec, nr)) ser_rec = {};
  if (!lees_merk(dtmerk, &merk_rec, ser_rec.merk)) merk_rec = {};
  std::string uit;
  for (const char* p = letters; *p != 0; ++p) {
    switch (*p) {
      case 'L':
        uit.append(ser_rec.locatie, sizeof ser_rec.locatie);
        break;
      case 'M':
        uit.append(ser_rec.model, sizeof ser_rec.model);
        break;
      case 'R':
        uit.append(merk_rec.zoeknaam, sizeof merk_rec.zoeknaam);
        break;
      default:
        break;
    }
  }
  return uit + str_format("%010lu%05hu%05hu", nr.artgroep, nr.kleur, nr.volgnr);
}

void voeg(Inzage& inzage, Rij rij) {
  rij.sleutel = !inzage.rijen.empty() && inzage.rijen.back().nr == rij.nr
                    ? inzage.rijen.back().sleutel
                    : sorteersleutel(inzage.volgorde, rij.nr);
  inzage.rijen.push_back(std::move(rij));
}

void verzamel(Inzage& inzage) {
  const OpdrKeuze& o = inzage.opdracht;
  {
    const OpSleutel sleutel(dtpick, PICK_VAN);
    DtPick r{};
    r.vanfil = o.vanfil;
    for (bool er = IXFIRSTR(dtpick, &r, 1); er; er = IXNEXT(dtpick, &r, 1)) {
      if (r.opdrachtnr != o.nummer) continue;
      uint32_t stuks = 0;
      for (int m = 1; m < MATEN; ++m) stuks += r.aantal[m];
      voeg(inzage, {"", r.nr, r.vanfil, r.naarfil, stuks, 0, 0, false});
    }
  }
  const OpSleutel sleutel(dtgo, GO_PAREN);
  DtGo r{};
  r.vanfil = o.vanfil;
  for (bool er = IXFIRSTR(dtgo, &r, 1); er; er = IXNEXT(dtgo, &r, 1)) {
    if (r.opdrachtnr != o.nummer) continue;
    voeg(inzage, {"", r.nr, r.vanfil, r.naarfil, 0, r.etiket, r.zenddatum, r.afgewerkt != 0});
  }
  std::ranges::sort(inzage.rijen, [](const Rij& a, const Rij& b) {
    return std::tie(a.sleutel, a.naar, a.etiket) < std::tie(b.sleutel, b.naar, b.etiket);
  });
}

// The list ----------------------------------------------------------------------------------------

Inzage& inzage_van(BrwRec* b) { return *static_cast<Inzage*>(b->data); }

bool stap(BrwRec* b, int n) {
  const auto aantal = static_cast<int64_t>(inzage_van(b).rijen.size());
  if (aantal == 0) return false;
  const int64_t hier = b->current == UINT32_MAX ? 0 : int64_t{b->current};
  const int64_t doel = std::clamp<int64_t>(hier + n, 0, aantal - 1);
  b->current = static_cast<uint32_t>(doel);
  return doel == hier + n;
}

void zoek(BrwRec* b) {
  char tekst[8] = "";
  const int rij = brw_search_row();
  const int kol = 3 + scr_print(A_LABEL, rij, 2, "%s", txt(T_TRANSIT_ARTIKELGROEP));
  INGAVE(rij, kol, "5s[0123456789],I", tekst);
  if (scr_ctx->last_key == K_F3) scr_ctx->ing_result |= ING_LEEG;
  if (weg_toets() || (scr_ctx->ing_result & ING_LEEG) != 0) return;
  const std::vector<Rij>& rijen = inzage_van(b).rijen;
  const auto gezocht = static_cast<uint32_t>(strtoul(tekst, nullptr, 10));
  const auto i =
      std::ranges::find_if(rijen, [gezocht](const Rij& r) { return r.nr.artgroep >= gezocht; });
  b->current = static_cast<uint32_t>((i == rijen.end() ? i - 1 : i) - rijen.begin());
}

void kop(BrwRec*) {
  scr_print(A_LABEL, 1, 2, "%-15.15s%3.3s %3.3s %6.6s %8.8s %-8.8s", txt(T_TRANSIT_KOP_SERIE),
            txt(T_TRANSIT_KOP_VAN), txt(T_TRANSIT_KOP_NAAR), txt(T_TRANSIT_KOP_STUKS),
            txt(T_TRANSIT_KOP_ETIKET), txt(T_TRANSIT_KOP_DATUM));
}

const char* regel(BrwRec* b) {
  const Rij& r = inzage_van(b).rijen[b->current];
  std::string stuk = str_format("%6lu%28s", r.stuks, "");
  if (r.etiket != 0) {
    const char* staat = txt(r.afgewerkt ? T_TRANSIT_AFGEWERKT : T_TRANSIT_OPEN);
    stuk = str_format("%6s %8lu %s %-10.10s", "", r.etiket, date_show(r.zenddatum), staat);
  }
  str_printf(scr_klad, sizeof scr_klad, "%-15.15s%3hu %3hu %s", serie_tekst(r.nr), r.van, r.naar,
             stuk);
  return scr_klad;
}

void toon(Inzage& inzage) {
  BrwRec* b = brw_new(stap, zoek, kop, regel);
  if (b == nullptr) return;
  b->data = &inzage;
  b->row = RIJ_VOLGORDE + 2;
  const std::string titel = str_format(txt(T_TRANSIT_TITEL_OPDRACHT), inzage.opdracht.nummer);
  lijst_kies(b, titel.c_str(), T_MAG_GEEN_INFO);
}

}  // namespace

void mut_uitgevoerd() {
  hdr_line('C', "%s", txt(T_MENU_UITGEVOERDE));
  if (!vw_claim(FUNCTIE, true)) return;
  const Werkclaim claim(FUNCTIE);
  OpdrGrens grens;
  grens.onderweg = true;
  char volgorde[11] = "AKV";
  for (;;) {
    hdr_line('C', "%s", txt(T_MENU_UITGEVOERDE));
    scr_print(A_LABEL, RIJ_NUMMER, 1, "%s", txt(T_OPDRACHTNUMMER));
    Inzage inzage{{}, volgorde};
    key_allow(K_CANCEL);
    if (!opdr_kies(RIJ_NUMMER, KOLOM_NUMMER, grens, &inzage.opdracht)) return;
    if (inzage.opdracht.nummer == 0) return;
    if (!volgorde_kies(RIJ_VOLGORDE, 1, volgorde, txt(T_TRANSIT_VOLGORDE))) continue;
    verzamel(inzage);
    toon(inzage);
  }
}
