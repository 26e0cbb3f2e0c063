// KASMUT.TXT, the lines that the tills have yet to hear: branch, second number, a letter and its
// data. What one move says is appended in a single write, so that lines of two terminals never mix
// and a process that is killed leaves no half line.
#include <fcntl.h>
#include <unistd.h>

#include "isam/formaat.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "main/iofil.h"
#include "sub/muteren.h"
#include "sub/tabellen.h"

namespace {

constexpr const char* MODULE = "iokasmut";
constexpr const char* BESTAND = "KASMUT.TXT";
constexpr int FUNCTIE =
    1;  // work function of the writers; whoever empties the file claims it whole
constexpr uint8_t OPTIE_KASSA = 1, OPTIE_PAREN = 4;
constexpr int GEEN = 255;  // no branch, no till

bool kassa_aan() { return (sys_rec1.opties & OPTIE_KASSA) != 0; }

/// Never while a dialog stands: the claim has no way out for the operator.
void schrijf(const std::string& regels) {
  vw_claim(FUNCTIE, false);
  const Werkclaim claim(FUNCTIE);
  const int fd = open(BESTAND, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0660);
  if (fd < 0) ctl_noopen(MODULE, BESTAND);
  const bool geheel =
      write(fd, regels.data(), regels.size()) == static_cast<ssize_t>(regels.size());
  if (!geheel) ctl_noopen(MODULE, BESTAND);
  close(fd);
}

std::string regel(int filiaal, char letter, const std::string& gegevens) {
  return str_format("%03d%03d%c%s\n", filiaal, GEEN, letter, gegevens);
}

/// The same for the tills that read a file of their own.
void naar_kassas(int filiaal, char letter, const std::string& gegevens) {
  if ((sys_rec1.opties & OPTIE_PAREN) != 0) pairs_send_all(filiaal, GEEN, letter, gegevens.c_str());
}

}  // namespace

void kasmut_f(int32_t etiket, uint8_t van, uint8_t naar) {
  if (!kassa_aan()) return;
  const std::string nummer = str_format("%08ld", etiket);
  schrijf(regel(van, 'F', nummer) + regel(naar, 'F', nummer));
  naar_kassas(van, 'F', nummer);
  naar_kassas(naar, 'F', nummer);
}

void kasmut_d() {
  if (!kassa_aan() || sys_rec1.seriekoppeling == 0) return;
  const std::string serie = serie_sleutel(ser_rec.nr);
  schrijf(regel(GEEN, 'd', serie));
  naar_kassas(GEEN, 'd', serie);
}
