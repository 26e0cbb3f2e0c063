// Locations in the warehouse.
#pragma once

void mag_locaties();   // "Magazijnlocaties"
void serie_locatie();  // "Locatie per serie"
