// Order numbers 2NNNNNNc: a 2, six digits of a counter, the check digit of an EAN-8 code; and which
// kinds of order lines there are.
#pragma once

#include <cstdint>

uint32_t opdrnr_nieuw();
uint32_t opdrnr_cijfer(uint32_t teller);
bool opdrnr_ok(const char* tekst);
/// Rewrites the typed text to eight digits (the buffer holds at least nine bytes); false when it is
/// no order number.
bool opdrnr_norm(char* tekst);
/// Input; 0 for empty. False when the operator left.
bool opdrnr_ingave(int row, int col, uint32_t* nummer);

inline constexpr int OPDR_VOORLOPIG = 1, OPDR_DEFINITIEF = 2;
/// Mask of the kinds of lines in DTPICK. One keyed read a pair and order; stops when both were
/// seen.
int dtpick_soorten();
