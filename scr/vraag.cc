// One key out of a few, and yes or no.
#include <cstring>
#include <string>

#include "scr/veld_intern.h"

int scr_getkey_kern(std::span<int32_t* const> toetsen, const char* tekens) {
  for (const int32_t* toets : toetsen) key_allow(*toets);
  for (const char* c = tekens; c != nullptr && *c != '\0'; ++c) {
    key_allow(static_cast<unsigned char>(*c));
  }
  scr_ctx->ing_result = 0;
  scr_busy_off();
  scr_cursor(false);
  int toets;
  do {
    toets = veld_lees_toets();
  } while (!key_allowed(toets));
  scr_cursor(true);
  scr_busy_on();
  if (key_is_exit(toets)) scr_ctx->ing_result |= ING_LEEG;
  scr_ctx->last_key = toets;
  ing_leeg();
  return toets;
}

namespace {

/// Takes "[+]", "[-]" or a letter in brackets, with a comma or not, off the front. True when the
/// question has a default.
bool neem_standaard(std::string_view& vraag, uint8_t& antwoord) {
  if (vraag.size() < 3 || vraag[0] != '[' || vraag[2] != ']') return false;
  const bool ja = vraag[1] == '+' || vraag[1] == txt(T_JA)[0];
  if (!ja && vraag[1] != '-' && vraag[1] != txt(T_NEE)[0]) return false;
  antwoord = ja ? 1 : 0;
  vraag.remove_prefix(3);
  if (!vraag.empty() && vraag.front() == ',') vraag.remove_prefix(1);
  return true;
}

}  // namespace

bool scr_confirm_tekst(int row, int col, const char* tekst) {
  uint8_t antwoord = 0;
  std::string_view vraag = tekst == nullptr ? "" : tekst;
  const bool standaard = neem_standaard(vraag, antwoord);
  if (vraag.empty()) vraag = txt(T_AKKOORD);
  scr_clreol(row, col);
  const int breedte =
      scr_print(A_LABEL, row, col, "%s? (%c/%c)", vraag, txt(T_JA)[0], txt(T_NEE)[0]);
  INGAVE(row, col + breedte + 1, standaard ? "b,/E" : "b,/EI", &K_CANCEL, &antwoord);
  return !weg_toets() && antwoord != 0;
}
