// A chain of a few branches and sizes for the advice, written as small tables: one row a branch,
// rows parted by '/', one number a size, '.' for 0.
#pragma once

#include <sstream>
#include <string>

#include "sub/adv_krit.h"
#include "sub/advies_intern.h"
#include "sub/pghdl.h"

struct AdvProef {
  Advies a;
  AdvRec krit{};
  uint8_t vanuit[32], aanvul[32], merk[32] = {};

  AdvProef(int filialen, int maten) {
    adv_maak(a, filialen);
    for (int s = 1; s <= maten; ++s) a.maten.push_back(static_cast<uint8_t>(s));
    a.groep.streef.fill(1);
    a.groep.minimum = 1;
    krit.adv_aanvul = krit.adv_switch = krit.adv_restant = krit.adv_distributie = 1;
    pg_fill(vanuit);
    pg_fill(aanvul);
  }
  AdvProef& zet(MaatMatrix Advies::*m, const std::string& tabel) {
    std::istringstream rijen(tabel);
    std::string rij, woord;
    for (size_t b = 0; std::getline(rijen, rij, '/'); ++b) {
      std::istringstream woorden(rij);
      for (const uint8_t s : a.maten)
        if (woorden >> woord) (a.*m).at(b)[s] = woord == "." ? 0 : std::stoi(woord);
    }
    return *this;
  }
  AdvProef& voorraad(const std::string& t) { return zet(&Advies::m_voorraad, t); }
  AdvProef& verkocht(const std::string& t) { return zet(&Advies::m_verkocht, t); }
  /// Sold in the period, and asked for.
  AdvProef& vraag(const std::string& t) {
    return zet(&Advies::m_vrk_periode, t).zet(&Advies::m_aanvul, t);
  }
  AdvProef& streef(const std::vector<int>& n) {
    a.groep.streef.fill(0);
    std::transform(n.begin(), n.end(), a.groep.streef.begin(),
                   [](int x) { return static_cast<uint8_t>(x); });
    return *this;
  }
  AdvProef& magazijn(int b, bool puur = true) {
    a.groep.magazijn = static_cast<uint8_t>(b);
    a.groep.pure_magazijn = puur;
    return *this;
  }
  /// What is in stock or sold was received; then sums, sets and service order.
  AdvProef& klaar() {
    for (size_t b = 0; b + 1 < a.m_ontvangen.size(); ++b)
      for (const uint8_t s : a.maten)
        a.m_ontvangen[b][s] = krap(int64_t{a.m_ontvangen[b][s]} + a.m_voorraad[b][s] +
                                   a.m_verkocht[b][s] + a.m_correctie[b][s]);
    adv_totalen(a);
    adv_verzamelingen(a, vanuit, aanvul, merk);
    return *this;
  }
  bool bereken() { return adv_bereken(a, krit, a.m_vrk_periode); }

  /// A matrix as a table; a row whose sum is not the sum of its cells shows it.
  std::string tabel(const MaatMatrix& m) const {
    std::string uit;
    for (int b = 0; b < a.filialen(); ++b) {
      if (b > 0) uit += " / ";
      int32_t som = 0;
      for (const uint8_t s : a.maten) {
        const int32_t n = cel(m, b, s);
        som += n;
        if (uit.size() > 0 && uit.back() != ' ') uit += ' ';
        uit += n == 0 ? "." : std::to_string(n);
      }
      if (som != cel(m, b, 0)) uit += " SOM " + std::to_string(cel(m, b, 0));
    }
    return uit;
  }
};
