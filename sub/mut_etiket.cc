// A label that is sent, or received although nobody sent it. Its series stands locked from the
// first check to the end of the move.
#include "isam/base.h"
#include "scr/scr.h"
#include "sub/leesstam.h"
#include "sub/mut_intern.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int KOL_SERIE = 31;

/// A label of an inventory refuses the send, but its series stays locked until the next code.
bool staat_vast = false;

bool lees(MutStuk* stuk) {
  int32_t nummer = stuk->nummer;
  stuk->etiket = Etiket{};
  return ioeti('R', &nummer, &stuk->etiket);
}

int toon_een(int col, const Tekst& label, const std::string& waarde) {
  const int rij = scr_ctx->lines - MUT_RIJ_ARTIKEL;
  col += 1 + scr_print(A_LABEL, rij, col, "%s", txt(label));
  return col + 2 + scr_print(A_WAARDE, rij, col, "%s", waarde);
}

void toon(const Etiket& e) {
  int col = toon_een(KOL_SERIE, T_MUT_SERIE, serie_sleutel(e.nr));
  col = toon_een(col, T_MUT_MAAT, str_format("%-3.3s", mut_maattekst(e.maatsoort, e.maat)));
  toon_een(col, T_MUT_FILIAAL, str_format("%d", e.filiaal));
  scr_flush(0);
}

/// What forbids a move of a single label, 0 nothing. Another holder is a warning only.
int toets(const MutIngang& in, const Etiket& e) {
  if (e.status == ETI_CORRECTIES && e.reden == 0) return REDEN_INVENTARISATIE;
  if (e.status != ETI_VOORRAAD) return REDEN_STATUS;
  if (e.onderweg != 0) {
    const bool dit_paar = e.filiaal == in.vanfil && e.doel == in.naarfil;
    return dit_paar ? REDEN_REEDS_ONDERWEG : REDEN_ONDERWEG;
  }
  if (e.filiaal == in.naarfil && e.filiaal != in.vanfil) return REDEN_REEDS_AANWEZIG;
  return 0;
}

/// The label may move; otherwise the reason stands there and the series is let go, or kept.
bool keur(const MutIngang& in, const Etiket& e) {
  const int reden = toets(in, e);
  if (reden != 0) {
    mut_weiger(mut_voor(in), reden, mut_feit(e));
    staat_vast = reden == REDEN_INVENTARISATIE;
    if (!staat_vast) serie_los();
    return false;
  }
  if (e.filiaal != in.vanfil) mut_weiger(mut_voor(in), REDEN_ANDER_FILIAAL, mut_feit(e));
  return true;
}

/// A label of a series with size registration stands for any piece of its size.
bool kies_stuk(const MutIngang& in, MutStuk* stuk) {
  std::string ean;
  std::vector<MutStuk> stukken;
  if (!mut_maatcode(in, stuk->etiket, &ean)) return false;
  if (!mut_voorraad(in, stuk->etiket.maat, &stukken)) return false;
  if (stukken.empty()) {
    mut_geen_stuk(ean, T_MUT_GEEN_IN_FILIAAL);
    return false;
  }
  *stuk = stukken.front();
  return true;
}

}  // namespace

Zending mut_zending(const MutIngang& in) {
  return {in.vanfil, in.naarfil, in.opdrachtnr, date_today(), 0};
}

void mut_los() {
  if (staat_vast) serie_los();
  staat_vast = false;
}

bool mut_neem(const MutIngang& in, MutStuk* stuk) {
  mut_los();
  stuk->nummer = in.nummer;
  if (!lees(stuk)) {
    mut_weiger(mut_voor(in), REDEN_ETIKET, {});
    return false;
  }
  const Serienr nr = stuk->etiket.nr;
  if (!serie_wacht(nr)) {
    mut_weiger(serie_sleutel(nr), REDEN_SERIE, {});
    return false;
  }
  toon(stuk->etiket);
  if (lees(stuk) && stuk->etiket.nr == nr) return true;  // the lock may have waited
  serie_los();
  mut_weiger(mut_voor(in), REDEN_ETIKET, {});
  return false;
}

bool mut_maatcode(const MutIngang& in, const Etiket& e, std::string* ean) {
  const MutFeit feit = mut_feit(e);
  mut_weiger(mut_voor(in), REDEN_MAATREGISTRATIE, feit);
  DtEan rec{};
  if (!lees_ean_maat(dtean, &rec, e.nr, e.maat)) {
    mut_weiger(mut_voor(in), REDEN_MAAT_GEEN_EAN, feit);
    return false;
  }
  *ean = veld_tekst(rec.code, sizeof rec.code);
  return true;
}

void mut_geen_stuk(const std::string& ean, const Tekst& tekst) {
  scr_error("%s <%-13.13s> %s", txt(T_MUT_MAATNUMMER), ean, txt(tekst));
}

void mut_verplaats(const MutIngang& in, int mode, MutStuk* stuk) {
  const Zending z = mut_zending(in);
  if (mode == MUT_ZENDEN)
    zend_etiket(stuk->nummer, &stuk->etiket, z, true);
  else
    ontvang_etiket(stuk->nummer, &stuk->etiket, z);
}

bool mut_etiket(MutIngang* in, int mode) {
  MutStuk stuk{};
  in->stuks = 1;
  if (!mut_neem(*in, &stuk)) return false;
  if (ser_rec.maatregistratie != 0) {
    if (!kies_stuk(*in, &stuk)) {
      serie_los();
      return false;
    }
  } else if (!keur(*in, stuk.etiket)) {
    return false;
  }
  if (!mut_akkoord(*in)) {
    serie_los();
    return false;
  }
  mut_verplaats(*in, mode, &stuk);
  serie_schrijf();
  return true;
}
