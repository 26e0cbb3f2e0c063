// The login. The user code finds the terminal record, and with it the number of the terminal; the
// tty is only told to those who meet its locks. Nothing is written to a record that is not proved,
// but for the mark of a login that failed five times.
#include "main/aanmelden.h"

#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "isam/base.h"
#include "main/controle.h"
#include "main/teksten.h"
#include "scr/scr.h"

namespace {

constexpr int POGINGEN = 5;
constexpr uint8_t STATUS_LOOPT = 1, STATUS_MISLUKT = 5, STATUS_KRITIEK = 10;

struct Aanmelding {
  char code[7];
  char wachtwoord[9];
};

/// The records that hold a user code, in order; `wachtwoord` null takes any password.
std::vector<int32_t> records_van(const char* code, const char* wachtwoord) {
  std::vector<int32_t> gevonden;
  for (int32_t n = 1; n <= SYS_TERMINALS.aantal; ++n) {
    TerminalRec rec;
    int32_t nummer = n;
    if (!iotab('R', &nummer, &rec, SYS_TERMINALS)) continue;
    if (unscramble_veld(rec.gebruiker, sizeof rec.gebruiker) != code) continue;
    if (wachtwoord != nullptr &&
        unscramble_veld(rec.wachtwoord, sizeof rec.wachtwoord) != wachtwoord)
      continue;
    gevonden.push_back(n);
  }
  return gevonden;
}

bool vraag(Aanmelding& a) {
  a = {};
  scr_clrbot(3, 1);
  scr_print(A_LABEL, 4, 2, "%s", txt(T_GEBRUIKERSCODE));
  scr_print(A_LABEL, 6, 2, "%s", txt(T_WACHTWOORD));
  INGAVE(4, 20, "6s,UIE", &K_CANCEL, a.code);
  if (weg_toets()) return false;
  INGAVE(6, 20, "8s,SI", &K_CANCEL, a.wachtwoord);
  return !weg_toets();
}

int32_t kies_record(const std::vector<int32_t>& records, int keuze) {
  TerminalRec rec;
  for (const int32_t n : records) {
    if (n == keuze) return n;
  }
  for (const int32_t n : records) {
    int32_t nummer = n;
    if (iotab('T', &nummer, &rec, SYS_TERMINALS)) return n;
  }
  return records.front();
}

/// Takes the record as the session's own: its lock is the sign of life from now on.
bool neem(int32_t gekozen, const Aanmelding& a) {
  int32_t nummer = gekozen;
  if (!iotab('X', &nummer, &terminal_rec, SYS_TERMINALS)) {
    iotab('U', &nummer, nullptr, SYS_TERMINALS);
    return false;
  }
  // The record may have been changed while its lock was waited for.
  if (unscramble_veld(terminal_rec.gebruiker, sizeof terminal_rec.gebruiker) != a.code) {
    iotab('U', &nummer, nullptr, SYS_TERMINALS);
    return false;
  }
  session_terminal = gekozen;
  char tty[sizeof terminal_rec.tty + 1];
  ctl_ttyname(tty, sizeof tty);
  veld_zet(terminal_rec.tty, sizeof terminal_rec.tty, tty);
  terminal_rec.datum = date_today();
  terminal_rec.moment = static_cast<uint32_t>(time(nullptr));
  if (terminal_rec.status < STATUS_KRITIEK) terminal_rec.status = STATUS_LOOPT;
  iotab('w', &nummer, &terminal_rec, SYS_TERMINALS);
  macro_user(session_terminal);
  return true;
}

void meld_mislukt(int32_t record) {
  TerminalRec rec;
  int32_t nummer = record;
  if (!iotab('T', &nummer, &rec, SYS_TERMINALS)) return;  // somebody works behind it
  if (!iotab('R', &nummer, &rec, SYS_TERMINALS) || rec.status >= STATUS_KRITIEK) return;
  rec.status = STATUS_MISLUKT;
  iotab('W', &nummer, &rec, SYS_TERMINALS);
}

}  // namespace

bool aanmelden(int keuze) {
  hdr_line('C', "%s", txt(T_AANMELDEN));
  int32_t laatste_bekende = 0;
  for (int poging = 0; poging < POGINGEN; ++poging) {
    Aanmelding a;
    if (!vraag(a)) return false;
    const std::vector<int32_t> bekend = records_van(a.code, nullptr);
    if (!bekend.empty()) laatste_bekende = kies_record(bekend, keuze);
    const std::vector<int32_t> goed = records_van(a.code, a.wachtwoord);
    if (!goed.empty() && neem(kies_record(goed, keuze), a)) return true;
    scr_error("%s", txt(T_AANMELDEN_FOUT));
    scr_flush(1);
  }
  if (laatste_bekende != 0) meld_mislukt(laatste_bekende);
  return false;
}
