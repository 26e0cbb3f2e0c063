// What the views of the advice matrix show: their tables, titles and moves. Nothing is drawn here.
#include <algorithm>
#include <cstring>

#include "sub/adv_krit.h"
#include "sub/adv_vul.h"
#include "sub/servrd_intern.h"
#include "sub/teksten.h"

namespace {

template <class Op>
void reken(MaatMatrix& uit, const MaatMatrix& bij, Op op) {
  for (size_t b = 0; b < uit.size() && b < bij.size(); ++b) {
    std::ranges::transform(uit[b], bij[b], uit[b].begin(), op);
  }
}

bool is_leeg(const MaatMatrix& m) {
  return m.size() != advies.m_voorraad.size() || adv_leeg(advies, m);
}

/// The advice of this view was taken over as it stands.
bool uitgevoerd(const MaatMatrix& r) {
  if (r.size() != advies.m_voorlopig.size()) return false;
  for (size_t b = 0; b + 1 < r.size(); ++b) {
    for (const uint8_t s : advies.maten) {
      if (s < MATEN && r[b][s] != advies.m_voorlopig[b][s]) return false;
    }
  }
  return true;
}

struct Titels {
  int zicht;
  const Tekst *advies, *bij, *uit, *geen;
};
/// Without a title of its own a worked-in advice keeps that of the advice.
constexpr Titels TITELS[] = {
    {SVD_AANVUL, &T_SVD_AANVUL, &T_SVD_AANVUL_BIJ, &T_SVD_AANVUL_UIT, &T_SVD_GEEN_AANVUL},
    {SVD_SWITCH, &T_SVD_SWITCH, &T_SVD_SWITCH_BIJ, &T_SVD_SWITCH_UIT, &T_SVD_GEEN_SWITCH},
    {SVD_HERVERDEEL, &T_SVD_HERVERDEEL, &T_SVD_HERVERDEEL, &T_SVD_HERVERDEEL_UIT,
     &T_SVD_GEEN_HERVERDEEL},
    {SVD_DISTRIBUTIE, &T_SVD_DISTRIBUTIE, &T_SVD_DISTRIBUTIE, &T_SVD_HERVERDEEL_UIT,
     &T_SVD_GEEN_DISTRIBUTIE},
};
/// A group without a warehouse knows branches only: a switch there is called a redistribution.
constexpr Titels ZONDER_MAGAZIJN{SVD_SWITCH, &T_SVD_HERVERDEEL, &T_SVD_HERVERDEEL,
                                 &T_SVD_HERVERDEEL_UIT, &T_SVD_GEEN_SWITCH};

const Titels& titels(int zicht) {
  if (zicht == SVD_SWITCH && advies.groep.magazijn == FILIAAL_GEEN) return ZONDER_MAGAZIJN;
  return *std::ranges::find(TITELS, zicht, &Titels::zicht);
}

void advies_tabel(Svd& s, const MaatMatrix& r) {
  const Titels& t = titels(s.zicht);
  if (!svd_heeft(s.zicht)) {
    svd_zet(s, txt(*t.advies), r, nullptr);
    s.leeg = txt(*t.geen);
    s.vers = true;
    return;
  }
  const bool bij = s.sub == SVD_VERWERKT;
  std::string kop = txt(!bij ? *t.advies : uitgevoerd(r) ? *t.uit : *t.bij);
  if (s.zicht == SVD_HERVERDEEL) {
    kop += " ";
    kop += txt((advies.adv_kenmerk & ADV_RESTANT) != 0 ? T_SVD_RESTANT : T_SVD_SERIE);
  }
  svd_zet(s, kop, bij ? advies.m_voorraad : r, &r);
  if (!bij) return;
  reken(s.tabel, r, svd_plus);
  svd_tel(s.tabel);
}

void voorraad_tabel(Svd& s) {
  const std::string vrd = std::string(" ") + txt(T_SVD_VRD);
  if (s.zicht == SVD_MUTATIES) {
    return svd_zet(s, txt(T_SVD_MUTATIES), advies.m_voorlopig, &advies.m_voorlopig);
  }
  if (s.zicht == SVD_BESCHIKBAAR) {
    svd_zet(s, txt(T_SVD_BESCHIKBAAR) + vrd, advies.m_voorraad, nullptr);
    reken(s.tabel, advies.m_uit, svd_min);
    return svd_tel(s.tabel);
  }
  const bool bij = s.sub == SVD_VERWERKT && svd_muteert();
  svd_zet(s, txt(bij ? T_SVD_NIEUW : T_SVD_HUIDIG) + vrd, advies.m_voorraad,
          bij ? &advies.m_voorlopig : nullptr);
  if (!bij) return;
  reken(s.tabel, advies.m_voorlopig, svd_plus);
  svd_tel(s.tabel);
}

}  // namespace

void svd_tel(MaatMatrix& m) {
  if (m.empty()) return;
  Maatrij& keten = m.back();
  keten.fill(0);
  for (size_t b = 0; b + 1 < m.size(); ++b) {
    m[b][0] = 0;
    for (size_t s = 1; s < MATEN; ++s) {
      m[b][0] = svd_plus(m[b][0], m[b][s]);
      keten[s] = svd_plus(keten[s], m[b][s]);
    }
    keten[0] = svd_plus(keten[0], m[b][0]);
  }
}

void svd_zet(Svd& s, std::string kop, const MaatMatrix& tabel, const MaatMatrix* beweging) {
  s.kop = std::move(kop);
  if (!s.leeg.empty()) s.vers = true;
  s.leeg.clear();
  const size_t rijen = advies.m_voorraad.size();
  s.tabel = tabel;
  s.tabel.resize(rijen);
  if (beweging != nullptr) {
    s.beweging = *beweging;
    s.beweging.resize(rijen);
  } else {
    s.beweging.assign(rijen, Maatrij{});
  }
  svd_tel(s.tabel);
  svd_tel(s.beweging);
}

void svd_tabel(Svd& s) {
  if (const MaatMatrix* r = svd_uitkomst(s.zicht)) return advies_tabel(s, *r);
  if (s.zicht == SVD_AANVULINFO) {
    return svd_zet(s, txt(T_SVD_AANVULINFO), advies.m_aanvul, nullptr);
  }
  voorraad_tabel(s);
}

MaatMatrix* svd_uitkomst(int zicht) {
  switch (zicht) {
    case SVD_AANVUL:
    case SVD_DISTRIBUTIE:
      return &advies.r_aanvul;
    case SVD_SWITCH:
      return &advies.r_switch;
    case SVD_HERVERDEEL:
      return &advies.r_herverdeel;
    default:
      return nullptr;
  }
}

bool svd_heeft(int zicht) {
  const int bits = zicht == SVD_AANVUL        ? ADV_AANVUL
                   : zicht == SVD_SWITCH      ? ADV_SWITCH
                   : zicht == SVD_HERVERDEEL  ? ADV_RESTANT | ADV_OVERIG
                   : zicht == SVD_DISTRIBUTIE ? ADV_DISTRIBUTIE
                                              : 0;
  return (advies.adv_kenmerk & bits) != 0;
}

bool svd_muteert() { return !is_leeg(advies.m_voorlopig); }
bool svd_heeft_info() { return !is_leeg(advies.m_aanvul); }

const MaatMatrix& svd_vraag(int slot) {
  return slot == ADV_HANDMATIG ? advies.m_aanvul : advies.m_vrk_periode;
}
const MaatMatrix& svd_verkocht(int slot) {
  return slot == ADV_MUTATIES ? advies.m_vrk_periode : advies.m_verkocht;
}

std::string svd_maattekst(int maat) {
  if (maat < 0 || maat >= static_cast<int>(advies.maten.size())) return "";
  MaatRec rec;
  if (!mtzoek(adv_maten, advies.maten[static_cast<size_t>(maat)], &rec))
    return str_format("%3d", rec.maat);
  return std::string(rec.tekst, strnlen(rec.tekst, sizeof rec.tekst));
}
