// winkel backup: a copy of a data directory, made while others work in it.
//
// Each table is of one moment; so are the labels with DTSER and the prices with DTIPA, which their
// chains start from. Tables are not of one moment with each other. Everything is written under
// DEST.tmp, read back from the disk and compared by hash; only a whole copy gets its name.
#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <set>

#include "isam/io.h"
#include "isam/ix.h"
#include "main/iotab.h"
#include "sub/tabeldef.h"
#include "tools/ix_keur.h"
#include "tools/manifest.h"
#include "tools/winkel.h"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

constexpr int32_t DATUM_RECORD = 19;
constexpr int DATUM_PLAATS = 36;
constexpr uint8_t KRITIEK = 10;
constexpr int STATUS_PLAATS = 38;
constexpr int POGINGEN = 5;

struct Backup {
  std::string map = ".", naar;
  int wacht = 30;
  bool toets = false;
};

/// One run: where it writes, and what it met.
struct Werk {
  std::string tmp;
  int map_fd = -1;
  int wacht = 30;
  std::vector<ManifestRij> rijen;
  std::set<std::string> klaar;
  std::vector<std::string> gebreken;  // of the chain itself: copied as they are
  std::string fout;                   // ends the run
  int64_t bytes = 0;
  uint8_t control4[64] = {}, control9[64] = {};

  bool goed() const { return fout.empty(); }
};

bool past(const char* patroon, const std::string& naam) {
  const std::string_view p = patroon;
  if (p.size() != naam.size()) return false;
  for (size_t i = 0; i < p.size(); ++i) {
    const bool cijfer = naam[i] >= '0' && naam[i] <= '9';
    if (p[i] == '#' ? !cijfer : p[i] != '?' && p[i] != naam[i]) return false;
  }
  return true;
}

/// What only lives while a session works, and the list of an earlier copy.
bool is_tijdelijk(const std::string& naam) {
  constexpr const char* PATRONEN[] = {"TP##.TXT",  "TP##.INX",  "TP##?.TXT", "TP##?.INX",
                                      "TPDTSE##",  "PR????",    "DTSER.O##", "DTSER.A##",
                                      "DTSER.R##", "DTSER.S##", "DTMERK.##"};
  return naam == MANIFEST ||
         std::ranges::any_of(PATRONEN, [&](const char* p) { return past(p, naam); });
}

// Writing -----------------------------------------------------------------------------------------

std::string schrijf_op_schijf(int map_fd, const std::string& naam, const Bytes& bytes) {
  const int fd = openat(map_fd, naam.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0660);
  if (fd < 0) return std::strerror(errno);
  errno = 0;
  bool goed = io_schrijf(fd, bytes.data(), bytes.size(), 0) == static_cast<int64_t>(bytes.size());
  goed = goed && fsync(fd) == 0;
  const int fout = errno == 0 ? ENOSPC : errno;
  close(fd);
  return goed ? "" : std::strerror(fout);
}

void schrijf(Werk* w, const std::string& naam, const Bytes& bytes) {
  if (!w->goed()) return;
  op_lage_voorrang([&] {
    w->fout = schrijf_op_schijf(w->map_fd, naam, bytes);
    const std::string hash = sha256_van(bytes);
    if (w->goed() && sha256_bestand(w->tmp + "/" + naam) != hash)
      w->fout = "staat niet goed op de schijf";
    w->rijen.push_back({hash, naam});
  });
  if (!w->goed()) w->fout = naam + ": " + w->fout;
  w->klaar.insert(naam);
  w->bytes += static_cast<int64_t>(bytes.size());
}

void meld_langer(const std::string& naam, bool vastgehouden) {
  if (vastgehouden)
    fmt::print(stderr, "winkel: {}: het slot is vastgehouden tot de kopie klaar was\n", naam);
}

void neem_gebreken(Werk* w, const Verslag& v) {
  for (const Bevinding& b : v.rijen)
    if (b.fout) w->gebreken.push_back(verslag_regel(v, b));
}

// What is copied ----------------------------------------------------------------------------------

/// A table's two files, and what is wrong with them.
void schrijf_tabel(Werk* w, const std::string& naam, const TabelKopie& kopie) {
  Verslag v;
  v.tabel = naam;
  op_lage_voorrang([&] { keur_tabel(naam, kopie, false, &v); });
  neem_gebreken(w, v);
  schrijf(w, naam + ".INX", kopie.index);
  schrijf(w, naam + ".TXT", kopie.data);
}

void tabel(Werk* w, const std::string& naam) {
  TabelKopie kopie;
  const KopieStand stand = tabel_kopieer(naam, w->wacht, &kopie);
  if (stand.uit != KopieUit::goed) {
    w->fout = kopie_tekst(stand);
    return;
  }
  meld_langer(naam, stand.vastgehouden);
  schrijf_tabel(w, naam, kopie);
}

/// The chained file with the table that its chains start from. A program writes the two one after
/// the other: what is between them is looked at again a moment later.
void keten(Werk* w, const PlatBestand& p, void (*keur)(const PlatKopie&, Verslag*),
           uint8_t (&control)[64]) {
  PlatKopie k;
  Verslag v;
  for (int poging = 0; poging < POGINGEN; ++poging) {
    v = {};
    v.tabel = p.bestand;
    if (!plat_kopieer(p, w->wacht, true, &k, &v)) {
      w->fout = v.rijen.empty() ? p.bestand : v.rijen.back().wat;
      return;
    }
    op_lage_voorrang([&] { keur(k, &v); });
    if (v.in_orde()) break;
    const timespec even{0, 300000000};
    nanosleep(&even, nullptr);
  }
  neem_gebreken(w, v);
  memcpy(control, k.control, sizeof control);
  schrijf(w, p.bestand, k.bestand);
  schrijf_tabel(w, p.tabel, {std::move(k.index), std::move(k.tabel)});
}

/// The whole of a file without a lock of its own, once two reads agree. False with errno.
bool lees_rustig(const std::string& naam, Bytes* uit) {
  const int fd = open(naam.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  Bytes vorig;
  bool goed = true, gelijk = false;
  for (int poging = 0; goed && !gelijk && poging < 2 * POGINGEN; ++poging) {
    vorig.swap(*uit);
    uit->resize(static_cast<size_t>(std::max<int64_t>(io_grootte(fd), 0)));
    const int64_t n = io_lees(fd, uit->data(), uit->size(), 0);
    goed = n >= 0;
    uit->resize(static_cast<size_t>(std::max<int64_t>(n, 0)));
    gelijk = poging > 0 && vorig == *uit;
  }
  const int fout = gelijk || !goed ? errno : EBUSY;
  close(fd);
  errno = fout;
  return goed && gelijk;
}

void los_bestand(Werk* w, const std::string& naam) {
  Bytes bytes;
  if (lees_rustig(naam, &bytes))
    schrijf(w, naam, bytes);
  else
    w->fout = fmt::format("{}: {}", naam, std::strerror(errno));
}

/// A selection that its owner works with is left out: he makes a new one in a moment.
void losse_index(Werk* w, const std::string& naam) {
  TabelKopie kopie;
  const KopieStand stand = tabel_kopieer(naam, std::min(w->wacht, 1), &kopie);
  if (stand.uit == KopieUit::goed) return schrijf(w, naam, kopie.index);
  fmt::print(stderr, "winkel: {}, niet meegenomen\n", kopie_tekst(stand));
}

/// The system file last, with the control records of the copied chains. A session that stands at a
/// critical place now has its marks in files that were copied whole.
void systeembestand(Werk* w, uint16_t vandaag) {
  Bytes b;
  if (!lees_rustig("DTSYS.TXT", &b) || b.size() < static_cast<size_t>(SYS_GROOTTE)) {
    w->fout = "DTSYS.TXT is niet te lezen";
    return;
  }
  memcpy(&b[3 * 64], w->control4, sizeof w->control4);
  memcpy(&b[8 * 64], w->control9, sizeof w->control9);
  memcpy(&b[(DATUM_RECORD - 1) * 64 + DATUM_PLAATS], &vandaag, sizeof vandaag);
  int32_t n = 1;
  iotab('O', &n, nullptr, SYS_RECORDS);
  for (n = 1; n <= SYS_TERMINALS.aantal; ++n) {
    const int64_t plaats = SYS_TERMINALS.basis + int64_t{n - 1} * SYS_TERMINALS.lengte;
    uint8_t& status = b[static_cast<size_t>(plaats + STATUS_PLAATS)];
    if (status >= KRITIEK && slot_houder(iotab_fd(), plaats, SYS_TERMINALS.lengte) != 0) status = 0;
  }
  iotab('C', &n, nullptr, SYS_RECORDS);
  schrijf(w, "DTSYS.TXT", b);
}

std::vector<std::string> bestanden() {
  std::vector<std::string> uit;
  std::error_code stil;
  for (const fs::directory_entry& e : fs::directory_iterator(".", stil)) {
    const std::string naam = e.path().filename().string();
    if (is_tijdelijk(naam)) continue;
    if (e.is_regular_file(stil) && naam.find('\n') == std::string::npos)
      uit.push_back(naam);
    else
      fmt::print(stderr, "winkel: {} is geen gewoon bestand, niet meegenomen\n", naam);
  }
  std::ranges::sort(uit);
  return uit;
}

void een_bestand(Werk* w, const std::string& naam, const std::set<std::string>& alle) {
  const std::string stam = naam.substr(0, naam.rfind('.'));
  const bool paar = alle.contains(stam + ".TXT") && alle.contains(stam + ".INX");
  if (paar && (naam.ends_with(".INX") || naam.ends_with(".TXT")))
    tabel(w, stam);
  else if (past("DTSER.?##", naam))
    losse_index(w, naam);
  else
    los_bestand(w, naam);
}

void kopieer_alles(Werk* w, uint16_t vandaag) {
  const std::vector<std::string> lijst = bestanden();
  const std::set<std::string> alle(lijst.begin(), lijst.end());
  keten(w, PLAT_ETIKETTEN, keur_etiketten, w->control4);
  if (w->goed()) keten(w, PLAT_PRIJSGROEPEN, keur_prijsgroepen, w->control9);
  for (const std::string& naam : lijst) {
    if (!w->goed()) return;
    if (!w->klaar.contains(naam) && naam != "DTSYS.TXT") een_bestand(w, naam, alle);
  }
  if (w->goed()) systeembestand(w, vandaag);
}

// The directory -----------------------------------------------------------------------------------

std::string absoluut(const std::string& pad) {
  std::error_code fout;
  std::string heel = fs::absolute(pad, fout).lexically_normal().string();
  while (heel.size() > 1 && heel.ends_with('/')) heel.pop_back();
  return fout ? pad : heel;
}

/// Takes away what a run left that was broken off: files, never a directory.
bool maak_leeg(int map_fd) {
  DIR* map = fdopendir(dup(map_fd));
  if (map == nullptr) return false;
  rewinddir(map);  // the place is shared with whoever read here before
  bool goed = true;
  while (const dirent* e = readdir(map)) {
    const std::string naam = e->d_name;
    if (naam != "." && naam != "..") goed = unlinkat(map_fd, e->d_name, 0) == 0 && goed;
  }
  closedir(map);
  return goed;
}

/// DEST.tmp, made or taken over from a run that died, and ours as long as it is open.
void open_tmp(Werk* w, const std::string& naar) {
  struct stat st;
  if (lstat(naar.c_str(), &st) == 0) winkel_fout(naar, "bestaat al");
  w->tmp = naar + ".tmp";
  if (mkdir(w->tmp.c_str(), 0770) != 0 && errno != EEXIST) winkel_fout_errno(w->tmp);
  w->map_fd = open(w->tmp.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (w->map_fd < 0) winkel_fout_errno(w->tmp);
  if (flock(w->map_fd, LOCK_EX | LOCK_NB) != 0)
    winkel_fout(w->tmp, "er wordt al een reservekopie gemaakt");
  if (!maak_leeg(w->map_fd)) winkel_fout_errno(w->tmp);
}

void geef_naam(Werk* w, const std::string& naar) {
  std::ranges::sort(w->rijen, {}, &ManifestRij::naam);
  const std::string lijst = manifest_tekst(w->rijen);
  w->fout = schrijf_op_schijf(w->map_fd, MANIFEST, Bytes(lijst.begin(), lijst.end()));
  if (!w->goed()) return;
  fsync(w->map_fd);
  if (renameat2(AT_FDCWD, w->tmp.c_str(), AT_FDCWD, naar.c_str(), RENAME_NOREPLACE) != 0) {
    w->fout = fmt::format("{}: {}", naar, std::strerror(errno));
    return;
  }
  const int boven = open(fs::path(naar).parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (boven >= 0) {
    fsync(boven);
    close(boven);
  }
}

/// The date of the back-up in the chain itself. False when somebody keeps the record.
bool schrijf_datum(uint16_t vandaag, int wacht) {
  uint8_t rec[64] = {};
  int32_t n = 1;
  iotab('O', &n, nullptr, SYS_RECORDS);
  n = DATUM_RECORD;
  const int64_t plaats = int64_t{DATUM_RECORD - 1} * SYS_RECORDS.lengte;
  const time_t einde = std::time(nullptr) + wacht;
  bool slot;
  while (!(slot = file_lock('E', iotab_fd(), plaats, SYS_RECORDS.lengte))) {
    if (std::time(nullptr) >= einde) break;
    const timespec even{0, 20000000};
    nanosleep(&even, nullptr);
  }
  if (slot) {
    iotab('R', &n, rec, SYS_RECORDS);  // zeros read as false, and are in the buffer all the same
    memcpy(rec + DATUM_PLAATS, &vandaag, sizeof vandaag);
    iotab('W', &n, rec, SYS_RECORDS);
  }
  iotab('C', &n, nullptr, SYS_RECORDS);
  return slot;
}

[[noreturn]] void breek_af(const Werk& w) {
  maak_leeg(w.map_fd);
  rmdir(w.tmp.c_str());
  fmt::print(stderr, "winkel: {}; er is geen reservekopie gemaakt\n", w.fout);
  std::exit(UIT_FOUT);
}

void doe_backup(const Backup& o) {
  const std::string naar = absoluut(o.naar);
  in_keten(o.map);
  Werk w;
  w.wacht = o.wacht;
  open_tmp(&w, naar);
  const uint16_t vandaag = date_today();
  kopieer_alles(&w, vandaag);
  if (w.goed()) geef_naam(&w, naar);
  if (!w.goed()) breek_af(w);
  fmt::print("{}: {} bestanden, {} bytes\n", o.naar, w.rijen.size(), w.bytes);
  for (const std::string& gebrek : w.gebreken) fmt::print(stderr, "winkel: {}\n", gebrek);
  if (!w.gebreken.empty())
    winkel_fout(o.naar, "gekopieerd zoals de keten is, maar die heeft fouten");
  if (!schrijf_datum(vandaag, o.wacht))
    winkel_fout("DTSYS.TXT", "de datum van de reservekopie is niet te schrijven");
}

void doe_toets(const std::string& map) {
  size_t aantal = 0;
  const std::vector<std::string> fouten = manifest_toets(map, &aantal);
  for (const std::string& fout : fouten) fmt::print("{}\n", fout);
  if (!fouten.empty()) winkel_fout(map, fmt::format("{} fouten", fouten.size()));
  fmt::print("{}: in orde, {} bestanden\n", map, aantal);
}

}  // namespace

void verb_backup(CLI::App& app) {
  static Backup o;
  CLI::App* verb = app.add_subcommand("backup", "reservekopie terwijl er gewerkt wordt");
  optie_map(verb, &o.map);
  verb->add_option("DEST", o.naar, "map die gemaakt wordt, of met --verify een kopie")
      ->required()
      ->type_name("MAP");
  verb->add_flag("--verify", o.toets, "vergelijk een reservekopie met haar lijst");
  verb->add_option("--wacht", o.wacht, "seconden wachten op een slot")
      ->check(CLI::NonNegativeNumber)
      ->type_name("GETAL")
      ->capture_default_str();
  verb->callback([] { o.toets ? doe_toets(o.naar) : doe_backup(o); });
}
