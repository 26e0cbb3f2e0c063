// The series selection that advice commands keep between runs: DTSER.Vnn and its sort order.
#pragma once

/// Key letters of DTSER.Vnn as they stand in its header, and whether it holds any series.
extern char serie_sortering[20];
extern bool serie_gevuld;

/// "Selecteren series": asks for the order, whether to empty what stands, and adds what the
/// criteria select; or empties the selection outright.
void serie_selectie();
