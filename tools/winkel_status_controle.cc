// winkel status --controle: what the stock tables say of each other. It reads copies, so users may
// be at work: a move changes its tables one after the other, and each copy is of its own moment, so
// a finding counts only when every look of several, a moment apart, has it. Nothing is repaired.
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "isam/base.h"
#include "isam/ix_intern.h"
#include "sub/ioeti_intern.h"
#include "sub/tabellen.h"
#include "tools/ix_keur.h"
#include "tools/winkel.h"

namespace {

constexpr int WACHT = 10;          // seconds, for who has a table to himself
constexpr size_t MEEST = 500;      // lines that are shown
constexpr int BLIKKEN = 4;         // looks before a finding is one
constexpr unsigned RUST = 500000;  // microseconds between them

struct NrHash {
  size_t operator()(const Serienr& n) const noexcept {
    const uint64_t een = n.artgroep * 0x9E3779B97F4A7C15u;
    return static_cast<size_t>(een ^ (uint64_t{n.kleur} << 40 | uint64_t{n.volgnr} << 20));
  }
};

/// What counts of a label.
struct Stuk {
  Serienr nr;
  uint8_t status, filiaal, onderweg, doel;

  uint8_t waar() const { return onderweg != 0 ? doel : filiaal; }
};
using Tellers = std::array<uint32_t, ETI_CORRECTIES + 1>;  // by status
struct Stand {
  Tellers boek{}, geteld{};
};

/// One look at all the tables.
struct Blik {
  std::vector<Stuk> stukken;  // by label number; status 0 where there is none
  std::unordered_map<Serienr, Stand, NrHash> series;
  std::vector<DtGo> zendingen;
  std::unordered_map<uint32_t, DtFin> financieel;  // the last line of a label
  std::unordered_map<uint32_t, DtIo> ontvangsten;  // the last receipt
  std::vector<std::string> bevindingen;

  const Stuk* stuk(uint32_t etiket) const {
    const bool er = etiket < stukken.size() && stukken[etiket].status != ETI_VRIJ;
    return er ? &stukken[etiket] : nullptr;
  }
  template <class... A>
  void meld(const Serienr& nr, uint32_t etiket, fmt::format_string<A...> vorm, A&&... a) {
    bevindingen.push_back(fmt::format("{} etiket {}: ", serie_tekst(nr), etiket) +
                          fmt::format(vorm, std::forward<A>(a)...));
  }
};

bool transit_aan() { return sys_rec20.transit != 0; }

// Reading -----------------------------------------------------------------------------------------

template <class R, class Doe>
void elk(const std::vector<uint8_t>& data, const Doe& doe) {
  for (size_t p = 0; p + sizeof(R) <= data.size(); p += sizeof(R)) {
    if (!ix_levend(data.data() + p, sizeof(R))) continue;
    R rec;
    std::copy_n(data.data() + p, sizeof rec, reinterpret_cast<uint8_t*>(&rec));
    doe(rec);
  }
}

template <class R, class Doe>
void elk_van(const char* tabel, const Doe& doe) {
  TabelKopie kopie;
  const KopieStand stand = tabel_kopieer(tabel, WACHT, &kopie);
  if (stand.uit != KopieUit::goed) winkel_fout(tabel, kopie_tekst(stand));
  elk<R>(kopie.data, doe);
}

void neem_blok(Blik* b, size_t blok, const EtiBlok& bytes) {
  if (bytes.nr == Serienr{}) return;
  const Serienr nr = bytes.nr;
  Stand& stand = b->series[nr];
  for (size_t slot = 0; slot < ETI_SLOTS; ++slot) {
    Etiket e{};
    if (!etiket_uitpak(bytes.woord[slot], &e, transit_aan())) continue;
    if (e.status <= ETI_CORRECTIES) ++stand.geteld[e.status];
    b->stukken[blok * ETI_SLOTS + slot + 1] = {nr, e.status, e.filiaal, e.onderweg, e.doel};
  }
}

void lees_voorraad(Blik* b) {
  PlatKopie kopie;
  Verslag verslag;
  if (!plat_kopieer(PLAT_ETIKETTEN, WACHT, false, &kopie, &verslag))
    winkel_fout("DTETI", verslag.rijen.empty() ? "niet te lezen" : verslag.rijen.front().wat);
  elk<DtSer>(kopie.tabel, [b](const DtSer& s) {
    b->series[s.nr].boek = {1, s.besteld, s.voorraad, s.verkocht, s.correcties};
  });
  const size_t blokken = kopie.bestand.size() / sizeof(EtiBlok);
  b->stukken.resize(blokken * ETI_SLOTS + 1);
  for (size_t i = 0; i < blokken; ++i) {
    EtiBlok blok;
    std::copy_n(kopie.bestand.data() + i * sizeof blok, sizeof blok,
                reinterpret_cast<uint8_t*>(&blok));
    neem_blok(b, i, blok);
  }
}

void lees_bewegingen(Blik* b) {
  elk_van<DtGo>("DTGO", [b](const DtGo& g) {
    if (g.afgewerkt == 0) b->zendingen.push_back(g);
  });
  elk_van<DtFin>("DTFIN", [b](const DtFin& f) {
    const auto [plaats, nieuw] = b->financieel.try_emplace(f.etiket, f);
    DtFin& laatst = plaats->second;
    if (!nieuw && std::pair(f.datum, f.regel) > std::pair(laatst.datum, laatst.regel)) laatst = f;
  });
  elk_van<DtIo>("DTIO", [b](const DtIo& r) {
    const auto [plaats, nieuw] = b->ontvangsten.try_emplace(r.etiket, r);
    if (!nieuw && r.datum > plaats->second.datum) plaats->second = r;
  });
}

// Judging -----------------------------------------------------------------------------------------

const char* lot(const Stuk& s) {
  return s.status == ETI_VERKOPEN     ? "verkocht"
         : s.status == ETI_CORRECTIES ? "gecorrigeerd"
                                      : "staat";
}
std::string plek(const Stuk& s) {
  if (s.status == ETI_NOTA) return "het etiket is niet ontvangen";
  if (s.onderweg != 0)
    return fmt::format("het etiket is onderweg van filiaal {} naar {}", s.filiaal, s.doel);
  return fmt::format("het etiket {} in filiaal {}",
                     s.status == ETI_VOORRAAD ? lot(s) : std::string("is ") + lot(s), s.filiaal);
}

/// Counters of a series against its labels: received is shelf, transit, sold and corrected.
void keur_tellers(Blik* b) {
  for (const auto& [nr, s] : b->series) {
    const std::string serie = serie_tekst(nr);
    if (s.boek[0] == 0) {
      b->bevindingen.push_back(fmt::format("{}: de serie bestaat niet, wel {} etiketten", serie,
                                           s.geteld[1] + s.geteld[2] + s.geteld[3] + s.geteld[4]));
      continue;
    }
    constexpr const char* NAMEN[] = {"", "besteld", "voorraad", "verkocht", "gecorrigeerd"};
    for (size_t i = 1; i < s.boek.size(); ++i)
      if (s.boek[i] != s.geteld[i])
        b->bevindingen.push_back(
            fmt::format("{}: {} {}, {} etiketten", serie, NAMEN[i], s.boek[i], s.geteld[i]));
  }
}

/// Without transit administration a label stands where it was sent to, until a later move.
void keur_zending_uit(Blik* b, const DtGo& g, const Stuk& s) {
  const auto f = b->financieel.find(g.etiket);
  const bool verder =
      f != b->financieel.end() && f->second.datum >= g.zenddatum && f->second.naarfil != g.naarfil;
  if (s.status == ETI_NOTA || (!verder && s.filiaal != g.naarfil))
    b->meld(g.nr, g.etiket, "verzonden van filiaal {} naar {}, {}", g.vanfil, g.naarfil, plek(s));
}

void keur_zending(Blik* b, const DtGo& g) {
  const Stuk* s = b->stuk(g.etiket);
  if (s == nullptr)
    return b->meld(g.nr, g.etiket, "zending van filiaal {} naar {}, het etiket bestaat niet",
                   g.vanfil, g.naarfil);
  if (!(Serienr{g.nr} == s->nr))
    return b->meld(g.nr, g.etiket, "zending van filiaal {} naar {}, het etiket is van serie {}",
                   g.vanfil, g.naarfil, serie_tekst(s->nr));
  if (!transit_aan()) return keur_zending_uit(b, g, *s);
  // It may be sold or written off where it goes before its receipt is reported.
  const bool weg = s->status == ETI_VERKOPEN || s->status == ETI_CORRECTIES;
  const bool goed = weg ? s->waar() == g.naarfil
                        : s->status == ETI_VOORRAAD && s->onderweg != 0 && s->filiaal == g.vanfil &&
                              s->doel == g.naarfil;
  if (!goed)
    b->meld(g.nr, g.etiket, "zending van filiaal {} naar {} niet afgewerkt, {}", g.vanfil,
            g.naarfil, plek(*s));
}

void keur_zendingen(Blik* b) {
  std::unordered_set<uint32_t> levend;
  for (const DtGo& g : b->zendingen) {
    levend.insert(g.etiket);
    keur_zending(b, g);
  }
  for (uint32_t n = 1; n < b->stukken.size(); ++n) {
    const Stuk& s = b->stukken[n];
    if (s.status == ETI_VRIJ) continue;
    if (s.filiaal >= filialen() || (s.onderweg != 0 && s.doel >= filialen()))
      b->meld(s.nr, n, "filiaal bestaat niet, {}", plek(s));
    if (s.status == ETI_VOORRAAD && s.onderweg != 0 && !levend.contains(n))
      b->meld(s.nr, n, "onderweg van filiaal {} naar {} zonder zending in DTGO", s.filiaal, s.doel);
  }
}

/// Of a label that was received, and whose number was not given to another series since.
const Stuk* ontvangen(const Blik& b, uint32_t etiket) {
  const Stuk* s = b.stuk(etiket);
  return s == nullptr || s->status == ETI_NOTA ? nullptr : s;
}

void keur_financieel(Blik* b) {
  for (const auto& [etiket, f] : b->financieel) {
    const Stuk* s = ontvangen(*b, etiket);
    if (s == nullptr || !(Serienr{f.nr} == s->nr) || s->waar() == f.naarfil) continue;
    b->meld(s->nr, etiket, "laatste financiële regel, van {}, gaat naar filiaal {}, {}",
            date_show_long(f.datum), f.naarfil, plek(*s));
  }
}

/// The last receipt is where the label is, unless a financial line took it on from there.
void keur_ontvangsten(Blik* b) {
  for (const auto& [etiket, r] : b->ontvangsten) {
    const Stuk* s = ontvangen(*b, etiket);
    if (s == nullptr || s->waar() == r.naarfil) continue;
    const auto f = b->financieel.find(etiket);
    if (f != b->financieel.end() && f->second.datum >= r.datum && f->second.naarfil != r.naarfil)
      continue;
    b->meld(s->nr, etiket, "laatste ontvangst, van {}, is in filiaal {}, {}",
            date_show_long(r.datum), r.naarfil, plek(*s));
  }
}

Blik kijk() {
  Blik b;
  lees_voorraad(&b);
  lees_bewegingen(&b);
  keur_tellers(&b);
  keur_zendingen(&b);
  keur_financieel(&b);
  keur_ontvangsten(&b);
  std::ranges::sort(b.bevindingen);
  return b;
}

void toon_stuks(const Blik& b) {
  std::array<int64_t, ETI_CORRECTIES + 1> n{};
  int64_t onderweg = 0, etiketten = 0;
  for (const Stuk& s : b.stukken) {
    if (s.status == ETI_VRIJ || s.status > ETI_CORRECTIES) continue;
    ++etiketten;
    ++n[s.status];
    onderweg += s.status == ETI_VOORRAAD && s.onderweg != 0 ? 1 : 0;
  }
  int64_t boek = 0;
  for (const auto& [nr, s] : b.series) boek += s.boek[2] + s.boek[3] + s.boek[4];
  fmt::print("Controle van {} series en {} etiketten, {} op bestelling\n", b.series.size(),
             etiketten, n[ETI_NOTA]);
  fmt::print(
      "{} in filialen + {} onderweg + {} verkocht + {} gecorrigeerd = {} ontvangen; DTSER {}\n",
      n[ETI_VOORRAAD] - onderweg, onderweg, n[ETI_VERKOPEN], n[ETI_CORRECTIES],
      n[ETI_VOORRAAD] + n[ETI_VERKOPEN] + n[ETI_CORRECTIES], boek);
}

}  // namespace

bool status_controle() {
  Blik b = kijk();
  for (int i = 1; i < BLIKKEN && !b.bevindingen.empty(); ++i) {
    usleep(RUST);
    const std::vector<std::string> eerder = std::move(b.bevindingen);
    b = kijk();
    std::erase_if(b.bevindingen,
                  [&](const std::string& t) { return !std::ranges::binary_search(eerder, t); });
  }
  toon_stuks(b);
  for (size_t i = 0; i < std::min(b.bevindingen.size(), MEEST); ++i)
    fmt::print("{}\n", b.bevindingen[i]);
  if (b.bevindingen.size() > MEEST) fmt::print("en {} andere\n", b.bevindingen.size() - MEEST);
  fmt::print("{}\n", b.bevindingen.empty() ? std::string("geen bevindingen")
                                           : fmt::format("{} bevinding{}", b.bevindingen.size(),
                                                         b.bevindingen.size() == 1 ? "" : "en"));
  return b.bevindingen.empty();
}
