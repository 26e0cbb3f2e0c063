// "Afdrukken adviezen per serie": what the automatic command would order, one block a series with a
// line for each branch that gets or gives. Nothing is written.
#include "sub/adv_druk.h"

#include <algorithm>
#include <string>
#include <vector>

#include "isam/base.h"
#include "main/batchvw.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_reeks.h"
#include "sub/adv_vul.h"
#include "sub/leesstam.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int F_ADVIES = 9;  // work function
constexpr int LINKS = 56, BREEDTE = 132, CEL = 4;
constexpr int PER_REGEL = (BREEDTE - LINKS - 15) / CEL;  // sizes of a line

bool gedrukt;

void kop() {
  print_head(prt_links, "%s", txt(T_ADVO_KOP_SERIE));
  print_f("%-14s %-20s %-7.7s%10s %-2s %4s %4s %3s  %s", txt(T_VRAAG_KOP_SERIE),
          txt(T_ZOEK_KOP_OMS), txt(T_ADVO_K_LOCATIE), txt(T_ADVO_K_VRKPR), txt(T_ADVO_K_KM),
          txt(T_ADVO_K_VRD), txt(T_ADVO_K_VRK), txt(T_ADVO_K_FIL), txt(T_ADVO_K_MAATSPEC));
  print_nl();
  print_f("     %-9s %-15s %-12s %-12s", txt(T_ADVO_K_MERK), txt(T_VRAAG_KOP_MODEL),
          txt(T_ADVO_K_MATERIAAL), txt(T_ADVO_K_DESSIN));
  print_nl();
  print_rep(BREEDTE, '-');
  print_nl();
}

std::string maten_regel(size_t van, size_t tot) {
  std::string uit(15, ' ');
  for (size_t i = van; i < tot; ++i) {
    MaatRec m;
    const bool er = mtzoek(adv_maten, advies.maten[i], &m);
    uit += str_format(" %3s", er ? veld_tekst(m.tekst, sizeof m.tekst) : std::string());
  }
  return uit;
}

std::string filiaal_regel(size_t b, size_t van, size_t tot) {
  std::string uit =
      str_format("%5d %4d %3d ", advies.m_voorraad[b][0], advies.m_verkocht[b][0], int(b));
  for (size_t i = van; i < tot; ++i) {
    const int32_t n = advies.r_aanvul[b][advies.maten[i]];
    uit += n == 0 ? std::string(CEL, ' ') : str_format("%4d", n);
  }
  return uit;
}

bool doet_mee(size_t b, size_t van, size_t tot) {
  return std::any_of(advies.maten.begin() + static_cast<ptrdiff_t>(van),
                     advies.maten.begin() + static_cast<ptrdiff_t>(tot),
                     [b](uint8_t m) { return advies.r_aanvul[b][m] != 0; });
}

/// For each run of sizes that a line holds: the sizes, then the branches with any piece of them.
std::vector<std::string> rechterdeel() {
  std::vector<std::string> uit;
  const auto filialen_aantal = static_cast<size_t>(advies.filialen());
  for (size_t van = 0; van < advies.maten.size(); van += PER_REGEL) {
    const size_t tot = std::min(advies.maten.size(), van + PER_REGEL);
    const size_t begin = uit.size();
    for (size_t b = 0; b < filialen_aantal; ++b) {
      if (!doet_mee(b, van, tot)) continue;
      if (uit.size() == begin) uit.push_back(maten_regel(van, tot));
      uit.push_back(filiaal_regel(b, van, tot));
    }
  }
  return uit;
}

std::string veld(const char* v, size_t n) { return veld_tekst(v, n); }

void druk_links(size_t regel) {
  const DtSer& s = ser_rec;
  if (regel == 0) {
    print_f("%s %-20.20s %-6.6s %10s %-2.2s", str_format("%-14s", serie_tekst(s.nr)),
            veld(s.omschrijving, sizeof s.omschrijving), veld(s.locatie, sizeof s.locatie),
            money_show(s.verkoopprijs, 10), veld(s.kenmerk, sizeof s.kenmerk));
  } else if (regel == 1) {
    print_f("     %-4.4s %-4hu %-15.15s %-12.12s %-12.12s",
            veld(merk_rec.zoeknaam, sizeof merk_rec.zoeknaam), s.merk,
            veld(s.model, sizeof s.model), veld(s.materiaal, sizeof s.materiaal),
            veld(s.dessin, sizeof s.dessin));
  } else {
    print_rep(LINKS, ' ');
  }
}

/// A block stays together as far as its first four lines; a longer one goes on behind a new head.
void druk_blok() {
  const std::vector<std::string> rechts = rechterdeel();
  const size_t regels = std::max<size_t>(2, rechts.size());
  const int samen = static_cast<int>(std::min<size_t>(regels, 4));
  if (print_vol(samen)) kop();
  for (size_t i = 0; i < regels; ++i) {
    if (print_vol()) kop();
    druk_links(i);
    if (i < rechts.size()) print_f("%s", rechts[i]);
    print_nl();
  }
  print_nl();
  gedrukt = true;
}

bool druk_serie(const Serienr& nr) {
  if (!lees_serie(dtser, &ser_rec, nr)) return true;
  if (!adv_vul()) return false;
  adv_automatisch(advies);
  if (!adv_leeg(advies, advies.r_aanvul)) druk_blok();
  return true;
}

}  // namespace

bool adv_druk_series() {
  gedrukt = false;
  adv_aanv_reeks(druk_serie);
  return gedrukt;
}

void adv_rapport(const Tekst& titel, bool (*druk)()) {
  hdr_line('C', "%s", txt(titel));
  if (!vw_claim(F_ADVIES, true)) return;
  const Werkclaim claim(F_ADVIES);
  if (!adv_dialoog_slot()) return;
  const AdvOpen open;
  if (!XPRT_OPEN(PRT_SCHERM, PRT_132, nullptr)) return;
  if (!druk() && !scr_interrupted()) msg_info(txt(T_ADVO_GEEN_ADVIES));
  print_close("");
}

void adv_druk_serie() { adv_rapport(T_ADVO_DRUK_SERIE, adv_druk_series); }
