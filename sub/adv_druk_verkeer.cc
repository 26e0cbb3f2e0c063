// "Verkopen tbv filiaalverkeer": what branches sold in a period. The label store is read from its
// first block to its last, each block once, so that a chain that points wrong loses no sale.
#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "isam/base.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/adv_druk.h"
#include "sub/adv_opdracht.h"
#include "sub/bitarr.h"
#include "sub/ioeti_intern.h"
#include "sub/leesstam.h"
#include "sub/pghdl.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/voortgang.h"

namespace {

constexpr int F_ADVIES = 9;  // work function
constexpr int RIJ = 4, K_LABEL = 2, K_VELD = 22, BREEDTE = 132;

struct Verkoop {
  int64_t cent = 0;
  int32_t stuks = 0;
};
using Verkopen = std::array<Verkoop, 256>;

struct Grens {
  uint16_t van, tm;
  const uint8_t* filialen;
};
struct Telling {
  Grens grens{};
  Verkopen verkopen{};
  bool gedrukt = false;  // any line
  // The owner of the last block with sales: blocks of a series mostly follow each other.
  Serienr serie{};
  bool bekend = false;
  std::vector<Serienr> onbekend;  // told already
};

bool telt_mee(const Etiket& e, const Grens& g) {
  return e.status == ETI_VERKOPEN && e.vrkdat >= g.van && e.vrkdat <= g.tm &&
         e.filiaal < filialen() && bit_test(g.filialen, e.filiaal);
}

void kop() {
  print_head(prt_links, "%s", txt(T_ADVO_KOP_VERKEER));
  print_rep(BREEDTE, '-');
  print_nl();
}
void begin_regel() {
  if (print_vol()) kop();
}

/// Looks the owner of a block up; an unknown one is told once, and its sales do not count.
bool serie_bekend(Telling& t, const Serienr& nr) {
  if (nr == t.serie) return t.bekend;
  t.serie = nr;
  t.bekend = lees_serie(dtser, &ser_rec, nr);
  if (t.bekend || std::ranges::find(t.onbekend, nr) != t.onbekend.end()) return t.bekend;
  t.onbekend.push_back(nr);
  begin_regel();
  print_f("%-14s %s", serie_tekst(nr), txt(T_ADVO_ONBEKEND));
  print_nl();
  t.gedrukt = true;
  return false;
}

void tel_blok(Telling& t, const EtiBlok& blok) {
  for (const auto& woord : blok.woord) {
    uint32_t slot[9];  // the block is packed
    memcpy(slot, woord, sizeof slot);
    Etiket e{};
    if (!etiket_uitpak(slot, &e, sys_rec20.transit != 0) || !telt_mee(e, t.grens)) continue;
    if (!serie_bekend(t, blok.nr)) return;
    t.verkopen[e.filiaal].cent += e.bedrag;
    ++t.verkopen[e.filiaal].stuks;
  }
}

void tel(Telling& t) {
  const SerieVoortgang voortgang;
  EtiBlok blok;
  Serienr getoond{};
  for (int32_t n = 0; eti_lees_rauw(n, &blok) == EtiLees::goed; ++n) {
    if (scr_ctx != nullptr && scr_interrupted()) return;
    if (!(blok.nr == getoond)) voortgang.toon(blok.nr);
    getoond = blok.nr;
    tel_blok(t, blok);
  }
}

void druk_bedrag(const char* voor, const Verkoop& v, const char* achter) {
  print_f("%s%11.*lf %8ld  %s", voor, geld_decimalen,
          static_cast<double>(v.cent) / (geld_decimalen == 0 ? 1.0 : 100.0), v.stuks, achter);
  print_nl();
}

void druk(Telling& t) {
  Verkoop totaal;
  for (int b = 0; b < filialen(); ++b) {
    const Verkoop& v = t.verkopen[static_cast<size_t>(b)];
    if (v.stuks == 0) continue;
    FiliaalRec rec{};
    iofil('R', b, &rec);
    begin_regel();
    druk_bedrag(str_format(" %3d : ", b).c_str(), v, veld_tekst(rec.naam, sizeof rec.naam).c_str());
    totaal.cent += v.cent;
    totaal.stuks += v.stuks;
  }
  if (totaal.stuks == 0) return;
  t.gedrukt = true;
  print_f("%7s%s", "", "=========== +");
  print_nl();
  druk_bedrag("       ", totaal, "");
}

/// The period and the branches; false when the operator left.
bool vraag(uint16_t* van, uint16_t* tm, uint8_t* map) {
  const Tekst* const labels[] = {&T_ADVO_DATUM_VAN, &T_ADVO_DATUM_TM, &T_ADVO_FILIALEN};
  for (int i = 0; i < 3; ++i) scr_print(A_LABEL, RIJ + i, K_LABEL, "%s", txt(*labels[i]));
  *van = date_number(DATUM_EERSTE);
  *tm = date_today();
  INGAVE(RIJ, K_VELD, "10D,E", &K_CANCEL, van);
  if (weg_toets()) return false;
  scr_ctx->ing->min = *van;
  scr_ctx->ing->max = DATUM_LAATSTE;
  if (*tm < *van) *tm = *van;
  INGAVE(RIJ + 1, K_VELD, "10D,E", &K_CANCEL, tm);
  if (weg_toets()) return false;
  pg_clear(map);
  key_allow(K_CANCEL);
  key_allow(K_F5);
  pg_field(RIJ + 2, K_VELD, str_format("%ds,I", scr_ctx->cols - K_VELD).c_str(), map);
  if (weg_toets()) return false;
  if (bit_leeg(map, 32)) {
    pg_fill(map);
    scr_print(A_WAARDE, RIJ + 2, K_VELD, "%s", txt(T_PG_ALLE));
  }
  return true;
}

}  // namespace

bool vrk_verkeer_druk(uint16_t van, uint16_t tm, const uint8_t filialen_map[32]) {
  Telling t;
  t.grens = {van, tm, filialen_map};
  tel(t);
  druk(t);
  return t.gedrukt;
}

void vrk_verkeer() {
  hdr_line('C', "%s", txt(T_ADVO_DRUK_VERKEER));
  if (!vw_claim(F_ADVIES, true)) return;
  const Werkclaim claim(F_ADVIES);
  uint16_t van = 0, tm = 0;
  uint8_t map[32];
  if (!vraag(&van, &tm, map) || !XPRT_OPEN(PRT_SCHERM, PRT_132, nullptr)) return;
  if (!vrk_verkeer_druk(van, tm, map) && !scr_interrupted()) msg_info(txt(T_ADVO_GEEN_VERKOPEN));
  print_close("");
}
