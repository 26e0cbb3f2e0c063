// The operator's series selection DTSER.Vnn, which outlives the run: its sort order (also in the file's
// header) and whether it holds anything.
#pragma once

extern char serie_sortering[20];
extern bool serie_gevuld;

/// Changes the selection: asks the order, whether it is to be emptied first, the criteria, and adds
/// the series that pass.
void serie_selectie();
