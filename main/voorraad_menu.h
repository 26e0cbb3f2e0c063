// The top menu of voorraad: every command of stock and orders, in rubrics.
#pragma once

/// Shows the menu until the operator leaves it; what can be chosen is looked up anew each time.
void voorraad_menu();
