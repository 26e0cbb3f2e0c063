// The advice matrix screen: the loop over its views and codes, and what is done to a whole series.
// The series stays locked by the command that shows it; nothing but replenishment information is
// written here.
#include "sub/servrd.h"

#include <algorithm>
#include <memory>
#include <new>

#include "main/controle.h"
#include "scr/scr.h"
#include "sub/adv_krit.h"
#include "sub/adv_opdracht.h"
#include "sub/adv_vul.h"
#include "sub/ioeti.h"
#include "sub/servrd_intern.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr const char* MODULE = "servrd";
enum Geheugen { GEEN_BEELD = 1, GEEN_MATRIX };

static_assert(SVD_VERDER == ADV_VERDER && SVD_TERUG == ADV_TERUG && SVD_ANDER == ADV_ANDER);

struct Zicht {
  int code;
  const Tekst* naam;
};
constexpr Zicht ZICHTEN[] = {
    {SVD_DISTRIBUTIE, &T_SVD_O_DISTRIBUTIE}, {SVD_AANVUL, &T_SVD_O_AANVUL},
    {SVD_SWITCH, &T_SVD_O_SWITCH},           {SVD_HERVERDEEL, &T_SVD_O_HERVERDEEL},
    {SVD_AANVULINFO, &T_SVD_O_AANVULINFO},   {SVD_VOORRAAD, &T_SVD_O_VOORRAAD},
    {SVD_BESCHIKBAAR, &T_SVD_O_BESCHIKBAAR}, {SVD_MUTATIES, &T_SVD_O_MUTATIES},
};

/// The display record, and the command's own terminal back when it goes.
struct Beeld {
  std::unique_ptr<Svd> s;
  Beeld(const char* titel, int slot) : s(new (std::nothrow) Svd) {
    if (s == nullptr) ctl_nomem(MODULE, GEEN_BEELD);
    s->titel = titel;
    s->slot = slot;
    try {
      s->tabel.resize(advies.m_voorraad.size());
      s->beweging.resize(advies.m_voorraad.size());
    } catch (const std::bad_alloc&) {
      ctl_nomem(MODULE, GEEN_MATRIX);
    }
  }
  ~Beeld() {
    if (s->breed) win_close();
    scr_clreol(scr_ctx->lines - 1, 1);
    scr_clreol(scr_ctx->lines, 1);
  }
  Beeld(const Beeld&) = delete;
  Beeld& operator=(const Beeld&) = delete;
};

uint16_t laatste_ontvangst() {
  uint16_t datum = 0;
  for (EtiReeks r(ser_rec); r.volgende();) {
    const uint8_t status = r.etiket.status;
    if (status >= ETI_VOORRAAD && status <= ETI_CORRECTIES)
      datum = std::max(datum, r.etiket.ontdat);
  }
  return datum;
}

/// The first kind of advice that the series has, or its stock.
int eerste_zicht() {
  for (const Zicht& z : ZICHTEN) {
    if (svd_heeft(z.code)) return z.code;
  }
  return SVD_VOORRAAD;
}

/// One view: shown under its name until the operator chooses; what he chose.
int zicht(Svd& s, int code, const char* naam) {
  if (code != s.zicht || *s.naam == '\0') {
    s.sub = code == SVD_VOORRAAD && svd_muteert() ? SVD_VERWERKT : SVD_KAAL;
    s.vers = true;
  }
  s.zicht = code;
  s.naam = naam;
  svd_tabel(s);
  svd_terminal(s);
  return svd_kies(s);
}

// What is done in a view --------------------------------------------------------------------------

void bereken(const Svd& s) { adv_bereken(advies, adv_rec, svd_vraag(s.slot)); }

void overnemen(Svd& s) {
  const MaatMatrix* const r = svd_uitkomst(s.zicht);
  if (r == nullptr || !svd_heeft(s.zicht)) return;
  if (svd_muteert()) {
    svd_zet(s, txt(T_SVD_BESTAAND), advies.m_voorlopig, &advies.m_voorlopig);
    s.cursor = false;
    svd_teken(s);
    s.cursor = true;
    scr_clreol(scr_ctx->lines, 1);
    if (!scr_confirm(scr_ctx->lines - 1, 1, "%s", txt(T_SVD_OVERSCHRIJVEN))) return;
  }
  advies.m_voorlopig = *r;
  svd_tel(advies.m_voorlopig);
  s.sub = SVD_VERWERKT;
}

void wis_info(Svd& s) {
  if (!scr_confirm(scr_ctx->lines - 1, 1, "%s", txt(T_SVD_WISINFO))) return;
  aanvul_wissen(ser_rec.nr);
  matrix_wis(advies.m_aanvul);
  bereken(s);
  s.vers = true;
}

/// Other days of sales need the labels again; what the operator has entered stays.
bool herlaad() try {
  Advies oud = advies;
  const bool gelezen = adv_vul();
  if (gelezen) {
    advies.m_voorlopig = std::move(oud.m_voorlopig);
  } else {
    advies = std::move(oud);
  }
  return gelezen;
} catch (const std::bad_alloc&) {
  ctl_nomem(MODULE, GEEN_MATRIX);
}

void criteria(Svd& s) {
  const AdvRec oud = adv_rec;
  hdr_line('C', "%s", s.titel);
  adv_scherm(s.slot);
  s.vers = true;
  if (adv_rec.vrk_dagen != oud.vrk_dagen && !herlaad()) {
    adv_rec = oud;
    hdr_line('C', "%s", s.titel);
    svd_meld(T_SVD_NIET_GELEZEN);
    return;
  }
  advies.bron_soort = adv_rec.bron_soort;
  adv_verzamelingen(advies, adv_rec.vanuit_filialen, adv_rec.aanvul_filialen, merk_rec.filialen);
  bereken(s);
}

/// Does what a code asks; the code of the view to go on with.
int handel(Svd& s, int code) {
  switch (code) {
    case SVD_EAN:
    case SVD_SERIE:
      svd_meld(T_SVD_NIET_BESCHIKBAAR);
      break;
    case SVD_KAAL:
    case SVD_VERWERKT:
      s.sub = code;
      break;
    case SVD_VERKOPEN:
    case SVD_ZONDER:
      s.verkopen = code == SVD_VERKOPEN;
      s.vers = true;
      break;
    case SVD_UITLEG:
      svd_uitleg(s);
      break;
    case SVD_INFO:
      return SVD_AANVULINFO;
    case SVD_OVERNEMEN:
      overnemen(s);
      break;
    case SVD_WISINFO:
      wis_info(s);
      return s.zicht == SVD_AANVULINFO && !svd_heeft_info() ? eerste_zicht() : s.zicht;
    case SVD_CRITERIA:
      criteria(s);
      break;
    case SVD_ACTUEEL:
      return SVD_MUTATIES;
    case SVD_WIJZIGEN:
      if (!svd_wijzig(s)) break;
      s.naam = "";  // the stock opens with what was changed
      return SVD_VOORRAAD;
    case SVD_OMHOOG:
    case SVD_LINKS:
    case SVD_OMLAAG:
    case SVD_RECHTS:
      svd_schuif(s, code);
      break;
    default:
      break;
  }
  return s.zicht;
}

bool verlaat(int code) {
  return code == SVD_EINDE || code == SVD_VERDER || code == SVD_TERUG || code == SVD_ANDER;
}

}  // namespace

int servrd(const char* titel, int slot) {
  if (scr_ctx == nullptr || advies.filialen() < 1) return SVD_EINDE;
  const Beeld beeld(titel, slot);
  Svd& s = *beeld.s;
  s.ontdat = laatste_ontvangst();
  int code = eerste_zicht();
  while (!verlaat(code)) {
    const auto* z = std::ranges::find(ZICHTEN, code, &Zicht::code);
    code = z == std::end(ZICHTEN) ? handel(s, code) : zicht(s, code, svd_kale_tekst(txt(*z->naam)));
  }
  return code;
}
