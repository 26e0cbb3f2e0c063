// The lists per label: search list and cancelled mutations, over the table temp_zoek and its
// family; and the execution of advice straight from stock, which prints the first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "isam/ix.h"
#include "main/opdruk.h"
#include "sub/records.h"

#pragma pack(push, 1)
struct Zoekregel {  // 76 bytes: temp_zoek, temp_annul, temp_nontv
  uint8_t vanfil, naarfil;
  char model[15];
  char maattekst[3];  // annul and nontv only
  Serienr nr;
  char merk[4];
  uint32_t etiket, prijs, opdrachtnr;
  char locatie[6];
  uint8_t rang, maat;  // rank in the size bar, size index
  uint8_t verzamel;    // collective mark
  uint8_t gemarkeerd;
  uint16_t zenddatum;
  uint8_t per_maat;  // size registration
  char ean[13];
  uint8_t status, filiaal;  // nontv only
  uint16_t datum;
  uint8_t leeg74[2];
};
#pragma pack(pop)
static_assert(sizeof(Zoekregel) == 76 && offsetof(Zoekregel, nr) == 20);
static_assert(offsetof(Zoekregel, etiket) == 32 && offsetof(Zoekregel, locatie) == 44);
static_assert(offsetof(Zoekregel, zenddatum) == 54 && offsetof(Zoekregel, status) == 70);

struct DtGo;
struct Etiket;
struct MaatHandle;

enum class ZoekTabel : uint8_t { zoek, annul, nontv, nontv_document };
/// Makes the table anew, empty and closed, under privaat.tp, for a print order of A K V R M L.
void zoek_maak(ZoekTabel, const char* sortering);
/// A row of a label on its way, of the series in ser_rec and the brand in merk_rec. Without a size
/// type (null) the row has no size text and rank 0.
Zoekregel zoek_regel(const DtGo&, int32_t etiketnr, const Etiket&, MaatHandle*);
/// Master data of a row's series in ser_rec and merk_rec and its sizes, read once as long as the
/// rows are of the same one.
struct ZoekSerie {
  explicit ZoekSerie(ICB* tabel) : opzoek(tabel) {}
  ~ZoekSerie();
  ZoekSerie(const ZoekSerie&) = delete;
  ZoekSerie& operator=(const ZoekSerie&) = delete;
  /// True when the table or the private index has the series.
  bool lees(const Serienr&);

  ICB* opzoek;
  Serienr nr{};
  bool gelezen = false, er = false;
  MaatHandle* maten = nullptr;
};
/// Fills temp_zoek with what an execution sent under a number; `naar` -1: to all branches. Labels
/// that went on since are left out.
void zoek_vul(uint8_t van, int naar, uint32_t opdrachtnr);
/// Prints the table in hand into an open report; kinds zoeklijst and geannuleerd. For the second
/// only marked lines, and `opdrachtnr` heads the list when it is not 0.
void zoeklijst(OpdrachtSoort, uint32_t opdrachtnr);

void adviezen_uitvoeren();  // "Uitvoeren adviezen"

// Its steps.
struct Uitvoering {  // one order: a pair of branches and its number
  uint8_t van;
  int naar;  // -1: all branches
  uint32_t nummer;
};
/// Sends what provisional lines of the selected series and branches ask for and stock has; the
/// orders in the order of their branches. Ends early when the operator breaks off.
std::vector<Uitvoering> uitvoer_pas();
/// Their search lists, into an open report.
void uitvoer_lijsten(const std::vector<Uitvoering>&);
