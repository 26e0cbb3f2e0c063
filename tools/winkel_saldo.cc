// winkel saldo: the balance of provisional orders without an operator.
#include <fmt/format.h>

#include <cstdio>

#include "main/saldo.h"
#include "tools/winkel.h"

namespace {

struct Saldo {
  std::string map = ".", uit;
};

void doe_saldo(const Saldo& o) {
  // The destination is opened first: its name is relative to where the operator stands.
  FILE* uit = o.uit.empty() ? stdout : std::fopen(o.uit.c_str(), "w");
  if (uit == nullptr) winkel_fout_errno(o.uit);
  in_keten(o.map);
  const bool vrij = saldo_onbewaakt(uit);
  const bool goed = std::fflush(uit) == 0 && std::ferror(uit) == 0;
  if (uit != stdout && std::fclose(uit) != 0) winkel_fout_errno(o.uit);
  if (!goed) winkel_fout_errno(o.uit.empty() ? "standaarduitvoer" : o.uit);
  if (vrij) return;
  fmt::print(stderr, "winkel: een ander terminal werkt aan de verzamelopdrachten\n");
  std::exit(UIT_BEZET);
}

}  // namespace

void verb_saldo(CLI::App& app) {
  static Saldo o;
  CLI::App* verb = app.add_subcommand("saldo", "saldo van de voorlopige opdrachten");
  optie_map(verb, &o.map);
  verb->add_option("-o", o.uit, "bestand in plaats van standaarduitvoer")->type_name("BESTAND");
  verb->callback([] { doe_saldo(o); });
}
