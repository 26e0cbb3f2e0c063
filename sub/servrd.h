// The advice matrix of one series on the screen: branches against sizes, with stock, advice and the
// changes that the operator makes.
#pragma once

/// Shows the series in ser_rec with `advies` as adv_vul and adv_bereken left it; `slot` 2 or 6 is
/// the command's. Acceptance and changes go to advies.m_voorlopig. Returns ADV_VERDER, ADV_TERUG or
/// ADV_ANDER for another series, 0 when the operator leaves. The wide terminal is given back.
int servrd(const char* titel, int slot);
