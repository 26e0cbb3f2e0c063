// winkel init: an empty chain.
#include <fmt/format.h>

#include <cstring>
#include <ctime>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/iotab.h"
#include "tools/winkel.h"
#include "tools/winkel_sloten.h"

namespace {

struct Init {
  std::string map = ".", bedrijf, gebruiker = "BEHEER", wachtwoord, proefmap, tweede;
  int filialen = 0, cijfers = 8;
};

void zet(std::vector<uint8_t>& dtsys, const SysTabel& tabel, int nummer, const void* rec) {
  std::memcpy(dtsys.data() + tabel.basis + (nummer - 1) * tabel.lengte, rec,
              static_cast<size_t>(tabel.lengte));
}

std::vector<uint8_t> systeembestand(const Init& o, const TerminalRec& beheer) {
  std::vector<uint8_t> dtsys(static_cast<size_t>(SYS_GROOTTE));
  SysRec1 een{};
  veld_zet(een.bedrijf, sizeof een.bedrijf, utf8_cp850(o.bedrijf));
  een.land = 1;
  een.filialen = static_cast<uint8_t>(o.filialen);
  een.tarief[0] = 210;
  een.tarief[1] = 90;
  zet(dtsys, SYS_RECORDS, 1, &een);
  uint8_t vier[64] = {};
  vier[12] = static_cast<uint8_t>(o.cijfers);
  zet(dtsys, SYS_RECORDS, 4, vier);
  SysRec10 tien{};
  std::memcpy(tien.release, RELEASE, sizeof tien.release);
  zet(dtsys, SYS_RECORDS, 10, &tien);
  const uint8_t elf[64] = {1};
  zet(dtsys, SYS_RECORDS, 11, elf);
  const uint8_t vijftien[64] = {'E', 'U', 'R'};
  zet(dtsys, SYS_RECORDS, 15, vijftien);
  const uint8_t euro[36] = {'E', 'U', 'R', 2, 'E', 'u', 'r', 'o'};
  zet(dtsys, SYS_VALUTA, 1, euro);
  zet(dtsys, SYS_TERMINALS, 1, &beheer);
  return dtsys;
}

template <class R>
void vul(const char* tabel, std::vector<R> rijen) {
  ICB* icb = IXOPEN(tabel, IX_GEDEELD);
  for (R& rij : rijen) IXWRITE(icb, &rij);
  IXCLOSE(icb);
}

/// The programs, and the manager's right to them.
void menu() {
  vul("DTHMNU", menu_rijen(std::time(nullptr)));
  vul("DTREL", menu_rechten(1));
}

void doe_init(Init& o) {
  bool geheel = true;
  const std::string bedrijf = utf8_cp850(o.bedrijf, &geheel);
  if (!geheel || bedrijf.size() > sizeof SysRec1::bedrijf)
    winkel_fout(o.bedrijf, "geen bedrijfsnaam van hoogstens 30 tekens");
  if (o.wachtwoord.empty()) o.wachtwoord = vraag_wachtwoord("Wachtwoord van de systeembeheerder: ");
  const std::string bezwaar = gebruiker_bezwaar(o.gebruiker, o.wachtwoord, 'S');
  if (!bezwaar.empty()) winkel_fout(o.gebruiker, bezwaar);
  in_lege_map(o.map);
  if (const std::string lek = sloten_proef(".", "", SLOT_KORT); !lek.empty())
    winkel_fout(o.map, lek);
  const std::vector<uint8_t> dtsys =
      systeembestand(o, maak_gebruiker(o.gebruiker, o.wachtwoord, 'S', std::time(nullptr)));
  schrijf_bestand("DTSYS.TXT", dtsys.data(), dtsys.size());
  const std::vector<uint8_t> filialen(static_cast<size_t>(o.filialen + 1) * 612);
  schrijf_bestand("DTFILGEG.TXT", filialen.data(), filialen.size());
  maak_lege_tabellen();
  menu();
  fmt::print("Lege keten van {} filialen gemaakt; systeembeheerder {} op terminal 1\n", o.filialen,
             o.gebruiker);
}

/// Tells how long each proof took: that is what a user of the directory will feel.
void proef_map(const Init& o) {
  std::vector<SlotRegel> verslag;
  const std::string lek = sloten_proef(o.proefmap, o.tweede, SLOT_LANG, &verslag);
  if (!lek.empty()) winkel_fout(o.proefmap, lek);
  for (const SlotRegel& r : verslag) fmt::print("{:<48} {:9.1f} ms\n", r.wat, r.ms);
  fmt::print("{}{}{}: geschikt\n", o.proefmap, o.tweede.empty() ? "" : " en ", o.tweede);
}

}  // namespace

void verb_init(CLI::App& app) {
  static Init o;
  CLI::App* verb = app.add_subcommand("init", "maak een lege keten in een lege map");
  optie_map(verb, &o.map);
  CLI::Option* branches = verb->add_option("--branches", o.filialen, "aantal filialen, 1 tot 249")
                              ->check(CLI::Range(1, 249));
  CLI::Option* company = verb->add_option("--company", o.bedrijf, "naam van het bedrijf");
  verb->add_option("--digits", o.cijfers, "cijfers van een etiketnummer, 6 tot 8")
      ->check(CLI::Range(6, 8))
      ->capture_default_str();
  verb->add_option("--gebruiker", o.gebruiker, "code van de systeembeheerder")
      ->capture_default_str();
  verb->add_option("--wachtwoord", o.wachtwoord, "zijn wachtwoord; zonder wordt het gevraagd");
  CLI::Option* proef = verb->add_option("--test-locks", o.proefmap,
                                        "maak niets: keur sloten en samenhang van deze map")
                           ->type_name("MAP")
                           ->excludes(branches)
                           ->excludes(company);
  verb->add_option("--tweede", o.tweede, "dezelfde map langs een ander koppelpunt")
      ->type_name("MAP")
      ->needs(proef);
  verb->callback([=] {
    if (proef->count() > 0) return proef_map(o);
    for (const CLI::Option* nodig : {branches, company})
      if (nodig->count() == 0) throw CLI::RequiredError(nodig->get_name());
    doe_init(o);
  });
}
