// The selection as lines of a report: all fields under a head of their own, or those that were set.
#include "isam/base.h"
#include "prt/prt.h"
#include "sub/leesstam.h"
#include "sub/sel_intern.h"
#include "sub/sel_merken.h"
#include "sub/tabellen.h"

namespace {

constexpr size_t MERKEN_KORT = 11;                         // from here on a heading names no brands
constexpr const char* INSPRONG = "                     ";  // under the values

void kop() { print_head(prt_links, "%s %s", txt(T_SEL_KOP), sel_titel); }

/// Only a whole selection pages by itself; the set fields stand below a report's own head.
void einde_regel() {
  print_nl();
  if (sel_wijze == SelWijze::alles && prt_rec.line_no > prt_rec.page_lines) kop();
}

/// The brands of the list with number, code and name, two to a line.
void druk_merken(const char* label, const std::vector<uint16_t>& nummers) {
  DtMerk merk{};
  for (size_t i = 0; i < nummers.size(); ++i) {
    if (dtmerk != nullptr)
      lees_merk(dtmerk, &merk, nummers[i]);
    else
      lees_merk(&merk, nummers[i]);
    if (i % 2 == 0) print_f("%s", i == 0 ? str_format("%-20.20s ", label) : std::string(INSPRONG));
    print_f("%s", str_format("%4u %-4.4s %-20.20s  ", nummers[i], merk.zoeknaam, merk.naam));
    if (i % 2 == 1 || i + 1 == nummers.size()) einde_regel();
  }
}

void druk_veld(char letter) {
  const Tekst* label = sel_label(letter);
  if (label == nullptr) return;
  if (letter == 'a' && sel_gezet('a') && !merk_een) {
    const auto nummers = merklijst_nummers();
    if (sel_wijze != SelWijze::gezet || nummers.size() < MERKEN_KORT) {
      druk_merken(txt(*label), nummers);
      return;
    }
  }
  const SelRegel r = sel_regel(letter);
  print_f("%s", str_format("%-20.20s %s", txt(*label), r.een));
  if (r.tm) print_f("%s", str_format(" %s %s", txt(T_SEL_TM), r.twee));
  einde_regel();
}

struct Wijze {
  explicit Wijze(SelWijze w) : vorige(sel_wijze) { sel_wijze = w; }
  ~Wijze() { sel_wijze = vorige; }
  Wijze(const Wijze&) = delete;
  Wijze& operator=(const Wijze&) = delete;
  SelWijze vorige;
};

}  // namespace

void sel_druk() {
  const Wijze wijze(SelWijze::alles);
  kop();
  for (const char* p = sel_letters; *p != 0; ++p) druk_veld(*p);
}

void sel_kop() {
  const Wijze wijze(SelWijze::gezet);
  bool iets = false;
  for (const char* p = sel_letters; *p != 0; ++p) {
    // A field whose code is "empty" counts as set from the start, but says nothing at its zero.
    if (!sel_gezet(*p) || sel_label(*p) == nullptr) continue;
    if ((*p == 'k' && sel_rec.actie == 0) || (*p == 'C' && sel_rec.verwijderen == 0)) continue;
    druk_veld(*p);
    iets = true;
  }
  if (iets) return;
  print_f("%s", txt(T_SEL_ALLES));
  print_nl();
}
