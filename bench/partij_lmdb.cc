// LMDB without syncing: the records in one tree, the two further keys in trees of their own that
// lead to the first key; a change is one transaction.
#include <lmdb.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "bench/gegevens.h"
#include "bench/partij.h"

namespace {

MDB_env* env = nullptr;
MDB_txn* lezer = nullptr;  // one reader's slot, renewed for each read: the quickest way LMDB has
MDB_dbi records, tweede, derde, los, los1, los2, los3;

void eis(int uit) {
  if (uit != 0) meet_fout("lmdb", mdb_strerror(uit));
}
MDB_val val(const void* p, size_t n) { return {n, const_cast<void*>(p)}; }

void open(bool nieuw) {
  if (nieuw)
    for (const char* f : {"lmdb", "lmdb-lock"}) unlink(f);
  eis(mdb_env_create(&env));
  eis(mdb_env_set_maxdbs(env, 8));
  eis(mdb_env_set_mapsize(env, size_t{4} << 30));
  eis(mdb_env_open(env, "lmdb", MDB_NOSUBDIR | MDB_NOSYNC | MDB_NOMETASYNC, 0660));
  MDB_txn* txn;
  eis(mdb_txn_begin(env, nullptr, 0, &txn));
  eis(mdb_dbi_open(txn, "records", MDB_CREATE, &records));
  eis(mdb_dbi_open(txn, "tweede", MDB_CREATE, &tweede));
  eis(mdb_dbi_open(txn, "derde", MDB_CREATE, &derde));
  eis(mdb_dbi_open(txn, "los", MDB_CREATE | MDB_INTEGERKEY, &los));
  eis(mdb_dbi_open(txn, "los1", MDB_CREATE, &los1));
  eis(mdb_dbi_open(txn, "los2", MDB_CREATE, &los2));
  eis(mdb_dbi_open(txn, "los3", MDB_CREATE, &los3));
  eis(mdb_txn_commit(txn));
}

void sluit() {
  if (lezer != nullptr) mdb_txn_abort(lezer);
  lezer = nullptr;
  mdb_env_close(env);
}

void zet(MDB_txn* txn, MDB_dbi boom, const void* sleutel, size_t n, const void* data, size_t m) {
  MDB_val k = val(sleutel, n), d = val(data, m);
  eis(mdb_put(txn, boom, &k, &d, 0));
}

void zet_record(MDB_txn* txn, const DtSer& r) {
  const Beeld1 een = beeld1(r.nr);
  const Beeld2 twee = beeld2(r);
  const Beeld3 drie = beeld3(r);
  zet(txn, records, een.data(), een.size(), &r, sizeof r);
  zet(txn, tweede, twee.data(), twee.size(), een.data(), een.size());
  zet(txn, derde, drie.data(), drie.size(), een.data(), een.size());
}

void vul(std::span<const DtSer> rij) {
  MDB_txn* txn;
  eis(mdb_txn_begin(env, nullptr, 0, &txn));
  for (const DtSer& r : rij) zet_record(txn, r);
  eis(mdb_txn_commit(txn));
}

bool lees(const Serienr& nr, DtSer* uit) {
  if (lezer == nullptr)
    eis(mdb_txn_begin(env, nullptr, MDB_RDONLY, &lezer));
  else
    eis(mdb_txn_renew(lezer));
  const Beeld1 een = beeld1(nr);
  MDB_val k = val(een.data(), een.size()), d;
  const bool er = mdb_get(lezer, records, &k, &d) == 0;
  if (er) memcpy(static_cast<void*>(uit), d.mv_data, sizeof *uit);
  mdb_txn_reset(lezer);
  return er;
}

/// Through a tree of a further key, or straight along the records.
uint64_t loop_langs(MDB_dbi boom) {
  MDB_txn* txn;
  MDB_cursor* c;
  eis(mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn));
  eis(mdb_cursor_open(txn, boom, &c));
  MDB_val k, d, rec;
  DtSer r;
  uint64_t som = 0;
  while (mdb_cursor_get(c, &k, &d, MDB_NEXT) == 0) {
    rec = d;
    if (boom != records) eis(mdb_get(txn, records, &d, &rec));
    memcpy(static_cast<void*>(&r), rec.mv_data, sizeof r);
    loop_tel(&som, r);
  }
  mdb_cursor_close(c);
  mdb_txn_abort(txn);
  return som;
}
uint64_t loop() { return loop_langs(records); }
uint64_t loop_tweede() { return loop_langs(tweede); }

bool voeg(const DtSer& r) {
  MDB_txn* txn;
  eis(mdb_txn_begin(env, nullptr, 0, &txn));
  zet_record(txn, r);
  eis(mdb_txn_commit(txn));
  return true;
}

bool wijzig(const Serienr& nr) {
  MDB_txn* txn;
  eis(mdb_txn_begin(env, nullptr, 0, &txn));
  const Beeld1 een = beeld1(nr);
  MDB_val k = val(een.data(), een.size()), d;
  const bool er = mdb_get(txn, records, &k, &d) == 0;
  if (er) {
    DtSer r;
    memcpy(static_cast<void*>(&r), d.mv_data, sizeof r);
    ++r.voorraad;
    zet(txn, records, een.data(), een.size(), &r, sizeof r);
  }
  eis(mdb_txn_commit(txn));
  return er;
}

void bouw_klaar(uint32_t n) {
  MDB_txn* txn;
  eis(mdb_txn_begin(env, nullptr, 0, &txn));
  for (size_t i = 0; i < n; ++i) {
    const DtSer r = meet_serie(static_cast<uint32_t>(i));
    zet(txn, los, &i, sizeof i, &r, sizeof r);
  }
  eis(mdb_txn_commit(txn));
}

void bouw() {
  MDB_txn* txn;
  MDB_cursor* c;
  eis(mdb_txn_begin(env, nullptr, 0, &txn));
  for (const MDB_dbi b : {los1, los2, los3}) eis(mdb_drop(txn, b, 0));
  eis(mdb_cursor_open(txn, los, &c));
  MDB_val k, d;
  while (mdb_cursor_get(c, &k, &d, MDB_NEXT) == 0) {
    DtSer r;
    size_t nr;
    memcpy(&nr, k.mv_data, sizeof nr);
    memcpy(static_cast<void*>(&r), d.mv_data, sizeof r);
    const Beeld1 een = beeld1(r.nr);
    const Beeld2 twee = beeld2(r);
    const Beeld3 drie = beeld3(r);
    zet(txn, los1, een.data(), een.size(), &nr, 4);
    zet(txn, los2, twee.data(), twee.size(), &nr, 4);
    zet(txn, los3, drie.data(), drie.size(), &nr, 4);
  }
  mdb_cursor_close(c);
  eis(mdb_txn_commit(txn));
}

}  // namespace

const Partij PARTIJ_LMDB = {LMDB,        open, sluit,  vul,        lees, loop,
                            loop_tweede, voeg, wijzig, bouw_klaar, bouw};
