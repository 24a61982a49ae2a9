#include "base/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <system_error>

#include "base/Text.h"

namespace kestrune::base {

namespace {

struct ScannedNumber {
  double Value = 0;
  std::size_t Length = 0;  ///< 0 if the text begins with no number
};

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::size_t CountDigits(std::string_view text, std::size_t from) {
  std::size_t end = from;
  while (end < text.size() && IsDigit(text[end])) ++end;
  return end - from;
}

/// A number too large or too small for a double, by the place of its first digit that is not 0: infinite or
/// 0.
double BeyondDouble(std::string_view digits, std::string_view exponent) {
  std::int64_t order = 0;
  auto read = std::from_chars(exponent.data(), exponent.data() + exponent.size(), order);
  if (read.ec == std::errc::result_out_of_range) return exponent.front() == '-' ? 0.0 : HUGE_VAL;
  const auto point = std::min(digits.find('.'), digits.size());
  const auto first = digits.find_first_of("123456789");
  order += static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
  return order > 0 ? HUGE_VAL : 0.0;
}

ScannedNumber ScanDecimal(std::string_view text) {
  std::size_t begin = 0;
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) begin = 1;
  const std::size_t whole = CountDigits(text, begin);
  std::size_t end = begin + whole;
  std::size_t fraction = 0;
  if (end < text.size() && text[end] == '.') {
    fraction = CountDigits(text, end + 1);
    if (whole + fraction > 0) end += 1 + fraction;
  }
  if (whole + fraction == 0) return {};
  const std::string_view digits = text.substr(begin, end - begin);

  std::string_view exponent;
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    std::size_t at = end + 1;
    if (at < text.size() && text[at] == '+') ++at;
    const std::size_t sign = at == end + 1 && at < text.size() && text[at] == '-' ? 1 : 0;
    const std::size_t count = CountDigits(text, at + sign);
    if (count > 0) {
      exponent = text.substr(at, sign + count);
      end = at + sign + count;
    }
  }

  double value = 0;
  const auto read = std::from_chars(text.data() + begin, text.data() + end, value);
  if (read.ec == std::errc::result_out_of_range) value = BeyondDouble(digits, exponent);
  return {negative ? -value : value, end};
}

ScannedNumber ScanOtherBase(std::string_view text) {
  if (text.size() < 3 || text[0] != '&') return {};
  const char mark = text[1];
  const int base = mark == 'H' || mark == 'h' ? 16 : mark == 'O' || mark == 'o' ? 8 : 0;
  if (base == 0) return {};
  ScannedNumber number;
  for (std::size_t i = 2; i < text.size(); ++i) {
    int digit = -1;
    const auto read = std::from_chars(text.data() + i, text.data() + i + 1, digit, base);
    if (read.ec != std::errc() || digit < 0) break;
    number = {number.Value * base + digit, i + 1};
  }
  return number;
}

ScannedNumber Scan(std::string_view text) {
  return text.starts_with('&') ? ScanOtherBase(text) : ScanDecimal(text);
}

std::optional<double> WholeNumber(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  const ScannedNumber number = Scan(trimmed);
  if (number.Length == 0 || number.Length != trimmed.size()) return std::nullopt;
  return number.Value;
}

template <typename Integer>
std::optional<Integer> Rounded(double value) {
  const double rounded = RoundHalfEven(value);
  // Written so that a NaN fails too.
  if (!(rounded >= std::numeric_limits<Integer>::min() && rounded <= std::numeric_limits<Integer>::max())) {
    return std::nullopt;
  }
  return static_cast<Integer>(rounded);
}

}  // namespace

double LeadingNumber(std::string_view text) {
  std::string dense;
  dense.reserve(text.size());
  std::copy_if(text.begin(), text.end(), std::back_inserter(dense),
               [](char c) { return c != ' ' && c != '\t' && c != '\n' && c != '\r'; });
  return Scan(dense).Value;
}

double RoundHalfEven(double value) {
  const double below = std::floor(value);
  const double part = value - below;
  if (part < 0.5) return below;
  if (part > 0.5) return below + 1;
  return std::fmod(below, 2.0) == 0.0 ? below : below + 1;
}

std::optional<std::int16_t> ToInt16(std::string_view text) {
  const auto number = WholeNumber(text);
  return number ? ToInt16(*number) : std::nullopt;
}

std::optional<std::int32_t> ToInt32(std::string_view text) {
  const auto number = WholeNumber(text);
  return number ? ToInt32(*number) : std::nullopt;
}

std::optional<float> ToSingle(std::string_view text) {
  const auto number = WholeNumber(text);
  if (!number || std::abs(*number) > static_cast<double>(std::numeric_limits<float>::max())) {
    return std::nullopt;
  }
  return static_cast<float>(*number);
}

std::optional<std::int16_t> ToInt16(double value) {
  return Rounded<std::int16_t>(value);
}

std::optional<std::int32_t> ToInt32(double value) {
  return Rounded<std::int32_t>(value);
}

std::optional<bool> ToBool(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  if (EqualsNoCase(trimmed, "True")) return true;
  if (EqualsNoCase(trimmed, "False")) return false;
  const auto number = WholeNumber(trimmed);
  if (!number) return std::nullopt;
  return *number != 0.0;
}

std::string BoolText(bool value) {
  return value ? "True" : "False";
}

std::string SixtiesText(std::int64_t count) {
  const std::int64_t rest = count % 60;
  return std::to_string(count / 60) + (rest < 10 ? ":0" : ":") + std::to_string(rest);
}

std::string SingleText(float value) {
  // Neither a sign on 0 nor what is no number at all means anything to a reader.
  if (value == 0.0F || !std::isfinite(value)) return "0";
  std::array<char, 32> buffer{};
  const auto written =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, 7);
  std::string text(buffer.data(), written.ptr);
  std::replace(text.begin(), text.end(), 'e', 'E');
  return text;
}

}  // namespace kestrune::base
