// Sizes: a size type is a named list of up to 95 sizes. The size index identifies a size for good;
// the order position is its place in the size bar.
#pragma once

#include <cstdint>
#include <vector>

#include "sub/records.h"

struct MaatRec {
  uint8_t land, maatsoort;
  uint8_t maat;     // size index, 1-95
  uint8_t positie;  // order position
  uint8_t rang;     // ordinal within the bit map; written under key 4 only
  char tekst[3];
  char vertaling[7];
};
struct MaatHandle;  // one size type
inline constexpr int MT_VERTAALD = 1, MT_WIJZIG = 2;

MaatHandle* mtopen(uint8_t land, uint8_t maatsoort, int vlaggen);
void mtclose(MaatHandle*);
void mtbits(MaatHandle*, const uint8_t bits[12]);
/// Keeps a handle in the caller's slot over series of one size type; null bits leave its map alone.
MaatHandle* mtkeep(MaatHandle** slot, uint8_t land, uint8_t maatsoort, const uint8_t bits[12]);
/// The same for the sizes of a series, limited to its map. Null, and the slot empty, when the
/// series or the system names no size type.
MaatHandle* mtserie(MaatHandle** slot, const DtSer&);
/// Closes what a slot keeps, if anything.
void mtlos(MaatHandle** slot);
/// The sizes of a handle's map in the order of the size bar; none for null.
std::vector<MaatRec> mtlijst(MaatHandle*);
/// One size by its index; false, and only the index set, for null and for a size that is not there.
bool mtzoek(MaatHandle*, uint8_t maat, MaatRec*);
/// 'F', 'N', 'P', 'R' by key 1 index, 2 position, 3 text, 4 rank in the bit map. False: untouched.
bool mtread(MaatHandle*, char actie, MaatRec*, int sleutel);
bool mtwijzig(MaatHandle*, const MaatRec*);
bool mtvoegtoe(MaatHandle*, MaatRec*);
bool mtverwijder(MaatHandle*, uint8_t maat);
/// The country by which size types are read: that of system record 1.
uint8_t maat_land();
/// Column width of a matrix by its largest value: the system's default, 4 above 999, 5 above 9999.
int maat_breedte(const int32_t* cellen);
int maat_kolommen(int schermbreedte, int kolombreedte);
