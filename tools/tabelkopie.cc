// Copies of files that others write in. Guarantees: a lock is held for 200 ms at a time, but for
// the last of six tries; one descriptor a file, so that no lock of this process falls away by a
// close; a file that cannot fit in memory is refused before it is read.
#include "tools/tabelkopie.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <exception>
#include <thread>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix_intern.h"

namespace {

constexpr size_t STUK = 65536;
constexpr int64_t HOOGSTENS_US = 200000;
constexpr int POGINGEN = 5;
constexpr long RUST_US = 300000;

int64_t nu_us() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<int64_t>(t.tv_sec) * 1000000 + t.tv_nsec / 1000;
}

void rust(long us) {
  timespec t{us / 1000000, us % 1000000 * 1000};
  while (nanosleep(&t, &t) != 0 && errno == EINTR) {
  }
}

/// Half of what the machine has: a check must not push the shop's programs out of memory.
bool past(std::span<const KopieBron> bronnen) {
  const int64_t geheugen = int64_t{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGESIZE);
  int64_t som = 0;
  for (const KopieBron& b : bronnen) som += std::max<int64_t>(io_grootte(b.fd), 0);
  return som <= geheugen / 2;
}

/// Makes the copy as long as the file, and each piece equal to it. False when time ran out or, with
/// errno set, a read failed.
bool gelijk_maken(const KopieBron& bron, int64_t einde_us) {
  static uint8_t stuk[STUK];
  errno = 0;
  const int64_t grootte = io_grootte(bron.fd);
  if (grootte < 0) return false;
  std::vector<uint8_t>& doel = *bron.doel;
  doel.resize(static_cast<size_t>(grootte));
  for (size_t van = 0; van < doel.size(); van += STUK) {
    const size_t n = std::min(STUK, doel.size() - van);
    errno = 0;
    const int64_t gelezen = io_lees(bron.fd, stuk, n, static_cast<int64_t>(van));
    if (gelezen < 0) return false;
    const auto heel = static_cast<size_t>(gelezen);
    if (memcmp(doel.data() + van, stuk, heel) != 0) memcpy(doel.data() + van, stuk, heel);
    if (heel < n) {  // cut short meanwhile
      doel.resize(van + heel);
      return true;
    }
    if (nu_us() > einde_us) return van + n >= doel.size();
  }
  return true;
}

bool alles_gelijk(std::span<const KopieBron> bronnen, int64_t einde_us) {
  return std::ranges::all_of(bronnen,
                             [&](const KopieBron& b) { return gelijk_maken(b, einde_us); });
}

bool wacht_op_slot(const KopieSlot& slot, int wacht) {
  const int64_t einde = nu_us() + int64_t{wacht} * 1000000;
  for (long pauze = 50; !slot.neem(); pauze = std::min(pauze * 2, 20000L)) {
    if (nu_us() >= einde) return false;
    rust(pauze);
  }
  return true;
}

/// The files of a table by name; a private index has its own and two of the table.
struct Bestanden {
  int index = -1, data = -1, kop = -1;  // kop: the table's index, whose lock guards the data
  ~Bestanden() {
    for (int fd : {index, data, kop})
      if (fd >= 0) io_close(fd);
  }
};

bool open(const std::string& pad, int* fd, KopieStand* stand) {
  *fd = io_open(pad.c_str(), false);
  if (*fd >= 0) return true;
  stand->uit = errno == ENOENT ? KopieUit::ontbreekt : KopieUit::geweigerd;
  stand->fout = errno;
  stand->bestand = pad;
  return false;
}

}  // namespace

void kopie_rij_heel(int fd, std::vector<uint8_t>* index) {
  constexpr size_t AANTAL = offsetof(ICB, key_count);
  if (index->size() <= AANTAL || (*index)[AANTAL] < 1 || (*index)[AANTAL] > IX_SLEUTELS) return;
  const size_t plaats = (size_t{(*index)[AANTAL]} + 1) * IX_BLOK;
  if (plaats + IX_BLOK > index->size()) return;
  uint8_t blok[IX_BLOK];
  if (io_lees_heel(fd, blok, IX_BLOK, static_cast<int64_t>(plaats), nullptr) == IX_BLOK)
    memcpy(index->data() + plaats, blok, IX_BLOK);
}

void op_lage_voorrang(const std::function<void()>& werk) {
  // Priority belongs to a thread here, and who gave it away cannot take it back.
  std::exception_ptr fout;
  std::thread draad([&] {
    setpriority(PRIO_PROCESS, 0, 19);
    try {
      werk();
    } catch (...) {
      fout = std::current_exception();
    }
  });
  draad.join();
  if (fout) std::rethrow_exception(fout);
}

namespace {

KopieStand mislukt(KopieUit uit, int fout) {
  KopieStand stand;
  stand.uit = uit;
  stand.fout = fout;
  return stand;
}

}  // namespace

pid_t slot_houder(int fd, int64_t offset, int64_t length) {
  struct flock fl = {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  fl.l_start = offset;
  fl.l_len = length;
  return fcntl(fd, F_GETLK, &fl) == 0 && fl.l_type != F_UNLCK ? fl.l_pid : 0;
}

KopieStand kopieer_onder_slot(std::span<const KopieBron> bronnen, const KopieSlot& slot,
                              int wacht) {
  KopieStand stand;
  if (!past(bronnen)) return mislukt(KopieUit::te_groot, 0);
  bool gelezen = false;
  int fout = 0;
  op_lage_voorrang([&] {
    gelezen = alles_gelijk(bronnen, INT64_MAX);
    fout = errno;
  });
  if (!gelezen) return mislukt(KopieUit::geweigerd, fout);
  for (int poging = 0;; ++poging) {
    if (!wacht_op_slot(slot, wacht)) {
      stand.uit = KopieUit::bezet;
      stand.houder = slot.houder();
      return stand;
    }
    stand.vastgehouden = poging == POGINGEN;
    gelezen = alles_gelijk(bronnen, stand.vastgehouden ? INT64_MAX : nu_us() + HOOGSTENS_US);
    fout = errno;
    if (gelezen && slot.binnen) slot.binnen();
    slot.los();
    if (gelezen) return stand;
    if (fout != 0) return mislukt(KopieUit::geweigerd, fout);
    rust(RUST_US);
  }
}

KopieStand tabel_kopieer(const std::string& naam, int wacht, TabelKopie* uit) {
  KopieStand stand;
  const IxPaden paden = ix_paden(naam.c_str());
  Bestanden b;
  if (!open(paden.index, &b.index, &stand) || !open(paden.data, &b.data, &stand)) return stand;
  std::string kop = paden.data;
  kop.replace(kop.size() - 3, 3, "INX");
  if (paden.privaat && !open(kop, &b.kop, &stand)) return stand;
  KopieSlot slot;
  slot.neem = [&] {
    if (!file_lock('E', b.index, 0, IX_BLOK)) return false;
    if (b.kop < 0 || file_lock('E', b.kop, 0, IX_BLOK)) return true;
    file_lock('U', b.index, 0, IX_BLOK);
    return false;
  };
  slot.los = [&] {
    if (b.kop >= 0) file_lock('U', b.kop, 0, IX_BLOK);
    file_lock('U', b.index, 0, IX_BLOK);
  };
  slot.houder = [&] {
    const pid_t p = slot_houder(b.index, 0, IX_BLOK);
    return p != 0 || b.kop < 0 ? p : slot_houder(b.kop, 0, IX_BLOK);
  };
  slot.binnen = [&] { kopie_rij_heel(b.index, &uit->index); };
  const KopieBron bronnen[] = {{b.index, &uit->index}, {b.data, &uit->data}};
  stand = kopieer_onder_slot(bronnen, slot, wacht);
  if (stand.bestand.empty()) stand.bestand = paden.index;
  return stand;
}

std::string systeemfout(int fout) {
  switch (fout) {
    case ENOENT:
      return "bestaat niet";
    case EACCES:
    case EPERM:
      return "geen toegang";
    case EROFS:
      return "alleen te lezen";
    case EIO:
      return "leesfout";
    case EISDIR:
      return "is een map";
    default:
      return fmt::format("fout {}", fout);
  }
}

std::string kopie_tekst(const KopieStand& s) {
  switch (s.uit) {
    case KopieUit::ontbreekt:
      return fmt::format("{} ontbreekt", s.bestand);
    case KopieUit::geweigerd:
      return fmt::format("{} is niet te lezen: {}", s.bestand, systeemfout(s.fout));
    case KopieUit::bezet:
      return fmt::format("{} is in gebruik door proces {}", s.bestand, s.houder);
    case KopieUit::te_groot:
      return fmt::format("{} is te groot voor het geheugen", s.bestand);
    default:
      return {};
  }
}
