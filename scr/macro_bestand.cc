// The table MACRO: made at first use, opened and closed for each action, so that many operators can
// use it. Operators who meet at its making do not undo each other's work.
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "isam/base.h"
#include "isam/ix.h"
#include "scr/macro.h"
#include "scr/teksten.h"

namespace {

constexpr int PAD_LANGST = 63;

std::string macro_pad() {
  char* const map = macro_staat.map;
  if (*map == 0) {
    const char* omgeving = getenv("MACRO");
    if (omgeving == nullptr || *omgeving == 0) omgeving = ".";
    str_printf(map, sizeof macro_staat.map, "%.*s/", PAD_LANGST, omgeving);
  }
  return std::string(map) + "MACRO";
}

bool bruikbaar(const std::string& pad) {
  return access((pad + ".TXT").c_str(), R_OK | W_OK) == 0 &&
         access((pad + ".INX").c_str(), R_OK | W_OK) == 0;
}

/// No records yet, and no index that counts: also what a maker that died left behind.
bool nog_maken(const std::string& pad) {
  return file_size((pad + ".TXT").c_str()) <= 0 && IXCHECK(pad.c_str()) < 0;
}

/// The lock is one that the engine does not use: it may be closed with the file.
bool maak(const std::string& pad) {
  const int fd = open((pad + ".TXT").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0660);
  if (fd < 0) return false;
  if (flock(fd, LOCK_EX) == 0 && nog_maken(pad) && access(macro_staat.map, W_OK | X_OK) == 0) {
    ICB* icb = IXCREATE(pad.c_str(), IX_EXCLUSIEF);
    IXUPDFCB(icb, 0, str_format("mac_rec,%d", static_cast<int>(sizeof(MacRec))).c_str());
    IXUPDFCB(icb, 1, "key_1,I,1,2,I,3,4");
    IXINITIX(icb);
    IXCLOSE(icb);
  }
  close(fd);
  return true;
}

/// One that is being written may look unsound for a moment.
bool gezond(const std::string& pad) {
  for (int poging = 0; poging < 3; ++poging) {
    const timespec even{0, 200'000'000L};
    if (poging > 0) nanosleep(&even, nullptr);
    if (IXCHECK(pad.c_str()) >= 0) return true;
  }
  return false;
}

bool onze_sleutel(const ICB& icb) {
  const IxSleutel& k = icb.keys[0];
  return icb.record_length == sizeof(MacRec) && icb.key_count == 1 &&
         memcmp(k.field_type, "II\0", 3) == 0 && k.field_start[0] == 1 && k.field_end[0] == 2 &&
         k.field_start[1] == 3 && k.field_end[1] == 4;
}

/// Null when it cannot be used; the operator has been told.
ICB* macro_open() {
  const std::string pad = macro_pad();
  const bool er = file_size((pad + ".TXT").c_str()) > 0 || file_exists((pad + ".INX").c_str());
  if ((er || maak(pad)) && bruikbaar(pad) && (gezond(pad) || (nog_maken(pad) && maak(pad)))) {
    ICB* icb = IXOPEN(pad.c_str(), IX_GEDEELD);
    if (onze_sleutel(*icb)) return icb;
    IXCLOSE(icb);
  }
  scr_error(txt(T_MACRO_KAPOT), pad);
  return nullptr;
}

MacRec van_gebruiker(uint16_t key) {
  MacRec rec{};
  rec.key = key;
  rec.user = macro_staat.gebruiker;
  return rec;
}

bool gaaf(const MacRec& rec) { return rec.count >= 0 && rec.count <= MACRO_TOETSEN; }

}  // namespace

MacroGelezen macro_lees(uint16_t key, MacRec* rec) {
  ICB* icb = macro_open();
  if (icb == nullptr) return MacroGelezen::mislukt;
  *rec = van_gebruiker(key);
  const bool er = IXREAD(icb, rec);
  IXCLOSE(icb);
  if (!er) return MacroGelezen::nee;
  if (gaaf(*rec)) return MacroGelezen::ja;
  scr_error(txt(T_MACRO_KAPOT), macro_pad());
  return MacroGelezen::mislukt;
}

bool macro_schrijf(MacRec rec) {
  ICB* icb = macro_open();
  if (icb == nullptr) return false;
  const bool goed = IXWRITE(icb, &rec);
  IXCLOSE(icb);
  return goed;
}

bool macro_wis(uint16_t key) {
  ICB* icb = macro_open();
  if (icb == nullptr) return false;
  MacRec rec = van_gebruiker(key);
  if (IXREADL(icb, &rec)) {
    IXDELETE(icb, &rec);
  } else {
    IXRELEASE(icb, &rec);
  }
  IXCLOSE(icb);
  return true;
}

std::vector<MacRec> macro_alle() {
  std::vector<MacRec> uit;
  ICB* icb = macro_open();
  if (icb == nullptr) return uit;
  MacRec rec{};
  int32_t nog = icb->record_count;  // an index that runs in a circle ends too
  for (bool er = IXFIRSTR(icb, &rec); er && nog-- > 0; er = IXNEXT(icb, &rec)) {
    if (rec.user == macro_staat.gebruiker && macro_activerend(rec.key) == rec.key)
      uit.push_back(rec);
  }
  IXCLOSE(icb);
  return uit;
}
