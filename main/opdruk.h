// Order documents over temp_verzamel, and the commands that print them.
#pragma once

enum class OpdrachtSoort : int {
  voorlopig = 1,
  nieuw = 2,
  zoeklijst = 4,
  bestaand = 5,
  geannuleerd = 6
};
/// Prints temp_verzamel (kinds 1, 2, 5) on a destination that the operator picks; nothing is asked
/// when it is empty. False when the operator backed out. temp_verzamel stays.
bool opdruk(OpdrachtSoort);

// Commands.
void opdracht_voorlopig();  // "Afdrukken voorlopige opdracht"
void opdracht_nieuw();      // "Afdrukken nieuwe opdracht"
void opdracht_bestaand();   // "Afdrukken bestaande opdracht"
