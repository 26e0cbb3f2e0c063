// Work exclusion: each function owns 99 bytes of DTSYS.TXT, one a session, of which only the locks
// count. Nothing is written, so a process that dies leaves nothing behind.
//
// A refused exclusive claim unlocks the whole band, with it the session's own byte of the function:
// the kernel knows only one state for a byte and a process.
#include "main/batchvw.h"

#include <sched.h>

#include <optional>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/controle.h"
#include "main/iotab.h"
#include "main/teksten_sessie.h"
#include "scr/scr.h"

namespace {

constexpr const char* MODULE = "batchvw";
constexpr int SESSIES = 99;
constexpr int ONBEWAAKT = 99;  // the session that has nobody to ask
constexpr int HOOGSTE_FUNCTIE = 15;
constexpr int WACHT_MS = 2000;
enum Fout { EXCLUSIEF_BEREIK = 1, SESSIE_BEREIK = 2, DTSYS_DICHT = 3 };

bool onbewaakt() { return session_terminal == ONBEWAAKT; }

[[noreturn]] void stop(int fout) {
  if (onbewaakt()) scr_exit(1);
  ctl_fault(MODULE, fout);
}

int64_t byte_van(int functie, int sessie) { return 40084 + 99 * int64_t{functie} + sessie; }

void toets(int functie, int fout) {
  if (functie < 0 || functie > HOOGSTE_FUNCTIE) stop(fout);
  if (iotab_fd() < 0) stop(DTSYS_DICHT);
}

bool band(char op, int functie) { return vw_lock(op, iotab_fd(), byte_van(functie, 1), SESSIES); }

bool eigen_byte(char op, int functie) {
  return vw_lock(op, iotab_fd(), byte_van(functie, session_terminal), 1);
}

// The window of a wait, with the fields of the command below it kept as they were.
struct Dialoog {
  explicit Dialoog(int hoogte) : venster(10, 6, hoogte, 70) { win_title(nullptr); }
  IngBewaar velden;
  Venster venster;
};

void vraag(int rij, const char* vorm) {
  scr_clreol(rij, 2);
  const int lengte = scr_print(A_LABEL, rij, 2, vorm, txt(T_VW_WACHTEN), txt(T_VW_JA_NEE));
  scr_move(rij, 2 + lengte);
  scr_flush(0);
}

// Two seconds for a key; false when the operator gives up.
bool wacht_op_antwoord(int rij, const char* vorm) {
  vraag(rij, vorm);
  if (!key_wait(WACHT_MS)) return true;
  if (!scr_confirm(rij, 2, "%s", txt(T_VW_WACHTEN))) return false;
  vraag(rij, vorm);
  return true;
}

struct Houders {
  int aantal = 0, laatste = 0;
};

Houders tel_houders(int functie) {
  Houders h;
  for (int sessie = 1; sessie <= SESSIES; ++sessie) {
    if (vw_lock('T', iotab_fd(), byte_van(functie, sessie), 1)) continue;
    ++h.aantal;
    h.laatste = sessie;
  }
  return h;
}

std::string naam_van(int sessie) {
  int32_t nummer = sessie;
  TerminalRec rec{};
  iotab('R', &nummer, &rec, SYS_TERMINALS);
  std::string tekst = str_format("%s %s", txt(T_VW_GEBRUIKER),
                                 unscramble_veld(rec.gebruiker, sizeof rec.gebruiker));
  const std::string tty = veld_tekst(rec.tty, sizeof rec.tty);
  if (!tty.empty()) tekst += str_format(" (tty%s)", tty);
  return tekst;
}

void toon_houders(const Houders& h) {
  scr_clreol(1, 1);
  if (h.aantal == 1)
    scr_print(A_WAARDE, 1, 2, "%s", naam_van(h.laatste));
  else if (h.aantal == SESSIES)
    scr_print(A_WAARDE, 1, 2, "%s", txt(T_VW_GESTART));
  else
    scr_print(A_WAARDE, 1, 2, "%s %d", txt(T_VW_AANTAL), h.aantal);
}

}  // namespace

bool vw_lock(char op, int fd, int64_t offset, int64_t lengte) {
  return file_lock(op, fd, offset, lengte);
}

bool vw_claim_excl(int functie) {
  toets(functie, EXCLUSIEF_BEREIK);
  std::optional<Dialoog> dialoog;
  while (!band('S', functie)) {
    band('U', functie);
    if (onbewaakt()) return false;
    if (!dialoog) {
      dialoog.emplace(5);
      scr_print(A_WAARDE, 2, 2, "%s", txt(T_VW_BLOKKEREN));
    }
    toon_houders(tel_houders(functie));
    if (!wacht_op_antwoord(3, "%s? %s  ")) return false;
  }
  return true;
}

void vw_free_excl(int functie) {
  if (iotab_fd() >= 0) band('U', functie);
}

bool vw_claim(int functie, bool ask) {
  toets(functie, SESSIE_BEREIK);
  std::optional<Dialoog> dialoog;
  while (!eigen_byte('S', functie)) {
    if (onbewaakt()) {
      if (ask) return false;
      sched_yield();
      continue;
    }
    if (!dialoog) {
      dialoog.emplace(4);
      scr_print(A_WAARDE, 1, 2, "%s", txt(T_VW_ACTIEF));
      scr_flush(0);
    }
    if (!ask)
      sched_yield();
    else if (!wacht_op_antwoord(2, "%s? %s"))
      return false;
  }
  return true;
}

void vw_free(int functie) {
  if (iotab_fd() >= 0) eigen_byte('U', functie);
}
