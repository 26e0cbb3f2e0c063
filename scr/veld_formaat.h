// The format language of input fields, and the limits that follow from it. Pure functions: no
// screen, no state.
//
//   [length] [. precision] letter [ "[" ["^"] characters "]" ] [ , ] options      "6.2f,EJNPZ"
//
//   letter   variable                field
//   l d n    i32 i16 i8              whole number
//   u U      u16 u8                  whole number, not negative
//   f        double                  number with `precision` decimals
//   B        i32                     amount in hundredths (or in units, without decimals of money)
//   D        u16                     date: length 10 DD-MM-JJJJ, 8 DD-MM-JJ, else 6 DDMMJJ
//   b        u8                      yes or no
//   c s      characters, string      text (c has no terminator)
//   x        characters              hexadecimal digits
//   C S X    as c s x                the same in a scrolling field, `precision` columns wide
//
//   E required          I start empty            A Enter by itself at the end
//   F fill to length    J pad on the left        U upper case
//   S hidden            N Z P negative, zero, positive numbers (none of them: all)
//
// Blanks around the whole are skipped and unknown option letters have no effect.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

inline constexpr int VELD_MAX = 255;    // longest field
inline constexpr int VELD_OPTIES = 20;  // option letters kept

struct VeldFormaat {
  int lengte = 1;
  int precisie = 0;  // decimals, or visible columns of a scrolling field
  char letter = 0;
  bool reeks = false;       // a set of characters was given: these only, or
  bool reeks_niet = false;  // all but these
  std::string_view tekens;  // the set; points into the format
  char opties[VELD_OPTIES + 1] = {};

  bool optie(char o) const noexcept {
    return std::string_view(opties).find(o) != std::string_view::npos;
  }
  bool numeriek() const noexcept {
    return std::string_view("ldunUfB").find(letter) != std::string_view::npos;
  }
  bool scrollt() const noexcept { return letter == 'C' || letter == 'S' || letter == 'X'; }
  bool sjabloon() const noexcept { return letter == 'D' && lengte != 6; }  // shows its separators
};

/// What is wrong with a format: faults of whoever wrote the screen.
enum class VeldFout : uint8_t { geen, lengte, precisie, vartype, haak, bereik, tekst };

/// Reads a format. `geld` is the number of decimals of money, the precision of every amount.
VeldFout veld_ontleed(std::string_view formaat, int geld, VeldFormaat& uit);

struct VeldGrenzen {
  double min, max;
};
/// The limits of a number or date by its letter, length and options.
VeldGrenzen veld_grenzen(const VeldFormaat& f, int geld);
/// Joins the range that a caller gave (min above max: none) with the limits; false when nothing is
/// left of it. A date keeps a range of 0 to 0, which means "any date".
bool veld_bereik(const VeldFormaat& f, const VeldGrenzen& grenzen, double& min, double& max);

/// One bit per character code, as in IngRec::allowed.
using VeldTekens = std::span<uint8_t, 64>;
/// Adds the characters that the letter and the set accept, and takes off those they refuse.
void veld_tekens(const VeldFormaat& f, char ja, char nee, VeldTekens toegestaan);
