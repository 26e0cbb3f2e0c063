// Dated price sets (DTIPA) and their price groups (DTIPG.TXT).
#pragma once

#include <vector>

#include "sub/records.h"

struct Prijsgroep {
  int32_t nummer;  // record in DTIPG.TXT
  DtIpg rec;
};
/// The working list of the price set in hand.
extern std::vector<Prijsgroep> prijsgroepen;

void ipa_open(int mode);
void ipa_close();
bool ipa_lees(DtIpa*);
bool ipa_geldig(const Serienr& nr, uint16_t nummer, uint16_t datum, DtIpa*);
bool ipa_stap(char actie, DtIpa*, int sleutel, int velden);
void ipa_schrijf(DtIpa*);
void ipa_wis(DtIpa*);
void ipa_wis_serie(const Serienr& nr);
