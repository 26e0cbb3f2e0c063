// Asking the operator for one series, by number, by brand, article group and model, or by brand and
// model.
#pragma once

#include "sub/records.h"

enum class SerieVraag : uint8_t { nummer, merk_artikel_model, merk_model };
/// Asks under the header "Ingave serienummer", "Ingave merk-artg-model" or "Ingave merk-model"
/// until a series that exists was given or chosen; its number. False when the operator left.
bool serie_vraag(SerieVraag, Serienr*);
