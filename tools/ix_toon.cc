// dump, walk and queue: what stands in a table, as text or JSON. Dumps and walks look at a copy, so
// that they show one moment and hold nobody up.
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <nlohmann/json.hpp>

#include "isam/base.h"
#include "isam/io.h"
#include "tools/ix_keur.h"
#include "tools/ix_verbs.h"
#include "tools/velden.h"

using nlohmann::ordered_json;

namespace {

/// A copy and its header; false, with a line, when there is nothing to show.
struct Beeld {
  TabelKopie kopie;
  Keuring k;
  Verslag verslag;
  Velden velden;

  bool laad(const Doel& d, const IxOpdracht& o) {
    verslag.tabel = d.naam;
    const KopieStand stand = tabel_kopieer(d.naam, o.wacht, &kopie);
    if (stand.uit == KopieUit::bezet)
      fmt::print(stderr, "{}: {}; de kopie kan van meer dan een moment zijn\n", d.naam,
                 kopie_tekst(stand));
    else if (stand.uit != KopieUit::goed) {
      fmt::print(stderr, "{}: {}\n", d.naam, kopie_tekst(stand));
      return false;
    }
    k.index = kopie.index;
    k.data = kopie.data;
    k.privaat = d.soort == DoelSoort::privaat;
    k.verslag = &verslag;
    goed = keur_kop(k, d.naam);
    velden = velden_van(k.kop, d.naam);
    return true;
  }
  bool goed = false;  // the header can be worked with
  void toon_fouten() const {
    for (const Bevinding& b : verslag.rijen)
      if (b.fout) fmt::print(stderr, "{}\n", verslag_regel(verslag, b));
  }
  std::span<const uint8_t> slot(int64_t nr) const {
    return {k.slot(nr), static_cast<size_t>(k.kop.record_length)};
  }
};

ordered_json sleutel_def(const IxSleutel& s, int nr, Velden velden) {
  ordered_json uit = {{"sleutel", nr},
                      {"naam", cp850_toon(veld_tekst(s.key_name, sizeof s.key_name))},
                      {"dubbelen", s.dup == 'J'},
                      {"lengte", s.key_length},
                      {"ingangen", s.max_entries}};
  auto delen = ordered_json::array();
  for (int i = 0; i < IX_VELDEN && s.field_type[i] != 0; ++i) {
    const int van = s.field_start[i], tot = s.field_end[i];
    delen.push_back({{"soort", cp850_toon(std::string_view(&s.field_type[i], 1))},
                     {"van", van},
                     {"tot", tot},
                     {"veld", veld_naam(velden, van - 1, tot - van + 1)}});
  }
  uit["velden"] = std::move(delen);
  return uit;
}

ordered_json kop_json(const Doel& d, const ICB& kop, Velden velden) {
  ordered_json uit = {
      {"tabel", d.naam},
      {"name", cp850_toon(veld_tekst(kop.name, sizeof kop.name))},
      {"description", cp850_toon(veld_tekst(kop.description, sizeof kop.description))},
      {"key_count", kop.key_count},
      {"free_head", kop.free_head},
      {"record_count", kop.record_count},
      {"next_block", kop.next_block},
      {"record_length", kop.record_length},
      {"busy", kop.busy},
      {"version", kop.version}};
  auto sleutels = ordered_json::array();
  for (int i = 0; i < std::clamp<int>(kop.key_count, 0, IX_SLEUTELS); ++i)
    sleutels.push_back(sleutel_def(kop.keys[i], i + 1, velden));
  uit["sleutels"] = std::move(sleutels);
  return uit;
}

void kop_toon(const ordered_json& j) {
  for (const auto& [naam, waarde] : j.items()) {
    if (naam == "sleutels") continue;
    fmt::print("{}: {}\n", naam, waarde.is_string() ? waarde.get<std::string>() : waarde.dump());
  }
  for (const ordered_json& s : j.at("sleutels")) {
    std::string delen;
    for (const ordered_json& deel : s.at("velden"))
      delen += fmt::format(" {},{},{}({})", deel.at("soort").get<std::string>(),
                           deel.at("van").get<int>(), deel.at("tot").get<int>(),
                           deel.at("veld").get<std::string>());
    fmt::print("sleutel {} {} {} lengte {} ingangen {}:{}\n", s.at("sleutel").get<int>(),
               s.at("naam").get<std::string>(), s.at("dubbelen").get<bool>() ? "J" : "N",
               s.at("lengte").get<int>(), s.at("ingangen").get<int>(), delen);
  }
}

// Blocks ------------------------------------------------------------------------------------------

ordered_json blok_json(const Beeld& b, int64_t nr) {
  const uint8_t* p = b.k.blok(nr);
  const bool rij = nr == b.k.kop.key_count + 1;
  ordered_json uit = {{"blok", nr},
                      {"soort", rij ? "wachtrij" : "boom"},
                      {"key_number", p[0]},
                      {"level", p[1]},
                      {"count", static_cast<int8_t>(p[4])}};
  auto ingangen = ordered_json::array();
  if (rij || (p[0] >= 1 && p[0] <= b.k.kop.key_count)) {
    const IxSleutel& s = b.k.kop.keys[rij ? 0 : p[0] - 1];
    const int breed = rij ? s.key_length : ix_ingang(s);
    const int aantal = rij_aantal(p, breed);
    for (int i = 0; i < aantal; ++i) {
      const uint8_t* beeld = p + offsetof(IxBlok, entries) + i * breed;
      ordered_json ingang = {{"ingang", i}};
      const bool einde =
          std::all_of(beeld, beeld + s.key_length, [](uint8_t x) { return x == 255; });
      if (einde)
        ingang["sleutel"] = "einde";
      else
        ingang["sleutel"] = sleutel_json(s, beeld, b.velden);
      if (!rij) ingang[p[1] == 1 ? "record" : "blok"] = ix_i32(beeld + s.key_length);
      ingangen.push_back(std::move(ingang));
    }
  }
  uit["ingangen"] = std::move(ingangen);
  return uit;
}

void blok_toon(const ordered_json& j) {
  fmt::print("blok {} ({}): key_number {} level {} count {}\n", j.at("blok").get<int64_t>(),
             j.at("soort").get<std::string>(), j.at("key_number").get<int>(),
             j.at("level").get<int>(), j.at("count").get<int>());
  for (const ordered_json& i : j.at("ingangen")) {
    const ordered_json& sleutel = i.at("sleutel");
    std::string regel = fmt::format("  {}: {}", i.at("ingang").get<int>(),
                                    sleutel.is_string() ? "einde" : velden_tekst(sleutel));
    for (const char* wijzer : {"record", "blok"})
      if (i.contains(wijzer)) regel += fmt::format(" -> {} {}", wijzer, i.at(wijzer).get<int>());
    fmt::print("{}\n", regel);
  }
}

bool kan_keuze(const Beeld& b, const IxOpdracht& o) {
  for (const std::string& naam : o.velden) {
    const bool er = std::ranges::any_of(b.velden, [&](const Veld& v) { return naam == v.naam; });
    if (er) continue;
    fmt::print(stderr, "ixtool: {} heeft geen veld \"{}\"\n", b.verslag.tabel, naam);
    return false;
  }
  return true;
}

// Records -----------------------------------------------------------------------------------------

/// One record as a line, or added to the rows of a JSON answer.
struct Regels {
  bool json;
  ordered_json rijen = ordered_json::array();

  void neem(int64_t nr, const ordered_json& velden) {
    if (!json) {
      fmt::print("{}: {}\n", nr, velden_tekst(velden));
      return;
    }
    ordered_json rij = {{"record", nr}};
    rij.update(velden);
    rijen.push_back(std::move(rij));
  }
};

ordered_json dump_records(const Beeld& b, const IxOpdracht& o) {
  Regels uit{o.json};
  const int64_t begin = std::clamp<int64_t>(o.van, 0, b.k.slots);
  const int64_t over = b.k.slots - begin;
  const int64_t einde = begin + (o.aantal < 0 ? over : std::min(o.aantal, over));
  for (int64_t nr = begin; nr < einde; ++nr) {
    if (b.k.levend[static_cast<size_t>(nr)])
      uit.neem(nr, record_json(o.ruw ? Velden() : b.velden, b.slot(nr), o.velden));
    else
      uit.neem(nr, {{"verwijderd", true}, {"volgende", ix_i32(b.k.slot(nr) + 1)}});
  }
  return uit.rijen;
}

int dump_een(const Doel& d, const IxOpdracht& o, ordered_json* alle) {
  Beeld b;
  if (!b.laad(d, o)) return 1;
  b.toon_fouten();
  if (!kan_keuze(b, o)) return 2;
  if (b.k.index.size() < IX_KOP) return 1;
  ordered_json j = kop_json(d, b.k.kop, b.velden);
  if (o.blok >= b.k.blokken) {
    fmt::print(stderr, "ixtool: {} heeft {} blokken\n", d.naam, b.k.blokken);
    return 2;
  }
  const bool records = o.records || o.ruw;
  if (!records && !o.json) kop_toon(j);
  if (o.blok > 0 && b.goed) {
    j["blok"] = blok_json(b, o.blok);
    if (!o.json) blok_toon(j["blok"]);
  }
  if (records && b.k.kop.record_length >= 5 && !b.k.levend.empty())
    j["records"] = dump_records(b, o);
  alle->push_back(std::move(j));
  return b.verslag.in_orde() ? 0 : 1;
}

// Walk --------------------------------------------------------------------------------------------

int walk_een(const Doel& d, const IxOpdracht& o, ordered_json* alle) {
  Beeld b;
  if (!b.laad(d, o)) return 1;
  b.toon_fouten();
  if (!b.goed) return 1;
  if (o.sleutel < 1 || o.sleutel > b.k.kop.key_count) {
    fmt::print(stderr, "ixtool: {} heeft {} sleutels\n", d.naam, b.k.kop.key_count);
    return 2;
  }
  if (!kan_keuze(b, o)) return 2;
  const IxSleutel& s = b.k.kop.keys[o.sleutel - 1];
  uint8_t prefix[IX_SLEUTELBYTES];
  const int lengte = sleutel_uit_tekst(s, o.prefix, b.velden, prefix);
  if (lengte < 0) {
    fmt::print(stderr, "ixtool: --prefix past niet op sleutel {} van {}\n", o.sleutel, d.naam);
    return 2;
  }
  Regels uit{o.json};
  loop_bladeren(b.k, o.sleutel, [&](const uint8_t* beeld, int32_t record) {
    const int verschil = ix_vergelijk(s, beeld, prefix, lengte);
    if (verschil > 0 || record >= b.k.slots) return verschil <= 0;
    if (verschil == 0 && b.k.levend[static_cast<size_t>(record)])
      uit.neem(record, record_json(b.velden, b.slot(record), o.velden));
    return true;
  });
  alle->push_back({{"tabel", d.naam}, {"sleutel", o.sleutel}, {"records", std::move(uit.rijen)}});
  return b.verslag.in_orde() ? 0 : 1;
}

// Queue -------------------------------------------------------------------------------------------

/// The queue block under its own lock, which lasts as long as this does.
struct Wachtrij {
  int fd = -1;
  int64_t plaats = 0;
  ICB kop{};
  uint8_t blok[IX_BLOK] = {};
  bool slot = false;

  ~Wachtrij() {
    if (slot) file_lock('U', fd, plaats, IX_BLOK);
    if (fd >= 0) io_close(fd);
  }
  /// Empty, or what is wrong.
  std::string open(const Doel& d, int wacht) {
    const std::string pad = ix_paden(d.naam.c_str()).index;
    fd = io_open(pad.c_str(), false);
    if (fd < 0) return fmt::format("{} is niet te openen: {}", pad, systeemfout(errno));
    if (io_lees(fd, &kop, IX_KOP, 0) != IX_KOP || !ix_kop_geldig(&kop))
      return pad + " heeft geen bruikbare kop";
    plaats = ix_blokplaats(kop.key_count + 1);
    const time_t einde = time(nullptr) + wacht;
    while (!file_lock('E', fd, plaats, IX_BLOK)) {
      if (time(nullptr) > einde)
        return fmt::format("wachtrij is in gebruik door proces {}",
                           slot_houder(fd, plaats, IX_BLOK));
      const timespec even{0, 10000000};
      nanosleep(&even, nullptr);
    }
    slot = true;
    if (io_lees(fd, blok, IX_BLOK, plaats) != IX_BLOK) return pad + " is te kort";
    return {};
  }
};

bool queue_een(const Doel& d, const IxOpdracht& o, ordered_json* alle) {
  Wachtrij rij;
  const std::string fout = rij.open(d, o.wacht);
  if (!fout.empty()) {
    fmt::print(stderr, "{}: {}\n", d.naam, fout);
    return false;
  }
  const IxSleutel& s = rij.kop.keys[0];
  const Velden velden = velden_van(rij.kop, d.naam);
  auto sleutels = ordered_json::array();
  for (int i = 0; i < rij_aantal(rij.blok, s.key_length); ++i)
    sleutels.push_back(
        sleutel_json(s, rij.blok + offsetof(IxBlok, entries) + i * s.key_length, velden));
  if (o.wis && !sleutels.empty()) {
    memset(rij.blok, 0, sizeof rij.blok);
    rij.blok[0] = 1;
    io_schrijf(rij.fd, rij.blok, IX_BLOK, rij.plaats);
  }
  const char* wat = o.wis ? "gewist" : "in de wachtrij";
  if (!o.json)
    for (const ordered_json& sleutel : sleutels)
      fmt::print("{}: {}: {}\n", d.naam, wat, velden_tekst(sleutel));
  alle->push_back({{"tabel", d.naam}, {"gewist", o.wis}, {"sleutels", std::move(sleutels)}});
  return true;
}

template <class Doe>
int elk(const IxOpdracht& o, const Doe& doe) {
  const auto doelen = ix_doelen(o.namen);
  if (!doelen) return 2;
  auto alle = ordered_json::array();
  int status = 0;
  for (const Doel& d : *doelen)
    if (d.soort != DoelSoort::plat) status = std::max<int>(status, doe(d, &alle));
  if (o.json && status < 2) json_toon(alle);
  return status;
}

}  // namespace

int ix_dump(const IxOpdracht& o) {
  return elk(o, [&](const Doel& d, ordered_json* alle) { return dump_een(d, o, alle); });
}

int ix_walk(const IxOpdracht& o) {
  return elk(o, [&](const Doel& d, ordered_json* alle) { return walk_een(d, o, alle); });
}

int ix_queue(const IxOpdracht& o) {
  return elk(o, [&](const Doel& d, ordered_json* alle) { return queue_een(d, o, alle) ? 0 : 1; });
}
