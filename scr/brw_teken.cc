// Drawing a browse: the window, a page of lines with their marks, the line of the cursor.
//
// The identifiers of the page are kept, so that the cursor moves with two reads. A record that has
// gone since the page was drawn shows as an empty line.
#include <algorithm>
#include <cstring>

#include "scr/brw_intern.h"
#include "scr/teksten.h"

namespace {

constexpr int RIJ_STANDAARD = 3;
constexpr int RAND = 4;        // border, mark and one blank around a line
constexpr int ONDER_BLAD = 3;  // border, blank row, search row

int lengte(const char* tekst) { return tekst == nullptr ? 0 : static_cast<int>(strlen(tekst)); }

void maten(BrwRec* b) {
  const int lines = scr_ctx->lines, cols = scr_ctx->cols;
  if (b->row <= 0) b->row = RIJ_STANDAARD;
  b->row = std::max(1, std::min(b->row, lines - 5));
  if (b->width < 1) b->width = lengte(b->line(b)) + RAND;
  b->width = std::max(b->width, static_cast<int>(b->title.size()) + RAND);
  const int rechts = cols - b->width + 1;
  if (rechts < 1) b->width = cols;
  b->col = std::max(1, b->col > 0 ? std::min(b->col, rechts) : rechts);
  if (b->height <= 0) b->height = lines - 1 - b->row;
  b->height = std::min(b->height, lines - b->row);
}

void merk_teken(BrwRec* b, uint32_t id, int rij) {
  if (brw_marked(b, id)) {
    scr_pijl(A_LIJN | A_WAARDE, rij, 1, true);
  } else {
    scr_print(A_LABEL, rij, 1, " ");
  }
}

/// A line whose record has been read, or an empty one.
void regel_zet(BrwRec* b, const BrwBlad& blad, int index, bool gelezen) {
  const int rij = blad.eerste + index;
  const int breedte = win_width() - 1;
  b->line_row = rij;
  merk_teken(b, blad.ids[static_cast<size_t>(index)], rij);
  const char* const tekst = gelezen ? b->line(b) : "";
  scr_print(index == blad.cursor ? A_BALK : A_WAARDE, rij, 2, "%-*.*s", breedte, breedte,
            tekst == nullptr ? "" : tekst);
}

/// Goes to where a page begins: `terug` before `van`, or at `van`, or at what lies before it.
bool begin_zoek(BrwRec* b, uint32_t van, int terug) {
  b->current = van;
  if (terug < 0 && b->move(b, terug)) return true;
  b->current = van;
  if (b->move(b, 0)) return true;
  b->current = van;
  return b->move(b, -1);
}

}  // namespace

void brw_kop_teken(BrwRec* b) {
  if (b->heading == nullptr) return;
  scr_clreol(1, 1);
  b->heading(b);
}

void brw_venster(BrwRec* b, BrwBlad& blad) {
  maten(b);
  win_open1(b->row, b->col, b->height, b->width);
  win_title_tekst(b->title.c_str());
  blad.eerste = b->heading == nullptr ? 1 : 2;
  blad.regels = std::max(1, b->height - blad.eerste - ONDER_BLAD);
  brw_kop_teken(b);
}

void brw_regel_teken(BrwRec* b, const BrwBlad& blad, int index) {
  if (index < 0 || index >= static_cast<int>(blad.ids.size())) return;
  b->current = blad.ids[static_cast<size_t>(index)];
  regel_zet(b, blad, index, b->move(b, 0));
}

void brw_cursor_naar(BrwRec* b, BrwBlad& blad, int index) {
  const int oud = blad.cursor;
  blad.cursor = std::clamp(index, 0, std::max(0, static_cast<int>(blad.ids.size()) - 1));
  if (oud != blad.cursor) brw_regel_teken(b, blad, oud);
  brw_regel_teken(b, blad, blad.cursor);
}

bool brw_blad_teken(BrwRec* b, BrwBlad& blad, uint32_t van, int terug) {
  const bool gevonden = begin_zoek(b, van, terug);
  blad.ids.clear();
  if (!gevonden) {
    scr_clrbot(blad.eerste, 1);
    return false;
  }
  if (b->no_cursor != 0) blad.cursor = 0;
  bool nog = true;
  while (nog && static_cast<int>(blad.ids.size()) < blad.regels) {
    const uint32_t id = b->current;
    blad.ids.push_back(id);
    regel_zet(b, blad, static_cast<int>(blad.ids.size()) - 1, true);
    nog = b->move(b, 1) && b->current != id;
  }
  const int aantal = static_cast<int>(blad.ids.size());
  if (aantal < blad.regels) scr_clrbot(blad.eerste + aantal, 1);
  blad.cursor = std::clamp(blad.cursor, 0, aantal - 1);
  brw_regel_teken(b, blad, blad.cursor);
  return true;
}

bool brw_blad_opnieuw(BrwRec* b, BrwBlad& blad) {
  const std::vector<uint32_t> ids = blad.ids;
  for (const uint32_t id : ids) {
    b->current = id;
    if (b->move(b, 0)) return brw_blad_teken(b, blad, id, 0);
  }
  return !ids.empty() && brw_blad_teken(b, blad, ids.front(), 0);
}

int brw_search_row() { return win_height(); }

std::string fmt_col(int before, int width, int after) {
  const int breed = width < 0 ? -width : width;
  return std::string(static_cast<size_t>(std::max(0, before)), ' ') +
         str_format(width < 0 ? "%%-%d.%ds" : "%%%d.%ds", breed, breed) +
         std::string(static_cast<size_t>(std::max(0, after)), ' ');
}
