// Removing what the order cycle leaves behind, and its two settings.
#pragma once

void voorl_wissen();        // "Verwijderen voorlopige opdracht"
void verzamel_wissen();     // "Verwijderen verzamelopdrachten"
void aanvulinfo_wissen();   // "Verwijderen aanvulinformatie"
void aanvulinfo_bewaren();  // "Bewaren aanvulinformatie"
void controle_instellen();  // "Instellen contr. verzamelopdrachten"
