// Base utilities: dates and times, text editing in place, code page 850, numbers by picture, money,
// and small helpers for files and directories. Knows nobody.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "isam/formaat.h"

// Dates -------------------------------------------------------------------------------------------
// A date number counts days: 1 is 1 January 1900 (which counts as a leap year), 0 is no date. It
// fits 16 bits until 4 June 2079. Texts are DDMMJJ or DDMMJJJJ; JJ below 51 means 20JJ.

inline constexpr const char* DATUM_EERSTE = "01011980";  // low end of date ranges
inline constexpr uint16_t DATUM_LAATSTE = 65534;         // high end

uint16_t date_today();                    // local time
int32_t time_now();                       // seconds since midnight
bool date_valid(const char* tekst);       // 6 or 8 digits, a day that exists
uint16_t date_number(const char* tekst);  // 0 for a bad date, before 1900 or past 16 bits
void date_text(char* buffer, uint16_t nummer, bool lang);  // DDMMJJ or DDMMJJJJ; blanks for 0
/// These share one static buffer: the later call overwrites.
const char* date_show(uint16_t nummer);       // DD-MM-JJ
const char* date_show_long(uint16_t nummer);  // DD-MM-JJJJ
const char* date_plain(uint16_t nummer);      // DDMMJJ
const char* time_show(int32_t nummer);        // HH:MM:SS, a static buffer of its own

// Text, in place, positions from 0 ----------------------------------------------------------------

void str_cut(char* tekst, int positie, int aantal);
void str_put(char* tekst, char teken, int positie);
void str_ins(char* tekst, const char* invoeg, int positie);
int str_chr(char teken, const char* tekst);
int str_pos(const char* patroon, const char* tekst);
char* str_rtrim(char* tekst);
char* str_ltrim(char* tekst);
char* str_trim(char* tekst);
char* str_upper(char* tekst);  // code page 850, accented letters too
uint8_t chr_upper(uint8_t teken) noexcept;
int mem_cmp(const void* a, const void* b, size_t n);
void str_unescape(char* tekst);  // \hh becomes one byte, \\ one backslash

/// A field of a record: bytes up to the first NUL, at most n.
std::string veld_tekst(const char* veld, size_t n);
/// Fills a field with text, cut at n, the rest NUL.
void veld_zet(char* veld, size_t n, std::string_view tekst);

// Names and passwords in the system files (in place; the result is one character longer)
// -------------

/// `nu` is the moment that chooses the key; it makes the result differ each second.
void SCRAMBLE(char* tekst);
void scramble_op(char* tekst, int64_t nu);
void UNSCRAMBLE(char* tekst);
/// The plain text of a scrambled field of n bytes; empty for an empty field.
std::string unscramble_veld(const char* veld, size_t n);

// Code page 850 -----------------------------------------------------------------------------------

/// UTF-8 of one byte (control bytes as they are); the code point; the byte of a code point, 0 if
/// none.
std::string cp850_utf8(std::string_view bytes);
char32_t cp850_punt(uint8_t teken) noexcept;
uint8_t cp850_byte(char32_t punt) noexcept;
/// Bytes of an UTF-8 text; a character outside the code page becomes '?' and clears *geheel.
std::string utf8_cp850(std::string_view utf8, bool* geheel = nullptr);

// Numbers and money -------------------------------------------------------------------------------

/// Edits a value by a picture of '9', 'Z', '*', ' ', '.', ','; one sign character is added behind.
std::string num_picture(std::string_view plaatje, double waarde);

/// Decimals of money in this process: 2, or 0 where KPOS is set. SCRINIT and session start set it.
extern int geld_decimalen;
std::string money_show(int32_t waarde, int breedte);  // cents, right-aligned, "-0.05"
int32_t money_whole(int32_t waarde);                  // cents to units, half away from zero
int32_t percent_add(int32_t waarde, int32_t promille);
int32_t percent_strip(int32_t waarde, int32_t promille);

// Files -------------------------------------------------------------------------------------------

bool file_exists(const char* pad);
int64_t file_size(const char* pad);  // -1 if absent
bool file_isdir(const char* pad);
bool file_delete(const char* pad);  // true if gone, also if it did not exist
bool file_move(const char* van, const char* naar, bool vervang);
/// hoe > 0 appends, 0 replaces, < 0 requires `naar` to be new. True when all was copied.
bool file_copy(const char* van, const char* naar, int hoe);
/// A fresh name, reserved and removed again: prefix of up to four characters, AA to ZZ, two digits.
/// Digits start at the process number modulo 100, or at the absolute value of a negative `start`.
/// The bare name, in a static buffer; empty on errors.
const char* file_temp(const char* map, const char* prefix, int start = 0);
size_t buf_alloc(void** buffer, size_t laag, size_t hoog);
/// A line of up to grootte - 1 characters; false at the end or when it filled the size exactly.
bool file_line(FILE* bestand, char* buffer, int grootte);
/// Walks entries: 'O' opens on a pattern ('*', '?' in the last part, or scanf's "%*d" and the
/// like), 'N' gives the next name with the pattern's directory in front, or null, 'C' ends. Nests
/// three deep; a fourth 'O' gives null.
const char* DIRECTORY(char actie, const char* patroon, bool recursief);
bool wild_past(const char* patroon, const char* naam) noexcept;

// Check digits ------------------------------------------------------------------------------------

/// EAN-8 and EAN-13: weights 1 and 3 alternating from the right over all digits; true when the sum
/// is a multiple of ten. False for anything but digits.
bool ean_goed(std::string_view cijfers) noexcept;
