// The two work tables of a terminal in which the advice commands gather the lines of a series. They
// stand as long as the menu of a program does.
#pragma once

/// TPnnP stays as an earlier run left it when it is sound and is opened as `tpck`; TPnnG is made
/// empty, for whoever counts in it to open as `tmpgo`.
void werktabellen_open();
/// Closes and removes both.
void werktabellen_sluit();
