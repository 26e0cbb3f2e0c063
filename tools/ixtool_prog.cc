// ixtool: what an administrator does with the tables of a data directory while others work in it.
#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

#include "isam/ix.h"
#include "tools/ix_verbs.h"
#include "tools/tabelkopie.h"

namespace {

void fataal(const char* tekst) {
  std::string regel = tekst;
  while (!regel.empty() && (regel.back() == ' ' || regel.back() == '\n')) regel.pop_back();
  fflush(stdout);
  fmt::print(stderr, "ixtool: {}\n", regel);
  exit(1);
}

/// Somebody is in the table: one line, and a pause before the next try.
void wacht(ICB* icb) {
  static std::string laatst;
  const std::string naam(icb->path, strnlen(icb->path, sizeof icb->path));
  if (laatst != naam)
    fmt::print(stderr, "{}: in gebruik door proces {}, wacht\n", naam,
               slot_houder(icb->index_fd, 0, IX_BLOK));
  laatst = naam;
  const timespec even{0, 500000000};
  nanosleep(&even, nullptr);
}

struct Verb {
  const char* naam;
  const char* uitleg;
  int (*doe)(const IxOpdracht&);
};
constexpr Verb VERBS[] = {
    {"check", "Keurt tabellen, losse indexen, DTETI.TXT en DTIPG.TXT", ix_check},
    {"rebuild", "Bouwt de index opnieuw uit het databestand", ix_rebuild},
    {"dump", "Toont de kop, een blok of de records", ix_dump},
    {"walk", "Toont de records op volgorde van een sleutel", ix_walk},
    {"stat", "Toont grootte, vulling en diepte", ix_stat},
    {"queue", "Toont of wist de sleutels in de wachtrij", ix_queue},
    {"load", "Zet records van dump in een tabel", ix_load},
};

void eigen_opties(CLI::App* verb, const std::string& naam, IxOpdracht* o) {
  if (naam == "check")
    verb->add_flag("--verouderd", o->verouderd, "Een losse index mag ouder zijn dan zijn tabel");
  if (naam == "dump") {
    verb->add_option("--blok", o->blok, "Blok van de index")->check(CLI::NonNegativeNumber);
    verb->add_flag("--records", o->records, "De records in plaats van de kop");
    verb->add_flag("--ruw", o->ruw, "De records als bytes in hexadecimaal");
    verb->add_option("--van", o->van, "Eerste record")->check(CLI::NonNegativeNumber);
    verb->add_option("--aantal", o->aantal, "Aantal records")->check(CLI::NonNegativeNumber);
  }
  if (naam == "walk") {
    verb->add_option("--sleutel", o->sleutel, "Nummer van de sleutel")
        ->check(CLI::Range(1, IX_SLEUTELS));
    verb->add_option("--prefix", o->prefix, "Waarden van de eerste sleutelvelden")
        ->delimiter(',')
        ->allow_extra_args(false);
  }
  if (naam == "dump" || naam == "walk")
    verb->add_option("--velden", o->velden, "Alleen deze velden")
        ->delimiter(',')
        ->allow_extra_args(false);
  if (naam == "queue") verb->add_flag("--wis", o->wis, "Wist de wachtrij, zonder vraag");
}

void namen(CLI::App* verb, std::string_view naam, IxOpdracht* o) {
  if (naam != "load") {
    verb->add_option("NAAM", o->namen, "Tabel (DTPICK) of losse index (DTSER.V07); geen: alles");
    return;
  }
  verb->add_option_function<std::string>(
          "NAAM", [o](const std::string& tabel) { o->namen = {tabel}; }, "Tabel")
      ->required();
  verb->add_option("BESTAND", o->bestand, "Van dump --ruw, of dump --records --json; -: invoer")
      ->required();
}

/// What is wrong with a call, in the operator's language.
const char* aanroepfout(const CLI::ParseError& fout) {
  switch (static_cast<CLI::ExitCodes>(fout.get_exit_code())) {
    case CLI::ExitCodes::RequiredError:
      return "een opdracht of waarde ontbreekt";
    case CLI::ExitCodes::ArgumentMismatch:
      return "een optie heeft een waarde te veel of te weinig";
    case CLI::ExitCodes::ConversionError:
    case CLI::ExitCodes::ValidationError:
    case CLI::ExitCodes::InvalidError:
      return "een optie heeft een ongeldige waarde";
    default:
      return "onbekende opdracht of optie";
  }
}

int weiger(const CLI::App& app, const CLI::ParseError& fout) {
  if (fout.get_exit_code() == 0) return app.exit(fout);  // help
  fmt::print(stderr, "ixtool: {}; zie ixtool --help\n", aanroepfout(fout));
  return 2;
}

void nederlands(CLI::App* app) {
  const auto f = app->get_formatter();
  f->label("Usage", "Gebruik");
  f->label("OPTIONS", "opties");
  f->label("SUBCOMMAND", "OPDRACHT");
  f->label("Positionals", "Namen");
  f->label("REQUIRED", "VERPLICHT");
  f->label("TEXT", "TEKST");
  f->label("INT", "GETAL");
  app->option_defaults()->group("Opties");
  app->set_help_flag("-h,--help", "Toont dit");
}

int voer_uit(const IxOpdracht& o, const std::string& map, const Verb& verb) {
  if (!map.empty() && chdir(map.c_str()) != 0) {
    fmt::print(stderr, "ixtool: {}: {}\n", map, systeemfout(errno));
    return 2;
  }
  ix_hooks.fataal = fataal;
  ix_hooks.wacht = wacht;
  try {
    return verb.doe(o);
  } catch (const std::bad_alloc&) {
    fataal("onvoldoende geheugen");
  }
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  setlocale(LC_CTYPE, "");
  CLI::App app{"Keurt, herbouwt en toont de tabellen van een gegevensmap", "ixtool"};
  nederlands(&app);
  app.require_subcommand(1);
  IxOpdracht o;
  std::string map;
  for (const Verb& v : VERBS) {
    CLI::App* verb = app.add_subcommand(v.naam, v.uitleg)->group("Opdrachten");
    verb->option_defaults()->group("Opties");
    verb->set_help_flag("-h,--help", "Toont dit");
    verb->add_flag("--json", o.json, "Uitvoer als JSON");
    verb->add_option("-C", map, "Gegevensmap");
    verb->add_option("--wacht", o.wacht, "Seconden wachten op een slot")
        ->check(CLI::NonNegativeNumber);
    eigen_opties(verb, v.naam, &o);
    namen(verb, v.naam, &o);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& fout) {
    return weiger(app, fout);
  }
  for (const Verb& v : VERBS)
    if (app.got_subcommand(v.naam)) return voer_uit(o, map, v);
  return 2;
}
