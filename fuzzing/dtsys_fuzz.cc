// DTSYS.TXT with any bytes anywhere, under everything that reads it.
#include <cstring>

#include "fuzzing/fuzz.h"
#include "isam/base.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/iotab.h"
#include "sub/ioeti.h"
#include "sub/opdrnr.h"
#include "sub/pghdl.h"
#include "sub/tabellen.h"
#include "sub/zoek.h"

namespace {

std::string basis, filialen_bytes;

void maak_basis() {
  fuzz_map();
  basis.assign(static_cast<size_t>(SYS_GROOTTE), '\0');
  SysRec1 een{};
  veld_zet(een.bedrijf, sizeof een.bedrijf, "Rafel");
  een.filialen = 12;
  een.land = 1;
  een.opties = 4;
  memcpy(basis.data(), &een, sizeof een);
  memcpy(basis.data() + 9 * 64 + 58, RELEASE, 5);
  basis[3 * 64 + 12] = 8;
  TerminalRec t{};
  veld_zet(t.gebruiker, sizeof t.gebruiker, "demo");
  SCRAMBLE(t.gebruiker);
  t.status = 2;
  memcpy(basis.data() + SYS_TERMINALS.basis, &t, sizeof t);
  filialen_bytes.assign(13 * sizeof(FiliaalRec), '\0');
}

/// Patches of the input onto the file: three bytes of place, one of length, the bytes.
std::string met_lappen(Bron bron) {
  std::string uit = basis;
  while (bron.n > 0) {
    const size_t plaats = bron.getal(3) % uit.size();
    const std::string lap = bron.tekst(1u + bron.byte() % 64u);
    for (size_t i = 0; i < lap.size() && plaats + i < uit.size(); ++i) uit[plaats + i] = lap[i];
  }
  return uit;
}

void loop_tabel(const SysTabel& t) {
  uint8_t buffer[64];
  int32_t nummer = 1;
  for (bool er = iotab('F', &nummer, buffer, t); er; er = iotab('N', &nummer, buffer, t)) {
  }
  while (iotab('P', &nummer, buffer, t)) {
  }
}

void gebruik() {
  int32_t nummer = 1;
  iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
  iotab('R', &nummer, &sys_rec1, SYS_RECORDS);
  iofil('O', 0, &filiaal_rec);
  for (const SysTabel& t : {SYS_RECORDS, SYS_TERMINALS, SYS_FILIAALREEKSEN, SYS_VALUTA, SYS_KLEUREN,
                            SYS_CODES_ACTIE, SYS_ACTIES, SYS_SUB20, SYS_SUB52})
    loop_tabel(t);
  nummer = 1;
  session_terminal = 1;
  iotab('R', &nummer, &terminal_rec, SYS_TERMINALS);
  session_user();
  nummer = 10;
  iotab('R', &nummer, &sys_rec10, SYS_RECORDS);
  ctl_status_text(veld_tekst(sys_rec10.tekst, sizeof sys_rec10.tekst).c_str());
  ctl_critical_test();
  uint8_t sub[64];
  for (int32_t c = 0; c < 10; ++c) {
    int32_t cijfer = c;
    sys_sub20('R', &cijfer, sub);
    cijfer = c;
    sys_sub52('R', &cijfer, sub);
    code_tekst(1 + c % 4, c);
  }
  uint8_t filiaal = 0;
  branch_by_number(sys_rec1.vergelijk_filiaal, &filiaal_rec, &filiaal);
  char tekst[1024];
  uint8_t map[32];
  memcpy(map, &sys_rec1, sizeof map);
  pg_to_text(map, tekst);
  pg_from_text(tekst, map);
  opdrnr_nieuw();
  maatcode_nieuw();
  eti_hoogste_blok();
  Etiket etiket{};
  int32_t etiketnummer = 7;
  ioeti('O', nullptr, nullptr);
  ioeti('R', &etiketnummer, &etiket);
  etiketnummer = 0;
  etiket.status = ETI_VOORRAAD;
  etiket.maatsoort = 1;
  ioeti('W', &etiketnummer, &etiket);
}

}  // namespace

std::vector<std::string> fuzz_zaden() {
  if (basis.empty()) maak_basis();
  return {std::string("\0\0\0\4\1\1\1\1\1", 9),
          std::string("\x50\x0a\0\10\xff\xff\xff\xff\xff\xff\xff\xff\xff", 13),
          std::string("\x27\0\0\0\xff\xc0\0\0\6\xff\xff\xff\xff\xff\xff\xff", 16)};
}

void fuzz_een(const uint8_t* data, size_t n) {
  if (basis.empty()) maak_basis();
  const std::string bytes = met_lappen({data, n});
  fuzz_schrijf("DTSYS.TXT", bytes.data(), bytes.size());
  fuzz_schrijf("DTFILGEG.TXT", filialen_bytes.data(), filialen_bytes.size());
  fuzz_schrijf("DTETI.TXT", bytes.data(), 10 * 376);
  try {
    gebruik();
  } catch (const Einde&) {
  }
  // Whatever was left open closes; a closed one answers with the fault that ends it.
  for (const auto& sluit : {+[] { ioeti('C', nullptr, nullptr); }, +[] { iofil('C', 0, nullptr); },
                            +[] {
                              int32_t een = 1;
                              iotab('C', &een, nullptr, SYS_RECORDS);
                            }}) {
    try {
      sluit();
    } catch (const Einde&) {
    }
  }
}
