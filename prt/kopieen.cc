// A finished report on its way: to a queue of lp, a device or file, a directory, a terminal's
// printer.
//
// The commands run in the background and own their file from then on. Copies hand the report on
// from file to file, and two commands that run at once would lose one: the next starts when the
// file of the one before is gone. A device that takes longer than the operator should wait gets the
// copies that are left in one command of its own, so that all arrive and no file stays.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "isam/base.h"
#include "isam/ix.h"
#include "prt/intern.h"
#include "prt/schil.h"
#include "prt/teksten.h"
#include "scr/scr.h"

int prt_wacht_ms = 10000;

namespace {

/// The printer hangs on the terminal that the operator works at.
bool eigen_terminal(const char* device) {
  const char* tty = ttyname(0);
  return tty != nullptr && std::strcmp(tty, device) == 0;
}

std::string cat_naar(const std::string& bestand, const std::string& device) {
  return "cat " + sh_quote(bestand) + " >>" + sh_quote(device);
}

// A name that is the next copy's, reserved so that no other program takes it.
bool naam_nieuw(std::string& naam) {
  char buffer[sizeof prt_rec.spool_name];
  FILE* bestand = prt_spool_nieuw(buffer, sizeof buffer);
  if (bestand == nullptr) return false;
  std::fclose(bestand);
  naam = buffer;
  return true;
}

// Copies without the program, in one command.
void alle_ineens(const std::string& bestand, int aantal, const std::string& eerst = "") {
  std::string opdracht("(");
  opdracht += eerst;
  for (int n = 0; n < aantal; ++n) opdracht += cat_naar(bestand, prt_rec.device) + "; ";
  sh_systeem(opdracht + "rm " + sh_quote(bestand) + ") &");
}

// One copy, and the file of the next; false when the loop ends here.
bool kopie_door(std::string& bestand, int rest) {
  std::string nieuw;
  const std::string oud = bestand;
  if (!naam_nieuw(nieuw)) {
    alle_ineens(oud, rest + 1);
    bestand.clear();
    return false;
  }
  sh_systeem("(" + cat_naar(oud, prt_rec.device) + "; cp " + sh_quote(oud) + " " + sh_quote(nieuw) +
             "; rm " + sh_quote(oud) + ") &");
  if (!sh_wacht_weg(oud.c_str(), prt_wacht_ms, nullptr)) {
    alle_ineens(nieuw, rest, "while test -e " + sh_quote(oud) + "; do sleep 1; done; ");
    bestand.clear();
    return false;
  }
  bestand = nieuw;
  return !prt_onderbroken();
}

void medium_fout() {
  const std::string regel =
      str_format("%s <%s>", txt(T_PRT_MEDIUM), prt_rec.device) + "\n" + txt(T_PRT_MEDIUM_FOUT);
  FFLASH(-1, 2, 0, txt(T_PRT_TITEL), regel.c_str());
}

// The file byte by byte to the terminal, whose printer port is on meanwhile.
bool kopie_poort() {
  FILE* bestand = std::fopen(prt_rec.spool_name, "rb");
  if (bestand == nullptr) return false;
  const bool aan = scr_poort(true);
  if (aan) {
    for (int teken = std::getc(bestand); teken != EOF; teken = std::getc(bestand))
      std::putchar(teken);
    std::fflush(stdout);
    scr_poort(false);
  }
  std::fclose(bestand);
  if (!aan) medium_fout();
  return aan;
}

void naar_eigen_poort() {
  for (int n = 0; n < prt_rec.copies; ++n) {
    if (!kopie_poort() || prt_onderbroken()) break;
  }
  file_delete(prt_rec.spool_name);
}

// Another terminal: a removal that overtakes the copy would leave it nothing to read.
void naar_andere_poort() {
  const std::string bestand = sh_quote(prt_rec.spool_name);
  for (int n = 0; n < prt_rec.copies; ++n) {
    int klaar = -1;
    sh_systeem("(cat " + bestand + " > " + sh_quote(prt_rec.device) + ") &", &klaar);
    sh_wacht_klaar(klaar, prt_wacht_ms, prt_onderbroken);
    if (prt_onderbroken()) break;
  }
  sh_systeem("(rm " + bestand + ") &");
}

// "T" for the first letter of the name: whoever collects from the directory may take the file. One
// that he has not collected yet is never overwritten.
void merk_gereed(const std::string& pad) {
  const size_t naam = pad.rfind('/') + 1;
  std::string gereed = pad;
  gereed[naam] = 'T';
  for (int poging = 0; poging < 100; ++poging) {
    if (link(pad.c_str(), gereed.c_str()) == 0) {
      file_delete(pad.c_str());
      return;
    }
    if (errno != EEXIST) break;
    gereed = pad.substr(0, naam) + file_temp(pad.substr(0, naam).c_str(), "TR", 0);
  }
  if (access(gereed.c_str(), F_OK) != 0) std::rename(pad.c_str(), gereed.c_str());
}

}  // namespace

void prt_naar_lp(const char* lp_opties) {
  const std::string bestand = sh_quote(prt_rec.spool_name);
  sh_systeem(str_format("(lp -d%s -n%d -c -s %s %s; rm %s) &", sh_quote(prt_rec.device),
                        prt_rec.copies, lp_opties == nullptr ? "" : lp_opties, bestand, bestand));
}

void prt_naar_device() {
  std::string bestand = prt_rec.spool_name;
  int rest = prt_rec.copies;
  while (rest > 1 && kopie_door(bestand, rest - 1)) --rest;
  if (bestand.empty()) return;
  if (rest != 1) {
    file_delete(bestand.c_str());
    return;
  }
  sh_systeem("(" + cat_naar(bestand, prt_rec.device) + "; rm " + sh_quote(bestand) + ") &");
}

void prt_naar_map() {
  if (file_move(prt_rec.spool_name, prt_rec.device, true)) {
    merk_gereed(prt_rec.device);
    return;
  }
  medium_fout();
  file_delete(prt_rec.spool_name);
}

void prt_naar_poort() {
  if (eigen_terminal(prt_rec.device))
    naar_eigen_poort();
  else
    naar_andere_poort();
}
