// Pages of a finished report: forward by reading, backward by searching for the form feed before.
#include "prt/bladen.h"

#include <algorithm>

namespace {

constexpr long BLOK = 1024;

int volgend_teken(PrtBladen& b) {
  return std::ftell(b.bestand) >= b.eind ? EOF : std::getc(b.bestand);
}

// What stands at the file's position, without taking it.
int kijk(PrtBladen& b) {
  const int teken = volgend_teken(b);
  if (teken != EOF) std::ungetc(teken, b.bestand);
  return teken;
}

// Offset of the last form feed in [start, tot), -1 when there is none.
long form_feed_voor(PrtBladen& b, long tot) {
  char blok[BLOK];
  while (tot > b.start) {
    const long van = std::max(b.start, tot - BLOK);
    std::fseek(b.bestand, van, SEEK_SET);
    const size_t n = std::fread(blok, 1, static_cast<size_t>(tot - van), b.bestand);
    for (size_t i = n; i > 0; --i) {
      if (blok[i - 1] == '\f') return van + static_cast<long>(i) - 1;
    }
    tot = van;
  }
  return -1;
}

}  // namespace

bool bladen_open(PrtBladen& b, const char* pad, long start, long eind, int breedte, int bladen) {
  b = PrtBladen{};
  b.bestand = std::fopen(pad, "rb");
  if (b.bestand == nullptr) return false;
  std::fseek(b.bestand, 0, SEEK_END);
  b.eind = std::min(eind, std::ftell(b.bestand));
  b.start = std::min(start, b.eind);
  b.breedte = breedte;
  b.bladen = std::max(1, bladen);
  b.blad_plek = b.start;
  std::fseek(b.bestand, b.start, SEEK_SET);
  return true;
}

void bladen_sluit(PrtBladen& b) {
  if (b.bestand != nullptr) std::fclose(b.bestand);
  b.bestand = nullptr;
}

bool bladen_regel(PrtBladen& b, std::string& regel) {
  regel.clear();
  long plek = std::ftell(b.bestand);
  if (kijk(b) == EOF || kijk(b) == '\f') return false;
  for (; plek < b.eind; ++plek) {
    const int teken = std::getc(b.bestand);
    if (teken == EOF || teken == '\n') break;
    if (teken == '\f') {
      std::ungetc(teken, b.bestand);
      break;
    }
    if (regel.size() >= static_cast<size_t>(b.breedte)) continue;
    regel += teken < 32 || teken == 127 ? '.' : static_cast<char>(teken);
  }
  return true;
}

bool bladen_meer(PrtBladen& b) {
  const int teken = kijk(b);
  return teken != EOF && teken != '\f';
}

bool bladen_op(PrtBladen& b) {
  const int teken = kijk(b);
  return teken == EOF || (teken == '\f' && std::ftell(b.bestand) + 1 >= b.eind);
}

bool bladen_verder(PrtBladen& b) {
  if (b.blad >= b.bladen) return false;
  std::fseek(b.bestand, b.blad_plek, SEEK_SET);
  for (long plek = b.blad_plek; plek + 1 < b.eind; ++plek) {
    if (std::getc(b.bestand) != '\f') continue;
    b.blad_plek = plek + 1;
    ++b.blad;
    return true;
  }
  return false;
}

bool bladen_terug(PrtBladen& b) {
  if (b.blad <= 1 || b.blad_plek <= b.start) return false;
  const long voor = form_feed_voor(b, b.blad_plek - 1);
  b.blad_plek = voor < 0 ? b.start : voor + 1;
  --b.blad;
  return true;
}

void bladen_naar(PrtBladen& b, int blad) {
  while (b.blad < blad && bladen_verder(b)) {
  }
  while (b.blad > blad && bladen_terug(b)) {
  }
}
