// Saving a selection under one of nine numbers, and the list of those that stand.
#include <fcntl.h>
#include <unistd.h>

#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/sel_intern.h"
#include "sub/sel_stroom.h"

namespace {

constexpr uint32_t SLOT_EERSTE = 1, SLOT_LAATSTE = 9;
constexpr int LIJST_RIJ = 5, LIJST_HOOGTE = 14;  // nine slots, heading, blank rows, search field
constexpr int VENSTER_RIJ = 18, VENSTER_KOL = 11, VENSTER_HOOGTE = 5, VENSTER_BREEDTE = 60;
constexpr int K_INVOER = 18;
constexpr size_t OMS = sizeof(SelRec::sel_oms);

bool bestaat(int slot) { return file_exists(stroom_naam(sel_soort, slot).c_str()); }

/// The description of a slot's file; empty when there is none.
std::string omschrijving(int slot) {
  const std::string naam = stroom_naam(sel_soort, slot);
  if (!file_exists(naam.c_str())) return {};
  const int fd = open(naam.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) ctl_noopen(SEL_MODULE, naam.c_str());
  char oms[OMS] = {};
  const ssize_t n = read(fd, oms, sizeof oms);
  close(fd);
  return n <= 0 ? std::string() : veld_tekst(oms, static_cast<size_t>(n));
}

// The list. A slot is its own identifier.

bool lijst_move(BrwRec* b, int n) {
  if (b->current < SLOT_EERSTE || b->current > SLOT_LAATSTE) b->current = SLOT_EERSTE;
  for (; n > 0; --n) {
    if (b->current >= SLOT_LAATSTE) return false;
    ++b->current;
  }
  for (; n < 0; ++n) {
    if (b->current <= SLOT_EERSTE) return false;
    --b->current;
  }
  return true;
}

void lijst_search(BrwRec* b) {
  const int rij = brw_search_row();
  uint32_t slot = 0;
  char tekst[2] = {};
  scr_clreol(rij, 1);
  scr_print(A_LABEL, rij, 2, "%s", txt(T_SEL_SELECTIENUMMER));
  const int kolom = 3 + static_cast<int>(strlen(txt(T_SEL_SELECTIENUMMER)));
  INGAVE(rij, kolom, "1s[123456789],I", &tekst[0]);
  if (scr_ctx->last_key == K_F3) {
    scr_ctx->last_key = TOETS_ENTER;
    scr_ctx->ing_result |= ING_LEEG;
    return;
  }
  if (tekst[0] >= '1' && tekst[0] <= '9') slot = static_cast<uint32_t>(tekst[0] - '0');
  if (slot != 0) b->current = slot;
}

void lijst_kop(BrwRec*) {
  scr_print(A_LABEL, 1, 2, "%s  %-30.30s", txt(T_SEL_KOL_NR), txt(T_SEL_KOL_OMS));
}

const char* lijst_regel(BrwRec* b) {
  const auto slot = static_cast<int>(b->current);
  const std::string oms =
      bestaat(slot) ? omschrijving(slot) : str_format("** %s **", txt(T_SEL_NIET_IN_GEBRUIK));
  str_printf(scr_klad, sizeof scr_klad, "%2d  %-30.30s", slot, oms);
  return scr_klad;
}

// The dialog.

/// The number to save under; 0 when the operator left.
int vraag_nummer() {
  int16_t nummer = sel_rec.sel_nr >= SLOT_EERSTE && sel_rec.sel_nr <= SLOT_LAATSTE
                       ? static_cast<int16_t>(sel_rec.sel_nr)
                       : int16_t{0};
  for (;;) {
    scr_print(A_LABEL, 1, 2, "%s", txt(T_SEL_SELECTIENUMMER));
    INGAVE(1, K_INVOER, "1d,PE", &K_CANCEL, &K_F5, &nummer);
    if (weg_toets()) return 0;
    if (scr_ctx->last_key == K_F5) {
      const int gekozen = sel_kies();
      if (gekozen == 0) continue;
      nummer = static_cast<int16_t>(gekozen);
      scr_print(A_WAARDE, 1, K_INVOER, "%d", nummer);
    }
    scr_clreol(2, 1);
    scr_print(A_LABEL, 2, 2, "%s", txt(T_SEL_OMSCHRIJVING));
    if (!bestaat(nummer)) return nummer;
    scr_print(A_WAARDE, 2, K_INVOER, "%s", omschrijving(nummer));
    const bool akkoord =
        scr_confirm(3, 2, "[-]%s %d %s", txt(T_SEL_HUIDIGE), nummer, txt(T_SEL_VERVANGEN));
    scr_clreol(3, 1);
    if (akkoord) return nummer;
  }
}

}  // namespace

int sel_kies() {
  BrwRec* b = brw_new(lijst_move, lijst_search, lijst_kop, lijst_regel);
  if (b == nullptr) return 0;
  b->row = LIJST_RIJ;
  b->height = LIJST_HOOGTE;
  b->title = str_format(" %s ", txt(T_SEL_BEWAARDE));
  const int slot = brw_run(b, 0) != 0 ? static_cast<int>(b->current) : 0;
  brw_free(b);
  return slot;
}

void sel_bewaar() {
  if (scr_ctx == nullptr) return;
  const Venster venster(VENSTER_RIJ, VENSTER_KOL, VENSTER_HOOGTE, VENSTER_BREEDTE);
  win_title(" %s ", txt(T_SEL_BEWAREN));
  const int nummer = vraag_nummer();
  if (nummer == 0) return;
  char oms[OMS + 1] = {};  // the field ends its text with a zero, the record does not
  str_printf(oms, sizeof oms, "%s", omschrijving(nummer));
  INGAVE(2, K_INVOER, "30s", &K_CANCEL, &oms[0]);
  if (weg_toets()) return;
  const std::string naam = stroom_naam(sel_soort, nummer);
  if (oms[0] == 0 && file_exists(naam.c_str())) {
    file_delete(naam.c_str());
    sel_rec.sel_nr = 0;
    memset(sel_rec.sel_oms, 0, OMS);
    return;
  }
  veld_zet(sel_rec.sel_oms, OMS, oms);
  sel_rec.sel_nr = static_cast<uint16_t>(nummer);
  sel_schrijf(nummer);
}
