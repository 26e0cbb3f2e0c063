// How a field looks: with underscores for the places to fill while it is edited, plain afterwards,
// and with arrows beside it where a scrolling field holds more than it shows.
#include <algorithm>

#include "scr/veld_intern.h"

namespace {

constexpr int A_PIJL = A_LABEL | A_LIJN;

/// The part of a text that stands on the screen, padded with blanks to its width.
std::string stuk(std::string_view tekst, int breedte) {
  const auto n = static_cast<size_t>(std::max(breedte, 0));
  std::string uit(tekst.substr(0, n));
  uit.resize(n, ' ');
  return uit;
}

void druk(int attr, int kolom, const std::string& tekst) {
  if (!tekst.empty()) scr_print_tekst(attr, scr_ctx->veld.row, kolom, tekst.c_str());
}

/// A field without a visible width shows nothing, arrows included.
void pijlen(bool links, bool rechts) {
  const IngVeld& v = scr_ctx->veld;
  if (v.zichtbaar <= 0) return;
  const int voor = v.col - 1;
  const int achter = v.col + v.zichtbaar;
  if (links) {
    scr_pijl(A_PIJL, v.row, voor, false);
  } else {
    druk(A_LABEL, voor, " ");
  }
  if (rechts) {
    scr_pijl(A_PIJL, v.row, achter, true);
  } else {
    druk(A_LABEL, achter, " ");
  }
}

/// The content as it is edited: underscores for what is not filled, separators from the start.
std::string met_strepen() {
  const VeldFormaat& f = veld_werk.formaat;
  std::string uit;
  if (!scr_ctx->veld.verborgen) uit = veld_inhoud();
  const size_t n = uit.size();
  uit.resize(static_cast<size_t>(f.lengte), '_');
  if (f.sjabloon() && !scr_ctx->veld.verborgen) {
    for (const size_t plaats : {size_t{2}, size_t{5}}) {
      if (plaats >= n) uit[plaats] = '-';
    }
  }
  return uit;
}

/// Moves the visible part of a scrolling field after its cursor, a third of the width at a time.
void volg_cursor() {
  const IngVeld& v = scr_ctx->veld;
  int& schuif = veld_werk.schuif;
  if (!v.scrollt || v.zichtbaar <= 0) {
    schuif = 0;
    return;
  }
  const int stap = std::max(v.zichtbaar / 3, 1);
  const int verste = std::max(v.length - v.zichtbaar, 0);
  if (veld_werk.cursor >= schuif + v.zichtbaar) {
    while (veld_werk.cursor >= schuif + v.zichtbaar && schuif < verste) schuif += stap;
    schuif = std::min(schuif, verste);
  } else {
    while (veld_werk.cursor <= schuif && schuif > 0) schuif = std::max(schuif - stap, 0);
  }
}

}  // namespace

void veld_teken() {
  const IngVeld& v = scr_ctx->veld;
  volg_cursor();
  const std::string beeld = met_strepen();
  if (v.scrollt) {
    const auto van = std::min(static_cast<size_t>(veld_werk.schuif), beeld.size());
    druk(A_WAARDE, v.col, stuk(std::string_view(beeld).substr(van), v.zichtbaar));
    const int eind = veld_werk.schuif + v.zichtbaar;
    pijlen(veld_werk.schuif > 0, !v.verborgen && std::ssize(veld_inhoud()) > eind);
  } else {
    druk(A_WAARDE, v.col, beeld);
  }
  veld_plaats_cursor();
}

void veld_teken_klaar() {
  const IngVeld& v = scr_ctx->veld;
  const VeldFormaat& f = veld_werk.formaat;
  std::string tekst;
  if (!v.verborgen) tekst = f.sjabloon() ? datum_met_streep(veld_inhoud()) : veld_inhoud();
  druk(A_WAARDE, v.col, stuk(tekst, v.scrollt ? v.zichtbaar : v.length));
  if (v.scrollt) pijlen(false, false);
}

void veld_plaats_cursor() {
  const IngVeld& v = scr_ctx->veld;
  scr_move(v.row, v.col + veld_werk.cursor - veld_werk.schuif);
}
