// TDB: one hashed file, so a key finds its record but there is no order to walk in; the further
// keys are entries beside the records.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <tdb.h>

#include <cstdlib>
#include <cstring>

#include "bench/gegevens.h"
#include "bench/partij.h"

namespace {

tdb_context* tdb = nullptr;

TDB_DATA data(const void* p, size_t n) {
  return {static_cast<unsigned char*>(const_cast<void*>(p)), n};
}

void open(bool nieuw) {
  tdb = tdb_open("ser.tdb", 200003, TDB_NOSYNC | (nieuw ? TDB_CLEAR_IF_FIRST : 0), O_RDWR | O_CREAT,
                 0660);
  if (tdb == nullptr) meet_fout("tdb", "open");
}
void sluit() { tdb_close(tdb); }

bool zet(const void* sleutel, size_t n, const void* p, size_t m) {
  return tdb_store(tdb, data(sleutel, n), data(p, m), TDB_REPLACE) == 0;
}

bool voeg(const DtSer& r) {
  const Beeld1 een = beeld1(r.nr);
  const Beeld2 twee = beeld2(r);
  const Beeld3 drie = beeld3(r);
  return zet(een.data(), een.size(), &r, sizeof r) &&
         zet(twee.data(), twee.size(), een.data(), een.size()) &&
         zet(drie.data(), drie.size(), een.data(), een.size());
}

void vul(std::span<const DtSer> rij) {
  for (const DtSer& r : rij)
    if (!voeg(r)) meet_fout("tdb", "store");
}

int neem(TDB_DATA, TDB_DATA d, void* uit) {
  if (d.dsize != sizeof(DtSer)) return -1;
  memcpy(uit, d.dptr, sizeof(DtSer));
  return 0;
}

bool lees(const Serienr& nr, DtSer* uit) {
  const Beeld1 een = beeld1(nr);
  return tdb_parse_record(tdb, data(een.data(), een.size()), neem, uit) == 0;
}

bool wijzig(const Serienr& nr) {
  const Beeld1 een = beeld1(nr);
  const TDB_DATA k = data(een.data(), een.size());
  if (tdb_chainlock(tdb, k) != 0) return false;
  DtSer r;
  const bool er = tdb_parse_record(tdb, k, neem, &r) == 0;
  if (er) {
    ++r.voorraad;
    zet(een.data(), een.size(), &r, sizeof r);
  }
  tdb_chainunlock(tdb, k);
  return er;
}

}  // namespace

const Partij PARTIJ_TDB = {TDB,     open, sluit,  vul,     lees,   nullptr,
                           nullptr, voeg, wijzig, nullptr, nullptr};
