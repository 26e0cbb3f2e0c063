// winkel export --sqlite: a chain as one database for who wants to ask it questions. A table for
// each keyed table and flat file, a row for each record, by the names of the fields; the labels
// unpacked. Tables are copied one by one while others work; labels with their series and price
// groups with their sets are of one moment.
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix_intern.h"
#include "main/iofil.h"
#include "main/iotab.h"
#include "prt/tabellen.h"
#include "sub/datacom.h"
#include "sub/ioeti_intern.h"
#include "sub/tabeldef.h"
#include "tools/ix_keur.h"
#include "tools/sqlite_schrijf.h"
#include "tools/winkel.h"

namespace {

using enum VeldSoort;
using Bytes = std::vector<uint8_t>;

constexpr int WACHT = 30;  // seconds for a table that somebody has to himself

template <class V>
constexpr Veld met(Veld v, V vorm) {
  v.vorm = vorm;
  return v;
}
constexpr Veld dag(const char* naam, size_t offset) {
  return met(Veld{naam, static_cast<int>(offset), u16}, VeldVorm::dag);
}

// Files whose fields no other tool needs.
constexpr Veld IPG[] = {{"artgroep", 0, u32},
                        {"kleur", 4, u16},
                        {"volgnr", 6, u16},
                        {"prijsset", offsetof(DtIpg, nummer), u16},
                        dag("eind", offsetof(DtIpg, eind)),
                        {"maten", offsetof(DtIpg, maten), bits, sizeof DtIpg::maten},
                        {"soort", offsetof(DtIpg, soort), u8},
                        {"verkoopprijs", offsetof(DtIpg, verkoopprijs), i32},
                        {"inkoopprijs", offsetof(DtIpg, inkoopprijs), i32},
                        {"volgende", offsetof(DtIpg, volgende), i32}};
constexpr Veld INK[] = {{"jaar", 0, u16},
                        {"seizoen", offsetof(InkSys, seizoen), tekst, 1},
                        {"tekst", offsetof(InkSys, tekst), tekst, sizeof InkSys::tekst}};
constexpr Veld FIL[] = {{"naam", 0, verhuld, sizeof FiliaalRec::naam},
                        {"adres", offsetof(FiliaalRec, adres), tekst, sizeof FiliaalRec::adres},
                        {"plaats", offsetof(FiliaalRec, plaats), tekst, sizeof FiliaalRec::plaats},
                        {"extern_nummer", offsetof(FiliaalRec, extern_nummer), u8}};
constexpr Veld PTRG[] = {{"printer", 0, u16},
                         {"naam", offsetof(PtrgRec, name), tekst, sizeof PtrgRec::name}};
constexpr Veld PTRC[] = {{"printer", 0, u16},
                         {"verbinding", offsetof(PtrcRec, id), u8},
                         {"naar_map", offsetof(PtrcRec, to_dir), u8},
                         {"apparaat", offsetof(PtrcRec, device), tekst, sizeof PtrcRec::device},
                         {"naam", offsetof(PtrcRec, name), tekst, sizeof PtrcRec::name}};
constexpr Veld PTRP[] = {{"printer", 0, u16},
                         {"configuratie", offsetof(PtrpRec, id), u8},
                         {"staand", offsetof(PtrpRec, portrait), u8},
                         {"kolommen", offsetof(PtrpRec, columns), u16},
                         {"regels", offsetof(PtrpRec, rows), u16},
                         {"omschrijving", offsetof(PtrpRec, desc), tekst, sizeof PtrpRec::desc},
                         {"start", offsetof(PtrpRec, start), tekst, sizeof PtrpRec::start},
                         {"stop", offsetof(PtrpRec, stop), tekst, sizeof PtrpRec::stop}};
constexpr Veld PTRCA[] = {{"printer", 0, u16},
                          {"configuratie", offsetof(PtrcaRec, id), u8},
                          {"mogelijkheid", offsetof(PtrcaRec, cap), u8},
                          {"code", offsetof(PtrcaRec, code), tekst, sizeof PtrcaRec::code}};

// Tables of DTSYS.TXT; passwords stay where they are.
constexpr Veld TERMINAL[] = {
    {"gebruiker", 0, verhuld, sizeof TerminalRec::gebruiker},
    {"rechten", offsetof(TerminalRec, rechten), tekst, 1},
    {"status", offsetof(TerminalRec, status), u8},
    {"programma", offsetof(TerminalRec, programma), tekst, sizeof TerminalRec::programma},
    dag("aangemeld", offsetof(TerminalRec, datum))};
constexpr Veld REEKS[] = {
    {"filialen", offsetof(Filiaalreeks, filialen), bits, sizeof Filiaalreeks::filialen},
    {"naam", offsetof(Filiaalreeks, naam), tekst, sizeof Filiaalreeks::naam}};
constexpr Veld VALUTA[] = {{"code", 0, tekst, sizeof Valuta::code},
                           {"decimalen", offsetof(Valuta, decimalen), u8},
                           {"naam", offsetof(Valuta, naam), tekst, sizeof Valuta::naam}};
constexpr Veld KLEUR[] = {{"naam", offsetof(Kleur, naam), tekst, sizeof Kleur::naam}};
constexpr Veld ACTIE[] = {dag("van", 0),
                          dag("tot_en_met", offsetof(Actie, tm)),
                          {"code", offsetof(Actie, code), u8},
                          {"tekst", offsetof(Actie, tekst), tekst, sizeof Actie::tekst},
                          {"filialen", offsetof(Actie, filialen), bits, sizeof Actie::filialen}};
constexpr Veld CODE[] = {{"tekst", 0, tekst, sizeof Codetekst::tekst}};

struct Tabel {
  const char* naam;
  Velden velden;
  int lengte;
};
constexpr Tabel PRINT[] = {{TR_PTRG, PTRG, sizeof(PtrgRec)},
                           {TR_PTRC, PTRC, sizeof(PtrcRec)},
                           {TR_PTRP, PTRP, sizeof(PtrpRec)},
                           {TR_PTRCA, PTRCA, sizeof(PtrcaRec)}};
struct SysDeel {
  const char* naam;
  Velden velden;
  SysTabel plaats;
  int eerste = 1;  // number of record 1
};
constexpr SysDeel SYSTEEM[] = {{"terminal", TERMINAL, SYS_TERMINALS},
                               {"filiaalreeks", REEKS, SYS_FILIAALREEKSEN},
                               {"valuta", VALUTA, SYS_VALUTA},
                               {"kleur", KLEUR, SYS_KLEUREN},
                               {"actie", ACTIE, SYS_ACTIES},
                               {"actiecode", CODE, SYS_CODES_ACTIE, 0},
                               {"correctiecode", CODE, SYS_CODES_CORRECTIE, 0},
                               {"inkoopcode", CODE, SYS_CODES_INKOOP, 0},
                               {"deelseizoen", CODE, SYS_CODES_SEIZOEN, 0}};

void moet(bool goed, std::string_view naam, std::string_view waarom) {
  if (!goed) winkel_fout(naam, waarom);
}

/// Records of a table by slot; deleted ones are left out.
void zet_tabel(SqliteDb* d, const Tabel& t, const Bytes& index, const Bytes& data) {
  ICB kop{};
  moet(index.size() >= IX_KOP, t.naam, "niet te lezen; zie ixtool check");
  memcpy(&kop, index.data(), IX_KOP);
  moet(kop.record_length == t.lengte, t.naam, "niet te lezen; zie ixtool check");
  SqliteTabel uit(d, t.naam, t.velden, "record");
  const auto lengte = static_cast<size_t>(t.lengte);
  const auto slots =
      std::min<int64_t>(kop.record_count, static_cast<int64_t>(data.size() / lengte));
  for (int64_t n = 0; n < slots; ++n) {
    const uint8_t* rec = data.data() + static_cast<size_t>(n) * lengte;
    if (ix_levend(rec, t.lengte)) uit.zet(n, {rec, lengte});
  }
}

void tabel(SqliteDb* d, const Tabel& t) {
  TabelKopie kopie;
  const KopieStand stand = tabel_kopieer(t.naam, WACHT, &kopie);
  moet(stand.uit == KopieUit::goed, t.naam, kopie_tekst(stand));
  zet_tabel(d, t, kopie.index, kopie.data);
}

Tabel van_def(const char* naam) {
  const TabelDef* def = tabel_zoek(naam);
  return {naam, velden_van(naam), def == nullptr ? 0 : def->lengte};
}

// Labels ------------------------------------------------------------------------------------------

constexpr const char* ETIKET =
    "(nummer INTEGER PRIMARY KEY, artgroep INTEGER, kleur INTEGER, volgnr INTEGER, "
    "maatsoort INTEGER, maat INTEGER, status INTEGER, filiaal INTEGER, inkoopprijs INTEGER, "
    "adviesprijs INTEGER, verkoopprijs INTEGER, leverancier INTEGER, orderdatum TEXT, "
    "levertermijn TEXT, ontvangstdatum TEXT, statusdatum TEXT, tarief INTEGER, actie INTEGER, "
    "klant INTEGER, bedrag INTEGER, nummer3 INTEGER, p INTEGER, reden INTEGER, cijfer INTEGER, "
    "naarfil INTEGER, besteller INTEGER, ordernr INTEGER)";
constexpr int ETIKET_KOLOMMEN = 27;

void zet_etiket(SqliteRij* uit, int64_t nummer, const Etiket& e) {
  const bool besteld = e.status == ETI_NOTA, klaar = e.status >= ETI_VERKOPEN;
  for (const int64_t v :
       {nummer, int64_t{e.nr.artgroep}, int64_t{e.nr.kleur}, int64_t{e.nr.volgnr},
        int64_t{e.maatsoort}, int64_t{e.maat}, int64_t{e.status}, int64_t{e.filiaal},
        int64_t{e.inkpr}, int64_t{e.advpr}, int64_t{e.vrkpr}, int64_t{e.lvnr}})
    uit->getal(v);
  uit->datum(e.orddat);
  uit->datum(besteld ? e.levertermijn : uint16_t{0});
  uit->datum(e.ontdat);
  uit->datum(klaar ? e.vrkdat : uint16_t{0});
  uit->misschien(klaar, e.tarief);
  for (const int v :
       {int{e.actie}, e.klant, e.bedrag, int{e.nummer3}, int{e.p}, int{e.reden}, int{e.cijfer}})
    uit->getal(v);
  uit->misschien(e.onderweg != 0, e.doel);
  uit->misschien(e.besteld != 0, e.besteller);
  uit->getal(e.ordernr);
  uit->rij();
}

void etiketten(SqliteDb* d, const Bytes& bestand, bool transit) {
  SqliteRij uit(d, "etiket", ETIKET, ETIKET_KOLOMMEN);
  EtiBlok blok;
  for (size_t nr = 0; (nr + 1) * sizeof blok <= bestand.size(); ++nr) {
    memcpy(&blok, bestand.data() + nr * sizeof blok, sizeof blok);
    Etiket e{};
    for (int slot = 0; slot < ETI_SLOTS; ++slot) {
      uint32_t woord[9];
      memcpy(woord, blok.woord[slot], sizeof woord);
      e.nr = blok.nr;
      e.maatsoort = static_cast<uint8_t>(blok.maatsoort);
      if (etiket_uitpak(woord, &e, transit))
        zet_etiket(&uit, static_cast<int64_t>(nr) * ETI_SLOTS + slot + 1, e);
    }
  }
}

// Flat files --------------------------------------------------------------------------------------

Bytes lees(const char* naam) {
  const int fd = io_open(naam, false);
  if (fd < 0) winkel_fout_errno(naam);
  Bytes b(static_cast<size_t>(std::max<int64_t>(io_grootte(fd), 0)));
  const int64_t n = io_lees(fd, b.data(), b.size(), 0);
  b.resize(static_cast<size_t>(std::max<int64_t>(n, 0)));
  io_close(fd);
  return b;
}

/// Records that are not all zero, numbered from `eerste`.
void zet_plat(SqliteTabel* uit, std::span<const uint8_t> bytes, size_t lengte, int64_t eerste) {
  for (size_t n = 0; (n + 1) * lengte <= bytes.size(); ++n) {
    const std::span<const uint8_t> rec = bytes.subspan(n * lengte, lengte);
    if (std::ranges::any_of(rec, [](uint8_t b) { return b != 0; }))
      uit->zet(eerste + static_cast<int64_t>(n), rec);
  }
}

/// The groups in use: a free one has no period.
void prijsgroepen_uit(SqliteDb* d, const Bytes& b) {
  SqliteTabel uit(d, "DTIPG", IPG, "groep");
  for (size_t n = 0; (n + 1) * sizeof(DtIpg) <= b.size(); ++n) {
    DtIpg g;
    memcpy(&g, b.data() + n * sizeof g, sizeof g);
    if (!(g.nr == Serienr{})) uit.zet(static_cast<int64_t>(n), {b.data() + n * sizeof g, sizeof g});
  }
}

/// Lines of the tills that are still to be worked on; a line without a code is done with.
void datacom_uit(SqliteDb* d) {
  SqliteTabel uit(d, "DTDCIF", velden_van("DTDCIF"), "record");
  if (!file_exists(DC_BESTAND)) return;
  const Bytes b = lees(DC_BESTAND);
  for (size_t n = 0; (n + 1) * sizeof(DcRegel) <= b.size(); ++n) {
    const std::span<const uint8_t> rec = std::span(b).subspan(n * sizeof(DcRegel), sizeof(DcRegel));
    if (rec[offsetof(DcRegel, code)] != 0) uit.zet(static_cast<int64_t>(n), rec);
  }
}

void filialen_uit(SqliteDb* d, int aantal) {
  const Bytes b = lees("DTFILGEG.TXT");
  SqliteTabel uit(d, "DTFILGEG", FIL, "filiaal");
  if (b.size() < sizeof(FiliaalRec)) return;
  zet_plat(&uit, std::span(b).subspan(sizeof(FiliaalRec)), sizeof(FiliaalRec), 0);
  uit.zet(aantal, std::span(b).first(sizeof(FiliaalRec)));  // the head office stands in front
}

void systeem_uit(SqliteDb* d, const Bytes& b) {
  for (const SysDeel& s : SYSTEEM) {
    SqliteTabel uit(d, s.naam, s.velden, "nummer");
    const auto lengte = static_cast<size_t>(s.plaats.lengte);
    zet_plat(&uit,
             std::span(b).subspan(static_cast<size_t>(s.plaats.basis),
                                  lengte * static_cast<size_t>(s.plaats.aantal)),
             lengte, s.eerste);
  }
}

/// One row of what the chain is, and when this was made.
void keten_uit(SqliteDb* d, const SysRec1& een, const SysRec20& twintig, uint16_t backup) {
  constexpr const char* VORM =
      "(bedrijf TEXT, filialen INTEGER, eigen_filiaal INTEGER, land INTEGER, transit INTEGER, "
      "reservekopie TEXT, gemaakt TEXT)";
  SqliteRij uit(d, "keten", VORM, 7);
  uit.veld({een.bedrijf, sizeof een.bedrijf});
  for (const int v :
       {int{een.filialen}, int{een.eigen_filiaal}, int{een.land}, twintig.transit != 0 ? 1 : 0})
    uit.getal(v);
  uit.datum(backup);
  char nu[32] = "";
  const time_t moment = std::time(nullptr);
  tm lokaal{};
  if (localtime_r(&moment, &lokaal) != nullptr)
    std::strftime(nu, sizeof nu, "%Y-%m-%d %H:%M:%S", &lokaal);
  uit.eigen(nu);
  uit.rij();
}

template <class T>
T systeemrecord(const Bytes& b, int nr, size_t binnen = 0) {
  T rec;
  memcpy(&rec, b.data() + static_cast<size_t>(nr - 1) * 64 + binnen, sizeof rec);
  return rec;
}

void alles(SqliteDb* d) {
  const Bytes dtsys = lees("DTSYS.TXT");
  moet(dtsys.size() >= static_cast<size_t>(SYS_GROOTTE), "DTSYS.TXT", "te kort");
  const auto een = systeemrecord<SysRec1>(dtsys, 1);
  const auto twintig = systeemrecord<SysRec20>(dtsys, 20);
  keten_uit(d, een, twintig, systeemrecord<uint16_t>(dtsys, 19, 36));
  systeem_uit(d, dtsys);
  filialen_uit(d, een.filialen);
  for (const bool labels : {true, false}) {
    PlatKopie k;
    Verslag v;
    const PlatBestand& p = labels ? PLAT_ETIKETTEN : PLAT_PRIJSGROEPEN;
    if (!plat_kopieer(p, WACHT, true, &k, &v))
      winkel_fout(p.bestand, v.rijen.empty() ? "" : v.rijen.back().wat);
    zet_tabel(d, van_def(p.tabel), k.index, k.tabel);
    labels ? etiketten(d, k.bestand, twintig.transit != 0) : prijsgroepen_uit(d, k.bestand);
  }
  SqliteTabel ink(d, "INKSYS", INK, "nummer");
  zet_plat(&ink, lees("INKSYS.TXT"), sizeof(InkSys), 1);
  datacom_uit(d);
  for (const TabelDef& def : tabel_alle()) {
    const std::string_view naam = def.name;
    if (naam != PLAT_ETIKETTEN.tabel && naam != PLAT_PRIJSGROEPEN.tabel)
      tabel(d, van_def(def.name));
  }
  for (const Tabel& t : PRINT)
    if (file_exists(fmt::format("{}.INX", t.naam).c_str())) tabel(d, t);
}

std::string maken_van;  // taken away when the run ends before it is whole

void doe_sqlite(const std::string& map, const std::string& bestand) {
  std::error_code stil;
  const std::string naar = std::filesystem::absolute(bestand, stil).string();
  maken_van = naar + ".tmp";
  in_keten(map);
  unlink(maken_van.c_str());
  std::atexit([] { unlink(maken_van.c_str()); });
  SqliteDb d;
  sqlite_open(&d, maken_van);
  if (d.goed()) chmod(maken_van.c_str(), 0660);
  if (d.goed()) alles(&d);
  if (!sqlite_sluit(&d, maken_van)) winkel_fout(bestand, d.fout);
  if (std::rename(maken_van.c_str(), naar.c_str()) != 0) winkel_fout_errno(bestand);
  fmt::print("{}: {} rijen\n", bestand, d.rijen);
}

}  // namespace

void optie_sqlite(CLI::App& app) {
  static std::string bestand;
  CLI::App* verb = app.get_subcommand("export");
  CLI::Option* tabel = verb->get_option("tabel")->required(false);
  CLI::Option* map = verb->get_option("-C");
  verb->add_option("--sqlite", bestand, "de hele keten in een database van SQLite")
      ->type_name("BESTAND")
      ->excludes(tabel)
      ->excludes(verb->get_option("--json"));
  verb->parse_complete_callback([tabel, map] {
    if (bestand.empty() && tabel->count() == 0) throw CLI::RequiredError("tabel");
    if (bestand.empty()) return;
    doe_sqlite(map->count() > 0 ? map->as<std::string>() : ".", bestand);
    std::exit(UIT_GOED);
  });
}
