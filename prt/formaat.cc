// Printing into the line pair of the report in hand, and the life of that pair.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

#include "isam/base.h"
#include "prt/intern.h"
#include "prt/teksten.h"
#include "scr/scr.h"

PrtFmt* prt_fmt = nullptr;

namespace {

// Cuts at the report's width, without a message: a column too many never spoils the page.
void paar_naar_bestand(void*, std::string_view regel0, std::string_view regel1) {
  const size_t breedte = prt_rec.width > 0 ? static_cast<size_t>(prt_rec.width) : 0;
  prt_schrijf(regel0.substr(0, breedte));
  print_newline();
  const std::string_view onder = regel1.substr(0, breedte);
  if (!zz_zichtbaar(onder)) return;
  prt_schrijf(onder);
  print_newline();
}

constexpr ZzUit UIT{paar_naar_bestand, nullptr};

[[noreturn]] void afbreken(const ZzUitslag& u) {
  switch (u.fout) {
    case ZzFout::letter:
      scr_abort(txt(T_PRT_LETTER), u.teken);
    case ZzFout::maximum:
      scr_abort(txt(T_PRT_MAXSYSBUF_KLEIN), u.nodig, prt_fmt->buf_max);
    case ZzFout::te_lang:
      scr_abort("%s %d %s", txt(T_PRT_BUFFER), ZZ_HOOGSTE, txt(T_PRT_TE_LANG));
    default:
      scr_abort(txt(T_PRT_REGEL), txt(T_PRT_GEHEUGEN));
  }
}

// Blanks in place of a value that shows nothing but zeros.
bool nul_leeg(std::string& tekst) {
  if (tekst.find_first_not_of(" .,0") != std::string::npos) return false;
  tekst.assign(tekst.size(), ' ');
  return true;
}

// The value as the format's conversion wants it: a whole number for d, u and x.
Arg waarde_arg(const char* fmt, double waarde) {
  std::string_view rest(fmt);
  Conversie stuk;
  while (formaat_volgende(rest, stuk) && stuk.letter == 0) {
  }
  if (stuk.letter == 0 || std::strchr("diouxX", stuk.letter) == nullptr) return Arg(waarde);
  return std::fabs(waarde) < 9e15 ? Arg(std::llround(waarde)) : Arg(0);
}

std::string waarde_tekst(const char* fmt, const Arg& arg) {
  return formaat_tekst(fmt, std::span<const Arg>(&arg, 1));
}

}  // namespace

void start_zigzag_printen() {
  if (prt_fmt != nullptr && prt_fmt->started) scr_abort_tekst(txt(T_PRT_START_FOUT));
  prt_fmt = new (std::nothrow) PrtFmt;
  if (prt_fmt == nullptr) scr_abort(txt(T_PRT_OPEN), txt(T_PRT_GEHEUGEN));
  const std::string fout = zz_instellen(*prt_fmt, std::getenv("MAXFMT"), std::getenv("SYSBUF"),
                                        std::getenv("MAXSYSBUF"));
  if (!fout.empty()) scr_abort_tekst(fout.c_str());
  if (!zz_begin(*prt_fmt)) scr_abort(txt(T_PRT_OPEN), txt(T_PRT_GEHEUGEN));
  prt_fmt->zigzag_on = true;
  prt_fmt->started = true;
}

void stop_zigzag_printen() {
  if (prt_fmt == nullptr || !prt_fmt->started) scr_abort_tekst(txt(T_PRT_STOP_FOUT));
  delete prt_fmt;
  prt_fmt = nullptr;
}

bool prt_paar_bezet() { return prt_fmt != nullptr && prt_fmt->last_pos >= 0; }

void prt_paar_uit() {
  if (prt_fmt != nullptr) zz_flush(*prt_fmt, UIT);
}

void print_f_kern(const char* fmt, std::span<const Arg> args) {
  if (prt_fmt == nullptr) scr_abort_tekst(txt(T_PRT_STOP_FOUT));
  const ZzUitslag uitslag = zz_print(*prt_fmt, fmt, args, UIT);
  if (uitslag.fout != ZzFout::geen) afbreken(uitslag);
}

void print_rep(int aantal, char teken) {
  char stuk[64];
  std::memset(stuk, teken, sizeof stuk);
  for (int rest = aantal; rest > 0; rest -= static_cast<int>(sizeof stuk)) {
    const int n = rest < static_cast<int>(sizeof stuk) ? rest : static_cast<int>(sizeof stuk);
    print_f("%s", std::string_view(stuk, static_cast<size_t>(n)));
  }
}

void print_blank_amount(const char* fmt, double waarde) {
  const Arg arg = waarde_arg(fmt, waarde);
  std::string tekst = waarde_tekst(fmt, arg);
  if (nul_leeg(tekst))
    print_f("%s", tekst);
  else
    print_f_kern(fmt, std::span<const Arg>(&arg, 1));
}

void zero_blank(char* buffer, const char* fmt, double waarde) {
  std::string tekst = waarde_tekst(fmt, waarde_arg(fmt, waarde));
  nul_leeg(tekst);
  std::memcpy(buffer, tekst.c_str(), tekst.size() + 1);
}

void print_amount(double waarde, int breedte) {
  const bool breuk = str_format("%.15lg", waarde).find('.') != std::string::npos;
  if (breuk)
    print_f("%*.2lf", breedte, waarde);
  else if (std::fabs(waarde) <= 2147483647.0)
    print_f("%*ld", breedte, static_cast<int32_t>(waarde));
  else
    print_f("%*.0lf", breedte, waarde);
}

void print_clear() {
  if (prt_fmt != nullptr) zz_leeg(*prt_fmt);
  if (prt_rec.spool != nullptr) std::fflush(prt_rec.spool);
}
