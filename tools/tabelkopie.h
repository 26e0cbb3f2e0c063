// A copy of a table's two files, taken while others work in it: first read without a lock, then
// compared and put right under the header lock for at most 200 ms at a time. A table is consistent
// in itself; two tables are not consistent with each other.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

enum class KopieUit : uint8_t { goed, ontbreekt, geweigerd, bezet, te_groot };

/// How a copy went. With `bezet` the copy stands all the same, as it was read without the lock.
struct KopieStand {
  KopieUit uit = KopieUit::goed;
  std::string bestand;        // that could not be opened or read
  int fout = 0;               // errno of it
  pid_t houder = 0;           // who kept the lock
  bool vastgehouden = false;  // the last try kept the lock until it was done
};
/// "DTPICK.INX ontbreekt"; empty for a copy that went well.
std::string kopie_tekst(const KopieStand&);

struct TabelKopie {
  std::vector<uint8_t> index, data;
};

/// Copies a table, or a private index with the data of its table. Waits `wacht` seconds for the
/// header lock, which an exclusive user keeps for as long as he works.
KopieStand tabel_kopieer(const std::string& naam, int wacht, TabelKopie* uit);

// What copies of other files under other locks are made of.
struct KopieBron {
  int fd;
  std::vector<uint8_t>* doel;
};
struct KopieSlot {
  std::function<bool()> neem;  // one try
  std::function<void()> los;
  std::function<pid_t()> houder;
  std::function<void()> binnen;  // called once, at the end, while the lock is held; may be empty
};
/// The lock queue of an index changes under a lock of its own: into the copy comes a block that two
/// reads agree on.
void kopie_rij_heel(int fd, std::vector<uint8_t>* index);
KopieStand kopieer_onder_slot(std::span<const KopieBron>, const KopieSlot&, int wacht);

/// Runs a piece of work at the lowest priority. Never anything that holds a lock: on a busy machine
/// its holder must not wait for everybody else.
void op_lage_voorrang(const std::function<void()>& werk);
/// What went wrong with a file, by errno.
std::string systeemfout(int fout);
/// Process that holds a lock in the range, 0 none.
pid_t slot_houder(int fd, int64_t offset, int64_t length);
