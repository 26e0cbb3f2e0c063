// See dc_spoor.h. The trail is a file of the chain, so that any terminal may run again: a head and
// one record a move. It goes by a rename of DTDCIF.TXT onto it, after which there is no DTDCIF.TXT
// and no trail; what then stands under its name has no head and is removed by who meets it.
#include "sub/dc_spoor.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>
#include <string>

#include "isam/base.h"
#include "main/controle.h"
#include "sub/datacom.h"
#include "sub/tabellen.h"

namespace {

constexpr const char* BESTAND = "DTDCIF.SPR";
constexpr char KOP[8] = {'D', 'C', 'S', 'P', 'O', 'O', 'R', '1'};

#pragma pack(push, 1)
struct Rij {  // 60 bytes
  DcTrans t;
  int32_t etiket;
  uint8_t weg;
  uint8_t status, filiaal, onderweg, doel;  // of the label before the move
  uint8_t leeg57[3];
};
#pragma pack(pop)
static_assert(sizeof(Rij) == 60);

int fd = -1;
std::map<std::string, uint32_t> gedaan;
std::optional<Rij> laatste;  // the move that the earlier run may not have finished

/// What makes two transactions one.
std::string sleutel(const DcTrans& t) {
  return str_format("%-13.13s %u %u %u %u %u", std::string_view(t.code, sizeof t.code), t.soort,
                    t.nummer, t.datum, t.vanfil, t.naarfil);
}

void lees() {
  FILE* f = fopen(BESTAND, "rbe");
  if (f == nullptr) return;
  char kop[sizeof KOP];
  const bool spoor = fread(kop, sizeof kop, 1, f) == 1 && memcmp(kop, KOP, sizeof kop) == 0;
  Rij rij;
  while (spoor && fread(&rij, sizeof rij, 1, f) == 1) {
    ++gedaan[sleutel(rij.t)];
    laatste = rij;
  }
  fclose(f);
  if (!spoor) file_delete(BESTAND);
}

void schrijf(const void* bytes, size_t n) {
  if (write(fd, bytes, n) != static_cast<ssize_t>(n)) ctl_noopen(DC_MODULE, BESTAND);
}

void open_spoor() {
  fd = open(BESTAND, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0660);
  if (fd < 0) ctl_noopen(DC_MODULE, BESTAND);
  const off_t lengte = lseek(fd, 0, SEEK_END);
  constexpr off_t KOPLENGTE = sizeof KOP;
  if (lengte < KOPLENGTE) {
    if (ftruncate(fd, 0) != 0) ctl_noopen(DC_MODULE, BESTAND);
    schrijf(KOP, sizeof KOP);
  } else if (const off_t half = (lengte - KOPLENGTE) % static_cast<off_t>(sizeof(Rij)); half != 0) {
    if (ftruncate(fd, lengte - half) != 0) ctl_noopen(DC_MODULE, BESTAND);  // a note cut short
  }
}

}  // namespace

void dc_ga(DcWeg weg, DcEtiket& l, const DcTrans& t) {
  constexpr std::array<void (*)(DcEtiket&, const DcTrans&), DC_WEGEN> WEGEN = {
      dc_zend, dc_ontvang_los, dc_ontvang_onderweg, dc_ontvang_weg};
  const auto n = static_cast<size_t>(weg);
  if (n < WEGEN.size()) WEGEN[n](l, t);
}

void dc_spoor_begin() {
  dc_spoor_einde();
  lees();
}

void dc_spoor_einde() {
  if (fd >= 0) close(fd);
  fd = -1;
  gedaan.clear();
  laatste.reset();
}

uint32_t dc_spoor_gedaan(const DcTrans& t) {
  if (gedaan.empty()) return 0;
  const auto er = gedaan.find(sleutel(t));
  return er == gedaan.end() ? 0 : er->second;
}

void dc_spoor_noteer(DcWeg weg, const DcTrans& t, int32_t etiket, const Etiket& voor) {
  if (fd < 0) open_spoor();
  const Rij rij{
      t,         etiket, static_cast<uint8_t>(weg), voor.status, voor.filiaal, voor.onderweg,
      voor.doel, {}};
  schrijf(&rij, sizeof rij);
}

void dc_spoor_hervat() {
  if (!dc.schrijven || !laatste || !(laatste->t.nr == ser_rec.nr)) return;
  const Rij rij = *laatste;
  laatste.reset();
  DcEtiket l;
  if (!dc_lees_etiket(rij.t.nr, rij.etiket, &l)) return;
  const bool als_toen = l.e.status == rij.status && l.e.filiaal == rij.filiaal &&
                        l.e.onderweg == rij.onderweg && l.e.doel == rij.doel;
  if (als_toen) dc_ga(static_cast<DcWeg>(rij.weg), l, rij.t);
}

bool dc_bestand_weg() {
  if (rename(DC_BESTAND, BESTAND) != 0) return false;
  file_delete(BESTAND);
  return true;
}
