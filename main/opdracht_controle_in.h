// The steps of checking an order: what it asked and what was sent, gathered into a private table,
// and the list of it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "sub/opdr_kies.h"
#include "sub/records.h"
#include "sub/tabellen.h"

struct MaatHandle;

#pragma pack(push, 1)
struct Controle {  // 808 bytes: temp_controle
  uint8_t vanfil, naarfil;
  char model[15];
  uint8_t leeg17[3];
  Serienr nr;
  char merk[4];  // the brand's search name
  char locatie[6];
  uint8_t leeg38[2];
  uint32_t opdracht[MATEN], verzonden[MATEN];  // pieces per size index
};
#pragma pack(pop)
static_assert(sizeof(Controle) == 808 && offsetof(Controle, nr) == 20);
static_assert(offsetof(Controle, locatie) == 32 && offsetof(Controle, opdracht) == 40);
static_assert(offsetof(Controle, verzonden) == 424);

struct ControleVraag {
  OpdrKeuze opdracht;  // its naarfil B: several receivers
  bool uitgebreid = false;
  bool verschillen = false;  // only series with a difference
  char volgorde[11] = "AKV";
};

std::string controle_bestand();
/// The order goes to one branch.
bool controle_enkel(const OpdrKeuze&);
/// Makes the table anew and fills it from the order lines, from what is on its way and from what
/// tills report. False when the operator broke off. The order's date comes back in the question.
bool controle_vul(ControleVraag*);
/// Prints the table into an open report; false when there was nothing to print.
bool controle_lijst(const ControleVraag&);

struct ControleKolom {
  uint8_t maat;
  std::string tekst;
};

/// The list at work.
struct ControleLijst {
  const ControleVraag& vraag;
  ICB* tabel;
  bool enkel;
  Controle rij{};                       // the next one
  Controle groep{};                     // first row of the group in hand
  MaatMatrix opdracht{}, verzonden{};   // of the series, per receiving branch
  std::vector<ControleKolom> balk{};    // size bar of the series
  std::array<std::string, 4> vorige{};  // brand, model, material and pattern of the line above
  int64_t stuks_opdracht = 0, stuks_verzonden = 0;
  MaatHandle* maten = nullptr;
  bool gedrukt = false;
};
/// A new page when fewer than `regels` lines remain on this one; true when it came.
bool controle_ruimte(ControleLijst&, int regels);
/// Something of the series in the matrices was not sent as asked, in one branch or (the last row)
/// of the whole.
bool controle_verschilt(const ControleLijst&, size_t filiaal);
bool controle_verschilt(const ControleLijst&);
/// Prints the series in the matrices; `eerste` is one of its rows.
void controle_serie(ControleLijst&, const Controle& eerste);
