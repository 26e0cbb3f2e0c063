// Provisional order lines out of the advice: writing them, and the commands that do.
#pragma once

#include <cstdint>
#include <span>

#include "sub/records.h"

/// Turns advies.m_voorlopig of the series in ser_rec into provisional lines: lines that tpck holds
/// are kept as far as they still fit, then pairs are filled in order of branch. tpck is emptied.
/// The lines of the series must have been deleted before.
void opdracht_schrijven();
/// Adds 96 quantities to the provisional line of the pair and series in ser_rec.
void opdracht_regel(int van, int naar, std::span<const uint32_t, MATEN> aantallen);
/// Deletes the provisional lines of a series; deletes its replenishment information.
void opdrachten_wissen(const Serienr&);
void aanvul_wissen(const Serienr&);

// Commands.
void opdracht_automatisch();  // "Automatisch aanmaken"
void opdracht_handmatig();    // "Handmatig aanmaken"
void mutaties_ingeven();      // "Ingeven mutaties"
void adv_druk_serie();        // "Afdrukken adviezen per serie"
void adv_druk_stuk();         // "Afdrukken per artikel"
void vrk_verkeer();           // "Verkopen tbv filiaalverkeer"

/// The dialog "BEREKENEN AANVULADVIES" on adv_rec; false when the operator left.
bool adv_dialoog();
