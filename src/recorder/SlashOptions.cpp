#include "recorder/SlashOptions.h"

#include <algorithm>
#include <cstddef>

#include "base/Numbers.h"
#include "base/Text.h"

namespace kestrune::recorder {
namespace {

constexpr std::string_view kMulti = "/multi";
constexpr std::string_view kDebug = "/debug";
constexpr std::string_view kPort = "/port";
constexpr std::size_t kPortDigits = 3;

/// What follows the option and one more character, blanks at both ends cut.
std::string_view ArgumentAt(std::string_view rawText, std::size_t position, std::string_view option) {
  return base::Trim(rawText.substr(std::min(position + option.size() + 1, rawText.size())));
}

bool ContinuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Whole characters, so that no half of one gets into a file's name.
std::string_view FirstCharacters(std::string_view text, std::size_t count) {
  std::size_t end = 0;
  for (; count > 0 && end < text.size(); --count) {
    do ++end;
    while (end < text.size() && ContinuesCharacter(text[end]));
  }
  return text.substr(0, end);
}

}  // namespace

std::string MultiUnitOf(std::string_view rawText) {
  const std::size_t position = base::FindNoCase(rawText, kMulti);
  if (position == std::string_view::npos) return {};
  return std::string(FirstCharacters(ArgumentAt(rawText, position, kMulti), 1));
}

bool DebugModeOf(std::string_view rawText) {
  return base::ContainsNoCase(rawText, kDebug);
}

ForcedPort ForcedPortOf(std::string_view rawText) {
  const std::size_t position = base::FindNoCase(rawText, kPort);
  if (position == std::string_view::npos) return {};
  const double number =
      base::LeadingNumber(FirstCharacters(ArgumentAt(rawText, position, kPort), kPortDigits));
  ForcedPort forced{.Present = true};
  if (number > 0 && number < 256) forced.Value = base::ToInt16(number).value_or(0);
  return forced;
}

}  // namespace kestrune::recorder
