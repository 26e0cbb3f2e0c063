// What a chain under test holds: pieces, chains of blocks that lead astray, order lines, names.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <utility>
#include <vector>

#include "isam/base.h"
#include "isam/io.h"
#include "main/iofil.h"
#include "main/iotab.h"
#include "main/saldo.h"
#include "sub/adv_krit.h"
#include "sub/bitarr.h"
#include "sub/ioeti.h"
#include "sub/ioeti_intern.h"
#include "sub/pghdl.h"
#include "sub/serie.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "tests/support/keten.h"

inline DtSer proef_serie(const Serienr& nr) {
  DtSer rec{};
  rec.nr = nr;
  EXPECT_TRUE(IXREAD(dtser, &rec)) << serie_tekst(nr);
  return rec;
}
inline void proef_merk(uint16_t nummer, const char* naam = "", const char* zoeknaam = "") {
  DtMerk rec{};
  rec.nummer = nummer;
  veld_zet(rec.naam, sizeof rec.naam, naam);
  veld_zet(rec.zoeknaam, sizeof rec.zoeknaam, zoeknaam);
  IXWRITE(dtmerk, &rec);
}
inline void proef_artikel(
    uint32_t nummer, const char* naam = "",
    const std::function<void(DtArt&)>& anders = [](DtArt&) {}) {
  DtArt rec{};
  rec.nummer = nummer;
  veld_zet(rec.naam, sizeof rec.naam, naam);
  anders(rec);
  IXWRITE(dtart, &rec);
}
/// What a document shows of a series beside its numbers.
inline void proef_kleding(const Serienr& nr, const char* locatie) {
  DtSer rec = proef_serie(nr);
  veld_zet(rec.locatie, sizeof rec.locatie, locatie);
  veld_zet(rec.model, sizeof rec.model, "Anna lang");
  veld_zet(rec.omschrijving, sizeof rec.omschrijving, "blouse met kraag");
  veld_zet(rec.materiaal, sizeof rec.materiaal, "katoen");
  veld_zet(rec.dessin, sizeof rec.dessin, "streep");
  veld_zet(rec.kenmerk, sizeof rec.kenmerk, "KM");
  IXWRITE(dtser, &rec);
}
/// One size of a bar, by index: its text and its position.
inline void proef_maat(DtMaat& rec, int index, const std::string& tekst, int positie) {
  bit_zet(rec.maten, index);
  memcpy(rec.ingang[index].tekst, tekst.data(), sizeof rec.ingang[index].tekst);
  rec.ingang[index].ander = static_cast<uint8_t>(positie);
}
/// A run over orders as its commands begin it: all branches, split by pair, in series order.
inline void proef_opdrachten() {
  werk8.assign(static_cast<size_t>(filialen()) + 1, {});
  iofil('O', 0, &filiaal_rec);
  adv_rec = adv_standaard();
  pg_fill(adv_rec.aanvul_filialen);
  pg_fill(adv_rec.vanuit_filialen);
  saldo_splits = true;
  saldo_opdrachtnr = 0;
  str_printf(saldo_sort, sizeof saldo_sort, "%s", "AKV");
}
/// Deletes the record with this key.
template <class Rec>
void proef_weg(ICB* tabel, Rec sleutel) {
  ASSERT_TRUE(IXREADL(tabel, &sleutel));
  IXDELETE(tabel, &sleutel);
}
/// A private order of these series, as a selection leaves it.
inline void proef_selectie(const char* naam, const char* letters,
                           std::initializer_list<Serienr> series) {
  ICB* icb = sort_maak(naam, letters);
  for (const Serienr& nr : series) {
    DtSer rec = proef_serie(nr);
    icb->record_no = dtser->record_no;
    IXADDKEYS(icb, &rec);
  }
  IXCLOSE(icb);
}

/// Puts a label at the end of its series' chain; its number.
inline int32_t proef_stuk(Etiket e) {
  int32_t nummer = 0;
  ioeti('W', &nummer, &e);
  const OpSleutel sleutel(dtser, 1);
  DtSer rec{};
  rec.nr = e.nr;
  if (IXREAD(dtser, &rec) && rec.blok1 < 0) {
    rec.blok1 = eti_blok(nummer);
    IXWRITE(dtser, &rec);
  }
  return nummer;
}

inline Etiket proef_lees(int32_t nummer) {
  Etiket e{};
  EXPECT_TRUE(ioeti('R', &nummer, &e)) << nummer;
  return e;
}
template <class Doe>
void proef_wijzig(int32_t nummer, const Doe& doe) {
  Etiket e = proef_lees(nummer);
  doe(e);
  ioeti('W', &nummer, &e);
}

/// The code of a size, or of a small article.
inline void proef_ean(const char* code, char soort, const Serienr& nr, uint8_t maat) {
  DtEan rec{};
  veld_zet(rec.code, sizeof rec.code, code);
  rec.soort = soort;
  rec.kleur = nr.kleur;
  rec.artgroep = nr.artgroep;
  rec.volgnr = nr.volgnr;
  rec.maat = maat;
  IXWRITE(dtean, &rec);
}

/// Makes the chain go on from a block into another.
inline void proef_ketting(int32_t blok, int32_t volgende) {
  io_schrijf(eti.fd, &volgende, sizeof volgende, int64_t{blok} * 376 + 12);
}

/// An order line; a definitive one is of 3 February 2026 unless another day is given.
inline void proef_regel(int van, int naar, const Serienr& nr,
                        std::initializer_list<std::pair<int, uint32_t>> stuks,
                        uint32_t opdracht = 0, const char* datum = "03022026") {
  DtPick rec{};
  rec.vanfil = static_cast<uint8_t>(van);
  rec.naarfil = static_cast<uint8_t>(naar);
  rec.nr = nr;
  rec.opdrachtnr = opdracht;
  if (opdracht != 0) rec.orderdatum = date_number(datum);
  for (const auto& [maat, n] : stuks) rec.aantal[maat] = n;
  IXWRITE(dtpick, &rec);
}

/// The article group, brand 5 and colour 10.
inline void proef_namen(uint32_t artgroep, const char* naam) {
  proef_artikel(artgroep, naam);
  proef_merk(5, "Duinroos", "DUIN");
  Kleur kleur{};
  int32_t nummer = kleur.nummer = 10;
  veld_zet(kleur.naam, sizeof kleur.naam, "wit");
  iotab('W', &nummer, &kleur, SYS_KLEUREN);
}

/// All records of a table by a key.
template <class Rec>
std::vector<Rec> proef_inhoud(ICB* tabel, int sleutel = 1) {
  const OpSleutel op(tabel, sleutel);
  std::vector<Rec> uit;
  Rec rec{};
  for (bool er = IXFIRSTR(tabel, &rec); er; er = IXNEXT(tabel, &rec)) uit.push_back(rec);
  return uit;
}
