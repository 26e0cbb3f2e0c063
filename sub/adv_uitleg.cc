// Why a branch gets or gives what the advice says. The series is calculated again on a copy with a
// trail, from the fair-share score as it stood before; what the trail says of one branch and size
// becomes lines.
#include <algorithm>
#include <map>

#include "isam/formaat.h"
#include "sub/advies_intern.h"
#include "sub/teksten.h"

namespace {

constexpr Tekst REGELS[] = {T_ADVU_R_VERKOCHT,    T_ADVU_R_MINIMUM,  T_ADVU_R_SWITCH,
                            T_ADVU_R_RESTANT,     T_ADVU_R_GESPREID, T_ADVU_R_VAST,
                            T_ADVU_R_VERDEEL_MIN, T_ADVU_R_EERLIJK,  T_ADVU_R_REST};
constexpr Tekst REDENEN[] = {T_ADVU_NIEMAND, T_ADVU_N_ONTVANGER, T_ADVU_N_STREEF,
                             T_ADVU_N_VRAAG, T_ADVU_N_GENOEG,    T_ADVU_N_ZELF,
                             T_ADVU_N_STAND, T_ADVU_N_LATER,     T_ADVU_N_VRIJ};
static_assert(std::size(REGELS) == size_t(AdvRegel::verdeel_rest) + 1);
static_assert(std::size(REDENEN) == size_t(AdvReden::minder_vrij) + 1);

const char* in_woorden(AdvRegel r) { return txt(REGELS[static_cast<size_t>(r)]); }
const char* in_woorden(AdvReden r) { return txt(REDENEN[static_cast<size_t>(r)]); }

using Filialen = std::bitset<256>;

/// "1, 3-5"
std::string lijst(const Filialen& wie) {
  std::string uit;
  for (size_t b = 0; b < wie.size(); ++b) {
    if (!wie[b]) continue;
    size_t tot = b;
    while (tot + 1 < wie.size() && wie[tot + 1]) ++tot;
    if (!uit.empty()) uit += ", ";
    uit += std::to_string(b);
    if (tot > b) uit += (tot == b + 1 ? ", " : "-") + std::to_string(tot);
    b = tot;
  }
  return uit;
}

struct Uitleg {
  Advies k;  // the copy
  const MaatMatrix* r = nullptr;
  const MaatMatrix* vraag;
  int filiaal, maat;
  size_t breedte;
  std::vector<AdvStap> spoor;
  std::vector<std::string> regels;

  /// Broken at blanks; what follows stands two further in.
  void regel(std::string tekst, size_t inspringen = 0) {
    tekst.insert(0, inspringen, ' ');
    while (tekst.size() > breedte) {
      size_t eind = tekst.rfind(' ', breedte);
      if (eind == std::string::npos || eind <= inspringen + 2) eind = breedte;
      regels.push_back(tekst.substr(0, eind));
      tekst.erase(0, tekst[eind] == ' ' ? eind + 1 : eind);
      tekst.insert(0, inspringen + 2, ' ');
    }
    regels.push_back(tekst);
  }

  bool geldt(const AdvStap& s) const { return s.uitkomst == r && (maat == 0 || s.maat == maat); }
};

void cijfers(Uitleg& u) {
  const Advies& k = u.k;
  const auto n = [&](const MaatMatrix& m) { return cel(m, u.filiaal, u.maat); };
  u.regel(str_format(txt(T_ADVU_VOORRAAD), n(k.m_voorraad), n(k.m_uit), n(k.m_in),
                     eigen(k, u.filiaal, u.maat), vrij(k, u.filiaal, u.maat)));
  u.regel(str_format(txt(T_ADVU_VERKOCHT), n(k.m_vrk_periode), n(k.m_verkocht), n(*u.vraag),
                     int32_t{k.groep.minimum}, streef(k, u.filiaal)));
}

/// Who got nothing by this rule while the branch did or gave, each with the last reason.
void gepasseerd(Uitleg& u, AdvRegel regel) {
  Filialen kreeg;
  std::map<uint8_t, AdvReden> waarom;
  for (const AdvStap& s : u.spoor) {
    if (!u.geldt(s) || s.regel != regel) continue;
    kreeg.set(s.naar);
    if (s.naar != u.filiaal && s.van != u.filiaal) continue;
    for (const AdvGepasseerd& g : s.gepasseerd) waarom[g.filiaal] = g.reden;
  }
  std::map<AdvReden, Filialen> groepen;
  for (const auto& [b, reden] : waarom)
    if (!kreeg[b] && b != u.filiaal) groepen[reden].set(b);
  for (const auto& [reden, wie] : groepen)
    u.regel(str_format(txt(T_ADVU_GEPASSEERD), lijst(wie), in_woorden(reden)), 2);
}

Filialen gevers_van_restanten(const Uitleg& u) {
  Filialen wie;
  for (int b = 0; b < u.k.filialen(); ++b)
    if (in_set(u.k.bron, b) && vrij(u.k, b, u.maat) > 0) wie.set(static_cast<size_t>(b));
  return wie;
}

/// What the branch gets by one rule, a line for each branch that gives.
bool krijgt(Uitleg& u, AdvRegel regel) {
  std::map<uint8_t, int32_t> van;
  for (const AdvStap& s : u.spoor)
    if (u.geldt(s) && s.regel == regel && s.naar == u.filiaal) van[s.van] += s.stuks;
  for (const auto& [b, stuks] : van) {
    Filialen een;
    een.set(b);
    if (b == u.filiaal)
      u.regel(str_format(txt(T_ADVU_HOUDT), stuks, in_woorden(regel)));
    else if (b == FILIAAL_GEEN)
      u.regel(str_format(txt(T_ADVU_KRIJGT_REST), stuks, lijst(gevers_van_restanten(u)),
                         in_woorden(regel)));
    else
      u.regel(str_format(txt(T_ADVU_KRIJGT), stuks, lijst(een), in_woorden(regel)));
  }
  return !van.empty();
}

/// What it gives by one rule, a line for each number of pieces.
bool geeft(Uitleg& u, AdvRegel regel) {
  std::map<uint8_t, int32_t> aan;
  for (const AdvStap& s : u.spoor)
    if (u.geldt(s) && s.regel == regel && s.van == u.filiaal && s.naar != u.filiaal)
      aan[s.naar] += s.stuks;
  std::map<int32_t, Filialen, std::greater<>> groepen;
  for (const auto& [b, stuks] : aan) groepen[stuks].set(b);
  for (const auto& [stuks, wie] : groepen)
    u.regel(str_format(txt(wie.count() == 1 ? T_ADVU_GEEFT : T_ADVU_GEEFT_ELK), stuks, lijst(wie),
                       in_woorden(regel)));
  return !aan.empty();
}

bool geeft_restanten(Uitleg& u) {
  Filialen wie;
  for (const AdvStap& s : u.spoor)
    if (u.geldt(s) && s.van == FILIAAL_GEEN) wie.set(s.naar);
  const int32_t stuks = vrij(u.k, u.filiaal, u.maat);
  if (wie.none() || stuks <= 0 || !in_set(u.k.bron, u.filiaal)) return false;
  u.regel(str_format(txt(T_ADVU_GEEFT_REST), stuks, lijst(wie)));
  return true;
}

/// The rules that this result could have come from.
std::vector<AdvRegel> mogelijk(const Uitleg& u) {
  const bool nieuw = toets_nieuw(u.k);
  if (u.r == &u.k.r_aanvul && nieuw) return {AdvRegel::verdeel_eerlijk};
  if (nieuw) return {};
  if (u.r == &u.k.r_herverdeel)
    return {toets_restant(u.k) ? AdvRegel::restant : AdvRegel::switch_minimum};
  std::vector<AdvRegel> uit;
  if (magazijn_geeft(u.k)) uit = {AdvRegel::aanvul_verkocht, AdvRegel::aanvul_minimum};
  if (u.r == &u.k.r_switch) uit.push_back(AdvRegel::switch_minimum);
  return uit;
}

/// A giver of this rule has more than it keeps, after what it gave.
bool kan_nog(const Uitleg& u, AdvRegel regel) {
  const bool wissel = regel == AdvRegel::switch_minimum;
  if (!wissel && regel != AdvRegel::aanvul_verkocht && regel != AdvRegel::aanvul_minimum)
    return false;
  const int mag = magazijn(u.k);
  const int houdt = wissel ? u.k.groep.minimum : magazijn_houdt(u.k);
  for (int b = 0; b < u.k.filialen(); ++b) {
    if (b == u.filiaal || !in_set(u.k.bron, b) || (!wissel && b != mag)) continue;
    if (int64_t{vrij(u.k, b, u.maat)} + cel(*u.r, b, u.maat) > houdt) return true;
  }
  return false;
}

/// Why a rule gave the branch nothing.
const char* waarom_niet(const Uitleg& u, AdvRegel regel) {
  const AdvReden reden = bezwaar(u.k, regel, u.vraag, *u.r, u.filiaal, u.maat);
  if (reden != AdvReden::geen) return in_woorden(reden);
  for (auto s = u.spoor.rbegin(); s != u.spoor.rend(); ++s) {
    if (!u.geldt(*s) || s->regel != regel) continue;
    for (const AdvGepasseerd& g : s->gepasseerd)
      if (g.filiaal == u.filiaal) return in_woorden(g.reden);
  }
  if (u.r != &u.k.r_aanvul && keten(u.k.m_besteld, 0) > 0) return txt(T_ADVU_BESTELLING);
  return txt(kan_nog(u, regel) ? T_ADVU_AANLEIDING : T_ADVU_NIEMAND);
}

void niets(Uitleg& u) {
  const std::vector<AdvRegel> regels = mogelijk(u);
  for (const AdvRegel regel : regels)
    u.regel(str_format(txt(T_ADVU_NIETS), in_woorden(regel), waarom_niet(u, regel)));
  if (regels.empty()) u.regel(txt(T_ADVU_AANLEIDING));
}

void bewegingen(Uitleg& u) {
  bool iets = false;
  for (size_t i = 0; i < std::size(REGELS); ++i) {
    const auto regel = static_cast<AdvRegel>(i);
    const bool kreeg = krijgt(u, regel);
    const bool gaf = geeft(u, regel);
    if (kreeg || gaf) gepasseerd(u, regel);
    iets = iets || kreeg || gaf;
  }
  const bool ingebracht = geeft_restanten(u);
  if (!iets && !ingebracht && u.maat != 0) niets(u);
}

}  // namespace

std::vector<std::string> adv_uitleg(const Advies& a, const MaatMatrix& r, const AdvRec& krit,
                                    const MaatMatrix& vraag, int filiaal, int maat, int breedte) {
  if (filiaal < 0 || filiaal >= a.filialen() || maat < 0 || maat >= MATEN) return {};
  Uitleg u{.k = a,
           .vraag = &vraag,
           .filiaal = filiaal,
           .maat = maat,
           .breedte = static_cast<size_t>(std::max(breedte, 20)),
           .spoor = {},
           .regels = {}};
  u.k.verdeel = a.verdeel_voor;
  u.k.spoor = &u.spoor;
  adv_bereken(u.k, krit, vraag);
  u.k.spoor = nullptr;
  u.r = &r == &a.r_switch       ? &u.k.r_switch
        : &r == &a.r_herverdeel ? &u.k.r_herverdeel
                                : &u.k.r_aanvul;
  // The other redistribution looks at all that was sold.
  if (u.r == &u.k.r_herverdeel) u.vraag = &u.k.m_verkocht;
  cijfers(u);
  bewegingen(u);
  return u.regels;
}
