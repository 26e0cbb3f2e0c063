// The change screen: the fields of one line, or of all lines of the list at once, as they stand and
// as they become. A field that was accepted is written at once to every line.
#include <algorithm>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/dc_wijzig.h"
#include "sub/opdrnr.h"
#include "sub/pghdl.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int K_NUMMER = 2, K_LABEL = 5, K_HUIDIG = 28, K_NIEUW = 42;
constexpr int R_KOP = 5, R_VELD = 6, R_KEUZE = 12;

// What a field holds, how it is asked and put in a line -------------------------------------------

/// Asks one field into `r`; false when the operator left.
bool voer_datum(int rij, DcRegel* r) {
  uint16_t datum = r->datum;
  INGAVE(rij, K_NIEUW, "D,E", &K_CANCEL, &datum);
  if (!weg_toets()) r->datum = datum;
  return !weg_toets();
}
bool voer_van(int rij, DcRegel* r) {
  key_allow(K_CANCEL);
  fil_field(rij, K_NIEUW, "EZP", &r->vanfil);
  return !weg_toets();
}
bool voer_naar(int rij, DcRegel* r) {
  key_allow(K_CANCEL);
  fil_field(rij, K_NIEUW, "EZP", &r->naarfil);
  return !weg_toets();
}
bool voer_nummer(int rij, DcRegel* r) {
  char tekst[12] = "";
  if (r->nummer != 0 && r->nummer < DCW_ALLE_NUMMERS)
    str_printf(tekst, sizeof tekst, "%lu", r->nummer);
  for (;;) {
    INGAVE(rij, K_NIEUW, "8s[0123456789],", &K_CANCEL, tekst);
    if (weg_toets()) return false;
    if (tekst[0] == 0 || strcmp(tekst, "0") == 0 || opdrnr_norm(tekst)) break;
    scr_error("%s", txt(T_OPDRNR_ONGELDIG));
  }
  r->nummer = static_cast<uint32_t>(strtoul(tekst, nullptr, 10));
  return true;
}
bool voer_aantal(int rij, DcRegel* r) {
  uint16_t aantal = r->stuks > 999 ? uint16_t{0} : static_cast<uint16_t>(r->stuks);
  INGAVE(rij, K_NIEUW, "3u,EP", &K_CANCEL, &aantal);
  if (!weg_toets()) r->stuks = aantal;
  return !weg_toets();
}

std::string toon_datum(const DcRegel& r) { return r.datum == 0 ? "" : date_show(r.datum); }
std::string toon_van(const DcRegel& r) { return str_format("%d", r.vanfil); }
std::string toon_naar(const DcRegel& r) { return str_format("%d", r.naarfil); }
std::string toon_nummer(const DcRegel& r) {
  return r.nummer == 0 ? "" : str_format("%lu", r.nummer);
}
std::string toon_aantal(const DcRegel& r) {
  return r.stuks == DC_GEEN_AANTAL ? "" : str_format("%lu", r.stuks);
}

void neem_datum(const DcRegel& van, DcRegel* naar) { naar->datum = van.datum; }
void neem_van(const DcRegel& van, DcRegel* naar) { naar->vanfil = van.vanfil; }
void neem_naar(const DcRegel& van, DcRegel* naar) { naar->naarfil = van.naarfil; }
void neem_nummer(const DcRegel& van, DcRegel* naar) { naar->nummer = van.nummer; }
void neem_aantal(const DcRegel& van, DcRegel* naar) { naar->stuks = van.stuks; }

struct Veld {
  const Tekst* bij_zenden;
  const Tekst* bij_ontvangen;
  bool (*voer_in)(int rij, DcRegel*);
  std::string (*toon)(const DcRegel&);
  void (*neem)(const DcRegel& van, DcRegel* naar);
};
constexpr Veld VELDEN[] = {
    {&T_DCW_VERZENDDATUM, &T_DCW_ONTVANGSTDATUM, voer_datum, toon_datum, neem_datum},
    {&T_DCW_VERZENDFILIAAL, &T_DCW_VERZENDFILIAAL, voer_van, toon_van, neem_van},
    {&T_DCW_BESTEMMING, &T_DCW_ONTVANGSTFILIAAL, voer_naar, toon_naar, neem_naar},
    {&T_DCW_OPDRACHTNUMMER, &T_DCW_DOCUMENTNUMMER, voer_nummer, toon_nummer, neem_nummer},
    {&T_DCW_AANTAL, &T_DCW_AANTAL, voer_aantal, toon_aantal, neem_aantal},
};
constexpr int AANTAL = static_cast<int>(std::size(VELDEN));
/// The last field is none of a line that is one piece.
constexpr int ZONDER_AANTAL = AANTAL - 1;

// The lines in hand -------------------------------------------------------------------------------

struct Wijziging {
  Dcw& d;
  std::span<const uint32_t> regels;
  DcRegel oud{}, nieuw{};  // of the first line
  int velden = AANTAL;     // that may be changed
  bool gezet[AANTAL] = {};

  bool een() const { return regels.size() == 1; }
  /// The count stays off a line that is one piece, also when it is in a list with others.
  bool raakt(const Veld& v, const DcRegel& r) const {
    return v.neem != neem_aantal || !dcw_artikel(d, r).per_stuk;
  }
};

/// A value that all lines have, or nothing.
std::string huidig(const Wijziging& w, const Veld& v) {
  const std::string eerste = v.toon(w.oud);
  DcRegel r;
  for (const uint32_t regel : w.regels)
    if (!dcw_lees(w.d, regel, &r) || v.toon(r) != eerste) return "";
  return eerste;
}

/// No line would go from a branch to itself.
bool mag(const Wijziging& w, const Veld& v) {
  if (v.neem != neem_van && v.neem != neem_naar) return true;
  DcRegel r;
  for (const uint32_t regel : w.regels) {
    if (!dcw_lees(w.d, regel, &r)) continue;
    v.neem(w.nieuw, &r);
    if (r.vanfil == r.naarfil) return false;
  }
  return true;
}

void schrijf(const Wijziging& w, const Veld& v) {
  DcRegel r;
  for (const uint32_t regel : w.regels) {
    if (!dcw_lees(w.d, regel, &r) || !w.raakt(v, r)) continue;
    v.neem(w.nieuw, &r);
    dcw_schrijf(w.d, regel, r);
  }
}

// The screen --------------------------------------------------------------------------------------

void toon_serie(const Wijziging& w) {
  const DcwArtikel a = dcw_artikel(w.d, w.oud);
  scr_print(A_WAARDE, 2, 2, "%-.13s", std::string_view(w.oud.code, sizeof w.oud.code));
  if (a.stand != DcwStand::goed) {
    scr_print(A_WAARDE, 3, 2, "*** %s ***",
              txt(a.stand == DcwStand::serie_weg ? T_DCW_SERIE_WEG : T_DCW_ETIKET_WEG));
    return;
  }
  int kol = 3 + scr_print(A_LABEL, 3, 2, "%s", txt(T_ADVO_SERIENUMMER));
  kol += 2 + scr_print(A_WAARDE, 3, kol, "%s", serie_tekst(a.nr));
  kol += 1 + scr_print(A_LABEL, 3, kol, "%s", txt(T_ZOEK_MAAT));
  scr_print(A_WAARDE, 3, kol, "%s", veld_tekst(a.maat, sizeof a.maat));
}

/// Some line has a count.
bool telt(const Wijziging& w) {
  DcRegel r;
  return std::ranges::any_of(w.regels, [&](uint32_t regel) {
    return dcw_lees(w.d, regel, &r) && !dcw_artikel(w.d, r).per_stuk;
  });
}

void toon(Wijziging& w) {
  if (!telt(w)) w.velden = ZONDER_AANTAL;
  const bool zenden = w.oud.soort == DC_ZENDEN;
  scr_print(A_LABEL, 1, 2, "%s", txt(zenden ? T_DCW_VERZENDING : T_DCW_ONTVANGST));
  if (w.een())
    toon_serie(w);
  else
    scr_print(A_WAARDE, 2, 2, "%lu %s", static_cast<uint32_t>(w.regels.size()),
              txt(T_DCW_TRANSACTIES));
  scr_print(A_LABEL, R_KOP, K_HUIDIG, "%s", txt(T_DCW_HUIDIG));
  scr_print(A_LABEL, R_KOP, K_NIEUW, "%s", txt(T_DCW_NIEUW));
  for (int i = 0; i < w.velden; ++i) {
    const Veld& v = VELDEN[i];
    scr_print(A_WAARDE, R_VELD + i, K_NUMMER, "%d", i + 1);
    scr_print(A_LABEL, R_VELD + i, K_LABEL, "%s", txt(zenden ? *v.bij_zenden : *v.bij_ontvangen));
    scr_print(A_WAARDE, R_VELD + i, K_HUIDIG, "%s", huidig(w, v));
  }
}

void wijzig_veld(Wijziging& w, int veld) {
  const Veld& v = VELDEN[veld];
  const int rij = R_VELD + veld;
  const DcRegel stond = w.nieuw;
  for (;;) {
    if (!v.voer_in(rij, &w.nieuw)) {
      w.nieuw = stond;
      break;
    }
    if (mag(w, v)) {
      schrijf(w, v);
      w.gezet[veld] = true;
      break;
    }
    scr_error("%s",
              txt(w.oud.soort == DC_ZENDEN ? T_DCW_GELIJK_BESTEMMING : T_DCW_GELIJK_ONTVANGST));
  }
  scr_clreol(rij, K_NIEUW);
  if (w.gezet[veld]) scr_print(A_WAARDE, rij, K_NIEUW, "%s", v.toon(w.nieuw));
}

}  // namespace

void dcw_wijzig(Dcw& d, std::span<const uint32_t> regels) {
  Wijziging w{d, regels};
  if (regels.empty() || !dcw_lees(d, regels.front(), &w.oud)) return;
  w.nieuw = w.oud;
  const IngBewaar bewaar;
  const Venster venster(4, 8, 15, 66);
  win_title(nullptr);
  toon(w);
  const int kol = 3 + scr_print(A_LABEL, R_KEUZE, 2, "%s", txt(T_SVD_UW_KEUZE));
  for (;;) {
    int16_t keuze = 0;
    scr_ctx->ing->min = 1;
    scr_ctx->ing->max = w.velden;
    INGAVE(R_KEUZE, kol, "1d,IEPA", &K_CANCEL, &keuze);
    if (weg_toets()) return;
    wijzig_veld(w, keuze - 1);
  }
}
