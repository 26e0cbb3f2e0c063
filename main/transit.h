// Working off what left one branch and did not arrive.
#pragma once

void verz_annuleren();  // "Annuleren verzendmutaties"
void mut_afwerken();    // "Afwerken via selectie"
void mut_uitgevoerd();  // "Uitgevoerde mutaties"
