// Slots 501 to 599 of the menu belong to custom programs; the right to one of them goes with the
// right to their chapter. Rows that stand are left as they are.
#include "main/autoinst.h"

#include <cstring>
#include <string>

#include "isam/base.h"
#include "main/controle.h"
#include "main/opstart.h"
#include "main/teksten.h"
#include "scr/scr.h"
#include "sub/records.h"
#include "sub/tabeldef.h"

namespace {

constexpr uint16_t SLOT_EERSTE = 501, SLOT_LAATSTE = 599;
constexpr uint16_t HOOFDSTUK_MAATWERK = 244 + (1 << 8);
constexpr int VARIANTEN = 4, MELDRIJ = 19, MELDRIJEN = 5;

/// The suite's custom programs: install number, name, and the dates between which it may be
/// installed; the row of 999 ends the table.
struct Maatwerk {
  int nummer;
  const char* naam;
  uint16_t van, tm;
};
constexpr Maatwerk MAATWERK[] = {
    {199, "opdsaldo", 0, UINT16_MAX}, {200, "voorraad", 0, UINT16_MAX}, {999, "", 0, 0}};

const char* naam_van(int install_number) {
  const Maatwerk* m = MAATWERK;
  while (m->nummer != 999 && m->nummer != install_number) ++m;
  return m->naam;
}

struct Sysrec11 {
  uint8_t varianten, leeg1, variant;
  uint8_t leeg3[61];
};
static_assert(sizeof(Sysrec11) == 64);

Sysrec11 lees_varianten() {
  Sysrec11 rec{};
  int32_t nummer = 1;
  iotab('O', &nummer, nullptr, SYS_RECORDS);
  nummer = 11;
  iotab('R', &nummer, &rec, SYS_RECORDS);
  iotab('C', &nummer, nullptr, SYS_RECORDS);
  return rec;
}

void meld(const char* titel, const char* naam, const Tekst& tekst) {
  FFLASH(-1, 1, 0, titel, str_format("<%s> %s", naam, txt(tekst)).c_str());
}

/// The slot for the program, or 0 after a message.
uint16_t zoek_slot(ICB* dthmnu, const char* naam, const char* titel, uint8_t variant) {
  uint16_t vrij = 0;
  for (uint16_t slot = SLOT_EERSTE; slot <= SLOT_LAATSTE; ++slot) {
    DtHmnu rec{};
    rec.slot = slot;
    rec.variant = variant;
    if (!IXREAD(dthmnu, &rec)) {
      if (vrij == 0) vrij = slot;
    } else if (unscramble_veld(rec.programma, sizeof rec.programma) == naam) {
      meld(titel, naam, T_INST_REEDS);
      return 0;
    }
  }
  if (vrij == 0) meld("error 7", naam, T_INST_GEEN_RUIMTE);
  return vrij;
}

template <size_t N>
void verberg_in(char (&veld)[N], const char* tekst) {
  char werk[N + 2];
  str_printf(werk, N, "%s", tekst);  // the hidden form is one character longer
  SCRAMBLE(werk);
  veld_zet(veld, N, werk);
}

void schrijf_menu(ICB* dthmnu, const DtHmnu& model, uint8_t varianten) {
  for (uint8_t v = 0; v < VARIANTEN; ++v) {
    if ((varianten >> v & 1) == 0) continue;
    DtHmnu rec = model;
    rec.variant = v;
    if (!IXEXISTS(dthmnu, &rec)) IXWRITE(dthmnu, &rec);
  }
}

/// The terminal record of a user code; 0 for an unknown one.
uint16_t zoek_gebruiker(const char* code) {
  TerminalRec rec;
  for (int32_t n = 1; n <= SYS_TERMINALS.aantal; ++n) {
    int32_t nummer = n;
    if (iotab('R', &nummer, &rec, SYS_TERMINALS) &&
        unscramble_veld(rec.gebruiker, sizeof rec.gebruiker) == code)
      return static_cast<uint16_t>(n);
  }
  return 0;
}

/// A user with a record of his own; 0 when the operator is done.
uint16_t vraag_gebruiker(char* code) {
  for (;;) {
    *code = 0;
    scr_clreol(3, 1);
    scr_print(A_LABEL, 3, 2, "%s", txt(T_INST_GEBRUIKER));
    INGAVE(3, 14, "6s,IU", &K_CANCEL, code);
    if (weg_toets() || *code == 0) return 0;
    const uint16_t nummer = zoek_gebruiker(code);
    if (nummer != 0) return nummer;
    const bool spaties = strchr(code, ' ') != nullptr;
    scr_error("%s%s%s", spaties ? txt(T_INST_SPATIES) : "", spaties ? ". " : "",
              txt(T_INST_ONBEKEND));
  }
}

void ken_toe(const char* titel, uint16_t slot, char type_letter) {
  int32_t systeem = 1;
  iotab('O', &systeem, nullptr, SYS_RECORDS);
  ICB* dtrel = tabel_open("DTREL", IX_GEDEELD);
  int meldingen = 0;
  for (;;) {
    char code[8];
    uint16_t gebruiker;
    bool akkoord;
    {
      const Venster venster(5, 1, 9, 80);
      win_title(" %s \"%s\" ", txt(T_INST_TITEL), titel);
      scr_print(A_WAARDE, 1, 2, "%s", txt(T_INST_BEVOEGDHEID));
      gebruiker = vraag_gebruiker(code);
      if (gebruiker == 0) break;
      scr_print(A_WAARDE, 3, 14, "%-6.6s", code);
      akkoord = scr_confirm(5, 2, "");
    }
    if (!akkoord) continue;
    for (const uint16_t recht : {HOOFDSTUK_MAATWERK, slot}) {
      DtRel rec{gebruiker, recht, type_letter, 0};
      IXWRITE(dtrel, &rec);
    }
    const int rij = MELDRIJ + meldingen++ % MELDRIJEN;
    scr_clreol(rij, 1);
    scr_print(A_WAARDE, rij, 2, "\"%s\" %s %s %s", titel, txt(T_INST_TOEGEVOEGD),
              txt(T_INST_AAN_MENU), code);
  }
  IXCLOSE(dtrel);
  iotab('C', &systeem, nullptr, SYS_RECORDS);
}

void installeer(const char* naam, const char* title, char type_letter) {
  const Sysrec11 varianten = lees_varianten();
  ICB* dthmnu = tabel_open("DTHMNU", IX_GEDEELD);
  const uint16_t slot = zoek_slot(dthmnu, naam, title, varianten.variant);
  if (slot != 0) {
    scr_print(A_WAARDE, 3, 2, "%s \"%s\" (%s) %s.", txt(T_INST_PROGRAMMA), title, naam,
              txt(T_INST_WORDT));
    DtHmnu rec{};
    rec.slot = slot;
    rec.soort = type_letter;
    verberg_in(rec.titel, title);
    verberg_in(rec.programma, naam);
    schrijf_menu(dthmnu, rec, varianten.varianten);
    ken_toe(title, slot, type_letter);
  }
  IXCLOSE(dthmnu);
}

}  // namespace

bool autoinst(int argc, char** argv, int install_number, const char* title, char type_letter) {
  constexpr std::string_view WOORD = "AUTOINST";
  if (argc != 2 || std::string_view(argv[1]).substr(0, WOORD.size()) != WOORD) return false;
  opstart_catalogi();
  opstart_terminal();
  SCRINIT();
  macro_stop();  // started by hand: no replay of a chain goes on here
  installeer(naam_van(install_number), title, type_letter);
  scr_close();
  return true;
}
