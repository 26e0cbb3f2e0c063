// Packing of a label into the nine words of its slot, and back. Pure: no file, no system record.
//
// The words are decimal sums that use 32 bits to the last: prices up to 429496728 cents carry a
// digit behind them, a rate up to 428 permille stands before seven digits of order number. All sums
// are made in 64 bits of parts that were clamped to their room, so that no part can spill into
// another.
#include <algorithm>

#include "sub/ioeti.h"

namespace {

constexpr int32_t PRIJS_MAX = 429496728;
constexpr int32_t KLANT_MAX = 999999;
constexpr int32_t ORDERNR_MAX = 9999999;
constexpr uint16_t NUMMER3_MAX = 999;
constexpr uint16_t TARIEF_MAX = 428;
constexpr uint8_t MAAT_MAX = MATEN - 1, ACTIE_MAX = 99, CIJFER_MAX = 9;
constexpr uint8_t DOEL_MAX = 254;  // stored one higher, 0 being none

uint32_t met_cijfer(int32_t prijs, uint8_t cijfer) {
  const auto p = static_cast<uint64_t>(std::clamp(prijs, 0, PRIJS_MAX));
  return static_cast<uint32_t>(p * 10 + std::min(cijfer, CIJFER_MAX));
}

uint32_t helften(uint16_t laag, uint16_t hoog) { return laag | static_cast<uint32_t>(hoog) << 16; }

uint16_t laag(uint32_t w) { return static_cast<uint16_t>(w & 0xFFFF); }
uint16_t hoog(uint32_t w) { return static_cast<uint16_t>(w >> 16); }
uint8_t cijfer_van(uint32_t w) { return static_cast<uint8_t>(w % 10); }
int32_t prijs_van(uint32_t w) { return static_cast<int32_t>(w / 10); }

/// The byte beside the branch: who ordered the label, or where it is going.
uint8_t vierde_byte(const Etiket& e, bool transit) {
  const bool gezet = e.status == ETI_NOTA ? e.besteld != 0 : transit && e.onderweg != 0;
  const uint8_t filiaal = e.status == ETI_NOTA ? e.besteller : e.doel;
  return gezet ? static_cast<uint8_t>(std::min(filiaal, DOEL_MAX) + 1) : uint8_t{0};
}

uint32_t plaats(const Etiket& e, bool transit) {
  const auto soort =
      static_cast<uint32_t>(std::min(e.maat, MAAT_MAX) * 100 + std::min(e.actie, ACTIE_MAX));
  return soort | static_cast<uint32_t>(e.filiaal) << 16 |
         static_cast<uint32_t>(vierde_byte(e, transit)) << 24;
}

uint16_t statusdatum(const Etiket& e) {
  if (e.status == ETI_NOTA) return e.levertermijn;
  return e.status == ETI_VOORRAAD ? uint16_t{0} : e.vrkdat;
}

bool met_tarief(uint8_t status) { return status == ETI_VERKOPEN || status == ETI_CORRECTIES; }

void plaats_uit(uint32_t w, Etiket* e, bool transit) {
  const uint32_t maat = (w & 0xFFFF) / 100;
  // Matrices and bit maps are indexed by it: a size that cannot be is no size.
  e->maat = maat > MAAT_MAX ? uint8_t{0} : static_cast<uint8_t>(maat);
  e->actie = static_cast<uint8_t>((w & 0xFFFF) % 100);
  e->filiaal = static_cast<uint8_t>(w >> 16 & 255);
  const auto vierde = static_cast<uint8_t>(w >> 24);
  if (vierde == 0) return;
  if (e->status == ETI_NOTA) {
    e->besteld = 1;
    e->besteller = static_cast<uint8_t>(vierde - 1);
  } else if (transit) {
    e->onderweg = 1;
    e->doel = static_cast<uint8_t>(vierde - 1);
  }
}

}  // namespace

void etiket_pak(const Etiket& e, uint32_t woord[9], bool transit) {
  std::fill_n(woord, 9, uint32_t{0});
  if (e.status == ETI_VRIJ) return;
  const uint64_t vlag = e.p != 0 ? 1 : 0;
  const uint64_t tarief = met_tarief(e.status) ? std::min(e.tarief, TARIEF_MAX) : 0;
  woord[0] = met_cijfer(e.inkpr, e.cijfer);
  woord[1] = met_cijfer(e.advpr, e.reden);
  woord[2] = met_cijfer(e.vrkpr, e.status);
  woord[3] = static_cast<uint32_t>(vlag * 1000000000 +
                                   uint64_t{std::min(e.nummer3, NUMMER3_MAX)} * 1000000 +
                                   static_cast<uint64_t>(std::clamp(e.klant, 0, KLANT_MAX)));
  woord[4] = static_cast<uint32_t>(e.bedrag);
  woord[5] = plaats(e, transit);
  woord[6] = helften(e.lvnr, e.orddat);
  woord[7] = helften(e.ontdat, statusdatum(e));
  woord[8] = static_cast<uint32_t>(tarief * 10000000 +
                                   static_cast<uint64_t>(std::clamp(e.ordernr, 0, ORDERNR_MAX)));
}

bool etiket_uitpak(const uint32_t woord[9], Etiket* uit, bool transit) {
  Etiket e{};
  e.nr = uit->nr;
  e.maatsoort = uit->maatsoort;
  e.status = cijfer_van(woord[2]);
  if (e.status == ETI_VRIJ) return false;
  e.inkpr = prijs_van(woord[0]);
  e.cijfer = cijfer_van(woord[0]);
  e.advpr = prijs_van(woord[1]);
  e.reden = cijfer_van(woord[1]);
  e.vrkpr = prijs_van(woord[2]);
  e.p = static_cast<uint8_t>(woord[3] / 1000000000);
  e.nummer3 = static_cast<uint16_t>(woord[3] / 1000000 % 1000);
  e.klant = static_cast<int32_t>(woord[3] % 1000000);
  e.bedrag = static_cast<int32_t>(woord[4]);
  plaats_uit(woord[5], &e, transit);
  e.lvnr = laag(woord[6]);
  e.orddat = hoog(woord[6]);
  e.ontdat = laag(woord[7]);
  if (e.status == ETI_NOTA)
    e.levertermijn = hoog(woord[7]);
  else if (e.status != ETI_VOORRAAD)
    e.vrkdat = hoog(woord[7]);
  if (met_tarief(e.status)) e.tarief = static_cast<uint16_t>(woord[8] / 10000000);
  e.ordernr = static_cast<int32_t>(woord[8] % 10000000);
  *uit = e;
  return true;
}
