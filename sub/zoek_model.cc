// The models of one brand, through a private index of its series by brand and model.
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/leesstam.h"
#include "sub/serie.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/zoek.h"
#include "sub/zoek_lijst.h"

namespace {

constexpr int KEY_MERK = 2;     // DTSER by brand
constexpr int MODELVELDEN = 2;  // brand and model: a model counts once

ICB* index_;
DtSer model_rec;
uint16_t merk_nu;

void vul_index(uint16_t merk) {
  index_ = sort_maak(privaat.s, "RMAKV");
  scr_intr_reset();  // breaking off an earlier list is no answer to this one
  DtSer rec{};
  const int8_t sleutel = dtser->block.key_number;
  IXSWITCH(dtser, KEY_MERK);
  rec.merk = merk;
  for (bool er = IXFIRSTR(dtser, &rec, 1); er && !scr_interrupted(); er = IXNEXT(dtser, &rec, 1)) {
    index_->record_no = dtser->record_no;
    IXADDKEYS(index_, &rec);
  }
  IXSWITCH(dtser, sleutel);
}

/// Stands on the first series of the model in model_rec: one identifier a model.
bool op_eerste(BrwRec* b) {
  DtSer rec{};
  rec.merk = model_rec.merk;
  memcpy(rec.model, model_rec.model, sizeof rec.model);
  if (!IXFIRSTK(index_, &rec, MODELVELDEN) || rec.merk != merk_nu) return false;
  model_rec = rec;
  b->current = static_cast<uint32_t>(index_->record_no);
  return true;
}

bool stap(BrwRec* b, int n) {
  if (b->current == UINT32_MAX) {
    model_rec = {};
    model_rec.merk = merk_nu;
  } else if (IXGET(dtser, &model_rec, static_cast<int32_t>(b->current)) != 1) {
    return false;
  }
  if (!op_eerste(b)) return false;
  for (int i = n; i != 0; i += i < 0 ? 1 : -1) {
    DtSer rec = model_rec;
    const bool er = n < 0 ? IXPREVK(index_, &rec, MODELVELDEN) : IXNEXTK(index_, &rec, MODELVELDEN);
    if (!er || rec.merk != merk_nu) return false;
    model_rec = rec;
    if (!op_eerste(b)) return false;
  }
  return true;
}
void zoek(BrwRec* b) {
  const int rij = brw_search_row();
  char tekst[16] = "";
  const int kol = 3 + scr_print(A_LABEL, rij, 2, "%s", txt(T_ZOEK_MODEL));
  INGAVE(rij, kol, "15s,IU", tekst);
  if (scr_ctx->last_key == K_F3) scr_ctx->ing_result |= ING_LEEG;
  if (weg_toets() || (scr_ctx->ing_result & ING_LEEG) != 0) return;
  const DtSer stond = model_rec;
  model_rec = {};
  model_rec.merk = merk_nu;
  veld_zet(model_rec.model, sizeof model_rec.model, tekst);
  if (!op_eerste(b)) model_rec = stond;
}
void kop(BrwRec*) {
  DtMerk merk{};
  lees_merk(dtmerk, &merk, merk_nu);
  scr_print(A_LABEL, 1, 2, "%s: %u %-20.20s", txt(T_ZOEK_KOP_MERK), merk_nu,
            veld_tekst(merk.naam, sizeof merk.naam));
}
const char* regel(BrwRec*) {
  str_printf(scr_klad, sizeof scr_klad, "%-32.15s",
             veld_tekst(model_rec.model, sizeof model_rec.model));
  return scr_klad;
}

}  // namespace

bool model_pick(uint16_t merk, char model[15]) {
  merk_nu = merk;
  vul_index(merk);
  BrwRec* b = brw_new(stap, zoek, kop, regel);
  bool gekozen = false;
  if (b != nullptr && !b->move(b, 0)) {
    msg_box(1, txt(T_ZOEK_SEL_MODEL), txt(T_ZOEK_GEEN), nullptr);
    brw_free(b);
  } else {
    gekozen = lijst_kies(b, txt(T_ZOEK_SEL_MODEL), T_ZOEK_GEEN);
  }
  if (gekozen) memcpy(model, model_rec.model, sizeof model_rec.model);
  IXCLOSE(index_);
  index_ = nullptr;
  IXREMOVE(privaat.s);
  return gekozen;
}
