// The administrator's tool: what its verbs share. A verb refuses what it does not understand before
// it touches a file; a fault is one line and status 1.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/records.h"

inline constexpr int UIT_GOED = 0, UIT_FOUT = 1, UIT_GEBRUIK = 2, UIT_BEZET = 3;

/// Ends the run with one line on standard error and status 1.
[[noreturn]] void winkel_fout(std::string_view wat, std::string_view reden);
/// The same for a system call that failed: the reason is errno's.
[[noreturn]] void winkel_fout_errno(std::string_view wat);

/// The option -C DIR that every verb has.
void optie_map(CLI::App* app, std::string* map);
/// Goes into a data directory; a fault when it is none.
void in_keten(const std::string& map);
/// Goes into a directory that is to become one: makes it, refuses it when anything is in it, and
/// gives it the rights of a shared directory.
void in_lege_map(const std::string& map);

// Each adds its verb to the application; the work is done in the callback.
void verb_init(CLI::App&);
void verb_demo(CLI::App&);
void verb_gebruiker(CLI::App&);
void verb_printer(CLI::App&);
void verb_terminal(CLI::App&);
void verb_saldo(CLI::App&);
void verb_status(CLI::App&);
void verb_export(CLI::App&);
void verb_import(CLI::App&);
void verb_backup(CLI::App&);
/// The option --sqlite, on top of the verb export.
void optie_sqlite(CLI::App&);

/// Checks the stock tables against each other and prints what it found; true when they are sound.
/// System records 1 and 20 stand in sys_rec1 and sys_rec20, DTSYS.TXT is closed.
bool status_controle();

/// Bytes of a file, made with 0660. A fault when it cannot be written whole.
void schrijf_bestand(const char* naam, const void* bytes, size_t n);
/// The tables of tabel_alle(), the flat files and the print tables, all empty but for the screen.
void maak_lege_tabellen();

/// Hides a text in a field, its key chosen by `nu`; cut where the field cannot hold it.
template <size_t N>
void verberg(char (&veld)[N], std::string_view wat, int64_t nu) {
  char tekst[N + 2] = {};
  wat.copy(tekst, N - 2);
  scramble_op(tekst, nu);
  veld_zet(veld, N, tekst);
}

/// A terminal record of a user; the scrambled fields get their key from `nu`.
TerminalRec maak_gebruiker(std::string_view code, std::string_view wachtwoord, char rechten,
                           int64_t nu);
/// The programs of the launcher's menu, and that menu's rows.
struct Menuprogramma {
  uint16_t slot;
  std::string_view titel, naam;
};
inline constexpr Menuprogramma MENUPROGRAMMAS[] = {{101, "Voorraadbeheer", "opdsaldo"},
                                                   {102, "Voorraad en opdrachten", "voorraad"}};
std::vector<DtHmnu> menu_rijen(int64_t nu);
/// The right of a user to each of them.
std::vector<DtRel> menu_rechten(int gebruiker);
/// Empty when code, password and rights are fit for a record, else why not.
std::string gebruiker_bezwaar(std::string_view code, std::string_view wachtwoord, char rechten);
/// One line from the operator without echo, when a terminal is there.
std::string vraag_wachtwoord(const char* vraag);

/// A file to print to, and a printer for each queue of CUPS, into the print tables in hand.
void printers_van_demo();
