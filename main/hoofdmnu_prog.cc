// hoofdmnu: the launcher. Started by hand it asks who is there; exec'd back by a program it takes
// the session over. It shows the programs that the user may run and replaces itself by the chosen
// one.
#include <cstdlib>
#include <cstring>

#include "isam/base.h"
#include "main/aanmelden.h"
#include "main/controle.h"
#include "main/hoofdmenu.h"
#include "main/opstart.h"
#include "main/teksten.h"
#include "scr/scr.h"

namespace {

constexpr const char* BOUWDATUM = "Apr  5 2016 13:38:47";

/// Takes "-t NN" out of the arguments; 0 without it.
int neem_terminal(int& argc, char** argv) {
  int keuze = 0;
  int naar = 1;
  for (int van = 1; van < argc; ++van) {
    if (strcmp(argv[van], "-t") == 0 && van + 1 < argc) {
      keuze = atoi(argv[++van]);
    } else {
      argv[naar++] = argv[van];
    }
  }
  argc = naar;
  argv[argc] = nullptr;
  return keuze;
}

/// Faulty files keep everybody but a system manager out; a free text is only shown.
bool systeem_vrij() {
  if (ctl_critical_test()) return true;
  int32_t nummer = 10;
  iotab('R', &nummer, &sys_rec10, SYS_RECORDS);
  const std::string tekst = veld_tekst(sys_rec10.tekst, sizeof sys_rec10.tekst);
  msg_waarschuw(ctl_status_text(tekst.c_str()).c_str());
  return sys_rec10.status == 9;
}

void meld_aan(int keuze, int argc, char** argv) {
  ctl_start("", BOUWDATUM, argc, argv);
  const bool vrij = systeem_vrij();
  if (!aanmelden(keuze)) scr_exit(0);
  if (!vrij && terminal_rec.rechten != 'S') {
    msg_fout(txt(T_ALLEEN_BEHEER));
    ctl_next("");
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int keuze = neem_terminal(argc, argv);
  opstart_catalogi();
  opstart_terminal();
  if (argc == 5) {
    ctl_start("hoofdmnu", BOUWDATUM, argc, argv);
  } else {
    opstart_venster(keuze);
    meld_aan(keuze, argc, argv);
  }
  hdr_title(veld_tekst(sys_rec1.bedrijf, sizeof sys_rec1.bedrijf).c_str());
  const char* programma = hoofdmenu();
  ctl_next(programma == nullptr ? "" : programma);
}
