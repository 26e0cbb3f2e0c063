// Packing and reading of saved selections. The pieces of a value come from the table of fields, so
// that writer and reader cannot differ.
#include "sub/sel_stroom.h"

#include <cstring>

#include "isam/formaat.h"
#include "sub/sel_tabel.h"

namespace {

constexpr size_t OMS = sizeof(SelRec::sel_oms);
constexpr size_t STROOM_KOP = OMS + 2;

bool met_waarde(uint8_t status) { return status == SEL_LIJST || status == SEL_INGEVOERD; }

void voeg(std::vector<uint8_t>& uit, const void* van, size_t n) {
  const auto* p = static_cast<const uint8_t*>(van);
  uit.insert(uit.end(), p, p + n);
}

void pak_merken(std::vector<uint8_t>& uit, std::span<const uint16_t> merken) {
  const auto aantal = static_cast<int32_t>(merken.size());
  voeg(uit, &aantal, sizeof aantal);
  voeg(uit, merken.data(), merken.size_bytes());
}

/// Reads on in a stream; false when it does not hold that many bytes any more.
struct Lezer {
  std::span<const uint8_t> rest;
  bool neem(void* naar, size_t n) {
    if (rest.size() < n) return false;
    if (n > 0) memcpy(naar, rest.data(), n);
    rest = rest.subspan(n);
    return true;
  }
};

/// False when the list is cut short; the numbers that are there count.
bool lees_merken(Lezer& in, std::vector<uint16_t>& merken) {
  int32_t aantal = 0;
  if (!in.neem(&aantal, sizeof aantal)) return false;
  merken.clear();
  for (int32_t i = 0; i < aantal; ++i) {
    uint16_t nummer = 0;
    if (!in.neem(&nummer, sizeof nummer)) return false;
    merken.push_back(nummer);
  }
  return true;
}

bool lees_waarde(Lezer& in, std::span<const SelDeel> delen, SelRec* rec) {
  size_t nodig = 0;
  for (const SelDeel& d : delen) nodig += d.bytes;
  if (in.rest.size() < nodig) return false;
  for (const SelDeel& d : delen) in.neem(reinterpret_cast<uint8_t*>(rec) + d.plaats, d.bytes);
  return true;
}

/// What the rest of the program leans on, whatever the file held.
void begrens(SelRec* rec) {
  rec->doelgroep[sizeof rec->doelgroep - 1] = 0;
  rec->seizoen[sizeof rec->seizoen - 1] = 0;
  if (rec->stdmod > 2) rec->stdmod = 0;
  if (rec->kenmerk_nr > 9) rec->kenmerk_nr = 0;
}

}  // namespace

std::string stroom_naam(int soort, int slot) { return str_format("DTSEL%03d.%03d", soort, slot); }

std::vector<uint8_t> stroom_pak(const SelRec& rec, const char* letters, const uint8_t* status,
                                std::span<const uint16_t> merken) {
  std::vector<uint8_t> uit;
  voeg(uit, rec.sel_oms, OMS);
  voeg(uit, &rec.sel_nr, sizeof rec.sel_nr);
  for (const char* p = letters; *p != 0; ++p) {
    const char letter = *p;
    uint8_t stand = status[static_cast<uint8_t>(letter)];
    if (letter == 'a' && met_waarde(stand) && merken.empty()) stand = CODE_ALLE;
    uit.push_back(static_cast<uint8_t>(letter));
    uit.push_back(stand);
    if (!met_waarde(stand)) continue;
    if (letter == 'a') {
      pak_merken(uit, merken);
      continue;
    }
    for (const SelDeel& d : sel_waarde(letter)) {
      voeg(uit, reinterpret_cast<const uint8_t*>(&rec) + d.plaats, d.bytes);
    }
  }
  return uit;
}

StroomUit stroom_lees(std::span<const uint8_t> bytes, SelRec* rec, uint8_t* status) {
  StroomUit uit;
  Lezer in{bytes};
  const size_t oms = bytes.size() < OMS ? bytes.size() : OMS;
  in.neem(rec->sel_oms, oms);
  if (bytes.size() >= STROOM_KOP)
    in.neem(&rec->sel_nr, sizeof rec->sel_nr);
  else
    return uit;

  uint8_t letter = 0, stand = 0;
  while (in.neem(&letter, 1)) {
    const auto delen = sel_waarde(static_cast<char>(letter));
    if (letter != 'a' && delen.empty()) {
      ++uit.vreemd;
      continue;
    }
    if (!in.neem(&stand, 1)) break;
    const uint8_t vorige = status[letter];
    status[letter] = stand;
    if (!met_waarde(stand)) continue;
    const bool heel = letter == 'a' ? lees_merken(in, uit.merken) : lees_waarde(in, delen, rec);
    if (heel) continue;
    if (letter != 'a' || uit.merken.empty()) status[letter] = vorige;
    break;
  }
  begrens(rec);
  return uit;
}
