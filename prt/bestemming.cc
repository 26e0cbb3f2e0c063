// The destination of a report: chosen by the program or the operator, filled into the print record,
// and the report's spool file opened.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "isam/base.h"
#include "isam/ix.h"
#include "prt/intern.h"
#include "prt/lijst.h"
#include "prt/schil.h"
#include "prt/teksten.h"
#include "scr/scr.h"

namespace {

constexpr int REGEL_GEEN = 10000;
constexpr int BLAD_REGELS = 64;      // page of the screen and of a plain file
constexpr size_t BESTANDSNAAM = 40;  // a file's name is shorter than this
constexpr size_t MAP_LENGTE = 63;

constexpr const char* NERGENS = "/dev/null";

char print_map[MAP_LENGTE + 2];
bool print_map_bekend = false;

void map_lees() {
  print_map_bekend = true;
  print_map[0] = 0;
  const char* kob = std::getenv("KOBPRT");
  if (kob == nullptr || *kob == 0) return;
  std::string map(kob);
  if (map.size() > MAP_LENGTE) map.resize(MAP_LENGTE - 1);
  if (!file_isdir(map.c_str())) {
    FFLASH(-1, 2, 0, txt(T_PRT_MAP_TITEL), txt(T_PRT_MAP_FOUT));
    return;
  }
  if (map.back() != '/') map += '/';
  veld_zet(print_map, sizeof print_map, map);
}

void device_zet(PrtRec* rec, std::string_view device) {
  const size_t n = std::min(device.size(), sizeof rec->device - 1);
  std::memset(rec->device, 0, sizeof rec->device);
  std::memcpy(rec->device, device.data(), n);
}

void medium_fout(const char* device) {
  const std::string regel =
      str_format("%s <%s>", txt(T_PRT_MEDIUM), device) + "\n" + txt(T_PRT_MEDIUM_FOUT);
  FFLASH(-1, 2, 0, txt(T_PRT_TITEL), regel.c_str());
}

int scherm_breedte(int widths) {
  if ((widths & PRT_132) != 0) return 132;
  if ((widths & PRT_80) != 0) return 80;
  return (widths & PRT_40) != 0 ? 40 : 132;
}

// A report to a file of the program's choice.
bool naar_bestand(PrtRec* rec, int widths, const char* file) {
  if (file == nullptr) {
    FFLASH(-1, 2, 0, txt(T_PRT_NAAR_BESTAND), txt(T_PRT_GEEN_BESTAND));
    return false;
  }
  const size_t n = std::strlen(file);
  if (n == 0 || n >= BESTANDSNAAM || !prt_device_mag(file)) {
    FFLASH(-1, 2, 0, txt(T_PRT_NAAR_BESTAND), txt(T_PRT_PAD_FOUT));
    return false;
  }
  const bool een = widths == PRT_40 || widths == PRT_80 || widths == PRT_132;
  rec->width = een ? scherm_breedte(widths) : prt_width_menu(widths);
  rec->page_lines = BLAD_REGELS;
  device_zet(rec, file);
  return rec->width > 0;
}

// No configuration: the report is looked at; a preselected printer's device stays for the print.
void naar_scherm(PrtRec* rec, int widths, const PrtKeuze& basis) {
  rec->to_screen = 1;
  rec->page_lines = BLAD_REGELS;
  rec->width = scherm_breedte(widths);
  if (basis.printer.tr_code == PTR_SCHERM) return;
  rec->to_dir = basis.verbinding.to_dir;
  device_zet(rec, veld_tekst(basis.verbinding.device, sizeof basis.verbinding.device));
}

void besturing(char (&doel)[122], const char (&veld)[122]) {
  std::string tekst = veld_tekst(veld, sizeof veld);
  str_unescape(tekst.data());
  veld_zet(doel, sizeof doel, tekst.c_str());
  doel[sizeof doel - 1] = 0;
}

void vul_keuze(PrtRec* rec, const PrtKeuze& keuze) {
  const PtrpRec& c = keuze.configuratie;
  besturing(rec->start_str, c.start);
  besturing(rec->stop_str, c.stop);
  // Endless paper: a page length of 0 would ask for a head on every line.
  rec->page_lines = c.rows == 0 ? PTR_EINDELOOS : c.rows;
  rec->width = c.columns;
  if (keuze.printer.tr_code == PTR_SCHERM) {
    rec->to_screen = 1;
    return;
  }
  rec->to_dir = keuze.verbinding.to_dir;
  device_zet(rec, veld_tekst(keuze.verbinding.device, sizeof keuze.verbinding.device));
}

// A combination from the tables: preselected, the only one, or the operator's pick.
bool naar_printer(PrtRec* rec, uint32_t selection, int widths) {
  const uint16_t printer = static_cast<uint16_t>(selection & 0xFFFF);
  const uint8_t verbinding = static_cast<uint8_t>(selection >> 24);
  PrtKeuze basis{};
  std::vector<PrtKeuze> lijst;
  bool vragen = true;
  if (printer != 0 && prt_lijst_printer(printer, verbinding, widths, &basis, &lijst)) {
    vragen = lijst.size() > 1;
  } else {
    basis = PrtKeuze{};
  }
  int index = lijst.size() == 1 ? 0 : -1;
  if (vragen) {
    lijst = prt_lijst_alles(widths);
    index = prt_lijst_kies(lijst);
  }
  if (index >= 0) {
    vul_keuze(rec, lijst[static_cast<size_t>(index)]);
    return true;
  }
  if ((selection & static_cast<uint32_t>(PRT_SCHERM)) == 0) return false;
  naar_scherm(rec, widths, vragen ? PrtKeuze{} : basis);
  return true;
}

// The device's special names, and what stands in for none.
void device_klaar(PrtRec* rec) {
  const bool aux = std::strcmp(rec->device, "AUX") == 0;
  if (aux || std::strcmp(rec->device, "TERMINAL") == 0) {
    const char* tty = ttyname(0);
    rec->is_aux = aux ? 1 : 0;
    device_zet(rec, tty == nullptr ? "" : tty);
  }
  if (rec->device[0] == 0) {
    device_zet(rec, NERGENS);
  } else if (rec->to_dir != 0 && rec->is_aux == 0) {
    device_zet(rec, std::string(rec->device) + "/" + rec->spool_name);
  }
}

bool spool_open(PrtRec* rec) {
  rec->spool = prt_spool_nieuw(rec->spool_name, sizeof rec->spool_name);
  if (rec->spool == nullptr) {
    medium_fout(rec->spool_name);
    return false;
  }
  if (!prt_device_mag(rec->device)) {
    medium_fout(rec->device);
    std::fclose(rec->spool);
    rec->spool = nullptr;
    file_delete(rec->spool_name);
    return false;
  }
  return true;
}

void begin(PrtRec* rec) {
  device_klaar(rec);
  if (rec->is_aux == 0) {
    const std::string vraag = "lpstat -v " + sh_quote(rec->device) + " 1> /dev/null 2> /dev/null";
    rec->is_lp = sh_systeem(vraag) == 0 ? 1 : 0;
  }
  std::fputs(rec->start_str, rec->spool);
  std::fflush(rec->spool);
  rec->text_start = static_cast<int32_t>(std::ftell(rec->spool));
  rec->page_no = 0;
  rec->line_no = REGEL_GEEN;
  if (scr_ctx == nullptr) return;
  scr_intr_reset();
  // Keys polled from a terminal that is printing would disturb it.
  if (rec->is_aux != 0 && rec->to_screen == 0)
    scr_intr_off();
  else
    scr_intr_on();
}

}  // namespace

const char* prt_path(const char* naam) {
  static char pad[MAP_LENGTE + 2 + 40];
  if (!print_map_bekend) map_lees();
  str_printf(pad, sizeof pad, "%s%s", print_map, naam);
  return pad;
}

bool prt_device_mag(std::string_view device) {
  return !device.starts_with('-') && !device.ends_with(".TXT") && !device.ends_with(".INX");
}

FILE* prt_spool_nieuw(char* naam, size_t grootte) {
  for (int poging = 0; poging < 100; ++poging) {
    str_printf(naam, grootte, "%s", file_temp("", "PR", 0));
    if (naam[0] == 0) return nullptr;
    const int fd = open(naam, O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, 0660);
    if (fd >= 0) {
      FILE* bestand = fdopen(fd, "a");
      if (bestand == nullptr) close(fd);
      return bestand;
    }
    if (errno != EEXIST) return nullptr;
  }
  return nullptr;
}

int prt_width_menu(int widths) {
  struct Breedte {
    int bit, kolommen;
    const Tekst* tekst;
  };
  static constexpr Breedte BREEDTES[] = {
      {PRT_40, 40, &T_PRT_40}, {PRT_80, 80, &T_PRT_80}, {PRT_132, 132, &T_PRT_132}};
  if (scr_ctx == nullptr) return 0;
  TrMenu* menu = tr_menu_new(TR_BOX, 10, 30, 16, txt(T_PRT_BREEDTE));
  if (menu == nullptr) return 0;
  for (const Breedte& b : BREEDTES) {
    tr_menu_add(menu, -1, txt(*b.tekst), b.kolommen, (widths & b.bit) != 0 ? TR_AAN : 0, 0,
                nullptr);
  }
  const int gekozen = tr_menu_run(menu, -1);
  tr_menu_free(menu);
  return gekozen > 0 ? gekozen : 0;
}

int prt_choose(PrtRec* rec, uint32_t selection, int widths, const char* file) {
  const int32_t kopieen = rec->copies;
  *rec = PrtRec{};
  rec->copies = kopieen;
  if ((selection & static_cast<uint32_t>(PRT_BESTAND)) != 0) {
    if (!naar_bestand(rec, widths, file)) return 0;
  } else {
    if (!prt_tabellen_maak()) {
      print_map_bekend = false;
      return 0;
    }
    if (!naar_printer(rec, selection, widths)) return 0;
  }
  if (!spool_open(rec)) return 0;
  begin(rec);
  return 1;
}
