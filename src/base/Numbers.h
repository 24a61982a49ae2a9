#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrune::base {

/// The number that a text begins with: blanks, tabs and line ends are skipped everywhere, then sign,
/// digits, point and exponent are taken as far as they go; "&H" and "&O" introduce hexadecimal and octal. 0
/// if the text begins with no number. "12abc" is 12, "1 2" is 12, "abc" is 0.
[[nodiscard]] double LeadingNumber(std::string_view text);

/// The nearest whole number, halves to the even neighbour.
[[nodiscard]] double RoundHalfEven(double value);

/// Conversions of a whole text, blanks around it allowed. Halves round to even; nothing if the text is no
/// number or the rounded value lies outside the width.
[[nodiscard]] std::optional<std::int16_t> ToInt16(std::string_view text);
[[nodiscard]] std::optional<std::int32_t> ToInt32(std::string_view text);
[[nodiscard]] std::optional<float> ToSingle(std::string_view text);
/// The same from a number.
[[nodiscard]] std::optional<std::int16_t> ToInt16(double value);
[[nodiscard]] std::optional<std::int32_t> ToInt32(double value);

/// "True" and "False" without regard to case, or any number, of which 0 is false.
[[nodiscard]] std::optional<bool> ToBool(std::string_view text);

/// "True" or "False".
[[nodiscard]] std::string BoolText(bool value);

/// Sixties, ":" and the rest in two digits, as minutes and seconds or hours and minutes are written: 75 is "1:15".
/// Not for negative numbers.
[[nodiscard]] std::string SixtiesText(std::int64_t count);

/// A single-precision number as decimal text: at most seven significant digits, no trailing zeros, and a
/// point only where one is needed.
[[nodiscard]] std::string SingleText(float value);

}  // namespace kestrune::base
