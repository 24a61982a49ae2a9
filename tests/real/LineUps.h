#pragma once

#include <string>
#include <vector>

#include "real/Receiver.h"

namespace kestrune::test {

/// Two stations, for a short start: channel 1 with these titles, all by "The Preview", and channel 3. A list
/// of fewer than ten channels leaves the program on channel 1.
[[nodiscard]] std::vector<LineUpStation> ShortLineUp(const std::vector<std::string>& titles, double seconds);

/// Ten stations, channel 8 first, each with songs of this length.
[[nodiscard]] std::vector<LineUpStation> TenStations(double seconds);

/// The frequency of a station's song in the receiver's tones: 200 Hz for the first song of the line-up and
/// 140 Hz more for each that follows.
[[nodiscard]] constexpr double ToneOfSong(int ordinal) {
  return 200.0 + 140.0 * ordinal;
}

/// Settings for songs of a few seconds on channel 1, all kept, by title only.
[[nodiscard]] std::map<std::string, std::string> ShortSongs();

/// A file of raw samples, all of them silence, that no test lives to see the end of.
[[nodiscard]] std::string QuietFile(const std::string& folder);

}  // namespace kestrune::test
