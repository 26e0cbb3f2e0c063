// Sets of branches: their bit form, text form ("1-5,7"), input field, the stored series; and the
// field for one branch.
#pragma once

#include <cstdint>
#include <string>

/// The set as numbers and ranges. `tekst` holds at least 1024 bytes.
void pg_to_text(const uint8_t* set, char* tekst);
/// False with a message on the bottom line; the set is as it was.
bool pg_from_text(const char* tekst, uint8_t* set);
/// The parse alone, for a set of `lengte` bytes (32 or 13): empty when good, else the message; the
/// set is then as it was.
std::string pg_ontleed(const char* tekst, uint8_t* set, int lengte);
/// Cut to the width with ">" at the end; code 'F' the first piece, else the next one; empty at the
/// end.
std::string pg_show(char code, const uint8_t* set, int breedte);
/// Input of a set, format "60s,I": non-zero when it differs. K_F5 opens the stored series if
/// allowed.
bool pg_field(int row, int col, const char* formaat, uint8_t* set);
bool pg_list(uint8_t* set);
bool pg_is_all(const uint8_t* set);
void pg_clear(uint8_t* set);
void pg_fill(uint8_t* set);
bool pg_test(const uint8_t* set, int n);
void pg_add(uint8_t* set, int n);
void pg_remove(uint8_t* set, int n);
// The short form, 13 bytes.
void pg_to_text13(const uint8_t* set, char* tekst);
bool pg_from_text13(const char* tekst, uint8_t* set);
bool pg_field13(int row, int col, const char* formaat, uint8_t* set);

/// One branch number; format gives the option letters or a whole format.
bool fil_field(int row, int col, const char* formaat, uint8_t* filiaal);
/// One branch, or all of them: nothing entered, filialen() in the variable. False when the operator
/// left.
bool fil_of_alle(int row, int col, uint8_t* filiaal);
int fil_digits(bool lijst);
int fil_column_attr(int n);
