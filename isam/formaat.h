// printf-style formatting with typed arguments, in place of C's variadic calls.
//
// A call site packs its arguments into an array of Arg by type; one core walks the format and
// converts each argument as its conversion asks. "%ld" takes an i32, "%hu" cuts to 16 bits, a
// missing argument prints as nothing and a text where a number is asked prints as 0: a format from
// a message catalogue can never read past its arguments.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

struct Arg {
  enum class Soort : uint8_t { getal, natuurlijk, breuk, tekst, teken };
  Soort soort;
  union {
    int64_t i;
    uint64_t u;
    double f;
    const char* s;
  };
  size_t n = SIZE_MAX;  // length of a text that is not terminated; SIZE_MAX: up to its NUL

  constexpr Arg(char c) : soort(Soort::teken), i(static_cast<unsigned char>(c)) {}
  template <class T>
  requires(std::is_integral_v<T>&& std::is_signed_v<T> &&
           !std::is_same_v<T, char>) constexpr Arg(T v)
      : soort(Soort::getal), i(v) {}
  template <class T>
  requires(std::is_integral_v<T>&& std::is_unsigned_v<T>) constexpr Arg(T v)
      : soort(Soort::natuurlijk), u(v) {}
  constexpr Arg(double v) : soort(Soort::breuk), f(v) {}
  constexpr Arg(float v) : soort(Soort::breuk), f(static_cast<double>(v)) {}
  constexpr Arg(const char* v) : soort(Soort::tekst), s(v == nullptr ? "" : v) {}
  constexpr Arg(std::string_view v) : soort(Soort::tekst), s(v.data()), n(v.size()) {}
  Arg(const std::string& v) : soort(Soort::tekst), s(v.data()), n(v.size()) {}
};

/// One conversion cut out of a format by `formaat_volgende`.
struct Conversie {
  std::string_view tekst;  // the whole piece: literal text, or "%-5.2lf"
  char letter = 0;         // 0 for a piece of literal text ("%%" is the one-character text "%")
  char voor = 0;           // the modifier right before the letter: 'h', 'l', 'L' or 0
};

/// Cuts the next piece off `formaat`; false at its end. "%%" comes as a piece of its own.
bool formaat_volgende(std::string_view& formaat, Conversie& stuk) noexcept;

/// Formats one conversion, with `*` taken from the front of `args`, and its own argument taken too.
/// Appends to `uit`. A conversion that has run out of arguments adds nothing.
void formaat_een(std::string& uit, const Conversie& stuk, std::span<const Arg>& args);

/// The whole of printf: s d i o u x X e f g E G c, flags "-+ 0#", width, precision, "*", h and l.
/// "%.20s" of a text without a NUL reads at most 20 bytes.
std::string formaat_tekst(const char* formaat, std::span<const Arg> args);

/// Formats into `buffer`, always terminated, cut at its size. Returns the length written.
size_t formaat_in(char* buffer, size_t grootte, const char* formaat, std::span<const Arg> args);

/// The typed fronts.
template <class... A>
std::string str_format(const char* formaat, A... a) {
  const Arg args[sizeof...(A) + 1] = {Arg(a)..., Arg(0)};
  return formaat_tekst(formaat, std::span<const Arg>(args, sizeof...(A)));
}
template <class... A>
size_t str_printf(char* buffer, size_t grootte, const char* formaat, A... a) {
  const Arg args[sizeof...(A) + 1] = {Arg(a)..., Arg(0)};
  return formaat_in(buffer, grootte, formaat, std::span<const Arg>(args, sizeof...(A)));
}
