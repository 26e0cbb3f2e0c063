// winkel printer: the tables of print destinations, which no screen of the suite maintains.
//
// Import lines, fields between semicolons, "#" begins a remark:
//   printer;NUMMER;NAAM
//   verbinding;NUMMER;ID;APPARAAT;NAAM[;map]
//   configuratie;NUMMER;ID;KOLOMMEN;RIJEN;OMSCHRIJVING[;START[;STOP[;staand]]]
#include <fmt/format.h>

#include <charconv>
#include <cstring>
#include <fstream>
#include <iostream>
#include <optional>

#include "isam/base.h"
#include "isam/ix.h"
#include "prt/prt.h"
#include "prt/schil.h"
#include "prt/tabellen.h"
#include "tools/winkel.h"

namespace {

/// What is to be written; understood as a whole before a table is touched.
struct Stand {
  std::vector<PtrgRec> printers;
  std::vector<PtrcRec> verbindingen;
  std::vector<PtrpRec> configuraties;
};

struct Printerverb {
  std::string map = ".", naam, apparaat, omschrijving, start, stop, bestand;
  int nummer = 0, id = 0, kolommen = 0, rijen = 0;
  bool naar_map = false, staand = false;
};

// Checks: each gives the objection, empty for none ------------------------------------------------

template <size_t N>
std::string zet(char (&veld)[N], const std::string& utf8, size_t langst = N) {
  bool geheel = true;
  const std::string bytes = utf8_cp850(utf8, &geheel);
  if (!geheel) return "'" + utf8 + "' heeft tekens buiten codetabel 850";
  if (bytes.size() > langst) return fmt::format("'{}' is langer dan {} tekens", utf8, langst);
  veld_zet(veld, N, bytes);
  return "";
}

std::string apparaat_bezwaar(const std::string& apparaat) {
  if (!apparaat.empty() && apparaat[0] == '-') return "een apparaat begint niet met '-'";
  for (const char* staart : {".TXT", ".INX"})
    if (apparaat.size() >= 4 && apparaat.compare(apparaat.size() - 4, 4, staart) == 0)
      return "een apparaat eindigt niet op .TXT of .INX";
  return apparaat.empty() ? "een verbinding heeft een apparaat" : "";
}

std::string maak_printer(const Printerverb& o, Stand* s) {
  PtrgRec rec{static_cast<uint16_t>(o.nummer), 0, {}};
  if (o.nummer < 2 || o.nummer > 9998)
    return "een printer heeft nummer 2 tot 9998; 1 is het scherm";
  if (o.naam.empty()) return "een printer heeft een naam";
  std::string bezwaar = zet(rec.name, o.naam);
  if (bezwaar.empty()) s->printers.push_back(rec);
  return bezwaar;
}

std::string maak_verbinding(const Printerverb& o, Stand* s) {
  PtrcRec rec{static_cast<uint16_t>(o.nummer),
              static_cast<uint8_t>(o.id),
              static_cast<uint8_t>(o.naar_map ? 1 : 0),
              {},
              {}};
  if (o.nummer < 1 || o.nummer > 9998) return "een printer heeft nummer 1 tot 9998";
  if (o.id < 1 || o.id > 255) return "een verbinding heeft nummer 1 tot 255";
  std::string bezwaar = apparaat_bezwaar(o.apparaat);
  if (bezwaar.empty()) bezwaar = zet(rec.device, o.apparaat, sizeof rec.device - 1);
  if (bezwaar.empty()) bezwaar = zet(rec.name, o.naam);
  if (bezwaar.empty()) s->verbindingen.push_back(rec);
  return bezwaar;
}

std::string maak_configuratie(const Printerverb& o, Stand* s) {
  PtrpRec rec{};
  rec.tr_code = static_cast<uint16_t>(o.nummer);
  rec.id = static_cast<uint8_t>(o.id);
  rec.portrait = o.staand ? 1 : 0;
  rec.columns = static_cast<uint16_t>(o.kolommen);
  rec.rows = static_cast<uint16_t>(o.rijen);
  if (o.nummer < 1 || o.nummer > 9998) return "een printer heeft nummer 1 tot 9998";
  if (o.id < 1 || o.id > 255) return "een configuratie heeft nummer 1 tot 255";
  if (o.kolommen < 1 || o.kolommen > 999) return "een regel heeft 1 tot 999 kolommen";
  if (o.rijen < 0 || (o.rijen > 99 && o.rijen != PTR_EINDELOOS))
    return "een blad heeft 1 tot 99 rijen, 0 of 9999 voor eindeloos";
  std::string bezwaar = zet(rec.desc, o.omschrijving);
  if (bezwaar.empty()) bezwaar = zet(rec.start, o.start, sizeof rec.start - 1);
  if (bezwaar.empty()) bezwaar = zet(rec.stop, o.stop, sizeof rec.stop - 1);
  if (bezwaar.empty()) s->configuraties.push_back(rec);
  return bezwaar;
}

// Import ------------------------------------------------------------------------------------------

std::vector<std::string> velden(const std::string& regel) {
  std::vector<std::string> lijst(1);
  for (const char c : regel) {
    if (c == ';')
      lijst.emplace_back();
    else
      lijst.back() += c;
  }
  return lijst;
}

bool getal(const std::string& tekst, int* waarde) {
  const auto [einde, fout] = std::from_chars(tekst.data(), tekst.data() + tekst.size(), *waarde);
  return fout == std::errc() && einde == tekst.data() + tekst.size() && !tekst.empty();
}

std::string ontleed(const std::string& regel, Stand* s) {
  const std::vector<std::string> v = velden(regel);
  const size_t n = v.size();
  Printerverb o;
  if (v[0] == "printer" && n == 3) {
    o.naam = v[2];
    return getal(v[1], &o.nummer) ? maak_printer(o, s) : "geen getal";
  }
  if (v[0] == "verbinding" && (n == 5 || (n == 6 && (v[5] == "map" || v[5].empty())))) {
    o.apparaat = v[3];
    o.naam = v[4];
    o.naar_map = n == 6 && v[5] == "map";
    return getal(v[1], &o.nummer) && getal(v[2], &o.id) ? maak_verbinding(o, s) : "geen getal";
  }
  if (v[0] == "configuratie" && n >= 6 && n <= 9 && (n < 9 || v[8] == "staand" || v[8].empty())) {
    o.omschrijving = v[5];
    if (n > 6) o.start = v[6];
    if (n > 7) o.stop = v[7];
    o.staand = n == 9 && v[8] == "staand";
    const bool goed = getal(v[1], &o.nummer) && getal(v[2], &o.id) && getal(v[3], &o.kolommen) &&
                      getal(v[4], &o.rijen);
    return goed ? maak_configuratie(o, s) : "geen getal";
  }
  return "niet begrepen";
}

Stand lees_invoer(const std::string& naam) {
  std::ifstream bestand;
  if (naam != "-") bestand.open(naam);
  std::istream& bron = naam == "-" ? std::cin : bestand;
  if (!bron) winkel_fout_errno(naam);
  Stand s;
  std::string regel;
  for (int nr = 1; std::getline(bron, regel); ++nr) {
    if (!regel.empty() && regel.back() == '\r') regel.pop_back();
    if (regel.empty() || regel[0] == '#') continue;
    const std::string bezwaar = ontleed(regel, &s);
    if (!bezwaar.empty()) winkel_fout(fmt::format("{}:{}", naam, nr), bezwaar);
  }
  if (bron.bad()) winkel_fout_errno(naam);
  return s;
}

// Writing -----------------------------------------------------------------------------------------

template <class R>
void schrijf(const char* naam, std::vector<R>& rijen) {
  if (rijen.empty()) return;
  ICB* tabel = IXOPEN(prt_path(naam), IX_GEDEELD);
  for (R& rec : rijen)
    if (!IXWRITE(tabel, &rec)) winkel_fout(naam, "niet geschreven");
  IXCLOSE(tabel);
}

bool is_wachtrij(const std::string& apparaat) {
  return sh_systeem("lpstat -v " + sh_quote(apparaat)) == 0;
}

/// A device that is neither a queue nor has a path is a file in the directory of whoever prints.
void waarschuw(const Stand& s) {
  for (const PtrcRec& rec : s.verbindingen) {
    const std::string apparaat = veld_tekst(rec.device, sizeof rec.device);
    if (apparaat == "TERMINAL" || apparaat == "AUX" || apparaat.find('/') != std::string::npos)
      continue;
    if (!is_wachtrij(apparaat))
      fmt::print(stderr, "winkel: {} is geen wachtrij: er wordt naar een bestand geprint\n",
                 cp850_utf8(apparaat));
  }
}

void voeg_toe(Stand s) {
  if (!prt_tabellen_maak())
    winkel_fout(prt_path(TR_PTRG), "de printertabellen zijn niet bruikbaar");
  schrijf(TR_PTRG, s.printers);
  schrijf(TR_PTRC, s.verbindingen);
  schrijf(TR_PTRP, s.configuraties);
}

void voeg_in_keten(const Printerverb& o, Stand s) {
  in_keten(o.map);
  waarschuw(s);
  voeg_toe(std::move(s));
}

void doe_een(const Printerverb& o, std::string (*maak)(const Printerverb&, Stand*)) {
  Stand s;
  const std::string bezwaar = maak(o, &s);
  if (!bezwaar.empty()) winkel_fout(fmt::format("printer {}", o.nummer), bezwaar);
  voeg_in_keten(o, s);
}

// Queues ------------------------------------------------------------------------------------------

std::vector<std::string> wachtrijen() {
  std::vector<std::string> lijst;
  FILE* pijp = popen("lpstat -e 2>/dev/null </dev/null", "r");
  if (pijp == nullptr) return lijst;
  char regel[256];
  while (file_line(pijp, regel, sizeof regel))
    if (const std::string naam = str_trim(regel); !naam.empty() && naam.size() < 40)
      lijst.push_back(naam);
  pclose(pijp);
  return lijst;
}

int hoogste_printer() {
  int hoogste = PTR_SCHERM;
  ICB* tabel = IXOPEN(prt_path(TR_PTRG), IX_LEES);
  PtrgRec rec{};
  for (bool er = IXFIRSTR(tabel, &rec); er; er = IXNEXT(tabel, &rec))
    hoogste = std::max<int>(hoogste, rec.tr_code);
  IXCLOSE(tabel);
  return hoogste;
}

/// Import lines of a destination with the two common page forms.
std::string bestemming(int nummer, const std::string& naam, const std::string& apparaat) {
  return fmt::format(
      "printer;{0};{1}\nverbinding;{0};1;{2};{3}\nconfiguratie;{0};1;132;64;liggend 132\n"
      "configuratie;{0};2;80;64;staand 80;;;staand\n",
      nummer, naam.substr(0, sizeof PtrgRec::name), apparaat, naam.substr(0, sizeof PtrcRec::name));
}

std::string voorstel(int nummer) {
  std::string regels;
  for (const std::string& rij : wachtrijen()) regels += bestemming(nummer++, rij, rij);
  return regels;
}

void doe_list(const Printerverb& o) {
  in_keten(o.map);
  if (!prt_tabellen_maak())
    winkel_fout(prt_path(TR_PTRG), "de printertabellen zijn niet bruikbaar");
  ICB* g = IXOPEN(prt_path(TR_PTRG), IX_LEES);
  ICB* c = IXOPEN(prt_path(TR_PTRC), IX_LEES);
  ICB* p = IXOPEN(prt_path(TR_PTRP), IX_LEES);
  PtrgRec printer{};
  for (bool er = IXFIRSTR(g, &printer); er; er = IXNEXT(g, &printer)) {
    fmt::print("{:4} {}\n", printer.tr_code,
               cp850_utf8(veld_tekst(printer.name, sizeof printer.name)));
    PtrcRec v{};
    v.tr_code = printer.tr_code;
    for (bool in = IXFIRSTR(c, &v, 1); in; in = IXNEXT(c, &v, 1))
      fmt::print("     verbinding   {:3} {:<20} {}{}\n", v.id,
                 cp850_utf8(veld_tekst(v.name, sizeof v.name)),
                 cp850_utf8(veld_tekst(v.device, sizeof v.device)), v.to_dir != 0 ? " (map)" : "");
    PtrpRec f{};
    f.tr_code = printer.tr_code;
    for (bool in = IXFIRSTR(p, &f, 1); in; in = IXNEXT(p, &f, 1))
      fmt::print("     configuratie {:3} {:<32} {:3} x {:4} {}\n", f.id,
                 cp850_utf8(veld_tekst(f.desc, sizeof f.desc)), f.columns, f.rows,
                 f.portrait != 0 ? "staand" : "liggend");
  }
  IXCLOSE(p);
  IXCLOSE(c);
  IXCLOSE(g);
}

void doe_suggest(const Printerverb& o) {
  in_keten(o.map);
  if (!prt_tabellen_maak())
    winkel_fout(prt_path(TR_PTRG), "de printertabellen zijn niet bruikbaar");
  fmt::print("{}", voorstel(hoogste_printer() + 1));
}

}  // namespace

void printers_van_demo() {
  Stand s;
  std::string regels = bestemming(2, "BESTAND", "afdruk.lst") + voorstel(3);
  for (size_t begin = 0; begin < regels.size();) {
    const size_t einde = regels.find('\n', begin);
    // A queue whose name does not fit is left out.
    static_cast<void>(ontleed(regels.substr(begin, einde - begin), &s));
    begin = einde + 1;
  }
  voeg_toe(std::move(s));
}

void verb_printer(CLI::App& app) {
  static Printerverb o;
  CLI::App* verb = app.add_subcommand("printer", "printbestemmingen");
  verb->require_subcommand(1);
  const auto werk = [verb](const char* naam, const char* tekst) {
    CLI::App* v = verb->add_subcommand(naam, tekst);
    optie_map(v, &o.map);
    return v;
  };
  werk("list", "toon de printers")->callback([] { doe_list(o); });
  CLI::App* printer = werk("add-printer", "voeg een printer toe of hernoem hem");
  printer->add_option("NR", o.nummer, "nummer, vanaf 2")->required();
  printer->add_option("NAAM", o.naam, "hoogstens 12 tekens")->required();
  printer->callback([] { doe_een(o, maak_printer); });
  CLI::App* verbinding = werk("add-connection", "voeg een verbinding toe");
  verbinding->add_option("NR", o.nummer, "printer")->required();
  verbinding->add_option("ID", o.id, "nummer van de verbinding")->required();
  verbinding->add_option("APPARAAT", o.apparaat, "wachtrij, pad, TERMINAL of AUX")->required();
  verbinding->add_option("NAAM", o.naam, "hoogstens 20 tekens")->required();
  verbinding->add_flag("--dir", o.naar_map, "het apparaat is een map");
  verbinding->callback([] { doe_een(o, maak_verbinding); });
  CLI::App* configuratie = werk("add-config", "voeg een configuratie toe");
  configuratie->add_option("NR", o.nummer, "printer")->required();
  configuratie->add_option("ID", o.id, "nummer van de configuratie")->required();
  configuratie->add_option("KOLOMMEN", o.kolommen, "van een regel")->required();
  configuratie->add_option("RIJEN", o.rijen, "van een blad; 0 of 9999 eindeloos")->required();
  configuratie->add_option("OMSCHRIJVING", o.omschrijving, "hoogstens 32 tekens")->required();
  configuratie->add_option("--start", o.start, "codes vooraf, \\hh hexadecimaal");
  configuratie->add_option("--stop", o.stop, "codes achteraf");
  configuratie->add_flag("--portrait", o.staand, "staand papier");
  configuratie->callback([] { doe_een(o, maak_configuratie); });
  CLI::App* invoer = werk("import", "lees regels zoals suggest ze geeft");
  invoer->add_option("BESTAND", o.bestand, "- voor standaardinvoer")->required();
  invoer->callback([] { voeg_in_keten(o, lees_invoer(o.bestand)); });
  werk("suggest", "regels voor de wachtrijen van dit systeem")->callback([] { doe_suggest(o); });
}
