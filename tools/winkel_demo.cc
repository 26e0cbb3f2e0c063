// winkel demo: a chain to look at and to measure on, from a seed and a date.
#include <fmt/format.h>

#include "isam/base.h"
#include "tools/keten.h"
#include "tools/winkel.h"

namespace {

struct Demo {
  std::string map = ".", vandaag;
  bool groot = false, zonder_transit = false;
  uint64_t zaad = 1;
};

uint16_t datum(const std::string& tekst) {
  if (tekst.empty()) return date_today();
  const uint16_t dag = tekst.size() == 8 ? date_number(tekst.c_str()) : uint16_t{0};
  if (!date_valid(tekst.c_str()) || dag < date_number("01012000"))
    winkel_fout(tekst, "geen datum DDMMJJJJ vanaf 01012000");
  return dag;
}

/// The parser takes "-1" for a very large number.
std::string heel_getal(const std::string& tekst) {
  const bool goed = tekst.find_first_not_of("0123456789") == std::string::npos;
  return goed ? "" : tekst + " is geen geheel getal";
}

void doe_demo(const Demo& o) {
  KetenMaat maat = o.groot ? keten_groot() : keten_klein();
  maat.vandaag = datum(o.vandaag);
  maat.zaad = o.zaad;
  maat.transit = !o.zonder_transit;
  in_lege_map(o.map);
  const KetenTelling t = keten_schrijf(keten_plan(maat));
  printers_van_demo();
  const std::vector<std::string> fouten = keten_keur();
  for (const std::string& fout : fouten) fmt::print(stderr, "winkel: {}\n", fout);
  if (!fouten.empty()) std::exit(UIT_FOUT);
  fmt::print("{}: {} filialen, {} series, {} etiketten in {} blokken, {} prijssets, {} EAN-codes\n",
             maat.bedrijf, maat.filialen, t.series, t.etiketten, t.blokken, t.sets, t.eans);
  fmt::print("{} orderregels, {} onderweg, {} financiële regels, {} ontvangsten, {} aanvullingen\n",
             t.regels, t.onderweg, t.financieel, t.ontvangsten, t.aanvul);
}

}  // namespace

void verb_demo(CLI::App& app) {
  static Demo o;
  CLI::App* verb = app.add_subcommand("demo", "maak een demoketen in een lege map");
  optie_map(verb, &o.map);
  verb->add_flag("--large", o.groot, "de meetketen: 100 filialen, 24000 series");
  verb->add_option("--seed", o.zaad, "toevalsgetal van de keten")
      ->check(heel_getal)
      ->capture_default_str();
  verb->add_option("--today", o.vandaag, "DDMMJJJJ, de dag waarop de keten staat");
  verb->add_flag("--zonder-transit", o.zonder_transit,
                 "zonder administratie van goederen onderweg");
  verb->callback([] { doe_demo(o); });
}
