// A chain as the balance needs it: system file, branches, master tables, series and order lines.
#include <cstdio>
#include <cstring>

#include "bench/gegevens.h"
#include "bench/partij.h"
#include "bench/saldo_meet.h"
#include "isam/base.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "main/iotab.h"

namespace {

struct Definitie {
  const char* naam;
  int lengte;
  const char* sleutels[3];
};
constexpr Definitie ART = {"DTART", 304, {"artg,NODUPS,I,1,4", "oms,C,5,24", nullptr}};
constexpr Definitie MERK = {"DTMERK", 76, {"merknr,NODUPS,I,1,2", "mkzn,C,23,26", nullptr}};
constexpr Definitie LEV = {"DTLEV", 332, {"lvnr,NODUPS,I,1,2", "lvnaam,C,3,32", nullptr}};
constexpr Definitie MAAT = {"DTMAAT", 404, {"maat,NODUPS,I,1,1,I,2,2", nullptr, nullptr}};
constexpr Definitie MTOM = {"DTMTOM", 12, {"maatoms,NODUPS,I,1,1,I,2,2,I,3,3", nullptr, nullptr}};
constexpr Definitie PICK = {"DTPICK",
                            404,
                            {"key1,NODUPS,I,2,2,I,5,8,I,9,10,I,11,12,I,3,3,I,13,16",
                             "key2,NODUPS,I,5,8,I,9,10,I,11,12,I,2,2,I,3,3,I,13,16",
                             "key3,NODUPS,I,2,2,I,3,3,I,13,16,I,5,8,I,9,10,I,11,12"}};

FILE* schrijver(const char* naam) {
  FILE* f = fopen(naam, "wb");
  if (f == nullptr) meet_fout("keten", naam);
  return f;
}

/// An empty table; its records are then written beside it and indexed in one go.
void maak(const Definitie& d) {
  ICB* icb = IXCREATE(d.naam, IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, str_format("%s,%d", d.naam, d.lengte).c_str());
  for (int k = 0; k < 3 && d.sleutels[k] != nullptr; ++k) IXUPDFCB(icb, k + 1, d.sleutels[k]);
  IXINITIX(icb);
  IXCLOSE(icb);
}

template <class Rec, class F>
void tabel(const Definitie& d, uint32_t n, F een) {
  static_assert(sizeof(Rec) <= 512);
  maak(d);
  FILE* f = schrijver((std::string(d.naam) + ".TXT").c_str());
  for (uint32_t i = 0; i < n; ++i) {
    const Rec r = een(i);
    fwrite(&r, sizeof r, 1, f);
  }
  fclose(f);
  if (IXBLDIX(d.naam) != 1) meet_fout("keten", d.naam);
}

void systeem() {
  std::string sys(static_cast<size_t>(SYS_GROOTTE), '\0');
  SysRec1 een{};
  veld_zet(een.bedrijf, sizeof een.bedrijf, "Meetketen");
  een.filialen = KETEN_FILIALEN;
  een.land = 1;
  memcpy(sys.data(), &een, sizeof een);
  SysRec10 tien{};
  memcpy(tien.release, RELEASE, sizeof tien.release);
  memcpy(sys.data() + 9 * 64, &tien, sizeof tien);
  FILE* f = schrijver("DTSYS.TXT");
  fwrite(sys.data(), sys.size(), 1, f);
  fclose(f);
  f = schrijver("DTFILGEG.TXT");
  for (int slot = 0; slot <= KETEN_FILIALEN; ++slot) {
    FiliaalRec rec{};
    str_printf(rec.naam, sizeof rec.naam - 1, slot == 0 ? "Hoofdkantoor" : "Filiaal %d", slot - 1);
    SCRAMBLE(rec.naam);
    fwrite(&rec, sizeof rec, 1, f);
  }
  fclose(f);
}

}  // namespace

DtPick meet_regel(uint32_t i, uint32_t regels) {
  const auto p = static_cast<uint32_t>(uint64_t{i} * 700001 % regels);
  const uint32_t serie = p / 20, plek = p % 20;
  DtPick r{};
  r.nr = meet_serie(serie).nr;
  r.vanfil = static_cast<uint8_t>((serie * 7 + plek * 13) % KETEN_FILIALEN);
  r.naarfil = static_cast<uint8_t>((r.vanfil + 1u + (plek * 3 + serie) % (KETEN_FILIALEN - 1)) %
                                   KETEN_FILIALEN);
  for (uint32_t m = 0; m < 5; ++m) r.aantal[10 + (p * 3 + m * 2) % 60] = 1 + (p + m) % 3;
  return r;
}

void keten_maak(uint32_t series, uint32_t regels) {
  systeem();
  tabel<DtArt>(ART, KETEN_ARTIKELEN, [](uint32_t i) {
    DtArt r{};
    r.nummer = i + 1;
    str_printf(r.naam, sizeof r.naam, "Groep %d", static_cast<int>(i));
    return r;
  });
  tabel<DtMerk>(MERK, KETEN_MERKEN, [](uint32_t i) {
    DtMerk r{};
    r.nummer = static_cast<uint16_t>(i + 1);
    str_printf(r.naam, sizeof r.naam, "Merk %d", static_cast<int>(i));
    str_printf(r.zoeknaam, sizeof r.zoeknaam, "%d", static_cast<int>(i));
    return r;
  });
  tabel<DtLev>(LEV, KETEN_LEVERANCIERS, [](uint32_t i) {
    DtLev r{};
    r.nummer = static_cast<uint16_t>(i + 1);
    return r;
  });
  tabel<DtMaat>(MAAT, KETEN_MAATSOORTEN, [](uint32_t i) {
    DtMaat r{};
    r.land = 1;
    r.maatsoort = static_cast<uint8_t>(i + 1);
    return r;
  });
  maak(MTOM);
  ICB* icb = IXCREATE("DTSER", IX_EXCLUSIEF);
  meet_definitie(icb);
  IXCLOSE(icb);
  meet_schrijf("DTSER.TXT", series);
  if (IXBLDIX("DTSER") != 1) meet_fout("keten", "DTSER");
  if (regels > 0)
    tabel<DtPick>(PICK, regels, [regels](uint32_t i) { return meet_regel(i, regels); });
  else
    maak(PICK);
}
