// One series of the list of an order's execution. Compact is a line; extensive shows per branch,
// and in steps of 18 sizes, what differs and the two rows it comes from.
#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "isam/base.h"
#include "main/controle.h"
#include "main/iotab.h"
#include "main/opdracht_controle_in.h"
#include "main/teksten.h"
#include "prt/prt.h"
#include "sub/iomaat.h"
#include "sub/leesstam.h"
#include "sub/tabellen.h"

namespace {

constexpr int STAP = 18;     // sizes of a line
constexpr int GROEPEN = 48;  // columns in front of the groups of a series
constexpr int BALK = 58;     // in front of the size bar

template <size_t N>
std::string veld(const char (&v)[N]) {
  return veld_tekst(v, N);
}
std::string blanks(int n) { return std::string(static_cast<size_t>(n), ' '); }

int32_t verschil(const ControleLijst& l, size_t filiaal, uint8_t maat) {
  // Counts of a damaged line may be anything.
  return static_cast<int32_t>(static_cast<uint32_t>(l.verzonden[filiaal][maat]) -
                              static_cast<uint32_t>(l.opdracht[filiaal][maat]));
}
size_t aantal_filialen(const ControleLijst& l) { return l.opdracht.size() - 1; }
}  // namespace

bool controle_verschilt(const ControleLijst& l, size_t filiaal) {
  for (uint8_t m = 1; m < MATEN; ++m) {
    if (verschil(l, filiaal, m) != 0) return true;
  }
  return false;
}
bool controle_verschilt(const ControleLijst& l) {
  for (size_t f = 0; f < aantal_filialen(l); ++f) {
    if (controle_verschilt(l, f)) return true;
  }
  return false;
}

namespace {

/// What of a series can't be read is taken from its row, or blank.
void lees_stam(ControleLijst& l, const Controle& c) {
  if (!lees_serie(dtser, &ser_rec, c.nr)) {
    ser_rec = {};
    ser_rec.nr = c.nr;
    std::ranges::copy(c.model, ser_rec.model);
    std::ranges::copy(c.locatie, ser_rec.locatie);
  }
  lees_artikel(dtart, &art_rec, ser_rec.nr.artgroep);
  if (!lees_merk(dtmerk, &merk_rec, ser_rec.merk)) std::ranges::copy(c.merk, merk_rec.zoeknaam);
  mtserie(&l.maten, ser_rec);
  l.balk.clear();
  for (const MaatRec& m : mtlijst(l.maten)) l.balk.push_back({m.maat, veld(m.tekst)});
  // Pieces of sizes that the series does not have, or no longer, are not hidden.
  for (uint8_t i = 1; i < MATEN; ++i) {
    const bool staat =
        std::ranges::any_of(l.balk, [i](const ControleKolom& k) { return k.maat == i; });
    if (staat || (l.opdracht.back()[i] == 0 && l.verzonden.back()[i] == 0)) continue;
    MaatRec m;
    l.balk.push_back({i, mtzoek(l.maten, i, &m) ? veld(m.tekst) : ""});
  }
}

/// Brand, model, material and pattern, each blank when the line above has it too.
std::string omschrijving(ControleLijst& l) {
  std::array<std::string, 4> nu{veld(merk_rec.zoeknaam), veld(ser_rec.model),
                                veld(ser_rec.materiaal), veld(ser_rec.dessin)};
  std::array<const char*, 4> toon{};
  for (size_t i = 0; i < nu.size(); ++i) toon[i] = nu[i] == l.vorige[i] ? "" : nu[i].c_str();
  const std::string uit =
      str_format("%-4.4s %-15.15s %-12.12s %-12.12s ", toon[0], toon[1], toon[2], toon[3]);
  l.vorige = nu;
  return uit;
}

/// The name of the article group's characteristic, blank without one.
std::string kenmerk() {
  if (art_rec.kenmerk_nr == 0) return "";
  char naam[20] = {};
  int32_t nummer = art_rec.kenmerk_nr;
  return sys_sub20('R', &nummer, naam) ? veld(naam) : "";
}

void druk_compact(ControleLijst& l) {
  controle_ruimte(l, 1);
  print_f("%s", omschrijving(l));
  print_f("%-7.7s %-2.2s %-6.6s  %-15.15s ", kenmerk(), veld(ser_rec.kenmerk),
          veld(ser_rec.locatie), serie_tekst(ser_rec.nr));
  const int32_t opdracht = l.opdracht.back()[0], verzonden = l.verzonden.back()[0];
  for (const int32_t n : {opdracht, verzonden}) {
    if (n == 0)
      print_f("%7s", "");
    else
      print_f("%6ld ", n);
  }
  const char* teken = verzonden < opdracht ? "     -   " : "     +   ";
  print_f("%s", verzonden == opdracht ? "         " : teken);
  print_f("      %c    ", controle_verschilt(l, aantal_filialen(l)) ? '*' : ' ');
  if (!l.enkel) print_f("%s", controle_verschilt(l) ? "         *" : "          ");
  print_nl();
}

/// The lines of one series in the extensive list. The second line of its description goes along
/// with the first line of its groups.
struct Blok {
  ControleLijst& l;
  std::string links;
  bool open;  // `links` has yet to be printed

  std::span<const ControleKolom> kolommen(int stap) const {
    const size_t begin = std::min(static_cast<size_t>(stap) * STAP, l.balk.size());
    return std::span<const ControleKolom>(l.balk).subspan(
        begin, std::min<size_t>(STAP, l.balk.size() - begin));
  }
  std::string balk(int stap) const {
    std::string uit;
    for (const ControleKolom& k : kolommen(stap)) uit += str_format(" %3.3s", k.tekst);
    return uit;
  }
  void begin_regel() {
    print_f("%s", open ? links : blanks(GROEPEN));
    open = false;
  }
  void balkregel(int stap) {
    begin_regel();
    print_f("%s%s", blanks(BALK - GROEPEN), balk(stap));
    print_nl();
  }
  void aantallen(const Tekst& woord, const Maatrij& rij, int stap) {
    begin_regel();
    print_f("%-4.4s ", txt(woord));
    if (stap == 0)
      print_f("%5ld", rij[0]);
    else
      print_f("%5s", "");
    for (const ControleKolom& k : kolommen(stap)) print_blank_amount("%4ld", rij[k.maat]);
    print_nl();
  }
  /// What differs in one branch, and the two rows it comes from.
  void filiaal(size_t f, int stap) {
    // The sizes come again where the page ends between them and their pieces.
    if (controle_ruimte(l, 3)) balkregel(stap);
    begin_regel();
    print_f("%1s%2d %6s", "F", static_cast<int>(f), "");
    for (const ControleKolom& k : kolommen(stap)) {
      const int32_t n = verschil(l, f, k.maat);
      if (n == 0)
        print_f("%4s", "");
      else
        print_f("%+4ld", n);
    }
    print_nl();
    aantallen(T_CTR_OPDR, l.opdracht[f], stap);
    aantallen(T_CTR_VERZ, l.verzonden[f], stap);
  }
  bool verschilt_hier(size_t f, int stap) const {
    return std::ranges::any_of(kolommen(stap),
                               [&](const ControleKolom& k) { return verschil(l, f, k.maat) != 0; });
  }
  /// The branches that differ. In the first step all of them, with their totals; beside further
  /// sizes those that differ there.
  void stap(int nummer) {
    bool balk_nodig = nummer > 0;  // the first bar stands beside the description
    for (size_t f = 0; f < aantal_filialen(l); ++f) {
      if (!controle_verschilt(l, f) || (nummer > 0 && !verschilt_hier(f, nummer))) continue;
      if (balk_nodig) {
        controle_ruimte(l, 4);
        balkregel(nummer);
      }
      balk_nodig = false;
      filiaal(f, nummer);
    }
  }
};

void druk_uitgebreid(ControleLijst& l) {
  controle_ruimte(l, controle_verschilt(l) ? 4 : 2);
  print_f("%s", omschrijving(l));
  Blok blok{l,
            str_format("%5s%-15.15s %-7.7s %-2.2s   %-6.6s  %6s", "", serie_tekst(ser_rec.nr),
                       kenmerk(), veld(ser_rec.kenmerk), veld(ser_rec.locatie), ""),
            true};
  print_f("%11s%s", "", blok.balk(0));
  print_nl();
  const int stappen = std::max(1, static_cast<int>(l.balk.size() + STAP - 1) / STAP);
  for (int stap = 0; stap < stappen; ++stap) blok.stap(stap);
  if (!blok.open) return;
  blok.begin_regel();
  print_nl();
}

}  // namespace

void controle_serie(ControleLijst& l, const Controle& eerste) {
  lees_stam(l, eerste);
  if (l.vraag.uitgebreid)
    druk_uitgebreid(l);
  else
    druk_compact(l);
}
