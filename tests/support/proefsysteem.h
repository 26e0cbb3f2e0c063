// A data directory with a system file and three branches, and the session modules open on it: the
// ground of every test that needs a terminal record.
#pragma once

#include <cstring>
#include <fstream>
#include <string>

#include "isam/base.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/iotab.h"
#include "tests/support/tijdelijk.h"

struct ProefSysteem {
  TempDir map;
  InMap in{map.pad};

  ProefSysteem() {
    maak("DTSYS.TXT", static_cast<size_t>(SYS_GROOTTE));
    maak("DTFILGEG.TXT", 4 * sizeof(FiliaalRec));
    SysRec1 een{};
    veld_zet(een.bedrijf, sizeof een.bedrijf, "De Ketting BV");
    een.filialen = 3;
    zet(0, &een, sizeof een);
    SysRec10 tien{};
    std::memcpy(tien.release, RELEASE, sizeof tien.release);
    zet(9 * 64, &tien, sizeof tien);
    zet(14 * 64, "EUR", 3);
    zet(SYS_VALUTA.basis, "USD\2", 4);
    zet(SYS_VALUTA.basis + 36, "EUR\2", 4);
    terminal(7, "jan", "3", "proefprog");
  }

  static void maak(const char* naam, size_t grootte) {
    std::ofstream(naam, std::ios::binary) << std::string(grootte, '\0');
  }
  /// Bytes of DTSYS.TXT. Before it is opened by the modules: a close here drops their locks.
  static void zet(int64_t offset, const void* bytes, size_t n) {
    std::fstream f("DTSYS.TXT", std::ios::binary | std::ios::in | std::ios::out);
    f.seekp(offset);
    f.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(n));
  }
  static void terminal(int nummer, const char* gebruiker, const char* tty, const char* programma,
                       uint8_t status = 2) {
    TerminalRec rec{};
    std::strcpy(rec.gebruiker, gebruiker);
    SCRAMBLE(rec.gebruiker);
    veld_zet(rec.tty, sizeof rec.tty, tty);
    veld_zet(rec.programma, sizeof rec.programma, programma);
    rec.status = status;
    zet(SYS_TERMINALS.basis + (nummer - 1) * 64, &rec, sizeof rec);
  }
  static std::string bytes(const char* naam, int64_t offset, size_t n) {
    std::ifstream f(naam, std::ios::binary);
    std::string uit(n, '\0');
    f.seekg(offset);
    f.read(uit.data(), static_cast<std::streamsize>(n));
    uit.resize(static_cast<size_t>(f.gcount()));
    return uit;
  }

  static void open() {
    int32_t nummer = 1;
    iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
    iotab('R', &nummer, &sys_rec1, SYS_RECORDS);
  }
  static void sluit() {
    int32_t nummer = 0;
    iotab('C', &nummer, nullptr, SYS_RECORDS);
  }
};
