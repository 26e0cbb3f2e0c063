// The field tables. Offsets come from the record structures, where there is one; fields lie inside
// their records, which the compiler proves.
#include "tools/velden.h"

#include <algorithm>
#include <cstddef>

#include "sub/datacom.h"
#include "sub/records.h"

namespace {

using enum VeldSoort;

constexpr Veld met_vorm(const char* naam, size_t offset, VeldSoort soort, VeldVorm vorm) {
  Veld v{naam, static_cast<int>(offset), soort};
  v.vorm = vorm;
  return v;
}
constexpr Veld dag(const char* naam, size_t offset) {
  return met_vorm(naam, offset, u16, VeldVorm::dag);
}
constexpr Veld centen(const char* naam, size_t offset) {
  return met_vorm(naam, offset, i32, VeldVorm::centen);
}

constexpr Veld AANV[] = {{"artgroep", 0, u32},
                         {"kleur", 4, u16},
                         {"volgnr", 6, u16},
                         {"etiket", offsetof(DtAanv, etiket), u32}};

constexpr Veld ART[] = {{"nummer", 0, u32},
                        {"naam", offsetof(DtArt, naam), tekst, sizeof DtArt::naam},
                        {"omzetgroep", offsetof(DtArt, omzetgroep), u16},
                        {"kenmerk_nr", offsetof(DtArt, kenmerk_nr), u8},
                        {"tariefcode", offsetof(DtArt, tariefcode), u8},
                        {"magazijn", offsetof(DtArt, magazijn), u8},
                        {"vlaggen", offsetof(DtArt, vlaggen), u8},
                        {"soort", offsetof(DtArt, soort), tekst, 1},
                        {"minimum", offsetof(DtArt, minimum), u8},
                        {"magazijn_pct", offsetof(DtArt, magazijn_pct), u8},
                        {"serie_nummer", offsetof(DtArt, serie_nummer), u8},
                        {"serie_maatsoort", offsetof(DtArt, serie_maatsoort), u8},
                        {"streef", offsetof(DtArt, streef), u8, 0, sizeof DtArt::streef, 0, true}};

constexpr Veld DCIF[] = {{"vanfil", 0, u8},
                         {"naarfil", offsetof(DcRegel, naarfil), u8},
                         dag("datum", offsetof(DcRegel, datum)),
                         {"code", offsetof(DcRegel, code), tekst, sizeof DcRegel::code},
                         {"soort", offsetof(DcRegel, soort), u8},
                         met_vorm("stuks", offsetof(DcRegel, stuks), u32, VeldVorm::stuks),
                         {"nummer", offsetof(DcRegel, nummer), u32}};

constexpr Veld DOELGR[] = {{"letter", 0, tekst, 1},
                           {"tekst", offsetof(DtDoelgr, tekst), tekst, sizeof DtDoelgr::tekst}};

constexpr Veld EAN[] = {
    {"code", 0, tekst, sizeof DtEan::code},   {"soort", offsetof(DtEan, soort), tekst, 1},
    {"kleur", offsetof(DtEan, kleur), u16},   {"artgroep", offsetof(DtEan, artgroep), u32},
    {"volgnr", offsetof(DtEan, volgnr), u16}, {"maat", offsetof(DtEan, maat), u8}};

constexpr Veld FIN[] = {
    {"houder", 0, u8},
    {"naarfil", offsetof(DtFin, naarfil), u8},
    {"afgerekend", offsetof(DtFin, afgerekend), u8},
    {"soort", offsetof(DtFin, soort), u8},
    {"vanfil", offsetof(DtFin, vanfil), u8},
    dag("datum", offsetof(DtFin, datum)),
    {"artgroep", offsetof(DtFin, nr), u32},
    {"kleur", offsetof(DtFin, nr) + 4, u16},
    {"volgnr", offsetof(DtFin, nr) + 6, u16},
    {"etiket", offsetof(DtFin, etiket), u32},
    {"regel", offsetof(DtFin, regel), u32},
    {"afrekening", offsetof(DtFin, afrekening), u8, 0, sizeof DtFin::afrekening}};

constexpr Veld GO[] = {{"vanfil", 0, u8},
                       {"naarfil", offsetof(DtGo, naarfil), u8},
                       {"verzamel", offsetof(DtGo, verzamel), u8},
                       {"etiket", offsetof(DtGo, etiket), u32},
                       {"artgroep", offsetof(DtGo, nr), u32},
                       {"kleur", offsetof(DtGo, nr) + 4, u16},
                       {"volgnr", offsetof(DtGo, nr) + 6, u16},
                       {"opdrachtnr", offsetof(DtGo, opdrachtnr), u32},
                       {"soort", offsetof(DtGo, soort), u8},
                       {"afgewerkt", offsetof(DtGo, afgewerkt), u8},
                       dag("zenddatum", offsetof(DtGo, zenddatum)),
                       dag("printdatum", offsetof(DtGo, printdatum))};

constexpr Veld HMNU[] = {
    {"slot", 0, u16},
    {"titel", offsetof(DtHmnu, titel), verhuld, sizeof DtHmnu::titel},
    {"programma", offsetof(DtHmnu, programma), verhuld, sizeof DtHmnu::programma},
    {"soort", offsetof(DtHmnu, soort), tekst, 1},
    {"variant", offsetof(DtHmnu, variant), u8}};

constexpr Veld IO[] = {{"naarfil", 0, u8},
                       {"vanfil", offsetof(DtIo, vanfil), u8},
                       dag("datum", offsetof(DtIo, datum)),
                       {"etiket", offsetof(DtIo, etiket), u32},
                       {"opdrachtnr", offsetof(DtIo, opdrachtnr), u32},
                       dag("registratie", offsetof(DtIo, registratie)),
                       {"onderweg", offsetof(DtIo, onderweg), u8}};

constexpr Veld IPA[] = {{"artgroep", 0, u32},
                        {"kleur", 4, u16},
                        {"volgnr", 6, u16},
                        {"nummer", offsetof(DtIpa, nummer), u16},
                        dag("eind", offsetof(DtIpa, eind)),
                        {"soort", offsetof(DtIpa, soort), u8},
                        {"maten", offsetof(DtIpa, maten), bits, sizeof DtIpa::maten},
                        {"groepnummer", offsetof(DtIpa, groepnummer), u16},
                        {"code", offsetof(DtIpa, code), u8},
                        dag("begin", offsetof(DtIpa, begin)),
                        {"groep1", offsetof(DtIpa, groep1), i32}};

constexpr Veld KLT[] = {{"nummer", 0, u32},
                        {"naam", offsetof(DtKlt, naam), tekst, sizeof DtKlt::naam},
                        {"adres", offsetof(DtKlt, adres), tekst, sizeof DtKlt::adres},
                        {"plaats", offsetof(DtKlt, plaats), tekst, sizeof DtKlt::plaats}};

constexpr Veld KOERS[] = {{"valuta", 0, tekst, sizeof DtKoers::valuta},
                          dag("datum", offsetof(DtKoers, datum)),
                          met_vorm("koers", offsetof(DtKoers, koers), i32, VeldVorm::koers)};

constexpr Veld LEV[] = {{"nummer", 0, u16},
                        {"naam", offsetof(DtLev, naam), tekst, sizeof DtLev::naam},
                        {"adres", offsetof(DtLev, adres), tekst, sizeof DtLev::adres},
                        {"plaats", offsetof(DtLev, plaats), tekst, sizeof DtLev::plaats}};

constexpr int INGANG = offsetof(DtMaat, ingang);
constexpr Veld MAAT[] = {
    {"land", 0, u8},
    {"maatsoort", offsetof(DtMaat, maatsoort), u8},
    {"maten", offsetof(DtMaat, maten), bits, sizeof DtMaat::maten},
    {"tekst", INGANG, tekst, sizeof MaatIngang::tekst, MATEN, sizeof(MaatIngang)},
    {"ander", INGANG + static_cast<int>(offsetof(MaatIngang, ander)), u8, 0, MATEN,
     sizeof(MaatIngang)},
    {"stempel", offsetof(DtMaat, stempel), u16}};

constexpr Veld MERK[] = {{"nummer", 0, u16},
                         {"naam", offsetof(DtMerk, naam), tekst, sizeof DtMerk::naam},
                         {"zoeknaam", offsetof(DtMerk, zoeknaam), tekst, sizeof DtMerk::zoeknaam},
                         {"filialen", offsetof(DtMerk, filialen), bits, sizeof DtMerk::filialen}};

constexpr Veld MTOM[] = {{"land", 0, u8},
                         {"maatsoort", offsetof(DtMtom, maatsoort), u8},
                         {"maat", offsetof(DtMtom, maat), u8},
                         {"tekst", offsetof(DtMtom, tekst), tekst, sizeof DtMtom::tekst}};

constexpr Veld PICK[] = {{"vanfil", offsetof(DtPick, vanfil), u8},
                         {"naarfil", offsetof(DtPick, naarfil), u8},
                         {"artgroep", offsetof(DtPick, nr), u32},
                         {"kleur", offsetof(DtPick, nr) + 4, u16},
                         {"volgnr", offsetof(DtPick, nr) + 6, u16},
                         {"opdrachtnr", offsetof(DtPick, opdrachtnr), u32},
                         {"aantal", offsetof(DtPick, aantal), u32, 0, MATEN, 0, true},
                         dag("orderdatum", offsetof(DtPick, orderdatum))};

constexpr Veld REL[] = {{"gebruiker", 0, u16},
                        {"slot", offsetof(DtRel, slot), u16},
                        {"soort", offsetof(DtRel, soort), tekst, 1}};

constexpr Veld SER[] = {
    {"artgroep", 0, u32},
    {"kleur", 4, u16},
    {"volgnr", 6, u16},
    {"merk", offsetof(DtSer, merk), u16},
    {"jaar", offsetof(DtSer, jaar), u16},
    {"hoofdseizoen", offsetof(DtSer, hoofdseizoen), tekst, 1},
    {"deelseizoen", offsetof(DtSer, deelseizoen), u8},
    {"janee", offsetof(DtSer, janee), u8},
    {"doelgroep", offsetof(DtSer, doelgroep), tekst, 1},
    {"maatsoort", offsetof(DtSer, maatsoort), u8},
    {"nummer18", offsetof(DtSer, nummer18), u8},
    {"model", offsetof(DtSer, model), tekst, sizeof DtSer::model},
    {"omschrijving", offsetof(DtSer, omschrijving), tekst, sizeof DtSer::omschrijving},
    {"dessin", offsetof(DtSer, dessin), tekst, sizeof DtSer::dessin},
    {"materiaal", offsetof(DtSer, materiaal), tekst, sizeof DtSer::materiaal},
    {"kenmerk", offsetof(DtSer, kenmerk), tekst, sizeof DtSer::kenmerk},
    {"maten", offsetof(DtSer, maten), bits, sizeof DtSer::maten},
    {"maatlijst", offsetof(DtSer, maatlijst), u8, 0, sizeof DtSer::maatlijst},
    centen("inkoopprijs", offsetof(DtSer, inkoopprijs)),
    centen("adviesprijs", offsetof(DtSer, adviesprijs)),
    centen("verkoopprijs", offsetof(DtSer, verkoopprijs)),
    dag("datum_wijziging", offsetof(DtSer, datum_wijziging)),
    {"leverancier", offsetof(DtSer, leverancier), u16},
    dag("datum_creatie", offsetof(DtSer, datum_creatie)),
    {"correcties", offsetof(DtSer, correcties), u32},
    {"verkocht", offsetof(DtSer, verkocht), u32},
    {"voorraad", offsetof(DtSer, voorraad), u32},
    {"besteld", offsetof(DtSer, besteld), u32},
    dag("datum_mutatie", offsetof(DtSer, datum_mutatie)),
    {"locatie", offsetof(DtSer, locatie), tekst, sizeof DtSer::locatie},
    {"maatregistratie", offsetof(DtSer, maatregistratie), u8},
    {"via_pricat", offsetof(DtSer, via_pricat), u8},
    {"inkoopcode", offsetof(DtSer, inkoopcode), u8},
    {"blok1", offsetof(DtSer, blok1), i32}};

// Tables of one terminal.
constexpr Veld TPCK[] = {
    {"vanfil", 0, u8}, {"naarfil", 1, u8}, {"maat", 2, u8}, {"aantal", 4, i32}};
constexpr Veld BROWSE[] = {{"nummer", 0, u32}, {"vanfil", 4, u8}, {"naarfil", 5, u8},
                           {"datum", 6, u16},  {"stuks", 8, u32}, {"regels", 12, u32},
                           {"bron", 16, u8}};
constexpr Veld COR[] = {{"artgroep", 0, u32},  {"kleur", 4, u16},  {"volgnr", 6, u16},
                        {"maat", 8, tekst, 3}, {"regel", 12, u32}, {"code", 16, tekst, 13}};
constexpr Veld LOCATIE[] = {{"filiaal", 0, u8},    {"locatie", 1, tekst, 6}, {"artgroep", 8, u32},
                            {"kleur", 12, u16},    {"volgnr", 14, u16},      {"nota", 16, u16},
                            {"voorraad", 18, u16}, {"inventaris", 20, u16}};

constexpr int een_breed(const Veld& v) {
  switch (v.soort) {
    case u8:
      return 1;
    case u16:
      return 2;
    case u32:
    case i32:
      return 4;
    default:
      return v.breedte;
  }
}

constexpr bool binnen(Velden velden, size_t lengte) {
  return std::ranges::all_of(velden, [&](const Veld& v) {
    const int n = een_breed(v), stap = v.stap == 0 ? n : v.stap;
    return n > 0 && v.offset >= 0 && v.aantal > 0 &&
           static_cast<size_t>(v.offset + (v.aantal - 1) * stap + n) <= lengte;
  });
}
static_assert(binnen(AANV, sizeof(DtAanv)) && binnen(ART, sizeof(DtArt)));
static_assert(binnen(DCIF, sizeof(DcRegel)));
static_assert(binnen(DOELGR, sizeof(DtDoelgr)) && binnen(EAN, sizeof(DtEan)));
static_assert(binnen(FIN, sizeof(DtFin)) && binnen(GO, sizeof(DtGo)));
static_assert(binnen(HMNU, sizeof(DtHmnu)) && binnen(IO, sizeof(DtIo)));
static_assert(binnen(IPA, sizeof(DtIpa)) && binnen(KLT, sizeof(DtKlt)));
static_assert(binnen(KOERS, sizeof(DtKoers)) && binnen(LEV, sizeof(DtLev)));
static_assert(binnen(MAAT, sizeof(DtMaat)) && binnen(MERK, sizeof(DtMerk)));
static_assert(binnen(MTOM, sizeof(DtMtom)) && binnen(PICK, sizeof(DtPick)));
static_assert(binnen(REL, sizeof(DtRel)) && binnen(SER, sizeof(DtSer)));
static_assert(binnen(TPCK, 8) && binnen(BROWSE, 20) && binnen(COR, 40) && binnen(LOCATIE, 24));

struct Rij {
  std::string_view naam;
  Velden velden;
};
constexpr Rij TABELLEN[] = {
    {"DTAANV", AANV}, {"DTDCIF", DCIF},       {"DTART", ART},   {"DTDOELGR", DOELGR},
    {"DTEAN", EAN},   {"DTFIN", FIN},         {"DTGO", GO},     {"DTHMNU", HMNU},
    {"DTIO", IO},     {"DTIPA", IPA},         {"DTKLT", KLT},   {"DTKOERS", KOERS},
    {"DTLEV", LEV},   {"DTMAAT", MAAT},       {"DTMERK", MERK}, {"DTMTOM", MTOM},
    {"DTPICK", PICK}, {"DTREL", REL},         {"DTSER", SER},   {"tpck", TPCK},
    {"tmpgo", PICK},  {"tmp_browse", BROWSE}, {"tmpcor", COR},  {"locatie", LOCATIE}};

/// TPnn and a letter.
std::string_view soort_van(std::string_view naam) {
  if (naam.size() != 5 || !naam.starts_with("TP")) return naam;
  switch (naam[4]) {
    case 'P':
      return "tpck";
    case 'G':
      return "tmpgo";
    case 'B':
      return "tmp_browse";
    case 'K':
      return "tmpcor";
    case 'L':
      return "locatie";
    default:
      return naam;
  }
}

}  // namespace

int veld_breedte(const Veld& v) { return een_breed(v); }

Velden velden_van(std::string_view naam) noexcept {
  const std::string_view tabel = soort_van(naam.substr(0, naam.find('.')));
  const auto* rij = std::ranges::find_if(TABELLEN, [&](const Rij& r) { return r.naam == tabel; });
  return rij == std::end(TABELLEN) ? Velden() : rij->velden;
}

Velden velden_van(const ICB& kop, std::string_view naam) noexcept {
  Velden uit = velden_van(naam);
  const std::string_view tekst(kop.description, sizeof kop.description);
  if (uit.empty()) uit = velden_van(tekst.substr(0, tekst.find('\0')));
  // The names do not fit another record.
  const bool past = kop.record_length > 0 && binnen(uit, static_cast<size_t>(kop.record_length));
  return past ? uit : Velden();
}
