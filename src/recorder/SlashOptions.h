#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune::recorder {

/// The slash options are searched without regard to case in the raw command line, at their first place. One
/// character after the option's name is skipped, whatever it is, so "/multi2" names no unit and
/// "/multi=2" names unit 2.

/// The unit: the first character of what follows "/multi", blanks aside; empty for a single unit. It is "/" if
/// another option follows at once, which the command line refuses.
[[nodiscard]] std::string MultiUnitOf(std::string_view rawText);

/// Whether "/debug" stands anywhere.
[[nodiscard]] bool DebugModeOf(std::string_view rawText);

struct ForcedPort {
  bool Present = false;    ///< "/port" occurs in the text, whatever follows it
  std::int16_t Value = 0;  ///< 1 to 255, or 0 if the number was refused or is missing
};

/// The number at the start of the three characters after "/port", leading blanks aside.
[[nodiscard]] ForcedPort ForcedPortOf(std::string_view rawText);

}  // namespace kestrune::recorder
