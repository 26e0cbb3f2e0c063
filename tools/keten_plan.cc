// The plan of a demo chain as a whole: its measures, its system file, its menu and users.
#include <cstring>
#include <string>
#include <string_view>

#include "isam/base.h"
#include "main/iotab.h"
#include "tools/keten.h"
#include "tools/keten_bron.h"
#include "tools/winkel.h"

namespace {

struct KleurNaam {
  uint16_t nummer;
  std::string_view naam;
};
constexpr KleurNaam KLEUREN[] = {
    {10, "Wit"},         {15, "Ecru"},       {20, "Crème"},         {25, "Ivoor"},
    {40, "Zand"},        {50, "Beige"},      {60, "Kameel"},        {70, "Taupe"},
    {80, "Lichtgrijs"},  {85, "Grijs"},      {90, "Antraciet"},     {100, "Zwart"},
    {110, "Geel"},       {120, "Citroen"},   {130, "Oker"},         {140, "Mosterd"},
    {150, "Oranje"},     {160, "Abrikoos"},  {170, "Zalm"},         {180, "Koraal"},
    {200, "Rood"},       {210, "Bordeaux"},  {220, "Kers"},         {230, "Steenrood"},
    {240, "Roze"},       {250, "Oudroze"},   {260, "Fuchsia"},      {270, "Lila"},
    {280, "Paars"},      {290, "Aubergine"}, {300, "Blauw"},        {305, "Lichtblauw"},
    {310, "Marine"},     {320, "Kobalt"},    {330, "Jeans"},        {340, "Petrol"},
    {350, "Turquoise"},  {360, "Aqua"},      {370, "Indigo"},       {380, "Nachtblauw"},
    {400, "Groen"},      {410, "Mint"},      {420, "Lichtgroen"},   {430, "Olijf"},
    {440, "Legergroen"}, {450, "Mos"},       {460, "Flessengroen"}, {500, "Bruin"},
    {510, "Cognac"},     {520, "Kastanje"},  {530, "Chocolade"},    {540, "Roest"},
    {600, "Zilver"},     {610, "Goud"},      {620, "Koper"},        {700, "Ruit"},
    {710, "Streep"},     {720, "Bloem"},     {900, "Diversen"},     {990, "Assortie"}};
static_assert(std::size(KLEUREN) == 60);

constexpr std::string_view ACTIES[] = {
    "Midzomer",   "Uitverkoop",    "Voorjaarsactie",     "Dolle dagen",
    "Feestmaand", "Nieuw seizoen", "Tweede halve prijs", "Vaste klanten",
    "Verbouwing", "Opening",       "Koopjesweek",        "Laatste ronde"};
constexpr std::string_view CODES_ACTIE[] = {"Geen",        "Folder", "Etalage",    "Radio",
                                            "Advertentie", "Brief",  "Spaaractie", "Bon",
                                            "Outlet",      "Overig"};
constexpr std::string_view CODES_CORRECTIE[] = {
    "Inventaris", "Diefstal",      "Breuk",       "Vlek", "Retour lev.",
    "Monster",    "Eigen gebruik", "Etiket zoek", "Ruil", "Overig"};
constexpr std::string_view CODES_INKOOP[] = {
    "Voororder", "Bijbestelling", "Partij",     "Beurs", "Agent",
    "Import",    "Consignatie",   "Nalevering", "Proef", "Overig"};
constexpr std::string_view CODES_SEIZOEN[] = {"Basis", "Vroeg", "Hoog", "Laat", "Tussen", "Feest"};
constexpr std::string_view KENMERKEN[] = {"Sluiting", "Mouw", "Pasvorm"};

struct KetenGebruiker {
  const char *code, *wachtwoord;
  char rechten;
};
/// In order of terminal; two may sit at the till, under one code.
constexpr KetenGebruiker GEBRUIKERS[] = {{"DEMO", "DEMO", 'N'},     {"BEHEER", "BEHEER", 'S'},
                                         {"KIJK", "KIJK", 'I'},     {"MAGAZ", "MAGAZ", 'N'},
                                         {"INKOOP", "INKOOP", 'N'}, {"BALIE", "BALIE", 'N'},
                                         {"BALIE", "BALIE", 'N'},   {"FILIAA", "FILIAA", 'I'}};

struct Dtsys {
  std::vector<uint8_t> bytes = std::vector<uint8_t>(static_cast<size_t>(SYS_GROOTTE));
  template <class R>
  void zet(const SysTabel& t, int nummer, const R& rec) {
    static_assert(std::is_trivially_copyable_v<R>);
    std::memcpy(bytes.data() + t.basis + (nummer - 1) * t.lengte, &rec,
                std::min(sizeof rec, static_cast<size_t>(t.lengte)));
  }
};

template <size_t N>
void tekst(char (&veld)[N], std::string_view utf8) {
  veld_zet(veld, N, utf8_cp850(utf8));
}

void systeemrecords(const Keten& k, Dtsys* d) {
  SysRec1 een{};
  tekst(een.bedrijf, k.maat.bedrijf);
  een.land = 1;
  een.filialen = static_cast<uint8_t>(k.maat.filialen);
  een.tarief[0] = 210;
  een.tarief[1] = 90;
  d->zet(SYS_RECORDS, 1, een);
  const uint16_t stempel[32] = {static_cast<uint16_t>(k.maatrecords.back().stempel)};
  d->zet(SYS_RECORDS, 8, stempel);
  SysRec10 tien{};
  std::memcpy(tien.release, RELEASE, sizeof tien.release);
  d->zet(SYS_RECORDS, 10, tien);
  const uint8_t elf[64] = {1, 0, 0};
  d->zet(SYS_RECORDS, 11, elf);
  const uint8_t vijftien[64] = {'E', 'U', 'R'};
  d->zet(SYS_RECORDS, 15, vijftien);
  const uint32_t achttien[16] = {k.maat.teller};
  d->zet(SYS_RECORDS, 18, achttien);
  uint16_t negentien[32] = {};
  negentien[18] = static_cast<uint16_t>(k.maat.vandaag - 1);  // last back-up
  d->zet(SYS_RECORDS, 19, negentien);
  SysRec20 twintig{};
  twintig.transit = k.maat.transit ? 1 : 0;
  twintig.dagen_bewaard = 21;
  twintig.verkoopdagen = 14;
  twintig.kolombreedte = 3;
  d->zet(SYS_RECORDS, 20, twintig);
}

void reeks(Dtsys* d, int32_t nummer, std::string_view naam, std::initializer_list<int> filialen) {
  Filiaalreeks rec{};
  rec.nummer = nummer;
  tekst(rec.naam, naam);
  for (const int f : filialen)
    rec.filialen[f / 8] = static_cast<uint8_t>(rec.filialen[f / 8] | 1 << f % 8);
  d->zet(SYS_FILIAALREEKSEN, nummer, rec);
}

void reeksen(const Keten& k, Dtsys* d) {
  reeks(d, 1, "alle filialen", {});
  std::memset(d->bytes.data() + SYS_FILIAALREEKSEN.basis + offsetof(Filiaalreeks, filialen), 0xFF,
              sizeof Filiaalreeks::filialen);
  reeks(d, 2, "winkels", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  reeks(d, 3, "grote winkels", {1, 2, 9});
  reeks(d, 4, "outlet", {k.maat.filialen - 1});
}

template <size_t N>
void codes(Dtsys* d, const SysTabel& t, const std::string_view (&namen)[N]) {
  for (size_t c = 0; c < N; ++c) {
    Codetekst rec{};
    tekst(rec.tekst, namen[c]);
    d->zet(t, static_cast<int>(c) + 1, rec);
  }
}

void acties(const Keten& k, Dtsys* d) {
  int n = 0;
  for (const std::string_view naam : ACTIES) {
    Actie rec{};
    rec.van = static_cast<uint16_t>(k.maat.vandaag - 200 + 20 * n);
    rec.tm = static_cast<uint16_t>(rec.van + 13);
    rec.code = static_cast<uint8_t>(n % 10);
    tekst(rec.tekst, naam);
    std::memset(rec.filialen, 0xFF, sizeof rec.filialen);
    d->zet(SYS_ACTIES, ++n, rec);
  }
}

void kleine_tabellen(const Keten& k, Dtsys* d) {
  constexpr std::pair<const char*, const char*> MUNTEN[] = {
      {"EUR", "Euro"}, {"USD", "Dollar"}, {"GBP", "Pond"}};
  int n = 0;
  for (const auto& [code, naam] : MUNTEN) {
    Valuta rec{};
    std::memcpy(rec.code, code, sizeof rec.code);
    rec.decimalen = 2;
    tekst(rec.naam, naam);
    d->zet(SYS_VALUTA, ++n, rec);
  }
  for (const Kleur& kleur : k.kleuren) d->zet(SYS_KLEUREN, kleur.nummer, kleur);
  codes(d, SYS_CODES_ACTIE, CODES_ACTIE);
  codes(d, SYS_CODES_CORRECTIE, CODES_CORRECTIE);
  codes(d, SYS_CODES_INKOOP, CODES_INKOOP);
  codes(d, SYS_CODES_SEIZOEN, CODES_SEIZOEN);
  n = 0;
  for (const std::string_view naam : KENMERKEN) {
    char rec[20] = {};
    tekst(rec, naam);
    d->zet(SYS_SUB20, ++n, rec);
  }
}

/// The moment that chooses the keys of hidden texts: the chain's day, so that a seed says it all.
int64_t moment(const Keten& k) {
  return int64_t{k.maat.vandaag} * 86400 + static_cast<int64_t>(k.maat.zaad % 86400);
}

}  // namespace

KetenMaat keten_klein() {
  KetenMaat m{};
  m.bedrijf = "Van Aerden Mode";
  m.zaad = 1;
  m.transit = true;
  m.filialen = 12;
  m.leveranciers = 40;
  m.merken = 28;
  m.artikelgroepen = 26;
  m.klanten = 200;
  m.series = 1800;
  m.etiketten = 46;
  m.twee_sets = 340;
  m.ean_promille = 200;
  m.ean_meest = 100000;
  m.voorlopig = 420;
  m.voorlopig_series = 70;
  m.opdrachten = 24;
  m.definitief = 24 * 14;
  m.teller = 2;
  m.onderweg = 900;
  m.onderweg_klaar = 300;
  m.financieel = 2500;
  m.ontvangsten = 1800;
  m.aanvul = 700;
  return m;
}

KetenMaat keten_groot() {
  KetenMaat m = keten_klein();
  m.filialen = 100;
  m.leveranciers = 300;
  m.merken = 220;
  m.artikelgroepen = 180;
  m.klanten = 5000;
  m.series = 24000;
  m.etiketten = 150;
  m.twee_sets = 710;
  m.drie_groepen = 270;
  m.ean_promille = 1000;
  m.ean_meest = 147000;  // beside the codes of series with size registration
  m.voorlopig = 60000;
  m.voorlopig_series = 9000;
  m.opdrachten = 900;
  m.definitief = 40000;
  m.teller = 1234;
  m.onderweg = 23000;
  m.onderweg_klaar = 2000;
  m.financieel = 400000;
  m.ontvangsten = 300000;
  m.aanvul = 30000;
  return m;
}

Keten keten_plan(const KetenMaat& maat) {
  Keten k{};
  k.maat = maat;
  for (const KleurNaam& kn : KLEUREN) {
    Kleur rec{};
    rec.nummer = kn.nummer;
    tekst(rec.naam, kn.naam);
    k.kleuren.push_back(rec);
  }
  keten_stam(&k);
  keten_artikelen(&k);
  keten_maten(&k);
  keten_series(&k);
  keten_opdrachten(&k);
  return k;
}

std::vector<uint8_t> keten_dtsys(const Keten& k) {
  Dtsys d;
  systeemrecords(k, &d);
  reeksen(k, &d);
  acties(k, &d);
  kleine_tabellen(k, &d);
  int n = 0;
  for (const KetenGebruiker& g : GEBRUIKERS)
    d.zet(SYS_TERMINALS, ++n, maak_gebruiker(g.code, g.wachtwoord, g.rechten, moment(k)));
  return d.bytes;
}

std::vector<FiliaalRec> keten_filialen(const Keten& k) {
  std::vector<FiliaalRec> lijst = k.filialen;
  for (size_t slot = 1; slot < lijst.size(); ++slot)
    verberg(lijst[slot].naam, veld_tekst(lijst[slot].naam, sizeof lijst[slot].naam), moment(k));
  return lijst;
}

std::vector<DtHmnu> keten_menu(const Keten& k) { return menu_rijen(moment(k)); }

std::vector<DtRel> keten_rechten() {
  std::vector<DtRel> rechten;
  for (size_t n = 1; n <= std::size(GEBRUIKERS); ++n)
    for (const DtRel& r : menu_rechten(static_cast<int>(n))) rechten.push_back(r);
  return rechten;
}
