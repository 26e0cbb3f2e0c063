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
  fmt::print(stderr, "winkel: {}\n", cp850_utf8(tekst));
  std::exit(UIT_FOUT);
}

/// What the parser has against the arguments, in the operator's language.
std::string bezwaar(const CLI::ParseError& fout) {
  const std::string naam = fout.get_name();
  if (naam == "RequiredError") return std::string("ontbreekt: ") + fout.what();
  if (naam == "ExtrasError") return std::string("niet begrepen: ") + fout.what();
  return std::string("ongeldig: ") + fout.what();
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
  app.get_formatter()->label("Usage", "Gebruik");
  app.get_formatter()->label("Options", "Opties");
  app.get_formatter()->label("Subcommands", "Opdrachten");
  app.require_subcommand(1);
  verb_init(app);
  verb_demo(app);
  verb_gebruiker(app);
  verb_printer(app);
  verb_terminal(app);
  verb_saldo(app);
  verb_status(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& fout) {
    return gebruik(app, fout);
  }
  return UIT_GOED;
}
