// The generator of demo chains. keten_plan makes, from a seed and a date and without any file, all
// that a chain is; keten_serie tells one series' labels and movements; keten_schrijf puts it all in
// a data directory and keten_keur reads back what was written.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "main/controle.h"
#include "main/iofil.h"
#include "sub/ioeti_intern.h"
#include "sub/records.h"

/// How large a chain is. Totals are kept exactly unless the chain has too few labels for them.
struct KetenMaat {
  std::string bedrijf;  // UTF-8
  uint64_t zaad;
  uint16_t vandaag;  // date number
  bool transit;
  int filialen, leveranciers, merken, artikelgroepen, klanten, series;
  int etiketten;                // mean of a series
  int twee_sets, drie_groepen;  // price sets: chances of two, and of three groups, in thousandths
  int ean_promille;             // label series with foreign codes
  int ean_meest;                // rows of DTEAN at most
  int voorlopig, voorlopig_series;
  int opdrachten, definitief;
  uint32_t teller;  // of order numbers when the last order was made
  int onderweg, onderweg_klaar, financieel, ontvangsten, aanvul;
};
KetenMaat keten_klein();  // "Van Aerden Mode", 12 branches
KetenMaat keten_groot();  // the benchmark chain, 100 branches

struct KetenMaatsoort {
  std::vector<uint8_t> volgorde;  // size indexes in the order of the size bar
  int doelbreedte;                // sizes of a common series
};
struct KetenArtikel {
  DtArt rec;
  char doelgroep;
  uint8_t maatsoort;
  int prijs_van, prijs_tm;  // selling price in euro
  bool per_maat;            // size registration
  int gewicht;
  const char *omschrijving, *model;  // what its series are called; start of model names
};
struct Opdracht {
  uint8_t van, naar;
  uint32_t nummer;
  uint16_t datum;
};
/// Age of a series in the trade; it decides what became of its labels.
enum class Leeftijd : uint8_t { nieuw, huidig, doorlopend, oud };

/// What a series contributes to the totals.
struct SerieTaak {
  Leeftijd leeftijd;
  uint16_t besteld, ontvangen;  // date of the first order and of the first receipt
  int32_t etiketten;
  int32_t spookblokken;        // blocks of a series that is gone, ahead of this one's
  uint8_t sets, spookgroepen;  // price sets, free price groups ahead of them
  uint8_t groepen[3];          // of each set
  bool met_ean;
  bool scheef;  // its stock stands in one shop while the others sell it
  int16_t onderweg, onderweg_klaar, financieel, ontvangsten, aanvul, voorlopig;
};

struct Keten {
  KetenMaat maat;
  std::vector<int32_t> gewicht;      // of a branch, in tenths; 0 the warehouse
  std::vector<FiliaalRec> filialen;  // slot order, names in plain text
  std::vector<DtMerk> merken;
  std::vector<DtLev> leveranciers;
  std::vector<DtKlt> klanten;
  std::vector<KetenArtikel> artikelen;
  std::vector<DtMaat> maatrecords;
  std::vector<KetenMaatsoort> maatsoorten;  // by number, 100 of them
  std::vector<DtMtom> maatnamen;
  std::vector<DtKoers> koersen;
  std::vector<DtDoelgr> doelgroepen;
  std::vector<InkSys> inksys;
  std::vector<Kleur> kleuren;
  std::vector<DtSer> series;
  std::vector<SerieTaak> taken;  // one a series
  std::vector<Opdracht> opdrachten;
  std::vector<std::pair<int32_t, int32_t>> definitief;  // series and order, in order of series
  int32_t blokken, prijsgroepen;  // all of DTETI.TXT and DTIPG.TXT, the free ones included
};
/// Pure: no file, no clock.
Keten keten_plan(const KetenMaat&);

// The steps of the plan, each from streams of its own.
void keten_stam(Keten*);        // branches, suppliers, customers, brands
void keten_artikelen(Keten*);   // article groups
void keten_maten(Keten*);       // size types
void keten_series(Keten*);      // series and what each contributes
void keten_opdrachten(Keten*);  // orders and their lines
/// DTSYS.TXT of the chain but for the counters that only the walk knows.
std::vector<uint8_t> keten_dtsys(const Keten&);
/// DTFILGEG.TXT, names hidden.
std::vector<FiliaalRec> keten_filialen(const Keten&);
std::vector<DtHmnu> keten_menu(const Keten&);
std::vector<DtRel> keten_rechten();

struct KetenBlok {
  int32_t nummer;
  EtiBlok blok;
};
/// Where the walk over the series stands: numbers given out, and what earlier series fell short.
struct KetenStand {
  int32_t blok = 0, vrij_blok = -1, vrije_blokken = 0;
  int32_t groep = 0, vrije_groep = -1;
  uint32_t maatcode = 0, eancode = 0, eans = 0;
  int32_t onderweg = 0, onderweg_klaar = 0, financieel = 0, ontvangsten = 0, aanvul = 0;
  size_t definitief = 0;
};
struct SerieInhoud {
  DtSer serie;
  std::vector<Etiket> etiketten;
  std::vector<int32_t> nummers;    // of the labels
  std::vector<KetenBlok> blokken;  // in order of number, free ones included
  std::vector<DtIpa> sets;
  std::vector<DtIpg> groepen;  // in order of record number, free ones included
  std::vector<DtEan> eans;
  std::vector<DtGo> onderweg;
  std::vector<DtFin> financieel;
  std::vector<DtIo> ontvangsten;
  std::vector<DtAanv> aanvul;
  std::vector<DtPick> regels;
};
/// Series `i` whole; the series are taken in order.
void keten_serie(const Keten&, size_t i, KetenStand*, SerieInhoud*);
// Its parts.
void keten_etiketten(const Keten&, size_t i, SerieInhoud*);
void keten_bewegingen(const Keten&, size_t i, KetenStand*, SerieInhoud*);
void keten_regels(const Keten&, size_t i, KetenStand*, SerieInhoud*);
void keten_prijzen(const Keten&, size_t i, KetenStand*, SerieInhoud*);
void keten_eans(const Keten&, size_t i, KetenStand*, SerieInhoud*);
/// Size indexes of a series in the order of the size bar.
std::vector<uint8_t> keten_maten_van(const Keten&, const DtSer&);

struct KetenTelling {
  int64_t series, etiketten, blokken, regels, onderweg, financieel, ontvangsten, aanvul, eans, sets;
};
/// Makes the chain in the current directory, which is empty.
KetenTelling keten_schrijf(const Keten&);
/// What the tills reported, into the chain that stands written in the current directory:
/// DTDCIF.TXT, and the few transits and size codes that its remarks need.
void keten_datacom(const Keten&);
/// Reads the chain in the current directory back: counters against labels, tables against their
/// indexes, labels in transit against the label store. The faults, none when it is sound.
std::vector<std::string> keten_keur();
