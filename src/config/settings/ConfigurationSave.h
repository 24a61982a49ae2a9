#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune::config {

/// The rules that a save of the configuration applies to what the user typed.

/// Takes out of a filename format what no file name may hold, and the separators at its ends: "/" becomes
/// "\", thirteen characters go, then outer backslashes and blanks.
[[nodiscard]] std::string CleanFilenameFormat(std::string_view text);

inline constexpr std::string_view kSongLengthTitle = "Song length error";
inline constexpr std::string_view kSongLengthText =
    "Minimum song length must be less than maximum song length";

/// Whether a song can be long enough and short enough at once; a maximum of 0 is no limit.
[[nodiscard]] constexpr bool SongLengthsAgree(std::int16_t minimum, std::int16_t maximum) {
  return minimum < maximum || maximum == 0;
}

}  // namespace kestrune::config
