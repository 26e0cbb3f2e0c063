// What the tills and hand terminals of a demo chain reported: DTDCIF.TXT with ordinary traffic and
// with every remark that the processing knows, so that its signal list shows them all.
//
// Most remarks follow from labels as the chain has them. Pieces that were sold or written off
// before their receipt came need an open transit, for which finished records of others give way;
// and size codes of a gone series, of a series without sizes and of a size without code come from
// two codes that change their series. So no table gains or loses a record.
#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "isam/base.h"
#include "isam/io.h"
#include "isam/ix.h"
#include "sub/datacom.h"
#include "sub/tabeldef.h"
#include "tools/keten.h"
#include "tools/keten_bron.h"
#include "tools/winkel.h"

namespace {

enum Stroom : uint64_t { DATACOM = 700 };
constexpr int GEWOON = 12;       // lines of each ordinary kind
constexpr uint32_t VEEL = 9000;  // pieces that no branch has
constexpr int POGINGEN = 400;    // draws for a piece that was sold of late

/// Labels by what a line can say of them.
enum Soort {
  VOORRAAD,
  ONDERWEG,
  NOTA,
  VERKOCHT,
  CORRECTIE,
  INVENTARIS,
  MAAT,
  MAAT_VERKOCHT,
  SOORTEN
};

struct NrHash {
  size_t operator()(const Serienr& n) const noexcept {
    return n.artgroep * 0x9E3779B97F4A7C15u ^ (uint64_t{n.kleur} << 32 | n.volgnr);
  }
};

struct Stuk {
  int32_t nummer;
  Etiket e;
};

struct Maker {
  const Keten& k;
  Bron b;
  int fd = io_open("DTETI.TXT", false);
  ICB *go = tabel_open("DTGO", IX_GEDEELD), *ean = tabel_open("DTEAN", IX_GEDEELD);
  std::unordered_map<Serienr, bool, NrHash> per_maat{};
  std::vector<int32_t> labels[SOORTEN];
  std::vector<DtGo> klaar{};  // finished transits that may give way
  std::vector<DcRegel> uit{};

  explicit Maker(const Keten& keten) : k(keten), b(keten.maat.zaad, uint64_t{DATACOM} << 32) {
    if (fd < 0) winkel_fout_errno("DTETI.TXT");
  }
  ~Maker() {
    IXCLOSE(go);
    IXCLOSE(ean);
    io_close(fd);
  }
  Maker(const Maker&) = delete;
  Maker& operator=(const Maker&) = delete;

  EtiBlok blok(int32_t nr) const {
    EtiBlok uit_blok{};
    io_lees(fd, &uit_blok, sizeof uit_blok, int64_t{nr} * int64_t{sizeof uit_blok});
    return uit_blok;
  }
  Stuk stuk(int32_t nummer) const {
    const EtiBlok bytes = blok((nummer - 1) / ETI_SLOTS);
    Stuk s{nummer, {}};
    etiket_uitpak(bytes.woord[(nummer - 1) % ETI_SLOTS], &s.e, k.maat.transit);
    s.e.nr = bytes.nr;
    return s;
  }
  /// One of a kind, which no other line is about; false when there is none left.
  bool neem(Soort soort, Stuk* s) {
    std::vector<int32_t>& rij = labels[soort];
    if (rij.empty()) return false;
    const auto i = static_cast<size_t>(b.tot(static_cast<int32_t>(rij.size())));
    *s = stuk(rij[i]);
    rij.erase(rij.begin() + static_cast<ptrdiff_t>(i));
    return true;
  }
  /// The one that left the chain last, of some.
  bool neem_laatste(Soort soort, Stuk* s) {
    std::vector<int32_t>& rij = labels[soort];
    if (rij.empty()) return false;
    size_t beste = 0;
    *s = stuk(rij[0]);
    for (int n = 0; n < POGINGEN; ++n) {
      const auto i = static_cast<size_t>(b.tot(static_cast<int32_t>(rij.size())));
      const Stuk ander = stuk(rij[i]);
      if (ander.e.vrkdat <= s->e.vrkdat) continue;
      *s = ander;
      beste = i;
    }
    rij.erase(rij.begin() + static_cast<ptrdiff_t>(beste));
    return true;
  }
  int ander(std::initializer_list<int> dan) {
    for (;;) {
      const int f = b.tot(k.maat.filialen);
      if (k.maat.filialen <= static_cast<int>(dan.size()) || std::ranges::find(dan, f) == dan.end())
        return f;
    }
  }
  uint16_t onlangs() { return static_cast<uint16_t>(k.maat.vandaag - b.tot(4)); }
};

// What there is -----------------------------------------------------------------------------------

/// Which kind a label is; SOORTEN for none. `beweegt`: it has a transit record.
Soort soort_van(const Etiket& e, bool maat, bool beweegt) {
  if (maat) {
    if (beweegt) return SOORTEN;
    if (e.status == ETI_VOORRAAD && e.onderweg == 0) return MAAT;
    return e.status == ETI_VERKOPEN && e.filiaal != 0 ? MAAT_VERKOCHT : SOORTEN;
  }
  if (e.status == ETI_VOORRAAD && e.onderweg != 0) return ONDERWEG;
  if (beweegt) return SOORTEN;
  switch (e.status) {
    case ETI_NOTA:
      return NOTA;
    case ETI_VOORRAAD:
      return VOORRAAD;
    case ETI_VERKOPEN:
      return e.filiaal != 0 ? VERKOCHT : SOORTEN;
    default:
      if (e.reden == 0) return INVENTARIS;
      return e.filiaal != 0 ? CORRECTIE : SOORTEN;
  }
}

void verzamel(Maker* m) {
  std::unordered_set<uint32_t> beweegt;
  DtGo g{};
  while (IXSEQ(m->go, &g)) {
    beweegt.insert(g.etiket);
    if (g.afgewerkt != 0) m->klaar.push_back(g);
  }
  ICB* ser = tabel_open("DTSER", IX_LEES);
  DtSer s{};
  while (IXSEQ(ser, &s)) m->per_maat[s.nr] = s.maatregistratie != 0;
  IXCLOSE(ser);
  for (int32_t nr = 0; nr < m->k.blokken; ++nr) {
    const EtiBlok bytes = m->blok(nr);
    const auto serie = m->per_maat.find(bytes.nr);
    if (serie == m->per_maat.end()) continue;
    for (int slot = 0; slot < ETI_SLOTS; ++slot) {
      Etiket e{};
      if (!etiket_uitpak(bytes.woord[slot], &e, m->k.maat.transit)) continue;
      const int32_t nummer = nr * ETI_SLOTS + slot + 1;
      const Soort soort =
          soort_van(e, serie->second, beweegt.contains(static_cast<uint32_t>(nummer)));
      if (soort != SOORTEN) m->labels[soort].push_back(nummer);
    }
  }
}

// What is reported --------------------------------------------------------------------------------

struct Regel {
  uint8_t soort;
  int van, naar;
  uint16_t datum;
  std::string code;
  uint32_t stuks = DC_GEEN_AANTAL, nummer = 0;
};
void meld(Maker* m, const Regel& r) {
  DcRegel rec{};
  rec.vanfil = static_cast<uint8_t>(r.van);
  rec.naarfil = static_cast<uint8_t>(r.naar);
  rec.datum = r.datum;
  veld_zet(rec.code, sizeof rec.code, r.code);
  rec.soort = r.soort;
  rec.stuks = r.stuks;
  rec.nummer = r.nummer;
  m->uit.push_back(rec);
}

std::string etiketcode(int32_t nummer) {
  char code[14];
  etikode_maak(0, nummer, code);
  return code;
}

/// The size code of a piece's series and size; false when it has none.
bool lees_maatcode(Maker* m, const Etiket& e, DtEan* rec) {
  *rec = DtEan{};
  rec->soort = 'M';
  rec->artgroep = e.nr.artgroep;
  rec->kleur = e.nr.kleur;
  rec->volgnr = e.nr.volgnr;
  rec->maat = e.maat;
  IXSWITCH(m->ean, 2);
  const bool er = IXFIRSTR(m->ean, rec, 5);
  IXSWITCH(m->ean, 1);
  return er;
}
std::string code_van(const DtEan& e) { return veld_tekst(e.code, sizeof e.code); }

/// A size code goes to another series and size.
void verzet(Maker* m, DtEan rec, const Serienr& nr, uint8_t maat) {
  rec.artgroep = nr.artgroep;
  rec.kleur = nr.kleur;
  rec.volgnr = nr.volgnr;
  rec.maat = maat;
  IXWRITE(m->ean, &rec);
}

/// An open transit of the piece to where it is now, in the place of a finished one.
bool open_zending(Maker* m, const Stuk& s, uint32_t nummer) {
  if (m->klaar.empty()) return false;
  DtGo rec = m->klaar.back();
  m->klaar.pop_back();
  IXSWITCH(m->go, 1);
  if (!IXREADL(m->go, &rec)) return false;
  rec.etiket = static_cast<uint32_t>(s.nummer);
  rec.nr = s.e.nr;
  rec.vanfil = 0;
  rec.naarfil = s.e.filiaal;
  rec.verzamel = 0;
  rec.opdrachtnr = nummer;
  rec.afgewerkt = 0;
  rec.zenddatum = s.e.vrkdat;
  rec.printdatum = 0;
  return IXUPDATE(m->go, &rec);
}

void gewoon(Maker* m) {
  Stuk s;
  for (int i = 0; i < GEWOON && m->neem(VOORRAAD, &s); ++i)
    meld(m, {DC_ZENDEN, s.e.filiaal, m->ander({s.e.filiaal}), std::max(s.e.ontdat, m->onlangs()),
             etiketcode(s.nummer)});
  for (int i = 0; i < GEWOON && m->neem(ONDERWEG, &s); ++i)
    meld(m, {DC_ONTVANGEN, s.e.filiaal, s.e.doel, m->k.maat.vandaag, etiketcode(s.nummer)});
  DtEan ean;
  for (int i = 0; i < GEWOON && m->neem(MAAT, &s); ++i)
    if (lees_maatcode(m, s.e, &ean))
      meld(m, {DC_ZENDEN, s.e.filiaal, m->ander({s.e.filiaal}), m->onlangs(), code_van(ean), 1});
}

/// Lines of a label that its branch or state does not fit.
void etiketten(Maker* m) {
  const uint16_t dag = m->k.maat.vandaag;
  Stuk s;
  if (m->neem(VOORRAAD, &s)) meld(m, {DC_ZENDEN, m->k.maat.filialen, 1, dag, etiketcode(s.nummer)});
  meld(m, {DC_ZENDEN, 1, 2, dag, etiketcode((m->k.blokken + 1000) * ETI_SLOTS + 7)});
  for (const Soort soort : {NOTA, VERKOCHT, CORRECTIE})
    if (m->neem(soort, &s))
      meld(m, {DC_ZENDEN, s.e.filiaal, m->ander({s.e.filiaal}), dag, etiketcode(s.nummer)});
  if (m->neem(VOORRAAD, &s)) {
    const int van = m->ander({s.e.filiaal});
    meld(m, {DC_ZENDEN, van, m->ander({s.e.filiaal, van}), dag, etiketcode(s.nummer)});
  }
  if (m->neem(VOORRAAD, &s))
    meld(m, {DC_ZENDEN, m->ander({s.e.filiaal}), s.e.filiaal, dag, etiketcode(s.nummer)});
  if (m->neem(INVENTARIS, &s))
    meld(m, {DC_ZENDEN, s.e.filiaal, m->ander({s.e.filiaal}), dag, etiketcode(s.nummer)});
}

void onderweg(Maker* m) {
  const uint16_t dag = m->k.maat.vandaag;
  Stuk s;
  if (m->neem(ONDERWEG, &s))
    meld(m, {DC_ZENDEN, s.e.filiaal, m->ander({s.e.filiaal, s.e.doel}), dag, etiketcode(s.nummer)});
  if (m->neem(ONDERWEG, &s)) meld(m, {DC_ZENDEN, s.e.filiaal, s.e.doel, dag, etiketcode(s.nummer)});
  if (m->neem(ONDERWEG, &s))
    meld(m,
         {DC_ONTVANGEN, s.e.filiaal, m->ander({s.e.filiaal, s.e.doel}), dag, etiketcode(s.nummer)});
  for (const Soort soort : {VERKOCHT, CORRECTIE})
    if (m->neem_laatste(soort, &s) && open_zending(m, s, 0))
      meld(m, {DC_ONTVANGEN, 0, s.e.filiaal, s.e.vrkdat, etiketcode(s.nummer)});
}

/// A size code by chance that is still where it was.
bool neem_maatcode(Maker* m, Stuk* s, DtEan* ean) {
  while (m->neem(MAAT, s))
    if (lees_maatcode(m, s->e, ean)) return true;
  return false;
}

void maten(Maker* m) {
  const uint16_t dag = m->k.maat.vandaag;
  Stuk s;
  DtEan ean;
  const uint32_t nummer = m->k.opdrachten.empty() ? 0 : m->k.opdrachten.back().nummer;
  if (neem_maatcode(m, &s, &ean))
    meld(m, {DC_ZENDEN, s.e.filiaal, m->ander({s.e.filiaal}), dag, etiketcode(s.nummer)});
  if (neem_maatcode(m, &s, &ean)) {
    const int naar = m->ander({s.e.filiaal});
    meld(m, {DC_ZENDEN, s.e.filiaal, naar, dag, code_van(ean), VEEL});
    meld(m, {DC_ONTVANGEN, s.e.filiaal, naar, dag, code_van(ean), VEEL});
    meld(m, {DC_ONTVANGEN, s.e.filiaal, naar, dag, code_van(ean), 2, nummer});
  }
  while (m->neem_laatste(MAAT_VERKOCHT, &s)) {
    if (!lees_maatcode(m, s.e, &ean)) continue;
    if (open_zending(m, s, nummer))
      meld(m, {DC_ONTVANGEN, 0, s.e.filiaal, s.e.vrkdat, code_van(ean), 1, nummer});
    break;
  }
}

/// Codes that lead nowhere; what they were about loses its code.
void codes(Maker* m) {
  const uint16_t dag = m->k.maat.vandaag;
  Stuk s, ander;
  DtEan ean;
  if (neem_maatcode(m, &s, &ean)) {
    verzet(m, ean, {s.e.nr.artgroep, 999, 9999}, s.e.maat);
    meld(m, {DC_ZENDEN, s.e.filiaal, m->ander({s.e.filiaal}), dag, code_van(ean), 1});
    meld(m, {DC_ZENDEN, s.e.filiaal, m->ander({s.e.filiaal}), dag, etiketcode(s.nummer)});
  }
  if (neem_maatcode(m, &s, &ean) && m->neem(VOORRAAD, &ander)) {
    verzet(m, ean, ander.e.nr, ander.e.maat);
    meld(m, {DC_ZENDEN, s.e.filiaal, m->ander({s.e.filiaal}), dag, code_van(ean), 1});
  }
  meld(m, {DC_ZENDEN, 1, 2, dag, "8799999999995", 1});
  while (IXSEQ(m->ean, &ean))
    if (ean.soort != 'M') {
      meld(m, {DC_ZENDEN, 1, 2, dag, code_van(ean), 1});
      break;
    }
  IXSEQ_STOP();
}

}  // namespace

void keten_datacom(const Keten& k) {
  Maker m(k);
  verzamel(&m);
  etiketten(&m);
  codes(&m);
  maten(&m);
  if (k.maat.transit) onderweg(&m);
  gewoon(&m);
  std::ranges::stable_sort(m.uit, {}, [](const DcRegel& r) { return uint16_t{r.datum}; });
  schrijf_bestand(DC_BESTAND, m.uit.data(), m.uit.size() * sizeof(DcRegel));
}
