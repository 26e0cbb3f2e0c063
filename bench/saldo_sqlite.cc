// The balance in SQLite: the same steps as ours through a temporary keyed table, and one query.
#include <cstring>

#include "bench/gegevens.h"
#include "bench/saldo_meet.h"
#include "bench/sqlite_hulp.h"

namespace {

constexpr const char* TABELLEN[] = {
    "CREATE TABLE art(nr INTEGER PRIMARY KEY, rest BLOB)",
    "CREATE TABLE merk(nr INTEGER PRIMARY KEY, zoek BLOB, rest BLOB)",
    "CREATE TABLE lev(nr INTEGER PRIMARY KEY, rest BLOB)",
    "CREATE TABLE maat(nr INTEGER PRIMARY KEY, rest BLOB)",
    "CREATE TABLE ser(a INTEGER, k INTEGER, v INTEGER, merk INTEGER, lev INTEGER, maat INTEGER, "
    "model BLOB, "
    "locatie BLOB, rest BLOB, PRIMARY KEY(a,k,v)) WITHOUT ROWID",
    "CREATE TABLE pick(van INTEGER, naar INTEGER, a INTEGER, k INTEGER, v INTEGER, opdr INTEGER, "
    "datum INTEGER, aantal BLOB)",
};
constexpr const char* SLEUTELS[] = {
    "CREATE UNIQUE INDEX pick1 ON pick(van,a,k,v,naar,opdr)",
    "CREATE UNIQUE INDEX pick2 ON pick(a,k,v,van,naar,opdr)",
    "CREATE UNIQUE INDEX pick3 ON pick(van,naar,opdr,a,k,v)",
};

uint64_t stuks(const void* blob) {
  uint32_t rij[MATEN];
  memcpy(rij, blob, sizeof rij);
  uint64_t som = 0;
  for (size_t m = 1; m < MATEN; ++m) som += rij[m];
  return som;
}

void sql_stuks(sqlite3_context* c, int, sqlite3_value** v) {
  sqlite3_result_int64(c, static_cast<sqlite3_int64>(stuks(sqlite3_value_blob(v[0]))));
}

sqlite3* open() {
  sqlite3* db = nullptr;
  if (sqlite3_open("saldo.db", &db) != SQLITE_OK) meet_fout("sqlite", "saldo.db");
  for (const char* p : {"PRAGMA journal_mode=WAL", "PRAGMA synchronous=OFF",
                        "PRAGMA cache_size=-65536", "PRAGMA temp.cache_size=-65536"})
    sq_doe(db, p);
  sqlite3_create_function(db, "stuks", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, sql_stuks,
                          nullptr, nullptr);
  return db;
}

void voer_uit(sqlite3* db, sqlite3_stmt* s) {
  if (sqlite3_step(s) != SQLITE_DONE) meet_fout("sqlite", sqlite3_errmsg(db));
  sqlite3_reset(s);
}

void bind(sqlite3_stmt* s, std::initializer_list<int64_t> waarden) {
  int i = 1;
  for (const int64_t w : waarden) sqlite3_bind_int64(s, i++, w);
}

void vul_stam(sqlite3* db) {
  const uint8_t leeg[404] = {};
  const auto vul = [&](const char* sql, int aantal, int bytes) {
    sqlite3_stmt* s = sq_maak(db, sql);
    for (int i = 1; i <= aantal; ++i) {
      bind(s, {i});
      sqlite3_bind_blob(s, 2, leeg, bytes, SQLITE_STATIC);
      voer_uit(db, s);
    }
    sqlite3_finalize(s);
  };
  vul("INSERT INTO art VALUES(?,?)", KETEN_ARTIKELEN, 300);
  vul("INSERT INTO lev VALUES(?,?)", KETEN_LEVERANCIERS, 330);
  vul("INSERT INTO maat VALUES(?,?)", KETEN_MAATSOORTEN, 402);
  sqlite3_stmt* s = sq_maak(db, "INSERT INTO merk VALUES(?,?,?)");
  for (int i = 1; i <= KETEN_MERKEN; ++i) {
    bind(s, {i});
    sqlite3_bind_blob(s, 2, leeg, 4, SQLITE_STATIC);
    sqlite3_bind_blob(s, 3, leeg, 70, SQLITE_STATIC);
    voer_uit(db, s);
  }
  sqlite3_finalize(s);
}

void vul_series(sqlite3* db, uint32_t series) {
  sqlite3_stmt* s = sq_maak(db, "INSERT INTO ser VALUES(?,?,?,?,?,?,?,?,?)");
  for (uint32_t i = 0; i < series; ++i) {
    const DtSer r = meet_serie(i);
    bind(s, {r.nr.artgroep, r.nr.kleur, r.nr.volgnr, r.merk, r.leverancier, r.maatsoort});
    sqlite3_bind_blob(s, 7, r.model, sizeof r.model, SQLITE_STATIC);
    sqlite3_bind_blob(s, 8, r.locatie, sizeof r.locatie, SQLITE_STATIC);
    sqlite3_bind_blob(s, 9, r.omschrijving, 150, SQLITE_STATIC);
    voer_uit(db, s);
  }
  sqlite3_finalize(s);
}

/// The statements that the pass and the totals look a series' master data up with.
struct Opzoek {
  sqlite3_stmt *sel, *ser, *art, *merk, *lev, *maat;
  explicit Opzoek(sqlite3* db)
      : sel(sq_maak(db, "SELECT 1 FROM temp.sel WHERE a=? AND k=? AND v=?")),
        ser(sq_maak(db,
                    "SELECT merk,lev,maat,model,locatie,rest FROM ser WHERE a=? AND k=? AND v=?")),
        art(sq_maak(db, "SELECT rest FROM art WHERE nr=?")),
        merk(sq_maak(db, "SELECT zoek,rest FROM merk WHERE nr=?")),
        lev(sq_maak(db, "SELECT rest FROM lev WHERE nr=?")),
        maat(sq_maak(db, "SELECT rest FROM maat WHERE nr=?")) {}
  ~Opzoek() {
    for (sqlite3_stmt* s : {sel, ser, art, merk, lev, maat}) sqlite3_finalize(s);
  }
  Opzoek(const Opzoek&) = delete;
  Opzoek& operator=(const Opzoek&) = delete;
};

bool vind(sqlite3_stmt* s, std::initializer_list<int64_t> sleutel) {
  sqlite3_reset(s);
  bind(s, sleutel);
  return sqlite3_step(s) == SQLITE_ROW;
}

struct SerieData {
  int merk, lev, maat;
  uint8_t model[15], locatie[6], rest[404], zoek[4];
};

bool lees_serie(Opzoek& o, const int64_t* nr, SerieData* uit, bool met_lev) {
  if (!vind(o.ser, {nr[0], nr[1], nr[2]})) return false;
  uit->merk = sqlite3_column_int(o.ser, 0);
  uit->lev = sqlite3_column_int(o.ser, 1);
  uit->maat = sqlite3_column_int(o.ser, 2);
  memcpy(uit->model, sqlite3_column_blob(o.ser, 3), 15);
  memcpy(uit->locatie, sqlite3_column_blob(o.ser, 4), 6);
  memcpy(uit->rest, sqlite3_column_blob(o.ser, 5), 150);
  if (vind(o.art, {nr[0]})) memcpy(uit->rest, sqlite3_column_blob(o.art, 0), 300);
  if (vind(o.merk, {uit->merk})) memcpy(uit->zoek, sqlite3_column_blob(o.merk, 0), 4);
  if (met_lev && vind(o.lev, {uit->lev})) memcpy(uit->rest, sqlite3_column_blob(o.lev, 0), 330);
  if (met_lev && vind(o.maat, {uit->maat})) memcpy(uit->rest, sqlite3_column_blob(o.maat, 0), 402);
  for (sqlite3_stmt* s : {o.ser, o.art, o.merk, o.lev, o.maat}) sqlite3_reset(s);
  return true;
}

/// The order lines of the selected series into the temporary table.
void verzamel(sqlite3* db, Opzoek& o) {
  sqlite3_stmt* in =
      sq_maak(db, "INSERT OR REPLACE INTO temp.verzamel VALUES(?,?,?,?,?,?,?,?,?,?,?)");
  sqlite3_stmt* regels = sq_maak(
      db,
      "SELECT a,k,v,van,naar,opdr,datum,aantal FROM pick INDEXED BY pick2 ORDER BY a,k,v,van,naar");
  int64_t nr[3] = {-1, -1, -1};
  SerieData serie{};
  bool gekozen = false;
  while (sqlite3_step(regels) == SQLITE_ROW) {
    if (sqlite3_column_int64(regels, 5) != 0) continue;
    const int64_t nu[3] = {sqlite3_column_int64(regels, 0), sqlite3_column_int64(regels, 1),
                           sqlite3_column_int64(regels, 2)};
    if (memcmp(nr, nu, sizeof nr) != 0) {
      memcpy(nr, nu, sizeof nr);
      gekozen = vind(o.sel, {nr[0], nr[1], nr[2]}) && lees_serie(o, nr, &serie, false);
      sqlite3_reset(o.sel);
    }
    if (!gekozen) continue;
    bind(in, {sqlite3_column_int64(regels, 3), sqlite3_column_int64(regels, 4), nr[0], nr[1], nr[2],
              0, sqlite3_column_int64(regels, 6)});
    sqlite3_bind_blob(in, 8, serie.model, 15, SQLITE_STATIC);
    sqlite3_bind_blob(in, 9, serie.locatie, 6, SQLITE_STATIC);
    sqlite3_bind_blob(in, 10, serie.zoek, 4, SQLITE_STATIC);
    sqlite3_bind_blob(in, 11, sqlite3_column_blob(regels, 7), 4 * MATEN, SQLITE_STATIC);
    voer_uit(db, in);
  }
  sqlite3_finalize(in);
  sqlite3_finalize(regels);
}

SaldoTotalen tel(sqlite3* db, Opzoek& o) {
  SaldoTotalen t;
  SerieData serie{};
  sqlite3_stmt* s =
      sq_maak(db, "SELECT van,naar,a,k,v,aantal FROM temp.verzamel ORDER BY van,naar,a,k,v");
  while (sqlite3_step(s) == SQLITE_ROW) {
    const int64_t nr[3] = {sqlite3_column_int64(s, 2), sqlite3_column_int64(s, 3),
                           sqlite3_column_int64(s, 4)};
    lees_serie(o, nr, &serie, true);
    const uint64_t n = stuks(sqlite3_column_blob(s, 5));
    t.uit[static_cast<size_t>(sqlite3_column_int(s, 0)) & 255] += n;
    t.in[static_cast<size_t>(sqlite3_column_int(s, 1)) & 255] += n;
  }
  sqlite3_finalize(s);
  return t;
}

}  // namespace

void saldo_sqlite_maak(uint32_t series, uint32_t regels) {
  sqlite3* db = open();
  for (const char* t : TABELLEN) sq_doe(db, t);
  sq_doe(db, "BEGIN");
  vul_stam(db);
  vul_series(db, series);
  sqlite3_stmt* s = sq_maak(db, "INSERT INTO pick VALUES(?,?,?,?,?,?,?,?)");
  for (uint32_t i = 0; i < regels; ++i) {
    const DtPick r = meet_regel(i, regels);
    bind(s,
         {r.vanfil, r.naarfil, r.nr.artgroep, r.nr.kleur, r.nr.volgnr, r.opdrachtnr, r.orderdatum});
    uint32_t rij[MATEN];
    memcpy(rij, r.aantal, sizeof rij);
    sqlite3_bind_blob(s, 8, rij, sizeof rij, SQLITE_STATIC);
    voer_uit(db, s);
  }
  sqlite3_finalize(s);
  for (const char* t : SLEUTELS) sq_doe(db, t);
  sq_doe(db, "COMMIT");
  sq_doe(db, "PRAGMA wal_checkpoint(TRUNCATE)");
  sqlite3_close(db);
}

SaldoTotalen saldo_sqlite_pas() {
  sqlite3* db = open();
  sq_doe(db,
         "CREATE TEMP TABLE sel(a INTEGER, k INTEGER, v INTEGER, PRIMARY KEY(a,k,v)) "
         "WITHOUT ROWID");
  sq_doe(db,
         "CREATE TEMP TABLE verzamel(van INTEGER, naar INTEGER, a INTEGER, k INTEGER, v INTEGER, "
         "opdr INTEGER, datum INTEGER, model BLOB, locatie BLOB, merk BLOB, aantal BLOB, "
         "PRIMARY KEY(van,naar,a,k,v)) WITHOUT ROWID");
  sq_doe(db, "BEGIN");
  sq_doe(db, "INSERT INTO temp.sel SELECT a,k,v FROM ser");
  SaldoTotalen t;
  {
    Opzoek o(db);
    verzamel(db, o);
    t = tel(db, o);
  }
  sq_doe(db, "COMMIT");
  sqlite3_close(db);
  return t;
}

SaldoTotalen saldo_sqlite_vraag() {
  sqlite3* db = open();
  SaldoTotalen t;
  sqlite3_stmt* s = sq_maak(db,
                            "SELECT van,naar,sum(stuks(aantal)) FROM pick JOIN ser USING(a,k,v) "
                            "WHERE opdr=0 GROUP BY van,naar");
  while (sqlite3_step(s) == SQLITE_ROW) {
    const auto n = static_cast<uint64_t>(sqlite3_column_int64(s, 2));
    t.uit[static_cast<size_t>(sqlite3_column_int(s, 0)) & 255] += n;
    t.in[static_cast<size_t>(sqlite3_column_int(s, 1)) & 255] += n;
  }
  sqlite3_finalize(s);
  sqlite3_close(db);
  return t;
}
