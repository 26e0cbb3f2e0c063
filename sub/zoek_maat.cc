// The size field and the lists of sizes and of size types.
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/iomaat_intern.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"
#include "sub/zoek.h"
#include "sub/zoek_lijst.h"

namespace {

constexpr int KEY_INDEX = 1, KEY_POSITIE = 2, KEY_TEKST = 3;

MaatRec maat_rec;

bool op_positie(MaatHandle* mt, uint32_t positie) {
  if (positie < 1 || positie > 95) return false;
  maat_rec.positie = static_cast<uint8_t>(positie);
  return mtread(mt, 'R', &maat_rec, KEY_POSITIE);
}

bool stap(BrwRec* b, int n) {
  auto* const mt = static_cast<MaatHandle*>(b->data);
  if (b->current == UINT32_MAX) {
    maat_rec.positie = 1;
    if (!mtread(mt, 'F', &maat_rec, KEY_POSITIE)) return false;
    b->current = maat_rec.positie;
  }
  if (!op_positie(mt, b->current)) return false;
  for (int i = n; i != 0; i += i < 0 ? 1 : -1) {
    // The bar is walked by position: going back wraps in the size list, not in this one.
    const uint32_t naar = n < 0 ? b->current - 1 : b->current + 1;
    if (!op_positie(mt, naar)) {
      op_positie(mt, b->current);
      return false;
    }
    b->current = naar;
  }
  return true;
}
void zoek(BrwRec* b) {
  auto* const mt = static_cast<MaatHandle*>(b->data);
  const int rij = brw_search_row();
  char tekst[3] = {0, 0, 0};
  const int kol = 3 + scr_print(A_LABEL, rij, 2, "%s", txt(T_ZOEK_MAAT));
  INGAVE(rij, kol, "3c,JI", tekst);
  if (scr_ctx->last_key == K_F3) scr_ctx->ing_result |= ING_LEEG;
  if (weg_toets() || (scr_ctx->ing_result & ING_LEEG) != 0) return;
  MaatRec rec{};
  memcpy(rec.tekst, tekst, sizeof rec.tekst);
  if (mtread(mt, 'F', &rec, KEY_TEKST)) b->current = rec.positie;
}
void kop(BrwRec*) {
  scr_print(A_LABEL, 1, 1, " %-5.5s %-7.7s", txt(T_ZOEK_KOP_MAAT), txt(T_ZOEK_KOP_OMSCHR));
}
const char* regel(BrwRec*) {
  str_printf(scr_klad, sizeof scr_klad, " %3.3s  %-7.7s",
             veld_tekst(maat_rec.tekst, sizeof maat_rec.tekst),
             veld_tekst(maat_rec.vertaling, sizeof maat_rec.vertaling));
  return scr_klad;
}

bool kies_maat(MaatHandle* mt, uint8_t* maat) {
  BrwRec* b = brw_new(stap, zoek, kop, regel);
  if (b == nullptr) return false;
  b->data = mt;
  MaatRec rec{};
  rec.maat = *maat;
  if (mtread(mt, 'R', &rec, KEY_INDEX)) b->current = rec.positie;
  if (!lijst_kies(b, txt(T_ZOEK_MAAT), T_ZOEK_GEEN)) return false;
  *maat = maat_rec.maat;
  return true;
}

/// Size texts stand at the right of their three places, whatever the field's options did.
void rechts(char (&tekst)[3]) {
  while (tekst[2] == 0) {
    tekst[2] = tekst[1];
    tekst[1] = tekst[0];
    tekst[0] = ' ';
  }
}

// Size types --------------------------------------------------------------------------------------

DtMaat soort_rec;
uint8_t land_nu;

bool soort_stap(BrwRec* b, int n) {
  if (b->current == UINT32_MAX) {
    soort_rec = {};
    soort_rec.land = land_nu;
    if (!IXFIRSTR(dtmaat, &soort_rec, 1)) return false;
    b->current = soort_rec.maatsoort;
  }
  soort_rec.land = land_nu;
  soort_rec.maatsoort = static_cast<uint8_t>(b->current);
  bool er = IXREAD(dtmaat, &soort_rec);
  for (int i = n; i != 0; i += i < 0 ? 1 : -1) {
    er = n < 0 ? IXPREV(dtmaat, &soort_rec, 1) : IXNEXT(dtmaat, &soort_rec, 1);
    if (!er) return false;
    b->current = soort_rec.maatsoort;
  }
  return er;
}
void soort_zoek(BrwRec* b) {
  const int rij = brw_search_row();
  uint8_t soort = 0;
  const int kol = 3 + scr_print(A_LABEL, rij, 2, "%s", txt(T_ZOEK_MAATSOORT));
  INGAVE(rij, kol, "3U,IP", &soort);
  if (scr_ctx->last_key == K_F3) scr_ctx->ing_result |= ING_LEEG;
  if (weg_toets() || (scr_ctx->ing_result & ING_LEEG) != 0) return;
  soort_rec.land = land_nu;
  soort_rec.maatsoort = soort;
  if (IXREAD(dtmaat, &soort_rec)) {
    b->current = soort;
  } else {
    scr_error("<%d> %s", soort, txt(T_ZOEK_MAATSOORT_FOUT));
  }
}
const char* soort_regel(BrwRec*) {
  std::string maten;
  for (int i = 1; i < MATEN && maten.size() < 40; ++i) {
    const std::string tekst =
        veld_tekst(soort_rec.ingang[i].tekst, sizeof soort_rec.ingang[i].tekst);
    if (!tekst.empty()) maten += tekst + " ";
  }
  str_printf(scr_klad, sizeof scr_klad, "%3d  %-40.40s", soort_rec.maatsoort, maten);
  return scr_klad;
}

}  // namespace

bool ing_maat(int row, int col, const char* opties, MaatHandle* mt, uint8_t* maat) {
  MaatRec rec{};
  if (!mtread(mt, 'F', &rec, KEY_INDEX)) {
    scr_error("<%d> %s", mt->maatsoort, txt(T_ZOEK_MAATSOORT_FOUT));
    return false;
  }
  const VeldToetsen toetsen;
  for (;;) {
    rec = {};
    rec.maat = *maat;
    char tekst[3] = {0, 0, 0};
    if (mtread(mt, 'R', &rec, KEY_INDEX)) memcpy(tekst, rec.tekst, sizeof tekst);
    toetsen.terug();
    INGAVE(row, col, str_format("3c,%s", opties).c_str(), &K_CANCEL, &K_F5, tekst);
    if (weg_toets()) return false;
    if (scr_ctx->last_key == K_F5) {
      if (!kies_maat(mt, maat)) continue;
      scr_print(A_WAARDE, row, col, "%3.3s", veld_tekst(maat_rec.tekst, sizeof maat_rec.tekst));
      return true;
    }
    if (tekst[0] == 0) {
      *maat = 0;
      return true;
    }
    rechts(tekst);
    memcpy(rec.tekst, tekst, sizeof rec.tekst);
    if (mtread(mt, 'R', &rec, KEY_TEKST)) {
      *maat = rec.maat;
      return true;
    }
    scr_error("<%.3s> %s", std::string_view(tekst, sizeof tekst), txt(T_ZOEK_MAAT_FOUT));
  }
}

int maatsoort_pick(uint8_t land) {
  land_nu = land;
  if (land == 0) {
    scr_error("<%d> %s", land, txt(T_ZOEK_MAATSTELSEL_FOUT));
    return -1;
  }
  BrwRec* b = brw_new(soort_stap, soort_zoek, nullptr, soort_regel);
  uint32_t keus = 0;
  return lijst_kies(b, txt(T_ZOEK_MAATSOORT), T_ZOEK_GEEN, &keus) ? static_cast<int>(keus) : -1;
}
