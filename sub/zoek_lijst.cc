// See zoek_lijst.h.
#include "sub/zoek_lijst.h"

#include <cstdlib>
#include <cstring>

#include "isam/base.h"
#include "sub/teksten.h"
#include "sub/zoek.h"

namespace {

KeyLijst& key_lijst(BrwRec* b) { return *static_cast<KeyLijst*>(b->data); }
const ZoekOrde& orde(const KeyLijst& l) { return l.ordes[static_cast<size_t>(*l.orde)]; }

/// The search field of a list on its bottom row; false when nothing was typed to search for.
bool vraag_zoek(const Tekst& label, const char* formaat, char* tekst) {
  const int rij = brw_search_row();
  const char* naam = txt(label);
  scr_print(A_LABEL, rij, 2, "%s", naam);
  INGAVE(rij, static_cast<int>(strlen(naam)) + 3, formaat, tekst);
  if (scr_ctx->last_key == K_F3)
    scr_ctx->ing_result |= ING_LEEG;  // picks what stands under the cursor
  return !weg_toets() && (scr_ctx->ing_result & ING_LEEG) == 0;
}

}  // namespace

bool alleen_cijfers(const char* tekst) {
  return *tekst != 0 && strspn(tekst, "0123456789") == strlen(tekst);
}

bool key_lijst_stap(BrwRec* b, int n) {
  KeyLijst& l = key_lijst(b);
  IXSWITCH(l.icb, orde(l).sleutel);
  if (b->current == UINT32_MAX) {
    memset(l.rec, 0, l.lengte);
    if (!IXFIRSTR(l.icb, l.rec)) return false;
    b->current = static_cast<uint32_t>(l.icb->record_no);
    if (n == 0) return true;
  }
  int32_t nummer = static_cast<int32_t>(b->current);
  // A skip of none goes on from a record that has gone; here it is an answer.
  if (n == 0) return IXGET(l.icb, l.rec, nummer) == 1;
  const bool er = IXSKIP(l.icb, l.rec, 0, n, &nummer);
  b->current = static_cast<uint32_t>(nummer);
  return er;
}

void key_lijst_positie(BrwRec* b) {
  KeyLijst& l = key_lijst(b);
  IXSWITCH(l.icb, orde(l).sleutel);
  if (IXFIRSTR(l.icb, l.rec) || IXPREV(l.icb, l.rec)) {
    b->current = static_cast<uint32_t>(l.icb->record_no);
  }
}

void key_lijst_zoek(BrwRec* b) {
  KeyLijst& l = key_lijst(b);
  char tekst[32] = "";
  if (l.ordes.size() > 1) key_allow(K_TAB);
  if (vraag_zoek(orde(l).label, orde(l).formaat, tekst)) {
    memset(l.rec, 0, l.lengte);
    orde(l).zet(tekst);
    key_lijst_positie(b);
  }
  if (scr_ctx->last_key == K_TAB && l.ordes.size() > 1) {
    *l.orde = (*l.orde + 1) % static_cast<int>(l.ordes.size());
    scr_clreol(brw_search_row(), 1);
    scr_clreol(1, 1);
    b->heading(b);  // a text typed before the key makes the browser draw the page alone
  }
}

bool sys_lijst_stap(BrwRec* b, int n) {
  const SysLijst& l = *static_cast<SysLijst*>(b->data);
  int32_t nummer = b->current == UINT32_MAX ? 1 : static_cast<int32_t>(b->current);
  bool er = iotab(b->current == UINT32_MAX ? 'F' : 'R', &nummer, l.rec, l.tabel);
  if (b->current == UINT32_MAX) {
    if (!er) return false;
    b->current = static_cast<uint32_t>(nummer);
  }
  for (int i = n; i != 0; i += i < 0 ? 1 : -1) {
    if (!iotab(n > 0 ? 'N' : 'P', &nummer, l.rec, l.tabel)) {
      nummer = static_cast<int32_t>(b->current);
      iotab('R', &nummer, l.rec, l.tabel);
      return false;
    }
    b->current = static_cast<uint32_t>(nummer);
    er = true;
  }
  return er;
}

void sys_lijst_zoek(BrwRec* b) {
  const SysLijst& l = *static_cast<SysLijst*>(b->data);
  char tekst[8] = "";
  if (!vraag_zoek(l.label, l.formaat, tekst)) return;
  int32_t nummer = atoi(tekst);
  if (nummer < 1) nummer = 1;
  if (iotab('F', &nummer, l.rec, l.tabel) || iotab('P', &nummer, l.rec, l.tabel)) {
    b->current = static_cast<uint32_t>(nummer);
  }
}

void lijst_geen() {
  IngBewaar bewaar;
  Venster venster(scr_ctx->lines - 4, 21, 4, 40);
  win_title(nullptr);
  scr_print(A_WAARDE, 1, 2, "%s", txt(T_ZOEK_GEEN));
  scr_enter(2, 2);
}

bool lijst_kies(BrwRec* b, const char* titel, const Tekst& geen, uint32_t* gekozen) {
  if (b == nullptr) return false;
  IngBewaar bewaar;  // the field that was interrupted keeps its set-up
  b->title = str_format(" %s ", titel);
  bool keus = false;
  if (b->move(b, 0)) {
    keus = brw_run(b, 0) == 1;
  } else {
    msg_info(txt(geen));
  }
  if (keus && gekozen != nullptr) *gekozen = b->current;
  brw_free(b);
  return keus;
}
