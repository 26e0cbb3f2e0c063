// opdsaldo: the balance of provisional orders. One link in a chain of programs that replace each
// other by exec on the same terminal; the chain starts and ends in the launcher.
#include "main/autoinst.h"
#include "main/controle.h"
#include "main/saldo.h"
#include "main/work.h"
#include "scr/scr.h"

namespace {
constexpr const char* BOUWDATUM = "Apr  5 2016 13:38:47";
}

int main(int argc, char** argv) {
  if (autoinst(argc, argv, 199, "Voorraadbeheer", 'S')) return 0;
  ctl_start("opdsaldo", BOUWDATUM, argc, argv);
  hdr_title("Voorraadbeheer");
  work_open();
  top_menu();
  work_close();
  ctl_next(work_overdracht ? "vrdstuk" : "hoofdmnu");
}
