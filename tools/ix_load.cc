// load: records from a dump into a table, through the engine. Everything is read and held against
// the table before the first record is written; meanwhile nobody else is in it.
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix_intern.h"
#include "tools/ix_verbs.h"
#include "tools/tabelkopie.h"
#include "tools/velden.h"

using nlohmann::ordered_json;

namespace {

using Bytes = std::vector<uint8_t>;

struct Tabel {
  ICB* icb = nullptr;
  Velden velden;
  std::string naam;
  ~Tabel() {
    if (icb != nullptr) IXCLOSE(icb);
  }
  size_t lengte() const { return static_cast<size_t>(icb->record_length); }
};

time_t uiterlijk;  // somebody else is in the table: until then

void wacht(ICB* icb) {
  const std::string naam(icb->path, strnlen(icb->path, sizeof icb->path));
  if (std::time(nullptr) >= uiterlijk)
    ix_fataal(
        fmt::format("{}: in gebruik door proces {}", naam, slot_houder(icb->index_fd, 0, IX_BLOK))
            .c_str());
  const timespec even{0, 100000000};
  nanosleep(&even, nullptr);
}

// A dump as records -------------------------------------------------------------------------------

bool hex_bytes(const std::string& tekst, Bytes* uit) {
  const auto cijfer = [](char c) {
    return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
  };
  if (tekst.size() != uit->size() * 2) return false;
  for (size_t i = 0; i < uit->size(); ++i) {
    const int hoog = cijfer(tekst[2 * i]), laag = cijfer(tekst[2 * i + 1]);
    if (hoog < 0 || laag < 0) return false;
    (*uit)[i] = static_cast<uint8_t>(hoog << 4 | laag);
  }
  return true;
}

bool zet_getal(const Veld& v, const ordered_json& j, uint8_t* p) {
  if (!j.is_number_integer()) return false;
  const auto n = j.get<int64_t>();
  const int breed = veld_breedte(v);
  const bool teken = v.soort == VeldSoort::i32;
  const int64_t laagst = teken ? INT32_MIN : 0;
  const int64_t hoogst = teken ? INT32_MAX : (int64_t{1} << (8 * breed)) - 1;
  if (n < laagst || n > hoogst) return false;
  for (int i = 0; i < breed; ++i) p[i] = static_cast<uint8_t>(n >> (8 * i) & 255);
  return true;
}

bool zet_tekst(const Veld& v, const ordered_json& j, uint8_t* p) {
  if (!j.is_string()) return false;
  bool geheel = true;
  std::string tekst = utf8_cp850(j.get<std::string>(), &geheel);
  const auto breed = static_cast<size_t>(v.breedte);
  const bool verhuld = v.soort == VeldSoort::verhuld;
  if (!geheel || tekst.size() + (verhuld ? 1 : 0) > breed) return false;
  auto* veld = reinterpret_cast<char*>(p);
  if (verhuld && unscramble_veld(veld, breed) == tekst) return true;
  if (verhuld && !tekst.empty()) {
    tekst.resize(tekst.size() + 2);
    SCRAMBLE(tekst.data());
    tekst.resize(strnlen(tekst.data(), tekst.size()));
  }
  veld_zet(veld, breed, tekst);
  return true;
}

bool zet_bits(const Veld& v, const ordered_json& j, uint8_t* p) {
  if (!j.is_array()) return false;
  std::fill_n(p, v.breedte, uint8_t{0});
  for (const ordered_json& bit : j) {
    const int64_t n = bit.is_number_integer() ? bit.get<int64_t>() : -1;
    if (n < 0 || n >= int64_t{8} * v.breedte) return false;
    p[n / 8] = static_cast<uint8_t>(p[n / 8] | 1 << (n % 8));
  }
  return true;
}

bool zet_een(const Veld& v, const ordered_json& j, uint8_t* p) {
  if (v.soort == VeldSoort::tekst || v.soort == VeldSoort::verhuld) return zet_tekst(v, j, p);
  return v.soort == VeldSoort::bits ? zet_bits(v, j, p) : zet_getal(v, j, p);
}

/// A row of values: a list of all, or an object of those that are not 0.
bool zet_rij(const Veld& v, const ordered_json& j, uint8_t* rec) {
  const int stap = v.stap == 0 ? veld_breedte(v) : v.stap;
  if (j.is_array() ? j.size() != static_cast<size_t>(v.aantal) : !j.is_object()) return false;
  if (j.is_object())
    for (int i = 0; i < v.aantal; ++i)
      std::fill_n(rec + v.offset + i * stap, veld_breedte(v), uint8_t{0});
  int teller = 0;
  for (const auto& [naam, waarde] : j.items()) {
    int i = teller++;
    if (j.is_object()) {
      const bool cijfers = !naam.empty() && naam.size() < 5 &&
                           naam.find_first_not_of("0123456789") == std::string::npos;
      i = cijfers ? std::stoi(naam) : v.aantal;
    }
    if (i >= v.aantal || !zet_een(v, waarde, rec + v.offset + i * stap)) return false;
  }
  return true;
}

/// Puts the fields that are named into the record; the name of one that cannot be, else empty.
std::string zet_velden(Velden velden, const ordered_json& rij, Bytes* rec) {
  for (const auto& deel : rij.items()) {
    const std::string& naam = deel.key();
    const ordered_json& waarde = deel.value();
    if (naam == "record") continue;
    const auto v = std::ranges::find_if(velden, [&](const Veld& x) { return naam == x.naam; });
    if (v != velden.end()) {
      const bool goed = v->aantal > 1 ? zet_rij(*v, waarde, rec->data())
                                      : zet_een(*v, waarde, rec->data() + v->offset);
      if (!goed) return naam;
      continue;
    }
    const bool som = std::ranges::any_of(
        velden, [&](const Veld& x) { return x.som && naam == std::string(x.naam) + "_som"; });
    if (!som) return naam;
  }
  return {};
}

/// Lines `12: hex="..."`, as a dump writes them; false with the number of one that is none.
bool lees_regels(const std::string& tekst, ordered_json* uit, size_t* regel) {
  size_t begin = 0;
  for (*regel = 1; begin < tekst.size(); ++*regel) {
    const size_t einde = std::min(tekst.find('\n', begin), tekst.size());
    const std::string_view r(tekst.data() + begin, einde - begin);
    begin = einde + 1;
    const size_t van = r.find(": hex=\"");
    if (r.empty() || r.find(": verwijderd=") != std::string_view::npos) continue;
    if (van == std::string_view::npos || !r.ends_with('"') || r.size() < van + 8) return false;
    uit->push_back({{"hex", std::string(r.substr(van + 7, r.size() - van - 8))}});
  }
  return true;
}

bool weiger(const std::string& tekst) {
  fmt::print(stderr, "ixtool: {}\n", tekst);
  return false;
}

bool lees_dump(const std::string& bestand, ordered_json* rijen) {
  std::ifstream f(bestand, std::ios::binary);
  std::istream& in = bestand == "-" ? std::cin : f;
  if (!in) return weiger(fmt::format("{}: {}", bestand, systeemfout(errno)));
  const std::string tekst{std::istreambuf_iterator<char>(in), {}};
  const size_t eerste = tekst.find_first_not_of(" \t\r\n");
  *rijen = ordered_json::array();
  if (eerste == std::string::npos || (tekst[eerste] != '[' && tekst[eerste] != '{')) {
    size_t regel = 0;
    if (lees_regels(tekst, rijen, &regel)) return true;
    return weiger(fmt::format("{}: regel {} is geen record van dump --ruw", bestand, regel));
  }
  ordered_json j = ordered_json::parse(tekst, nullptr, false);
  if (j.is_array() && j.size() == 1 && j[0].is_object() && j[0].contains("records")) j = j[0];
  if (j.is_object() && j.contains("records")) j = j["records"];
  if (!j.is_array() || std::ranges::any_of(j, [](const auto& r) { return !r.is_object(); }))
    return weiger(bestand + ": geen JSON van dump --records");
  for (ordered_json& r : j)
    if (!r.contains("verwijderd")) rijen->push_back(std::move(r));
  return true;
}

// Against the table -------------------------------------------------------------------------------

std::string beeld(const Tabel& t, int sleutel, const Bytes& rec) {
  const IxSleutel& s = t.icb->keys[sleutel - 1];
  uint8_t uit[IX_SLEUTELBYTES] = {};
  ix_beeld(t.icb, s, rec.data(), s.key_length, 0, uit);
  return {reinterpret_cast<const char*>(uit), s.key_length};
}

/// The record with this key; empty when there is none.
Bytes zoek(const Tabel& t, int sleutel, Bytes rec) {
  IXSWITCH(t.icb, sleutel);
  return IXREAD(t.icb, rec.data()) ? rec : Bytes();
}

/// A record out of a row of the dump. Fields that it does not name keep what the table has.
std::string maak_record(const Tabel& t, const ordered_json& rij, Bytes* rec) {
  rec->assign(t.lengte(), 0);
  if (rij.contains("hex")) {
    const bool goed = rij["hex"].is_string() && hex_bytes(rij["hex"].get<std::string>(), rec);
    return goed ? "" : fmt::format("geen {} bytes in hexadecimaal", t.lengte());
  }
  if (t.velden.empty()) return "van deze tabel zijn geen velden bekend: gebruik dump --ruw";
  std::string fout = zet_velden(t.velden, rij, rec);
  if (fout.empty()) {
    if (Bytes oud = zoek(t, 1, *rec); !oud.empty()) {
      *rec = std::move(oud);
      fout = zet_velden(t.velden, rij, rec);
    }
  }
  return fout.empty() ? "" : fmt::format("\"{}\" past niet", fout);
}

/// What the keys have against a record; `gezien` are the images of those before it.
std::string toets_sleutels(const Tabel& t, const Bytes& rec,
                           std::array<std::set<std::string>, IX_SLEUTELS>* gezien) {
  const std::string een = beeld(t, 1, rec);
  for (int k = 1; k <= t.icb->key_count; ++k) {
    if (t.icb->keys[k - 1].dup == 'J') continue;
    if (!(*gezien)[static_cast<size_t>(k - 1)].insert(beeld(t, k, rec)).second)
      return fmt::format("sleutel {} staat twee keer in de invoer", k);
    if (k == 1) continue;
    const Bytes ander = zoek(t, k, rec);
    if (!ander.empty() && beeld(t, 1, ander) != een)
      return fmt::format("sleutel {} is van een ander record", k);
  }
  return {};
}

bool toets(const Tabel& t, const ordered_json& rijen, std::vector<Bytes>* records) {
  std::array<std::set<std::string>, IX_SLEUTELS> gezien;
  for (size_t i = 0; i < rijen.size(); ++i) {
    Bytes rec;
    std::string fout = maak_record(t, rijen[i], &rec);
    if (fout.empty() && !ix_levend(rec.data(), t.icb->record_length))
      fout = "dat is een verwijderd record";
    if (fout.empty()) fout = toets_sleutels(t, rec, &gezien);
    if (!fout.empty()) return weiger(fmt::format("{}: record {}: {}", t.naam, i + 1, fout));
    records->push_back(std::move(rec));
  }
  return true;
}

bool open(const std::string& naam, Tabel* t) {
  for (const char* achter : {".INX", ".TXT"})
    if (access((naam + achter).c_str(), R_OK | W_OK) != 0)
      return weiger(fmt::format("{}{}: {}", naam, achter, systeemfout(errno)));
  if (IXCHECK(naam.c_str()) < 0) return weiger(naam + ": niet in orde; zie ixtool check");
  ix_hooks.wacht = wacht;
  t->naam = naam;
  t->icb = IXOPEN(naam.c_str(), IX_EXCLUSIEF);
  t->velden = velden_van(*t->icb, naam);
  return true;
}

}  // namespace

int ix_load(const IxOpdracht& o) {
  const auto doelen = ix_doelen(o.namen);
  if (!doelen || doelen->size() != 1) return 2;
  if (doelen->front().soort != DoelSoort::tabel) {
    weiger(doelen->front().naam + " is geen tabel met eigen records");
    return 2;
  }
  uiterlijk = std::time(nullptr) + o.wacht;
  ordered_json rijen;
  Tabel t;
  std::vector<Bytes> records;
  if (!lees_dump(o.bestand, &rijen) || !open(doelen->front().naam, &t)) return 1;
  const int32_t vooraf = t.icb->record_count;
  if (!toets(t, rijen, &records)) return 1;
  IXSWITCH(t.icb, 1);
  for (Bytes& rec : records)
    if (!IXWRITE(t.icb, rec.data()))
      ix_fataal((t.naam + ": een record is niet geschreven").c_str());
  const ordered_json uit = {{"tabel", t.naam},
                            {"geladen", records.size()},
                            {"plaatsen_erbij", t.icb->record_count - vooraf}};
  if (o.json)
    fmt::print("{}\n", uit.dump(2));
  else
    fmt::print("{}: {} records geladen\n", t.naam, records.size());
  return 0;
}
