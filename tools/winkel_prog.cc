// winkel: the administrator of a data directory.
#include <fmt/format.h>

#include <clocale>
#include <cstdio>

#include "isam/base.h"
#include "isam/ix.h"
#include "scr/scr.h"
#include "tools/winkel.h"

namespace {

[[noreturn]] void fataal(const char* tekst) {
  std::string regel = cp850_utf8(tekst);
  while (regel.ends_with(' ')) regel.pop_back();
  fmt::print(stderr, "winkel: {}\n", regel);
  std::exit(UIT_FOUT);
}

/// What the parser has against the arguments, in the operator's language.
std::string bezwaar(const CLI::ParseError& fout) {
  const std::string naam = fout.get_name();
  if (naam == "RequiredError") return std::string("ontbreekt: ") + fout.what();
  if (naam == "ExtrasError") return std::string("niet begrepen: ") + fout.what();
  return std::string("ongeldig: ") + fout.what();
}

/// The words that the parser brings along itself.
void hulp(CLI::App& app) {
  constexpr std::pair<const char*, const char*> WOORDEN[] = {
      {"Usage", "Gebruik"},       {"OPTIONS", "OPTIES"},
      {"SUBCOMMAND", "OPDRACHT"}, {"SUBCOMMANDS", "OPDRACHTEN"},
      {"Positionals", "Waarden"}, {"REQUIRED", "VERPLICHT"},
      {"TEXT", "TEKST"},          {"INT", "GETAL"},
      {"UINT", "GETAL"}};
  for (const auto& [woord, eigen] : WOORDEN) app.get_formatter()->label(woord, eigen);
  app.option_defaults()->group("Opties");
  app.set_help_flag("-h,--help", "toon deze hulp");
}

void groepeer(CLI::App& app) {
  for (CLI::App* verb : app.get_subcommands([](const CLI::App*) { return true; })) {
    verb->group("Opdrachten");
    verb->get_help_ptr()->group("Opties");
    groepeer(*verb);
  }
}

int gebruik(CLI::App& app, const CLI::ParseError& fout) {
  if (fout.get_exit_code() == 0) return app.exit(fout);
  fmt::print(stderr, "winkel: {} (zie winkel --help)\n", bezwaar(fout));
  return UIT_GEBRUIK;
}

}  // namespace

int main(int argc, char** argv) {
  setlocale(LC_CTYPE, "");
  ix_hooks.fataal = fataal;
  scr_hooks.kaal = fataal;
  CLI::App app("Beheer van de gegevensmap van een winkelketen");
  app.name("winkel");
  hulp(app);
  app.require_subcommand(1);
  verb_init(app);
  verb_demo(app);
  verb_gebruiker(app);
  verb_printer(app);
  verb_terminal(app);
  verb_saldo(app);
  verb_status(app);
  verb_export(app);
  verb_import(app);
  optie_sqlite(app);
  verb_backup(app);
  groepeer(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& fout) {
    return gebruik(app, fout);
  }
  return UIT_GOED;
}
