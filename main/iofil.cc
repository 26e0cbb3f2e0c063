// DTFILGEG.TXT, the records of the branches, and the tills of each branch.
//
// Names are plain in memory and hidden on disk; the head office's name is never on disk but comes
// from the company's own record.
#include "main/iofil.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "isam/base.h"
#include "isam/io.h"
#include "main/controle.h"

FiliaalRec filiaal_rec;

namespace {

constexpr const char* BESTAND = "DTFILGEG.TXT";
constexpr size_t BEDRIJFSNAAM = 30;
enum Fout { FILIAAL_BEREIK = 1, DICHT = 2 };

int fd = -1;

int64_t plaats(int filiaal) {
  if (filiaal < 0 || filiaal > filialen()) ctl_fault("iofil", FILIAAL_BEREIK);
  const int64_t slot = filiaal == filialen() ? 0 : filiaal + 1;
  return slot * int64_t{sizeof(FiliaalRec)};
}

bool open_bestand() {
  if (fd < 0) fd = io_open(BESTAND, false);
  if (fd < 0) ctl_noopen("iofil", BESTAND);
  return true;
}

void lees(int filiaal, FiliaalRec& rec) {
  const int64_t offset = plaats(filiaal);
  rec = {};
  io_lees(fd, &rec, sizeof rec, offset);
  if (offset == 0)
    veld_zet(rec.naam, sizeof rec.naam, veld_tekst(sys_rec1.bedrijf, BEDRIJFSNAAM));
  else
    veld_zet(rec.naam, sizeof rec.naam, unscramble_veld(rec.naam, sizeof rec.naam));
}

void schrijf(int filiaal, FiliaalRec rec) {
  const int64_t offset = plaats(filiaal);
  // The hidden name is one longer and keeps its terminator.
  char naam[sizeof rec.naam] = "";
  if (offset != 0) {
    std::memcpy(naam, rec.naam, sizeof naam - 2);
    naam[sizeof naam - 2] = 0;
    SCRAMBLE(naam);
  }
  veld_zet(rec.naam, sizeof rec.naam, veld_tekst(naam, sizeof naam));
  io_schrijf(fd, &rec, sizeof rec, offset);
}

}  // namespace

bool iofil(char actie, int filiaal, FiliaalRec* buffer) {
  if (actie == 'O') return open_bestand();
  if (fd < 0) ctl_fault("iofil", DICHT);
  FiliaalRec& rec = buffer == nullptr ? filiaal_rec : *buffer;
  switch (actie) {
    case 'R':
      lees(filiaal, rec);
      return true;
    case 'W':
      schrijf(filiaal, rec);
      return true;
    case 'C':
      io_close(fd);
      fd = -1;
      return true;
    default:
      return false;
  }
}

bool branch_by_number(int nummer, FiliaalRec* buffer, uint8_t* filiaal) {
  FiliaalRec& rec = buffer == nullptr ? filiaal_rec : *buffer;
  const auto past = [&](int f) {
    iofil('R', f, &rec);
    if (rec.extern_nummer != nummer) return false;
    *filiaal = static_cast<uint8_t>(f);
    return true;
  };
  if (nummer >= 0 && nummer <= filialen() && past(nummer)) return true;
  for (int f = 0; f < filialen(); ++f)
    if (past(f)) return true;
  return false;
}

// Branch pairs ------------------------------------------------------------------------------------

namespace {

constexpr const char* PAREN_MODULE = "konl_mut";
constexpr uint8_t OPTIE_PAREN = 4;
constexpr int ALLE = 255;
constexpr int HOOGSTE_FILIAAL = 99;  // two digits in the name of a till's file
enum ParenFout { NIET_GELADEN = 2, PAREN_BEREIK = 3 };

struct Paar {
  uint8_t filiaal, kassa;
};
Paar* paren = nullptr;
int paren_aantal = -1;

bool paar_uit_naam(const char* naam, Paar& paar) {
  int filiaal = -1, kassa = -1;
  if (std::strlen(naam) != 11 || std::sscanf(naam, "KAS%2d%2d", &filiaal, &kassa) != 2)
    return false;
  if (filiaal < 0 || kassa < 0) return false;
  paar = {static_cast<uint8_t>(filiaal), static_cast<uint8_t>(kassa)};
  return true;
}

// Walks the names of the tills' files; fills at most `ruimte` pairs and returns how many there are.
int wandel(Paar* naar, int ruimte) {
  int aantal = 0;
  Paar paar;
  DIRECTORY('O', "KAS*.SYS", false);
  while (const char* naam = DIRECTORY('N', nullptr, false)) {
    if (!paar_uit_naam(naam, paar)) continue;
    if (aantal < ruimte) naar[aantal] = paar;
    ++aantal;
  }
  DIRECTORY('C', nullptr, false);
  return aantal;
}

int geladen() {
  if (paren_aantal < 0) ctl_fault(PAREN_MODULE, NIET_GELADEN);
  return paren_aantal;
}

bool past(const Paar& p, int filiaal, int kassa) {
  return (filiaal == ALLE || p.filiaal == filiaal) && (kassa == ALLE || p.kassa == kassa);
}

bool is_er(int filiaal, int kassa) {
  const int n = geladen();
  for (int i = 0; i < n; ++i)
    if (past(paren[i], filiaal, kassa)) return true;
  return false;
}

}  // namespace

void pairs_load() {
  pairs_free();
  paren_aantal = 0;
  if ((sys_rec1.opties & OPTIE_PAREN) == 0) return;
  const int aantal = wandel(nullptr, 0);
  if (aantal == 0) return;
  paren = static_cast<Paar*>(std::calloc(static_cast<size_t>(aantal), sizeof(Paar)));
  if (paren == nullptr) ctl_nomem(PAREN_MODULE, 1);
  const int gevuld = wandel(paren, aantal);
  paren_aantal = gevuld < aantal ? gevuld : aantal;
}

void pairs_free() {
  std::free(paren);
  paren = nullptr;
  paren_aantal = -1;
}

bool pairs_any() { return geladen() > 0; }

int pairs_count() { return geladen(); }

bool pairs_of_branch(int filiaal) {
  if (filiaal != ALLE && (filiaal < 0 || filiaal >= filialen()))
    ctl_fault(PAREN_MODULE, PAREN_BEREIK);
  if (filiaal != ALLE && filiaal > HOOGSTE_FILIAAL) return false;
  return is_er(filiaal, ALLE);
}

bool pair_exists(int filiaal, int kassa) {
  const int n = geladen();
  for (int i = 0; i < n; ++i)
    if (paren[i].filiaal == filiaal && paren[i].kassa == kassa) return true;
  return false;
}

void pair_send(int filiaal, int kassa, char type, const char* tekst) {
  const std::string naam = str_format("DCMU%02d%02d.TXT", filiaal, kassa);
  const int uit = open(naam.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0660);
  if (uit < 0) ctl_noopen(PAREN_MODULE, naam.c_str());
  // One write, its terminating zero with it: two terminals never mix a line.
  const std::string regel = str_format("%c%s\n", type, tekst);
  if (write(uit, regel.c_str(), regel.size() + 1) < 0) ctl_noopen(PAREN_MODULE, naam.c_str());
  close(uit);
}

bool pairs_send_all(int filiaal, int kassa, char type, const char* tekst) {
  bool verzonden = false;
  const int n = geladen();
  for (int i = 0; i < n; ++i) {
    if (!past(paren[i], filiaal, kassa)) continue;
    pair_send(paren[i].filiaal, paren[i].kassa, type, tekst);
    verzonden = true;
  }
  return verzonden;
}
