// winkel export: the records of a table as lines of text, in the order in which they stand in its
// file. Guarantees that they are of one moment and that nobody waited for it: a copy is read.
#include <fmt/format.h>

#include <cstdio>

#include "isam/io.h"
#include "sub/datacom.h"
#include "sub/tabeldef.h"
#include "tools/ix_keur.h"
#include "tools/winkel.h"
#include "tools/winkel_csv.h"

namespace {

constexpr int WACHT = 10;  // seconds, for who has a table to himself

struct Export {
  std::string map = ".", tabel, bestand;
  bool json = false;
};

/// Lines to the destination; a disk that is full is told at the end.
struct Uitvoer {
  FILE* uit;
  bool json;
  std::vector<CsvKolom> kolommen;
  int64_t aantal = 0;

  void begin() { fmt::print(uit, "{}", json ? "[" : csv_kop(kolommen) + "\n"); }
  void zet(std::span<const uint8_t> rec) {
    if (json)
      fmt::print(uit, "{}\n{}", aantal == 0 ? "" : ",", csv_json(kolommen, rec));
    else
      fmt::print(uit, "{}\n", csv_regel(kolommen, rec));
    ++aantal;
  }
  void einde() {
    if (json) fmt::print(uit, "\n]\n");
  }
};

void plat(Uitvoer* u) {
  const int fd = file_exists(DC_BESTAND) ? io_open(DC_BESTAND, false) : -1;
  if (fd < 0 && file_exists(DC_BESTAND)) winkel_fout_errno(DC_BESTAND);
  DcRegel r;
  int64_t plaats = 0;
  for (; fd >= 0 && io_lees(fd, &r, sizeof r, plaats) == sizeof r; plaats += sizeof r)
    if (r.code[0] != 0) u->zet({reinterpret_cast<const uint8_t*>(&r), sizeof r});
  if (fd >= 0) io_close(fd);
}

void tabel(const TabelDef& def, Uitvoer* u) {
  TabelKopie kopie;
  Verslag verslag;
  const KopieStand stand = tabel_kopieer(def.name, WACHT, &kopie);
  if (stand.uit != KopieUit::goed) winkel_fout(def.name, kopie_tekst(stand));
  Keuring k;
  k.index = kopie.index;
  k.data = kopie.data;
  k.verslag = &verslag;
  if (!keur_kop(k, def.name) || k.kop.record_length != def.lengte)
    winkel_fout(def.name, "niet te lezen; zie ixtool check");
  for (int64_t n = 0; n < k.slots; ++n)
    if (k.levend[static_cast<size_t>(n)])
      u->zet({k.slot(n), static_cast<size_t>(k.kop.record_length)});
}

void doe_export(const Export& o) {
  const TabelDef* def = tabel_zoek(o.tabel);
  if (def == nullptr && o.tabel != "DTDCIF") winkel_fout(o.tabel, "is geen tabel");
  // The destination is opened first: its name is relative to where the operator stands.
  FILE* uit = o.bestand.empty() ? stdout : std::fopen(o.bestand.c_str(), "w");
  if (uit == nullptr) winkel_fout_errno(o.bestand);
  in_keten(o.map);
  Uitvoer u{uit, o.json, csv_kolommen(velden_van(o.tabel))};
  u.begin();
  if (def == nullptr)
    plat(&u);
  else
    tabel(*def, &u);
  u.einde();
  const bool goed = std::fflush(uit) == 0 && std::ferror(uit) == 0;
  if ((uit != stdout && std::fclose(uit) != 0) || !goed)
    winkel_fout_errno(o.bestand.empty() ? "standaarduitvoer" : o.bestand);
}

}  // namespace

void verb_export(CLI::App& app) {
  static Export o;
  CLI::App* verb = app.add_subcommand("export", "de records van een tabel als tekst");
  optie_map(verb, &o.map);
  verb->add_option("tabel", o.tabel, "DTSER, DTART, ...; DTDCIF de transacties van de kassa's")
      ->required()
      ->type_name("TABEL");
  verb->add_option("bestand", o.bestand, "in plaats van standaarduitvoer")->type_name("BESTAND");
  verb->add_flag("--json", o.json, "JSON in plaats van kolommen met puntkomma's");
  verb->callback([] { doe_export(o); });
}
