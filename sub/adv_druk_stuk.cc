// "Afdrukken per artikel": the sold pieces that ask for replenishment, of each series whose advice
// is not empty, in branches that may receive.
#include "isam/base.h"
#include "prt/prt.h"
#include "sub/adv_druk.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_reeks.h"
#include "sub/adv_vul.h"
#include "sub/ioeti.h"
#include "sub/leesstam.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int BREEDTE = 132, SERIEVELDEN = 3;

bool gedrukt;

void kop() {
  print_head(prt_links, "%s", txt(T_ADVO_KOP_STUK));
  print_f("%-14s %-20s %8s %4s %10s %2s %10s %-8s %3s %6s %3s", txt(T_VRAAG_KOP_SERIE),
          txt(T_ZOEK_KOP_OMS), txt(T_ADVO_K_ETIKET), txt(T_ZOEK_KOP_MAAT), txt(T_ADVO_K_VRKW),
          txt(T_ADVO_K_ACTIE), txt(T_ADVO_K_ADVW), txt(T_ADVO_K_VRKDAT), txt(T_ADVO_K_VKP),
          txt(T_ADVO_K_KLANT), txt(T_ADVO_K_FIL));
  print_nl();
  print_rep(BREEDTE, '-');
  print_nl();
}

std::string maat_tekst(uint8_t maat) {
  MaatRec m;
  const bool er = mtzoek(adv_maten, maat, &m);
  return er ? veld_tekst(m.tekst, sizeof m.tekst) : str_format("%d", int{maat});
}

/// The series stands on its first line only. Nobody knows label numbers of a series with size
/// registration, so they stay out.
void druk_stuk(int32_t nummer, const Etiket& e, bool eerste) {
  const bool kop_nodig = print_vol();
  if (kop_nodig) kop();
  const bool serie = eerste || kop_nodig;
  const DtSer& s = ser_rec;
  print_f("%-14s %-20.20s %8s %4s %10s", serie ? serie_tekst(s.nr) : std::string(),
          serie ? veld_tekst(s.omschrijving, sizeof s.omschrijving) : std::string(),
          s.maatregistratie == 0 ? str_format("%ld", nummer) : std::string(), maat_tekst(e.maat),
          money_show(e.bedrag, 10));
  print_blank_amount(" %2d", e.actie);
  print_f(" %10s %8s", money_show(e.advpr, 10), e.vrkdat == 0 ? "" : date_show(e.vrkdat));
  print_blank_amount(" %3d", e.nummer3);
  print_blank_amount(" %6ld", e.klant);
  print_f(" %3d", int{e.filiaal});
  print_nl();
  gedrukt = true;
}

/// A record of DTAANV counts when its label is there and is of its series.
void druk_stukken(const Serienr& nr) {
  bool eerste = true;
  DtAanv regel{};
  regel.nr = nr;
  for (bool er = IXFIRSTR(dtaanv, &regel, SERIEVELDEN); er;
       er = IXNEXT(dtaanv, &regel, SERIEVELDEN)) {
    if (regel.etiket > INT32_MAX) break;
    auto nummer = static_cast<int32_t>(regel.etiket);
    Etiket e{};
    if (!ioeti('R', &nummer, &e) || !(e.nr == nr)) continue;
    if (e.filiaal >= advies.filialen() || !advies.doel.test(e.filiaal)) continue;
    druk_stuk(nummer, e, eerste);
    eerste = false;
  }
}

bool druk_serie(const Serienr& nr) {
  if (!lees_serie(dtser, &ser_rec, nr)) return true;
  if (!adv_vul()) return false;
  adv_automatisch(advies);
  if (!adv_leeg(advies, advies.r_aanvul)) druk_stukken(nr);
  return true;
}

}  // namespace

bool adv_druk_stuks() {
  gedrukt = false;
  adv_aanv_reeks(druk_serie);
  return gedrukt;
}

void adv_druk_stuk() { adv_rapport(T_ADVO_DRUK_STUK, adv_druk_stuks); }
