// SQLite 3, with a write-ahead log and with a rollback journal. The table is clustered on its key,
// which suits each of its measurements best; only the index build takes a plain table.
#include <sqlite3.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "bench/gegevens.h"
#include "bench/partij.h"
#include "bench/sqlite_hulp.h"

namespace {

constexpr int REST = 150;  // the record without what stands in columns of its own

bool met_wal;
sqlite3* db = nullptr;
sqlite3_stmt *s_lees, *s_loop, *s_tweede, *s_voeg, *s_wijzig;

void instellen() {
  sqlite3_busy_timeout(db, 60000);  // first: four processes open it at once
  sq_doe(db, met_wal ? "PRAGMA journal_mode=WAL" : "PRAGMA journal_mode=TRUNCATE");
  sq_doe(db, "PRAGMA synchronous=OFF");
  sq_doe(db, "PRAGMA cache_size=-131072");
}

void open_soort(bool nieuw) {
  if (nieuw)
    for (const char* f : {"ser.db", "ser.db-wal", "ser.db-shm", "ser.db-journal"}) unlink(f);
  if (sqlite3_open("ser.db", &db) != SQLITE_OK) meet_fout("sqlite", sqlite3_errmsg(db));
  instellen();
  if (nieuw) {
    sq_doe(db,
           "CREATE TABLE ser(a INTEGER, k INTEGER, v INTEGER, merk INTEGER, model BLOB, "
           "deel INTEGER, voorraad INTEGER, rest BLOB, PRIMARY KEY(a,k,v)) WITHOUT ROWID");
    sq_doe(db, "CREATE INDEX key2 ON ser(merk,a,model,k,v)");
    sq_doe(db, "CREATE INDEX key3 ON ser(a,deel,k,v)");
  }
  s_lees = sq_maak(db, "SELECT merk,model,deel,voorraad,rest FROM ser WHERE a=? AND k=? AND v=?");
  s_loop = sq_maak(db, "SELECT a,k,v,merk,model,deel,voorraad,rest FROM ser ORDER BY a,k,v");
  s_tweede = sq_maak(db,
                     "SELECT a,k,v,merk,model,deel,voorraad,rest FROM ser INDEXED BY key2 "
                     "ORDER BY merk,a,model,k,v");
  s_voeg = sq_maak(db, "INSERT INTO ser VALUES(?,?,?,?,?,?,?,?)");
  s_wijzig = sq_maak(db, "UPDATE ser SET voorraad=voorraad+1 WHERE a=? AND k=? AND v=?");
}

void open_wal(bool nieuw) {
  met_wal = true;
  open_soort(nieuw);
}
void open_rol(bool nieuw) {
  met_wal = false;
  open_soort(nieuw);
}

void sluit() {
  for (sqlite3_stmt* s : {s_lees, s_loop, s_tweede, s_voeg, s_wijzig}) sqlite3_finalize(s);
  sqlite3_close(db);
}

void bind_nr(sqlite3_stmt* s, const Serienr& nr) {
  sqlite3_bind_int(s, 1, static_cast<int>(nr.artgroep));
  sqlite3_bind_int(s, 2, nr.kleur);
  sqlite3_bind_int(s, 3, nr.volgnr);
}

void bind_rij(sqlite3_stmt* s, const DtSer& r) {
  bind_nr(s, r.nr);
  sqlite3_bind_int(s, 4, r.merk);
  sqlite3_bind_blob(s, 5, r.model, sizeof r.model, SQLITE_STATIC);
  sqlite3_bind_int(s, 6, r.deelseizoen);
  sqlite3_bind_int64(s, 7, r.voorraad);
  sqlite3_bind_blob(s, 8, r.omschrijving, REST, SQLITE_STATIC);
}

bool klaar(sqlite3_stmt* s) {
  const int uit = sqlite3_step(s);
  sqlite3_reset(s);
  if (uit != SQLITE_DONE) meet_fout("sqlite", sqlite3_errmsg(db));
  return sqlite3_changes(db) == 1;
}

void vul(std::span<const DtSer> records) {
  sq_doe(db, "BEGIN");
  for (const DtSer& r : records) {
    bind_rij(s_voeg, r);
    klaar(s_voeg);
  }
  sq_doe(db, "COMMIT");
}

void neem(sqlite3_stmt* s, int kolom, DtSer* uit) {
  uit->merk = static_cast<uint16_t>(sqlite3_column_int(s, kolom));
  memcpy(uit->model, sqlite3_column_blob(s, kolom + 1), sizeof uit->model);
  uit->deelseizoen = static_cast<uint8_t>(sqlite3_column_int(s, kolom + 2));
  memcpy(uit->omschrijving, sqlite3_column_blob(s, kolom + 4), REST);
  uit->voorraad = static_cast<uint32_t>(sqlite3_column_int64(s, kolom + 3));  // newer than its copy
}

bool lees(const Serienr& nr, DtSer* uit) {
  bind_nr(s_lees, nr);
  const bool er = sqlite3_step(s_lees) == SQLITE_ROW;
  if (er) {
    uit->nr = nr;
    neem(s_lees, 0, uit);
  }
  sqlite3_reset(s_lees);
  return er;
}

uint64_t loop_langs(sqlite3_stmt* s) {
  DtSer r{};
  uint64_t som = 0;
  while (sqlite3_step(s) == SQLITE_ROW) {
    r.nr = {static_cast<uint32_t>(sqlite3_column_int(s, 0)),
            static_cast<uint16_t>(sqlite3_column_int(s, 1)),
            static_cast<uint16_t>(sqlite3_column_int(s, 2))};
    neem(s, 3, &r);
    loop_tel(&som, r);
  }
  sqlite3_reset(s);
  return som;
}
uint64_t loop() { return loop_langs(s_loop); }
uint64_t loop_tweede() { return loop_langs(s_tweede); }

bool voeg(const DtSer& r) {
  bind_rij(s_voeg, r);
  return klaar(s_voeg);
}

bool wijzig(const Serienr& nr) {
  bind_nr(s_wijzig, nr);
  return klaar(s_wijzig);
}

void bouw_klaar(uint32_t n) {
  sq_doe(db, "DROP TABLE IF EXISTS bouw");
  sq_doe(db,
         "CREATE TABLE bouw(a INTEGER, k INTEGER, v INTEGER, merk INTEGER, model BLOB, "
         "deel INTEGER, voorraad INTEGER, rest BLOB)");
  sqlite3_stmt* s = sq_maak(db, "INSERT INTO bouw VALUES(?,?,?,?,?,?,?,?)");
  sq_doe(db, "BEGIN");
  for (uint32_t i = 0; i < n; ++i) {
    const DtSer r = meet_serie(i);
    bind_rij(s, r);
    klaar(s);
  }
  sq_doe(db, "COMMIT");
  sqlite3_finalize(s);
  sq_doe(db, "PRAGMA wal_checkpoint(TRUNCATE)");
}

void bouw() {
  sq_doe(db, "BEGIN");
  sq_doe(db, "DROP INDEX IF EXISTS b1");
  sq_doe(db, "DROP INDEX IF EXISTS b2");
  sq_doe(db, "DROP INDEX IF EXISTS b3");
  sq_doe(db, "CREATE UNIQUE INDEX b1 ON bouw(a,k,v)");
  sq_doe(db, "CREATE INDEX b2 ON bouw(merk,a,model,k,v)");
  sq_doe(db, "CREATE INDEX b3 ON bouw(a,deel,k,v)");
  sq_doe(db, "COMMIT");
}

}  // namespace

const Partij PARTIJ_SQLITE_WAL = {SQ_WAL,      open_wal, sluit,  vul,        lees, loop,
                                  loop_tweede, voeg,     wijzig, bouw_klaar, bouw};
// The journal has no part in a build.
const Partij PARTIJ_SQLITE_ROL = {SQ_ROL,      open_rol, sluit,  vul,     lees,   loop,
                                  loop_tweede, voeg,     wijzig, nullptr, nullptr};
