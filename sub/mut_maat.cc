// Pieces of a series with size registration: a code names series and size, a count says how many,
// and any labels of that size move. What another terminal took between count and move is missed and
// told; the rest moves.
#include <algorithm>

#include "isam/base.h"
#include "scr/scr.h"
#include "sub/leesstam.h"
#include "sub/mut_intern.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int KOL_STUKS = 29, KOL_AANTAL = 35, KOL_SERIE = 43, KOL_MAAT = 62;

/// What a send and a confirmation do differently.
struct Soort {
  bool (*zoek)(const MutIngang&, uint8_t maat, std::vector<MutStuk>*);
  const Tekst& geen;
  const Tekst& stuks;
  void (*verplaats)(const MutIngang&, int mode, MutStuk*);
};
const Soort ZENDING{mut_voorraad, T_MUT_GEEN_VOORRAAD, T_MUT_STUKS_VOORRAAD, mut_verplaats};
const Soort BEVESTIGING{mut_onderweg, T_MUT_NIETS_ONDERWEG, T_MUT_STUKS_ONDERWEG,
                        [](const MutIngang& in, int, MutStuk* stuk) { mut_ontvang(in, stuk); }};

// The series of a code ----------------------------------------------------------------------------

/// What the code is not, or 0 with its record.
int lees_code(const MutIngang& in, DtEan* ean) {
  if (in.soort == 'E') {
    if (!lees_ean(dtean, ean, in.code)) return REDEN_EAN;
  } else if (in.soort == 'M') {
    char code[14];
    etikode_maak('M', in.nummer, code);
    if (!ean_goed(code) || !lees_ean(dtean, ean, code)) return REDEN_MAATNUMMER;
  } else {
    return REDEN_KLEIN_ARTIKEL;
  }
  return ean->soort == 'M' ? 0 : REDEN_KLEIN_ARTIKEL;
}

/// The series of the code in ser_rec; otherwise the refusal.
bool zoek_serie(const MutIngang& in, DtEan* ean) {
  MutFeit feit{};
  if (const int reden = lees_code(in, ean); reden != 0) {
    mut_weiger(mut_voor(in), reden, feit);
    return false;
  }
  const Serienr nr{ean->artgroep, ean->kleur, ean->volgnr};
  if (!lees_serie(dtser, &ser_rec, nr)) {
    mut_weiger(serie_sleutel(nr), REDEN_SERIE, feit);
    return false;
  }
  if (ser_rec.maatregistratie != 0) return true;
  feit.maat = mut_maattekst(ser_rec.maatsoort, ean->maat);
  feit.stuks = in.stuks;
  mut_weiger(mut_voor(in), REDEN_GEEN_MAATREGISTRATIE, feit);
  return false;
}

// Pieces of a size --------------------------------------------------------------------------------

/// The labels of a size that `past` takes. The whole chain is read before anything is written.
template <class F>
bool verzamel(uint8_t maat, std::vector<MutStuk>* uit, F past) {
  uit->clear();
  int32_t nummer = ser_rec.blok1;
  Etiket e{};
  for (bool er = ioeti('F', &nummer, &e); er; er = ioeti('N', &nummer, &e)) {
    if (!(e.nr == ser_rec.nr)) {
      uit->clear();
      scr_error("%s %s", serie_sleutel(ser_rec.nr), txt(T_MUT_ONLEESBAAR));
      return false;
    }
    if (e.maat == maat && past(e)) uit->push_back({nummer, e});
  }
  return true;
}

bool sinds_vandaag(const Etiket& e) {
  return (e.status == ETI_VERKOPEN || e.status == ETI_CORRECTIES) && e.vrkdat >= date_today();
}

// The question ------------------------------------------------------------------------------------

int rij() { return scr_ctx->lines - MUT_RIJ_ARTIKEL; }

void toon_aantal(int32_t stuks) { scr_print(A_WAARDE, rij(), KOL_AANTAL, "%-5d", stuks); }

void toon(const MutIngang& in, uint8_t maat) {
  scr_print(A_LABEL, rij(), KOL_STUKS, "%s", txt(T_MUT_STUKS));
  toon_aantal(in.stuks);
  const int na = KOL_SERIE + 1 + scr_print(A_LABEL, rij(), KOL_SERIE, "%s", txt(T_MUT_SERIE));
  scr_print(A_WAARDE, rij(), na, "%s", serie_sleutel(ser_rec.nr));
  const int col = KOL_MAAT + 1 + scr_print(A_LABEL, rij(), KOL_MAAT, "%s", txt(T_MUT_MAAT));
  scr_print(A_WAARDE, rij(), col, "%-3.3s", mut_maattekst(ser_rec.maatsoort, maat));
  scr_flush(0);
}

/// The count, at most what there is; one again when the operator leaves the field.
void vraag_aantal(int32_t* stuks, int32_t aanwezig, const Tekst& soort) {
  for (;;) {
    INGAVE(rij(), KOL_AANTAL, "5l,EP", &K_CANCEL, stuks);
    if (weg_toets()) *stuks = 1;
    if (*stuks <= aanwezig) break;
    scr_error("%s %d %s", txt(T_MUT_HEEFT), aanwezig, txt(soort));
  }
  toon_aantal(*stuks);
}

/// Moves pieces until the count is used up; how many moved.
int32_t verplaats(const MutIngang& in, int mode, uint8_t maat, const Soort& soort) {
  std::vector<MutStuk> stukken;
  if (!soort.zoek(in, maat, &stukken)) return 0;
  const size_t aantal = std::min(stukken.size(), static_cast<size_t>(std::max(in.stuks, 0)));
  for (size_t i = 0; i < aantal; ++i) soort.verplaats(in, mode, &stukken[i]);
  const auto gedaan = static_cast<int32_t>(aantal);
  if (gedaan == in.stuks) return gedaan;
  MutFeit feit{};
  feit.maat = mut_maattekst(ser_rec.maatsoort, maat);
  feit.stuks = in.stuks - gedaan;
  mut_weiger(mut_voor(in), REDEN_TEKORT, feit);
  return gedaan;
}

/// With the series locked: count, question, move. The series is written when anything moved.
bool onder_slot(MutIngang* in, int mode, uint8_t maat, const Soort& soort) {
  std::vector<MutStuk> stukken;
  bool goed = soort.zoek(*in, maat, &stukken);
  if (goed && stukken.empty()) scr_error("%s %s", mut_voor(*in), txt(soort.geen));
  const auto aanwezig = static_cast<int32_t>(stukken.size());
  goed = goed && aanwezig > 0 &&
         mut_akkoord(*in, [&] { vraag_aantal(&in->stuks, aanwezig, soort.stuks); });
  const int32_t gedaan = goed ? verplaats(*in, mode, maat, soort) : 0;
  if (gedaan == 0) {
    serie_los();
    return false;
  }
  serie_schrijf();
  in->stuks = gedaan;
  return true;
}

bool route(MutIngang* in, int mode, const Soort& soort) {
  mut_los();
  in->stuks = 1;
  DtEan ean{};
  if (!zoek_serie(*in, &ean)) return false;
  toon(*in, ean.maat);
  const Serienr nr = ser_rec.nr;
  if (!serie_probeer(nr)) {
    scr_error("%s %s", mut_voor(*in), txt(T_MUT_BEZET));
    return false;
  }
  return onder_slot(in, mode, ean.maat, soort);
}

}  // namespace

bool mut_voorraad(const MutIngang& in, uint8_t maat, std::vector<MutStuk>* uit) {
  return verzamel(maat, uit, [&](const Etiket& e) {
    return e.status == ETI_VOORRAAD && e.onderweg == 0 && e.filiaal == in.vanfil;
  });
}

bool mut_onderweg(const MutIngang& in, uint8_t maat, std::vector<MutStuk>* uit) {
  const bool goed = verzamel(maat, uit, [&](const Etiket& e) {
    const bool dit_paar = e.onderweg != 0 && e.filiaal == in.vanfil && e.doel == in.naarfil;
    return dit_paar || sinds_vandaag(e);
  });
  std::erase_if(*uit, [&](const MutStuk& s) {
    return s.etiket.onderweg == 0 && !mut_go_loopt(in, s.nummer);
  });
  std::stable_partition(uit->begin(), uit->end(),
                        [](const MutStuk& s) { return s.etiket.onderweg != 0; });
  return goed;
}

bool mut_maat(MutIngang* in, int mode) { return route(in, mode, ZENDING); }
bool mut_ontv_maat(MutIngang* in) { return route(in, 0, BEVESTIGING); }
