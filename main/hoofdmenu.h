// The launcher's menu: the programs of DTHMNU that the user's rights in DTREL allow.
#pragma once

/// Shows the menu until a program is chosen (its name) or the operator leaves it (null).
const char* hoofdmenu();
