// Soundness of a table or private index, judged from the bytes of a copy of its files. Nothing here
// opens a file or trusts a number it read: any bytes give findings, none a memory fault.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "isam/ix_intern.h"
#include "tools/ix_verslag.h"
#include "tools/tabelkopie.h"

struct KeurNiveau {
  int64_t blokken = 0, ingangen = 0;
};
struct KeurSleutel {
  int diepte = 0;
  std::array<KeurNiveau, IX_DIEPTE + 1> niveau{};  // by level, from 1
};

/// The copy that is looked at, and what was learned of it.
struct Keuring {
  std::span<const uint8_t> index, data;
  ICB kop{};  // the header; its definitions fit their bounds once keur_kop has said so
  bool privaat = false;
  bool verouderd_mag = false;        // a private index may be older than its table
  int64_t blokken = 0, slots = 0;    // whole ones in the files
  std::vector<bool> levend;          // by slot
  int64_t verwijderd = 0, leeg = 0;  // deleted slots; blocks in no tree
  int rij = 0;                       // keys in the lock queue
  std::array<KeurSleutel, IX_SLEUTELS> sleutel{};
  Verslag* verslag = nullptr;

  const uint8_t* blok(int64_t nr) const { return index.data() + nr * IX_BLOK; }
  const uint8_t* slot(int64_t nr) const { return data.data() + nr * kop.record_length; }
};

/// Header, definitions and sizes of the table `naam`; false when nothing more can be looked at.
bool keur_kop(Keuring&, const std::string& naam);
void keur_bomen(Keuring&);
void keur_rij(Keuring&);
void keur_vrij(Keuring&);
/// All of it.
Keuring keur_tabel(const std::string& naam, const TabelKopie&, bool verouderd_mag, Verslag*);

/// Keys in the lock queue block, as many as fit.
int rij_aantal(const uint8_t* blok, int breed);
/// Entries of a key in order, the end left out, until `doe` says false. The header must be sound.
void loop_bladeren(const Keuring&, int sleutel,
                   const std::function<bool(const uint8_t* beeld, int32_t record)>& doe);

/// A chained flat file, and the table whose records start its chains.
struct PlatBestand {
  const char* bestand;
  const char* tabel;
  int32_t systeem;  // number of the control record
};
inline constexpr PlatBestand PLAT_ETIKETTEN{"DTETI.TXT", "DTSER", 4};
inline constexpr PlatBestand PLAT_PRIJSGROEPEN{"DTIPG.TXT", "DTIPA", 9};

/// Copies of them, of one moment.
struct PlatKopie {
  std::vector<uint8_t> bestand, tabel, index;
  uint8_t control[64] = {};
};
/// Copies under the control record and the table's header; the table's index only when asked. False
/// with a fault in the report.
bool plat_kopieer(const PlatBestand&, int wacht, bool met_index, PlatKopie*, Verslag*);
void keur_etiketten(const PlatKopie&, Verslag*);
void keur_prijsgroepen(const PlatKopie&, Verslag*);

/// DTETI.TXT and DTIPG.TXT in the current directory: a fault counts when a second look a moment
/// later finds it too.
void keur_etiketten(int wacht, Verslag*);
void keur_prijsgroepen(int wacht, Verslag*);
