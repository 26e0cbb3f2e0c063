#include "bench/dc_meet.h"

#include <unistd.h>
#include <algorithm>
#include <cstdio>

#include <cstring>

#include "bench/gegevens.h"
#include "bench/lezer.h"
#include "bench/partij.h"
#include "isam/base.h"
#include "main/controle.h"
#include "prt/prt.h"
#include "sub/datacom.h"
#include "sub/ioeti.h"
#include "sub/muteren.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"

namespace {

constexpr uint32_t SERIES = 3000, LABELS = 20000, FILIALEN = 100;
constexpr int DAGEN = 5;  // a label is sent, received, sent, received, sent
static_assert(LABELS * DAGEN == DC_REGELS);
constexpr uint16_t DAG1 = 45000;
struct Open {
  ICB** handle;
  const char* naam;
};
constexpr Open TABELLEN[] = {{&dtart, "DTART"},   {&dtean, "DTEAN"}, {&dtgo, "DTGO"},
                             {&dtfin, "DTFIN"},   {&dtio, "DTIO"},   {&dtmaat, "DTMAAT"},
                             {&dtmtom, "DTMTOM"}, {&dtser, "DTSER"}};

struct Keten {
  uint32_t series, labels;
};

void leeg(const char* naam, int64_t n, const void* begin, size_t bytes) {
  FILE* f = fopen(naam, "wb");
  if (f == nullptr) meet_fout("datacom", naam);
  fwrite(begin, 1, bytes, f);
  fclose(f);
  if (truncate(naam, n) != 0) meet_fout("datacom", naam);
}

Serienr serie_van(const Keten& k, uint32_t label) {
  const uint32_t s = label * k.series / k.labels;
  return {10000 + s / 100, static_cast<uint16_t>(s % 100), 1};
}

void open_keten() {
  int32_t nummer = 1;
  iotab('O', &nummer, &sys_rec1, SYS_RECORDS);
  iotab('R', &nummer, &sys_rec1, SYS_RECORDS);
  session_terminal = 7;
  privaat_maak(session_terminal);
  sys_rec20.transit = 1;
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

/// A fresh chain, left open: ten labels at most a series, so one block each.
void maak(const Keten& k) {
  SysRec1 een{};
  een.filialen = FILIALEN;
  een.land = 1;
  leeg("DTSYS.TXT", SYS_GROOTTE, &een, sizeof een);
  leeg("DTETI.TXT", 0, "", 0);
  for (const Open& t : TABELLEN) tabel_maak(*tabel_zoek(t.naam), t.naam);
  open_keten();
  for (uint32_t l = 0; l < k.labels; ++l) {
    Etiket e{};
    e.nr = serie_van(k, l);
    const bool nieuw = l == 0 || !(serie_van(k, l - 1) == e.nr);
    e.status = ETI_VOORRAAD;
    e.maat = 1;
    e.filiaal = static_cast<uint8_t>(l % FILIALEN);
    int32_t nummer = 0;
    if (nieuw) {
      DtSer s{};
      s.nr = e.nr;
      s.blok1 = -1;
      IXWRITE(dtser, &s);
    }
    ioeti('W', &nummer, &e);
  }
}

/// The number of the l-th label: each series has a block.
std::vector<int32_t> nummers(const Keten& k) {
  std::vector<int32_t> uit;
  int32_t blok = -1, slot = 0;
  for (uint32_t l = 0; l < k.labels; ++l) {
    const bool nieuw = l == 0 || !(serie_van(k, l - 1) == serie_van(k, l));
    blok += nieuw ? 1 : 0;
    slot = nieuw ? 0 : slot + 1;
    uit.push_back(blok * 10 + slot + 1);
  }
  return uit;
}

Zending stap(uint32_t l, int dag) {
  const auto waar = [l](int n) {
    return static_cast<uint8_t>((l + static_cast<uint32_t>(n) * 7) % FILIALEN);
  };
  const int n = dag / 2;
  return {waar(n), waar(n + 1), 0, static_cast<uint16_t>(DAG1 + dag), 0};
}

void schrijf_bestand(const std::vector<int32_t>& nrs) {
  FILE* f = fopen(DC_BESTAND, "wb");
  if (f == nullptr) meet_fout("datacom", DC_BESTAND);
  std::vector<uint32_t> volgorde(nrs.size());
  for (uint32_t i = 0; i < volgorde.size(); ++i) volgorde[i] = i;
  Toeval t{5};
  for (int dag = 0; dag < DAGEN; ++dag) {
    for (size_t i = volgorde.size(); i > 1; --i)
      std::swap(volgorde[i - 1], volgorde[t.tot(static_cast<uint32_t>(i))]);
    for (const uint32_t l : volgorde) {
      const Zending z = stap(l, dag);
      DcRegel r{};
      r.vanfil = z.van;
      r.naarfil = z.naar;
      r.datum = z.datum;
      char code[14];
      etikode_maak(0, nrs[l], code);
      memcpy(r.code, code, sizeof r.code);
      r.soort = dag % 2 == 0 ? DC_ZENDEN : DC_ONTVANGEN;
      r.stuks = DC_GEEN_AANTAL;
      fwrite(&r, sizeof r, 1, f);
    }
  }
  fclose(f);
}

/// The records of one move as the engine must take them, and nothing else.
void kale_stap(const Serienr& nr, int32_t nummer, Etiket* e, const Zending& z, bool zenden) {
  ser_rec.nr = nr;
  if (zenden) {
    go_nieuw(nummer, z);
    DtFin f{};
    f.houder = f.vanfil = z.van;
    f.naarfil = z.naar;
    f.datum = z.datum;
    f.nr = nr;
    f.etiket = static_cast<uint32_t>(nummer);
    IXWRITE(dtfin, &f);
    etiket_gezonden(e, z);
  } else {
    io_nieuw(nummer, z, 1);
    go_afwerken(nummer);
    etiket_ontvangen(e, z.naar);
  }
  ioeti('W', &nummer, e);
}

/// The run's own work table of labels, filled in the order of the file.
void kaal_werktabel(const Keten& k) {
  constexpr TabelDef DEF{
      "werk",
      "werk",
      48,
      {"key1,NODUPS,I,25,28,I,29,32", "key2,NODUPS,I,1,4,I,5,6,I,7,8,I,25,28,I,9,10,I,29,32"}};
  FILE* f = fopen(DC_BESTAND, "rb");
  if (f == nullptr || !tabel_maak(DEF, "TP07W")) meet_fout("datacom", "TP07W");
  ICB* icb = IXOPEN_LENGTE("TP07W", IX_EXCLUSIEF, 48);
  DcRegel r;
  for (uint32_t regel = 1; fread(&r, sizeof r, 1, f) == 1; ++regel) {
    uint8_t rec[48] = {};
    Etiketcode code{};
    etikode_lees(std::string_view(r.code, sizeof r.code), &code);
    const Serienr nr = serie_van(k, static_cast<uint32_t>(code.nummer) % k.labels);
    memcpy(rec, &nr, sizeof nr);
    memcpy(rec + 8, &r.datum, sizeof r.datum);
    memcpy(rec + 24, &code.nummer, sizeof code.nummer);
    memcpy(rec + 28, &regel, sizeof regel);
    IXWRITE(icb, rec);
  }
  fclose(f);
  IXCLOSE(icb);
  IXREMOVE("TP07W");
}

void kaal(const Keten& k, const std::vector<int32_t>& nrs) {
  kaal_werktabel(k);
  for (uint32_t l = 0; l < k.labels; ++l) {
    const Serienr nr = serie_van(k, l);
    int32_t nummer = nrs[l];
    Etiket e{};
    ioeti('R', &nummer, &e);
    for (int dag = 0; dag < DAGEN; ++dag) kale_stap(nr, nummer, &e, stap(l, dag), dag % 2 == 0);
    if (l + 1 < k.labels && serie_van(k, l + 1) == nr) continue;
    DtSer s{};
    s.nr = nr;
    if (IXREADL(dtser, &s)) IXWRITE(dtser, &s);
  }
}

double verwerk() {
  FILE* lijst = tmpfile();
  prt_open_stil(lijst, 132, 0, false);
  const double t = tijd_van([] { dc_loop(true); });
  print_close("");
  if (ftell(lijst) != 0) meet_fout("datacom", "a remark where none belongs");
  fclose(lijst);
  return t;
}

void keur(const Keten& k) {
  const auto moet = static_cast<int32_t>(k.labels);
  if (dtgo->record_count != moet || dtfin->record_count != 3 * moet ||
      dtio->record_count != 2 * moet)
    meet_fout("datacom", "another number of records than of moves");
}

/// Seconds of `werk` on a fresh chain with its file of lines.
template <class F>
double op_keten(const Keten& k, const std::vector<int32_t>& nrs, bool kaart, F werk) {
  lezer_kies(kaart);
  maak(k);
  schrijf_bestand(nrs);
  const double t = werk();
  keur(k);
  sluit_keten();
  lezer_kies(true);
  return t;
}

struct Tijden {
  Paar ons;
  double kaal;
};
Tijden meet(uint32_t deler, bool met_kaal) {
  const Keten k{SERIES / deler, LABELS / deler};
  const std::vector<int32_t> nrs = nummers(k);
  std::vector<double> kaart, gewoon, los;
  for (int ronde = 0; ronde < 3; ++ronde) {
    kaart.push_back(op_keten(k, nrs, true, verwerk));
    gewoon.push_back(op_keten(k, nrs, false, verwerk));
    if (met_kaal)
      los.push_back(op_keten(k, nrs, true, [&] { return tijd_van([&] { kaal(k, nrs); }); }));
  }
  return {{mediaan(kaart), mediaan(gewoon)}, mediaan(los)};
}

}  // namespace

Paar dc_groei(uint32_t deler) { return meet(deler, false).ons; }

Rij dc_meet(uint32_t deler) {
  const Tijden t = meet(deler, true);
  Rij r{"14",
        "datacom: 100,000 lines (machine: their writes alone)",
        "s",
        {{t.ons.kaart}, {t.ons.gewoon}}};
  r.machine = t.kaal;
  return r;
}
