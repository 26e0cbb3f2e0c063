// Drawing the preview, and its entry windows.
#include <algorithm>
#include <new>
#include <string>

#include "prt/prt.h"
#include "prt/teksten.h"
#include "prt/voorbeeld.h"
#include "scr/scr.h"

namespace {

// One row, filled to the edge so that nothing of the screen before it stays.
void regel_teken(const Voorbeeld& v, int attr, int rij, const std::string& regel) {
  const size_t vanaf = std::min(static_cast<size_t>(v.kolom), regel.size());
  scr_print(attr, rij, 1, "%-*.*s", scr_ctx->cols, scr_ctx->cols, regel.c_str() + vanaf);
}

void slotrij_teken(Voorbeeld& v) {
  const int rij = scr_ctx->lines;
  scr_clreol(rij, 1);
  int kolom = 1;
  if (bladen_op(v.bladen)) kolom += 1 + scr_print(A_BALK, rij, 1, "%s", txt(T_PRT_EINDE_OVERZICHT));
  scr_print(A_LABEL, rij, kolom, "(%-.12s %d %-.12s %d)", txt(T_PRT_BLAD), v.bladen.blad,
            txt(T_PRT_VAN), v.bladen.bladen);
}

std::string regelbuffer(int breedte) {
  std::string regel;
  try {
    regel.reserve(static_cast<size_t>(std::max(breedte, 1)));
  } catch (const std::exception&) {
    scr_abort(txt(T_PRT_SCR), txt(T_PRT_GEHEUGEN));
  }
  return regel;
}

}  // namespace

void voorbeeld_teken(Voorbeeld& v, int kopregels) {
  const int rijen = scr_ctx->lines - 1;
  const int kop = std::min(kopregels, rijen - 1);
  std::string regel = regelbuffer(v.breedte);
  std::fseek(v.bladen.bestand, v.bladen.blad_plek, SEEK_SET);
  int rij = 1;
  for (; rij <= kop && bladen_regel(v.bladen, regel); ++rij) regel_teken(v, A_BALK, rij, regel);
  if (!v.eerste) std::fseek(v.bladen.bestand, v.scherm_plek, SEEK_SET);
  for (; rij <= rijen && bladen_regel(v.bladen, regel); ++rij) regel_teken(v, 0, rij, regel);
  v.na_plek = std::ftell(v.bladen.bestand);
  v.meer = bladen_meer(v.bladen);
  for (; rij <= rijen; ++rij) scr_clreol(rij, 1);
  slotrij_teken(v);
}

void voorbeeld_verder(Voorbeeld& v) {
  if (v.meer) {
    v.eerste = false;
    v.scherm_plek = v.na_plek;
  } else if (bladen_verder(v.bladen)) {
    v.eerste = true;
  }
}

int voorbeeld_over(const Voorbeeld& v) { return std::max(0, v.breedte - scr_ctx->cols); }

int voorbeeld_vraag(const char* titel, const char* label, int cijfers, int waarde) {
  int16_t getal = static_cast<int16_t>(std::clamp(waarde, 0, 9999));
  const Venster venster(18, 41, 3, 40, 2);
  win_title("%s", titel);
  const int breed = *label == 0 ? 0 : scr_print(A_LABEL, 1, 2, "%s ", label);
  INGAVE(1, 2 + breed, str_format("%dd,P", cijfers).c_str(), &K_CANCEL, &getal);
  return weg_toets() ? 0 : getal;
}
