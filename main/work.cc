// What a run opens before its top menu and closes behind it, in a fixed order: later steps depend
// on earlier ones, and the first missing table is the one that is named.
#include "main/work.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <new>

#include "isam/base.h"
#include "main/controle.h"
#include "prt/prt.h"
#include "sub/adv_krit.h"
#include "sub/ioeti.h"
#include "sub/ioink.h"
#include "sub/sel_krit.h"
#include "sub/serie.h"
#include "sub/serie_keuze.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"

bool work_overdracht = false;

namespace {

constexpr const char* MODULE = "opdsaldo";
constexpr int SELECTIE_MINIMUM = 1536;  // header, one root and the lock queue

int tpdtse_fd = -1;

struct Werkrij {
  int nummer;  // named when memory runs out
  MaatMatrix* matrix;
};
constexpr Werkrij WERK_VOOR[] = {{1, &werk1}, {2, &werk2}, {3, &werk3}, {4, &werk4}};
constexpr Werkrij WERK_NA[] = {{8, &werk8},   {9, &werk9},   {11, &werk11},
                               {10, &werk10}, {16, &werk16}, {17, &werk17}};

struct OpenTabel {
  ICB** handle;
  const char* naam;
  int mode;
};
constexpr OpenTabel TABELLEN[] = {
    {&dtart, "DTART", IX_LEES},      {&dtean, "DTEAN", IX_GEDEELD},   {&dtgo, "DTGO", IX_GEDEELD},
    {&dtfin, "DTFIN", IX_GEDEELD},   {&dtio, "DTIO", IX_GEDEELD},     {&dtlev, "DTLEV", IX_LEES},
    {&dtkoers, "DTKOERS", IX_LEES},  {&dtmaat, "DTMAAT", IX_LEES},    {&dtmerk, "DTMERK", IX_LEES},
    {&dtmtom, "DTMTOM", IX_LEES},    {&dtpick, "DTPICK", IX_GEDEELD}, {&dtser, "DTSER", IX_GEDEELD},
    {&dtaanv, "DTAANV", IX_GEDEELD},
};

template <class V>
void reserveer(int nummer, V& rijen) {
  try {
    rijen.assign(static_cast<size_t>(filialen()) + 1, {});
  } catch (const std::bad_alloc&) {
    ctl_nomem(MODULE, nummer);
  }
}

void werkrijen_maak() {
  for (const Werkrij& w : WERK_VOOR) reserveer(w.nummer, *w.matrix);
  reserveer(5, werk5);
  for (const Werkrij& w : WERK_NA) {
    reserveer(w.nummer, *w.matrix);
    if (w.nummer == 8) prijswerk = {};
  }
}

template <class V>
void geef_vrij(V& rijen) {
  V().swap(rijen);
}

/// The operator's series selection outlives the run; its sort order stands in its header.
void selectie_open() {
  memset(&ser_rec, 0, sizeof ser_rec);
  serie_gevuld = false;
  if (file_size(privaat.v) >= SELECTIE_MINIMUM) {
    ICB* icb = tabel_open(privaat.v, IX_LEES);
    const std::string letters = veld_tekst(icb->description, sizeof icb->description);
    str_printf(serie_sortering, sizeof serie_sortering, "%s", letters);
    serie_gevuld = IXFIRSTR(icb, &ser_rec);
    IXCLOSE(icb);
    return;
  }
  str_printf(serie_sortering, sizeof serie_sortering, "%s", "AKV");
  IXCLOSE(sort_maak(privaat.v, "AKV"));
}

/// The advice run's series are kept only on the way back from the program that was handed them.
void adviesserie_open() {
  if (strcmp(session_caller, "vrdstuk") != 0) IXCLOSE(sort_maak(privaat.a, "AKV"));
  dtser_a = tabel_open(privaat.a, IX_GEDEELD);
}

void tpdtse_open() {
  tpdtse_fd = open(privaat.tpdtse, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0660);
  if (tpdtse_fd < 0) ctl_noopen("qksereti", privaat.tpdtse);
}

void sluit(ICB*& icb) {
  if (icb == nullptr) return;
  IXCLOSE(icb);
  icb = nullptr;
}

}  // namespace

void work_naar_vrdstuk() { work_overdracht = true; }

void work_open() {
  werkrijen_maak();
  privaat_maak(session_terminal);
  int32_t nummer = 20;
  iotab('R', &nummer, &sys_rec20, SYS_RECORDS);  // zeros are a valid record

  const std::string bedrijf = veld_tekst(sys_rec1.bedrijf, sizeof sys_rec1.bedrijf);
  str_printf(prt_links, sizeof prt_links, "%s", bedrijf);
  str_trim(prt_links);

  selectie_open();
  dtser_o = nullptr;
  adviesserie_open();
  IXCLOSE(sort_maak(privaat.r, "MAKV"));
  ioeti('O', nullptr, nullptr);
  ipa_open(IX_GEDEELD);
  for (const OpenTabel& t : TABELLEN) *t.handle = tabel_open(t.naam, t.mode);
  dtser_opzoek = dtser;
  tpdtse_open();
  sel_start(13);
  adv_laad(session_terminal);
}

void work_close() {
  for (const Werkrij& w : WERK_VOOR) geef_vrij(*w.matrix);
  geef_vrij(werk5);
  for (const Werkrij& w : WERK_NA) geef_vrij(*w.matrix);
  ioeti('C', nullptr, nullptr);
  ipa_close();
  for (const OpenTabel& t : TABELLEN) sluit(*t.handle);
  if (tpdtse_fd >= 0) close(tpdtse_fd);
  tpdtse_fd = -1;
  file_delete(privaat.tpdtse);
  sluit(dtser_a);
  if (!work_overdracht) IXREMOVE(privaat.a);
  sluit(dtser_o);
  dtser_opzoek = nullptr;
  IXREMOVE(privaat.o);
  IXREMOVE(privaat.r);
  IXREMOVE(privaat.merk);
  adv_bewaar(session_terminal);
}
