// The record browser: paging, searching, marking, and handing out what was chosen.
//
// The browser reads nothing itself. It keeps no locks either, so a record may vanish between two
// calls of `move`; a list that has been emptied under it ends itself.
#include "scr/brw_intern.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "scr/teksten.h"

namespace {

constexpr int FASE_VOOR = 0, FASE_EERSTE = 1, FASE_VERDER = 2;
constexpr int TERUGSPOEL = 15;
constexpr int MARKEN_ERBIJ = 64;

enum class Uitkomst { verder, gekozen, niets };

int merk_plaats(const BrwRec* b, uint32_t id) {
  for (int i = 0; i < b->mark_count; ++i) {
    if (b->marks[i] == id) return i;
  }
  return -1;
}

void merk_weg(BrwRec* b, int plaats) {
  --b->mark_count;
  memmove(b->marks + plaats, b->marks + plaats + 1,
          static_cast<size_t>(b->mark_count - plaats) * sizeof *b->marks);
}

void merken_leeg(BrwRec* b) {
  b->mark_count = 0;
  b->inverted = 0;
}

// Moving about ------------------------------------------------------------------------------------

void omlaag(BrwRec* b, BrwBlad& blad) {
  const int aantal = static_cast<int>(blad.ids.size());
  if (b->no_cursor != 0) {
    b->current = blad.ids.front();
    if (b->move(b, 1)) brw_blad_teken(b, blad, b->current, 0);
  } else if (blad.cursor + 1 < aantal) {
    brw_cursor_naar(b, blad, blad.cursor + 1);
  } else if (aantal == blad.regels) {
    b->current = blad.ids.back();
    if (b->move(b, 1)) brw_blad_teken(b, blad, aantal > 1 ? blad.ids[1] : b->current, 0);
  }
}

void omhoog(BrwRec* b, BrwBlad& blad) {
  if (blad.cursor > 0) {
    brw_cursor_naar(b, blad, blad.cursor - 1);
    return;
  }
  b->current = blad.ids.front();
  if (b->move(b, -1)) brw_blad_teken(b, blad, blad.ids.front(), -1);
}

void blad_verder(BrwRec* b, BrwBlad& blad) {
  b->current = blad.ids.back();
  if (b->move(b, 1)) brw_blad_teken(b, blad, b->current, 0);
}

void blad_terug(BrwRec* b, BrwBlad& blad) {
  const uint32_t eerste = blad.ids.front();
  b->current = eerste;
  b->move(b, -blad.regels);  // as far as it goes: `current` follows each step
  if (b->current == eerste) {
    brw_cursor_naar(b, blad, 0);
  } else {
    brw_blad_teken(b, blad, b->current, 0);
  }
}

void merk_wissel(BrwRec* b, BrwBlad& blad) {
  const uint32_t id = blad.ids[static_cast<size_t>(blad.cursor)];
  if (const int plaats = merk_plaats(b, id); plaats >= 0) {
    merk_weg(b, plaats);
  } else {
    brw_mark_add(b, id);
  }
  brw_regel_teken(b, blad, blad.cursor);
  omlaag(b, blad);
}

void omkeren(BrwRec* b, BrwBlad& blad) {
  b->inverted = b->inverted == 0;
  brw_blad_opnieuw(b, blad);
}

void merken_wissen(BrwRec* b, BrwBlad& blad) {
  merken_leeg(b);
  brw_blad_opnieuw(b, blad);
}

/// The record under the cursor on top. The search field may have changed the order of the list, so
/// the headings come anew.
void cursor_boven(BrwRec* b, BrwBlad& blad) {
  const uint32_t id = blad.ids[static_cast<size_t>(blad.cursor)];
  blad.cursor = 0;
  brw_kop_teken(b);
  brw_blad_teken(b, blad, id, 0);
}

constexpr int TAB = 9, F6 = TOETS_F1 + 5, F7 = TOETS_F1 + 6, F10 = TOETS_F1 + 9;
struct ToetsRij {
  int toets;
  bool merkt;  // only where marking is allowed
  void (*doe)(BrwRec*, BrwBlad&);
};
constexpr ToetsRij TOETSEN[] = {
    {TOETS_UP, false, omhoog},        {TOETS_DOWN, false, omlaag}, {TOETS_PGUP, false, blad_terug},
    {TOETS_PGDN, false, blad_verder}, {TAB, false, cursor_boven},  {F6, true, omkeren},
    {F7, true, merk_wissel},          {F10, true, merken_wissen},
};

// One turn of the screen --------------------------------------------------------------------------

/// The search has positioned on something: the page is drawn anew as `draw_mode` asks.
bool gezocht(BrwRec* b, BrwBlad& blad) {
  const uint32_t doel = b->current;
  switch (b->draw_mode) {
    case 1:
    case 8: {
      const bool gelukt = brw_blad_teken(b, blad, doel, -1);
      const auto i = std::find(blad.ids.begin(), blad.ids.end(), doel);
      if (gelukt && i != blad.ids.end()) {
        brw_cursor_naar(b, blad, static_cast<int>(i - blad.ids.begin()));
      }
      return gelukt;
    }
    case 0:
    case 4: {
      const auto i = std::find(blad.ids.begin(), blad.ids.end(), doel);
      if (i != blad.ids.end()) {
        blad.cursor = static_cast<int>(i - blad.ids.begin());
        return brw_blad_opnieuw(b, blad);
      }
      [[fallthrough]];
    }
    default:
      blad.cursor = 0;
      return brw_blad_teken(b, blad, doel, 0);
  }
}

/// Picking: without any mark it is the record under the cursor.
Uitkomst kies(BrwRec* b, const BrwBlad& blad) {
  if (b->mark_count == 0 && b->inverted == 0) {
    brw_mark_add(b, blad.ids[static_cast<size_t>(blad.cursor)]);
  }
  return Uitkomst::gekozen;
}

Uitkomst leeg_veld(BrwRec* b, BrwBlad& blad) {
  const int toets = scr_ctx->last_key;
  if (toets == K_F3) return kies(b, blad);
  if (toets == TOETS_ENTER) {
    return b->multi != 0 && b->mark_count != 0 ? Uitkomst::verder : kies(b, blad);
  }
  for (const ToetsRij& rij : TOETSEN) {
    if (toets != rij.toets) continue;
    if (!rij.merkt || b->multi != 0) rij.doe(b, blad);
    return Uitkomst::verder;
  }
  // A key of the search field's own that went somewhere else.
  if (b->current != blad.ids[static_cast<size_t>(blad.cursor)]) gezocht(b, blad);
  return Uitkomst::verder;
}

void toetsen_toe(const BrwRec* b) {
  for (const int toets : {K_UP, K_DOWN, K_PGUP, K_PGDN, K_CANCEL, K_F3}) key_allow(toets);
  if (b->multi == 0) return;
  for (const int toets : {K_F6, K_F7, K_F10}) key_allow(toets);
}

/// The screen from the first page to the choice; true when something was chosen.
bool scherm(BrwRec* b) {
  BrwBlad blad;
  brw_venster(b, blad);
  const int wijze = b->draw_mode;
  Uitkomst uitkomst = Uitkomst::verder;
  gezocht(b, blad);
  while (uitkomst == Uitkomst::verder) {
    const bool geleegd = blad.ids.empty();
    if (geleegd) {
      key_push(K_ESC);  // the search field ends on it, and so does the browse
    } else {
      b->current = blad.ids[static_cast<size_t>(blad.cursor)];
      b->move(b, 0);
    }
    b->draw_mode = wijze;
    toetsen_toe(b);
    b->search(b);
    if (geleegd || weg_toets()) {
      uitkomst = Uitkomst::niets;
    } else if ((scr_ctx->ing_result & ING_LEEG) == 0) {
      gezocht(b, blad);
    } else {
      uitkomst = leeg_veld(b, blad);
    }
  }
  b->draw_mode = wijze;
  if (uitkomst == Uitkomst::niets) merken_leeg(b);
  win_close();
  return uitkomst == Uitkomst::gekozen;
}

// Handing out the choice --------------------------------------------------------------------------

int lever_merken(BrwRec* b) {
  while (b->mark_count > 0) {
    b->current = b->marks[0];
    merk_weg(b, 0);
    if (!b->move(b, 0)) continue;
    b->phase = b->multi != 0 ? FASE_VERDER : FASE_VOOR;
    return 1;
  }
  b->phase = FASE_VOOR;
  return 0;
}

bool terugspoelen(BrwRec* b) {
  for (;;) {
    const uint32_t hier = b->current;
    if (!b->move(b, -TERUGSPOEL) || b->current == hier) return b->move(b, 0);
  }
}

int lever_rest(BrwRec* b) {
  bool er = b->phase == FASE_EERSTE ? terugspoelen(b) : b->move(b, 1);
  b->phase = FASE_VERDER;
  while (er) {
    const int plaats = merk_plaats(b, b->current);
    if (plaats < 0) return 1;
    merk_weg(b, plaats);
    er = b->move(b, 1);
  }
  b->phase = FASE_VOOR;
  return 0;
}

}  // namespace

BrwRec* brw_new(bool (*move)(BrwRec*, int), void (*search)(BrwRec*), void (*heading)(BrwRec*),
                const char* (*line)(BrwRec*)) {
  auto* const b = new (std::nothrow) BrwRec{};
  if (b == nullptr) return nullptr;
  b->move = move;
  b->search = search;
  b->heading = heading;
  b->line = line;
  b->current = UINT32_MAX;
  b->draw_mode = 2;
  return b;
}

int brw_run(BrwRec* b, int /*option: one way of working*/) {
  if (b == nullptr) return 0;
  if (b->phase == FASE_VOOR) {
    if (!b->move(b, 0) || !scherm(b)) return 0;
    b->phase = FASE_EERSTE;
  }
  return b->inverted != 0 ? lever_rest(b) : lever_merken(b);
}

void brw_free(BrwRec* b) {
  if (b == nullptr) return;
  free(b->marks);
  delete b;
}

bool brw_marked(const BrwRec* b, uint32_t id) {
  return (merk_plaats(b, id) >= 0) != (b->inverted != 0);
}

int brw_mark_add(BrwRec* b, uint32_t id) {
  if (merk_plaats(b, id) >= 0) return 1;
  if (b->mark_count == b->mark_size) {
    const int32_t grootte = b->mark_size + MARKEN_ERBIJ;
    void* const nieuw = realloc(b->marks, static_cast<size_t>(grootte) * sizeof *b->marks);
    if (nieuw == nullptr) {
      scr_error("%s", txt(T_BRW_GEEN_GEHEUGEN));
      return 0;
    }
    b->marks = static_cast<uint32_t*>(nieuw);
    b->mark_size = grootte;
  }
  b->marks[b->mark_count++] = id;
  return 1;
}
