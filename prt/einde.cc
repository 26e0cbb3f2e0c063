// The end of a report: its last lines, the preview, and the way to the printer.
#include <cstring>

#include "isam/base.h"
#include "isam/ix.h"
#include "prt/intern.h"
#include "prt/teksten.h"
#include "scr/scr.h"

bool prt_layout_te_lang = false;

namespace {

void toets_zet(int toets) {
  if (scr_ctx == nullptr) return;
  scr_ctx->last_key = toets;
  scr_ctx->ing_result = 0;
}

void sluit_spool() {
  std::fclose(prt_rec.spool);
  prt_rec.spool = nullptr;
}

// The pair of the report is gone by now: these lines go straight to the file.
void schrijf_onderbroken() {
  const std::string tekst = str_format("** %s **", txt(T_PRT_ONDERBROKEN));
  const std::string sterren(tekst.size(), '*');
  print_newline();
  print_newline();
  for (const std::string& regel : {sterren, tekst, sterren}) {
    prt_schrijf(regel);
    print_newline();
  }
}

// Closes the page and the file; false when there is nothing to print.
bool schrijf_einde() {
  std::fflush(prt_rec.spool);
  if (std::ftell(prt_rec.spool) <= prt_rec.text_start) {
    sluit_spool();
    file_delete(prt_rec.spool_name);
    return false;
  }
  if (prt_onderbroken()) schrijf_onderbroken();
  if (prt_rec.line_no > 1) prt_blad_sluit();
  prt_tekst_eind = static_cast<int32_t>(std::ftell(prt_rec.spool));
  std::fputs(prt_rec.stop_str, prt_rec.spool);
  sluit_spool();
  return true;
}

// A directory takes the file itself, once; all else is reached by a command.
void verstuur(const char* lp_opties) {
  if (prt_rec.is_aux != 0)
    prt_naar_poort();
  else if (prt_rec.is_lp != 0)
    prt_naar_lp(lp_opties);
  else if (prt_rec.to_dir != 0)
    prt_naar_map();
  else
    prt_naar_device();
}

}  // namespace

bool prt_onderbroken() { return scr_ctx != nullptr && scr_interrupted(); }

void print_end(const char* lp_opties) {
  toets_zet(TOETS_CANCEL);
  if (prt_rec.spool == nullptr) return;
  if (!schrijf_einde()) {
    prt_platen_weg();
    return;
  }
  const bool te_lang = prt_layout_te_lang;
  prt_layout_te_lang = false;
  if (te_lang) FFLASH(-1, 2, 0, txt(T_PRT_FOUT), txt(T_PRT_LAYOUT_LANG));
  const bool gezien = prt_rec.to_screen == 0 || scr_ctx == nullptr;
  if (te_lang || (!gezien && prt_preview() == 0)) {
    file_delete(prt_rec.spool_name);
    prt_platen_weg();
    toets_zet(TOETS_CANCEL);  // the fields of the preview had keys of their own
    return;
  }
  toets_zet(0);
  if (scr_ctx != nullptr) scr_intr_reset();
  if (prt_rec.is_lp != 0) prt_omzet();
  prt_platen_plaats();
  verstuur(lp_opties);
  prt_platen_weg();
  if (scr_ctx == nullptr) return;
  scr_flush(0);
  scr_intr_reset();
}
