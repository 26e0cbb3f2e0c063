// What the launcher sets right before the screen opens: catalogues, terminal entries, window size.
#pragma once

/// NLSPATH for the programs of this installation, unless it is set.
void opstart_catalogi();
/// Makes the terminal entries when the system has none for $TERM.
void opstart_terminal();
/// A window of fewer than 25 rows or 80 columns: says so and offers a frame of that size. Returns
/// when the program may go on here; does not return when the frame took its place.
/// `keuze` is the terminal number given with -t, 0 none.
void opstart_venster(int keuze);
