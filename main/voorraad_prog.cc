// voorraad: all commands of stock and orders, the balance among them. A link in the same chain of
// programs as opdsaldo: it starts from the launcher and goes back to it.
#include "main/autoinst.h"
#include "main/controle.h"
#include "main/voorraad_menu.h"
#include "main/work.h"
#include "scr/scr.h"

namespace {
constexpr const char* BOUWDATUM = "Apr  5 2016 13:38:47";
}

int main(int argc, char** argv) {
  if (autoinst(argc, argv, 200, "Voorraad en opdrachten", 'S')) return 0;
  ctl_start("voorraad", BOUWDATUM, argc, argv);
  hdr_title("Voorraadbeheer");
  work_open();
  voorraad_menu();
  work_close();
  ctl_next(work_overdracht ? "vrdstuk" : "hoofdmnu");
}
