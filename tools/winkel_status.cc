// winkel status: who works, what is claimed, how large the tables are.
#include <fmt/format.h>

#include <ctime>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/iotab.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"
#include "tools/winkel.h"

namespace {

void terminals() {
  fmt::print("{:>3} {:<6} {:>6} {:<10} {:<6} {}\n", "Nr", "Code", "Status", "Programma", "tty",
             "sinds");
  TerminalRec rec{};
  for (int32_t n = 0; iotab('N', &n, &rec, SYS_TERMINALS);) {
    if (rec.status == 0 && iotab('T', &n, nullptr, SYS_TERMINALS)) continue;
    const auto sinds = static_cast<time_t>(rec.moment);
    char tijd[32] = "";
    tm lokaal{};
    if (rec.moment != 0 && localtime_r(&sinds, &lokaal) != nullptr)
      std::strftime(tijd, sizeof tijd, "%d-%m-%Y %H:%M", &lokaal);
    fmt::print("{:3} {:<6} {:>6} {:<10} {:<6} {}\n", n,
               cp850_utf8(unscramble_veld(rec.gebruiker, sizeof rec.gebruiker)), rec.status,
               cp850_utf8(veld_tekst(rec.programma, sizeof rec.programma)),
               cp850_utf8(veld_tekst(rec.tty, sizeof rec.tty)), tijd);
  }
}

constexpr int FUNCTIES = 16, SESSIES = 99, BAND = 40085;

void claims() {
  for (int f = 0; f < FUNCTIES; ++f) {
    std::string wie;
    int bezet = 0;
    for (int s = 1; s <= SESSIES; ++s) {
      if (file_lock('T', iotab_fd(), BAND + SESSIES * f + s - 1, 1)) continue;
      ++bezet;
      wie += fmt::format(" {}", s);
    }
    if (bezet == SESSIES) wie = " alleen, door een terminal";
    if (bezet > 0) fmt::print("functie {:2}:{}\n", f, wie);
  }
}

void systeem() {
  int32_t n = 1;
  iotab('R', &n, &sys_rec1, SYS_RECORDS);
  n = 20;
  iotab('R', &n, &sys_rec20, SYS_RECORDS);
  n = 10;
  iotab('R', &n, &sys_rec10, SYS_RECORDS);
  fmt::print("{}, {} filialen, release {}\n",
             cp850_utf8(veld_tekst(sys_rec1.bedrijf, sizeof sys_rec1.bedrijf)), sys_rec1.filialen,
             cp850_utf8(veld_tekst(sys_rec10.release, sizeof sys_rec10.release)));
  if (sys_rec10.status == 0) return;
  const std::string tekst = veld_tekst(sys_rec10.tekst, sizeof sys_rec10.tekst);
  fmt::print("systeemstatus {}: {}\n", sys_rec10.status,
             cp850_utf8(ctl_status_text(tekst.c_str())));
}

/// Nothing is opened but DTSYS.TXT: sizes come from the directory, so no lock can be lost.
void tabellen() {
  fmt::print("{:<10} {:>10} {:>14} {:>14}\n", "Tabel", "records", "bytes", "index");
  for (const TabelDef& def : tabel_alle()) {
    const std::string naam = def.name;
    const int64_t data = file_size((naam + ".TXT").c_str());
    const int64_t index = file_size((naam + ".INX").c_str());
    if (data < 0 || index < 0) {
      fmt::print("{:<10} niet aanwezig\n", naam);
      continue;
    }
    fmt::print("{:<10} {:>10} {:>14} {:>14}\n", naam, data / def.lengte, data, index);
  }
  for (const char* naam : {"DTETI.TXT", "DTIPG.TXT", "INKSYS.TXT", "DTFILGEG.TXT", "DTSYS.TXT"})
    fmt::print("{:<21} {:>14}\n", naam, file_size(naam));
}

}  // namespace

void verb_status(CLI::App& app) {
  static std::string map = ".";
  static bool controle = false;
  CLI::App* verb =
      app.add_subcommand("status", "wie werkt, wat is bezet, hoe groot zijn de tabellen");
  optie_map(verb, &map);
  verb->add_flag("--controle", controle,
                 "en wat tellers, etiketten en bewegingen van elkaar zeggen");
  verb->callback([] {
    in_keten(map);
    int32_t n = 1;
    iotab('O', &n, nullptr, SYS_RECORDS);
    systeem();
    terminals();
    claims();
    tabellen();
    iotab('C', &n, nullptr, SYS_RECORDS);
    if (controle && !status_controle()) std::exit(UIT_FOUT);
  });
}
