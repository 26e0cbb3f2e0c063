// Codes typed or scanned: the piece itself, and the question whether it may move, which the same
// code answers too. A scanner sends a code and Enter, then the next; nothing it sends ahead is
// lost.
#include <cstring>

#include "isam/base.h"
#include "scr/scr.h"
#include "sub/mut_intern.h"
#include "sub/teksten.h"
#include "sub/zoek_lijst.h"

namespace {

bool neem(MutIngang* in) {
  Etiketcode code{};
  if (!etikode_lees(in->code, &code)) return false;
  if (code.letter != 0 && code.letter != 'M' && code.letter != 'E') return false;
  in->soort = code.letter;
  in->nummer = code.nummer;
  return true;
}

/// The same label or size code may be typed in another of its forms.
bool zelfde(const MutIngang& in, const char* getypt) {
  MutIngang ander{};
  str_printf(ander.code, sizeof ander.code, "%s", getypt);
  str_trim(ander.code);
  if (str_format("%s", ander.code) == in.code) return true;
  return neem(&ander) && ander.soort == in.soort && in.soort != 'E' && ander.nummer == in.nummer;
}

/// A key that starts a code rather than answers yes or no.
bool begint_code(int toets) {
  if (toets >= '0' && toets <= '9') return true;
  return toets > ' ' && toets < 256 &&
         str_chr(static_cast<char>(chr_upper(static_cast<uint8_t>(toets))),
                 txt(T_ETIKODE_LETTERS)) >= 0;
}

int vraagrij() { return scr_ctx->lines - MUT_RIJ_VRAAG; }

/// The question with its mark; the column of the answer.
int toon_vraag(bool wijzigen) {
  scr_clreol(vraagrij(), 1);
  const int col = 1 + scr_print(A_LABEL, vraagrij(), 1, "%s", txt(T_MUT_AKKOORD));
  scr_print(A_WAARDE, vraagrij(), col, "_");
  if (wijzigen && scr_ctx->message[0] == 0) {
    const int na = scr_print(A_WAARDE, scr_ctx->lines, 1, "%s", txt(T_MUT_TAB));
    scr_print(A_LABEL, scr_ctx->lines, na + 2, "%s", txt(T_MUT_WIJZIG_STUKS));
  }
  scr_move(vraagrij(), col);
  return col;
}

/// The key behind the question, without its hint.
int lees_toets(bool wijzigen) {
  scr_busy_off();
  const int toets = key_read(nullptr);
  scr_busy_on();
  if (wijzigen && scr_ctx->message[0] == 0) scr_clreol(scr_ctx->lines, 1);
  scr_ctx->last_key = toets;
  return toets;
}

enum class Antwoord { ja, nee, opnieuw };

Antwoord lees_code(const MutIngang& in, int col) {
  char code[sizeof in.code] = "";
  INGAVE(vraagrij(), col, "13s,IU", &K_CANCEL, code);
  if (weg_toets()) return Antwoord::nee;
  if (zelfde(in, code)) return Antwoord::ja;
  scr_error("<%s> %s", code, txt(T_PG_INGAVE));
  return Antwoord::opnieuw;
}

Antwoord lees_antwoord(const MutIngang& in, const std::function<void()>& wijzig) {
  const bool wijzigen = static_cast<bool>(wijzig);
  const int col = toon_vraag(wijzigen);
  const int toets = lees_toets(wijzigen);
  if (toets < 0 || weg_toets()) return Antwoord::nee;
  if (toets == K_TAB && wijzigen) {
    wijzig();
    return Antwoord::opnieuw;
  }
  key_push(toets);
  if (begint_code(toets)) return lees_code(in, col);
  uint8_t ja = 0;
  INGAVE(vraagrij(), col, "b,I", &K_CANCEL, &ja);
  return !weg_toets() && ja != 0 ? Antwoord::ja : Antwoord::nee;
}

}  // namespace

bool mut_code(int row, int col, MutIngang* in) {
  const VeldToetsen toetsen;
  memset(in->code, 0, sizeof in->code);
  for (const char* formaat = "13s,EIU";; formaat = "13s,EU") {
    toetsen.terug();
    INGAVE(row, col, formaat, &K_CANCEL, in->code);
    if (weg_toets()) return false;
    str_trim(in->code);
    if (neem(in)) return true;
    scr_error("%s", txt(T_MUT_CODE_FOUT));
  }
}

bool mut_akkoord(const MutIngang& in, const std::function<void()>& wijzig) {
  const VeldToetsen toetsen;
  for (;;) {
    toetsen.terug();
    const Antwoord antwoord = lees_antwoord(in, wijzig);
    if (antwoord == Antwoord::ja) return true;
    if (antwoord == Antwoord::opnieuw) continue;
    scr_error("%s %s", mut_voor(in), txt(T_MUT_NIET_AKKOORD));
    return false;
  }
}
