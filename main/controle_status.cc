// The status of the terminal and of the whole system, the texts that go with it, and the result of
// the last back-up.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <vector>

#include "isam/base.h"
#include "main/controle.h"
#include "main/controle_intern.h"
#include "main/teksten_sessie.h"
#include "scr/scr.h"

namespace {

constexpr int STATUS_RECORD = 10, BACKUP_RECORD = 19;
constexpr uint8_t VRIJ = 0, KRITIEK = 3, VRIJE_TEKST = 9, KRITIEKE_TERMINAL = 10;
constexpr size_t STATUSTEKST = 49;

struct StatusTekst {
  int nummer;
  Tekst tekst;
};
constexpr StatusTekst STATUSTEKSTEN[] = {
    {1, T_CTL_STATUS_1},   {2, T_CTL_STATUS_2},   {3, T_CTL_STATUS_3},   {4, T_CTL_STATUS_4},
    {5, T_CTL_STATUS_5},   {6, T_CTL_STATUS_6},   {7, T_CTL_STATUS_7},   {8, T_CTL_STATUS_8},
    {9, T_CTL_STATUS_9},   {10, T_CTL_STATUS_10}, {11, T_CTL_STATUS_11}, {13, T_CTL_STATUS_13},
    {14, T_CTL_STATUS_14},
};

void lees_status() {
  int32_t nummer = STATUS_RECORD;
  iotab('R', &nummer, &sys_rec10, SYS_RECORDS);
}

void schrijf_status() {
  int32_t nummer = STATUS_RECORD;
  iotab('W', &nummer, &sys_rec10, SYS_RECORDS);
}

void zet_statustekst(const char* tekst) {
  veld_zet(sys_rec10.tekst, sizeof sys_rec10.tekst, veld_tekst(tekst, STATUSTEKST));
}

}  // namespace

void ctl_set_status(uint8_t status) {
  if (session_terminal == 0) return;
  terminal_rec.status = status;
  int32_t nummer = session_terminal;
  iotab('w', &nummer, &terminal_rec, SYS_TERMINALS);
}

void ctl_system_status(uint8_t code) {
  lees_status();
  sys_rec10.status = code;
  if (code == 1 || code == 2) zet_statustekst("@7");
  if (code == KRITIEK) zet_statustekst("@8");
  if (code == VRIJ) sys_rec10.tekst[0] = 0;
  schrijf_status();
}

void ctl_system_text(const char* tekst) {
  lees_status();
  sys_rec10.status = VRIJE_TEKST;
  zet_statustekst(tekst);
  schrijf_status();
}

bool ctl_critical_test() {
  lees_status();
  if (sys_rec10.status != VRIJ) return false;
  int32_t nummer = 1;
  TerminalRec rec{};
  for (char actie = 'F'; iotab(actie, &nummer, &rec, SYS_TERMINALS); actie = 'N') {
    if (rec.status < KRITIEKE_TERMINAL) continue;
    if (!iotab('T', &nummer, &rec, SYS_TERMINALS)) continue;  // a program is alive behind it
    ctl_system_status(KRITIEK);
    return false;
  }
  return true;
}

bool ctl_has_rights() {
  if (!alleen_raadplegen()) return true;
  if (scr_ctx == nullptr) return false;
  const std::string tekst = str_format("%.73s", txt(T_CTL_BEVOEGDHEID));
  const int breedte = static_cast<int>(tekst.size()) + 5;
  const IngBewaar velden;
  const Venster venster(10, (80 - breedte) / 2 + 1, 4, breedte);
  win_title(nullptr);
  scr_print(A_WAARDE, 1, 2, "%s", tekst);
  scr_beep();
  scr_enter(2, 2);
  return false;
}

std::string ctl_status_text(const char* tekst) {
  if (*tekst != '@') return tekst;
  const long nummer = std::strtol(tekst + 1, nullptr, 10);
  for (const StatusTekst& s : STATUSTEKSTEN)
    if (s.nummer == nummer) return txt(s.tekst);
  return {};
}

// The result of the back-up -----------------------------------------------------------------------

namespace {

constexpr int REGEL = 81;    // up to 80 characters
constexpr int BEWAARD = 31;  // days that a group stays in the file
constexpr const char* MAANDEN[12][2] = {
    {"jan", "jan"}, {"feb", "feb"}, {"mrt", "maa"}, {"apr", "apr"}, {"mei", "may"}, {"jun", "jun"},
    {"jul", "jul"}, {"aug", "aug"}, {"sep", "sep"}, {"okt", "oct"}, {"nov", "nov"}, {"dec", "dec"}};

struct Groep {
  char datum[REGEL], tekst[REGEL], resultaat[REGEL];
};

bool lees_regel(FILE* bestand, char* regel) {
  regel[0] = 0;
  return file_line(bestand, regel, REGEL) || regel[0] != 0;
}

int maand_van(const char* regel) {
  char naam[4] = "";
  const char* eind = regel + std::strlen(regel);
  while (eind > regel && eind[-1] == ' ') --eind;
  const char* begin = eind;
  while (begin > regel && begin[-1] != ' ') --begin;
  str_printf(naam, sizeof naam, "%.*s", static_cast<int>(eind - begin), begin);
  for (char* p = naam; *p != 0; ++p) *p = static_cast<char>(*p >= 'A' && *p <= 'Z' ? *p + 32 : *p);
  if (std::strcmp(naam, "mar") == 0) return 3;
  for (int m = 0; m < 12; ++m)
    if (std::strcmp(naam, MAANDEN[m][0]) == 0 || std::strcmp(naam, MAANDEN[m][1]) == 0)
      return m + 1;
  return 0;
}

// Day and year are the numbers of the line; without a year it is the last such day up to today.
// 0 for a line that holds no date.
uint16_t datum_van(const char* regel, uint16_t vandaag) {
  const int maand = maand_van(regel);
  int dag = 0, jaar = 0;
  for (const char* p = regel; *p != 0;) {
    char* eind = nullptr;
    const long v = *p >= '0' && *p <= '9' ? std::strtol(p, &eind, 10) : 0;
    if (v >= 1900 && v <= 2099)
      jaar = static_cast<int>(v);
    else if (v >= 1 && v <= 31 && dag == 0)
      dag = static_cast<int>(v);
    p = eind == nullptr ? p + 1 : eind;
  }
  if (maand == 0 || dag == 0) return 0;
  const auto nummer = [&](int j) {
    return date_number(str_format("%02d%02d%04d", dag, maand, j).c_str());
  };
  if (jaar != 0) return nummer(jaar);
  char nu[9];
  date_text(nu, vandaag, true);
  const int dit_jaar = std::atoi(nu + 4);
  const uint16_t dit = nummer(dit_jaar);
  return dit != 0 && dit <= vandaag ? dit : nummer(dit_jaar - 1);
}

// Copies the young groups to the new file; false without any group. `laatste` is the last one read.
bool schoon_op(FILE* oud, FILE* nieuw, uint16_t vandaag, Groep& laatste) {
  bool een = false;
  Groep g;
  while (lees_regel(oud, g.datum)) {
    lees_regel(oud, g.tekst);
    lees_regel(oud, g.resultaat);
    laatste = g;
    een = true;
    const uint16_t datum = datum_van(g.datum, vandaag);
    // A group whose age cannot be told is kept: nothing is thrown away by mistake.
    if (datum != 0 && vandaag - datum >= BEWAARD) continue;
    std::fprintf(nieuw, "%s\n%s\n%s\n", g.datum, g.tekst, g.resultaat);
  }
  return een;
}

std::string uitslag(const Groep& g) {
  if (std::strstr(g.tekst, "backup gemaakt") != nullptr) return {};
  const bool geen_tape = std::strstr(g.tekst, "Geen tape") != nullptr;
  return str_format("%s, %s", txt(T_CTL_BACKUP_NIET),
                    txt(geen_tape ? T_CTL_BACKUP_TAPE : T_CTL_BACKUP_ACTIEF));
}

void boek(const std::string& tekst, uint16_t vandaag) {
  lees_status();
  std::memset(sys_rec10.tekst, 0, STATUSTEKST);
  std::memcpy(sys_rec10.tekst, tekst.data(),
              tekst.size() < STATUSTEKST ? tekst.size() : STATUSTEKST);
  schrijf_status();
  uint8_t rec[64] = {};
  int32_t nummer = BACKUP_RECORD;
  iotab('R', &nummer, rec, SYS_RECORDS);
  rec[36] = static_cast<uint8_t>(vandaag & 0xFF);
  rec[37] = static_cast<uint8_t>(vandaag >> 8);
  std::memset(rec + 40, 0, 24);
  iotab('W', &nummer, rec, SYS_RECORDS);
}

}  // namespace

bool ctl_backup_uit(const char* map) {
  const std::string oud = std::string(map) + "result.bu", nieuw = std::string(map) + "result.new";
  FILE* van = std::fopen(oud.c_str(), "re");
  if (van == nullptr) return false;
  FILE* naar = std::fopen(nieuw.c_str(), "we");
  if (naar == nullptr) {
    std::fclose(van);
    return false;
  }
  const uint16_t vandaag = date_today();
  Groep laatste{};
  const bool een = schoon_op(van, naar, vandaag, laatste);
  std::fclose(van);
  const bool heel = std::fclose(naar) == 0;
  const std::string tekst = uitslag(laatste);
  boek(tekst, vandaag);
  if (heel) file_move(nieuw.c_str(), oud.c_str(), true);
  return een && tekst.empty();
}

bool ctl_backup_result() { return ctl_backup_uit("/tmp/"); }
