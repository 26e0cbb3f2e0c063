// Branch records in DTFILGEG.TXT and the table of branch pairs (tills).
#pragma once

#include <cstdint>

#pragma pack(push, 1)
struct FiliaalRec {  // 612 bytes
  char naam[32];     // plain in memory, scrambled on disk; slot 0 is the company
  char adres[30];
  char plaats[25];
  uint8_t leeg87[221];
  uint8_t keuzes;                // below 2: no choice to make
  uint8_t bits1[13], bits2[13];  // bit sets over branches
  uint8_t leeg335[264];
  uint8_t extern_nummer;
  uint8_t leeg600[12];
};
#pragma pack(pop)
static_assert(sizeof(FiliaalRec) == 612);

extern FiliaalRec filiaal_rec;
/// 'O' open, 'R' read, 'W' write, 'C' close. Branch B is the head office, in slot 0.
bool iofil(char actie, int filiaal, FiliaalRec* buffer);
bool branch_by_number(int nummer, FiliaalRec* buffer, uint8_t* filiaal);

void pairs_load();
void pairs_free();
bool pairs_any();
int pairs_count();
bool pairs_of_branch(int filiaal);  // 255 any
bool pair_exists(int filiaal, int kassa);
void pair_send(int filiaal, int kassa, char type, const char* tekst);
bool pairs_send_all(int filiaal, int kassa, char type, const char* tekst);
