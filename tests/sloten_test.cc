// The proof of a directory believes an honest one, and each of its parts sees the lie that it is
// there for. The lies are those that file systems tell: locks that stay in one machine, caches that
// outlive the write of another, names that are away for a moment.
#include "tools/winkel_sloten.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/support/tijdelijk.h"

namespace {

namespace fs = std::filesystem;

const SlotAanroep ECHT = slot_aanroep;

/// What all processes of a lie know together, and each for itself.
struct Gedeeld {
  pid_t houder;
  off_t van;
};
Gedeeld* gedeeld;
std::map<off_t, std::vector<char>> gezien;
std::map<std::string, int> weg;
struct stat eerste_maat;
bool onder_slot;
struct {
  int fd;
  off_t van;
  std::vector<char> bytes;
} uitgesteld;

bool neemt(int opdracht, const struct flock* f) {
  return opdracht == F_SETLK && f->l_type != F_UNLCK;
}

int altijd_goed(int fd, int opdracht, struct flock* f) {
  return opdracht == F_SETLK ? 0 : ECHT.slot(fd, opdracht, f);
}
int niets_goed(int fd, int opdracht, struct flock* f) {
  errno = ENOLCK;
  return neemt(opdracht, f) ? -1 : ECHT.slot(fd, opdracht, f);
}
int heel_bestand(int fd, int opdracht, struct flock* f) {
  f->l_start = f->l_len = 0;
  return ECHT.slot(fd, opdracht, f);
}
int kort_getal(int fd, int opdracht, struct flock* f) {
  f->l_start &= 0xFFFFFFFF;
  return ECHT.slot(fd, opdracht, f);
}
int geen_leesslot(int fd, int opdracht, struct flock* f) {
  if (neemt(opdracht, f)) f->l_type = F_WRLCK;
  return ECHT.slot(fd, opdracht, f);
}
int splitst_niet(int fd, int opdracht, struct flock* f) {
  if (opdracht == F_SETLK && f->l_type == F_UNLCK) f->l_start = f->l_len = 0;
  return ECHT.slot(fd, opdracht, f);
}
int zonder_naam(int fd, int opdracht, struct flock* f) {
  const int uit = ECHT.slot(fd, opdracht, f);
  if (opdracht == F_GETLK) f->l_pid = 0;
  return uit;
}
int ander_bereik(int fd, int opdracht, struct flock* f) {
  const int uit = ECHT.slot(fd, opdracht, f);
  if (opdracht == F_GETLK && f->l_type != F_UNLCK) f->l_start = f->l_len = 0;
  return uit;
}
int niemand(int fd, int opdracht, struct flock* f) {
  if (opdracht == F_GETLK) f->l_type = F_UNLCK;
  return opdracht == F_GETLK ? 0 : ECHT.slot(fd, opdracht, f);
}
int dode_houdt(int fd, int opdracht, struct flock* f) {
  const pid_t vorige = gedeeld->houder;
  if (neemt(opdracht, f) && f->l_start == gedeeld->van && vorige > 0 && kill(vorige, 0) != 0) {
    errno = EAGAIN;
    return -1;
  }
  const int uit = ECHT.slot(fd, opdracht, f);
  if (uit == 0 && neemt(opdracht, f)) *gedeeld = {getpid(), f->l_start};
  return uit;
}
int merkt_slot(int fd, int opdracht, struct flock* f) {
  const int uit = ECHT.slot(fd, opdracht, f);
  if (uit == 0 && opdracht == F_SETLK) onder_slot = f->l_type == F_WRLCK;
  if (uit == 0 && !onder_slot && !uitgesteld.bytes.empty()) {
    usleep(300);
    ECHT.schrijf(uitgesteld.fd, uitgesteld.bytes.data(), uitgesteld.bytes.size(), uitgesteld.van);
    uitgesteld.bytes.clear();
  }
  return uit;
}
ssize_t na_het_slot(int fd, const void* bron, size_t n, off_t van) {
  if (!onder_slot) return ECHT.schrijf(fd, bron, n, van);
  const char* p = static_cast<const char*>(bron);
  uitgesteld = {fd, van, {p, p + n}};
  return static_cast<ssize_t>(n);
}
ssize_t oude_bytes(int fd, void* doel, size_t n, off_t van) {
  if ((fcntl(fd, F_GETFL) & O_ACCMODE) != O_RDWR) return ECHT.lees(fd, doel, n, van);
  std::vector<char>& oud = gezien[van];
  if (oud.size() == n) memcpy(doel, oud.data(), n);
  const ssize_t uit = oud.size() == n ? static_cast<ssize_t>(n) : ECHT.lees(fd, doel, n, van);
  const char* p = static_cast<const char*>(doel);
  if (uit > 0) oud.assign(p, p + uit);
  return uit;
}
ssize_t halve_bytes(int fd, void* doel, size_t n, off_t van) {
  const ssize_t uit = ECHT.lees(fd, doel, n, van);
  if (uit > 8) static_cast<char*>(doel)[uit - 1] ^= 1;
  return uit;
}
int oude_maat(int fd, struct stat* st) {
  if (eerste_maat.st_ino == 0) ECHT.maat(fd, &eerste_maat);
  *st = eerste_maat;
  return 0;
}
int blijft_weg(const char* naam, int wijze) {
  if ((wijze & O_CREAT) == 0 && weg[naam] > 0) {
    errno = ENOENT;
    return -1;
  }
  const int fd = ECHT.open(naam, wijze);
  if (fd < 0 && errno == ENOENT) weg[naam] = 1;
  return fd;
}
int twee_stappen(const char* van, const char* naar) {
  unlink(naar);
  usleep(2000);
  return ECHT.hernoem(van, naar);
}
int kopie(const char* van, const char* naar) {
  const int bron = ECHT.open(van, O_RDONLY), doel = ECHT.open(naar, O_WRONLY | O_CREAT | O_TRUNC);
  char blok[512];
  const bool goed = ECHT.lees(bron, blok, 512, 0) == 512 && ECHT.schrijf(doel, blok, 256, 0) == 256;
  usleep(1000);
  const bool heel = goed && ECHT.schrijf(doel, blok + 256, 256, 256) == 256;
  close(bron);
  close(doel);
  unlink(van);
  return heel ? 0 : -1;
}

struct Leugen {
  const char* wat;
  const char* antwoord;  // how the fault begins
  void (*zet)();
};

constexpr Leugen LEUGENS[] = {
    {"no locks", "een vrij bereik", [] { slot_aanroep.slot = niets_goed; }},
    {"locks that refuse nobody", "een slot op wat een ander",
     [] { slot_aanroep.slot = altijd_goed; }},
    {"locks of whole files", "een vrij bereik wordt", [] { slot_aanroep.slot = heel_bestand; }},
    {"locks of 32 bits", "een slot ver in", [] { slot_aanroep.slot = kort_getal; }},
    {"write locks only", "twee leessloten", [] { slot_aanroep.slot = geen_leesslot; }},
    {"a lock goes as one", "van een slot dat in het midden",
     [] { slot_aanroep.slot = splitst_niet; }},
    {"a holder without a number", "van een slot van proces",
     [] { slot_aanroep.slot = zonder_naam; }},
    {"a holder that is not told", "van een slot is geen houder",
     [] { slot_aanroep.slot = niemand; }},
    {"a range that is not told", "van een slot klopt", [] { slot_aanroep.slot = ander_bereik; }},
    {"the dead keep their locks", "het slot van een gestorven",
     [] { slot_aanroep.slot = dode_houdt; }},
    {"reads from a cache", "wat een proces schreef", [] { slot_aanroep.lees = oude_bytes; }},
    {"blocks that arrive half", "een nieuw bestand is bij een ander proces niet te lezen (geen",
     [] { slot_aanroep.lees = halve_bytes; }},
    {"writes that land after the lock", "een wijziging onder een slot",
     [] {
       slot_aanroep.slot = merkt_slot;
       slot_aanroep.schrijf = na_het_slot;
     }},
    {"a size from a cache", "een bestand dat groeide", [] { slot_aanroep.maat = oude_maat; }},
    {"a name that stays away", "een nieuw bestand", [] { slot_aanroep.open = blijft_weg; }},
    {"a name that is away", "een naam die van bestand wisselt, is even weg",
     [] { slot_aanroep.hernoem = twee_stappen; }},
    {"a rename that copies", "een naam die van bestand wisselt, leest",
     [] { slot_aanroep.hernoem = kopie; }},
};

TEST(Sloten, EachProofSeesTheLieItIsThereFor) {
  TempDir map;
  gedeeld = static_cast<Gedeeld*>(
      mmap(nullptr, sizeof(Gedeeld), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(gedeeld, MAP_FAILED);
  for (const Leugen& l : LEUGENS) {
    *gedeeld = {};
    slot_aanroep = ECHT;
    l.zet();
    const std::string fout = sloten_proef(map.pad, "", SLOT_KORT);
    slot_aanroep = ECHT;
    EXPECT_EQ(fout.rfind(l.antwoord, 0), 0u) << l.wat << ": " << fout;
    EXPECT_EQ(fout.find('\n'), std::string::npos) << l.wat;
    EXPECT_TRUE(fs::is_empty(map.pad)) << l.wat;
  }
  munmap(gedeeld, sizeof(Gedeeld));
}

std::pair<int, std::string> init(const std::string& argumenten) {
  FILE* pijp =
      popen((BUILD_DIR "/tools/winkel init " + argumenten + " 2>&1 </dev/null").c_str(), "r");
  std::string tekst;
  char stuk[4096];
  while (const size_t n = fread(stuk, 1, sizeof stuk, pijp)) tekst.append(stuk, n);
  const int status = pclose(pijp);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, tekst};
}

TEST(Sloten, AnHonestDirectoryIsTakenAndLeftAsItWas) {
  TempDir map;
  const std::string iets = map / "iets";
  std::fclose(std::fopen(iets.c_str(), "w"));
  std::vector<SlotRegel> verslag;
  EXPECT_EQ(sloten_proef(map.pad, "", SLOT_KORT, &verslag), "");
  EXPECT_EQ(verslag.size(), 9u);
  // The same directory by another name is a second way in; another directory is none.
  fs::create_directory_symlink(map.pad, map / "ook");
  const auto [goed, tekst] = init("--test-locks " + map.pad + " --tweede " + (map / "ook"));
  EXPECT_EQ(goed, 0) << tekst;
  EXPECT_EQ(std::count(tekst.begin(), tekst.end(), '\n'), 10) << tekst;
  TempDir vreemd;
  const auto [fout, regel] = init("--test-locks " + map.pad + " --tweede " + vreemd.pad);
  EXPECT_EQ(fout, 1);
  EXPECT_EQ(regel, "winkel: " + map.pad + ": " + vreemd.pad + " toont niet wat hier gemaakt is\n");
  EXPECT_TRUE(fs::is_empty(vreemd.pad));
  EXPECT_EQ(std::distance(fs::directory_iterator(map.pad), {}), 2);
}

TEST(Sloten, InitAsksForWhatItNeeds) {
  TempDir map;
  const std::pair<std::string, int> gevallen[] = {{"--test-locks " + (map / "geen"), 1},
                                                  {"--tweede " + map.pad, 2},
                                                  {"--test-locks " + map.pad + " --branches 3", 2},
                                                  {"--company X -C " + (map / "k"), 2}};
  for (const auto& [argumenten, status] : gevallen) {
    const auto [uit, tekst] = init(argumenten);
    EXPECT_EQ(uit, status) << argumenten;
    EXPECT_EQ(std::count(tekst.begin(), tekst.end(), '\n'), 1) << tekst;
    EXPECT_TRUE(fs::is_empty(map.pad)) << argumenten;
  }
}

}  // namespace
