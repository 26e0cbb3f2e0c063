// What an order asked against what was sent.
#pragma once

void opdracht_controle();  // "Controle uitvoering opdracht"
