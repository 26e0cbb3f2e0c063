// DTDCIF.TXT of any bytes, on a small chain that holds a label or pieces for most that can happen:
// every line ends somewhere, and no piece is lost or made.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

#include "fuzzing/fuzz.h"
#include "isam/base.h"
#include "main/controle.h"
#include "prt/prt.h"
#include "sub/datacom.h"
#include "sub/ioeti.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"

namespace {

constexpr int FILIALEN = 4, LABELS = 24;
constexpr Serienr ROK{10100, 10, 1}, JAS{10100, 20, 2};
constexpr const char* MAATCODE = "8711111111119";
struct Open {
  ICB** handle;
  const char* naam;
};
constexpr Open TABELLEN[] = {{&dtart, "DTART"},   {&dtean, "DTEAN"}, {&dtgo, "DTGO"},
                             {&dtfin, "DTFIN"},   {&dtio, "DTIO"},   {&dtmaat, "DTMAAT"},
                             {&dtmtom, "DTMTOM"}, {&dtser, "DTSER"}};
std::map<std::string, std::string> basis;

void open_keten(bool transit) {
  int32_t nummer = 1;
  iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
  iotab('R', &nummer, &sys_rec1, SYS_RECORDS);
  session_terminal = 7;
  privaat_maak(session_terminal);
  sys_rec20.transit = transit ? 1 : 0;
  for (const Open& t : TABELLEN) *t.handle = tabel_open(t.naam, IX_GEDEELD);
  ioeti('O', nullptr, nullptr);
}
void sluit_keten() {
  ioeti('C', nullptr, nullptr);
  for (const Open& t : TABELLEN) {
    IXCLOSE(*t.handle);
    *t.handle = nullptr;
  }
  int32_t nummer = 0;
  iotab('C', &nummer, nullptr, SYS_RECORDS);
}

void maak_serie(const Serienr& nr, bool per_maat) {
  DtSer rec{};
  rec.nr = nr;
  rec.maatregistratie = per_maat ? 1 : 0;
  rec.blok1 = -1;
  IXWRITE(dtser, &rec);
  for (int i = 0; i < LABELS; ++i) {
    Etiket e{};
    e.nr = nr;
    e.maat = 1;
    e.status = static_cast<uint8_t>(i % 5 == 0 ? 1 + i % 4 : ETI_VOORRAAD);
    e.filiaal = static_cast<uint8_t>(i % FILIALEN);
    int32_t nummer = 0;
    ioeti('W', &nummer, &e);
    if (i == 0) rec.blok1 = eti_blok(nummer);
    IXWRITE(dtser, &rec);
  }
}

void maak_keten() {
  fuzz_map();
  std::string dtsys(static_cast<size_t>(SYS_GROOTTE), '\0');
  SysRec1 een{};
  een.filialen = FILIALEN;
  een.land = 1;
  memcpy(dtsys.data(), &een, sizeof een);
  dtsys[3 * 64 + 12] = 8;
  fuzz_schrijf("DTSYS.TXT", dtsys.data(), dtsys.size());
  fuzz_schrijf("DTETI.TXT", "", 0);
  for (const Open& t : TABELLEN) tabel_maak(*tabel_zoek(t.naam), t.naam);
  open_keten(true);
  maak_serie(ROK, false);
  maak_serie(JAS, true);
  DtEan ean{};
  veld_zet(ean.code, sizeof ean.code, MAATCODE);
  ean.soort = 'M';
  ean.artgroep = JAS.artgroep;
  ean.kleur = JAS.kleur;
  ean.volgnr = JAS.volgnr;
  ean.maat = 1;
  IXWRITE(dtean, &ean);
  sluit_keten();
  for (const char* naam : {"DTSYS.TXT", "DTETI.TXT"}) basis[naam] = fuzz_lees(naam);
  for (const Open& t : TABELLEN)
    for (const char* deel : {".TXT", ".INX"})
      basis[std::string(t.naam) + deel] = fuzz_lees((std::string(t.naam) + deel).c_str());
}

int tel(const Serienr& nr) {
  DtSer rec{};
  rec.nr = nr;
  if (!IXREAD(dtser, &rec)) return -1;
  int n = 0;
  int32_t nummer = rec.blok1;
  Etiket e{};
  for (bool er = ioeti('F', &nummer, &e); er; er = ioeti('N', &nummer, &e))
    n += e.filiaal < FILIALEN ? 1 : 1000;
  return n;
}

/// Nothing in the file may end the program.
void loop(bool schrijven) try {
  FILE* uit = fopen("/dev/null", "w");
  prt_open_stil(uit, 132, 60, false);
  dc_loop(schrijven);
  print_close("");
  fclose(uit);
} catch (const Einde&) {
  std::abort();
}

std::string regel(uint8_t soort, uint8_t van, uint8_t naar, const char* code, uint32_t stuks,
                  uint32_t nummer = 0) {
  DcRegel r{};
  r.vanfil = van;
  r.naarfil = naar;
  r.datum = 45000;
  veld_zet(r.code, sizeof r.code, code);
  r.soort = soort;
  r.stuks = stuks;
  r.nummer = nummer;
  return {reinterpret_cast<const char*>(&r), sizeof r};
}

}  // namespace

std::vector<std::string> fuzz_zaden() {
  const std::string etiket = regel(DC_ZENDEN, 1, 2, "00000002", DC_GEEN_AANTAL, 20000011) +
                             regel(DC_ONTVANGEN, 1, 2, "00000002", DC_GEEN_AANTAL, 20000011) +
                             regel(DC_ONTVANGEN, 0, 3, "00000001", 1) +
                             regel(DC_ZENDEN, 3, 0, "00000031", 1);
  const std::string maat =
      regel(DC_ZENDEN, 1, 2, MAATCODE, 2) + regel(DC_ONTVANGEN, 1, 2, MAATCODE, 1, 20000011) +
      regel(DC_ONTVANGEN, 1, 2, MAATCODE, 2) + regel(DC_ZENDEN, 2, 1, MAATCODE, DC_GEEN_AANTAL - 1);
  return {etiket, maat, etiket + maat + std::string(29, '\0')};
}

void fuzz_een(const uint8_t* data, size_t n) {
  if (basis.empty()) maak_keten();
  std::string bytes(reinterpret_cast<const char*>(data), n);
  for (const bool schrijven : {false, true}) {
    for (const auto& [naam, inhoud] : basis)
      fuzz_schrijf(naam.c_str(), inhoud.data(), inhoud.size());
    // Huge counts to and fro are many moves of few pieces: a few lines of them, and none written.
    for (size_t r = schrijven ? 0 : 8; (r + 1) * sizeof(DcRegel) <= bytes.size(); ++r)
      memset(bytes.data() + r * sizeof(DcRegel) + offsetof(DcRegel, stuks) + 1, 0, 3);
    fuzz_schrijf(DC_BESTAND, bytes.data(), bytes.size());
    open_keten(n % 2 == 0);
    loop(schrijven);
    if (tel(ROK) != LABELS || tel(JAS) != LABELS) std::abort();
    sluit_keten();
    if (schrijven == dc_aanwezig() && n != 0) std::abort();
  }
  remove(DC_BESTAND);
}
