#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/Result.h"
#include "config/settings/Settings.h"
#include "platform/Environment.h"

namespace kestrune::config {

/// A rule for the value of one setting. It looks at `wished`, the settings as they would be, may correct that one
/// value, and fails if it cannot stand. The cause completes the sentence that begins with the value.
using SettingCheck = base::Result (*)(Settings& wished, const platform::Environment& environment);

base::Result CheckSievanceGrab(Settings& wished, const platform::Environment& environment);
base::Result CheckSievanceKill(Settings& wished, const platform::Environment& environment);
/// The minimum must be less than the maximum; a maximum of 0 is no limit.
base::Result CheckSongLengths(Settings& wished, const platform::Environment& environment);
/// Takes the sign away.
base::Result CheckSongDelay(Settings& wished, const platform::Environment& environment);
/// Appends a "/" if there is none at the end, and puts the home folder in the place of a "~" before the first "/".
/// Fails for an empty text, for a folder that does not begin at the root and for that of the shelf, where songs do not stay.
base::Result CheckFileDir(Settings& wished, const platform::Environment& environment);
/// Must be the code of a format.
base::Result CheckFileFormat(Settings& wished, const platform::Environment& environment);
/// Fails below 0.
base::Result CheckIdleCaptureMinutes(Settings& wished, const platform::Environment& environment);
/// Fails outside 0 to kLongestCutOverlap.
base::Result CheckCutOverlap(Settings& wished, const platform::Environment& environment);
/// Fails outside 0 to 8.
base::Result CheckFlacLevel(Settings& wished, const platform::Environment& environment);
/// Fails outside 32 to 256.
base::Result CheckOpusBitrate(Settings& wished, const platform::Environment& environment);
/// As CheckFileDir, but it may be empty. Fails for the folder of recordings itself.
base::Result CheckShelfFolder(Settings& wished, const platform::Environment& environment);
/// Fails outside 0 to kMostShelfSongs.
base::Result CheckShelfSongs(Settings& wished, const platform::Environment& environment);
/// Fails outside 1 to kMostShelfMegabytes.
base::Result CheckShelfMegabytes(Settings& wished, const platform::Environment& environment);
/// Puts the numbers into order, each once, one blank between two. Fails for anything that is not a number from 0 to 255.
base::Result CheckFavourites(Settings& wished, const platform::Environment& environment);
/// Cleans it.
base::Result CheckFilenameFormat(Settings& wished, const platform::Environment& environment);

/// Takes out of a filename format what no file name may hold, and the separators at its ends: "/" becomes "\",
/// thirteen characters go, then outer backslashes and blanks.
[[nodiscard]] std::string CleanFilenameFormat(std::string_view text);

inline constexpr std::string_view kSongLengthTitle = "Song length error";
inline constexpr std::string_view kSongLengthText =
    "Minimum song length must be less than maximum song length";

/// Whether a song can be long enough and short enough at once; a maximum of 0 is no limit.
[[nodiscard]] constexpr bool SongLengthsAgree(std::int16_t minimum, std::int16_t maximum) {
  return minimum < maximum || maximum == 0;
}

}  // namespace kestrune::config
