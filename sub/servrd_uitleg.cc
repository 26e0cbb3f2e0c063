// Why a cell of the advice is what it is: the lines of its explanation in a window.
#include <algorithm>

#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/servrd_intern.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int BREEDTE = 76, RIJ = 3;

void toon(const std::vector<std::string>& regels, int boven) {
  const int hoogte = win_height() - 1;  // the last row says what the marks mean
  for (int r = 0; r < hoogte; ++r) {
    scr_clreol(r + 1, 1);
    const int i = boven + r;
    if (i >= static_cast<int>(regels.size())) continue;
    scr_print(A_WAARDE, r + 1, 2, "%s", regels[static_cast<size_t>(i)]);
  }
  scr_print(A_LABEL, hoogte + 1, 2, "%s", txt(T_SVD_MERKEN));
}

/// The first line after a key, -1 for a key that closes.
int geschoven(int toets, int boven, int hoogte, int laatste) {
  if (laatste <= 0) return -1;
  const int stap = toets == K_UP     ? -1
                   : toets == K_DOWN ? 1
                   : toets == K_PGUP ? -hoogte
                   : toets == K_PGDN ? hoogte
                                     : 0;
  return stap == 0 ? -1 : std::clamp(boven + stap, 0, laatste);
}

}  // namespace

void svd_uitleg(Svd& s) {
  const MaatMatrix* const r = svd_uitkomst(s.zicht);
  const size_t maat = svd_cel(s.maat);
  if (r == nullptr || maat == 0 || s.fil >= advies.filialen()) return;
  const std::vector<std::string> regels = adv_uitleg(advies, *r, adv_rec, svd_vraag(s.slot), s.fil,
                                                     static_cast<int>(maat), BREEDTE - 4);
  const int hoog = std::min(static_cast<int>(regels.size()) + 3, scr_ctx->lines - RIJ - 1);
  const Venster venster(scr_ctx->lines - hoog, 3, hoog, BREEDTE);
  const std::string titel = str_format(txt(T_SVD_UITLEG), s.fil, svd_maattekst(s.maat));
  win_title(" %s ", titel);
  const int hoogte = std::max(win_height() - 1, 1);
  const int laatste = static_cast<int>(regels.size()) - hoogte;
  scr_cursor(false);
  for (int boven = 0; boven >= 0;) {
    toon(regels, boven);
    boven = geschoven(key_read(nullptr), boven, hoogte, laatste);
  }
  scr_cursor(true);
}
