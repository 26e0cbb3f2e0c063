// A table to try the engine on, and an inspector that judges the bytes of its files: levels, order,
// separators, sentinels, each live slot once in each key, the chain of deleted slots.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "isam/ix.h"
#include "tests/support/bestand.h"
#include "tests/support/tijdelijk.h"

struct ProefRec {
  int32_t nummer;  // key 1, behind `naam`
  char naam[10];
  int16_t groep;  // key 2, duplicates
  char tekst[48];
};
static_assert(sizeof(ProefRec) == 64);

inline ProefRec proef_rec(int32_t nummer, const char* naam = "", int groep = 0) {
  ProefRec r{};
  r.nummer = nummer;
  strncpy(r.naam, naam, sizeof r.naam);
  r.groep = static_cast<int16_t>(groep);
  return r;
}

/// Key 1 number, key 2 group, key 3 name, the last two with duplicates.
inline ICB* proef_tabel(const char* naam, int mode, int sleutels = 3) {
  ICB* icb = IXCREATE(naam, mode);
  IXUPDFCB(icb, 0, "Proeftabel,64");
  IXUPDFCB(icb, 1, "nummer,I,1,4");
  if (sleutels > 1) IXUPDFCB(icb, 2, "groep,I,15,16");
  if (sleutels > 2) IXUPDFCB(icb, 3, "naam,C,5,14");
  IXINITIX(icb);
  return icb;
}

class Inspecteur {
 public:
  /// Faults of the table or private index at `pad`, with no handle of this process open on it.
  static std::vector<std::string> fouten(const std::string& index, const std::string& data) {
    Inspecteur i(bytes_van(index), bytes_van(data), index.ends_with(".INX"));
    i.alles();
    return i.fouten_;
  }

 private:
  Inspecteur(std::string index, std::string data, bool tabel)
      : index_(std::move(index)), data_(std::move(data)), tabel_(tabel) {
    if (index_.size() >= 512) memcpy(static_cast<void*>(&icb_), index_.data(), IX_KOP);
  }

  void fout(const std::string& wat) { fouten_.push_back(wat); }

  bool leeft(int32_t n) const {
    const auto lengte = static_cast<size_t>(icb_.record_length);
    const std::string slot = data_.substr(static_cast<size_t>(n) * lengte, lengte);
    return slot.size() == lengte &&
           (slot[0] != '\xFF' || slot.substr(5).find_first_not_of('\xFF') != std::string::npos);
  }

  const char* blok(int32_t n) const { return index_.data() + static_cast<size_t>(n) * 512; }

  void alles() {
    if (index_.size() < 1536 || index_.size() != static_cast<size_t>(icb_.next_block) * 512)
      return fout("size of the index");
    if (icb_.busy != 0 || icb_.version != 351) fout("busy or version");
    if (index_.substr(260, 252) != std::string(252, '\0')) fout("header tail not zero");
    const size_t lengte = static_cast<size_t>(icb_.record_length);
    if (tabel_ && data_.size() != lengte * static_cast<size_t>(icb_.record_count))
      fout("size of the data");
    for (int k = 1; k <= icb_.key_count; ++k) boom(k);
    if (tabel_) keten();
  }

  void boom(int k) {
    icb_.block.key_number = static_cast<int8_t>(k);
    laatste_.clear();
    gezien_.assign(data_.size() / static_cast<size_t>(icb_.record_length), 0);
    tak(k, blok(k)[1], true);
    for (size_t n = 0; tabel_ && n < gezien_.size(); ++n)
      if (gezien_[n] != (leeft(static_cast<int32_t>(n)) ? 1 : 0))
        fout("key " + std::to_string(k) + " slot " + std::to_string(n));
  }

  std::string tak(int32_t nr, int niveau, bool rechts) {
    const IxSleutel& s = icb_.keys[icb_.block.key_number - 1];
    const size_t lengte = s.key_length, breed = lengte + 4;
    const std::string waar =
        "key " + std::to_string(icb_.block.key_number) + " block " + std::to_string(nr) + ": ";
    const std::string b(blok(nr), 512);
    const auto aantal = static_cast<size_t>(b[4]);
    if (b[0] != icb_.block.key_number || b[1] != niveau || b[4] < 1 || b[4] >= s.max_entries) {
      fout(waar + "key, level or count");
      return {};
    }
    if (b.find_first_not_of('\0', 5 + aantal * breed) != std::string::npos)
      fout(waar + "tail not zero");
    for (size_t i = 0; i < aantal; ++i) {
      const std::string sleutel = b.substr(5 + i * breed, lengte);
      int32_t p;
      memcpy(&p, b.data() + 5 + i * breed + lengte, 4);
      const bool einde = rechts && i + 1 == aantal;
      if (einde != (sleutel == std::string(lengte, '\xFF'))) fout(waar + "sentinel");
      if (niveau > 1) {
        if (p <= icb_.key_count + 1 || p >= icb_.next_block)
          fout(waar + "child " + std::to_string(p));
        else if (tak(p, niveau - 1, einde) != sleutel)
          fout(waar + "separator " + std::to_string(i));
        continue;
      }
      blad(waar, sleutel, p, einde);
    }
    return b.substr(5 + (aantal - 1) * breed, lengte);
  }

  void blad(const std::string& waar, const std::string& sleutel, int32_t p, bool einde) {
    const IxSleutel& s = icb_.keys[icb_.block.key_number - 1];
    if (!laatste_.empty() && IXCOMP(&icb_, laatste_.data(), sleutel.data(), s.key_length) >= 0)
      fout(waar + "order");
    laatste_ = sleutel;
    if (einde) {
      if (p != -1) fout(waar + "end pointer");
      return;
    }
    if (p < 0 || static_cast<size_t>(p) >= gezien_.size()) return fout(waar + "record number");
    ++gezien_[static_cast<size_t>(p)];
    icb_.record_no = p;
    const size_t plaats = static_cast<size_t>(p) * static_cast<size_t>(icb_.record_length);
    IXBLDKEY(&icb_, data_.data() + plaats, s.key_length);
    if (IXCOMP(&icb_, icb_.key_buf, sleutel.data(), s.key_length) != 0)
      fout(waar + "not the key of record " + std::to_string(p));
  }

  void keten() {
    size_t weg = 0, stap = 0;
    for (size_t n = 0; n < gezien_.size(); ++n) weg += leeft(static_cast<int32_t>(n)) ? 0 : 1;
    int32_t p = icb_.free_head;
    for (; p >= 0 && stap <= weg && !leeft(p); ++stap)
      memcpy(&p,
             data_.data() + static_cast<size_t>(p) * static_cast<size_t>(icb_.record_length) + 1,
             4);
    if (p != -1 || stap != weg) fout("free chain");
  }

  ICB icb_{};
  std::string index_, data_, laatste_;
  bool tabel_;
  std::vector<int> gezien_;
  std::vector<std::string> fouten_;
};

/// All faults of a table in one line; empty when it is sound.
inline std::string tabel_fouten(const std::string& naam) {
  std::string uit;
  for (const std::string& f : Inspecteur::fouten(naam + ".INX", naam + ".TXT")) uit += f + "; ";
  return uit;
}
