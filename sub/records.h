// The records of the stock tables as they stand in their files: packed, little-endian, text in code
// page 850 padded with NULs and not terminated when full. Bytes without a name are kept as read.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

static_assert(std::endian::native == std::endian::little);

inline constexpr int MATEN = 96;              // cells of a size row: 0 the total, 1-95 size indexes
inline constexpr uint8_t FILIAAL_GEEN = 255;  // no branch
inline constexpr uint8_t FILIAAL_SPRONG = 250;  // in a key: skips the rest of a sending branch
inline constexpr int FILIALEN_MAX = 249;
/// The receiver that makes the next read skip the rest of a sending branch. A damaged line's own
/// may lie beyond it, and a walk never goes back.
constexpr uint8_t voorbij_zender(uint8_t naarfil) {
  return naarfil > FILIAAL_SPRONG ? naarfil : FILIAAL_SPRONG;
}

#pragma pack(push, 1)

/// Article group, colour and sequence number: what identifies a series everywhere.
struct Serienr {
  uint32_t artgroep;
  uint16_t kleur, volgnr;
  bool operator==(const Serienr&) const = default;
};
static_assert(sizeof(Serienr) == 8);

struct DtSer {  // DTSER.TXT, 200 bytes
  Serienr nr;
  uint16_t merk;
  uint16_t jaar;        // 0 a standard series
  char hoofdseizoen;    // K Z W
  uint8_t deelseizoen;  // a number 0-9
  uint8_t janee;
  char doelgroep;
  uint8_t maatsoort;
  uint8_t leeg17;
  uint8_t nummer18;  // number from the article, else 1
  char model[15];
  char omschrijving[20];
  char dessin[12];
  char materiaal[12];
  char kenmerk[2];    // value of the characteristic
  uint8_t maten[12];  // bit i: size index i exists
  uint8_t maatlijst[8];
  int32_t inkoopprijs, adviesprijs, verkoopprijs;  // cents
  uint8_t leeg112[20];
  uint16_t datum_wijziging;
  uint16_t leverancier;
  uint16_t datum_creatie;
  uint8_t leeg138[2];
  uint32_t correcties, verkocht, voorraad, besteld;
  uint8_t leeg156[6];
  uint16_t datum_mutatie;
  char locatie[6];
  uint8_t maatregistratie;  // 0 label registration, else size registration
  uint8_t via_pricat, inkoopcode;
  uint8_t leeg173[3];
  int32_t blok1;  // first label block, -1 none
  uint8_t leeg180[20];
};
static_assert(sizeof(DtSer) == 200 && offsetof(DtSer, model) == 19 &&
              offsetof(DtSer, dessin) == 54);
static_assert(offsetof(DtSer, maten) == 80 && offsetof(DtSer, inkoopprijs) == 100);
static_assert(offsetof(DtSer, datum_wijziging) == 132 && offsetof(DtSer, correcties) == 140);
static_assert(offsetof(DtSer, datum_mutatie) == 162 && offsetof(DtSer, maatregistratie) == 170);
static_assert(offsetof(DtSer, blok1) == 176);

struct DtArt {  // 304
  uint32_t nummer;
  char naam[20];
  uint16_t omzetgroep;
  uint8_t kenmerk_nr, tariefcode;
  uint8_t magazijn;  // 255 none
  uint8_t vlaggen;   // value 1 pure warehouse, value 2 only below minimum
  char soort;        // 'A' or 'P'
  uint8_t minimum, magazijn_pct;
  uint8_t serie_nummer, serie_maatsoort;
  uint8_t leeg35[19];
  uint8_t streef[250];
};
static_assert(sizeof(DtArt) == 304 && offsetof(DtArt, streef) == 54);
struct DtMerk {  // 76
  uint16_t nummer;
  char naam[20];
  char zoeknaam[4];
  uint8_t filialen[32];
  uint8_t leeg58[18];
};
static_assert(sizeof(DtMerk) == 76);
struct DtLev {  // 332
  uint16_t nummer;
  char naam[30], adres[30], plaats[25];
  uint8_t leeg87[245];
};
static_assert(sizeof(DtLev) == 332);
struct DtKlt {  // 312
  uint32_t nummer;
  char naam[30], adres[30], plaats[25];
  uint8_t leeg89[223];
};
static_assert(sizeof(DtKlt) == 312);
struct DtEan {  // 28
  char code[13];
  char soort;  // 'M' size code, 'A' small article, 'E' foreign
  uint16_t kleur;
  uint32_t artgroep;
  uint16_t volgnr;
  uint8_t maat;
  uint8_t leeg23[5];
};
static_assert(sizeof(DtEan) == 28 && offsetof(DtEan, artgroep) == 16);
struct MaatIngang {
  char tekst[3];  // right-justified
  uint8_t ander;  // the other number: position by index, or index by position
};
struct DtMaat {  // 404
  uint8_t land, maatsoort;
  uint8_t maten[12];
  MaatIngang ingang[96];  // entry 0 not in use
  uint8_t leeg398[2];
  uint16_t stempel;
  uint8_t leeg402[2];
};
static_assert(sizeof(DtMaat) == 404 && offsetof(DtMaat, stempel) == 400);
struct DtMtom {  // 12
  uint8_t land, maatsoort, maat;
  char tekst[7];
  uint8_t leeg10[2];
};
static_assert(sizeof(DtMtom) == 12);
struct DtKoers {  // 16
  char valuta[3];
  uint8_t leeg3;
  uint16_t datum;
  uint8_t leeg6[2];
  int32_t koers;  // x 1000000
  uint8_t leeg12[4];
};
static_assert(sizeof(DtKoers) == 16);
struct DtDoelgr {  // 24
  char letter;
  char tekst[20];
  uint8_t leeg21[3];
};
static_assert(sizeof(DtDoelgr) == 24);
struct DtIpa {  // 40, a price set
  Serienr nr;
  uint16_t nummer;
  uint16_t eind;  // period end, inclusive
  uint8_t leeg12[4];
  uint8_t soort;
  uint8_t maten[12];  // union of its groups
  uint16_t groepnummer;
  uint8_t code;
  uint16_t begin;  // period start
  uint8_t leeg34[2];
  int32_t groep1;  // first price group, -1 none
};
static_assert(sizeof(DtIpa) == 40 && offsetof(DtIpa, begin) == 32);
struct DtIpg {  // 40, a price group in DTIPG.TXT
  Serienr nr;
  uint16_t nummer, eind;
  uint8_t maten[12];
  uint16_t groepnummer;
  uint8_t code, soort;
  int32_t verkoopprijs, inkoopprijs;  // cents
  int32_t volgende;                   // -1 end
};
static_assert(sizeof(DtIpg) == 40 && offsetof(DtIpg, verkoopprijs) == 28);
struct DtHmnu {  // 46
  uint16_t slot;
  char titel[32], programma[10];  // scrambled
  char soort;
  uint8_t variant;
};
static_assert(sizeof(DtHmnu) == 46);
struct DtRel {  // 6
  uint16_t gebruiker;
  uint16_t slot;  // the chapter of custom programs: bytes 244 and 1
  char soort;
  uint8_t leeg5;
};
static_assert(sizeof(DtRel) == 6);
struct InkSys {  // INKSYS.TXT, 20
  uint16_t jaar;
  char seizoen;
  uint8_t leeg3;
  char tekst[16];
};
static_assert(sizeof(InkSys) == 20);

struct DtPick {  // 404, an order line
  uint8_t leeg0, vanfil, naarfil, leeg3;
  Serienr nr;
  uint32_t opdrachtnr;     // 0 provisional
  uint32_t aantal[MATEN];  // per size index; entry 0 is 0 on disk
  uint16_t orderdatum;     // 0 while provisional
  uint8_t leeg402[2];
};
static_assert(sizeof(DtPick) == 404 && offsetof(DtPick, orderdatum) == 400);
struct DtGo {  // 28, a label in transit
  uint8_t vanfil, naarfil;
  uint8_t verzamel;  // 1: straight from stock; 0: a transfer entry
  uint8_t leeg3;
  uint32_t etiket;
  Serienr nr;
  uint32_t opdrachtnr;
  uint8_t soort;  // 1
  uint8_t leeg21[2];
  uint8_t afgewerkt;
  uint16_t zenddatum, printdatum;
};
static_assert(sizeof(DtGo) == 28 && offsetof(DtGo, zenddatum) == 24);
struct DtFin {  // 32, a financial transfer line
  uint8_t houder, naarfil, afgerekend, soort, leeg4, vanfil;
  uint16_t datum;
  Serienr nr;
  uint32_t etiket;
  uint32_t regel;
  uint8_t afrekening[6];
  uint8_t leeg30[2];
};
static_assert(sizeof(DtFin) == 32 && offsetof(DtFin, regel) == 20);
struct DtIo {  // 16, a receipt
  uint8_t naarfil, vanfil;
  uint16_t datum;
  uint32_t etiket, opdrachtnr;
  uint16_t registratie;
  uint8_t onderweg, leeg15;
};
static_assert(sizeof(DtIo) == 16);
struct DtAanv {  // 12, replenishment information
  Serienr nr;
  uint32_t etiket;
};
static_assert(sizeof(DtAanv) == 12);

// Records of DTSYS.TXT's tables.
struct Filiaalreeks {  // 56
  int32_t nummer;
  uint8_t filialen[32];
  char naam[20];
};
static_assert(sizeof(Filiaalreeks) == 56);
struct Kleur {  // 20
  uint16_t nummer;
  char naam[15];
  uint8_t leeg17[3];
};
static_assert(sizeof(Kleur) == 20);
struct Actie {  // 64
  uint16_t van, tm;
  uint8_t code;
  char tekst[27];
  uint8_t filialen[32];
};
static_assert(sizeof(Actie) == 64);
struct Codetekst {  // 30
  char tekst[20];
  uint8_t leeg20[10];
};
static_assert(sizeof(Codetekst) == 30);
struct Valuta {  // 36
  char code[3];
  uint8_t decimalen;
  char naam[20];
  uint8_t leeg24[12];
};
static_assert(sizeof(Valuta) == 36);
struct SysRec4 {
  int32_t vrij_hoofd, hoogste, vrij_aantal;
  uint8_t cijfers;
  uint8_t leeg[51];
};
struct SysRec9 {
  int32_t vrij_hoofd, hoogste;
  uint8_t leeg[56];
};
struct SysRec20 {
  uint8_t transit;        // value not 0: transit administration on
  uint8_t dagen_bewaard;  // replenishment information kept
  uint8_t controle_keuze;
  uint8_t leeg3;
  uint16_t verkoopdagen;  // 0: byte 38 of record 1 is taken instead
  uint8_t leeg6[2];
  uint8_t kolombreedte;  // 0 = 3
  uint8_t leeg9[55];
};
static_assert(sizeof(SysRec4) == 64 && sizeof(SysRec9) == 64 && sizeof(SysRec20) == 64);

/// The advice criteria, seven to a terminal in DTSELVRD.nnn.
struct AdvRec {             // 124
  uint8_t filialen[32];     // branches whose stock and sales are tested
  int32_t vrd_van, vrd_tm;  // 99999 shows "maximum"
  int32_t vrk_van, vrk_tm;
  char vrk_soort;      // 'A' quantity, 'P' percentage
  uint8_t bron_soort;  // 1 warehouse, 2 branches, 3 both
  uint16_t vrk_dagen;
  uint8_t aanvul_filialen[32];  // may receive
  uint8_t vanuit_filialen[32];  // may give
  uint8_t met_opdracht, zonder_opdracht;
  uint8_t adv_aanvul, adv_switch, adv_restant, adv_distributie, adv_overig;
  uint8_t leeg123;
};
static_assert(sizeof(AdvRec) == 124 && offsetof(AdvRec, aanvul_filialen) == 52);
static_assert(offsetof(AdvRec, met_opdracht) == 116);

#pragma pack(pop)
