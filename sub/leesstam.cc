// Reads of the master files. Every read leaves the file on the key that it was on, and a buffer
// that does not hold the record asked for never looks as if it did.
#include "sub/leesstam.h"

#include <algorithm>
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "main/iotab.h"
#include "sub/tabeldef.h"

namespace {

enum Leesfout { ARTIKEL = 1, MERK, LEV, KLANT, SERIE, EAN, EAN_MAAT };

/// Puts the file on a key and back on its own at the end of the scope.
struct Sleutel {
  Sleutel(ICB* bestand, int nieuw) : icb(bestand), oud(bestand->block.key_number) {
    if (oud != nieuw)
      IXSWITCH(icb, nieuw);
    else
      gelijk = true;
  }
  ~Sleutel() {
    if (!gelijk && oud > 0) IXSWITCH(icb, oud);
  }
  Sleutel(const Sleutel&) = delete;
  Sleutel& operator=(const Sleutel&) = delete;
  ICB* icb;
  int oud;
  bool gelijk = false;
};

/// Opens a table for one read.
struct Bestand {
  explicit Bestand(const char* naam) : icb(tabel_open(naam, IX_LEES)) {}
  ~Bestand() { IXCLOSE(icb); }
  Bestand(const Bestand&) = delete;
  Bestand& operator=(const Bestand&) = delete;
  ICB* icb;
};

void moet_open(const ICB* icb, Leesfout fout) {
  if (icb == nullptr) ctl_fault("leesstam", fout);
}

template <class Rec>
bool lees_sleutel1(ICB* icb, Rec* buffer) {
  const Sleutel sleutel(icb, 1);
  return IXREAD(icb, buffer);
}

/// A record known by its number, which is its first field in all these files.
template <class Rec, class Nummer>
bool lees_nummer(ICB* icb, Rec* buffer, Nummer nummer, Leesfout fout) {
  moet_open(icb, fout);
  if (nummer != 0 && buffer->nummer == nummer) return true;
  *buffer = Rec{};
  buffer->nummer = nummer;
  if (lees_sleutel1(icb, buffer)) return true;
  *buffer = Rec{};
  return false;
}

template <class Rec, class Nummer>
bool open_nummer(const char* naam, Rec* buffer, Nummer nummer, Leesfout fout) {
  if (nummer != 0 && buffer->nummer == nummer) return true;
  const Bestand b(naam);
  return lees_nummer(b.icb, buffer, nummer, fout);
}

/// The code as a key: at most 13 characters, without blanks behind it.
std::string_view kale_code(std::string_view code) {
  code = code.substr(0, std::min(code.find('\0'), sizeof DtEan::code));
  while (!code.empty() && code.back() == ' ') code.remove_suffix(1);
  return code;
}

/// A code put back after a failed read has no kind, so it does not count as held.
bool heeft_code(const DtEan& buffer, std::string_view code) {
  return !code.empty() && buffer.soort != 0 && veld_tekst(buffer.code, sizeof buffer.code) == code;
}

bool lees_code(ICB* icb, DtEan* buffer, std::string_view code) {
  *buffer = DtEan{};
  veld_zet(buffer->code, sizeof buffer->code, code);
  return lees_sleutel1(icb, buffer);
}

}  // namespace

bool lees_artikel(ICB* icb, DtArt* buffer, uint32_t nummer) {
  return lees_nummer(icb, buffer, nummer, ARTIKEL);
}
bool lees_merk(ICB* icb, DtMerk* buffer, uint16_t nummer) {
  return lees_nummer(icb, buffer, nummer, MERK);
}
bool lees_lev(ICB* icb, DtLev* buffer, uint16_t nummer) {
  return lees_nummer(icb, buffer, nummer, LEV);
}
bool lees_klant(ICB* icb, DtKlt* buffer, uint32_t nummer) {
  return lees_nummer(icb, buffer, nummer, KLANT);
}

bool lees_artikel(DtArt* buffer, uint32_t nummer) {
  return open_nummer("DTART", buffer, nummer, ARTIKEL);
}
bool lees_merk(DtMerk* buffer, uint16_t nummer) {
  return open_nummer("DTMERK", buffer, nummer, MERK);
}
bool lees_lev(DtLev* buffer, uint16_t nummer) { return open_nummer("DTLEV", buffer, nummer, LEV); }
bool lees_klant(DtKlt* buffer, uint32_t nummer) {
  return open_nummer("DTKLT", buffer, nummer, KLANT);
}

bool lees_serie(ICB* icb, DtSer* buffer, const Serienr& nr) {
  moet_open(icb, SERIE);
  *buffer = DtSer{};
  buffer->nr = nr;
  if (lees_sleutel1(icb, buffer)) return true;
  *buffer = DtSer{};
  return false;
}

bool lees_ean(ICB* icb, DtEan* buffer, std::string_view code) {
  moet_open(icb, EAN);
  code = kale_code(code);
  if (heeft_code(*buffer, code)) return true;
  if (lees_code(icb, buffer, code)) return true;
  if (code.size() == sizeof buffer->code && code.front() == '0' &&
      lees_code(icb, buffer, code.substr(1))) {
    return true;
  }
  *buffer = DtEan{};
  veld_zet(buffer->code, sizeof buffer->code, code);
  return false;
}

bool lees_ean(DtEan* buffer, std::string_view code) {
  if (heeft_code(*buffer, kale_code(code))) return true;
  const Bestand b("DTEAN");
  return lees_ean(b.icb, buffer, code);
}

bool lees_ean_maat(ICB* icb, DtEan* buffer, const Serienr& nr, uint8_t maat) {
  moet_open(icb, EAN_MAAT);
  *buffer = DtEan{};
  buffer->soort = 'M';
  buffer->artgroep = nr.artgroep;
  buffer->kleur = nr.kleur;
  buffer->volgnr = nr.volgnr;
  buffer->maat = maat;
  const Sleutel sleutel(icb, 2);
  // The key allows duplicates: only a search over its five fields finds one without its slot.
  if (IXFIRSTR(icb, buffer, 5)) return true;
  *buffer = DtEan{};
  return false;
}

bool lees_kleur(Kleur* buffer, uint16_t nummer) {
  if (nummer != 0 && buffer->nummer == nummer) return true;
  *buffer = Kleur{};
  int32_t n = nummer;
  if (nummer != 0 && iotab('R', &n, buffer, SYS_KLEUREN)) {
    buffer->nummer = nummer;
    return true;
  }
  *buffer = Kleur{};
  return false;
}
