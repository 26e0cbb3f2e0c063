// Lines, pages and page heads, and the opening and closing of a report.
//
// line_no is the number of the line now being written: a page holds exactly page_lines lines when a
// report starts a new one at line_no > page_lines. The first page has no form feed before it, and
// the one behind the last counts no page.
#include <algorithm>
#include <cstring>

#include "isam/base.h"
#include "isam/ix.h"
#include "prt/intern.h"
#include "prt/tabellen.h"
#include "prt/teksten.h"
#include "scr/scr.h"

PrtRec prt_rec{};
char prt_links[31];
PrtStil prt_stil{};
int32_t prt_tekst_eind = 0;

namespace {

constexpr int REGEL_GEEN =
    10000;  // no page yet: past every page length, so the first line gets a head

void blad_begin(FILE* spool) {
  if (prt_rec.page_no > 0) std::fputc('\f', spool);
  std::fflush(spool);
}

std::string midden(std::string_view tekst, size_t ruimte) {
  const size_t vul = ruimte > tekst.size() ? (ruimte - tekst.size()) / 2 : 0;
  return std::string(vul, ' ').append(tekst);
}

}  // namespace

void prt_schrijf(std::string_view tekst) {
  if (prt_rec.spool == nullptr) return;
  if (prt_stil.aan && prt_stil.utf8) {
    const std::string buiten = cp850_utf8(tekst);
    std::fwrite(buiten.data(), 1, buiten.size(), prt_rec.spool);
  } else {
    std::fwrite(tekst.data(), 1, tekst.size(), prt_rec.spool);
  }
}

void print_newline() {
  if (prt_rec.spool == nullptr) return;
  std::fputc('\n', prt_rec.spool);
  std::fflush(prt_rec.spool);
  ++prt_rec.line_no;
}

void print_nl() { prt_paar_uit(); }

void print_ff() {
  if (prt_paar_bezet()) prt_paar_uit();
  if (prt_rec.spool == nullptr) return;
  blad_begin(prt_rec.spool);
  ++prt_rec.page_no;
  ++prt_rec.page_count;
  prt_rec.line_no = 1;
}

void prt_blad_sluit() {
  if (prt_rec.spool == nullptr) return;
  std::fputc('\f', prt_rec.spool);
  std::fflush(prt_rec.spool);
}

bool print_vol(int regels) {
  const int blad = prt_rec.page_lines > 0 ? prt_rec.page_lines : PTR_EINDELOOS;
  return prt_rec.line_no > blad - regels + 1;
}

void print_head_tekst(const char* links, const char* titel) {
  print_ff();
  const std::string rechts =
      str_format(" %s %5.5s ", date_show_long(date_today()), time_show(time_now())) +
      str_format("%s:%4d", txt(T_PRT_BLAD), prt_rec.page_no);
  const size_t breedte = static_cast<size_t>(std::max(prt_rec.width, 0));
  const size_t links_n = std::strlen(links), titel_n = std::strlen(titel);
  const size_t kanten = links_n + rechts.size();
  const size_t ruimte = breedte > kanten ? breedte - kanten : 0;
  if (titel_n + 2 <= ruimte) {
    const std::string vul((ruimte - titel_n) / 2, ' ');
    print_f("%s%s%s%s%s", links, vul, titel, vul, rechts);
  } else {
    print_f("%s%s%s", links, std::string(ruimte, ' '), rechts);
    print_nl();
    print_f("%s", midden(titel, breedte));
  }
  print_nl();
  print_nl();
}

int XPRT_OPEN(uint32_t selection, int widths, const char* file) {
  start_zigzag_printen();
  prt_stil = {};
  prt_tekst_eind = 0;
  if (prt_choose(&prt_rec, selection, widths, file) == 0) {
    // Left started, the next report would die on it.
    stop_zigzag_printen();
    FFLASH(-1, 2, 0, txt(T_PRT_TITEL), txt(T_PRT_GEEN_MEDIUM));
    return 0;
  }
  if (scr_ctx != nullptr) scr_flush(0);
  prt_rec.copies = 1;
  return 1;
}

int prt_open_stil(FILE* uit, int width, int page_lines, bool utf8) {
  start_zigzag_printen();
  prt_rec = PrtRec{};
  prt_rec.width = width;
  prt_rec.page_lines = page_lines;
  prt_rec.line_no = REGEL_GEEN;
  prt_rec.spool = uit;
  prt_rec.copies = 1;
  prt_stil = {true, utf8};
  return 1;
}

void print_close(const char* lp_opties) {
  if (prt_paar_bezet()) prt_paar_uit();
  stop_zigzag_printen();
  if (!prt_stil.aan) {
    print_end(lp_opties);
    return;
  }
  if (prt_rec.spool != nullptr) std::fflush(prt_rec.spool);
  prt_rec.spool = nullptr;
  prt_stil = {};
}
