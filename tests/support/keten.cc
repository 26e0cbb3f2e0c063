#include "tests/support/keten.h"

#include <gtest/gtest.h>

#include "isam/io.h"
#include "sub/ioeti.h"
#include "sub/ioink.h"
#include "sub/tabeldef.h"

namespace {

struct Open {
  ICB** handle;
  const char* naam;
};
constexpr Open TABELLEN[] = {
    {&dtart, "DTART"},   {&dtean, "DTEAN"},   {&dtgo, "DTGO"},       {&dtfin, "DTFIN"},
    {&dtio, "DTIO"},     {&dtlev, "DTLEV"},   {&dtkoers, "DTKOERS"}, {&dtmaat, "DTMAAT"},
    {&dtmerk, "DTMERK"}, {&dtmtom, "DTMTOM"}, {&dtpick, "DTPICK"},   {&dtser, "DTSER"},
    {&dtaanv, "DTAANV"},
};

}  // namespace

ProefKeten::ProefKeten(int aantal_filialen) {
  SysRec1 een{};
  veld_zet(een.bedrijf, sizeof een.bedrijf, "De Ketting BV");
  een.filialen = static_cast<uint8_t>(aantal_filialen);
  een.land = 1;
  een.tarief[0] = 210;
  een.tarief[1] = 90;
  zet(0, &een, sizeof een);
  SysRec4 vier{};
  vier.cijfers = 8;
  zet(3 * 64, &vier, sizeof vier);
  SysRec20 twintig{};
  twintig.transit = 1;
  twintig.dagen_bewaard = 21;
  twintig.verkoopdagen = 14;
  zet(19 * 64, &twintig, sizeof twintig);

  std::string filialen_bytes;
  for (int slot = 0; slot <= aantal_filialen; ++slot) {
    FiliaalRec rec{};
    if (slot > 0) {  // the head office goes by the company's name
      str_printf(rec.naam, sizeof rec.naam - 1, "Filiaal %d", slot - 1);
      SCRAMBLE(rec.naam);
    }
    filialen_bytes.append(reinterpret_cast<const char*>(&rec), sizeof rec);
  }
  std::ofstream("DTFILGEG.TXT", std::ios::binary) << filialen_bytes;
  for (const char* naam : {"DTETI.TXT", "DTIPG.TXT", "INKSYS.TXT"}) maak(naam, 0);
  for (const TabelDef& def : tabel_alle()) EXPECT_TRUE(tabel_maak(def, def.name)) << def.name;
}

ProefKeten::~ProefKeten() { sluit(); }

void ProefKeten::open() {
  ProefSysteem::open();
  session_terminal = 7;
  int32_t nummer = 7;
  iotab('R', &nummer, &terminal_rec, SYS_TERMINALS);
  nummer = 20;
  iotab('R', &nummer, &sys_rec20, SYS_RECORDS);
  privaat_maak(session_terminal);
  for (const Open& t : TABELLEN) *t.handle = IXOPEN(t.naam, IX_GEDEELD);
  dtser_opzoek = dtser;
  ioeti('O', nullptr, nullptr);
  ipa_open(IX_GEDEELD);
  is_open = true;
}

void ProefKeten::sluit() {
  if (!is_open) return;
  ioeti('C', nullptr, nullptr);
  ipa_close();
  for (const Open& t : TABELLEN) {
    IXCLOSE(*t.handle);
    *t.handle = nullptr;
  }
  dtser_opzoek = nullptr;
  ProefSysteem::sluit();
  session_terminal = 0;
  terminal_rec = {};
  sys_rec1 = {};
  sys_rec20 = {};
  is_open = false;
}

std::string ProefKeten::sysrec(int nummer, size_t n) {
  if (iotab_fd() < 0) return bytes("DTSYS.TXT", (nummer - 1) * 64, n);
  std::string uit(n, '\0');
  io_lees(iotab_fd(), uit.data(), n, (nummer - 1) * 64);
  return uit;
}

void ProefKeten::sysrec_zet(int nummer, const void* van, size_t n) {
  if (iotab_fd() < 0)
    zet((nummer - 1) * 64, van, n);
  else
    io_schrijf(iotab_fd(), van, n, (nummer - 1) * 64);
}

DtSer ProefKeten::serie(const Serienr& nr, uint8_t maatsoort, uint16_t merk) {
  DtSer rec{};
  rec.nr = nr;
  rec.merk = merk;
  rec.maatsoort = maatsoort;
  for (uint8_t& b : rec.maten) b = 0xFF;
  rec.blok1 = -1;
  voeg(dtser, rec);
  return rec;
}

Etiket proef_etiket(const Serienr& nr, uint8_t status, uint8_t maat, uint8_t filiaal) {
  Etiket e{};
  e.nr = nr;
  e.status = status;
  e.maatsoort = 1;
  e.maat = maat;
  e.filiaal = filiaal;
  e.inkpr = 1995;
  e.advpr = 4995;
  e.vrkpr = 4495;
  e.orddat = 45000;
  e.ontdat = 45020;
  if (status == ETI_NOTA) e.levertermijn = 45010;
  if (status == ETI_VERKOPEN || status == ETI_CORRECTIES) e.vrkdat = 45050;
  return e;
}
