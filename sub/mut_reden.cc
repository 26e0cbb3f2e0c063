// Why a piece is refused, or moves with a warning: one table for labels and sizes.
#include <array>

#include "isam/base.h"
#include "scr/scr.h"
#include "sub/iomaat.h"
#include "sub/mut_intern.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

std::string met_serie(const std::string& tekst, const MutFeit& f) {
  return str_format("%s (%s)", tekst, serie_sleutel(f.nr));
}

template <const Tekst& T>
std::string kaal(const MutFeit&) {
  return txt(T);
}
template <const Tekst& T>
std::string serie(const MutFeit& f) {
  return met_serie(txt(T), f);
}
template <const Tekst& T>
std::string op_datum(const MutFeit& f) {
  return str_format("%s %s %s", txt(T), txt(T_MUT_DD), date_show(f.datum));
}
template <const Tekst& T>
std::string tussen(const MutFeit& f) {
  return met_serie(str_format("%s %hu %s %hu", txt(T), f.filiaal, txt(T_MUT_R_NAAR), f.doel), f);
}

std::string inventaris(const MutFeit& f) {
  return str_format("%s %s %hu", txt(T_MUT_R_INVENTARISATIE), txt(T_MUT_R_FILIAAL), f.filiaal) +
         str_format(" %s", date_show(f.datum));
}

std::string ongeldige_status(const MutFeit& f) {
  const bool verkocht = f.status == ETI_VERKOPEN, correctie = f.status == ETI_CORRECTIES;
  const char* wat = txt(verkocht ? T_MUT_VRK : correctie ? T_MUT_COR : T_MUT_NOT);
  std::string tekst = str_format("%s:", txt(T_MUT_R_STATUS)) +
                      str_format(" %s %s %hu", wat, txt(T_MUT_FIL), f.filiaal);
  if (verkocht || correctie) tekst += str_format(" %s", date_show(f.datum));
  return met_serie(tekst, f);
}

std::string ander_filiaal(const MutFeit& f) {
  return str_format("%s (%hu)", txt(T_MUT_R_ANDER_FILIAAL), f.filiaal);
}

std::string maat(const MutFeit& f) { return str_format("%s %-3.3s", txt(T_MUT_MAAT), f.maat); }
std::string registratie(const MutFeit& f) {
  return str_format("%s %s", maat(f), txt(T_MUT_R_MAATREGISTRATIE));
}
std::string serie_registratie(const MutFeit& f) { return met_serie(registratie(f), f); }
std::string geen_ean(const MutFeit& f) {
  return str_format("%s %s", registratie(f), txt(T_MUT_R_GEEN_EAN));
}
std::string niet_verplaatst(const MutFeit& f) {
  return str_format("%s %ld %s", maat(f), f.stuks, txt(T_MUT_R_NIET_VERPLAATST));
}
std::string tekort(const MutFeit& f) {
  return str_format("%s %s", niet_verplaatst(f), txt(T_MUT_R_TEKORT));
}
std::string geen_registratie(const MutFeit& f) {
  return str_format("%s %s", txt(T_MUT_R_GEEN_REGISTRATIE), niet_verplaatst(f));
}

using Maak = std::string (*)(const MutFeit&);
constexpr std::array<Maak, MUT_REDENEN> REDENEN = {
    kaal<T_MUT_R_ETIKET>,
    kaal<T_VRAAG_ONBEKEND>,
    inventaris,
    ongeldige_status,
    op_datum<T_MUT_R_VERKOCHT>,
    op_datum<T_MUT_R_GECORRIGEERD>,
    ander_filiaal,
    serie<T_MUT_R_REEDS_AANWEZIG>,
    tussen<T_MUT_R_ONDERWEG>,
    tussen<T_MUT_R_REEDS_ONDERWEG>,
    serie<T_MUT_R_DOCUMENT_FOUT>,
    serie<T_MUT_R_DOCUMENT_GEEN>,
    serie<T_MUT_R_NIET_ONDERWEG>,
    serie_registratie,
    geen_ean,
    tekort,
    geen_registratie,
    kaal<T_MUT_R_EAN>,
    kaal<T_MUT_R_MAATNUMMER>,
    kaal<T_MUT_R_KLEIN_ARTIKEL>,
};

}  // namespace

std::string mut_reden(int reden, const MutFeit& feit) {
  if (reden < 1 || reden > MUT_REDENEN) return {};
  return REDENEN[static_cast<size_t>(reden - 1)](feit);
}

MutFeit mut_feit(const Etiket& e) {
  MutFeit f{};
  f.nr = e.nr;
  f.status = e.status;
  f.filiaal = e.filiaal;
  f.doel = e.doel;
  f.datum = e.vrkdat;
  f.maat = mut_maattekst(e.maatsoort, e.maat);
  return f;
}

void mut_weiger(const std::string& voor, int reden, const MutFeit& feit) {
  scr_error("%s %s", voor, mut_reden(reden, feit));
}

std::string mut_voor(const MutIngang& in) {
  return in.soort == 0 ? str_format("<%ld>", in.nummer) : str_format("<%-.13s>", in.code);
}

std::string mut_maattekst(uint8_t maatsoort, uint8_t index) {
  MaatRec rec{};
  rec.maat = index;
  bool er = false;
  if (maat_land() != 0 && maatsoort != 0) {
    MaatHandle* type = mtopen(maat_land(), maatsoort, 0);
    er = type != nullptr && mtread(type, 'R', &rec, 1);
    if (type != nullptr) mtclose(type);
  }
  if (!er) return str_format("%d", index);
  char tekst[sizeof rec.tekst + 1];
  str_printf(tekst, sizeof tekst, "%.3s", rec.tekst);
  return str_trim(tekst);
}
