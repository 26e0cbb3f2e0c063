// What the program says to the operator: the header bar, the message line, and boxes that wait.
#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "isam/base.h"
#include "isam/ix.h"
#include "scr/scr_intern.h"
#include "scr/teksten.h"

namespace {

constexpr int VRAAG_STAART = 9;  // "? (J/N) " and the answer

std::string balk_titel;  // the program's title
std::string balk_tekst;  // what the bar last said before it

std::string blanks(int n) { return std::string(static_cast<size_t>(std::max(n, 0)), ' '); }
int lengte(const std::string& s) { return static_cast<int>(s.size()); }

}  // namespace

void melding_begin() { balk_tekst.clear(); }

void scr_error_tekst(const char* tekst) {
  if (scr_ctx == nullptr) {
    if (*tekst != 0) scr_print_tekst(A_WAARDE, 1, 1, tekst);
    return;
  }
  if (scr_stil()) return;
  const int oud = static_cast<int>(std::string_view(scr_ctx->message).size());
  if (oud == 0 && *tekst == 0) return;
  const std::string nieuw = std::string(tekst).substr(
      0, std::min(static_cast<size_t>(scr_ctx->cols), sizeof scr_ctx->message - 1));
  {
    const OpBasis basis;
    if (oud > 0) scr_print(A_WAARDE, scr_ctx->lines, 1, "%-*.*s", oud, oud, "");
    if (!nieuw.empty()) scr_print_tekst(A_WAARDE, scr_ctx->lines, 1, nieuw.c_str());
  }
  veld_zet(scr_ctx->message, sizeof scr_ctx->message, nieuw);
  scr_toon();
  if (!nieuw.empty()) scr_beep();
}

void hdr_line_tekst(char mode, const char* tekst) {
  if (scr_stil()) return;
  balk_tekst = tekst;
  std::string balk = balk_tekst;
  if (!balk.empty()) balk[0] = static_cast<char>(chr_upper(static_cast<uint8_t>(balk[0])));
  if (!balk.empty() && !balk_titel.empty()) balk += " * ";
  balk += balk_titel;
  const OpBasis basis;
  if (mode == 'C') {
    scr_clrbot(1, 1);
    scr_ctx->message[0] = 0;
  } else {
    scr_clreol(1, 1);
  }
  const int breed = scr_ctx->cols - 2;
  scr_print(A_BALK, 1, 1, " %-*.*s ", breed, breed, balk);
}

void hdr_title(const char* tekst) {
  char titel[41];
  str_printf(titel, sizeof titel, "%-.40s", tekst);
  balk_titel = str_trim(titel);
  hdr_line_tekst('E', "");
  scr_flush(0);
}

void hdr_repaint() { hdr_line_tekst('E', std::string(balk_tekst).c_str()); }

void scr_enter(int row, int col) {
  if (scr_stil()) return;
  scr_clreol(row, col);
  scr_print_tekst(A_LABEL, row, col, txt(T_ENTER_VERVOLG));
  key_allow(TOETS_ENTER);
  scr_getkey("");
}

void msg_box(int kind, const char* t1, const char* t2, const char* t3) {
  std::vector<std::string> regels;
  for (const char* t : {t1, t2, t3})
    if (t != nullptr) regels.push_back(t);
  if (scr_ctx == nullptr) {
    for (const std::string& r : regels) scr_print_tekst(A_WAARDE, 1, 1, r.c_str());
    return;
  }
  if (scr_stil()) return;
  int breed = static_cast<int>(std::string_view(txt(T_ENTER_VERVOLG)).size());
  for (const std::string& r : regels) breed = std::max(breed, lengte(r));
  breed = std::min(breed + 4, 80);
  const int hoog = static_cast<int>(regels.size()) + 3;
  if (kind == 2 || kind == 3) scr_beep();
  const Venster venster(scr_ctx->lines - 1 - hoog, (80 - breed) / 2 + 1, hoog, breed);
  if (kind == 3)
    win_title(" %s ", txt(T_WAARSCHUWING));
  else
    win_title(nullptr);
  for (size_t i = 0; i < regels.size(); ++i)
    scr_print_tekst(A_WAARDE, static_cast<int>(i) + 1, 2, regels[i].c_str());
  scr_enter(hoog - 2, 2);
}

int scr_doos(int optie, int soort, const char* titel, const char* tekst) {
  if (scr_ctx == nullptr) return IX_HOOKS_KAAL.doos(optie, soort, titel, tekst);
  if (scr_stil()) return 0;
  FlashVorm vorm = fflash_vorm(optie, titel, tekst);
  const bool vraag = optie == -2 && vorm.aantal > 0;
  if (vraag) {  // the answer has to have a place behind the question
    const int plaats = static_cast<int>(std::strlen(vorm.regels[--vorm.aantal])) + VRAAG_STAART;
    vorm.breedte = std::max({vorm.breedte, 32, plaats + 4});
  }
  const int hoog = vorm.aantal + (optie < 0 ? 3 : 2);
  const int breed = std::min(vorm.breedte, scr_ctx->cols);
  const IngBewaar bewaar;  // the engine may ask between two steps of a caller's field
  const Venster venster((scr_ctx->lines - hoog) / 2 + 1, (scr_ctx->cols - breed) / 2 + 1, hoog,
                        breed,
                        soort == 1   ? 3
                        : soort == 2 ? 2
                                     : 1);
  win_title_tekst(vorm.titel);
  for (int i = 0; i < vorm.aantal; ++i) scr_print_tekst(A_WAARDE, i + 1, 2, vorm.regels[i]);
  if (vraag) return scr_confirm_tekst(win_height(), 2, vorm.regels[vorm.aantal]) ? 1 : 0;
  if (optie == -1)
    scr_enter(win_height(), 2);
  else
    scr_flush(optie);
  return 0;
}

void scr_regel(const char* tekst, int seconden) {
  if (scr_stil()) return;
  if (seconden <= 0 || scr_ctx->win_count >= SCR_VENSTERS) return scr_error_tekst(tekst);
  {
    const Venster venster(scr_ctx->lines, 1, 1, scr_ctx->cols);
    scr_print_tekst(A_WAARDE, 1, 1, tekst);
    scr_flush(seconden);
  }
  scr_flush(0);
}

namespace {
constexpr int BALK_CELLEN = 50;
int voortgang_procent = -1;  // -1: no bar open
int voortgang_plaats = 0;    // its window on the stack

void voortgang_teken(int procent) {
  const int cellen = procent * BALK_CELLEN / 100;
  scr_print_tekst(A_BALK, 2, 2, blanks(cellen).c_str());
  scr_print(A_WAARDE, 3, 24, "%3d %%", procent);
  scr_flush(0);
  voortgang_procent = procent;
}
}  // namespace

void scr_voortgang(const char* titel, int64_t deel, int64_t geheel) {
  if (scr_stil()) return;
  // A bar whose window went with the screen, or with an abort, is no bar any more.
  if (voortgang_procent >= 0 && scr_ctx->win_count <= voortgang_plaats) voortgang_procent = -1;
  if (titel != nullptr && voortgang_procent < 0) {
    voortgang_plaats = scr_ctx->win_count;
    win_open2(scr_ctx->lines / 2 - 2, (scr_ctx->cols - 54) / 2 + 1, 5, 54);
    win_title_tekst(std::string(titel).substr(0, 52).c_str());
    voortgang_teken(0);
  }
  if (voortgang_procent < 0 || scr_ctx->win_cur != voortgang_plaats) return;
  if (titel == nullptr && geheel == 0) {
    win_close();
    voortgang_procent = -1;
  } else if (geheel > 0) {
    const int procent = static_cast<int>(std::clamp<int64_t>(deel, 0, geheel) * 100 / geheel);
    if (procent != voortgang_procent) voortgang_teken(procent);
  }
}
