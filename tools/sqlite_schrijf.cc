// See sqlite_schrijf.h.
#include "tools/sqlite_schrijf.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "isam/base.h"
#include "isam/ix_intern.h"

namespace {

constexpr const char* INSTELLING =
    "PRAGMA page_size=32768; PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;"
    "PRAGMA locking_mode=EXCLUSIVE; PRAGMA cache_size=-131072; BEGIN";

/// Every date number as text, ten characters each.
struct Datums {
  std::vector<char> tekst = std::vector<char>(size_t{65536} * 10);
  Datums() {
    for (unsigned n = 1; n < 65536; ++n) {
      char plat[9];
      date_text(plat, static_cast<uint16_t>(n), true);  // DDMMJJJJ
      const std::string iso = fmt::format("{:.4}-{:.2}-{:.2}", plat + 4, plat + 2, plat);
      memcpy(&tekst[size_t{n} * 10], iso.data(), 10);
    }
  }
};

bool is_plat(std::string_view s) {
  return std::ranges::all_of(s, [](char c) { return c >= 32 && c < 127; });
}

bool is_tekst(const Veld& v) {
  return v.soort == VeldSoort::tekst || v.soort == VeldSoort::verhuld;
}
bool als_tekst(const Veld& v) {
  return is_tekst(v) || v.soort == VeldSoort::bits || v.vorm == VeldVorm::dag;
}

std::string kolom(const std::string& naam, bool tekst) {
  return fmt::format(",\"{}\" {}", naam, tekst ? "TEXT" : "INTEGER");
}

int64_t getal(const Veld& v, const uint8_t* p) {
  switch (v.soort) {
    case VeldSoort::u8:
      return p[0];
    case VeldSoort::u16:
      return p[0] | p[1] << 8;
    case VeldSoort::u32:
      return static_cast<uint32_t>(ix_i32(p));
    default:
      return ix_i32(p);
  }
}

/// "0,2,5"; "alle" for a set of all that there is and will be.
std::string verzameling(std::span<const uint8_t> bytes) {
  if (std::ranges::all_of(bytes, [](uint8_t b) { return b == 255; })) return "alle";
  std::string uit;
  for (size_t i = 0; i < bytes.size() * 8; ++i) {
    if ((bytes[i / 8] >> (i % 8) & 1) == 0) continue;
    if (!uit.empty()) uit += ',';
    uit += std::to_string(i);
  }
  return uit;
}

void zet_waarde(SqliteRij* rij, const Veld& v, const uint8_t* p) {
  const auto* tekst = reinterpret_cast<const char*>(p);
  const auto n = static_cast<size_t>(veld_breedte(v));
  if (v.soort == VeldSoort::tekst)
    rij->veld({tekst, n});
  else if (v.soort == VeldSoort::verhuld)
    rij->eigen(cp850_toon(unscramble_veld(tekst, n)));
  else if (v.soort == VeldSoort::bits)
    rij->eigen(verzameling({p, n}));
  else if (v.vorm == VeldVorm::dag)
    rij->datum(static_cast<uint16_t>(getal(v, p)));
  else if (v.vorm == VeldVorm::stuks)
    rij->misschien(getal(v, p) != UINT32_MAX, getal(v, p));
  else
    rij->getal(getal(v, p));
}

int stap(const Veld& v) { return v.stap == 0 ? veld_breedte(v) : v.stap; }

int64_t som(const Veld& v, const uint8_t* rec) {
  int64_t uit = 0;
  for (int i = 0; i < v.aantal; ++i) uit += getal(v, rec + v.offset + i * stap(v));
  return uit;
}

std::string hoofdkolommen(Velden velden, const std::string& sleutel, int* aantal) {
  std::string uit = fmt::format("\"{}\" INTEGER PRIMARY KEY", sleutel);
  *aantal = 1;
  for (const Veld& v : velden) {
    if (v.aantal > 1 && !v.som) continue;
    uit += v.som ? kolom(std::string(v.naam) + "_som", false) : kolom(v.naam, als_tekst(v));
    ++*aantal;
  }
  return uit;
}

}  // namespace

void sqlite_doe(SqliteDb* d, const std::string& sql) {
  if (d->goed() && sqlite3_exec(d->db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
    d->fout = sqlite3_errmsg(d->db);
}

void sqlite_open(SqliteDb* d, const std::string& pad) {
  constexpr int HOE = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  if (sqlite3_open_v2(pad.c_str(), &d->db, HOE, nullptr) != SQLITE_OK)
    d->fout = d->db == nullptr ? "onvoldoende geheugen" : sqlite3_errmsg(d->db);
  sqlite_doe(d, INSTELLING);
}

bool sqlite_sluit(SqliteDb* d, const std::string& pad) {
  sqlite_doe(d, "COMMIT");
  if (sqlite3_close(d->db) != SQLITE_OK && d->goed()) d->fout = "niet te sluiten";
  d->db = nullptr;
  if (!d->goed()) return false;
  const int fd = open(pad.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0 || fsync(fd) != 0) d->fout = std::strerror(errno);
  if (fd >= 0) close(fd);
  return d->goed();
}

SqliteRij::SqliteRij(SqliteDb* d, const std::string& tabel, const std::string& vorm, int aantal)
    : doel(d) {
  sqlite_doe(d, fmt::format("CREATE TABLE \"{}\" {}", tabel, vorm));
  std::string sql = fmt::format("INSERT INTO \"{}\" VALUES (?", tabel);
  for (int i = 1; i < aantal; ++i) sql += ",?";
  if (d->goed() && sqlite3_prepare_v2(d->db, (sql + ")").c_str(), -1, &st, nullptr) != SQLITE_OK)
    d->fout = sqlite3_errmsg(d->db);
}

void SqliteRij::datum(uint16_t nummer) {
  static const Datums datums;
  if (nummer == 0) return niets();
  tekst({&datums.tekst[size_t{nummer} * 10], 10});
}

void SqliteRij::veld(std::string_view cp850) {
  const std::string_view heel = cp850.substr(0, cp850.find('\0'));
  is_plat(heel) ? tekst(heel) : eigen(cp850_toon(heel));
}

void SqliteRij::eigen(std::string utf8) {
  std::string& hier = bewaar[bewaard++ % bewaar.size()];
  hier = std::move(utf8);
  tekst(hier);
}

void SqliteRij::rij() {
  plaats = 0;
  bewaard = 0;
  if (!doel->goed()) return;
  if (sqlite3_step(st) != SQLITE_DONE) doel->fout = sqlite3_errmsg(doel->db);
  sqlite3_reset(st);
  ++doel->rijen;
}

namespace {

int hoofdtelling(Velden velden) {
  int aantal = 0;
  hoofdkolommen(velden, "", &aantal);
  return aantal;
}

std::string tekst_van(Velden velden, const std::string& sleutel) {
  int aantal = 0;
  return "(" + hoofdkolommen(velden, sleutel, &aantal) + ")";
}

}  // namespace

SqliteTabel::SqliteTabel(SqliteDb* d, const std::string& naam, Velden velden,
                         const std::string& sleutel)
    : hoofd(d, naam, tekst_van(velden, sleutel), hoofdtelling(velden)) {
  for (const Veld& v : velden) {
    if (v.aantal == 1 || v.som) los.push_back(v);
    if (v.aantal == 1) continue;
    reeks.push_back(v);
    kinderen.push_back(std::make_unique<SqliteRij>(
        d, fmt::format("{}_{}", naam, v.naam),
        fmt::format("(\"{}\" INTEGER, nr INTEGER{}, PRIMARY KEY (\"{}\", nr)) WITHOUT ROWID",
                    sleutel, kolom("waarde", als_tekst(v)), sleutel),
        3));
  }
}

void SqliteTabel::zet(int64_t nummer, std::span<const uint8_t> rec) {
  hoofd.getal(nummer);
  for (const Veld& v : los)
    v.som ? hoofd.getal(som(v, rec.data())) : zet_waarde(&hoofd, v, rec.data() + v.offset);
  hoofd.rij();
  for (size_t i = 0; i < reeks.size(); ++i) {
    const Veld& v = reeks[i];
    for (int nr = 0; nr < v.aantal; ++nr) {
      const uint8_t* p = rec.data() + v.offset + nr * stap(v);
      if (std::all_of(p, p + veld_breedte(v), [](uint8_t b) { return b == 0; })) continue;
      kinderen[i]->getal(nummer);
      kinderen[i]->getal(nr);
      zet_waarde(kinderen[i].get(), v, p);
      kinderen[i]->rij();
    }
  }
}
