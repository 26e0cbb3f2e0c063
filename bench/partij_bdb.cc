// Berkeley DB: with concurrent data store locking (one writer, many readers) and with transactions
// that do not sync. The further keys are trees of their own that lead to the first key.
#include <db.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "bench/gegevens.h"
#include "bench/partij.h"

namespace {

bool met_tx;
DB_ENV* env = nullptr;
DB *records, *tweede, *derde, *los, *los1, *los2, *los3;
bool drie_bomen;

void eis(int uit) {
  if (uit != 0) meet_fout("bdb", db_strerror(uit));
}

DBT dbt(const void* p, size_t n) {
  DBT d;
  memset(&d, 0, sizeof d);
  d.data = const_cast<void*>(p);
  d.size = d.ulen = static_cast<u_int32_t>(n);
  d.flags = DB_DBT_USERMEM;
  return d;
}

DB* boom(const char* naam, DBTYPE soort = DB_BTREE) {
  DB* db;
  eis(db_create(&db, env, 0));
  if (soort == DB_RECNO) eis(db->set_re_len(db, sizeof(DtSer)));
  eis(db->open(db, nullptr, naam, nullptr, soort, DB_CREATE | (met_tx ? DB_AUTO_COMMIT : 0u),
               0660));
  return db;
}

void open_soort(bool nieuw) {
  if (nieuw) std::filesystem::remove_all("bdb");
  std::filesystem::create_directory("bdb");
  eis(db_env_create(&env, 0));
  eis(env->set_cachesize(env, 0, 256u << 20, 1));
  eis(env->set_lk_detect(env, DB_LOCK_DEFAULT));
  eis(env->set_lg_bsize(env, 4u << 20));
  eis(env->set_lk_max_locks(env, 100000));
  eis(env->set_lk_max_objects(env, 100000));
  if (met_tx) eis(env->set_flags(env, DB_TXN_NOSYNC, 1));
  const u_int32_t wat = met_tx ? DB_INIT_TXN | DB_INIT_LOG | DB_INIT_LOCK | DB_INIT_MPOOL
                               : DB_INIT_CDB | DB_INIT_MPOOL;
  eis(env->open(env, "bdb", wat | DB_CREATE, 0660));
  records = boom("records");
  tweede = boom("tweede");
  derde = boom("derde");
  drie_bomen = false;
}
void open_cdb(bool nieuw) {
  met_tx = false;
  open_soort(nieuw);
}
void open_tds(bool nieuw) {
  met_tx = true;
  open_soort(nieuw);
}

void sluit() {
  for (DB* db : {records, tweede, derde}) db->close(db, DB_NOSYNC);
  if (drie_bomen)
    for (DB* db : {los, los1, los2, los3}) db->close(db, DB_NOSYNC);
  env->close(env, 0);
}

int zet(DB* db, DB_TXN* tx, const void* sleutel, size_t n, const void* data, size_t m) {
  DBT k = dbt(sleutel, n), d = dbt(data, m);
  return db->put(db, tx, &k, &d, 0);
}

/// 0, or DB_LOCK_DEADLOCK.
int zet_record(DB_TXN* tx, const DtSer& r) {
  const Beeld1 een = beeld1(r.nr);
  const Beeld2 twee = beeld2(r);
  const Beeld3 drie = beeld3(r);
  int uit = zet(records, tx, een.data(), een.size(), &r, sizeof r);
  if (uit == 0) uit = zet(tweede, tx, twee.data(), twee.size(), een.data(), een.size());
  if (uit == 0) uit = zet(derde, tx, drie.data(), drie.size(), een.data(), een.size());
  return uit;
}

/// Runs `doe` in a transaction until it was not chosen as the victim of a deadlock.
template <class F>
void in_tx(F doe) {
  for (;;) {
    DB_TXN* tx = nullptr;
    if (met_tx) eis(env->txn_begin(env, nullptr, &tx, 0));
    const int uit = doe(tx);
    if (uit == 0 && tx != nullptr) eis(tx->commit(tx, 0));
    if (uit != 0 && tx != nullptr) tx->abort(tx);
    if (uit == 0) return;
    if (uit != DB_LOCK_DEADLOCK) eis(uit);
  }
}

bool voeg(const DtSer& r) {
  in_tx([&](DB_TXN* tx) { return zet_record(tx, r); });
  return true;
}

void vul(std::span<const DtSer> rij) {
  for (const DtSer& r : rij) voeg(r);
}

bool lees(const Serienr& nr, DtSer* uit) {
  const Beeld1 een = beeld1(nr);
  for (;;) {
    DBT k = dbt(een.data(), een.size()), d = dbt(uit, sizeof *uit);
    const int fout = records->get(records, nullptr, &k, &d, 0);
    if (fout == 0) return true;
    if (fout == DB_NOTFOUND) return false;
    if (fout != DB_LOCK_DEADLOCK) eis(fout);
  }
}

uint64_t loop() {
  DBC* c;
  eis(records->cursor(records, nullptr, &c, 0));
  Beeld1 een;
  DtSer r;
  uint64_t som = 0;
  for (;;) {
    DBT k = dbt(een.data(), een.size()), d = dbt(&r, sizeof r);
    if (c->get(c, &k, &d, DB_NEXT) != 0) break;
    loop_tel(&som, r);
  }
  c->close(c);
  return som;
}

uint64_t loop_tweede() {
  DBC* c;
  eis(tweede->cursor(tweede, nullptr, &c, 0));
  Beeld1 een;
  Beeld2 twee;
  DtSer r;
  uint64_t som = 0;
  for (;;) {
    DBT k = dbt(twee.data(), twee.size()), d = dbt(een.data(), een.size()), rec = dbt(&r, sizeof r);
    if (c->get(c, &k, &d, DB_NEXT) != 0) break;
    eis(records->get(records, nullptr, &d, &rec, 0));
    loop_tel(&som, r);
  }
  c->close(c);
  return som;
}

int wijzig_met_cursor(const Beeld1& een) {
  DBC* c;
  eis(records->cursor(records, nullptr, &c, DB_WRITECURSOR));
  DtSer r;
  DBT k = dbt(een.data(), een.size()), d = dbt(&r, sizeof r);
  int uit = c->get(c, &k, &d, DB_SET);
  if (uit == 0) {
    ++r.voorraad;
    uit = c->put(c, &k, &d, DB_CURRENT);
  }
  c->close(c);
  return uit;
}

bool wijzig(const Serienr& nr) {
  const Beeld1 een = beeld1(nr);
  if (!met_tx) {
    const int uit = wijzig_met_cursor(een);
    if (uit != DB_NOTFOUND) eis(uit);
    return uit == 0;
  }
  bool er = true;
  in_tx([&](DB_TXN* tx) {
    DtSer r;
    DBT k = dbt(een.data(), een.size()), d = dbt(&r, sizeof r);
    const int uit = records->get(records, tx, &k, &d, DB_RMW);
    er = uit == 0;
    if (uit == DB_NOTFOUND) return 0;
    if (uit != 0) return uit;
    ++r.voorraad;
    return records->put(records, tx, &k, &d, 0);
  });
  return er;
}

void bouw_klaar(uint32_t n) {
  los = boom("los", DB_RECNO);
  los1 = boom("los1");
  los2 = boom("los2");
  los3 = boom("los3");
  drie_bomen = true;
  for (uint32_t i = 0; i < n; ++i) {
    const DtSer r = meet_serie(i);
    const db_recno_t nr = i + 1;
    eis(zet(los, nullptr, &nr, sizeof nr, &r, sizeof r));
  }
}

void bouw() {
  DBC* c;
  eis(los->cursor(los, nullptr, &c, 0));
  for (;;) {
    db_recno_t nr;
    DtSer r;
    DBT k = dbt(&nr, sizeof nr), d = dbt(&r, sizeof r);
    if (c->get(c, &k, &d, DB_NEXT) != 0) break;
    const Beeld1 een = beeld1(r.nr);
    const Beeld2 twee = beeld2(r);
    const Beeld3 drie = beeld3(r);
    eis(zet(los1, nullptr, een.data(), een.size(), &nr, sizeof nr));
    eis(zet(los2, nullptr, twee.data(), twee.size(), &nr, sizeof nr));
    eis(zet(los3, nullptr, drie.data(), drie.size(), &nr, sizeof nr));
  }
  c->close(c);
}

}  // namespace

const Partij PARTIJ_BDB_CDB = {BDB_CDB,     open_cdb, sluit,  vul,        lees, loop,
                               loop_tweede, voeg,     wijzig, bouw_klaar, bouw};
const Partij PARTIJ_BDB_TDS = {BDB_TDS,     open_tds, sluit,  vul,     lees,   loop,
                               loop_tweede, voeg,     wijzig, nullptr, nullptr};
