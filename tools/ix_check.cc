// check, stat and rebuild: the findings of every table, how full it is, and its index made anew.
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>

#include "isam/base.h"
#include "isam/io.h"
#include "sub/tabeldef.h"
#include "tools/ix_keur.h"
#include "tools/ix_verbs.h"
#include "tools/velden.h"

using nlohmann::ordered_json;

namespace {

/// Files of one session: busy as long as it works, gone when it ends.
bool van_sessie(const Doel& d) { return d.soort == DoelSoort::privaat || d.naam.starts_with("TP"); }

/// Copies and looks at a table; false when it vanished between the listing and now.
bool keur_doel(const Doel& d, const IxOpdracht& o, Verslag* v, Keuring* uit = nullptr) {
  v->tabel = d.naam;
  TabelKopie kopie;
  const KopieStand stand =
      tabel_kopieer(d.naam, van_sessie(d) ? std::min(o.wacht, 1) : o.wacht, &kopie);
  if (stand.uit == KopieUit::ontbreekt && !d.genoemd && van_sessie(d)) return false;
  if (stand.vastgehouden) v->noot({}, "het slot is vastgehouden tot de kopie klaar was");
  if (stand.uit == KopieUit::bezet && van_sessie(d)) {
    v->noot({}, kopie_tekst(stand) + ", niet gekeurd");
    return true;
  }
  if (stand.uit != KopieUit::goed) {
    v->fout({}, kopie_tekst(stand) + (stand.uit == KopieUit::bezet ? ", niet gekeurd" : ""));
    return true;
  }
  op_lage_voorrang([&] {
    Keuring k = keur_tabel(d.naam, kopie, o.verouderd, v);
    // What it points at goes with the copy.
    k.index = {};
    k.data = {};
    k.verslag = nullptr;
    if (uit != nullptr) *uit = std::move(k);
  });
  return true;
}

bool keur_een(const Doel& d, const IxOpdracht& o, Verslag* v) {
  if (d.soort != DoelSoort::plat) return keur_doel(d, o, v);
  v->tabel = d.naam;
  if (d.naam == "DTETI.TXT")
    keur_etiketten(o.wacht, v);
  else
    keur_prijsgroepen(o.wacht, v);
  return true;
}

/// Findings one by one as they come, or all at once as JSON.
struct Uitvoer {
  bool json;
  ordered_json tabellen = ordered_json::array();
  size_t fouten = 0;

  void neem(const Verslag& v) {
    fouten += v.fouten;
    if (json)
      tabellen.push_back(verslag_json(v));
    else
      verslag_toon(v);
    fflush(stdout);
  }
  int einde() const {
    if (json) json_toon({{"in_orde", fouten == 0}, {"fouten", fouten}, {"tabellen", tabellen}});
    return fouten == 0 ? 0 : 1;
  }
};

}  // namespace

int ix_check(const IxOpdracht& o) {
  const auto doelen = ix_doelen(o.namen);
  if (!doelen) return 2;
  Uitvoer uit{o.json};
  for (const Doel& d : *doelen) {
    Verslag v;
    if (keur_een(d, o, &v)) uit.neem(v);
  }
  return uit.einde();
}

// Stat --------------------------------------------------------------------------------------------

namespace {

ordered_json stat_json(const Doel& d, const Keuring& k) {
  ordered_json uit = {
      {"tabel", d.naam},
      {"omschrijving", cp850_toon(veld_tekst(k.kop.description, sizeof k.kop.description))},
      {"recordlengte", k.kop.record_length},
      {"records", k.slots - k.verwijderd},
      {"verwijderd", k.verwijderd},
      {"databytes", k.slots * k.kop.record_length},
      {"indexbytes", k.blokken * IX_BLOK},
      {"geleegd", k.leeg},
      {"wachtrij", k.rij}};
  auto sleutels = ordered_json::array();
  for (int i = 0; i < k.kop.key_count; ++i) {
    const IxSleutel& s = k.kop.keys[i];
    const KeurSleutel& stand = k.sleutel[static_cast<size_t>(i)];
    ordered_json sleutel = {{"sleutel", i + 1},
                            {"naam", cp850_toon(veld_tekst(s.key_name, sizeof s.key_name))},
                            {"lengte", s.key_length},
                            {"diepte", stand.diepte}};
    auto niveaus = ordered_json::array();
    for (int n = 1; n <= stand.diepte; ++n) {
      const KeurNiveau& niveau = stand.niveau[static_cast<size_t>(n)];
      const int64_t plaats = niveau.blokken * (s.max_entries - 1);
      niveaus.push_back({{"niveau", n},
                         {"blokken", niveau.blokken},
                         {"ingangen", niveau.ingangen},
                         {"vulling", plaats > 0 ? niveau.ingangen * 100 / plaats : 0}});
    }
    sleutel["niveaus"] = std::move(niveaus);
    sleutels.push_back(std::move(sleutel));
  }
  uit["sleutels"] = std::move(sleutels);
  return uit;
}

int64_t getal(const ordered_json& j, const char* naam) { return j.at(naam).get<int64_t>(); }

void stat_toon(const ordered_json& j) {
  fmt::print(
      "{}: {} records van {} bytes, {} verwijderd; data {} bytes, index {} bytes, {} geleegde "
      "blokken, {} in de wachtrij\n",
      j.at("tabel").get<std::string>(), getal(j, "records"), getal(j, "recordlengte"),
      getal(j, "verwijderd"), getal(j, "databytes"), getal(j, "indexbytes"), getal(j, "geleegd"),
      getal(j, "wachtrij"));
  for (const ordered_json& s : j.at("sleutels")) {
    fmt::print("  sleutel {} {}: {} bytes, {} niveaus\n", getal(s, "sleutel"),
               s.at("naam").get<std::string>(), getal(s, "lengte"), getal(s, "diepte"));
    for (const ordered_json& n : s.at("niveaus"))
      fmt::print("    niveau {}: {} blokken, {} ingangen, {}% gevuld\n", getal(n, "niveau"),
                 getal(n, "blokken"), getal(n, "ingangen"), getal(n, "vulling"));
  }
}

}  // namespace

int ix_stat(const IxOpdracht& o) {
  const auto doelen = ix_doelen(o.namen);
  if (!doelen) return 2;
  auto alle = ordered_json::array();
  bool goed = true;
  for (const Doel& d : *doelen) {
    if (d.soort == DoelSoort::plat) continue;
    Verslag v;
    Keuring k;
    if (!keur_doel(d, o, &v, &k)) continue;
    for (const Bevinding& b : v.rijen) fmt::print(stderr, "{}\n", verslag_regel(v, b));
    goed = goed && v.in_orde();
    if (k.kop.key_count < 1 || k.kop.key_count > IX_SLEUTELS || k.kop.record_length < 1) continue;
    alle.push_back(stat_json(d, k));
    if (!o.json) stat_toon(alle.back());
  }
  if (o.json) json_toon(alle);
  return goed ? 0 : 1;
}

// Rebuild -----------------------------------------------------------------------------------------

namespace {

std::string bezig_met;

void toon_voortgang(const char* titel, int64_t deel, int64_t geheel) {
  if (isatty(STDERR_FILENO) == 0) return;
  if (titel == nullptr && geheel <= 0)
    fmt::print(stderr, "\r\x1b[K");
  else
    fmt::print(stderr, "\r{}: {}%", bezig_met, geheel > 0 ? deel * 100 / geheel : 0);
}

/// An index that IXBLDIX can take the definitions from.
bool kop_bruikbaar(const std::string& naam, const TabelDef* def) {
  ICB kop{};
  const int fd = io_open((naam + ".INX").c_str(), false);
  if (fd < 0) return false;
  const bool gelezen = io_lees(fd, &kop, IX_KOP, 0) == IX_KOP;
  io_close(fd);
  return gelezen && (def == nullptr || kop_is_van(kop, *def));
}

/// A new, empty index of a known table over the data that it has.
void maak_kop(const std::string& naam, const TabelDef& def) {
  ICB* icb = IXCREATE(naam.c_str(), IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, str_format("%s,%d", def.omschrijving, def.lengte).c_str());
  int sleutel = 0;
  for (const char* definitie : def.sleutels)
    if (definitie != nullptr) IXUPDFCB(icb, ++sleutel, definitie);
  IXINITIX(icb);
  // Until the keys are in, an insert would take the first records for free: nobody may work on it.
  icb->busy = 1;
  IXCLOSE(icb);
}

void herbouw(const Doel& d, const IxOpdracht& o, Verslag* v) {
  v->tabel = d.naam;
  const TabelDef* def = tabel_zoek(d.naam);
  const std::string data = d.naam + ".TXT", index = d.naam + ".INX";
  const int64_t grootte = file_size(data.c_str());
  if (grootte < 0) {
    v->fout({}, data + " ontbreekt");
    return;
  }
  if (access(data.c_str(), R_OK | W_OK) != 0 ||
      (file_exists(index.c_str()) && access(index.c_str(), R_OK | W_OK) != 0)) {
    v->fout({}, fmt::format("niet te openen: {}", systeemfout(errno)));
    return;
  }
  if (def != nullptr && grootte % def->lengte != 0) {
    v->fout({},
            fmt::format("databestand van {} bytes, geen veelvoud van {}", grootte, def->lengte));
    return;
  }
  if (!kop_bruikbaar(d.naam, def)) {
    if (def == nullptr) {
      v->fout({}, index + " is niet te lezen en de tabel is niet bekend");
      return;
    }
    maak_kop(d.naam, *def);
  }
  bezig_met = d.naam;
  if (IXBLDIX(d.naam.c_str()) != 1) {
    v->fout({}, "niet herbouwd: kop of databestand klopt niet");
    return;
  }
  keur_doel(d, o, v);
}

}  // namespace

int ix_rebuild(const IxOpdracht& o) {
  const auto doelen = ix_doelen(o.namen);
  if (!doelen) return 2;
  for (const Doel& d : *doelen) {
    if (!d.genoemd || d.soort == DoelSoort::tabel) continue;
    fmt::print(stderr, "ixtool: {} kan niet herbouwd worden: niets zegt welke records erin horen\n",
               d.naam);
    return 2;
  }
  ix_hooks.voortgang = toon_voortgang;
  Uitvoer uit{o.json};
  for (const Doel& d : *doelen) {
    if (d.soort != DoelSoort::tabel || (!d.genoemd && van_sessie(d))) continue;
    Verslag v;
    herbouw(d, o, &v);
    uit.neem(v);
  }
  return uit.einde();
}
