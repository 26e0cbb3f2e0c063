// The browser over the terminal records. It works on a copy of its own, with code and password in
// plain text.
#include "main/gebruikers.h"

#include <cstring>
#include <ctime>
#include <string>

#include "isam/base.h"
#include "main/controle.h"
#include "main/teksten.h"
#include "scr/scr.h"

namespace {

struct Lijst {
  int32_t nummer;  // of the record held
  TerminalRec rec;
  std::string code, wachtwoord;
  int vlaggen;
};
Lijst lijst;

constexpr uint8_t STATUS_NIET = 0, STATUS_MISLUKT = 5;
constexpr int TIJD_BEGIN = 11, TIJD_LENGTE = 5;  // HH:MM within the text of ctime

bool lees(char actie) {
  if (!iotab(actie, &lijst.nummer, &lijst.rec, SYS_TERMINALS)) return false;
  lijst.code = unscramble_veld(lijst.rec.gebruiker, sizeof lijst.rec.gebruiker);
  lijst.wachtwoord = unscramble_veld(lijst.rec.wachtwoord, sizeof lijst.rec.wachtwoord);
  return true;
}

bool user_step(BrwRec* b, int n) {
  if (b->current == UINT32_MAX) b->current = static_cast<uint32_t>(lijst.nummer);
  lijst.nummer = static_cast<int32_t>(b->current);
  lees('R');
  for (int i = n; i != 0 && lees(n > 0 ? 'N' : 'P'); i += n > 0 ? -1 : 1)
    b->current = static_cast<uint32_t>(lijst.nummer);
  // At an end the record number has run off the table; the last one reached is held again.
  const bool gelijk = b->current == static_cast<uint32_t>(lijst.nummer);
  if (!gelijk) {
    lijst.nummer = static_cast<int32_t>(b->current);
    lees('R');
  }
  return gelijk;
}

void user_search(BrwRec* b) {
  char tekst[8] = "";
  const int rij = brw_search_row();
  const int kol = scr_print(A_LABEL, rij, 2, "%s", txt(T_GEBRUIKERSCODE)) + 3;
  INGAVE(rij, kol, "6s,UI", tekst);
  if (scr_ctx->last_key == K_F3) scr_ctx->ing_result |= ING_LEEG;
  if (weg_toets() || (scr_ctx->ing_result & ING_LEEG) != 0) return;
  lijst.nummer = 1;
  bool er = lees('F');
  while (er && lijst.code.compare(0, strlen(tekst), tekst) != 0) er = lees('N');
  if (!er) {
    lijst.nummer = SYS_TERMINALS.aantal;
    if (!lees('R')) lees('P');
  }
  b->current = static_cast<uint32_t>(lijst.nummer);
}

void user_head(BrwRec*) {
  std::string kop = (lijst.vlaggen & GEBRUIKERS_LANG) != 0
                        ? str_format("%-6.6s %-2.2s %-8.8s  %-20.20s", txt(T_GEBR_CODE),
                                     txt(T_GEBR_NR), txt(T_GEBR_WACHTWRD), txt(T_GEBR_STATUS))
                        : str_format("%-25.25s", txt(T_GEBR_CODE));
  scr_print(A_LABEL, 1, 2, "%s  %s", kop, txt(T_GEBR_DATUM_TIJD));
}

const char* status_tekst() {
  if (lijst.nummer == session_terminal) return txt(T_GEBR_SYSTEEMBEHEER);
  if (lijst.rec.status == STATUS_NIET) return txt(T_GEBR_NIET_ACTIEF);
  if (lijst.rec.status == STATUS_MISLUKT) return txt(T_GEBR_MISLUKT);
  int32_t nummer = lijst.nummer;
  return txt(iotab('T', &nummer, nullptr, SYS_TERMINALS) ? T_GEBR_AFGEBROKEN : T_GEBR_ACTIEF);
}

const char* user_line(BrwRec*) {
  std::string regel = (lijst.vlaggen & GEBRUIKERS_LANG) != 0
                          ? str_format("%-6.6s %2ld %-8.8s  %-20.20s", lijst.code, lijst.nummer,
                                       lijst.wachtwoord, status_tekst())
                          : str_format("%-25.25s", lijst.code);
  if (lijst.rec.moment != 0) {
    const auto moment = static_cast<time_t>(lijst.rec.moment);
    char tekst[32] = "";
    ctime_r(&moment, tekst);
    regel += str_format("  %s %s", date_show(lijst.rec.datum),
                        std::string(tekst).substr(TIJD_BEGIN, TIJD_LENGTE));
  } else {
    regel += std::string(2 + 14, ' ');
  }
  str_printf(scr_klad, sizeof scr_klad, "%s", regel);
  return scr_klad;
}

void meld_geen() {
  const Venster venster(scr_ctx->lines - 4, 21, 4, 40, 2);
  win_title(nullptr);
  scr_print(A_WAARDE, 1, 2, "%s", txt(T_GEBR_GEEN));
  scr_enter(2, 2);
}

}  // namespace

bool user_pick(int32_t* number, int flags) {
  lijst = {};
  lijst.vlaggen = flags;
  lijst.nummer = 1;
  if (!lees('F')) {
    lijst.nummer = 1;
    if (!lees('P')) {
      meld_geen();
      return false;
    }
  }
  BrwRec* b = brw_new(user_step, user_search, user_head, user_line);
  b->title = str_format(" %s ", txt(T_GEBR_SELECTEREN));
  b->current = static_cast<uint32_t>(*number > 0 ? *number : lijst.nummer);
  const int gekozen = brw_run(b, 0);
  if (gekozen != 0) *number = static_cast<int32_t>(b->current);
  brw_free(b);
  return gekozen != 0;
}

void gebruikers_lijst() {
  int32_t nummer = 0;
  while (user_pick(&nummer, GEBRUIKERS_LANG)) continue;
}
