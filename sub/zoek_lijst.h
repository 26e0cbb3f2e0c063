// What the lookup lists share: browsers over a keyed table in several orders, and over a numbered
// table of DTSYS.TXT. Inside the lookups only.
#pragma once

#include <span>

#include "isam/ix.h"
#include "isam/tekst.h"
#include "main/iotab.h"
#include "scr/scr.h"

/// One order of a keyed list: its key, the search field, and how typed text fills the key.
struct ZoekOrde {
  int sleutel;
  const Tekst& label;
  const char* formaat;
  void (*zet)(const char* tekst);
};
/// A keyed table as a list. `orde` is the caller's memory of the order, kept between calls.
struct KeyLijst {
  ICB* icb;
  void* rec;
  size_t lengte;
  std::span<const ZoekOrde> ordes;
  int* orde;  // index in ordes
};
/// The callbacks; BrwRec::data points at the KeyLijst.
bool key_lijst_stap(BrwRec* b, int n);
void key_lijst_zoek(BrwRec* b);
/// Puts the list on the first record at or after the key in `rec`, else on the last.
void key_lijst_positie(BrwRec* b);

/// A table of DTSYS.TXT as a list; `current` is the record number.
struct SysLijst {
  const SysTabel& tabel;
  void* rec;
  const Tekst& label;
  const char* formaat;
};
bool sys_lijst_stap(BrwRec* b, int n);
void sys_lijst_zoek(BrwRec* b);

/// Runs a single pick and frees the browser; false when the list was left. `geen` is the text of an
/// empty list; the record's identifier goes to *gekozen when asked for.
bool lijst_kies(BrwRec* b, const char* titel, const Tekst& geen, uint32_t* gekozen = nullptr);
/// The window of an empty master file.
void lijst_geen();
bool alleen_cijfers(const char* tekst);
/// What the caller of a field has allowed, for every time that the field is asked again.
struct VeldToetsen {
  VeldToetsen() : bewaard(ing_new()) {}
  ~VeldToetsen() { ing_free(bewaard); }
  VeldToetsen(const VeldToetsen&) = delete;
  VeldToetsen& operator=(const VeldToetsen&) = delete;
  void terug() const { ing_restore(bewaard); }
  IngRec* bewaard;
};
