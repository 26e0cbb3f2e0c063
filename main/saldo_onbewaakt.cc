// The balance without an operator: session 99, all series, its lines to a stream. No selection, no
// criteria set and no terminal record is touched.
#include <cstring>

#include "isam/base.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/saldo.h"
#include "main/saldo_pas.h"
#include "main/verzamel.h"
#include "prt/prt.h"
#include "sub/adv_krit.h"
#include "sub/pghdl.h"
#include "sub/sel_krit.h"
#include "sub/serie.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"

namespace {

constexpr int SESSIE = 99;
constexpr int FUNCTIE = 10;
constexpr int REGELS = 64;  // a page of the plain list

struct Tafel {
  ICB** handle;
  const char* naam;
};
constexpr Tafel TAFELS[] = {{&dtart, "DTART"},   {&dtlev, "DTLEV"},   {&dtmaat, "DTMAAT"},
                            {&dtmerk, "DTMERK"}, {&dtmtom, "DTMTOM"}, {&dtpick, "DTPICK"},
                            {&dtser, "DTSER"}};

void systeem_open() {
  session_terminal = SESSIE;
  int32_t nummer = 1;
  iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
  iotab('R', &nummer, &sys_rec1, SYS_RECORDS);
  nummer = 20;
  iotab('R', &nummer, &sys_rec20, SYS_RECORDS);
  iofil('O', 0, nullptr);
  privaat_maak(SESSIE);
  werk8.assign(static_cast<size_t>(filialen()) + 1, {});
  const std::string bedrijf = veld_tekst(sys_rec1.bedrijf, sizeof sys_rec1.bedrijf);
  str_printf(prt_links, sizeof prt_links, "%s", bedrijf);
  str_trim(prt_links);
}

void alle_series() {
  sel_soort = 13;
  sel_velden();
  sel_rec = {};
  memcpy(sel_status, sel_default, sizeof sel_status);
  merk_aantal = 0;
  merk_een = false;
  sel_aanvullen();
  adv_rec = adv_standaard();
  pg_fill(adv_rec.aanvul_filialen);
  pg_fill(adv_rec.vanuit_filialen);
  saldo_splits = true;
  serie_selecteer(privaat.o, "AKV");
  dtser_o = tabel_open(privaat.o, IX_LEES);
  dtser_opzoek = dtser_o;
}

void druk(FILE* uit) {
  verzamel_maak(privaat.tp, saldo_sort, saldo_splits);
  saldo_pass(1);
  prt_open_stil(uit, 132, REGELS);
  saldo_druk();
  print_close("");
  IXREMOVE(privaat.tp);
}

}  // namespace

bool saldo_onbewaakt(FILE* uit) {
  systeem_open();
  const bool vrij = vw_claim(FUNCTIE, true);
  if (vrij) {
    for (const Tafel& t : TAFELS) *t.handle = tabel_open(t.naam, IX_LEES);
    alle_series();
    druk(uit);
    IXCLOSE(dtser_o);
    dtser_o = dtser_opzoek = nullptr;
    IXREMOVE(privaat.o);
    for (const Tafel& t : TAFELS) {
      IXCLOSE(*t.handle);
      *t.handle = nullptr;
    }
    vw_free(FUNCTIE);
  }
  iofil('C', 0, nullptr);
  int32_t nummer = 1;
  iotab('C', &nummer, nullptr, SYS_RECORDS);
  return vrij;
}
