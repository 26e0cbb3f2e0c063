// winkel gebruiker: the terminal records, one a user, and what of the menu each may run.
#include <fmt/format.h>
#include <termios.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <iostream>

#include "isam/base.h"
#include "main/iotab.h"
#include "sub/records.h"
#include "tools/winkel.h"

namespace {

constexpr uint8_t KRITIEK = 10, SYSTEEM_KRITIEK = 3;
constexpr size_t CODE_MEEST = 6, WACHTWOORD_MEEST = 8;

struct Gebruiker {
  std::string map = ".", code, wachtwoord, rechten = "N";
  int nummer = 0;
  std::vector<int> slots;
};

TerminalRec terminal(int32_t n) {
  TerminalRec rec{};
  iotab('R', &n, &rec, SYS_TERMINALS);
  return rec;
}

/// A session behind the record keeps its lock.
bool in_gebruik(int32_t n) { return !iotab('T', &n, nullptr, SYS_TERMINALS); }

void open_systeem(const std::string& map) {
  in_keten(map);
  int32_t n = 1;
  iotab('O', &n, nullptr, SYS_RECORDS);
}

void sluit_systeem() {
  int32_t n = 1;
  iotab('C', &n, nullptr, SYS_RECORDS);
}

int32_t vrij_nummer() {
  for (int32_t n = 1; n < SYS_TERMINALS.aantal; ++n)  // 99 is the session without a terminal
    if (terminal(n).gebruiker[0] == 0) return n;
  winkel_fout("DTSYS.TXT", "alle terminals zijn vergeven");
}

void geef_rechten(int32_t nummer, const std::vector<int>& slots) {
  ICB* dtrel = IXOPEN("DTREL", IX_GEDEELD);
  for (const int slot : slots) {
    DtRel rec{static_cast<uint16_t>(nummer), static_cast<uint16_t>(slot), 'S', 0};
    IXWRITE(dtrel, &rec);
    if (slot < 501 || slot > 599) continue;
    DtRel hoofdstuk{static_cast<uint16_t>(nummer), 244 + (1 << 8), 'S', 0};
    IXWRITE(dtrel, &hoofdstuk);
  }
  IXCLOSE(dtrel);
}

std::vector<int> alle_slots() {
  std::vector<int> slots;
  ICB* dthmnu = IXOPEN("DTHMNU", IX_LEES);
  DtHmnu rec{};
  for (bool er = IXFIRSTR(dthmnu, &rec); er; er = IXNEXT(dthmnu, &rec)) slots.push_back(rec.slot);
  IXCLOSE(dthmnu);
  return slots;
}

void doe_add(Gebruiker& o) {
  for (char& c : o.code) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  if (o.wachtwoord.empty()) o.wachtwoord = vraag_wachtwoord("Wachtwoord: ");
  const std::string bezwaar = gebruiker_bezwaar(o.code, o.wachtwoord, o.rechten[0]);
  if (!bezwaar.empty()) winkel_fout(o.code, bezwaar);
  open_systeem(o.map);
  int32_t nummer = o.nummer != 0 ? o.nummer : vrij_nummer();
  TerminalRec oud{};
  if (in_gebruik(nummer) || iotab('X', &nummer, &oud, SYS_TERMINALS))
    winkel_fout("DTSYS.TXT", fmt::format("terminal {} is al van een gebruiker", nummer));
  TerminalRec rec = maak_gebruiker(o.code, o.wachtwoord, o.rechten[0], std::time(nullptr));
  iotab('W', &nummer, &rec, SYS_TERMINALS);
  geef_rechten(nummer, o.slots.empty() ? alle_slots() : o.slots);
  sluit_systeem();
  fmt::print("Gebruiker {} op terminal {}\n", o.code, nummer);
}

void doe_list(const Gebruiker& o) {
  open_systeem(o.map);
  fmt::print("{:>3} {:<6} {} {:>6} {:<10} {}\n", "Nr", "Code", "R", "Status", "Programma", "");
  TerminalRec rec{};
  for (int32_t n = 0; iotab('N', &n, &rec, SYS_TERMINALS);) {
    if (rec.gebruiker[0] == 0) continue;
    fmt::print("{:3} {:<6} {} {:>6} {:<10} {}\n", n,
               cp850_utf8(unscramble_veld(rec.gebruiker, sizeof rec.gebruiker)),
               rec.rechten == 'I' || rec.rechten == 'S' ? rec.rechten : 'N', rec.status,
               cp850_utf8(veld_tekst(rec.programma, sizeof rec.programma)),
               in_gebruik(n) ? "in gebruik" : "");
  }
  sluit_systeem();
}

void doe_reset(const Gebruiker& o) {
  open_systeem(o.map);
  int32_t nummer = o.nummer;
  TerminalRec rec = terminal(nummer);
  if (rec.gebruiker[0] == 0)
    winkel_fout("DTSYS.TXT", fmt::format("terminal {} is van geen gebruiker", nummer));
  if (in_gebruik(nummer))
    winkel_fout("DTSYS.TXT", fmt::format("terminal {} is in gebruik", nummer));
  const bool kritiek = rec.status >= KRITIEK;
  rec.status = 0;
  std::memset(rec.tty, 0, sizeof rec.tty);
  std::memset(rec.programma, 0, sizeof rec.programma);
  iotab('W', &nummer, &rec, SYS_TERMINALS);
  int32_t tien = 10;
  iotab('R', &tien, &sys_rec10, SYS_RECORDS);
  if (sys_rec10.status == SYSTEEM_KRITIEK) ctl_system_status(0);
  sluit_systeem();
  fmt::print("Terminal {} vrijgegeven{}\n", nummer,
             kritiek ? "; hij was op een kritieke plaats afgebroken: controleer de tabellen" : "");
}

}  // namespace

TerminalRec maak_gebruiker(std::string_view code, std::string_view wachtwoord, char rechten,
                           int64_t nu) {
  TerminalRec rec{};
  verberg(rec.gebruiker, code.substr(0, CODE_MEEST), nu);
  verberg(rec.wachtwoord, wachtwoord.substr(0, WACHTWOORD_MEEST), nu);
  rec.rechten = rechten;
  return rec;
}

std::vector<DtHmnu> menu_rijen(int64_t nu) {
  std::vector<DtHmnu> rijen;
  for (const Menuprogramma& p : MENUPROGRAMMAS) {
    DtHmnu rec{};
    rec.slot = p.slot;
    verberg(rec.titel, p.titel, nu);
    verberg(rec.programma, p.naam, nu);
    rec.soort = 'S';
    rijen.push_back(rec);
  }
  return rijen;
}

std::vector<DtRel> menu_rechten(int gebruiker) {
  std::vector<DtRel> rijen;
  for (const Menuprogramma& p : MENUPROGRAMMAS)
    rijen.push_back({static_cast<uint16_t>(gebruiker), p.slot, 'S', 0});
  return rijen;
}

std::string gebruiker_bezwaar(std::string_view code, std::string_view wachtwoord, char rechten) {
  if (code.empty() || code.size() > CODE_MEEST) return "een gebruikerscode heeft 1 tot 6 tekens";
  for (const char c : code)
    if (std::isupper(static_cast<unsigned char>(c)) == 0 &&
        std::isdigit(static_cast<unsigned char>(c)) == 0)
      return "een gebruikerscode is van hoofdletters en cijfers";
  if (wachtwoord.empty() || wachtwoord.size() > WACHTWOORD_MEEST)
    return "een wachtwoord heeft 1 tot 8 tekens";
  for (const char c : wachtwoord)
    if (c <= ' ' || c > '~') return "een wachtwoord is van letters, cijfers en leestekens";
  if (rechten != 'N' && rechten != 'I' && rechten != 'S') return "rechten zijn N, I of S";
  return "";
}

std::string vraag_wachtwoord(const char* vraag) {
  termios oud{};
  const bool scherm = tcgetattr(STDIN_FILENO, &oud) == 0;
  if (scherm) {
    fmt::print(stderr, "{}", vraag);
    termios stil = oud;
    stil.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &stil);
  }
  std::string regel;
  std::getline(std::cin, regel);
  if (scherm) {
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &oud);
    fmt::print(stderr, "\n");
  }
  return regel;
}

void verb_gebruiker(CLI::App& app) {
  static Gebruiker o;
  CLI::App* verb = app.add_subcommand("gebruiker", "gebruikers en hun terminals");
  verb->require_subcommand(1);
  CLI::App* add = verb->add_subcommand("add", "voeg een gebruiker toe");
  optie_map(add, &o.map);
  add->add_option("CODE", o.code, "gebruikerscode, hoogstens 6 tekens")->required();
  add->add_option("--wachtwoord", o.wachtwoord, "hoogstens 8 tekens; zonder wordt het gevraagd");
  add->add_option("--rechten", o.rechten, "N normaal, I raadplegen, S systeembeheer")
      ->check(CLI::IsMember({"N", "I", "S"}))
      ->capture_default_str();
  add->add_option("--terminal", o.nummer, "1 tot 98; zonder de eerste vrije")
      ->check(CLI::Range(1, 98));
  add->add_option("--menu", o.slots, "menuslots; zonder alle")->check(CLI::Range(1, 999));
  add->callback([] { doe_add(o); });
  CLI::App* list = verb->add_subcommand("list", "toon de gebruikers");
  optie_map(list, &o.map);
  list->callback([] { doe_list(o); });
  CLI::App* reset = verb->add_subcommand("reset", "geef een afgebroken terminal vrij");
  optie_map(reset, &o.map);
  reset->add_option("NR", o.nummer, "nummer van de terminal")->required()->check(CLI::Range(1, 99));
  reset->callback([] { doe_reset(o); });
}
