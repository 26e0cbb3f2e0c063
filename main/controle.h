// Session start and the session's identity: proof of the arguments, terminal record, system
// records, message catalogues, the fatal reporters, the exec of the next program.
#pragma once

#include <cstdint>
#include <string>

#include "isam/ix.h"
#include "main/iotab.h"

inline constexpr const char* RELEASE = "8.70 ";
inline constexpr int VERSIE_NUMMER = 870;
inline constexpr const char* VERSIE_DATUM = "05-4-2016";

#pragma pack(push, 1)
struct TerminalRec {    // 64 bytes
  char gebruiker[8];    // scrambled
  char wachtwoord[14];  // scrambled
  char tty[6];          // may be full
  uint8_t leeg28[10];
  uint8_t status;   // 0 not active, 1 runs, 2 between programs, 5 login failed, 10-12 critical
  char rechten;     // 'I' inquiry, 'S' system manager, else normal
  uint32_t moment;  // of the last exec, seconds since 1970
  uint16_t woord44;
  uint8_t leeg46[2];
  char programma[10];  // next program, may be full
  uint16_t datum;
  uint16_t woord60;
  uint8_t groep;  // of the two sub tables
  uint8_t leeg63;
};
struct SysRec1 {  // 64 bytes
  char bedrijf[30];
  uint8_t opties;  // value 1 till link, value 4 branch pairs
  uint8_t seriekoppeling;
  uint8_t opties2;                  // value 1 shared work on price files, value 4 Pricat
  uint8_t nummering;                // 2: never one digit
  uint8_t land;                     // at least 1
  uint8_t opties3;                  // value 4: fair share kept per size
  uint16_t datumlimiet;             // of ordered labels in advice, 0 none
  uint8_t eigen_filiaal, filialen;  // own branch, number of branches B
  uint8_t leeg40;
  uint8_t vergelijk_filiaal;
  uint16_t tarief[10];  // permille, rate code c at [c - 1]
  uint8_t leeg62[2];
};
struct SysRec10 {
  char leeg[8];
  char tekst[50];  // status text or "@n"
  char release[5];
  uint8_t status;
};
#pragma pack(pop)
static_assert(sizeof(TerminalRec) == 64 && sizeof(SysRec1) == 64 && sizeof(SysRec10) == 64);

/// The session, process-wide. Set by ctl_start.
extern int32_t session_terminal;
extern char session_caller[32];
extern std::string session_builddate;
extern TerminalRec terminal_rec;
extern SysRec1 sys_rec1;
extern SysRec10 sys_rec10;
extern uint8_t sys_rec15[64];
bool session_support() noexcept;
std::string session_user();                          // the user's code in plain text
inline int filialen() { return sys_rec1.filialen; }  // B, also "all branches" and the total row
inline bool alleen_raadplegen() { return terminal_rec.rechten == 'I'; }

/// Proves the session and opens DTSYS.TXT, DTFILGEG.TXT, catalogues and screen; bad cases end the
/// run.
void ctl_start(const char* naam, const char* bouwdatum, int argc, char** argv);
/// Replaces the process by the next program, or exits with 0 when `naam` is empty.
[[noreturn]] void ctl_next(const char* naam);
void ctl_batch(const char* arg1, int type, const char* arg3, bool moet);
[[noreturn]] void ctl_badstart(int code);
void ctl_set_status(uint8_t status);
void ctl_system_status(uint8_t code);
void ctl_system_text(const char* tekst);
bool ctl_critical_test();
bool ctl_has_rights();
/// "@n" expanded; other texts as they stand.
std::string ctl_status_text(const char* tekst);
bool ctl_backup_result();
void ctl_diag();  // the program-information panel
/// Who holds the lock: "Informatie in gebruik door ..." and the like (see iotab and the engine's
/// hook).
std::string ctl_lockholder(const char* tekst, int fd, int64_t offset, int64_t lengte);
void ctl_ttyname(char* buffer, size_t grootte);
void ctl_log(const char* pad, int inspringen, const char* tekst);

// Fatal reporters: none returns. Module is the caller's name.
[[noreturn]] void ctl_nomem(const char* module, int nr);
[[noreturn]] void ctl_noopen(const char* module, const char* bestand);
[[noreturn]] void ctl_badkey(const char* module, const ICB* icb, int gevraagd);
[[noreturn]] void ctl_fault(const char* module, int code);
