// Order numbers: a counter in system record 18, shown as the eight digits of an EAN-8 code with
// prefix 2, so that an order document can be scanned.
#include "sub/opdrnr.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "isam/base.h"
#include "main/iotab.h"
#include "scr/scr.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr uint32_t TELLER_MAX = 999999;
constexpr size_t LENGTE = 8;

struct SysRec18 {
  uint32_t teller;
  uint8_t rest[60];
};
static_assert(sizeof(SysRec18) == 64);

bool cijfers(std::string_view t) {
  return !t.empty() && std::ranges::all_of(t, [](char c) { return c >= '0' && c <= '9'; });
}

/// The value of up to 18 digits.
uint64_t waarde(std::string_view t) {
  uint64_t w = 0;
  for (const char c : t) w = w * 10 + static_cast<uint64_t>(c - '0');
  return w;
}

}  // namespace

uint32_t opdrnr_nieuw() {
  SysRec18 rec{};
  int32_t nummer = 18;
  iotab('X', &nummer, &rec, SYS_RECORDS);  // a counter never used is all zero: false, but locked
  rec.teller = rec.teller >= TELLER_MAX ? 1 : rec.teller + 1;
  const uint32_t teller = rec.teller;
  iotab('W', &nummer, &rec, SYS_RECORDS);
  return opdrnr_cijfer(teller);
}

uint32_t opdrnr_cijfer(uint32_t teller) {
  std::string tekst = str_format("2%06lu", teller % (TELLER_MAX + 1));
  uint32_t som = 0;
  for (size_t i = 0; i < tekst.size(); ++i) {
    som += static_cast<uint32_t>(tekst[i] - '0') * (i % 2 == 0 ? 3 : 1);
  }
  tekst += static_cast<char>('0' + (10 - som % 10) % 10);
  return static_cast<uint32_t>(waarde(tekst));
}

bool opdrnr_ok(const char* tekst) { return std::strlen(tekst) == LENGTE && ean_goed(tekst); }

bool opdrnr_norm(char* tekst) {
  const std::string_view getypt(tekst);
  if (!cijfers(getypt) || getypt.size() > LENGTE) return false;
  const uint64_t nummer = waarde(getypt);
  if (nummer % 20000000 <= 9) return false;
  if (getypt.size() == LENGTE) return tekst[0] == '2' && opdrnr_ok(tekst);
  const std::string heel = str_format("2%07lu", nummer);
  if (!opdrnr_ok(heel.c_str())) return false;
  std::memcpy(tekst, heel.c_str(), LENGTE + 1);
  return true;
}

bool opdrnr_ingave(int row, int col, uint32_t* nummer) {
  auto waarde_in = static_cast<int32_t>(*nummer);
  const std::unique_ptr<IngRec, decltype(&ing_free)> toetsen(ing_new(), ing_free);
  for (;;) {
    ing_restore(toetsen.get());
    INGAVE(row, col, waarde_in == 0 ? "8l,IZP" : "8l,ZP", &K_CANCEL, &waarde_in);
    if (weg_toets()) return false;
    if ((scr_ctx->ing_result & ING_LEEG) != 0) waarde_in = 0;
    if (waarde_in == 0) {
      *nummer = 0;
      return true;
    }
    char tekst[16];
    str_printf(tekst, sizeof tekst, "%ld", waarde_in);
    if (opdrnr_norm(tekst)) {
      *nummer = static_cast<uint32_t>(waarde(tekst));
      return true;
    }
    scr_error("%s", txt(T_OPDRNR_ONGELDIG));
  }
}

int dtpick_soorten() {
  constexpr int KEY_PAREN = 3;  // by branch pair and order number
  const OpSleutel sleutel(dtpick, KEY_PAREN);
  DtPick regel{};
  int soorten = 0;
  for (bool er = IXFIRSTR(dtpick, &regel); er && soorten != (OPDR_VOORLOPIG | OPDR_DEFINITIEF);
       er = IXNEXT(dtpick, &regel)) {
    soorten |= regel.opdrachtnr == 0 ? OPDR_VOORLOPIG : OPDR_DEFINITIEF;
    regel.nr = {UINT32_MAX, UINT16_MAX, UINT16_MAX};  // past the other lines of this order
  }
  return soorten;
}
