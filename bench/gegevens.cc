#include "bench/gegevens.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

/// One-to-one on 24 bits: multiplying by an odd number and folding the upper half in, twice.
uint32_t schud(uint32_t i) {
  for (int keer = 0; keer < 2; ++keer) {
    i = i * 0x9E3779u & 0xFFFFFF;
    i ^= i >> 12;
  }
  return i;
}

template <size_t N>
struct Schrijver {
  std::array<uint8_t, N> uit{};
  size_t p = 0;
  void getal(uint64_t v, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) uit[p++] = static_cast<uint8_t>(v >> (8 * i));
  }
};

}  // namespace

DtSer meet_serie(uint32_t i) {
  const uint32_t s = schud(i & 0xFFFFFF);
  Toeval t{s};
  DtSer r{};
  r.nr.artgroep = 1 + s % 900;
  r.nr.kleur = static_cast<uint16_t>(1 + s / 900 % 60);
  r.nr.volgnr = static_cast<uint16_t>(1 + s / 54000);
  r.merk = static_cast<uint16_t>(1 + t.tot(220));
  r.jaar = static_cast<uint16_t>(2020 + t.tot(6));
  r.hoofdseizoen = "KZW"[t.tot(3)];
  r.deelseizoen = static_cast<uint8_t>(t.tot(10));
  r.maatsoort = static_cast<uint8_t>(1 + t.tot(8));
  r.leverancier = static_cast<uint16_t>(1 + t.tot(80));
  for (size_t c = 0; c < 9; ++c) r.model[c] = static_cast<char>('A' + t.tot(26));
  memcpy(r.omschrijving, "Pantalon, geweven", 17);
  memcpy(r.materiaal, "KATOEN", 6);
  r.verkoopprijs = static_cast<int32_t>(1000 + t.tot(20000));
  r.voorraad = t.tot(500);
  r.blok1 = -1;
  return r;
}

std::vector<DtSer> meet_series(uint32_t i0, uint32_t n) {
  std::vector<DtSer> uit;
  uit.reserve(n);
  for (uint32_t i = 0; i < n; ++i) uit.push_back(meet_serie(i0 + i));
  return uit;
}

Beeld1 beeld1(const Serienr& nr) {
  Schrijver<8> s;
  s.getal(nr.artgroep, 4);
  s.getal(nr.kleur, 2);
  s.getal(nr.volgnr, 2);
  return s.uit;
}

Beeld2 beeld2(const DtSer& r) {
  Schrijver<25> s;
  s.getal(r.merk, 2);
  s.getal(r.nr.artgroep, 4);
  memcpy(s.uit.data() + s.p, r.model, sizeof r.model);
  s.p += sizeof r.model;
  s.getal(r.nr.kleur, 2);
  s.getal(r.nr.volgnr, 2);
  return s.uit;
}

Beeld3 beeld3(const DtSer& r) {
  Schrijver<9> s;
  s.getal(r.nr.artgroep, 4);
  s.getal(r.deelseizoen, 1);
  s.getal(r.nr.kleur, 2);
  s.getal(r.nr.volgnr, 2);
  return s.uit;
}

void meet_definitie(ICB* icb) {
  IXUPDFCB(icb, 0, "Series,200");
  IXUPDFCB(icb, 1, "key-1,NODUPS,I,1,4,I,5,6,I,7,8");
  IXUPDFCB(icb, 2, "key-2,NODUPS,I,9,10,I,1,4,C,20,34,I,5,6,I,7,8");
  IXUPDFCB(icb, 3, "key-3,NODUPS,I,1,4,I,16,16,I,5,6,I,7,8");
  IXINITIX(icb);
}

void meet_schrijf(const std::string& pad, uint32_t n) {
  FILE* f = fopen(pad.c_str(), "wb");
  if (f == nullptr) {
    perror(pad.c_str());
    exit(1);
  }
  for (uint32_t i = 0; i < n; ++i) {
    const DtSer r = meet_serie(i);
    fwrite(&r, sizeof r, 1, f);
  }
  fclose(f);
}
